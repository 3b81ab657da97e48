// SPDX-License-Identifier: MIT
// Rasters without spot plates: their inks are painted over the process channels.
#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "baseconnectionspacedelegate/baseconnectionspacedelegate.h"
#include "baseconnectionspacedelegate/devicenlines.h"
#include "baseconnectionspacedelegate/samples.h"
#include "baseconnectionspacedelegate/spacekinds.h"
#include "core/graphics/pluginhelper/rasterhelpers.h"
#include "core/libsupport/vlogger/logmessage.h"

namespace VANTIX::RENDERING {

namespace {

constexpr const char* kModule = "src/baseconnectionspacedelegate";
constexpr Status kFailed = STATUS::kInvalidArgument;

Status Fail(const char* message) {
    LogError(kModule) << message;
    return kFailed;
}

IChannelData* DataOf(const IChannelDesc* channel) {
    return channel == nullptr ? nullptr : channel->GetData();
}

bool HaveSpaces(const std::vector<const IChannelDesc*>& spots) {
    return std::all_of(spots.begin(), spots.end(),
                       [](const auto* spot) { return spot->GetSeparationSpace() != nullptr; });
}

/// Spaces whose primaries need no conversion to take inks.
bool TakesInks(IConnectionColorSpace* space) {
    const FourCC family = GetOwnFamily(space);
    const auto* calibrated = AsCalibrated(space);
    return family == "rgb "_cc || family == "cmyk"_cc ||
           (calibrated != nullptr && calibrated->GetFamily() == "crgb"_cc);
}

/// Copies all lines of one channel; false when one is missing.
bool CopyLines(IChannelData& from, IChannelData& to, std::int32_t height) {
    for (std::int32_t y = 0; y < height; ++y) {
        const std::uint8_t* line = from.GetLine(y);
        if (line == nullptr || to.SetLine(y, line) != STATUS::kOk) {
            return false;
        }
    }
    return true;
}

bool CopyPrimaries(const Raster& from, const Raster& to) {
    for (std::int32_t i = 0; i < to.GetPrimaryCount(); ++i) {
        IChannelData* source = DataOf(from.GetPrimary(i));
        IChannelData* target = DataOf(to.GetPrimary(i));
        if (source == nullptr || target == nullptr ||
            !CopyLines(*source, *target, from.GetHeight())) {
            return false;
        }
    }
    return true;
}

/// White paper in every primary.
bool ClearPrimaries(const Raster& raster) {
    for (std::int32_t i = 0; i < raster.GetPrimaryCount(); ++i) {
        IChannelData* data = DataOf(raster.GetPrimary(i));
        if (data == nullptr) {
            return false;
        }
        const std::vector<std::uint8_t> white(static_cast<std::size_t>(data->GetLineBytes()), 0xFF);
        for (std::int32_t y = 0; y < raster.GetHeight(); ++y) {
            data->SetLine(y, white.data());
        }
    }
    return true;
}

/// One ink with its tables.
struct Ink {
    IChannelData* data = nullptr;
    std::vector<float> coverage{};
    std::array<float, 4> full{};  ///< colour of full tint in units of samples
};

/// What the inks of a raster are painted with.
struct InkPainter {
    std::int32_t width;
    std::int32_t height;
    bool hasWords;
    bool isInverted;  ///< spot samples are complements

    /// Paints `line` of primary `index`.
    template <class Sample>
    void Paint(const Ink& ink, std::size_t index, const std::uint8_t* spots,
               std::uint8_t* line) const {
        const auto mask = static_cast<Sample>(isInverted ? ~Sample{0} : Sample{0});
        for (std::size_t x = 0; x < static_cast<std::size_t>(width); ++x) {
            Sample spot;
            Sample sample;
            std::memcpy(&spot, spots + x * sizeof spot, sizeof spot);
            std::memcpy(&sample, line + x * sizeof sample, sizeof sample);
            spot = static_cast<Sample>(spot ^ mask);
            const std::size_t entry = sizeof(Sample) == 2 ? spot >> 4U : spot;
            const float change =
                (ink.full[index] - static_cast<float>(sample)) * ink.coverage[entry];
            sample = static_cast<Sample>(sample + static_cast<std::int32_t>(change));
            std::memcpy(line + x * sizeof sample, &sample, sizeof sample);
        }
    }

    bool PaintInk(const Ink& ink, const Raster& raster) const {
        std::vector<std::uint8_t> line;
        for (std::int32_t y = 0; y < height; ++y) {
            const std::uint8_t* spots = ink.data->GetLine(y);
            for (std::int32_t i = 0; i < raster.GetPrimaryCount(); ++i) {
                IChannelData* data = DataOf(raster.GetPrimary(i));
                const std::uint8_t* stored = data == nullptr ? nullptr : data->GetLine(y);
                if (spots == nullptr || stored == nullptr) {
                    LogError(kModule) << "No data for line " << y;
                    return false;
                }
                line.assign(stored, stored + data->GetLineBytes());
                const auto index = static_cast<std::size_t>(i);
                if (hasWords) {
                    Paint<std::uint16_t>(ink, index, spots, line.data());
                } else {
                    Paint<std::uint8_t>(ink, index, spots, line.data());
                }
                data->SetLine(y, line.data());
            }
        }
        return true;
    }
};

}  // namespace

Status BaseConnectionSpaceDelegate::CreateRasterForSpotComposite(const Raster& raster,
                                                                 TInterfacePtr<Raster>& out,
                                                                 bool allSpotsHaveSpaces) const {
    IConnectionColorSpace* space = raster.GetColorSpace();
    const bool isAllSpots = raster.GetPrimaryCount() == 0;
    const auto* deviceN = AsDeviceN(space);
    if (deviceN != nullptr && deviceN->GetColorantCount() > 0 && !allSpotsHaveSpaces) {
        return Fail("Cannot create raster DeviceN image");
    }
    const bool isKept = !isAllSpots && TakesInks(space);
    IConnectionColorSpace* target = isKept ? space : mDestination.Get();
    const std::int32_t width = raster.GetWidth();
    const std::int32_t height = raster.GetHeight();
    const auto bits = static_cast<std::int8_t>(raster.GetBitsPerSample());
    TInterfacePtr<Raster> made;
    if (target == nullptr || !GRAPHICS::HELPER::CreateRasterComponent(
                                 mFactory, target, width, height, bits, 0, 0, 0, 0, made)) {
        return kFailed;
    }
    TInterfacePtr<IChannelDesc> alpha;
    TInterfacePtr<IChannelData> data;
    IChannelDesc* sourceAlpha = raster.GetExtra(0);
    if (DataOf(sourceAlpha) == nullptr ||
        !GRAPHICS::HELPER::CreateChannelData(mFactory, width, height, sourceAlpha->GetBits(),
                                             sourceAlpha->GetData()->GetLineBytes(), data) ||
        !GRAPHICS::HELPER::CreateChannelDesc(mFactory, sourceAlpha->GetType(), 0,
                                             static_cast<std::int8_t>(sourceAlpha->GetBits()),
                                             width, height, sourceAlpha->GetOpacity(), alpha)) {
        return kFailed;
    }
    alpha->SetData(data.Get());
    if (made->AddExtra(alpha.Get()) != STATUS::kOk) {
        return kFailed;
    }
    bool isFilled = CopyLines(*sourceAlpha->GetData(), *data, height);
    if (isAllSpots) {
        isFilled = isFilled && ClearPrimaries(*made);
    } else if (isKept) {
        isFilled = isFilled && CopyPrimaries(raster, *made);
    } else {
        const auto intents = RenderingIntents(TRenderingIntent::kPerceptual);
        DeviceNConversion conversion{
            target,     &raster,       made.Get(),    {}, sourceAlpha->GetData(),
            data.Get(), intents.first, intents.second};
        for (std::int32_t i = 0; i < raster.GetPrimaryCount(); ++i) {
            conversion.channels.push_back(DataOf(raster.GetPrimary(i)));
        }
        isFilled = isFilled && WriteNBitDeviceNTo3ChanSpace(conversion) == STATUS::kOk;
    }
    if (isFilled) {
        out = std::move(made);
    }
    return isFilled ? STATUS::kOk : kFailed;
}

TInterfacePtr<Raster> BaseConnectionSpaceDelegate::FlattenSpots(Raster& raster,
                                                                SpotChannels& spots) const {
    TInterfacePtr<Raster> flattened;
    if (!spots.empty()) {
        if (CompositeSpotsToNewRasterInDelegateColorSpace(raster, spots, flattened) ==
            STATUS::kOk) {
            spots.clear();
        } else {
            LogError(kModule) << "There was a problem flattening separation space(s) to the "
                                 "raster. Continuing without separation channels.";
        }
    }
    return flattened ? flattened : TInterfacePtr<Raster>(&raster);
}

Status BaseConnectionSpaceDelegate::CompositeSpotsToNewRasterInDelegateColorSpace(
    const Raster& raster, const SpotChannels& spots, TInterfacePtr<Raster>& out) const {
    out = nullptr;
    if (DataOf(raster.GetExtraCount() > 0 ? raster.GetExtra(0) : nullptr) == nullptr) {
        return Fail("Problem grabbing an alpha channel.");
    }
    const bool isAllSpots = raster.GetPrimaryCount() == 0;
    const bool haveSpaces = HaveSpaces(spots);
    const auto* deviceN = AsDeviceN(raster.GetColorSpace());
    if (deviceN != nullptr && deviceN->GetColorantCount() > 0 && !haveSpaces) {
        return CompositeDeviceNRasterToNewRasterInDelegateColorSpace(raster, out);
    }
    if (isAllSpots && deviceN == nullptr) {
        return Fail("Expecting DeviceN colorSpace.");
    }
    const std::int32_t depth = raster.GetBitsPerSample();
    if (depth != 8 && depth != 16) {
        LogError(kModule) << "Don't support " << depth << " bit data yet.";
        return kFailed;
    }
    TInterfacePtr<Raster> made;
    if (CreateRasterForSpotComposite(raster, made, haveSpaces) != STATUS::kOk) {
        return Fail("Problem manufacturing new raster based on the old raster.");
    }
    const std::int32_t primaries = made->GetPrimaryCount();
    if (primaries != 1 && primaries != 3 && primaries != 4) {
        LogError(kModule) << "Don't support " << primaries << " primary channels yet.";
        return kFailed;
    }
    if (!PaintSpots(raster, spots, *made, isAllSpots, haveSpaces)) {
        return kFailed;
    }
    out = std::move(made);
    return STATUS::kOk;
}

bool BaseConnectionSpaceDelegate::PaintSpots(const Raster& raster, const SpotChannels& spots,
                                             Raster& target, bool isAllSpots,
                                             bool haveSpaces) const {
    const bool hasWords = raster.GetBitsPerSample() == 16;
    const std::size_t size = hasWords ? 4096 : 256;
    const auto primaries = static_cast<std::size_t>(target.GetPrimaryCount());
    const auto intents = RenderingIntents(TRenderingIntent::kPerceptual);
    const InkPainter painter{raster.GetWidth(), raster.GetHeight(), hasWords,
                             !(isAllSpots && haveSpaces)};
    std::vector<float> colours(primaries * size);
    Ink ink;
    ink.coverage.resize(size);
    for (std::size_t i = 0; i < spots.size(); ++i) {
        const auto* space = spots[i]->GetSeparationSpace();
        ink.data = spots[i]->GetData();
        if (ink.data == nullptr) {
            LogError(kModule) << "Separation channel missing channel data.";
            return false;
        }
        if (space == nullptr) {
            LogNotice(kModule) << "Supposed separation channel missing separation color space.";
            continue;
        }
        const float opacity = isAllSpots && i == 0 ? 1.0F : spots[i]->GetOpacity();
        if (space->FillSpotTables(*target.GetColorSpace(), colours.data(), ink.coverage.data(),
                                  static_cast<std::int32_t>(size), intents.first, intents.second,
                                  opacity) != STATUS::kOk) {
            const CoreString* colorant = space->GetColorantName();
            const std::string name =
                colorant == nullptr ? std::string() : colorant->GetUTF8String().value_or("");
            LogError(kModule) << "Failed to populate LUT buffer for separation space. The "
                              << name.c_str() << " plate won't flatten.";
            return false;
        }
        const float scale = hasWords ? 65535.0F : 255.0F;
        std::transform(colours.end() - static_cast<std::ptrdiff_t>(primaries), colours.end(),
                       ink.full.begin(), [scale](float value) { return value * scale; });
        if (!painter.PaintInk(ink, target)) {
            return false;
        }
    }
    return true;
}

Status BaseConnectionSpaceDelegate::CompositeDeviceNRasterToNewRasterInDelegateColorSpace(
    const Raster& raster, TInterfacePtr<Raster>& out) const {
    const std::int32_t depth = raster.GetBitsPerSample();
    if (depth != 8 && depth != 16) {
        LogError(kModule) << "Do not yet support a depth of " << depth << " here.";
        return kFailed;
    }
    const std::int32_t width = raster.GetWidth();
    const std::int32_t height = raster.GetHeight();
    const auto bits = static_cast<std::int8_t>(depth);
    IChannelDesc* sourceAlpha = raster.GetExtra(0);
    TInterfacePtr<Raster> made;
    TInterfacePtr<IChannelDesc> alpha;
    TInterfacePtr<IChannelData> data;
    if (!mDestination || !GRAPHICS::HELPER::CreateRasterComponent(
                             mFactory, mDestination.Get(), width, height, bits, 0, 0, 0, 0, made)) {
        return Fail("Problem manufacturing new raster based on the old raster.");
    }
    if (DataOf(sourceAlpha) == nullptr ||
        !GRAPHICS::HELPER::CreateChannelData(mFactory, width, height, sourceAlpha->GetBits(),
                                             sourceAlpha->GetData()->GetLineBytes(), data) ||
        !GRAPHICS::HELPER::CreateChannelDesc(mFactory, "LPHA"_cc, 0,
                                             static_cast<std::int8_t>(sourceAlpha->GetBits()),
                                             width, height, sourceAlpha->GetOpacity(), alpha)) {
        return Fail("Problem grabbing an alpha channel.");
    }
    alpha->SetData(data.Get());
    made->AddExtra(alpha.Get());
    const auto intents = RenderingIntents(TRenderingIntent::kPerceptual);
    DeviceNConversion conversion{mDestination.Get(),     &raster,    made.Get(),    {},
                                 sourceAlpha->GetData(), data.Get(), intents.first, intents.second};
    for (const IChannelDesc* spot : FindSpotChannels(raster)) {
        conversion.channels.push_back(spot->GetData());
    }
    for (std::int32_t i = 0; i < made->GetPrimaryCount(); ++i) {
        if (DataOf(made->GetPrimary(i)) == nullptr) {
            LogError(kModule) << "Missing channel data for primary channel " << i;
            return kFailed;
        }
    }
    const std::int32_t primaries = made->GetPrimaryCount();
    Status status = kFailed;
    if (primaries == 4) {
        status = WriteNBitDeviceNTo4ChanSpace(conversion);
    } else if (primaries == 1 || primaries == 3) {
        status = WriteNBitDeviceNTo3ChanSpace(conversion);
    } else {
        LogError(kModule) << "Don't support " << primaries << " primary channels yet.";
    }
    if (status == STATUS::kOk) {
        out = std::move(made);
    }
    return status;
}

}  // namespace VANTIX::RENDERING
