// SPDX-License-Identifier: MIT
#include "baseconnectionspacedelegate/spacekinds.h"
#include "core/graphics/pluginhelper/colorhelpers.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "privatecmykcompositeconnectionspacedelegate/privatecmykcompositeconnectionspacedelegate.h"

namespace VANTIX::RENDERING {

namespace {

using COLOR::IConnectionColorSpace;
using GRAPHICS::HELPER::GetOwnFamily;

constexpr const char* kModule = "src/privatecmykcompositeconnectionspacedelegate";

}  // namespace

void PrivateCMYKCompositeConnectionSpaceDelegate::Init(bool setDefaultColour) {
    BaseConnectionSpaceDelegate::Init(setDefaultColour);
    if (!setDefaultColour) {
        return;
    }
    if (PS::IPostScriptOutputContext* out = OutputContext(); out != nullptr) {
        out->SetDefaultColour("cmyk"_cc, false);
    }
}

bool PrivateCMYKCompositeConnectionSpaceDelegate::SetColorSpace(IConnectionColorSpace* space,
                                                                bool /*fill*/) {
    const bool staysGray = GetOwnFamily(space) == "gray"_cc && !mPromoteGray;
    return SetDeviceColorSpaceByKey(space, staysGray ? "gray"_cc : "cmyk"_cc);
}

bool PrivateCMYKCompositeConnectionSpaceDelegate::SetUncoloredPattern(
    const char* patternName, IConnectionColorSpace* underlying, bool fill) {
    if (underlying == nullptr) {
        LogError(kModule) << "Underlying colorspace of pattern color space can't be NULL!!!";
        return false;
    }
    return mDestination &&
           BaseConnectionSpaceDelegate::SetUncoloredPattern(patternName, underlying, fill);
}

void PrivateCMYKCompositeConnectionSpaceDelegate::FillWithColorSpace(IConnectionColorSpace* shading,
                                                                     ResourceId /*id*/, float /*x*/,
                                                                     float /*y*/, float /*width*/,
                                                                     float /*height*/, bool paint) {
    if (shading == nullptr) {
        return;
    }
    if (const TypedShading typed = FindShading(shading); typed.shading != nullptr) {
        const auto* device = AsDevice(typed.shading->GetShadingSpace());
        const bool isKept = device != nullptr && device->GetFamily() == "cmyk"_cc;
        WriteShadingDictionary(typed, isKept ? nullptr : mDestination.Get(), paint, false);
    }
}

bool PrivateCMYKCompositeConnectionSpaceDelegate::SetPlateSelection(IConnectionColorSpace* space,
                                                                    const float* values) {
    auto* separation = AsSeparation(space);
    if (separation == nullptr ||
        (!SetRegistrationSpace(separation) && !SetNoneColorSpace(separation))) {
        return false;
    }
    OutputContext()->SetColor(values, 1);
    return true;
}

bool PrivateCMYKCompositeConnectionSpaceDelegate::SetColor(const float* values, std::int32_t count,
                                                           bool fill) {
    PS::IPostScriptOutputContext* out = OutputContext();
    if (out == nullptr || values == nullptr || count <= 0) {
        return false;
    }
    IConnectionColorSpace* source = CurrentColorSpace(fill);
    ColorValues color;
    color.count = 4;
    if (source == nullptr) {
        if (count > 1) {
            LogError(kModule) << "There is no current fill colorspace and the valueCount received "
                                 "is > 1 (expecting a default fill colorspace of /DeviceGray.";
            return false;
        }
        color.values[3] = 1 - values[0];
        out->SetColor(color.values, color.count);
        return true;
    }
    if (SetPlateSelection(source, values)) {
        return true;
    }
    const FourCC family = GetOwnFamily(source);
    if (family == "cmyk"_cc && count == 4) {
        std::copy_n(values, 4, color.values);
        color.Complement();
    } else if (family == "gray"_cc && count == 1 && !mPromoteGray) {
        color = {{values[0]}, 1};
    } else if (family == "gray"_cc && count == 1 && mDestination) {
        const auto inks = ConvertByHost(*source, *mDestination, values, count,
                                        RenderingIntents(COLOR::TRenderingIntent::kPerceptual));
        if (!inks || inks->count != 4) {
            return false;
        }
        const auto& v = inks->values;
        color.values[3] = 1 - (0.3F * v[0] + 0.59F * v[1] + 0.11F * v[2]) * v[3];
    } else {
        return SetColorWithConversion(source, mDestination.Get(), values, count);
    }
    out->SetColor(color.values, color.count);
    return true;
}

}  // namespace VANTIX::RENDERING
