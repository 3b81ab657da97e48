// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "host/codecs/faxcodes.h"

namespace VANTIX::HOST {

/// Reads bits, the most significant one of a byte first. Zeros follow the data.
class BitReader {
public:
    explicit BitReader(std::span<const std::uint8_t> bytes) : mBytes(bytes) {}

    /// The next bits, 24 at most, without taking them.
    [[nodiscard]] std::uint32_t Peek(unsigned count) const {
        const std::size_t first = mPosition / 8;
        std::uint32_t word = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            word = word << 8 | (first + i < mBytes.size() ? mBytes[first + i] : 0U);
        }
        return (word << mPosition % 8) >> (32 - count);
    }

    void Skip(std::size_t count) { mPosition += count; }

    void Align() { mPosition = (mPosition + 7) / 8 * 8; }

    [[nodiscard]] bool IsAtEnd() const { return mPosition >= mBytes.size() * 8; }

    /// Bits from the start.
    [[nodiscard]] std::size_t Position() const { return mPosition; }

private:
    std::span<const std::uint8_t> mBytes;
    std::size_t mPosition = 0;
};

/// Decodes lines of facsimile coding (ITU-T T.4 and T.6) as places where the colour changes. The
/// line before each one is its reference; a white one is that of the first.
class FaxDecoder {
public:
    /// The data must outlive the decoder.
    FaxDecoder(std::span<const std::uint8_t> data, std::int32_t width);

    [[nodiscard]] BitReader& Bits() { return mBits; }

    /// Decode the next line; false for a damaged one, which is white from the damage on.
    bool DecodeOneDimensional();
    bool DecodeTwoDimensional();

    /// Sets the black bits of the line that was decoded last in a line of zeros.
    void Paint(std::uint8_t* line) const;

private:
    void StartLine();
    bool EndLine(bool isSound);
    void AddChange(std::int32_t at);
    void FindReference();
    bool DecodeRun(std::int32_t& at);
    bool DecodeMode();

    BitReader mBits;
    std::int32_t mWidth;
    std::vector<std::int32_t> mChanges;    ///< white to black, black to white, …; ends in widths
    std::vector<std::int32_t> mReference;  ///< the same of the line above
    std::size_t mCount = 0;
    std::size_t mNext = 0;  ///< change of the reference that the next code relates to
    std::int32_t mAt = 0;   ///< where decoding stands; -1 at the start of a line
    bool mIsBlack = false;
};

}  // namespace VANTIX::HOST
