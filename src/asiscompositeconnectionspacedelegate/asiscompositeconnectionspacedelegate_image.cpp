// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>

#include "asiscompositeconnectionspacedelegate/asiscompositeconnectionspacedelegate.h"
#include "asiscompositeconnectionspacedelegate/calibratedtexts.h"
#include "baseconnectionspacedelegate/palettes.h"
#include "baseconnectionspacedelegate/spacekinds.h"
#include "core/color/iconnectioncolorspacefactory.h"
#include "core/io/ioutputfilterstack.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "devicenconnectionspacedelegate/devicenconnectionspacedelegate.h"

namespace VANTIX::RENDERING {

namespace {

constexpr const char* kModule = "src/asiscompositeconnectionspacedelegate";

/// Lists of rasters, which are not drawn.
constexpr GUID kFirstRasterList = "CA442036-2ADD-457F-B9E9-F7E716ADFE61"_guid;
constexpr GUID kSecondRasterList = "CF5F605E-0E34-4CED-961B-F2CA7F42A186"_guid;

/// How images of a device family are read.
struct FamilyImage {
    FourCC family;
    const char* space;
    const char* decode;
    const char* embeddedDecode;  ///< with ink amounts for CMYK
    std::int32_t channels;
};

constexpr FamilyImage kFamilyImages[] = {
    {"cmyk"_cc, "/DeviceCMYK", "[1 0 1 0 1 0 1 0]", "[0 1 0 1 0 1 0 1]", 4},
    {"gray"_cc, "/DeviceGray", "[0 1]", "[0 1]", 1},
    {"rgb "_cc, "/DeviceRGB", "[0 1 0 1 0 1]", "[0 1 0 1 0 1]", 3},
};

const FamilyImage* FindFamilyImage(FourCC family) {
    const auto* found =
        std::find_if(std::begin(kFamilyImages), std::end(kFamilyImages),
                     [&](const FamilyImage& each) { return each.family == family; });
    return found == std::end(kFamilyImages) ? nullptr : found;
}

bool Offers(IConnectionColorSpace* space, const GUID& kind) {
    return FindInterface<IObject>(space, kind) != nullptr;
}

void LogUnsupportedCount(const Raster& raster) {
    LogError(kModule) << "Channel count of " << raster.GetPrimaryCount()
                      << " unsupported printing profile colour space in ASIS.";
}

/// " 0 1" for each of `count` components, in brackets.
std::string PlainDecode(std::int32_t count) {
    std::string decode = "[";
    for (std::int32_t i = 0; i < count; ++i) {
        decode += " 0 1";
    }
    return decode + "]";
}

}  // namespace

void AsIsCompositeConnectionSpaceDelegate::Image(Raster& raster, float x, float y, float width,
                                                 float height) {
    if (OutputContext() == nullptr) {
        return;
    }
    SpotChannels spots = FindSpotChannels(raster);
    if ((!spots.empty() && !mConvertSpotsToProcess) || IsSpotSpace(raster.GetColorSpace())) {
        DrawInDeviceN(raster, x, y, width, height);
        return;
    }
    const TInterfacePtr<Raster> flattened = FlattenSpots(raster, spots);
    Raster& drawn = *flattened;
    if (mJawsWorkaround) {
        WriteSoftMaskCompositeAlpha(drawn, 1.0F);
    }
    if (FindInterface<IObject>(&raster, kFirstRasterList) != nullptr ||
        FindInterface<IObject>(&raster, kSecondRasterList) != nullptr) {
        InjectGreyscaleImageInAlternateColorSpace(raster, x, y, width, height,
                                                  raster.GetBitsPerSample());
    } else if (mEmbedProfiles) {
        InjectEmbeddedProfiledBasedRaster(drawn, x, y, width, height, spots);
    } else {
        InjectRaster(drawn, x, y, width, height, spots);
    }
}

void AsIsCompositeConnectionSpaceDelegate::DrawInDeviceN(Raster& raster, float x, float y,
                                                         float width, float height) {
    const auto colors = CreateObject<COLOR::IConnectionColorSpaceFactory>(
        mFactory, COLOR::IID_ICONNECTIONCOLORSPACEFACTORY);
    const auto cmyk =
        colors ? TInterfacePtr<IConnectionColorSpace>::Adopt(colors->CreateDeviceCMYKColorSpace())
               : nullptr;
    const std::uint32_t options = (mJawsWorkaround ? DELEGATEOPTION::kJawsWorkaround : 0) |
                                  (mSoftMasks ? DELEGATEOPTION::kSoftMasks : 0) |
                                  (mLanguageLevel == 2 ? DELEGATEOPTION::kLevel2 : 0);
    const auto delegate = TInterfacePtr<IConnectionSpaceDelegate>::Adopt(
        mEmbedProfiles
            ? CreateColorManagedDeviceNConnectionSpaceDelegate(*mFactory, cmyk.Get(), options)
            : CreateDeviceNConnectionSpaceDelegate(*mFactory, cmyk.Get(), options));
    if (!delegate) {
        LogError(kModule) << "CreateDeviceNConnectionSpaceDelegate failed!";
        return;
    }
    delegate->Aggregate(OutputContext(), PS::IID_IPOSTSCRIPTOUTPUTCONTEXT);
    delegate->SetGraphicsState(mGraphicsState);
    delegate->Image(raster, x, y, width, height);
}

bool AsIsCompositeConnectionSpaceDelegate::BeginImage(const Raster& raster, std::string_view colour,
                                                      const char* decode) {
    PS::IPostScriptOutputContext* out = OutputContext();
    if (out == nullptr) {
        return false;
    }
    const std::int32_t depth = raster.GetBitsPerSample();
    out->WriteImageDictionary(raster.GetWidth(), raster.GetHeight(), depth == 16 ? 12 : depth,
                              colour.data(), static_cast<std::int32_t>(colour.size()), decode,
                              false);
    return true;
}

void AsIsCompositeConnectionSpaceDelegate::InjectRaster(Raster& raster, float x, float y,
                                                        float width, float height,
                                                        const SpotChannels& spots) {
    IConnectionColorSpace* space = raster.GetColorSpace();
    const FourCC family = GetOwnFamily(space);
    if (auto* indexed = AsIndexed(space)) {
        if (spots.empty()) {
            InjectIndexedImage(raster, x, y, width, height, indexed);
        } else {
            InjectIndexedPlusSpotRaster(raster, x, y, width, height, spots);
        }
    } else if (Offers(space, COLOR::IID_IDEVICECOLORSPACE)) {
        if (!spots.empty() && family == "cmyk"_cc) {
            InjectCMYKPlusSpotRaster(raster, x, y, width, height, spots, space);
        } else if (!spots.empty() && family == "rgb "_cc) {
            InjectRGBPlusSpotRaster(raster, x, y, width, height, spots, space);
        } else if (!spots.empty() || FindFamilyImage(family) == nullptr) {
            LogError(kModule) << "Do not support this raster yet.";
        } else {
            InjectFamilyRaster(raster, family);
        }
    } else if (IsSpotSpace(space)) {
        InjectSpotSpaceRaster(raster);
    } else if (AsCalibrated(space) != nullptr) {
        WriteCalibratedColour(raster, space, x, y, width, height, spots);
    } else if (family == "rgb "_cc && raster.GetPrimaryCount() == 1) {
        InjectSingleChannelRGB(raster, *space);
    } else if (family != 0) {
        InjectFamilyRaster(raster, family);
    } else {
        LogError(kModule) << "Unhandled colorspace.";
    }
}

void AsIsCompositeConnectionSpaceDelegate::InjectFamilyRaster(Raster& raster, FourCC family) {
    const FamilyImage* image = FindFamilyImage(family);
    if (image == nullptr || (family == "rgb "_cc && raster.GetPrimaryCount() != 3)) {
        LogUnsupportedCount(raster);
    } else if (HasImageData(raster, image->channels) &&
               BeginImage(raster, image->space, image->decode)) {
        WriteImageData(raster, image->channels, raster.GetBitsPerSample(), raster.GetWidth());
    }
}

void AsIsCompositeConnectionSpaceDelegate::InjectSpotSpaceRaster(Raster& raster) {
    std::string colour;
    std::int32_t count = 1;
    if (AppendSpotSpace(colour, *raster.GetColorSpace(), count, mEmbedProfiles)) {
        const bool isSeparation = Offers(raster.GetColorSpace(), COLOR::IID_ISEPARATIONCOLORSPACE);
        const std::string decode = isSeparation ? "[0 1]" : PlainDecode(count);
        if (HasImageData(raster) && BeginImage(raster, colour, decode.c_str())) {
            WriteImageData(raster);
        }
    }
}

void AsIsCompositeConnectionSpaceDelegate::InjectEmbeddedProfiledBasedRaster(
    Raster& raster, float x, float y, float width, float height, const SpotChannels& spots) {
    IConnectionColorSpace* space = raster.GetColorSpace();
    const FourCC family = GetOwnFamily(space);
    const bool isSpotted = !spots.empty() && Offers(space, COLOR::IID_IDEVICECOLORSPACE);
    if (family == 0 || (isSpotted && family != "gray"_cc)) {
        InjectRaster(raster, x, y, width, height, spots);
        return;
    }
    if (isSpotted) {
        return;
    }
    AddProfileColorSpace(space);
    if (mResourceName.empty()) {
        LogError(kModule) << "Invalid Profile space which don't have color profile.";
        return;
    }
    const FamilyImage* image = FindFamilyImage(family);
    if (image == nullptr) {
        LogUnsupportedCount(raster);
    } else if (HasImageData(raster) && BeginImage(raster, mResourceName, image->embeddedDecode)) {
        WriteImageData(raster);
    }
}

void AsIsCompositeConnectionSpaceDelegate::WriteCalibratedColour(Raster& raster,
                                                                 IConnectionColorSpace* space,
                                                                 float /*x*/, float /*y*/,
                                                                 float /*width*/, float /*height*/,
                                                                 const SpotChannels& /*spots*/) {
    const auto* calibrated = AsCalibrated(space);
    const FourCC family = calibrated == nullptr ? 0 : calibrated->GetFamily();
    PS::TextBuffer colour;
    if (family == "cgry"_cc) {
        AppendImageGray(colour, PS::WhitePointOf(*space), mEmbedProfiles);
    } else if (family == "clab"_cc) {
        AppendImageLab(colour, PS::WhitePointOf(*space), mEmbedProfiles);
    } else if (family == "crgb"_cc) {
        PS::AppendCalibratedRGB(colour, *calibrated, PS::WhitePointOf(*space), "\n");
    } else {
        LogError(kModule) << "Unknown Calibrated colorspaces";
        return;
    }
    const bool isGray = family == "cgry"_cc;
    const std::int32_t depth = raster.GetBitsPerSample();
    PS::IPostScriptOutputContext* out = OutputContext();
    if (!HasImageData(raster, isGray ? 1 : 3) ||
        !BeginImage(raster, colour.View(), isGray ? "[0 1]" : "[0 1 0 1 0 1]")) {
        return;
    }
    if (family == "clab"_cc) {
        out->PushOutputFilter(depth == 16 ? IO::FILTER::kLabPacked12 : IO::FILTER::kLabBytes);
    }
    WriteImageData(raster, isGray ? 1 : 3, depth, raster.GetWidth());
    if (family == "clab"_cc) {
        out->PopOutputFilter();
    }
}

TInterfacePtr<COLOR::IConnectionColorSpaceFactory>
AsIsCompositeConnectionSpaceDelegate::MakeSpaceFactory() const {
    auto colors = CreateObject<COLOR::IConnectionColorSpaceFactory>(
        mFactory, COLOR::IID_ICONNECTIONCOLORSPACEFACTORY);
    if (!colors) {
        LogError(kModule) << "Could not create a colour space factory.";
    }
    return colors;
}

void AsIsCompositeConnectionSpaceDelegate::InjectSingleChannelRGB(Raster& raster,
                                                                  IConnectionColorSpace& profile) {
    constexpr std::int32_t kEntries = 256;
    if (raster.GetBitsPerSample() != 8) {
        LogError(kModule) << "When outputting an indexed image with an ICCProfile, do not yet "
                             "support images with a raster depth of "
                          << raster.GetBitsPerSample();
        return;
    }
    const auto colors = MakeSpaceFactory();
    if (!colors) {
        return;
    }
    const auto rgb =
        TInterfacePtr<IConnectionColorSpace>::Adopt(colors->CreateDeviceRGBColorSpace());
    if (!rgb) {
        LogError(kModule) << "Could not create a device rgb colorspace.";
        return;
    }
    // The one channel stands for all three.
    std::array<std::uint8_t, std::size_t{3} * kEntries> grays{};
    for (std::size_t i = 0; i < grays.size(); ++i) {
        grays[i] = static_cast<std::uint8_t>(i / 3);
    }
    std::array<std::uint8_t, grays.size()> table{};
    if (!ConvertPalette(profile, 3, grays.data(), kEntries, *rgb, 3, table.data(),
                        RenderingIntents(COLOR::TRenderingIntent::kPerceptual))) {
        return;
    }
    std::string colour = "[/Indexed /DeviceRGB 255 <\n";
    AppendPalette(colour, {table.data(), kEntries, 3, false});
    if (HasImageData(raster, 1) && BeginImage(raster, colour, "[0 255]")) {
        WriteImageData(raster, 1, raster.GetBitsPerSample(), raster.GetWidth());
    }
}

void AsIsCompositeConnectionSpaceDelegate::InjectIndexedImage(
    Raster& raster, float x, float y, float width, float height,
    COLOR::IIndexedConnectionColorSpace* indexed) {
    const bool imagemask = BecomesImageMask(raster);
    if (mEmbedProfiles && indexed != nullptr) {
        InjectEmbeddedIndexedImage(raster, *indexed, imagemask);
    } else {
        InjectIndexedRaster(raster, x, y, width, height, indexed, nullptr, imagemask);
    }
}

void AsIsCompositeConnectionSpaceDelegate::AppendEmbeddedBase(std::string& colour,
                                                              IConnectionColorSpace& base,
                                                              Palette& palette) {
    std::int32_t count = 1;
    if (const FourCC family = GetOwnFamily(&base); family != 0) {
        palette.components = PaletteComponents(base);
        palette.complement = family == "cmyk"_cc;
        AddProfileColorSpace(&base);
        if (palette.components != 0 && mResourceName.empty()) {
            LogError(kModule) << "Invalid Profile space which don't have color profile.";
            palette.components = 0;
        }
        colour += mResourceName;
    } else if (IsSpotSpace(&base)) {
        if (AppendSpotSpace(colour, base, count, mEmbedProfiles)) {
            palette.components = PaletteComponents(base);
        }
    } else if (BuildIndexedColourString(colour, &base, &base, count, true)) {
        palette.components = PaletteComponents(base);
    }
}

void AsIsCompositeConnectionSpaceDelegate::InjectEmbeddedIndexedImage(
    Raster& raster, COLOR::IIndexedConnectionColorSpace& indexed, bool imagemask) {
    IConnectionColorSpace* base = indexed.GetBaseSpace();
    if (base == nullptr) {
        LogError(kModule) << "alternativeColorSpace cannot be NULL.";
        return;
    }
    Palette palette{indexed.GetLUT(), indexed.GetEntryCount(), 0, false};
    if (palette.bytes == nullptr || palette.entries <= 0) {
        LogError(kModule) << "indexedCSpace->GetLUT() returned NULL.";
        return;
    }
    if (imagemask && palette.entries > 2) {
        LogError(kModule) << "imagemask can be output only for 1-Bit depth images";
        return;
    }
    std::string colour = imagemask ? "" : "[/Indexed ";
    AppendEmbeddedBase(colour, *base, palette);
    if (palette.components != 0) {
        WriteIndexedImage(raster, colour, palette, imagemask, 1);
    }
}

void AsIsCompositeConnectionSpaceDelegate::WriteGreyscaleImage(Raster& raster, float x, float y,
                                                               float width, float height) {
    BaseConnectionSpaceDelegate::WriteGreyscaleImage(raster, x, y, width, height);
}

}  // namespace VANTIX::RENDERING
