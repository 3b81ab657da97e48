// SPDX-License-Identifier: MIT
#include "host/fonts/cidfont.h"

#include <limits>
#include <utility>

namespace VANTIX::HOST {
namespace {

constexpr std::size_t kMostCharacters = 65536;
constexpr std::int32_t kCodeBytes = 2;

class WritingMode : public TObject<GRAPHICS::ICompositeFontInfo> {
public:
    explicit WritingMode(bool isVertical) : mIsVertical(isVertical) {}

    bool IsVertical() const override { return mIsVertical; }

private:
    bool mIsVertical;
};

std::uint16_t CodeAt(const std::uint8_t* text) {
    return static_cast<std::uint16_t>(text[0] << 8U | text[1]);
}

}  // namespace

CIDFont::CIDFont(GRAPHICS::TFontType type, CIDFontDescription description)
    : DocumentFont(type), mDescription(std::move(description)) {
    Aggregate(MakeObject<WritingMode>(mDescription.isVertical).Get(),
              GRAPHICS::IID_ICOMPOSITEFONTINFO);
}

std::uint16_t CIDFont::Add(const CIDCharacter& character) {
    if (const auto known = mNumbers.find(character); known != mNumbers.end()) {
        return known->second;
    }
    if (mCharacters.size() >= kMostCharacters) {
        const auto like = mGlyphs.find(character.glyph);
        return like == mGlyphs.end() ? std::uint16_t{0} : like->second.first;
    }
    const auto number = static_cast<std::uint16_t>(mCharacters.size());
    mCharacters.push_back(character);
    mNumbers.emplace(character, number);
    const auto [glyph, isNew] = mGlyphs.try_emplace(character.glyph, Glyph{number, 0});
    if (isNew) {
        Use(character);
    }
    if (glyph->second.unicode == 0) {
        glyph->second.unicode = character.unicode;
    }
    mWritten.push_back(IsVertical()
                           ? std::optional(mCharacters[glyph->second.first].verticalAdvance)
                           : WrittenWidth(character.glyph));
    return number;
}

const CIDCharacter* CIDFont::Find(std::uint16_t code) const {
    return mCharacters.empty() ? nullptr : &mCharacters[IndexOf(code)];
}

float CIDFont::AdvanceAt(std::uint16_t code) const {
    const CIDCharacter* character = Find(code);
    if (character == nullptr) {
        return 0.0F;
    }
    return IsVertical() ? character->verticalAdvance : character->width;
}

std::optional<float> CIDFont::WrittenAdvanceAt(std::uint16_t code) const {
    return mWritten.empty() ? std::nullopt : mWritten[IndexOf(code)];
}

GRAPHICS::TEncoding CIDFont::GetCIDEncoding() const {
    return IsVertical() ? GRAPHICS::TEncoding::kIdentityV : GRAPHICS::TEncoding::kIdentityH;
}

bool CIDFont::ReEncodeText(const void* text, std::int32_t length, std::uint8_t* codes,
                           std::int32_t* codeLength) const {
    if (text == nullptr || length < 0 || mCharacters.empty()) {
        return false;
    }
    for (std::size_t i = mCodes.size(); i < mCharacters.size(); ++i) {
        mCodes.push_back(WrittenCode(mCharacters[i].glyph));
    }
    const auto* characters = static_cast<const std::uint8_t*>(text);
    *codeLength = length / kCodeBytes * kCodeBytes;
    for (std::int32_t i = 0; i < *codeLength; i += kCodeBytes) {
        const std::uint16_t code = mCodes[IndexOf(CodeAt(characters + i))];
        codes[i] = static_cast<std::uint8_t>(code >> 8U);
        codes[i + 1] = static_cast<std::uint8_t>(code);
    }
    return true;
}

bool CIDFont::GetAdvances(const void* text, std::int32_t length, float* w0, float* w1,
                          std::int32_t* count) const {
    const std::int32_t characters = length / kCodeBytes;
    const auto* codes = static_cast<const std::uint8_t*>(text);
    if (text == nullptr || characters < 1 || characters > *count || !Deviates(codes, length) ||
        !LeadsOn(codes, length)) {
        return false;
    }
    for (std::int32_t i = 0; i < characters; ++i) {
        const float advance = AdvanceAt(CodeAt(codes + std::ptrdiff_t{i} * kCodeBytes));
        w0[i] = IsVertical() ? 0.0F : advance;
        w1[i] = IsVertical() ? advance : 0.0F;
    }
    *count = characters;
    return true;
}

const GRAPHICS::EncodingDifference* CIDFont::GetEncodingDifferences(std::int32_t& count) const {
    count = 0;
    return nullptr;
}

GRAPHICS::TEncoding CIDFont::GetEncoding() const {
    return GRAPHICS::TEncoding::kCustom;
}

std::array<float, 2> CIDFont::Units(std::uint16_t /*glyph*/) const {
    constexpr float kThousand = 1000.0F;
    return WrittenCIDFontType() == 2 ? std::array{1.0F, 1.0F} : std::array{kThousand, kThousand};
}

std::map<std::uint16_t, std::uint16_t> CIDFont::WrittenUnicode() const {
    std::map<std::uint16_t, std::uint16_t> unicode;
    for (const auto& [number, glyph] : mGlyphs) {
        if (glyph.unicode != 0 && glyph.unicode <= std::numeric_limits<std::uint16_t>::max()) {
            unicode.emplace(WrittenCode(number), static_cast<std::uint16_t>(glyph.unicode));
        }
    }
    return unicode;
}

void CIDFont::EnumerateVerticalMetrics(GRAPHICS::IVerticalMetricFunctor& functor) const {
    std::map<std::uint16_t, std::uint16_t> characters;
    for (const auto& [number, glyph] : mGlyphs) {
        characters.emplace(WrittenCode(number), glyph.first);
    }
    for (const auto& [code, number] : characters) {
        const CIDCharacter& character = mCharacters[number];
        const auto [across, up] = Units(character.glyph);
        const float values[] = {0.0F, character.verticalAdvance * up, character.originX * across,
                                character.originY * up};
        if (!functor(code, values)) {
            return;
        }
    }
}

}  // namespace VANTIX::HOST
