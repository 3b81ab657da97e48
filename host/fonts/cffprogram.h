// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/fonts/ifontancillaries.h"
#include "host/export.h"
#include "host/fonts/simplefont.h"

namespace VANTIX::HOST {

/// A glyph as it is handed over: valid as long as the call lasts.
struct CffGlyph {
    std::uint16_t index = 0;
    std::uint16_t fontDict = 0;
    GRAPHICS::CharString charString;
};

class CffGlyphFunctor {
public:
    /// Answers whether to go on.
    virtual bool operator()(const CffGlyph& glyph) = 0;

protected:
    ~CffGlyphFunctor() = default;
};

/// A CFF font of the document (Technical Note 5176), bare or in an OpenType file: read, renamed and
/// cut to the glyphs that its fonts use. Glyphs are known by their indices in the file. Not for
/// several threads.
class NORVANE_HOST_API CffProgram : public NamedProgram {
public:
    /// Null, with the reason in `problem`, for bytes that are no usable font in CFF.
    static std::shared_ptr<CffProgram> Open(std::vector<std::uint8_t> bytes, std::string& problem);

    /// Of the Name INDEX, as it came.
    [[nodiscard]] virtual const std::string& Name() const = 0;
    [[nodiscard]] virtual bool IsCidKeyed() const = 0;
    /// a b c d e f of the font, or of the first font DICT of one that is CID-keyed.
    [[nodiscard]] virtual const std::array<float, 6>& Matrix() const = 0;
    [[nodiscard]] virtual std::uint32_t GlyphCount() const = 0;
    /// Of the bytes as they came.
    [[nodiscard]] virtual std::size_t FileSize() const = 0;
    [[nodiscard]] virtual std::string Notice() const = 0;
    [[nodiscard]] virtual std::string Version() const = 0;

    [[nodiscard]] virtual std::optional<std::uint16_t> GlyphOf(std::string_view name) const = 0;
    /// As it may stand in PostScript; empty for a CID-keyed font.
    [[nodiscard]] virtual std::string NameOf(std::uint16_t glyph) const = 0;
    /// The CIDs of a font that is not CID-keyed are its glyphs' indices.
    [[nodiscard]] virtual std::optional<std::uint16_t> GlyphOfCid(std::uint16_t cid) const = 0;
    [[nodiscard]] virtual std::uint16_t CidOf(std::uint16_t glyph) const = 0;

    /// The advance of a glyph as it is written, in ems; negative without such a glyph.
    [[nodiscard]] virtual float WidthOfGlyph(std::uint16_t glyph) const = 0;
    [[nodiscard]] virtual bool HasGlyphOutline(std::uint16_t glyph) const = 0;
    /// Whether all of its glyphs can be read, and all of their names written as they are.
    [[nodiscard]] virtual bool IsSound() const = 0;

    /// a b c d e f, from the space of a glyph's charstring to text space.
    [[nodiscard]] virtual const std::array<float, 6>& GlyphMatrix(std::uint16_t glyph) const = 0;

    /// As `UseGlyph` of a name.
    virtual void UseIndex(std::uint16_t glyph) = 0;
    /// Gives the program another name in its Name INDEX.
    virtual void Rename(std::string_view name) = 0;
    /// Whether charstrings are going to be converted to Type 1: then advances lose what is below a
    /// unit of the font.
    virtual void ExpectConversion(bool converted) = 0;

    /// Bare CFF with the glyphs that are used under their names, made at the first call and the
    /// same from then on. The whole font where it is too damaged to be cut.
    virtual const std::vector<std::uint8_t>& Data() = 0;
    /// The whole font as a Type 1 program; of a CID-keyed one the first 256 glyphs, whose codes are
    /// their indices.
    [[nodiscard]] virtual std::vector<std::uint8_t> AsType1() const = 0;

    /// How many glyphs are written: those that are used, and glyph 0.
    [[nodiscard]] virtual std::int32_t WrittenCount() const = 0;
    /// Plays these by index. Charstrings that a converter to Type 1 would not draw exactly are
    /// simplified; with `expanded` those of accented glyphs, too, which then are one outline.
    virtual void EnumerateGlyphs(bool expanded, CffGlyphFunctor& functor) const = 0;

    // Subroutines, as `ICharStringSubroutines` has them.
    [[nodiscard]] virtual std::int32_t LocalBias(std::uint16_t fontDict) const = 0;
    [[nodiscard]] virtual std::int32_t GlobalBias() const = 0;
    virtual std::int32_t CopyLocal(std::uint16_t fontDict, std::int32_t number,
                                   std::uint8_t* buffer) const = 0;
    virtual std::int32_t CopyGlobal(std::int32_t number, std::uint8_t* buffer) const = 0;

    // What CID-keyed fonts have; a font that is not CID-keyed has one font DICT, and no registry
    // and ordering.
    [[nodiscard]] virtual const std::string& Registry() const = 0;
    [[nodiscard]] virtual const std::string& Ordering() const = 0;
    [[nodiscard]] virtual std::int32_t Supplement() const = 0;
    [[nodiscard]] virtual float CidFontVersion() const = 0;
    /// One more than the last CID.
    [[nodiscard]] virtual std::int32_t CidCount() const = 0;
    [[nodiscard]] virtual std::int32_t FontDictCount() const = 0;
    /// a b c d e f, that of the font applied.
    [[nodiscard]] virtual const std::array<float, 6>& FontDictMatrix(std::size_t index) const = 0;
    [[nodiscard]] virtual const std::string& FontDictName(std::size_t index) const = 0;
    [[nodiscard]] virtual GRAPHICS::PrivateValues FontDictPrivate(std::size_t index) const = 0;
};

/// A font of a program that is not CID-keyed. `description.name` is the program's name as it is
/// written.
NORVANE_HOST_API TInterfacePtr<SimpleFont> MakeCFFFont(std::shared_ptr<CffProgram> program,
                                                       SimpleFontDescription description);

}  // namespace VANTIX::HOST
