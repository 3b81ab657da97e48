// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace VANTIX::HOST {

inline constexpr std::size_t kCffStandardStrings = 391;
inline constexpr std::size_t kCffPredefinedCharsets = 3;

/// A string that every CFF font has (Technical Note 5176, appendix A); empty beyond the last one.
std::string_view CffStandardString(std::size_t number);

/// The strings that name the glyphs of a predefined charset, from ".notdef" on.
std::vector<std::uint16_t> CffPredefinedCharset(std::size_t number);

/// Strings by code of the predefined Expert encoding; 0 for none.
std::array<std::uint16_t, 256> CffExpertEncoding();

}  // namespace VANTIX::HOST
