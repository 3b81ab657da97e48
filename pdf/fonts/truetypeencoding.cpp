// SPDX-License-Identifier: MIT
#include "pdf/fonts/truetypeencoding.h"

#include <charconv>
#include <map>
#include <string_view>

namespace VANTIX::PDF {

namespace {

/// The code of a name in Mac OS Roman, 0 for none.
std::uint8_t MacCodeOf(std::string_view name) {
    static const std::map<std::string_view, std::uint8_t> kCodes = [] {
        std::map<std::string_view, std::uint8_t> codes;
        const auto& names = HOST::NamesOf(HOST::BaseEncoding::kMacRoman);
        for (std::size_t code = 0; code < names.size(); ++code) {
            codes.emplace(names[code], static_cast<std::uint8_t>(code));
        }
        // What the encoding of the system has beyond that of PDF.
        constexpr std::pair<std::string_view, std::uint8_t> kMore[] = {
            {"notequal", 173},    {"infinity", 176},  {"lessequal", 178}, {"greaterequal", 179},
            {"partialdiff", 182}, {"summation", 183}, {"product", 184},   {"pi", 185},
            {"integral", 186},    {"Omega", 189},     {"radical", 195},   {"approxequal", 197},
            {"Delta", 198},       {"lozenge", 215},   {"Euro", 219},      {"apple", 240}};
        codes.insert(std::begin(kMore), std::end(kMore));
        codes.erase(std::string_view());
        return codes;
    }();
    const auto found = kCodes.find(name);
    return found == kCodes.end() ? std::uint8_t{0} : found->second;
}

/// Names that number the glyphs: "g12", "glyph12", "cid12", "index12".
std::uint16_t NumberedGlyph(const HOST::TrueTypeProgram& program, std::string_view name) {
    for (const std::string_view prefix : {"glyph", "cid", "index", "gid", "g"}) {
        std::uint16_t number = 0;
        const char* end = name.data() + name.size();
        if (name.starts_with(prefix) && name.size() > prefix.size() &&
            std::from_chars(name.data() + prefix.size(), end, number).ptr == end &&
            number < program.GlyphCount()) {
            return number;
        }
    }
    return 0;
}

std::uint16_t GlyphOfName(const HOST::TrueTypeProgram& program, std::string_view name) {
    std::uint16_t glyph = 0;
    const auto character = HOST::UnicodeOfGlyphName(name);
    if (character && program.HasUnicodeMap()) {
        glyph = program.GlyphOfUnicode(*character);
    }
    if (glyph == 0 && program.HasMacMap()) {
        if (const std::uint8_t code = MacCodeOf(name); code != 0) {
            glyph = program.GlyphOfMac(code);
        }
    }
    if (glyph == 0) {
        glyph = program.GlyphOfPostName(name);
    }
    return glyph;
}

std::uint16_t GlyphOfCode(const HOST::TrueTypeProgram& program, std::uint8_t code) {
    if (program.HasSymbolMap()) {
        for (const std::uint32_t page : {0xF000U, 0xF100U, 0xF200U, 0U}) {
            if (const std::uint16_t glyph = program.GlyphOfSymbol(page + code); glyph != 0) {
                return glyph;
            }
        }
    }
    if (program.HasMacMap()) {
        if (const std::uint16_t glyph = program.GlyphOfMac(code); glyph != 0) {
            return glyph;
        }
    }
    if (program.HasUnicodeMap()) {
        const std::uint16_t glyph = program.GlyphOfUnicode(code);
        return glyph != 0 ? glyph
                          : GlyphOfName(program, HOST::NamesOf(HOST::BaseEncoding::kWinAnsi)[code]);
    }
    const bool hasMap = program.HasSymbolMap() || program.HasMacMap();
    return !hasMap && code < program.GlyphCount() ? code : std::uint16_t{0};
}

}  // namespace

std::array<std::uint16_t, HOST::kSimpleCodes> TrueTypeGlyphs(const HOST::TrueTypeProgram& program,
                                                             const FontEncoding& encoding,
                                                             SymbolFlags flags) {
    // What an encoding leaves open is standard, but in fonts with an encoding of their own.
    const bool hasOwn = flags.isSymbolic || (!flags.isNonsymbolic && !encoding.hasDifferences);
    const GlyphNames names =
        encoding.Names(hasOwn ? GlyphNames() : GlyphNamesOf(HOST::BaseEncoding::kStandard));
    // A map of symbols holds the codes of the document, whatever names it gives them.
    const bool codesFirst = flags.isSymbolic && program.HasSymbolMap() && !program.HasUnicodeMap();
    std::array<std::uint16_t, HOST::kSimpleCodes> glyphs{};
    for (std::size_t i = 0; i < glyphs.size(); ++i) {
        const std::string& name = names[i];
        const auto code = static_cast<std::uint8_t>(i);
        const bool isNotdef = encoding.differences[i] == ".notdef";
        const bool byCode = codesFirst && encoding.differences[i].empty();
        std::uint16_t glyph = byCode ? GlyphOfCode(program, code) : std::uint16_t{0};
        if (glyph == 0 && !name.empty()) {
            glyph = GlyphOfName(program, name);
        }
        // A character that the program can name and does not have is not guessed at.
        const bool isKnown = program.HasUnicodeMap() && HOST::UnicodeOfGlyphName(name);
        if (glyph == 0 && !isNotdef && !isKnown) {
            glyph = GlyphOfCode(program, code);
        }
        if (glyph == 0 && !name.empty()) {
            glyph = NumberedGlyph(program, name);
        }
        glyphs[i] = glyph;
    }
    return glyphs;
}

}  // namespace VANTIX::PDF
