// SPDX-License-Identifier: MIT
#include "host/fonts/documentfont.h"

#include <cmath>
#include <functional>

namespace VANTIX::HOST {
namespace {

constexpr std::int32_t kSpaceCode = 32;
/// How far apart, in ems, the end of a string may be by the font's advances and by the document's.
constexpr double kMostDeviation = 0.01;

}  // namespace

bool DocumentFont::Deviates(const std::uint8_t* text, std::int32_t length) const {
    const std::size_t step = CodeBytes();
    double deviation = 0;
    for (std::size_t i = 0; i + step <= static_cast<std::size_t>(length); i += step) {
        const auto code =
            static_cast<std::uint16_t>(step == 1 ? text[i] : text[i] << 8U | text[i + 1]);
        const std::optional<float> written = WrittenAdvanceAt(code);
        if (!written) {
            return true;
        }
        deviation += static_cast<double>(AdvanceAt(code) - *written);
    }
    return std::abs(deviation) > kMostDeviation;
}

GRAPHICS::TFontType DocumentFont::GetFontType() const {
    return mType;
}

std::int32_t DocumentFont::GetSpaceCharCode() const {
    return kSpaceCode;
}

bool DocumentFont::Less(const GRAPHICS::IFontPackageHandler& other) const {
    // Fonts of other classes have no number that could be asked for; identity orders them all.
    return std::less<const GRAPHICS::IFontPackageHandler*>{}(this, &other);
}

const char* DocumentFont::GetName() const {
    return Traits().name.c_str();
}

const char* DocumentFont::GetFamilyName() const {
    return Traits().family.c_str();
}

const char* DocumentFont::GetNoticeString() const {
    return Traits().notice.c_str();
}

const char* DocumentFont::GetVersionString() const {
    return Traits().version.c_str();
}

float DocumentFont::GetItalicAngle() const {
    return Traits().italicAngle;
}

bool DocumentFont::IsFixedPitch() const {
    return Traits().isFixedPitch;
}

float DocumentFont::GetUnderlinePosition() const {
    return Traits().underlinePosition;
}

float DocumentFont::GetUnderlineThickness() const {
    return Traits().underlineThickness;
}

GRAPHICS::FontBox DocumentFont::GetFontBBox() const {
    return Traits().box;
}

bool DocumentFont::IsBold() const {
    return Traits().isBold;
}

float DocumentFont::GetHorizontalStemWidth() const {
    return Traits().horizontalStem;
}

float DocumentFont::GetVerticalStemWidth() const {
    return Traits().verticalStem;
}

}  // namespace VANTIX::HOST
