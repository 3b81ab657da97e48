// SPDX-License-Identifier: MIT
#include "sfntbuilder.h"

#include <algorithm>
#include <array>
#include <exception>
#include <new>
#include <string>

#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptdatastream/formattext.h"
#include "sfntbuilder_bytes.h"

namespace VANTIX::PS {
namespace {

constexpr const char* kModule = "src/sfntbuilder";
constexpr std::uint32_t kOffsetTableBytes = 12;
constexpr std::uint32_t kEntryBytes = 16;
/// Where the adjustment stands in 'head'.
constexpr std::uint32_t kAdjustment = 8;
constexpr std::uint32_t kWholeFontChecksum = 0xB1B0AFBA;
/// No string has this many bytes, the zero at its end included.
constexpr std::uint64_t kStringLimit = 65535;
constexpr std::uint32_t kClosingZero = 1;
/// The offset table and the directory have to fit the first string.
constexpr std::uint32_t kMostTables = 4095;

constexpr std::array<FourCC, 11> kNeededTables = {"cvt "_cc, "fpgm"_cc, "glyf"_cc, "head"_cc,
                                                  "hhea"_cc, "hmtx"_cc, "loca"_cc, "maxp"_cc,
                                                  "prep"_cc, "vhea"_cc, "vmtx"_cc};

constexpr std::array<std::uint32_t, 4> kVersions = {0x00010000, "OTTO"_cc, "true"_cc, "typ1"_cc};

template <std::size_t N>
bool Contains(const std::array<std::uint32_t, N>& set, std::uint32_t value) {
    return std::find(set.begin(), set.end(), value) != set.end();
}

std::uint32_t Padding(std::uint32_t length, std::uint32_t boundary) {
    return (boundary - length % boundary) % boundary;
}

/// Of a table that is known: its tag has four letters or blanks.
std::string TagText(FourCC tag) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        text += static_cast<char>(tag >> static_cast<unsigned>(shift));
    }
    return text;
}

}  // namespace

bool SFNTStringsBuilder::Init(GRAPHICS::IFontData* data, std::uint32_t numGlyphs,
                              std::int16_t locaFormat) {
    if (numGlyphs == 0) {
        LogError(kModule) << "No glyphs for sfnt creation?";
        return false;
    }
    if (locaFormat < 0 || locaFormat > 1) {
        LogError(kModule) << "New loca table format?";
        return false;
    }
    if (data == nullptr) {
        LogError(kModule) << "Empty IID_IFONTDATA not found for CIDKeyedType42 font?";
        return false;
    }
    const std::uint8_t* bytes = data->GetData();
    if (bytes == nullptr || data->GetSize() <= 0) {
        LogError(kModule) << "Data is not avaliable in FontData.";
        return false;
    }
    mNumGlyphs = numGlyphs;
    mLongLoca = locaFormat == 1;
    mSize = static_cast<std::uint32_t>(data->GetSize());
    mData.reset(new (std::nothrow) std::uint8_t[mSize]);
    if (!mData) {
        LogError(kModule) << "Could not create a buffer of " << mSize << "bytes for sfnt";
        return false;
    }
    std::copy_n(bytes, mSize, mData.get());
    if (!ReadDirectory()) {
        return false;
    }
    if (!CheckTables() || !CheckGlyphs()) {
        LogError(kModule) << "The tables or the glyphs of a font lie outside of its data.";
        return false;
    }
    return true;
}

bool SFNTStringsBuilder::ReadDirectory() {
    const std::uint32_t version = mSize < 4 ? 0 : ReadU32(mData.get());
    if (!Contains(kVersions, version)) {
        std::array<char, 16> digits;
        FormatText(digits.data(), digits.size(), "%x", version);
        LogError(kModule) << "font version is unhandled type [" << digits.data()
                          << "]. srcLength = " << mSize;
        return false;
    }
    const std::uint32_t count = mSize < kOffsetTableBytes ? 0 : ReadU16(&mData[4]);
    if (count == 0 || count > kMostTables || kOffsetTableBytes + count * kEntryBytes > mSize) {
        LogError(kModule) << "A font of " << mSize << " bytes lacks its table directory.";
        return false;
    }
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint32_t entry = kOffsetTableBytes + i * kEntryBytes;
        mTables.push_back({ReadU32(&mData[entry]), ReadU32(&mData[entry + 8]),
                           ReadU32(&mData[entry + 12]), entry});
    }
    std::sort(mTables.begin(), mTables.end(), [](const Table& left, const Table& right) {
        return left.offset != right.offset ? left.offset < right.offset
                                           : left.length < right.length;
    });
    if (const Table* loca = FindTable("loca"_cc)) {
        mLoca = *loca;
    }
    return true;
}

bool SFNTStringsBuilder::CheckTables() const {
    std::uint64_t end = kOffsetTableBytes + mTables.size() * kEntryBytes;
    std::vector<FourCC> tags;
    for (const Table& table : mTables) {
        tags.push_back(table.tag);
        if (table.length == 0) {
            continue;
        }
        if (table.offset < end) {
            return false;
        }
        end = std::uint64_t{table.offset} + table.length;
    }
    std::sort(tags.begin(), tags.end());
    return end <= mSize && std::adjacent_find(tags.begin(), tags.end()) == tags.end();
}

bool SFNTStringsBuilder::CheckGlyphs() const {
    if (mLoca.length == 0) {
        return true;
    }
    if ((std::uint64_t{mNumGlyphs} + 1) * (mLongLoca ? 4 : 2) > mLoca.length) {
        return false;
    }
    for (std::uint32_t i = 0; i < mNumGlyphs; ++i) {
        if (ReadLocation(i) > ReadLocation(i + 1)) {
            return false;
        }
    }
    const Table* glyf = FindTable("glyf"_cc);
    return ReadLocation(mNumGlyphs) <= (glyf == nullptr ? 0 : glyf->length);
}

const SFNTStringsBuilder::Table* SFNTStringsBuilder::FindTable(FourCC tag) const {
    const auto found = std::find_if(mTables.begin(), mTables.end(),
                                    [tag](const Table& table) { return table.tag == tag; });
    return found == mTables.end() ? nullptr : &*found;
}

std::uint32_t SFNTStringsBuilder::GetDataSize() const {
    return mSize;
}

std::uint32_t SFNTStringsBuilder::GetLocaLength() const {
    return mLoca.length;
}

std::uint32_t SFNTStringsBuilder::ReadLocation(std::uint32_t index) const {
    const std::uint8_t* loca = &mData[mLoca.offset];
    return mLongLoca ? ReadU32(loca + std::size_t{index} * 4)
                     : std::uint32_t{2} * ReadU16(loca + std::size_t{index} * 2);
}

void SFNTStringsBuilder::WriteLocation(std::uint32_t index, std::uint32_t offset) const {
    std::uint8_t* loca = &mData[mLoca.offset];
    if (mLongLoca) {
        WriteU32(loca + std::size_t{index} * 4, offset);
    } else {
        WriteU16(loca + std::size_t{index} * 2, offset / 2);
    }
}

bool SFNTStringsBuilder::CanLocate(std::uint32_t index) const {
    if (mNumGlyphs == 0 || mLoca.length == 0) {
        LogError(kModule) << "there are no glyphs in this TrueType font, probably because the "
                             "original data is not available.";
        return false;
    }
    if (index >= mNumGlyphs) {
        LogError(kModule) << "Requested index " << index << " is > the number of glyphs ("
                          << mNumGlyphs << ") in this font.";
        return false;
    }
    return true;
}

std::uint32_t SFNTStringsBuilder::GetGlyphLocation(std::uint32_t index,
                                                   std::uint32_t& length) const {
    length = 0;
    if (!CanLocate(index)) {
        return 0;
    }
    const std::uint32_t begin = ReadLocation(index);
    length = ReadLocation(index + 1) - begin;
    return begin;
}

void SFNTStringsBuilder::SetGlyphLocation(std::uint32_t index, std::uint32_t offset) const {
    if (CanLocate(index)) {
        WriteLocation(index, offset);
    }
}

std::uint32_t SFNTStringsBuilder::CalcTableChecksum(std::uint32_t /*tag*/, const char* data,
                                                    std::uint32_t offset, std::uint32_t length) {
    if (offset % 4 != 0) {
        LogNotice(kModule) << "TT Table is not aligned at 4-byte boundary!";
    }
    std::uint32_t sum = 0;
    for (std::uint32_t i = 0; i < length; ++i) {
        const auto byte = static_cast<std::uint8_t>(data[std::size_t{offset} + i]);
        sum += std::uint32_t{byte} << (24 - i % 4 * 8);
    }
    return sum;
}

void SFNTStringsBuilder::Buid(IPostScriptDataStream* stream) {
    if (stream == nullptr || !mData || (mRebuilt.empty() && !Rebuild())) {
        return;
    }
    const auto write = [&](std::uint32_t offset, std::uint32_t length) {
        stream->WriteBytes(&mRebuilt[offset], static_cast<std::int32_t>(length));
    };
    stream->SetUpperCase().SetHexMode().ClearSeparated();
    *stream << "\n<";
    write(0, kOffsetTableBytes + static_cast<std::uint32_t>(mTables.size()) * kEntryBytes);
    for (const Segment& segment : mSegments) {
        if (segment.startsString) {
            *stream << "00>";
        }
        if (segment.tooLong) {
            const bool glyphs = segment.tag == "glyf"_cc;
            std::array<char, 192> text;
            FormatText(text.data(), text.size(),
                       glyphs
                           ? "\n%%%%Warning : SFNT string size %s%u > 64K - Seems an issue that "
                             "needs to be fixed!"
                           : "\n%%%%Warning : Table %s having size %u > 64K - Can't help! Please "
                             "break the SFNTs as per postscript string requirements!",
                       glyphs ? "" : TagText(segment.tag).c_str(), segment.length);
            *stream << text.data();
        }
        if (segment.startsString) {
            *stream << "\n<";
        }
        write(segment.offset, segment.length);
    }
    *stream << "00>";
    stream->SetDecimalMode().SetSeparated();
}

bool SFNTStringsBuilder::Rebuild() {
    try {
        mRebuilt.reserve(mSize + mTables.size() * 4 + mNumGlyphs);
        AddTables();
    } catch (const std::exception&) {
        LogError(kModule) << "Could not create a buffer of " << mSize << "bytes for sfnt";
        mRebuilt.clear();
        mSegments.clear();
        mPlaced.clear();
        return false;
    }
    // The table may stand in front of the glyphs that it follows.
    for (const PlacedTable& table : mPlaced) {
        if (table.entry == mLoca.entry && mLoca.length != 0) {
            std::copy_n(&mData[mLoca.offset], mLoca.length, &mRebuilt[table.offset]);
        }
    }
    WriteChecksums();
    return true;
}

void SFNTStringsBuilder::AddTables() {
    mStringSize = kOffsetTableBytes + static_cast<std::uint32_t>(mTables.size()) * kEntryBytes;
    mRebuilt.assign(mData.get(), mData.get() + mStringSize);
    std::uint32_t expected = mStringSize;
    for (const Table& table : mTables) {
        if (table.offset != expected && table.length != 0) {
            LogNotice(kModule)
                << "Offset in table directory doesn't match the expected calced offset!";
        }
        expected = table.length == 0 ? expected : table.offset + table.length;
        AddTable(table);
    }
}

void SFNTStringsBuilder::AddTable(const Table& table) {
    const auto start = static_cast<std::uint32_t>(mRebuilt.size());
    const std::uint64_t padded = std::uint64_t{table.length} + Padding(table.length, 4);
    if (table.length == 0) {
        mPlaced.push_back({table.entry, start, 0});
        return;
    }
    if (mStringSize + padded + kClosingZero < kStringLimit) {
        AddWhole(table, false, false);
    } else if (padded + kClosingZero < kStringLimit) {
        AddWhole(table, true, false);
    } else if (table.tag == "glyf"_cc && mLoca.length != 0) {
        AddGlyphs(table);
    } else if (Contains(kNeededTables, table.tag)) {
        LogNotice(kModule) << "Type42 table " << TagText(table.tag).c_str() << " having size "
                           << table.length
                           << " > 64K - Can't help breaking SFNTs as per postscript string "
                              "requirements!";
        AddWhole(table, true, true);
    }
    mPlaced.push_back({table.entry, start, static_cast<std::uint32_t>(mRebuilt.size()) - start});
}

void SFNTStringsBuilder::AddWhole(const Table& table, bool startsString, bool tooLong) {
    const std::uint32_t padded = table.length + Padding(table.length, 4);
    AppendSegment({table.tag, 0, padded, startsString, tooLong}, table.offset, table.length);
}

void SFNTStringsBuilder::AddGlyphs(const Table& table) {
    const auto start = static_cast<std::uint32_t>(mRebuilt.size());
    std::uint32_t moved = 0;
    const auto addRun = [&](std::uint32_t begin, std::uint32_t end) {
        const std::uint32_t padding = Padding(end - begin, 2);
        AddRun(table, begin, end, padding);
        moved += padding;
    };
    std::uint32_t begin = ReadLocation(0);
    addRun(0, begin);
    for (std::uint32_t i = 0; i < mNumGlyphs; ++i) {
        const std::uint32_t end = ReadLocation(i + 1);
        WriteLocation(i, begin + moved);
        addRun(begin, end);
        begin = end;
    }
    WriteLocation(mNumGlyphs, begin + moved);
    addRun(begin, table.length);
    // Room for this was kept.
    const std::uint32_t rest = Padding(static_cast<std::uint32_t>(mRebuilt.size()) - start, 4);
    mRebuilt.resize(mRebuilt.size() + rest);
    mSegments.back().length += rest;
    mStringSize += rest;
}

void SFNTStringsBuilder::AddRun(const Table& table, std::uint32_t begin, std::uint32_t end,
                                std::uint32_t padding) {
    const std::uint32_t length = end - begin + padding;
    if (length == 0) {
        return;
    }
    // The last run of a table is padded further.
    const std::uint64_t closing = end == table.length ? kClosingZero + 3 : kClosingZero;
    const bool starts = mStringSize + length + closing >= kStringLimit;
    AppendSegment({table.tag, 0, length, starts, length + closing >= kStringLimit},
                  table.offset + begin, end - begin);
}

void SFNTStringsBuilder::AppendSegment(const Segment& segment, std::uint32_t source,
                                       std::uint32_t length) {
    const auto start = static_cast<std::uint32_t>(mRebuilt.size());
    mRebuilt.insert(mRebuilt.end(), &mData[source], &mData[source] + length);
    mRebuilt.resize(std::size_t{start} + segment.length);
    mStringSize = (segment.startsString ? 0 : mStringSize) + segment.length;
    const bool goesOn =
        !segment.startsString && !mSegments.empty() && mSegments.back().tag == segment.tag;
    if (goesOn) {
        mSegments.back().length += segment.length;
        return;
    }
    mSegments.push_back(segment);
    mSegments.back().offset = start;
}

void SFNTStringsBuilder::WriteChecksums() {
    const char* font = static_cast<const char*>(static_cast<const void*>(mRebuilt.data()));
    std::uint8_t* adjustment = nullptr;
    for (const PlacedTable& table : mPlaced) {
        const FourCC tag = ReadU32(&mRebuilt[table.entry]);
        if (tag == "head"_cc && table.length >= kAdjustment + 4) {
            adjustment = &mRebuilt[table.offset + kAdjustment];
            WriteU32(adjustment, 0);
        }
        WriteU32(&mRebuilt[table.entry + 4],
                 CalcTableChecksum(tag, font, table.offset, table.length));
        WriteU32(&mRebuilt[table.entry + 8], table.offset);
        WriteU32(&mRebuilt[table.entry + 12], table.length);
    }
    if (adjustment != nullptr) {
        const auto size = static_cast<std::uint32_t>(mRebuilt.size());
        WriteU32(adjustment, kWholeFontChecksum - CalcTableChecksum(0, font, 0, size));
    }
}

SFNTStringsBuilder* GetSFNTStringsBuilder(GRAPHICS::IFontPackageHandler& handler) {
    auto* attached = FindInterface<SFNTStringsBuilder>(&handler, IID_ISFNTSTRINGSBUILDER);
    if (attached != nullptr) {
        return attached;
    }
    auto* data = FindInterface<GRAPHICS::IFontData>(&handler, GRAPHICS::IID_IFONTDATA);
    if (data == nullptr) {
        if (handler.IsEmbedded()) {
            LogError(kModule) << "IID_IFONTDATA not found for an embedded CFF Type 2 font "
                              << handler.GetName();
        }
        return nullptr;
    }
    const auto* font =
        FindInterface<GRAPHICS::IT42Ancillary>(&handler, GRAPHICS::IID_IT42ANCILLARY);
    if (font == nullptr) {
        LogError(kModule) << "IID_IT42ANCILLARY not found for Type 42 font " << handler.GetName();
        return nullptr;
    }
    const auto builder = MakeObject<SFNTStringsBuilder>();
    if (!builder->Init(data, font->GetGlyphCount(), font->GetLocaFormat())) {
        return nullptr;
    }
    // The handler keeps the only reference from here on.
    handler.Aggregate(builder.Get(), IID_ISFNTSTRINGSBUILDER);
    return builder.Get();
}

void WriteSFNTStrings(IPostScriptDataStream& stream, GRAPHICS::IFontPackageHandler& handler,
                      const char* module, const char* complaint) {
    stream << "/RD {string currentfile exch readstring pop} executeonly def\n"
           << "/sfnts [";
    SFNTStringsBuilder* strings = GetSFNTStringsBuilder(handler);
    if (strings == nullptr) {
        LogError(module) << complaint << handler.GetName();
    } else {
        strings->Buid(&stream);
    }
    stream << "\n] def\n";
}

}  // namespace VANTIX::PS
