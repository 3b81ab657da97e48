// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "pdf/imagemasks.h"
#include "unit/pdf/pdfplay.h"

namespace VANTIX::TESTS {
namespace {

using PDF::OpaqueBoxes;

std::string BoxesOf(std::initializer_list<std::string> lines) {
    OpaqueBoxes boxes(static_cast<std::int32_t>(lines.begin()->size()));
    for (const std::string& line : lines) {
        std::string opacity = line;
        for (char& c : opacity) {
            c = c == '#' ? '\xFF' : '\0';
        }
        boxes.AddLine(reinterpret_cast<const std::uint8_t*>(opacity.data()));
    }
    std::string text;
    for (const auto& box : boxes.Take()) {
        text += std::to_string(box.left) + '-' + std::to_string(box.right) + ' ' +
                std::to_string(box.top) + '-' + std::to_string(box.bottom) + ", ";
    }
    return text;
}

TEST(OpaqueBoxes, JoinEqualRunsOverLines) {
    EXPECT_EQ(BoxesOf({"##.##", "##.##", "##..#", "##..#"}), "3-5 0-2, 0-2 0-4, 4-5 2-4, ");
    EXPECT_EQ(BoxesOf({"....", "....", "####"}), "0-4 2-3, ");
    EXPECT_EQ(BoxesOf({"#.#.", ".#.#"}), "0-1 0-1, 2-3 0-1, 1-2 1-2, 3-4 1-2, ");
}

TEST(OpaqueBoxes, BeginAnewAfterTheyWereTaken) {
    OpaqueBoxes boxes(2);
    const std::uint8_t line[] = {0xFF, 0};
    boxes.AddLine(line);
    EXPECT_EQ(boxes.Take().size(), 1U);
    EXPECT_EQ(boxes.Count(), 0U);
    boxes.AddLine(line);
    const auto second = boxes.Take();
    ASSERT_EQ(second.size(), 1U);
    EXPECT_EQ(second[0].top, 1);
    EXPECT_EQ(second[0].bottom, 2);
}

struct Case {
    const char* name;
    const char* image;  // entries
    const char* data;
    const char* mask;  // entries of object 21
    const char* maskData;
    const char* calls;
    const char* warnings = "";
};

class MaskedImages : public testing::TestWithParam<Case> {};

std::string PlayMasked(const Case& masked, std::string& warnings,
                       const PDF::ReaderOptions& options = {}) {
    const std::string common = " /Subtype /Image /Filter /ASCIIHexDecode";
    PdfText pdf = PdfText::OnePage("/I Do", "/XObject << /I 20 0 R >>");
    pdf.Stream(20, masked.data, masked.image + common);
    pdf.Stream(21, masked.maskData, masked.mask + common);
    PdfPlay play(pdf, options);
    std::string calls = play.Content();
    warnings = play.Warnings();
    return calls;
}

TEST_P(MaskedImages, ArePaintedWhereTheyAreOpaque) {
    std::string warnings;
    EXPECT_EQ(PlayMasked(GetParam(), warnings), GetParam().calls);
    EXPECT_EQ(warnings, GetParam().warnings);
}

constexpr const char* kGray =
    "/Width 2 /Height 2 /ColorSpace /DeviceGray /BitsPerComponent 8 "
    "/SMask 21 0 R";
constexpr const char* kStenciled =
    "/Width 2 /Height 2 /ColorSpace /DeviceGray /BitsPerComponent 8 /Mask 21 0 R";
constexpr const char* kSoft = "/Width 2 /Height 2 /ColorSpace /DeviceGray /BitsPerComponent 8";

INSTANTIATE_TEST_SUITE_P(
    Hard, MaskedImages,
    testing::Values(
        Case{"WholeOnesAreDrawnPlainly", kGray, "10203040>", kSoft, "FFFFFFFF>",
             "image gray 2x2x8 1020/3040\n"},
        Case{"ClearOnesNotAtAll", kGray, "10203040>", kSoft, "00000000>", ""},
        Case{"SoftMaskOfTwoValuesClips", kGray, "10203040>", kSoft, "0000FF00>",
             "save\nconcat 0.5 0 0 -0.5 0 1\nmove 0 1\nline 1 1 1 2 0 2\nclose\nclip\nnewpath\n"
             "concat 2 0 0 -1 0 2\nimage gray 2x1x8 3040\nrestore\n"},
        Case{"ExplicitMaskHasItsOwnSize", kStenciled, "10203040>",
             "/ImageMask true /Width 4 /Height 1", "90>",
             "save\nconcat 0.25 0 0 -1 0 1\nmove 1 0\nline 3 0 3 1 1 1\nclose\nclip\nnewpath\n"
             "concat 4 0 0 -1 0 1\nimage gray 2x2x8 1020/3040\nrestore\n"},
        Case{"ColourKeyTakesCodes",
             "/Width 2 /Height 1 /ColorSpace [/Indexed /DeviceGray 1 <00FF>] /BitsPerComponent 1 "
             "/Mask [1 1]",
             "40>", "", "",
             "save\nconcat 0.5 0 0 -1 0 1\nmove 0 0\nline 1 0 1 1 0 1\nclose\nclip\nnewpath\n"
             "concat 2 0 0 -1 0 1\nimage gray<00ff> 2x1x1 7f\nrestore\n"},
        Case{"OnePixelBecomesAnImageMask",
             "/Width 1 /Height 1 /ColorSpace /DeviceRGB /BitsPerComponent 8 /Mask 21 0 R",
             "102030>", "/ImageMask true /Width 8 /Height 1", "0F>",
             "image rgb<102030102030> 8x1x1 f0 alpha*1 f0\n"}),
    [](const auto& param) { return std::string(param.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Soft, MaskedImages,
    testing::Values(
        Case{"AreMixedWithPaper", kGray, "00408000>", kSoft, "8000FFFF>",
             "image gray 2x2x8 7fff/8000\n", "transparency "},
        Case{"CmykPaperHasNoInk",
             "/Width 1 /Height 1 /ColorSpace /DeviceCMYK /BitsPerComponent 8 /SMask 21 0 R",
             "FF008000>", "/Width 1 /Height 1 /ColorSpace /DeviceGray /BitsPerComponent 8", "80>",
             "image cmyk 1x1x8 7f ff bf ff\n", "transparency "},
        Case{"PalettesAreResolved",
             "/Width 2 /Height 1 /ColorSpace [/Indexed /DeviceRGB 1 <0000FFFF0000>] "
             "/BitsPerComponent 1 /SMask 21 0 R",
             "40>", "/Width 1 /Height 1 /ColorSpace /DeviceGray /BitsPerComponent 8", "33>",
             "image rgb 2x1x8 ccff cccc ffcc\n", "transparency "},
        Case{"LargerMaskEnlargesTheImage",
             "/Width 1 /Height 1 /ColorSpace /DeviceGray /BitsPerComponent 16 /SMask 21 0 R",
             "0000>", kSoft, "FF800000>", "image gray 2x2x16 00007f7f/ffffffff\n", "transparency "},
        Case{"MatteIsTakenOut", kGray, "40404040>",
             "/Width 2 /Height 2 /ColorSpace /DeviceGray /BitsPerComponent 8 /Matte [0]",
             "80FFFF00>", "image gray 2x2x8 bf40/40ff\n", "transparency "}),
    [](const auto& param) { return std::string(param.param.name); });

TEST(MaskedImages, AlphaGoesOnWhereItIsKept) {
    PDF::ReaderOptions options;
    options.keepsAlpha = true;
    std::string warnings;
    const Case masked{"", kGray, "00408000>", kSoft, "8000FFFF>", ""};
    EXPECT_EQ(PlayMasked(masked, warnings, options),
              "image gray 2x2x8 0040/8000 alpha*8 8000/ffff\n");
    EXPECT_EQ(warnings, "");
}

TEST(MaskedImages, BandsKeepClipsSmallAndReadTheImageOnce) {
    std::string image;
    std::string mask;
    for (int y = 0; y < 80; ++y) {
        for (int x = 0; x < 16; ++x) {
            image += "0123456789ABCDEF"[y % 16];
            image += "0123456789ABCDEF"[x];
            mask += y % 2 == 0 ? "AAAAAAAA" : "55555555";
        }
    }
    const Case masked{"",
                      "/Width 16 /Height 80 /ColorSpace /DeviceGray /BitsPerComponent 8 "
                      "/Mask 21 0 R",
                      image.c_str(),
                      "/ImageMask true /Width 512 /Height 80",
                      mask.c_str(),
                      ""};
    std::string warnings;
    const std::string calls = PlayMasked(masked, warnings);
    std::size_t bands = 0;
    for (std::size_t at = calls.find("image gray 16x"); at != std::string::npos;
         at = calls.find("image gray 16x", at + 1)) {
        ++bands;
    }
    EXPECT_EQ(bands, 10U);  // 80 lines of 256 boxes
    EXPECT_EQ(warnings, "");
}

}  // namespace
}  // namespace VANTIX::TESTS
