// SPDX-License-Identifier: MIT
#include <algorithm>
#include <utility>

#include "pdf/images.h"
#include "pdf/objects.h"

namespace VANTIX::PDF {

std::unique_ptr<Image> Image::OpenMask(const QPDFObjectHandle& stream, bool isSoft,
                                       const ImageContext& context) {
    std::unique_ptr<Image> mask(new Image(ImageObject::FromStream(stream), context));
    std::string error;
    mask->mIsMask = true;
    mask->ReadFormat();
    mask->mIsStencil = !isSoft;
    mask->mSpace = context.colorSpaces.Named("DeviceGray", {});
    if (!mask->ReadData(error) || !mask->OpenSingle(error)) {
        mask->Warn("this mask is left out: " + error);
        return nullptr;
    }
    mask->ReadDecode();
    return mask;
}

PlaneSourcePtr Image::StencilBits() {
    if (mFormat.bits != 1) {
        PlaneSourcePtr opacity = Opacity();
        return opacity ? std::make_unique<BitPlanes>(std::move(opacity), mFormat.width) : nullptr;
    }
    HOST::LineSourcePtr lines = TakeLines();
    if (!lines) {
        return nullptr;
    }
    // What decodes to 0 is painted, what is missing is not.
    const bool isPaint1 = mDecode[0] > mDecode[1];
    const SampleMap map{isPaint1 ? 0.0 : 1.0, isPaint1 ? 1.0 : 0.0, 1.0, 0};
    return std::make_unique<SamplePlanes>(std::move(lines),
                                          SampleLayout{mFormat.width, 1, 0, {map}}, Faults());
}

PlaneSourcePtr Image::Opacity() {
    HOST::LineSourcePtr lines = TakeLines();
    if (!lines) {
        return nullptr;
    }
    const double low = mIsStencil ? 1.0 - mDecode[0] : mDecode[0];
    const double high = mIsStencil ? 1.0 - mDecode[1] : mDecode[1];
    const std::uint8_t missing = mIsStencil ? 0 : 0xFF;
    return std::make_unique<SamplePlanes>(
        std::move(lines),
        SampleLayout{mFormat.width, 8, 0, {{low * 255.0, high * 255.0, 255.0, missing}}}, Faults());
}

std::optional<ImageMask> Image::Mask() {
    QPDFObjectHandle soft = Get(mObject.dictionary, "/SMask");
    if (soft.isStream()) {
        return StreamMask(soft, true);
    }
    const std::int32_t own = IntegerOf(Get(mObject.dictionary, "/SMaskInData")).value_or(0);
    if (mCoded.codec == ImageCodec::kJpx && mJpx.hasAlpha && own != 0) {
        return OwnAlpha(own == 2);
    }
    QPDFObjectHandle mask = Get(mObject.dictionary, "/Mask");
    if (mask.isStream()) {
        return StreamMask(mask, false);
    }
    return mask.isArray() ? ColorKeyMask(mask) : std::nullopt;
}

std::optional<ImageMask> Image::StreamMask(const QPDFObjectHandle& stream, bool isSoft) {
    const std::unique_ptr<Image> mask = OpenMask(stream, isSoft, mContext);
    PlaneSourcePtr opacity = mask ? mask->Opacity() : nullptr;
    if (!opacity) {
        return std::nullopt;
    }
    std::vector<float> matte;
    QPDFObjectHandle given = Get(stream, "/Matte");
    if (isSoft && given.isArray()) {
        matte = MatteOf(NumbersOf(given, COLOR::kMaxComponents));
    }
    return ImageMask{std::move(opacity), mask->Width(), mask->Height(), std::move(matte)};
}

std::optional<ImageMask> Image::OwnAlpha(bool isPremultiplied) {
    HOST::JpxInfo info;
    std::string error;
    HOST::LineSourcePtr lines = OpenLines(mCoded, mFormat, info, error);
    if (!lines || lines->Format().components <= mJpx.colors) {
        return std::nullopt;
    }
    SampleLayout layout{mFormat.width, 8, mJpx.colors, {SampleMap()}};
    std::vector<float> matte;
    if (isPremultiplied) {
        matte = MatteOf(std::vector<float>(static_cast<std::size_t>(mSpace->components), 0.0F));
    }
    return ImageMask{std::make_unique<SamplePlanes>(std::move(lines), std::move(layout), Faults()),
                     mFormat.width, mFormat.height, std::move(matte)};
}

std::optional<ImageMask> Image::ColorKeyMask(const QPDFObjectHandle& ranges) {
    const std::int32_t most = (1 << mFormat.bits) - 1;
    std::vector<std::uint32_t> codes;
    for (const float value : NumbersOf(ranges, mDecode.size())) {
        codes.push_back(
            static_cast<std::uint32_t>(std::clamp(static_cast<std::int32_t>(value), 0, most)));
    }
    if (codes.size() != mDecode.size()) {
        Warn("its colour-key mask does not fit and is left out");
        return std::nullopt;
    }
    HOST::JpxInfo info;
    std::string error;
    HOST::LineSourcePtr lines = OpenLines(mCoded, mFormat, info, error);
    if (!lines) {
        return std::nullopt;
    }
    auto opacity = std::make_unique<ColorKeyPlanes>(std::move(lines), mFormat.width,
                                                    std::move(codes), nullptr);
    return ImageMask{std::move(opacity), mFormat.width, mFormat.height, {}};
}

std::vector<float> Image::MatteOf(const std::vector<float>& values) const {
    if (mSpace->kind != ColorSpaceEntry::Kind::kSpace || mSpace->ranges[0].high > 1.0F ||
        values.size() != static_cast<std::size_t>(mSpace->components)) {
        Warn("the matte of its mask does not fit and is left out");
        return {};
    }
    std::vector<float> matte;
    for (const float value : values) {
        const float part = std::clamp(value, 0.0F, 1.0F);
        matte.push_back(255.0F * (mSpace->complemented ? 1.0F - part : part));
    }
    return matte;
}

}  // namespace VANTIX::PDF
