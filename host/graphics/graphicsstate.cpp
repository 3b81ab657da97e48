// SPDX-License-Identifier: MIT
#include "host/graphics/graphicsstate.h"

#include <algorithm>

namespace VANTIX::HOST {

namespace {

constexpr std::size_t kFirstLevels = 16;

const CurrentColor& ColorOf(const GraphicsParameters& level, bool fill) {
    return fill ? level.fill : level.stroke;
}

}  // namespace

GraphicsState::GraphicsState(TInterfacePtr<COLOR::IConnectionColorSpace> gray) {
    mLevels.reserve(kFirstLevels);
    mLevels.emplace_back();
    CurrentColor& black = Current().fill;
    black.space = std::move(gray);
    if (black.space) {
        black.id = "gray"_cc;
        black.count = 1;
    }
    Current().stroke = black;
}

bool GraphicsState::Push() {
    if (Depth() >= kMaxLevels) {
        return false;
    }
    mLevels.push_back(mLevels.back());
    return true;
}

bool GraphicsState::Pop() {
    if (Depth() == 0) {
        return false;
    }
    mLevels.pop_back();
    return true;
}

float GraphicsState::GetAlpha(bool fill) const {
    return fill ? Current().fillAlpha : Current().strokeAlpha;
}

GRAPHICS::TBlendMode GraphicsState::GetBlendMode() const {
    return Current().blendMode;
}

bool GraphicsState::GetAlphaIsShape() const {
    return Current().alphaIsShape;
}

bool GraphicsState::GetTextKnockout() const {
    return Current().textKnockout;
}

bool GraphicsState::GetOverprint(bool fill) const {
    return fill ? Current().fillOverprint : Current().strokeOverprint;
}

std::int32_t GraphicsState::GetOverprintMode() const {
    return Current().overprintMode;
}

ResourceId GraphicsState::GetColorSpaceID(bool fill) const {
    return ColorOf(Current(), fill).id;
}

COLOR::IConnectionColorSpace* GraphicsState::GetColorSpace(bool fill) const {
    return ColorOf(Current(), fill).space.Get();
}

void GraphicsState::GetColor(bool fill, float* values, std::int32_t count) const {
    if (values == nullptr || count <= 0) {
        return;
    }
    const CurrentColor& color = ColorOf(Current(), fill);
    const auto known = std::min(count, std::clamp(color.count, 0, COLOR::kMaxComponents));
    std::fill(std::copy_n(color.values.begin(), known, values), values + count, 0.0F);
}

COLOR::TRenderingIntent GraphicsState::GetRenderingIntent() const {
    return Current().intent;
}

COLOR::TRenderingIntent GraphicsState::GetRenderingIntent2() const {
    return Current().intent2;
}

IObject* GraphicsState::GetSoftMaskHolder() const {
    return Current().softMaskHolder.Get();
}

float GraphicsState::GetCharSpacing() const {
    return Current().charSpacing;
}

float GraphicsState::GetWordSpacing() const {
    return Current().wordSpacing;
}

float GraphicsState::GetHorizontalScaling() const {
    return Current().horizontalScaling;
}

float GraphicsState::GetTextLeading() const {
    return Current().leading;
}

const char* GraphicsState::GetFontName() const {
    return Current().fontName;
}

std::int32_t GraphicsState::GetFontSelector() const {
    return Current().fontSelector;
}

float GraphicsState::GetFontSize() const {
    return Current().fontSize;
}

GraphicsState::TTextRendering GraphicsState::GetTextRendering() const {
    return Current().textRendering;
}

}  // namespace VANTIX::HOST
