// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/fonts/cffreader.h"

namespace VANTIX::HOST {

/// A piece of an outline: its points one after another, in glyph space.
struct Type2Segment {
    std::size_t pointCount = 0;  ///< 1 a line, 3 a curve
    bool isMove = false;         ///< begins a contour
    std::array<double, 6> points{};
};

/// A stem: from `edge` on, `width` wide.
struct Type2Stem {
    bool isVertical = false;
    double edge = 0;
    double width = 0;
    bool isUsed = true;  ///< by the first mask, or without any
};

/// An accented glyph: the accent at (x, y) over the base, by codes in StandardEncoding.
struct Type2Accent {
    double x = 0;
    double y = 0;
    std::array<std::uint8_t, 2> codes{};  ///< base and accent
};

/// What a Type 2 charstring (Technical Note 5177) draws.
struct Type2Glyph {
    /// False for one that is damaged, or longer than the reader goes on: what it draws is not
    /// to be trusted.
    bool isWhole = false;
    /// Whether a simpler reader finds the same in it: all operands are integers, none is computed,
    /// nothing is missing, and each subroutine is short enough to be copied. Contours end where
    /// they begin, so that one who does not close them strokes them whole.
    bool isPlain = true;
    double width = 0;
    std::vector<Type2Stem> stems;
    std::vector<Type2Segment> segments;
    std::optional<Type2Accent> accent;
};

/// Reads Type 2 charstrings of a font, which must outlive it.
class Type2Reader {
public:
    /// It takes some steps for each byte of the font in all its life, so that no font can keep it
    /// busy.
    explicit Type2Reader(const CffTables& font);

    /// A glyph of the font, valid until the next one is read.
    const Type2Glyph& Read(std::size_t glyph);

private:
    static constexpr std::size_t kMostOperands = 192;

    enum class Step { kGoOn, kReturn, kEnd, kDamaged };

    Step Run(ByteView code, int depth);
    Step Operator(std::uint8_t code, ByteView charString, std::size_t& position, int depth);
    Step Escaped(std::uint8_t code);
    Step Call(const CffIndex& subroutines, int depth);
    Step EndChar();
    bool PushNumber(ByteView code, std::size_t& position);
    void Push(double value);
    double Pop();

    void Expect(bool isUsual) { mGlyph.isPlain = mGlyph.isPlain && isUsual; }

    void EndContour() { Expect(mX == mStart[0] && mY == mStart[1]); }

    void TakeWidth(bool hasWidth);
    void TakeStems(bool areVertical);
    bool TakeMask(ByteView code, std::size_t& position);

    bool Hints(std::uint8_t code);
    bool Draw(std::uint8_t code);
    bool MoveBy(std::size_t operands, double dx, double dy);
    void Line(double dx, double dy);
    void Curve(double dx1, double dy1, double dx2, double dy2, double dx3, double dy3);
    void Lines(std::size_t first, std::size_t end);
    void Curves(std::size_t first, std::size_t end);
    void AlternatingLines(bool isVertical);
    void AlternatingCurves(bool isVertical);
    void ParallelCurves(bool areVertical);
    bool Flex(std::uint8_t code);
    bool Compute(std::uint8_t code);
    bool Arrange(std::uint8_t code);
    void Choose();
    void Roll();

    const CffTables& mFont;
    const CffFontDict* mDict = nullptr;
    std::size_t mStepsLeft;
    Type2Glyph mGlyph;
    std::array<double, kMostOperands> mStack{};
    std::size_t mCount = 0;
    std::array<double, 32> mStored{};
    bool mHasWidth = false;
    bool mHasMask = false;
    std::array<double, 2> mStart{};  ///< of the contour
    double mX = 0;
    double mY = 0;
};

}  // namespace VANTIX::HOST
