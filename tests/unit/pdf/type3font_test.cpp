// SPDX-License-Identifier: MIT
#include "pdf/fonts/type3font.h"

#include <gtest/gtest.h>

#include "unit/pdf/pdfplay.h"

namespace VANTIX::TESTS {
namespace {

/// A glyph, and what is found in it.
struct GlyphCase {
    const char* name;
    const char* content;
    const char* found;
};

/// A document whose object 20 is a font with the glyph "a".
PdfText FontWith(std::string_view glyph) {
    PdfText pdf = PdfText::OnePage("");
    pdf.Object(
           20,
           "<< /Subtype /Type3 /FontMatrix [.001 0 0 .001 0 0] /Encoding << /Differences "
           "[97 /a /b /gone] >> /CharProcs << /a 21 0 R /b 22 0 R >> /Resources << /Font << "
           "/Plain 23 0 R /Painted 24 0 R /Self 20 0 R /Text 25 0 R >> /XObject << /Mask 26 0 R "
           "/Image 27 0 R /Form 28 0 R /Loop 29 0 R >> /ExtGState << /State << /Font [23 0 R 1] "
           ">> >> >> >>")
        .Stream(21, glyph)
        .Stream(22, "10 0 d0")
        .Object(23,
                "<< /Subtype /Type3 /Encoding << /Differences [97 /a] >> /CharProcs << /a 22 0 "
                "R >> >>")
        .Object(24,
                "<< /Subtype /Type3 /Encoding << /Differences [97 /a] >> /CharProcs << /a 30 0 "
                "R >> >>")
        .Object(25, "<< /Subtype /Type1 /BaseFont /Helvetica >>")
        .Stream(26, "", "/Subtype /Image /ImageMask true")
        .Stream(27, "", "/Subtype /Image")
        .Stream(28, "1 0 0 rg /Paint Do", "/Subtype /Form")
        .Stream(29, "/Loop Do S", "/Subtype /Form")
        .Stream(30, "1 0 d0 0 g");
    return pdf;
}

std::string Described(const PDF::Type3Font& font) {
    const PDF::GlyphDescription* glyph = font.byCode['a'];
    if (glyph == nullptr) {
        return "none";
    }
    return std::to_string(static_cast<int>(glyph->width)) + ' ' +
           std::to_string(static_cast<int>(glyph->box[2])) +
           (glyph->isColoured ? " coloured" : "") + (glyph->isStroked ? " stroked" : "") +
           (glyph->isPlayed ? " played" : "") +
           (font.height > 1 ? " over " + std::to_string(font.height - 1) : "");
}

class GlyphSurvey : public testing::TestWithParam<GlyphCase> {};

TEST_P(GlyphSurvey, FindsWhatAGlyphDeclaresAndUses) {
    PdfPlay play(FontWith(GetParam().content));
    PDF::Reporter reporter(play.diagnostics);
    PDF::Type3Fonts fonts(reporter);
    const auto font =
        fonts.Read(play.document->Qpdf().getObjectByID(20, 0), QPDFObjectHandle::newNull());
    ASSERT_NE(font, nullptr);
    EXPECT_EQ(Described(*font), GetParam().found);
    EXPECT_NE(font->byCode['b'], nullptr);
    EXPECT_EQ(font->byCode['c'], nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    Glyphs, GlyphSurvey,
    testing::Values(
        GlyphCase{"Uncoloured", "600 0 0 0 500 700 d1 0 0 9 9 re f", "600 500"},
        GlyphCase{"ColoursOfAnUncolouredOne", "600 0 0 0 500 700 d1 1 g 0 0 9 9 re f", "600 500"},
        GlyphCase{"Coloured", "600 0 d0 0 0 9 9 re f", "600 0 coloured"},
        GlyphCase{"Colours", "600 0 d0 /P cs", "600 0 coloured played"},
        GlyphCase{"TheFirstDeclaration", "600 0 d0 1 2 3 4 5 6 d1", "600 0 coloured"},
        GlyphCase{"NoDeclaration", "0 0 9 9 re B*", "0 0 coloured stroked"},
        GlyphCase{"Mask", "600 0 d0 /Mask Do", "600 0 coloured"},
        GlyphCase{"Image", "600 0 d0 /Image Do", "600 0 coloured played"},
        GlyphCase{"InlineMask", "600 0 d0 BI /IM true ID x EI", "600 0 coloured"},
        GlyphCase{"InlineImage", "600 0 d0 BI /IM false ID x EI", "600 0 coloured played"},
        GlyphCase{"FormWithColours", "600 0 d0 /Form Do", "600 0 coloured played"},
        GlyphCase{"FormInItself", "600 0 d0 /Loop Do", "600 0 coloured stroked"},
        GlyphCase{"State", "600 0 d0 /State gs", "600 0 coloured played over 1"},
        GlyphCase{"Text", "600 0 d0 /Text 1 Tf (a) Tj", "600 0 coloured"},
        GlyphCase{"OtherGlyphs", "600 0 d0 /Plain 1 Tf (a) Tj", "600 0 coloured over 1"},
        GlyphCase{"OtherGlyphsWithColours", "600 0 d0 /Painted 1 Tf (a) Tj",
                  "600 0 coloured played over 1"},
        GlyphCase{"Itself", "600 0 d0 /Self 1 Tf (a) Tj", "600 0 coloured"},
        GlyphCase{"Damaged", "600 0 d0 /Nobody 1 Tf Tf Do BI", "600 0 coloured played"}),
    [](const auto& each) { return std::string(each.param.name); });

}  // namespace
}  // namespace VANTIX::TESTS
