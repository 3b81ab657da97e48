// SPDX-License-Identifier: MIT
#include "host/fonts/simplefont.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "host/fonts/glyphnames.h"

namespace VANTIX::HOST {
namespace {

constexpr float kUnknown = -1.0F;
constexpr std::uint8_t kSpaceCode = 32;

/// Also false for NaN.
bool IsKnown(float width) {
    return width >= 0.0F && std::isfinite(width);
}

}  // namespace

SimpleFontDescription Sanitised(SimpleFontDescription description) {
    description.name = SanitiseGlyphName(description.name);
    for (std::string& name : description.encoding) {
        name = SanitiseGlyphName(name);
    }
    return description;
}

SimpleFont::SimpleFont(GRAPHICS::TFontType type, SimpleFontDescription description)
    : DocumentFont(type), mDescription(std::move(description)) {
    mWritten.fill(kUnknown);
    const auto& names = mDescription.encoding;
    for (std::size_t code = 0; code < kSimpleCodes; ++code) {
        if (!names[code].empty()) {
            mDifferences.push_back({static_cast<std::int32_t>(code), names[code].c_str()});
        }
    }
    const auto& standard = NamesOf(BaseEncoding::kStandard);
    if (std::equal(names.begin(), names.end(), standard.begin())) {
        mEncoding = GRAPHICS::TEncoding::kStandard;
    }
}

void SimpleFont::TakeWidths(const SimpleProgram& program) {
    for (std::size_t code = 0; code < kSimpleCodes; ++code) {
        const std::string& name = mDescription.encoding[code];
        mWritten[code] = program.WidthOf(name.empty() ? ".notdef" : name);
    }
}

float SimpleFont::WidthAt(std::uint8_t code) const {
    const float width = mDescription.widths[code];
    if (IsKnown(width)) {
        return width;
    }
    return IsKnown(mWritten[code]) ? mWritten[code] : 0.0F;
}

float SimpleFont::AdvanceAt(std::uint16_t code) const {
    return WidthAt(static_cast<std::uint8_t>(code));
}

std::optional<float> SimpleFont::WrittenAdvanceAt(std::uint16_t code) const {
    const float width = WrittenWidthAt(static_cast<std::uint8_t>(code));
    return IsKnown(width) ? std::optional(width) : std::nullopt;
}

GRAPHICS::TEncoding SimpleFont::GetCIDEncoding() const {
    return GRAPHICS::TEncoding::kCustom;
}

bool SimpleFont::ReEncodeText(const void* text, std::int32_t length, std::uint8_t* codes,
                              std::int32_t* codeLength) const {
    if (text == nullptr || length < 0) {
        return false;
    }
    std::memcpy(codes, text, static_cast<std::size_t>(length));
    *codeLength = length;
    return true;
}

bool SimpleFont::GetAdvances(const void* text, std::int32_t length, float* w0, float* w1,
                             std::int32_t* count) const {
    if (text == nullptr || length < 1 || length > *count) {
        return false;
    }
    const auto* codes = static_cast<const std::uint8_t*>(text);
    if (!Deviates(codes, length) || !LeadsOn(codes, length)) {
        return false;
    }
    for (std::int32_t i = 0; i < length; ++i) {
        w0[i] = codes[i] == kSpaceCode ? -AdvanceAt(codes[i]) : AdvanceAt(codes[i]);
        w1[i] = 0.0F;
    }
    *count = length;
    return true;
}

const GRAPHICS::EncodingDifference* SimpleFont::GetEncodingDifferences(std::int32_t& count) const {
    count = static_cast<std::int32_t>(mDifferences.size());
    return mDifferences.empty() ? nullptr : mDifferences.data();
}

GRAPHICS::TEncoding SimpleFont::GetEncoding() const {
    return mEncoding;
}

}  // namespace VANTIX::HOST
