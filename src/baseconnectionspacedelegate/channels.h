// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "baseconnectionspacedelegate/names.h"
#include "core/graphics/irastercomponent.h"

namespace VANTIX::RENDERING {

/// Whether the raster's mask marks primary `index` absent.
bool IsMaskedOut(const Raster& raster, std::int32_t index);

/// The data (borrowed) of primary `index`; null when the raster has none or its mask marks it
/// absent.
IChannelData* ProcessData(const Raster& raster, std::int32_t index);

/// The data (borrowed) of a channel; null (logged in the name of `module`) without it. `kind` is
/// "primary" or "extra".
IChannelData* AttachedData(const IChannelDesc* channel, std::int32_t index, const char* kind,
                           const char* module);

/// Whether any primary has data. Beside these, the samples of spots are complements, too.
bool HasProcessData(const Raster& raster);

/// The alpha channel (borrowed), which is always extra channel 0; null when there is none.
const IChannelDesc* AlphaChannel(const Raster& raster);

}  // namespace VANTIX::RENDERING
