// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "host/fonts/sfnt.h"

namespace VANTIX::HOST {

/// The tables that a TrueType font has in PostScript (Technical Note 5012).
bool IsPostScriptTable(FourCC tag);

/// A TrueType font without `Problem` made anew from its tables for PostScript. They follow each
/// other by tag without gaps; their lengths, padded, are multiples of four, those of glyphs of two.
/// 'loca' is as short as it can be, and glyphs that `keeps` denies (by index) are blank. An even
/// number of glyphs becomes odd by a blank one.
std::vector<std::uint8_t> LayOutSfnt(const Sfnt& font, const std::vector<bool>& keeps);

}  // namespace VANTIX::HOST
