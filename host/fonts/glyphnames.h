// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "host/export.h"

namespace VANTIX::HOST {

/// The Unicode text of a glyph name by the Adobe Glyph List, "uniXXXX" or "uXXXXX" (Adobe Glyph
/// Naming): its first character, suffixes after a period left out. Nothing for other names.
NORVANE_HOST_API std::optional<char32_t> UnicodeOfGlyphName(std::string_view name);

/// The name of a character: of the Adobe Glyph List for New Fonts, else "uniXXXX" or "uXXXXX".
NORVANE_HOST_API std::string GlyphNameOfUnicode(char32_t character);

/// The name as it may stand behind "/" in PostScript: delimiters, white space and bytes outside
/// ASCII replaced, at most 127 characters. The same name always becomes the same.
NORVANE_HOST_API std::string SanitiseGlyphName(std::string_view name);

/// The encodings of PDF (PDF Reference, appendix D), and those of the two symbolic fonts.
enum class BaseEncoding { kStandard, kWinAnsi, kMacRoman, kMacExpert, kSymbol, kZapfDingbats };

/// The glyph names by code, empty where there is none.
NORVANE_HOST_API const std::array<std::string_view, 256>& NamesOf(BaseEncoding encoding);

}  // namespace VANTIX::HOST
