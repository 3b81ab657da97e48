// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <memory>
#include <utility>
#include <vector>

#include "core/graphics/irastercomponent.h"
#include "core/object/tobject.h"
#include "host/export.h"
#include "host/graphics/rasters.h"

namespace VANTIX::HOST {

/// Size and depth that a channel can have: not empty, of 1, 2, 4, 8 or 16 bits.
bool IsChannelFormat(std::int32_t width, std::int32_t height, std::int32_t bits);

/// Bytes of a line of a channel that passes `IsChannelFormat`.
std::int32_t ChannelLineBytes(std::int32_t width, std::int32_t bits);

/// The samples of one channel in memory. Pages of it that nobody writes take none.
class NORVANE_HOST_API ChannelData : public TObject<GRAPHICS::IChannelData> {
public:
    /// Most bytes of one channel.
    static constexpr std::int64_t kMostBytes = std::int64_t{1} << 32;

    /// `kInvalidArgument` for sizes of no use or lines that are too short, `kOutOfMemory` beyond
    /// `kMostBytes` or without memory.
    Status Init(std::int32_t width, std::int32_t height, std::int32_t bits,
                std::int32_t lineBytes) override;
    const std::uint8_t* GetLine(std::int32_t y) override;
    std::int32_t GetLineBytes() const override;
    Status SetLine(std::int32_t y, const std::uint8_t* line) override;
    /// True when every bit of every sample is set.
    bool IsFullyOpaque() const override;

private:
    struct Free {
        void operator()(std::uint8_t* memory) const { std::free(memory); }
    };

    /// Null when there is no such line.
    [[nodiscard]] std::uint8_t* LineAt(std::int32_t y) const;

    std::unique_ptr<std::uint8_t, Free> mSamples;
    std::int32_t mLineBits = 0;  // of samples: what follows them in a line is padding
    std::int32_t mLineBytes = 0;
    std::int32_t mHeight = 0;
};

/// The one line that is held of the planes of a source. A line is read once, for all planes.
class LineCache {
public:
    /// The format passes `IsChannelFormat`. May throw `std::bad_alloc`.
    LineCache(const RasterFormat& format, std::int32_t planes, std::unique_ptr<PlaneSource> source);

    /// A plane of line `y` (borrowed until another line is asked for); null when there is no such
    /// line. The source is asked for one line after another, from the first again for an earlier
    /// one.
    const std::uint8_t* Line(std::int32_t plane, std::int32_t y);

    [[nodiscard]] std::int32_t LineBytes() const { return mLineBytes; }

private:
    std::unique_ptr<PlaneSource> mSource;
    std::vector<std::uint8_t> mSamples;
    std::vector<std::uint8_t*> mPlanes;  // into the samples
    std::int32_t mLineBytes;
    std::int32_t mHeight;
    std::int32_t mCurrent = -1;  // the line that is held
};

/// One channel of a source that is read when lines are asked for, and never written.
class SourceChannelData : public TObject<GRAPHICS::IChannelData> {
public:
    SourceChannelData(std::shared_ptr<LineCache> lines, std::int32_t plane, bool isOpaque)
        : mLines(std::move(lines)), mPlane(plane), mIsOpaque(isOpaque) {}

    /// `kNotSupported`: its source says what it is.
    Status Init(std::int32_t width, std::int32_t height, std::int32_t bits,
                std::int32_t lineBytes) override;
    const std::uint8_t* GetLine(std::int32_t y) override;
    std::int32_t GetLineBytes() const override;
    /// `kNotSupported`.
    Status SetLine(std::int32_t y, const std::uint8_t* line) override;
    bool IsFullyOpaque() const override;

private:
    std::shared_ptr<LineCache> mLines;
    std::int32_t mPlane;
    bool mIsOpaque;
};

}  // namespace VANTIX::HOST
