// SPDX-License-Identifier: MIT
#include "rgbcompositeconnectionspacedelegate/rgbcompositeconnectionspacedelegate.h"

#include <algorithm>

#include "baseconnectionspacedelegate/samples.h"
#include "baseconnectionspacedelegate/spacekinds.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptdatastream/formattext.h"

namespace VANTIX::RENDERING {

namespace {

void WriteNeutral(const std::uint8_t* color, char* digits, std::size_t size) {
    const std::uint32_t gray = GrayOf<std::uint8_t>(color[0], color[1], color[2]);
    PS::FormatText(digits, size, "%02X%02X%02X", gray, gray, gray);
}

constexpr ProcessModel kModel{"rgb "_cc,
                              kRGBModule,
                              "/DeviceRGB",
                              "[0 1 0 1 0 1]",
                              &COLOR::IConnectionColorSpaceFactory::CreateDeviceRGBColorSpace,
                              "There is colorspace currently set for stroking.",
                              "There is colorspace currently set for non-stroking.",
                              nullptr,
                              WriteNeutral};

}  // namespace

RGBCompositeConnectionSpaceDelegate::RGBCompositeConnectionSpaceDelegate(
    IClassFactory& factory, IConnectionColorSpace* destination, std::uint32_t options)
    : ProcessConnectionSpaceDelegate(factory, destination, options, kModel) {}

std::optional<ColorValues> RGBCompositeConnectionSpaceDelegate::KeptColor(
    IConnectionColorSpace* source, const float* values, std::int32_t count) const {
    if (source == nullptr) {
        return ColorValues{{values[0], values[0], values[0]}, 3};
    }
    const FourCC family = GetOwnFamily(source);
    if (family == "rgb "_cc && count == 3) {
        return ColorValues{{values[0], values[1], values[2]}, 3};
    }
    if (family == "gray"_cc && count == 1 && !mPromoteGray) {
        return ColorValues{{values[0]}, 1};
    }
    return std::nullopt;
}

void RGBCompositeConnectionSpaceDelegate::InjectRaster(Raster& raster, float x, float y,
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

void RGBCompositeConnectionSpaceDelegate::InjectDeviceSpaceImage(Raster& raster, float /*x*/,
                                                                 float /*y*/, float /*width*/,
                                                                 float /*height*/,
                                                                 FourCC deviceKey) {
    if (deviceKey == "rgb "_cc && raster.GetPrimaryCount() == 3) {
        WriteModelRaster(raster);
    } else if (deviceKey == "gray"_cc && AsDevice(raster.GetColorSpace()) != nullptr) {
        WriteGreyRaster(raster);
    } else {
        WriteForeignRaster(raster, deviceKey);
    }
}

void RGBCompositeConnectionSpaceDelegate::WriteModelRaster(Raster& raster) {
    const std::int32_t depth = raster.GetBitsPerSample();
    if (HasPrimaries(raster, 3, "Problem populating channel data.") && HasImageData(raster, 3) &&
        BeginImage(raster, depth == 16 ? 12 : 8, kModel.space, kModel.decode)) {
        WriteImageData(raster, 3, depth, raster.GetWidth());
    }
}

void RGBCompositeConnectionSpaceDelegate::WriteForeignRaster(Raster& raster, FourCC family) {
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
        LogError(kRGBModule) << "Don't support a bit depth of " << depth;
    } else if (family != "gray"_cc) {
        LogError(kRGBModule) << "Have a 1 bit image but the device space is not handled here.";
    } else if (HasImageData(raster, 1) &&
               BeginImage(raster, 1, "[/Indexed /DeviceRGB 1 <000000 FFFFFF>]", "[0 1]")) {
        WriteImageData(raster, 1, 1, raster.GetWidth());
    }
}

void RGBCompositeConnectionSpaceDelegate::InjectRasterAsDeviceRGBImage(Raster& raster, float /*x*/,
                                                                       float /*y*/, float /*width*/,
                                                                       float /*height*/) {
    if (!mDestination) {
        LogError(kRGBModule) << "Output RGB Connection colorspace has not been setup.";
        return;
    }
    WriteConvertedRaster(raster, 8,
                         {{"Insufficient memory to create RGBA dst buffer of ", " bytes."},
                          {"Insufficient memory to create PCS of ", " bytes."},
                          {"Insufficient memory to create RGBA dst buffer of ", " bytes."}});
}

void RGBCompositeConnectionSpaceDelegate::Inject16BitRasterAsDeviceRGBImage(
    Raster& raster, float /*x*/, float /*y*/, float /*width*/, float /*height*/) {
    if (!mDestination) {
        LogError(kRGBModule) << "Output RGB Connection colorspace has not been setup.";
        return;
    }
    WriteConvertedRaster(raster, 16,
                         {{"Could not create a buffer for the destination RGBA values. "},
                          {"Could not create a buffer for the destination PCS values. "},
                          {"Could not create a buffer for the intermediate 12 bit RGB values. "}});
}

void RGBCompositeConnectionSpaceDelegate::InjectConvertedRaster(Raster& raster) {
    if (raster.GetBitsPerSample() == 16) {
        Inject16BitRasterAsDeviceRGBImage(raster, 0, 0, 1, 1);
    } else {
        InjectRasterAsDeviceRGBImage(raster, 0, 0, 1, 1);
    }
}

void RGBCompositeConnectionSpaceDelegate::InjectCMYKImage(Raster& raster, float /*x*/, float /*y*/,
                                                          float /*width*/, float /*height*/) {
    if (raster.GetColorSpace() == nullptr) {
        LogError(kRGBModule)
            << "There is not IConnectionColorSpace attached to the raster component.";
        return;
    }
    constexpr BufferMessage kNoBuffer{"Could not allocate memory for rgba data.", nullptr};
    WriteConvertedRaster(raster, raster.GetBitsPerSample(),
                         {kNoBuffer, kNoBuffer, kNoBuffer, true});
}

void RGBCompositeConnectionSpaceDelegate::WriteGreyscaleImage(Raster& /*raster*/, float /*x*/,
                                                              float /*y*/, float /*width*/,
                                                              float /*height*/) {
    LogError(kRGBModule) << "Unimplemented.";
}

void RGBCompositeConnectionSpaceDelegate::InjectForeignProfile(
    Raster& raster, COLOR::IProfileBasedConnectionColorSpace& profile, float x, float y,
    float width, float height) {
    RGBCompositeConnectionSpaceDelegate::InjectDeviceSpaceImage(raster, x, y, width, height,
                                                                profile.GetFamily());
}

}  // namespace VANTIX::RENDERING
