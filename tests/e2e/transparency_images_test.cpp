// SPDX-License-Identifier: MIT
#include <fstream>

#include "e2e/pdftext.h"
#include "e2e/tool.h"
#include "support/distiller.h"
#include "support/temporaryfolder.h"

namespace VANTIX::TEST {
namespace {

constexpr const char* kSize = "/Type /XObject /Subtype /Image /Width 4 /Height 4 ";

/// 4 x 4 pixels of colour, or of opacity from the left to the right.
std::string Image(const std::string& entries) {
    std::string data;
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 4; ++x) {
            data += {static_cast<char>(x * 85), static_cast<char>(y * 85), '\x60'};
        }
    }
    return StreamOf(data,
                    kSize + std::string("/ColorSpace /DeviceRGB /BitsPerComponent 8 ") + entries);
}

std::string SoftMask(const std::string& entries = {}) {
    std::string data;
    for (int i = 0; i < 16; ++i) {
        data += static_cast<char>(55 + 50 * (i % 5));
    }
    return StreamOf(data,
                    kSize + std::string("/ColorSpace /DeviceGray /BitsPerComponent 8 ") + entries);
}

std::string Stencil() {
    return StreamOf("\xA5\x5A\xFF\xF0",
                    "/Type /XObject /Subtype /Image /Width 8 /Height 4 "
                    "/ImageMask true /BitsPerComponent 1");
}

/// What stands in the page's resources: the image, an opacity, a pattern whose cell paints an
/// image, an uncoloured one whose cell paints through a stencil, and a shading.
constexpr const char* kResources =
    "/XObject << /I 5 0 R /M 7 0 R >> /ExtGState << /Half << /ca 0.5 >> >> "
    "/ColorSpace << /U [/Pattern /DeviceRGB] >> /Pattern << /T 8 0 R /V 9 0 R /S << /PatternType 2 "
    "/Shading << /ShadingType 2 /ColorSpace /DeviceRGB /Coords [0 0 100 0] /Function << "
    "/FunctionType 2 /Domain [0 1] /C0 [1 0 0] /C1 [0 0 1] /N 1 >> >> >> >>";

std::string Cell(int paintType, const std::string& content) {
    return StreamOf(content, "/PatternType 1 /PaintType " + std::to_string(paintType) +
                                 " /TilingType 1 /BBox [0 0 40 40] /XStep 40 /YStep 40 "
                                 "/Resources << /XObject << /I 5 0 R /M 7 0 R >> >>");
}

struct ImageCase {
    const char* name;
    /// Operators that draw into the unit square.
    const char* content;
    /// Entries of the image and of its soft mask.
    const char* image = "/SMask 6 0 R";
    const char* mask = "";
};

class DistilledImages : public testing::TestWithParam<ImageCase> {};

TEST_P(DistilledImages, LookAsInThePdf) {
    const ImageCase& tested = GetParam();
    const TemporaryFolder folder;
    const std::string input = folder.File("in.pdf");
    std::ofstream(input, std::ios::binary) << PageOf(
        "0.5 0.9 0.6 rg 0 0 100 100 re f 80 0 0 80 10 10 cm " + std::string(tested.content),
        kResources,
        {Image(tested.image), SoftMask(tested.mask), Stencil(),
         Cell(1, "40 0 0 40 0 0 cm /I Do 1 0 1 rg /M Do"), Cell(2, "40 0 0 40 0 0 cm /M Do")});
    const PageImage reference = DrawWithPoppler(input, 144);
    ASSERT_GT(reference.width, 0U);
    for (const char* color : {"as-is", "cmyk", "rgb"}) {
        const std::string job = folder.File("out.ps");
        const ChildResult run =
            RunTool({"--transparency", "pdfmark", "--color", color, "-q", input, job});
        ASSERT_EQ(run.exitStatus, kDone) << run.errors;
        ASSERT_EQ(DistilTransparency(job, folder.File("out.pdf")), "") << color;
        const PageDifference difference =
            Compare(DrawWithPoppler(folder.File("out.pdf"), 144), reference);
        // Poppler shows CMYK otherwise than it converts RGB. The cells of patterns may lie a pixel
        // away, so that edges count little.
        if (std::string_view(color) != "cmyk") {
            EXPECT_LE(difference.wrongShare, 0.01) << color << ": " << difference.Describe();
            EXPECT_LE(difference.mean, 3.5) << color;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Table, DistilledImages,
    testing::Values(ImageCase{"SoftMask", "/I Do"}, ImageCase{"Opacity", "/Half gs /I Do"},
                    ImageCase{"Matte", "/I Do", "/SMask 6 0 R", "/Matte [0.2 0.3 0.4]"},
                    ImageCase{"StencilMask", "/I Do", "/Mask 7 0 R"},
                    ImageCase{"ColourKey", "/I Do", "/Mask [0 90 0 255 0 255]"},
                    ImageCase{"Stencil", "1 0 0 rg /M Do"},
                    ImageCase{"TranslucentStencil", "/Half gs 1 0 0 rg /M Do"},
                    ImageCase{"ShadingThroughStencil", "/Pattern cs /S scn /M Do"},
                    ImageCase{"PatternThroughStencil", "/Pattern cs /T scn /M Do", ""},
                    ImageCase{"PatternOfMasked", "/Pattern cs /T scn 0 0 1 1 re f"},
                    ImageCase{"UncolouredPattern", "/U cs 0 0 1 /V scn 0 0 1 1 re f"}),
    [](const auto& tested) { return std::string(tested.param.name); });

}  // namespace
}  // namespace VANTIX::TEST
