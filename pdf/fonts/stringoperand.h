// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "pdf/contentparser.h"

namespace VANTIX::PDF {

/// Appends the bytes that a string operand means, in parentheses or hexadecimal (PDF Reference,
/// 3.2.3); nothing for an operand of another kind.
void AppendString(const Operand& operand, std::string& bytes);

/// The bytes of a string operand; none for an operand of another kind.
std::string BytesOf(const Operand& operand);

}  // namespace VANTIX::PDF
