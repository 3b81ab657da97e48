// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace VANTIX::PDF {

/// The text that codes stand for.
using CodeTexts = std::map<std::uint32_t, std::u32string>;

/// Reads a ToUnicode CMap (PDF Reference, 5.9.2): its bfchar and bfrange sections, codes of up to
/// two bytes. What makes no sense is passed over.
CodeTexts ReadToUnicode(std::string_view cmap);

/// The glyph name of a text (Adobe Glyph Naming): the names of its characters, joined by
/// underscores. Empty for no text, and for one that is longer than a glyph has.
std::string GlyphNameOfText(std::u32string_view text);

}  // namespace VANTIX::PDF
