// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace VANTIX {

/// The 64-bit hash under which named colour spaces and patterns are known in the graphics-state
/// mirror. A null text is logged and gives 0.
std::uint64_t StandardHashie(const char* text);

}  // namespace VANTIX
