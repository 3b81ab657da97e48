// SPDX-License-Identifier: MIT
#include "host/graphics/swizzleservices.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace VANTIX::HOST {

namespace {

// Vectors of 16 bytes are what every 64-bit machine has; elsewhere the compiler splits them.
using Bytes [[gnu::vector_size(16)]] = std::uint8_t;
using Words [[gnu::vector_size(16)]] = std::uint64_t;

Bytes Load(const std::uint8_t* from) {
    Bytes bytes;
    std::memcpy(&bytes, from, sizeof bytes);
    return bytes;
}

Bytes ZipLow(Bytes a, Bytes b) {
    return __builtin_shufflevector(a, b, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
}

Bytes ZipHigh(Bytes a, Bytes b) {
    return __builtin_shufflevector(a, b, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15,
                                   31);
}

/// Sixteen pixels of four channels, four in each vector.
std::array<Bytes, 4> Zip(Bytes a, Bytes b, Bytes c, Bytes d) {
    const Bytes acLow = ZipLow(a, c);
    const Bytes acHigh = ZipHigh(a, c);
    const Bytes bdLow = ZipLow(b, d);
    const Bytes bdHigh = ZipHigh(b, d);
    return {ZipLow(acLow, bdLow), ZipHigh(acLow, bdLow), ZipLow(acHigh, bdHigh),
            ZipHigh(acHigh, bdHigh)};
}

/// Writes the first three channels of four pixels: 12 bytes, and 2 more that the next ones cover.
void StoreThreeOfFour(Bytes pixels, std::uint8_t* out) {
    Words words;
    std::memcpy(&words, &pixels, sizeof words);
    const Words packed = (words & 0xFFFFFFU) | ((words >> 8U) & 0xFFFFFF000000U);
    std::memcpy(out, &packed, 8);
    const std::uint64_t second = packed[1];
    std::memcpy(out + 6, &second, 8);
}

/// How many pixels all buffers hold.
std::size_t PixelsWithin(std::int32_t width, std::int32_t step, std::int32_t planeBytes,
                         std::int32_t outBytes, std::int32_t channels) {
    if (width <= 0 || step <= 0 || planeBytes <= 0) {
        return 0;
    }
    const std::int32_t held = (planeBytes - 1) / step + 1;
    return static_cast<std::size_t>(std::max(0, std::min({width, held, outBytes / channels})));
}

/// The pixels from `first` on, one by one.
template <std::size_t N>
void InterleaveRest(std::size_t first, std::size_t count, std::size_t step,
                    const std::array<const std::uint8_t*, N>& planes, std::uint8_t* out) {
    for (std::size_t x = first; x < count; ++x) {
        for (std::size_t i = 0; i < N; ++i) {
            out[N * x + i] = planes[i][x * step];
        }
    }
}

}  // namespace

void SwizzleServices::Interleave3(std::int32_t width, std::int32_t step, const std::uint8_t* plane0,
                                  const std::uint8_t* plane1, const std::uint8_t* plane2,
                                  std::int32_t planeBytes, std::uint8_t* out,
                                  std::int32_t outBytes) {
    const std::size_t count = PixelsWithin(width, step, planeBytes, outBytes, 3);
    std::size_t x = 0;
    // One pixel stays for the rest, since every store reaches over its own pixels.
    const bool isFast = step == 1 && std::endian::native == std::endian::little;
    for (; isFast && x + 17 <= count; x += 16) {
        const auto pixels = Zip(Load(plane0 + x), Load(plane1 + x), Load(plane2 + x), Bytes{});
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            StoreThreeOfFour(pixels[i], out + 3 * x + 12 * i);
        }
    }
    InterleaveRest<3>(x, count, static_cast<std::size_t>(step), {plane0, plane1, plane2}, out);
}

void SwizzleServices::Interleave4(std::int32_t width, std::int32_t step, const std::uint8_t* plane0,
                                  const std::uint8_t* plane1, const std::uint8_t* plane2,
                                  const std::uint8_t* plane3, std::int32_t planeBytes,
                                  std::uint8_t* out, std::int32_t outBytes) {
    const std::size_t count = PixelsWithin(width, step, planeBytes, outBytes, 4);
    std::size_t x = 0;
    for (; step == 1 && x + 16 <= count; x += 16) {
        const auto pixels =
            Zip(Load(plane0 + x), Load(plane1 + x), Load(plane2 + x), Load(plane3 + x));
        std::memcpy(out + 4 * x, pixels.data(), sizeof pixels);
    }
    InterleaveRest<4>(x, count, static_cast<std::size_t>(step), {plane0, plane1, plane2, plane3},
                      out);
}

}  // namespace VANTIX::HOST
