// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string_view>

#include "host/fonts/cidfont.h"

namespace VANTIX::HOST {

/// A font with codes of several bytes that is not downloaded: the interpreter has the CIDFont
/// `description.name`, and the CMap of `encoding`.
class NORVANE_HOST_API ResidentCIDFont : public CIDFont {
public:
    static constexpr std::size_t kMostCodeBytes = 4;

    ResidentCIDFont(CIDFontDescription description, GRAPHICS::TEncoding encoding);

    /// The number in host text of a code of the CMap (of at most `kMostCodeBytes`, the rest is cut
    /// off), with the metrics of the document. `character.glyph` is not looked at.
    std::uint16_t AddCode(std::string_view code, CIDCharacter character);

    bool HasOutline(std::uint16_t /*character*/) const override { return true; }

    /// The interpreter's font is not known.
    std::optional<float> WrittenAdvanceAt(std::uint16_t /*code*/) const override {
        return std::nullopt;
    }

    GRAPHICS::TEncoding GetCIDEncoding() const override { return mEncoding; }

    bool IsEmbedded() const override { return false; }

    std::int32_t GetGlyphCount() const override { return 0; }

    bool ReEncodeText(const void* text, std::int32_t length, std::uint8_t* codes,
                      std::int32_t* codeLength) const override;

protected:
    void Use(const CIDCharacter& /*character*/) override {}

    std::uint16_t WrittenCode(std::uint16_t glyph) const override { return glyph; }

    std::optional<float> WrittenWidth(std::uint16_t /*glyph*/) const override {
        return std::nullopt;
    }

private:
    GRAPHICS::TEncoding mEncoding;
    std::vector<std::string> mCodes;  // by the glyphs of characters
    std::map<std::string, std::uint16_t, std::less<>> mGlyphOfCode;
};

}  // namespace VANTIX::HOST
