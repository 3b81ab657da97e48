// SPDX-License-Identifier: MIT
// Type 3 fonts: what their glyphs draw, and where it comes out.
#include <gtest/gtest.h>

#include "e2e/distilled.h"
#include "e2e/pdftext.h"
#include "e2e/tool.h"
#include "support/ghostscriptpages.h"
#include "support/temporaryfolder.h"

namespace VANTIX::TEST {
namespace {

constexpr const char* kPlainFont = "/FontMatrix [0.001 0 0 0.001 0 0] /FontBBox [0 0 1000 1000]";

/// One glyph, "a", and what shows it on a page of 100 x 100 points.
struct GlyphCase {
    const char* name;
    std::string glyph;
    const char* content = "1 0 0 rg BT /F 60 Tf 15 20 Td (a) Tj ET";
    const char* font = kPlainFont;
    bool isRecorded = true;  ///< the glyph is in the font
};

void PrintTo(const GlyphCase& glyph, std::ostream* out) {
    *out << glyph.name;
}

constexpr const char* kUncoloured = "1000 0 0 0 1000 1000 d1 ";
constexpr const char* kColoured = "1000 0 d0 ";

/// Objects: 5 the font, 6 the glyph, 7 a font of its own resources, 8 and 9 an image and a mask,
/// 10 and 11 another Type 3 font and its glyph, 12 a form.
std::string PageWith(const GlyphCase& test) {
    const std::string font = "<< /Type /Font /Subtype /Type3 /FirstChar 97 /LastChar 97 ";
    const std::string encoding = "/Encoding << /Differences [97 /a] >> /CharProcs << /a ";
    return PageOf(
        test.content,
        "/Font << /F 5 0 R >> /ColorSpace << /Spot [/Separation /Orange /DeviceCMYK << "
        "/FunctionType 2 /Domain [0 1] /C0 [0 0 0 0] /C1 [0 .5 1 0] /N 1 >>] >>",
        {font + test.font + " /Widths [1000] " + encoding +
             "6 0 R >> /Resources << /Font << /H 7 0 R /N 10 0 R >> /XObject << /I 8 0 R /M 9 0 R "
             "/X 12 0 R >> >> >>",
         StreamOf(test.glyph), "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>",
         StreamOf("\x10\x50\x90\xC0",
                  "/Type /XObject /Subtype /Image /Width 2 /Height 2 /BitsPerComponent 8 "
                  "/ColorSpace /DeviceGray"),
         StreamOf("\x7F\x3F\x1F\x0F",
                  "/Type /XObject /Subtype /Image /ImageMask true /Width 4 /Height 4"),
         font + "/FontMatrix [1 0 0 1 0 0] /FontBBox [0 0 1 1] /Widths [1] " + encoding +
             "11 0 R >> >>",
         StreamOf("1 0 0 0 1 1 d1 .1 .1 .8 .8 re .3 .3 .4 .4 re f*"),
         StreamOf("0 0 500 300 re f /M Do",
                  "/Type /XObject /Subtype /Form /BBox [0 0 900 200] "
                  "/Resources << /XObject << /M 9 0 R >> >>")});
}

std::string LargeMask() {
    std::string data(std::size_t{100} * 800, '\0');
    data.replace(60000, 10000, std::string(10000, '\xFF'));
    return std::string(kUncoloured) + "1000 0 0 1000 0 0 cm BI /W 800 /H 800 /IM true ID " + data +
           " EI";
}

std::string LongPath() {
    std::string path = kUncoloured;
    for (int i = 0; i < 30000; ++i) {
        path += std::to_string(i % 200 * 5) + " " + std::to_string(i / 200 * 6) + " 3 3 re ";
    }
    return path + "f";
}

const std::string kU = kUncoloured;
const std::string kC = kColoured;

const GlyphCase kGlyphs[] = {
    {"Uncoloured", kU + "100 0 m 900 0 l 500 800 l f"},
    {"UncolouredSetsColours", kU + "0 1 0 rg 0 0 1 RG 100 0 m 900 0 l 500 800 l f"},
    {"Lines", kU + "80 w 1 J 1 j [200 100] 0 d 100 100 800 700 re S"},
    {"LinesOfThePage", kU + "100 100 800 700 re S",
     "200 w 0 0 1 rg 0 0 1 RG BT /F 60 Tf 15 20 Td (a) Tj ET"},
    {"Coloured", kC + "100 0 m 900 0 l 500 800 l f"},
    {"SetsColours", kC + "1 0 1 rg 100 0 400 800 re f 0 1 0 rg 500 0 400 800 re f",
     "BT /F 30 Tf 1 Tr 15 20 Td 3 Tc 50 Tz 9 Ts (aa) Tj 40 TL T* (a) Tj ET", kPlainFont, false},
    {"StrokesInColoured", kC + "80 w 100 100 800 700 re B",
     "99 w 1 J 1 0 0 rg 0 0 1 RG BT /F 60 Tf 15 20 Td (a) Tj ET"},
    {"StrokesAmongColours", kC + "100 100 700 600 re S 0 1 0 rg 80 w 200 200 500 400 re B",
     "99 w 1 j 1 0 0 rg 0 0 1 RG BT /F 60 Tf 15 20 Td (a) Tj ET", kPlainFont, false},
    {"Mask", kU + "800 0 0 800 100 100 cm /M Do"},
    {"MaskInColoured", kC + "800 0 0 800 100 100 cm /M Do"},
    {"InlineMask", kU + "700 300 -300 700 300 0 cm BI /W 8 /H 4 /IM true /D [1 0] ID \x81\x42\x24"
                        "\x18 EI"},
    {"LargeMask", LargeMask()},
    {"Image", kC + "800 0 0 800 100 100 cm /I Do", "BT /F 60 Tf 15 20 Td (a) Tj ET", kPlainFont,
     false},
    {"Text",
     kU + "BT /H 900 Tf 100 100 Td (R) Tj 0 -100 Td 300 0 0 300 700 0 Tm /H 1 Tf (x) Tj ET"},
    {"Nested", kU + "BT /N 500 Tf 300 300 Td (a) Tj ET 0 0 200 200 re f"},
    {"Form", kU + "q 1 0 .2 1 0 300 cm /X Do Q 0 0 900 100 re f"},
    {"LongPath", LongPath()},
    {"LargeGlyphSpace", kU + "0 0 1 1 re f", "1 0 0 rg BT /F 1 Tf 30 5 -5 40 25 20 Tm (aa) Tj ET",
     "/FontMatrix [.8 0 .1 .7 .05 .1] /FontBBox [0 0 1 1]"},
    {"Spot", kU + "100 0 m 900 0 l 500 800 l f", "/Spot cs 1 scn BT /F 60 Tf 15 20 Td (a) Tj ET"},
    {"Overprint", kU + "800 0 0 800 100 100 cm /M Do",
     "0 1 0 0 k 0 0 100 50 re f 1 0 0 0 k BT /F 60 Tf 15 20 Td (a) Tj ET"},
};

class Type3 : public testing::TestWithParam<std::tuple<GlyphCase, int>> {
protected:
    TemporaryFolder mFolder;
    std::string mPdf = mFolder.File("page.pdf");
    std::string mOutput = mFolder.File("page.ps");
};

TEST_P(Type3, LooksLikeThePdf) {
    const auto& [glyph, level] = GetParam();
    WriteFile(mPdf, PageWith(glyph));
    const ChildResult run = RunTool({mPdf, mOutput, "--level", std::to_string(level)});
    ASSERT_EQ(run.exitStatus, kDone);
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(ReadFile(mOutput).find("\n/a {") != std::string::npos, glyph.isRecorded);
    EXPECT_EQ(ReadFile(mOutput).find("/FontType 3") != std::string::npos, glyph.isRecorded);
    GhostscriptOptions options;
    options.resolution = 144;
    const auto drawn = DrawPages(mOutput, options);
    const auto reference = DrawPages(mPdf, options);
    EXPECT_EQ(drawn.complaint, "");
    ASSERT_EQ(drawn.pages.size(), 1U);
    ASSERT_EQ(reference.pages.size(), 1U);
    EXPECT_FALSE(reference.pages[0].IsBlank());
    const PageDifference difference = Compare(drawn.pages[0], reference.pages[0]);
    EXPECT_TRUE(difference.IsMatch()) << difference.Describe();
    const auto plates = DrawPlates(mOutput, {});
    const auto wanted = DrawPlates(mPdf, {});
    ASSERT_EQ(plates.pages.size(), 1U);
    ASSERT_EQ(wanted.pages.size(), 1U);
    for (const auto& [name, plate] : wanted.pages[0]) {
        ASSERT_TRUE(plates.pages[0].contains(name)) << name;
        EXPECT_TRUE(Compare(plates.pages[0].at(name), plate).IsMatch()) << name;
    }
}

INSTANTIATE_TEST_SUITE_P(Glyphs, Type3,
                         testing::Combine(testing::ValuesIn(kGlyphs), testing::Values(3, 2)),
                         [](const testing::TestParamInfo<std::tuple<GlyphCase, int>>& one) {
                             return std::get<0>(one.param).name +
                                    ("Level" + std::to_string(std::get<1>(one.param)));
                         });

// A mirrored glyph space leads to the left, as a mirrored text space does: interpreters of
// documents do not agree on it.
TEST(MirroredType3, LeadsToTheLeft) {
    const TemporaryFolder folder;
    const std::string pdf = folder.File("page.pdf");
    const std::string output = folder.File("page.ps");
    for (const std::string& glyph :
         {kU + "100 0 m 900 0 l 900 800 l f", kC + "0 1 0 rg 100 0 m 900 0 l 900 800 l f"}) {
        WriteFile(pdf, PageWith({"", glyph, "BT /F 30 Tf -1 0 0 1 80 50 Tm (aa) Tj ET"}));
        const auto reference = DrawPages(pdf, {});
        WriteFile(pdf, PageWith({"", glyph, "BT /F 30 Tf 80 50 Td (aa) Tj ET",
                                 "/FontMatrix [-.001 0 0 .001 0 0] /FontBBox [0 0 1000 1000]"}));
        ASSERT_EQ(RunTool({pdf, output}).exitStatus, kDone);
        const auto drawn = DrawPages(output, {});
        ASSERT_EQ(reference.pages.size(), 1U);
        ASSERT_EQ(drawn.pages.size(), 1U);
        const PageDifference difference = Compare(drawn.pages[0], reference.pages[0]);
        EXPECT_TRUE(difference.IsMatch()) << difference.Describe();
    }
}

// The second font has names that tell nothing, and a text for each code.
TEST(Type3Text, IsFoundInTheDistilledFile) {
    const std::string font =
        "<< /Type /Font /Subtype /Type3 /FontMatrix [.001 0 0 .001 0 0] /FontBBox [0 0 600 600] "
        "/FirstChar 1 /LastChar 3 /Widths [600 600 600] ";
    const auto named = [&](const std::string& a, const std::string& b, const std::string& more) {
        return font + "/Encoding << /Differences [1 /" + a + " /" + b +
               " /space] >> /CharProcs << /" + a + " 7 0 R /" + b + " 7 0 R /space 8 0 R >> " +
               more + ">>";
    };
    const TemporaryFolder folder;
    const std::string pdf = folder.File("text.pdf");
    const std::string output = folder.File("text.ps");
    const std::string distilled = folder.File("distilled.pdf");
    WriteFile(
        pdf,
        PageOf("BT /F 12 Tf 10 70 Td <0102030201> Tj 0 -30 Td /G 12 Tf <0102030201> Tj ET",
               "/Font << /F 5 0 R /G 6 0 R >>",
               {named("H", "adieresis", ""), named("g1", "g2", "/ToUnicode 9 0 R "),
                StreamOf("600 0 0 0 600 600 d1 50 0 500 600 re f"), StreamOf("600 0 0 0 0 0 d1"),
                StreamOf("1 begincodespacerange <00> <FF> endcodespacerange "
                         "3 beginbfchar <01> <006F> <02> <03A9> <03> <0020> endbfchar")}));
    ASSERT_EQ(RunTool({pdf, output}).exitStatus, kDone);
    Distil(output, distilled);
    EXPECT_EQ(WordsOf(distilled), "H\u00E4 \u00E4H o\u03A9 \u03A9o ");
}

TEST(BadType3, LeavesTheRestInPlace) {
    const GlyphCase cases[] = {
        {"Itself", kU + "0 0 9 9 re f BT /F 500 Tf (a) Tj ET"},
        {"ItselfInColour", kC + "1 0 0 rg 0 0 9 9 re f BT /F 500 Tf (aaa) Tj ET"},
        {"NoDeclaration", "0 0 500 500 re f"},
        {"EmptyBox", "1000 0 5 5 5 5 d1 0 0 500 500 re f"},
        {"FewOperands", "d1 0 0 500 500 re f Q Q Q q q"},
        {"NoMatrix", kU + "0 0 500 500 re f", "BT /F 9 Tf (a) Tj ET", "/FontMatrix [1 0 0 0 0 0]"},
        {"Damaged", kU + "BI ID q [ << (", "BT /F 9 Tf <00FF6162> Tj ET", kPlainFont},
        {"ColouredImageInUncoloured", kU + "/I Do /Nothing Do /X Do"},
        {"HugeNumbers", "1e38 0 -1e38 -1e38 1e38 1e38 d1 1e38 1e38 m 0 0 l 9 9 l f"},
    };
    const TemporaryFolder folder;
    const std::string pdf = folder.File("bad.pdf");
    const std::string output = folder.File("bad.ps");
    for (const GlyphCase& glyph : cases) {
        SCOPED_TRACE(glyph.name);
        GlyphCase test = glyph;
        const std::string content =
            std::string("q ") + glyph.content + " Q 0 0 1 rg 70 70 30 30 re f";
        test.content = content.c_str();
        std::string page = PageWith(test);
        // Without fonts of its own a glyph has those of the page.
        if (const auto own = page.find("/Font << /H 7 0 R"); own != std::string::npos) {
            page.replace(own + 9, 9, "/F 5 0 R ");
        }
        WriteFile(pdf, page);
        ASSERT_EQ(RunTool({pdf, output}).exitStatus, kDone);
        const auto drawn = DrawPages(output, {});
        EXPECT_EQ(drawn.complaint, "");
        ASSERT_EQ(drawn.pages.size(), 1U);
        EXPECT_EQ(drawn.pages[0].At(90, 10, 2), 255);
        EXPECT_EQ(drawn.pages[0].At(90, 10, 0), 0);
    }
}

}  // namespace
}  // namespace VANTIX::TEST
