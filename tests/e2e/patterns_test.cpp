// SPDX-License-Identifier: MIT
// Tiling patterns, and stencils that patterns are painted through.
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "e2e/imagesheets.h"
#include "e2e/tool.h"
#include "support/ghostscriptpages.h"
#include "support/iccprofiles.h"
#include "support/temporaryfolder.h"

namespace VANTIX::TEST {
namespace {

constexpr const char* kSpot =
    "[/Separation /Orange /DeviceCMYK << /FunctionType 2 /Domain [0 1] /N 1 /C0 [0 0 0 0] "
    "/C1 [0 0.5 1 0] >>]";

constexpr const char* kAxis =
    "<< /ShadingType 2 /ColorSpace /DeviceCMYK /Coords [0 0 8 8] /Extend [true true] "
    "/Function << /FunctionType 2 /Domain [0 1] /N 1 /C0 [0 1 0 0] /C1 [1 0 0 0] >> >>";

/// Entries of a cell of 8 x 8 points.
std::string Entries(const std::string& resources = {}, const std::string& steps = "8 8",
                    int paintType = 1) {
    const std::size_t gap = steps.find(' ');
    return "/PaintType " + std::to_string(paintType) + " /TilingType 1 /BBox [0 0 8 8] /XStep " +
           steps.substr(0, gap) + " /YStep" + steps.substr(gap) + " /Resources << " + resources +
           " >>";
}

std::string Fill(const std::string& pattern, const std::string& operators) {
    return "/Pattern cs " + pattern + " scn " + operators;
}

constexpr const char* kSquares = "1 0 0 0 k 0 0 4 4 re f 0 1 0.5 0 k 4 4 3 3 re f";
constexpr const char* kBox = "0.1 0.1 0.8 0.8 re f";

/// Where and how a pattern lies.
void DrawPlaces(Sheet& sheet) {
    const struct {
        const char* name;
        const char* operators;
        const char* steps = "8 8";
        const char* linear = "1 0 0 1";
    } kPlaces[] = {
        {"fill", kBox},
        {"even and odd", "0.1 0.1 0.8 0.8 re 0.3 0.3 0.4 0.4 re f*"},
        {"other matrix", "q 0.5 0.2 -0.2 0.5 0.3 0.2 cm 0 0 1 1 re f Q 0.8 0.8 0.2 0.2 re f"},
        {"gaps", kBox, "12 10"},
        {"overlaps", kBox, "6 5"},
        {"steps to the left and down", kBox, "-8 -10"},
        {"rotated", kBox, "8 8", "0.8 0.6 -0.6 0.8"},
        {"skewed", kBox, "8 8", "1 0 0.5 1"},
        {"mirrored", kBox, "8 8", "-1 0 0 1"},
        {"enlarged", kBox, "8 8", "3 0 0 2.5"},
    };

    for (const auto& place : kPlaces) {
        sheet.Draw(place.name, Fill(sheet.Tiling(Entries({}, place.steps), kSquares, place.linear),
                                    place.operators));
    }
    sheet.Draw("stroke", "/Pattern CS " + sheet.Tiling(Entries(), kSquares) +
                             " SCN 0.2 w 0.2 0.2 0.6 0.6 re S");
    sheet.Draw("colour after", Fill(sheet.Tiling(Entries(), kSquares),
                                    "0 0 0.5 1 re f 0 0 1 0 k 0.5 0 0.5 1 re f"));
    const std::string inner =
        sheet.Add(StreamOf(kSquares, "/PatternType 1 /Matrix [1 0.5 0 1 2 3] " + Entries()));
    sheet.Draw("in a form",
               sheet.Object("/Subtype /Form /BBox [0 0 40 30] /Matrix [0.02 0 0 0.03 0.1 0] "
                            "/Resources << /Pattern << /P " +
                                inner + " >> >>",
                            Fill("/P", "0 0 40 30 re f")) +
                   " Do");
}

/// Stencils are painted as rectangles, which cover every pixel that they touch.
void DrawStencils(Sheet& sheet) {
    const std::string stencil = sheet.Object(StencilEntries(), Packed(LineArt())) + " Do";
    const std::string inverted =
        sheet.Object(StencilEntries("/Decode [1 0]"), Packed(LineArt())) + " Do";
    const std::string axis =
        "<< /ShadingType 2 /ColorSpace /DeviceCMYK /Coords [0 0 1 0] /Function << "
        "/FunctionType 2 /Domain [0 1] /N 1 /C0 [0 1 0 0] /C1 [1 0 0 0] >> >>";
    sheet.Draw("tiling", Fill(sheet.Tiling(Entries(), kSquares, "3 0 0 3"), stencil));
    sheet.Draw("turned tiling", Fill(sheet.Tiling(Entries(), kSquares, "3 1 -1 3"),
                                     "0.8 0.1 -0.1 0.8 0.1 0.1 cm " + inverted));
    sheet.Pattern("shading", axis, stencil);
    sheet.Pattern("turned shading", axis, "0.8 0.1 -0.1 0.8 0.1 0.1 cm " + inverted);
    const std::string stripes =
        sheet.Add(StreamOf("0 0 1 0 k 0 0 3 8 re f",
                           "/PatternType 1 /PaintType 1 /TilingType 1 /BBox [0 0 6 6] "
                           "/XStep 6 /YStep 6 /Resources << >>"));
    const std::string blocks = sheet.Add(
        StreamOf("\x50\xA0\x50\xA0", "/Subtype /Image /ImageMask true /Width 4 /Height 4"));
    sheet.Draw("in a cell", Fill(sheet.Tiling(Entries("/Pattern << /P " + stripes +
                                                      " >> /XObject << /X " + blocks + " >>"),
                                              Fill("/P", "q 8 0 0 8 0 0 cm /X Do Q"), "4 0 0 4"),
                                 kBox));
}

/// What may stand in a cell.
void DrawContents(Sheet& sheet) {
    const std::string shading = sheet.Add(kAxis);
    const std::string image = sheet.Add(StreamOf(
        std::string("\x00\xFF\x00\x00\xFF\x00\x00\x00\x00\x00\xFF\x00\x40\x40\x40\x40", 16),
        "/Subtype /Image /Width 2 /Height 2 /BitsPerComponent 8 /ColorSpace /DeviceCMYK"));
    const std::string form = sheet.Add(
        StreamOf(kSquares, "/Subtype /Form /BBox [0 0 7 7] /Matrix [0.7 0.3 -0.3 0.7 2 0]"));
    const std::string stencil = sheet.Add(
        StreamOf("\x50\xA0\x50\xA0", "/Subtype /Image /ImageMask true /Width 4 /Height 4"));
    const std::string tiling =
        sheet.Add(StreamOf("0 0 1 0 k 0 0 1 2 re f",
                           "/PatternType 1 /Matrix [1 0 0 1 0.5 0] /PaintType 1 /TilingType "
                           "1 /BBox [0 0 2 2] /XStep 2 /YStep 2 /Resources << >>"));
    const std::string deeper =
        sheet.Add(StreamOf("/Pattern cs /P scn 0 0 4 4 re f",
                           "/PatternType 1 /PaintType 1 /TilingType 1 /BBox [0 0 "
                           "5 5] /XStep 5 /YStep 5 /Resources << /Pattern << /P " +
                               tiling + " >> >>"));

    const struct {
        const char* name;
        std::string resources;
        std::string content;
    } kContents[] = {
        {"image", "/XObject << /X " + image + " >>", "q 6 0 0 6 1 1 cm /X Do Q"},
        {"two images", "/XObject << /X " + image + " >>",
         "q 4 0 0 3 0 0 cm /X Do Q q 3 0 0 -4 5 8 cm /X Do Q"},
        {"inline image", "",
         "q 8 0 0 4 0 2 cm BI /W 2 /H 1 /BPC 8 /CS /CMYK /F /AHx ID FF00000000FF0000> EI Q"},
        {"stencil", "/XObject << /X " + stencil + " >>", "0 1 1 0 k q 8 0 0 8 0 0 cm /X Do Q"},
        {"shading", "/Shading << /S " + shading + " >>", "1 1 6 5 re W n /S sh"},
        {"form", "/XObject << /X " + form + " >>", "/X Do"},
        {"pattern", "/Pattern << /P " + tiling + " >>", Fill("/P", "1 1 6 6 re f")},
        {"pattern in a pattern", "/Pattern << /P " + deeper + " >>", Fill("/P", "0 0 8 8 re f")},
        {"shading pattern", "/Pattern << /P << /PatternType 2 /Shading " + shading + " >> >>",
         Fill("/P", "0 0 8 8 re 2 2 4 4 re f*")},
        {"clips and dashes", "",
         "q 1 1 6 6 re W n 1 w [2 1] 0 d 0 1 0 0 K 0 0 m 8 8 l S Q 0 0 0 1 K 0 8 m 8 0 l S"},
        {"spot", std::string("/ColorSpace << /S ") + kSpot + " >>",
         "/S cs 1 scn 0 0 4 8 re f 0.4 scn 4 0 4 8 re f"},
        {"overprint",
         std::string("/ExtGState << /G << /op true /OP true /OPM 1 >> >> /ColorSpace << /S ") +
             kSpot + " >>",
         "1 0 0 0 k 0 0 6 6 re f /G gs 0 1 0 0 k 3 3 5 5 re f /S cs 0.5 scn 2 0 2 8 re f"},
    };

    for (const auto& one : kContents) {
        sheet.Draw(one.name, Fill(sheet.Tiling(Entries(one.resources), one.content), kBox));
    }
}

constexpr const char* kShape = "0 0 4 4 re f 2 w 4 6 m 8 6 l S";

/// A cell in a colour of `space`.
Sheet::Cell& DrawBare(Sheet& sheet, const std::string& name, const std::string& space,
                      const std::string& color, const std::string& content = kShape,
                      const std::string& resources = {}) {
    const std::string key = "U" + std::to_string(sheet.Cells().size());
    sheet.Space(key, "[/Pattern " + space + "]");
    return sheet.Draw(name, "/" + key + " cs " + color + " " +
                                sheet.Tiling(Entries(resources, "8 8", 2), content) + " scn " +
                                kBox);
}

/// Uncoloured cells in inks.
void DrawInInks(Sheet& sheet) {
    DrawBare(sheet, "gray", "/DeviceGray", "0.4");
    DrawBare(sheet, "cmyk", "/DeviceCMYK", "0.2 1 0 0.1");
    DrawBare(sheet, "spot", kSpot, "0.7");
    DrawBare(sheet, "inks",
             "[/DeviceN [/Orange /Black] /DeviceCMYK " +
                 sheet.Add(StreamOf("{ exch dup 0.5 mul exch 0 3 1 roll 4 -1 roll }",
                                    "/FunctionType 4 /Domain [0 1 0 1] /Range [0 1 0 1 0 1 0 1]")) +
                 "]",
             "0.8 0.3");
    const std::string stencil = sheet.Add(
        StreamOf("\x50\xA0\x50\xA0", "/Subtype /Image /ImageMask true /Width 4 /Height 4"));
    DrawBare(sheet, "stencil", "/DeviceCMYK", "1 0 0 0", "q 8 0 0 8 0 0 cm /X Do Q",
             "/XObject << /X " + stencil + " >>");
    DrawBare(sheet, "colours of its own", "/DeviceCMYK", "0 1 1 0",
             std::string("0 0 1 rg /DeviceGray cs 0.5 sc 0 1 0 RG ") + kShape);
    DrawBare(sheet, "bars", "/DeviceCMYK", "0 1 1 0", "0 0 3 8 re f");
    const std::size_t bars = sheet.Cells().size() - 1;
    const std::string image = sheet.Add(StreamOf(
        "\x80", "/Subtype /Image /Width 1 /Height 1 /BitsPerComponent 8 /ColorSpace /DeviceGray"));
    // Ghostscript paints the image whole, in the colour of the pattern.
    Sheet::Cell& painted =
        DrawBare(sheet, "image of its own", "/DeviceCMYK", "0 1 1 0",
                 "0 0 3 8 re f q 4 0 0 4 4 4 cm /X Do Q", "/XObject << /X " + image + " >>");
    painted.isDrawnRight = false;
    painted.like = bars;
    const std::string both = sheet.Tiling(Entries({}, "8 8", 2), kShape);
    sheet.Space("Both", "[/Pattern /DeviceCMYK]");
    sheet.Draw("several colours", "/Both cs 1 0 0 0 " + both + " scn 0 0 0.4 1 re f 0 1 0 0 " +
                                      both + " scn 0.4 0 0.2 1 re f /Both CS 0 0 1 0 " + both +
                                      " SCN 0.3 w 0.8 0 m 0.8 1 l S");
}

/// Uncoloured cells in what plates are converted from, or Ghostscript cannot separate.
void DrawInColors(Sheet& sheet) {
    const auto rgb = GammaRGBProfile(2.2);
    const std::string profile = sheet.Add(StreamOf(std::string(rgb.begin(), rgb.end()), "/N 3"));
    DrawBare(sheet, "rgb", "/DeviceRGB", "1 0.2 0");
    DrawBare(sheet, "profile", "[/ICCBased " + profile + "]", "0.2 0.4 0.9");
    DrawBare(sheet, "Lab", "[/Lab << /WhitePoint [0.9642 1 0.8249] /Range [-128 127 -128 127] >>]",
             "60 30 -30");
    DrawBare(sheet, "palette", "[/Indexed /DeviceRGB 1 <FF0000008000>]", "1");
    const std::string bare =
        sheet.Add(StreamOf("0 0 1 2 re f",
                           "/PatternType 1 /PaintType 2 /TilingType 1 /BBox [0 0 2 2] "
                           "/XStep 2 /YStep 2 /Resources << >>"));
    const std::string resources =
        "/ColorSpace << /U [/Pattern /DeviceCMYK] >> /Pattern << /P " + bare + " >>";
    sheet.Draw("in a cell", Fill(sheet.Tiling(Entries(resources),
                                              "/U cs 0 1 0 0 /P scn 0 0 4 8 re f "
                                              "1 0 0 0 /P scn 4 0 4 8 re f"),
                                 kBox));
}

std::size_t CountOf(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

struct PatternSheet {
    const char* name;
    void (*draw)(Sheet&);
    bool isExact = true;  ///< at edges, too
    bool hasPlates = true;
};

void PrintTo(const PatternSheet& sheet, std::ostream* out) {
    *out << sheet.name;
}

class Patterns : public testing::TestWithParam<PatternSheet> {
protected:
    Patterns() { GetParam().draw(mSheet); }

    void Convert(std::vector<std::string> options) {
        WriteFile(mInput, mSheet.Pdf());
        options.insert(options.end(), {mInput, mOutput});
        const ChildResult run = RunTool(options);
        ASSERT_EQ(run.exitStatus, kDone) << run.errors;
        EXPECT_EQ(run.errors, "");
    }

    Sheet mSheet;
    TemporaryFolder mFolder;
    std::string mInput = mFolder.File("sheet.pdf");
    std::string mOutput = mFolder.File("sheet.ps");
};

TEST_P(Patterns, LookAsInThePdf) {
    for (const char* level : {"3", "2"}) {
        SCOPED_TRACE(level);
        ASSERT_NO_FATAL_FAILURE(Convert({"--level", level}));
        const auto reference = DrawPages(mInput, {});
        const auto drawn = DrawPages(mOutput, {});
        EXPECT_EQ(drawn.complaint, "");
        ASSERT_EQ(drawn.pages.size(), 1U);
        // Level 2 draws shadings as pictures, whose clips cover every pixel that they touch.
        CompareCells(mSheet, drawn.pages.front(), reference.pages.front(),
                     GetParam().isExact && *level == '3');
    }
}

TEST_P(Patterns, KeepTheirPlates) {
    if (!GetParam().hasPlates) {
        return;
    }
    for (const char* model : {"as-is", "devicen"}) {
        SCOPED_TRACE(model);
        ASSERT_NO_FATAL_FAILURE(Convert({"--color", model}));
        const auto reference = DrawPlates(mInput, {});
        const auto drawn = DrawPlates(mOutput, {});
        ASSERT_EQ(drawn.pages.size(), 1U);
        ASSERT_EQ(drawn.pages.front().size(), reference.pages.front().size());
        for (const auto& [ink, plate] : reference.pages.front()) {
            SCOPED_TRACE(ink);
            CompareCells(mSheet, drawn.pages.front().at(ink), plate, GetParam().isExact);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Sheets, Patterns,
                         testing::Values(PatternSheet{"Places", DrawPlaces},
                                         PatternSheet{"Stencils", DrawStencils, false},
                                         PatternSheet{"Contents", DrawContents},
                                         PatternSheet{"InInks", DrawInInks},
                                         PatternSheet{"InColors", DrawInColors, true, false}),
                         [](const auto& one) { return std::string(one.param.name); });

/// The PostScript of a page of patterns: P is the object 5.
std::string ConvertedPage(const std::string& content, const std::string& resources,
                          const std::vector<std::string>& more) {
    const TemporaryFolder folder;
    WriteFile(folder.File("page.pdf"),
              PageOf(content, "/Pattern << /P 5 0 R >> " + resources, more));
    const ChildResult run = RunTool({folder.File("page.pdf"), folder.File("page.ps")});
    EXPECT_EQ(run.exitStatus, kDone) << run.errors;
    return ReadFile(folder.File("page.ps"));
}

TEST(TilingPatterns, AreDefinedOnceForAllUsesInOnePlace) {
    const std::string pattern = StreamOf(kSquares, "/PatternType 1 " + Entries());
    const std::string use = "q " + Fill("/P", "0 0 9 9 re f Q 0 0 0 1 k 5 5 2 2 re f ");
    const std::string form = StreamOf(use, "/Subtype /Form /BBox [0 0 9 9]");
    const std::string once = ConvertedPage(Repeated(use, 1000) + Repeated("/F Do ", 10),
                                           "/XObject << /F 6 0 R >>", {pattern, form});
    EXPECT_EQ(CountOf(once, "makepattern"), 1U);
    EXPECT_EQ(CountOf(once, " get /Pattern setcolorspace setcolor}"), 1010U);
    const std::string moved = ConvertedPage(use + "q 1 0 0 1 5 0 cm /F Do Q /F Do ",
                                            "/XObject << /F 6 0 R >>", {pattern, form});
    EXPECT_EQ(CountOf(moved, "makepattern"), 2U);
}

}  // namespace
}  // namespace VANTIX::TEST
