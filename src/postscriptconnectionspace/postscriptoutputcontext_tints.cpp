// SPDX-License-Identifier: MIT
#include <algorithm>

#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptconnectionspace/colorspacetexts.h"
#include "postscriptconnectionspace/postscriptoutputcontext.h"
#include "postscriptconnectionspace/tinttransform.h"

namespace VANTIX::PS {

namespace {

/// Components of a device family.
std::int32_t ComponentsOf(FourCC family) {
    return family == "gray"_cc ? 1 : (family == "cmyk"_cc ? 4 : 3);
}

void AppendDeviceAlternate(TextBuffer& text, FourCC family, const TintTransform& tint,
                           const std::string& resource) {
    const char* name = DeviceSpaceName(family);
    if (name == nullptr) {
        LogError("src/postscriptconnectionspace") << "Unhandled ColorSpace.";
        return;
    }
    text.Append(resource.empty() ? name : resource);
    tint.AppendTo(text, ComponentsOf(family));
}

void AppendLabAlternate(TextBuffer& text, const WhitePoint& white, const TintTransform& tint) {
    text.Append("\n");
    AppendLab(text, white, "\n");
    tint.AppendTo(text, 3);
}

void AppendCalibratedAlternate(TextBuffer& text,
                               const COLOR::ICalibratedConnectionColorSpace& alternate,
                               const TintTransform& tint) {
    const WhitePoint white = WhitePointOf(alternate);
    switch (alternate.GetFamily()) {
        case "cgry"_cc:
            AppendCalibratedGray(text, white);
            text.Append("% TintTransformation Proc\n");
            tint.AppendTo(text, 1);
            return;
        case "clab"_cc:
            AppendLabAlternate(text, white, tint);
            return;
        case "crgb"_cc:
            AppendStandardRGB(text, white);
            text.Append("% TintTransformation Proc\n");
            tint.AppendTo(text, 3);
            return;
        case "cmyk"_cc:
            LogError("src/postscriptconnectionspace")
                << "Write the alternative color space as CIEBasedDEFG.";
            return;
        default:
            LogError("src/postscriptconnectionspace")
                << "Unhandled Device Key for Calibrated Connection Color Space.";
    }
}

void AppendRegistrationAlternate(TextBuffer& text, std::int32_t channels,
                                 const TintTransform& tint) {
    if (channels != 1 && channels != 3 && channels != 4) {
        LogError("src/postscriptconnectionspace") << "At the moment we only handle Registration "
                                                     "colorspace with 1, 3, and 4 channels only.";
        return;
    }
    text.Append("\n");
    text.Append(channels == 1 ? "/DeviceGray" : (channels == 3 ? "/DeviceRGB" : "/DeviceCMYK"));
    text.Append("\n");
    tint.AppendTo(text, channels);
}

}  // namespace

std::int32_t PostScriptOutputContext::WriteAlternativeColorSpaceAndTintTransformProcToBuffer(
    COLOR::IConnectionColorSpace* alternate, COLOR::IColorFunction* tint, char* buffer,
    std::int32_t size, bool colourManaged) {
    TextBuffer text;
    AppendAlternateAndTint(text, alternate, tint, colourManaged);
    return text.CopyTo(buffer, size);
}

void PostScriptOutputContext::AppendAlternateAndTint(TextBuffer& text,
                                                     COLOR::IConnectionColorSpace* alternate,
                                                     COLOR::IColorFunction* function,
                                                     bool colourManaged) {
    if (alternate == nullptr) {
        LogError("src/postscriptconnectionspace") << "Alternate colour space is missing here.";
        return;
    }
    const TintTransform tint(*alternate, function);
    const auto* device =
        FindInterface<COLOR::IDeviceConnectionColorSpace>(alternate, COLOR::IID_IDEVICECOLORSPACE);
    auto* profile = FindInterface<COLOR::IProfileBasedConnectionColorSpace>(
        alternate, COLOR::IID_IPROFILEBASEDCOLORSPACE);
    const bool hasResource = colourManaged && (device != nullptr || profile != nullptr);
    const std::string resource = hasResource ? ProfileResourceName(*alternate) : std::string();
    if (device != nullptr) {
        AppendDeviceAlternate(text, device->GetFamily(), tint, resource);
    } else if (profile != nullptr) {
        AppendProfileAlternate(text, *profile, tint, resource);
    } else if (const auto* calibrated = FindInterface<COLOR::ICalibratedConnectionColorSpace>(
                   alternate, COLOR::IID_ICALIBRATEDCOLORSPACE)) {
        AppendCalibratedAlternate(text, *calibrated, tint);
    } else if (FindInterface<COLOR::IRegistrationConnectionColorSpace>(
                   alternate, COLOR::IID_IREGISTRATIONCOLORSPACE) != nullptr) {
        AppendRegistrationAlternate(text, alternate->GetComponentCount(), tint);
    } else {
        LogError("src/postscriptconnectionspace")
            << "At the moment we only handle Device colorspaces as alternate for separation "
               "colours.";
    }
}

void PostScriptOutputContext::AppendProfileAlternate(
    TextBuffer& text, COLOR::IProfileBasedConnectionColorSpace& alternate,
    const TintTransform& tint, const std::string& resource) {
    const FourCC family = alternate.GetFamily();
    const WhitePoint white = WhitePointOf(alternate);
    if (family != "clab"_cc && DeviceSpaceName(family) == nullptr) {
        LogError("src/postscriptconnectionspace") << "Unhandled Device Key.";
    } else if (!resource.empty()) {
        text.Append(resource);
        tint.AppendTo(text, ComponentsOf(family));
    } else if (family == "clab"_cc) {
        AppendLabAlternate(text, white, tint);
    } else if (family == "gray"_cc) {
        AppendGammaGray(text, white);
        tint.AppendTo(text, 1);
    } else if (family == "rgb "_cc) {
        AppendStandardRGB(text, white);
        tint.AppendTo(text, 3);
    } else if (tint.converted) {
        text.Append("/DeviceCMYK");
        tint.AppendTo(text, 4);
    } else {
        text.Append("/DeviceRGB");
        ToRGB(alternate, tint).AppendTo(text, 3);
    }
}

TintTransform PostScriptOutputContext::ToRGB(const COLOR::IConnectionColorSpace& cmyk,
                                             const TintTransform& tint) const {
    TintTransform converted = tint;
    const auto [c, m, y, k] = tint.full;
    // What remains when no conversion is to be had (PostScript Language Reference, 7.2.4).
    converted.full = {1 - std::min(1.0F, c + k), 1 - std::min(1.0F, m + k),
                      1 - std::min(1.0F, y + k), 0};
    const auto factory = CreateColorFactory();
    const auto rgb = TInterfacePtr<COLOR::IConnectionColorSpace>::Adopt(
        factory == nullptr ? nullptr : factory->CreateDeviceRGBColorSpace());
    // The host keeps CMYK as complements.
    const float values[4] = {1 - c, 1 - m, 1 - y, 1 - k};
    float pcs[3];
    float components[3];
    if (rgb != nullptr && cmyk.ToPCS(values, pcs, FirstIntent()) &&
        rgb->FromPCS(pcs, components, SecondIntent())) {
        std::copy_n(components, 3, converted.full.begin());
    }
    return converted;
}

}  // namespace VANTIX::PS
