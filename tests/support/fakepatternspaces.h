// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstdint>

#include "core/color/ipatterncolorspaces.h"
#include "support/fakecolorspaces.h"

namespace VANTIX::TEST {

class FakeTilePattern : public FakeColorSpace<COLOR::IPatternConnectionColorSpace,
                                              COLOR::IID_ITILEPATTERNCOLORSPACE> {
public:
    std::int32_t paintType = 1;
    TInterfacePtr<COLOR::IConnectionColorSpace> underlying;

    const GRAPHICS::IGraphic* GetPaintProc() const override { return nullptr; }

    std::int32_t GetPaintType() const override { return paintType; }

    std::int32_t GetTilingType() const override { return 1; }

    void GetBounds(float& x, float& y, float& width, float& height) const override {
        x = y = 0;
        width = height = 1;
    }

    float GetXStep() const override { return 1; }

    float GetYStep() const override { return 1; }

    void GetMatrix(float matrix[6]) const override { std::fill_n(matrix, 6, 0.0F); }

    COLOR::IConnectionColorSpace* GetUnderlyingSpace() const override { return underlying.Get(); }
};

class FakeShadingPattern : public FakeColorSpace<COLOR::IShadingPatternConnectionColorSpace,
                                                 COLOR::IID_ISHADINGPATTERNCOLORSPACE> {
public:
    COLOR::IConnectionColorSpace* GetShading() const override { return nullptr; }

    void GetMatrix(float matrix[6]) const override { std::fill_n(matrix, 6, 0.0F); }
};

/// What all fake shadings share.
template <class I, const GUID& kId>
class FakeShading : public FakeColorSpace<I, kId> {
public:
    TInterfacePtr<COLOR::IConnectionColorSpace> colours;
    TInterfacePtr<COLOR::IColorFunction> function;

    COLOR::IConnectionColorSpace* GetShadingSpace() const override { return colours.Get(); }

    const COLOR::IColorFunction* GetFunction() const override { return function.Get(); }

    const float* GetBackground(std::int32_t& /*count*/) const override { return nullptr; }

    bool GetBoundingBox(float* /*box*/) const override { return false; }
};

class FakeFunctionShading
    : public FakeShading<COLOR::IFunctionShadingColorSpace, COLOR::IID_IFUNCTIONSHADING> {
public:
    void GetDomain(float domain[4]) const override { std::fill_n(domain, 4, 0.0F); }

    void GetMatrix(float matrix[6]) const override { std::fill_n(matrix, 6, 0.0F); }
};

/// An axial or radial shading with `kCoordinates` coordinates.
template <class I, const GUID& kId, std::int32_t kCoordinates>
class FakeGradient : public FakeShading<I, kId> {
public:
    void GetDomain(float domain[2]) const override { std::fill_n(domain, 2, 0.0F); }

    void GetExtend(bool& start, bool& end) const override { start = end = false; }

    void GetCoordinates(float* coordinates) const override {
        std::fill_n(coordinates, kCoordinates, 0.0F);
    }
};

using FakeAxialShading =
    FakeGradient<COLOR::IAxialShadingPatternColorSpace, COLOR::IID_IAXIALSHADING, 4>;
using FakeRadialShading =
    FakeGradient<COLOR::IRadialShadingPatternColorSpace, COLOR::IID_IRADIALSHADING, 6>;

template <class I, const GUID& kId>
class FakeMeshShading : public FakeShading<I, kId> {
public:
    const std::uint8_t* GetMeshData(std::int32_t& size) const override {
        size = 0;
        return nullptr;
    }

    bool ConvertMeshData(const COLOR::IConnectionColorSpace& /*destination*/,
                         COLOR::TRenderingIntent /*first*/, COLOR::TRenderingIntent /*second*/,
                         std::uint8_t* /*out*/, std::int32_t* /*size*/) const override {
        return false;
    }

    std::int32_t GetBitsPerFlag() const override { return 8; }

    std::int32_t GetBitsPerCoordinate() const override { return 8; }

    std::int32_t GetBitsPerComponent() const override { return 8; }

    const float* GetDecode(std::int32_t& count) const override {
        count = 0;
        return nullptr;
    }
};

using FakeFreeFormShading = FakeMeshShading<COLOR::IFreeFormTriangleMeshesShadingColorSpace,
                                            COLOR::IID_IFREEFORMMESHSHADING>;

class FakeLatticeShading
    : public FakeMeshShading<COLOR::ILatticeFormTriangleMeshesShadingColorSpace,
                             COLOR::IID_ILATTICEMESHSHADING> {
public:
    std::int32_t GetVerticesPerRow() const override { return 2; }
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
