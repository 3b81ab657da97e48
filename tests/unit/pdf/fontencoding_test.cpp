// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <map>
#include <ostream>
#include <utility>

#include "pdf/fonts/encoding.h"
#include "pdf/fonts/tounicode.h"
#include "pdf/fonts/truetypeencoding.h"

namespace VANTIX::TESTS {
namespace {

using namespace PDF;

FontEncoding Encoding(const std::string& text) {
    return ReadEncoding(QPDFObjectHandle::parse(text));
}

TEST(FontEncoding, DifferencesLieOverTheBaseAndStayWithinTheCodes) {
    const FontEncoding encoding = Encoding(
        "<< /BaseEncoding /WinAnsiEncoding "
        "/Differences [65 /Alpha (x) /Gamma 128 /.notdef 254 /b /c /d -1 /e 97.0 /a#28b] >>");
    const GlyphNames names = encoding.Names(GlyphNames());
    EXPECT_EQ(names[65], "Alpha");
    EXPECT_EQ(names[66], "B");  // a place, but nothing said
    EXPECT_EQ(names[67], "Gamma");
    EXPECT_EQ(names[128], "");
    EXPECT_EQ(names[255], "c");
    EXPECT_EQ(names[0], "");
    EXPECT_EQ(names[97], HOST::SanitiseGlyphName("a(b"));
}

TEST(FontEncoding, WhatItDoesNotSayIsTheFontsOwn) {
    GlyphNames own;
    own[65] = "mine";
    for (const char* text : {"/Identity-H", "null", "[65 /A]", "<< /Differences 7 >>"}) {
        const FontEncoding encoding = Encoding(text);
        EXPECT_FALSE(encoding.hasDifferences) << text;
        EXPECT_EQ(encoding.Names(own)[65], "mine") << text;
    }
    EXPECT_EQ(Encoding("/MacRomanEncoding").Names(own)[128], "Adieresis");
}

struct CMapCase {
    const char* text;
    std::uint32_t code;
    const char* glyph;
};

void PrintTo(const CMapCase& value, std::ostream* out) {
    *out << value.text;
}

class ToUnicode : public testing::TestWithParam<CMapCase> {};

TEST_P(ToUnicode, NamesTheGlyphAtACode) {
    const CodeTexts texts = ReadToUnicode(GetParam().text);
    const auto found = texts.find(GetParam().code);
    EXPECT_EQ(found == texts.end() ? "" : GlyphNameOfText(found->second), GetParam().glyph);
}

INSTANTIATE_TEST_SUITE_P(
    Sections, ToUnicode,
    testing::Values(
        CMapCase{"2 beginbfchar <01> <0041> <0002> <00E4> endbfchar", 1, "A"},
        CMapCase{"2 beginbfchar <01> <0041> <0002> <00E4> endbfchar", 2, "adieresis"},
        CMapCase{"1 beginbfrange <10> <12> <0061> endbfrange", 0x12, "c"},
        CMapCase{"1 beginbfrange <10> <12> <0061> endbfrange", 0x13, ""},
        CMapCase{"1 beginbfrange <10> <12> [<0061> /B <0063>] <20> <21> <0030> endbfrange", 0x11,
                 "B"},
        CMapCase{"1 beginbfrange <10> <12> [<0061> /B <0063>] <20> <21> <0030> endbfrange", 0x21,
                 "one"},
        CMapCase{"1 beginbfchar <01> <00660069> endbfchar", 1, "f_i"},
        CMapCase{"1 beginbfchar <01> <D835DC00> endbfchar", 1, "u1D400"},
        CMapCase{"1 beginbfchar <01> <4e2d> endbfchar", 1, "uni4E2D"},
        CMapCase{"begincmap << /Ordering (UCS) >> def 1 beginbfchar <1> <41> endbfchar", 16, "A"}));

INSTANTIATE_TEST_SUITE_P(
    Nonsense, ToUnicode,
    testing::Values(CMapCase{"1 beginbfchar <01> <> <02> <0042> endbfchar", 2, "B"},
                    CMapCase{"1 beginbfchar <01> <0000> endbfchar", 1, ""},
                    CMapCase{"1 beginbfchar <01> <D800> endbfchar", 1, ""},
                    CMapCase{"1 beginbfchar 1 <0041> endbfchar", 1, ""},
                    CMapCase{"1 beginbfrange <05> <01> <0041> endbfrange", 5, ""},
                    CMapCase{"1 beginbfrange <01> <FFFFFF> <0041> endbfrange", 1, ""},
                    CMapCase{"1 beginbfrange <01> <02> [<0041> endbfrange", 1, "A"}));

/// A program with the maps that a test gives it.
class FakeProgram : public HOST::TrueTypeProgram {
public:
    using Map = std::map<std::uint32_t, std::uint16_t>;

    Map unicode;
    Map symbol;
    Map mac;
    std::map<std::string, std::uint16_t, std::less<>> post;

    static std::uint16_t In(const Map& map, std::uint32_t code) {
        const auto found = map.find(code);
        return found == map.end() ? std::uint16_t{0} : found->second;
    }

    [[nodiscard]] bool HasUnicodeMap() const override { return !unicode.empty(); }

    [[nodiscard]] bool HasSymbolMap() const override { return !symbol.empty(); }

    [[nodiscard]] bool HasMacMap() const override { return !mac.empty(); }

    [[nodiscard]] std::uint16_t GlyphOfUnicode(char32_t c) const override { return In(unicode, c); }

    [[nodiscard]] std::uint16_t GlyphOfSymbol(std::uint32_t c) const override {
        return In(symbol, c);
    }

    [[nodiscard]] std::uint16_t GlyphOfMac(std::uint8_t c) const override { return In(mac, c); }

    [[nodiscard]] std::uint16_t GlyphOfPostName(std::string_view name) const override {
        const auto found = post.find(name);
        return found == post.end() ? std::uint16_t{0} : found->second;
    }

    [[nodiscard]] std::string PostNameOf(std::uint16_t) const override { return {}; }

    [[nodiscard]] std::uint32_t GlyphCount() const override { return 100; }

    [[nodiscard]] std::int32_t UnitsPerEm() const override { return 1000; }

    [[nodiscard]] GRAPHICS::FontBox Box() const override { return {}; }

    [[nodiscard]] std::size_t FileSize() const override { return 0; }

    std::string NameGlyph(std::uint16_t, std::string_view wanted) override {
        return std::string(wanted);
    }

    void ExpectConversion(bool) override {}

    [[nodiscard]] bool IsConverted() const override { return false; }

    const HOST::FinishedTrueType& Finish() override { return mFinished; }

    void EnumerateGlyphs(GRAPHICS::IGlyphFunctor&) override {}

    [[nodiscard]] float WidthOf(std::string_view) const override { return 0.0F; }

    [[nodiscard]] bool HasOutline(std::string_view) const override { return true; }

private:
    HOST::FinishedTrueType mFinished;
};

constexpr SymbolFlags kSymbolic{true, false};
constexpr SymbolFlags kPlain{false, true};
constexpr SymbolFlags kSilent{};

struct MapCase {
    const char* what;
    FakeProgram::Map unicode;
    FakeProgram::Map symbol;
    FakeProgram::Map mac;
    const char* encoding;
    SymbolFlags flags;
    std::uint16_t glyph;  // at code 0x80
};

void PrintTo(const MapCase& value, std::ostream* out) {
    *out << value.what;
}

class TrueTypeEncoding : public testing::TestWithParam<MapCase> {};

TEST_P(TrueTypeEncoding, LeadsFromTheCodeToTheGlyph) {
    const MapCase& given = GetParam();
    FakeProgram program;
    program.unicode = given.unicode;
    program.symbol = given.symbol;
    program.mac = given.mac;
    program.post = {{"odd", 70}};
    EXPECT_EQ(TrueTypeGlyphs(program, Encoding(given.encoding), given.flags)[0x80], given.glyph);
}

// WinAnsi has the Euro at 0x80, Mac OS Roman has Adieresis there, and the Euro at 0xDB.
INSTANTIATE_TEST_SUITE_P(
    ByName, TrueTypeEncoding,
    testing::Values(
        MapCase{"Unicode", {{0x20AC, 1}}, {}, {{0x80, 2}}, "/WinAnsiEncoding", kPlain, 1},
        MapCase{"Mac", {}, {}, {{0x80, 2}, {0xDB, 3}}, "/WinAnsiEncoding", kPlain, 3},
        MapCase{"MacCode", {{0xC4, 5}}, {}, {}, "/MacRomanEncoding", kPlain, 5},
        MapCase{"Post", {{1, 1}}, {}, {}, "<< /Differences [128 /odd] >>", kPlain, 70},
        MapCase{"Number", {{1, 1}}, {}, {}, "<< /Differences [128 /g17] >>", kPlain, 17},
        MapCase{"NumberTooLarge", {{1, 1}}, {}, {}, "<< /Differences [128 /g170] >>", kPlain, 0},
        MapCase{
            "SymbolicWithBoth", {{0x20AC, 1}}, {{0xF080, 2}}, {}, "/WinAnsiEncoding", kSymbolic, 1},
        MapCase{"DifferenceInSymbols",
                {},
                {{0xF080, 2}},
                {},
                "<< /Differences [128 /odd] >>",
                kSymbolic,
                70},
        MapCase{
            "Notdef", {{0x80, 1}}, {}, {{0x80, 2}}, "<< /Differences [128 /.notdef] >>", kPlain, 0},
        MapCase{"NotInTheFont", {{0x41, 1}}, {}, {{0x80, 2}}, "/WinAnsiEncoding", kPlain, 0}));

INSTANTIATE_TEST_SUITE_P(
    ByCode, TrueTypeEncoding,
    testing::Values(MapCase{"Symbol", {}, {{0xF080, 2}}, {{0x80, 3}}, "null", kSymbolic, 2},
                    MapCase{"SymbolWithoutPage", {}, {{0x80, 4}}, {}, "null", kSymbolic, 4},
                    MapCase{"SymbolAgainstEncoding",
                            {},
                            {{0xF080, 2}},
                            {{0xDB, 3}},
                            "/WinAnsiEncoding",
                            kSymbolic,
                            2},
                    MapCase{
                        "SymbolInPlainFont", {}, {{0xF080, 2}}, {}, "/WinAnsiEncoding", kPlain, 2},
                    MapCase{"Mac", {}, {}, {{0x80, 3}}, "null", kSymbolic, 3},
                    MapCase{"NoFlags", {}, {}, {{0x80, 3}}, "null", kSilent, 3},
                    MapCase{"UnicodeByCode", {{0x80, 6}}, {}, {}, "null", kSymbolic, 6},
                    MapCase{"UnicodeAsWindows", {{0x20AC, 1}}, {}, {}, "null", kSymbolic, 1},
                    MapCase{"NoMapTooFar", {}, {}, {}, "null", kSymbolic, 0}));

TEST(TrueTypeCodes, AreGlyphsWhereThereIsNoMap) {
    EXPECT_EQ(TrueTypeGlyphs(FakeProgram(), Encoding("null"), kSymbolic)[42], 42);
}

}  // namespace
}  // namespace VANTIX::TESTS
