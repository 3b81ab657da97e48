// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "core/color/icolorfunction.h"
#include "core/color/iconnectioncolorspace.h"

namespace VANTIX {

/// Writes the procedure body (no outer braces) that maps the tints on the operand stack to the
/// components of `target` (PostScript Language Reference, 4.8.4). `buffer` receives at most `size`
/// - 1 characters and a zero. Answers the length, or 0 when the function cannot be converted
/// (logged).
std::int32_t ConvertFunctionToLevel2PostScript(const COLOR::IConnectionColorSpace* target,
                                               const COLOR::IColorFunction& function, char* buffer,
                                               std::int32_t size);

}  // namespace VANTIX
