// SPDX-License-Identifier: MIT
#include <algorithm>
#include <utility>

#include "baseconnectionspacedelegate/processconnectionspacedelegate.h"
#include "baseconnectionspacedelegate/samples.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptdatastream/formattext.h"

namespace VANTIX::RENDERING {

namespace {

constexpr const char* kDeviceGray = "/DeviceGray";

}  // namespace

bool ProcessConnectionSpaceDelegate::BeginImage(const Raster& raster, std::int32_t bits,
                                                const std::string& colour, const char* decode) {
    PS::IPostScriptOutputContext* out = OutputContext();
    if (out != nullptr) {
        out->WriteImageDictionary(raster.GetWidth(), raster.GetHeight(), bits, colour.data(),
                                  static_cast<std::int32_t>(colour.size()), decode, false);
    }
    return out != nullptr;
}

void ProcessConnectionSpaceDelegate::WriteLines(const Raster& raster, const LineImage& image) {
    PS::IPostScriptOutputContext* out = OutputContext();
    InterleavedLine::Planes planes{};
    std::int32_t y = 0;
    for (; out != nullptr && y < raster.GetHeight() && image.read(y, planes); ++y) {
        if (y == 0) {
            BeginImage(raster, image.bits, image.space, image.decode);
        }
        out->WriteStreamData(image.build(planes), static_cast<std::int32_t>(image.lineBytes));
    }
    if (y > 0) {
        out->FlushStreamData();
    }
}

void ProcessConnectionSpaceDelegate::InjectGreyRasterAsGray(Raster& raster) {
    const std::int32_t depth = raster.GetBitsPerSample();
    if (GetOwnFamily(raster.GetColorSpace()) == "gray"_cc && HasImageData(raster, 1) &&
        BeginImage(raster, depth == 16 ? 12 : depth, kDeviceGray, "[0 1]")) {
        WriteImageData(raster, 1, depth, raster.GetWidth());
    }
}

void ProcessConnectionSpaceDelegate::WriteGreyRaster(Raster& raster) {
    const auto logMissing = [this](std::int32_t line, std::size_t /*channel*/) {
        LogError(mModel.module) << "Line " << line << " is missing.";
    };
    if (!HasImageData(raster, 1, logMissing)) {
        return;
    }
    const std::int32_t depth = raster.GetBitsPerSample();
    const std::int32_t bits = std::min(depth, 8);
    std::string colour = kDeviceGray;
    const char* decode = "[0 1]";
    char range[16];
    if (depth == 1 && mModel.bilevelSpace != nullptr) {
        colour = mModel.bilevelSpace;
    } else if (mPromoteGray) {
        colour = PromotedGrayPalette(bits);
        PS::FormatText(range, sizeof range, "[0 %i]", (1 << bits) - 1);
        decode = range;
    }
    if (colour.empty()) {
        return;
    }
    if (depth == 16) {
        WriteHighBytes(raster, colour, decode, logMissing);
    } else if (BeginImage(raster, bits, colour, decode)) {
        WriteImageData(raster, 1, depth, raster.GetWidth(), logMissing);
    }
}

void ProcessConnectionSpaceDelegate::WriteHighBytes(const Raster& raster, const std::string& colour,
                                                    const char* decode,
                                                    const MissingPlaneLog& logMissing) {
    const auto width = static_cast<std::size_t>(raster.GetWidth());
    PS::WorkBuffer<std::uint8_t> bytes(width);
    if (bytes.Data() == nullptr) {
        return;
    }
    const auto takeHighBytes = [&](const InterleavedLine::Planes& planes) {
        for (std::size_t x = 0; x < width; ++x) {
            bytes.Data()[x] = static_cast<std::uint8_t>(WordAt(planes[0], x) >> 8U);
        }
        return bytes.Data();
    };
    WriteLines(raster,
               {8, colour.c_str(), decode, width, ReaderOf(raster, 1, logMissing), takeHighBytes});
}

std::string ProcessConnectionSpaceDelegate::PromotedGrayPalette(std::int32_t depth) {
    const auto colors = CreateObject<COLOR::IConnectionColorSpaceFactory>(
        mFactory, COLOR::IID_ICONNECTIONCOLORSPACEFACTORY);
    const auto gray =
        colors ? TInterfacePtr<IConnectionColorSpace>::Adopt(colors->CreateDeviceGrayColorSpace())
               : nullptr;
    if (!gray || !mDestination || GetOwnFamily(mDestination.Get()) != mModel.family) {
        LogError(mModel.module) << "Could not create colour space.";
        return {};
    }
    const std::int32_t entries = 1 << depth;
    char text[64];
    PS::FormatText(text, sizeof text, "[/Indexed %s %d <\n", mModel.space, entries - 1);
    std::string palette = text;
    float level = 0;
    for (std::int32_t i = 0; i < entries; ++i, level += 1.0F / static_cast<float>(entries - 1)) {
        const auto color = ConvertByHost(*gray, *mDestination, &level, 1,
                                         RenderingIntents(TRenderingIntent::kPerceptual));
        if (!color) {
            return {};
        }
        std::uint8_t bytes[4];
        std::transform(color->values, color->values + 4, bytes, [](float value) {
            return static_cast<std::uint8_t>(std::clamp(value, 0.0F, 1.0F) * 255.0F);
        });
        mModel.writeNeutral(bytes, text, sizeof text);
        palette.append(text).append(1, i % 16 == 0 ? '\n' : ' ');
    }
    return palette + ">] ";
}

void ProcessConnectionSpaceDelegate::WriteConvertedRaster(Raster& raster, std::int32_t bits,
                                                          const ConversionMessages& messages) {
    if (OutputContext() == nullptr || !mDestination) {
        return;
    }
    const std::int32_t depth = bits == 16 ? 16 : 8;
    ConvertedLines lines(raster, *mDestination, depth,
                         RenderingIntents(TRenderingIntent::kPerceptual), CompositesAlpha());
    InterleavedLine pixels(static_cast<std::size_t>(mDestination->GetComponentCount()),
                           raster.GetWidth(), depth, mSwizzle.Get());
    if (!lines.IsReady(mModel.module, messages.planes, messages.pcs)) {
        return;
    }
    if (!pixels.HasMemory()) {
        messages.line.Log(mModel.module, pixels.Size());
        return;
    }
    const auto build = [&](const InterleavedLine::Planes& planes) {
        return pixels.Build(planes, 0);
    };
    WriteLines(raster, {depth == 16 ? 12 : 8, mModel.space, mModel.decode, pixels.Size(),
                        ReaderOf(lines, messages.tellsStatus), build});
}

}  // namespace VANTIX::RENDERING
