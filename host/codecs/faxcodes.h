// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace VANTIX::HOST::FAX {

/// What the next bits of coded data mean: a number, and the bits that say it (0: no code).
struct Code {
    std::int16_t value = 0;
    std::uint8_t bits = 0;
};

inline constexpr unsigned kRunBits = 13;
inline constexpr unsigned kModeBits = 7;

/// Codes of runs by their next 13 bits; 64 and more are followed by another code of the colour
/// (ITU-T T.4, tables 2 and 3).
using RunTable = std::array<Code, std::size_t{1} << kRunBits>;
extern const RunTable kWhiteRuns;
extern const RunTable kBlackRuns;

/// Modes of two-dimensional coding: vertical ones are -3 to 3 (ITU-T T.4, table 4).
inline constexpr std::int16_t kPass = 4;
inline constexpr std::int16_t kHorizontal = 5;
using ModeTable = std::array<Code, std::size_t{1} << kModeBits>;
extern const ModeTable kModes;

}  // namespace VANTIX::HOST::FAX
