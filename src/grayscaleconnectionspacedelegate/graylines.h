// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

#include "baseconnectionspacedelegate/convertedlines.h"
#include "baseconnectionspacedelegate/interleavedline.h"
#include "postscriptdatastream/workbuffer.h"

namespace VANTIX::RENDERING {

/// Builds lines of gray image data from planes of colour, by luminance: bytes, or words reduced to
/// 12 bits. Its memory serves all lines of an image.
class GrayLine {
public:
    /// Of planes of `depth` 8 or 16.
    GrayLine(std::int32_t width, std::int32_t depth);

    /// Bytes of a finished line.
    [[nodiscard]] std::size_t Size() const { return mSize; }

    /// False (logged in the name of `module`) when the memory could not be had.
    [[nodiscard]] bool IsReady(const char* module, const BufferMessage& gray,
                               const BufferMessage& packed);

    /// The line of red, green and blue planes, valid until the next call.
    const std::uint8_t* OfRGB(const InterleavedLine::Planes& planes);

    /// The line of planes of complemented inks, valid until the next call.
    const std::uint8_t* OfCMYK(const InterleavedLine::Planes& planes);

    /// The line of luminances, `stride` floats apart: 0 to 1, others are cut.
    const std::uint8_t* OfLuminances(const float* values, std::size_t stride);

private:
    template <std::size_t Planes>
    const std::uint8_t* Of(const InterleavedLine::Planes& planes);
    const std::uint8_t* Finish();

    std::size_t mWidth;
    bool mHasWords;
    std::size_t mSize;
    PS::WorkBuffer<std::uint8_t> mGray;
    PS::WorkBuffer<std::uint8_t> mPacked;
};

}  // namespace VANTIX::RENDERING
