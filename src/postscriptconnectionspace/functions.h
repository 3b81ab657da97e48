// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

#include "core/color/icolorfunction.h"
#include "core/color/iconnectioncolorspace.h"
#include "postscriptconnectionspace/textbuffer.h"

namespace VANTIX {

/// Writes the procedure body (no outer braces) that maps the tints on the operand stack to the
/// components of `target` (PostScript Language Reference, 4.8.4). `buffer` receives at most `size`
/// - 1 characters and a zero. Answers the length, or 0 when the function cannot be converted
/// (logged).
std::int32_t ConvertFunctionToLevel2PostScript(const COLOR::IConnectionColorSpace* target,
                                               const COLOR::IColorFunction& function, char* buffer,
                                               std::int32_t size);

/// The same, appended to `text`; false when the function cannot be converted or its procedure
/// reaches `bound` characters (logged): `text` then holds a part of it.
bool AppendLevel2Procedure(const COLOR::IColorFunction& function, PS::TextBuffer& text,
                           std::size_t bound);

}  // namespace VANTIX
