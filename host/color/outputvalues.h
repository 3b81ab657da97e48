// SPDX-License-Identifier: MIT
#pragma once

#include "core/color/icolorfunction.h"
#include "core/color/iconnectioncolorspace.h"
#include "host/export.h"

namespace VANTIX::HOST {

/// Turns what `function` gave for `space` into the space's host form, in place: outputs whose range
/// leaves [0, 1] are scaled into it, CMYK becomes complements. A Lab space takes L a b as they are.
NORVANE_HOST_API void ToHostForm(const COLOR::IColorFunction& function,
                                 const COLOR::IConnectionColorSpace& space, float* values);

/// The family of a device, profile-based or calibrated space, or 0.
NORVANE_HOST_API FourCC FamilyOf(const COLOR::IConnectionColorSpace& space);

}  // namespace VANTIX::HOST
