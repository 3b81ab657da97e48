// SPDX-License-Identifier: MIT
#include "host/color/patternspaces.h"

#include <algorithm>
#include <exception>
#include <span>
#include <utility>

#include "core/color/ipatterncolorspaces.h"
#include "core/graphics/igraphic.h"
#include "host/color/spaces.h"
#include "host/graphics/baseconnectionspace.h"

namespace VANTIX::HOST {

namespace {

/// What draws itself by a function.
class PlayedGraphic : public TObject<GRAPHICS::IGraphic> {
public:
    explicit PlayedGraphic(std::function<void(BaseConnectionSpace&)> play)
        : mPlay(std::move(play)) {}

    Status PlayTo(GRAPHICS::IConnectionSpace& space) const override {
        BaseConnectionSpace* base = BaseConnectionSpace::From(&space);
        if (base == nullptr || !mPlay) {
            return STATUS::kInvalidArgument;
        }
        try {
            mPlay(*base);
        } catch (const std::exception&) {
            return STATUS::kOutOfMemory;
        }
        return STATUS::kOk;
    }

private:
    std::function<void(BaseConnectionSpace&)> mPlay;
};

class TilingPatternSpace : public SpaceBase<COLOR::IPatternConnectionColorSpace> {
public:
    explicit TilingPatternSpace(TilingPattern pattern)
        : SpaceBase(COLOR::IID_ITILEPATTERNCOLORSPACE, 0,
                    Digest("tiling pattern").Add(pattern.number).Identifier()),
          mPattern(std::move(pattern)),
          mCell(MakeObject<PlayedGraphic>(std::move(mPattern.play))) {}

    bool ToPCS(const float*, float[3], COLOR::TRenderingIntent) const override { return false; }

    const GRAPHICS::IGraphic* GetPaintProc() const override { return mCell.Get(); }

    std::int32_t GetPaintType() const override { return mPattern.paintType; }

    std::int32_t GetTilingType() const override { return mPattern.tilingType; }

    void GetBounds(float& x, float& y, float& width, float& height) const override {
        x = mPattern.bounds[0];
        y = mPattern.bounds[1];
        width = mPattern.bounds[2];
        height = mPattern.bounds[3];
    }

    float GetXStep() const override { return mPattern.xStep; }

    float GetYStep() const override { return mPattern.yStep; }

    void GetMatrix(float matrix[6]) const override {
        std::copy(mPattern.matrix.begin(), mPattern.matrix.end(), matrix);
    }

    COLOR::IConnectionColorSpace* GetUnderlyingSpace() const override {
        return mPattern.underlying.Get();
    }

private:
    TilingPattern mPattern;
    TInterfacePtr<PlayedGraphic> mCell;
};

class ShadingPattern : public SpaceBase<COLOR::IShadingPatternConnectionColorSpace> {
public:
    ShadingPattern(const ColorSpacePtr& shading, const std::array<float, 6>& matrix)
        : SpaceBase(COLOR::IID_ISHADINGPATTERNCOLORSPACE, 0,
                    Digest("shading pattern")
                        .Add(shading->GetIdentifier())
                        .Add(std::span<const float>(matrix))
                        .Identifier()),
          mShading(shading),
          mMatrix(matrix) {}

    bool ToPCS(const float*, float[3], COLOR::TRenderingIntent) const override { return false; }

    COLOR::IConnectionColorSpace* GetShading() const override { return mShading.Get(); }

    void GetMatrix(float matrix[6]) const override {
        std::copy(mMatrix.begin(), mMatrix.end(), matrix);
    }

private:
    ColorSpacePtr mShading;
    std::array<float, 6> mMatrix;
};

}  // namespace

ColorSpacePtr MakeTilingPattern(TilingPattern pattern) {
    return MakeObject<TilingPatternSpace>(std::move(pattern));
}

ColorSpacePtr MakeShadingPattern(const ColorSpacePtr& shading, const std::array<float, 6>& matrix) {
    return shading ? ColorSpacePtr(MakeObject<ShadingPattern>(shading, matrix)) : nullptr;
}

}  // namespace VANTIX::HOST
