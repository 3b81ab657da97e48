// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <optional>
#include <vector>

#include "core/color/ipatterncolorspaces.h"
#include "host/color/colorspacefactory.h"
#include "pdf/imagemasks.h"
#include "pdf/images.h"

namespace VANTIX::PDF {

/// A shading, or a part of it, as pixels, for outputs that have no shading dictionaries.
struct ShadingPicture {
    PlanarImage image;
    std::optional<ImageMask> mask;  ///< where it paints; nothing: everywhere
    std::array<double, 6> place{};  ///< from the unit square to the shading's own space
};

/// What a shading of type 1, 2 or 3 paints in `area` (x0 y0 x1 y1, of its own space), in its own
/// colours, or in `rgb` where these are Lab. An axial shading is one line of pixels, laid across
/// the area, with its ends as single ones; the others have `resolution` pixels a unit, but at most
/// four million. Nothing for shadings of other types or without a function.
std::vector<ShadingPicture> PicturesOf(COLOR::IConnectionColorSpace& shading,
                                       const std::array<double, 4>& area, double resolution,
                                       const HOST::ColorSpacePtr& rgb);

}  // namespace VANTIX::PDF
