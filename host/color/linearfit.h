// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "host/color/functions.h"

namespace VANTIX::HOST {

/// A function of one input, seen over [0, 1], as straight pieces. The error is at most 1/512 of the
/// width of each output's values (of 1 where they keep within less), or as little above as
/// `maxPieces` allow. Pieces meet the function at their ends where that keeps the error. Jumps at
/// the bounds of a stitching function stay jumps. Answers a stitching of linear functions, or one
/// linear function.
FunctionPtr FitLinearPieces(const COLOR::IColorFunction& function, std::size_t maxPieces);

}  // namespace VANTIX::HOST
