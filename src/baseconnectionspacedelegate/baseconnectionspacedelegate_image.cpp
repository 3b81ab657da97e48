// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <string_view>

#include "baseconnectionspacedelegate/baseconnectionspacedelegate.h"
#include "baseconnectionspacedelegate/channels.h"
#include "baseconnectionspacedelegate/interleavedline.h"
#include "baseconnectionspacedelegate/spacekinds.h"
#include "core/libsupport/vlogger/logmessage.h"

namespace VANTIX::RENDERING {

namespace {

constexpr const char* kModule = "src/baseconnectionspacedelegate";

constexpr std::int32_t kMostDepth = 16;

void LogMissingLine(std::int32_t line, std::size_t /*channel*/) {
    LogError(kModule) << "No data for line " << line;
}

void LogMissingPlane(std::int32_t line, std::size_t channel) {
    LogError(kModule) << "Line " << line << " channel " << channel << " is missing.";
}

void LogMissingChannelLine(std::int32_t line, std::size_t channel) {
    LogError(kModule) << "No data for line " << line << " of channel " << channel;
}

/// The channels whose samples make up the pixels of an image, in their order.
struct Channels {
    std::array<IChannelData*, InterleavedLine::kMostPlanes> data{};  ///< null: none of its own
    std::size_t count = 0;
    std::size_t complemented = 0;  ///< so many of them, from the first
    std::uint64_t absent = 0;      ///< bit i: channel i is marked absent
    std::uint8_t blank = 0;        ///< bytes of the channels without data
    std::function<void(std::int32_t line, std::size_t channel)> logMissing = LogMissingChannelLine;

    /// Adds the channel; false (logged) when it has no data. `kind` is "primary" or "extra".
    bool Add(const IChannelDesc* channel, std::int32_t index, const char* kind) {
        IChannelData* attached =
            AttachedData(count < data.size() ? channel : nullptr, index, kind, kModule);
        if (attached == nullptr) {
            return false;
        }
        data[count++] = attached;
        return true;
    }

    /// The planes of line `y`; false (logged) when one is missing.
    bool GetLine(std::int32_t y, const std::uint8_t* blankLine, InterleavedLine::Planes& planes) {
        for (std::size_t k = 0; k < count; ++k) {
            const std::uint8_t* own = data[k] == nullptr ? nullptr : data[k]->GetLine(y);
            planes[k] = IsAbsent(k) ? blankLine : own;
            if (planes[k] == nullptr) {
                logMissing(y, k);
                return false;
            }
        }
        return true;
    }

    [[nodiscard]] bool IsAbsent(std::size_t index) const { return (absent >> index & 1U) != 0; }
};

/// Takes the data of the primaries that the raster's mask marks absent away. Without them RGB is
/// dark and CMYK, whose samples are complements, without ink.
void DropAbsentPrimaries(const Raster& raster, std::size_t primaries, Channels& channels) {
    channels.blank = primaries == 4 ? 0xFF : 0;
    std::uint64_t mask = 0;
    if (!raster.GetChannelMask(mask)) {
        return;
    }
    for (std::size_t i = 0; i < primaries; ++i) {
        if ((mask >> i & 1U) == 0) {
            channels.data[i] = nullptr;
            channels.absent |= std::uint64_t{1} << i;
        }
    }
}

/// All primaries and all spot channels.
bool GatherChannels(const Raster& raster, Channels& channels) {
    const std::int32_t primaries = raster.GetPrimaryCount();
    for (std::int32_t i = 0; i < primaries; ++i) {
        if (!channels.Add(raster.GetPrimary(i), i, "primary")) {
            return false;
        }
    }
    channels.complemented = primaries == 4 ? 4 : 0;
    DropAbsentPrimaries(raster, channels.count, channels);
    for (std::int32_t i = 0; i < raster.GetExtraCount(); ++i) {
        const IChannelDesc* channel = raster.GetExtra(i);
        const bool isOther = channel != nullptr && channel->GetType() != "SPOT"_cc;
        if (!isOther && !channels.Add(channel, i, "extra")) {
            return false;
        }
    }
    return true;
}

/// The first primaries of a raster that has no other channels of interest.
bool GatherPrimaries(const Raster& raster, std::int32_t count, Channels& channels) {
    channels.count = static_cast<std::size_t>(count);
    for (std::int32_t i = 0; i < std::min(count, raster.GetPrimaryCount()); ++i) {
        const IChannelDesc* channel = raster.GetPrimary(i);
        channels.data[static_cast<std::size_t>(i)] =
            channel == nullptr ? nullptr : channel->GetData();
    }
    channels.logMissing = count == 1 ? LogMissingLine : LogMissingPlane;
    DropAbsentPrimaries(raster, channels.count, channels);
    return std::any_of(channels.data.begin(), channels.data.end(),
                       [](const IChannelData* each) { return each != nullptr; });
}

void LogNoMemory(std::size_t channels, std::int32_t depth, std::size_t bytes) {
    if (channels == 4) {
        LogError(kModule) << "Could not create a buffer for the "
                          << (depth == 16 ? "12 bit" : "destination") << " CMYK values. " << bytes
                          << " bytes required.";
        return;
    }
    const char* key = depth == 16 ? "kCalibratedRGBKey" : "kColorSpaceSignatureRGB";
    LogError(kModule) << "Could not make a packed line for "
                      << (channels == 1 ? "kCalibratedGrayKey" : key) << " output.";
}

/// Writes the lines of one channel as they are stored.
void WriteStoredLines(Channels& channels, std::int32_t height, std::size_t lineBytes,
                      const std::uint8_t* blank, PS::IPostScriptOutputContext& out) {
    InterleavedLine::Planes planes{};
    for (std::int32_t y = 0; y < height && channels.GetLine(y, blank, planes); ++y) {
        out.WriteStreamData(planes[0], static_cast<std::int32_t>(lineBytes));
    }
}

void WriteLines(Channels& channels, std::int32_t height, InterleavedLine& line,
                const std::uint8_t* blank, PS::IPostScriptOutputContext& out) {
    InterleavedLine::Planes planes{};
    for (std::int32_t y = 0; y < height && channels.GetLine(y, blank, planes); ++y) {
        out.WriteStreamData(line.Build(planes, channels.complemented),
                            static_cast<std::int32_t>(line.Size()));
    }
}

/// False (logged) for a depth of which so many channels do not make up pixels.
bool IsSupportedDepth(std::int32_t depth, std::size_t channels) {
    const bool isSupported = depth <= kMostDepth && (depth >= 8 || channels == 1);
    if (!isSupported) {
        LogError(kModule) << "Don't support a bit depth of " << depth;
    }
    return isSupported;
}

/// Writes the pixels that the channels make up, and ends the data.
void WritePixels(Channels& channels, std::int32_t width, std::int32_t height, std::int32_t depth,
                 GRAPHICS::ISwizzleServices* swizzle, PS::IPostScriptOutputContext& out) {
    if (!IsSupportedDepth(depth, channels.count)) {
        return;
    }
    const std::size_t lineBytes =
        (static_cast<std::size_t>(width) * static_cast<std::size_t>(depth) + 7) / 8;
    PS::WorkBuffer<std::uint8_t> blank(lineBytes);
    if (blank.Data() == nullptr) {
        LogNoMemory(channels.count, depth, lineBytes);
        return;
    }
    std::fill_n(blank.Data(), lineBytes, channels.blank);
    if (channels.count == 1 && depth != 16 && channels.complemented == 0) {
        WriteStoredLines(channels, height, lineBytes, blank.Data(), out);
    } else {
        InterleavedLine line(channels.count, width, depth, swizzle);
        if (!line.HasMemory()) {
            LogNoMemory(channels.count, depth, line.Size());
            return;
        }
        WriteLines(channels, height, line, blank.Data(), out);
    }
    out.FlushStreamData();
}

}  // namespace

void BaseConnectionSpaceDelegate::Image(Raster& raster, float x, float y, float width,
                                        float height) {
    SpotChannels spots = FindSpotChannels(raster);
    const TInterfacePtr<Raster> flattened =
        mConvertSpotsToProcess ? FlattenSpots(raster, spots) : TInterfacePtr<Raster>(&raster);
    Raster& drawn = *flattened;
    if (mJawsWorkaround) {
        if (OutputContext() == nullptr) {
            return;
        }
        WriteSoftMaskCompositeAlpha(drawn,
                                    mGraphicsState == nullptr ? 1 : mGraphicsState->GetAlpha(true));
    }
    IConnectionColorSpace* space = drawn.GetColorSpace();
    const auto* device = AsDevice(space);
    if (auto* indexed = AsIndexed(space)) {
        InjectIndexedImage(drawn, x, y, width, height, indexed);
    } else if (spots.empty() && device != nullptr) {
        InjectDeviceSpaceImage(drawn, x, y, width, height, device->GetFamily());
    } else {
        InjectRaster(drawn, x, y, width, height);
    }
}

BaseConnectionSpaceDelegate::SpotChannels BaseConnectionSpaceDelegate::FindSpotChannels(
    const Raster& raster) {
    SpotChannels spots;
    for (std::int32_t i = 0; i < raster.GetExtraCount(); ++i) {
        const IChannelDesc* channel = raster.GetExtra(i);
        if (channel != nullptr && channel->GetType() == "SPOT"_cc) {
            spots.push_back(channel);
        }
    }
    return spots;
}

bool BaseConnectionSpaceDelegate::HasMaskChannel(const Raster& raster) {
    const IChannelDesc* channel = AlphaChannel(raster);
    const IChannelData* data = channel == nullptr ? nullptr : channel->GetData();
    return data != nullptr && !data->IsFullyOpaque();
}

bool BaseConnectionSpaceDelegate::HasImageData(const Raster& raster, std::int32_t channels,
                                               const MissingPlaneLog& logMissing) {
    Channels gathered;
    if (!GatherPrimaries(raster, channels, gathered)) {
        LogError(kModule) << "No Primary channel data.";
        return false;
    }
    for (std::size_t k = 0; k < gathered.count; ++k) {
        if (gathered.data[k] == nullptr && !gathered.IsAbsent(k)) {
            (logMissing == nullptr ? gathered.logMissing : logMissing)(0, k);
            return false;
        }
    }
    return IsSupportedDepth(raster.GetBitsPerSample(), gathered.count);
}

bool BaseConnectionSpaceDelegate::HasImageData(const Raster& raster) {
    Channels gathered;
    return GatherChannels(raster, gathered) && gathered.count > 0 &&
           IsSupportedDepth(raster.GetBitsPerSample(), gathered.count);
}

void BaseConnectionSpaceDelegate::WriteImageData(Raster& raster, std::int32_t channels,
                                                 std::int32_t depth, std::int32_t width,
                                                 const MissingPlaneLog& logMissing) {
    PS::IPostScriptOutputContext* out = OutputContext();
    if (out == nullptr || (channels != 1 && channels != 3 && channels != 4)) {
        return;
    }
    Channels gathered;
    if (!GatherPrimaries(raster, channels, gathered)) {
        LogError(kModule) << "No Primary channel data.";
        return;
    }
    if (logMissing != nullptr) {
        gathered.logMissing = logMissing;
    }
    WritePixels(gathered, width, raster.GetHeight(), depth, mSwizzle.Get(), *out);
}

void BaseConnectionSpaceDelegate::WriteImageData(Raster& raster) {
    PS::IPostScriptOutputContext* out = OutputContext();
    Channels gathered;
    if (out == nullptr || !GatherChannels(raster, gathered) || gathered.count == 0) {
        return;
    }
    WritePixels(gathered, raster.GetWidth(), raster.GetHeight(), raster.GetBitsPerSample(),
                mSwizzle.Get(), *out);
}

void BaseConnectionSpaceDelegate::WriteInkImageData(Raster& raster) {
    PS::IPostScriptOutputContext* out = OutputContext();
    Channels gathered;
    if (out == nullptr || !GatherChannels(raster, gathered)) {
        return;
    }
    auto* const last = gathered.data.begin() + gathered.count;
    auto* const end = std::remove(gathered.data.begin(), last, nullptr);
    gathered.complemented =
        static_cast<std::size_t>(raster.GetPrimaryCount()) - static_cast<std::size_t>(last - end);
    gathered.count = static_cast<std::size_t>(end - gathered.data.begin());
    gathered.absent = 0;
    WritePixels(gathered, raster.GetWidth(), raster.GetHeight(), raster.GetBitsPerSample(),
                mSwizzle.Get(), *out);
}

Status BaseConnectionSpaceDelegate::InjectGreyscaleImageInAlternateColorSpace(
    Raster& /*raster*/, float /*x*/, float /*y*/, float /*width*/, float /*height*/,
    std::int32_t /*depth*/) {
    constexpr Status kNotDone = 72;
    LogError(kModule) << "Unimplemented";
    return kNotDone;
}

void BaseConnectionSpaceDelegate::InjectRGBImage(Raster& raster, float /*x*/, float /*y*/,
                                                 float /*width*/, float /*height*/) {
    PS::IPostScriptOutputContext* out = OutputContext();
    if (out == nullptr || !HasImageData(raster, 3)) {
        return;
    }
    constexpr std::string_view kSpace = "/DeviceRGB";
    const std::int32_t depth = raster.GetBitsPerSample();
    out->WriteImageDictionary(raster.GetWidth(), raster.GetHeight(), depth == 16 ? 12 : depth,
                              kSpace.data(), static_cast<std::int32_t>(kSpace.size()),
                              "[0 1 0 1 0 1]", false);
    WriteImageData(raster, 3, depth, raster.GetWidth());
}

void BaseConnectionSpaceDelegate::InjectRaster(Raster& /*raster*/, float /*x*/, float /*y*/,
                                               float /*width*/, float /*height*/) {
    LogError(kModule) << "Unimplemented.";
}

void BaseConnectionSpaceDelegate::InjectDeviceSpaceImage(Raster& /*raster*/, float /*x*/,
                                                         float /*y*/, float /*width*/,
                                                         float /*height*/, FourCC /*deviceKey*/) {
    LogError(kModule) << "Unimplemented.";
}

void BaseConnectionSpaceDelegate::WriteGreyscaleImage(Raster& /*raster*/, float /*x*/, float /*y*/,
                                                      float /*width*/, float /*height*/) {
    LogError(kModule) << "Unimplemented.";
}

void BaseConnectionSpaceDelegate::InjectCMYKImage(Raster& /*raster*/, float /*x*/, float /*y*/,
                                                  float /*width*/, float /*height*/) {}

void BaseConnectionSpaceDelegate::InjectCalibratedGreyscaleImage(
    Raster& /*raster*/, float /*x*/, float /*y*/, float /*width*/, float /*height*/,
    COLOR::ICalibratedConnectionColorSpace* /*space*/) {
    LogError(kModule) << "Unimplemented.";
}

void BaseConnectionSpaceDelegate::InjectCalibratedRGBImage(
    Raster& /*raster*/, float /*x*/, float /*y*/, float /*width*/, float /*height*/,
    COLOR::ICalibratedConnectionColorSpace* /*space*/) {
    LogError(kModule) << "Unimplemented.";
}

void BaseConnectionSpaceDelegate::InjectLabImage(
    Raster& /*raster*/, float /*x*/, float /*y*/, float /*width*/, float /*height*/,
    COLOR::ICalibratedConnectionColorSpace* /*space*/) {
    LogError(kModule) << "Unimplemented.";
}

}  // namespace VANTIX::RENDERING
