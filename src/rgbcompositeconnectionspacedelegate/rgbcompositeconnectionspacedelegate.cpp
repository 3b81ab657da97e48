// SPDX-License-Identifier: MIT
#include "rgbcompositeconnectionspacedelegate/rgbcompositeconnectionspacedelegate.h"

#include <algorithm>

#include "baseconnectionspacedelegate/samples.h"
#include "baseconnectionspacedelegate/spacekinds.h"
#include "core/graphics/pluginhelper/colorhelpers.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptdatastream/formattext.h"

namespace VANTIX::RENDERING {

namespace {

using COLOR::IConnectionColorSpace;
using GRAPHICS::IRasterComponent;
using GRAPHICS::HELPER::GetOwnFamily;

constexpr const char* kModule = "src/rgbcompositeconnectionspacedelegate";

void WriteNeutral(const std::uint8_t* color, char* digits, std::size_t size) {
    const std::uint32_t gray = GrayOf<std::uint8_t>(color[0], color[1], color[2]);
    PS::FormatText(digits, size, "%02X%02X%02X", gray, gray, gray);
}

constexpr ProcessModel kModel{"rgb "_cc,
                              kModule,
                              "/DeviceRGB",
                              "[0 1 0 1 0 1]",
                              &COLOR::IConnectionColorSpaceFactory::CreateDeviceRGBColorSpace,
                              nullptr,
                              WriteNeutral};

}  // namespace

RGBCompositeConnectionSpaceDelegate::RGBCompositeConnectionSpaceDelegate(
    IClassFactory& factory, IConnectionColorSpace* destination, std::uint32_t options)
    : ProcessConnectionSpaceDelegate(factory, destination, options, kModel) {}

bool RGBCompositeConnectionSpaceDelegate::SetColor(const float* values, std::int32_t count,
                                                   bool fill) {
    PS::IPostScriptOutputContext* out = OutputContext();
    if (out == nullptr || values == nullptr || count <= 0) {
        return false;
    }
    IConnectionColorSpace* source = CurrentColorSpace(fill);
    if (source == nullptr && count > 1) {
        LogError(kModule) << "There is colorspace currently set for "
                          << (fill ? "non-stroking." : "stroking.");
        return false;
    }
    if (source == nullptr) {
        const float neutral[] = {values[0], values[0], values[0]};
        out->SetColor(neutral, 3);
        return true;
    }
    if (SetPlateSelection(source, values)) {
        return true;
    }
    const FourCC family = GetOwnFamily(source);
    const bool isKept =
        (family == "rgb "_cc && count == 3) || (family == "gray"_cc && count == 1 && !mPromoteGray);
    if (!isKept) {
        return SetColorWithConversion(source, mDestination.Get(), values, count);
    }
    out->SetColor(values, count);
    return true;
}

void RGBCompositeConnectionSpaceDelegate::InjectRaster(IRasterComponent& raster, float x, float y,
                                                       float width, float height) {
    const FourCC key = GetOwnFamily(raster.GetColorSpace());
    if (key == "gray"_cc && !mPromoteGray) {
        InjectGreyRasterAsGray(raster);
    } else if (AsProfileBased(raster.GetColorSpace()) != nullptr) {
        InjectDeviceSpaceImage(raster, x, y, width, height, key);
    } else {
        InjectConvertedRaster(raster);
    }
}

void RGBCompositeConnectionSpaceDelegate::InjectDeviceSpaceImage(IRasterComponent& raster,
                                                                 float /*x*/, float /*y*/,
                                                                 float /*width*/, float /*height*/,
                                                                 FourCC deviceKey) {
    if (deviceKey == "rgb "_cc && raster.GetPrimaryCount() == 3) {
        WriteRGBRaster(raster);
    } else if (deviceKey == "gray"_cc && AsDevice(raster.GetColorSpace()) != nullptr) {
        WriteGreyRaster(raster);
    } else {
        WriteForeignRaster(raster, deviceKey);
    }
}

void RGBCompositeConnectionSpaceDelegate::WriteRGBRaster(IRasterComponent& raster) {
    const std::int32_t depth = raster.GetBitsPerSample();
    if (HasPrimaries(raster, 3, "Problem populating channel data.") && HasImageData(raster, 3) &&
        BeginImage(raster, depth == 16 ? 12 : 8, kModel.space, kModel.decode)) {
        WriteImageData(raster, 3, depth, raster.GetWidth());
    }
}

void RGBCompositeConnectionSpaceDelegate::WriteForeignRaster(IRasterComponent& raster,
                                                             FourCC family) {
    const std::int32_t depth = raster.GetBitsPerSample();
    if (depth == 8 || depth == 16) {
        WriteConvertedRaster(
            raster, depth,
            {{"Could not create a buffer for RGBA values. ", " bytes required."},
             {"Could not create a buffer for pcs values. ", " bytes required."},
             {depth == 16 ? "Could not create a buffer for 12 bit rgb value "
                          : "Could not create a buffer for the intermediate RGB values. ",
              " bytes required."}});
    } else if (depth != 1) {
        LogError(kModule) << "Don't support a bit depth of " << depth;
    } else if (family != "gray"_cc) {
        LogError(kModule) << "Have a 1 bit image but the device space is not handled here.";
    } else if (HasImageData(raster, 1) &&
               BeginImage(raster, 1, "[/Indexed /DeviceRGB 1 <000000 FFFFFF>]", "[0 1]")) {
        WriteImageData(raster, 1, 1, raster.GetWidth());
    }
}

void RGBCompositeConnectionSpaceDelegate::InjectRasterAsDeviceRGBImage(IRasterComponent& raster,
                                                                       float /*x*/, float /*y*/,
                                                                       float /*width*/,
                                                                       float /*height*/) {
    if (!mDestination) {
        LogError(kModule) << "Output RGB Connection colorspace has not been setup.";
        return;
    }
    WriteConvertedRaster(raster, 8,
                         {{"Insufficient memory to create RGBA dst buffer of ", " bytes."},
                          {"Insufficient memory to create PCS of ", " bytes."},
                          {"Insufficient memory to create RGBA dst buffer of ", " bytes."}});
}

void RGBCompositeConnectionSpaceDelegate::Inject16BitRasterAsDeviceRGBImage(
    IRasterComponent& raster, float /*x*/, float /*y*/, float /*width*/, float /*height*/) {
    if (!mDestination) {
        LogError(kModule) << "Output RGB Connection colorspace has not been setup.";
        return;
    }
    WriteConvertedRaster(raster, 16,
                         {{"Could not create a buffer for the destination RGBA values. "},
                          {"Could not create a buffer for the destination PCS values. "},
                          {"Could not create a buffer for the intermediate 12 bit RGB values. "}});
}

void RGBCompositeConnectionSpaceDelegate::InjectConvertedRaster(IRasterComponent& raster) {
    if (raster.GetBitsPerSample() == 16) {
        Inject16BitRasterAsDeviceRGBImage(raster, 0, 0, 1, 1);
    } else {
        InjectRasterAsDeviceRGBImage(raster, 0, 0, 1, 1);
    }
}

void RGBCompositeConnectionSpaceDelegate::InjectCMYKImage(IRasterComponent& raster, float /*x*/,
                                                          float /*y*/, float /*width*/,
                                                          float /*height*/) {
    if (raster.GetColorSpace() == nullptr) {
        LogError(kModule) << "There is not IConnectionColorSpace attached to the raster component.";
        return;
    }
    constexpr BufferMessage kNoBuffer{"Could not allocate memory for rgba data.", nullptr};
    WriteConvertedRaster(raster, raster.GetBitsPerSample(),
                         {kNoBuffer, kNoBuffer, kNoBuffer, true});
}

void RGBCompositeConnectionSpaceDelegate::WriteGreyscaleImage(IRasterComponent& /*raster*/,
                                                              float /*x*/, float /*y*/,
                                                              float /*width*/, float /*height*/) {
    LogError(kModule) << "Unimplemented.";
}

ColorManagedRGBCompositeConnectionSpaceDelegate::ColorManagedRGBCompositeConnectionSpaceDelegate(
    IClassFactory& factory, IConnectionColorSpace* destination, std::uint32_t options)
    : RGBCompositeConnectionSpaceDelegate(factory, destination, options) {
    mColorManaged = true;
}

bool ColorManagedRGBCompositeConnectionSpaceDelegate::SetColor(const float* values,
                                                               std::int32_t count, bool fill) {
    return SetManagedColor(values, count, fill, kModule);
}

void ColorManagedRGBCompositeConnectionSpaceDelegate::InjectRaster(IRasterComponent& raster,
                                                                   float x, float y, float width,
                                                                   float height) {
    auto* profile = AsProfileBased(raster.GetColorSpace());
    if (profile == nullptr) {
        RGBCompositeConnectionSpaceDelegate::InjectRaster(raster, x, y, width, height);
        return;
    }
    const FourCC key = profile->GetFamily();
    if (key != "rgb "_cc) {
        RGBCompositeConnectionSpaceDelegate::InjectDeviceSpaceImage(raster, x, y, width, height,
                                                                    key);
        return;
    }
    const auto isOutput = IsOutputProfile(*profile, kModule);
    if (isOutput && *isOutput) {
        WriteRGBRaster(raster);
    } else if (isOutput) {
        InjectConvertedRaster(raster);
    }
}

void ColorManagedRGBCompositeConnectionSpaceDelegate::InjectDeviceSpaceImage(
    IRasterComponent& raster, float x, float y, float width, float height, FourCC deviceKey) {
    if (deviceKey == "gray"_cc || deviceKey == "cmyk"_cc) {
        RGBCompositeConnectionSpaceDelegate::InjectDeviceSpaceImage(raster, x, y, width, height,
                                                                    deviceKey);
    } else {
        InjectConvertedRaster(raster);
    }
}

}  // namespace VANTIX::RENDERING
