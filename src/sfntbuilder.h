// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "core/fonts/ifontancillaries.h"
#include "core/fonts/ifontpackagehandler.h"
#include "core/object/tobject.h"
#include "postscriptdatastream/ipostscriptdatastream.h"

namespace VANTIX::PS {

/// Key under which a handler keeps the builder made for it.
inline constexpr GUID IID_ISFNTSTRINGSBUILDER = "1E73BC0F-3F97-4F8B-A51E-7393ED668973"_guid;

/// Prepares TrueType data for the /sfnts array of a Type 42 font (Technical Note 5012): strings of
/// at most 65535 bytes that break between tables or between glyphs.
class SFNTStringsBuilder : public TObject<IObject> {
public:
    /// Copies the data. False (logged) for what is no usable sfnt.
    bool Init(GRAPHICS::IFontData* data, std::uint32_t numGlyphs, std::int16_t locaFormat);
    /// Writes the strings of the array, without its brackets.
    void Buid(IPostScriptDataStream* stream);
    /// Offset of a glyph in 'glyf'; 0 (logged) for one that is not there.
    std::uint32_t GetGlyphLocation(std::uint32_t index, std::uint32_t& length) const;
    void SetGlyphLocation(std::uint32_t index, std::uint32_t offset) const;
    std::uint32_t CalcTableChecksum(std::uint32_t tag, const char* data, std::uint32_t offset,
                                    std::uint32_t length) const;

    /// In bytes.
    [[nodiscard]] std::uint32_t GetDataSize() const;
    /// Length of 'loca' in bytes, 0 without one.
    [[nodiscard]] std::uint32_t GetLocaLength() const;
};

/// The builder that is attached to the handler (borrowed), or a new one, which is attached. Null
/// (logged) for a font without data or with data of no use.
SFNTStringsBuilder* GetSFNTStringsBuilder(GRAPHICS::IFontPackageHandler& handler);

}  // namespace VANTIX::PS
