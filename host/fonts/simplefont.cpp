// SPDX-License-Identifier: MIT
#include "host/fonts/simplefont.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <utility>

#include "host/fonts/glyphnames.h"

namespace VANTIX::HOST {
namespace {

constexpr float kUnknown = -1.0F;
constexpr std::int32_t kSpaceCode = 32;
/// How far apart, in ems, the end of a string may be by the font's widths and by the document's.
constexpr double kMostDeviation = 0.01;

/// Also false for NaN.
bool IsKnown(float width) {
    return width >= 0.0F && std::isfinite(width);
}

}  // namespace

SimpleFont::SimpleFont(GRAPHICS::TFontType type, SimpleFontDescription description)
    : mType(type), mDescription(std::move(description)) {
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

GRAPHICS::TFontType SimpleFont::GetFontType() const {
    return mType;
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
    double deviation = 0;
    bool isUnknown = false;
    for (std::int32_t i = 0; i < length; ++i) {
        const float wanted = WidthAt(codes[i]);
        isUnknown |= !IsKnown(mWritten[codes[i]]) && IsKnown(mDescription.widths[codes[i]]);
        deviation += IsKnown(mWritten[codes[i]]) ? wanted - mWritten[codes[i]] : 0.0F;
    }
    if (!isUnknown && std::abs(deviation) <= kMostDeviation) {
        return false;
    }
    for (std::int32_t i = 0; i < length; ++i) {
        w0[i] = codes[i] == kSpaceCode ? -WidthAt(codes[i]) : WidthAt(codes[i]);
        w1[i] = 0.0F;
    }
    *count = length;
    return true;
}

std::int32_t SimpleFont::GetSpaceCharCode() const {
    return kSpaceCode;
}

bool SimpleFont::Less(const GRAPHICS::IFontPackageHandler& other) const {
    // Fonts of other classes have no number that could be asked for; identity orders them all.
    return std::less<const GRAPHICS::IFontPackageHandler*>{}(this, &other);
}

const char* SimpleFont::GetName() const {
    return mDescription.name.c_str();
}

const GRAPHICS::EncodingDifference* SimpleFont::GetEncodingDifferences(std::int32_t& count) const {
    count = static_cast<std::int32_t>(mDifferences.size());
    return mDifferences.empty() ? nullptr : mDifferences.data();
}

GRAPHICS::TEncoding SimpleFont::GetEncoding() const {
    return mEncoding;
}

const char* SimpleFont::GetFamilyName() const {
    return mDescription.family.c_str();
}

const char* SimpleFont::GetNoticeString() const {
    return mDescription.notice.c_str();
}

const char* SimpleFont::GetVersionString() const {
    return mDescription.version.c_str();
}

float SimpleFont::GetItalicAngle() const {
    return mDescription.italicAngle;
}

bool SimpleFont::IsFixedPitch() const {
    return mDescription.isFixedPitch;
}

float SimpleFont::GetUnderlinePosition() const {
    return mDescription.underlinePosition;
}

float SimpleFont::GetUnderlineThickness() const {
    return mDescription.underlineThickness;
}

GRAPHICS::FontBox SimpleFont::GetFontBBox() const {
    return mDescription.box;
}

bool SimpleFont::IsBold() const {
    return mDescription.isBold;
}

float SimpleFont::GetHorizontalStemWidth() const {
    return mDescription.horizontalStem;
}

float SimpleFont::GetVerticalStemWidth() const {
    return mDescription.verticalStem;
}

}  // namespace VANTIX::HOST
