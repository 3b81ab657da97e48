// SPDX-License-Identifier: MIT
#include "host/fonts/charstringwriter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <initializer_list>
#include <utility>
#include <vector>

namespace VANTIX::HOST {
namespace {

// Operators of both types, and those behind `kEscape` of Type 1.
enum Code : std::uint8_t {
    kHStem = 1,
    kVStem = 3,
    kVMoveTo = 4,
    kRLineTo = 5,
    kHLineTo = 6,
    kVLineTo = 7,
    kRRCurveTo = 8,
    kClosePath = 9,
    kEscape = 12,
    kHsbw = 13,
    kEndChar = 14,
    kHStemHM = 18,
    kHintMask = 19,
    kRMoveTo = 21,
    kHMoveTo = 22,
    kVStemHM = 23,
    kVHCurveTo = 30,
    kHVCurveTo = 31
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

    /// Type 1 has no masks: there the stems are left out that the first one does not use.
    void Stems(const Type2Glyph& glyph) {
        const bool hasMask =
            !mIsType1 && !std::all_of(glyph.stems.begin(), glyph.stems.end(),
                                      [](const auto& stem) { return stem.isUsed; });
        std::vector<bool> mask;
        Stems(glyph, false, hasMask ? kHStemHM : kHStem, mask);
        Stems(glyph, true, hasMask ? kVStemHM : kVStem, mask);
        if (!hasMask) {
            return;
        }
        Operator(kHintMask);
        for (std::size_t i = 0; i < mask.size(); i += 8) {
            unsigned bits = 0;
            for (std::size_t k = i; k < i + 8; ++k) {
                bits = bits << 1U | (k < mask.size() && mask[k] ? 1U : 0U);
            }
            Bytes({bits});
        }
    }

    void Segments(const Type2Glyph& glyph) {
        bool isOpen = false;
        for (const Type2Segment& segment : glyph.segments) {
            if (segment.isMove && isOpen) {
                Close();
            }
            isOpen = !segment.isMove;
            std::array<std::int32_t, 6> steps{};
            for (std::size_t i = 0; i < 2 * segment.pointCount; ++i) {
                const std::int32_t place = Rounded(segment.points.at(i));
                steps.at(i) = place - std::exchange(mPlace.at(i % 2), place);
            }
            if (segment.isMove) {
                mStart = mPlace;
                Straight(steps[0], steps[1], kHMoveTo, kVMoveTo, kRMoveTo);
            } else if (segment.pointCount == 1) {
                Straight(steps[0], steps[1], kHLineTo, kVLineTo, kRLineTo);
            } else {
                Curve(steps);
            }
        }
        if (isOpen) {
            Close();
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
    /// Type 1 has an operator for each stem, Type 2 one for all. Appends which of those that are
    /// written are used.
    void Stems(const Type2Glyph& glyph, bool areVertical, Code code, std::vector<bool>& areUsed) {
        std::int32_t last = 0;
        bool isFirst = true;
        for (const Type2Stem& stem : glyph.stems) {
            if ((mIsType1 && !stem.isUsed) || stem.isVertical != areVertical) {
                continue;
            }
            const std::int32_t from = Rounded(stem.edge);
            const std::int32_t to = Rounded(stem.edge + stem.width);
            Number(mIsType1 ? from : from - last);
            Number(to - from);
            last = to;
            isFirst = false;
            areUsed.push_back(stem.isUsed);
            if (mIsType1) {
                Operator(code);
            }
        }
        if (!mIsType1 && !isFirst) {
            Operator(code);
        }
    }

    /// Type 1 has an operator for it. Those who convert Type 2 may write none, so a line has to do.
    void Close() {
        if (mIsType1) {
            Operator(kClosePath);
        } else if (mPlace != mStart) {
            Straight(mStart[0] - mPlace[0], mStart[1] - mPlace[1], kHLineTo, kVLineTo, kRLineTo);
            mPlace = mStart;
        }
    }

    void Straight(std::int32_t dx, std::int32_t dy, Code across, Code up, Code any) {
        if (dx != 0 || dy == 0) {
            Number(dx);
        }
        if (dy != 0) {
            Number(dy);
        }
        Operator(dy == 0 ? across : (dx == 0 ? up : any));
    }

    void Curve(const std::array<std::int32_t, 6>& steps) {
        const bool startsAcross = steps[1] == 0 && steps[4] == 0;
        const bool startsUp = steps[0] == 0 && steps[5] == 0;
        for (std::size_t i = 0; i < steps.size(); ++i) {
            const bool isLeftOut = startsAcross ? i == 1 || i == 4 : startsUp && (i == 0 || i == 5);
            if (!isLeftOut) {
                Number(steps.at(i));
            }
        }
        Operator(startsAcross ? kHVCurveTo : (startsUp ? kVHCurveTo : kRRCurveTo));
    }

    void Bytes(std::initializer_list<unsigned> bytes) {
        for (const unsigned byte : bytes) {
            mCode += static_cast<char>(byte);
        }
    }

    bool mIsType1;
    std::string mCode;
    std::array<std::int32_t, 2> mPlace{};
    std::array<std::int32_t, 2> mStart{};
};

void Draw(Writer& writer, const Type2Glyph& glyph) {
    if (glyph.isWhole) {
        writer.Stems(glyph);
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
