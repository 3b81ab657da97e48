// SPDX-License-Identifier: MIT
#include "e2e/imagesheets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string_view>
#include <tuple>

#include "support/iccprofiles.h"

namespace VANTIX::TEST {

namespace {

// Each sample of these covers five points by five.
constexpr std::size_t kWidth = 11;
constexpr std::size_t kHeight = 7;

std::string ProfileSpace(Sheet& sheet, const std::vector<std::uint8_t>& profile,
                         std::size_t components) {
    const std::string bytes(profile.begin(), profile.end());
    return "[/ICCBased " + sheet.Add(StreamOf(bytes, "/N " + std::to_string(components))) + "]";
}

std::string SeparationSpace() {
    return "[/Separation /Orange /DeviceCMYK << /FunctionType 2 /Domain [0 1] /N 1 "
           "/C0 [0 0 0 0] /C1 [0 0.5 1 0] >>]";
}

constexpr const char* kCalGray = "[/CalGray << /WhitePoint [0.9505 1 1.089] /Gamma 1.8 >>]";
constexpr const char* kCalRgb =
    "[/CalRGB << /WhitePoint [0.9505 1 1.089] /Gamma [2.2 2.2 2.2] "
    "/Matrix [0.4124 0.2126 0.0193 0.3576 0.7152 0.1192 0.1805 0.0722 0.9505] >>]";
constexpr const char* kLab =
    "[/Lab << /WhitePoint [0.9642 1 0.8249] /Range [-128 127 -128 127] >>]";

/// A space for images: its text and components.
struct ImageSpace {
    std::string text;
    std::size_t components;
};

/// Every depth with the usual Decode array, an inverted one, and a partial one. Of 16 bits
/// Ghostscript errs about the last two, and of several inks about all.
void DrawDepths(Sheet& sheet, const ImageSpace& space, bool hasInks = false) {
    const std::string inverted = "/Decode [" + Repeated("1 0 ", space.components) + "]";
    const std::string partial = "/Decode [" + Repeated("0.25 0.75 ", space.components) + "]";
    for (const unsigned bits : {1U, 2U, 4U, 8U, 16U}) {
        const Samples ramps = Ramps(kWidth, kHeight, space.components, bits);
        const std::string data = Deflated(Packed(ramps));
        const auto draw = [&](const char* how, const std::string& decode) {
            const std::string name = std::to_string(bits) + " bits" + how;
            const std::size_t cell = sheet.Cells().size();
            auto& drawn = sheet.Image(
                name, ImageEntries(ramps, space.text, "/Filter /FlateDecode " + decode), data);
            if (bits == 16 && (hasInks || !decode.empty())) {
                drawn.like = cell - 3;
                drawn.isDrawnRight = false;
            }
        };
        draw("", "");
        draw(" inverted", inverted);
        draw(" in part", partial);
    }
}

/// Every depth of indices with the usual Decode array and an inverted one, and indices beyond the
/// palette.
void DrawIndexed(Sheet& sheet, const std::string& base, std::size_t components) {
    const auto paletteOf = [&](std::size_t entries) {
        std::string bytes;
        for (std::size_t i = 0; i < entries * components; ++i) {
            bytes += static_cast<char>(i % components == 3 ? i % 32 : 60 + i * 53 % 140);
        }
        return "[/Indexed " + base + " " + std::to_string(entries - 1) + " <" + Hex(bytes) + "]";
    };
    for (const unsigned bits : {1U, 2U, 4U, 8U}) {
        const Samples indices = Ramps(kWidth, kHeight, 1, bits);
        const std::string name = std::to_string(bits) + " bits";
        const std::size_t most = indices.Greatest();
        const std::string data = Packed(indices);
        sheet.Image(name, ImageEntries(indices, paletteOf(most + 1)), data);
        sheet.Image(
            name + " inverted",
            ImageEntries(indices, paletteOf(most + 1), "/Decode [" + std::to_string(most) + " 0]"),
            data);
        if (bits > 1) {
            sheet.Image(name + " beyond the palette", ImageEntries(indices, paletteOf(most - 1)),
                        data);
        }
    }
}

void DrawDeviceGray(Sheet& sheet) {
    DrawDepths(sheet, {"/DeviceGray", 1});
}

void DrawDeviceRgb(Sheet& sheet) {
    DrawDepths(sheet, {"/DeviceRGB", 3});
}

void DrawDeviceCmyk(Sheet& sheet) {
    DrawDepths(sheet, {"/DeviceCMYK", 4});
}

void DrawIccGray(Sheet& sheet) {
    DrawDepths(sheet, {ProfileSpace(sheet, GammaGrayProfile(1.8), 1), 1});
}

void DrawIccRgb(Sheet& sheet) {
    DrawDepths(sheet, {ProfileSpace(sheet, GammaRGBProfile(1.8), 3), 3});
}

void DrawIccCmyk(Sheet& sheet) {
    DrawDepths(sheet, {ProfileSpace(sheet, InkProfile(), 4), 4});
}

void DrawCalGray(Sheet& sheet) {
    DrawDepths(sheet, {kCalGray, 1});
}

void DrawCalRgb(Sheet& sheet) {
    DrawDepths(sheet, {kCalRgb, 3});
}

/// The samples in 8 bits, from `low` to `high` of the range.
Samples InBytes(const Samples& samples, double low, double high) {
    Samples bytes = samples;
    bytes.bits = 8;
    for (std::uint16_t& value : bytes.values) {
        const double share = static_cast<double>(value) / samples.Greatest();
        value = static_cast<std::uint16_t>(std::lround(255 * (low + (high - low) * share)));
    }
    return bytes;
}

/// Colours that RGB has. Ghostscript takes Lab's Decode array for the usual one: each image is
/// drawn as samples of that, too.
void DrawLab(Sheet& sheet) {
    for (const unsigned bits : {1U, 2U, 4U, 8U, 16U}) {
        const Samples ramps = Ramps(kWidth, kHeight, 3, bits);
        const std::string name = std::to_string(bits) + " bits";
        for (const auto& [decode, low, high] :
             {std::tuple{"25 75 -64.25 63.25 -64.25 63.25", 0.25, 0.75},
              std::tuple{"75 25 63.25 -64.25 63.25 -64.25", 0.75, 0.25}}) {
            const Samples twin = InBytes(ramps, low, high);
            const std::size_t like = sheet.Cells().size();
            sheet.Image(name + " as twin", ImageEntries(twin, kLab), Packed(twin));
            const std::string array = "/Decode [" + std::string(decode) + "]";
            auto& drawn = sheet.Image(name + " by " + decode, ImageEntries(ramps, kLab, array),
                                      Packed(ramps));
            drawn.like = like;
            drawn.isDrawnRight = false;
        }
    }
}

/// Inks that are printed over one another, as a picture in them is shown where they are not there.
std::string DeviceNSpace(Sheet& sheet) {
    return "[/DeviceN [/Orange /Magenta /Deep#20Blue] /DeviceCMYK " +
           sheet.Add(StreamOf("{ dup 0.8 mul 4 1 roll 0.1 mul 4 1 roll exch dup 0.9 mul 5 1 roll "
                              "0.5 mul 2 copy mul neg add add 4 2 roll }",
                              "/FunctionType 4 /Domain [0 1 0 1 0 1] /Range [0 1 0 1 0 1 0 1]")) +
           "]";
}

void DrawSeparation(Sheet& sheet) {
    DrawDepths(sheet, {SeparationSpace(), 1});
}

void DrawDeviceN(Sheet& sheet) {
    DrawDepths(sheet, {DeviceNSpace(sheet), 3}, true);
}

void DrawNChannel(Sheet& sheet) {
    const std::string ink = "/DeviceCMYK << /FunctionType 2 /Domain [0 1] /N 1 /C0 [0 0 0 0] /C1 ";
    DrawDepths(
        sheet,
        {"[/DeviceN [/Cyan /Black /Orange /Varnish] /DeviceCMYK " +
             sheet.Add(StreamOf("{ pop exch 1 index 0.5 mul 3 1 roll }",
                                "/FunctionType 4 /Domain [0 1 0 1 0 1 0 1] "
                                "/Range [0 1 0 1 0 1 0 1]")) +
             " << /Subtype /NChannel /Process << /ColorSpace /DeviceCMYK /Components [/Cyan "
             "/Magenta /Yellow /Black] >> /Colorants << /Orange [/Separation /Orange " +
             ink + "[0 0.5 1 0] >>] /Varnish [/Separation /Varnish " + ink + "[0 0 0 0] >>] >> >>]",
         4},
        true);
}

void DrawIndexedGray(Sheet& sheet) {
    DrawIndexed(sheet, "/DeviceGray", 1);
}

void DrawIndexedRgb(Sheet& sheet) {
    DrawIndexed(sheet, "/DeviceRGB", 3);
}

void DrawIndexedCmyk(Sheet& sheet) {
    DrawIndexed(sheet, "/DeviceCMYK", 4);
}

void DrawIndexedIcc(Sheet& sheet) {
    DrawIndexed(sheet, ProfileSpace(sheet, GammaRGBProfile(1.8), 3), 3);
}

void DrawIndexedLab(Sheet& sheet) {
    DrawIndexed(sheet, kLab, 3);
}

void DrawIndexedSeparation(Sheet& sheet) {
    DrawIndexed(sheet, SeparationSpace(), 1);
}

/// Draws samples uncoded, then by every encoding of bytes.
void DrawEncodings(Sheet& sheet, const Samples& samples, const std::string& space) {
    const std::string bytes = Packed(samples);
    const std::string parms = "/Colors " + std::to_string(samples.components) +
                              " /BitsPerComponent " + std::to_string(samples.bits) + " /Columns " +
                              std::to_string(samples.width) + " ";
    const std::string what = std::to_string(samples.bits) + " bits ";
    const std::size_t plain = sheet.Cells().size();
    sheet.Image(what + "plain", ImageEntries(samples, space), bytes);
    const auto draw = [&](const char* name, const std::string& filter, const std::string& data) {
        sheet.Image(what + name, ImageEntries(samples, space, filter), data).like = plain;
    };
    const std::string predictor = "/DecodeParms << " + parms + "/Predictor ";
    draw("Flate in hexadecimal", "/Filter [/ASCIIHexDecode /FlateDecode]", Hex(Deflated(bytes)));
    draw("Flate of PNG", "/Filter /FlateDecode " + predictor + "15 >>",
         Deflated(PngPredicted(samples)));
    draw("Flate of TIFF", "/Filter /FlateDecode " + predictor + "2 >>",
         Deflated(TiffPredicted(samples)));
    draw("LZW", "/Filter /LZWDecode", Lzw(bytes, true));
    draw("late LZW of TIFF", "/Filter /LZWDecode " + predictor + "2 /EarlyChange 0 >>",
         Lzw(TiffPredicted(samples), false));
    draw("run lengths", "/Filter /RunLengthDecode", RunLengths(bytes));
}

void DrawByteCodecs(Sheet& sheet) {
    DrawEncodings(sheet, Ramps(kWidth, kHeight, 1, 1), "/DeviceGray");
    DrawEncodings(sheet, Ramps(kWidth, kHeight, 1, 4), "/DeviceGray");
    DrawEncodings(sheet, Ramps(kWidth, kHeight, 3, 8), "/DeviceRGB");
    DrawEncodings(sheet, Ramps(kWidth, kHeight, 4, 16), "/DeviceCMYK");
    DrawEncodings(sheet, Ramps(55, 35, 3, 8), "/DeviceRGB");  // more than one LZW table
}

void DrawJpegs(Sheet& sheet) {
    static constexpr struct {
        const char* name;
        JpegModel model;
        std::size_t components;
        const char* space;
        const char* more;
        const char* plain;
    } kFiles[] = {
        {"gray", JpegModel::kGray, 1, "/DeviceGray", "", ""},
        {"YCC", JpegModel::kYcc, 3, "/DeviceRGB", "", ""},
        {"RGB", JpegModel::kRgb, 3, "/DeviceRGB", "", ""},
        {"CMYK", JpegModel::kCmyk, 4, "/DeviceCMYK", "", ""},
        {"YCCK", JpegModel::kYcck, 4, "/DeviceCMYK", "", ""},
        {"CMYK inverted", JpegModel::kCmyk, 4, "/DeviceCMYK", "/Decode [1 0 1 0 1 0 1 0]", ""},
        {"RGB in spite of the parameter", JpegModel::kRgb, 3, "/DeviceRGB",
         "/DecodeParms << /ColorTransform 1 >>", "/DecodeParms null"},
    };

    for (const auto& file : kFiles) {
        const Samples ramps = Ramps(kWidth, kHeight, file.components, 8);
        const std::size_t plain = sheet.Cells().size();
        const std::string more = *file.plain != '\0' ? file.plain : file.more;
        sheet.Image(std::string(file.name) + " plain", ImageEntries(ramps, file.space, more),
                    Packed(ramps));
        sheet
            .Image(file.name,
                   ImageEntries(ramps, file.space, "/Filter /DCTDecode " + std::string(file.more)),
                   Jpeg(ramps, file.model))
            .like = plain;
    }
}

void DrawJpx(Sheet& sheet) {
    static constexpr struct {
        std::size_t components;
        unsigned bits;
        const char* space;
    } kFiles[] = {
        {1, 8, "/DeviceGray"}, {3, 8, "/DeviceRGB"},   {4, 8, "/DeviceCMYK"},
        {1, 1, "/DeviceGray"}, {1, 16, "/DeviceGray"}, {3, 16, "/DeviceRGB"},
    };

    for (const auto& file : kFiles) {
        const Samples ramps = Ramps(kWidth, kHeight, file.components, file.bits);
        const std::string name =
            std::to_string(file.components) + " x " + std::to_string(file.bits) + " bits";
        const std::string data =
            Jpx(ramps, {file.components == 4 ? JpxSpace::kCmyk : JpxSpace::kUsual});
        const std::size_t plain = sheet.Cells().size();
        sheet.Image(name + " plain", ImageEntries(ramps, file.space), Packed(ramps));
        sheet.Image(name, ImageEntries(ramps, file.space, "/Filter /JPXDecode"), data).like = plain;
        if (file.components < 4) {
            auto& cell = sheet.Image(
                name + " without a space",
                "/Type /XObject /Subtype /Image /Width 11 /Height 7 /Filter /JPXDecode", data);
            cell.like = plain;
            cell.isDrawnRight = file.components == 3;
        }
    }
    const Samples indices = Ramps(kWidth, kHeight, 1, 8);
    sheet.Image(
        "indices",
        ImageEntries(indices, "[/Indexed /DeviceRGB 1 <ff000000ff00>]", "/Filter /JPXDecode"),
        Jpx(indices));
}

void DrawBilevel(Sheet& sheet) {
    static const struct {
        const char* name;
        FaxOptions options;
        const char* parms;
    } kFaxes[] = {
        {"group 3", {0, false, false}, "/K 0"},
        {"group 3 with ends of lines", {0, true, false}, "/K 0 /EndOfLine true"},
        {"group 3 by bytes", {0, false, true}, "/K 0 /EncodedByteAlign true"},
        {"group 3 mixed", {4, true, false}, "/K 4 /EndOfLine true"},
        {"group 4", {-1, false, false}, "/K -1"},
        {"group 4 by bytes", {-1, false, true}, "/K -1 /EncodedByteAlign true"},
        {"group 4 of known rows", {-1, false, false}, "/K -1 /Rows 9 /EndOfBlock false"},
    };

    const Samples art = LineArt();
    const std::string gray = "/DeviceGray";
    sheet.Image("plain", ImageEntries(art, gray), Packed(art));
    for (const auto& fax : kFaxes) {
        const std::string parms =
            "/Filter /CCITTFaxDecode /DecodeParms << /Columns 15 " + std::string(fax.parms);
        const std::string data = Fax(art, fax.options);
        sheet.Image(fax.name, ImageEntries(art, gray, parms + " >>"), data).like = 0;
        sheet
            .Image(std::string(fax.name) + " with black as 1",
                   ImageEntries(art, gray, parms + " /BlackIs1 true >> /Decode [1 0]"), data)
            .like = 0;
    }
    for (const bool isMmr : {false, true}) {
        sheet
            .Image(isMmr ? "JBIG2 by MMR" : "JBIG2",
                   ImageEntries(art, gray, "/Filter /JBIG2Decode"), Jbig2(art, isMmr))
            .like = 0;
    }
}

void DrawInline(Sheet& sheet) {
    const Samples gray = Ramps(kWidth, kHeight, 1, 8);
    const Samples rgb = Ramps(kWidth, kHeight, 3, 8);
    const Samples cmyk = Ramps(kWidth, kHeight, 4, 8);
    const Samples few = Ramps(kWidth, kHeight, 1, 2);
    const Samples art = LineArt();
    const std::string size = "/W 11 /H 7 /BPC 8 ";
    sheet.Space("Tint", SeparationSpace());
    sheet.Inline("gray", size + "/CS /G", Packed(gray));
    sheet.Inline("gray inverted", size + "/CS /G /D [1 0]", Packed(gray));
    sheet.Inline("RGB by long names",
                 "/Width 11 /Height 7 /BitsPerComponent 8 /ColorSpace /DeviceRGB "
                 "/Filter /FlateDecode",
                 Deflated(Packed(rgb)));
    sheet.Inline("CMYK in hexadecimal", size + "/CS /CMYK /F /AHx", Hex(Packed(cmyk)));
    sheet.Inline("RGB by LZW", size + "/CS /RGB /F [/AHx /LZW]", Hex(Lzw(Packed(rgb), true)));
    sheet.Inline("gray by run lengths", size + "/CS /G /F /RL", RunLengths(Packed(gray)));
    sheet.Inline("gray by DCT", size + "/CS /G /F [/AHx /DCT]", Hex(Jpeg(gray, JpegModel::kGray)));
    sheet.Inline("palette", "/W 11 /H 7 /BPC 2 /CS [/I /RGB 3 <ff000000ff000000ffffff00>]",
                 Packed(few));
    sheet.Inline("stencil", "/W 15 /H 9 /IM true", Packed(art));
    sheet.Inline("fax", "/W 15 /H 9 /BPC 1 /CS /G /F /CCF /DP << /K -1 /Columns 15 >>",
                 Fax(art, {}));
    sheet.Inline(
        "palette of a named space",
        "/W 11 /H 7 /BPC 2 /CS [/Indexed /DeviceCMYK 3 <00000000ff00000000ff00000000ff00>]",
        Packed(few));
}

void DrawStencils(Sheet& sheet) {
    sheet.Space("Icc", ProfileSpace(sheet, GammaRGBProfile(2.2), 3));
    sheet.Space("CalRgb", kCalRgb);
    sheet.Space("Lab", kLab);
    sheet.Space("Palette", "[/Indexed /DeviceRGB 1 <804020204080>]");
    sheet.Space("Spot", SeparationSpace());
    sheet.Space("Inks", "[/DeviceN [/Orange /Black] /DeviceCMYK " +
                            sheet.Add(StreamOf("{ exch dup 0.5 mul exch 0 3 1 roll 4 -1 roll }",
                                               "/FunctionType 4 /Domain [0 1 0 1] "
                                               "/Range [0 1 0 1 0 1 0 1]")) +
                            "]");
    const std::string stencil = Packed(LineArt());
    for (const char* color :
         {"0 g", "0.6 g", "1 0 0 rg", "0.2 0.6 0.4 rg", "0.8 0.2 0 0.1 k", "/Icc cs 0 0 1 sc",
          "/CalRgb cs 0.3 0.5 0.7 sc", "/Lab cs 60 30 -30 sc", "/Palette cs 1 sc", "/Spot cs 1 scn",
          "/Spot cs 0.4 scn", "/Inks cs 0.7 0.2 scn"}) {
        sheet.Image(color, StencilEntries(), stencil, color);
    }
    sheet.Image("inverted", StencilEntries("/Decode [1 0]"), stencil, "0 0 1 rg");
    sheet.Image("coded", StencilEntries("/Filter /FlateDecode"), Deflated(stencil), "0 0 1 rg");
    sheet.Image("fax",
                StencilEntries("/Filter /CCITTFaxDecode /DecodeParms << /K -1 /Columns 15 >>"),
                Fax(LineArt(), {}), "0 0 1 rg");
    sheet.Image("JBIG2", StencilEntries("/Filter /JBIG2Decode"), Jbig2(LineArt(), false),
                "0 0 1 rg");
    sheet.Image("one pixel", "/Type /XObject /Subtype /Image /ImageMask true /Width 1 /Height 1",
                std::string(1, '\0'), "0.5 0 0 rg");
}

/// Where alpha is the mean of every pixel's ramps, the samples mixed with a matte of black.
Samples Premultiplied(const Samples& samples, const Samples& alpha) {
    Samples mixed = samples;
    for (std::size_t i = 0; i < mixed.values.size(); ++i) {
        const unsigned share = alpha.values[i / samples.components];
        mixed.values[i] = static_cast<std::uint16_t>(samples.values[i] * share / 255U);
    }
    return mixed;
}

/// The corner of a line drawing that has the pixels of the images: where both have other edges, a
/// clip covers what it touches.
Samples MaskArt() {
    const Samples art = LineArt();
    Samples corner{kWidth, kHeight, 1, 1, {}};
    for (std::size_t y = 0; y < kHeight; ++y) {
        const auto row = art.values.begin() + static_cast<std::ptrdiff_t>(y * art.width);
        corner.values.insert(corner.values.end(), row, row + kWidth);
    }
    return corner;
}

void DrawMasks(Sheet& sheet) {
    const Samples gray = Ramps(kWidth, kHeight, 1, 8);
    const Samples rgb = Ramps(kWidth, kHeight, 3, 8);
    const Samples deep = Ramps(kWidth, kHeight, 3, 16);
    const Samples cmyk = Ramps(kWidth, kHeight, 4, 8);
    const Samples few = Ramps(kWidth, kHeight, 1, 4);
    const std::string palette = "[/Indexed /DeviceRGB 15 <" + Hex(Packed(Ramps(16, 1, 3, 8))) + "]";
    const auto draw = [&](const std::string& name, const Samples& samples, const std::string& space,
                          const std::string& more) -> Sheet::Cell& {
        return sheet.Image(name, ImageEntries(samples, space, more), Packed(samples));
    };
    draw("key in RGB", rgb, "/DeviceRGB", "/Mask [0 128 0 255 0 255]");
    auto& deepKey = draw("key in 16 bits", deep, "/DeviceRGB", "/Mask [0 32896 0 65535 0 65535]");
    deepKey.like = 0;
    deepKey.isDrawnRight = false;
    draw("key in gray", gray, "/DeviceGray", "/Mask [100 200]");
    draw("key in CMYK", cmyk, "/DeviceCMYK", "/Mask [0 128 0 128 0 255 0 255]");
    draw("key in a palette", few, palette, "/Mask [3 6]");
    draw("key that is never met", gray, "/DeviceGray", "/Mask [1 2]");

    const std::string entries = "/Subtype /Image /ImageMask true /Width 11 /Height 7 ";
    const std::string stencil = sheet.Add(StreamOf(Packed(MaskArt()), entries));
    const std::string inverse = sheet.Add(StreamOf(Packed(MaskArt()), entries + "/Decode [1 0]"));
    draw("stencil over gray", gray, "/DeviceGray", "/Mask " + stencil);
    draw("stencil over RGB", rgb, "/DeviceRGB", "/Mask " + inverse);
    draw("stencil over CMYK", cmyk, "/DeviceCMYK", "/Mask " + stencil);
    draw("stencil over a palette", few, palette, "/Mask " + stencil);

    const auto alphaOf = [&](const Samples& alpha, const std::string& more = {}) {
        return "/SMask " +
               sheet.Add(StreamOf(Packed(alpha), ImageEntries(alpha, "/DeviceGray", more)));
    };
    const Samples slope = Ramps(kWidth, kHeight, 1, 8);
    draw("alpha over gray", gray, "/DeviceGray", alphaOf(slope));
    draw("alpha over RGB", rgb, "/DeviceRGB", alphaOf(slope));
    draw("alpha over 16 bits", deep, "/DeviceRGB", alphaOf(slope));
    draw("alpha over a palette", few, palette, alphaOf(slope));
    draw("alpha inverted", rgb, "/DeviceRGB", alphaOf(slope, "/Decode [1 0]"));
    draw("alpha of 1 bit", rgb, "/DeviceRGB", alphaOf(MaskArt()));
    draw("alpha of 4 bits", rgb, "/DeviceRGB", alphaOf(Ramps(55, 35, 1, 4)));
    draw("alpha of 16 bits", rgb, "/DeviceRGB", alphaOf(Ramps(kWidth, kHeight, 1, 16)));
    draw("alpha with matte", Premultiplied(rgb, slope), "/DeviceRGB",
         alphaOf(slope, "/Matte [0 0 0]"));
    draw("alpha of nothing", rgb, "/DeviceRGB", alphaOf({1, 1, 1, 8, {255}}));
}

/// Images that are turned, mirrored, skewed and clipped.
void DrawPlacements(Sheet& sheet) {
    const Samples rgb = Ramps(kWidth, kHeight, 3, 8);
    const std::string image = sheet.Object(ImageEntries(rgb, "/DeviceRGB"), Packed(rgb));
    for (const char* place : {"1 0 0 1 0 0 cm", "0 1 -1 0 1 0 cm", "-1 0 0 1 1 0 cm",
                              "1 0 0 -1 0 1 cm", "0.5 0 0.5 1 0 0 cm", "0.2 0.1 0.6 0.7 re W n"}) {
        sheet.Draw(place, std::string(place) + " " + image + " Do");
    }
}

/// Images that cannot be drawn as they are meant; the one behind them can.
void DrawDamaged(Sheet& sheet) {
    const Samples rgb = Ramps(kWidth, kHeight, 3, 8);
    const std::string bytes = Packed(rgb);
    const std::string space = "/DeviceRGB";
    const std::string jpeg = Jpeg(rgb, JpegModel::kYcc);
    const std::string jpx = Jpx(rgb);
    const auto draw = [&](const char* name, const std::string& entries, const std::string& data) {
        sheet.Image(name, entries, data).isJudged = false;
    };
    draw("short data", ImageEntries(rgb, space), bytes.substr(0, 100));
    draw("no data", ImageEntries(rgb, space), "");
    for (const auto& [filter, data] : std::initializer_list<std::pair<const char*, std::string>>{
             {"/FlateDecode", Deflated(bytes)},
             {"/LZWDecode", Lzw(bytes, true)},
             {"/DCTDecode", jpeg},
             {"/JPXDecode", jpx},
             {"/RunLengthDecode", RunLengths(bytes)}}) {
        const std::string entries = ImageEntries(rgb, space, "/Filter " + std::string(filter));
        draw(filter, entries, data.substr(0, data.size() * 2 / 3));
        draw(filter, entries, std::string(200, '\x5A'));
    }
    const std::string fax = Fax(LineArt(), {}).substr(0, 12);
    draw("fax", ImageEntries(LineArt(), "/DeviceGray", "/Filter /CCITTFaxDecode"), fax);
    draw("JBIG2", ImageEntries(LineArt(), "/DeviceGray", "/Filter /JBIG2Decode"),
         Jbig2(LineArt(), false).substr(0, 50));
    draw("unknown filter", ImageEntries(rgb, space, "/Filter /Unknown"), bytes);
    draw("predictor",
         ImageEntries(rgb, space,
                      "/Filter /FlateDecode /DecodeParms << /Predictor 15 /Columns "
                      "2147483647 /Colors 99 /BitsPerComponent 16 >>"),
         Deflated(bytes));
    draw("huge", ImageEntries({2000000000, 2000000000, 3, 8, {}}, space), bytes);
    draw("negative",
         "/Subtype /Image /Width -5 /Height 0 /BitsPerComponent 8 /ColorSpace /DeviceRGB", bytes);
    draw("odd depth", ImageEntries({11, 7, 3, 7, {}}, space), bytes);
    draw("short Decode", ImageEntries(rgb, space, "/Decode [1]"), bytes);
    draw("short palette", ImageEntries(rgb, "[/Indexed /DeviceRGB 255 <00>]"), bytes);
    draw("palette of a palette",
         ImageEntries(rgb, "[/Indexed [/Indexed /DeviceRGB 1 <000000>] 1 <00>]"), bytes);
    draw("no space", "/Subtype /Image /Width 11 /Height 7 /BitsPerComponent 8", bytes);
    draw("mask in itself", ImageEntries(rgb, space, "/SMask 5 0 R"), bytes);
    sheet.Draw("cut inline image", "BI /W 11 /H 7 /BPC 8 /CS /G /F /AHx ID 00>\nEI").isJudged =
        false;
    sheet.Image("sound", ImageEntries(rgb, space), bytes);
}

constexpr SheetCase kSheets[] = {
    {"DeviceGray", DrawDeviceGray, Judged::kPlain, false, true},
    {"DeviceRgb", DrawDeviceRgb, Judged::kPlain, false, true},
    {"DeviceCmyk", DrawDeviceCmyk, Judged::kPlain, true, true},
    {"IccGray", DrawIccGray, Judged::kEmbedded, false, true},
    {"IccRgb", DrawIccRgb, Judged::kEmbedded, false, true},
    {"IccCmyk", DrawIccCmyk, Judged::kEmbedded, false, true},
    {"CalGray", DrawCalGray, Judged::kEmbedded, false, true},
    {"CalRgb", DrawCalRgb, Judged::kAll, false, true},
    {"Lab", DrawLab, Judged::kAll, false, true},
    {"Separation", DrawSeparation, Judged::kPlates, true, true},
    {"DeviceN", DrawDeviceN, Judged::kPlain, true},
    {"NChannel", DrawNChannel, Judged::kPlain, true},
    {"IndexedGray", DrawIndexedGray},
    {"IndexedRgb", DrawIndexedRgb},
    {"IndexedCmyk", DrawIndexedCmyk, Judged::kPlain, true},
    {"IndexedIcc", DrawIndexedIcc, Judged::kEmbedded},
    {"IndexedLab", DrawIndexedLab, Judged::kAll},
    {"IndexedSeparation", DrawIndexedSeparation, Judged::kPlain, true},
    {"ByteCodecs", DrawByteCodecs, Judged::kPlain, false, true},
    {"Jpeg", DrawJpegs, Judged::kPlain, true},
    {"Jpx", DrawJpx, Judged::kPlain, false, true},
    {"Bilevel", DrawBilevel},
    {"Inline", DrawInline},
    {"Stencils", DrawStencils, Judged::kPlain, true},
    {"Masks", DrawMasks, Judged::kPlain, false, true},
    {"Placements", DrawPlacements},
    {"Damaged", DrawDamaged},
};

}  // namespace

std::span<const SheetCase> ImageSheets() {
    return kSheets;
}

void CompareCells(const Sheet& sheet, const PageImage& page, const PageImage& reference,
                  bool atEdges) {
    for (std::size_t i = 0; i < sheet.Cells().size(); ++i) {
        const Sheet::Cell& cell = sheet.Cells()[i];
        const std::size_t like = cell.isDrawnRight ? i : cell.like.value_or(i);
        const PageDifference difference =
            Compare(Sheet::CellOf(page, i), Sheet::CellOf(reference, like));
        const bool isMatch =
            atEdges ? difference.IsMatch() : difference.sameSize && difference.wrongShare <= 0.01;
        EXPECT_TRUE(!cell.isJudged || isMatch) << cell.name << ": " << difference.Describe();
    }
}

const SheetCase& ImageSheet(std::string_view name) {
    return *std::find_if(std::begin(kSheets), std::end(kSheets),
                         [name](const SheetCase& sheet) { return name == sheet.name; });
}

}  // namespace VANTIX::TEST
