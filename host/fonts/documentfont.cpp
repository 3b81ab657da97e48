// SPDX-License-Identifier: MIT
#include "host/fonts/documentfont.h"

#include <cmath>
#include <functional>

namespace VANTIX::HOST {
namespace {

constexpr std::int32_t kSpaceCode = 32;
/// How far apart, in ems, the end of a string may be by the font's advances and by the document's.
constexpr double kMostDeviation = 0.01;

/// Calls `take` with each code, for as long as it answers true; answers whether it did so to the
/// end.
template <class Take>
bool ForEachCode(const std::uint8_t* text, std::int32_t length, std::size_t step,
                 const Take& take) {
    for (std::size_t i = 0; i + step <= static_cast<std::size_t>(length); i += step) {
        if (!take(static_cast<std::uint16_t>(step == 1 ? text[i] : text[i] << 8U | text[i + 1]))) {
            return false;
        }
    }
    return true;
}

}  // namespace

bool DocumentFont::Deviates(const std::uint8_t* text, std::int32_t length) const {
    double deviation = 0;
    const bool areKnown = ForEachCode(text, length, CodeBytes(), [&](std::uint16_t code) {
        const std::optional<float> written = WrittenAdvanceAt(code);
        deviation += static_cast<double>(AdvanceAt(code) - written.value_or(0.0F));
        return written.has_value();
    });
    return !areKnown || std::abs(deviation) > kMostDeviation;
}

bool DocumentFont::LeadsOn(const std::uint8_t* text, std::int32_t length) const {
    return ForEachCode(text, length, CodeBytes(), [this](std::uint16_t code) {
        return IsVertical() ? AdvanceAt(code) <= 0.0F : AdvanceAt(code) >= 0.0F;
    });
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
