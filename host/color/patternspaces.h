// SPDX-License-Identifier: MIT
#pragma once

#include <array>

#include "host/color/colorspacefactory.h"
#include "host/export.h"

namespace VANTIX::HOST {

/// A shading as a colour (PDF Reference, 4.6.3): `matrix` leads from its space to that of the page.
NORVANE_HOST_API ColorSpacePtr MakeShadingPattern(const ColorSpacePtr& shading,
                                                  const std::array<float, 6>& matrix);

}  // namespace VANTIX::HOST
