// SPDX-License-Identifier: MIT
#include "baseconnectionspacedelegate/interleavedline.h"

#include <cstring>

#include "baseconnectionspacedelegate/samples.h"

namespace VANTIX::RENDERING {

namespace {

/// Every `stride`-th sample of `out` becomes one of the plane, complemented where `mask` is all
/// ones.
template <class Sample>
void Spread(const std::uint8_t* plane, std::size_t count, Sample mask, std::uint8_t* out,
            std::size_t stride) {
    for (std::size_t x = 0; x < count; ++x) {
        Sample sample;
        std::memcpy(&sample, plane + x * sizeof sample, sizeof sample);
        sample = static_cast<Sample>(sample ^ mask);
        std::memcpy(out + x * stride * sizeof sample, &sample, sizeof sample);
    }
}

}  // namespace

InterleavedLine::InterleavedLine(std::size_t planes, std::int32_t width, std::int32_t depth,
                                 GRAPHICS::ISwizzleServices* swizzle)
    : mPlanes(planes),
      mWidth(static_cast<std::size_t>(width)),
      mHasWords(depth == 16),
      mSize(mHasWords ? Packed12Bytes(planes * mWidth) : planes * mWidth),
      mSwizzle(swizzle),
      mLine(mSize + kSlack),
      mWords(mHasWords ? 2 * planes * mWidth + kSlack : 0) {}

const std::uint8_t* InterleavedLine::Build(const Planes& planes, std::size_t complemented) {
    if (!mHasWords) {
        InterleaveBytes(planes, complemented);
        return mLine.Data();
    }
    const bool isPlain = mPlanes == 1 && complemented == 0;
    if (!isPlain) {
        InterleaveWords(planes, complemented);
    }
    PackTo12Bits(isPlain ? planes[0] : mWords.Data(), mPlanes * mWidth, mLine.Data());
    return mLine.Data();
}

void InterleavedLine::InterleaveBytes(const Planes& planes, std::size_t complemented) {
    const auto width = static_cast<std::int32_t>(mWidth);
    const auto size = static_cast<std::int32_t>(mSize);
    if (mPlanes == 3 && complemented == 0 && mSwizzle != nullptr) {
        mSwizzle->Interleave3(width, 1, planes[0], planes[1], planes[2], width, mLine.Data(), size);
        return;
    }
    if (mPlanes == 4 && complemented == 0 && mSwizzle != nullptr) {
        mSwizzle->Interleave4(width, 1, planes[0], planes[1], planes[2], planes[3], width,
                              mLine.Data(), size);
        return;
    }
    for (std::size_t i = 0; i < mPlanes; ++i) {
        const auto mask = static_cast<std::uint8_t>(i < complemented ? 0xFF : 0);
        Spread(planes[i], mWidth, mask, mLine.Data() + i, mPlanes);
    }
}

void InterleavedLine::InterleaveWords(const Planes& planes, std::size_t complemented) {
    for (std::size_t i = 0; i < mPlanes; ++i) {
        const auto mask = static_cast<std::uint16_t>(i < complemented ? 0xFFFF : 0);
        Spread(planes[i], mWidth, mask, mWords.Data() + 2 * i, mPlanes);
    }
}

}  // namespace VANTIX::RENDERING
