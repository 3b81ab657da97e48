// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <vector>

#include "core/graphics/irastercomponent.h"
#include "core/object/tobject.h"
#include "host/export.h"
#include "host/graphics/rasters.h"

namespace VANTIX::HOST {

/// The host's picture. An alpha channel is its extra channel 0, whenever it came.
class NORVANE_HOST_API RasterComponent : public TObject<GRAPHICS::IRasterComponent> {
public:
    using ChannelDataPtr = TInterfacePtr<GRAPHICS::IChannelData>;
    using DataMaker = std::function<ChannelDataPtr(std::int32_t plane)>;

    /// Type of the channels that are no extra ones.
    static constexpr FourCC kPrimary = "PRIM"_cc;

    /// `kInvalidArgument` without a space, for sizes of no use, unknown settings and a raster that
    /// is something already; `kOutOfMemory` for more than `kMostSamples` or without memory.
    Status Init(COLOR::IConnectionColorSpace* space, std::int32_t width, std::int32_t height,
                std::int8_t bits, float xResolution, float yResolution,
                std::uint8_t channelSettings, std::int32_t flags) override;

    /// The same with primaries whose data `maker` makes. It may answer null for want of memory.
    Status InitWith(const RasterFormat& format, const DataMaker& maker);

    std::int32_t GetWidth() const override;
    std::int32_t GetHeight() const override;
    std::int32_t GetBitsPerSample() const override;
    COLOR::IConnectionColorSpace* GetColorSpace() const override;
    std::int32_t GetPrimaryCount() const override;
    GRAPHICS::IChannelDesc* GetPrimary(std::int32_t index) const override;
    std::int32_t GetExtraCount() const override;
    GRAPHICS::IChannelDesc* GetExtra(std::int32_t index) const override;
    /// `kInvalidArgument` for null, and for more channels than a raster may have.
    Status AddExtra(GRAPHICS::IChannelDesc* channel) override;
    /// False: all primaries are there.
    bool GetChannelMask(std::uint64_t& mask) const override;

private:
    using Channels = std::vector<TInterfacePtr<GRAPHICS::IChannelDesc>>;

    static Status Check(const RasterFormat& format);
    static GRAPHICS::IChannelDesc* At(const Channels& channels, std::int32_t index);

    RasterFormat mFormat;
    Channels mPrimaries;
    Channels mExtras;
};

}  // namespace VANTIX::HOST
