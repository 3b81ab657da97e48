// SPDX-License-Identifier: MIT
#include "host/fonts/glyphnames.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/fonts/standardfonts.h"

namespace VANTIX::HOST {
namespace {

struct NameCase {
    std::string name;
    std::optional<char32_t> character;
};

class GlyphNames : public testing::TestWithParam<NameCase> {};

TEST_P(GlyphNames, StandForTheirFirstCharacter) {
    EXPECT_EQ(UnicodeOfGlyphName(GetParam().name), GetParam().character);
}

INSTANTIATE_TEST_SUITE_P(
    All, GlyphNames,
    testing::Values(NameCase{"A", U'A'}, NameCase{"A.small", U'A'}, NameCase{"fi", U'ﬁ'},
                    NameCase{"f_f_i", U'f'}, NameCase{"uni20AC", U'€'}, NameCase{"Euro", U'€'},
                    NameCase{"uni20AC0308", U'€'}, NameCase{"u1F600", char32_t{0x1F600}},
                    NameCase{"zukatakana", U'ズ'}, NameCase{"uniD800", {}}, NameCase{"uni20", {}},
                    NameCase{"u110000", {}}, NameCase{"uni20ac", {}}, NameCase{".notdef", {}},
                    NameCase{"", {}}, NameCase{"g12", {}}, NameCase{"union", U'∪'}));

TEST(GlyphNames, OfCharactersReadBack) {
    EXPECT_EQ(GlyphNameOfUnicode(U'A'), "A");
    EXPECT_EQ(GlyphNameOfUnicode(U'Ω'), "uni03A9");
    EXPECT_EQ(GlyphNameOfUnicode(0x1F600), "u1F600");
    for (char32_t character = 1; character < 0xD800; ++character) {
        ASSERT_EQ(UnicodeOfGlyphName(GlyphNameOfUnicode(character)), character);
    }
}

TEST(GlyphNames, AreSafeBehindASlash) {
    EXPECT_EQ(SanitiseGlyphName("a(b) c/\xE9"), "a#28b#29#20c#2F#E9");
    EXPECT_EQ(SanitiseGlyphName("ordinary.alt-1"), "ordinary.alt-1");
    EXPECT_EQ(SanitiseGlyphName(std::string(300, '%')).size(), 127U);
}

TEST(Encodings, HaveTheirCharacteristicCodes) {
    EXPECT_EQ(NamesOf(BaseEncoding::kStandard)[0x27], "quoteright");
    EXPECT_EQ(NamesOf(BaseEncoding::kStandard)[0xFB], "germandbls");
    EXPECT_EQ(NamesOf(BaseEncoding::kWinAnsi)[0x80], "Euro");
    EXPECT_EQ(NamesOf(BaseEncoding::kWinAnsi)[0x81], "bullet");
    EXPECT_EQ(NamesOf(BaseEncoding::kWinAnsi)[0xA0], "space");
    EXPECT_EQ(NamesOf(BaseEncoding::kWinAnsi)[0x1F], "");
    EXPECT_EQ(NamesOf(BaseEncoding::kMacRoman)[0x8A], "adieresis");
    EXPECT_EQ(NamesOf(BaseEncoding::kMacRoman)[0xAD], "notequal");
    EXPECT_EQ(NamesOf(BaseEncoding::kMacExpert)[0x57], "fi");
    EXPECT_EQ(NamesOf(BaseEncoding::kSymbol)[0x61], "alpha");
    EXPECT_EQ(NamesOf(BaseEncoding::kZapfDingbats)[0x21], "a1");
}

TEST(StandardFonts, HaveTheNamesThatDocumentsGiveThem) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"Arial", "Helvetica"},
        {"ArialMT", "Helvetica"},
        {"Arial,Bold", "Helvetica-Bold"},
        {"Arial-BoldItalicMT", "Helvetica-BoldOblique"},
        {"TimesNewRoman", "Times-Roman"},
        {"Times New Roman,Italic", "Times-Italic"},
        {"TimesNewRomanPSMT", "Times-Roman"},
        {"TimesNewRomanPS-BoldMT", "Times-Bold"},
        {"Times-Roman", "Times-Roman"},
        {"CourierNewPS-BoldItalicMT", "Courier-BoldOblique"},
        {"CourierNew", "Courier"},
        {"SymbolMT", "Symbol"},
        {"Symbol,Bold", "Symbol"},
        {"ZapfDingbats", "ZapfDingbats"},
    };
    for (const auto& [name, font] : cases) {
        EXPECT_EQ(StandardFontOf(name), font) << name;
    }
    for (const char* name :
         {"Helvetica-Narrow", "ArialNarrow", "Arial-Black", "TimesTen", "", "MT"}) {
        EXPECT_FALSE(StandardFontOf(name)) << name;
    }
}

TEST(StandardFonts, HaveTheAdvancesOfTheirGlyphs) {
    EXPECT_FLOAT_EQ(StandardWidth("Helvetica-Oblique", "A"), 0.667F);
    EXPECT_FLOAT_EQ(StandardWidth("Times-BoldItalic", "AE"), 0.944F);
    EXPECT_FLOAT_EQ(StandardWidth("Courier-Bold", "Euro"), 0.6F);
    EXPECT_FLOAT_EQ(StandardWidth("Symbol", "alpha"), 0.631F);
    EXPECT_FLOAT_EQ(StandardWidth("ZapfDingbats", "a1"), 0.974F);
    EXPECT_LT(StandardWidth("Helvetica", "alpha"), 0.0F);
    EXPECT_LT(StandardWidth("Papyrus", "A"), 0.0F);
    for (const auto encoding : {BaseEncoding::kStandard, BaseEncoding::kWinAnsi}) {
        for (const std::string_view name : NamesOf(encoding)) {
            EXPECT_TRUE(name.empty() || StandardWidth("Times-Roman", name) > 0.0F) << name;
        }
    }
}

}  // namespace
}  // namespace VANTIX::HOST
