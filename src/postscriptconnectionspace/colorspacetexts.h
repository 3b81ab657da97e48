// SPDX-License-Identifier: MIT
#pragma once

#include <array>

#include "core/color/iconnectioncolorspace.h"
#include "core/types.h"
#include "postscriptconnectionspace/textbuffer.h"

namespace VANTIX::PS {

/// "/DeviceGray", "/DeviceRGB" or "/DeviceCMYK"; null for another family.
const char* DeviceSpaceName(FourCC family);

/// X, Y and Z of a diffuse white point.
using WhitePoint = std::array<float, 3>;

/// The white point of `space`, or D50 where it has none.
WhitePoint WhitePointOf(const COLOR::IConnectionColorSpace& space);

/// CIE-based colour-space arrays (PostScript Language Reference, 4.8.3), ready for a colour-space
/// operand. `tail` is what follows the closing bracket.
///
/// Gray of lightness 0 to 100.
void AppendCalibratedGray(TextBuffer& text, const WhitePoint& white);
/// Lab values as in PDF.
void AppendLab(TextBuffer& text, const WhitePoint& white, const char* tail);
/// RGB with the gammas and the matrix of `space`, or of sRGB where it has none.
void AppendCalibratedRGB(TextBuffer& text, const COLOR::ICalibratedConnectionColorSpace& space,
                         const WhitePoint& white, const char* tail);
/// Gray that stands for a profile.
void AppendGammaGray(TextBuffer& text, const WhitePoint& white);
/// sRGB that stands for a profile.
void AppendStandardRGB(TextBuffer& text, const WhitePoint& white);

}  // namespace VANTIX::PS
