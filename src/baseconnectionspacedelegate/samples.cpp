// SPDX-License-Identifier: MIT
#include "baseconnectionspacedelegate/samples.h"

#include <bit>

namespace VANTIX::RENDERING {

namespace {

/// Four words as 48 bits, the first one highest.
std::uint64_t FourSamples(const std::uint8_t* words) {
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        bits = bits << 12U | WordAt(words, i) >> 4U;
    }
    return bits;
}

void StoreBytes(std::uint64_t bits, std::size_t count, std::uint8_t* out) {
    for (std::size_t i = 0; i < count; ++i) {
        out[i] = static_cast<std::uint8_t>(bits >> 8U * (count - 1 - i));
    }
}

}  // namespace

void UnpackToBytes(const std::uint8_t* line, std::int32_t bits, std::size_t count,
                   std::uint8_t* out) {
    const auto size = static_cast<std::size_t>(bits);
    const unsigned most = (1U << size) - 1U;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t shift = 8 - size - i * size % 8;
        const unsigned sample = static_cast<unsigned>(line[i * size / 8]) >> shift & most;
        out[i] = static_cast<std::uint8_t>(sample * (255U / most));
    }
}

void PackTo12Bits(const std::uint8_t* words, std::size_t count, std::uint8_t* out) {
    for (; count >= 4; count -= 4, words += 8, out += 6) {
        StoreBytes(FourSamples(words), 6, out);
    }
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < count; ++i) {
        bits = bits << 12U | WordAt(words, i) >> 4U;
    }
    // An odd last sample ends within a byte.
    StoreBytes(count % 2 == 0 ? bits : bits << 4U, Packed12Bytes(count), out);
}

}  // namespace VANTIX::RENDERING
