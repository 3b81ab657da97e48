// SPDX-License-Identifier: MIT
#include "host/codecs/jbig2text.h"

#include <algorithm>

namespace VANTIX::HOST::JBIG2 {

namespace {

/// Places symbols strip by strip. S runs along the lines of text, T across them.
class TextPainter {
public:
    TextPainter(const TextSource& source, const TextCoding& coding, Bitmap& region)
        : mSource(source), mCoding(coding), mRegion(region) {}

    void Run() {
        mStripT = -TakeStripStep();
        while (mPlaced < mCoding.instances && !mSource.decoder.IsExhausted()) {
            mStripT += TakeStripStep();
            mFirstS += TakeInteger(mSource.contexts.firstPosition, mSource.decoder);
            mS = mFirstS;
            PlaceSymbol();
            while (const auto step = mSource.contexts.step.Decode(mSource.decoder)) {
                if (mPlaced >= mCoding.instances) {
                    break;
                }
                mS += std::int64_t{*step} + mCoding.offset;
                PlaceSymbol();
            }
        }
    }

private:
    [[nodiscard]] std::int64_t TakeStripStep() {
        const std::int64_t step = TakeInteger(mSource.contexts.stripStep, mSource.decoder);
        return step * (std::int64_t{1} << mCoding.logStrips);
    }

    void PlaceSymbol() {
        std::int64_t t = mStripT;
        if (mCoding.logStrips > 0) {
            t += TakeInteger(mSource.contexts.positionInStrip, mSource.decoder);
        }
        const Symbol symbol = DecodeInstance(mSource, mCoding);
        const std::int64_t width = symbol->Width() - 1;
        const std::int64_t height = symbol->Height() - 1;
        const bool isRight =
            mCoding.corner == Corner::kTopRight || mCoding.corner == Corner::kBottomRight;
        const bool isBottom =
            mCoding.corner == Corner::kBottomLeft || mCoding.corner == Corner::kBottomRight;
        const std::int64_t extent = mCoding.isTransposed ? height : width;
        const bool isAtEnd = mCoding.isTransposed ? isBottom : isRight;
        mS += isAtEnd ? extent : 0;
        const std::int64_t x = (mCoding.isTransposed ? t : mS) - (isRight ? width : 0);
        const std::int64_t y = (mCoding.isTransposed ? mS : t) - (isBottom ? height : 0);
        Paint(*symbol, x, y);
        mS += isAtEnd ? 0 : extent;
        ++mPlaced;
    }

    void Paint(const Bitmap& symbol, std::int64_t x, std::int64_t y) {
        mSource.budget.Spend(16 + symbol.RowBytes() * static_cast<std::size_t>(symbol.Height()));
        constexpr std::int64_t kFar = std::int64_t{1} << 30;
        if (std::max(std::abs(x), std::abs(y)) < kFar) {
            mRegion.Paint(symbol, static_cast<std::int32_t>(x), static_cast<std::int32_t>(y),
                          mCoding.how);
        }
    }

    const TextSource& mSource;
    const TextCoding& mCoding;
    Bitmap& mRegion;
    std::int64_t mStripT = 0;
    std::int64_t mFirstS = 0;
    std::int64_t mS = 0;
    std::uint32_t mPlaced = 0;
};

}  // namespace

std::int32_t TakeInteger(IntegerDecoder& integer, ArithmeticDecoder& decoder) {
    const auto value = integer.Decode(decoder);
    if (!value) {
        throw Error("a value is missing");
    }
    return *value;
}

std::int32_t Limited(std::int32_t offset) {
    constexpr std::int32_t kMost = 1 << 24;
    return std::clamp(offset, -kMost, kMost);
}

std::uint32_t Changed(std::int64_t size, std::int64_t change) {
    constexpr std::int64_t kMost = 65535;
    const std::int64_t changed = size + change;
    if (changed < 0 || changed > kMost) {
        throw Error("a symbol has an impossible size");
    }
    return static_cast<std::uint32_t>(changed);
}

Symbol DecodeInstance(const TextSource& source, const TextCoding& coding) {
    ArithmeticDecoder& decoder = source.decoder;
    TextContexts& contexts = source.contexts;
    const std::uint32_t number = contexts.symbol.Decode(decoder);
    if (number >= source.symbols.size()) {
        throw Error("a symbol is not there");
    }
    const Symbol& symbol = source.symbols[number];
    if (!coding.isRefined || TakeInteger(contexts.isRefined, decoder) == 0) {
        return symbol;
    }
    const std::int32_t wider = TakeInteger(contexts.widthChange, decoder);
    const std::int32_t higher = TakeInteger(contexts.heightChange, decoder);
    RefinementCoding refinement{coding.refinementTemplate, false, coding.places, symbol.get()};
    // Halves are rounded down, of negative numbers too.
    refinement.dx = (Limited(wider) >> 1) + Limited(TakeInteger(contexts.dx, decoder));
    refinement.dy = (Limited(higher) >> 1) + Limited(TakeInteger(contexts.dy, decoder));
    return std::make_shared<const Bitmap>(
        DecodeRefinement(decoder, source.refinement, refinement, Changed(symbol->Width(), wider),
                         Changed(symbol->Height(), higher), source.budget));
}

Bitmap DecodeText(const TextSource& source, const TextCoding& coding, std::uint32_t width,
                  std::uint32_t height) {
    source.budget.Spend(std::uint64_t{width} * height / 8);
    Bitmap region(width, height, coding.isBlack);
    TextPainter(source, coding, region).Run();
    return region;
}

}  // namespace VANTIX::HOST::JBIG2
