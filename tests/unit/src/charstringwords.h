// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <cstdlib>
#include <span>
#include <sstream>
#include <string>
#include <vector>

namespace VANTIX::TEST {

/// Words of a Type 1 charstring, decrypted: numbers and the codes of commands in brackets, 12xx for
/// those of two bytes.
inline std::string ReadCharString(std::span<const std::uint8_t> charString) {
    std::uint32_t key = 4330;
    std::vector<int> bytes;
    for (const std::uint8_t cipher : charString) {
        bytes.push_back(static_cast<int>(cipher ^ (key >> 8U)));
        key = ((cipher + key) * 52845U + 22719U) & 0xFFFFU;
    }
    std::string words;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const int byte = bytes[i];
        if (byte < 32) {
            words += "[" + std::to_string(byte == 12 ? 1200 + bytes.at(++i) : byte) + "] ";
        } else if (byte <= 246) {
            words += std::to_string(byte - 139) + " ";
        } else if (byte <= 250) {
            words += std::to_string((byte - 247) * 256 + bytes.at(++i) + 108) + " ";
        } else if (byte <= 254) {
            words += std::to_string(-(byte - 251) * 256 - bytes.at(++i) - 108) + " ";
        } else {
            std::uint32_t bits = 0;
            for (int n = 0; n < 4; ++n) {
                bits = bits << 8U | static_cast<std::uint32_t>(bytes.at(++i));
            }
            words += std::to_string(static_cast<std::int32_t>(bits)) + " ";
        }
    }
    return words;
}

/// A Type 2 charstring of such words, and of bytes in hexadecimal behind "#". Numbers with a
/// fraction are of four bytes.
inline std::string MakeCharString(const std::string& words) {
    std::string bytes;
    const auto put = [&](int value) { bytes += static_cast<char>(value); };
    std::istringstream in(words);
    for (std::string word; in >> word;) {
        if (word[0] == '[') {
            const int code = std::atoi(word.c_str() + 1);
            if (code >= 1200) {
                put(12);
            }
            put(code >= 1200 ? code - 1200 : code);
        } else if (word[0] == '#') {
            put(static_cast<int>(std::strtol(word.c_str() + 1, nullptr, 16)));
        } else if (word.find('.') != std::string::npos) {
            const int fixed = static_cast<int>(std::atof(word.c_str()) * 65536);
            put(255);
            for (const int shift : {24, 16, 8, 0}) {
                put(fixed >> shift);
            }
        } else {
            const int value = std::atoi(word.c_str());
            put(28);
            put(value >> 8);
            put(value);
        }
    }
    return bytes;
}

}  // namespace VANTIX::TEST
