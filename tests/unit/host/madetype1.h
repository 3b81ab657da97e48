// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace VANTIX::TEST {

/// Encryption by Adobe Type 1 Font Format, chapter 7.
inline std::string EncryptedType1(std::string_view plain, unsigned key) {
    std::string cipher;
    for (const char each : plain) {
        const unsigned byte = (static_cast<unsigned char>(each) ^ (key >> 8U)) & 0xFFU;
        cipher += static_cast<char>(byte);
        key = ((byte + key) * 52845U + 22719U) & 0xFFFFU;
    }
    return cipher;
}

inline std::string HexadecimalOf(std::string_view bytes) {
    std::string digits;
    for (const char each : bytes) {
        const auto byte = static_cast<unsigned char>(each);
        digits += {"0123456789ABCDEF"[byte / 16], "0123456789ABCDEF"[byte % 16]};
    }
    return digits;
}

/// Operands and operators of a charstring: numbers from -1000 to 1000, operators from 2000 on,
/// those behind an escape from 3000 on.
inline std::string CharString(const std::vector<int>& words) {
    std::string code;
    for (const int word : words) {
        if (word >= 3000) {
            code += {'\x0C', static_cast<char>(word - 3000)};
        } else if (word >= 2000) {
            code += static_cast<char>(word - 2000);
        } else {
            const auto bits = static_cast<unsigned>(word);
            code += {'\xFF', static_cast<char>(bits >> 24U), static_cast<char>(bits >> 16U),
                     static_cast<char>(bits >> 8U), static_cast<char>(bits)};
        }
    }
    return code;
}

inline constexpr int kLine = 2005;      // rlineto
inline constexpr int kClose = 2009;     // closepath
inline constexpr int kCall = 2010;      // callsubr
inline constexpr int kBack = 2011;      // return
inline constexpr int kWidth = 2013;     // hsbw
inline constexpr int kEnd = 2014;       // endchar
inline constexpr int kMove = 2021;      // rmoveto
inline constexpr int kAccented = 3006;  // seac
inline constexpr int kDivide = 3012;    // div

/// A Type 1 program in pieces that a test may change. "A" is a triangle of 500 units by subroutine
/// 5, "acute" one by itself, "Aacute" both of them; subroutine 6 is called by "B" alone.
struct MadeType1 {
    std::string before;
    std::string name = "Made";
    std::string encoding = "StandardEncoding def";
    std::string matrix = "[0.001 0 0 0.001 0 0]";
    int lenIV = 4;
    std::string read = "RD";
    std::string put = "NP";
    std::string define = "ND";
    std::vector<std::pair<int, std::string>> subroutines = {
        {0, CharString({kBack})},
        {5, CharString({500, 0, kLine, 0, 500, kLine, kClose, kBack})},
        {6, CharString({300, 0, kLine, 0, 300, kLine, kClose, kBack})}};
    std::vector<std::pair<std::string, std::string>> glyphs = {
        {".notdef", CharString({0, 250, kWidth, kEnd})},
        {"A", CharString({0, 600, kWidth, 10, 0, kMove, 5, kCall, kEnd})},
        {"B", CharString({0, 1400, 2, kDivide, kWidth, 20, 0, kMove, 6, kCall, kEnd})},
        {"acute",
         CharString({0, 333, kWidth, 50, 550, kMove, 90, 0, kLine, 0, 90, kLine, kClose, kEnd})},
        {"Aacute", CharString({0, 600, kWidth, 0, 100, 0, 65, 194, kAccented})}};
    std::string closing =
        "end\nend\nreadonly put\nnoaccess put\ndup /FontName get exch definefont pop\n"
        "mark currentfile closefile\n";
    bool isHexadecimal = false;
    std::string trailer = "\n" + std::string(512, '0') + "\ncleartomark\n";

    [[nodiscard]] std::string ClearText() const {
        return "%!PS-AdobeFont-1.0: " + name + " 1.0\n" + before + "8 dict begin\n/FontName /" +
               name + " def\n/PaintType 0 def\n/FontType 1 def\n/FontMatrix " + matrix +
               " readonly def\n/FontBBox {0 -10 700 800} readonly def\n/Encoding " + encoding +
               "\ncurrentdict end\ncurrentfile eexec\n";
    }

    [[nodiscard]] std::string Charstring(const std::string& code) const {
        const std::string bytes =
            lenIV < 0
                ? code
                : EncryptedType1(std::string(static_cast<std::size_t>(lenIV), 'x') + code, 4330);
        return std::to_string(bytes.size()) + " " + read + " " + bytes + " ";
    }

    [[nodiscard]] std::string PrivateText() const {
        std::string text = "dup /Private 9 dict dup begin\n/" + read +
                           " {string currentfile exch readstring pop} executeonly def\n/" + define +
                           " {noaccess def} executeonly def\n/" + put +
                           " {noaccess put} executeonly def\n/BlueValues [] def\n/password 5839 "
                           "def\n/MinFeature {16 16} def\n/lenIV " +
                           std::to_string(lenIV) + " def\n/Subrs 7 array\n";
        for (const auto& [number, code] : subroutines) {
            text += "dup " + std::to_string(number) + " " + Charstring(code) + put + "\n";
        }
        text += define + "\n2 index /CharStrings " + std::to_string(glyphs.size()) +
                " dict dup begin\n";
        for (const auto& [glyph, code] : glyphs) {
            text += "/" + glyph + " " + Charstring(code) + define + "\n";
        }
        return text + closing;
    }

    [[nodiscard]] std::vector<std::uint8_t> Bytes() const {
        const std::string encrypted = EncryptedType1("abcd" + PrivateText(), 55665);
        const std::string all =
            ClearText() + (isHexadecimal ? HexadecimalOf(encrypted) : encrypted) + trailer;
        return {all.begin(), all.end()};
    }
};

}  // namespace VANTIX::TEST
