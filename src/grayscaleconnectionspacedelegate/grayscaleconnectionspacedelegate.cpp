// SPDX-License-Identifier: MIT
#include "grayscaleconnectionspacedelegate/grayscaleconnectionspacedelegate.h"

#include "baseconnectionspacedelegate/spacekinds.h"
#include "core/libsupport/vlogger/logmessage.h"

namespace VANTIX::RENDERING {

namespace {

constexpr const char* kModule = "src/grayscaleconnectionspacedelegate";
constexpr const char* kNoData = "Could not find a necessary channel data.";

constexpr ProcessModel kModel{"gray"_cc,
                              kModule,
                              "/DeviceGray",
                              "[0 1]",
                              &COLOR::IConnectionColorSpaceFactory::CreateDeviceGrayColorSpace,
                              "There is stroke ConnectionColorSpace currently set.",
                              "There is fill ConnectionColorSpace currently set."};

void LogMissingLine(std::int32_t line, std::size_t /*channel*/) {
    LogError(kModule) << "Could not get line " << line
                      << " when writing out the grayscale to PostScript. The image is going to be "
                         "broken.";
}

}  // namespace

BaseGreyConnectionSpaceDelegate::BaseGreyConnectionSpaceDelegate(IClassFactory& factory,
                                                                 IConnectionColorSpace* destination,
                                                                 std::uint32_t options)
    : ProcessConnectionSpaceDelegate(factory, destination, options, kModel) {}

void BaseGreyConnectionSpaceDelegate::Init(bool setDefaultColour) {
    ProcessConnectionSpaceDelegate::Init(setDefaultColour);
    mGrayColorSpace = MakeDeviceSpace();
}

void BaseGreyConnectionSpaceDelegate::InjectIndexedImage(
    Raster& raster, float x, float y, float width, float height,
    COLOR::IIndexedConnectionColorSpace* indexed) {
    if (mGrayColorSpace) {
        InjectIndexedRaster(raster, x, y, width, height, indexed, mGrayColorSpace.Get(),
                            BecomesImageMask(raster));
    }
}

IConnectionColorSpace* BaseGreyConnectionSpaceDelegate::InputSpace(bool fill) const {
    IConnectionColorSpace* source = CurrentColorSpace(fill);
    if (source == nullptr) {
        LogError(kModule) << "There is No Input ConnectionColorSace.";
    }
    return source;
}

std::optional<ColorValues> BaseGreyConnectionSpaceDelegate::KeptColor(IConnectionColorSpace* source,
                                                                      const float* values,
                                                                      std::int32_t count) const {
    const bool isGray = source == nullptr || GetOwnFamily(source) == "gray"_cc;
    return isGray && count == 1 ? std::optional(ColorValues{{values[0]}, 1}) : std::nullopt;
}

bool BaseGreyConnectionSpaceDelegate::IsGrayDepth(std::int32_t depth) {
    if (depth > 16) {
        LogError(kModule) << "Do not support depths > 16";
    } else if (depth < 8) {
        LogError(kModule) << "A depth of " << depth << " must be written as a LUT.";
    }
    return depth >= 8 && depth <= 16;
}

void BaseGreyConnectionSpaceDelegate::WriteGrayOfPlanes(Raster& raster, std::int32_t channels,
                                                        const GrayMessages& messages) {
    const std::int32_t depth = raster.GetBitsPerSample();
    if (!HasPrimaries(raster, channels, kNoData) || !IsGrayDepth(depth)) {
        return;
    }
    GrayLine line(raster.GetWidth(), depth);
    if (!line.IsReady(kModule, messages.gray, messages.packed)) {
        return;
    }
    const auto build = [&](const InterleavedLine::Planes& planes) {
        return channels == 4 ? line.OfCMYK(planes) : line.OfRGB(planes);
    };
    WriteLines(raster, {depth == 16 ? 12 : 8, kModel.space, kModel.decode, line.Size(),
                        ReaderOf(raster, channels, LogMissingLine), build});
}

void DeviceGrayConnectionSpaceDelegate::InjectRaster(Raster& raster, float x, float y, float width,
                                                     float height) {
    const auto* profile = AsProfileBased(raster.GetColorSpace());
    if (profile != nullptr && profile->GetFamily() == "gray"_cc) {
        InjectDeviceSpaceImage(raster, x, y, width, height, "gray"_cc);
    } else {
        InjectRasterAsDeviceGrayImage(raster, x, y, width, height);
    }
}

void DeviceGrayConnectionSpaceDelegate::InjectDeviceSpaceImage(Raster& raster, float x, float y,
                                                               float width, float height,
                                                               FourCC deviceKey) {
    if (deviceKey == "gray"_cc) {
        WriteGreyscaleImage(raster, x, y, width, height);
    } else {
        InjectRasterAsDeviceGrayImage(raster, x, y, width, height);
    }
}

void DeviceGrayConnectionSpaceDelegate::WriteGreyscaleImage(Raster& raster, float /*x*/,
                                                            float /*y*/, float /*width*/,
                                                            float /*height*/) {
    const std::int32_t depth = raster.GetBitsPerSample();
    if (HasPrimaries(raster, 1, kNoData) && IsGrayDepth(depth) &&
        BeginImage(raster, depth == 16 ? 12 : 8, kModel.space, kModel.decode)) {
        WriteImageData(raster, 1, depth, raster.GetWidth());
    }
}

void DeviceGrayConnectionSpaceDelegate::InjectRGBImage(Raster& raster, float /*x*/, float /*y*/,
                                                       float /*width*/, float /*height*/) {
    WriteGrayOfPlanes(raster, 3,
                      {{"Insufficient memory for a grayLine.", nullptr},
                       {"Insufficient memory for a packedLine.", nullptr}});
}

void DeviceGrayConnectionSpaceDelegate::InjectCMYKImage(Raster& raster, float /*x*/, float /*y*/,
                                                        float /*width*/, float /*height*/) {
    WriteGrayOfPlanes(raster, 4,
                      {{"Insufficient memory for a grayLine.", nullptr},
                       {"Insufficient memory for a packedLine.", nullptr}});
}

void DeviceGrayConnectionSpaceDelegate::InjectRasterAsDeviceGrayImage(Raster& raster, float /*x*/,
                                                                      float /*y*/, float /*width*/,
                                                                      float /*height*/) {
    const std::int32_t depth = raster.GetBitsPerSample();
    WriteConvertedRaster(raster, depth,
                         {{"Insufficient memory to create rgba dst buffer of ", " bytes."},
                          {"Insufficient memory to create PCS of ", " bytes."},
                          {depth == 16 ? "Insufficient memory to create 12 bit Gray of "
                                       : "Insufficient memory to create Gray of ",
                           " bytes."}});
}

ColorManagedDeviceGrayConnectionSpaceDelegate::ColorManagedDeviceGrayConnectionSpaceDelegate(
    IClassFactory& factory, IConnectionColorSpace* destination, std::uint32_t options)
    : DeviceGrayConnectionSpaceDelegate(factory, destination, options) {
    mColorManaged = true;
}

bool ColorManagedDeviceGrayConnectionSpaceDelegate::SetColorSpace(IConnectionColorSpace* space,
                                                                  bool /*fill*/) {
    SetRegistrationSpace(AsSeparation(space));
    return true;
}

bool ColorManagedDeviceGrayConnectionSpaceDelegate::SetUncoloredPattern(
    const char* patternName, IConnectionColorSpace* underlying, bool fill) {
    PS::IPostScriptOutputContext* out = OutputContext();
    if (out == nullptr) {
        return false;
    }
    // A pattern lies over the space that is current.
    out->SetDeviceColorSpace("gray"_cc);
    return BaseConnectionSpaceDelegate::SetUncoloredPattern(patternName, underlying, fill);
}

bool ColorManagedDeviceGrayConnectionSpaceDelegate::SetColor(const float* values,
                                                             std::int32_t count, bool fill) {
    IConnectionColorSpace* source = InputSpace(fill);
    PS::IPostScriptOutputContext* out = OutputContext();
    if (source == nullptr) {
        return false;
    }
    if (!mDestination) {
        LogError(kModule) << "There is No Output ConnectionColorSace.";
        return false;
    }
    if (out == nullptr || values == nullptr || count <= 0) {
        return false;
    }
    // None must leave what is below it, which no gray does.
    if (SetNoneColorSpace(AsSeparation(source))) {
        return true;
    }
    const auto gray =
        ConvertByHost(*source, *mDestination, values, count,
                      RenderingIntents(COLOR::TRenderingIntent::kAbsoluteColorimetric));
    if (!gray) {
        return false;
    }
    out->SetDeviceColorSpace("gray"_cc);
    out->SetColor(gray->values, 1);
    return true;
}

void ColorManagedDeviceGrayConnectionSpaceDelegate::InjectRaster(Raster& raster, float x, float y,
                                                                 float width, float height) {
    auto* profile = AsProfileBased(raster.GetColorSpace());
    if (profile == nullptr || profile->GetFamily() != "gray"_cc) {
        InjectRasterAsDeviceGrayImage(raster, x, y, width, height);
        return;
    }
    const auto isOutput = IsOutputProfile(*profile, kModule);
    if (isOutput && *isOutput) {
        WriteGreyscaleImage(raster, x, y, width, height);
    } else if (isOutput) {
        InjectRasterAsDeviceGrayImage(raster, x, y, width, height);
    }
}

void ColorManagedDeviceGrayConnectionSpaceDelegate::InjectDeviceSpaceImage(Raster& raster, float x,
                                                                           float y, float width,
                                                                           float height,
                                                                           FourCC /*deviceKey*/) {
    InjectRasterAsDeviceGrayImage(raster, x, y, width, height);
}

void Grayscale100ConnectionSpaceDelegate::Image(Raster& /*raster*/, float /*x*/, float /*y*/,
                                                float /*width*/, float /*height*/) {
    LogError(kModule) << "unimplemented";
}

}  // namespace VANTIX::RENDERING
