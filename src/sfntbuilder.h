// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
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
    /// Copies the data. False (logged) for what is no usable sfnt: tables, glyphs and counts have
    /// to lie within it, and no two tables in the same place.
    bool Init(GRAPHICS::IFontData* data, std::uint32_t numGlyphs, std::int16_t locaFormat);
    /// Writes the strings of the array, without its brackets.
    void Buid(IPostScriptDataStream* stream);
    /// Offset of a glyph in 'glyf'; 0 (logged) for one that is not there.
    std::uint32_t GetGlyphLocation(std::uint32_t index, std::uint32_t& length) const;
    void SetGlyphLocation(std::uint32_t index, std::uint32_t offset) const;
    /// Of `length` bytes from `offset`, as words of four (TrueType Reference Manual, chapter 6).
    static std::uint32_t CalcTableChecksum(std::uint32_t tag, const char* data,
                                           std::uint32_t offset, std::uint32_t length);

    /// In bytes.
    [[nodiscard]] std::uint32_t GetDataSize() const;
    /// Length of 'loca' in bytes, 0 without one.
    [[nodiscard]] std::uint32_t GetLocaLength() const;

private:
    /// A table in the data.
    struct Table {
        FourCC tag = 0;
        std::uint32_t offset = 0;
        std::uint32_t length = 0;
        std::uint32_t entry = 0;  ///< of its directory entry, from the start of the data
    };

    /// A run of the rebuilt font that is not cut.
    struct Segment {
        FourCC tag = 0;
        std::uint32_t offset = 0;  ///< in the rebuilt font
        std::uint32_t length = 0;  ///< with padding
        bool startsString = false;
        bool tooLong = false;  ///< for a string
    };

    /// Where a table went, and how it is to be checked.
    struct PlacedTable {
        std::uint32_t entry = 0;
        std::uint32_t offset = 0;
        std::uint32_t length = 0;
    };

    bool ReadDirectory();
    [[nodiscard]] bool CheckTables() const;
    [[nodiscard]] bool CheckGlyphs() const;
    [[nodiscard]] const Table* FindTable(FourCC tag) const;
    [[nodiscard]] bool CanLocate(std::uint32_t index) const;
    [[nodiscard]] std::uint32_t ReadLocation(std::uint32_t index) const;
    void WriteLocation(std::uint32_t index, std::uint32_t offset) const;

    bool Rebuild();
    void AddTables();
    void AddTable(const Table& table);
    void AddWhole(const Table& table, bool startsString, bool tooLong);
    void AddGlyphs(const Table& table);
    void AddRun(const Table& table, std::uint32_t begin, std::uint32_t end, std::uint32_t padding);
    void AppendSegment(const Segment& segment, std::uint32_t source, std::uint32_t length);
    void WriteChecksums();

    /// The data, which stay as they came but for 'loca', which follows glyphs that move.
    std::unique_ptr<std::uint8_t[]> mData;
    std::uint32_t mSize = 0;
    std::uint32_t mNumGlyphs = 0;
    bool mLongLoca = false;
    std::vector<Table> mTables;  ///< by offset
    Table mLoca;
    // What `Buid` writes, made once.
    std::vector<std::uint8_t> mRebuilt;
    std::vector<Segment> mSegments;
    std::vector<PlacedTable> mPlaced;
    std::uint32_t mStringSize = 0;
};

/// The builder that is attached to the handler (borrowed), or a new one, which is attached. Null
/// (logged) for a font without data or with data of no use.
SFNTStringsBuilder* GetSFNTStringsBuilder(GRAPHICS::IFontPackageHandler& handler);

/// Writes /sfnts of the font, empty where the data are of no use: then `module` logs `complaint`
/// and the name.
void WriteSFNTStrings(IPostScriptDataStream& stream, GRAPHICS::IFontPackageHandler& handler,
                      const char* module, const char* complaint);

}  // namespace VANTIX::PS
