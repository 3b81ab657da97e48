// SPDX-License-Identifier: MIT
#include "t2tot1charstringconverter.h"

#include <algorithm>
#include <bitset>
#include <charconv>
#include <cmath>
#include <utility>

#include "core/libsupport/vlogger/logmessage.h"
#include "platform/randomsource.h"

namespace VANTIX::PS {
namespace {

constexpr const char* kModule = "src/t2tot1charstringconverter";

/// Commands of charstrings. Most have the same number in both formats; those without a note are in
/// both.
enum Command : std::uint8_t {
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
    kHsbw = 13,  // Type 1 alone
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
    kHVCurveTo = 31,
    kFirstNumber = 32,
};

// Behind kEscape.
enum EscapedCommand : std::uint8_t {
    kDotSection = 0,
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
    kFlex1 = 37,
};

constexpr std::uint16_t kSeac = (kEscape << 8U) | 6U;
constexpr std::size_t kTransients = 32;
/// Six operands of at most five bytes, and a command of two.
constexpr std::size_t kLongestCommand = 6 * 5 + 2;

std::int32_t Whole(float value) {
    return ToInteger(static_cast<double>(value));
}

float WholeReal(float value) {
    return static_cast<float>(Whole(value));
}

// Arithmetic. Only the first operand of the four rules of arithmetic keeps its fraction.

float And(float a, float b) {
    return Whole(a) != 0 && Whole(b) != 0 ? 1 : 0;
}

float Or(float a, float b) {
    return Whole(a) != 0 || Whole(b) != 0 ? 1 : 0;
}

float Eq(float a, float b) {
    return Whole(a) == Whole(b) ? 1 : 0;
}

float Add(float a, float b) {
    return a + WholeReal(b);
}

float Sub(float a, float b) {
    return a - WholeReal(b);
}

float Mul(float a, float b) {
    return a * WholeReal(b);
}

float Div(float a, float b) {
    return Whole(b) == 0 ? 0 : a / WholeReal(b);
}

float Not(float a) {
    return Whole(a) == 0 ? 1 : 0;
}

float Abs(float a) {
    return std::abs(WholeReal(a));
}

float Neg(float a) {
    return -WholeReal(a);
}

float Sqrt(float a) {
    return std::sqrt(std::max(WholeReal(a), 0.0F));
}

std::int32_t SignedBytes(const std::uint8_t* p, int count) {
    std::uint32_t bits = (*p & 0x80U) != 0 ? ~0U : 0U;
    for (; count > 0; --count) {
        bits = (bits << 8U) | *p++;
    }
    return static_cast<std::int32_t>(bits);
}

/// Numbers of a fixed length by their first byte: how many bytes follow it.
std::int32_t FollowingBytes(std::uint8_t first) {
    constexpr std::uint8_t kLongInt = 29;
    switch (first) {
        case kShortInt:
            return 2;
        case kLongInt:
        case 255:
            return 4;
        default:
            return first > 246 ? 1 : 0;
    }
}

/// The real number whose nibbles begin at `p`.
const std::uint8_t* DecodeReal(const std::uint8_t* p, const std::uint8_t* end, float& real) {
    constexpr const char* kTexts[] = {"0", "1", "2", "3", "4",  "5", "6", "7",
                                      "8", "9", ".", "e", "e-", "",  "-"};
    constexpr unsigned kReserved = 13;
    constexpr unsigned kEnd = 15;
    std::array<char, 64> text;
    std::size_t length = 0;
    for (bool isOver = false; !isOver; ++p) {
        if (p == end) {
            return nullptr;
        }
        const unsigned byte = *p;
        for (const unsigned nibble : {byte >> 4U, byte & 0xFU}) {
            isOver = isOver || nibble == kEnd;
            if (nibble == kReserved && !isOver) {
                LogError(kModule) << "Hit reserved value parsing real number";
            }
            for (const char* c = isOver ? "" : kTexts[nibble]; *c != '\0'; ++c) {
                if (length < text.size()) {
                    text[length++] = *c;
                }
            }
        }
    }
    if (length == text.size()) {
        LogError(kModule) << "Potential 'real number' string buffer overflow";
        --length;
    }
    real = 0;
    std::from_chars(text.data(), text.data() + length, real);
    return p;
}

}  // namespace

const std::uint8_t* DecodeType2Number(const std::uint8_t* p, const std::uint8_t* end,
                                      std::int32_t& integer, float& real, bool& isReal) {
    constexpr std::uint8_t kReal = 30;
    if (p == end) {
        return nullptr;
    }
    const std::uint8_t first = *p++;
    isReal = first == kReal;
    if (isReal) {
        return DecodeReal(p, end, real);
    }
    const std::int32_t count = FollowingBytes(first);
    if (end - p < count) {
        return nullptr;
    }
    if (count == 0) {
        integer = first - 139;
    } else if (count > 1) {
        // Of a number with a fraction the first two bytes are the whole part.
        integer = SignedBytes(p, first == 255 ? 2 : count);
    } else if (first < 251) {
        integer = (first - 247) * 256 + *p + 108;
    } else {
        integer = -(first - 251) * 256 - *p - 108;
    }
    return p + count;
}

/// A charstring or subroutine that is being interpreted.
struct T2ToT1CharStringConverter::Frame {
    const std::uint8_t* next = nullptr;
    const std::uint8_t* end = nullptr;
    std::array<std::int32_t, kTransients> transients{};
};

/// Tables of operators by their numbers.
struct T2ToT1CharStringConverter::Operators {
    struct Operator {
        void (T2ToT1CharStringConverter::*run)(std::uint8_t) = nullptr;
        std::uint8_t argument = 0;
    };

    struct Row {
        std::uint8_t code;
        Operator action;
    };

    template <std::size_t kSize, std::size_t kRows>
    static constexpr std::array<Operator, kSize> Arrange(const Row (&rows)[kRows]) {
        std::array<Operator, kSize> table{};
        for (const Row& row : rows) {
            table[row.code] = row.action;
        }
        return table;
    }
};

struct T2ToT1CharStringConverter::OperatorTables {
    using C = T2ToT1CharStringConverter;

    static constexpr auto kPlain = Operators::Arrange<kFirstNumber>({
        {kHStem, {&C::Stems, kHStem}},
        {kVStem, {&C::Stems, kVStem}},
        {kHStemHM, {&C::Stems, kHStem}},
        {kVStemHM, {&C::Stems, kVStem}},
        {kHintMask, {&C::Mask, 1}},
        {kCntrMask, {&C::Mask, 0}},
        {kVMoveTo, {&C::Move, kVMoveTo}},
        {kHMoveTo, {&C::Move, kHMoveTo}},
        {kRMoveTo, {&C::Move, kRMoveTo}},
        {kRLineTo, {&C::Lines, kRLineTo}},
        {kHLineTo, {&C::AlternatingLines, kHLineTo}},
        {kVLineTo, {&C::AlternatingLines, kVLineTo}},
        {kRRCurveTo, {&C::Curves, kRRCurveTo}},
        {kRCurveLine, {&C::CurvesAndLine, kRCurveLine}},
        {kRLineCurve, {&C::LinesAndCurve, kRLineCurve}},
        {kVVCurveTo, {&C::CurvesAlong, 0}},
        {kHHCurveTo, {&C::CurvesAlong, 1}},
        {kVHCurveTo, {&C::AlternatingCurves, kVHCurveTo}},
        {kHVCurveTo, {&C::AlternatingCurves, kHVCurveTo}},
        {kCallSubr, {&C::CallSubroutine, 0}},
        {kCallGSubr, {&C::CallSubroutine, 1}},
        {kReturn, {&C::Return, kReturn}},
        {kEndChar, {&C::EndChar, kEndChar}},
    });

    static constexpr auto kEscaped = Operators::Arrange<kFlex1 + 1>({
        {kDotSection, {&C::Ignore, 0}}, {kAnd, {&C::Binary<And>, 0}},
        {kOr, {&C::Binary<Or>, 0}},     {kNot, {&C::Unary<Not>, 0}},
        {kAbs, {&C::Unary<Abs>, 0}},    {kAdd, {&C::Binary<Add>, 0}},
        {kSub, {&C::Binary<Sub>, 0}},   {kDiv, {&C::Binary<Div>, 0}},
        {kNeg, {&C::Unary<Neg>, 0}},    {kEq, {&C::Binary<Eq>, 0}},
        {kDrop, {&C::Drop, 0}},         {kPut, {&C::Put, 0}},
        {kGet, {&C::Get, 0}},           {kIfElse, {&C::IfElse, 0}},
        {kRandom, {&C::Random, 0}},     {kMul, {&C::Binary<Mul>, 0}},
        {kSqrt, {&C::Unary<Sqrt>, 0}},  {kDup, {&C::Duplicate, 0}},
        {kExch, {&C::Exchange, 0}},     {kIndex, {&C::Ignore, 0}},
        {kRoll, {&C::Ignore, 0}},       {kHFlex, {&C::Flex, kHFlex}},
        {kFlex, {&C::Flex, kFlex}},     {kHFlex1, {&C::Flex, kHFlex1}},
        {kFlex1, {&C::Flex, kFlex1}},
    });
};

bool T2ToT1CharStringConverter::Init(float nominalWidth, float defaultWidth, std::uint16_t fontDict,
                                     bool noWidth,
                                     const GRAPHICS::ICharStringSubroutines* subroutines) {
    mCount = 0;
    mPendingStems = 0;
    mStemCount = 0;
    mNominalWidth = nominalWidth;
    mDefaultWidth = defaultWidth;
    mWidthPending = !noWidth;
    mFontDict = fontDict;
    mIsOver = false;
    mDepth = 0;
    mSteps = 0;
    mComplaints = 0;
    mFrame = nullptr;
    mSubroutines = subroutines;
    if (!mOut.Begin()) {
        LogError(kModule) << "Unable to get memory for bytes = " << T1CharString::kFirstRoom;
        return false;
    }
    return true;
}

bool T2ToT1CharStringConverter::Convert(const void* charString, std::int32_t length) {
    if (charString == nullptr || length < 0) {
        return false;
    }
    mSteps += length;
    if (mSteps > kMostSteps) {
        GiveUp();
    }
    Frame frame;
    frame.next = static_cast<const std::uint8_t*>(charString);
    frame.end = frame.next + length;
    Frame* const caller = std::exchange(mFrame, &frame);
    while (frame.next != frame.end && !mIsOver) {
        Step();
    }
    mFrame = caller;
    return !mOut.IsGivenUp();
}

const std::uint8_t* T2ToT1CharStringConverter::GetCharString(std::int32_t& length) const {
    length = static_cast<std::int32_t>(mOut.Get().size());
    return mOut.Get().data();
}

std::span<const std::uint8_t> T2ToT1CharStringConverter::ConvertGlyph(
    const GRAPHICS::CharString& glyph, std::uint16_t fontDict,
    const GRAPHICS::ICharStringSubroutines* subroutines) {
    if (!Init(glyph.nominalWidth, glyph.defaultWidth, fontDict, false, subroutines) ||
        !Convert(glyph.data, glyph.length)) {
        return {};
    }
    if (!mIsOver && !mOut.Get().empty()) {
        mCount = 0;
        EndChar(kEndChar);
    }
    return mOut.Get();
}

void T2ToT1CharStringConverter::Step() {
    Frame& frame = *mFrame;
    const std::uint8_t code = *frame.next;
    if (code < kFirstNumber && code != kShortInt) {
        ++frame.next;
        RunOperator(code);
        return;
    }
    std::int32_t integer = 0;
    float real = 0;
    bool isReal = false;
    const std::uint8_t* next = DecodeType2Number(frame.next, frame.end, integer, real, isReal);
    if (next != nullptr) {
        Push(static_cast<float>(integer));
    }
    frame.next = next == nullptr ? frame.end : next;
}

void T2ToT1CharStringConverter::RunOperator(std::uint8_t code) {
    Operators::Operator action = OperatorTables::kPlain[code];
    const bool isEscaped = code == kEscape && mFrame->next != mFrame->end;
    if (isEscaped) {
        code = *mFrame->next++;
        action = code < OperatorTables::kEscaped.size() ? OperatorTables::kEscaped[code]
                                                        : Operators::Operator{};
    }
    if (action.run != nullptr) {
        (this->*action.run)(action.argument);
        return;
    }
    if (MayComplain()) {
        LogError(kModule) << "Type 2 character operator [" << (isEscaped ? "12 " : "")
                          << static_cast<std::int32_t>(code) << "] not recognized or handled.";
    }
    mCount = 0;
}

void T2ToT1CharStringConverter::Push(float value) {
    if (mCount == kMostOperands) {
        LogError(kModule) << "A charstring has more operands than there is room for.";
        GiveUp();
        return;
    }
    mStack[mCount++] = value;
}

T2ToT1CharStringConverter::Operands T2ToT1CharStringConverter::Pop(std::size_t count) {
    if (mCount < count) {
        return {};
    }
    mCount = static_cast<std::uint8_t>(mCount - count);
    return {&mStack[mCount], count};
}

void T2ToT1CharStringConverter::TakeWidth(bool hasWidth) {
    if (!std::exchange(mWidthPending, false)) {
        return;
    }
    float width = mDefaultWidth;
    if (hasWidth) {
        width = mStack[0] + mNominalWidth;
        std::copy_n(mStack.begin() + 1, mCount - 1, mStack.begin());
        --mCount;
    }
    Write({0, width}, kHsbw);
}

void T2ToT1CharStringConverter::Stems(std::uint8_t command) {
    TakeWidth(mCount % 2 != 0);
    float position = 0;
    for (std::size_t i = 0; i + 1 < mCount; i += 2) {
        position += mStack[i];
        AddStem(command, position, mStack[i + 1]);
        position += mStack[i + 1];
    }
    mCount = 0;
}

void T2ToT1CharStringConverter::AddStem(std::uint8_t command, float position, float size) {
    if (mPendingStems == mStems.size()) {
        FlushStems({});
    }
    mStems[mPendingStems++] = {position, size, command};
    ++mStemCount;
}

void T2ToT1CharStringConverter::FlushStems(std::span<const std::uint8_t> mask) {
    const std::span<const Stem> stems(mStems.data(), std::exchange(mPendingStems, 0));
    const auto isMasked = [&](std::size_t i) {
        return i / 8 < mask.size() && (mask[i / 8] & (0x80U >> (i % 8))) != 0;
    };
    // A stem of negative size is an edge at its position (Adobe Type 1 Font Format, 6.4).
    const auto overlap = [](const Stem& a, const Stem& b) {
        return a.command == b.command && a.position <= b.position + std::max(b.size, 0.0F) &&
               b.position <= a.position + std::max(a.size, 0.0F);
    };
    std::bitset<kMostStems> kept;
    for (std::size_t i = 0; i < stems.size(); ++i) {
        kept[i] = mask.empty() || isMasked(i);
    }
    for (std::size_t i = 0; i < stems.size(); ++i) {
        bool isFree = true;
        for (std::size_t k = 0; k < stems.size() && isFree; ++k) {
            isFree = k == i || !kept[k] || !overlap(stems[i], stems[k]);
        }
        kept[i] = kept[i] || isFree;
    }
    for (std::size_t i = 0; i < stems.size(); ++i) {
        if (kept[i]) {
            Write({stems[i].position, stems[i].size}, stems[i].command);
        }
    }
}

void T2ToT1CharStringConverter::Mask(std::uint8_t isHintMask) {
    Stems(kVStem);
    Frame& frame = *mFrame;
    const auto bytes = std::min<std::ptrdiff_t>((mStemCount + 7) / 8, frame.end - frame.next);
    if (isHintMask != 0) {
        FlushStems({frame.next, static_cast<std::size_t>(bytes)});
    }
    frame.next += bytes;
}

void T2ToT1CharStringConverter::Move(std::uint8_t command) {
    const std::size_t needed = command == kRMoveTo ? 2 : 1;
    TakeWidth(mCount == needed + 1);
    if (const Operands operands = Pop(needed); !operands.empty()) {
        Write(operands, command);
    }
    mCount = 0;
}

void T2ToT1CharStringConverter::EndChar(std::uint8_t command) {
    constexpr std::size_t kAccentOperands = 4;
    TakeWidth(mCount % 2 != 0);
    if (mCount == kAccentOperands) {
        Write({0, mStack[0], mStack[1], mStack[2], mStack[3]}, kSeac);
    } else {
        Write({}, command);
    }
    mCount = 0;
    mIsOver = true;
}

void T2ToT1CharStringConverter::Lines(std::uint8_t command) {
    for (std::size_t i = 0; i + 2 <= mCount; i += 2) {
        Write(Stack().subspan(i, 2), command);
    }
    mCount = 0;
}

void T2ToT1CharStringConverter::AlternatingLines(std::uint8_t command) {
    for (std::size_t i = 0; i < mCount; ++i) {
        Write(Stack().subspan(i, 1), command);
        command = command == kHLineTo ? kVLineTo : kHLineTo;
    }
    mCount = 0;
}

void T2ToT1CharStringConverter::WriteCurve(Operands operands) {
    Write(operands, kRRCurveTo);
}

void T2ToT1CharStringConverter::Curves(std::uint8_t /*command*/) {
    for (std::size_t i = 0; i + 6 <= mCount; i += 6) {
        WriteCurve(Stack().subspan(i, 6));
    }
    mCount = 0;
}

void T2ToT1CharStringConverter::CurvesAndLine(std::uint8_t /*command*/) {
    if (mCount < 8 && MayComplain()) {
        LogError(kModule) << "Unexpected number of operands for type 2 operator rcurveline";
    } else if (mCount >= 8) {
        std::size_t i = 0;
        for (; i + 8 <= mCount; i += 6) {
            WriteCurve(Stack().subspan(i, 6));
        }
        Write(Stack().subspan(i, 2), kRLineTo);
    }
    mCount = 0;
}

void T2ToT1CharStringConverter::LinesAndCurve(std::uint8_t /*command*/) {
    if (mCount < 8 && MayComplain()) {
        LogError(kModule) << "Unexpected number of operands for type 2 operator rlinecurve";
    } else if (mCount >= 8) {
        std::size_t i = 0;
        for (; i + 8 <= mCount; i += 2) {
            Write(Stack().subspan(i, 2), kRLineTo);
        }
        WriteCurve(Stack().subspan(i, 6));
    }
    mCount = 0;
}

void T2ToT1CharStringConverter::CurvesAlong(std::uint8_t isHorizontal) {
    if (mCount < 4 && MayComplain()) {
        LogError(kModule) << "Stack Under Flow for Type 2 CharString operator "
                          << (isHorizontal != 0 ? "hhcurveto" : "vvcurveto");
    }
    // An odd operand is what the first curve starts with across the direction.
    std::size_t i = mCount % 2;
    float across = i != 0 ? mStack[0] : 0;
    for (; i + 4 <= mCount; i += 4, across = 0) {
        const float* d = &mStack[i];
        if (isHorizontal != 0) {
            Write({d[0], across, d[1], d[2], d[3], 0}, kRRCurveTo);
        } else {
            Write({across, d[0], d[1], d[2], 0, d[3]}, kRRCurveTo);
        }
    }
    mCount = 0;
}

void T2ToT1CharStringConverter::AlternatingCurves(std::uint8_t command) {
    if (mCount < 4 && MayComplain()) {
        LogError(kModule) << "Stack Under Flow for Type 2 CharString operator hvcurveto/vhcurveto";
    }
    for (std::size_t i = 0; i + 4 <= mCount; i += 4) {
        const float* d = &mStack[i];
        if (i + 5 != mCount) {
            Write(Stack().subspan(i, 4), command);
        } else if (command == kHVCurveTo) {
            Write({d[0], 0, d[1], d[2], d[4], d[3]}, kRRCurveTo);
        } else {
            Write({0, d[0], d[1], d[2], d[3], d[4]}, kRRCurveTo);
        }
        command = command == kHVCurveTo ? kVHCurveTo : kHVCurveTo;
    }
    mCount = 0;
}

void T2ToT1CharStringConverter::Flex(std::uint8_t command) {
    const float* d = mStack.data();
    const Operands operands = Stack();
    if (command == kFlex && mCount >= 12) {
        WriteCurve(operands.first(6));
        WriteCurve(operands.subspan(6, 6));
    } else if (command == kHFlex && mCount >= 7) {
        Write({d[0], 0, d[1], d[2], d[3], 0}, kRRCurveTo);
        Write({d[4], 0, d[5], -d[2], d[6], 0}, kRRCurveTo);
    } else if (command == kHFlex1 && mCount >= 9) {
        Write({d[0], d[1], d[2], d[3], d[4], 0}, kRRCurveTo);
        Write({d[5], 0, d[6], d[7], d[8], -(d[1] + d[3] + d[7])}, kRRCurveTo);
    } else if (command == kFlex1 && mCount >= 11) {
        const float sx = d[0] + d[2] + d[4] + d[6] + d[8];
        const float sy = d[1] + d[3] + d[5] + d[7] + d[9];
        const bool isHorizontal = std::abs(sx) > std::abs(sy);
        WriteCurve(operands.first(6));
        Write({d[6], d[7], d[8], d[9], isHorizontal ? d[10] : -sx, isHorizontal ? -sy : d[10]},
              kRRCurveTo);
    }
    mCount = 0;
}

void T2ToT1CharStringConverter::CallSubroutine(std::uint8_t isGlobal) {
    const Operands operand = Pop(1);
    if (operand.empty() || mSubroutines == nullptr) {
        if (MayComplain()) {
            LogError(kModule) << (operand.empty()
                                      ? "Invalid Num of arguments for  subrs / gsubrs operator."
                                      : "There is no subroutine getter.");
        }
        mCount = operand.empty() ? 0 : mCount;
        return;
    }
    if (mDepth == kMostNesting) {
        LogError(kModule) << "Subroutines of a charstring are nested too deep.";
        GiveUp();
        return;
    }
    constexpr std::int32_t kMostNumber = 65535;
    const std::int32_t bias =
        isGlobal != 0 ? mSubroutines->GetGlobalBias() : mSubroutines->GetLocalBias(mFontDict);
    const std::int32_t number =
        std::clamp(Whole(operand[0]), -kMostNumber - 1, kMostNumber + 1) + bias;
    std::array<std::uint8_t, GRAPHICS::ICharStringSubroutines::kRoom> bytes;
    std::int32_t length = 0;
    if (number >= 0 && number <= kMostNumber) {
        length = isGlobal != 0 ? mSubroutines->CopyGlobalSubroutine(number, bytes.data())
                               : mSubroutines->CopyLocalSubroutine(mFontDict, number, bytes.data());
    }
    if (length <= 0 || length > GRAPHICS::ICharStringSubroutines::kRoom) {
        if (MayComplain()) {
            LogError(kModule) << (isGlobal != 0 ? "Failed callglobalsubr #" : "Failed callsubr #")
                              << number;
        }
        return;
    }
    ++mDepth;
    Convert(bytes.data(), length);
    --mDepth;
}

void T2ToT1CharStringConverter::Return(std::uint8_t command) {
    if (mDepth == 0) {
        Write({}, command);
    }
}

void T2ToT1CharStringConverter::Drop(std::uint8_t /*command*/) {
    Pop(1);
}

void T2ToT1CharStringConverter::Duplicate(std::uint8_t /*command*/) {
    if (mCount > 0) {
        Push(WholeReal(mStack[mCount - 1U]));
    }
}

void T2ToT1CharStringConverter::Exchange(std::uint8_t /*command*/) {
    if (mCount >= 2) {
        float& top = mStack[mCount - 1U];
        float& below = mStack[mCount - 2U];
        const float formerTop = top;
        top = below;
        below = WholeReal(formerTop);
    }
}

void T2ToT1CharStringConverter::IfElse(std::uint8_t /*command*/) {
    if (const Operands o = Pop(4); !o.empty()) {
        Push(WholeReal(Whole(o[2]) <= Whole(o[3]) ? o[0] : o[1]));
    }
}

void T2ToT1CharStringConverter::Random(std::uint8_t /*command*/) {
    constexpr unsigned kBits = 24;  // of a float
    const auto number = static_cast<float>((PLATFORM::NextRandom() >> (64U - kBits)) + 1);
    Push(std::ldexp(number, -static_cast<int>(kBits)));
}

std::int32_t* T2ToT1CharStringConverter::Transient(float index) {
    const std::int32_t i = Whole(index);
    if (i >= 0 && std::cmp_less(i, kTransients)) {
        return &mFrame->transients[static_cast<std::size_t>(i)];
    }
    if (MayComplain()) {
        LogError(kModule) << i << " is out of range.";
    }
    return nullptr;
}

void T2ToT1CharStringConverter::Put(std::uint8_t /*command*/) {
    if (const Operands o = Pop(2); !o.empty()) {
        if (std::int32_t* place = Transient(o[1]); place != nullptr) {
            *place = Whole(o[0]);
        }
    }
}

void T2ToT1CharStringConverter::Get(std::uint8_t /*command*/) {
    if (const Operands o = Pop(1); !o.empty()) {
        if (const std::int32_t* place = Transient(o[0]); place != nullptr) {
            Push(static_cast<float>(*place));
        }
    }
}

void T2ToT1CharStringConverter::Ignore(std::uint8_t /*command*/) {}

template <float (*kFunction)(float)>
void T2ToT1CharStringConverter::Unary(std::uint8_t /*command*/) {
    if (const Operands o = Pop(1); !o.empty()) {
        Push(kFunction(o[0]));
    }
}

template <float (*kFunction)(float, float)>
void T2ToT1CharStringConverter::Binary(std::uint8_t /*command*/) {
    if (const Operands o = Pop(2); !o.empty()) {
        Push(kFunction(o[0], o[1]));
    }
}

void T2ToT1CharStringConverter::Write(Operands operands, std::uint16_t command) {
    // An interpreter takes nothing before the width.
    TakeWidth(false);
    if (mPendingStems != 0) {
        FlushStems({});
    }
    std::array<std::uint8_t, kLongestCommand> bytes;
    std::uint8_t* end = bytes.data();
    for (const float operand : operands) {
        end = PutInteger(end, Whole(operand));
    }
    if (command > 0xFF) {
        *end++ = static_cast<std::uint8_t>(command >> 8U);
    }
    *end++ = static_cast<std::uint8_t>(command & 0xFFU);
    if (!mOut.Append({bytes.data(), end}) && !mIsOver) {
        LogError(kModule) << "Unable to get memory for bytes = " << T1CharString::kMostBytes;
        GiveUp();
    }
}

void T2ToT1CharStringConverter::Write(std::initializer_list<float> operands,
                                      std::uint16_t command) {
    Write(Operands{operands.begin(), operands.size()}, command);
}

void T2ToT1CharStringConverter::GiveUp() {
    mOut.GiveUp();
    mIsOver = true;
}

}  // namespace VANTIX::PS
