// SPDX-License-Identifier: MIT
// Text in composite fonts of CFF programs.
#include <gtest/gtest.h>

#include "e2e/distilled.h"
#include "e2e/pdftext.h"
#include "e2e/tool.h"
#include "support/ghostscriptpages.h"
#include "support/temporaryfolder.h"
#include "unit/host/madecff.h"

namespace VANTIX::TEST {
namespace {

/// A program and codes that its font shows.
struct CidCase {
    const char* name;
    std::string (*program)();
    const char* codes;
    bool isVertical = false;
};

void PrintTo(const CidCase& each, std::ostream* out) {
    *out << each.name;
}

std::string Installed() {
    return ReadFile("/usr/share/fonts/opentype/urw-base35/NimbusRoman-Regular.otf");
}

std::string TextOf(const MadeCff& made) {
    const std::vector<std::uint8_t> bytes = made.Bytes();
    return {bytes.begin(), bytes.end()};
}

/// Glyphs 1 to 4 are CIDs 1000 to 4000; the first two have outlines of twice the size.
std::string CidKeyed() {
    MadeCff made;
    made.isCidKeyed = true;
    made.strings = {"Adobe"};
    for (std::size_t i = 1; i < made.glyphs.size(); ++i) {
        made.glyphs[i].string = static_cast<int>(1000 * i);
    }
    made.glyphs.pop_back();  // its components have no names
    made.selection = std::string("\3\0\2\0\0\0\0\2\1\0\4", 11);
    made.fontDicts = {std::string("\x1E\xA0\x02\xFF\x8B\x8B\x1E\xA0\x02\xFF\x8B\x8B\x0C\x07"),
                      std::string("\x1E\xA0\x01\xFF\x8B\x8B\x1E\xA0\x01\xFF\x8B\x8B\x0C\x07")};
    return TextOf(made);
}

/// Cut off one by one, its halves of a unit would lead 45 units astray.
std::string Fractional() {
    MadeCff made;
    std::vector<double> steps{10.5, kT2HMove};
    for (int i = 0; i < 60; ++i) {
        steps.insert(steps.end(), {7.75, 9.75, kT2Line});
    }
    steps.insert(steps.end(), {100.25, -400.25, kT2Line, kT2End});
    made.glyphs[1].code = Type2(steps);
    return TextOf(made);
}

const CidCase kCases[] = {
    {"OpenType", Installed, "002200230024004500460047"},
    {"CidKeyed", CidKeyed, "03E807D00BB803E8"},
    {"Fractional", Fractional, "00010001"},
    {"OpenTypeVertical", Installed, "0022002300240025", true},
    {"CidKeyedVertical", CidKeyed, "03E807D003E80BB803E8", true},
};

class CidText : public testing::TestWithParam<std::tuple<CidCase, int>> {};

TEST_P(CidText, LooksLikeThePdf) {
    const auto& [each, level] = GetParam();
    const TemporaryFolder folder;
    const std::string pdf = folder.File("text.pdf");
    const std::string output = folder.File("text.ps");
    const std::string widths =
        each.program == CidKeyed ? "/DW 600 /W [1000 [1200] 2000 [700] 3000 [333]]" : "/DW 620";
    // One of its glyphs leads upwards, against the line.
    const std::string lines = " /DW2 [700 -800] /W2 [2000 [300 100 500] 35 [-900 200 800]]";
    WriteFile(
        pdf,
        PageOf(std::string("BT /F 40 Tf ") + (each.isVertical ? "30 170" : "10 30") + " Td <" +
                   each.codes + "> Tj 60 0 Td 2 Tc <" + each.codes + "> Tj ET",
               "/Font << /F 5 0 R >>",
               {std::string("<< /Type /Font /Subtype /Type0 /BaseFont /Made /Encoding /Identity-") +
                    (each.isVertical ? "V" : "H") + " /DescendantFonts [6 0 R] >>",
                "<< /Type /Font /Subtype /CIDFontType0 /BaseFont /Made /CIDSystemInfo << "
                "/Registry (Adobe) /Ordering (Identity) /Supplement 0 >> /FontDescriptor 7 "
                "0 R " +
                    widths + lines + " >>",
                "<< /Type /FontDescriptor /FontName /Made /Flags 4 /FontBBox [0 0 1000 1000] "
                "/ItalicAngle 0 /Ascent 800 /Descent -200 /CapHeight 700 /StemV 80 "
                "/FontFile3 8 0 R >>",
                StreamOf(each.program(), each.program == Installed ? "/Subtype /OpenType"
                                                                   : "/Subtype /CIDFontType0C")},
               "/MediaBox [0 0 220 190]"));
    const ChildResult run = RunTool({pdf, output, "--level", std::to_string(level)});
    ASSERT_EQ(run.exitStatus, kDone) << run.errors;
    EXPECT_EQ(run.errors, "");
    // Raster devices do not shift the origins of vertical text: a distiller does.
    const std::string distilled = folder.File("distilled.pdf");
    Distil(output, distilled);
    GhostscriptOptions options;
    options.resolution = 144;
    const auto drawn = DrawPages(each.isVertical ? distilled : output, options);
    const auto reference = DrawPages(pdf, options);
    EXPECT_EQ(drawn.complaint, "");
    ASSERT_EQ(drawn.pages.size(), 1U);
    ASSERT_EQ(reference.pages.size(), 1U);
    EXPECT_FALSE(reference.pages[0].IsBlank());
    const PageDifference difference = Compare(drawn.pages[0], reference.pages[0]);
    EXPECT_TRUE(difference.mean <= 4.0 && difference.wrongShare <= 0.01) << difference.Describe();
}

INSTANTIATE_TEST_SUITE_P(Fonts, CidText,
                         testing::Combine(testing::ValuesIn(kCases), testing::Values(3, 2)),
                         [](const testing::TestParamInfo<std::tuple<CidCase, int>>& one) {
                             return std::get<0>(one.param).name +
                                    ("Level" + std::to_string(std::get<1>(one.param)));
                         });

}  // namespace
}  // namespace VANTIX::TEST
