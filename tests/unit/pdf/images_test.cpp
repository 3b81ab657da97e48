// SPDX-License-Identifier: MIT
#include "pdf/images.h"

#include <gtest/gtest.h>

#include <string>

#include "unit/pdf/pdfplay.h"

namespace VANTIX::TESTS {
namespace {

struct Case {
    const char* name;
    const char* entries;  // of the image's dictionary
    const char* data;     // in hexadecimal
    const char* calls;    // but for the use of the space
    const char* warnings = "";
};

// Object 20 is the image, 21 a DeviceN tint function, 22 a Separation's.
std::string PlayImage(const std::string& entries, const std::string& data, std::string& warnings,
                      const std::string& content = "/I Do",
                      const PDF::ReaderOptions& options = {}) {
    PdfText pdf = PdfText::OnePage(content, "/XObject << /I 20 0 R >>");
    pdf.Stream(
        20, data,
        "/Subtype /Image " + entries +
            (entries.find("/Filter") == std::string::npos ? " /Filter /ASCIIHexDecode" : ""));
    pdf.Stream(21, "{ 1 index pop 0 }", "/FunctionType 4 /Domain [0 1 0 1] /Range [0 1 0 1 0 1]");
    pdf.Object(22, "<< /FunctionType 2 /Domain [0 1] /N 1 /C0 [0 0 0 0] /C1 [0 1 0 0] >>");
    PdfPlay play(pdf, options);
    const std::string calls = play.Content();
    warnings = play.Warnings();
    const std::size_t use = calls.find("use ");
    return use == 0 ? calls.substr(calls.find('\n') + 1) : calls;
}

class ImagesOfSpaces : public testing::TestWithParam<Case> {};

TEST_P(ImagesOfSpaces, BecomePlanesInHostForm) {
    std::string warnings;
    EXPECT_EQ(PlayImage(GetParam().entries, GetParam().data, warnings), GetParam().calls);
    EXPECT_EQ(warnings, GetParam().warnings);
}

INSTANTIATE_TEST_SUITE_P(
    Depths, ImagesOfSpaces,
    testing::Values(
        Case{"Gray8", "/Width 2 /Height 2 /ColorSpace /DeviceGray /BitsPerComponent 8", "00104080>",
             "image gray 2x2x8 0010/4080\n"},
        Case{"GrayKeepsItsDepth", "/Width 3 /Height 2 /ColorSpace /DeviceGray /BitsPerComponent 2",
             "1BE4>", "image gray 3x2x2 1b/e7\n"},
        Case{"Gray16IsNative", "/Width 2 /Height 1 /ColorSpace /DeviceGray /BitsPerComponent 16",
             "0102FFFE>", "image gray 2x1x16 0201feff\n"},
        Case{"Rgb8", "/Width 2 /Height 1 /ColorSpace /DeviceRGB /BitsPerComponent 8",
             "010203040506>", "image rgb 2x1x8 0104 0205 0306\n"},
        Case{"Rgb4IsExpanded", "/Width 3 /Height 1 /ColorSpace /DeviceRGB /BitsPerComponent 4",
             "012345678F>", "image rgb 3x1x8 003366 114477 225588\n"},
        Case{"CmykIsComplemented", "/Width 1 /Height 2 /ColorSpace /DeviceCMYK /BitsPerComponent 8",
             "0010F0FF80000001>", "image cmyk 1x2x8 ff/7f ef/ff 0f/ff 00/fe\n"},
        Case{"Cmyk16", "/Width 1 /Height 1 /ColorSpace /DeviceCMYK /BitsPerComponent 16",
             "00010203FFFF0000>", "image cmyk 1x1x16 feff fcfd 0000 ffff\n"}),
    [](const auto& param) { return std::string(param.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Decodes, ImagesOfSpaces,
    testing::Values(
        Case{"InvertedGrayKeepsItsDepth",
             "/Width 8 /Height 1 /ColorSpace /DeviceGray /BitsPerComponent 1 /Decode [1 0]", "0F>",
             "image gray 8x1x1 f0\n"},
        Case{"PartOfTheRange",
             "/Width 2 /Height 1 /ColorSpace /DeviceGray /BitsPerComponent 8 /Decode [0 0.5]",
             "00FF>", "image gray 2x1x8 0080\n"},
        Case{"EachComponentOfItsOwn",
             "/Width 1 /Height 1 /ColorSpace /DeviceRGB /BitsPerComponent 8 /Decode [1 0 0 1 0 0]",
             "1020FF>", "image rgb 1x1x8 ef 20 00\n"},
        Case{"Wide16",
             "/Width 1 /Height 1 /ColorSpace /DeviceGray /BitsPerComponent 16 "
             "/Decode [0 2]",
             "9000>", "image gray 1x1x16 ffff\n"},
        Case{"UnfitIsLeftOut",
             "/Width 1 /Height 1 /ColorSpace /DeviceRGB /BitsPerComponent 8 /Decode [1 0]",
             "102030>", "image rgb 1x1x8 10 20 30\n", "image "}),
    [](const auto& param) { return std::string(param.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Palettes, ImagesOfSpaces,
    testing::Values(
        Case{"KeepTheirDepth",
             "/Width 4 /Height 1 /ColorSpace [/Indexed /DeviceRGB 1 <000000FF8000>] "
             "/BitsPerComponent 1",
             "A0>", "image rgb<000000ff8000> 4x1x1 af\n"},
        Case{"OverCmykAreComplemented",
             "/Width 2 /Height 1 /ColorSpace [/Indexed /DeviceCMYK 1 <00000000FF00FF10>] "
             "/BitsPerComponent 4",
             "10>", "image cmyk<ffffffff00ff00ef> 2x1x4 10\n"},
        Case{"IndicesBeyondTheEndAreCut",
             "/Width 3 /Height 1 /ColorSpace [/Indexed /DeviceGray 1 <2080>] "
             "/BitsPerComponent 8",
             "0001FF>", "image gray<2080> 3x1x8 000101\n"},
        Case{"RemappedIndicesAreExpanded",
             "/Width 2 /Height 1 /ColorSpace [/Indexed /DeviceGray 3 <10203040>] "
             "/BitsPerComponent 1 /Decode [3 1]",
             "40>", "image gray<10203040> 2x1x8 0301\n"}),
    [](const auto& param) { return std::string(param.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Spaces, ImagesOfSpaces,
    testing::Values(
        Case{"LabBecomesRgb",
             "/Width 2 /Height 2 /ColorSpace [/Lab << /WhitePoint [0.9642 1 0.8249] >>] "
             "/BitsPerComponent 8 /Decode [0 100 -128 127 -128 127]",
             "FF8080008080>", "image rgb 2x2x8 ff00/ffff ff00/ffff ff00/ffff\n", "image "},
        Case{"SeparationHasTints",
             "/Width 2 /Height 1 /ColorSpace [/Separation /Ink /DeviceCMYK 22 0 R] "
             "/BitsPerComponent 8",
             "00FF>", "image #1 2x1x8 00ff\n"},
        Case{"DeviceNHasSpots",
             "/Width 2 /Height 1 /ColorSpace [/DeviceN [/A /B] /DeviceRGB 21 0 R] "
             "/BitsPerComponent 8",
             "00FF1020>", "image #2 2x1x8 alpha8 ffff spot8 0010 spot8 ff20\n"}),
    [](const auto& param) { return std::string(param.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Damage, ImagesOfSpaces,
    testing::Values(
        Case{"MissingDataAreWhite",
             "/Width 2 /Height 3 /ColorSpace /DeviceCMYK /BitsPerComponent 8", "0000000000000000>",
             "image cmyk 2x3x8 ffff/ffff/ffff ffff/ffff/ffff ffff/ffff/ffff "
             "ffff/ffff/ffff\n",
             "image "},
        Case{"NoSize", "/Width 0 /Height 3 /ColorSpace /DeviceGray /BitsPerComponent 8", "00>", "",
             "image "},
        Case{"OddDepth", "/Width 1 /Height 1 /ColorSpace /DeviceGray /BitsPerComponent 3", "00>",
             "", "image "},
        Case{"TooLarge",
             "/Width 2000000000 /Height 2000000000 /ColorSpace /DeviceRGB /BitsPerComponent 8",
             "00>", "", "image "},
        Case{"NoSpace", "/Width 1 /Height 1 /BitsPerComponent 8", "00>", "", "image "},
        Case{"PatternSpace", "/Width 1 /Height 1 /ColorSpace /Pattern /BitsPerComponent 8", "00>",
             "", "image "},
        Case{"UnknownFilter",
             "/Width 1 /Height 1 /ColorSpace /DeviceGray /BitsPerComponent 8 /Filter /Odd", "00",
             "", "image "}),
    [](const auto& param) { return std::string(param.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Stencils, ImagesOfSpaces,
    testing::Values(Case{"PaintZeros", "/ImageMask true /Width 8 /Height 1", "0F>",
                         "image gray<0000> 8x1x1 f0 alpha*1 f0\n"},
                    Case{"PaintOnes", "/ImageMask true /Width 8 /Height 1 /Decode [1 0]", "0F>",
                         "image gray<0000> 8x1x1 0f alpha*1 0f\n"},
                    Case{"MissingDataArePaper", "/ImageMask true /Width 8 /Height 2", "0F>",
                         "image gray<0000> 8x2x1 f0/00 alpha*1 f0/00\n", "image "}),
    [](const auto& param) { return std::string(param.param.name); });

TEST(Images, StencilTakesTheFillColourInItsOwnSpace) {
    std::string warnings;
    const std::string calls =
        PlayImage("/ImageMask true /Width 8 /Height 1", "00>", warnings, "1 0 0.2 0 k /I Do");
    EXPECT_EQ(calls, "image cmyk<00ffccff00ffccff> 8x1x1 ff alpha*1 ff\n");
    EXPECT_EQ(PlayImage("/ImageMask true /Width 8 /Height 1", "00>", warnings,
                        "/Pattern cs /P scn /I Do"),
              "");
    EXPECT_EQ(warnings, "missing-resource ");
}

TEST(Images, Level2ReplacesDeviceNByItsAlternate) {
    std::string warnings;
    PDF::ReaderOptions options;
    options.languageLevel = 2;
    const std::string calls = PlayImage(
        "/Width 2 /Height 1 /ColorSpace [/DeviceN [/A /B] /DeviceRGB 21 0 R] "
        "/BitsPerComponent 8",
        "00FF1020>", warnings, "/I Do", options);
    EXPECT_EQ(calls, "image rgb 2x1x8 0010 ff20 0000\n");
}

class ImagesWithoutGrayBits : public testing::TestWithParam<Case> {};

TEST_P(ImagesWithoutGrayBits, HaveAPaletteOfGrays) {
    std::string warnings;
    PDF::ReaderOptions options;
    options.graysAsPalettes = true;
    EXPECT_EQ(PlayImage(GetParam().entries, GetParam().data, warnings, "/I Do", options),
              GetParam().calls);
    EXPECT_EQ(warnings, "");
}

INSTANTIATE_TEST_SUITE_P(
    Depths, ImagesWithoutGrayBits,
    testing::Values(
        Case{"One", "/Width 8 /Height 1 /ColorSpace /DeviceGray /BitsPerComponent 1", "0F>",
             "image gray<00ff> 8x1x1 0f\n"},
        Case{"Two", "/Width 4 /Height 1 /ColorSpace /DeviceGray /BitsPerComponent 2", "1B>",
             "image gray<0055aaff> 4x1x2 1b\n"},
        Case{"Four", "/Width 2 /Height 1 /ColorSpace /DeviceGray /BitsPerComponent 4", "1E>",
             "image gray<00112233445566778899aabbccddeeff> 2x1x4 1e\n"},
        Case{"Inverted",
             "/Width 4 /Height 1 /ColorSpace /DeviceGray /BitsPerComponent 2 /Decode [1 0]", "1B>",
             "image gray<0055aaff> 4x1x2 e4\n"},
        Case{"EightStay", "/Width 1 /Height 1 /ColorSpace /DeviceGray /BitsPerComponent 8", "40>",
             "image gray 1x1x8 40\n"},
        Case{"PalettesStay",
             "/Width 8 /Height 1 /ColorSpace [/Indexed /DeviceGray 1 <4080>] /BitsPerComponent 1",
             "0F>", "image gray<4080> 8x1x1 0f\n"},
        Case{"StencilsStay", "/ImageMask true /Width 8 /Height 1", "0F>",
             "image gray<0000> 8x1x1 f0 alpha*1 f0\n"}),
    [](const auto& param) { return std::string(param.param.name); });

struct Inline {
    const char* name;
    const char* content;
    const char* calls;
};

class InlineImages : public testing::TestWithParam<Inline> {};

TEST_P(InlineImages, TakeTheSamePath) {
    PdfPlay play(PdfText::OnePage(GetParam().content,
                                  "/ColorSpace << /My [/Indexed /DeviceGray 1 <4080>] >>"));
    EXPECT_EQ(play.Content(), GetParam().calls);
    EXPECT_EQ(play.Warnings(), "");
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, InlineImages,
    testing::Values(Inline{"RawDataMayHoldEI", "BI /W 4 /H 1 /BPC 8 /CS /G ID  EI \nEI 2 w",
                           "image gray 4x1x8 20454920\nwidth 2\n"},
                    Inline{"Abbreviations",
                           "BI /W 2 /H 1 /BPC 8 /CS /RGB /F [/AHx] /D [1 0 0 1 0 1] ID "
                           "010203040506> EI",
                           "image rgb 2x1x8 fefb 0205 0306\n"},
                    Inline{"SpaceOfTheResources", "BI /W 8 /H 1 /BPC 1 /CS /My ID A EI",
                           "image gray<4080> 8x1x1 41\n"},
                    Inline{"OwnPalette",
                           "BI /W 8 /H 1 /BPC 1 /CS [/I /RGB 1 <000000FFFFFF>] ID A EI",
                           "image rgb<000000ffffff> 8x1x1 41\n"},
                    Inline{"Stencil", "BI /IM true /W 8 /H 1 /D [1 0] ID A EI",
                           "image gray<0000> 8x1x1 41 alpha*1 41\n"}),
    [](const auto& param) { return std::string(param.param.name); });

TEST(Images, HiddenAndTransparentOnesAreNotRead) {
    PdfPlay play(PdfText::OnePage("/G gs BI /W 1 /H 1 /BPC 8 /CS /G ID x EI",
                                  "/ExtGState << /G << /ca 0 >> >>"));
    EXPECT_EQ(play.Content(), "");
    EXPECT_EQ(play.Warnings(), "");
}

}  // namespace
}  // namespace VANTIX::TESTS
