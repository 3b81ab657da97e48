// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

namespace VANTIX::PS {

// Numbers of font data, most significant byte first (TrueType Reference Manual). The bytes have to
// be there.

inline std::uint16_t ReadU16(const std::uint8_t* bytes) {
    return static_cast<std::uint16_t>((bytes[0] << 8U) | bytes[1]);
}

inline std::uint32_t ReadU32(const std::uint8_t* bytes) {
    return (std::uint32_t{ReadU16(bytes)} << 16U) | ReadU16(bytes + 2);
}

inline void WriteU16(std::uint8_t* bytes, std::uint32_t value) {
    bytes[0] = static_cast<std::uint8_t>(value >> 8U);
    bytes[1] = static_cast<std::uint8_t>(value);
}

inline void WriteU32(std::uint8_t* bytes, std::uint32_t value) {
    WriteU16(bytes, value >> 16U);
    WriteU16(bytes + 2, value);
}

}  // namespace VANTIX::PS
