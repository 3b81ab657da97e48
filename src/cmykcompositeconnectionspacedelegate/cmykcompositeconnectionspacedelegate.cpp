// SPDX-License-Identifier: MIT
#include "cmykcompositeconnectionspacedelegate/cmykcompositeconnectionspacedelegate.h"

#include <string_view>

#include "baseconnectionspacedelegate/spacekinds.h"
#include "core/graphics/pluginhelper/colorhelpers.h"
#include "core/libsupport/vlogger/logmessage.h"

namespace VANTIX::RENDERING {

namespace {

using COLOR::IConnectionColorSpace;
using COLOR::IProfileBasedConnectionColorSpace;
using GRAPHICS::IRasterComponent;
using GRAPHICS::HELPER::GetOwnFamily;

constexpr const char* kModule = "src/cmykcompositeconnectionspacedelegate";

}  // namespace

ColorManagedCMYKCompositeConnectionSpaceDelegate::ColorManagedCMYKCompositeConnectionSpaceDelegate(
    IClassFactory& factory, IConnectionColorSpace* destination, std::uint32_t options)
    : PrivateCMYKCompositeConnectionSpaceDelegate(factory, destination, options) {
    mColorManaged = true;
}

void ColorManagedCMYKCompositeConnectionSpaceDelegate::FillWithColorSpace(
    IConnectionColorSpace* shading, ResourceId /*id*/, float /*x*/, float /*y*/, float /*width*/,
    float /*height*/, bool paint) {
    FillConverted(shading, paint);
}

bool ColorManagedCMYKCompositeConnectionSpaceDelegate::SetColor(const float* values,
                                                                std::int32_t count, bool fill) {
    IConnectionColorSpace* source = CurrentColorSpace(fill);
    if (source == nullptr) {
        LogError(kModule) << "There is No Source Connection Color Space.";
        return false;
    }
    if (values == nullptr || count <= 0) {
        return false;
    }
    if (SetPlateSelection(source, values)) {
        return true;
    }
    if (GetOwnFamily(source) != "gray"_cc || count != 1 || mPromoteGray) {
        return SetColorWithConversion(source, mDestination.Get(), values, count);
    }
    PS::IPostScriptOutputContext* out = OutputContext();
    if (out != nullptr) {
        out->SetColor(values, count);
    }
    return out != nullptr;
}

std::optional<bool> ColorManagedCMYKCompositeConnectionSpaceDelegate::IsOutputProfile(
    IProfileBasedConnectionColorSpace& profile) {
    if (!mDestination) {
        LogError(kModule) << "Output connection colorspace is not valid.";
        return std::nullopt;
    }
    if (FindInterface<IObject>(mDestination.Get(), COLOR::IID_IDEVICECOLORSPACE) == nullptr) {
        LogError(kModule) << "Output connection colorspace is not DeviceXXX color space.";
        return std::nullopt;
    }
    const auto* output = AsProfileBased(mDestination->GetProfileForm());
    const char* outputName = output == nullptr ? nullptr : output->GetProfileName();
    const char* name = profile.GetProfileName();
    return outputName != nullptr && name != nullptr &&
           std::string_view(outputName) == std::string_view(name);
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
        const auto isOutput = IsOutputProfile(*profile);
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
