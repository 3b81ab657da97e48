// SPDX-License-Identifier: MIT
#include "pdf/colorspaces.h"

#include <gtest/gtest.h>

#include <string>

#include "unit/pdf/pdfplay.h"

namespace VANTIX::TESTS {
namespace {

// Colour spaces by name, and functions 20 (tint to RGB), 21 (tint to CMYK), 22 (two tints to CMYK).
PdfText Spaces(const std::string& content, const std::string& spaces) {
    PdfText pdf = PdfText::OnePage(content, "/ColorSpace << " + spaces + " >>");
    pdf.Object(20, "<< /FunctionType 2 /Domain [0 1] /N 1 /C0 [1 1 1] /C1 [1 0.5 0] >>")
        .Object(21, "<< /FunctionType 2 /Domain [0 1] /N 1 /C0 [0 0 0 0] /C1 [0 0.5 1 0] >>")
        .Stream(22, "{ 0 0 }", "/FunctionType 4 /Domain [0 1 0 1] /Range [0 1 0 1 0 1 0 1]")
        .Stream(30, "no profile", "/N 4")
        .Stream(31, "no profile", "/N 3 /Alternate /DeviceGray");
    return pdf;
}

struct Case {
    const char* name;
    const char* spaces;
    const char* colour;
    const char* painted;  ///< what Fill sees
    const char* warnings = "";
    std::int32_t level = 3;
};

class ColorSpaceKinds : public testing::TestWithParam<Case> {};

TEST_P(ColorSpaceKinds, GiveTheHostItsColour) {
    const Case& c = GetParam();
    PDF::ReaderOptions options;
    options.languageLevel = c.level;
    PdfPlay play(Spaces(std::string(c.colour) + " 0 0 m 9 9 l f", c.spaces), options);
    const std::string calls = play.Content();
    const std::size_t start = calls.find("fill ") + 5;
    EXPECT_EQ(calls.substr(start, calls.find('\n', start) - start), c.painted);
    EXPECT_EQ(play.Warnings(), c.warnings);
}

std::string CaseName(const testing::TestParamInfo<Case>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(
    Plain, ColorSpaceKinds,
    testing::Values(
        Case{"Gray", "", "0.5 g", "gray 0.5"}, Case{"RGB", "", "1 0.5 7 rg", "rgb 1 0.5 1"},
        Case{"CMYKIsComplemented", "", "1 0.25 0 0 k", "cmyk 0 0.75 1 1"},
        Case{"InitialCMYKIsBlack", "", "/DeviceCMYK cs", "cmyk 1 1 1 0"},
        Case{"TooManyValues", "", "/DeviceRGB cs 9 1 0 0 sc", "rgb 1 0 0", "bad-operator "},
        Case{"TooFewValues", "", "/DeviceRGB cs 1 sc", "rgb 1 0 0", "bad-operator "},
        Case{"StrokeColourIsItsOwn", "", "1 0 0 RG", "gray 0"},
        Case{"DefaultReplacesDevice", "/DefaultRGB [/CalRGB << /WhitePoint [0.95 1 1.09] >>]",
             "1 0 0 rg", "#1 1 0 0"},
        Case{"UnfitDefaultIsIgnored", "/DefaultRGB /DeviceGray", "1 0 0 rg", "rgb 1 0 0"},
        Case{"CalGray", "/C [/CalGray << /WhitePoint [0.95 1 1.09] /Gamma 2 >>]", "/C cs 0.3 sc",
             "#1 0.3"},
        Case{"LabIsClippedToItsRange",
             "/C [/Lab << /WhitePoint [0.95 1 1.09] /Range [-9 9 -9 9] >>]", "/C cs 120 -20 5 sc",
             "#1 100 -9 5"},
        Case{"IndexedColourIsTheBases", "/C [/Indexed /DeviceCMYK 1 <00112233FF00FF00>]",
             "/C cs 0.6 sc", "cmyk 0 1 0 1"},
        Case{"IndexedLabSpreadsBytesOverItsRange",
             "/C [/Indexed [/Lab << /WhitePoint [0.95 1 1.09] /Range [-51 51 0 51] >>] 0 <FF00FF>]",
             "/C cs", "#1 100 -51 51"},
        Case{"IndexIsClipped", "/C [/Indexed /DeviceGray 1 <00FF>]", "/C cs 9 sc", "gray 1"}),
    CaseName);

INSTANTIATE_TEST_SUITE_P(
    Spots, ColorSpaceKinds,
    testing::Values(
        Case{"SeparationBeginsFull", "/C [/Separation /Orange /DeviceRGB 20 0 R]", "/C cs", "#1 1"},
        Case{"Separation", "/C [/Separation /Orange /DeviceCMYK 21 0 R]", "/C cs 0.5 scn",
             "#1 0.5"},
        Case{"Registration", "/C [/Separation /All /DeviceCMYK 21 0 R]", "/C cs 0.5 scn", "#1 0.5"},
        Case{"None", "/C [/Separation /None /DeviceCMYK 21 0 R]", "/C cs 0.5 scn", "#1 0.5"},
        Case{"DeviceN", "/C [/DeviceN [/A /B] /DeviceCMYK 22 0 R]", "/C cs 0.5 0.25 scn",
             "#1 0.5 0.25"},
        Case{"DeviceNAtLevelTwoIsItsAlternate", "/C [/DeviceN [/A /B] /DeviceCMYK 22 0 R]",
             "/C cs 0.5 0.25 scn", "cmyk 0.5 0.75 1 1", "", 2},
        Case{"PaletteOverDeviceNAtLevelTwo",
             "/C [/Indexed [/DeviceN [/A /B] /DeviceCMYK 22 0 R] 0 <FF00>]", "/C cs 0 scn",
             "cmyk 0 1 1 1", "", 2},
        Case{"NChannel",
             "/C [/DeviceN [/Cyan /Spot] /DeviceCMYK 22 0 R << /Subtype /NChannel /Colorants << "
             "/Spot [/Separation /Spot /DeviceRGB 20 0 R] >> /Process << /ColorSpace /DeviceCMYK "
             "/Components [/Cyan /Magenta /Yellow /Black] >> >>]",
             "/C cs 1 0 scn", "#1 1 0"}),
    CaseName);

INSTANTIATE_TEST_SUITE_P(
    Broken, ColorSpaceKinds,
    testing::Values(
        Case{"BadProfile", "/C [/ICCBased 30 0 R]", "/C cs 1 0 0 0 sc", "cmyk 0 1 1 1",
             "icc-profile "},
        Case{"UnfitAlternateOfBadProfile", "/C [/ICCBased 31 0 R]", "/C cs 1 0 0 sc", "rgb 1 0 0",
             "icc-profile "},
        Case{"NoFunction", "/C [/Separation /X /DeviceCMYK null]", "/C cs 0.5 scn", "#1 0.5",
             "color-space "},
        Case{"FunctionOfOtherOutputs", "/C [/Separation /X /DeviceRGB 21 0 R]", "/C cs 1 scn",
             "#1 1", "color-space "},
        Case{"SpotOfSpot", "/C [/Separation /X [/Separation /Y /DeviceRGB 20 0 R] 20 0 R]",
             "/C cs 1 scn", "#2 1", "color-space "},
        Case{"UnknownFamily", "/C [/Rainbow 1]", "/C cs 0.5 scn", "gray 0", "color-space "},
        Case{"NoColorants", "/C [/DeviceN [] /DeviceRGB 20 0 R]", "/C cs 0.5 scn", "gray 0",
             "color-space "},
        Case{"PaletteOfPalette", "/C [/Indexed [/Indexed /DeviceRGB 0 <00>] 0 <00>]", "/C cs 0 scn",
             "gray 0", "color-space "}),
    CaseName);

TEST(ColorSpaces, SpacesThatHoldThemselvesEnd) {
    PdfText pdf = Spaces("/C cs 0 0 m 9 9 l f", "/C 40 0 R");
    pdf.Object(40, "[/Indexed 41 0 R 0 <00>]").Object(41, "[/Pattern 40 0 R]");
    PdfPlay play(pdf);
    EXPECT_NE(play.Content().find("fill gray 0"), std::string::npos);
    EXPECT_EQ(play.Warnings(), "color-space ");
}

TEST(ColorSpaces, FunctionsThatHoldThemselvesEnd) {
    PdfText pdf = Spaces("/C cs 0 0 m 9 9 l f", "/C [/Separation /X /DeviceRGB 23 0 R]");
    pdf.Object(23,
               "<< /FunctionType 3 /Domain [0 1] /Functions [20 0 R 23 0 R] /Bounds [0.5] "
               "/Encode [0 1 0 1] >>");
    EXPECT_EQ(PdfPlay(pdf).Content(), "use 1\nmove 0 0\nline 9 9\nfill #1 1\nnewpath\n");
}

TEST(ColorSpaces, EqualSpacesAreOneAndRegisteredOnce) {
    const std::string space = "[/Separation /Orange /DeviceRGB 20 0 R]";
    PdfPlay play(Spaces("/A cs /B CS /C cs /A cs", "/A " + space + " /B 40 0 R /C " + space)
                     .Object(40, space));
    EXPECT_EQ(play.Content(), "use 1\n");
    EXPECT_EQ(play.Page().find("use"), std::string::npos);
    EXPECT_EQ(play.player->ColorSpaceNames(), std::set<std::string>{"Separation Orange"});
}

TEST(ColorSpaces, RestoreBringsBackTheSpaceForItsValues) {
    PdfPlay play(Spaces("0.5 g q /C cs Q 0.25 sc 0 0 m 9 9 l f",
                        "/C [/Separation /Orange /DeviceRGB 20 0 R]"));
    EXPECT_NE(play.Content().find("fill gray 0.25"), std::string::npos);
}

}  // namespace
}  // namespace VANTIX::TESTS
