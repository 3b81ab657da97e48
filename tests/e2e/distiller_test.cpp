// SPDX-License-Identifier: MIT
// The stand-in for a distiller, on PostScript written by hand: other tests judge jobs by it.
#include "support/distiller.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <ostream>
#include <string>
#include <vector>

#include "e2e/tool.h"
#include "support/temporaryfolder.h"

namespace VANTIX::TEST {
namespace {

/// What shows at a point, in points from the lower left corner.
struct Spot {
    std::size_t x;
    std::size_t y;
    std::array<int, 3> color;
};

struct Program {
    const char* name;
    const char* text;  ///< on a white page of 100 x 100 points
    std::vector<Spot> spots;
};

void PrintTo(const Program& program, std::ostream* out) {
    *out << program.name;
}

class Distiller : public testing::TestWithParam<Program> {};

TEST_P(Distiller, KnowsThePdfmarks) {
    const TemporaryFolder folder;
    const std::string job = folder.File("job.ps");
    WriteFile(job, std::string("%!PS\n<< /PageSize [100 100] >> setpagedevice\n") +
                       GetParam().text + "\nshowpage\n");
    ASSERT_EQ(DistilTransparency(job, folder.File("out.pdf")), "");
    const PageImage page = DrawWithPoppler(folder.File("out.pdf"));
    ASSERT_EQ(page.width, 100U);
    ASSERT_EQ(page.height, 100U);
    for (const Spot& spot : GetParam().spots) {
        for (std::size_t i = 0; i < spot.color.size(); ++i) {
            EXPECT_NEAR(page.At(spot.x, page.height - 1 - spot.y, i), spot.color[i], 3)
                << "channel " << i << " at " << spot.x << ", " << spot.y;
        }
    }
}

constexpr std::array<int, 3> kWhite = {255, 255, 255};
constexpr std::array<int, 3> kRed = {255, 0, 0};
constexpr std::array<int, 3> kPink = {255, 128, 128};  // half of it over white

INSTANTIATE_TEST_SUITE_P(
    Programs, Distiller,
    testing::Values(
        Program{"Alpha",
                "gsave [/ca 0.5 /SetTransparency pdfmark 1 0 0 setrgbcolor 10 10 40 40 rectfill "
                "grestore 1 0 0 setrgbcolor 60 10 30 30 rectfill",
                {{20, 20, kPink}, {70, 20, kRed}, {55, 20, kWhite}}},
        Program{"Blending",
                "1 1 0 setrgbcolor 0 0 100 50 rectfill [/BM /Multiply /SetTransparency pdfmark "
                "0 1 1 setrgbcolor 0 0 50 100 rectfill",
                {{20, 20, {0, 255, 0}}, {20, 70, {0, 255, 255}}, {70, 20, {255, 255, 0}}}},
        // Two marks upon each other are half of one as a group, and more than that each by itself.
        Program{"Group",
                "[/_objdef {G} /BBox [0 0 40 40] /Group << /S /Transparency >> /BP pdfmark "
                "1 0 0 setrgbcolor 0 0 40 40 rectfill 10 10 90 90 rectfill [/EP pdfmark "
                "gsave 50 50 translate [/ca 0.5 /SetTransparency pdfmark [{G} /SP pdfmark grestore",
                {{70, 70, kPink}, {95, 95, kWhite}, {20, 20, kWhite}}},
        Program{"PlainForm",
                "[/_objdef {P} /BBox [0 0 40 40] /BP pdfmark "
                "1 0 0 setrgbcolor 0 0 40 40 rectfill 20 20 20 20 rectfill [/EP pdfmark "
                "[/ca 0.5 /SetTransparency pdfmark [{P} /SP pdfmark",
                {{10, 10, kPink}, {30, 30, {255, 64, 64}}}},
        // The mask lies in the space of the page, which the job has left when it sets the state.
        Program{"MaskWithTransfer",
                "[/_objdef {M} /BBox [0 0 100 100] /Group << /S /Transparency /CS /DeviceGray >> "
                "/BP pdfmark 1 setgray 0 0 50 100 rectfill 0.5 setgray 50 0 50 50 rectfill "
                "[/EP pdfmark 50 0 translate [/SMask << /S /Luminosity /G {M} /BC [0] "
                "/TR {1 exch sub} >> /SetTransparency pdfmark "
                "1 0 0 setrgbcolor -50 0 100 100 rectfill",
                {{20, 20, kWhite}, {70, 20, kPink}, {70, 70, kRed}}},
        Program{"MaskOfAMovedForm",
                "[/_objdef {M} /BBox [0 0 50 50] /Group << /S /Transparency /CS /DeviceGray >> "
                "/BP pdfmark 1 setgray 0 0 20 50 rectfill [/EP pdfmark "
                "[/_objdef {P} /BBox [0 0 50 50] /BP pdfmark [/SMask << /S /Luminosity /G {M} "
                "/BC [0] >> /SetTransparency pdfmark 1 0 0 setrgbcolor 0 0 50 50 rectfill "
                "[/EP pdfmark 50 50 translate [{P} /SP pdfmark",
                {{60, 60, kRed}, {80, 60, kWhite}, {10, 10, kWhite}}},
        Program{"SoftMaskImage",
                "gsave 100 100 scale [/_objdef {S} /IsSoftMask true /NI pdfmark "
                "/DeviceGray setcolorspace << /ImageType 1 /Width 2 /Height 1 /BitsPerComponent 8 "
                "/Decode [0 1] /ImageMatrix [2 0 0 -1 0 1] /DataSource <FF80> >> image "
                "[/_objdef {I} /SMask {S} /NI pdfmark /DeviceRGB setcolorspace << /ImageType 1 "
                "/Width 1 /Height 1 /BitsPerComponent 8 /Decode [0 1 0 1 0 1] "
                "/ImageMatrix [1 0 0 -1 0 1] /DataSource <FF0000> >> image grestore",
                {{20, 50, kRed}, {80, 50, kPink}}}),
    [](const auto& one) { return std::string(one.param.name); });

TEST(DistillerOfBadJobs, SaysWhatIsLeftOnTheStacks) {
    const TemporaryFolder folder;
    for (const char* left : {"7", "gsave"}) {
        WriteFile(folder.File("job.ps"), std::string("%!PS\n") + left + " showpage\n");
        EXPECT_NE(DistilTransparency(folder.File("job.ps"), folder.File("out.pdf")), "") << left;
    }
}

}  // namespace
}  // namespace VANTIX::TEST
