// SPDX-License-Identifier: MIT
#pragma once

#include "host/color/functions.h"

namespace VANTIX::HOST {

/// A function of several tints as a calculator: multilinear over its corner values where that fits
/// a procedure (up to six inputs of four outputs), else for each output the nearer of two models of
/// inks that know nothing of each other: effects that add, or transmittances that multiply.
FunctionPtr FitCalculator(const COLOR::IColorFunction& function);

/// Whether `function` is 1 - (1 - t1 v1)(1 - t2 v2)… in every output, up to 1/64, where each v is
/// what one ink alone gives: at the points of a grid with `sizes` points for each input, or at
/// scattered points where these are too many.
bool IsProductOfInks(const COLOR::IColorFunction& function, const std::int32_t* sizes);

}  // namespace VANTIX::HOST
