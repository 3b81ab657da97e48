// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "core/fonts/ifontancillaries.h"
#include "host/fonts/documentfont.h"

namespace VANTIX::HOST {

/// What a document says of a font with codes of several bytes.
struct CIDFontDescription : FontDescription {
    bool isVertical = false;
    /// The character collection whose numbers the font as it is written has.
    std::string registry = "Adobe";
    std::string ordering = "Identity";
    std::int32_t supplement = 0;
};

/// A glyph in the way in which a document shows it. Numbers are in ems.
struct CIDCharacter {
    /// In the program: the index of a TrueType file, the CID of a CFF program.
    std::uint16_t glyph = 0;
    float width = 1.0F;
    /// Of vertical writing: the advance (downwards less than 0), and where its origin lies as seen
    /// from that of horizontal writing.
    float verticalAdvance = -1.0F;
    float originX = 0.5F;
    float originY = 0.88F;
    char32_t unicode = 0;  ///< 0 where it is unknown

    // NOLINTNEXTLINE(modernize-use-nullptr): it sees what the operator expands to
    std::partial_ordering operator<=>(const CIDCharacter&) const = default;
};

/// A font with codes of two bytes. Its host text consists of the numbers of characters that were
/// added to it, so that the fonts of a document that share a program share one of these; going out
/// they become the codes of the program as it is written. All characters are added before any of
/// its data is asked for.
class NORVANE_HOST_API CIDFont : public DocumentFont {
public:
    CIDFont(GRAPHICS::TFontType type, CIDFontDescription description);

    /// The number of a character in host text, the same for an equal one. Where there is no room
    /// for more, that of one with the same glyph, or 0.
    std::uint16_t Add(const CIDCharacter& character);

    [[nodiscard]] const std::vector<CIDCharacter>& Characters() const { return mCharacters; }

    [[nodiscard]] const CIDFontDescription& Description() const { return mDescription; }

    /// Whether a character marks anything; true where it is unknown.
    [[nodiscard]] virtual bool HasOutline(std::uint16_t character) const = 0;

    /// What it becomes in PostScript: CIDFontType 0 or 2. Asks for the data of the program.
    [[nodiscard]] virtual std::int32_t WrittenCIDFontType() const { return 0; }

    std::size_t CodeBytes() const override { return 2; }

    bool IsVertical() const override { return mDescription.isVertical; }

    float AdvanceAt(std::uint16_t code) const override;
    std::optional<float> WrittenAdvanceAt(std::uint16_t code) const override;

    GRAPHICS::TEncoding GetCIDEncoding() const override;

    bool IsEmbedded() const override { return true; }

    bool ReEncodeText(const void* text, std::int32_t length, std::uint8_t* codes,
                      std::int32_t* codeLength) const override;
    bool GetAdvances(const void* text, std::int32_t length, float* w0, float* w1,
                     std::int32_t* count) const override;
    const GRAPHICS::EncodingDifference* GetEncodingDifferences(std::int32_t& count) const override;
    GRAPHICS::TEncoding GetEncoding() const override;

    const float* GetFontMatrix() const override { return nullptr; }

    // What the ancillary interfaces of the kinds answer.

    /// BMP characters by code as it is written, ascending.
    [[nodiscard]] std::map<std::uint16_t, std::uint16_t> WrittenUnicode() const;
    /// A glyph has the metrics of the character that had it first, in its `Units`.
    void EnumerateVerticalMetrics(GRAPHICS::IVerticalMetricFunctor& functor) const;

protected:
    /// A glyph has become one of those that are written.
    virtual void Use(const CIDCharacter& character) = 0;
    /// The code of a glyph in the font as it is written.
    [[nodiscard]] virtual std::uint16_t WrittenCode(std::uint16_t glyph) const = 0;
    /// Its advance there in horizontal writing, in ems; nothing where it is unknown.
    [[nodiscard]] virtual std::optional<float> WrittenWidth(std::uint16_t glyph) const = 0;

    /// Units in an em, across and upwards, of the space in which the glyph is written: by default
    /// 1000 for CIDFontType 0, and 1 for CIDFontType 2.
    [[nodiscard]] virtual std::array<float, 2> Units(std::uint16_t glyph) const;

    /// The character with a number, or the first one; null where there is none.
    [[nodiscard]] const CIDCharacter* Find(std::uint16_t code) const;

    /// `code`, or 0 where there is no such character.
    [[nodiscard]] std::size_t IndexOf(std::uint16_t code) const {
        return code < mCharacters.size() ? code : 0;
    }

    const FontDescription& Traits() const override { return mDescription; }

private:
    /// What a glyph has once, however many characters it stands for.
    struct Glyph {
        std::uint16_t first = 0;  ///< character
        char32_t unicode = 0;
    };

    CIDFontDescription mDescription;
    std::vector<CIDCharacter> mCharacters;
    std::vector<std::optional<float>> mWritten;  ///< advances along the line, by character
    mutable std::vector<std::uint16_t> mCodes;   ///< as written, by character, once they are known
    std::map<CIDCharacter, std::uint16_t> mNumbers;
    std::map<std::uint16_t, Glyph> mGlyphs;
};

}  // namespace VANTIX::HOST
