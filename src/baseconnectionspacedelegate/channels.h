// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "core/graphics/irastercomponent.h"

namespace VANTIX::RENDERING {

/// Whether the raster's mask marks primary `index` absent.
bool IsMaskedOut(const GRAPHICS::IRasterComponent& raster, std::int32_t index);

/// The data (borrowed) of primary `index`; null when the raster has none or its mask marks it
/// absent.
GRAPHICS::IChannelData* ProcessData(const GRAPHICS::IRasterComponent& raster, std::int32_t index);

/// Whether any primary has data. Beside these, the samples of spots are complements, too.
bool HasProcessData(const GRAPHICS::IRasterComponent& raster);

/// The alpha channel (borrowed), which is always extra channel 0; null when there is none.
const GRAPHICS::IChannelDesc* AlphaChannel(const GRAPHICS::IRasterComponent& raster);

}  // namespace VANTIX::RENDERING
