// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "core/color/colorconversion.h"
#include "core/color/iconnectioncolorspace.h"

namespace VANTIX {

/// Whether colours can have so many components.
inline bool IsComponentCount(std::int32_t count) {
    return count > 0 && count <= COLOR::kMaxComponents;
}

/// Where colours come from and what they become. All is borrowed.
struct ColorRoute {
    COLOR::IConnectionColorSpace& source;
    /// Null where colours stay as they are.
    COLOR::IConnectionColorSpace* destination = nullptr;
    COLOR::TRenderingIntent first{};
    COLOR::TRenderingIntent second{};

    /// Whether there is a destination other than the source.
    [[nodiscard]] bool Converts() const;

    /// The space of what is written.
    [[nodiscard]] COLOR::IConnectionColorSpace& Target() const {
        return destination == nullptr ? source : *destination;
    }

    /// Brings a colour of `source` in host form into what is written of `Target` (ink amounts for
    /// CMYK). The array has room for `kMaxComponents`. False when it cannot be converted.
    bool ApplyToHostForm(float* values) const;

    /// The same for a colour in the form of functions (ink amounts for CMYK).
    bool Apply(float* values) const;
};

}  // namespace VANTIX
