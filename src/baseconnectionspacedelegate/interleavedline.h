// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "core/color/colorconversion.h"
#include "core/graphics/irastercomponent.h"
#include "postscriptdatastream/workbuffer.h"

namespace VANTIX::RENDERING {

/// Builds the lines of image data from lines of planes: pixel-interleaved bytes, or words reduced
/// to 12 bits (PostScript has no 16-bit samples). Its memory serves all lines of an image.
class InterleavedLine {
public:
    /// All primaries and extra channels of any raster.
    static constexpr std::size_t kMostPlanes = std::size_t{2} * COLOR::kMaxComponents;

    using Planes = std::array<const std::uint8_t*, kMostPlanes>;

    /// `swizzle` (null: none) interleaves three and four planes of bytes.
    InterleavedLine(std::size_t planes, std::int32_t width, std::int32_t depth,
                    GRAPHICS::ISwizzleServices* swizzle);

    /// Bytes of a finished line.
    [[nodiscard]] std::size_t Size() const { return mSize; }

    /// False when the memory could not be had: nothing may be built.
    [[nodiscard]] bool HasMemory() { return mLine.Data() != nullptr && mWords.Data() != nullptr; }

    /// The line of these planes, valid until the next call; the first `complemented` planes are
    /// complemented.
    const std::uint8_t* Build(const Planes& planes, std::size_t complemented);

private:
    static constexpr std::size_t kSlack = 16;

    void InterleaveBytes(const Planes& planes, std::size_t complemented);
    void InterleaveWords(const Planes& planes, std::size_t complemented);

    std::size_t mPlanes;
    std::size_t mWidth;
    bool mHasWords;
    std::size_t mSize;
    GRAPHICS::ISwizzleServices* mSwizzle;
    PS::WorkBuffer<std::uint8_t> mLine;
    PS::WorkBuffer<std::uint8_t> mWords;
};

}  // namespace VANTIX::RENDERING
