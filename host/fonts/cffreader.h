// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/fonts/ifontpackagehandler.h"
#include "host/fonts/cffdata.h"
#include "host/fonts/simplefont.h"

namespace VANTIX::HOST {

/// a b c d e f
using CffMatrix = std::array<float, 6>;

/// A font DICT with its Private DICT; a font that is not CID-keyed has one of its own making.
struct CffFontDict {
    std::string name;
    /// From glyph space to text space, the matrix of the font applied.
    CffMatrix matrix{};
    CffDict values;  ///< of the Private DICT
    double nominalWidth = 0;
    double defaultWidth = 0;
    CffIndex subroutines;
};

/// A CFF font (Technical Note 5176) over bytes of the caller, all offsets checked.
struct CffTables {
    ByteView file;
    std::size_t nameIndex = 0;  ///< where the Name INDEX is
    std::size_t topEnd = 0;     ///< behind the Top DICT INDEX
    std::string name;
    CffDict top;
    CffIndex subroutines;  ///< global ones
    CffIndex glyphs;       ///< charstrings
    bool isCidKeyed = false;
    std::vector<std::uint16_t> cids;  ///< by glyph, where it is CID-keyed
    std::vector<std::string> names;   ///< by glyph as they stand there, where it is not
    /// Codes without a glyph are empty; names as above.
    std::array<std::string, kSimpleCodes> encoding;
    std::vector<std::uint8_t> fontDictOf;  ///< by glyph
    std::vector<CffFontDict> fontDicts;    ///< never empty
    std::string registry;
    std::string ordering;

    /// Fills in the tables of bare CFF. False, with the reason in `problem`.
    bool Read(ByteView bytes, std::string& problem);

    /// Text of an operator whose operand is a string, empty where there is none.
    [[nodiscard]] std::string Text(const CffDict& dict, CffOperator key,
                                   std::size_t operand = 0) const;

    [[nodiscard]] GRAPHICS::FontBox Box() const;

private:
    [[nodiscard]] std::string String(std::size_t number) const;
    [[nodiscard]] CffFontDict ReadFontDict(const CffDict& dict) const;
    void ReadFontDicts();
    void ReadFontDictSelection();
    [[nodiscard]] std::vector<std::uint16_t> ReadCharset() const;
    void ReadEncoding(const std::vector<std::uint16_t>& charset);
    void ReadOwnEncoding(std::size_t offset, const std::vector<std::uint16_t>& charset);

    CffIndex mStrings;
};

/// The bare CFF in what a document embeds: bare already, or a table of an OpenType font. Empty
/// where there is none.
ByteView FindCff(ByteView file);

}  // namespace VANTIX::HOST
