// SPDX-License-Identifier: MIT
#include <array>
#include <cstdint>
#include <string>

#include "host/color/functions.h"

/// Parses any bytes as a calculator function and runs what is one.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace VANTIX;
    const std::string program(data, data + size);
    HOST::FunctionShape shape;
    shape.domain = {-1, 1, -1, 1};
    shape.range = {0, 1, 0, 1, 0, 1};
    std::string error;
    const HOST::FunctionPtr function = HOST::MakeCalculatorFunction(shape, program, error);
    if (function) {
        const std::array<float, 2> in{0.25F, -0.75F};
        std::array<float, 3> out{};
        function->Evaluate(in.data(), out.data());
    }
    return 0;
}
