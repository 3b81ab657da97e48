// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

#include "core/object/guid.h"

namespace VANTIX::PLATFORM {

/// A new GUID for names that reach the output: from the seed where the host gave one, else from the
/// system. Seeded GUIDs differ in their first sixteen digits.
GUID CreateUniqueId();

/// A new GUID from the system's randomness, never seeded: for names that stay outside of the
/// output.
GUID CreateSystemUniqueId();

/// The 32 upper-case hexadecimal digits of `id` in field order.
std::string UniqueIdDigits(const GUID& id);

/// The sixteen bytes in memory order in lower case without leading zeros, with hyphens behind bytes
/// 4, 6, 8 and 9 to 15: the form of pdfmark object and temporary file names.
std::string UniqueIdHyphenText(const GUID& id);

}  // namespace VANTIX::PLATFORM
