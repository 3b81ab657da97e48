// SPDX-License-Identifier: MIT
#include "host/color/outputvalues.h"

#include "host/color/functionbase.h"

namespace VANTIX::HOST {

FourCC FamilyOf(const COLOR::IConnectionColorSpace& space) {
    if (const auto* device = FindInterface<COLOR::IDeviceConnectionColorSpace>(
            &space, COLOR::IID_IDEVICECOLORSPACE)) {
        return device->GetFamily();
    }
    if (const auto* profile = FindInterface<COLOR::IProfileBasedConnectionColorSpace>(
            &space, COLOR::IID_IPROFILEBASEDCOLORSPACE)) {
        return profile->GetFamily();
    }
    const auto* calibrated = FindInterface<COLOR::ICalibratedConnectionColorSpace>(
        &space, COLOR::IID_ICALIBRATEDCOLORSPACE);
    return calibrated == nullptr ? 0 : calibrated->GetFamily();
}

void ToHostForm(const COLOR::IColorFunction& function, const COLOR::IConnectionColorSpace& space,
                float* values) {
    if (FamilyOf(space) == "clab"_cc) {
        return;
    }
    const float* range = function.GetRange();
    const auto outputs = static_cast<std::size_t>(function.GetOutputCount());
    for (std::size_t i = 0; range != nullptr && i < outputs; ++i) {
        const auto [low, high] = Bounds(range, i);
        if (low < 0.0F || high > 1.0F) {
            values[i] = high > low ? (values[i] - low) / (high - low) : 0.0F;
        }
    }
    for (std::int32_t i = 0; space.StoresComponentsInverted() && i < space.GetComponentCount();
         ++i) {
        values[i] = 1.0F - values[i];
    }
}

}  // namespace VANTIX::HOST
