// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/color/icolorfunction.h"
#include "core/object/tinterfaceptr.h"
#include "host/export.h"

namespace VANTIX::HOST {

using FunctionPtr = TInterfacePtr<COLOR::IColorFunction>;

/// What every function has: two floats for each input, and for each output (or an empty range).
struct FunctionShape {
    std::vector<float> domain;
    std::vector<float> range;
};

/// Makers of checked functions (PDF Reference, 3.9). Each answers null, with the reason in `error`,
/// when the description is not a function: wrong counts, empty domains, non-finite numbers, samples
/// too short, programs that do not parse or exceed the limits below.
inline constexpr std::int32_t kMaxFunctionNesting = 32;
inline constexpr std::int32_t kMaxFunctionInputs = 32;
inline constexpr std::int32_t kMaxFunctionOutputs = 32;

NORVANE_HOST_API FunctionPtr MakeExponentialFunction(FunctionShape shape, std::vector<float> c0,
                                                     std::vector<float> c1, float exponent,
                                                     std::string& error);

/// `encode` has two floats for each function.
NORVANE_HOST_API FunctionPtr MakeStitchingFunction(FunctionShape shape,
                                                   std::vector<FunctionPtr> functions,
                                                   std::vector<float> bounds,
                                                   std::vector<float> encode, std::string& error);

/// The description of a table; empty `encode` and `decode` mean the defaults.
struct SampledTable {
    std::vector<std::int32_t> sizes{};
    std::int32_t bitsPerSample = 8;
    std::int32_t order = 1;
    std::vector<float> encode{};
    std::vector<float> decode{};
    std::vector<std::uint8_t> samples{};
};

NORVANE_HOST_API FunctionPtr MakeSampledFunction(const FunctionShape& shape, SampledTable table,
                                                 std::string& error);

/// `program` with or without outer braces; parsed once, run in a bounded stack machine.
NORVANE_HOST_API FunctionPtr MakeCalculatorFunction(FunctionShape shape, std::string_view program,
                                                    std::string& error);

/// Functions of the same inputs side by side.
NORVANE_HOST_API FunctionPtr MakeFunctionArray(std::vector<FunctionPtr> functions,
                                               std::string& error);

/// The identity of `count` inputs, as one calculator (what /Identity stands for).
NORVANE_HOST_API FunctionPtr MakeIdentityFunction(std::int32_t count);

/// A form of a tint function, for tints from 0 to 1, that the plug-in writes exactly where it would
/// spoil the given one. What is written right is answered as it is. Else
/// - a function of one input (a table, or one whose domain, range or bounds the written text would
///   pass over) becomes at most 24 linear pieces, with an error of at most 1/512 where 24 pieces
///   allow it;
/// - a table of several inputs, unless the alternate is CMYK and the table is a product of inks up
///   to 1/64, becomes a calculator: multilinear over the corner values, or, where that does not fit
///   a procedure (beyond about six inputs), for each output the sum or the product of what the inks
///   do alone;
/// - a calculator is cleaned of comments and clips by itself; one that fails for some tint, leaves
///   values over or is too long for a procedure of 8191 characters becomes one of the above, and so
///   does an array of functions.
NORVANE_HOST_API FunctionPtr NormaliseTintFunction(const FunctionPtr& tint, bool alternateIsCMYK);

}  // namespace VANTIX::HOST
