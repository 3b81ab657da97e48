// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <functional>
#include <string>
#include <vector>

#include "host/export.h"
#include "host/fonts/simplefont.h"

namespace VANTIX::HOST {

class BaseConnectionSpace;

/// One glyph of a Type 3 font (PDF Reference, 5.5.4), in glyph space.
struct Type3Glyph {
    std::string name;
    float width = 0.0F;
    std::array<float, 4> box{};  ///< llx lly urx ury; of no meaning for a coloured one
    bool isColoured = false;
    /// Draws the glyph into the base space of a recording; none for a blank one.
    std::function<void(BaseConnectionSpace&)> play;
};

/// A font that is drawn by `glyphs`, whose names differ. `matrix` (a b c d e f) leads from glyph
/// space to text space, in which `description.widths` are: NaN where the document gives none, and
/// below 0 what leads to the left. `description.name` also tells the order in which fonts are
/// downloaded: those that others show go first.
NORVANE_HOST_API TInterfacePtr<SimpleFont> MakeType3Font(std::vector<Type3Glyph> glyphs,
                                                         SimpleFontDescription description,
                                                         const std::array<float, 6>& matrix);

}  // namespace VANTIX::HOST
