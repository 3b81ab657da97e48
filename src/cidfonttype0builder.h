// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <span>

#include "basecidfontbuilder.h"

namespace VANTIX::PS {

/// Writes a CID-keyed font as a CIDFont of type 0 whose Type 1 charstrings stand in /GlyphDirectory
/// (PostScript Language Reference, 5.11.3): converted from Type 2 charstrings, or made of the
/// outlines of a TrueType font.
class CIDFontType0Builder : public BaseCIDFontBuilder {
public:
    CIDFontType0Builder() : BaseCIDFontBuilder(TPSFontType::kCIDFontType0) {}

    /// False, with nothing written, for a font without the interface that has its glyphs.
    bool BuildFont() override;

protected:
    void WriteFontBBox() override;
    void WriteAdditionalFontDictEntries() override;

    /// None: the font DICTs have theirs.
    [[nodiscard]] const float* GetFontMatrix() const override { return nullptr; }

private:
    class TrueTypeToCIDType0CharStringFunctor;
    class T2ToT1CharStringFunctor;

    [[nodiscard]] bool HasGlyphs() const;
    void WriteFontComments();
    void WriteCFFEntries(const GRAPHICS::ICIDKeyedCFFAncillary& font);
    void WriteTrueTypeEntries(const GRAPHICS::ICIDKeyedT42Ancillary& font);
    /// What stands before /FDArray.
    void WriteCounts(std::int32_t cidCount, float version, std::int32_t fontDictBytes);
    void WriteFontDict(const GRAPHICS::ICIDKeyedCFFAncillary& font, std::int32_t index);
    void WritePrivate(const GRAPHICS::PrivateValues& values);
    /// Nothing for an empty one.
    void WriteValues(const char* key, std::span<const float> values);
    void BeginGlyphDirectory();
    /// One entry of it; `fontDict` is written where the font has several.
    void WriteGlyph(std::uint16_t cid, std::uint16_t fontDict,
                    std::span<const std::uint8_t> charString);
    /// An interpreter shows CID 0 in the place of one that is not there, and fails without it.
    void EndGlyphDirectory();
    void WriteEndOfCIDFont();

    std::int32_t mFontDictBytes = 0;
    bool mHasNotdef = false;
};

}  // namespace VANTIX::PS
