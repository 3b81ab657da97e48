// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace VANTIX::COLOR {

/// Rendering intents (ICC.1). Used in pairs: the first belongs to the source side of a conversion,
/// the second to the destination side.
enum class TRenderingIntent : std::int32_t {
    kAbsoluteColorimetric = 0,
    kRelativeColorimetric = 1,
    kSaturation = 2,
    kPerceptual = 3
};

/// Most components that a colour has anywhere in the interfaces.
inline constexpr std::int32_t kMaxComponents = 32;

}  // namespace VANTIX::COLOR
