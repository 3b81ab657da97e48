// SPDX-License-Identifier: MIT
#include "host/codecs/jbig2bitmap.h"

#include <algorithm>

#include "host/codecs/codecsupport.h"

namespace VANTIX::HOST::JBIG2 {

namespace {

constexpr std::uint32_t kMostSide = 1U << 24U;

unsigned Combine(unsigned below, unsigned above, Operator how) {
    switch (how) {
        case Operator::kOr:
            return below | above;
        case Operator::kAnd:
            return below & above;
        case Operator::kXor:
            return below ^ above;
        case Operator::kXnor:
            return ~(below ^ above);
        case Operator::kReplace:
            break;
    }
    return above;
}

}  // namespace

Bitmap::Bitmap(std::uint32_t width, std::uint32_t height, bool isBlack) {
    if (width > kMostSide || height > kMostSide ||
        std::uint64_t{width} * height > kMostHeldSamples) {
        throw Error("a bitmap is too large");
    }
    mWidth = static_cast<std::int32_t>(width);
    mHeight = static_cast<std::int32_t>(height);
    mRowBytes = (std::size_t{width} + 7) / 8;
    mBits.resize(mRowBytes * height, isBlack ? 0xFF : 0);
}

void Bitmap::PackRow(std::int32_t y, const std::uint8_t* pixels) {
    std::uint8_t* row = Row(y);
    std::fill(row, row + mRowBytes, std::uint8_t{0});
    for (std::size_t x = 0; x < static_cast<std::size_t>(mWidth); ++x) {
        row[x / 8] |= static_cast<std::uint8_t>(pixels[x] << (7 - x % 8));
    }
}

void Bitmap::Paint(const Bitmap& source, std::int32_t x, std::int32_t y, Operator how) {
    const std::int64_t first = std::max<std::int64_t>(0, -std::int64_t{y});
    const std::int64_t last = std::min<std::int64_t>(source.mHeight, std::int64_t{mHeight} - y);
    const auto stride = static_cast<std::int64_t>(mRowBytes);
    // Bytes of the source of which something may lie on the target.
    const auto begin = static_cast<std::size_t>(std::max<std::int64_t>(0, -std::int64_t{x}) / 8);
    const std::int64_t visible =
        std::clamp<std::int64_t>(std::int64_t{mWidth} - x, 0, source.mWidth);
    const std::size_t end = (static_cast<std::size_t>(visible) + 7) / 8;
    for (std::int64_t line = first; line < last; ++line) {
        const std::uint8_t* from = source.Row(static_cast<std::int32_t>(line));
        std::uint8_t* to = Row(static_cast<std::int32_t>(line + y));
        for (std::size_t i = begin; i < end; ++i) {
            const std::int64_t bit = x + static_cast<std::int64_t>(8 * i);
            const auto shift = static_cast<unsigned>(bit & 7);
            const std::int64_t byte = (bit - static_cast<std::int64_t>(shift)) / 8;
            const auto valid = static_cast<unsigned>(
                std::min<std::int64_t>(8, source.mWidth - static_cast<std::int64_t>(8 * i)));
            // Two bytes of the target that the byte of the source may touch.
            const unsigned mask = (0xFF00U >> valid & 0xFFU) << 8U >> shift;
            const unsigned bits = static_cast<unsigned>(from[i]) << 8U >> shift;
            for (unsigned half = 0; half < 2; ++half) {
                const unsigned place = 8 - 8 * half;
                const std::int64_t at = byte + half;
                const unsigned own = mask >> place & 0xFFU;
                if (own != 0 && at >= 0 && at < stride) {
                    const unsigned below = to[at];
                    const unsigned painted = Combine(below, bits >> place, how);
                    to[at] = static_cast<std::uint8_t>((below & ~own) | (painted & own));
                }
            }
        }
    }
}

Bitmap Bitmap::Part(std::int32_t x, std::int32_t y, std::uint32_t width,
                    std::uint32_t height) const {
    Bitmap part(width, height);
    part.Paint(*this, -x, -y, Operator::kReplace);
    return part;
}

}  // namespace VANTIX::HOST::JBIG2
