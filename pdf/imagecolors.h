// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "core/color/colorconversion.h"
#include "pdf/colorspaces.h"
#include "pdf/imageplanes.h"

namespace VANTIX::PDF {

/// Whether a space takes L a b: images in it are converted to RGB.
bool IsLab(const ColorSpaceEntry& entry);

/// Whether a space is gray of the device or of a profile.
bool IsGray(const ColorSpaceEntry& entry);

bool IsSeparation(const ColorSpaceEntry& entry);

/// The space of the colours of an Indexed space's palette, as the host holds it.
const ColorSpaceEntry& PaletteBase(const ColorSpaceEntry& indexed);

/// The palette in host form, entry by entry.
std::vector<std::uint8_t> PaletteTable(const ColorSpaceEntry& indexed);

/// A space for images whose palette is in Lab, which interpreters read in different ways: the
/// palette in RGB.
HOST::ColorSpacePtr RgbPaletteSpace(const ColorSpaceEntry& indexed, ColorSpaces& spaces,
                                    COLOR::TRenderingIntent intent);

/// The byte that is filled with indices of `bits` of the lightest palette entry.
std::uint8_t PaletteWhite(const ColorSpaceEntry& indexed, std::int32_t bits);

/// How pixels of a space become pixels of one that rasters may have.
struct PixelConversion {
    ConvertedPlanes::Converter convert;
    const ColorSpaceEntry* target = nullptr;
};

/// The way from samples of `bits` 8 or 16 of `entry` (Lab, or one that stands for another space) to
/// its alternate, or to RGB where that is Lab. `decode` holds, in parts of the range, what the
/// least and the greatest sample of each component mean.
PixelConversion ConversionOf(const ColorSpaceEntry& entry, const std::vector<float>& decode,
                             ColorSpaces& spaces, std::int32_t bits,
                             COLOR::TRenderingIntent intent);

}  // namespace VANTIX::PDF
