// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/fonts/ifontpackagehandler.h"
#include "host/fonts/simplefont.h"

namespace VANTIX::HOST {

/// A stretch of a text.
struct TextRange {
    std::size_t begin = 0;
    std::size_t end = 0;

    [[nodiscard]] std::string_view Of(std::string_view text) const {
        return text.substr(begin, end - begin);
    }
};

/// The two texts of a Type 1 program, in the form in which it is taken apart.
struct Type1Text {
    std::string clear;      ///< from "%!" to "eexec"
    std::string encrypted;  ///< the part behind it, as bytes
    std::string plain;      ///< that part decrypted, without its four leading bytes
};

/// Takes off headers of segments, zeros and hexadecimal digits. False, with the reason in
/// `problem`, where there is no encrypted part.
bool SplitType1(const std::vector<std::uint8_t>& bytes, Type1Text& text, std::string& problem);

/// What the clear text says.
struct Type1Header {
    std::string name;
    std::array<std::string, kSimpleCodes> encoding;
    std::array<float, 6> matrix{0.001F, 0, 0, 0.001F, 0, 0};
    GRAPHICS::FontBox box;
};

Type1Header ReadType1Header(std::string_view clear);

/// The places of a text where the program refers to itself as `name`, in their order.
std::vector<TextRange> FindOwnName(std::string_view text, std::string_view name);

/// The places of what belongs together to guard against a second definition of the font, before the
/// program proper ("FontDirectory /Name known {...} {...} ifelse"); empty for none.
TextRange FindDefinitionGuard(std::string_view clear);

/// An entry of /CharStrings or /Subrs. Ranges are those in the decrypted text.
struct Type1Entry {
    std::string name;        ///< of a glyph
    std::size_t number = 0;  ///< of a subroutine
    TextRange named;         ///< where that name stands, without its slash
    TextRange whole;         ///< up to the next entry
    TextRange length;        ///< the number that tells the size
    TextRange data;          ///< the charstring, encrypted
};

/// The encrypted part taken apart.
struct Type1Private {
    std::int32_t lenIV = 4;
    std::vector<Type1Entry> subroutines;
    TextRange glyphCount;  ///< the number in "/CharStrings n dict"
    std::vector<Type1Entry> glyphs;
    TextRange glyphSection;  ///< from the first entry to the "end" of the dictionary
    bool isDefined = false;  ///< "definefont" follows
    bool isClosed = false;   ///< "closefile" too
    std::size_t end = 0;     ///< behind the last of them, or the last glyph

    /// A charstring without its encryption.
    [[nodiscard]] std::string Decrypted(std::string_view plain, const TextRange& data) const;
    /// A new charstring as it stands in the text.
    [[nodiscard]] std::string Encrypted(std::string_view charString) const;
};

/// False where the text is not built the usual way: then nothing in it may be changed.
bool ReadType1Private(std::string_view plain, Type1Private& result);

}  // namespace VANTIX::HOST
