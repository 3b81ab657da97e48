// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <vector>

#include "core/color/icolorfunction.h"

namespace VANTIX::TEST {

/// The function's outputs for these inputs.
inline std::vector<float> Evaluate(const COLOR::IColorFunction& function,
                                   const std::vector<float>& inputs) {
    std::vector<float> outputs(static_cast<std::size_t>(function.GetOutputCount()));
    function.Evaluate(inputs.data(), outputs.data());
    return outputs;
}

}  // namespace VANTIX::TEST
