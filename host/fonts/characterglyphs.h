// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "host/export.h"

namespace VANTIX::HOST {

/// The glyphs of an sfnt by their characters, as its 'cmap' and 'GSUB' have them. Not for several
/// threads.
class NORVANE_HOST_API CharacterGlyphs {
public:
    explicit CharacterGlyphs(std::vector<std::uint8_t> bytes);
    ~CharacterGlyphs();
    CharacterGlyphs(const CharacterGlyphs&) = delete;
    CharacterGlyphs& operator=(const CharacterGlyphs&) = delete;
    CharacterGlyphs(CharacterGlyphs&&) = delete;
    CharacterGlyphs& operator=(CharacterGlyphs&&) = delete;

    /// The index of the glyph, 0 where there is none. With `isVertical` the form for vertical
    /// writing (feature 'vert'), where the font has one.
    [[nodiscard]] std::uint16_t GlyphOf(char32_t character, bool isVertical) const;

private:
    struct Parts;
    std::unique_ptr<Parts> mParts;
};

}  // namespace VANTIX::HOST
