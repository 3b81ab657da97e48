// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace VANTIX::TEST {

/// Operands and operators of a Type 2 charstring: numbers up to 1999, those with fractions
/// in 16.16; operators from 2000 on, those behind an escape from 3000 on.
inline std::string Type2(const std::vector<double>& words) {
    std::string code;
    for (const double word : words) {
        const auto whole = static_cast<int>(word);
        if (word >= 3000) {
            code += {'\x0C', static_cast<char>(whole - 3000)};
        } else if (word >= 2000) {
            code += static_cast<char>(whole - 2000);
        } else if (word == std::floor(word)) {
            code += {'\x1C', static_cast<char>(whole >> 8), static_cast<char>(whole)};
        } else {
            const auto bits = static_cast<unsigned>(static_cast<int>(std::lround(word * 65536)));
            code += {'\xFF', static_cast<char>(bits >> 24U), static_cast<char>(bits >> 16U),
                     static_cast<char>(bits >> 8U), static_cast<char>(bits)};
        }
    }
    return code;
}

inline constexpr double kT2HStem = 2001;
inline constexpr double kT2VStem = 2003;
inline constexpr double kT2VMove = 2004;
inline constexpr double kT2Line = 2005;
inline constexpr double kT2Call = 2010;
inline constexpr double kT2Back = 2011;
inline constexpr double kT2End = 2014;
inline constexpr double kT2Mask = 2019;
inline constexpr double kT2Move = 2021;
inline constexpr double kT2HMove = 2022;
inline constexpr double kT2CallGlobal = 2029;
inline constexpr double kT2Div = 3012;

/// A CFF font in pieces that a test may change. "A" is a triangle of 500 units by local subroutine
/// 0, "B" one of 300 by global subroutine 0, "acute" one by itself, "Aacute" both of them.
/// Advances: 600 by default, those that glyphs have beside 500.
struct MadeCff {
    struct Glyph {
        int string = 0;  ///< of the standard ones, or the CID
        std::string code;
    };

    std::string name = "Made";
    std::string topEntries;
    std::string privateEntries = std::string("\x1C\x02\x58\x14\x1C\x01\xF4\x15", 8);
    std::vector<std::string> strings = {"odd (name)"};
    std::vector<std::string> globals = {Type2({300, 0, kT2Line, 0, 300, kT2Line, kT2Back})};
    std::vector<std::string> locals = {Type2({500, 0, kT2Line, 0, 500, kT2Line, kT2Back})};
    std::vector<Glyph> glyphs = {
        {0, Type2({-250, kT2End})},
        {34, Type2({10, kT2HMove, -107, kT2Call, kT2End})},
        {35, Type2({200, 20, 0, kT2Move, -107, kT2CallGlobal, kT2End})},
        {125, Type2({-167, 50, 550, kT2Move, 90, 0, kT2Line, 0, 90, kT2Line, kT2End})},
        {171, Type2({0, 100, 65, 194, kT2End})}};
    std::string encoding;  ///< standard where it is empty
    bool isCidKeyed = false;
    std::string selection;                  ///< FDSelect of a CID-keyed font
    std::vector<std::string> fontDicts;     ///< its entries beside /Private
    std::size_t cutAt = std::string::npos;  ///< where the file ends

    static std::string Long(std::size_t value) {
        return {'\x1D', static_cast<char>(value >> 24U), static_cast<char>(value >> 16U),
                static_cast<char>(value >> 8U), static_cast<char>(value)};
    }

    static std::string Word(std::size_t value) {
        return {static_cast<char>(value >> 8U), static_cast<char>(value)};
    }

    static std::string Index(const std::vector<std::string>& entries) {
        if (entries.empty()) {
            return Word(0);
        }
        std::string text = Word(entries.size()) + '\4';
        std::string data;
        for (std::size_t i = 0; i <= entries.size(); ++i) {
            text += Long(data.size() + 1).substr(1);
            data += i < entries.size() ? entries[i] : "";
        }
        return text + data;
    }

    /// The Top DICT with what lies behind the subroutines, which begin at `base`.
    [[nodiscard]] std::pair<std::string, std::string> Parts(std::size_t base) const {
        std::string data;
        const auto place = [&](const std::string& part) {
            const std::size_t offset = base + data.size();
            data += part;
            return Long(offset);
        };
        std::string charset(1, '\0');
        std::vector<std::string> codes;
        for (const Glyph& glyph : glyphs) {
            charset += &glyph == glyphs.data() ? "" : Word(static_cast<std::size_t>(glyph.string));
            codes.push_back(glyph.code);
        }
        std::string top = isCidKeyed ? Long(391) + Long(391) + Long(0) + "\x0C\x1E" : "";
        top += topEntries + place(charset) + '\x0F';
        top += encoding.empty() ? "" : place(encoding) + '\x10';
        top += place(Index(codes)) + '\x11';
        const std::string hints = privateEntries + Long(privateEntries.size() + 6) + '\x13';
        const std::string hintPlace = Long(hints.size()) + place(hints + Index(locals)) + '\x12';
        if (!isCidKeyed) {
            return {top + hintPlace, data};
        }
        std::vector<std::string> dicts = fontDicts;
        for (std::string& dict : dicts) {
            dict += hintPlace;
        }
        top += place(selection) + "\x0C\x25";
        return {top + place(Index(dicts)) + "\x0C\x24", data};
    }

    [[nodiscard]] std::vector<std::uint8_t> Bytes() const {
        const std::string start = std::string("\1\0\4\4", 4) + Index({name});
        const std::string middle = Index(strings) + Index(globals);
        const std::size_t base = (start + Index({Parts(0).first}) + middle).size();
        const auto [top, data] = Parts(base);
        const std::string all = (start + Index({top}) + middle + data).substr(0, cutAt);
        return {all.begin(), all.end()};
    }
};

}  // namespace VANTIX::TEST
