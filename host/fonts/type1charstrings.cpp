// SPDX-License-Identifier: MIT
#include "host/fonts/type1charstrings.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace VANTIX::HOST {
namespace {

constexpr int kMostDepth = 10;
constexpr std::size_t kMostOperands = 256;

// One-byte operators, and those behind `kEscape`.
enum Code : std::uint8_t {
    kRLineTo = 5,
    kHLineTo = 6,
    kVLineTo = 7,
    kRRCurveTo = 8,
    kCallSubr = 10,
    kReturn = 11,
    kEscape = 12,
    kHsbw = 13,
    kEndChar = 14,
    kVHCurveTo = 30,
    kHVCurveTo = 31
};

enum Escape : std::uint8_t { kSeac = 6, kSbw = 7, kDiv = 12, kCallOtherSubr = 16, kPop = 17 };

/// Whether a procedure of /OtherSubrs is one whose results are told by its operands: flex, hint
/// replacement, counters, and the blends of multiple masters.
bool IsKnown(int procedure) {
    return (procedure >= 0 && procedure <= 3) || (procedure >= 12 && procedure <= 18);
}

/// The number of values that a procedure of /OtherSubrs leaves of `count` operands: those of
/// multiple masters blend (Technical Note 5015), the others give back what they get.
std::size_t ResultsOf(int procedure, std::size_t count) {
    constexpr std::array<std::size_t, 5> kBlended{1, 2, 3, 4, 6};
    if (procedure >= 14 && procedure <= 18) {
        return std::min(kBlended.at(static_cast<std::size_t>(procedure - 14)), count);
    }
    return count;
}

/// A character code, or -1.
int CodeOf(double value) {
    return value >= 0 && value < 256 ? static_cast<int>(value) : -1;
}

}  // namespace

CharStringFacts CharStringWalker::Walk(std::string_view charString) {
    mFacts = {};
    mStack.clear();
    mOther.clear();
    mFacts.isWhole = Run(charString, 0) == Step::kEnd;
    // What was not understood may call anything.
    mCallsUnknown = mCallsUnknown || !mFacts.isWhole;
    return mFacts;
}

double CharStringWalker::Pop() {
    if (mStack.empty()) {
        return NAN;
    }
    const double top = mStack.back();
    mStack.pop_back();
    return top;
}

void CharStringWalker::PushNumber(std::string_view code, std::size_t& position) {
    const auto byteAt = [&](std::size_t index) -> std::uint32_t {
        return index < code.size() ? static_cast<std::uint8_t>(code[index]) : 0U;
    };
    const auto first = static_cast<int>(byteAt(position));
    double value = first - 139;
    std::size_t length = 1;
    if (first == 255) {
        value =
            static_cast<std::int32_t>(byteAt(position + 1) << 24U | byteAt(position + 2) << 16U |
                                      byteAt(position + 3) << 8U | byteAt(position + 4));
        length = 5;
    } else if (first >= 247) {
        const int rest = static_cast<int>(byteAt(position + 1));
        value = first >= 251 ? -(first - 251) * 256 - rest - 108 : (first - 247) * 256 + rest + 108;
        length = 2;
    }
    position += length;
    mStack.push_back(value);
}

CharStringWalker::Step CharStringWalker::Run(std::string_view code, int depth) {
    for (std::size_t position = 0; position < code.size();) {
        if (mStepsLeft == 0 || mStack.size() > kMostOperands) {
            return Step::kDamaged;
        }
        --mStepsLeft;
        const auto byte = static_cast<std::uint8_t>(code[position]);
        if (byte >= 32) {
            PushNumber(code, position);
            continue;
        }
        ++position;
        Step step = Step::kGoOn;
        if (byte == kEscape) {
            if (position == code.size()) {
                return Step::kDamaged;
            }
            step = Escaped(static_cast<std::uint8_t>(code[position++]));
        } else {
            step = Operator(byte, depth);
        }
        if (step != Step::kGoOn) {
            return step;
        }
    }
    return depth == 0 ? Step::kDamaged : Step::kReturn;
}

CharStringWalker::Step CharStringWalker::Operator(std::uint8_t code, int depth) {
    switch (code) {
        case kCallSubr:
            return CallSubroutine(depth);
        case kReturn:
            return Step::kReturn;
        case kEndChar:
            return Step::kEnd;
        case kHsbw:
            mFacts.width = Pop();
            mFacts.hasWidth = std::isfinite(mFacts.width);
            break;
        case kRLineTo:
        case kHLineTo:
        case kVLineTo:
        case kRRCurveTo:
        case kVHCurveTo:
        case kHVCurveTo:
            mFacts.marks = true;
            break;
        default:
            break;
    }
    mStack.clear();
    return Step::kGoOn;
}

CharStringWalker::Step CharStringWalker::Escaped(std::uint8_t code) {
    switch (code) {
        case kDiv: {
            const double divisor = Pop();
            mStack.push_back(Pop() / divisor);
            return Step::kGoOn;
        }
        case kCallOtherSubr:
            return CallOther();
        case kPop:
            mStack.push_back(mOther.empty() ? NAN : mOther.back());
            if (!mOther.empty()) {
                mOther.pop_back();
            }
            return Step::kGoOn;
        case kSbw:
            Pop();
            mFacts.width = Pop();
            mFacts.hasWidth = std::isfinite(mFacts.width);
            break;
        case kSeac:
            mFacts.components[1] = CodeOf(Pop());
            mFacts.components[0] = CodeOf(Pop());
            return Step::kEnd;
        default:
            break;
    }
    mStack.clear();
    return Step::kGoOn;
}

CharStringWalker::Step CharStringWalker::CallSubroutine(int depth) {
    const double number = Pop();
    if (!(number >= 0 && number < static_cast<double>(mSubroutines.size())) ||
        depth == kMostDepth) {
        return Step::kDamaged;
    }
    const auto index = static_cast<std::size_t>(number);
    mReached[index] = true;
    const Step step = Run(mSubroutines[index], depth + 1);
    return step == Step::kReturn ? Step::kGoOn : step;
}

CharStringWalker::Step CharStringWalker::CallOther() {
    constexpr double kMostProcedures = 1024;
    const double procedure = Pop();
    const double count = Pop();
    if (!(procedure >= 0 && procedure < kMostProcedures) ||
        !(count >= 0 && count <= static_cast<double>(mStack.size()))) {
        return Step::kDamaged;
    }
    const auto operands = static_cast<std::size_t>(count);
    const auto first = mStack.end() - static_cast<std::ptrdiff_t>(operands);
    const std::size_t results = ResultsOf(static_cast<int>(procedure), operands);
    mOther.clear();
    // The value to be popped first is the last one here.
    for (std::size_t index = results; index > 0; --index) {
        mOther.push_back(first[static_cast<std::ptrdiff_t>(index - 1)]);
    }
    mStack.erase(first, mStack.end());
    // Flex draws its curves when it ends.
    mFacts.marks = mFacts.marks || procedure == 0;
    mCallsUnknown = mCallsUnknown || !IsKnown(static_cast<int>(procedure));
    return Step::kGoOn;
}

}  // namespace VANTIX::HOST
