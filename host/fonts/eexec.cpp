// SPDX-License-Identifier: MIT
#include "host/fonts/eexec.h"

#include <algorithm>

namespace VANTIX::HOST {
namespace {

constexpr std::string_view kDigits = "0123456789abcdef";
constexpr std::size_t kBytesOfLine = 32;

std::uint16_t NextKey(std::uint8_t cipher, std::uint16_t key) {
    return static_cast<std::uint16_t>((cipher + std::uint32_t{key}) * 52845U + 22719U);
}

/// Value of a hexadecimal digit, or -1.
int ValueOf(char digit) {
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    const char small = static_cast<char>(digit | 0x20);
    return small >= 'a' && small <= 'f' ? small - 'a' + 10 : -1;
}

bool IsSpace(char byte) {
    return byte == ' ' || byte == '\t' || byte == '\r' || byte == '\n' || byte == '\f' ||
           byte == '\0';
}

}  // namespace

std::string DecryptType1(std::string_view cipher, std::uint16_t key, std::size_t lead) {
    std::string plain;
    plain.reserve(cipher.size());
    for (const char each : cipher) {
        const auto byte = static_cast<std::uint8_t>(each);
        plain += static_cast<char>(byte ^ (key >> 8U));
        key = NextKey(byte, key);
    }
    plain.erase(0, lead);
    return plain;
}

std::string EncryptType1(std::string_view plain, std::uint16_t key) {
    std::string cipher;
    cipher.reserve(plain.size());
    for (const char each : plain) {
        const auto byte = static_cast<std::uint8_t>(static_cast<std::uint8_t>(each) ^ (key >> 8U));
        cipher += static_cast<char>(byte);
        key = NextKey(byte, key);
    }
    return cipher;
}

bool IsHexadecimal(std::string_view encrypted) {
    const std::string_view start = encrypted.substr(0, 4);
    return start.size() == 4 &&
           std::all_of(start.begin(), start.end(), [](char each) { return ValueOf(each) >= 0; });
}

std::string BytesOfDigits(std::string_view digits) {
    std::string bytes;
    bytes.reserve(digits.size() / 2);
    int high = -1;
    for (const char each : digits) {
        const int value = ValueOf(each);
        if (value < 0) {
            if (IsSpace(each)) {
                continue;
            }
            break;
        }
        if (high < 0) {
            high = value;
        } else {
            bytes += static_cast<char>(high * 16 + value);
            high = -1;
        }
    }
    return bytes;
}

std::string DigitsOfBytes(std::string_view bytes) {
    std::string digits;
    digits.reserve(bytes.size() * 2 + bytes.size() / kBytesOfLine + 1);
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        const auto byte = static_cast<std::uint8_t>(bytes[index]);
        digits += kDigits[byte >> 4U];
        digits += kDigits[byte & 0xFU];
        if ((index + 1) % kBytesOfLine == 0 || index + 1 == bytes.size()) {
            digits += '\n';
        }
    }
    return digits;
}

}  // namespace VANTIX::HOST
