// SPDX-License-Identifier: MIT
// Text in composite fonts of TrueType programs, across and down.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <ostream>
#include <tuple>

#include "e2e/distilled.h"
#include "e2e/pdftext.h"
#include "e2e/tool.h"
#include "support/ghostscriptpages.h"
#include "support/temporaryfolder.h"

namespace VANTIX::TEST {
namespace {

// In the font that the tests embed the glyphs of ASCII follow each other, the space as number 3.
constexpr int kSpaceGlyph = 3;

// The widths of the font, for the characters that are shown.
constexpr const char* kWidths =
    "/W [3 [318] 43 [752] 55 [611] 68 [613 635] 72 [615] 74 [635 634 278] 80 [974 634 612] 85 [411 "
    "521 392 634] 90 [818]]";

/// A composite font, of which the objects from 5 on are font, descendant, descriptor, program,
/// ToUnicode CMap, CMap and map of glyphs.
struct CompositeCase {
    const char* name;
    const char* encoding = "/Identity-H";
    const char* descendant = kWidths;
    std::size_t codeBytes = 2;
    int firstCode = kSpaceGlyph;  ///< that of the space
    bool isVertical = false;
    bool hasWords = true;  ///< glyphs stand close enough
};

void PrintTo(const CompositeCase& value, std::ostream* out) {
    *out << value.name;
}

std::string Code(const CompositeCase& font, char character) {
    char digits[8];
    std::snprintf(digits, sizeof digits, "%0*X", static_cast<int>(2 * font.codeBytes),
                  character - ' ' + font.firstCode);
    return digits;
}

std::string Encoded(const CompositeCase& font, const std::string& text) {
    std::string codes = "<";
    for (const char c : text) {
        codes += Code(font, c);
    }
    return codes + ">";
}

std::string ContentOf(const CompositeCase& font) {
    const auto text = [&](const char* characters) { return Encoded(font, characters); };
    if (font.isVertical) {
        return "BT /F 16 Tf 30 190 Td " + text("Hamburg") + " Tj 40 0 Td 3 Tc " + text("one") +
               " Tj 0 Tc 40 0 Td [" + text("Tu") + " 500 " + text("rn") + "] TJ 60 Tz 30 0 Td " +
               text("thin") + " Tj ET";
    }
    return "BT /F 20 Tf 10 170 Td " + text("Hamburg") + " Tj 0 -30 Td 3 Tc 6 Tw " +
           text("one two") + " Tj 0 -30 Td 0 Tc [" + text("Tu") + " -800 " + text("rn") +
           "] TJ 0 -30 Td 60 Tz 5 Ts " + text("risen") +
           " Tj 100 Tz 0 Ts ET "
           "BT 0.8 0.6 -0.6 0.8 120 20 Tm " +
           text("Turn") + " Tj ET";
}

std::string PdfWith(const CompositeCase& font, const std::string& content, bool isEmbedded = true,
                    std::size_t programBytes = std::string::npos) {
    const std::string program =
        ReadFile("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf").substr(0, programBytes);
    std::string glyphs;
    for (int cid = 0; cid < 127; ++cid) {
        const int glyph = cid < ' ' ? 0 : cid - ' ' + kSpaceGlyph;
        glyphs += {'\0', static_cast<char>(glyph)};
    }
    return PageOf(
        content, "/Font << /F 5 0 R >>",
        {std::string(
             "<< /Type /Font /Subtype /Type0 /BaseFont /DejaVuSans /DescendantFonts [6 0 R] "
             "/ToUnicode 9 0 R /Encoding ") +
             font.encoding + " >>",
         std::string("<< /Type /Font /Subtype /CIDFontType2 /BaseFont /DejaVuSans /FontDescriptor "
                     "7 0 R /CIDSystemInfo << /Registry (Adobe) /Ordering (Identity) /Supplement 0 "
                     ">> ") +
             font.descendant + " >>",
         std::string(
             "<< /Type /FontDescriptor /FontName /DejaVuSans /Flags 4 /FontBBox [-200 -300 "
             "1200 1000] /ItalicAngle 0 /Ascent 800 /Descent -200 /CapHeight 700 /StemV 80") +
             (isEmbedded ? " /FontFile2 8 0 R >>" : " >>"),
         StreamOf(program, "/Length1 " + std::to_string(program.size())),
         StreamOf("1 begincodespacerange <" + std::string(font.codeBytes == 1 ? "00" : "0000") +
                  "> <" + (font.codeBytes == 1 ? "FF" : "FFFF") +
                  "> endcodespacerange 1 beginbfrange <" + Code(font, ' ') + "> <" +
                  Code(font, '~') + "> <0020> endbfrange"),
         StreamOf("/CIDInit /ProcSet findresource begin 12 dict begin begincmap /CIDSystemInfo 3 "
                  "dict dup begin /Registry (Adobe) def /Ordering (Identity) def /Supplement 0 def "
                  "end def /CMapName /Made def /CMapType 1 def 1 begincodespacerange <00> <FF> "
                  "endcodespacerange 1 begincidrange <20> <7E> 3 endcidrange endcmap CMapName "
                  "currentdict /CMap defineresource pop end end",
                  "/Type /CMap /CMapName /Made /CIDSystemInfo << /Registry (Adobe) /Ordering "
                  "(Identity) /Supplement 0 >>"),
         StreamOf(glyphs), StreamOf("", "/Type /CMap /UseCMap 12 0 R")},
        "/MediaBox [0 0 200 200]");
}

const CompositeCase kFonts[] = {
    {"Identity"},
    {"GlyphMap", "/Identity-H", "/CIDToGIDMap 11 0 R /DW 600", 2, ' ', false, false},
    {"EmbeddedCMap", "10 0 R", kWidths, 1, ' '},
    {"OtherWidths", "/Identity-H", "/DW 700 /W [40 [500] 68 [900 300]]", 2, kSpaceGlyph, false,
     false},
    {"Vertical", "/Identity-V", "/DW 618", 2, kSpaceGlyph, true, false},
    {"VerticalMetrics", "/Identity-V", "/DW 618 /DW2 [700 -900] /W2 [68 [-1300 100 800]]", 2,
     kSpaceGlyph, true, false},
};

class CompositeFont : public testing::TestWithParam<std::tuple<CompositeCase, int>> {
protected:
    static const CompositeCase& Font() { return std::get<0>(GetParam()); }

    TemporaryFolder mFolder;
    std::string mPdf = mFolder.File("fonts.pdf");
    std::string mOutput = mFolder.File("fonts.ps");
    std::string mDistilled = mFolder.File("distilled.pdf");
};

// Interpreters' raster devices need not shift the origins of vertical text: a distiller does.
TEST_P(CompositeFont, LooksAndReadsLikeThePdf) {
    WriteFile(mPdf, PdfWith(Font(), ContentOf(Font())));
    const ChildResult run =
        RunTool({mPdf, mOutput, "--level", std::to_string(std::get<1>(GetParam()))});
    ASSERT_EQ(run.exitStatus, kDone) << run.errors;
    EXPECT_EQ(run.errors, "");
    Distil(mOutput, mDistilled);
    GhostscriptOptions options;
    options.resolution = 144;
    const auto reference = DrawPages(mPdf, options);
    ASSERT_EQ(reference.pages.size(), 1U);
    EXPECT_FALSE(reference.pages[0].IsBlank());
    for (const std::string& file : {mOutput, mDistilled}) {
        const auto drawn = DrawPages(file, options);
        EXPECT_EQ(drawn.complaint, "");
        ASSERT_EQ(drawn.pages.size(), 1U);
        if (!Font().isVertical || file == mDistilled) {
            // Outlines that were converted are drawn with other hints.
            const PageDifference difference = Compare(drawn.pages[0], reference.pages[0]);
            EXPECT_TRUE(difference.mean <= 4.0 && difference.wrongShare <= 0.01)
                << file << ": " << difference.Describe();
        }
    }
    const char* gap = Font().hasWords ? " " : "";
    EXPECT_EQ(WordsOf(mDistilled, gap), WordsOf(mPdf, gap));
}

INSTANTIATE_TEST_SUITE_P(Fonts, CompositeFont,
                         testing::Combine(testing::ValuesIn(kFonts), testing::Values(3, 2)),
                         [](const auto& one) {
                             return std::get<0>(one.param).name +
                                    ("Level" + std::to_string(std::get<1>(one.param)));
                         });

TEST(MissingCompositeFont, HasASubstituteWithItsCharacters) {
    const TemporaryFolder folder;
    const std::string pdf = folder.File("missing.pdf");
    const std::string output = folder.File("missing.ps");
    WriteFile(pdf, PdfWith(kFonts[0], ContentOf(kFonts[0]), false));
    const ChildResult run = RunTool({pdf, output});
    EXPECT_EQ(run.exitStatus, kDone);
    EXPECT_NE(run.errors.find("DejaVuSans stands in"), std::string::npos) << run.errors;
    const auto drawn = DrawPages(output, {});
    EXPECT_EQ(drawn.complaint, "");
    WriteFile(pdf, PdfWith(kFonts[0], ContentOf(kFonts[0])));
    const auto reference = DrawPages(pdf, {});
    ASSERT_EQ(drawn.pages.size(), 1U);
    ASSERT_EQ(reference.pages.size(), 1U);
    EXPECT_LE(Compare(drawn.pages[0], reference.pages[0]).mean, 4.0);
}

// The full stop stands in the upper right of its square, not in the lower left.
TEST(MissingCompositeFont, HasVerticalFormsOfASubstitute) {
    const TemporaryFolder folder;
    const std::string pdf = folder.File("missing.pdf");
    const std::string output = folder.File("missing.ps");
    const std::string distilled = folder.File("distilled.pdf");
    WriteFile(pdf,
              PageOf("BT /F 80 Tf 50 90 Td <3002> Tj ET", "/Font << /F 5 0 R >>",
                     {"<< /Type /Font /Subtype /Type0 /BaseFont /Nobodys-UniJIS-UTF16-V "
                      "/Encoding /UniJIS-UTF16-V /DescendantFonts [6 0 R] >>",
                      "<< /Type /Font /Subtype /CIDFontType0 /BaseFont /Nobodys /FontDescriptor "
                      "7 0 R /CIDSystemInfo << /Registry (Adobe) /Ordering (Japan1) "
                      "/Supplement 6 >> >>",
                      "<< /Type /FontDescriptor /FontName /Nobodys /Flags 4 >>"}));
    for (const char* level : {"2", "3"}) {
        const ChildResult run = RunTool({pdf, output, "--level", level});
        ASSERT_EQ(run.exitStatus, kDone);
        if (run.errors.find("stands in") == std::string::npos) {
            GTEST_SKIP() << "no CMaps, or no fonts with Japanese characters are installed";
        }
        Distil(output, distilled);
        EXPECT_EQ(WordsOf(distilled), "\u3002 ");
        const auto drawn = DrawPages(distilled, {});
        EXPECT_EQ(drawn.complaint, "");
        ASSERT_EQ(drawn.pages.size(), 1U);
        std::size_t inside = 0;
        std::size_t outside = 0;
        for (std::size_t y = 0; y < 100; ++y) {
            for (std::size_t x = 0; x < 100; ++x) {
                const bool isInside = x >= 50 && y >= 10 && y < 50;
                (isInside ? inside : outside) += drawn.pages[0].At(x, y, 0) < 128 ? 1 : 0;
            }
        }
        EXPECT_GT(inside, 50U);
        EXPECT_EQ(outside, 0U);
    }
}

TEST(BadCompositeFont, LeavesTheRestInPlace) {
    const struct {
        CompositeCase font;
        std::size_t programBytes;
    } cases[] = {
        {{"Cut", "/Identity-H"}, 5000},
        {{"Empty", "/Identity-H"}, 0},
        {{"NoCMap", "7 0 R"}, std::string::npos},
        {{"Unknown", "/Nothing-H"}, std::string::npos},
        {{"Loop", "12 0 R"}, std::string::npos},
        {{"BadMetrics", "/Identity-V", "/W [1 2] /W2 [1 [2] 3] /DW -1e9 /DW2 [1e9 -1e9]"},
         std::string::npos},
        {{"BadMap", "/Identity-H", "/CIDToGIDMap 8 0 R"}, std::string::npos},
    };

    const TemporaryFolder folder;
    const std::string pdf = folder.File("bad.pdf");
    const std::string output = folder.File("bad.ps");
    for (const auto& c : cases) {
        SCOPED_TRACE(c.font.name);
        const std::string content = "q " + ContentOf(kFonts[0]) + " Q 0 0 1 rg 170 170 30 30 re f";
        WriteFile(pdf, PdfWith(c.font, content, true, c.programBytes));
        const ChildResult run = RunTool({pdf, output});
        ASSERT_EQ(run.exitStatus, kDone) << run.errors;
        EXPECT_LE(std::count(run.errors.begin(), run.errors.end(), '\n'), 1) << run.errors;
        const auto drawn = DrawPages(output, {});
        EXPECT_EQ(drawn.complaint, "");
        ASSERT_EQ(drawn.pages.size(), 1U);
        EXPECT_EQ(drawn.pages[0].At(190, 10, 2), 255);
        EXPECT_EQ(drawn.pages[0].At(190, 10, 0), 0);
    }
}

}  // namespace
}  // namespace VANTIX::TEST
