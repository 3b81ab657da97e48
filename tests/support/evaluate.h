// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "core/color/icolorfunction.h"
#include "host/color/functions.h"

namespace VANTIX::TEST {

/// The function's outputs for these inputs.
inline std::vector<float> Evaluate(const COLOR::IColorFunction& function,
                                   const std::vector<float>& inputs) {
    std::vector<float> outputs(static_cast<std::size_t>(function.GetOutputCount()));
    function.Evaluate(inputs.data(), outputs.data());
    return outputs;
}

inline HOST::FunctionPtr Exponential(std::vector<float> domain, std::vector<float> c0,
                                     std::vector<float> c1, float exponent,
                                     std::vector<float> range = {}) {
    std::string error;
    return HOST::MakeExponentialFunction({std::move(domain), std::move(range)}, std::move(c0),
                                         std::move(c1), exponent, error);
}

}  // namespace VANTIX::TEST
