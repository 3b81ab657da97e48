// SPDX-License-Identifier: MIT
// Images of process colours with spot plates: DeviceN images whose tint transform prints all
// colorants over one another.
#include <algorithm>
#include <array>
#include <span>
#include <string_view>
#include <vector>

#include "asiscompositeconnectionspacedelegate/asiscompositeconnectionspacedelegate.h"
#include "baseconnectionspacedelegate/channels.h"
#include "baseconnectionspacedelegate/colorants.h"
#include "baseconnectionspacedelegate/spacekinds.h"
#include "core/color/iconnectioncolorspacefactory.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptdatastream/workbuffer.h"

namespace VANTIX::RENDERING {

namespace {

constexpr const char* kModule = "src/asiscompositeconnectionspacedelegate";

/// Pixels of a palette's colours followed by spot samples.
class ExpandedLine {
public:
    /// False (logged) for a raster that lacks something.
    bool Gather(Raster& raster) {
        auto* indexed = AsIndexed(raster.GetColorSpace());
        for (std::int32_t i = 0; i < raster.GetPrimaryCount(); ++i) {
            if (!Add(raster.GetPrimary(i), i, "primary")) {
                return false;
            }
        }
        for (std::int32_t i = 0; i < raster.GetExtraCount(); ++i) {
            const IChannelDesc* channel = raster.GetExtra(i);
            const bool isOther = channel != nullptr && channel->GetType() != "SPOT"_cc;
            if (!isOther && !Add(channel, i, "extra")) {
                return false;
            }
        }
        if (indexed == nullptr || indexed->GetLUT() == nullptr ||
            indexed->GetBaseSpace() == nullptr || indexed->GetEntryCount() <= 0) {
            LogError(kModule) << "indexedCSpace->GetLUT() returned NULL.";
            return false;
        }
        std::uint64_t mask = 0;
        mIsIndexAbsent = raster.GetChannelMask(mask) && (mask & 1U) == 0;
        mPalette = indexed->GetLUT();
        mLast = static_cast<std::size_t>(indexed->GetEntryCount()) - 1;
        mComponents = static_cast<std::size_t>(indexed->GetBaseSpace()->GetComponentCount());
        return !mData.empty();
    }

    /// The index channel makes `mComponents` bytes.
    [[nodiscard]] std::size_t PixelBytes() const { return mComponents + mData.size() - 1; }

    /// False (logged) when a channel has no line `y`.
    bool Build(std::int32_t y, std::size_t width, std::uint8_t* out) {
        const std::size_t stride = PixelBytes();
        for (std::size_t k = 0; k < mData.size(); ++k) {
            const std::uint8_t* line = mData[k]->GetLine(y);
            if (line == nullptr) {
                LogError(kModule) << "No data for line " << y << " of channel " << k;
                return false;
            }
            if (k == 0) {
                ExpandIndices(line, width, out);
                continue;
            }
            for (std::size_t x = 0; x < width; ++x) {
                out[x * stride + mComponents + k - 1] = line[x];
            }
        }
        return true;
    }

private:
    bool Add(const IChannelDesc* channel, std::int32_t index, const char* kind) {
        IChannelData* data = AttachedData(channel, index, kind, kModule);
        if (data == nullptr) {
            return false;
        }
        mData.push_back(data);
        return true;
    }

    // The colorants' samples are ink amounts or absorbed light; palettes hold the complements.
    void ExpandIndices(const std::uint8_t* line, std::size_t width, std::uint8_t* out) const {
        const std::size_t stride = PixelBytes();
        for (std::size_t x = 0; x < width; ++x, out += stride) {
            const std::uint8_t* entry =
                mPalette + std::min<std::size_t>(line[x], mLast) * mComponents;
            for (std::size_t i = 0; i < mComponents; ++i) {
                out[i] = mIsIndexAbsent ? std::uint8_t{0} : static_cast<std::uint8_t>(~entry[i]);
            }
        }
    }

    std::vector<IChannelData*> mData;
    const std::uint8_t* mPalette = nullptr;
    std::size_t mLast = 0;
    std::size_t mComponents = 0;
    bool mIsIndexAbsent = false;
};

/// Adds the process colorants that the raster has; all of them for an Indexed one.
void AddProcess(const Raster& raster, std::span<const std::string_view> names,
                Colorants& colorants) {
    std::uint64_t mask = 0;
    const bool isIndexed =
        FindInterface<IObject>(raster.GetColorSpace(), COLOR::IID_IINDEXEDCOLORSPACE) != nullptr;
    const bool hasMask = !isIndexed && raster.GetChannelMask(mask);
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (!hasMask || (mask >> i & 1U) != 0) {
            colorants.AddUnit(names[i], " 0 1", i);
        }
    }
}

}  // namespace

void AsIsCompositeConnectionSpaceDelegate::AddSpots(const SpotChannels& spots,
                                                    IConnectionColorSpace& target,
                                                    Colorants& colorants) const {
    for (const IChannelDesc* channel : spots) {
        const auto* separation = channel->GetSeparationSpace();
        const CoreString* name = separation == nullptr ? nullptr : separation->GetColorantName();
        const auto text = name == nullptr ? std::nullopt : name->GetUTF8String();
        const float fullTint = 1;
        float pcs[3];
        std::array<float, 4> amount{1, 1, 1, 1};
        const auto intents = RenderingIntents(COLOR::TRenderingIntent::kPerceptual);
        const bool isNamed = text && !text->empty();
        if (isNamed && separation->ToPCS(&fullTint, pcs, intents.first)) {
            target.FromPCS(pcs, amount.data(), intents.second);
        }
        std::transform(amount.begin(), amount.end(), amount.begin(),
                       [](float value) { return 1 - value; });
        // The samples of a spot without a name are written all the same: they mark nothing.
        colorants.Add(isNamed ? *text : "None", " 1 0", amount);
    }
}

void AsIsCompositeConnectionSpaceDelegate::WriteColorantImage(Raster& raster,
                                                              const Colorants& colorants,
                                                              IConnectionColorSpace& alternate) {
    PS::IPostScriptOutputContext* out = OutputContext();
    std::string colour;
    if (out == nullptr || !AppendColorantSpace(colour, colorants, alternate, mEmbedProfiles)) {
        return;
    }
    const std::int32_t depth = raster.GetBitsPerSample();
    const std::string decode = "[" + colorants.decode + "] ";
    out->WriteImageDictionary(raster.GetWidth(), raster.GetHeight(), depth > 9 ? 12 : depth,
                              colour.data(), static_cast<std::int32_t>(colour.size()),
                              decode.c_str(), false);
    if (FindInterface<IObject>(raster.GetColorSpace(), COLOR::IID_IINDEXEDCOLORSPACE) != nullptr) {
        WriteExpandedIndexedImageData(raster);
    } else {
        WriteInkImageData(raster);
    }
}

void AsIsCompositeConnectionSpaceDelegate::InjectCMYKPlusSpotRaster(Raster& raster, float /*x*/,
                                                                    float /*y*/, float /*width*/,
                                                                    float /*height*/,
                                                                    const SpotChannels& spots,
                                                                    IConnectionColorSpace* space) {
    const auto* indexed = AsIndexed(raster.GetColorSpace());
    Colorants colorants;
    if (indexed != nullptr && GetOwnFamily(indexed->GetBaseSpace()) == "gray"_cc) {
        colorants.AddUnit("Black", " 0 1", 3);
    } else {
        AddProcess(raster, Colorants::kProcessInks, colorants);
    }
    AddSpots(spots, *space, colorants);
    WriteColorantImage(raster, colorants, *space);
}

void AsIsCompositeConnectionSpaceDelegate::InjectRGBPlusSpotRaster(Raster& raster, float /*x*/,
                                                                   float /*y*/, float /*width*/,
                                                                   float /*height*/,
                                                                   const SpotChannels& spots,
                                                                   IConnectionColorSpace* space) {
    Colorants colorants;
    AddProcess(raster, Colorants::kProcessLights, colorants);
    AddSpots(spots, *space, colorants);
    WriteColorantImage(raster, colorants, *space);
}

void AsIsCompositeConnectionSpaceDelegate::InjectIndexedPlusSpotRaster(Raster& raster, float x,
                                                                       float y, float width,
                                                                       float height,
                                                                       const SpotChannels& spots) {
    LogError(kModule) << "Incomplete handling.";
    const auto* indexed = AsIndexed(raster.GetColorSpace());
    const FourCC family = indexed == nullptr ? 0 : GetOwnFamily(indexed->GetBaseSpace());
    const auto colors = MakeSpaceFactory();
    if (!colors) {
        return;
    }
    // A profile of the palette's base would do as well, but only device spaces are alternates here.
    if (family == "cmyk"_cc || family == "gray"_cc) {
        const auto cmyk =
            TInterfacePtr<IConnectionColorSpace>::Adopt(colors->CreateDeviceCMYKColorSpace());
        InjectCMYKPlusSpotRaster(raster, x, y, width, height, spots, cmyk.Get());
    } else if (family == "rgb "_cc) {
        const auto rgb =
            TInterfacePtr<IConnectionColorSpace>::Adopt(colors->CreateDeviceRGBColorSpace());
        InjectRGBPlusSpotRaster(raster, x, y, width, height, spots, rgb.Get());
    } else {
        LogError(kModule) << "Do not handle this device color type.";
    }
}

void AsIsCompositeConnectionSpaceDelegate::WriteExpandedIndexedImageData(Raster& raster) {
    PS::IPostScriptOutputContext* out = OutputContext();
    if (out == nullptr) {
        return;
    }
    const std::int32_t depth = raster.GetBitsPerSample();
    if (depth != 8) {
        LogError(kModule) << (depth > 16 ? "Don't support a bit depth of "
                                         : "Indexed image with depth ")
                          << depth << (depth > 16 ? "" : " not handled.");
        return;
    }
    ExpandedLine line;
    if (!line.Gather(raster)) {
        return;
    }
    const std::size_t bytes = line.PixelBytes() * static_cast<std::size_t>(raster.GetWidth());
    PS::WorkBuffer<std::uint8_t> buffer(bytes + 16);
    if (buffer.Data() == nullptr) {
        LogError(kModule) << "Insufficient mem to create buffer of " << bytes << " bytes.";
        return;
    }
    for (std::int32_t y = 0; y < raster.GetHeight(); ++y) {
        if (!line.Build(y, static_cast<std::size_t>(raster.GetWidth()), buffer.Data())) {
            break;
        }
        out->WriteStreamData(buffer.Data(), static_cast<std::int32_t>(bytes));
    }
    out->FlushStreamData();
}

}  // namespace VANTIX::RENDERING
