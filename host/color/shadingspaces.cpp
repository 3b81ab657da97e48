// SPDX-License-Identifier: MIT
#include "host/color/shadingspaces.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <span>
#include <utility>

#include "core/color/ipatterncolorspaces.h"
#include "host/color/functionbase.h"
#include "host/color/outputvalues.h"
#include "host/color/spaces.h"

namespace VANTIX::HOST {

namespace {

using COLOR::IConnectionColorSpace;
using COLOR::TRenderingIntent;

Digest DigestOf(const ShadingDescription& shading) {
    Digest digest("shading");
    digest.Add(shading.space->GetIdentifier())
        .Add(shading.function.Get())
        .Add(std::span<const float>(shading.background));
    if (shading.box) {
        digest.Add(std::span<const float>(*shading.box));
    }
    return digest;
}

/// What all shadings answer.
template <class I>
class ShadingSpace : public SpaceBase<I> {
public:
    bool ToPCS(const float*, float[3], TRenderingIntent) const override { return false; }

    bool GetDefaultValues(float*, std::int32_t) const override { return false; }

    IConnectionColorSpace* GetShadingSpace() const override { return mShading.space.Get(); }

    const COLOR::IColorFunction* GetFunction() const override { return mShading.function.Get(); }

    const float* GetBackground(std::int32_t& count) const override {
        count = static_cast<std::int32_t>(mShading.background.size());
        return count == 0 ? nullptr : mShading.background.data();
    }

    bool GetBoundingBox(float box[4]) const override {
        if (mShading.box) {
            std::copy(mShading.box->begin(), mShading.box->end(), box);
        }
        return mShading.box.has_value();
    }

protected:
    /// A reference, so that the description can still be read for the identifier.
    ShadingSpace(const GUID& kind, const GUID& identifier, ShadingDescription&& shading)
        : SpaceBase<I>(kind, 0, identifier), mShading(std::move(shading)) {}

private:
    ShadingDescription mShading;
};

class FunctionShading : public ShadingSpace<COLOR::IFunctionShadingColorSpace> {
public:
    FunctionShading(ShadingDescription shading, const FunctionGeometry& geometry)
        : ShadingSpace(COLOR::IID_IFUNCTIONSHADING,
                       DigestOf(shading)
                           .Add(std::span<const float>(geometry.domain))
                           .Add(std::span<const float>(geometry.matrix))
                           .Identifier(),
                       std::move(shading)),
          mGeometry(geometry) {}

    void GetDomain(float domain[4]) const override {
        std::copy(mGeometry.domain.begin(), mGeometry.domain.end(), domain);
    }

    void GetMatrix(float matrix[6]) const override {
        std::copy(mGeometry.matrix.begin(), mGeometry.matrix.end(), matrix);
    }

private:
    FunctionGeometry mGeometry;
};

/// Axial and radial shadings differ in their coordinates alone.
template <class I, std::size_t N>
class GradientShading : public ShadingSpace<I> {
public:
    GradientShading(const GUID& kind, ShadingDescription shading,
                    const GradientGeometry<N>& geometry)
        : ShadingSpace<I>(
              kind,
              DigestOf(shading)
                  .Add(std::span<const float>(geometry.coordinates))
                  .Add(std::span<const float>(geometry.domain))
                  .Add((geometry.extendsStart ? 1U : 0U) + (geometry.extendsEnd ? 2U : 0U))
                  .Identifier(),
              std::move(shading)),
          mGeometry(geometry) {}

    void GetDomain(float domain[2]) const override {
        std::copy(mGeometry.domain.begin(), mGeometry.domain.end(), domain);
    }

    void GetExtend(bool& start, bool& end) const override {
        start = mGeometry.extendsStart;
        end = mGeometry.extendsEnd;
    }

    void GetCoordinates(float coordinates[N]) const override {
        std::copy(mGeometry.coordinates.begin(), mGeometry.coordinates.end(), coordinates);
    }

private:
    GradientGeometry<N> mGeometry;
};

using AxialShading = GradientShading<COLOR::IAxialShadingPatternColorSpace, 4>;
using RadialShading = GradientShading<COLOR::IRadialShadingPatternColorSpace, 6>;

/// From the codes of a colour in a mesh to codes of another space.
class ColorCoder {
public:
    ColorCoder(const IConnectionColorSpace& source, const MeshGeometry& mesh,
               const IConnectionColorSpace& destination, TRenderingIntent first,
               TRenderingIntent second)
        : mSource(source),
          mDecode(mesh.decode.data() + 4),
          mDestination(destination),
          mFirst(first),
          mSecond(second),
          mMost(static_cast<float>(
              (1U << static_cast<std::uint32_t>(mesh.layout.bitsPerComponent)) - 1U)),
          mIsLab(FamilyOf(source) == "clab"_cc) {}

    bool operator()(const std::uint32_t* in, std::uint32_t* out) const {
        std::array<float, COLOR::kMaxComponents> values{};
        for (std::size_t i = 0; i < static_cast<std::size_t>(mSource.GetComponentCount()); ++i) {
            const auto [low, high] = Bounds(mDecode, i);
            const float value = low + (high - low) * static_cast<float>(in[i]) / mMost;
            values[i] = mIsLab ? value : ClipTo(value, 0.0F, 1.0F);
            values[i] = mSource.StoresComponentsInverted() ? 1.0F - values[i] : values[i];
        }
        float pcs[3];
        if (!mSource.ToPCS(values.data(), pcs, mFirst) ||
            !mDestination.FromPCS(pcs, values.data(), mSecond)) {
            return false;
        }
        for (std::size_t i = 0; i < static_cast<std::size_t>(mDestination.GetComponentCount());
             ++i) {
            const float value = ClipTo(values[i], 0.0F, 1.0F);
            out[i] = static_cast<std::uint32_t>(std::lround(
                mMost * (mDestination.StoresComponentsInverted() ? 1.0F - value : value)));
        }
        return true;
    }

private:
    const IConnectionColorSpace& mSource;
    const float* mDecode;
    const IConnectionColorSpace& mDestination;
    TRenderingIntent mFirst;
    TRenderingIntent mSecond;
    float mMost;
    bool mIsLab;
};

template <class I>
class MeshShading : public ShadingSpace<I> {
public:
    MeshShading(const GUID& kind, ShadingDescription shading, MeshGeometry mesh)
        : ShadingSpace<I>(kind,
                          DigestOf(shading)
                              .Add(LayoutDigest(mesh.layout))
                              .Add(std::span<const float>(mesh.decode))
                              .Add(std::span<const std::uint8_t>(mesh.data))
                              .Identifier(),
                          std::move(shading)),
          mMesh(std::move(mesh)) {}

    const std::uint8_t* GetMeshData(std::int32_t& size) const override {
        size = static_cast<std::int32_t>(mMesh.data.size());
        return mMesh.data.data();
    }

    /// Fills at most `*size` bytes, and then tells in it how many they are. The colours keep their
    /// bits and decode from 0 to 1. False for parametric values.
    bool ConvertMeshData(const IConnectionColorSpace& destination, TRenderingIntent first,
                         TRenderingIntent second, std::uint8_t* out,
                         std::int32_t* size) const override {
        const std::int32_t components = destination.GetComponentCount();
        if (size == nullptr || this->GetFunction() != nullptr || components < 1 ||
            components > COLOR::kMaxComponents) {
            return false;
        }
        const MeshColors colors{components, mMesh.layout.bitsPerComponent};
        const std::size_t bytes = RecodedMeshBytes(mMesh.layout, mMesh.data, colors);
        if (bytes > std::numeric_limits<std::int32_t>::max()) {
            return false;
        }
        if (out == nullptr) {
            *size = static_cast<std::int32_t>(bytes);
            return true;
        }
        try {
            const std::vector<std::uint8_t> mesh =
                RecodeMesh(mMesh.layout, mMesh.data, colors,
                           ColorCoder(*this->GetShadingSpace(), mMesh, destination, first, second));
            if (mesh.empty()) {
                return false;
            }
            *size = static_cast<std::int32_t>(
                std::min(mesh.size(), static_cast<std::size_t>(std::max(*size, 0))));
            std::copy_n(mesh.begin(), *size, out);
            return true;
        } catch (const std::bad_alloc&) {
            return false;
        }
    }

    std::int32_t GetBitsPerFlag() const override { return mMesh.layout.bitsPerFlag; }

    std::int32_t GetBitsPerCoordinate() const override { return mMesh.layout.bitsPerCoordinate; }

    std::int32_t GetBitsPerComponent() const override { return mMesh.layout.bitsPerComponent; }

    const float* GetDecode(std::int32_t& count) const override {
        count = static_cast<std::int32_t>(mMesh.decode.size());
        return mMesh.decode.data();
    }

protected:
    [[nodiscard]] const MeshLayout& Layout() const { return mMesh.layout; }

private:
    static GUID LayoutDigest(const MeshLayout& layout) {
        Digest digest("mesh");
        for (const std::int32_t number : {layout.type, layout.bitsPerFlag, layout.bitsPerCoordinate,
                                          layout.bitsPerComponent, layout.verticesPerRow}) {
            digest.Add(static_cast<std::uint32_t>(number));
        }
        return digest.Identifier();
    }

    MeshGeometry mMesh;
};

using TriangleShading = MeshShading<COLOR::IFreeFormTriangleMeshesShadingColorSpace>;

class LatticeShading : public MeshShading<COLOR::ILatticeFormTriangleMeshesShadingColorSpace> {
public:
    using MeshShading::MeshShading;

    std::int32_t GetVerticesPerRow() const override { return Layout().verticesPerRow; }
};

class PatchShading : public MeshShading<COLOR::ITensorShadingPatternColorSpace> {
public:
    using MeshShading::MeshShading;

    Status QueryInterface(const GUID& id, void** out) override {
        const bool isCoons = id == COLOR::IID_ICOONSPATCHMARKER && Layout().type == 6;
        return MeshShading::QueryInterface(isCoons ? COLOR::IID_ITENSORSHADING : id, out);
    }
};

/// `inputs` are those that the function needs; 0 where there is none.
bool CheckShading(const ShadingDescription& shading, std::int32_t inputs, std::string& error) {
    if (!shading.space || shading.space->GetComponentCount() < 1 ||
        shading.space->GetComponentCount() > COLOR::kMaxComponents) {
        error = "it has no colour space of use";
        return false;
    }
    const std::int32_t components = shading.space->GetComponentCount();
    if (inputs > 0 && (!shading.function || shading.function->GetInputCount() != inputs ||
                       shading.function->GetOutputCount() != components)) {
        error = "its function does not fit it";
        return false;
    }
    if (!AreFinite(shading.background) ||
        (!shading.background.empty() &&
         shading.background.size() != static_cast<std::size_t>(components))) {
        error = "its background is no colour of its space";
        return false;
    }
    // What writes a box leaves one without area out, and the shading would cover everything.
    if (shading.box) {
        const auto [x0, y0, x1, y1] = *shading.box;
        if (!(x0 < x1 && y0 < y1)) {
            error = "its bounding box has no area";
            return false;
        }
    }
    return true;
}

template <std::size_t N>
bool AreFinite(const std::array<float, N>& values) {
    return std::all_of(values.begin(), values.end(), [](float v) { return std::isfinite(v); });
}

template <std::size_t N>
bool CheckGradient(const GradientGeometry<N>& geometry, std::string& error) {
    if (!AreFinite(geometry.coordinates) || !AreFinite(geometry.domain) ||
        geometry.domain[0] == geometry.domain[1]) {
        error = "its coordinates or its domain are of no use";
        return false;
    }
    return true;
}

}  // namespace

ColorSpacePtr MakeFunctionShading(ShadingDescription shading, const FunctionGeometry& geometry,
                                  std::string& error) {
    const auto& [domain, matrix] = geometry;
    if (!AreFinite(domain) || !AreFinite(matrix) || domain[0] >= domain[1] ||
        domain[2] >= domain[3] || matrix[0] * matrix[3] == matrix[1] * matrix[2]) {
        error = "its domain or its matrix has no area";
        return nullptr;
    }
    if (!CheckShading(shading, 2, error)) {
        return nullptr;
    }
    return MakeObject<FunctionShading>(std::move(shading), geometry);
}

ColorSpacePtr MakeAxialShading(ShadingDescription shading, const AxialGeometry& geometry,
                               std::string& error) {
    if (!CheckGradient(geometry, error) || !CheckShading(shading, 1, error)) {
        return nullptr;
    }
    return MakeObject<AxialShading>(COLOR::IID_IAXIALSHADING, std::move(shading), geometry);
}

ColorSpacePtr MakeRadialShading(ShadingDescription shading, const RadialGeometry& geometry,
                                std::string& error) {
    if (!CheckGradient(geometry, error) || !CheckShading(shading, 1, error)) {
        return nullptr;
    }
    if (geometry.coordinates[2] < 0.0F || geometry.coordinates[5] < 0.0F) {
        error = "a radius is negative";
        return nullptr;
    }
    return MakeObject<RadialShading>(COLOR::IID_IRADIALSHADING, std::move(shading), geometry);
}

ColorSpacePtr MakeMeshShading(ShadingDescription shading, MeshGeometry geometry,
                              std::string& error) {
    if (!CheckShading(shading, shading.function ? 1 : 0, error)) {
        return nullptr;
    }
    const MeshLayout& layout = geometry.layout;
    const std::int32_t components = shading.function ? 1 : shading.space->GetComponentCount();
    if (!IsMeshLayout(layout) || layout.components != components || !AreFinite(geometry.decode) ||
        geometry.decode.size() != 4 + 2 * static_cast<std::size_t>(components)) {
        error = "the layout of its mesh is of no use";
        return nullptr;
    }
    if (geometry.data.empty() || geometry.data.size() > std::numeric_limits<std::int32_t>::max() ||
        WholeMeshBytes(layout, geometry.data) != geometry.data.size()) {
        error = "its mesh is empty or not whole";
        return nullptr;
    }
    switch (layout.type) {
        case 4:
            return MakeObject<TriangleShading>(COLOR::IID_IFREEFORMMESHSHADING, std::move(shading),
                                               std::move(geometry));
        case 5:
            return MakeObject<LatticeShading>(COLOR::IID_ILATTICEMESHSHADING, std::move(shading),
                                              std::move(geometry));
        default:
            return MakeObject<PatchShading>(COLOR::IID_ITENSORSHADING, std::move(shading),
                                            std::move(geometry));
    }
}

}  // namespace VANTIX::HOST
