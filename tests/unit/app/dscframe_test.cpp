// SPDX-License-Identifier: MIT
#include "app/dscframe.h"

#include <gmock/gmock.h>

#include <sstream>

#include "support/memoryprovider.h"

namespace VANTIX::APP {
namespace {

using testing::HasSubstr;
using testing::Not;

class DscFrameTest : public testing::Test {
protected:
    std::string Header(const DocumentSummary& summary) {
        DscFrame(*mOut).WriteHeader(summary);
        return mOut->Take();
    }

    TInterfacePtr<TEST::MemoryProvider> mOut = MakeObject<TEST::MemoryProvider>();
};

TEST(DscText, EscapesWhatCouldEndTheStringOrTheLine) {
    EXPECT_EQ(DscText("a(b)\\", 99), R"((a\(b\)\\))");
    EXPECT_EQ(DscText("x\n%%EOF\r\t\x7F", 99), R"((x\012%%EOF\015\011\177))");
    EXPECT_EQ(DscText("Stück", 99), R"((St\303\274ck))");
}

TEST(DscText, CutsBetweenCharacters) {
    EXPECT_EQ(DscText("abcdef", 6), "(abcd)");
    EXPECT_EQ(DscText("ab(", 5), "(ab)");
    EXPECT_EQ(DscText("aü", 10), "(a)");
    EXPECT_EQ(DscText("aü", 11), R"((a\303\274))");
    EXPECT_EQ(DscText("\x80\x80\x80\x80\x80", 6), "()");
}

TEST_F(DscFrameTest, HeaderSaysWhatTheJobIs) {
    const std::string header = Header({.title = "A title",
                                       .creator = "Someone",
                                       .pages = 3,
                                       .width = 595.276F,
                                       .height = 842,
                                       .languageLevel = 2,
                                       .binary = true});
    EXPECT_THAT(header, testing::StartsWith(R"(%!PS-Adobe-3.0
%%Title: (A title)
%%Creator: (Someone)
%%Pages: 3
%%BoundingBox: 0 0 596 842
%%HiResBoundingBox: 0 0 595.276 842
%%LanguageLevel: 2
%%DocumentData: Binary
%%PageOrder: Special
%%EndComments
%%BeginProlog
)"));
}

TEST_F(DscFrameTest, NoLineIsLongerThanTheConventionsAllow) {
    DscFrame frame(*mOut);
    const std::string endless(5000, '\xC3');
    frame.WriteHeader({.title = endless, .creator = endless, .width = 3e38F, .height = 3e38F});
    frame.BeginSetup(3e38F, 1e-38F);
    frame.BeginPage(endless, 2000000000, 3e38F, 3e38F);
    std::istringstream lines(mOut->contents);
    for (std::string line; std::getline(lines, line);) {
        EXPECT_LE(line.size(), 255U) << line;
    }
}

TEST_F(DscFrameTest, SetsThePageSizeOnlyWhereItChanges) {
    DscFrame frame(*mOut);
    frame.BeginSetup(100, 200);
    frame.EndSetup();
    EXPECT_THAT(mOut->Take(), HasSubstr("<< /PageSize [100 200] >> setpagedevice\n"));
    frame.BeginPage("i", 1, 100, 200);
    EXPECT_THAT(mOut->Take(), Not(HasSubstr("setpagedevice")));
    frame.BeginPage("ii", 2, 200, 100);
    const std::string turned = mOut->Take();
    EXPECT_THAT(turned, HasSubstr("%%Page: (ii) 2\n"));
    EXPECT_THAT(turned, HasSubstr("currentcolorspace [currentcolor]\n"
                                  "<< /PageSize [200 100] >> setpagedevice\n"
                                  "exch setcolorspace aload pop setcolor\n"));
    frame.BeginPage("iii", 3, 200, 100);
    EXPECT_THAT(mOut->Take(), Not(HasSubstr("setpagedevice")));
}

}  // namespace
}  // namespace VANTIX::APP
