// SPDX-License-Identifier: MIT
#include "host/codecs/jbig2halftones.h"

#include <algorithm>
#include <utility>

namespace VANTIX::HOST::JBIG2 {

namespace {

/// Bitmaps one behind the other in one piece of data.
class BitmapSequence {
public:
    BitmapSequence(Bytes data, bool isMmr, const GenericCoding& coding, Budget& budget)
        : mData(data),
          mIsMmr(isMmr),
          mCoding(coding),
          mBudget(budget),
          mDecoder(data),
          mContexts(kGenericContexts) {}

    Bitmap Next(std::uint32_t width, std::uint32_t height) {
        return mIsMmr ? DecodeMmr(mData, width, height, mBudget)
                      : DecodeGeneric(mDecoder, mContexts, mCoding, width, height, mBudget);
    }

private:
    Bytes mData;
    bool mIsMmr;
    const GenericCoding& mCoding;
    Budget& mBudget;
    ArithmeticDecoder mDecoder;
    Contexts mContexts;
};

/// Where the patterns of a halftone lie: a grid with its origin and its vector in 1/256 pixels.
struct Grid {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::int64_t x = 0;
    std::int64_t y = 0;
    std::int64_t dx = 0;
    std::int64_t dy = 0;

    [[nodiscard]] std::pair<std::int32_t, std::int32_t> At(std::int64_t column,
                                                           std::int64_t row) const {
        return {static_cast<std::int32_t>((x + row * dy + column * dx) >> 8),
                static_cast<std::int32_t>((y + row * dx - column * dy) >> 8)};
    }
};

Grid TakeGrid(Reader& reader) {
    constexpr std::uint32_t kMost = 1U << 16U;
    Grid grid;
    grid.width = reader.Take(4);
    grid.height = reader.Take(4);
    grid.x = static_cast<std::int32_t>(reader.Take(4));
    grid.y = static_cast<std::int32_t>(reader.Take(4));
    grid.dx = reader.Take(2);
    grid.dy = reader.Take(2);
    if (grid.width > kMost || grid.height > kMost) {
        throw Error("the grid of a halftone is too large");
    }
    return grid;
}

/// The cells of which nothing lies on the region.
Bitmap CellsOutside(const Grid& grid, const Bitmap& region, const Bitmap& pattern) {
    Bitmap outside(grid.width, grid.height);
    for (std::int32_t row = 0; row < outside.Height(); ++row) {
        for (std::int32_t column = 0; column < outside.Width(); ++column) {
            const auto [x, y] = grid.At(column, row);
            if (x + std::int64_t{pattern.Width()} <= 0 || x >= region.Width() ||
                y + std::int64_t{pattern.Height()} <= 0 || y >= region.Height()) {
                outside.Blacken(column, row);
            }
        }
    }
    return outside;
}

/// The planes of the gray values, the least significant one first: each is coded as its difference
/// from the one above it.
std::vector<Bitmap> DecodePlanes(BitmapSequence& sequence, const Grid& grid, unsigned bits) {
    std::vector<Bitmap> planes(bits);
    for (unsigned i = bits; i-- > 0;) {
        planes[i] = sequence.Next(grid.width, grid.height);
        if (i + 1 < bits) {
            planes[i].Paint(planes[i + 1], 0, 0, Operator::kXor);
        }
    }
    return planes;
}

}  // namespace

Symbols DecodePatterns(Bytes data, Budget& budget) {
    constexpr std::uint32_t kMostPatterns = 1U << 16U;
    Reader reader(data);
    const std::uint32_t flags = reader.TakeByte();
    const std::uint32_t width = reader.TakeByte();
    const std::uint32_t height = reader.TakeByte();
    const std::uint32_t last = reader.Take(4);
    if (width == 0 || height == 0 || last >= kMostPatterns) {
        throw Error("patterns of an impossible size");
    }
    GenericCoding coding;
    coding.templateNumber = static_cast<std::uint8_t>(flags >> 1U & 3U);
    coding.places = {Place{static_cast<std::int8_t>(-static_cast<std::int32_t>(width)), 0},
                     {-3, -1},
                     {2, -2},
                     {-2, -2}};
    BitmapSequence sequence(reader.Rest(), (flags & 1U) != 0, coding, budget);
    const Bitmap all = sequence.Next((last + 1) * width, height);
    Symbols patterns;
    for (std::uint32_t i = 0; i <= last; ++i) {
        patterns.push_back(std::make_shared<const Bitmap>(
            all.Part(static_cast<std::int32_t>(i * width), 0, width, height)));
    }
    return patterns;
}

Bitmap DecodeHalftone(Bytes data, const Symbols& patterns, std::uint32_t width,
                      std::uint32_t height, Budget& budget) {
    if (patterns.empty()) {
        throw Error("a halftone has no patterns");
    }
    Reader reader(data);
    const std::uint32_t flags = reader.TakeByte();
    const Grid grid = TakeGrid(reader);
    budget.Spend(std::uint64_t{width} * height / 8);
    Bitmap region(width, height, (flags & 0x80U) != 0);
    GenericCoding coding;
    coding.templateNumber = static_cast<std::uint8_t>(flags >> 1U & 3U);
    coding.places = {Place{static_cast<std::int8_t>(coding.templateNumber <= 1 ? 3 : 2), -1},
                     {-3, -1},
                     {2, -2},
                     {-2, -2}};
    budget.Spend(std::uint64_t{grid.width} * grid.height);
    Bitmap outside;
    if ((flags & 8U) != 0) {
        outside = CellsOutside(grid, region, *patterns.front());
        coding.skip = &outside;
    }
    BitmapSequence sequence(reader.Rest(), (flags & 1U) != 0, coding, budget);
    const std::vector<Bitmap> planes = DecodePlanes(sequence, grid, BitsFor(patterns.size()));
    const auto how = static_cast<Operator>(std::min(flags >> 4U & 7U, 4U));
    const Bitmap& any = *patterns.front();
    budget.Spend(std::uint64_t{grid.width} * grid.height *
                 (8 + any.RowBytes() * static_cast<std::size_t>(any.Height())));
    for (std::int32_t row = 0; row < static_cast<std::int32_t>(grid.height); ++row) {
        for (std::int32_t column = 0; column < static_cast<std::int32_t>(grid.width); ++column) {
            std::size_t gray = 0;
            for (std::size_t i = planes.size(); i-- > 0;) {
                gray = gray << 1U | planes[i].At(column, row);
            }
            const auto [x, y] = grid.At(column, row);
            region.Paint(*patterns[std::min(gray, patterns.size() - 1)], x, y, how);
        }
    }
    return region;
}

}  // namespace VANTIX::HOST::JBIG2
