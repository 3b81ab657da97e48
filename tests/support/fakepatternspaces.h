// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "core/color/ipatterncolorspaces.h"
#include "core/graphics/iconnectionspace.h"
#include "core/graphics/igraphic.h"
#include "support/fakecolorspaces.h"

namespace VANTIX::TEST {

/// What a test tells it to draw.
class FakeCell : public TObject<GRAPHICS::IGraphic> {
public:
    std::function<void(GRAPHICS::IConnectionSpace&)> draw;
    Status status = STATUS::kOk;

    Status PlayTo(GRAPHICS::IConnectionSpace& space) const override {
        if (draw) {
            draw(space);
        }
        return status;
    }
};

/// A cell of 10 by 10 without gaps, in the space of the page.
class FakeTilePattern : public FakeColorSpace<COLOR::IPatternConnectionColorSpace,
                                              COLOR::IID_ITILEPATTERNCOLORSPACE> {
public:
    std::int32_t paintType = 1;
    std::array<float, 4> bounds{0, 0, 10, 10};
    std::array<float, 2> steps{10, 10};
    std::array<float, 6> matrix{1, 0, 0, 1, 0, 0};
    TInterfacePtr<COLOR::IConnectionColorSpace> underlying;
    TInterfacePtr<FakeCell> cell;

    const GRAPHICS::IGraphic* GetPaintProc() const override { return cell.Get(); }

    std::int32_t GetPaintType() const override { return paintType; }

    std::int32_t GetTilingType() const override { return 1; }

    void GetBounds(float& x, float& y, float& width, float& height) const override {
        x = bounds[0];
        y = bounds[1];
        width = bounds[2];
        height = bounds[3];
    }

    float GetXStep() const override { return steps[0]; }

    float GetYStep() const override { return steps[1]; }

    void GetMatrix(float out[6]) const override { std::copy_n(matrix.begin(), 6, out); }

    COLOR::IConnectionColorSpace* GetUnderlyingSpace() const override { return underlying.Get(); }
};

class FakeShadingPattern : public FakeColorSpace<COLOR::IShadingPatternConnectionColorSpace,
                                                 COLOR::IID_ISHADINGPATTERNCOLORSPACE> {
public:
    std::array<float, 6> matrix{1, 0, 0, 1, 0, 0};
    TInterfacePtr<COLOR::IConnectionColorSpace> shading;

    COLOR::IConnectionColorSpace* GetShading() const override { return shading.Get(); }

    void GetMatrix(float out[6]) const override { std::copy_n(matrix.begin(), 6, out); }
};

/// What all fake shadings share.
template <class I, const GUID& kId>
class FakeShading : public FakeColorSpace<I, kId> {
public:
    TInterfacePtr<COLOR::IConnectionColorSpace> colours;
    TInterfacePtr<COLOR::IColorFunction> function;

    COLOR::IConnectionColorSpace* GetShadingSpace() const override { return colours.Get(); }

    const COLOR::IColorFunction* GetFunction() const override { return function.Get(); }

    /// In host form; empty: none.
    std::vector<float> background;
    std::optional<std::array<float, 4>> box;

    const float* GetBackground(std::int32_t& count) const override {
        count = static_cast<std::int32_t>(background.size());
        return background.empty() ? nullptr : background.data();
    }

    bool GetBoundingBox(float* out) const override {
        if (box) {
            std::copy(box->begin(), box->end(), out);
        }
        return box.has_value();
    }
};

class FakeFunctionShading
    : public FakeShading<COLOR::IFunctionShadingColorSpace, COLOR::IID_IFUNCTIONSHADING> {
public:
    std::array<float, 4> domain{0, 1, 0, 1};
    std::array<float, 6> matrix{1, 0, 0, 1, 0, 0};

    void GetDomain(float out[4]) const override { std::copy(domain.begin(), domain.end(), out); }

    void GetMatrix(float out[6]) const override { std::copy(matrix.begin(), matrix.end(), out); }
};

/// An axial or radial shading with `kCoordinates` coordinates.
template <class I, const GUID& kId, std::int32_t kCoordinates>
class FakeGradient : public FakeShading<I, kId> {
public:
    std::array<float, 2> domain{0, 1};
    bool extendStart = false;
    bool extendEnd = false;
    std::array<float, kCoordinates> coordinates{};

    void GetDomain(float out[2]) const override { std::copy(domain.begin(), domain.end(), out); }

    void GetExtend(bool& start, bool& end) const override {
        start = extendStart;
        end = extendEnd;
    }

    void GetCoordinates(float* out) const override {
        std::copy(coordinates.begin(), coordinates.end(), out);
    }
};

using FakeAxialShading =
    FakeGradient<COLOR::IAxialShadingPatternColorSpace, COLOR::IID_IAXIALSHADING, 4>;
using FakeRadialShading =
    FakeGradient<COLOR::IRadialShadingPatternColorSpace, COLOR::IID_IRADIALSHADING, 6>;

/// Fields of 8 bits.
template <class I, const GUID& kId>
class FakeMeshShading : public FakeShading<I, kId> {
public:
    std::vector<std::uint8_t> data;
    /// What it becomes in another space; empty: it cannot be converted.
    std::vector<std::uint8_t> converted;
    std::vector<float> decode;
    std::int32_t bitsPerCoordinate = 8;

    const std::uint8_t* GetMeshData(std::int32_t& size) const override {
        size = static_cast<std::int32_t>(data.size());
        return data.data();
    }

    bool ConvertMeshData(const COLOR::IConnectionColorSpace& /*destination*/,
                         COLOR::TRenderingIntent /*first*/, COLOR::TRenderingIntent /*second*/,
                         std::uint8_t* out, std::int32_t* size) const override {
        *size = static_cast<std::int32_t>(converted.size());
        if (out != nullptr) {
            std::copy(converted.begin(), converted.end(), out);
        }
        return !converted.empty();
    }

    std::int32_t GetBitsPerFlag() const override { return 8; }

    std::int32_t GetBitsPerCoordinate() const override { return bitsPerCoordinate; }

    std::int32_t GetBitsPerComponent() const override { return 8; }

    const float* GetDecode(std::int32_t& count) const override {
        count = static_cast<std::int32_t>(decode.size());
        return decode.empty() ? nullptr : decode.data();
    }
};

using FakeFreeFormShading = FakeMeshShading<COLOR::IFreeFormTriangleMeshesShadingColorSpace,
                                            COLOR::IID_IFREEFORMMESHSHADING>;

class FakeLatticeShading
    : public FakeMeshShading<COLOR::ILatticeFormTriangleMeshesShadingColorSpace,
                             COLOR::IID_ILATTICEMESHSHADING> {
public:
    std::int32_t verticesPerRow = 2;

    std::int32_t GetVerticesPerRow() const override { return verticesPerRow; }
};

class FakeTensorShading
    : public FakeMeshShading<COLOR::ITensorShadingPatternColorSpace, COLOR::IID_ITENSORSHADING> {
public:
    bool coons = false;

    Status QueryInterface(const GUID& id, void** out) override {
        if (coons && id == COLOR::IID_ICOONSPATCHMARKER) {
            *out = static_cast<IObject*>(this);
            return STATUS::kOk;
        }
        return FakeMeshShading::QueryInterface(id, out);
    }
};

}  // namespace VANTIX::TEST
