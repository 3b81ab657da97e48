// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <utility>

#include "baseconnectionspacedelegate/names.h"
#include "core/color/ispotcolorspaces.h"
#include "core/types.h"

namespace VANTIX::RENDERING {

using IntentPair = std::pair<TRenderingIntent, TRenderingIntent>;

/// Components of the device family "gray", "rgb " or "cmyk"; 0 for another one.
std::int32_t ComponentsOfFamily(FourCC family);

/// Components of the entries of a palette over `base`; 0 (logged) for a space that has no palettes.
std::int32_t PaletteComponents(IConnectionColorSpace& base);

/// Converts `count` entries of `base` (`from` components each) into `target` (`to` components),
/// bytes in host form on both sides. False when the host cannot.
bool ConvertPalette(IConnectionColorSpace& base, std::int32_t from, const std::uint8_t* entries,
                    std::int32_t count, const IConnectionColorSpace& target, std::int32_t to,
                    std::uint8_t* converted, const IntentPair& intents);

/// The black ink that has the luminance of a colour, all in complements of inks as bytes; white
/// comes out as 254, since the sum is cut off.
std::uint8_t BlackOf(std::uint32_t cyan, std::uint32_t magenta, std::uint32_t yellow,
                     std::uint32_t black);

/// Moves the ink of entries of complemented c, m, y, k into black alone, by their luminance.
void PromoteToBlack(std::uint8_t* entries, std::int32_t count);

}  // namespace VANTIX::RENDERING
