// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "unit/pdf/pdfplay.h"

namespace VANTIX::TESTS {
namespace {

PDF::ReaderOptions Kept() {
    PDF::ReaderOptions options;
    options.keepsAlpha = true;
    return options;
}

/// A page with masks of /M (form 5), /N and /Alpha (form 6), and a group /F (form 7).
PdfText Masked(const std::string& content, const std::string& more = "") {
    PdfText pdf = PdfText::OnePage(
        content,
        "/ExtGState << /M << /SMask << /S /Luminosity /G 5 0 R >> >> /N << /SMask << /S "
        "/Luminosity /G 6 0 R >> >> /Alpha << /SMask << /S /Alpha /G 6 0 R >> >> /Off << /SMask "
        "/None >> /Half << /ca 0.5 >> /Full << /ca 1 >> " +
            more + " >> /XObject << /F 7 0 R >>");
    pdf.Stream(5, "M", "/Subtype /Form /BBox [0 0 5 5] /Group << /S /Transparency >>")
        .Stream(6, "N", "/Subtype /Form /BBox [0 0 6 6] /Group << /S /Transparency >>")
        .Stream(7, "1 1 m 2 2 l S /F1 Do",
                "/Subtype /Form /BBox [0 0 7 7] /Group << /S /Transparency /I true >> "
                "/Resources << /XObject << /F1 8 0 R >> /ExtGState << /Half << /ca 0.5 >> >> >>")
        .Stream(8, "3 3 m 4 4 l S", "/Subtype /Form /Group << /S /Transparency /I true >>");
    return pdf;
}

/// The calls, shorter: what every recording begins with is "begin", a mask is "M[" or "N[" with
/// what follows its beginning, and painting a line of two points is "line".
std::string Short(std::string calls) {
    const auto replace = [&](const std::string& from, const std::string& to) {
        for (std::size_t at = calls.find(from); at != std::string::npos;
             at = calls.find(from, at + to.size())) {
            calls.replace(at, from.size(), to);
        }
    };
    const auto box = [](const std::string& size) {
        return "move 0 0\nline " + size + " 0 " + size + ' ' + size + " 0 " + size + "\nclose\n";
    };
    const std::string lines = "cap 0\njoin 0\nmiter 10\ndash phase 0\n";
    const std::string content = "\nsave\nwidth 1\n" + lines + box("5") + "clip\nnewpath\n";
    const std::string other = "\nsave\nwidth 1\n" + lines + box("6") + "clip\nnewpath\n";
    replace("mask luminosity 0 0 100 100 gray on 0", "mask");
    replace(content + "restore\nendmask\n", " M\n");
    replace(other + "restore\nendmask\n", " N\n");
    replace(lines, "begin\n");
    replace("width 1\nbegin\n", "begin\n");
    replace(box("9"), "box\n");
    replace("move 1 1\nline 2 2\nstroke gray 0", "paint");
    replace("\nnewpath\n", "\n");
    replace("\n", "; ");
    return calls;
}

struct MaskCase {
    const char* name;
    const char* content;  // P paints, C clips
    const char* calls;
};

class SoftMasks : public testing::TestWithParam<MaskCase> {};

std::string Played(const std::string& pattern, const std::string& more = "") {
    std::string content;
    for (const char c : pattern) {
        content += c == 'P' ? "1 1 m 2 2 l S" : (c == 'C' ? "0 0 9 9 re W n" : std::string(1, c));
    }
    return Short(PdfPlay(Masked(content, more), Kept()).Content());
}

TEST_P(SoftMasks, LastAsLongAsTheyAreInForce) {
    EXPECT_EQ(Played(GetParam().content), GetParam().calls);
}

INSTANTIATE_TEST_SUITE_P(
    Masks, SoftMasks,
    testing::Values(
        MaskCase{"WithoutPaintThereIsNone", "q /M gs 2 w Q /M gs", "save; width 2; restore; "},
        MaskCase{"EndsBeforeTheRestore", "q /M gs P Q P",
                 "save; mask M; begin; paint masked; unmask; restore; paint; "},
        MaskCase{"EndsWithThePage", "/M gs P", "mask M; begin; paint masked; unmask; "},
        MaskCase{"EndsWithNone", "/M gs P /Off gs P",
                 "mask M; begin; paint masked; unmask; paint; "},
        MaskCase{"TheSameOnceMoreGoesOn", "/M gs P /M gs P",
                 "mask M; begin; paint masked; paint masked; unmask; "},
        MaskCase{"AnotherTakesItsPlace", "/M gs P /N gs P",
                 "mask M; begin; paint masked; unmask; mask N; begin; paint masked; unmask; "},
        MaskCase{"TakesTheAlphaOfItsTime", "/M gs /Half gs P /Full gs P",
                 "mask alpha 0.5 1 M; begin; paint alpha 0.5 1 masked; unmask; "
                 "mask M; begin; paint masked; unmask; "},
        MaskCase{"BeginsInTheLevelThatSetIt", "q /M gs q C 2 w P Q q P Q Q",
                 "save; save; box; clip; width 2; restore; mask M; begin; "
                 "save; box; clip; width 2; begin; paint masked; restore; "
                 "save; paint masked; restore; unmask; restore; "},
        MaskCase{"AnOuterOneEndsAndBeginsAgain", "q /M gs P q C 3 w /N gs P Q P Q",
                 "save; mask M; begin; paint masked; save; box; clip; width 3; "
                 "restore; unmask; save; box; clip; width 3; begin; "
                 "mask N; width 3; begin; paint masked; unmask; restore; "
                 "mask M; begin; paint masked; unmask; restore; "},
        MaskCase{"ClipsAndLinesOutlastIt", "/M gs P 2 w 2 0 0 2 0 0 cm C 2 0 0 2 0 0 cm /Off gs P",
                 "mask M; begin; paint masked; width 2; concat 2 0 0 2 0 0; box; clip; "
                 "concat 2 0 0 2 0 0; unmask; concat 2 0 0 2 0 0; box; clip; concat 2 0 0 2 0 0; "
                 "width 2; begin; paint; "},
        MaskCase{"ItsPlaceIsThatOfTheMomentItWasSet", "q /M gs 2 0 0 2 0 0 cm P Q",
                 "save; concat 2 0 0 2 0 0; mask luminosity 0 0 50 50 gray on 0; save; begin; "
                 "concat 0.5 0 0 0.5 0 0; move 0 0; line 5 0 5 5 0 5; close; clip; restore; "
                 "endmask; begin; paint masked; unmask; restore; "},
        MaskCase{"AlphaAndHiddenPaint", "/Alpha gs BT 3 Tr (x) Tj ET n f", ""}),
    [](const auto& param) { return std::string(param.param.name); });

struct KindCase {
    const char* name;
    const char* mask;
    const char* group;
    const char* begin;
    const char* warnings = "";
};

class KindsOfMasks : public testing::TestWithParam<KindCase> {};

TEST_P(KindsOfMasks, ComeWithBackdropAndTransfer) {
    const KindCase& test = GetParam();
    PdfText pdf = PdfText::OnePage("/X gs 1 1 m 2 2 l S", "/ExtGState << /X << /SMask << " +
                                                              std::string(test.mask) + " >> >> >>");
    pdf.Stream(5, "",
               "/Subtype /Form /Group << /S /Transparency " + std::string(test.group) + " >>");
    PdfPlay play(pdf, Kept());
    const std::string calls = play.Content();
    EXPECT_EQ(calls.substr(0, calls.find('\n')), test.begin);
    EXPECT_EQ(play.Warnings(), test.warnings);
}

#define LUMINOSITY "mask luminosity 0 0 100 100 "

INSTANTIATE_TEST_SUITE_P(
    Kinds, KindsOfMasks,
    testing::Values(
        KindCase{"Alpha", "/S /Alpha /G 5 0 R", "/K true",
                 "mask alpha 0 0 100 100 gray on 0 knockout"},
        KindCase{"BlackOfTheGroup", "/S /Luminosity /G 5 0 R", "/CS /DeviceCMYK /I true",
                 LUMINOSITY "cmyk on 1 1 1 0 isolated"},
        KindCase{"Backdrop", "/S /Luminosity /G 5 0 R /BC [1 0 0 0.25]", "/CS /DeviceCMYK",
                 LUMINOSITY "cmyk on 0 1 1 0.75"},
        KindCase{"BackdropTellsTheSpace", "/S /Luminosity /G 5 0 R /BC [1 0 0.5]", "",
                 LUMINOSITY "rgb on 1 0 0.5"},
        KindCase{"BadBackdropIsBlack", "/S /Luminosity /G 5 0 R /BC [/x]", "/CS /DeviceRGB",
                 LUMINOSITY "rgb on 0 0 0", "soft-mask "},
        KindCase{"Transfer",
                 "/S /Luminosity /G 5 0 R /TR << /FunctionType 2 /N 1 /C0 [1] /C1 [0] /Domain [0 "
                 "1] >>",
                 "", LUMINOSITY "gray on 0 through power"},
        KindCase{"Identity", "/S /Luminosity /G 5 0 R /TR /Identity", "", LUMINOSITY "gray on 0"},
        KindCase{"BadTransfer", "/S /Luminosity /G 5 0 R /TR 7", "", LUMINOSITY "gray on 0",
                 "soft-mask "},
        KindCase{"WithoutAGroup", "/S /Luminosity", "", "move 1 1", "soft-mask "},
        KindCase{"OfNoKind", "/G 5 0 R", "", "move 1 1", "soft-mask "}),
    [](const auto& param) { return std::string(param.param.name); });

TEST(SoftMask, TextObjectsAreClosedAroundIt) {
    PdfText pdf = Masked("BT /T 10 Tf (a) Tj /M gs (b) Tj 7 Tr (c) Tj ET /Off gs 1 1 m 2 2 l S");
    std::string bytes = pdf.Bytes();
    const std::string states = "/XObject <<";
    bytes.replace(
        bytes.find(states), states.size(),
        "/Font << /T << /Type /Font /Subtype /Type1 /BaseFont /Helvetica >> >> " + states);
    EXPECT_EQ(Short(PdfPlay(bytes, Kept()).Content()),
              "text; font Helvetica 10 1 0 0 1; at 0 0; show0 (a); endtext; mask M; begin; "
              "text; font Helvetica 10 1 0 0 1; at 5.56 0; show0 (b); endtext; text; at 11.12 0; "
              "show7 (c); "
              "endtext clip; unmask; text; font Helvetica 10 1 0 0 1; at 11.12 0; show7 (c); "
              "endtext clip; paint; ");
}

// A group takes over the mask of what it is drawn in, whether that was drawn through it or not.
TEST(SoftMask, GroupsInAMaskedGroupHaveANeutralOne) {
    const std::string box = "move 0 0; line 7 0 7 7 0 7; close; ";
    EXPECT_EQ(Played("/M gs /F Do", "/X << /ca 0.5 >>").find('?'), std::string::npos);
    PdfText pdf = Masked("/M gs /F Do");
    pdf.Stream(7, "/Half gs /F1 Do 1 1 m 2 2 l S",
               "/Subtype /Form /BBox [0 0 7 7] /Group << /S /Transparency >> /Resources << "
               "/XObject << /F1 8 0 R >> /ExtGState << /Half << /ca 0.5 >> >> >>");
    EXPECT_EQ(Short(PdfPlay(pdf, Kept()).Content()),
              "mask M; begin; save; group 0 0 7 7 masked; save; begin; "
              "save; mask luminosity 0 0 100 100 gray on 1 alpha 0.5 1; save; begin; restore; "
              "endmask; begin; group 0 0 100 100 isolated alpha 0.5 1 masked; save; begin; "
              "move 3 3; line 4 4; stroke gray 0; restore; endgroup; unmask; restore; "
              "paint alpha 0.5 1; restore; endgroup; restore; unmask; ");
}

TEST(SoftMask, MayHoldMasksButNotItself) {
    PdfText pdf = Masked("/M gs 1 1 m 2 2 l S");
    const std::string resources =
        "/Subtype /Form /Group << /S /Transparency >> /Resources << /ExtGState << /M << /SMask << "
        "/S /Luminosity /G 5 0 R >> >> /N << /SMask << /S /Luminosity /G 6 0 R >> >> >> >>";
    pdf.Stream(5, "/N gs 1 1 m 2 2 l S", resources).Stream(6, "/M gs 1 1 m 2 2 l S", resources);
    PdfPlay play(pdf, Kept());
    EXPECT_EQ(Short(play.Content()),
              "mask; save; begin; mask; save; begin; paint; restore; endmask; begin; "
              "paint masked; unmask; restore; endmask; begin; paint masked; unmask; ");
    EXPECT_EQ(play.Warnings(), "recursion ");
}

// Each level ends the mask of the one around it, and after it that begins again.
TEST(SoftMask, ThousandsOfThemStayInStep) {
    std::string content;
    for (int i = 0; i < 2000; ++i) {
        content += i % 3 == 0 ? "/M gs q 0 0 9 9 re W n /Half gs 1 1 m 2 2 l S\n"
                              : "/N gs 1 1 m 2 2 l S 0 0 9 9 re W* n Q /Full gs 1 1 m 2 2 l S\n";
    }
    const std::string calls = '\n' + PdfPlay(Masked(content), Kept()).Page();
    const auto count = [&](const std::string& line) {
        std::size_t found = 0;
        for (std::size_t at = calls.find(line); at != std::string::npos;
             at = calls.find(line, at + 1)) {
            ++found;
        }
        return found;
    };
    EXPECT_EQ(count("\nsave\n"), count("\nrestore\n"));
    EXPECT_EQ(count("\nendmask\n"), count("\nunmask\n"));
    EXPECT_GT(count("\nunmask\n"), 2000U);
    EXPECT_LT(calls.size(), 4000000U);
}

TEST(SoftMask, OpaqueOutputHasNone) {
    PdfPlay play(Masked("/M gs 1 1 m 2 2 l S"));
    EXPECT_EQ(Short(play.Content()), "paint; ");
    EXPECT_EQ(play.Warnings(), "transparency ");
}

}  // namespace
}  // namespace VANTIX::TESTS
