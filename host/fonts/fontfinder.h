// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "host/export.h"

namespace VANTIX::HOST {

/// What is known of a font that has to be found.
struct FontWish {
    std::string name;  ///< without the tag of a subset
    bool isSerif = false;
    bool isFixedPitch = false;
    bool isItalic = false;
    bool isBold = false;
    bool isSymbolic = false;
};

struct FoundFont {
    std::string path;
    std::string name;  ///< its PostScript name
    std::vector<std::uint8_t> bytes;
    bool isTrueType = false;  ///< an sfnt with 'glyf'; else Type 1 or CFF
};

/// The installed font (fontconfig) that stands in best for one that a document names and does not
/// hold: Type 1, CFF with names of glyphs, or TrueType. Nothing where none is installed or can be
/// read.
NORVANE_HOST_API std::optional<FoundFont> FindInstalledFont(const FontWish& wish);

/// The installed TrueType font that has most of the characters, among equals one of the style that
/// is wished for. Nothing where none has half of them.
NORVANE_HOST_API std::optional<FoundFont> FindInstalledFontWith(
    const FontWish& wish, const std::set<char32_t>& characters);

/// The font in a file that the user names, or nothing, with the reason in `problem`.
NORVANE_HOST_API std::optional<FoundFont> ReadFontFile(const std::string& path,
                                                       std::string& problem);

}  // namespace VANTIX::HOST
