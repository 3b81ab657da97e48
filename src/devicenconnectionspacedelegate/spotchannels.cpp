// SPDX-License-Identifier: MIT
#include "devicenconnectionspacedelegate/spotchannels.h"

#include <algorithm>
#include <array>
#include <memory>
#include <utility>
#include <vector>

#include "baseconnectionspacedelegate/madechanneldata.h"
#include "baseconnectionspacedelegate/spacekinds.h"
#include "core/color/iconnectioncolorspacefactory.h"
#include "core/graphics/pluginhelper/rasterhelpers.h"
#include "core/libsupport/vlogger/logmessage.h"

namespace VANTIX::RENDERING {

namespace {

constexpr const char* kModule = "src/devicenconnectionspacedelegate";

constexpr Status kFailed = STATUS::kInvalidArgument;

Status Fail(const char* message) {
    LogError(kModule) << message;
    return kFailed;
}

std::int32_t ComponentsOfSignature(FourCC signature) {
    switch (signature) {
        case "CMYK"_cc:
            return 4;
        case "GRAY"_cc:
            return 1;
        case "RGB "_cc:
        case "HSB "_cc:
        case "Lab "_cc:
            return 3;
        default:
            return 0;
    }
}

void LogSignature(FourCC signature) {
    LogError(kModule) << "Color signature " << static_cast<std::uint32_t>(signature)
                      << " not handled.";
}

/// One component of the palette colours that indices stand for.
class LutChannelData : public MadeChannelData {
public:
    using Table = std::array<std::uint8_t, 256>;

    LutChannelData(TInterfacePtr<IChannelData> indices, std::int32_t width, std::int32_t depth,
                   const Table& table)
        : MadeChannelData(static_cast<std::size_t>(width)),
          mIndices(std::move(indices)),
          mDepth(static_cast<unsigned>(depth)),
          mTable(table),
          mLine(static_cast<std::size_t>(width)) {}

    const std::uint8_t* GetLine(std::int32_t y) override {
        const std::uint8_t* line = mIndices->GetLine(y);
        if (line == nullptr) {
            return nullptr;
        }
        const unsigned mask = (1U << mDepth) - 1;
        for (std::size_t x = 0; x < mLine.size(); ++x) {
            const std::size_t bit = x * mDepth;
            mLine[x] = mTable[line[bit / 8] >> (8 - mDepth - bit % 8) & mask];
        }
        return mLine.data();
    }

private:
    TInterfacePtr<IChannelData> mIndices;
    unsigned mDepth;
    Table mTable;
    std::vector<std::uint8_t> mLine;
};

/// The tint function of a spot: from nothing to the ink's full colour.
TInterfacePtr<COLOR::IColorFunction> MakeTint(IClassFactory& factory, const float* full,
                                              std::int32_t count) {
    const auto functions =
        CreateObject<COLOR::IColorFunctionFactory>(&factory, COLOR::CLSID_COLORFUNCTIONFACTORY);
    if (!functions) {
        LogError(kModule) << "Failed to create IColorFunctionFactory.";
        return nullptr;
    }
    constexpr float kUnits[] = {0, 1, 0, 1, 0, 1, 0, 1};
    constexpr float kZeros[4] = {};
    auto tint = TInterfacePtr<COLOR::IColorFunction>::Adopt(
        functions->CreateExponentialFunction(kUnits, kUnits, kZeros, full, count, 1));
    if (!tint) {
        LogError(kModule) << "Failed to create ExponentialInterpolationFunction";
    }
    return tint;
}

const COLOR::IInk* InkAt(const COLOR::IInkCollection& inks, std::int32_t index) {
    const COLOR::IInkInstance* instance = inks.GetInkInstance(index);
    if (instance == nullptr) {
        LogError(kModule) << "Could not get ink instance [" << index << "].";
        return nullptr;
    }
    const COLOR::IInk* ink = instance->GetInk();
    if (ink == nullptr) {
        LogError(kModule) << "The ink instance doesn't have an ink.";
    }
    return ink;
}

}  // namespace

IConnectionColorSpace* CreateAlternateColorSpaceForSpot(IClassFactory& factory, FourCC signature) {
    const auto colors = CreateObject<COLOR::IConnectionColorSpaceFactory>(
        &factory, COLOR::IID_ICONNECTIONCOLORSPACEFACTORY);
    if (!colors) {
        LogError(kModule) << "Could not create colour space factory.";
        return nullptr;
    }
    constexpr float kDefaultWhite[3] = {};
    switch (signature) {
        case "CMYK"_cc:
            return colors->CreateDeviceCMYKColorSpace();
        case "GRAY"_cc:
            return colors->CreateDeviceGrayColorSpace();
        case "RGB "_cc:
        case "HSB "_cc:
            return colors->CreateDeviceRGBColorSpace();
        case "Lab "_cc:
            return colors->CreateLabColorSpace(kDefaultWhite);
        default:
            LogSignature(signature);
            return nullptr;
    }
}

Status AddColorSpaceToSpotChannel(IClassFactory& factory, IChannelDesc* channel,
                                  const COLOR::IInk& ink) {
    const FourCC signature = ink.GetColorSignature();
    const auto alternate = TInterfacePtr<IConnectionColorSpace>::Adopt(
        CreateAlternateColorSpaceForSpot(factory, signature));
    if (!alternate) {
        return Fail("Failed to create alternate ColorSpace");
    }
    float full[4] = {};
    const std::int32_t count = ComponentsOfSignature(signature);
    if (ink.GetSignatureValues(full) < count) {
        LogSignature(signature);
        return kFailed;
    }
    const auto tint = MakeTint(factory, full, count);
    const CoreString* name = ink.GetName();
    const auto colors = CreateObject<COLOR::IConnectionColorSpaceFactory>(
        &factory, COLOR::IID_ICONNECTIONCOLORSPACEFACTORY);
    const auto space =
        tint && name != nullptr && colors
            ? TInterfacePtr<IConnectionColorSpace>::Adopt(
                  colors->CreateSeparationColorSpace(*name, alternate.Get(), tint.Get()))
            : nullptr;
    auto* separation = AsSeparation(space.Get());
    if (separation == nullptr || channel == nullptr) {
        return Fail("Failed to create Separation ColorSpace");
    }
    channel->SetSeparationSpace(separation);
    return STATUS::kOk;
}

bool AddSpotOfInks(IClassFactory& factory, const IChannelDesc& spot, Raster& destination) {
    const std::int32_t width = destination.GetWidth();
    TInterfacePtr<IChannelDesc> channel;
    if (spot.GetData() == nullptr || spot.GetBits() != 8 ||
        !GRAPHICS::HELPER::CreateChannelDesc(&factory, "SPOT"_cc, destination.GetExtraCount(), 8,
                                             width, destination.GetHeight(), spot.GetOpacity(),
                                             channel)) {
        LogError(kModule) << "Missing channel data for extra channel";
        return false;
    }
    LutChannelData::Table complements{};
    for (std::size_t i = 0; i < complements.size(); ++i) {
        complements[i] = static_cast<std::uint8_t>(255 - i);
    }
    const auto data = MakeObject<LutChannelData>(TInterfacePtr<IChannelData>(spot.GetData()), width,
                                                 8, complements);
    channel->SetSeparationSpace(spot.GetSeparationSpace());
    channel->SetData(data.Get());
    return destination.AddExtra(channel.Get()) == STATUS::kOk;
}

Status AddSpotChannelDescFromLUT(IClassFactory& factory, IChannelData* indices, std::int32_t depth,
                                 const std::uint8_t* table, std::int32_t entries,
                                 std::int32_t components, const COLOR::IInkCollection* inks,
                                 TInterfacePtr<Raster>& destination) {
    if (indices == nullptr || depth < 1 || depth > 8) {
        return Fail("Source index channel data is invalid.");
    }
    if (table == nullptr || entries < 1) {
        return Fail("LUT is invalid.");
    }
    if (!destination) {
        return Fail("Destination channel desc is not NULL.");
    }
    const std::int32_t count = inks == nullptr ? 0 : inks->GetInkCount();
    if (count <= 0) {
        return Fail("Ink collection is empty.");
    }
    if (count != components) {
        return Fail(
            "Ink collection count and number of component in LUT are not matching. That "
            "should be same.");
    }
    const std::int32_t width = destination->GetWidth();
    for (std::int32_t k = 0; k < count; ++k) {
        const COLOR::IInk* ink = InkAt(*inks, k);
        TInterfacePtr<IChannelDesc> channel;
        if (ink == nullptr ||
            !GRAPHICS::HELPER::CreateChannelDesc(&factory, "SPOT"_cc, k, 8, width,
                                                 destination->GetHeight(), 1, channel)) {
            return kFailed;
        }
        LutChannelData::Table plane{};
        for (std::int32_t i = 0; i < static_cast<std::int32_t>(plane.size()); ++i) {
            const std::ptrdiff_t entry = std::min(i, entries - 1);
            plane[static_cast<std::size_t>(i)] = table[entry * components + k];
        }
        const auto data =
            MakeObject<LutChannelData>(TInterfacePtr<IChannelData>(indices), width, depth, plane);
        channel->SetData(data.Get());
        const Status status = AddColorSpaceToSpotChannel(factory, channel.Get(), *ink);
        if (status != STATUS::kOk) {
            return status;
        }
        if (destination->AddExtra(channel.Get()) != STATUS::kOk) {
            return kFailed;
        }
    }
    return STATUS::kOk;
}

}  // namespace VANTIX::RENDERING
