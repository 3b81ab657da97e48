// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "host/codecs/jbig2symbols.h"

namespace VANTIX::HOST::JBIG2 {

/// Decodes a segment of patterns (ITU-T T.88, 6.7 and 7.4.4).
Symbols DecodePatterns(Bytes data, Budget& budget);

/// Decodes what follows the region's size in a segment of a halftone, which paints a pattern for
/// each gray value of a grid (ITU-T T.88, 6.6 and 7.4.5).
Bitmap DecodeHalftone(Bytes data, const Symbols& patterns, std::uint32_t width,
                      std::uint32_t height, Budget& budget);

}  // namespace VANTIX::HOST::JBIG2
