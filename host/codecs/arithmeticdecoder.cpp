// SPDX-License-Identifier: MIT
#include "host/codecs/arithmeticdecoder.h"

#include <algorithm>
#include <limits>

namespace VANTIX::HOST::JBIG2 {

const std::array<ArithmeticDecoder::Estimate, 47> ArithmeticDecoder::kEstimates{
    {{0x5601, 1, 1, 1},   {0x3401, 2, 6, 0},   {0x1801, 3, 9, 0},   {0x0AC1, 4, 12, 0},
     {0x0521, 5, 29, 0},  {0x0221, 38, 33, 0}, {0x5601, 7, 6, 1},   {0x5401, 8, 14, 0},
     {0x4801, 9, 14, 0},  {0x3801, 10, 14, 0}, {0x3001, 11, 17, 0}, {0x2401, 12, 18, 0},
     {0x1C01, 13, 20, 0}, {0x1601, 29, 21, 0}, {0x5601, 15, 14, 1}, {0x5401, 16, 14, 0},
     {0x5101, 17, 15, 0}, {0x4801, 18, 16, 0}, {0x3801, 19, 17, 0}, {0x3401, 20, 18, 0},
     {0x3001, 21, 19, 0}, {0x2801, 22, 19, 0}, {0x2401, 23, 20, 0}, {0x2201, 24, 21, 0},
     {0x1C01, 25, 22, 0}, {0x1801, 26, 23, 0}, {0x1601, 27, 24, 0}, {0x1401, 28, 25, 0},
     {0x1201, 29, 26, 0}, {0x1101, 30, 27, 0}, {0x0AC1, 31, 28, 0}, {0x09C1, 32, 29, 0},
     {0x08A1, 33, 30, 0}, {0x0521, 34, 31, 0}, {0x0441, 35, 32, 0}, {0x02A1, 36, 33, 0},
     {0x0221, 37, 34, 0}, {0x0141, 38, 35, 0}, {0x0111, 39, 36, 0}, {0x0085, 40, 37, 0},
     {0x0049, 41, 38, 0}, {0x0025, 42, 39, 0}, {0x0015, 43, 40, 0}, {0x0009, 44, 41, 0},
     {0x0005, 45, 42, 0}, {0x0001, 45, 43, 0}, {0x5601, 46, 46, 0}}};

ArithmeticDecoder::ArithmeticDecoder(std::span<const std::uint8_t> data)
    : mData(data), mCode(ByteAt(0) << 16U) {
    ReadByte();
    mCode <<= 7U;
    mShifts -= 7;
}

void ArithmeticDecoder::ReadByte() {
    if (mAt >= mData.size()) {
        ++mPast;
    }
    const std::uint32_t next = ByteAt(mAt + 1);
    if (ByteAt(mAt) != 0xFF) {
        ++mAt;
        mCode += next << 8U;
        mShifts = 8;
    } else if (next > 0x8F) {
        // A marker: the data end here.
        mCode += 0xFF00;
        mShifts = 8;
        mPast += mAt < mData.size() ? 1 : 0;
    } else {
        ++mAt;
        mCode += next << 9U;
        mShifts = 7;
    }
}

void ArithmeticDecoder::Renormalise() {
    do {
        if (mShifts == 0) {
            ReadByte();
        }
        mInterval <<= 1U;
        mCode <<= 1U;
        --mShifts;
    } while ((mInterval & 0x8000U) == 0);
}

unsigned ArithmeticDecoder::TakeUnlikely(Context& context, const Estimate& estimate) {
    const unsigned value = 1U - context.likely;
    if (estimate.switches != 0) {
        context.likely = static_cast<std::uint8_t>(value);
    }
    context.state = estimate.unlikely;
    return value;
}

unsigned ArithmeticDecoder::DecodeUnlikely(Context& context, const Estimate& estimate,
                                           bool isExchanged) {
    mInterval = estimate.size;
    unsigned value = context.likely;
    if (isExchanged) {
        context.state = estimate.likely;
    } else {
        value = TakeUnlikely(context, estimate);
    }
    Renormalise();
    return value;
}

unsigned ArithmeticDecoder::DecodeLikely(Context& context, const Estimate& estimate) {
    unsigned value = context.likely;
    if (mInterval < estimate.size) {
        value = TakeUnlikely(context, estimate);
    } else {
        context.state = estimate.likely;
    }
    Renormalise();
    return value;
}

unsigned IntegerDecoder::DecodeBit(ArithmeticDecoder& decoder, unsigned& previous) {
    const unsigned bit = decoder.Decode(mContexts[previous]);
    const unsigned next = previous << 1U | bit;
    previous = previous < 256 ? next : (next & 511U) | 256U;
    return bit;
}

std::optional<std::int32_t> IntegerDecoder::Decode(ArithmeticDecoder& decoder) {
    struct Range {
        unsigned bits;
        std::int64_t least;
    };

    static constexpr std::array<Range, 6> kRanges{
        {{2, 0}, {4, 4}, {6, 20}, {8, 84}, {12, 340}, {32, 4436}}};

    unsigned previous = 1;
    const bool isNegative = DecodeBit(decoder, previous) != 0;
    std::size_t range = 0;
    while (range + 1 < kRanges.size() && DecodeBit(decoder, previous) != 0) {
        ++range;
    }
    std::int64_t value = 0;
    for (unsigned i = 0; i < kRanges[range].bits; ++i) {
        value = value << 1U | DecodeBit(decoder, previous);
    }
    value += kRanges[range].least;
    if (isNegative && value == 0) {
        return std::nullopt;
    }
    constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::clamp(isNegative ? -value : value, -kMost, kMost));
}

std::uint32_t NumberDecoder::Decode(ArithmeticDecoder& decoder) {
    std::uint32_t previous = 1;
    for (unsigned i = 0; i < mBits; ++i) {
        previous = previous << 1U | decoder.Decode(mContexts[previous]);
    }
    return previous - (std::uint32_t{1} << mBits);
}

}  // namespace VANTIX::HOST::JBIG2
