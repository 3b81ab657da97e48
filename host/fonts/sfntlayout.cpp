// SPDX-License-Identifier: MIT
#include "host/fonts/sfntlayout.h"

#include <algorithm>
#include <array>
#include <bit>
#include <map>

namespace VANTIX::HOST {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Tables = std::map<FourCC, Bytes>;

constexpr std::array<FourCC, 11> kTables{"cvt "_cc, "fpgm"_cc, "glyf"_cc, "head"_cc,
                                         "hhea"_cc, "hmtx"_cc, "loca"_cc, "maxp"_cc,
                                         "prep"_cc, "vhea"_cc, "vmtx"_cc};

constexpr std::size_t kHeaderBytes = 12;
constexpr std::uint32_t kRecordBytes = 16;
/// What the words of a whole font add up to.
constexpr std::uint32_t kFontCheckSum = 0xB1B0AFBA;

void Pad(Bytes& bytes) {
    bytes.resize((bytes.size() + 3) / 4 * 4);
}

/// Of bytes padded to words.
std::uint32_t CheckSum(ByteView bytes) {
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i < bytes.size(); i += 4) {
        sum += ReadU32(bytes, i);
    }
    return sum;
}

Bytes MakeLoca(const std::vector<std::size_t>& offsets, bool isLong) {
    const std::size_t entry = isLong ? 4 : 2;
    Bytes loca(offsets.size() * entry);
    for (std::size_t i = 0; i < offsets.size(); ++i) {
        const auto offset = static_cast<std::uint32_t>(offsets[i]);
        if (isLong) {
            WriteU32(loca, i * entry, offset);
        } else {
            WriteU16(loca, i * entry, offset / 2);
        }
    }
    return loca;
}

/// Writes 'glyf', and 'loca' in the shortest format, and tells 'head' of it.
void LayOutGlyphs(const Sfnt& font, const std::vector<bool>& keeps, std::uint32_t glyphCount,
                  Tables& tables) {
    const GlyphTable glyphs(font);
    Bytes glyf;
    std::vector<std::size_t> offsets{0};
    for (std::uint32_t i = 0; i < glyphCount; ++i) {
        if (i < keeps.size() && keeps[i]) {
            const ByteView glyph = glyphs.Glyph(i);
            glyf.insert(glyf.end(), glyph.begin(), glyph.end());
            glyf.resize((glyf.size() + 1) / 2 * 2);
        }
        offsets.push_back(glyf.size());
    }
    const bool isLong = glyf.size() > std::size_t{2} * 0xFFFF;
    WriteU16(tables["head"_cc], kHeadLocaFormat, isLong ? 1 : 0);
    tables["loca"_cc] = MakeLoca(offsets, isLong);
    tables["glyf"_cc] = std::move(glyf);
}

/// Makes a table of metrics as long as the counts of glyphs and of metrics ask for. Without its
/// header it is of no use.
void LayOutMetrics(FourCC headerTag, FourCC metricsTag, std::uint32_t glyphCount, Tables& tables) {
    const auto header = tables.find(headerTag);
    const auto metrics = tables.find(metricsTag);
    if (header == tables.end() || metrics == tables.end() || header->second.size() < kHheaBytes) {
        tables.erase(headerTag);
        tables.erase(metricsTag);
        return;
    }
    const std::uint32_t count =
        std::clamp<std::uint32_t>(ReadU16(header->second, kHheaMetricCount), 1, glyphCount);
    WriteU16(header->second, kHheaMetricCount, count);
    metrics->second.resize(std::size_t{count} * 4 + std::size_t{glyphCount - count} * 2);
}

void AppendU16(Bytes& bytes, std::uint32_t value) {
    bytes.resize(bytes.size() + 2);
    WriteU16(bytes, bytes.size() - 2, value);
}

void AppendU32(Bytes& bytes, std::uint32_t value) {
    AppendU16(bytes, value >> 16U);
    AppendU16(bytes, value);
}

/// Header, directory and tables, whose lengths are multiples of four.
Bytes Assemble(const Tables& tables) {
    const auto count = static_cast<std::uint32_t>(tables.size());
    const std::uint32_t searchRange = std::bit_floor(count) * kRecordBytes;
    Bytes file;
    AppendU32(file, 0x00010000);
    AppendU16(file, count);
    AppendU16(file, searchRange);
    AppendU16(file, static_cast<std::uint32_t>(std::bit_width(count)) - 1);
    AppendU16(file, count * kRecordBytes - searchRange);
    std::size_t offset = kHeaderBytes + std::size_t{count} * kRecordBytes;
    std::size_t head = 0;
    for (const auto& [tag, bytes] : tables) {
        head = tag == "head"_cc ? offset : head;
        AppendU32(file, tag);
        AppendU32(file, CheckSum(bytes));
        AppendU32(file, static_cast<std::uint32_t>(offset));
        AppendU32(file, static_cast<std::uint32_t>(bytes.size()));
        offset += bytes.size();
    }
    for (const auto& [tag, bytes] : tables) {
        file.insert(file.end(), bytes.begin(), bytes.end());
    }
    WriteU32(file, head + kHeadCheckSumAdjustment, kFontCheckSum - CheckSum(file));
    return file;
}

}  // namespace

bool IsPostScriptTable(FourCC tag) {
    return std::find(kTables.begin(), kTables.end(), tag) != kTables.end();
}

std::vector<std::uint8_t> LayOutSfnt(const Sfnt& font, const std::vector<bool>& keeps) {
    Tables tables;
    for (const auto& [tag, bytes] : font.Tables()) {
        if (IsPostScriptTable(tag)) {
            tables.try_emplace(tag, bytes.begin(), bytes.end());
        }
    }
    WriteU32(tables["head"_cc], kHeadCheckSumAdjustment, 0);
    // With an odd number of glyphs 'loca' needs no padding, which would be taken for a further one.
    const std::uint32_t glyphCount = font.GlyphCount() | 1U;
    WriteU16(tables["maxp"_cc], kMaxpGlyphCount, glyphCount);
    LayOutGlyphs(font, keeps, glyphCount, tables);
    LayOutMetrics("hhea"_cc, "hmtx"_cc, glyphCount, tables);
    LayOutMetrics("vhea"_cc, "vmtx"_cc, glyphCount, tables);
    for (auto& [tag, bytes] : tables) {
        Pad(bytes);
    }
    return Assemble(tables);
}

}  // namespace VANTIX::HOST
