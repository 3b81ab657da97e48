// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "pdf/meshes.h"
#include "pdf/shadingpictures.h"

namespace VANTIX::PDF {

/// What a mesh paints in `area`, with `resolution` pixels a unit. There are fewer of them where
/// they would be more than four million, or where parts of the mesh lie upon each other so often
/// that painting would take too long. Nothing for a mesh that has no use or does not reach the
/// area.
std::vector<ShadingPicture> MeshPictures(const Mesh& mesh, const ShadingColors& colors,
                                         const ShadingArea& area, double resolution);

}  // namespace VANTIX::PDF
