// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "core/graphics/igraphicsstate.h"

namespace VANTIX::PDF {

struct Font;

using TextRendering = GRAPHICS::IGraphicsState::TTextRendering;

/// The text state as operators set it (PDF Reference, 5.2), in unscaled units of text space. Part
/// of a level of the graphics state.
struct TextState {
    float charSpacing = 0.0F;
    float wordSpacing = 0.0F;
    float scaling = 1.0F;  ///< horizontal, as a factor
    float leading = 0.0F;
    float rise = 0.0F;
    float size = 0.0F;
    const Font* font = nullptr;  ///< null: text is left out
    TextRendering rendering = TextRendering::kFill;
};

/// A font as a connection space selects it: in a size of at least 1, and with the linear part
/// (a b c d) of the matrix that leads from there to user space.
struct SelectedFont {
    const Font* font = nullptr;
    float size = 1.0F;
    std::array<float, 4> linear{1, 0, 0, 1};

    bool operator==(const SelectedFont&) const = default;
};

/// Where and how a string is handed over.
struct TextPlace {
    SelectedFont selection;
    std::array<float, 2> origin{};  ///< in user space
    // In the units of which `selection.linear` is the matrix.
    float charSpacing = 0.0F;
    float wordSpacing = 0.0F;
};

/// A string that is to clip.
struct ClippingText {
    TextPlace place;
    std::string codes;
};

/// What lasts from BT to ET.
struct TextObject {
    std::array<double, 6> matrix{1, 0, 0, 1, 0, 0};
    std::array<double, 6> lineMatrix{1, 0, 0, 1, 0, 0};
    /// Whether one is open in the connection space, and the linear part of its matrix.
    bool isOpen = false;
    std::array<float, 4> linear{1, 0, 0, 1};
    /// The strings that clip at its end, and whether any of them marks anything.
    std::vector<ClippingText> clip;
    std::size_t clipCodes = 0;
    bool hasOutline = false;
};

}  // namespace VANTIX::PDF
