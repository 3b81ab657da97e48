// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/export.h"
#include "host/fonts/glyphnames.h"

namespace VANTIX::HOST {

/// The PostScript name of the standard font that a name means ("Arial,Bold", "ArialMT",
/// "TimesNewRomanPS-BoldMT", "CourierNew": PDF Reference, appendix H), or nothing.
NORVANE_HOST_API std::optional<std::string_view> StandardFontOf(std::string_view name);

/// The encoding that a standard font has by itself.
NORVANE_HOST_API BaseEncoding EncodingOfStandardFont(std::string_view font);

/// The advance of a glyph of a standard font in ems; negative for one that it does not have.
NORVANE_HOST_API float StandardWidth(std::string_view font, std::string_view glyph);

}  // namespace VANTIX::HOST
