// SPDX-License-Identifier: MIT
#include "grayscaleconnectionspacedelegate/graylines.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

#include "baseconnectionspacedelegate/samples.h"

namespace VANTIX::RENDERING {

namespace {

/// Samples at a time: a number that compilers know lets them work on several at once.
constexpr std::size_t kBlock = 64;

/// `block` samples of gray from as many of each plane, three of light or four of complemented inks.
template <class Sample, std::size_t Planes>
void ConvertBlock(const std::array<std::array<Sample, kBlock>, Planes>& in,
                  std::array<Sample, kBlock>& out) {
    for (std::size_t i = 0; i < kBlock; ++i) {
        auto gray = GrayOf<Sample>(in[0][i], in[1][i], in[2][i]);
        if constexpr (Planes == 4) {
            gray = static_cast<Sample>((std::uint32_t{gray} * in[3][i]) >> (8 * sizeof(Sample)));
        }
        out[i] = gray;
    }
}

template <class Sample, std::size_t Planes>
void ConvertPlanes(const InterleavedLine::Planes& planes, std::size_t width, std::uint8_t* out) {
    std::array<std::array<Sample, kBlock>, Planes> in{};
    std::array<Sample, kBlock> gray{};
    for (std::size_t x = 0; x < width; x += kBlock) {
        const std::size_t bytes = std::min(kBlock, width - x) * sizeof(Sample);
        for (std::size_t i = 0; i < Planes; ++i) {
            std::memcpy(in[i].data(), planes[i] + x * sizeof(Sample), bytes);
        }
        ConvertBlock(in, gray);
        std::memcpy(out + x * sizeof(Sample), gray.data(), bytes);
    }
}

template <class Sample>
void CutLuminances(const float* values, std::size_t stride, std::size_t width, std::uint8_t* out) {
    for (std::size_t x = 0; x < width; ++x) {
        const float value = std::clamp(values[x * stride], 0.0F, 1.0F);
        const auto sample =
            static_cast<Sample>(value * static_cast<float>(std::numeric_limits<Sample>::max()));
        std::memcpy(out + x * sizeof sample, &sample, sizeof sample);
    }
}

}  // namespace

GrayLine::GrayLine(std::int32_t width, std::int32_t depth)
    : mWidth(static_cast<std::size_t>(width)),
      mHasWords(depth == 16),
      mSize(mHasWords ? Packed12Bytes(mWidth) : mWidth),
      mGray(mHasWords ? 2 * mWidth : mWidth),
      mPacked(mHasWords ? mSize : 0) {}

bool GrayLine::IsReady(const char* module, const BufferMessage& gray, const BufferMessage& packed) {
    if (mGray.Data() == nullptr) {
        gray.Log(module, mGray.Size());
        return false;
    }
    if (mPacked.Data() == nullptr) {
        packed.Log(module, mPacked.Size());
        return false;
    }
    return true;
}

const std::uint8_t* GrayLine::Finish() {
    if (!mHasWords) {
        return mGray.Data();
    }
    PackTo12Bits(mGray.Data(), mWidth, mPacked.Data());
    return mPacked.Data();
}

template <std::size_t Planes>
const std::uint8_t* GrayLine::Of(const InterleavedLine::Planes& planes) {
    if (mHasWords) {
        ConvertPlanes<std::uint16_t, Planes>(planes, mWidth, mGray.Data());
    } else {
        ConvertPlanes<std::uint8_t, Planes>(planes, mWidth, mGray.Data());
    }
    return Finish();
}

const std::uint8_t* GrayLine::OfRGB(const InterleavedLine::Planes& planes) {
    return Of<3>(planes);
}

const std::uint8_t* GrayLine::OfCMYK(const InterleavedLine::Planes& planes) {
    return Of<4>(planes);
}

const std::uint8_t* GrayLine::OfLuminances(const float* values, std::size_t stride) {
    if (mHasWords) {
        CutLuminances<std::uint16_t>(values, stride, mWidth, mGray.Data());
    } else {
        CutLuminances<std::uint8_t>(values, stride, mWidth, mGray.Data());
    }
    return Finish();
}

}  // namespace VANTIX::RENDERING
