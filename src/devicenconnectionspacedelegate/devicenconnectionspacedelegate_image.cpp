// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <string>

#include "baseconnectionspacedelegate/channels.h"
#include "baseconnectionspacedelegate/colorants.h"
#include "baseconnectionspacedelegate/palettes.h"
#include "baseconnectionspacedelegate/samples.h"
#include "baseconnectionspacedelegate/spacekinds.h"
#include "core/graphics/pluginhelper/rasterhelpers.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "devicenconnectionspacedelegate/convertedchannels.h"
#include "devicenconnectionspacedelegate/devicenconnectionspacedelegate.h"
#include "devicenconnectionspacedelegate/devicenworker.h"
#include "devicenconnectionspacedelegate/mergedchannels.h"
#include "devicenconnectionspacedelegate/spotchannels.h"
#include "postscriptconnectionspace/spotnames.h"

namespace VANTIX::RENDERING {

namespace {

constexpr const char* kModule = "src/devicenconnectionspacedelegate";

constexpr Status kNoOutputContext = 62;
constexpr Status kNoChannelData = 3;

/// Bits of a selection of channels.
constexpr std::size_t kMostSelected = 64;

constexpr std::size_t kLongestInkName = 255;

constexpr std::size_t kLargestTable = 2048;

bool IsSeparation(IConnectionColorSpace* space) {
    return FindInterface<IObject>(space, COLOR::IID_ISEPARATIONCOLORSPACE) != nullptr;
}

std::int32_t WrittenBits(std::int32_t depth) {
    return depth > 9 ? 12 : depth;
}

void LogMissingLine(std::int32_t line, std::size_t /*channel*/) {
    LogError(kModule) << "Line " << line << " is missing.";
}

std::uint64_t Bit(std::size_t index) {
    return std::uint64_t{1} << index;
}

/// Marks channel `index`; false (logged) for one that no selection reaches.
bool Select(std::size_t index, std::uint64_t& selection) {
    if (index >= kMostSelected) {
        LogError(kModule) << "idx (" << index << ") rangecheck error.";
        return false;
    }
    selection |= Bit(index);
    return true;
}

/// Whether the channels that an image is to be made of can be: as many of them as a pixel may have,
/// all of one depth, which several of them cannot have packed.
bool CanInterleave(const Raster& raster, const std::vector<const IChannelDesc*>& spots,
                   std::size_t channels) {
    const std::int32_t depth = raster.GetBitsPerSample();
    const bool isEven = std::all_of(spots.begin(), spots.end(),
                                    [depth](const auto* spot) { return spot->GetBits() == depth; });
    if (channels == 0) {
        LogError(kModule) << "No channel data for the raster.";
        return false;
    }
    if (!isEven || depth > 16 || (depth < 8 && channels > 1)) {
        LogError(kModule) << "Don't support a bit depth of " << depth;
        return false;
    }
    return true;
}

bool HaveData(const std::vector<const IChannelDesc*>& spots) {
    const bool haveData = std::all_of(spots.begin(), spots.end(),
                                      [](const auto* spot) { return spot->GetData() != nullptr; });
    if (!haveData) {
        LogError(kModule) << "Missing channel data for extra channel";
    }
    return haveData;
}

}  // namespace

void DeviceNConnectionSpaceDelegate::InjectRaster(Raster& raster, float x, float y, float width,
                                                  float height) {
    auto* deviceN = AsDeviceN(raster.GetColorSpace());
    const COLOR::IInkCollection* inks = deviceN == nullptr ? nullptr : deviceN->GetInkCollection();
    const SpotChannels spots = FindSpotChannels(raster);
    const bool isBare = std::any_of(spots.begin(), spots.end(), [](const IChannelDesc* spot) {
        return spot->GetSeparationSpace() == nullptr;
    });
    if (inks != nullptr && isBare) {
        WriteRasterToDeviceNWithInks(raster, x, y, width, height, deviceN, inks,
                                     RenderingIntents(TRenderingIntent::kPerceptual).first);
    } else {
        InjectCMYKPlusSpotRaster(raster, x, y, width, height);
    }
}

void DeviceNConnectionSpaceDelegate::WriteSeparationRaster(Raster& raster) {
    PS::IPostScriptOutputContext* out = OutputContext();
    if (out == nullptr) {
        return;
    }
    if (!HasImageData(raster, 1, LogMissingLine) ||
        !DeviceNConnectionSpaceDelegate::SetColorSpace(raster.GetColorSpace(), true)) {
        return;
    }
    const std::int32_t depth = raster.GetBitsPerSample();
    out->WriteImageDictionary(raster.GetWidth(), raster.GetHeight(), WrittenBits(depth), nullptr, 0,
                              "[0 1]", false);
    WriteImageData(raster, 1, depth, raster.GetWidth(), LogMissingLine);
}

bool DeviceNConnectionSpaceDelegate::AddSpots(const SpotChannels& spots, const char* range,
                                              std::size_t firstBit, Colorants& colorants,
                                              std::uint64_t& selection) const {
    for (std::size_t i = 0; i < spots.size(); ++i) {
        const auto* separation = spots[i]->GetSeparationSpace();
        if (separation == nullptr || !Select(firstBit + i, selection)) {
            continue;
        }
        const auto name = PS::UTF8Of(separation->GetColorantName());
        if (!name) {
            LogError(kModule) << "Could not get a UTF8 representation of the ink colour name.";
            return false;
        }
        const float fullTint = 1;
        const auto amounts = InkAmounts(*separation, &fullTint, 1);
        colorants.Add(*name, range, amounts.value_or(std::array<float, 4>{}));
    }
    return true;
}

void DeviceNConnectionSpaceDelegate::InjectCMYKPlusSpotRaster(Raster& given, float x, float y,
                                                              float width, float height) {
    IConnectionColorSpace* space = given.GetColorSpace();
    if (FindSpotChannels(given).empty()) {
        if (IsSeparation(space)) {
            WriteSeparationRaster(given);
        } else {
            mInner->InjectRaster(given, x, y, width, height);
        }
        return;
    }
    PS::IPostScriptOutputContext* out = OutputContext();
    if (out == nullptr || !mDestination) {
        return;
    }
    const bool hasProcess = HasProcessData(given);
    TInterfacePtr<Raster> raster(&given);
    if (hasProcess && (mColorManaged || GetOwnFamily(space) != "cmyk"_cc) &&
        !ConvertProcessChannels(*mFactory, given, *mDestination,
                                RenderingIntents(TRenderingIntent::kPerceptual), raster)) {
        return;
    }
    TInterfacePtr<Raster> merged;
    if (!MergeSameNameChannels(*mFactory, *raster, merged)) {
        return;
    }
    Colorants colorants;
    std::uint64_t selection = 0;
    for (std::size_t i = 0; i < std::size(Colorants::kProcessInks); ++i) {
        if (ProcessData(*merged, static_cast<std::int32_t>(i)) != nullptr) {
            colorants.AddUnit(Colorants::kProcessInks[i], " 1 0", i);
            selection |= Bit(i);
        }
    }
    const SpotChannels spots = FindSpotChannels(*merged);
    const auto primaries = static_cast<std::size_t>(merged->GetPrimaryCount());
    std::string colour;
    if (!HaveData(spots) ||
        !AddSpots(spots, hasProcess ? " 1 0" : " 0 1", primaries, colorants, selection) ||
        !CanInterleave(*merged, spots, colorants.amounts.size()) ||
        !AppendColorantSpace(colour, colorants, *mDestination, false)) {
        return;
    }
    const std::string decode = "[" + colorants.decode + "] ";
    out->WriteImageDictionary(merged->GetWidth(), merged->GetHeight(),
                              WrittenBits(merged->GetBitsPerSample()), colour.data(),
                              static_cast<std::int32_t>(colour.size()), decode.c_str(), false);
    WriteCMYKPlusSpotChannelData(*merged, spots, mDestination.Get(), selection);
}

Status DeviceNConnectionSpaceDelegate::WriteCMYKPlusSpotChannelData(Raster& raster,
                                                                    const SpotChannels& spots,
                                                                    IConnectionColorSpace* space,
                                                                    std::uint64_t selection) {
    DEVICENWORKER::DeviceNPB block;
    block.width = raster.GetWidth();
    block.height = raster.GetHeight();
    block.bitsPerComponent = raster.GetBitsPerSample();
    block.spotCount = static_cast<std::int32_t>(spots.size());
    block.totalCount = block.spotCount + 4;
    block.processCount = raster.GetPrimaryCount();
    block.selection = selection;
    block.swizzle = mSwizzle.Get();
    block.space = space;
    block.out = OutputContext();
    if (block.out == nullptr) {
        return kNoOutputContext;
    }
    const auto add = [&block](IChannelData* data) {
        if (block.count < DEVICENWORKER::kMostChannels) {
            block.channels.at(static_cast<std::size_t>(block.count++)) = data;
        }
    };
    for (std::int32_t i = 0; i < block.processCount; ++i) {
        IChannelData* data = ProcessData(raster, i);
        const bool isSelected = static_cast<std::size_t>(i) < kMostSelected &&
                                (selection & Bit(static_cast<std::size_t>(i))) != 0;
        if (data == nullptr && isSelected) {
            LogError(kModule) << "Missing channel data for extra channel at " << i;
            return kNoChannelData;
        }
        add(data);
    }
    if (!HaveData(spots)) {
        return kNoChannelData;
    }
    for (const IChannelDesc* spot : spots) {
        add(spot->GetData());
    }
    if (block.bitsPerComponent != 16) {
        return DEVICENWORKER::Write8BitImage(block);
    }
    const std::size_t samples = static_cast<std::size_t>(block.width) * spots.size();
    return DEVICENWORKER::Write16bitImage(block, static_cast<std::int32_t>(Packed12Bytes(samples)));
}

bool DeviceNConnectionSpaceDelegate::AddInks(COLOR::IDeviceNConnectionColorSpace& space,
                                             const COLOR::IInkCollection& inks, std::uint64_t mask,
                                             Colorants& colorants) const {
    const std::int32_t count = inks.GetInkCount();
    for (std::int32_t i = 0; i < count; ++i) {
        if (static_cast<std::size_t>(i) >= kMostSelected ||
            (mask & Bit(static_cast<std::size_t>(i))) == 0) {
            continue;
        }
        const COLOR::IInkInstance* instance = inks.GetInkInstance(i);
        const COLOR::IInk* ink = instance == nullptr ? nullptr : instance->GetInk();
        if (ink == nullptr) {
            LogError(kModule) << "Could not get ink instance [" << i << "].";
            return false;
        }
        if (ink->GetName() == nullptr) {
            LogError(kModule) << "The ink has to have a name.";
            return false;
        }
        auto name = PS::UTF8Of(ink->GetName());
        if (!name) {
            LogError(kModule) << "Could not get a UTF8 representation of the ink colour name.";
            return false;
        }
        name->resize(std::min(name->size(), kLongestInkName));
        const auto* process = std::find(std::begin(Colorants::kProcessInks),
                                        std::end(Colorants::kProcessInks), *name);
        if (process != std::end(Colorants::kProcessInks)) {
            colorants.AddUnit(*name, "0 1 ",
                              static_cast<std::size_t>(process - Colorants::kProcessInks));
            continue;
        }
        float tints[COLOR::kMaxComponents] = {};
        tints[i] = 1;
        const auto amounts = InkAmounts(space, tints, count);
        colorants.Add(*name, "0 1 ", amounts.value_or(std::array<float, 4>{}));
    }
    return true;
}

void DeviceNConnectionSpaceDelegate::WriteRasterToDeviceNWithInks(
    Raster& raster, float /*x*/, float /*y*/, float /*width*/, float /*height*/,
    COLOR::IDeviceNConnectionColorSpace* space, const COLOR::IInkCollection* inks,
    TRenderingIntent /*intent*/) {
    PS::IPostScriptOutputContext* out = OutputContext();
    if (out == nullptr || space == nullptr || inks == nullptr) {
        return;
    }
    const SpotChannels spots = FindSpotChannels(raster);
    const std::int32_t count = inks->GetInkCount();
    if (count <= 0 || count > COLOR::kMaxComponents) {
        LogError(kModule) << "The deviceN space has an empty ink collection.";
        return;
    }
    if (spots.size() != static_cast<std::size_t>(count)) {
        LogError(kModule) << "Missing channel data for extra channel at " << spots.size();
        return;
    }
    std::uint64_t mask = 0;
    if (!raster.GetChannelMask(mask)) {
        mask = ~std::uint64_t{0};
    }
    Colorants colorants;
    if (!HaveData(spots) || !AddInks(*space, *inks, mask, colorants) ||
        !CanInterleave(raster, spots, colorants.amounts.size())) {
        return;
    }
    std::string colour = "[/DeviceN [";
    colour.append(colorants.names.View()).append("] /DeviceCMYK\n{");
    colour.append(colorants.Program("0 0 0 0 ", 4).View()).append("}] \n");
    const std::string decode = "[" + colorants.decode + "]";
    out->WriteImageDictionary(raster.GetWidth(), raster.GetHeight(),
                              WrittenBits(raster.GetBitsPerSample()), colour.data(),
                              static_cast<std::int32_t>(colour.size()), decode.c_str(), false);
    WriteCMYKPlusSpotChannelData(raster, spots, space, mask << raster.GetPrimaryCount());
}

void DeviceNConnectionSpaceDelegate::InjectIndexedImage(
    Raster& raster, float x, float y, float width, float height,
    COLOR::IIndexedConnectionColorSpace* indexed) {
    IConnectionColorSpace* base = indexed == nullptr ? nullptr : indexed->GetBaseSpace();
    if (!FindSpotChannels(raster).empty()) {
        TInterfacePtr<Raster> expanded;
        InjectExpandedIndexedRasterWithSpot(raster, indexed, expanded);
        InjectCMYKPlusSpotRaster(expanded ? *expanded : raster, x, y, width, height);
        return;
    }
    const bool isKept = AsDeviceN(base) != nullptr || IsSeparation(base);
    const auto cmyk = isKept ? nullptr : MakeDeviceSpace();
    if (isKept || cmyk) {
        InjectIndexedRaster(raster, x, y, width, height, indexed, cmyk.Get(),
                            BecomesImageMask(raster));
    }
}

void DeviceNConnectionSpaceDelegate::InjectExpandedIndexedRasterWithSpot(
    Raster& raster, COLOR::IIndexedConnectionColorSpace* indexed, TInterfacePtr<Raster>& out) {
    auto* deviceN = indexed == nullptr ? nullptr : AsDeviceN(indexed->GetBaseSpace());
    const COLOR::IInkCollection* inks = deviceN == nullptr ? nullptr : deviceN->GetInkCollection();
    if (inks == nullptr) {
        return;
    }
    const std::int32_t entries = indexed->GetEntryCount();
    const std::int32_t components = PaletteComponents(*deviceN);
    if (entries < 1 || entries > 256 ||
        static_cast<std::size_t>(entries) * static_cast<std::size_t>(components) > kLargestTable) {
        LogError(kModule) << "LUT is invalid.";
        return;
    }
    const auto cmyk = MakeDeviceSpace();
    if (!cmyk) {
        LogError(kModule) << "Could not create a DeviceCMYKColorSpace.";
        return;
    }
    // Inks alone: primaries would be process inks that the picture does not have.
    TInterfacePtr<Raster> made;
    if (!GRAPHICS::HELPER::CreateRasterComponent(mFactory, cmyk.Get(), raster.GetWidth(),
                                                 raster.GetHeight(), 8, 0, 0, 1, 0, made)) {
        return;
    }
    const IChannelDesc* alpha = AlphaChannel(raster);
    if (alpha != nullptr && alpha->GetData() == nullptr) {
        LogError(kModule) << " Alpha Channel data not there in raster component";
    }
    for (std::int32_t i = 0; i < raster.GetExtraCount(); ++i) {
        IChannelDesc* extra = raster.GetExtra(i);
        const bool isSpot = extra != nullptr && extra->GetType() == "SPOT"_cc;
        const bool isAdded = isSpot ? AddSpotOfInks(*mFactory, *extra, *made)
                                    : extra == nullptr || extra->GetData() == nullptr ||
                                          made->AddExtra(extra) == STATUS::kOk;
        if (!isAdded) {
            return;
        }
    }
    if (AddSpotChannelDescFromLUT(*mFactory, ProcessData(raster, 0), raster.GetBitsPerSample(),
                                  indexed->GetLUT(), entries, components, inks,
                                  made) == STATUS::kOk) {
        out = std::move(made);
    }
}

void DeviceNConnectionSpaceDelegate::WriteGreyscaleImage(Raster& /*raster*/, float /*x*/,
                                                         float /*y*/, float /*width*/,
                                                         float /*height*/) {
    LogError(kModule) << "Unimplemented.";
}

}  // namespace VANTIX::RENDERING
