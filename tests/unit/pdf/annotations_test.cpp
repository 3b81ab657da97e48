// SPDX-License-Identifier: MIT
#include "pdf/annotations.h"

#include <gtest/gtest.h>

#include <string>

#include "unit/pdf/pdfplay.h"

namespace VANTIX::TESTS {
namespace {

std::string PlayAnnotation(const std::string& annotation) {
    PdfText pdf = PdfText::OnePage("q 9 w", "", "/Annots [5 0 R]");
    pdf.Object(5, "<< /Rect [10 10 30 50] " + annotation + " >>")
        .Stream(6, "1 w 2 w", "/Subtype /Form /BBox [0 0 10 10]")
        .Stream(7, "3 w", "/Subtype /Form /BBox [0 0 10 20] /Matrix [0 1 -1 0 0 0]");
    const std::string calls = PdfPlay(pdf).Page();
    const std::string before = "save\nwidth 9\nrestore\nrestore\n";
    const std::size_t start = calls.find(before) + before.size();
    return calls.substr(start, calls.rfind("restore\n") - start);
}

TEST(Annotations, AppearanceFillsTheRectangle) {
    EXPECT_EQ(PlayAnnotation("/F 4 /AP << /N 6 0 R >>"),
              "save\nconcat 2 0 0 4 10 10\nsave\nmove 0 0\nline 10 0 10 10 0 10\nclose\nclip\n"
              "newpath\nwidth 2\nrestore\nrestore\n");
}

TEST(Annotations, TurnedAppearanceIsPlacedByItsTransformedBox) {
    EXPECT_EQ(PlayAnnotation("/F 4 /AP << /N 7 0 R >>"),
              "save\nconcat 1 0 0 4 30 10\nsave\nconcat 0 1 -1 0 0 0\nmove 0 0\n"
              "line 10 0 10 20 0 20\nclose\nclip\nnewpath\nwidth 3\nrestore\nrestore\n");
}

TEST(Annotations, StateChoosesTheAppearance) {
    const std::string states = "/F 4 /AP << /N << /Yes 7 0 R /Off 6 0 R >> >> /AS ";
    EXPECT_NE(PlayAnnotation(states + "/Yes").find("width 3"), std::string::npos);
    EXPECT_NE(PlayAnnotation(states + "/Off").find("width 2"), std::string::npos);
    EXPECT_EQ(PlayAnnotation(states + "/None"), "");
}

TEST(Annotations, FlagsSayWhatIsPrinted) {
    const std::string appearance = " /AP << /N 6 0 R >>";
    EXPECT_EQ(PlayAnnotation("/F 0" + appearance), "");
    EXPECT_EQ(PlayAnnotation("/F 6" + appearance), "");
    EXPECT_EQ(PlayAnnotation("/F 4 /Subtype /Popup" + appearance), "");
    EXPECT_NE(PlayAnnotation("/F 36" + appearance), "");
}

TEST(Annotations, BrokenOnesAreLeftOut) {
    EXPECT_EQ(PlayAnnotation("/F 4"), "");
    EXPECT_EQ(PlayAnnotation("/F 4 /AP << /N 6 0 R >> /Rect [1 2]"), "");
    EXPECT_EQ(PlayAnnotation("/F 4 /AP 7"), "");
}

}  // namespace
}  // namespace VANTIX::TESTS
