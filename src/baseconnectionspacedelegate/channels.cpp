// SPDX-License-Identifier: MIT
#include "baseconnectionspacedelegate/channels.h"

#include "core/libsupport/vlogger/logmessage.h"

namespace VANTIX::RENDERING {

bool IsMaskedOut(const Raster& raster, std::int32_t index) {
    std::uint64_t mask = 0;
    return raster.GetChannelMask(mask) && (mask >> static_cast<unsigned>(index) & 1U) == 0;
}

IChannelData* ProcessData(const Raster& raster, std::int32_t index) {
    if (index < 0 || index >= raster.GetPrimaryCount() || IsMaskedOut(raster, index)) {
        return nullptr;
    }
    const IChannelDesc* channel = raster.GetPrimary(index);
    return channel == nullptr ? nullptr : channel->GetData();
}

IChannelData* AttachedData(const IChannelDesc* channel, std::int32_t index, const char* kind,
                           const char* module) {
    if (channel == nullptr) {
        LogError(module) << "Raster's " << index << " " << kind << " channel description is nil.";
        return nullptr;
    }
    if (channel->GetData() == nullptr) {
        LogError(module) << (*kind == 'p' ? "Primary" : "Extra") << " channel description " << index
                         << " missing attached channel data.";
    }
    return channel->GetData();
}

bool HasProcessData(const Raster& raster) {
    for (std::int32_t i = 0; i < raster.GetPrimaryCount(); ++i) {
        if (ProcessData(raster, i) != nullptr) {
            return true;
        }
    }
    return false;
}

const IChannelDesc* AlphaChannel(const Raster& raster) {
    const IChannelDesc* channel = raster.GetExtraCount() > 0 ? raster.GetExtra(0) : nullptr;
    return channel != nullptr && channel->GetType() == "LPHA"_cc ? channel : nullptr;
}

}  // namespace VANTIX::RENDERING
