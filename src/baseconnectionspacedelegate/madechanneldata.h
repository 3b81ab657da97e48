// SPDX-License-Identifier: MIT
#pragma once

#include "baseconnectionspacedelegate/names.h"
#include "core/object/tobject.h"

namespace VANTIX::RENDERING {

/// Channel data whose lines are made when they are asked for: it can only be read.
class MadeChannelData : public TObject<IChannelData> {
public:
    Status Init(std::int32_t /*width*/, std::int32_t /*height*/, std::int32_t /*bits*/,
                std::int32_t /*lineBytes*/) override {
        return STATUS::kNotSupported;
    }

    std::int32_t GetLineBytes() const override { return mLineBytes; }

    Status SetLine(std::int32_t /*y*/, const std::uint8_t* /*line*/) override {
        return STATUS::kNotSupported;
    }

    bool IsFullyOpaque() const override { return false; }

protected:
    explicit MadeChannelData(std::size_t lineBytes)
        : mLineBytes(static_cast<std::int32_t>(lineBytes)) {}

private:
    std::int32_t mLineBytes;
};

}  // namespace VANTIX::RENDERING
