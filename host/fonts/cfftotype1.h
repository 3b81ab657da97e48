// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "core/fonts/ifontancillaries.h"
#include "host/fonts/cffreader.h"

namespace VANTIX::HOST {

/// A font as a Type 1 program (Adobe Type 1 Font Format): its named glyphs with their stems, but
/// without replacement of hints. Positions are rounded to units of the font; glyphs that cannot be
/// read are blank. Of a CID-keyed font, as of a font without names, the first 256 glyphs: their
/// codes are their indices, whatever CIDs they have, and their units those of the first font DICT,
/// to which `hints` belong.
std::vector<std::uint8_t> Type1OfCff(const CffTables& cff, const GRAPHICS::PrivateValues& hints);

}  // namespace VANTIX::HOST
