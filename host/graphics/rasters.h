// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>

#include "core/graphics/irastercomponent.h"
#include "host/color/colorspacefactory.h"
#include "host/export.h"

namespace VANTIX::HOST {

using RasterPtr = TInterfacePtr<GRAPHICS::IRasterComponent>;

/// Most samples (width x height x channels) that a raster may have.
inline constexpr std::int64_t kMostSamples = std::int64_t{1} << 34;

/// What the planes of a raster are read from, a line at a time.
class NORVANE_HOST_API PlaneSource {
public:
    PlaneSource() = default;
    virtual ~PlaneSource() = default;
    PlaneSource(const PlaneSource&) = delete;
    PlaneSource& operator=(const PlaneSource&) = delete;
    PlaneSource(PlaneSource&&) = delete;
    PlaneSource& operator=(PlaneSource&&) = delete;

    /// Fills the planes of line `y`, one for each channel, in host form (see IChannelData). Lines
    /// are asked for in ascending order; an earlier line than the last one means to start over.
    /// What is missing is filled with white: a raster never lacks a line.
    virtual void ReadLine(std::int32_t y, std::uint8_t* const* planes) = 0;
};

/// What a raster looks like.
struct RasterFormat {
    ColorSpacePtr space;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t bits = 8;  ///< 1, 2, 4, 8 or 16
};

/// A raster whose primaries, one for each component of its space (one for Indexed), are read from
/// `source` when they are asked for. Only one line is held. Null for sizes of no use.
NORVANE_HOST_API RasterPtr MakeRaster(const RasterFormat& format,
                                      std::unique_ptr<PlaneSource> source);

/// A raster of a DeviceN space without primaries: an extra channel ("SPOT") for each colorant holds
/// its tints. Otherwise as `MakeRaster`.
NORVANE_HOST_API RasterPtr MakeInkRaster(const RasterFormat& format,
                                         std::unique_ptr<PlaneSource> source);

/// Adds an alpha channel ("LPHA"), read from the one plane of `source`. `isOpaque` says that no
/// sample of it is transparent, so that it needs no mask.
NORVANE_HOST_API bool AddAlpha(GRAPHICS::IRasterComponent& raster, std::int32_t bits,
                               std::unique_ptr<PlaneSource> source, bool isOpaque);

}  // namespace VANTIX::HOST
