// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <vector>

namespace VANTIX::HOST::JBIG2 {

/// Why data cannot be decoded; caught where the source is made.
class Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// How pixels are painted over others (ITU-T T.88, 7.4.1.5).
enum class Operator : std::uint8_t { kOr, kAnd, kXor, kXnor, kReplace };

/// Rows of bits, the most significant one of a byte first, each padded to whole bytes; 1 is black.
class Bitmap {
public:
    Bitmap() = default;
    /// Throws `Error` for sizes beyond reason.
    Bitmap(std::uint32_t width, std::uint32_t height, bool isBlack = false);

    [[nodiscard]] std::int32_t Width() const { return mWidth; }

    [[nodiscard]] std::int32_t Height() const { return mHeight; }

    [[nodiscard]] std::size_t RowBytes() const { return mRowBytes; }

    [[nodiscard]] std::uint8_t* Row(std::int32_t y) {
        return mBits.data() + static_cast<std::size_t>(y) * mRowBytes;
    }

    [[nodiscard]] const std::uint8_t* Row(std::int32_t y) const {
        return mBits.data() + static_cast<std::size_t>(y) * mRowBytes;
    }

    /// White outside of the bitmap.
    [[nodiscard]] unsigned At(std::int32_t x, std::int32_t y) const {
        if (x < 0 || y < 0 || x >= mWidth || y >= mHeight) {
            return 0;
        }
        const auto column = static_cast<std::size_t>(x);
        return Row(y)[column / 8] >> (7 - column % 8) & 1U;
    }

    void Blacken(std::int32_t x, std::int32_t y) {
        const auto column = static_cast<std::size_t>(x);
        Row(y)[column / 8] |= static_cast<std::uint8_t>(0x80U >> column % 8);
    }

    /// Takes over a row of one byte a pixel.
    void PackRow(std::int32_t y, const std::uint8_t* pixels);

    /// Paints `source` with its corner at x, y; what lies outside is cut off.
    void Paint(const Bitmap& source, std::int32_t x, std::int32_t y, Operator how);

    /// The part of the bitmap with its corner at x, y; white where there is none.
    [[nodiscard]] Bitmap Part(std::int32_t x, std::int32_t y, std::uint32_t width,
                              std::uint32_t height) const;

private:
    std::int32_t mWidth = 0;
    std::int32_t mHeight = 0;
    std::size_t mRowBytes = 0;
    std::vector<std::uint8_t> mBits;
};

}  // namespace VANTIX::HOST::JBIG2
