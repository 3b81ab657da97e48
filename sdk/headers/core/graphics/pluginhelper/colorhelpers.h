// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstdint>

#include "core/color/icolorfunction.h"
#include "core/color/ispotcolorspaces.h"
#include "core/libsupport/vlogger/logmessage.h"

namespace VANTIX::GRAPHICS::HELPER {

/// Most spaces that are looked through on the way to an alternate or base space, so that a space
/// that is its own alternate comes to an end.
inline constexpr int kMaxAlternateDepth = 8;

/// Module name of the helpers in the log.
inline constexpr const char* kLogModule = "sdk/headers/core/graphics/pluginhelper";

/// Family of a space that is itself a device ("gray", "rgb ", "cmyk") or profile-based space (those
/// and "clab"); 0 for every other kind and for null.
inline FourCC GetOwnFamily(COLOR::IConnectionColorSpace* space) {
    if (const auto* device =
            FindInterface<COLOR::IDeviceConnectionColorSpace>(space, COLOR::IID_IDEVICECOLORSPACE);
        device != nullptr) {
        return device->GetFamily();
    }
    const auto* profile = FindInterface<COLOR::IProfileBasedConnectionColorSpace>(
        space, COLOR::IID_IPROFILEBASEDCOLORSPACE);
    return profile == nullptr ? 0 : profile->GetFamily();
}

/// One step of `GetDeviceKey`: the key of `space`, or 0 and in `next` the space to ask instead
/// (null: there is none; logged).
inline FourCC GetDeviceKeyOrNext(COLOR::IConnectionColorSpace* space,
                                 COLOR::IConnectionColorSpace*& next) {
    next = nullptr;
    const char* missing = nullptr;
    if (const auto* indexed = FindInterface<COLOR::IIndexedConnectionColorSpace>(
            space, COLOR::IID_IINDEXEDCOLORSPACE)) {
        next = indexed->GetBaseSpace();
        missing = "No alternate colorsapce in an Indexed colorspace";
    } else if (const FourCC family = GetOwnFamily(space); family != 0) {
        return family;
    } else if (const auto* separation = FindInterface<COLOR::ISeparationConnectionColorSpace>(
                   space, COLOR::IID_ISEPARATIONCOLORSPACE)) {
        next = separation->GetAlternateSpace();
        missing = "No alternate colorspace in a Separation colorspace";
    } else if (const auto* calibrated = FindInterface<COLOR::ICalibratedConnectionColorSpace>(
                   space, COLOR::IID_ICALIBRATEDCOLORSPACE)) {
        return calibrated->GetFamily();
    } else if (const auto* deviceN = FindInterface<COLOR::IDeviceNConnectionColorSpace>(
                   space, COLOR::IID_IDEVICENCOLORSPACE)) {
        next = deviceN->GetAlternateSpace();
        missing = "No alternate colorspace in a DeviceN colorspace";
    } else {
        LogError(kLogModule) << "VANTIX::GRAPHICS::HELPER::GetDeviceKey"
                             << ": Failed to get device key from color space";
        return 0;
    }
    if (next == nullptr) {
        LogError(kLogModule) << missing;
    }
    return 0;
}

/// The key of a space's colours: its family for device, profile-based and calibrated spaces, that
/// of the base or alternate space for Indexed, Separation and DeviceN. 0 (logged) when unknown.
inline FourCC GetDeviceKey(COLOR::IConnectionColorSpace* space) {
    COLOR::IConnectionColorSpace* next = space;
    for (int depth = 0; depth < kMaxAlternateDepth; ++depth) {
        const FourCC key = GetDeviceKeyOrNext(next, next);
        if (key != 0 || next == nullptr) {
            return key;
        }
    }
    LogError(kLogModule) << "VANTIX::GRAPHICS::HELPER::GetDeviceKey"
                         << ": Failed to get device key from color space";
    return 0;
}

/// Whether colours of `space` are CMYK: device or profile-based CMYK, or Registration of four
/// plates.
inline bool IsCMYKColorSpace(COLOR::IConnectionColorSpace* space) {
    if (GetOwnFamily(space) == "cmyk"_cc) {
        return true;
    }
    const auto* registration = FindInterface<COLOR::IRegistrationConnectionColorSpace>(
        space, COLOR::IID_IREGISTRATIONCOLORSPACE);
    return registration != nullptr && registration->GetComponentCount() == 4;
}

/// Maps each output whose range leaves 0 to 1 onto that interval (0 where the range is empty).
inline void MapOutputsToUnitRange(const COLOR::IColorFunction& function, float* values,
                                  std::uint32_t count) {
    const float* range = function.GetRange();
    if (range == nullptr) {
        return;
    }
    const auto outputs = static_cast<std::uint32_t>(std::max(function.GetOutputCount(), 0));
    if (count < outputs) {
        LogError(kLogModule) << "VANTIX::GRAPHICS::HELPER::NormalizeOutputValues"
                             << ": outvalueCount " << count << " < rangeSize " << outputs;
    }
    for (std::uint32_t i = 0; i < std::min(count, outputs); ++i, range += 2) {
        const float low = range[0];
        const float high = range[1];
        if (low < 0 || high > 1) {
            values[i] = high == low ? 0 : (values[i] - low) / (high - low);
        }
    }
}

/// Brings `count` outputs of a tint function into host form for `space`: each mapped from its range
/// to 0..1, then complemented for CMYK, or spread over the ranges of a calibrated Lab space.
inline void NormalizeOutputValues(COLOR::IColorFunction* function,
                                  COLOR::IConnectionColorSpace* space, float* values,
                                  std::uint32_t count) {
    if (values == nullptr) {
        return;
    }
    if (function != nullptr) {
        MapOutputsToUnitRange(*function, values, count);
    }
    if (IsCMYKColorSpace(space)) {
        std::transform(values, values + count, values, [](float value) { return 1 - value; });
        return;
    }
    const auto* calibrated = FindInterface<COLOR::ICalibratedConnectionColorSpace>(
        space, COLOR::IID_ICALIBRATEDCOLORSPACE);
    float range[4];
    if (count >= 3 && calibrated != nullptr && calibrated->GetFamily() == "clab"_cc &&
        calibrated->GetLabRange(range)) {
        values[0] *= 100;
        values[1] = (range[1] - range[0]) * values[1] + range[0];
        values[2] = (range[3] - range[2]) * values[2] + range[2];
    }
}

}  // namespace VANTIX::GRAPHICS::HELPER
