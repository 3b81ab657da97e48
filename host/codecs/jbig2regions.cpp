// SPDX-License-Identifier: MIT
#include "host/codecs/jbig2regions.h"

#include <algorithm>

#include "host/codecs/faxdecoder.h"

namespace VANTIX::HOST::JBIG2 {

namespace {

/// An adaptive pixel where it usually is, and its bit in the context.
struct Adaptive {
    Place place;
    unsigned bit;
};

/// The pixels of a template: in the two rows above, from the pixel to the left of the current one
/// to the pixel on its right, and those to its left. Contexts hold them in this order.
template <int Number>
struct Template;

template <>
struct Template<0> {
    static constexpr int kLeft2 = 2, kRight2 = 2, kLeft1 = 3, kRight1 = 3, kLeft0 = 4;
    static constexpr unsigned kTypical = 0x9B25;
    static constexpr std::array<Adaptive, 4> kAdaptive{
        {{{3, -1}, 4}, {{-3, -1}, 10}, {{2, -2}, 11}, {{-2, -2}, 15}}};
};

template <>
struct Template<1> {
    static constexpr int kLeft2 = 1, kRight2 = 2, kLeft1 = 2, kRight1 = 3, kLeft0 = 3;
    static constexpr unsigned kTypical = 0x0795;
    static constexpr std::array<Adaptive, 1> kAdaptive{{{{3, -1}, 3}}};
};

template <>
struct Template<2> {
    static constexpr int kLeft2 = 1, kRight2 = 1, kLeft1 = 2, kRight1 = 2, kLeft0 = 2;
    static constexpr unsigned kTypical = 0x00E5;
    static constexpr std::array<Adaptive, 1> kAdaptive{{{{2, -1}, 2}}};
};

template <>
struct Template<3> {
    static constexpr int kLeft2 = 0, kRight2 = -1, kLeft1 = 3, kRight1 = 2, kLeft0 = 4;
    static constexpr unsigned kTypical = 0x0195;
    static constexpr std::array<Adaptive, 1> kAdaptive{{{{2, -1}, 4}}};
};

/// Decodes the rows of a region, of which the last three are held with a byte for each pixel.
template <int Number>
class RowDecoder {
public:
    RowDecoder(ArithmeticDecoder& decoder, Contexts& contexts, const GenericCoding& coding,
               Bitmap& region)
        : mDecoder(decoder),
          mContexts(contexts),
          mCoding(coding),
          mRegion(region),
          mWidth(static_cast<std::size_t>(region.Width())) {
        for (auto& row : mRows) {
            row.resize(mWidth + 2 * kMargin);
        }
        for (std::size_t i = 0; i < T::kAdaptive.size(); ++i) {
            if (!(coding.places[i] == T::kAdaptive[i].place)) {
                mMoved.push_back({coding.places[i], T::kAdaptive[i].bit});
                mKept &= ~(1U << T::kAdaptive[i].bit);
            }
        }
    }

    void Run() {
        bool isLikeAbove = false;
        for (std::int32_t y = 0; y < mRegion.Height() && !mDecoder.IsExhausted(); ++y) {
            if (mCoding.isTypical && mDecoder.Decode(mContexts[T::kTypical]) != 0) {
                isLikeAbove = !isLikeAbove;
            }
            if (isLikeAbove) {
                mRows[0] = mRows[1];
            } else {
                DecodeRow(y);
            }
            mRegion.PackRow(y, mRows[0].data() + kMargin);
            std::swap(mRows[2], mRows[1]);
            std::swap(mRows[1], mRows[0]);
        }
    }

private:
    using T = Template<Number>;
    static constexpr std::size_t kMargin = 4;
    static constexpr unsigned kBits0 = T::kLeft0;
    static constexpr unsigned kBits1 = T::kLeft1 + 1 + T::kRight1;
    static constexpr unsigned kBits2 = T::kLeft2 + 1 + T::kRight2;

    void DecodeRow(std::int32_t y) {
        std::uint8_t* row = mRows[0].data() + kMargin;
        const std::uint8_t* above1 = mRows[1].data() + kMargin + T::kRight1;
        const std::uint8_t* above2 = mRows[2].data() + kMargin + T::kRight2;
        unsigned window0 = 0;
        unsigned window1 = 0;
        unsigned window2 = 0;
        for (int i = -T::kRight1; i < 0; ++i) {
            window1 = window1 << 1U | above1[i];
        }
        for (int i = -T::kRight2; i < 0; ++i) {
            window2 = window2 << 1U | above2[i];
        }
        for (std::size_t x = 0; x < mWidth; ++x) {
            window1 = (window1 << 1U | above1[x]) & ((1U << kBits1) - 1U);
            if constexpr (kBits2 > 0) {
                window2 = (window2 << 1U | above2[x]) & ((1U << kBits2) - 1U);
            }
            unsigned context = window2 << (kBits1 + kBits0) | window1 << kBits0 | window0;
            if (!mMoved.empty()) {
                context = (context & mKept) | MovedPixels(static_cast<std::int32_t>(x), y);
            }
            const bool isSkipped =
                mCoding.skip != nullptr && mCoding.skip->At(static_cast<std::int32_t>(x), y) != 0;
            row[x] = isSkipped ? std::uint8_t{0}
                               : static_cast<std::uint8_t>(mDecoder.Decode(mContexts[context]));
            window0 = (window0 << 1U | row[x]) & ((1U << kBits0) - 1U);
        }
    }

    [[nodiscard]] unsigned MovedPixels(std::int32_t x, std::int32_t y) const {
        unsigned bits = 0;
        for (const Adaptive& moved : mMoved) {
            const std::int32_t column = x + moved.place.x;
            const bool isInRow = moved.place.y == 0 && column >= 0 && column < x;
            const unsigned pixel = isInRow ? mRows[0][kMargin + static_cast<std::size_t>(column)]
                                   : moved.place.y < 0 ? mRegion.At(column, y + moved.place.y)
                                                       : 0;
            bits |= pixel << moved.bit;
        }
        return bits;
    }

    ArithmeticDecoder& mDecoder;
    Contexts& mContexts;
    const GenericCoding& mCoding;
    Bitmap& mRegion;
    std::size_t mWidth;
    std::array<std::vector<std::uint8_t>, 3> mRows;  // the current one, and those above
    std::vector<Adaptive> mMoved;
    unsigned mKept = ~0U;
};

/// Refines a bitmap pixel by pixel (ITU-T T.88, figures 12 and 13).
class Refiner {
public:
    Refiner(const RefinementCoding& coding, Bitmap& region) : mCoding(coding), mRegion(region) {}

    void Run(ArithmeticDecoder& decoder, Contexts& contexts) {
        const unsigned typical = mCoding.templateNumber == 0 ? 0x100 : 0x080;
        bool isTypical = false;
        for (std::int32_t y = 0; y < mRegion.Height() && !decoder.IsExhausted(); ++y) {
            if (mCoding.isTypical && decoder.Decode(contexts[typical]) != 0) {
                isTypical = !isTypical;
            }
            for (std::int32_t x = 0; x < mRegion.Width(); ++x) {
                const bool isForeseen = isTypical && IsEven(x, y);
                const unsigned pixel =
                    isForeseen ? Reference(x, y) : decoder.Decode(contexts[ContextAt(x, y)]);
                if (pixel != 0) {
                    mRegion.Blacken(x, y);
                }
            }
        }
    }

private:
    [[nodiscard]] unsigned Reference(std::int32_t x, std::int32_t y) const {
        return mCoding.reference->At(x - mCoding.dx, y - mCoding.dy);
    }

    /// Whether the nine pixels of the reference around a pixel are all the same.
    [[nodiscard]] bool IsEven(std::int32_t x, std::int32_t y) const {
        unsigned sum = 0;
        for (std::int32_t i = 0; i < 9; ++i) {
            sum += Reference(x + i % 3 - 1, y + i / 3 - 1);
        }
        return sum == 0 || sum == 9;
    }

    [[nodiscard]] unsigned ContextAt(std::int32_t x, std::int32_t y) const {
        const bool isFirst = mCoding.templateNumber == 0;
        const auto [own, other] = mCoding.places;
        const Place corner = isFirst ? own : Place{-1, -1};
        unsigned context = mRegion.At(x - 1, y) | mRegion.At(x + 1, y - 1) << 1U |
                           mRegion.At(x, y - 1) << 2U |
                           mRegion.At(x + corner.x, y + corner.y) << 3U |
                           Reference(x + 1, y + 1) << 4U | Reference(x, y + 1) << 5U;
        if (!isFirst) {
            return context | Reference(x + 1, y) << 6U | Reference(x, y) << 7U |
                   Reference(x - 1, y) << 8U | Reference(x, y - 1) << 9U;
        }
        context |= Reference(x - 1, y + 1) << 6U | Reference(x + 1, y) << 7U |
                   Reference(x, y) << 8U | Reference(x - 1, y) << 9U;
        return context | Reference(x + 1, y - 1) << 10U | Reference(x, y - 1) << 11U |
               Reference(x + other.x, y + other.y) << 12U;
    }

    const RefinementCoding& mCoding;
    Bitmap& mRegion;
};

}  // namespace

Bitmap DecodeGeneric(ArithmeticDecoder& decoder, Contexts& contexts, const GenericCoding& coding,
                     std::uint32_t width, std::uint32_t height, Budget& budget) {
    budget.Spend(std::uint64_t{width} * height);
    Bitmap region(width, height);
    switch (coding.templateNumber) {
        case 0:
            RowDecoder<0>(decoder, contexts, coding, region).Run();
            break;
        case 1:
            RowDecoder<1>(decoder, contexts, coding, region).Run();
            break;
        case 2:
            RowDecoder<2>(decoder, contexts, coding, region).Run();
            break;
        default:
            RowDecoder<3>(decoder, contexts, coding, region).Run();
            break;
    }
    return region;
}

Bitmap DecodeMmr(std::span<const std::uint8_t>& data, std::uint32_t width, std::uint32_t height,
                 Budget& budget) {
    constexpr unsigned kEndBits = 24;
    constexpr std::uint32_t kEnd = 0x001001;
    budget.Spend(std::uint64_t{width} * height / 8);
    Bitmap region(width, height);
    FaxDecoder decoder(data, region.Width());
    for (std::int32_t y = 0; y < region.Height() && decoder.DecodeTwoDimensional(); ++y) {
        decoder.Paint(region.Row(y));
    }
    BitReader& bits = decoder.Bits();
    if (bits.Peek(kEndBits) == kEnd) {
        bits.Skip(kEndBits);
    }
    bits.Align();
    data = data.subspan(std::min(bits.Position() / 8, data.size()));
    return region;
}

Bitmap DecodeRefinement(ArithmeticDecoder& decoder, Contexts& contexts,
                        const RefinementCoding& coding, std::uint32_t width, std::uint32_t height,
                        Budget& budget) {
    // A pixel of these takes several times as much time.
    budget.Spend(std::uint64_t{width} * height * 4);
    Bitmap region(width, height);
    Refiner(coding, region).Run(decoder, contexts);
    return region;
}

}  // namespace VANTIX::HOST::JBIG2
