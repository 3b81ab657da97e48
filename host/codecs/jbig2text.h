// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "host/codecs/jbig2symbols.h"

namespace VANTIX::HOST::JBIG2 {

/// Where in a symbol its place on the text line lies.
enum class Corner : std::uint8_t { kBottomLeft, kTopLeft, kBottomRight, kTopRight };

/// How a text region is coded (ITU-T T.88, 6.4.2).
struct TextCoding {
    bool isRefined = false;
    unsigned logStrips = 0;  ///< of the height of strips
    Corner corner = Corner::kTopLeft;
    bool isTransposed = false;
    Operator how = Operator::kOr;
    bool isBlack = false;
    std::int32_t offset = 0;  ///< between symbols
    std::uint8_t refinementTemplate = 0;
    std::array<Place, 2> places{};
    std::uint32_t instances = 0;
};

/// What has been learnt of the integers of text regions.
struct TextContexts {
    explicit TextContexts(unsigned symbolBits) : symbol(symbolBits) {}

    IntegerDecoder stripStep;
    IntegerDecoder firstPosition;
    IntegerDecoder step;
    IntegerDecoder positionInStrip;
    IntegerDecoder isRefined;
    IntegerDecoder widthChange;
    IntegerDecoder heightChange;
    IntegerDecoder dx;
    IntegerDecoder dy;
    NumberDecoder symbol;
};

/// Everything that text decoding draws on.
struct TextSource {
    ArithmeticDecoder& decoder;
    TextContexts& contexts;
    Contexts& refinement;
    const Symbols& symbols;
    Budget& budget;
};

/// Decodes symbols on a region (ITU-T T.88, 6.4.5).
Bitmap DecodeText(const TextSource& source, const TextCoding& coding, std::uint32_t width,
                  std::uint32_t height);

/// A symbol refined by the integers that follow (ITU-T T.88, 6.4.11), or as it is.
Symbol DecodeInstance(const TextSource& source, const TextCoding& coding);

/// A value that must not be out of band.
std::int32_t TakeInteger(IntegerDecoder& integer, ArithmeticDecoder& decoder);

/// An offset kept so small that sums of a few are numbers.
std::int32_t Limited(std::int32_t offset);

/// `width` or `height` changed by what was decoded; throws `Error` for what no bitmap has.
std::uint32_t Changed(std::int64_t size, std::int64_t change);

}  // namespace VANTIX::HOST::JBIG2
