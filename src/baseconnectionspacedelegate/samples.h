// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace VANTIX::RENDERING {

/// Bytes of `count` samples of 12 bits; an odd last one takes the high half of its second byte.
constexpr std::size_t Packed12Bytes(std::size_t count) {
    return (count * 12 + 4) / 8;
}

/// The native 16-bit word number `index` of a line, which need not be aligned.
inline std::uint16_t WordAt(const std::uint8_t* line, std::size_t index) {
    std::uint16_t word;
    std::memcpy(&word, line + 2 * index, sizeof word);
    return word;
}

/// The gray of a colour, by the weights of red, green and blue in luminance in units of 1/16384,
/// rounded; of 8 or 16 bits as the colour is.
template <class Sample>
constexpr Sample GrayOf(std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
    return static_cast<Sample>((4915U * red + 9667U * green + 1802U * blue + 8192U) >> 14U);
}

/// Reads `count` samples of 1, 2 or 4 bits into bytes of the same share of their range.
void UnpackToBytes(const std::uint8_t* line, std::int32_t bits, std::size_t count,
                   std::uint8_t* out);

/// Packs the top 12 bits of `count` native 16-bit words into `Packed12Bytes(count)` bytes, most
/// significant bit first.
void PackTo12Bits(const std::uint8_t* words, std::size_t count, std::uint8_t* out);

}  // namespace VANTIX::RENDERING
