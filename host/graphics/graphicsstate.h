// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "core/color/iconnectioncolorspace.h"
#include "core/graphics/igraphicsstate.h"
#include "core/object/tinterfaceptr.h"
#include "core/object/tobject.h"
#include "host/export.h"

namespace VANTIX::HOST {

/// A current colour: the space, its number in the connection space, and values in host form.
struct CurrentColor {
    TInterfacePtr<COLOR::IConnectionColorSpace> space;
    ResourceId id = 0;
    std::array<float, COLOR::kMaxComponents> values{};
    std::int32_t count = 0;
};

/// All parameters of one level. Starts as a PDF page starts: DeviceGray black, opaque, Normal.
struct GraphicsParameters {
    CurrentColor fill;
    CurrentColor stroke;
    float fillAlpha = 1.0F;
    float strokeAlpha = 1.0F;
    GRAPHICS::TBlendMode blendMode = GRAPHICS::TBlendMode::kNormal;
    bool alphaIsShape = false;
    bool textKnockout = true;
    bool fillOverprint = false;
    bool strokeOverprint = false;
    std::int32_t overprintMode = 0;
    COLOR::TRenderingIntent intent = COLOR::TRenderingIntent::kRelativeColorimetric;
    COLOR::TRenderingIntent intent2 = COLOR::TRenderingIntent::kRelativeColorimetric;
    TInterfacePtr<IObject> softMaskHolder;
    float charSpacing = 0.0F;
    float wordSpacing = 0.0F;
    float horizontalScaling = 1.0F;
    float leading = 0.0F;
    const char* fontName = "";  // borrowed of a font, which lives as long as the job
    std::int32_t fontSelector = 0;
    float fontSize = 0.0F;
    GRAPHICS::IGraphicsState::TTextRendering textRendering =
        GRAPHICS::IGraphicsState::TTextRendering::kFill;
};

/// The host's graphics state: one stable object whose getters read the top of its own stack.
class NORVANE_HOST_API GraphicsState : public TObject<GRAPHICS::IGraphicsState> {
public:
    /// Starts with one level in DeviceGray black (`gray` may be null: then without a space).
    explicit GraphicsState(TInterfacePtr<COLOR::IConnectionColorSpace> gray);

    /// The level in force, to be changed in place.
    GraphicsParameters& Current() { return mLevels.back(); }

    [[nodiscard]] const GraphicsParameters& Current() const { return mLevels.back(); }

    /// The level that lies `levels` below the one in force; there must be as many.
    [[nodiscard]] const GraphicsParameters& Below(std::size_t levels) const {
        return mLevels[mLevels.size() - 1 - levels];
    }

    /// False (nothing pushed) beyond `kMaxLevels`.
    bool Push();

    /// False (nothing popped) when only the first level is left.
    bool Pop();

    [[nodiscard]] std::size_t Depth() const { return mLevels.size() - 1; }

    static constexpr std::size_t kMaxLevels = 512;

    float GetAlpha(bool fill) const override;
    GRAPHICS::TBlendMode GetBlendMode() const override;
    bool GetAlphaIsShape() const override;
    bool GetTextKnockout() const override;
    bool GetOverprint(bool fill) const override;
    std::int32_t GetOverprintMode() const override;
    ResourceId GetColorSpaceID(bool fill) const override;
    COLOR::IConnectionColorSpace* GetColorSpace(bool fill) const override;
    void GetColor(bool fill, float* values, std::int32_t count) const override;
    COLOR::TRenderingIntent GetRenderingIntent() const override;
    COLOR::TRenderingIntent GetRenderingIntent2() const override;
    IObject* GetSoftMaskHolder() const override;
    float GetCharSpacing() const override;
    float GetWordSpacing() const override;
    float GetHorizontalScaling() const override;
    float GetTextLeading() const override;
    const char* GetFontName() const override;
    std::int32_t GetFontSelector() const override;
    float GetFontSize() const override;
    TTextRendering GetTextRendering() const override;

private:
    std::vector<GraphicsParameters> mLevels;
};

}  // namespace VANTIX::HOST
