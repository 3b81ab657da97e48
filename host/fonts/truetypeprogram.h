// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/fonts/ifontancillaries.h"
#include "host/export.h"
#include "host/fonts/simplefont.h"

namespace VANTIX::HOST {

/// A TrueType program as it is written.
struct FinishedTrueType {
    /// An sfnt of the tables that PostScript needs, which follow each other by tag, padded.
    std::vector<std::uint8_t> bytes;
    std::uint32_t glyphCount = 0;
    std::int16_t locaFormat = 0;
    /// The glyph in `bytes` that each name stands for; ".notdef" is among them.
    std::map<std::string, std::uint16_t, std::less<>> glyphs;
};

/// A TrueType font file of the document, cut to the glyphs that its fonts name. Glyphs are known by
/// their indices in the file until the data is asked for; then the program is finished, and new
/// glyphs can no longer be named. Not for several threads.
class NORVANE_HOST_API TrueTypeProgram : public SimpleProgram {
public:
    /// Null, with the reason in `problem`, for bytes that are no usable TrueType font with outlines
    /// in 'glyf'.
    static std::shared_ptr<TrueTypeProgram> Open(std::vector<std::uint8_t> bytes,
                                                 std::string& problem);

    // The file as it came. Glyph 0 is "nothing found".
    [[nodiscard]] virtual bool HasUnicodeMap() const = 0;  ///< (3,1), (3,10) or platform 0
    [[nodiscard]] virtual bool HasSymbolMap() const = 0;   ///< (3,0)
    [[nodiscard]] virtual bool HasMacMap() const = 0;      ///< (1,0)
    [[nodiscard]] virtual std::uint16_t GlyphOfUnicode(char32_t character) const = 0;
    /// `code` as it stands in the map, such as 0xF041.
    [[nodiscard]] virtual std::uint16_t GlyphOfSymbol(std::uint32_t code) const = 0;
    [[nodiscard]] virtual std::uint16_t GlyphOfMac(std::uint8_t code) const = 0;
    [[nodiscard]] virtual std::uint16_t GlyphOfPostName(std::string_view name) const = 0;
    /// Of 'post', empty where it has none.
    [[nodiscard]] virtual std::string PostNameOf(std::uint16_t glyph) const = 0;
    [[nodiscard]] virtual std::uint32_t GlyphCount() const = 0;
    [[nodiscard]] virtual std::int32_t UnitsPerEm() const = 0;
    /// Of 'head', in units per em.
    [[nodiscard]] virtual GRAPHICS::FontBox Box() const = 0;
    [[nodiscard]] virtual std::size_t FileSize() const = 0;

    /// Names a glyph of the file, which thereby becomes one of those written. Answers `wanted` made
    /// fit to be a name, or a name made from it where another glyph has that already.
    virtual std::string NameGlyph(std::uint16_t glyph, std::string_view wanted) = 0;
    /// Whether the outlines are going to be converted to Type 1: then advances lose what is below
    /// a tenth of a thousandth of an em.
    virtual void ExpectConversion(bool converted) = 0;
    [[nodiscard]] virtual bool IsConverted() const = 0;

    /// The program cut to its named glyphs, on the first call; or whole, with the indices of the
    /// file and other glyphs blank, where it is too damaged to be cut.
    virtual const FinishedTrueType& Finish() = 0;
    /// Finishes, and plays every name with its outline.
    virtual void EnumerateGlyphs(GRAPHICS::IGlyphFunctor& functor) = 0;
};

/// A font of a TrueType program, whose names its encoding uses.
NORVANE_HOST_API TInterfacePtr<SimpleFont> MakeTrueTypeFont(
    std::shared_ptr<TrueTypeProgram> program, SimpleFontDescription description);

}  // namespace VANTIX::HOST
