// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <bit>
#include <compare>
#include <cstddef>
#include <cstdint>

namespace VANTIX {

/// A 16-byte identifier of a class, an interface or an aggregation role.
struct GUID {
    std::uint32_t Data1 = 0;
    std::uint16_t Data2 = 0;
    std::uint16_t Data3 = 0;
    std::array<std::uint8_t, 8> Data4{};

    friend constexpr bool operator==(const GUID&, const GUID&) = default;

    /// Orders by the four 32-bit words of the value, compared as unsigned numbers.
    friend constexpr std::strong_ordering operator<=>(const GUID& a, const GUID& b) {
        return a.Words() <=> b.Words();
    }

    [[nodiscard]] constexpr std::array<std::uint32_t, 4> Words() const {
        return std::bit_cast<std::array<std::uint32_t, 4>>(*this);
    }
};

static_assert(sizeof(GUID) == 16);

inline namespace literals {

/// `"26A7F9E5-E7E0-4B14-AC27-79483C2E02D3"_guid`: a GUID from its hyphenated text of 36 characters.
consteval GUID operator""_guid(const char* text, std::size_t length) {
    if (length != 36) {
        throw "a GUID text has 36 characters";
    }
    std::array<std::uint8_t, 16> bytes{};
    std::size_t digit = 0;
    for (std::size_t i = 0; i < length; ++i) {
        const char c = text[i];
        if (c == '-') {
            continue;
        }
        int value = 0;
        if (c >= '0' && c <= '9') {
            value = c - '0';
        } else if (c >= 'A' && c <= 'F') {
            value = c - 'A' + 10;
        } else if (c >= 'a' && c <= 'f') {
            value = c - 'a' + 10;
        } else {
            throw "a GUID text holds hexadecimal digits and hyphens";
        }
        bytes[digit / 2] = static_cast<std::uint8_t>(bytes[digit / 2] * 16 + value);
        ++digit;
    }
    GUID guid;
    guid.Data1 = (std::uint32_t{bytes[0]} << 24U) | (std::uint32_t{bytes[1]} << 16U) |
                 (std::uint32_t{bytes[2]} << 8U) | bytes[3];
    guid.Data2 = static_cast<std::uint16_t>((bytes[4] << 8U) | bytes[5]);
    guid.Data3 = static_cast<std::uint16_t>((bytes[6] << 8U) | bytes[7]);
    for (std::size_t i = 0; i < 8; ++i) {
        guid.Data4[i] = bytes[8 + i];
    }
    return guid;
}

}  // namespace literals
}  // namespace VANTIX
