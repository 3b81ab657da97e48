// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

#include "pdf/textstate.h"

namespace VANTIX::PDF {

/// How a string of `text` is handed over whose text space `matrix` leads to user space (PDF
/// Reference, 5.3.3). Scaling and rise are in the matrix; a size below 1 is, too, and so is a
/// scale of the same in both directions in the size. Nothing where no glyph would have an area.
std::optional<TextPlace> Place(const TextState& text, const std::array<double, 6>& matrix);

/// The distance that a string takes in text space: to the right, or upwards with a font of vertical
/// writing. The state has a font.
double AdvanceOf(const TextState& text, std::string_view codes);

/// What scales distances along the writing direction: vertical ones are not.
double ScalingAlong(const TextState& text);

/// How many bytes of `codes` (host text, not empty) can be shown at once, so that no glyph comes to
/// stand more than about a hundredth of an em from where the document has it. The place has a font.
std::size_t PieceLength(const TextPlace& place, std::string_view codes);

}  // namespace VANTIX::PDF
