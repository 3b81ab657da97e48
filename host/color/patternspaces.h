// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <functional>

#include "host/color/colorspacefactory.h"
#include "host/export.h"

namespace VANTIX::HOST {

class BaseConnectionSpace;

/// A tiling pattern (PDF Reference, 4.6.2).
struct TilingPattern {
    std::uint32_t number = 0;  ///< equal for the same pattern
    std::int32_t paintType = 1;
    std::int32_t tilingType = 1;
    std::array<float, 4> bounds{};  ///< x, y, width, height
    float xStep = 0.0F;
    float yStep = 0.0F;
    std::array<float, 6> matrix{1, 0, 0, 1, 0, 0};  ///< from its space to that of the page
    ColorSpacePtr underlying;                       ///< of the colour of an uncoloured one
    /// Draws the cell into the base space of a recording. What it throws fails the recording.
    std::function<void(BaseConnectionSpace&)> play;
};

NORVANE_HOST_API ColorSpacePtr MakeTilingPattern(TilingPattern pattern);

/// A shading as a colour (PDF Reference, 4.6.3): `matrix` leads from its space to that of the page.
NORVANE_HOST_API ColorSpacePtr MakeShadingPattern(const ColorSpacePtr& shading,
                                                  const std::array<float, 6>& matrix);

}  // namespace VANTIX::HOST
