// SPDX-License-Identifier: MIT
#include "host/fonts/type2charstrings.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/fonts/ifontancillaries.h"

namespace VANTIX::HOST {
namespace {

constexpr int kMostDepth = 10;
constexpr std::size_t kMostSegments = 65536;
constexpr std::size_t kMostStems = 96;

// One-byte operators, and those behind `kEscape`.
enum Code : std::uint8_t {
    kHStem = 1,
    kVStem = 3,
    kVMoveTo = 4,
    kRLineTo = 5,
    kHLineTo = 6,
    kVLineTo = 7,
    kRRCurveTo = 8,
    kCallSubr = 10,
    kReturn = 11,
    kEscape = 12,
    kEndChar = 14,
    kHStemHM = 18,
    kHintMask = 19,
    kCntrMask = 20,
    kRMoveTo = 21,
    kHMoveTo = 22,
    kVStemHM = 23,
    kRCurveLine = 24,
    kRLineCurve = 25,
    kVVCurveTo = 26,
    kHHCurveTo = 27,
    kShortInt = 28,
    kCallGSubr = 29,
    kVHCurveTo = 30,
    kHVCurveTo = 31
};

enum Escape : std::uint8_t {
    kAnd = 3,
    kOr = 4,
    kNot = 5,
    kAbs = 9,
    kAdd = 10,
    kSub = 11,
    kDiv = 12,
    kNeg = 14,
    kEq = 15,
    kDrop = 18,
    kPut = 20,
    kGet = 21,
    kIfElse = 22,
    kRandom = 23,
    kMul = 24,
    kSqrt = 26,
    kDup = 27,
    kExch = 28,
    kIndex = 29,
    kRoll = 30,
    kHFlex = 34,
    kFlex = 35,
    kHFlex1 = 36,
    kFlex1 = 37
};

std::size_t StepsFor(std::size_t bytes) {
    constexpr std::size_t kLeast = 100000;
    constexpr std::size_t kOfByte = 16;
    constexpr std::size_t kMost = 256U << 20U;
    return std::min(kLeast + kOfByte * bytes, kMost);
}

}  // namespace

Type2Reader::Type2Reader(const CffTables& font)
    : mFont(font), mStepsLeft(StepsFor(font.file.size())) {}

const Type2Glyph& Type2Reader::Read(std::size_t glyph) {
    mDict = &mFont.fontDicts[mFont.fontDictOf[glyph]];
    mGlyph.stems.clear();
    mGlyph.segments.clear();
    mGlyph.accent.reset();
    mGlyph.isPlain = true;
    mGlyph.width = mDict->defaultWidth;
    mCount = 0;
    mStored = {};
    mHasWidth = false;
    mHasMask = false;
    mX = mY = 0;
    mStart = {};
    const Step step = Run(mFont.glyphs[glyph], 0);
    TakeWidth(false);
    EndContour();
    Expect(step == Step::kEnd && mGlyph.width == std::trunc(mGlyph.width) &&
           mDict->nominalWidth == std::trunc(mDict->nominalWidth));
    mGlyph.isWhole = step != Step::kDamaged;
    return mGlyph;
}

void Type2Reader::Push(double value) {
    constexpr double kLargest = 1e6;
    mStack[mCount++] = std::isfinite(value) ? std::clamp(value, -kLargest, kLargest) : 0;
}

double Type2Reader::Pop() {
    return mCount == 0 ? 0 : mStack[--mCount];
}

bool Type2Reader::PushNumber(ByteView code, std::size_t& position) {
    const std::uint8_t first = code[position];
    const std::size_t length = first == kShortInt ? 3 : (first == 255 ? 5 : (first >= 247 ? 2 : 1));
    if (code.size() - position < length || mCount == kMostOperands) {
        return false;
    }
    const std::size_t at = position + 1;
    position += length;
    if (first == kShortInt) {
        Push(static_cast<std::int16_t>(ReadU16(code, at)));
    } else if (first == 255) {
        constexpr double kOne = 65536;
        const double value = static_cast<std::int32_t>(ReadU32(code, at)) / kOne;
        Expect(value == std::trunc(value));
        Push(value);
    } else if (first < 247) {
        Push(first - 139);
    } else {
        Push(first < 251 ? (first - 247) * 256 + code[at] + 108
                         : -(first - 251) * 256 - code[at] - 108);
    }
    return true;
}

Type2Reader::Step Type2Reader::Run(ByteView code, int depth) {
    for (std::size_t position = 0; position < code.size();) {
        if (mStepsLeft == 0) {
            return Step::kDamaged;
        }
        --mStepsLeft;
        const std::uint8_t byte = code[position];
        if (byte >= 32 || byte == kShortInt) {
            if (!PushNumber(code, position)) {
                return Step::kDamaged;
            }
            continue;
        }
        ++position;
        const Step step = Operator(byte, code, position, depth);
        if (step != Step::kGoOn) {
            return step;
        }
    }
    return Step::kReturn;
}

Type2Reader::Step Type2Reader::Operator(std::uint8_t code, ByteView charString,
                                        std::size_t& position, int depth) {
    switch (code) {
        case kCallSubr:
            return Call(mDict->subroutines, depth);
        case kCallGSubr:
            return Call(mFont.subroutines, depth);
        case kReturn:
            return Step::kReturn;
        case kEndChar:
            return EndChar();
        case kEscape:
            return position == charString.size() ? Step::kDamaged : Escaped(charString[position++]);
        case kHintMask:
        case kCntrMask:
            TakeStems(true);
            mCount = 0;
            return TakeMask(charString, position) ? Step::kGoOn : Step::kDamaged;
        default:
            break;
    }
    const bool isSound = (Hints(code) || Draw(code)) && mGlyph.segments.size() < kMostSegments &&
                         mGlyph.stems.size() <= kMostStems;
    mCount = 0;
    return isSound ? Step::kGoOn : Step::kDamaged;
}

Type2Reader::Step Type2Reader::Call(const CffIndex& subroutines, int depth) {
    const double number = Pop() + subroutines.Bias();
    if (!(number >= 0 && number < subroutines.Count()) || depth == kMostDepth) {
        return Step::kDamaged;
    }
    const ByteView code = subroutines[static_cast<std::size_t>(number)];
    Expect(!code.empty() && code.size() <= GRAPHICS::ICharStringSubroutines::kRoom);
    const Step step = Run(code, depth + 1);
    return step == Step::kReturn ? Step::kGoOn : step;
}

Type2Reader::Step Type2Reader::EndChar() {
    TakeWidth(mCount % 2 == 1);
    constexpr std::size_t kAccentOperands = 4;
    if (mCount >= kAccentOperands) {
        Expect(mCount == kAccentOperands);
        const auto isCode = [](double value) { return value >= 0 && value < 256; };
        if (!isCode(mStack[2]) || !isCode(mStack[3])) {
            return Step::kDamaged;
        }
        mGlyph.accent = {
            mStack[0],
            mStack[1],
            {static_cast<std::uint8_t>(mStack[2]), static_cast<std::uint8_t>(mStack[3])}};
    }
    return Step::kEnd;
}

void Type2Reader::TakeWidth(bool hasWidth) {
    if (mHasWidth) {
        return;
    }
    mHasWidth = true;
    if (hasWidth) {
        mGlyph.width = mStack[0] + mDict->nominalWidth;
        std::move(mStack.begin() + 1, mStack.begin() + static_cast<std::ptrdiff_t>(mCount),
                  mStack.begin());
        --mCount;
    }
}

void Type2Reader::TakeStems(bool areVertical) {
    TakeWidth(mCount % 2 == 1);
    Expect(mCount % 2 == 0);
    double edge = 0;
    for (std::size_t i = 0; i + 1 < mCount; i += 2) {
        edge += mStack[i];
        mGlyph.stems.push_back({areVertical, edge, mStack[i + 1]});
        edge += mStack[i + 1];
    }
}

bool Type2Reader::TakeMask(ByteView code, std::size_t& position) {
    const std::size_t size = (mGlyph.stems.size() + 7) / 8;
    if (code.size() - position < size || mGlyph.stems.size() > kMostStems) {
        return false;
    }
    const bool isHintMask = code[position - 1] == kHintMask;
    for (std::size_t i = 0; isHintMask && !mHasMask && i < mGlyph.stems.size(); ++i) {
        mGlyph.stems[i].isUsed = (code[position + i / 8] << (i % 8) & 0x80) != 0;
    }
    mHasMask = mHasMask || isHintMask;
    position += size;
    return true;
}

bool Type2Reader::Hints(std::uint8_t code) {
    const bool isHorizontal = code == kHStem || code == kHStemHM;
    if (!isHorizontal && code != kVStem && code != kVStemHM) {
        return false;
    }
    TakeStems(!isHorizontal);
    return true;
}

bool Type2Reader::MoveBy(std::size_t operands, double dx, double dy) {
    Expect(mCount == operands);
    EndContour();
    mX += dx;
    mY += dy;
    mStart = {mX, mY};
    mGlyph.segments.push_back({1, true, {mX, mY}});
    return mCount >= operands;
}

/// Operators that draw; false for others, and those with too few operands.
bool Type2Reader::Draw(std::uint8_t code) {
    switch (code) {
        case kRMoveTo:
            TakeWidth(mCount > 2);
            return MoveBy(2, mStack[0], mStack[1]);
        case kHMoveTo:
            TakeWidth(mCount > 1);
            return MoveBy(1, mStack[0], 0);
        case kVMoveTo:
            TakeWidth(mCount > 1);
            return MoveBy(1, 0, mStack[0]);
        case kRLineTo:
            Expect(mCount % 2 == 0);
            Lines(0, mCount);
            return true;
        case kHLineTo:
        case kVLineTo:
            AlternatingLines(code == kVLineTo);
            return true;
        case kRRCurveTo:
            Expect(mCount % 6 == 0);
            Curves(0, mCount);
            return true;
        case kRCurveLine:
            Expect(mCount >= 8 && mCount % 6 == 2);
            Curves(0, mCount - std::min<std::size_t>(mCount, 2));
            Lines(mCount - std::min<std::size_t>(mCount, 2), mCount);
            return mCount >= 8;
        case kRLineCurve:
            Expect(mCount >= 8 && mCount % 2 == 0);
            Lines(0, mCount - std::min<std::size_t>(mCount, 6));
            Curves(mCount - std::min<std::size_t>(mCount, 6), mCount);
            return mCount >= 8;
        case kVVCurveTo:
        case kHHCurveTo:
            ParallelCurves(code == kVVCurveTo);
            return mCount >= 4;
        case kVHCurveTo:
        case kHVCurveTo:
            AlternatingCurves(code == kVHCurveTo);
            return mCount >= 4;
        default:
            return false;
    }
}

void Type2Reader::Line(double dx, double dy) {
    mX += dx;
    mY += dy;
    mGlyph.segments.push_back({1, false, {mX, mY}});
}

void Type2Reader::Curve(double dx1, double dy1, double dx2, double dy2, double dx3, double dy3) {
    const double x1 = mX + dx1;
    const double y1 = mY + dy1;
    const double x2 = x1 + dx2;
    const double y2 = y1 + dy2;
    mX = x2 + dx3;
    mY = y2 + dy3;
    mGlyph.segments.push_back({3, false, {x1, y1, x2, y2, mX, mY}});
}

void Type2Reader::Lines(std::size_t first, std::size_t end) {
    for (std::size_t i = first; i + 2 <= end; i += 2) {
        Line(mStack[i], mStack[i + 1]);
    }
}

void Type2Reader::Curves(std::size_t first, std::size_t end) {
    for (std::size_t i = first; i + 6 <= end; i += 6) {
        const double* d = &mStack[i];
        Curve(d[0], d[1], d[2], d[3], d[4], d[5]);
    }
}

void Type2Reader::AlternatingLines(bool isVertical) {
    for (std::size_t i = 0; i < mCount; ++i, isVertical = !isVertical) {
        Line(isVertical ? 0 : mStack[i], isVertical ? mStack[i] : 0);
    }
}

void Type2Reader::AlternatingCurves(bool isVertical) {
    Expect(mCount % 4 <= 1);
    for (std::size_t i = 0; i + 4 <= mCount; i += 4, isVertical = !isVertical) {
        const double* d = &mStack[i];
        const double last = mCount - i == 5 ? d[4] : 0;
        if (isVertical) {
            Curve(0, d[0], d[1], d[2], d[3], last);
        } else {
            Curve(d[0], 0, d[1], d[2], last, d[3]);
        }
    }
}

void Type2Reader::ParallelCurves(bool areVertical) {
    Expect(mCount % 4 <= 1);
    std::size_t i = mCount % 2;
    double across = i == 1 ? mStack[0] : 0;
    for (; i + 4 <= mCount; i += 4, across = 0) {
        const double* d = &mStack[i];
        if (areVertical) {
            Curve(across, d[0], d[1], d[2], 0, d[3]);
        } else {
            Curve(d[0], across, d[1], d[2], d[3], 0);
        }
    }
}

bool Type2Reader::Flex(std::uint8_t code) {
    constexpr std::array<std::size_t, 4> kOperands{7, 13, 9, 11};
    const std::size_t operands = kOperands.at(code - kHFlex);
    const auto& d = mStack;
    Expect(mCount == operands);
    if (mCount < operands) {
        return false;
    }
    switch (code) {
        case kHFlex:
            Curve(d[0], 0, d[1], d[2], d[3], 0);
            Curve(d[4], 0, d[5], -d[2], d[6], 0);
            break;
        case kFlex:
            Curves(0, 12);
            break;
        case kHFlex1:
            Curve(d[0], d[1], d[2], d[3], d[4], 0);
            Curve(d[5], 0, d[6], d[7], d[8], -(d[1] + d[3] + d[7]));
            break;
        default: {
            const double dx = d[0] + d[2] + d[4] + d[6] + d[8];
            const double dy = d[1] + d[3] + d[5] + d[7] + d[9];
            const bool isFlat = std::abs(dx) > std::abs(dy);
            Curves(0, 6);
            Curve(d[6], d[7], d[8], d[9], isFlat ? d[10] : -dx, isFlat ? -dy : d[10]);
            break;
        }
    }
    return true;
}

Type2Reader::Step Type2Reader::Escaped(std::uint8_t code) {
    if (code >= kHFlex && code <= kFlex1) {
        const bool isSound = Flex(code) && mGlyph.segments.size() < kMostSegments;
        mCount = 0;
        return isSound ? Step::kGoOn : Step::kDamaged;
    }
    Expect(false);
    if (Arrange(code) || Compute(code)) {
        return Step::kGoOn;
    }
    mCount = 0;
    return Step::kGoOn;
}

/// Operators that compute a value; false for others.
bool Type2Reader::Compute(std::uint8_t code) {
    const bool isUnary = code == kNot || code == kAbs || code == kNeg || code == kSqrt;
    const double b = Pop();
    const double a = isUnary ? b : Pop();
    switch (code) {
        case kAnd:
            Push(a != 0 && b != 0 ? 1 : 0);
            return true;
        case kOr:
            Push(a != 0 || b != 0 ? 1 : 0);
            return true;
        case kNot:
            Push(b == 0 ? 1 : 0);
            return true;
        case kEq:
            Push(a == b ? 1 : 0);
            return true;
        case kAbs:
            Push(std::abs(b));
            return true;
        case kNeg:
            Push(-b);
            return true;
        case kSqrt:
            Push(std::sqrt(b));
            return true;
        case kAdd:
            Push(a + b);
            return true;
        case kSub:
            Push(a - b);
            return true;
        case kMul:
            Push(a * b);
            return true;
        case kDiv:
            Push(a / b);
            return true;
        default:
            return false;
    }
}

/// `a b c d ifelse`
void Type2Reader::Choose() {
    if (mCount >= 4) {
        mCount -= 3;
        const double* d = &mStack[mCount - 1];
        mStack[mCount - 1] = d[2] <= d[3] ? d[0] : d[1];
    }
}

void Type2Reader::Roll() {
    const auto turns = static_cast<std::ptrdiff_t>(Pop());
    const auto count =
        static_cast<std::ptrdiff_t>(std::clamp(Pop(), 0.0, static_cast<double>(mCount)));
    if (count > 0) {
        auto* const end = mStack.data() + mCount;
        const std::ptrdiff_t shift = (turns % count + count) % count;
        std::rotate(end - count, end - shift, end);
    }
}

/// Operators that move values; false for others.
bool Type2Reader::Arrange(std::uint8_t code) {
    const auto place = [](double value, std::size_t end) {
        return static_cast<std::size_t>(std::clamp(value, 0.0, static_cast<double>(end)));
    };
    switch (code) {
        case kDrop:
            Pop();
            return true;
        case kDup:
        case kRandom: {
            constexpr double kChance = 0.5;
            if (mCount < kMostOperands) {
                Push(code == kRandom ? kChance : (mCount == 0 ? 0 : mStack[mCount - 1]));
            }
            return true;
        }
        case kExch:
            if (mCount >= 2) {
                std::swap(mStack[mCount - 1], mStack[mCount - 2]);
            }
            return true;
        case kPut: {
            const std::size_t index = place(Pop(), mStored.size() - 1);
            mStored.at(index) = Pop();
            return true;
        }
        case kGet:
            if (mCount > 0) {
                Push(mStored.at(place(Pop(), mStored.size() - 1)));
            }
            return true;
        case kIfElse:
            Choose();
            return true;
        case kIndex:
            if (mCount >= 2) {
                mStack[mCount - 1] = mStack[mCount - 2 - place(mStack[mCount - 1], mCount - 2)];
            }
            return true;
        case kRoll:
            Roll();
            return true;
        default:
            return false;
    }
}

}  // namespace VANTIX::HOST
