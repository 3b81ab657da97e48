// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "core/color/icolorfunction.h"
#include "core/object/tobject.h"
#include "host/export.h"

namespace VANTIX::HOST {

/// Makes functions for the plug-in (`CLSID_COLORFUNCTIONFACTORY`); what it refuses it logs.
class NORVANE_HOST_API FunctionFactory : public TObject<COLOR::IColorFunctionFactory> {
public:
    COLOR::IColorFunction* CreateExponentialFunction(const float* domain, const float* range,
                                                     const float* c0, const float* c1,
                                                     std::int32_t outputs, float exponent) override;
    COLOR::IColorFunction* CreateCalculatorFunction(const char* program, const float* domain,
                                                    std::int32_t inputs, const float* range,
                                                    std::int32_t outputs) override;
};

}  // namespace VANTIX::HOST
