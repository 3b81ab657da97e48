// SPDX-License-Identifier: MIT
#include "devicenconnectionspacedelegate/devicenworker.h"

#include "baseconnectionspacedelegate/interleavedline.h"
#include "core/libsupport/vlogger/logmessage.h"

namespace VANTIX::RENDERING::DEVICENWORKER {

namespace {

constexpr const char* kModule = "src/devicenconnectionspacedelegate";

/// The channels that make up the pixels.
struct Selection {
    std::array<std::int32_t, InterleavedLine::kMostPlanes> indices{};
    std::size_t count = 0;

    explicit Selection(const DeviceNPB& block) {
        for (std::int32_t i = 0; i < block.count && count < indices.size(); ++i) {
            if (i < 64 && (block.selection >> static_cast<unsigned>(i) & 1U) != 0) {
                indices.at(count++) = i;
            }
        }
    }

    /// False (logged) when a channel has no line `y`.
    bool GetLine(const DeviceNPB& block, std::int32_t y, InterleavedLine::Planes& planes) const {
        for (std::size_t k = 0; k < count; ++k) {
            IChannelData* data = block.GetNthChannelData(indices.at(k));
            planes[k] = data == nullptr ? nullptr : data->GetLine(y);
            if (planes[k] == nullptr) {
                LogError(kModule) << "No data for line " << y << " of channel " << indices.at(k)
                                  << ".";
                return false;
            }
        }
        return true;
    }
};

/// Lines of `bytes`, as `finish` makes them of planes.
template <class Finish>
Status WriteLines(const DeviceNPB& block, const Selection& selection, std::size_t bytes,
                  Finish finish) {
    InterleavedLine::Planes planes{};
    for (std::int32_t y = 0; y < block.height; ++y) {
        if (!selection.GetLine(block, y, planes)) {
            return STATUS::kInvalidArgument;
        }
        block.out->WriteStreamData(finish(planes), static_cast<std::int32_t>(bytes));
    }
    return STATUS::kOk;
}

Status WriteImage(const DeviceNPB& block) {
    const Selection selection(block);
    const std::int32_t depth = block.bitsPerComponent;
    Status status = STATUS::kOutOfMemory;
    if (selection.count == 1 && depth != 16) {
        const auto bits = static_cast<std::size_t>(block.width) * static_cast<std::size_t>(depth);
        status = WriteLines(block, selection, (bits + 7) / 8,
                            [](const InterleavedLine::Planes& planes) { return planes[0]; });
    } else if (InterleavedLine line(selection.count, block.width, depth, block.swizzle);
               line.HasMemory()) {
        status = WriteLines(
            block, selection, line.Size(),
            [&line](const InterleavedLine::Planes& planes) { return line.Build(planes, 0); });
    } else {
        LogError(kModule) << "Failed to allocate a buffer of " << line.Size() << "bytes.";
    }
    block.out->FlushStreamData();
    return status;
}

}  // namespace

IChannelData* DeviceNPB::GetNthChannelData(std::int32_t index) const {
    if (index < 0 || index >= count) {
        LogError(kModule) << "idx (" << index << ") rangecheck error.";
        return nullptr;
    }
    return channels.at(static_cast<std::size_t>(index));
}

Status Write8BitImage(const DeviceNPB& block) {
    return WriteImage(block);
}

Status Write16bitImage(const DeviceNPB& block, std::int32_t /*lineBytes*/) {
    return WriteImage(block);
}

}  // namespace VANTIX::RENDERING::DEVICENWORKER
