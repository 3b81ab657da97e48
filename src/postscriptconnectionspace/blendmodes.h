// SPDX-License-Identifier: MIT
#pragma once

#include "core/graphics/igraphicsstate.h"

namespace VANTIX::PS {

/// The name of a blend mode without its slash (PDF Reference, 7.2.4); an unknown mode is logged and
/// gives "Normal".
const char* GetPSBlendModeFromTBlenMode(GRAPHICS::TBlendMode mode);

}  // namespace VANTIX::PS
