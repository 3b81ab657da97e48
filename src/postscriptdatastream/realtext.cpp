// SPDX-License-Identifier: MIT
#include "postscriptdatastream/realtext.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>

namespace VANTIX::PS {
namespace {

constexpr int kFastPrecision = 8;
constexpr int kLowestExponent = -4;
constexpr std::array<double, 13> kPowers{1e0, 1e1, 1e2, 1e3,  1e4,  1e5, 1e6,
                                         1e7, 1e8, 1e9, 1e10, 1e11, 1e12};
// The bounds of the decimal exponents from -4 to 7 in which "%g" needs no exponent at precision 8.
constexpr std::array<double, 13> kDecades{1e-4, 1e-3, 1e-2, 1e-1, 1e0, 1e1, 1e2,
                                          1e3,  1e4,  1e5,  1e6,  1e7, 1e8};

/// Writes `digits` with `decimals` places behind the point, without trailing zeros there.
char* WriteScaled(char* out, std::uint64_t digits, int decimals) {
    while (decimals > 0 && digits % 10 == 0) {
        digits /= 10;
        --decimals;
    }
    std::array<char, 24> text;
    char* const end = std::to_chars(text.begin(), text.end(), digits).ptr;
    const auto count = static_cast<int>(end - text.begin());
    const int whole = count - decimals;
    if (whole > 0) {
        out = std::copy_n(text.begin(), whole, out);
    } else {
        *out++ = '0';
    }
    if (decimals > 0) {
        *out++ = '.';
        out = std::fill_n(out, std::max(-whole, 0), '0');
        out = std::copy(text.begin() + std::max(whole, 0), end, out);
    }
    return out;
}

/// The common case of "%g": a value with no more bits than a float, written without an exponent.
/// Its 24 bits times a power of ten up to 10^12 (28 bits) are exact in a double, so that rounding
/// is exact as well. Null when the value is of another kind.
char* WriteShortReal(char* out, double value, int precision) {
    const double magnitude = std::fabs(value);
    if (precision < 1 || precision > kFastPrecision || magnitude < kDecades.front() ||
        magnitude >= kPowers[static_cast<std::size_t>(precision)] ||
        static_cast<double>(static_cast<float>(value)) != value) {
        return nullptr;
    }
    const auto* decade = std::upper_bound(kDecades.begin(), kDecades.end(), magnitude);
    const auto exponent =
        static_cast<int>(std::distance(kDecades.begin(), decade)) - 1 + kLowestExponent;
    const int decimals = precision - 1 - exponent;
    const double scaled = magnitude * kPowers[static_cast<std::size_t>(decimals)];
    auto digits = static_cast<std::uint64_t>(scaled);
    const double rest = scaled - static_cast<double>(digits);
    if (rest > 0.5 || (rest == 0.5 && digits % 2 != 0)) {
        ++digits;
    }
    if (exponent == precision - 1 &&
        static_cast<double>(digits) >= kPowers[static_cast<std::size_t>(precision)]) {
        return nullptr;  // rounding up has made it need an exponent
    }
    if (value < 0) {
        *out++ = '-';
    }
    return WriteScaled(out, digits, decimals);
}

}  // namespace

char* WriteGeneralReal(char* out, double value, int precision) {
    char* const shortEnd = WriteShortReal(out, value, precision);
    if (shortEnd != nullptr) {
        return shortEnd;
    }
    return std::to_chars(out, out + kRealTextBytes, value, std::chars_format::general,
                         std::min(precision, kMaxPrecision))
        .ptr;
}

char* WriteFixedReal(char* out, double value, int precision) {
    return std::to_chars(out, out + kRealTextBytes, value, std::chars_format::fixed,
                         std::min(precision, kMaxPrecision))
        .ptr;
}

char* WriteStreamReal(char* out, double value, bool& clamped) {
    clamped = false;
    if (value < 0) {
        *out++ = '-';
        value = -value;
    }
    // Ten at a time: one multiplication by 10^6 would round differently.
    for (int i = 0; i < kStreamDecimals; ++i) {
        value *= 10;
    }
    value += 0.5;
    constexpr double kLimit = 0x1p63;
    std::uint64_t digits = 0;
    if (value < kLimit) {
        digits = static_cast<std::uint64_t>(value);
    } else {
        clamped = true;
        digits = std::isnan(value) ? 0 : std::numeric_limits<std::int64_t>::max();
    }
    return WriteScaled(out, digits, kStreamDecimals);
}

}  // namespace VANTIX::PS
