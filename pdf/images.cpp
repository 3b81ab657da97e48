// SPDX-License-Identifier: MIT
#include "pdf/images.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "pdf/imagecolors.h"
#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace {

// Beyond these an image is not meant to be printed.
constexpr std::int64_t kMostLineBytes = std::int64_t{1} << 28;
constexpr std::size_t kMostImageBytes = std::size_t{1} << 30U;

bool IsDepth(std::int32_t bits) {
    return bits == 1 || bits == 2 || bits == 4 || bits == 8 || bits == 16;
}

bool CheckFormat(const HOST::ImageFormat& format, std::string& error) {
    if (format.width < 1 || format.height < 1) {
        error = "it has no size";
    } else if (!IsDepth(format.bits)) {
        error = "it has " + std::to_string(format.bits) + " bits a component";
    } else if (std::int64_t{format.width} * format.components * 2 > kMostLineBytes ||
               std::int64_t{format.width} * format.height >
                   HOST::kMostSamples / format.components) {
        error = "it is too large";
    } else {
        return true;
    }
    return false;
}

}  // namespace

HOST::RasterPtr PlanarImage::ToRaster() && {
    return isDeviceN ? HOST::MakeInkRaster(format, std::move(source))
                     : HOST::MakeRaster(format, std::move(source));
}

void PlanarImage::Enlarge(std::int32_t width, std::int32_t height) {
    if (width != format.width || height != format.height) {
        source = std::make_unique<EnlargedPlanes>(std::move(source), format, PlaneCount(), width,
                                                  height);
        format.width = width;
        format.height = height;
    }
}

std::unique_ptr<Image> Image::Open(const ImageObject& object, Resources& resources,
                                   const ImageContext& context) {
    std::unique_ptr<Image> image(new Image(object, context));
    std::string error;
    image->ReadFormat();
    if (!image->mIsStencil) {
        image->ReadSpace(resources);
    }
    const bool isOpen =
        image->ReadData(error) &&
        (image->mIsStencil ? image->OpenSingle(error) : image->SettleSpace(resources, error));
    if (!isOpen) {
        image->Warn("it is left out: " + error);
        return nullptr;
    }
    image->ReadDecode();
    return image;
}

void Image::ReadFormat() {
    const QPDFObjectHandle& dictionary = mObject.dictionary;
    mIsStencil = BoolOf(Get(dictionary, "/ImageMask"), false);
    mFormat.width = IntegerOf(Get(dictionary, "/Width")).value_or(0);
    mFormat.height = IntegerOf(Get(dictionary, "/Height")).value_or(0);
    mFormat.bits = mIsStencil ? 1 : IntegerOf(Get(dictionary, "/BitsPerComponent")).value_or(8);
}

void Image::ReadSpace(Resources& resources) {
    const QPDFObjectHandle space = Get(mObject.dictionary, "/ColorSpace");
    const ColorSpaceEntry* entry = IsNull(space) ? nullptr : resources.FindColorSpace(space);
    if (entry != nullptr && entry->kind != ColorSpaceEntry::Kind::kPattern &&
        entry->kind != ColorSpaceEntry::Kind::kBlack) {
        mSpace = entry;
        mFormat.components = entry->components;
    }
}

bool Image::ReadData(std::string& error) {
    const bool isBounded = CheckFormat(mFormat, error);
    const std::size_t needed =
        isBounded ? mFormat.LineBytes() * static_cast<std::size_t>(mFormat.height) : 0;
    std::string fault;
    if (!mContext.data.Read(mObject, std::min(needed, kMostImageBytes), mCoded, fault)) {
        error = fault;
        return false;
    }
    if (!fault.empty()) {
        Warn(fault);
    }
    // Data that describe themselves may make up for what the dictionary lacks.
    return isBounded || mCoded.DescribesItself();
}

bool Image::OpenSingle(std::string& error) {
    mOpened = OpenLines(mCoded, mFormat, mJpx, error);
    if (!mOpened) {
        return false;
    }
    if (mOpened->Format().components != 1) {
        error = "it is a mask, but has several components";
        return false;
    }
    mFormat.bits = mOpened->Format().bits;
    if (mCoded.DescribesItself()) {
        mFormat = mOpened->Format();
    }
    return CheckFormat(mFormat, error);
}

bool Image::SettleSpace(Resources& resources, std::string& error) {
    const bool knowsAll = mCoded.DescribesItself();
    if (!knowsAll && mSpace == nullptr) {
        error = "it has no colour space of use";
        return false;
    }
    mOpened = OpenLines(mCoded, mFormat, mJpx, error);
    if (!mOpened) {
        return false;
    }
    const HOST::ImageFormat& found = mOpened->Format();
    mFormat.bits = found.bits;
    mFormat.components = found.components;
    if (knowsAll) {
        mFormat = found;
    }
    if (!CheckFormat(mFormat, error)) {
        return false;
    }
    const std::int32_t colors = mCoded.codec == ImageCodec::kJpx
                                    ? std::min(mJpx.colors, found.components)
                                    : found.components;
    // One component more in a JPX file is opacity that the file does not name.
    const std::int32_t surplus = mSpace == nullptr ? 0 : colors - mSpace->components;
    const bool mayBeMore = mCoded.codec == ImageCodec::kJpx && surplus == 1;
    if (mSpace != nullptr && (surplus == 0 || mayBeMore)) {
        return true;
    }
    if (mSpace != nullptr) {
        Warn("its data have " + std::to_string(colors) + " components, but its space " +
             mSpace->name + " has " + std::to_string(mSpace->components));
    }
    mSpace = SpaceOfData(resources);
    if (mSpace == nullptr) {
        error = "its data have " + std::to_string(colors) + " components";
        return false;
    }
    return true;
}

const ColorSpaceEntry* Image::SpaceOfData(Resources& resources) {
    const bool isJpx = mCoded.codec == ImageCodec::kJpx;
    const std::int32_t colors = isJpx ? mJpx.colors : mFormat.components;
    if (isJpx && !mJpx.profile.empty()) {
        const ColorSpaceEntry* entry = mContext.colorSpaces.OfProfile(mJpx.profile, colors);
        if (entry != nullptr) {
            return entry;
        }
    }
    constexpr std::array<std::pair<std::int32_t, FourCC>, 3> kDevices = {
        {{1, "gray"_cc}, {3, "rgb "_cc}, {4, "cmyk"_cc}}};
    for (std::size_t i = 0; i < kDevices.size(); ++i) {
        const bool isNamed = isJpx && mJpx.family != 0;
        const bool isSo = isNamed ? kDevices[i].second == mJpx.family : kDevices[i].first == colors;
        if (isSo && kDevices[i].first <= mFormat.components) {
            return &resources.DeviceSpace(i);
        }
    }
    return nullptr;
}

void Image::ReadDecode() {
    const bool isIndexed = !mIsStencil && mSpace->kind == ColorSpaceEntry::Kind::kIndexed;
    const auto most = static_cast<float>((1U << static_cast<unsigned>(mFormat.bits)) - 1U);
    const auto count = static_cast<std::size_t>(mIsStencil ? 1 : mSpace->components);
    mDecode.clear();
    for (std::size_t i = 0; i < count; ++i) {
        mDecode.insert(mDecode.end(), {0.0F, isIndexed ? most : 1.0F});
    }
    const QPDFObjectHandle array = Get(mObject.dictionary, "/Decode");
    // JPX data are complete without it (PDF Reference, 3.3.8).
    if (IsNull(array) || (mCoded.codec == ImageCodec::kJpx && !mIsStencil && !mIsMask)) {
        return;
    }
    const std::vector<float> values = NumbersOf(array, mDecode.size());
    if (values.size() != mDecode.size()) {
        Warn("its Decode array does not fit and is left out");
        return;
    }
    for (std::size_t i = 0; i < values.size(); ++i) {
        const ColorSpaceEntry::Range range =
            mIsStencil || isIndexed ? ColorSpaceEntry::Range{} : mSpace->ranges[i / 2];
        const float width = range.high - range.low;
        mDecode[i] = width > 0.0F ? (values[i] - range.low) / width : 0.0F;
    }
}

HOST::LineSourcePtr Image::TakeLines() {
    if (mOpened) {
        return std::move(mOpened);
    }
    HOST::ImageFormat declared = mFormat;
    std::string error;
    return OpenLines(mCoded, declared, mJpx, error);
}

FaultHandler Image::Faults() const {
    return [&reporter = mContext.reporter, label = mObject.label](const std::string& what) {
        reporter.Warn("image", label + ": " + what);
    };
}

std::vector<SampleMap> Image::Maps(std::int32_t bits) const {
    const double top = (1U << static_cast<unsigned>(bits)) - 1U;
    const std::uint8_t white = mSpace->special ? 0 : 0xFF;
    std::vector<SampleMap> maps;
    for (std::size_t i = 0; i + 1 < mDecode.size(); i += 2) {
        const double low = mSpace->complemented ? 1.0 - mDecode[i] : mDecode[i];
        const double high = mSpace->complemented ? 1.0 - mDecode[i + 1] : mDecode[i + 1];
        maps.push_back({low * top, high * top, top, white});
    }
    return maps;
}

// The codes as they are, for a conversion that decodes them itself.
std::vector<SampleMap> Image::PlainMaps(std::int32_t bits) const {
    const double top = (1U << static_cast<unsigned>(bits)) - 1U;
    std::vector<SampleMap> maps;
    for (std::size_t i = 0; i + 1 < mDecode.size(); i += 2) {
        const auto [low, high] = mSpace->ranges[i / 2];
        // White is the greatest lightness with neither a nor b, or no tint at all.
        const float value = IsLab(*mSpace) ? (i == 0 ? 1.0F : -low / (high - low)) : 0.0F;
        const float width = mDecode[i + 1] - mDecode[i];
        const float code = width == 0.0F ? 0.0F : (value - mDecode[i]) / width;
        const auto white = std::lround(255.0F * std::clamp(code, 0.0F, 1.0F));
        maps.push_back({0.0, top, top, static_cast<std::uint8_t>(white)});
    }
    return maps;
}

PlanarImage Image::Planes(bool expand) {
    if (mSpace->kind == ColorSpaceEntry::Kind::kIndexed) {
        return IndexedPlanes(expand);
    }
    HOST::LineSourcePtr lines = TakeLines();
    if (!lines) {
        return {};
    }
    const bool isStraight =
        mDecode == std::vector<float>{0, 1} || mDecode == std::vector{1.0F, 0.0F};
    const bool isKept = !expand && mSpace->components == 1 && lines->Format().components == 1 &&
                        isStraight && mSpace->kind == ColorSpaceEntry::Kind::kSpace;
    PlanarImage image;
    image.isDeviceN =
        mSpace->kind == ColorSpaceEntry::Kind::kSpace && mSpace->special && !IsSeparation(*mSpace);
    // Interpreters lose the plates of several inks in more than 8 bits.
    const std::int32_t most = image.isDeviceN ? 8 : 16;
    const std::int32_t bits = mFormat.bits >= 8 || isKept ? std::min(mFormat.bits, most) : 8;
    image.paper = mSpace->special ? 0 : 0xFF;
    image.format = {mSpace->space, mFormat.width, mFormat.height, bits};
    const bool converts = IsLab(*mSpace) || mSpace->kind == ColorSpaceEntry::Kind::kReplaced;
    image.source = std::make_unique<SamplePlanes>(
        std::move(lines),
        SampleLayout{mFormat.width, bits, 0, converts ? PlainMaps(bits) : Maps(bits)}, Faults());
    if (isKept && bits < 8 && mContext.graysAsPalettes && IsGray(*mSpace)) {
        if (HOST::ColorSpacePtr palette = GrayPalette(bits)) {
            image.format.space = std::move(palette);
        }
    }
    if (converts) {
        return Convert(std::move(image), *mSpace, mDecode);
    }
    return image;
}

HOST::ColorSpacePtr Image::GrayPalette(std::int32_t bits) const {
    const unsigned most = (1U << static_cast<unsigned>(bits)) - 1U;
    std::vector<std::uint8_t> table;
    for (unsigned gray = 0; gray <= most; ++gray) {
        table.push_back(static_cast<std::uint8_t>(gray * (255U / most)));
    }
    return mContext.colorSpaces.PaletteSpace(mSpace->space, std::move(table));
}

PlanarImage Image::IndexedPlanes(bool expand) {
    HOST::LineSourcePtr lines = TakeLines();
    if (!lines) {
        return {};
    }
    const double most = (1U << static_cast<unsigned>(mFormat.bits)) - 1U;
    const bool isStraight = (mDecode[0] == 0.0F && mDecode[1] == static_cast<float>(most)) ||
                            (mDecode[0] == static_cast<float>(most) && mDecode[1] == 0.0F);
    const bool isKept =
        !expand && mFormat.bits < 8 && lines->Format().components == 1 && isStraight;
    const auto highest = static_cast<double>(mSpace->ranges[0].high);
    const std::int32_t bits = isKept ? mFormat.bits : 8;
    const SampleMap map{mDecode[0], mDecode[1], isKept ? most : highest,
                        PaletteWhite(*mSpace, bits)};
    PlanarImage image;
    image.format = {mSpace->space, mFormat.width, mFormat.height, bits};
    image.source = std::make_unique<SamplePlanes>(
        std::move(lines), SampleLayout{mFormat.width, bits, 0, {map}}, Faults());
    if (expand) {
        return ResolvePalette(std::move(image.source));
    }
    if (IsLab(PaletteBase(*mSpace))) {
        image.format.space = RgbPaletteSpace(*mSpace, mContext.colorSpaces, mContext.intent);
    }
    return image;
}

PlanarImage Image::ResolvePalette(PlaneSourcePtr indices) {
    const ColorSpaceEntry& base = PaletteBase(*mSpace);
    PlanarImage image;
    image.format = {base.space, mFormat.width, mFormat.height, 8};
    image.paper = base.special ? 0 : 0xFF;
    image.isDeviceN = base.special && !IsSeparation(base);
    image.source = std::make_unique<PalettePlanes>(std::move(indices), mFormat.width,
                                                   PaletteTable(*mSpace), base.components);
    if (IsLab(base)) {
        return Convert(std::move(image), base, {0, 1, 0, 1, 0, 1});
    }
    return image;
}

PlanarImage Image::Convert(PlanarImage image, const ColorSpaceEntry& entry,
                           const std::vector<float>& decode) {
    PixelConversion conversion =
        ConversionOf(entry, decode, mContext.colorSpaces, image.format.bits, mContext.intent);
    image.source = std::make_unique<ConvertedPlanes>(
        std::move(image.source), image.format.width, image.format.bits,
        static_cast<std::size_t>(entry.components),
        static_cast<std::size_t>(conversion.target->components), std::move(conversion.convert));
    image.format.space = conversion.target->space;
    image.paper = conversion.target->special ? 0 : 0xFF;
    image.isDeviceN = false;
    return image;
}

}  // namespace VANTIX::PDF
