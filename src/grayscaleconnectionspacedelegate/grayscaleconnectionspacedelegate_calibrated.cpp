// SPDX-License-Identifier: MIT
#include "baseconnectionspacedelegate/samples.h"
#include "baseconnectionspacedelegate/spacekinds.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "grayscaleconnectionspacedelegate/grayscaleconnectionspacedelegate.h"
#include "postscriptconnectionspace/colorspacetexts.h"

namespace VANTIX::RENDERING {

namespace {

constexpr const char* kModule = "src/grayscaleconnectionspacedelegate";

void LogMissingLine(std::int32_t line, std::size_t /*channel*/) {
    LogError(kModule) << "Line " << line << " is missing.";
}

/// Gray that is proportional to luminance (PostScript Language Reference, 4.8.3).
PS::TextBuffer LinearGray(const IConnectionColorSpace& space) {
    const auto [x, y, z] = PS::WhitePointOf(space);
    PS::TextBuffer text;
    text.Format(
        "[ /CIEBasedA\n<< /MatrixA [%.8g %.8g %.8g]\n"
        "/RangeLMN [0.0  %.8g  0.0  %.8g  0.0  %.8g]\n"
        "/WhitePoint [%.8g  %.8g  %.8g]\n>>\n]\n",
        x, y, z, x, y, z, x, y, z);
    return text;
}

}  // namespace

void CalibratedGrayConnectionSpaceDelegate::FillWithColorSpace(IConnectionColorSpace* shading,
                                                               ResourceId /*id*/, float /*x*/,
                                                               float /*y*/, float /*width*/,
                                                               float /*height*/, bool paint) {
    // Calibrated gray in shadings is a lightness to 100, not a luminance to 1.
    FillConverted(shading, mGrayColorSpace.Get(), paint);
}

bool CalibratedGrayConnectionSpaceDelegate::SetColor(const float* values, std::int32_t count,
                                                     bool fill) {
    const IConnectionColorSpace* source = InputSpace(fill);
    PS::IPostScriptOutputContext* out = OutputContext();
    if (source == nullptr) {
        return false;
    }
    const auto intents = RenderingIntents(TRenderingIntent::kPerceptual);
    const auto color = ToConnectionColor(*source, values, count, intents.first);
    if (out == nullptr || !color) {
        return false;
    }
    const auto [x, y, z] = PS::WhitePointOf(*source);
    out->SetCalibratedGrayColorSpace(x, y, z);
    const float luminance = y > 0 ? (*color)[1] / y : 0;
    out->SetColor(&luminance, 1);
    return true;
}

void CalibratedGrayConnectionSpaceDelegate::InjectRaster(Raster& raster, float /*x*/, float /*y*/,
                                                         float /*width*/, float /*height*/) {
    const auto* profile = AsProfileBased(raster.GetColorSpace());
    const FourCC kind = profile == nullptr ? FourCC{"XYZ "_cc} : profile->GetPCSKind();
    if (kind != "XYZ "_cc && kind != "Lab "_cc) {
        LogError(kModule) << "Unhandled profile connection space";
        return;
    }
    WriteLuminance(raster, 8, {"Insufficient memory to create a buffer of ", " bytes."});
}

// The host gives the connection colour as XYZ, whichever way a profile has it.
void CalibratedGrayConnectionSpaceDelegate::WriteLuminance(Raster& raster, std::int32_t depth,
                                                           const BufferMessage& message) {
    const IConnectionColorSpace* space = raster.GetColorSpace();
    const std::int32_t channels = raster.GetPrimaryCount();
    const std::int32_t bits = raster.GetBitsPerSample();
    if (space == nullptr || channels < 1 || channels != space->GetComponentCount() ||
        channels > COLOR::kMaxComponents ||
        !HasPrimaries(raster, channels, "No Primary channel data.") ||
        !HasImageData(raster, channels)) {
        return;
    }
    const std::int32_t width = raster.GetWidth();
    PS::WorkBuffer<float> pcs(3 * static_cast<std::size_t>(width));
    PS::WorkBuffer<std::uint8_t> bytes(bits < 8 ? static_cast<std::size_t>(width) : 0);
    GrayLine line(width, depth);
    if (pcs.Data() == nullptr || bytes.Data() == nullptr) {
        message.Log(kModule, pcs.Size() * sizeof(float));
        return;
    }
    if (!line.IsReady(kModule, message, message)) {
        return;
    }
    const auto intent = RenderingIntents(TRenderingIntent::kPerceptual).first;
    const auto fetch = ReaderOf(raster, channels, LogMissingLine);
    const auto read = [&](std::int32_t y, InterleavedLine::Planes& planes) {
        if (!fetch(y, planes)) {
            return false;
        }
        if (bits < 8) {
            UnpackToBytes(planes[0], bits, static_cast<std::size_t>(width), bytes.Data());
            planes[0] = bytes.Data();
        }
        const Status status =
            space->LineToPCS(planes.data(), width, bits < 8 ? 8 : bits, pcs.Data(), intent);
        if (status != STATUS::kOk) {
            LogError(kModule) << "Connection Color Space Conversion Failed. Error = " << status;
        }
        return status == STATUS::kOk;
    };
    const auto build = [&](const InterleavedLine::Planes& /*planes*/) {
        return line.OfLuminances(pcs.Data() + 1, 3);
    };
    const std::string colour(LinearGray(*space).View());
    WriteLines(raster, {depth == 16 ? 12 : 8, colour.c_str(), "[0 1]", line.Size(), read, build});
}

void CalibratedGrayConnectionSpaceDelegate::InjectDeviceSpaceImage(Raster& raster, float x, float y,
                                                                   float width, float height,
                                                                   FourCC deviceKey) {
    const std::int32_t depth = raster.GetBitsPerSample();
    if (deviceKey == "rgb "_cc) {
        InjectRGBImage(raster, x, y, width, height);
    } else if (deviceKey == "cmyk"_cc) {
        InjectCMYKImage(raster, x, y, width, height);
    } else if (depth == 16) {
        WriteGreyscaleImage(raster, x, y, width, height);
    } else if (HasImageData(raster, 1, LogMissingLine) &&
               BeginImage(raster, depth, "/DeviceGray", "[0 1]")) {
        WriteImageData(raster, 1, depth, raster.GetWidth(), LogMissingLine);
    }
}

void CalibratedGrayConnectionSpaceDelegate::WriteGreyscaleImage(Raster& raster, float /*x*/,
                                                                float /*y*/, float /*width*/,
                                                                float /*height*/) {
    const std::int32_t depth = raster.GetBitsPerSample();
    if (depth != 16) {
        LogError(kModule) << "The bit depth=" << depth << "has not been handled.";
        return;
    }
    if (raster.GetPrimaryCount() < 1 || raster.GetPrimary(0) == nullptr) {
        LogError(kModule) << "Raster has no channelDesc for channel 0.";
        return;
    }
    if (HasPrimaries(raster, 1, "Raster has no channel data for channel 0.")) {
        WriteLuminance(raster, 16, {"Could not create dstPCSTripletBuffer of ", " bytes."});
    }
}

void CalibratedGrayConnectionSpaceDelegate::InjectRGBImage(Raster& raster, float /*x*/, float /*y*/,
                                                           float /*width*/, float /*height*/) {
    WriteGrayOfPlanes(raster, 3,
                      {{"Insufficient mem for a grayLine.", nullptr},
                       {"Insufficient mem for a packedLine.", nullptr}});
}

void CalibratedGrayConnectionSpaceDelegate::InjectCMYKImage(Raster& raster, float /*x*/,
                                                            float /*y*/, float /*width*/,
                                                            float /*height*/) {
    const std::int32_t depth = raster.GetBitsPerSample();
    const auto colors = CreateObject<COLOR::IConnectionColorSpaceFactory>(
        mFactory, COLOR::IID_ICONNECTIONCOLORSPACEFACTORY);
    const auto rgb =
        colors ? TInterfacePtr<IConnectionColorSpace>::Adopt(colors->CreateDeviceRGBColorSpace())
               : nullptr;
    if (!rgb) {
        LogError(kModule) << "Could not create colour space.";
        return;
    }
    ConvertedLines lines(raster, *rgb, depth == 16 ? 16 : 8,
                         RenderingIntents(TRenderingIntent::kPerceptual), CompositesAlpha());
    GrayLine line(raster.GetWidth(), depth);
    if (!lines.IsReady(kModule, {"Could not create a redLine.", nullptr},
                       {"Could not allocate memory for rgba data.", nullptr}) ||
        !line.IsReady(kModule, {"Could not create a grayLine.", nullptr},
                      {"Could not make a packedLine.", nullptr})) {
        return;
    }
    const auto build = [&](const InterleavedLine::Planes& planes) { return line.OfRGB(planes); };
    WriteLines(raster, {depth == 16 ? 12 : 8, "/DeviceGray", "[0 1]", line.Size(),
                        ReaderOf(lines, true), build});
}

}  // namespace VANTIX::RENDERING
