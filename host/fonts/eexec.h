// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace VANTIX::HOST {

// Keys of the two layers of encryption (Adobe Type 1 Font Format, 7.1).
inline constexpr std::uint16_t kEexecKey = 55665;
inline constexpr std::uint16_t kCharStringKey = 4330;

/// Decrypts, and leaves out the first `lead` bytes (of shorter data: all).
std::string DecryptType1(std::string_view cipher, std::uint16_t key, std::size_t lead);

std::string EncryptType1(std::string_view plain, std::uint16_t key);

/// Whether an encrypted part is written as hexadecimal digits: its first four bytes are such.
bool IsHexadecimal(std::string_view encrypted);

/// The bytes of hexadecimal digits among white space, up to anything else.
std::string BytesOfDigits(std::string_view digits);

/// Lines of 64 digits, each with its line end.
std::string DigitsOfBytes(std::string_view bytes);

}  // namespace VANTIX::HOST
