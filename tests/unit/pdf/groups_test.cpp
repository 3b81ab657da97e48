// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "unit/pdf/pdfplay.h"

namespace VANTIX::TESTS {
namespace {

constexpr const char* kStates =
    "/ExtGState << /Half << /ca 0.5 /CA 0.5 >> /Two << /ca 0.5 /CA 0.25 >> /Mul << /BM /Multiply "
    ">> /None << /ca 1 /BM /Normal >> >> /XObject << /F 5 0 R >>";
// What a recording begins with: nobody knows the state in which it is executed.
const std::string kBegin = "save\nwidth 1\ncap 0\njoin 0\nmiter 10\ndash phase 0\n";
const std::string kBox = "move 0 0\nline 9 0 9 9 0 9\nclose\n";

PDF::ReaderOptions Kept() {
    PDF::ReaderOptions options;
    options.keepsAlpha = true;
    return options;
}

struct GroupCase {
    const char* name;
    const char* content;  // of the page
    const char* group;    // attributes of the form's group
    std::string begin;    // of the group, empty where there is to be none
};

class Groups : public testing::TestWithParam<GroupCase> {};

// The form fills a box half transparent: its resources are those of the page.
TEST_P(Groups, AreWrittenWhereTheyChangeAPixel) {
    const GroupCase& test = GetParam();
    PdfText pdf = PdfText::OnePage(test.content, kStates);
    pdf.Stream(5, "/Half gs 0 0 9 9 re f",
               std::string("/Subtype /Form /BBox [0 0 9 9] /Resources << ") +
                   "/ExtGState << /Half << /ca 0.5 >> >> >> /Group << /S /Transparency " +
                   test.group + " >>");
    const std::string paint = kBox + "fill gray 0 alpha 0.5 1\nnewpath\n";
    const std::string calls = PdfPlay(pdf, Kept()).Content();
    const std::size_t form = calls.find("save\n");
    EXPECT_EQ(calls.substr(form),
              test.begin.empty()
                  ? "save\n" + kBox + "clip\nnewpath\n" + paint + "restore\n"
                  : "save\n" + test.begin + '\n' + kBegin + paint + "restore\nendgroup\nrestore\n");
}

INSTANTIATE_TEST_SUITE_P(
    Groups, Groups,
    testing::Values(
        GroupCase{"NeutralIsNone", "/None gs /F Do", "", ""},
        GroupCase{"Alpha", "/Half gs /F Do", "/CS /DeviceRGB", "group 0 0 9 9 rgb alpha 0.5 0.5"},
        GroupCase{"Blending", "/Mul gs /F Do", "", "group 0 0 9 9 blend 1"},
        GroupCase{"Isolated", "/F Do", "/I true /CS /DeviceCMYK", "group 0 0 9 9 isolated cmyk"},
        GroupCase{"Knockout", "/F Do", "/K true", "group 0 0 9 9 knockout"}),
    [](const auto& param) { return std::string(param.param.name); });

TEST(Groups, OpaqueContentIsPaintedDirectly) {
    PdfText pdf = PdfText::OnePage("/F Do", kStates);
    pdf.Stream(5, "0 0 9 9 re f",
               "/Subtype /Form /BBox [0 0 9 9] /Resources << >> "
               "/Group << /S /Transparency /I true /K true >>");
    EXPECT_EQ(PdfPlay(pdf, Kept()).Content(),
              "save\n" + kBox + "clip\nnewpath\n" + kBox + "fill gray 0\nnewpath\nrestore\n");
}

TEST(Groups, StrokeReplacesTheFillUnderIt) {
    const auto calls = [](const char* content) {
        return PdfPlay(PdfText::OnePage(content, kStates), Kept()).Content();
    };
    EXPECT_EQ(calls("/Half gs 0 0 9 9 re B"),
              "group 0 0 100 100 alpha 0.5 0.5\n" + kBegin + kBox +
                  "fill gray 0\nstroke gray 0\nnewpath\nrestore\nendgroup\n");
    EXPECT_EQ(calls("/Two gs 0 0 9 9 re B"),
              "group 0 0 100 100 knockout\n" + kBegin + kBox +
                  "fill gray 0 alpha 0.5 0.25\nstroke gray 0 alpha 0.5 0.25\nnewpath\nrestore\n"
                  "endgroup\n");
    EXPECT_EQ(calls("/Two gs 0 0 9 9 re f"), kBox + "fill gray 0 alpha 0.5 0.25\nnewpath\n");
}

TEST(Groups, RecordingsBeginWithTheLinesOfTheMoment) {
    PdfText pdf = PdfText::OnePage(
        "3 w [1 2 3 4 5 6 7 8 9] 0 d /Perceptual ri /Half gs /F Do 3 w 0 0 m 9 9 l S", kStates);
    pdf.Stream(5, "0 0 m 1 1 l S", "/Subtype /Form /BBox [0 0 9 9] /Group << /S /Transparency >>");
    const std::string calls = PdfPlay(pdf, Kept()).Content();
    EXPECT_NE(calls.find("save\nwidth 3\ncap 0\njoin 0\nmiter 10\ndash 1 2 3 4 5 6 7 8 9 phase "
                         "0\nintent 3\nmove 0 0\n"),
              std::string::npos)
        << calls;
}

TEST(Groups, ABlendedCMYKPageIsOneGroup) {
    const auto calls = [](const char* space, const char* content) {
        return PdfPlay(
                   PdfText::OnePage(content, kStates,
                                    std::string("/Group << /S /Transparency /CS ") + space + " >>"),
                   Kept())
            .Page();
    };
    EXPECT_NE(calls("/DeviceCMYK", "/Mul gs 0 0 9 9 re f").find("group 0 0 100 100 isolated cmyk"),
              std::string::npos);
    EXPECT_EQ(calls("/DeviceRGB", "/Mul gs 0 0 9 9 re f").find("group"), std::string::npos);
}

// One warning for each page, which says what was lost and how to keep it.
TEST(Groups, PaintedOpaqueAreReportedOnceForAPage) {
    PdfText pdf = PdfText::OnePage("/Half gs /Two gs /Mul gs /F Do", kStates);
    pdf.Stream(5, "/Half gs 0 0 9 9 re f",
               "/Subtype /Form /BBox [0 0 9 9] /Group << /S /Transparency /K true >> /Resources << "
               "/ExtGState << /Half << /ca 0.5 >> >> >>");
    PdfPlay play(pdf);
    const std::string calls = play.Content();
    EXPECT_EQ(calls.find("group"), std::string::npos);
    play.Page();
    ASSERT_EQ(play.diagnostics.Warnings().size(), 1U);
    EXPECT_EQ(play.diagnostics.Warnings()[0].message,
              "Transparency is painted opaque (constant alpha or images with opacity, blend modes, "
              "knockout groups); --transparency pdfmark keeps it for a distiller");
    EXPECT_EQ(play.diagnostics.Warnings()[0].page, 1);
}

}  // namespace
}  // namespace VANTIX::TESTS
