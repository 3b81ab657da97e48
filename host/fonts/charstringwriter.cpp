// SPDX-License-Identifier: MIT
#include "host/fonts/charstringwriter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <initializer_list>
#include <utility>

namespace VANTIX::HOST {
namespace {

// Operators that both types have, and those behind `kEscape` of Type 1.
enum Code : std::uint8_t {
    kHStem = 1,
    kVStem = 3,
    kRLineTo = 5,
    kRRCurveTo = 8,
    kClosePath = 9,
    kEscape = 12,
    kHsbw = 13,
    kEndChar = 14,
    kRMoveTo = 21
};

constexpr std::uint8_t kSeac = 6;

std::int32_t Rounded(double value) {
    constexpr double kLargest = 16000;
    return static_cast<std::int32_t>(std::lround(std::clamp(value, -kLargest, kLargest)));
}

class Writer {
public:
    explicit Writer(bool isType1) : mIsType1(isType1) {}

    void Number(std::int32_t value) {
        constexpr std::int32_t kOneByte = 107;
        constexpr std::int32_t kTwoBytes = 1131;
        const auto bits = static_cast<unsigned>(value);
        const std::int32_t size = std::abs(value);
        if (size <= kOneByte) {
            Bytes({bits + 139});
        } else if (size <= kTwoBytes) {
            const auto rest = static_cast<unsigned>(size - kOneByte - 1);
            Bytes({(value < 0 ? 251 : 247) + rest / 256, rest});
        } else if (mIsType1) {
            Bytes({255, bits >> 24U, bits >> 16U, bits >> 8U, bits});
        } else {
            Bytes({28, bits >> 8U, bits});
        }
    }

    void Operator(unsigned code) { Bytes({code}); }

    /// Type 1 has an operator for each stem, Type 2 one for all.
    void Stems(const Type2Glyph& glyph, bool areVertical) {
        const Code code = areVertical ? kVStem : kHStem;
        std::int32_t last = 0;
        bool isFirst = true;
        for (const Type2Stem& stem : glyph.stems) {
            if (!stem.isUsed || stem.isVertical != areVertical) {
                continue;
            }
            const std::int32_t from = Rounded(stem.edge);
            const std::int32_t to = Rounded(stem.edge + stem.width);
            Number(mIsType1 ? from : from - last);
            Number(to - from);
            last = to;
            isFirst = false;
            if (mIsType1) {
                Operator(code);
            }
        }
        if (!mIsType1 && !isFirst) {
            Operator(code);
        }
    }

    void Segments(const Type2Glyph& glyph) {
        bool isOpen = false;
        for (const Type2Segment& segment : glyph.segments) {
            if (segment.isMove && isOpen && mIsType1) {
                Operator(kClosePath);
            }
            isOpen = !segment.isMove;
            for (std::size_t i = 0; i < 2 * segment.pointCount; ++i) {
                const std::int32_t place = Rounded(segment.points.at(i));
                Number(place - std::exchange(mPlace.at(i % 2), place));
            }
            Operator(segment.isMove ? kRMoveTo : (segment.pointCount == 1 ? kRLineTo : kRRCurveTo));
        }
        if (isOpen && mIsType1) {
            Operator(kClosePath);
        }
    }

    void Accent(const Type2Accent& accent) {
        Number(Rounded(accent.x));
        Number(Rounded(accent.y));
        Number(accent.codes[0]);
        Number(accent.codes[1]);
    }

    std::string Finish() { return std::move(mCode); }

private:
    void Bytes(std::initializer_list<unsigned> bytes) {
        for (const unsigned byte : bytes) {
            mCode += static_cast<char>(byte);
        }
    }

    bool mIsType1;
    std::string mCode;
    std::array<std::int32_t, 2> mPlace{};
};

void Draw(Writer& writer, const Type2Glyph& glyph) {
    if (glyph.isWhole) {
        writer.Stems(glyph, false);
        writer.Stems(glyph, true);
        writer.Segments(glyph);
    }
}

}  // namespace

std::string PlainType2CharString(const Type2Glyph& glyph) {
    Writer writer(false);
    writer.Number(Rounded(glyph.width));
    Draw(writer, glyph);
    if (glyph.isWhole && glyph.accent) {
        writer.Accent(*glyph.accent);
    }
    writer.Operator(kEndChar);
    return writer.Finish();
}

std::string Type1CharString(const Type2Glyph& glyph) {
    Writer writer(true);
    writer.Number(0);
    writer.Number(Rounded(glyph.width));
    writer.Operator(kHsbw);
    if (glyph.isWhole && glyph.accent && glyph.segments.empty()) {
        // The accent's side bearing, as that of all glyphs here, is 0.
        writer.Number(0);
        writer.Accent(*glyph.accent);
        writer.Operator(kEscape);
        writer.Operator(kSeac);
        return writer.Finish();
    }
    Draw(writer, glyph);
    writer.Operator(kEndChar);
    return writer.Finish();
}

}  // namespace VANTIX::HOST
