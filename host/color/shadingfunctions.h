// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "host/color/functions.h"
#include "host/export.h"

namespace VANTIX::HOST {

/// Two floats, in ascending order, for each input or output.
using FunctionBounds = std::vector<float>;

/// A form of a shading's function that the plug-in writes as it is and interpreters take: its
/// domain covers `domain`, the inputs that the shading asks for, and nothing leaves `range`, the
/// values that its space takes. Functions that are so already are answered as they are. Else tables
/// take their place, inside stitching functions and arrays for the members that need it; such are
/// calculators, tables of other than 8 bits, with fractional or too wide encodings, or too long for
/// a string, and powers that some input does not have. Null for more than two inputs, or when
/// `domain` and `range` do not fit.
NORVANE_HOST_API FunctionPtr MakeShadingFunction(const FunctionPtr& function,
                                                 const FunctionBounds& domain,
                                                 const FunctionBounds& range);

/// Takes the inputs and fills the outputs.
using Evaluation = std::function<void(const float* in, float* out)>;

/// A table of 8 bits over one input (256 samples) or two (at most 64 x 64), whose strings keep
/// within 65,535 bytes, for the function itself and for four components in its stead. Its domain is
/// `inputsAsked`, or more where that has no width; it decodes to whole numbers around `range`. Null
/// for more inputs.
NORVANE_HOST_API FunctionPtr SampleFunction(const FunctionBounds& inputsAsked,
                                            const FunctionBounds& range,
                                            const Evaluation& evaluate);

}  // namespace VANTIX::HOST
