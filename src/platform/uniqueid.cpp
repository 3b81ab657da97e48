// SPDX-License-Identifier: MIT
#include "platform/uniqueid.h"

#include <array>
#include <cstddef>

#include "platform/randomsource.h"

namespace VANTIX::PLATFORM {
namespace {

void AppendHex(std::string& text, std::uint32_t value, int digits) {
    for (int i = digits - 1; i >= 0; --i) {
        text.push_back("0123456789ABCDEF"[(value >> static_cast<unsigned>(i * 4)) & 0xFU]);
    }
}

/// The bytes of `id` with the lowest byte of each field first, on any machine.
std::array<std::uint8_t, 16> MemoryBytes(const GUID& id) {
    std::array<std::uint8_t, 16> bytes{};
    for (unsigned i = 0; i < 4; ++i) {
        bytes[i] = static_cast<std::uint8_t>(id.Data1 >> (8 * i));
    }
    for (unsigned i = 0; i < 2; ++i) {
        bytes[4 + i] = static_cast<std::uint8_t>(id.Data2 >> (8 * i));
        bytes[6 + i] = static_cast<std::uint8_t>(id.Data3 >> (8 * i));
    }
    for (std::size_t i = 0; i < id.Data4.size(); ++i) {
        bytes[8 + i] = id.Data4[i];
    }
    return bytes;
}

GUID MakeUniqueId(std::uint64_t first, std::uint64_t second) {
    GUID id;
    id.Data1 = static_cast<std::uint32_t>(first >> 32U);
    id.Data2 = static_cast<std::uint16_t>(first >> 16U);
    // Version 4, variant 1: an identifier made at random (RFC 4122, 4.4).
    id.Data3 = static_cast<std::uint16_t>((first & 0x0FFFU) | 0x4000U);
    for (unsigned i = 0; i < 8; ++i) {
        id.Data4[i] = static_cast<std::uint8_t>(second >> (56 - 8 * i));
    }
    id.Data4[0] = static_cast<std::uint8_t>((id.Data4[0] & 0x3FU) | 0x80U);
    return id;
}

}  // namespace

GUID CreateUniqueId() {
    const std::uint64_t first = NextRandom();
    return MakeUniqueId(first, NextRandom());
}

GUID CreateSystemUniqueId() {
    return MakeUniqueId(SystemRandom(), SystemRandom());
}

std::string UniqueIdDigits(const GUID& id) {
    std::string text;
    text.reserve(32);
    AppendHex(text, id.Data1, 8);
    AppendHex(text, id.Data2, 4);
    AppendHex(text, id.Data3, 4);
    for (const std::uint8_t byte : id.Data4) {
        AppendHex(text, byte, 2);
    }
    return text;
}

std::string UniqueIdHyphenText(const GUID& id) {
    const std::array<std::uint8_t, 16> bytes = MemoryBytes(id);
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i == 4 || i == 6 || i >= 8) {
            text.push_back('-');
        }
        if (bytes[i] >= 16) {
            text.push_back("0123456789abcdef"[bytes[i] / 16]);
        }
        text.push_back("0123456789abcdef"[bytes[i] % 16]);
    }
    return text;
}

}  // namespace VANTIX::PLATFORM
