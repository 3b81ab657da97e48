// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "host/fonts/type2charstrings.h"

namespace VANTIX::HOST {

// Charstrings without subroutines that draw a glyph with its positions and its width rounded to
// integers, so that nothing adds up; blank for a glyph that is not whole.

/// A Type 2 charstring that gives the whole width: both of those of the Private DICT are 0. It has
/// no mask but the first, and lines that close its contours.
std::string PlainType2CharString(const Type2Glyph& glyph);

/// A Type 1 charstring, not encrypted. Of the stems it has those that the first mask uses.
std::string Type1CharString(const Type2Glyph& glyph);

}  // namespace VANTIX::HOST
