// SPDX-License-Identifier: MIT
#include "host/graphics/channeldesc.h"

#include "core/status.h"
#include "host/graphics/channeldata.h"

namespace VANTIX::HOST {

Status ChannelDesc::Init(FourCC type, std::int32_t index, std::int8_t bits, std::int32_t width,
                         std::int32_t height, float opacity) {
    const std::int32_t depth = static_cast<std::uint8_t>(bits);
    if (index < 0 || !IsChannelFormat(width, height, depth)) {
        return STATUS::kInvalidArgument;
    }
    mType = type;
    mBits = depth;
    mOpacity = opacity;
    return STATUS::kOk;
}

FourCC ChannelDesc::GetType() const {
    return mType;
}

std::int32_t ChannelDesc::GetBits() const {
    return mBits;
}

float ChannelDesc::GetOpacity() const {
    return mOpacity;
}

COLOR::ISeparationConnectionColorSpace* ChannelDesc::GetSeparationSpace() const {
    return mSpace.Get();
}

void ChannelDesc::SetSeparationSpace(COLOR::ISeparationConnectionColorSpace* space) {
    mSpace = TInterfacePtr<COLOR::ISeparationConnectionColorSpace>(space);
}

GRAPHICS::IChannelData* ChannelDesc::GetData() const {
    return mData.Get();
}

void ChannelDesc::SetData(GRAPHICS::IChannelData* data) {
    mData = TInterfacePtr<GRAPHICS::IChannelData>(data);
}

}  // namespace VANTIX::HOST
