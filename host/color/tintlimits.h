// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "host/color/functions.h"

namespace VANTIX::HOST {

/// The plug-in writes a tint procedure into 8192 characters, the last a zero.
inline constexpr std::size_t kMaxProcedureText = 8191;

/// Tints to try a function with: the corners first, then points without order, the same in every
/// run.
class ScatteredTints {
public:
    explicit ScatteredTints(std::size_t inputs) : mInputs(inputs) {}

    /// How many to try: a table of many inputs takes its time for each.
    std::size_t Count() const { return mInputs <= 8 ? 256 : 64; }

    std::array<float, kMaxFunctionInputs> Next() {
        std::array<float, kMaxFunctionInputs> tints{};
        const std::uint32_t corner = mCount++;
        for (std::size_t i = 0; i < mInputs; ++i) {
            mState = mState * 1664525U + 1013904223U;
            const bool isCorner = mInputs < 16 && corner < (1U << mInputs) && corner < 128;
            tints[i] = isCorner ? static_cast<float>((corner >> i) & 1U)
                                : static_cast<float>(mState >> 8U) / 16777215.0F;
        }
        return tints;
    }

private:
    std::size_t mInputs;
    std::uint32_t mCount = 0;
    std::uint32_t mState = 20011U;
};

}  // namespace VANTIX::HOST
