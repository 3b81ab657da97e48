// SPDX-License-Identifier: MIT
#include "baseconnectionspacedelegate/palettes.h"

#include <algorithm>

#include "baseconnectionspacedelegate/profilepalette.h"
#include "baseconnectionspacedelegate/spacekinds.h"
#include "core/libsupport/vlogger/logmessage.h"

namespace VANTIX::RENDERING {

namespace {

constexpr const char* kModule = "src/baseconnectionspacedelegate";

std::int32_t DeviceNComponents(const COLOR::IDeviceNConnectionColorSpace& space) {
    if (space.GetColorantCount() > 0) {
        return space.GetColorantCount();
    }
    if (const COLOR::IInkCollection* inks = space.GetInkCollection()) {
        return inks->GetInkCount();
    }
    LogError(kModule) << "No ink names and no ink collection. Something is wrong.";
    return 0;
}

/// Components of an entry in host form; bytes of Lab are spread over its range.
void EntryValues(const std::uint8_t* entry, std::int32_t count, const float* labRange,
                 float* values) {
    for (std::int32_t i = 0; i < count; ++i) {
        values[i] = static_cast<float>(entry[i]) / 255.0F;
    }
    if (labRange != nullptr) {
        values[0] *= 100.0F;
        values[1] = labRange[0] + (labRange[1] - labRange[0]) * values[1];
        values[2] = labRange[2] + (labRange[3] - labRange[2]) * values[2];
    }
}

}  // namespace

std::int32_t ComponentsOfFamily(FourCC family) {
    return family == "cmyk"_cc ? 4 : (family == "rgb "_cc ? 3 : (family == "gray"_cc ? 1 : 0));
}

std::int32_t PaletteComponents(IConnectionColorSpace& base) {
    if (const FourCC family = GetOwnFamily(&base); family != 0) {
        const std::int32_t components = ComponentsOfFamily(family);
        if (components == 0) {
            LogError(kModule) << "Do not handle this device color type.";
        }
        return components;
    }
    if (FindInterface<IObject>(&base, COLOR::IID_ISEPARATIONCOLORSPACE) != nullptr) {
        return 1;
    }
    if (const auto* deviceN = AsDeviceN(&base)) {
        return DeviceNComponents(*deviceN);
    }
    const auto* calibrated = AsCalibrated(&base);
    if (calibrated == nullptr) {
        LogError(kModule) << "Don't support this colorspace in indexed LUTs yet.";
        return 0;
    }
    switch (calibrated->GetFamily()) {
        case "cgry"_cc:
            return 1;
        case "clab"_cc:
        case "crgb"_cc:
            return 3;
        default:
            LogError(kModule) << "Do not support this calibrated color type.";
            return 0;
    }
}

bool ConvertPalette(IConnectionColorSpace& base, std::int32_t from, const std::uint8_t* entries,
                    std::int32_t count, const IConnectionColorSpace& target, std::int32_t to,
                    std::uint8_t* converted, const IntentPair& intents) {
    if (from > COLOR::kMaxComponents || to > COLOR::kMaxComponents) {
        return false;
    }
    float range[4];
    const auto* calibrated = AsCalibrated(&base);
    const bool isLab = calibrated != nullptr && calibrated->GetFamily() == "clab"_cc &&
                       calibrated->GetLabRange(range);
    for (std::int32_t i = 0; i < count; ++i, entries += from, converted += to) {
        float values[COLOR::kMaxComponents] = {};
        float pcs[3];
        EntryValues(entries, from, isLab ? range : nullptr, values);
        if (!base.ToPCS(values, pcs, intents.first) ||
            !target.FromPCS(pcs, values, intents.second)) {
            return false;
        }
        std::transform(values, values + to, converted, [](float value) {
            return static_cast<std::uint8_t>(std::clamp(value, 0.0F, 1.0F) * 255.0F);
        });
    }
    return true;
}

// The weights are those of red, green and blue in luminance, in units of 1/16384.
std::uint8_t BlackOf(std::uint32_t cyan, std::uint32_t magenta, std::uint32_t yellow,
                     std::uint32_t black) {
    const std::uint32_t light = 4915U * cyan + 9667U * magenta + 1802U * yellow;
    return static_cast<std::uint8_t>((light * black + (1U << 21U)) >> 22U);
}

void PromoteToBlack(std::uint8_t* entries, std::int32_t count) {
    for (std::int32_t i = 0; i < count; ++i, entries += 4) {
        entries[3] = BlackOf(entries[0], entries[1], entries[2], entries[3]);
        std::fill_n(entries, 3, std::uint8_t{0xFF});
    }
}

std::int32_t WriteProfileColorSpaceLUT(COLOR::IConnectionColorSpaceFactory* factory,
                                       IConnectionColorSpace* /*target*/,
                                       COLOR::IProfileBasedConnectionColorSpace* profile,
                                       const unsigned char* lutIn, char* lutOut, std::int32_t count,
                                       TRenderingIntent sourceIntent,
                                       TRenderingIntent destinationIntent) {
    if (factory == nullptr || profile == nullptr) {
        LogError(kModule) << "Need to handle this colorspace";
        return 0;
    }
    const FourCC family = profile->GetFamily();
    TInterfacePtr<IConnectionColorSpace> device;
    if (family == "cmyk"_cc) {
        device = TInterfacePtr<IConnectionColorSpace>::Adopt(factory->CreateDeviceCMYKColorSpace());
    } else if (family == "gray"_cc) {
        device = TInterfacePtr<IConnectionColorSpace>::Adopt(factory->CreateDeviceGrayColorSpace());
    } else if (family == "rgb "_cc) {
        device = TInterfacePtr<IConnectionColorSpace>::Adopt(factory->CreateDeviceRGBColorSpace());
    }
    if (!device) {
        LogError(kModule) << "Need to handle this colorspace";
        return 0;
    }
    const std::int32_t components = ComponentsOfFamily(family);
    const bool done =
        ConvertPalette(*profile, components, lutIn, count, *device, components,
                       reinterpret_cast<std::uint8_t*>(lutOut), {sourceIntent, destinationIntent});
    return done ? components : 0;
}

}  // namespace VANTIX::RENDERING
