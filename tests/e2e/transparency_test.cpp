// SPDX-License-Identifier: MIT
// Transparency as pdfmarks: sheets that a distiller makes PDF of again must look like the PDF.
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "e2e/imagesheet.h"
#include "e2e/tool.h"
#include "support/distiller.h"
#include "support/pdfmarks.h"
#include "support/temporaryfolder.h"

namespace VANTIX::TEST {
namespace {

/// What lies under the marks of a cell.
const std::string kUnder = "1 0.8 0.2 rg 0 0 0.7 0.6 re f 0.1 0.3 0.7 rg 0.3 0.2 0.2 0.8 re f ";
constexpr const char* kMark = "0.8 0.2 0.3 rg 0.1 0.3 0.8 0.4 re f ";
constexpr const char* kTwoMarks =
    "0.8 0.2 0.3 rg 0 0.3 0.8 0.4 re f 0.2 0.7 0.4 rg 0.4 0.1 0.5 0.5 re f ";
constexpr const char* kHalf = "/ca 0.5 /CA 0.5";
constexpr const char* kAxis =
    "<< /ShadingType 2 /ColorSpace /DeviceRGB /Coords [0 0 1 0] /Function << /FunctionType 2 "
    "/Domain [0 1] /N 1 /C0 [1 0 0] /C1 [0 0.5 1] >> >>";
constexpr const char* kGrayAxis =
    "<< /ShadingType 2 /ColorSpace /DeviceGray /Coords [0 0 1 0] /Function << /FunctionType 2 "
    "/Domain [0 1] /N 1 /C0 [0] /C1 [1] >> >>";

std::string Group(Sheet& sheet, const std::string& content, const std::string& group = {},
                  const std::string& resources = {}, const std::string& more = {}) {
    return sheet.Object("/Subtype /Form /BBox [0 0 1 1] /Group << /S /Transparency " + group +
                            " >> /Resources << " + resources + " >> " + more,
                        content) +
           " Do ";
}

std::string Form(Sheet& sheet, const std::string& content, const std::string& resources = {}) {
    return sheet.Object("/Subtype /Form /BBox [0 0 1 1] /Resources << " + resources + " >>",
                        content) +
           " Do ";
}

/// A picture of 2 x 2 pixels as an object.
std::string Picture(Sheet& sheet, const std::string& more = {}) {
    return sheet.Add(StreamOf(std::string("\xFF\x10\x10\x10\xC0\x10\x20\x20\xFF\xF0\xF0\x20", 12),
                              "/Subtype /Image /Width 2 /Height 2 /BitsPerComponent 8 "
                              "/ColorSpace /DeviceRGB " +
                                  more));
}

void DrawAlpha(Sheet& sheet) {
    const std::string half = sheet.State(kHalf) + " gs ";
    const std::string fill = sheet.State("/ca 0.4") + " gs ";
    const std::string stroke = sheet.State("/CA 0.4") + " gs ";
    const std::string text = "BT /F 0.5 Tf 0.1 0.3 Td (HEL) Tj ET";
    const std::string font =
        "/Font << /F << /Type /Font /Subtype /Type1 /BaseFont /Helvetica-Bold >> >>";
    const std::string stencil =
        sheet.Object("/Subtype /Image /ImageMask true /Width 4 /Height 4", "\x50\xA0\x50\xA0");
    const std::string picture = "/XObject << /I " + Picture(sheet) + " >>";
    sheet.Draw("fill", kUnder + fill + kMark);
    sheet.Draw("stroke", kUnder + stroke + "0.2 w 0 0.5 m 0.9 0.5 l S");
    sheet.Draw("stroke alone", kUnder + stroke + "0.2 w 1 0 0 rg 0.2 0.2 0.6 0.6 re B");
    sheet.Draw("only while set", kUnder + "q " + half + kMark + "Q 0 0 0.3 0.3 re f");
    sheet.Draw("overlaps", kUnder + half + kTwoMarks);
    sheet.Draw("text", kUnder + Form(sheet, "/G gs 1 0 0 rg " + text,
                                     font + " /ExtGState << /G << /ca 0.4 >> >>"));
    sheet.Draw("image",
               kUnder + Form(sheet, "/G gs /I Do", picture + " /ExtGState << /G << /ca 0.4 >> >>"));
    sheet.Draw("stencil", kUnder + half + "1 0 0 rg " + stencil + " Do");
    sheet.Draw("plain form", kUnder + half + Form(sheet, kTwoMarks));
    sheet.Shading("shading", kAxis);
    sheet.Draw(
        "after a shading",
        kUnder + half + Form(sheet, "/S sh", std::string("/Shading << /S ") + kAxis + " >>"));
    sheet.Draw("pattern",
               kUnder + fill + "/Pattern cs " +
                   sheet.Tiling("/PaintType 1 /TilingType 1 /BBox [0 0 8 8] /XStep 8 /YStep 8 "
                                "/Resources << >>",
                                "1 0 0 rg 0 0 5 5 re f") +
                   " scn 0 0 1 1 re f");
}

void DrawBlendModes(Sheet& sheet) {
    const auto draw = [&](const char* mode) {
        const std::string state = std::string("/BM /") + mode;
        sheet.Draw(mode, kUnder + sheet.State(state) + " gs " + kMark);
        sheet.Draw(std::string(mode) + " with alpha",
                   kUnder + sheet.State(state + " /ca 0.6") + " gs " + kMark);
    };
    for (const char* mode : {"Normal", "Multiply", "Screen", "Overlay", "Darken", "Lighten",
                             "ColorDodge", "ColorBurn", "HardLight", "SoftLight", "Difference",
                             "Exclusion", "Hue", "Saturation", "Color", "Luminosity"}) {
        draw(mode);
    }
    const std::string blend = sheet.State("/BM [/Unheard /Multiply]") + " gs ";
    sheet.Draw("first that is known", kUnder + blend + kMark);
    sheet.Draw("group", kUnder + blend + Group(sheet, kTwoMarks));
}

/// A group that a pattern fills. It is in points: poppler repeats small cells wrongly.
std::string StripedGroup(Sheet& sheet) {
    const std::string stripes = sheet.Add(
        StreamOf("1 0 0 rg 0 0 5 8 re f",
                 "/PatternType 1 /PaintType 1 /TilingType 1 /BBox [0 0 8 8] /XStep 8 /YStep 8 "
                 "/Resources << >>"));
    return sheet.Object(
               "/Subtype /Form /BBox [0 0 55 35] /Matrix [0.0181818 0 0 0.0285714 0 0] "
               "/Group << /S /Transparency >> /Resources << /Pattern << /P " +
                   stripes + " >> >>",
               "/Pattern cs /P scn 0 0 55 35 re f 0 0.5 0 rg 0 0 20 20 re f") +
           " Do ";
}

void DrawGroups(Sheet& sheet) {
    const std::string half = sheet.State(kHalf) + " gs ";
    const std::string blended = "/ExtGState << /G << /BM /Multiply /ca 0.8 >> >>";
    const std::string content = std::string("/G gs ") + kTwoMarks;
    for (const char* kind :
         {"/I false /K false", "/I true /K false", "/I false /K true", "/I true /K true"}) {
        sheet.Draw(kind, kUnder + Group(sheet, content, kind, blended));
        sheet.Draw(std::string(kind) + " with alpha",
                   kUnder + half + Group(sheet, content, kind, blended));
    }
    const std::string inner =
        sheet.Add(StreamOf(content,
                           "/Subtype /Form /BBox [0 0 1 1] /Group << /S /Transparency /K true >> "
                           "/Matrix [0.5 0.2 -0.2 0.5 0.3 0.1] /Resources << " +
                               blended + " >>"));
    const std::string uses = "/XObject << /F " + inner + " >> " + blended;
    sheet.Draw("group in a group",
               kUnder + half + Group(sheet, kMark + std::string("/G gs /F Do"), "/I true", uses));
    sheet.Draw("isolated group in none",
               kUnder + Group(sheet, std::string("/F Do ") + kMark, {}, uses));
    sheet.Draw("in a plain form", kUnder + Form(sheet, "/G gs /F Do", uses));
    sheet.Draw("around a plain form",
               kUnder + half +
                   Group(sheet, "/F Do", {},
                         "/XObject << /F " +
                             sheet.Add(StreamOf(content,
                                                "/Subtype /Form /BBox [0 0 1 0.8] "
                                                "/Resources << " +
                                                    blended + " >>")) +
                             " >>"));
    sheet.Draw("matrix",
               kUnder + half + Group(sheet, kTwoMarks, {}, {}, "/Matrix [0.6 0.3 -0.3 0.6 0.3 0]"));
    sheet.Draw("outside of its box", kUnder + half + "q 0.5 0 0 0.5 0.2 0.2 cm " +
                                         Group(sheet, "1 0 0 rg -1 -1 3 3 re f") + "Q");
    sheet.Draw("shading", kUnder + half +
                              Group(sheet, std::string("/S sh ") + kMark, {},
                                    std::string("/Shading << /S ") + kAxis + " >>"));
    sheet.Draw("image", kUnder + half +
                            Group(sheet, std::string("/I Do ") + kMark, {},
                                  "/XObject << /I " + Picture(sheet) + " >>"));
    const std::string cell = "/PaintType 1 /TilingType 1 /BBox [0 0 8 8] /XStep 8 /YStep 8 ";
    sheet.Draw("pattern", kUnder + half + StripedGroup(sheet));
    const std::string grouped =
        sheet.Add(StreamOf("1 0 0 rg 0 0 5 5 re f 0 0 1 rg 3 3 4 4 re f",
                           "/Subtype /Form /BBox [0 0 8 8] /Group << /S /Transparency /I true >>"));
    sheet.Draw("in a pattern",
               kUnder + "/Pattern cs " +
                   sheet.Tiling(cell +
                                    "/Resources << /ExtGState << /G << /ca 0.5 >> >> /XObject "
                                    "<< /F " +
                                    grouped + " >> >>",
                                "/G gs /F Do", "2 0 0 2") +
                   " scn 0 0 1 1 re f");
    sheet.Draw("opaque after all", kUnder + kMark);
}

/// A mask from left to right over a cell, of the given kind.
std::string Mask(Sheet& sheet, const std::string& entries, const std::string& content = "/S sh",
                 const std::string& group = "/CS /DeviceGray", const std::string& more = {}) {
    const std::string form = sheet.Add(StreamOf(
        content, "/Subtype /Form /BBox [0 0.1 1 0.9] /Group << /S /Transparency " + group +
                     " >> /Resources << /ExtGState << /H << /ca 0.5 >> >> /Shading << /S " +
                     kGrayAxis + " >> >> " + more));
    return sheet.State("/SMask << /S " + entries + " /G " + form + " >>") + " gs ";
}

void DrawMasks(Sheet& sheet) {
    const std::string none = sheet.State("/SMask /None") + " gs ";
    const std::string plain = Mask(sheet, "/Luminosity");
    const std::string alpha = Mask(sheet, "/Alpha", "/H gs 0 0 0.5 1 re f 0.3 0.3 0.4 0.4 re f");
    const std::string small = "0.3 g 0.2 0.2 0.4 0.4 re f";
    const std::string samples = sheet.Add(
        StreamOf(std::string("\xFF\x20\xC0\x00", 4),
                 "/FunctionType 0 /Domain [0 1] /Range [0 1] /Size [4] /BitsPerSample 8"));
    const std::string picture =
        sheet.Object(
            "/Subtype /Image /Width 2 /Height 1 /BitsPerComponent 8 /ColorSpace "
            "/DeviceRGB",
            std::string("\xFF\x10\x10\x10\x20\xFF", 6)) +
        " Do ";
    sheet.Draw("luminosity", kUnder + plain + kTwoMarks);
    sheet.Draw("alpha", kUnder + alpha + kTwoMarks);
    sheet.Draw("backdrop", kUnder + Mask(sheet, "/Luminosity /BC [1]", small) + kTwoMarks);
    sheet.Draw("half backdrop", kUnder + Mask(sheet, "/Luminosity /BC [0.5]", small) + kTwoMarks);
    sheet.Draw("no backdrop",
               kUnder + Mask(sheet, "/Luminosity", "1 g 0.2 0.2 0.4 0.4 re f") + kTwoMarks);
    sheet.Draw("identity", kUnder + Mask(sheet, "/Luminosity /TR /Identity") + kTwoMarks);
    sheet.Draw("exponent", kUnder +
                               Mask(sheet,
                                    "/Luminosity /TR << /FunctionType 2 /Domain [0 1] /N 3 "
                                    "/C0 [1] /C1 [0] >>") +
                               kTwoMarks);
    sheet.Draw("samples", kUnder + Mask(sheet, "/Luminosity /TR " + samples) + kTwoMarks);
    sheet.Draw(
        "transfer of alpha",
        kUnder +
            Mask(sheet, "/Alpha /TR << /FunctionType 2 /Domain [0 1] /N 1 /C0 [1] /C1 [0] >>",
                 "0.2 0.2 0.4 0.4 re f") +
            kTwoMarks);
    sheet.Draw("rgb", kUnder +
                          Mask(sheet, "/Luminosity /BC [0 0 1]", "1 0 0 rg 0.2 0.2 0.4 0.4 re f",
                               "/CS /DeviceRGB") +
                          kTwoMarks);
    sheet.Draw("cmyk", kUnder +
                           Mask(sheet, "/Luminosity /BC [0 0 0 0.5]",
                                "0 1 0 0 k 0.2 0.2 0.4 0.4 re f", "/CS /DeviceCMYK") +
                           kTwoMarks);
    sheet.Draw("image", kUnder + plain + picture);
    sheet.Draw("lower half of an image",
               kUnder + Mask(sheet, "/Luminosity", "1 g 0 0 1 0.5 re f") + picture);
    sheet.Draw("moved image", kUnder + plain + "q 0.5 0.1 -0.1 0.5 0.3 0.3 cm " + picture + "Q");
    sheet.Draw("moved after it", kUnder + plain + "0.5 0 0 0.5 0.2 0.2 cm " + kTwoMarks);
    sheet.Draw("moved before it", kUnder + "0.5 0.1 -0.1 0.5 0.3 0.2 cm " + plain + kTwoMarks);
    sheet.Draw("matrix of the group", kUnder +
                                          Mask(sheet, "/Luminosity", "/S sh", "/CS /DeviceGray",
                                               "/Matrix [0.5 0.2 -0.2 0.5 0.3 0.1]") +
                                          kTwoMarks);
    sheet.Draw("ends with Q", kUnder + "q " + plain + kMark + "Q 0 0 0.2 0.2 re f");
    sheet.Draw("none", kUnder + plain + kMark + none + "0 0 0.2 0.2 re f");
    sheet.Draw("none within q", kUnder + plain + "q " + none + kMark + "Q 0 0 1 0.2 re f");
    sheet.Draw("one after another", kUnder + plain + kMark + alpha + "0 0 1 0.3 re f");
    sheet.Draw("one within another", kUnder + plain + "q " + alpha + kMark + "Q 0 0 1 0.3 re f");
    sheet.Draw("set again", kUnder + plain + kMark + plain + "0 0 1 0.3 re f");
    sheet.Draw("with alpha", kUnder + sheet.State(kHalf) + " gs " + plain + kTwoMarks);
    sheet.Draw("with a blend mode",
               kUnder + plain + sheet.State("/BM /Multiply") + " gs " + kTwoMarks);
    sheet.Draw("group", kUnder + plain + Group(sheet, kTwoMarks));
    sheet.Draw("group with alpha",
               kUnder + plain + sheet.State(kHalf) + " gs " + Group(sheet, kTwoMarks, "/I true"));
    sheet.Draw("clip within", kUnder + plain + "q 0 0 0.5 1 re W n " + kTwoMarks + "Q " + kMark);
    sheet.Draw("clip before", kUnder + "0.2 0.2 0.5 0.5 re W n " + plain + kTwoMarks);
    const std::string masked =
        "/ExtGState << /M << /SMask << /S /Luminosity /G " +
        sheet.Add(StreamOf("/S sh",
                           "/Subtype /Form /BBox [0 0 1 1] /Group << /S /Transparency /CS "
                           "/DeviceGray >> /Resources << /Shading << /S " +
                               std::string(kGrayAxis) + " >> >>")) +
        " >> >> >>";
    sheet.Draw("in a group",
               kUnder + sheet.State(kHalf) + " gs " +
                   Group(sheet, std::string("/M gs ") + kTwoMarks, "/I true", masked));
    sheet.Draw("in a moved group",
               kUnder + sheet.State(kHalf) + " gs 0.8 0.1 -0.1 0.8 0.1 0 cm " +
                   Group(sheet, std::string("0.7 0 0 0.7 0.1 0.1 cm /M gs ") + kTwoMarks, "/I true",
                         masked));
    sheet.Draw("in a form",
               kUnder + Form(sheet, std::string("/M gs ") + kTwoMarks, masked) + kMark);
    sheet.Draw("of a mask", kUnder + Mask(sheet, "/Luminosity", "1 g 0 0 0.5 1 re f") + kMark);
}

/// Groups, images and text under masks, with matrices on either side.
void DrawMaskedForms(Sheet& sheet) {
    const std::string half = sheet.State(kHalf) + " gs ";
    const std::string mask = Mask(sheet, "/Luminosity");
    const std::string move = "0.5 0.1 -0.1 0.5 0.3 0.2 cm ";
    const std::string turn = "0.8 0.1 -0.1 0.8 0.1 0.1 cm ";
    const std::string group = Group(sheet, kTwoMarks);
    const std::string masked =
        "/ExtGState << /H << /ca 0.5 >> /M << /SMask << /S /Luminosity /G " +
        sheet.Add(StreamOf("/S sh",
                           "/Subtype /Form /BBox [0 0 1 1] /Group << /S /Transparency /CS "
                           "/DeviceGray >> /Resources << /Shading << /S " +
                               std::string(kGrayAxis) + " >> >>")) +
        " >> >> >> ";
    const std::string inner =
        "/XObject << /F " +
        sheet.Add(StreamOf(kTwoMarks,
                           "/Subtype /Form /BBox [0 0 1 1] /Matrix [0.9 0.1 -0.1 0.9 0.1 0] "
                           "/Group << /S /Transparency /I true >>")) +
        " >> ";
    sheet.Draw("group, moved before", kUnder + move + mask + group);
    sheet.Draw("group, moved after", kUnder + mask + move + group);
    sheet.Draw("group, moved twice", kUnder + turn + mask + move + group);
    sheet.Draw("groups, each moved", kUnder + mask + "q " + move + group + "Q q " + turn + half +
                                         group + "Q 0 0 1 0.2 re f");
    sheet.Draw("group in a group",
               kUnder + mask +
                   Group(sheet, kMark + std::string("/H gs /F Do"), "/I true", masked + inner));
    sheet.Draw("opaque group in a group",
               kUnder + move + mask + half +
                   Group(sheet, "/H gs /F Do " + std::string(kMark), {}, masked + inner));
    sheet.Draw(
        "mask in a group",
        kUnder + move + half +
            Group(sheet, turn + "/M gs " + kTwoMarks + turn + "0 0 0.9 0.2 re f", {}, masked));
    sheet.Draw(
        "mask in a masked group",
        kUnder + mask + turn + Group(sheet, kMark + move + "/M gs /F Do", {}, masked + inner));
    const std::string image = "/XObject << /I " + Picture(sheet) + " >>";
    sheet.Draw("image in a masked group",
               kUnder + mask + Group(sheet, "q 0.5 0.2 -0.2 0.5 0.4 0.2 cm /I Do Q", {}, image));
    const std::string picture = sheet.Object(
                                    "/Subtype /Image /Width 2 /Height 1 /BitsPerComponent 8 "
                                    "/ColorSpace /DeviceRGB",
                                    std::string("\xFF\x10\x10\x10\x20\xFF", 6)) +
                                " Do ";
    sheet.Draw("image, moved before", kUnder + move + mask + picture);
    sheet.Draw("image, moved twice", kUnder + turn + mask + "q " + move + picture + "Q " + kMark);
    const std::string font =
        "/Font << /F << /Type /Font /Subtype /Type1 /BaseFont /Helvetica-Bold >> >> ";
    const std::string red = "0.7 0 0.1 rg BT /F 0.5 Tf 0.1 0.3 Td (HEL) Tj ET ";
    sheet.Draw("text", kUnder + mask + Form(sheet, red, font));
    sheet.Draw("moved text", kUnder + turn + mask + "1.1 0 0 1.2 0 0 cm " + Form(sheet, red, font));
    sheet.Draw("text in a group", kUnder + mask + half + Group(sheet, red, {}, font));
    sheet.Draw("mask between texts",
               kUnder + Form(sheet, "0.4 0 0 0.4 0 0.5 cm " + red + "/M gs 1 0 0 1 1 -1 cm " + red,
                             font + masked));
}

/// What the matrix of a page moves: a group, a mask, and a pattern within a group.
void DrawMoved(Sheet& sheet) {
    const std::string half = sheet.State(kHalf) + " gs ";
    const std::string group = Group(sheet, kTwoMarks, "/I true");
    sheet.Draw("group", kUnder + half + group);
    sheet.Draw("mask", kUnder + Mask(sheet, "/Luminosity") + kTwoMarks);
    sheet.Draw("moved group under a mask",
               kUnder + Mask(sheet, "/Luminosity") + "0.5 0.1 -0.1 0.5 0.3 0.2 cm " + group);
    sheet.Draw("pattern in a group", kUnder + half + StripedGroup(sheet));
    sheet.Draw("blended", kUnder + sheet.State("/BM /Multiply") + " gs " + group + kMark);
}

/// Soft-mask images.
void DrawMaskedImages(Sheet& sheet) {
    const auto masked = [&](const std::string& entries) {
        return "/XObject << /I " + Picture(sheet, entries) + " >>";
    };
    const auto soft = [&](const std::string& entries, const std::string& data) {
        return "/SMask " +
               sheet.Add(StreamOf(data, "/Subtype /Image /ColorSpace /DeviceGray " + entries));
    };
    const std::string fine =
        soft("/Width 2 /Height 2 /BitsPerComponent 8", std::string("\xFF\x80\x40\xC0", 4));

    const struct {
        const char* name;
        std::string entries;
    } kImages[] = {
        {"8 bits", fine},
        {"1 bit", soft("/Width 4 /Height 2 /BitsPerComponent 1", "\x50\xA0")},
        {"4 bits", soft("/Width 2 /Height 2 /BitsPerComponent 4", "\xF8\x4C")},
        {"larger", soft("/Width 4 /Height 4 /BitsPerComponent 8",
                        std::string("\xFF\x80\x40\x20\x10\xC0\xF0\x90\xFF\x80\x40\x20\x10\xC0"
                                    "\xF0\x90",
                                    16))},
        {"decoded", soft("/Width 2 /Height 2 /BitsPerComponent 8 /Decode [1 0]",
                         std::string("\xFF\x80\x40\xC0", 4))},
        {"stencil", "/Mask " + sheet.Add(StreamOf("\x40\x80",
                                                  "/Subtype /Image /ImageMask true "
                                                  "/Width 2 /Height 2"))},
        {"colour key", "/Mask [200 255 0 255 0 50]"},
    };

    for (const auto& image : kImages) {
        sheet.Draw(image.name, kUnder + Form(sheet, "/I Do", masked(image.entries)));
    }
    const std::string half = sheet.State(kHalf) + " gs ";
    sheet.Draw("with alpha", kUnder + half + Form(sheet, "/I Do", masked(fine)));
    sheet.Draw("in a group", kUnder + half + Group(sheet, "/I Do", {}, masked(fine)));
    sheet.Draw("through a mask",
               kUnder + Mask(sheet, "/Luminosity") + Form(sheet, "/I Do", masked(fine)));
    sheet.Draw("in a pattern",
               kUnder + "/Pattern cs " +
                   sheet.Tiling("/PaintType 1 /TilingType 1 /BBox [0 0 8 8] /XStep 8 /YStep 8 "
                                "/Resources << " +
                                    masked(fine) + " >>",
                                "q 6 0 0 6 1 1 cm /I Do Q", "2 0 0 2") +
                   " scn 0 0 1 1 re f");
}

/// A cell without its last column, which the next cell may touch.
PageImage Narrowed(const PageImage& cell) {
    PageImage narrow{cell.width - 1, cell.height, cell.channels, {}};
    for (std::size_t i = 0; i < cell.samples.size(); ++i) {
        if (i / cell.channels % cell.width < narrow.width) {
            narrow.samples.push_back(cell.samples[i]);
        }
    }
    return narrow;
}

/// A page that is seen turned to the right, as it was before.
PageImage TurnedBack(const PageImage& page) {
    PageImage back{page.height, page.width, page.channels, {}};
    for (std::size_t y = 0; y < back.height; ++y) {
        for (std::size_t x = 0; x < back.width; ++x) {
            for (std::size_t i = 0; i < page.channels; ++i) {
                back.samples.push_back(page.At(page.width - 1 - y, x, i));
            }
        }
    }
    return back;
}

struct TransparencySheet {
    const char* name;
    void (*draw)(Sheet&);
    const char* page = "";  ///< entries of the page
    bool isTurned = false;  ///< by 90 degrees
};

void PrintTo(const TransparencySheet& sheet, std::ostream* out) {
    *out << sheet.name;
}

class Transparency : public testing::TestWithParam<TransparencySheet> {};

TEST_P(Transparency, LooksAsInThePdf) {
    Sheet sheet;
    GetParam().draw(sheet);
    const TemporaryFolder folder;
    const std::string input = folder.File("sheet.pdf");
    WriteFile(input, sheet.Pdf(GetParam().page));
    const ChildResult run = RunTool({"--transparency", "pdfmark", input, folder.File("sheet.ps")});
    ASSERT_EQ(run.exitStatus, kDone) << run.errors;
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(DistilTransparency(folder.File("sheet.ps"), folder.File("distilled.pdf")), "");
    PageImage reference = DrawWithPoppler(input);
    PageImage drawn = DrawWithPoppler(folder.File("distilled.pdf"));
    if (GetParam().isTurned) {
        reference = TurnedBack(reference);
        drawn = TurnedBack(drawn);
    }
    for (std::size_t i = 0; i < sheet.Cells().size(); ++i) {
        const auto difference =
            Compare(Narrowed(Sheet::CellOf(drawn, i)), Narrowed(Sheet::CellOf(reference, i)));
        // Coordinates are rounded on the way, so edges differ.
        EXPECT_TRUE(difference.sameSize && difference.mean < 12.0 && difference.wrongShare < 0.005)
            << sheet.Cells()[i].name << ": " << difference.Describe();
    }
}

INSTANTIATE_TEST_SUITE_P(Sheets, Transparency,
                         testing::Values(TransparencySheet{"Alpha", DrawAlpha},
                                         TransparencySheet{"BlendModes", DrawBlendModes},
                                         TransparencySheet{"Groups", DrawGroups},
                                         TransparencySheet{"Masks", DrawMasks},
                                         TransparencySheet{"MaskedForms", DrawMaskedForms},
                                         TransparencySheet{"MaskedImages", DrawMaskedImages},
                                         TransparencySheet{"Turned", DrawMoved, "/Rotate 90", true},
                                         TransparencySheet{"GroupOfThePage", DrawMoved,
                                                           "/Group << /S /Transparency "
                                                           "/CS /DeviceCMYK >>"}),
                         [](const auto& one) { return std::string(one.param.name); });

/// What a page comes to. F, G and S are the objects 5, 6 and 7.
struct BuiltPage {
    const char* name;
    const char* content;
    const char* form;   ///< entries of object 5
    const char* group;  ///< entries of object 6
    const char* outline;
    const char* page = "";
};

void PrintTo(const BuiltPage& page, std::ostream* out) {
    *out << page.name;
}

class PdfmarksOfAPage : public testing::TestWithParam<BuiltPage> {};

TEST_P(PdfmarksOfAPage, BuildWhatThePdfHas) {
    const BuiltPage& page = GetParam();
    const std::string resources =
        "/XObject << /F 5 0 R /G 6 0 R >> /ExtGState << /H << /ca 0.5 /BM /Multiply >> "
        "/N << /SMask /None >> /M << /SMask << /S /Luminosity /G 6 0 R /BC [0.25] >> >> "
        "/A << /SMask << /S /Alpha /G 6 0 R /TR << /FunctionType 2 /Domain [0 1] /N 2 >> >> >> >>";
    const auto object = [&](const char* entries, const char* content) {
        return StreamOf(content,
                        std::string("/Subtype /Form /BBox [0 0 9 9] /Resources 7 0 R ") + entries);
    };
    const TemporaryFolder folder;
    WriteFile(folder.File("page.pdf"),
              PageOf(page.content, resources,
                     {object(page.form, "/H gs 0 0 9 9 re f /G Do"),
                      object(page.group, "0.5 g 0 0 5 5 re f"), "<< " + resources + " >>"},
                     std::string("/MediaBox [0 0 100 100] ") + page.page));
    const ChildResult run =
        RunTool({"--transparency", "pdfmark", folder.File("page.pdf"), folder.File("page.ps")});
    ASSERT_EQ(run.exitStatus, kDone) << run.errors;
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(OutlineOf(ReadFile(folder.File("page.ps"))), page.outline);
}

constexpr const char* kGroup = "/Group << /S /Transparency >>";
constexpr const char* kGrayGroup = "/Group << /S /Transparency /CS /DeviceGray >>";

INSTANTIATE_TEST_SUITE_P(
    Pages, PdfmarksOfAPage,
    testing::Values(
        BuiltPage{"State", "/H gs 0 0 9 9 re f", "", "", "state ca 0.5 CA 1 Multiply\n"},
        BuiltPage{"Nested", "/H gs /F Do",
                  "/Group << /S /Transparency /I true /K true /CS /DeviceRGB >>", kGroup,
                  "form 1 [0 0 9 9] group\n"
                  "state ca 1 CA 1 Normal\n"
                  "end\n"
                  "form 2 [0 0 9 9] group isolated knockout /DeviceRGB\n"
                  "state ca 0.5 CA 1 Multiply\n"
                  "draw 1\n"
                  "end\n"
                  "state ca 0.5 CA 1 Multiply\n"
                  "draw 2\n"},
        BuiltPage{"LuminosityMask", "q /M gs 0 0 9 9 re f Q 0 0 9 9 re f", "", kGrayGroup,
                  "form 1 [0 0 100 100] group /DeviceGray\n"
                  "end\n"
                  "form 2 [0 0 100 100] plain\n"
                  "state ca 1 CA 1 Normal\n"
                  "state ca 1 CA 1 Normal mask Luminosity 1 over [ 0.25 ]\n"
                  "end\n"
                  "draw 2\n"
                  "state ca 1 CA 1 Normal\n"},
        BuiltPage{"AlphaMask", "/A gs 0 0 9 9 re f /N gs 0 0 5 5 re f", "", kGroup,
                  "form 1 [0 0 100 100] group /DeviceGray\n"
                  "end\n"
                  "form 2 [0 0 100 100] plain\n"
                  "state ca 1 CA 1 Normal\n"
                  "state ca 1 CA 1 Normal mask Alpha 1 by a curve\n"
                  "end\n"
                  "draw 2\n"
                  "state ca 1 CA 1 Normal\n"},
        BuiltPage{"GroupOfThePage", "/H gs 0 1 0 0 k 0 0 9 9 re f", "", "",
                  "form 1 [0 0 100 100] group isolated /DeviceCMYK\n"
                  "state ca 0.5 CA 1 Multiply\n"
                  "end\n"
                  "state ca 1 CA 1 Normal\n"
                  "draw 1\n",
                  "/Group << /S /Transparency /CS /DeviceCMYK >>"}),
    [](const auto& one) { return std::string(one.param.name); });

}  // namespace
}  // namespace VANTIX::TEST
