// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <vector>

#include "core/color/ipatterncolorspaces.h"
#include "host/color/colorspacefactory.h"
#include "pdf/imagemasks.h"
#include "pdf/images.h"
#include "pdf/shadingpixels.h"

namespace VANTIX::PDF {

/// A shading, or a part of it, as pixels, for outputs that have no shading dictionaries.
struct ShadingPicture {
    PlanarImage image;
    std::optional<ImageMask> mask;  ///< where it paints; nothing: everywhere
    std::array<double, 6> place{};  ///< from the unit square to the shading's own space
};

/// The picture that a canvas is.
ShadingPicture PictureOf(const std::shared_ptr<const ShadingCanvas>& canvas);

/// What a shading paints in `area`, in its own colours, or in `rgb` where these are Lab. An axial
/// shading is one line of pixels, laid across the area, with its ends as single ones; the others
/// have `resolution` pixels a unit, but at most four million. Nothing for a shading that has no
/// use, or that does not reach the area.
std::vector<ShadingPicture> PicturesOf(COLOR::IConnectionColorSpace& shading,
                                       const ShadingArea& area, double resolution,
                                       const HOST::ColorSpacePtr& rgb);

/// One colour for what cannot be painted with a shading, in host form of the shading's space: that
/// in the middle of its domain, or the mean of a mesh. Nothing for a shading that has no use.
std::optional<ShadingColors::Values> MiddleColor(COLOR::IConnectionColorSpace& shading);

}  // namespace VANTIX::PDF
