// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace VANTIX::PS {

/// Room for any real that the functions below write.
inline constexpr std::size_t kRealTextBytes = 512;
/// Precisions beyond this are cut to it.
inline constexpr int kMaxPrecision = 64;

/// Writes `value`, which must be finite, as printf's "%.*g" does in the "C" locale. Answers the end
/// of the text; no terminating zero is written.
char* WriteGeneralReal(char* out, double value, int precision);

/// The same as "%.*f".
char* WriteFixedReal(char* out, double value, int precision);

/// Decimal places of reals on data streams.
inline constexpr int kStreamDecimals = 6;

/// Writes `value` rounded to `kStreamDecimals` places without trailing zeros and never with an
/// exponent: the form of reals on data streams. The scaled magnitude must stay below 2^63, or it is
/// clamped to the largest 64-bit number and `clamped` becomes true; NaN is written as 0 and clamped
/// too.
char* WriteStreamReal(char* out, double value, bool& clamped);

}  // namespace VANTIX::PS
