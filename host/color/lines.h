// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "core/color/iconnectioncolorspace.h"

namespace VANTIX::HOST {

/// The line conversions of a space by its conversions of single colours (see
/// IConnectionColorSpace).
Status PixelsToPCS(const COLOR::IConnectionColorSpace& space, const std::uint8_t* const* planes,
                   std::int32_t width, std::int32_t bits, float* pcs,
                   COLOR::TRenderingIntent intent);
Status PixelsFromPCS(const COLOR::IConnectionColorSpace& space, const float* pcs,
                     const std::uint8_t* alpha, std::int32_t width, std::int32_t bits,
                     std::uint8_t* const* planes, COLOR::TRenderingIntent intent);

}  // namespace VANTIX::HOST
