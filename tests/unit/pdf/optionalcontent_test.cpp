// SPDX-License-Identifier: MIT
#include "pdf/optionalcontent.h"

#include <gtest/gtest.h>

#include <string>

#include "unit/pdf/pdfplay.h"

namespace VANTIX::TESTS {
namespace {

// Groups 10 (on by default), 11 (off) and 12 (off on the screen, on in print).
PdfText Layers(const std::string& content, const std::string& membership,
               const std::string& configuration = "") {
    PdfText pdf = PdfText::OnePage(
        content,
        "/Properties << /On 10 0 R /Off 11 0 R /M 20 0 R >> /XObject << /F 5 0 R /I 6 0 R >>");
    pdf.Object(1,
               "<< /Type /Catalog /Pages 2 0 R /OCProperties << /OCGs [10 0 R 11 0 R 12 0 R] /D << "
               "/OFF [11 0 R 12 0 R] /AS [ << /Event /View /OCGs [10 0 R] /Category [/View] >> << "
               "/Event /Print /OCGs [12 0 R] /Category [/Print] >> ] " +
                   configuration + " >> >> >>")
        .Stream(5, "5 w", "/Subtype /Form /OC 11 0 R")
        .Stream(6, "", "/Subtype /Image /OC 20 0 R")
        .Object(10, "<< /Type /OCG /Usage << /View << /ViewState /OFF >> >> >>")
        .Object(11, "<< /Type /OCG >>")
        .Object(12, "<< /Type /OCG /Usage << /Print << /PrintState /ON >> >> >>")
        .Object(20, "<< /Type /OCMD " + membership + " >>");
    return pdf;
}

struct Case {
    const char* name;
    const char* membership;
    bool visible;
};

class OptionalContentMembership : public testing::TestWithParam<Case> {};

TEST_P(OptionalContentMembership, DecidesVisibility) {
    PdfPlay play(Layers("/OC /M BDC 0 0 m 9 9 l S EMC", GetParam().membership));
    EXPECT_EQ(!play.Content().empty(), GetParam().visible);
}

INSTANTIATE_TEST_SUITE_P(
    All, OptionalContentMembership,
    testing::Values(Case{"NoGroups", "", true}, Case{"NullGroups", "/OCGs [null 99 0 R]", true},
                    Case{"SingleOff", "/OCGs 11 0 R", false},
                    Case{"UsageTurnsOn", "/OCGs 12 0 R", true},
                    Case{"AnyOnIsDefault", "/OCGs [10 0 R 11 0 R]", true},
                    Case{"AllOn", "/OCGs [10 0 R 11 0 R] /P /AllOn", false},
                    Case{"AnyOff", "/OCGs [10 0 R 11 0 R] /P /AnyOff", true},
                    Case{"AllOff", "/OCGs [10 0 R 11 0 R] /P /AllOff", false},
                    Case{"ExpressionRules", "/OCGs 11 0 R /VE [/Or 10 0 R 11 0 R]", true},
                    Case{"NestedExpression", "/VE [/And 10 0 R [/Not [/Or 11 0 R [/Not 12 0 R]]]]",
                         true},
                    Case{"NotOn", "/VE [/Not 10 0 R]", false}),
    [](const auto& param) { return std::string(param.param.name); });

TEST(OptionalContent, HiddenMarksKeepStatesAndClips) {
    PdfPlay play(
        Layers("/Span BMC /OC /Off BDC 2 w /OC /On BDC 0 0 9 9 re f EMC /I Do 0 0 9 9 re W f EMC "
               "EMC EMC 0 0 m 9 9 l S",
               ""));
    EXPECT_EQ(play.Content(),
              "width 2\nmove 0 0\nline 9 0 9 9 0 9\nclose\nclip\nnewpath\n"
              "move 0 0\nline 9 9\nstroke gray 0\nnewpath\n");
    EXPECT_EQ(play.Warnings(), "");
}

TEST(OptionalContent, HiddenXObjectsAreNeitherDrawnNorReported) {
    PdfPlay play(Layers("/F Do /I Do", "/OCGs 11 0 R"));
    EXPECT_EQ(play.Content(), "");
    EXPECT_EQ(play.Warnings(), "");
}

TEST(OptionalContent, BaseStateOffHidesAllButTheNamed) {
    const std::string content = "/OC /On BDC 2 w 0 0 m 9 9 l S EMC";
    EXPECT_EQ(PdfPlay(Layers(content, "", "/BaseState /OFF")).Content(), "width 2\n");
    EXPECT_NE(PdfPlay(Layers(content, "", "/BaseState /OFF /ON [10 0 R]")).Content(), "width 2\n");
}

TEST(OptionalContent, ExpressionsThatHoldThemselvesEnd) {
    PdfText pdf = Layers("/OC /M BDC EMC 2 w", "/VE 21 0 R");
    pdf.Object(21, "[/And 21 0 R 21 0 R 21 0 R 10 0 R]");
    EXPECT_EQ(PdfPlay(pdf).Content(), "width 2\n");
}

}  // namespace
}  // namespace VANTIX::TESTS
