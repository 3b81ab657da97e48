// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "core/color/ipatterncolorspaces.h"
#include "host/color/meshdata.h"
#include "pdf/shadingpixels.h"

namespace VANTIX::PDF {

/// A corner of a triangle: its place, and its colour in PDF form or the input of the function.
struct MeshVertex {
    ShadingPoint place;
    ShadingColors::Values values{};
};

/// A tensor-product patch (PDF Reference, 4.6.3, type 7). `points[i][j]` are its control points, i
/// along u and j along v; `colors` stand at (u, v) = (0, 0), (0, 1), (1, 1) and (1, 0).
struct MeshPatch {
    std::array<std::array<ShadingPoint, 4>, 4> points;
    std::array<ShadingColors::Values, 4> colors;
};

/// Takes what a mesh is made of, in the order in which it is painted.
class MeshSink {
public:
    MeshSink() = default;
    virtual ~MeshSink() = default;
    MeshSink(const MeshSink&) = delete;
    MeshSink& operator=(const MeshSink&) = delete;
    MeshSink(MeshSink&&) = delete;
    MeshSink& operator=(MeshSink&&) = delete;

    virtual void Triangle(const MeshVertex& a, const MeshVertex& b, const MeshVertex& c) = 0;
    virtual void Patch(const MeshPatch& patch) = 0;
};

/// The mesh of a shading of types 4 to 7. Borrows the shading.
class Mesh {
public:
    /// Nothing for other shadings, and for meshes whose layout is damaged.
    static std::optional<Mesh> Of(COLOR::IConnectionColorSpace& shading);

    [[nodiscard]] const COLOR::IMeshShadingColorSpace& Shading() const { return *mShading; }

    /// The inputs of the function: 1, or 0 where there is none.
    [[nodiscard]] std::int32_t InputCount() const {
        return mShading->GetFunction() == nullptr ? 0 : 1;
    }

    /// How many values of a vertex count.
    [[nodiscard]] std::size_t ValueCount() const {
        return static_cast<std::size_t>(mLayout.components);
    }

    /// The values between which those of the first component lie.
    [[nodiscard]] const float* Domain() const { return mDecode.data() + 4; }

    /// Hands on all triangles or patches; Coons patches as the tensor-product patches that they
    /// are.
    void Visit(MeshSink& sink) const;

private:
    Mesh() = default;

    void VisitTriangles(MeshSink& sink) const;
    void VisitLattice(MeshSink& sink) const;
    void VisitPatches(MeshSink& sink) const;
    [[nodiscard]] ShadingPoint PointAt(std::span<const std::uint32_t> coordinates,
                                       std::size_t index) const;
    [[nodiscard]] ShadingColors::Values ColorAt(std::span<const std::uint32_t> colors,
                                                std::size_t index) const;

    [[nodiscard]] MeshVertex VertexOf(const HOST::MeshRecord& record) const {
        return {PointAt(record.coordinates, 0), ColorAt(record.colors, 0)};
    }

    const COLOR::IMeshShadingColorSpace* mShading = nullptr;
    HOST::MeshLayout mLayout;
    std::span<const float> mDecode;
    std::span<const std::uint8_t> mData;
};

/// The mean of all colours of a mesh, in host form, or the colour of the mean input.
std::optional<ShadingColors::Values> MiddleColor(const Mesh& mesh);

}  // namespace VANTIX::PDF
