// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstring>

#include "baseconnectionspacedelegate/convertedlines.h"
#include "baseconnectionspacedelegate/interleavedline.h"
#include "baseconnectionspacedelegate/palettes.h"
#include "baseconnectionspacedelegate/samples.h"
#include "baseconnectionspacedelegate/spacekinds.h"
#include "core/color/iconnectioncolorspacefactory.h"
#include "core/graphics/pluginhelper/colorhelpers.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptdatastream/formattext.h"
#include "privatecmykcompositeconnectionspacedelegate/privatecmykcompositeconnectionspacedelegate.h"

namespace VANTIX::RENDERING {

namespace {

using COLOR::IConnectionColorSpace;
using COLOR::TRenderingIntent;
using GRAPHICS::IRasterComponent;
using GRAPHICS::HELPER::GetOwnFamily;

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

void LogMissingLine(std::int32_t line, std::size_t /*channel*/) {
    LogError(kModule) << "Line " << line << " is missing.";
}

bool ConvertLine(ConvertedLines& lines, std::int32_t y, ConvertedLines::Planes& planes) {
    const bool isConverted = lines.Convert(y, planes);
    if (!isConverted) {
        LogError(kModule) << "Failed to encode the image at line " << y;
    }
    return isConverted;
}

/// Bits per component of an image with samples of `depth`.
std::int32_t WrittenBits(std::int32_t depth) {
    return depth > 9 ? 12 : depth;
}

}  // namespace

/// What is said when an image cannot be converted for want of memory.
struct PrivateCMYKCompositeConnectionSpaceDelegate::ConversionMessages {
    BufferMessage planes;
    BufferMessage pcs;
    BufferMessage line;
};

bool PrivateCMYKCompositeConnectionSpaceDelegate::BeginImage(const IRasterComponent& raster,
                                                             std::int32_t bits,
                                                             const std::string& colour,
                                                             const char* decode) {
    PS::IPostScriptOutputContext* out = OutputContext();
    if (out != nullptr) {
        out->WriteImageDictionary(raster.GetWidth(), raster.GetHeight(), bits, colour.data(),
                                  static_cast<std::int32_t>(colour.size()), decode, false);
    }
    return out != nullptr;
}

void PrivateCMYKCompositeConnectionSpaceDelegate::InjectDeviceSpaceImage(IRasterComponent& raster,
                                                                         float /*x*/, float /*y*/,
                                                                         float /*width*/,
                                                                         float /*height*/,
                                                                         FourCC deviceKey) {
    if (deviceKey == "cmyk"_cc) {
        WriteCMYKRaster(raster);
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

void PrivateCMYKCompositeConnectionSpaceDelegate::WriteCMYKRaster(IRasterComponent& raster) {
    const std::int32_t depth = raster.GetBitsPerSample();
    if (HasImageData(raster, 4, LogMissingInk) &&
        BeginImage(raster, WrittenBits(depth), kDeviceCMYK, kInverted)) {
        WriteImageData(raster, 4, depth, raster.GetWidth(), LogMissingInk);
    }
}

void PrivateCMYKCompositeConnectionSpaceDelegate::WriteGreyRaster(IRasterComponent& raster) {
    if (!HasImageData(raster, 1, LogMissingLine)) {
        return;
    }
    PS::IPostScriptOutputContext* out = OutputContext();
    const std::int32_t depth = raster.GetBitsPerSample();
    const std::int32_t bits = std::min(depth, 8);
    std::string colour = "/DeviceGray";
    const char* decode = "[0 1]";
    char range[16];
    if (depth == 1) {
        colour = "[/Indexed /DeviceCMYK 1 <000000FF 00000000>]\n";
    } else if (mPromoteGray) {
        colour = PromotedGrayPalette(bits);
        PS::FormatText(range, sizeof range, "[0 %i]", (1 << bits) - 1);
        decode = range;
    }
    if (out == nullptr || colour.empty() || !BeginImage(raster, bits, colour, decode)) {
        return;
    }
    if (depth == 16) {
        WriteHighBytes(raster, *out);
    } else {
        WriteImageData(raster, 1, depth, raster.GetWidth(), LogMissingLine);
    }
}

void PrivateCMYKCompositeConnectionSpaceDelegate::WriteHighBytes(
    IRasterComponent& raster, PS::IPostScriptOutputContext& out) {
    const auto width = static_cast<std::size_t>(raster.GetWidth());
    const GRAPHICS::IChannelDesc* channel = raster.GetPrimary(0);
    GRAPHICS::IChannelData* data = channel == nullptr ? nullptr : channel->GetData();
    PS::WorkBuffer<std::uint8_t> bytes(width);
    for (std::int32_t y = 0; y < raster.GetHeight() && bytes.Data() != nullptr; ++y) {
        const std::uint8_t* line = data == nullptr ? nullptr : data->GetLine(y);
        if (line == nullptr) {
            LogMissingLine(y, 0);
            break;
        }
        for (std::size_t x = 0; x < width; ++x) {
            bytes.Data()[x] = static_cast<std::uint8_t>(WordAt(line, x) >> 8U);
        }
        out.WriteStreamData(bytes.Data(), raster.GetWidth());
    }
    out.FlushStreamData();
}

std::string PrivateCMYKCompositeConnectionSpaceDelegate::PromotedGrayPalette(std::int32_t depth) {
    const auto colors = CreateObject<COLOR::IConnectionColorSpaceFactory>(
        mFactory, COLOR::IID_ICONNECTIONCOLORSPACEFACTORY);
    const auto gray =
        colors ? TInterfacePtr<IConnectionColorSpace>::Adopt(colors->CreateDeviceGrayColorSpace())
               : nullptr;
    if (!gray || !mDestination || mDestination->GetComponentCount() != 4) {
        LogError(kModule) << "Could not create colour space.";
        return {};
    }
    const std::int32_t entries = 1 << depth;
    char text[64];
    PS::FormatText(text, sizeof text, "[/Indexed /DeviceCMYK %d <\n", entries - 1);
    std::string palette = text;
    float level = 0;
    for (std::int32_t i = 0; i < entries; ++i, level += 1.0F / static_cast<float>(entries - 1)) {
        const auto inks = ConvertByHost(*gray, *mDestination, &level, 1,
                                        RenderingIntents(TRenderingIntent::kPerceptual));
        if (!inks) {
            return {};
        }
        std::uint8_t bytes[4];
        std::transform(inks->values, inks->values + 4, bytes, [](float value) {
            return static_cast<std::uint8_t>(std::clamp(value, 0.0F, 1.0F) * 255.0F);
        });
        PS::FormatText(text, sizeof text, "000000%02X%c",
                       255 - BlackOf(bytes[0], bytes[1], bytes[2], bytes[3]),
                       i % 16 == 0 ? '\n' : ' ');
        palette += text;
    }
    return palette + ">] ";
}

void PrivateCMYKCompositeConnectionSpaceDelegate::WriteConvertedRaster(
    IRasterComponent& raster, std::int32_t bits, const ConversionMessages& messages) {
    PS::IPostScriptOutputContext* out = OutputContext();
    if (out == nullptr || !mDestination) {
        return;
    }
    const std::int32_t depth = bits == 16 ? 16 : 8;
    ConvertedLines lines(raster, *mDestination, depth,
                         RenderingIntents(TRenderingIntent::kPerceptual), CompositesAlpha());
    InterleavedLine pixels(4, raster.GetWidth(), depth, mSwizzle.Get());
    if (!lines.IsReady(kModule, messages.planes, messages.pcs)) {
        return;
    }
    if (!pixels.HasMemory()) {
        messages.line.Log(kModule, pixels.Size());
        return;
    }
    ConvertedLines::Planes converted{};
    InterleavedLine::Planes planes{};
    std::int32_t y = 0;
    for (; y < raster.GetHeight() && ConvertLine(lines, y, converted); ++y) {
        if (y == 0) {
            BeginImage(raster, WrittenBits(depth), kDeviceCMYK, kInverted);
        }
        std::copy(converted.begin(), converted.end(), planes.begin());
        out->WriteStreamData(pixels.Build(planes, 0), static_cast<std::int32_t>(pixels.Size()));
    }
    if (y > 0) {
        out->FlushStreamData();
    }
}

void PrivateCMYKCompositeConnectionSpaceDelegate::InjectRasterAsDeviceCMYKImage(
    IRasterComponent& raster, float /*x*/, float /*y*/, float /*width*/, float /*height*/) {
    WriteConvertedRaster(raster, 8,
                         {{"Insufficient memory to create CMYK dst buffer of ", " bytes."},
                          {"Insufficient memory to create PCS of ", " bytes."},
                          {"Insufficient memory to create CMYK dst buffer of ", " bytes."}});
}

void PrivateCMYKCompositeConnectionSpaceDelegate::Inject16BitRasterAsDeviceCMYKImage(
    IRasterComponent& raster, float /*x*/, float /*y*/, float /*width*/, float /*height*/) {
    WriteConvertedRaster(raster, 16,
                         {{"Could not create a buffer for the destination CMYK values. "},
                          {"Could not create a buffer for the PCS values. "},
                          {"Could not create a buffer for the intermediate 12 bit CMYK values. "}});
}

void PrivateCMYKCompositeConnectionSpaceDelegate::InjectConvertedRaster(IRasterComponent& raster) {
    if (raster.GetBitsPerSample() == 16) {
        Inject16BitRasterAsDeviceCMYKImage(raster, 0, 0, 1, 1);
    } else {
        InjectRasterAsDeviceCMYKImage(raster, 0, 0, 1, 1);
    }
}

void PrivateCMYKCompositeConnectionSpaceDelegate::InjectByFamily(IRasterComponent& raster, float x,
                                                                 float y, float width,
                                                                 float height) {
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

void PrivateCMYKCompositeConnectionSpaceDelegate::InjectCMYK(IRasterComponent& raster, float /*x*/,
                                                             float /*y*/, float /*width*/,
                                                             float /*height*/) {
    const std::int32_t depth = raster.GetBitsPerSample();
    if (HasImageData(raster, 4) &&
        BeginImage(raster, depth == 16 ? 12 : depth, kDeviceCMYK, "[0 1 0 1 0 1 0 1]")) {
        WriteImageData(raster, 4, depth, raster.GetWidth());
    }
}

void PrivateCMYKCompositeConnectionSpaceDelegate::InjectGreyRasterAsGray(IRasterComponent& raster) {
    const std::int32_t depth = raster.GetBitsPerSample();
    if (GetOwnFamily(raster.GetColorSpace()) == "gray"_cc && HasImageData(raster, 1) &&
        BeginImage(raster, depth == 16 ? 12 : depth, "/DeviceGray", "[0 1]")) {
        WriteImageData(raster, 1, depth, raster.GetWidth());
    }
}

void PrivateCMYKCompositeConnectionSpaceDelegate::InjectProfileBasedGreyRaster(
    IRasterComponent& raster, COLOR::IProfileBasedConnectionColorSpace* /*profile*/, float /*x*/,
    float /*y*/, float /*width*/, float /*height*/) {
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
    ConvertedLines::Planes planes{};
    std::int32_t y = 0;
    for (; y < raster.GetHeight() && ConvertLine(lines, y, planes); ++y) {
        if (y == 0) {
            BeginImage(raster, 8, kDeviceCMYK, "[0 1 0 1 0 1 1 0]");
        }
        for (std::size_t x = 0; x < width; ++x) {
            pixels.Data()[4 * x + 3] =
                BlackOf(planes[0][x], planes[1][x], planes[2][x], planes[3][x]);
        }
        out->WriteStreamData(pixels.Data(), static_cast<std::int32_t>(pixels.Size()));
    }
    if (y > 0) {
        out->FlushStreamData();
    }
}

TInterfacePtr<IConnectionColorSpace> PrivateCMYKCompositeConnectionSpaceDelegate::MakeDeviceCMYK()
    const {
    const auto colors = CreateObject<COLOR::IConnectionColorSpaceFactory>(
        mFactory, COLOR::IID_ICONNECTIONCOLORSPACEFACTORY);
    if (!colors) {
        LogError(kModule) << "Could not create colour factory.";
        return nullptr;
    }
    auto space = TInterfacePtr<IConnectionColorSpace>::Adopt(colors->CreateDeviceCMYKColorSpace());
    if (!space) {
        LogError(kModule) << "Could not create colour space.";
    }
    return space;
}

void PrivateCMYKCompositeConnectionSpaceDelegate::InjectIndexedImage(
    IRasterComponent& raster, float x, float y, float width, float height,
    COLOR::IIndexedConnectionColorSpace* indexed) {
    if (indexed == nullptr) {
        LogError(kModule) << "Indexed Raster didn't have indexed colorspace..";
        return;
    }
    TInterfacePtr<IConnectionColorSpace> target = mDestination;
    if (!target) {
        target = MakeDeviceCMYK();
    }
    if (target) {
        InjectIndexedRaster(raster, x, y, width, height, indexed, target.Get(),
                            BecomesImageMask(raster));
    }
}

void PrivateCMYKCompositeConnectionSpaceDelegate::WriteGreyscaleImage(IRasterComponent& raster,
                                                                      float x, float y, float width,
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

void PrivateCMYKCompositeConnectionSpaceDelegate::InjectRGBImage(IRasterComponent& /*raster*/,
                                                                 float /*x*/, float /*y*/,
                                                                 float /*width*/,
                                                                 float /*height*/) {
    LogError(kModule) << "Unimplemented.";
}

void PrivateCMYKCompositeConnectionSpaceDelegate::InjectCMYKImage(IRasterComponent& raster, float x,
                                                                  float y, float width,
                                                                  float height) {
    InjectCMYK(raster, x, y, width, height);
}

}  // namespace VANTIX::RENDERING
