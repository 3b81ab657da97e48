// SPDX-License-Identifier: MIT
#include "cmykcompositeconnectionspacedelegate/cmykcompositeconnectionspacedelegate.h"

#include "baseconnectionspacedelegate/spacekinds.h"

namespace VANTIX::RENDERING {

namespace {

using COLOR::IConnectionColorSpace;
using GRAPHICS::IRasterComponent;

constexpr const char* kModule = "src/cmykcompositeconnectionspacedelegate";

}  // namespace

ColorManagedCMYKCompositeConnectionSpaceDelegate::ColorManagedCMYKCompositeConnectionSpaceDelegate(
    IClassFactory& factory, IConnectionColorSpace* destination, std::uint32_t options)
    : PrivateCMYKCompositeConnectionSpaceDelegate(factory, destination, options) {
    mColorManaged = true;
}

bool ColorManagedCMYKCompositeConnectionSpaceDelegate::SetColor(const float* values,
                                                                std::int32_t count, bool fill) {
    return SetManagedColor(values, count, fill, kModule);
}

void ColorManagedCMYKCompositeConnectionSpaceDelegate::InjectRaster(IRasterComponent& raster,
                                                                    float x, float y, float width,
                                                                    float height) {
    auto* profile = AsProfileBased(raster.GetColorSpace());
    if (profile == nullptr) {
        InjectByFamily(raster, x, y, width, height);
        return;
    }
    const FourCC key = profile->GetFamily();
    if (key == "gray"_cc) {
        InjectProfileBasedGreyRaster(raster, profile, x, y, width, height);
    } else if (key == "cmyk"_cc) {
        const auto isOutput = IsOutputProfile(*profile, kModule);
        if (isOutput && *isOutput) {
            WriteCMYKRaster(raster);
        } else if (isOutput) {
            InjectConvertedRaster(raster);
        }
    } else {
        PrivateCMYKCompositeConnectionSpaceDelegate::InjectDeviceSpaceImage(raster, x, y, width,
                                                                            height, key);
    }
}

void ColorManagedCMYKCompositeConnectionSpaceDelegate::InjectDeviceSpaceImage(
    IRasterComponent& raster, float x, float y, float width, float height, FourCC deviceKey) {
    if (deviceKey == "gray"_cc || deviceKey == "rgb "_cc) {
        PrivateCMYKCompositeConnectionSpaceDelegate::InjectDeviceSpaceImage(raster, x, y, width,
                                                                            height, deviceKey);
    } else {
        InjectConvertedRaster(raster);
    }
}

}  // namespace VANTIX::RENDERING
