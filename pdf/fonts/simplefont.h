// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "host/fonts/simplefont.h"
#include "pdf/fonts/fontdictionary.h"
#include "pdf/fonts/fontsources.h"
#include "pdf/fonts/textscanner.h"

namespace VANTIX::PDF {

/// Describes a simple font for the host. The glyphs at `codes` that the program has become some of
/// those that are written; other codes stay empty. A resident font keeps all of its codes.
HOST::SimpleFontDescription DescribeSimpleFont(const FontDictionary& font, const FontSource& source,
                                               const CodeSet& codes);

/// The handler of a font so described. Never null for a usable source.
TInterfacePtr<HOST::SimpleFont> MakeSimpleFont(const FontDictionary& font, const FontSource& source,
                                               HOST::SimpleFontDescription description);

/// The codes of the font that its dictionary has widths for.
CodeSet DescribedCodes(const FontDictionary& font);

/// A name that tells the character at a code, by the glyph name of the encoding or by the text of
/// the document; empty where neither does.
std::string TellingName(const FontDictionary& font, std::uint32_t code, const std::string& name);

/// Whether every glyph of the encoding has a name that tells its character.
bool IsExtractable(const HOST::SimpleFontDescription& description);

}  // namespace VANTIX::PDF
