// SPDX-License-Identifier: MIT
#include "baseconnectionspacedelegate/devicenlines.h"

#include <algorithm>
#include <string_view>

#include "baseconnectionspacedelegate/spacekinds.h"
#include "core/color/ispotcolorspaces.h"
#include "core/libsupport/vlogger/logmessage.h"

namespace VANTIX::RENDERING {

namespace {

constexpr const char* kModule = "src/baseconnectionspacedelegate";

bool IsBlackAlone(const Raster& raster) {
    const auto* deviceN = AsDeviceN(raster.GetColorSpace());
    if (deviceN == nullptr || deviceN->GetColorantCount() != 1) {
        return false;
    }
    const CoreString* name = deviceN->GetColorantName(0);
    return name != nullptr && std::u16string_view(name->c_str(), name->size()) == u"Black";
}

IChannelData* PlaneOf(const Raster& raster, std::int32_t index) {
    const IChannelDesc* channel = raster.GetPrimary(index);
    return channel == nullptr ? nullptr : channel->GetData();
}

bool CopyAlpha(const DeviceNConversion& conversion, std::int32_t y) {
    const std::uint8_t* line = conversion.sourceAlpha->GetLine(y);
    return line != nullptr && conversion.targetAlpha->SetLine(y, line) == STATUS::kOk;
}

/// One line after the other.
Status ConvertLines(const DeviceNConversion& conversion, std::int32_t planes) {
    const std::int32_t width = conversion.source->GetWidth();
    const std::int32_t bits = conversion.source->GetBitsPerSample();
    const auto lineBytes = static_cast<std::size_t>(width) * static_cast<std::size_t>(bits / 8);
    std::vector<float> pcs(3 * static_cast<std::size_t>(width));
    std::vector<std::uint8_t> lines(lineBytes * static_cast<std::size_t>(planes));
    std::vector<const std::uint8_t*> sources(conversion.channels.size());
    std::vector<std::uint8_t*> targets;
    targets.reserve(static_cast<std::size_t>(planes));
    for (std::int32_t i = 0; i < planes; ++i) {
        targets.push_back(lines.data() + lineBytes * static_cast<std::size_t>(i));
    }
    COLOR::LineConversion line;
    line.source = sources.data();
    line.sourceBits = bits;
    line.width = width;
    line.target = targets.data();
    line.targetBits = bits;
    line.pcs = pcs.data();
    line.sourceIntent = conversion.sourceIntent;
    line.targetIntent = conversion.destinationIntent;
    for (std::int32_t y = 0; y < conversion.source->GetHeight(); ++y) {
        std::transform(conversion.channels.begin(), conversion.channels.end(), sources.begin(),
                       [y](auto* data) { return data == nullptr ? nullptr : data->GetLine(y); });
        const Status status =
            conversion.source->GetColorSpace()->ConvertLine(*conversion.destination, line);
        if (status != STATUS::kOk || !CopyAlpha(conversion, y)) {
            LogError(kModule) << "Connection Color Space Conversion Failed. Error = " << status;
            return status == STATUS::kOk ? STATUS::kInvalidArgument : status;
        }
        for (std::int32_t i = 0; i < planes; ++i) {
            PlaneOf(*conversion.target, i)->SetLine(y, targets[static_cast<std::size_t>(i)]);
        }
    }
    return STATUS::kOk;
}

/// The only colorant becomes the black plane.
Status CopyBlack(const DeviceNConversion& conversion) {
    IChannelData* black = conversion.channels.empty() ? nullptr : conversion.channels.front();
    if (black == nullptr) {
        LogError(kModule) << "No channel data for the raster.";
        return STATUS::kInvalidArgument;
    }
    const std::vector<std::uint8_t> blank(
        static_cast<std::size_t>(PlaneOf(*conversion.target, 0)->GetLineBytes()), 0xFF);
    for (std::int32_t y = 0; y < conversion.source->GetHeight(); ++y) {
        const std::uint8_t* line = black->GetLine(y);
        if (line == nullptr || !CopyAlpha(conversion, y)) {
            LogError(kModule) << "No data for line " << y;
            return STATUS::kInvalidArgument;
        }
        for (std::int32_t i = 0; i < 4; ++i) {
            PlaneOf(*conversion.target, i)->SetLine(y, i == 3 ? line : blank.data());
        }
    }
    return STATUS::kOk;
}

}  // namespace

Status WriteNBitDeviceNTo4ChanSpace(const DeviceNConversion& conversion) {
    return IsBlackAlone(*conversion.source) ? CopyBlack(conversion) : ConvertLines(conversion, 4);
}

Status WriteNBitDeviceNTo3ChanSpace(const DeviceNConversion& conversion) {
    return ConvertLines(conversion, conversion.target->GetPrimaryCount());
}

}  // namespace VANTIX::RENDERING
