// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>

#include "host/fonts/truetypeprogram.h"
#include "pdf/fonts/encoding.h"

namespace VANTIX::PDF {

/// The flags of the font descriptor that choose how codes lead to glyphs.
struct SymbolFlags {
    bool isSymbolic = false;
    bool isNonsymbolic = false;
};

/// The glyphs of a TrueType program by code, 0 where there is none (PDF Reference, 5.5.5, and what
/// viewers do where fonts do not keep to it): by the names of the encoding through the maps of the
/// program and 'post', or by the codes themselves through the maps.
std::array<std::uint16_t, HOST::kSimpleCodes> TrueTypeGlyphs(const HOST::TrueTypeProgram& program,
                                                             const FontEncoding& encoding,
                                                             SymbolFlags flags);

}  // namespace VANTIX::PDF
