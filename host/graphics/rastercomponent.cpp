// SPDX-License-Identifier: MIT
#include "host/graphics/rastercomponent.h"

#include <utility>

#include "core/status.h"
#include "host/graphics/channeldata.h"
#include "host/graphics/channeldesc.h"

namespace VANTIX::HOST {

namespace {

constexpr std::uint8_t kWithoutPrimaries = 1;

/// Most extra channels: the inks of a DeviceN space and an alpha channel.
constexpr std::size_t kMostExtras = COLOR::kMaxComponents + 1;

}  // namespace

Status RasterComponent::Check(const RasterFormat& format) {
    if (!format.space || !IsChannelFormat(format.width, format.height, format.bits)) {
        return STATUS::kInvalidArgument;
    }
    const std::int32_t components = format.space->GetComponentCount();
    if (components < 1 || components > COLOR::kMaxComponents) {
        return STATUS::kInvalidArgument;
    }
    const std::int64_t plane = std::int64_t{format.width} * format.height;
    return plane > kMostSamples / components ? STATUS::kOutOfMemory : STATUS::kOk;
}

Status RasterComponent::Init(COLOR::IConnectionColorSpace* space, std::int32_t width,
                             std::int32_t height, std::int8_t bits, float /*xResolution*/,
                             float /*yResolution*/, std::uint8_t channelSettings,
                             std::int32_t flags) {
    if (flags != 0 || channelSettings > kWithoutPrimaries) {
        return STATUS::kInvalidArgument;
    }
    const RasterFormat format{ColorSpacePtr(space), width, height, bits};
    if (channelSettings == kWithoutPrimaries) {
        return InitWith(format, nullptr);
    }
    return InitWith(format, [&format](std::int32_t) -> ChannelDataPtr {
        auto data = MakeObject<ChannelData>();
        const Status status = data->Init(format.width, format.height, format.bits,
                                         ChannelLineBytes(format.width, format.bits));
        return status == STATUS::kOk ? ChannelDataPtr(data) : nullptr;
    });
}

Status RasterComponent::InitWith(const RasterFormat& format, const DataMaker& maker) {
    const Status status = mFormat.space ? STATUS::kInvalidArgument : Check(format);
    if (status != STATUS::kOk) {
        return status;
    }
    const std::int32_t count = maker ? format.space->GetComponentCount() : 0;
    Channels primaries;
    for (std::int32_t i = 0; i < count; ++i) {
        const ChannelDataPtr data = maker(i);
        if (!data) {
            return STATUS::kOutOfMemory;
        }
        auto channel = MakeObject<ChannelDesc>();
        channel->Init(kPrimary, i, static_cast<std::int8_t>(format.bits), format.width,
                      format.height, 1.0F);
        channel->SetData(data.Get());
        primaries.push_back(std::move(channel));
    }
    mPrimaries = std::move(primaries);
    mFormat = format;
    return STATUS::kOk;
}

GRAPHICS::IChannelDesc* RasterComponent::At(const Channels& channels, std::int32_t index) {
    const bool inside = index >= 0 && static_cast<std::size_t>(index) < channels.size();
    return inside ? channels[static_cast<std::size_t>(index)].Get() : nullptr;
}

std::int32_t RasterComponent::GetWidth() const {
    return mFormat.width;
}

std::int32_t RasterComponent::GetHeight() const {
    return mFormat.height;
}

std::int32_t RasterComponent::GetBitsPerSample() const {
    return mFormat.bits;
}

COLOR::IConnectionColorSpace* RasterComponent::GetColorSpace() const {
    return mFormat.space.Get();
}

std::int32_t RasterComponent::GetPrimaryCount() const {
    return static_cast<std::int32_t>(mPrimaries.size());
}

GRAPHICS::IChannelDesc* RasterComponent::GetPrimary(std::int32_t index) const {
    return At(mPrimaries, index);
}

std::int32_t RasterComponent::GetExtraCount() const {
    return static_cast<std::int32_t>(mExtras.size());
}

GRAPHICS::IChannelDesc* RasterComponent::GetExtra(std::int32_t index) const {
    return At(mExtras, index);
}

Status RasterComponent::AddExtra(GRAPHICS::IChannelDesc* channel) {
    if (channel == nullptr || mExtras.size() >= kMostExtras) {
        return STATUS::kInvalidArgument;
    }
    const bool isAlpha = channel->GetType() == "LPHA"_cc;
    mExtras.emplace(isAlpha ? mExtras.begin() : mExtras.end(), channel);
    return STATUS::kOk;
}

bool RasterComponent::GetChannelMask(std::uint64_t& /*mask*/) const {
    return false;
}

}  // namespace VANTIX::HOST
