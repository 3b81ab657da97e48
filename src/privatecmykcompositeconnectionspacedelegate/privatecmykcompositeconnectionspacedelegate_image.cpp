// SPDX-License-Identifier: MIT
#include <algorithm>

#include "baseconnectionspacedelegate/palettes.h"
#include "baseconnectionspacedelegate/spacekinds.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "privatecmykcompositeconnectionspacedelegate/privatecmykcompositeconnectionspacedelegate.h"

namespace VANTIX::RENDERING {

namespace {

constexpr const char* kModule = "src/privatecmykcompositeconnectionspacedelegate";

constexpr const char* kDeviceCMYK = "/DeviceCMYK";
/// Of samples that are complements of ink amounts.
constexpr const char* kInverted = "[1 0 1 0 1 0 1 0]";

/// Lists of rasters, which are not drawn.
constexpr GUID kSecondRasterList = "CF5F605E-0E34-4CED-961B-F2CA7F42A186"_guid;

void LogMissingInk(std::int32_t line, std::size_t channel) {
    constexpr const char* kInks[] = {"cyan", "magenta", "yellow", "black"};
    LogError(kModule) << "Line " << line << " " << kInks[channel] << " is missing.";
}

/// Bits per component of an image with samples of `depth`.
std::int32_t WrittenBits(std::int32_t depth) {
    return depth > 9 ? 12 : depth;
}

}  // namespace

void PrivateCMYKCompositeConnectionSpaceDelegate::InjectDeviceSpaceImage(
    Raster& raster, float /*x*/, float /*y*/, float /*width*/, float /*height*/, FourCC deviceKey) {
    if (deviceKey == "cmyk"_cc) {
        WriteModelRaster(raster);
    } else if (deviceKey == "gray"_cc) {
        WriteGreyRaster(raster);
    } else if (deviceKey == "rgb "_cc) {
        WriteConvertedRaster(raster, raster.GetBitsPerSample(),
                             {{"Could not make a cyan line.", nullptr},
                              {"Insufficient memory to create a buffer of ", " bytes."},
                              {"cannot make a buffer of ", " bytes."}});
    } else {
        InjectConvertedRaster(raster);
    }
}

void PrivateCMYKCompositeConnectionSpaceDelegate::WriteModelRaster(Raster& raster) {
    const std::int32_t depth = raster.GetBitsPerSample();
    if (HasImageData(raster, 4, LogMissingInk) &&
        BeginImage(raster, WrittenBits(depth), kDeviceCMYK, kInverted)) {
        WriteImageData(raster, 4, depth, raster.GetWidth(), LogMissingInk);
    }
}

void PrivateCMYKCompositeConnectionSpaceDelegate::InjectRasterAsDeviceCMYKImage(
    Raster& raster, float /*x*/, float /*y*/, float /*width*/, float /*height*/) {
    WriteConvertedRaster(raster, 8,
                         {{"Insufficient memory to create CMYK dst buffer of ", " bytes."},
                          {"Insufficient memory to create PCS of ", " bytes."},
                          {"Insufficient memory to create CMYK dst buffer of ", " bytes."}});
}

void PrivateCMYKCompositeConnectionSpaceDelegate::Inject16BitRasterAsDeviceCMYKImage(
    Raster& raster, float /*x*/, float /*y*/, float /*width*/, float /*height*/) {
    WriteConvertedRaster(raster, 16,
                         {{"Could not create a buffer for the destination CMYK values. "},
                          {"Could not create a buffer for the PCS values. "},
                          {"Could not create a buffer for the intermediate 12 bit CMYK values. "}});
}

void PrivateCMYKCompositeConnectionSpaceDelegate::InjectConvertedRaster(Raster& raster) {
    if (raster.GetBitsPerSample() == 16) {
        Inject16BitRasterAsDeviceCMYKImage(raster, 0, 0, 1, 1);
    } else {
        InjectRasterAsDeviceCMYKImage(raster, 0, 0, 1, 1);
    }
}

void PrivateCMYKCompositeConnectionSpaceDelegate::InjectByFamily(Raster& raster, float x, float y,
                                                                 float width, float height) {
    const FourCC key = GetOwnFamily(raster.GetColorSpace());
    auto* profile = AsProfileBased(raster.GetColorSpace());
    if (key == "gray"_cc && !mPromoteGray) {
        InjectGreyRasterAsGray(raster);
    } else if (profile != nullptr && key == "gray"_cc) {
        InjectProfileBasedGreyRaster(raster, profile, x, y, width, height);
    } else if (profile != nullptr) {
        InjectDeviceSpaceImage(raster, x, y, width, height, key);
    } else {
        InjectConvertedRaster(raster);
    }
}

void PrivateCMYKCompositeConnectionSpaceDelegate::InjectForeignProfile(
    Raster& raster, COLOR::IProfileBasedConnectionColorSpace& profile, float x, float y,
    float width, float height) {
    if (profile.GetFamily() == "gray"_cc) {
        InjectProfileBasedGreyRaster(raster, &profile, x, y, width, height);
    } else {
        PrivateCMYKCompositeConnectionSpaceDelegate::InjectDeviceSpaceImage(
            raster, x, y, width, height, profile.GetFamily());
    }
}

void PrivateCMYKCompositeConnectionSpaceDelegate::InjectCMYK(Raster& raster, float /*x*/,
                                                             float /*y*/, float /*width*/,
                                                             float /*height*/) {
    const std::int32_t depth = raster.GetBitsPerSample();
    if (HasImageData(raster, 4) &&
        BeginImage(raster, depth == 16 ? 12 : depth, kDeviceCMYK, "[0 1 0 1 0 1 0 1]")) {
        WriteImageData(raster, 4, depth, raster.GetWidth());
    }
}

void PrivateCMYKCompositeConnectionSpaceDelegate::InjectProfileBasedGreyRaster(
    Raster& raster, COLOR::IProfileBasedConnectionColorSpace* /*profile*/, float /*x*/, float /*y*/,
    float /*width*/, float /*height*/) {
    constexpr BufferMessage kPlanes{"Could not create a buffer for the destination CMYK values. "};
    constexpr BufferMessage kPcs{"Could not create a buffer for the PCS values. "};
    PS::IPostScriptOutputContext* out = OutputContext();
    if (out == nullptr || !mDestination) {
        return;
    }
    const auto width = static_cast<std::size_t>(raster.GetWidth());
    ConvertedLines lines(raster, *mDestination, 8, RenderingIntents(TRenderingIntent::kPerceptual),
                         CompositesAlpha());
    PS::WorkBuffer<std::uint8_t> pixels(4 * width);
    if (!lines.IsReady(kModule, kPlanes, kPcs)) {
        return;
    }
    if (pixels.Data() == nullptr) {
        kPlanes.Log(kModule, pixels.Size());
        return;
    }
    std::fill_n(pixels.Data(), pixels.Size(), std::uint8_t{0});
    const auto build = [&](const InterleavedLine::Planes& planes) {
        for (std::size_t x = 0; x < width; ++x) {
            pixels.Data()[4 * x + 3] =
                BlackOf(planes[0][x], planes[1][x], planes[2][x], planes[3][x]);
        }
        return pixels.Data();
    };
    WriteLines(raster,
               {8, kDeviceCMYK, "[0 1 0 1 0 1 1 0]", pixels.Size(), ReaderOf(lines), build});
}

void PrivateCMYKCompositeConnectionSpaceDelegate::WriteGreyscaleImage(Raster& raster, float x,
                                                                      float y, float width,
                                                                      float height) {
    const std::int32_t depth = raster.GetBitsPerSample();
    if (depth <= 8 ||
        (depth == 16 && FindInterface<IObject>(&raster, kSecondRasterList) != nullptr)) {
        InjectGreyscaleImageInAlternateColorSpace(raster, x, y, width, height, depth);
    } else if (depth == 16) {
        LogNotice(kModule) << "This is where we would do something with the color transformer.";
    } else {
        LogError(kModule) << "Some thing un-implemented.";
    }
}

void PrivateCMYKCompositeConnectionSpaceDelegate::InjectRGBImage(Raster& /*raster*/, float /*x*/,
                                                                 float /*y*/, float /*width*/,
                                                                 float /*height*/) {
    LogError(kModule) << "Unimplemented.";
}

void PrivateCMYKCompositeConnectionSpaceDelegate::InjectCMYKImage(Raster& raster, float x, float y,
                                                                  float width, float height) {
    InjectCMYK(raster, x, y, width, height);
}

}  // namespace VANTIX::RENDERING
