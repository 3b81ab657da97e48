// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include "core/fonts/ifontpackagehandler.h"

namespace VANTIX::PS {

/// Name of the predefined CMap (PostScript Language Reference, appendix E) for an encoding of a
/// composite font, zero-terminated; empty for any other encoding.
const char* NameOfCMap(GRAPHICS::TEncoding encoding);

/// `name` up to the name of a predefined CMap that is joined to it by a hyphen, or all of it.
std::string_view CutAtCMap(std::string_view name);

}  // namespace VANTIX::PS
