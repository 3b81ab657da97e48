// SPDX-License-Identifier: MIT
#include "host/color/functionfactory.h"

#include <string>
#include <utility>
#include <vector>

#include "core/libsupport/vlogger/logmessage.h"
#include "host/color/functions.h"

namespace VANTIX::HOST {

namespace {

std::vector<float> Copy(const float* values, std::int32_t count) {
    return values == nullptr ? std::vector<float>() : std::vector<float>(values, values + count);
}

bool IsCount(std::int32_t count, std::int32_t limit) {
    return count >= 1 && count <= limit;
}

COLOR::IColorFunction* Give(FunctionPtr function, const std::string& error) {
    if (!function) {
        LogError("host/color") << "A function was refused: " << error.c_str();
    }
    return function.Detach();
}

}  // namespace

COLOR::IColorFunction* FunctionFactory::CreateExponentialFunction(const float* domain,
                                                                  const float* range,
                                                                  const float* c0, const float* c1,
                                                                  std::int32_t outputs,
                                                                  float exponent) {
    if (domain == nullptr || !IsCount(outputs, kMaxFunctionOutputs)) {
        return Give(nullptr, "no domain, or a wrong number of outputs");
    }
    // Written out, so that a function of several outputs keeps its count without C0 and C1.
    std::vector<float> low = Copy(c0, outputs);
    low.resize(static_cast<std::size_t>(outputs), 0.0F);
    std::vector<float> high = Copy(c1, outputs);
    high.resize(static_cast<std::size_t>(outputs), 1.0F);
    std::string error;
    FunctionPtr made = MakeExponentialFunction({Copy(domain, 2), Copy(range, 2 * outputs)},
                                               std::move(low), std::move(high), exponent, error);
    return Give(std::move(made), error);
}

COLOR::IColorFunction* FunctionFactory::CreateCalculatorFunction(const char* program,
                                                                 const float* domain,
                                                                 std::int32_t inputs,
                                                                 const float* range,
                                                                 std::int32_t outputs) {
    if (program == nullptr || domain == nullptr || range == nullptr ||
        !IsCount(inputs, kMaxFunctionInputs) || !IsCount(outputs, kMaxFunctionOutputs)) {
        return Give(nullptr, "no program, domain or range, or a wrong number of values");
    }
    std::string error;
    FunctionPtr made = MakeCalculatorFunction({Copy(domain, 2 * inputs), Copy(range, 2 * outputs)},
                                              program, error);
    return Give(std::move(made), error);
}

}  // namespace VANTIX::HOST
