// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <vector>

#include "host/fonts/sfnt.h"

namespace VANTIX::HOST {

/// A TrueType font with some of another one's glyphs under new indices.
struct SfntSubset {
    std::vector<std::uint8_t> bytes;
    std::vector<std::uint16_t> oldGlyphs;  ///< by new index
};

/// `font` (bytes of `file`) cut to `glyphs`, glyph 0 and their components. Tables that PostScript
/// does not need are left out. Nothing where the font is too damaged to be cut.
std::optional<SfntSubset> SubsetSfnt(ByteView file, const Sfnt& font,
                                     const std::set<std::uint16_t>& glyphs);

}  // namespace VANTIX::HOST
