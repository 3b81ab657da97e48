// SPDX-License-Identifier: MIT
#include "host/graphics/channeldata.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "core/status.h"

namespace VANTIX::HOST {

namespace {

std::int64_t BitsOfLine(std::int32_t width, std::int32_t bits) {
    return std::int64_t{width} * bits;
}

std::int64_t BytesOfLine(std::int32_t width, std::int32_t bits) {
    return (BitsOfLine(width, bits) + 7) / 8;
}

/// True when the first `bits` bits are all set.
bool AreSet(const std::uint8_t* line, std::int32_t bits) {
    const std::uint8_t* end = line + bits / 8;
    if (!std::all_of(line, end, [](std::uint8_t byte) { return byte == 0xFF; })) {
        return false;
    }
    const unsigned mask = 0xFF00U >> static_cast<unsigned>(bits % 8) & 0xFFU;
    return bits % 8 == 0 || (*end & mask) == mask;
}

}  // namespace

bool IsChannelFormat(std::int32_t width, std::int32_t height, std::int32_t bits) {
    const bool isDepth = bits == 1 || bits == 2 || bits == 4 || bits == 8 || bits == 16;
    return isDepth && width > 0 && height > 0 &&
           BitsOfLine(width, bits) <= std::numeric_limits<std::int32_t>::max();
}

std::int32_t ChannelLineBytes(std::int32_t width, std::int32_t bits) {
    return static_cast<std::int32_t>(BytesOfLine(width, bits));
}

Status ChannelData::Init(std::int32_t width, std::int32_t height, std::int32_t bits,
                         std::int32_t lineBytes) {
    if (!IsChannelFormat(width, height, bits) || lineBytes < BytesOfLine(width, bits)) {
        return STATUS::kInvalidArgument;
    }
    if (std::int64_t{height} * lineBytes > kMostBytes) {
        return STATUS::kOutOfMemory;
    }
    // Of memory that comes as zeros, the system gives only what is touched.
    mSamples.reset(static_cast<std::uint8_t*>(
        std::calloc(static_cast<std::size_t>(height), static_cast<std::size_t>(lineBytes))));
    const bool hasMemory = mSamples != nullptr;
    mLineBits = hasMemory ? width * bits : 0;
    mLineBytes = hasMemory ? lineBytes : 0;
    mHeight = hasMemory ? height : 0;
    return hasMemory ? STATUS::kOk : STATUS::kOutOfMemory;
}

std::uint8_t* ChannelData::LineAt(std::int32_t y) const {
    const bool inside = y >= 0 && y < mHeight;
    return inside ? mSamples.get() + std::int64_t{y} * mLineBytes : nullptr;
}

const std::uint8_t* ChannelData::GetLine(std::int32_t y) {
    return LineAt(y);
}

std::int32_t ChannelData::GetLineBytes() const {
    return mLineBytes;
}

Status ChannelData::SetLine(std::int32_t y, const std::uint8_t* line) {
    std::uint8_t* own = LineAt(y);
    if (own == nullptr || line == nullptr) {
        return STATUS::kInvalidArgument;
    }
    // The line may be this very one, changed in place.
    std::memmove(own, line, static_cast<std::size_t>(mLineBytes));
    return STATUS::kOk;
}

bool ChannelData::IsFullyOpaque() const {
    for (std::int32_t y = 0; y < mHeight; ++y) {
        if (!AreSet(LineAt(y), mLineBits)) {
            return false;
        }
    }
    return mHeight > 0;
}

LineCache::LineCache(const RasterFormat& format, std::int32_t planes,
                     std::unique_ptr<PlaneSource> source)
    : mSource(std::move(source)),
      mSamples(static_cast<std::size_t>(planes) *
               static_cast<std::size_t>(ChannelLineBytes(format.width, format.bits))),
      mLineBytes(ChannelLineBytes(format.width, format.bits)),
      mHeight(format.height) {
    for (std::int32_t i = 0; i < planes; ++i) {
        mPlanes.push_back(mSamples.data() + std::int64_t{i} * mLineBytes);
    }
}

const std::uint8_t* LineCache::Line(std::int32_t plane, std::int32_t y) {
    if (y < 0 || y >= mHeight) {
        return nullptr;
    }
    if (y < mCurrent) {
        mCurrent = -1;
    }
    while (mCurrent < y) {
        mSource->ReadLine(++mCurrent, mPlanes.data());
    }
    return mPlanes[static_cast<std::size_t>(plane)];
}

Status SourceChannelData::Init(std::int32_t /*width*/, std::int32_t /*height*/,
                               std::int32_t /*bits*/, std::int32_t /*lineBytes*/) {
    return STATUS::kNotSupported;
}

const std::uint8_t* SourceChannelData::GetLine(std::int32_t y) {
    return mLines->Line(mPlane, y);
}

std::int32_t SourceChannelData::GetLineBytes() const {
    return mLines->LineBytes();
}

Status SourceChannelData::SetLine(std::int32_t /*y*/, const std::uint8_t* /*line*/) {
    return STATUS::kNotSupported;
}

bool SourceChannelData::IsFullyOpaque() const {
    return mIsOpaque;
}

}  // namespace VANTIX::HOST
