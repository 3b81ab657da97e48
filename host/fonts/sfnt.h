// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "core/types.h"

namespace VANTIX::HOST {

using ByteView = std::span<const std::uint8_t>;

/// Big-endian numbers at an offset; the caller has checked that they lie in the bytes.
inline std::uint16_t ReadU16(ByteView bytes, std::size_t offset) {
    return static_cast<std::uint16_t>(bytes[offset] << 8U | bytes[offset + 1]);
}

inline std::uint32_t ReadU32(ByteView bytes, std::size_t offset) {
    return std::uint32_t{ReadU16(bytes, offset)} << 16U | ReadU16(bytes, offset + 2);
}

inline void WriteU16(std::vector<std::uint8_t>& bytes, std::size_t offset, std::uint32_t value) {
    bytes[offset] = static_cast<std::uint8_t>(value >> 8U);
    bytes[offset + 1] = static_cast<std::uint8_t>(value);
}

inline void WriteU32(std::vector<std::uint8_t>& bytes, std::size_t offset, std::uint32_t value) {
    WriteU16(bytes, offset, value >> 16U);
    WriteU16(bytes, offset + 2, value);
}

/// Where the fields are that are read or written here (OpenType 1.9, head, hhea, maxp).
inline constexpr std::size_t kHeadBytes = 54;
inline constexpr std::size_t kHeadCheckSumAdjustment = 8;
inline constexpr std::size_t kHeadUnitsPerEm = 18;
inline constexpr std::size_t kHeadBox = 36;
inline constexpr std::size_t kHeadLocaFormat = 50;
inline constexpr std::size_t kHheaBytes = 36;
inline constexpr std::size_t kHheaMetricCount = 34;
inline constexpr std::size_t kMaxpGlyphCount = 4;
inline constexpr std::size_t kMaxpLeastBytes = 6;

/// The directory of an sfnt over bytes of the caller. A table that leaves the file is cut there.
class Sfnt {
public:
    using Table = std::pair<FourCC, ByteView>;

    explicit Sfnt(ByteView file);

    /// In the order of the directory.
    [[nodiscard]] const std::vector<Table>& Tables() const { return mTables; }

    /// Null where there is none.
    [[nodiscard]] const Table* Find(FourCC tag) const;

    /// Empty where there is none.
    [[nodiscard]] ByteView Bytes(FourCC tag) const;

    /// What keeps the file from being a TrueType font with outlines in 'glyf'; null for nothing.
    [[nodiscard]] const char* Problem() const;

    /// Of 'maxp'; the font has no `Problem`, here and below.
    [[nodiscard]] std::uint32_t GlyphCount() const;
    [[nodiscard]] std::int16_t LocaFormat() const;

private:
    std::uint32_t mVersion = 0;
    std::vector<Table> mTables;
};

/// The glyphs of an sfnt without `Problem`, whose bytes must outlive this.
class GlyphTable {
public:
    explicit GlyphTable(const Sfnt& font);

    /// The bytes of a glyph, empty for one that is blank or lies outside the table.
    [[nodiscard]] ByteView Glyph(std::uint32_t glyph) const;

    /// Whether the glyph can be put together from its components: none is part of itself or
    /// missing, and they are neither too deep nor too many.
    [[nodiscard]] bool IsSound(std::uint32_t glyph) { return PartsOf(glyph, 0) <= kMostParts; }

    /// Sets the marks (by index) of a sound glyph and of its components.
    void MarkParts(std::uint32_t glyph, std::vector<bool>& marks) const;

private:
    static constexpr std::uint32_t kMostParts = 256;
    static constexpr std::uint32_t kTooMany = kMostParts + 1;

    /// How many glyphs are drawn for one, at most `kTooMany`.
    std::uint32_t PartsOf(std::uint32_t glyph, int depth);

    ByteView mGlyf;
    ByteView mLoca;
    bool mIsLong;
    std::vector<std::uint16_t> mParts;  // by glyph; 0 unknown
};

}  // namespace VANTIX::HOST
