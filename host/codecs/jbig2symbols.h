// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "host/codecs/jbig2reader.h"
#include "host/codecs/jbig2regions.h"

namespace VANTIX::HOST::JBIG2 {

using Symbol = std::shared_ptr<const Bitmap>;
using Symbols = std::vector<Symbol>;

/// What a symbol dictionary leaves to segments behind it.
struct SymbolDictionary {
    Symbols symbols;
    Contexts generic;  ///< empty where they are not kept
    Contexts refinement;
};

/// Decodes a segment of symbols (ITU-T T.88, 6.5 and 7.4.2). `known` are the symbols of the
/// dictionaries that it refers to, and `last` (may be null) the last of these.
SymbolDictionary DecodeSymbolDictionary(Bytes data, Symbols known, const SymbolDictionary* last,
                                        Budget& budget);

/// Decodes what follows the region's size in a segment of text, which places symbols on a region
/// (ITU-T T.88, 6.4 and 7.4.3).
Bitmap DecodeTextRegion(Bytes data, const Symbols& symbols, std::uint32_t width,
                        std::uint32_t height, Budget& budget);

}  // namespace VANTIX::HOST::JBIG2
