// SPDX-License-Identifier: MIT
#include "devicenconnectionspacedelegate/convertedchannels.h"

#include <memory>
#include <utility>

#include "baseconnectionspacedelegate/convertedlines.h"
#include "baseconnectionspacedelegate/madechanneldata.h"
#include "core/graphics/pluginhelper/rasterhelpers.h"

namespace VANTIX::RENDERING {

namespace {

constexpr const char* kModule = "src/devicenconnectionspacedelegate";

constexpr BufferMessage kNoBuffer{"Failed to allocate a buffer of ", "bytes."};

/// The one line that is held of all converted planes.
class SharedLines {
public:
    SharedLines(const Raster& raster, const IConnectionColorSpace& target, std::int32_t bits,
                const IntentPair& intents)
        : mLines(raster, target, bits, intents, false) {}

    bool IsReady() { return mLines.IsReady(kModule, kNoBuffer, kNoBuffer); }

    /// Null when the line cannot be converted.
    const std::uint8_t* Plane(std::int32_t y, std::size_t plane) {
        if (y != mHeld) {
            mHeld = mLines.Convert(y, mPlanes) == STATUS::kOk ? y : -1;
        }
        return mHeld == -1 ? nullptr : mPlanes.at(plane);
    }

private:
    ConvertedLines mLines;
    ConvertedLines::Planes mPlanes{};
    std::int32_t mHeld = -1;
};

class ConvertedChannelData : public MadeChannelData {
public:
    ConvertedChannelData(std::shared_ptr<SharedLines> lines, std::size_t plane,
                         std::size_t lineBytes)
        : MadeChannelData(lineBytes), mLines(std::move(lines)), mPlane(plane) {}

    const std::uint8_t* GetLine(std::int32_t y) override { return mLines->Plane(y, mPlane); }

private:
    std::shared_ptr<SharedLines> mLines;
    std::size_t mPlane;
};

}  // namespace

bool ConvertProcessChannels(IClassFactory& factory, const Raster& raster,
                            IConnectionColorSpace& target, const IntentPair& intents,
                            TInterfacePtr<Raster>& out) {
    const std::int32_t bits = raster.GetBitsPerSample() == 16 ? 16 : 8;
    const std::int32_t width = raster.GetWidth();
    auto lines = std::make_shared<SharedLines>(raster, target, bits, intents);
    if (!lines->IsReady() ||
        !GRAPHICS::HELPER::CreateRasterComponent(&factory, &target, width, raster.GetHeight(),
                                                 static_cast<std::int8_t>(bits), 0, 0, 0, 0, out)) {
        return false;
    }
    for (std::int32_t i = 0; i < out->GetPrimaryCount(); ++i) {
        const auto data = MakeObject<ConvertedChannelData>(
            lines, static_cast<std::size_t>(i), static_cast<std::size_t>(width * bits / 8));
        out->GetPrimary(i)->SetData(data.Get());
    }
    for (std::int32_t i = 0; i < raster.GetExtraCount(); ++i) {
        out->AddExtra(raster.GetExtra(i));
    }
    return true;
}

}  // namespace VANTIX::RENDERING
