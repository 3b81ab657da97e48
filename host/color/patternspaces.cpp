// SPDX-License-Identifier: MIT
#include "host/color/patternspaces.h"

#include <algorithm>
#include <span>
#include <utility>

#include "core/color/ipatterncolorspaces.h"
#include "host/color/spaces.h"

namespace VANTIX::HOST {

namespace {

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

ColorSpacePtr MakeShadingPattern(const ColorSpacePtr& shading, const std::array<float, 6>& matrix) {
    return shading ? ColorSpacePtr(MakeObject<ShadingPattern>(shading, matrix)) : nullptr;
}

}  // namespace VANTIX::HOST
