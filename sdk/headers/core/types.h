// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

namespace VANTIX {

/// Four-character code, first character in the most significant byte: colour-space families
/// ("gray", "rgb ", "cmyk", …), channel kinds ("SPOT", "LPHA") and property keys ("PSNM").
using FourCC = std::uint32_t;

/// The number under which the host knows a colour space or pattern.
using ResourceId = std::uint32_t;

inline namespace literals {

/// `"gray"_cc`: the code of exactly four characters; any other length does not compile.
consteval FourCC operator""_cc(const char* text, std::size_t length) {
    if (length != 4) {
        throw "a four-character code has four characters";
    }
    FourCC code = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        code = (code << 8U) | static_cast<unsigned char>(text[i]);
    }
    return code;
}

}  // namespace literals
}  // namespace VANTIX
