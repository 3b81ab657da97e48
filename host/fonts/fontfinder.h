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
    std::string name;                 ///< its PostScript name
    int face = 0;                     ///< in a collection
    std::vector<std::uint8_t> bytes;  ///< of the face alone
    bool isTrueType = false;          ///< an sfnt with 'glyf'; else Type 1 or CFF
    bool isCidKeyed = false;          ///< CFF whose glyphs have no names
};

/// The installed font (fontconfig) that stands in best for one that a document names and does not
/// hold: Type 1, CFF with names of glyphs, or TrueType. Nothing where none is installed or can be
/// read.
NORVANE_HOST_API std::optional<FoundFont> FindInstalledFont(const FontWish& wish);

/// The installed TrueType or OpenType font that has most of the characters, among equals one of the
/// style and the family that are wished for and of the language ("zh-tw"; empty where it does not
/// matter). Nothing where none has half of them.
NORVANE_HOST_API std::optional<FoundFont> FindInstalledFontWith(
    const FontWish& wish, const std::set<char32_t>& characters, const std::string& language);

/// The font in a file, or nothing, with the reason in `problem`; in a collection, the one at an
/// index.
NORVANE_HOST_API std::optional<FoundFont> ReadFontFile(const std::string& path,
                                                       std::string& problem, int face = 0);

}  // namespace VANTIX::HOST
