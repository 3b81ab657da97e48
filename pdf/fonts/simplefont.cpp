// SPDX-License-Identifier: MIT
#include "pdf/fonts/simplefont.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "host/fonts/standardfonts.h"

namespace VANTIX::PDF {

namespace {

bool HasOwnEncoding(const FontDictionary& font) {
    return font.symbols.isSymbolic && !font.symbols.isNonsymbolic;
}

/// The encoding of the font by itself.
GlyphNames OwnNames(const FontDictionary& font, const FontSource& source) {
    if (!source.standard.empty()) {
        return GlyphNamesOf(HOST::EncodingOfStandardFont(source.standard));
    }
    const HOST::NamedProgram* named = source.program == nullptr ? nullptr : source.program->Named();
    return named != nullptr && (source.isEmbedded || HasOwnEncoding(font))
               ? named->Encoding()
               : GlyphNamesOf(HOST::BaseEncoding::kStandard);
}

/// A glyph of the program by its name or another name of the same character; empty for none.
std::string GlyphCalled(const HOST::SimpleProgram& program, const std::string& name) {
    if (name.empty() || program.WidthOf(name) >= 0.0F) {
        return name;
    }
    constexpr std::pair<std::string_view, std::string_view> kAliases[] = {
        {"nbspace", "space"},        {"sfthyphen", "hyphen"}, {"mu", "mu1"},
        {"Delta", "increment"},      {"Omega", "Ohm"},        {"Tcommaaccent", "Tcedilla"},
        {"tcommaaccent", "tcedilla"}};
    for (const auto& [one, other] : kAliases) {
        const std::string_view alias = name == one ? other : (name == other ? one : "");
        if (!alias.empty() && program.WidthOf(alias) >= 0.0F) {
            return std::string(alias);
        }
    }
    const std::optional<char32_t> character = HOST::UnicodeOfGlyphName(name);
    const std::string standard = character ? HOST::GlyphNameOfUnicode(*character) : std::string();
    return !standard.empty() && program.WidthOf(standard) >= 0.0F ? standard : std::string();
}

void UseNamedGlyphs(const FontDictionary& font, const FontSource& source, const CodeSet& codes,
                    GlyphNames& encoding) {
    HOST::NamedProgram& program = *source.program->Named();
    const bool hasNames = source.program->hasNames;
    const GlyphNames names =
        hasNames ? font.encoding.Names(OwnNames(font, source)) : program.Encoding();
    for (std::size_t code = 0; code < names.size(); ++code) {
        if (!codes[code]) {
            continue;
        }
        encoding[code] = GlyphCalled(program, names[code]);
        if (encoding[code].empty() && HasOwnEncoding(font) && hasNames &&
            font.encoding.differences[code].empty()) {
            encoding[code] = GlyphCalled(program, program.Encoding()[code]);
        }
        if (!encoding[code].empty()) {
            program.UseGlyph(encoding[code]);
        }
    }
}

/// What the glyph at a code is to be called: as the encoding or the text of the document tells the
/// character, else as the program has it.
std::string NameFor(const FontDictionary& font, const HOST::TrueTypeProgram& program,
                    std::uint32_t code, const std::string& name, std::uint16_t glyph) {
    std::string wanted = TellingName(font, code, name);
    if (wanted.empty()) {
        wanted = program.PostNameOf(glyph);
    }
    return wanted.empty() || wanted == ".notdef" ? "g" + std::to_string(glyph) : wanted;
}

void UseTrueTypeGlyphs(const FontDictionary& font, const FontSource& source, const CodeSet& codes,
                       GlyphNames& encoding) {
    HOST::TrueTypeProgram& program = *source.program->trueType;
    const SymbolFlags flags =
        source.isEmbedded ? font.symbols : SymbolFlags{HasOwnEncoding(font), !HasOwnEncoding(font)};
    const auto glyphs = TrueTypeGlyphs(program, font.encoding, flags);
    const GlyphNames names = font.encoding.Names(
        flags.isNonsymbolic ? GlyphNamesOf(HOST::BaseEncoding::kStandard) : GlyphNames());
    for (std::size_t i = 0; i < glyphs.size(); ++i) {
        if (codes[i] && glyphs[i] != 0) {
            const auto code = static_cast<std::uint32_t>(i);
            encoding[i] =
                program.NameGlyph(glyphs[i], NameFor(font, program, code, names[i], glyphs[i]));
        }
    }
}

}  // namespace

std::string TellingName(const FontDictionary& font, std::uint32_t code, const std::string& name) {
    if (!name.empty() && HOST::UnicodeOfGlyphName(name)) {
        return name;
    }
    const auto text = font.texts.find(code);
    return text == font.texts.end() ? std::string() : GlyphNameOfText(text->second);
}

CodeSet DescribedCodes(const FontDictionary& font) {
    CodeSet codes;
    for (std::int32_t code = font.firstCode; code <= font.lastCode; ++code) {
        codes.set(static_cast<std::size_t>(code));
    }
    return codes;
}

HOST::SimpleFontDescription DescribeSimpleFont(const FontDictionary& font, const FontSource& source,
                                               const CodeSet& codes) {
    HOST::SimpleFontDescription description;
    static_cast<HOST::FontDescription&>(description) = DescribeFont(font);
    description.name = source.program != nullptr ? source.program->name : source.name;
    description.widths = font.widths;
    if (source.program == nullptr) {
        description.encoding = font.encoding.Names(OwnNames(font, source));
    } else if (const HOST::NamedProgram* named = source.program->Named()) {
        description.box = named->Box();
        UseNamedGlyphs(font, source, codes, description.encoding);
    } else {
        description.box = source.program->trueType->Box();
        UseTrueTypeGlyphs(font, source, codes, description.encoding);
    }
    return description;
}

TInterfacePtr<HOST::SimpleFont> MakeSimpleFont(const FontDictionary& font, const FontSource& source,
                                               HOST::SimpleFontDescription description) {
    if (source.program != nullptr && source.program->type1) {
        return HOST::MakeType1Font(source.program->type1, std::move(description));
    }
    if (source.program != nullptr && source.program->cff) {
        return HOST::MakeCFFFont(source.program->cff, std::move(description));
    }
    if (source.program != nullptr) {
        return HOST::MakeTrueTypeFont(source.program->trueType, std::move(description));
    }
    std::array<float, HOST::kSimpleCodes> widths{};
    widths.fill(-1.0F);
    if (!source.standard.empty()) {
        std::transform(
            description.encoding.begin(), description.encoding.end(), widths.begin(),
            [&](const std::string& glyph) { return HOST::StandardWidth(source.standard, glyph); });
    }
    const bool isNamed = font.encoding.base || font.encoding.hasDifferences;
    const bool reEncoded = isNamed && description.encoding != OwnNames(font, source);
    return HOST::MakeResidentFont(std::move(description), reEncoded, widths);
}

bool IsExtractable(const HOST::SimpleFontDescription& description) {
    return std::all_of(description.encoding.begin(), description.encoding.end(),
                       [](const std::string& glyph) {
                           return glyph.empty() || HOST::UnicodeOfGlyphName(glyph).has_value();
                       });
}

}  // namespace VANTIX::PDF
