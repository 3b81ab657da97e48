// SPDX-License-Identifier: MIT
#pragma once

#include "core/graphics/irastercomponent.h"
#include "core/object/tobject.h"
#include "host/export.h"

namespace VANTIX::HOST {

/// What a channel is, with references to its data and its Separation space.
class NORVANE_HOST_API ChannelDesc : public TObject<GRAPHICS::IChannelDesc> {
public:
    /// `kInvalidArgument` for a negative index or sizes of no use. The data are not looked at.
    Status Init(FourCC type, std::int32_t index, std::int8_t bits, std::int32_t width,
                std::int32_t height, float opacity) override;
    FourCC GetType() const override;
    std::int32_t GetBits() const override;
    float GetOpacity() const override;
    COLOR::ISeparationConnectionColorSpace* GetSeparationSpace() const override;
    void SetSeparationSpace(COLOR::ISeparationConnectionColorSpace* space) override;
    GRAPHICS::IChannelData* GetData() const override;
    void SetData(GRAPHICS::IChannelData* data) override;

private:
    TInterfacePtr<COLOR::ISeparationConnectionColorSpace> mSpace;
    TInterfacePtr<GRAPHICS::IChannelData> mData;
    FourCC mType = 0;
    std::int32_t mBits = 0;
    float mOpacity = 1;
};

}  // namespace VANTIX::HOST
