// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "host/fonts/cidfont.h"
#include "host/fonts/truetypeprogram.h"

namespace VANTIX::HOST {

/// A font with codes of two bytes of a TrueType program: going out they are the indices of glyphs
/// in the program as it is written, cut to those of its characters.
NORVANE_HOST_API TInterfacePtr<CIDFont> MakeCIDTrueTypeFont(
    std::shared_ptr<TrueTypeProgram> program, CIDFontDescription description);

}  // namespace VANTIX::HOST
