// SPDX-License-Identifier: MIT
#include "host/fonts/glyphnames.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <unordered_map>

#include "host/fonts/fonttables.h"
#include "host/fonts/tablewords.h"

namespace VANTIX::HOST {
namespace {

constexpr std::size_t kMostNameLength = 127;
constexpr char32_t kLastCharacter = 0x10FFFF;

/// The Adobe Glyph List in both directions.
struct GlyphList {
    std::unordered_map<std::string_view, char32_t> characters;
    std::unordered_map<char32_t, std::string_view> names;

    GlyphList() {
        TableWords words(FONTTABLES::kGlyphList);
        for (std::string_view word = words.Next(); !word.empty(); word = words.Next()) {
            const std::size_t sign = word.find_first_of(":=");
            std::uint32_t character = 0;
            std::from_chars(word.data() + sign + 1, word.data() + word.size(), character, 16);
            const std::string_view name = word.substr(0, sign);
            characters.emplace(name, character);
            if (word[sign] == '=') {
                names.emplace(character, name);
            }
        }
    }
};

const GlyphList& TheGlyphList() {
    static const GlyphList list;
    return list;
}

/// The character that upper-case hexadecimal digits stand for.
std::optional<char32_t> CharacterOfDigits(std::string_view digits) {
    if (digits.find_first_not_of("0123456789ABCDEF") != std::string_view::npos) {
        return std::nullopt;
    }
    std::uint32_t character = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), character, 16);
    const bool isSurrogate = character >= 0xD800 && character <= 0xDFFF;
    if (character > kLastCharacter || isSurrogate) {
        return std::nullopt;
    }
    return character;
}

std::array<std::string_view, 256> ReadEncoding(std::string_view table) {
    std::array<std::string_view, 256> names;
    TableWords words(table);
    std::size_t code = 0;
    for (std::string_view word = words.Next(); !word.empty(); word = words.Next()) {
        if (word.front() >= '0' && word.front() <= '9') {
            std::from_chars(word.data(), word.data() + word.size(), code);
            continue;
        }
        names.at(code++) = word;
    }
    return names;
}

}  // namespace

std::optional<char32_t> UnicodeOfGlyphName(std::string_view name) {
    name = name.substr(0, name.find('.'));
    const auto& characters = TheGlyphList().characters;
    // A listed name may hold an underscore; else one stands between the parts of a ligature.
    for (const std::string_view part : {name, name.substr(0, name.find('_'))}) {
        const auto found = characters.find(part);
        if (found != characters.end()) {
            return found->second;
        }
        if (part.starts_with("uni") && part.size() >= 7 && (part.size() - 3) % 4 == 0) {
            return CharacterOfDigits(part.substr(3, 4));
        }
        if (part.starts_with("u") && part.size() >= 5 && part.size() <= 7) {
            return CharacterOfDigits(part.substr(1));
        }
    }
    return std::nullopt;
}

std::string GlyphNameOfUnicode(char32_t character) {
    const auto& names = TheGlyphList().names;
    const auto found = names.find(character);
    if (found != names.end()) {
        return std::string(found->second);
    }
    std::array<char, 16> name{};
    const int length =
        std::snprintf(name.data(), name.size(), "%s%04X", character > 0xFFFF ? "u" : "uni",
                      static_cast<unsigned>(character));
    return {name.data(), static_cast<std::size_t>(length)};
}

std::string SanitiseGlyphName(std::string_view name) {
    constexpr std::string_view kDelimiters = "()<>[]{}/%";
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string result;
    for (const char each : name) {
        const auto byte = static_cast<std::uint8_t>(each);
        if (byte > ' ' && byte < 0x7F && kDelimiters.find(each) == std::string_view::npos) {
            result += each;
        } else {
            // Digits, so that names that differ in such bytes alone stay apart.
            result += {'#', kDigits[byte >> 4U], kDigits[byte & 0xFU]};
        }
    }
    result.resize(std::min(result.size(), kMostNameLength));
    return result;
}

const std::array<std::string_view, 256>& NamesOf(BaseEncoding encoding) {
    static const std::array kEncodings = {
        ReadEncoding(FONTTABLES::kStandardEncoding), ReadEncoding(FONTTABLES::kWinAnsiEncoding),
        ReadEncoding(FONTTABLES::kMacRomanEncoding), ReadEncoding(FONTTABLES::kMacExpertEncoding),
        ReadEncoding(FONTTABLES::kSymbolEncoding),   ReadEncoding(FONTTABLES::kDingbatsEncoding),
    };
    return kEncodings.at(static_cast<std::size_t>(encoding));
}

}  // namespace VANTIX::HOST
