// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include "core/color/iconnectioncolorspace.h"
#include "core/graphics/igraphicsstate.h"
#include "core/object/tinterfaceptr.h"
#include "core/object/tobject.h"

namespace VANTIX::TEST {

/// The host's graphics state of the moment, set by the test. Fill and stroke share their colour.
class FakeGraphicsState : public TObject<GRAPHICS::IGraphicsState> {
public:
    float fillAlpha = 1;
    float strokeAlpha = 1;
    GRAPHICS::TBlendMode blendMode = GRAPHICS::TBlendMode::kNormal;
    bool alphaIsShape = false;
    bool textKnockout = true;
    TInterfacePtr<IObject> softMaskHolder;
    bool fillOverprint = false;
    bool strokeOverprint = false;
    std::int32_t overprintMode = 0;
    ResourceId spaceId = 0;
    TInterfacePtr<COLOR::IConnectionColorSpace> space;
    /// In host form.
    std::vector<float> color;
    COLOR::TRenderingIntent intent = COLOR::TRenderingIntent::kRelativeColorimetric;
    COLOR::TRenderingIntent intent2 = COLOR::TRenderingIntent::kSaturation;

    float GetAlpha(bool fill) const override { return fill ? fillAlpha : strokeAlpha; }

    GRAPHICS::TBlendMode GetBlendMode() const override { return blendMode; }

    bool GetAlphaIsShape() const override { return alphaIsShape; }

    bool GetTextKnockout() const override { return textKnockout; }

    bool GetOverprint(bool fill) const override { return fill ? fillOverprint : strokeOverprint; }

    std::int32_t GetOverprintMode() const override { return overprintMode; }

    ResourceId GetColorSpaceID(bool /*fill*/) const override { return spaceId; }

    COLOR::IConnectionColorSpace* GetColorSpace(bool /*fill*/) const override {
        return space.Get();
    }

    void GetColor(bool /*fill*/, float* values, std::int32_t count) const override {
        const auto wanted = static_cast<std::size_t>(count);
        std::fill_n(values, wanted, 0.0F);
        std::copy_n(color.begin(), std::min(wanted, color.size()), values);
    }

    COLOR::TRenderingIntent GetRenderingIntent() const override { return intent; }

    COLOR::TRenderingIntent GetRenderingIntent2() const override { return intent2; }

    IObject* GetSoftMaskHolder() const override { return softMaskHolder.Get(); }

    float GetCharSpacing() const override { return 0; }

    float GetWordSpacing() const override { return 0; }

    float GetHorizontalScaling() const override { return 1; }

    float GetTextLeading() const override { return 0; }

    const char* GetFontName() const override { return ""; }

    std::int32_t GetFontSelector() const override { return 0; }

    float GetFontSize() const override { return 0; }

    TTextRendering GetTextRendering() const override { return TTextRendering::kFill; }
};

}  // namespace VANTIX::TEST
