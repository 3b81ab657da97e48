// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "host/codecs/linesource.h"

namespace VANTIX::HOST {

/// The longest line that a source serves: sixteen million pixels of CMYK.
inline constexpr std::size_t kMostLineBytes = std::size_t{1} << 26;

/// Components of a pixel: the most that DeviceN has (PDF Reference, appendix C), and opacity.
inline constexpr std::int32_t kMostComponents = 33;

/// Samples of an image that its codec holds as a whole.
inline constexpr std::uint64_t kMostHeldSamples = 400'000'000;

/// Whether an image has a size and a depth that sources serve; else `error` tells why not.
bool IsServable(const ImageFormat& format, std::string& error);

/// Says that `coding` gave fewer lines than the image has, and why where that is known.
std::string DescribeShortData(const char* coding, std::int32_t lines, std::int32_t height,
                              const char* reason);

}  // namespace VANTIX::HOST
