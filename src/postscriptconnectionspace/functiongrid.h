// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <utility>
#include <vector>

#include "core/color/icolorfunction.h"
#include "postscriptconnectionspace/colorroute.h"

namespace VANTIX {

/// The table of 8-bit samples that stands for a function of one or two inputs with a domain
/// (PostScript Language Reference, 3.10.2): first input fastest, outputs side by side.
class FunctionGrid {
public:
    /// Borrows both.
    FunctionGrid(const COLOR::IColorFunction& function, const ColorRoute& route);

    /// How many samples each input has; 1 for an input that is not there.
    [[nodiscard]] const std::array<std::int32_t, 2>& Sizes() const { return mSizes; }

    /// What the least and the greatest sample of output `index` stand for: 0 and 1, or the range of
    /// an unconverted function that leaves them.
    [[nodiscard]] std::pair<float, float> Limits(std::size_t index) const;

    /// Appends all samples of `outputs` outputs; false when a colour cannot be converted.
    bool Sample(std::size_t outputs, std::vector<std::uint8_t>& samples) const;

private:
    [[nodiscard]] const float* Domain(std::int32_t input) const;
    /// Input `input` at sample `step`.
    [[nodiscard]] float At(std::int32_t input, std::int32_t step) const;

    const COLOR::IColorFunction& mFunction;
    const ColorRoute& mRoute;
    std::int32_t mInputs;
    std::array<std::int32_t, 2> mSizes{1, 1};
};

}  // namespace VANTIX
