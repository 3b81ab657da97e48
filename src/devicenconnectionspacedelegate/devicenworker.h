// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>

#include "baseconnectionspacedelegate/names.h"
#include "core/color/iconnectioncolorspace.h"
#include "core/graphics/irastercomponent.h"
#include "postscriptconnectionspace/ipostscriptoutputcontext.h"

/// Writers of the data of DeviceN images: each line of a channel is fetched once, each line of the
/// image written once, pixel-interleaved in channel order.
namespace VANTIX::RENDERING::DEVICENWORKER {

inline constexpr std::int32_t kMostChannels = 256;

/// What is written, and where to. All pointers are borrowed.
struct DeviceNPB {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t bitsPerComponent = 8;
    std::int32_t spotCount = 0;
    std::int32_t totalCount = 0;    ///< the spots and four process inks
    std::int32_t processCount = 0;  ///< of the raster
    std::uint64_t selection = 0;    ///< bit i: channel i is written
    GRAPHICS::ISwizzleServices* swizzle = nullptr;
    IConnectionColorSpace* space = nullptr;
    PS::IPostScriptOutputContext* out = nullptr;
    /// Process channels, then spots.
    std::array<IChannelData*, kMostChannels> channels{};
    std::int32_t count = 0;

    /// Null (logged) beyond the channels that there are.
    [[nodiscard]] IChannelData* GetNthChannelData(std::int32_t index) const;
};

/// 0, or the status of the first failure (logged). The data end either way.
Status Write8BitImage(const DeviceNPB& block);
/// 12 bits of each sample, in lines of `lineBytes`.
Status Write16bitImage(const DeviceNPB& block, std::int32_t lineBytes);

}  // namespace VANTIX::RENDERING::DEVICENWORKER
