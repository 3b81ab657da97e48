// SPDX-License-Identifier: MIT
#include "pdf/contentinterpreter.h"

#include <gtest/gtest.h>

#include <string>

#include "unit/pdf/pdfplay.h"

namespace VANTIX::TESTS {
namespace {

struct Case {
    const char* name;
    const char* content;
    const char* calls;
    const char* warnings = "";
};

class ContentOperators : public testing::TestWithParam<Case> {};

TEST_P(ContentOperators, BecomeCalls) {
    PdfPlay play(PdfText::OnePage(GetParam().content));
    EXPECT_EQ(play.Content(), GetParam().calls);
    EXPECT_EQ(play.Warnings(), GetParam().warnings);
}

INSTANTIATE_TEST_SUITE_P(
    Paths, ContentOperators,
    testing::Values(
        Case{"RunsOfSegmentsGoOutAtOnce", "1 2 m 3 4 l 5 6 l 1 2 3 4 5 6 c 1 1 2 2 3 3 c h S",
             "move 1 2\nline 3 4 5 6\ncurve 1 2 3 4 5 6 1 1 2 2 3 3\nclose\nstroke gray 0\n"
             "newpath\n"},
        Case{"ShortCurvesBecomeFullOnes", "1 2 m 3 4 5 6 v 7 8 9 9 y f*",
             "move 1 2\ncurve 1 2 3 4 5 6 7 8 9 9 9 9\neofill gray 0\nnewpath\n"},
        Case{"RectangleIsFiveCalls", "1 2 3 4 re n 1 2 3 4 re f",
             "move 1 2\nline 4 2 4 6 1 6\nclose\nfill gray 0\nnewpath\n"},
        Case{"ClipFollowsPainting", "0 0 9 9 re W* b",
             "move 0 0\nline 9 0 9 9 0 9\nclose\nfill gray 0\nstroke gray 0\neoclip\nnewpath\n"},
        Case{"PathWithoutMoveBeginsAtItsFirstPoint", "1 2 l 3 4 l S 1 2 3 4 5 6 c S",
             "move 1 2\nline 3 4\nstroke gray 0\nnewpath\n"
             "move 1 2\ncurve 1 2 3 4 5 6\nstroke gray 0\nnewpath\n"},
        Case{"EmptyPathsAreNotWritten", "h W n f 5 5 m S 7 7 m W n 1 1 m 2 2 m 3 3 l S",
             "move 7 7\nclip\nnewpath\nmove 2 2\nline 3 3\nstroke gray 0\nnewpath\n"},
        Case{"NumbersAreBounded", "1e99 -99999999999999999999 m 3 3 l S",
             "move 1e+09 -1e+09\nline 3 3\nstroke gray 0\nnewpath\n"}),
    [](const auto& param) { return std::string(param.param.name); });

INSTANTIATE_TEST_SUITE_P(
    States, ContentOperators,
    testing::Values(
        Case{"LineParametersAreWrittenWhenTheyChange",
             "1 w 0 J 0 j 10 M -2 w 2 w 1 J 2 j 4 M 50 i [3 2] 1 d [3 2] 1 d",
             "width 2\ncap 1\njoin 2\nmiter 4\nflat 50\ndash 3 2 phase 1\n"},
        Case{"RestoredParametersCountAgain", "q 2 w Q 2 w", "save\nwidth 2\nrestore\nwidth 2\n"},
        Case{"UnusableDashesAreSolid", "[1] 0 d [0 0] 3 d [1 -1] 0 d [4] -1 d",
             "dash 1 phase 0\ndash phase 0\ndash 4 phase 7\n"},
        Case{"BadParametersAreReported", "7 J 9 j /x w 1 2 l", "", "bad-operator "},
        Case{"UnbalancedLevels", "Q Q q q 1 w 2 w", "save\nsave\nwidth 2\nrestore\nrestore\n"},
        Case{"MatrixOfNoUseHidesWhatFollows",
             "q 0 0 0 0 1 1 cm 0 0 9 9 re f Q 1 0 0 1 0 0 cm 2 0 0 2 1 1 cm",
             "save\nrestore\nconcat 2 0 0 2 1 1\n", "matrix "},
        Case{"PathKeepsItsPlaceWhenTheMatrixChanges", "10 10 m 2 0 0 2 0 0 cm 10 10 l S",
             "concat 2 0 0 2 0 0\nmove 5 5\nline 10 10\nstroke gray 0\nnewpath\n"},
        Case{"IntentIsWrittenWhenItChanges", "/Perceptual ri /Perceptual ri /Odd ri",
             "intent 3\nintent 1\n"}),
    [](const auto& param) { return std::string(param.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Others, ContentOperators,
    testing::Values(
        Case{"UnknownOperatorIsReportedOnce", "foo bar 0 0 m 9 9 l S",
             "move 0 0\nline 9 9\nstroke gray 0\nnewpath\n", "bad-operator "},
        Case{"CompatibilitySectionIsSilent", "BX foo EX EX", ""},
        Case{"LastOperandsCount", "7 7 1 2 m 3 3 l S",
             "move 1 2\nline 3 3\nstroke gray 0\nnewpath\n"},
        Case{"PaintOfAMissingPatternIsLeftOut", "/Pattern cs /P scn 0 0 9 9 re f 0 0 9 9 re B",
             "move 0 0\nline 9 0 9 9 0 9\nclose\nstroke gray 0\nnewpath\n", "missing-resource "},
        Case{"MissingResourcesAreReported", "/X Do /X gs /X cs /X sh", "", "missing-resource "}),
    [](const auto& param) { return std::string(param.param.name); });

TEST(ContentInterpreter, LevelsBeyondTheHostsStackStayInStep) {
    std::string content;
    for (int i = 0; i < 2000; ++i) {
        content += "q ";
    }
    content += "2 w ";
    for (int i = 0; i < 2000; ++i) {
        content += "Q ";
    }
    PdfPlay play(PdfText::OnePage(content + "3 w"));
    const std::string calls = play.Content();
    const std::size_t last = calls.rfind("restore\n");
    EXPECT_EQ(calls.substr(last), "restore\nwidth 3\n");
    EXPECT_EQ(play.Warnings(), "nesting ");
}

TEST(ContentInterpreter, GraphicsStateDictionarySetsWhatItNames) {
    PdfPlay play(PdfText::OnePage(
        "/G gs 0 0 9 9 re f",
        "/ExtGState << /G << /LW 3 /LC 1 /D [[2] 0] /RI /Saturation /OP true /op false /OPM 1 "
        "/ca 0.5 /BM [/Odd /Multiply] /SMask << >> /TR2 /Default /HT 5 >> >>"));
    EXPECT_EQ(play.Content(),
              "dash 2 phase 0\ncap 1\nwidth 3\nintent 2\n"
              "move 0 0\nline 9 0 9 9 0 9\nclose\nfill gray 0 alpha 0.5 1 blend 1\nnewpath\n");
    EXPECT_EQ(play.Warnings(), "transfer transparency ");
}

TEST(ContentInterpreter, WhollyTransparentPaintIsLeftOut) {
    PdfPlay play(
        PdfText::OnePage("/G gs 0 0 9 9 re f 0 0 m 9 9 l S", "/ExtGState << /G << /ca 0 >> >>"));
    EXPECT_EQ(play.Content(), "move 0 0\nline 9 9\nstroke gray 0 alpha 0 1\nnewpath\n");
    EXPECT_EQ(play.Warnings(), "");
}

TEST(ContentInterpreter, ContentArrayIsSeparatedByWhiteSpace) {
    PdfText pdf = PdfText::OnePage("", "", "/Contents [4 0 R 5 0 R]");
    pdf.Stream(4, "1 2 m 3 4").Stream(5, "l S");
    EXPECT_EQ(PdfPlay(pdf).Content(), "move 1 2\nline 3 4\nstroke gray 0\nnewpath\n");
}

TEST(ContentInterpreter, FormIsDrawnInALevelOfItsOwn) {
    PdfText pdf = PdfText::OnePage("/F Do 1 w 0 0 m 1 1 l S", "/XObject << /F 5 0 R >>");
    pdf.Stream(5, "q 5 w 1 g 0 0 9 9 re f", "/Subtype /Form /BBox [0 0 4 4] /Matrix [2 0 0 2 7 7]");
    EXPECT_EQ(PdfPlay(pdf).Content(),
              "save\nconcat 2 0 0 2 7 7\nmove 0 0\nline 4 0 4 4 0 4\nclose\nclip\nnewpath\n"
              "save\nwidth 5\nmove 0 0\nline 9 0 9 9 0 9\nclose\nfill gray 1\nnewpath\n"
              "restore\nrestore\nmove 0 0\nline 1 1\nstroke gray 0\nnewpath\n");
}

TEST(ContentInterpreter, FormWithoutResourcesUsesThoseOfThePage) {
    PdfText pdf =
        PdfText::OnePage("/F Do", "/XObject << /F 5 0 R >> /ExtGState << /G << /LW 3 >> >>");
    pdf.Stream(5, "/G gs", "/Subtype /Form");
    EXPECT_EQ(PdfPlay(pdf).Content(), "save\nwidth 3\nrestore\n");
}

TEST(ContentInterpreter, FormsThatHoldThemselvesEnd) {
    PdfText pdf = PdfText::OnePage("/F Do", "/XObject << /F 5 0 R >>");
    pdf.Stream(5, "/G Do", "/Subtype /Form /Resources << /XObject << /G 6 0 R >> >>")
        .Stream(6, "/F Do 1 w 2 w", "/Subtype /Form /Resources << /XObject << /F 5 0 R >> >>");
    PdfPlay play(pdf);
    EXPECT_EQ(play.Content(), "save\nsave\nwidth 2\nrestore\nrestore\n");
    EXPECT_EQ(play.Warnings(), "recursion ");
}

TEST(ContentInterpreter, GroupsTakeTheAlphaAsAWhole) {
    PdfText pdf =
        PdfText::OnePage("/G gs /F Do", "/ExtGState << /G << /ca 0 >> >> /XObject << /F 5 0 R >>");
    pdf.Stream(5, "0 0 m 9 9 l S", "/Subtype /Form /Group << /S /Transparency >>");
    EXPECT_EQ(PdfPlay(pdf).Content(), "save\nrestore\n");
    pdf.Object(3,
               "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 9 9] /Contents 4 0 R /Resources << "
               "/ExtGState << /G << /CA 0 >> >> /XObject << /F 5 0 R >> >> >>");
    EXPECT_EQ(PdfPlay(pdf).Content(),
              "save\nmove 0 0\nline 9 9\nstroke gray 0\nnewpath\nrestore\n");
}

}  // namespace
}  // namespace VANTIX::TESTS
