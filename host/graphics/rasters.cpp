// SPDX-License-Identifier: MIT
#include "host/graphics/rasters.h"

#include <new>
#include <utility>

#include "core/status.h"
#include "host/graphics/channeldata.h"
#include "host/graphics/channeldesc.h"
#include "host/graphics/rastercomponent.h"

namespace VANTIX::HOST {

namespace {

/// Most bytes of a line of all planes.
constexpr std::int64_t kMostLineBytes = std::int64_t{1} << 28;

/// The planes of `source`, or null without memory for a line of them.
std::shared_ptr<LineCache> MakeCache(const RasterFormat& format, std::int32_t planes,
                                     std::unique_ptr<PlaneSource> source) {
    if (std::int64_t{planes} * ChannelLineBytes(format.width, format.bits) > kMostLineBytes) {
        return nullptr;
    }
    try {
        return std::make_shared<LineCache>(format, planes, std::move(source));
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

}  // namespace

RasterPtr MakeRaster(const RasterFormat& format, std::unique_ptr<PlaneSource> source) {
    if (!source) {
        return nullptr;
    }
    std::shared_ptr<LineCache> lines;
    // The first plane is asked for when the format has passed.
    const auto maker = [&](std::int32_t plane) -> RasterComponent::ChannelDataPtr {
        if (plane == 0) {
            lines = MakeCache(format, format.space->GetComponentCount(), std::move(source));
        }
        return lines ? MakeObject<SourceChannelData>(lines, plane, true) : nullptr;
    };
    auto raster = MakeObject<RasterComponent>();
    return raster->InitWith(format, maker) == STATUS::kOk ? RasterPtr(raster) : nullptr;
}

RasterPtr MakeInkRaster(const RasterFormat& format, std::unique_ptr<PlaneSource> source) {
    auto raster = MakeObject<RasterComponent>();
    if (!source || raster->InitWith(format, nullptr) != STATUS::kOk) {
        return nullptr;
    }
    const std::int32_t inks = format.space->GetComponentCount();
    const auto lines = MakeCache(format, inks, std::move(source));
    for (std::int32_t i = 0; lines && i < inks; ++i) {
        auto ink = MakeObject<ChannelDesc>();
        ink->Init("SPOT"_cc, i, static_cast<std::int8_t>(format.bits), format.width, format.height,
                  1.0F);
        ink->SetData(MakeObject<SourceChannelData>(lines, i, true).Get());
        raster->AddExtra(ink.Get());
    }
    return lines ? RasterPtr(raster) : nullptr;
}

bool AddAlpha(GRAPHICS::IRasterComponent& raster, std::int32_t bits,
              std::unique_ptr<PlaneSource> source, bool isOpaque) {
    const RasterFormat format{nullptr, raster.GetWidth(), raster.GetHeight(), bits};
    if (!source || !IsChannelFormat(format.width, format.height, bits)) {
        return false;
    }
    auto lines = MakeCache(format, 1, std::move(source));
    auto alpha = MakeObject<ChannelDesc>();
    if (!lines || alpha->Init("LPHA"_cc, 0, static_cast<std::int8_t>(bits), format.width,
                              format.height, 1.0F) != STATUS::kOk) {
        return false;
    }
    alpha->SetData(MakeObject<SourceChannelData>(std::move(lines), 0, isOpaque).Get());
    return raster.AddExtra(alpha.Get()) == STATUS::kOk;
}

}  // namespace VANTIX::HOST
