// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

namespace VANTIX::TEST {

/// Numbers of two bytes.
inline std::string Words(std::initializer_list<int> values) {
    std::string bytes;
    for (const int value : values) {
        bytes += static_cast<char>(static_cast<unsigned>(value) >> 8U);
        bytes += static_cast<char>(value);
    }
    return bytes;
}

inline std::string LongWord(std::size_t value) {
    return Words({static_cast<int>(value >> 16U), static_cast<int>(value & 0xFFFFU)});
}

/// An sfnt of tables, without checksums.
inline std::string MakeSfnt(const std::map<std::string, std::string>& tables,
                            const std::string& version = std::string("\0\1\0\0", 4)) {
    const auto count = static_cast<int>(tables.size());
    std::string directory = version + Words({count, 0, 0, 0});
    std::string data;
    for (const auto& [tag, bytes] : tables) {
        directory += tag + LongWord(0) + LongWord(12 + tables.size() * 16 + data.size()) +
                     LongWord(bytes.size());
        data += bytes;
        data.resize((data.size() + 3) / 4 * 4);
    }
    return directory + data;
}

/// A triangle 100 units high with a curve in it, and a contour of one point.
inline std::string TriangleGlyph(int width) {
    // Flags: on the curve, but for the third point; all coordinates in words.
    return Words({2, 0, 0, width, 100, 3, 4, 0}) + std::string("\1\1\0\1\1", 5) +
           Words({0, width, 0, -width, 5}) + Words({0, 0, 100, 0, 7}) + std::string(1, '\0');
}

/// Glyphs side by side.
inline std::string CompositeGlyph(const std::vector<int>& components) {
    std::string glyph = Words({-1, 0, 0, 200, 100});
    for (std::size_t i = 0; i < components.size(); ++i) {
        const int more = i + 1 < components.size() ? 0x20 : 0;
        glyph += Words({0x3 | more, components[i], 100 * static_cast<int>(i), 0});
    }
    return glyph;
}

/// The tables of a font of 1000 units per em with these glyphs, 500 units wide each.
inline std::map<std::string, std::string> MadeTables(const std::vector<std::string>& glyphs) {
    std::map<std::string, std::string> tables;
    std::string& loca = tables["loca"] = LongWord(0);
    for (std::string glyph : glyphs) {
        glyph.resize((glyph.size() + 3) / 4 * 4);
        tables["glyf"] += glyph;
        tables["hmtx"] += Words({500, 0});
        loca += LongWord(tables["glyf"].size());
    }
    const auto count = static_cast<int>(glyphs.size());
    tables["head"] = LongWord(0x10000) + LongWord(0x10000) + LongWord(0) + LongWord(0x5F0F3CF5) +
                     Words({3, 1000, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 200, 100, 0, 8, 2, 1, 0});
    tables["hhea"] =
        LongWord(0x10000) + Words({800, -200, 0, 500, 0, 0, 500, 1, 0, 0, 0, 0, 0, 0, 0, count});
    tables["maxp"] = LongWord(0x10000) + Words({count, 9, 2, 9, 2, 2, 0, 0, 0, 0, 0, 0, 2, 2});
    return tables;
}

}  // namespace VANTIX::TEST
