// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "unit/pdf/pdfplay.h"

namespace VANTIX::TESTS {
namespace {

// Widths of a, b, c, d: 0.556, 0.556, 0.5, 0.556.
constexpr const char* kResources =
    "/Font << /F 5 0 R /O << /Type /Font /Subtype /Type1 /BaseFont /Courier >> >> "
    "/ExtGState << /Unseen << /ca 0 >> /Font << /Font [5 0 R 10] >> >> "
    "/Properties << /Hidden 6 0 R >>";

PdfText TextPage(const std::string& content) {
    PdfText pdf = PdfText::OnePage(content, kResources);
    pdf.Object(1,
               "<< /Type /Catalog /Pages 2 0 R /OCProperties << /OCGs [6 0 R] /D << /OFF [6 0 R] "
               ">> >> >>")
        .Object(5, "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>")
        .Object(6, "<< /Type /OCG /Name (Hidden) >>");
    return pdf;
}

struct Case {
    const char* name;
    const char* content;
    const char* calls;
    const char* warnings = "";
};

class TextOperators : public testing::TestWithParam<Case> {};

TEST_P(TextOperators, BecomeCalls) {
    PdfPlay play(TextPage(GetParam().content));
    EXPECT_EQ(play.Content(), GetParam().calls);
    EXPECT_EQ(play.Warnings(), GetParam().warnings);
}

INSTANTIATE_TEST_SUITE_P(
    Positions, TextOperators,
    testing::Values(
        Case{"EveryStringHasItsPlace", "BT /F 10 Tf 1 2 Td (ab) Tj <63 6> Tj ET",
             "text\nfont Helvetica 10 1 0 0 1\nat 1 2\nshow0 (ab)\nat 12.12 2\nshow0 (c`)\n"
             "endtext\n"},
        Case{"AdjustmentsPartStrings", "BT /F 10 Tf [(a) 0 (b) -1000 (c) 500 () (d)] TJ ET",
             "text\nfont Helvetica 10 1 0 0 1\nat 0 0\nshow0 (ab)\nat 21.12 0\nshow0 (c)\n"
             "at 21.12 0\nshow0 (d)\nendtext\n"},
        Case{"LinesFollowTheLeading",
             "BT /F 10 Tf 5 90 TD 1 0 0 1 2 80 Tm 7 TL (a) ' T* (b) Tj 1 2 (c d) \" ET",
             "text\nfont Helvetica 10 1 0 0 1\nat 2 73\nshow0 (a)\nat 2 66\nshow0 (b)\n"
             "at 2 59\nshow0 (c d) char 2 word 1\nendtext\n"},
        Case{"WordSpacingStaysWhereThereAreSpaces", "BT /F 10 Tf 4 Tw (ab) Tj (a b) Tj ET",
             "text\nfont Helvetica 10 1 0 0 1\nat 0 0\nshow0 (ab)\nat 11.12 0\n"
             "show0 (a b) word 4\nendtext\n"},
        Case{"ScalingAndRiseAreInTheMatrix", "BT /F 10 Tf 50 Tz 3 Ts 2 Tc (ab) Tj (c) Tj ET",
             "text\nfont Helvetica 10 1 0 0 1\nfont Helvetica 10 0.5 0 0 1\nat 0 3\n"
             "show0 (ab) char 2\nat 7.56 3\nshow0 (c)\nendtext\n"},
        Case{"SizeZeroAdvances", "BT /F 0 Tf 2 Tc (ab) Tj /F 10 Tf (c) Tj ET",
             "text\nfont Helvetica 10 1 0 0 1\nat 4 0\nshow0 (c)\nendtext\n"}),
    [](const auto& param) { return std::string(param.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Fonts, TextOperators,
    testing::Values(
        Case{"FontStaysFromObjectToObject", "/F 10 Tf BT (a) Tj ET BT (b) Tj ET",
             "text\nfont Helvetica 10 1 0 0 1\nat 0 0\nshow0 (a)\nendtext\n"
             "text\nat 0 0\nshow0 (b)\nendtext\n"},
        Case{"RestoredFontCountsAgain",
             "BT /F 10 Tf (a) Tj ET q BT /O 10 Tf (b) Tj ET Q BT (c) Tj ET",
             "text\nfont Helvetica 10 1 0 0 1\nat 0 0\nshow0 (a)\nendtext\n"
             "save\ntext\nfont Courier 10 1 0 0 1\nat 0 0\nshow0 (b)\nendtext\nrestore\n"
             "text\nat 0 0\nshow0 (c)\nendtext\n"},
        Case{"NewMatrixSelectsTheFontOnce",
             "BT /F 10 Tf (a) Tj 0 1 -1 0 5 5 Tm (b) Tj /F 20 Tf (c) Tj ET",
             "text\nfont Helvetica 10 1 0 0 1\nat 0 0\nshow0 (a)\nfont Helvetica 10 0 1 -1 0\n"
             "at 5 5\nshow0 (b)\nfont Helvetica 20 0 1 -1 0\nat 5 10.56\nshow0 (c)\nendtext\n"},
        Case{"GraphicsStateHasAFont", "/Font gs BT (a) Tj ET",
             "text\nfont Helvetica 10 1 0 0 1\nat 0 0\nshow0 (a)\nendtext\n"},
        Case{"MissingFontsAndBadOperands",
             "BT /X 9 Tf (a) Tj 5 Tf (a) 3 Tf 9 Tr Tj (a) (b) (c) \" ET", "",
             "missing-resource bad-operator "},
        Case{"TextThatIsLeftOpenEnds", "BT /F 10 Tf (a) Tj BT (b) Tj",
             "text\nfont Helvetica 10 1 0 0 1\nat 0 0\nshow0 (a)\nendtext\n"
             "text\nat 0 0\nshow0 (b)\nendtext\n"}),
    [](const auto& param) { return std::string(param.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Modes, TextOperators,
    testing::Values(
        Case{"PaintedModes", "BT /F 10 Tf (a) Tj 1 Tr (b) Tj 2 Tr (c) Tj 3 Tr (d) Tj ET",
             "text\nfont Helvetica 10 1 0 0 1\nat 0 0\nshow0 (a)\nat 5.56 0\nshow1 (b)\n"
             "at 11.12 0\nshow2 (c)\nendtext\n"},
        Case{"InvisiblePaintIsLeftOut", "/Unseen gs BT /F 10 Tf (a) Tj 2 Tr (b) Tj ET",
             "text\nfont Helvetica 10 1 0 0 1\nat 5.56 0\nshow1 (b)\nendtext\n"},
        Case{"HiddenTextAdvances", "BT /F 10 Tf /OC /Hidden BDC (a) Tj EMC (b) Tj ET",
             "text\nfont Helvetica 10 1 0 0 1\nat 5.56 0\nshow0 (b)\nendtext\n"},
        Case{"ClipComesAtTheEnd", "BT /F 10 Tf 4 Tr (a) Tj 7 Tr (b) Tj ET BT (c) Tj ET",
             "text\nfont Helvetica 10 1 0 0 1\nat 0 0\nshow0 (a)\nendtext\n"
             "text\nat 0 0\nshow7 (a)\nat 5.56 0\nshow7 (b)\nendtext clip\nnewpath\n"
             "text\nat 0 0\nshow7 (c)\nendtext clip\nnewpath\n"},
        Case{"ClipStaysInItsLevel", "q BT /F 10 Tf 7 Tr (a) Tj ET Q BT /F 10 Tf (b) Tj ET",
             "save\ntext\nfont Helvetica 10 1 0 0 1\nat 0 0\nshow7 (a)\nendtext clip\nnewpath\n"
             "restore\ntext\nfont Helvetica 10 1 0 0 1\nat 0 0\nshow0 (b)\nendtext\n"}),
    [](const auto& param) { return std::string(param.param.name); });

TEST(Text, InvisibleTextIsKeptUnderATinyClip) {
    PDF::ReaderOptions options;
    options.keepsHiddenText = true;
    PdfPlay play(TextPage("2 0 0 2 0 0 cm BT /F 10 Tf 3 Tr 5 5 Td (a) Tj ET"), options);
    EXPECT_EQ(play.Content(),
              "concat 2 0 0 2 0 0\nsave\nmove 5 5\nline 5.005 5 5.005 5.005 5 5.005\nclose\nclip\n"
              "newpath\ntext\nfont Helvetica 10 1 0 0 1\nat 5 5\nshow0 (a)\nrestore\nendtext\n");
}

TEST(Text, FormsHaveTextOfTheirOwn) {
    PdfText pdf = TextPage("BT /F 10 Tf (a) Tj /X Do (b) Tj ET");
    pdf.Object(3,
               "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 9 9] /Contents 4 0 R /Resources << "
               "/Font << /F 5 0 R >> /XObject << /X 7 0 R >> >> >>")
        .Stream(7, "BT 3 3 Td (c) Tj", "/Subtype /Form");
    EXPECT_EQ(PdfPlay(pdf).Content(),
              "text\nfont Helvetica 10 1 0 0 1\nat 0 0\nshow0 (a)\nsave\ntext\nat 3 3\nshow0 (c)\n"
              "endtext\nrestore\nat 5.56 0\nshow0 (b)\nendtext\n");
}

}  // namespace
}  // namespace VANTIX::TESTS
