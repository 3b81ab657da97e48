// SPDX-License-Identifier: MIT
#include "baseconnectionspacedelegate/channels.h"

namespace VANTIX::RENDERING {

bool IsMaskedOut(const GRAPHICS::IRasterComponent& raster, std::int32_t index) {
    std::uint64_t mask = 0;
    return raster.GetChannelMask(mask) && (mask >> static_cast<unsigned>(index) & 1U) == 0;
}

GRAPHICS::IChannelData* ProcessData(const GRAPHICS::IRasterComponent& raster, std::int32_t index) {
    if (index < 0 || index >= raster.GetPrimaryCount() || IsMaskedOut(raster, index)) {
        return nullptr;
    }
    const GRAPHICS::IChannelDesc* channel = raster.GetPrimary(index);
    return channel == nullptr ? nullptr : channel->GetData();
}

bool HasProcessData(const GRAPHICS::IRasterComponent& raster) {
    for (std::int32_t i = 0; i < raster.GetPrimaryCount(); ++i) {
        if (ProcessData(raster, i) != nullptr) {
            return true;
        }
    }
    return false;
}

const GRAPHICS::IChannelDesc* AlphaChannel(const GRAPHICS::IRasterComponent& raster) {
    const GRAPHICS::IChannelDesc* channel =
        raster.GetExtraCount() > 0 ? raster.GetExtra(0) : nullptr;
    return channel != nullptr && channel->GetType() == "LPHA"_cc ? channel : nullptr;
}

}  // namespace VANTIX::RENDERING
