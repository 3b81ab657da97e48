// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace VANTIX::HOST::JBIG2 {

/// What has been learnt about a decision: the state of its estimate, and the likelier value.
struct Context {
    std::uint8_t state = 0;
    std::uint8_t likely = 0;
};

/// The arithmetic decoder (ITU-T T.88, annex E). The data must outlive it; behind their end come
/// ones without end.
class ArithmeticDecoder {
public:
    explicit ArithmeticDecoder(std::span<const std::uint8_t> data);

    unsigned Decode(Context& context) {
        const Estimate& estimate = kEstimates[context.state];
        mInterval -= estimate.size;
        if ((mCode >> 16U) < estimate.size) {
            return DecodeUnlikely(context, estimate, mInterval < estimate.size);
        }
        mCode -= estimate.size << 16U;
        if ((mInterval & 0x8000U) != 0) {
            return context.likely;
        }
        return DecodeLikely(context, estimate);
    }

    /// Whether far more was decoded than there are data for.
    [[nodiscard]] bool IsExhausted() const { return mPast > 64; }

private:
    struct Estimate {
        std::uint32_t size;  ///< of the interval of the unlikely value
        std::uint8_t likely;
        std::uint8_t unlikely;
        std::uint8_t switches;
    };

    static const std::array<Estimate, 47> kEstimates;

    unsigned DecodeUnlikely(Context& context, const Estimate& estimate, bool isExchanged);
    unsigned DecodeLikely(Context& context, const Estimate& estimate);
    static unsigned TakeUnlikely(Context& context, const Estimate& estimate);
    void Renormalise();
    void ReadByte();

    [[nodiscard]] std::uint32_t ByteAt(std::size_t at) const {
        return at < mData.size() ? mData[at] : 0xFFU;
    }

    std::span<const std::uint8_t> mData;
    std::size_t mAt = 0;
    std::uint32_t mCode = 0;
    std::uint32_t mInterval = 0x8000;
    std::uint32_t mShifts = 0;
    std::uint32_t mPast = 0;
};

/// Decodes integers by one procedure (ITU-T T.88, annex A).
class IntegerDecoder {
public:
    /// Nothing is the value out of band.
    std::optional<std::int32_t> Decode(ArithmeticDecoder& decoder);

private:
    unsigned DecodeBit(ArithmeticDecoder& decoder, unsigned& previous);

    std::array<Context, 512> mContexts{};
};

/// Decodes symbol numbers of a fixed count of bits (ITU-T T.88, A.3).
class NumberDecoder {
public:
    explicit NumberDecoder(unsigned bits) : mBits(bits), mContexts(std::size_t{1} << bits) {}

    std::uint32_t Decode(ArithmeticDecoder& decoder);

private:
    unsigned mBits;
    std::vector<Context> mContexts;
};

}  // namespace VANTIX::HOST::JBIG2
