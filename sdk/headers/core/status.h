// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace VANTIX {

/// Result of an operation that can fail; 0 is success.
using Status = std::int32_t;

namespace STATUS {

inline constexpr Status kOk = 0;
inline constexpr Status kInvalidArgument = 1;
inline constexpr Status kWriteFailed = 2;
inline constexpr Status kNotSupported = 3;
inline constexpr Status kNoProvider = 7;
inline constexpr Status kNoDictionary = 12;
inline constexpr Status kBadPosition = 13;
inline constexpr Status kStreamInitFailed = 18;
inline constexpr Status kFileExists = 20;
inline constexpr Status kNoTile = 23;
inline constexpr Status kOpenFailed = 25;
inline constexpr Status kNotImplemented = 29;
inline constexpr Status kNoTempFolder = 37;
inline constexpr Status kAlreadyOpen = 40;
inline constexpr Status kNoForm = 62;
inline constexpr Status kNoAlternateWriter = 72;
inline constexpr Status kStackUnderflow = 82;
inline constexpr Status kNoInterface = static_cast<Status>(0x80004002U);
inline constexpr Status kOutOfMemory = static_cast<Status>(0x8007000EU);

}  // namespace STATUS
}  // namespace VANTIX
