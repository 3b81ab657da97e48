// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "baseconnectionspacedelegate/names.h"
#include "core/color/iconnectioncolorspace.h"
#include "core/graphics/irastercomponent.h"

namespace VANTIX::RENDERING {

/// What a DeviceN raster is converted from and into. All pointers are borrowed.
struct DeviceNConversion {
    IConnectionColorSpace* destination = nullptr;
    const Raster* source = nullptr;
    Raster* target = nullptr;
    /// One for each colorant; null for one that the raster's mask marks absent.
    std::vector<IChannelData*> channels{};
    IChannelData* sourceAlpha = nullptr;
    IChannelData* targetAlpha = nullptr;
    TRenderingIntent sourceIntent{};
    TRenderingIntent destinationIntent{};
};

/// Converts the lines of a DeviceN raster into the four planes of the target, and copies its alpha
/// channel. A single colorant Black becomes the black plane as it is. 0, or the failing status.
Status WriteNBitDeviceNTo4ChanSpace(const DeviceNConversion& conversion);

/// The same for one or three planes.
Status WriteNBitDeviceNTo3ChanSpace(const DeviceNConversion& conversion);

}  // namespace VANTIX::RENDERING
