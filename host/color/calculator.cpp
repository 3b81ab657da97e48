// SPDX-License-Identifier: MIT
#include "host/color/calculator.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <functional>
#include <limits>
#include <numbers>

#include "host/color/functionbase.h"

namespace VANTIX::HOST {

namespace {

constexpr std::size_t kMaxTokens = 65536;
constexpr std::size_t kMaxProgramBytes = 1U << 20U;
constexpr std::int32_t kMaxBraces = 32;
constexpr std::size_t kMaxStack = 100;

enum Code : std::uint8_t {
    kPushInteger,
    kPushReal,
    kPushTruth,
    kJump,
    kJumpIfFalse,
    kFirstOperator
};

enum class Kind : std::uint8_t { kInteger, kReal, kTruth };

struct Value {
    Kind kind;
    std::int32_t integer;  ///< also the truth value
    double real;

    static Value Integer(std::int32_t v) { return {Kind::kInteger, v, 0.0}; }

    static Value Real(double v) { return {Kind::kReal, 0, v}; }

    static Value Truth(bool v) { return {Kind::kTruth, v ? 1 : 0, 0.0}; }

    bool IsInteger() const { return kind == Kind::kInteger; }

    bool IsNumber() const { return kind != Kind::kTruth; }

    double Number() const { return kind == Kind::kReal ? real : integer; }
};

/// An integer result, or a real where it does not fit (as the language's arithmetic has it).
Value Whole(std::int64_t v) {
    const bool fits = v >= std::numeric_limits<std::int32_t>::min() &&
                      v <= std::numeric_limits<std::int32_t>::max();
    return fits ? Value::Integer(static_cast<std::int32_t>(v))
                : Value::Real(static_cast<double>(v));
}

/// The operand stack of one run; values above its top are not set.
class Operands {
public:
    std::size_t Size() const { return mSize; }

    /// The operand `depth` below the top; the caller has checked the size.
    Value& At(std::size_t depth) { return mValues[mSize - 1 - depth]; }

    bool Push(const Value& value) {
        if (mSize == kMaxStack) {
            return false;
        }
        mValues[mSize++] = value;
        return true;
    }

    void Drop(std::size_t count) { mSize -= count; }

    Value* Top(std::size_t count) { return mValues.data() + (mSize - count); }

private:
    std::array<Value, kMaxStack> mValues;
    std::size_t mSize = 0;
};

// Operators answer false for what an interpreter reports as an error. The table names how many
// operands each wants, so that the functions may take them for granted.

template <class Whole64, class RealOp>
bool Arithmetic(Operands& s, Whole64 whole, RealOp real) {
    const Value& a = s.At(1);
    const Value& b = s.At(0);
    if (!a.IsNumber() || !b.IsNumber()) {
        return false;
    }
    const Value result = a.IsInteger() && b.IsInteger()
                             ? Whole(whole(std::int64_t{a.integer}, std::int64_t{b.integer}))
                             : Value::Real(real(a.Number(), b.Number()));
    s.Drop(1);
    s.At(0) = result;
    return std::isfinite(result.Number());
}

template <class RealOp>
bool RealBinary(Operands& s, RealOp real) {
    if (!s.At(0).IsNumber() || !s.At(1).IsNumber()) {
        return false;
    }
    const double result = real(s.At(1).Number(), s.At(0).Number());
    s.Drop(1);
    s.At(0) = Value::Real(result);
    return std::isfinite(result);
}

template <class RealOp>
bool RealUnary(Operands& s, RealOp real) {
    if (!s.At(0).IsNumber()) {
        return false;
    }
    const double result = real(s.At(0).Number());
    s.At(0) = Value::Real(result);
    return std::isfinite(result);
}

/// Keeps integers as they are and sends reals through `real`.
template <class RealOp>
bool Rounding(Operands& s, RealOp real) {
    return s.At(0).IsInteger() || RealUnary(s, real);
}

template <class IntegerOp>
bool IntegerBinary(Operands& s, IntegerOp operation) {
    const Value a = s.At(1);
    const Value b = s.At(0);
    if (!a.IsInteger() || !b.IsInteger() || b.integer == 0) {
        return false;
    }
    s.Drop(1);
    s.At(0) = Whole(operation(std::int64_t{a.integer}, std::int64_t{b.integer}));
    return true;
}

template <class BitOp>
bool Logical(Operands& s, BitOp operation) {
    const Value a = s.At(1);
    const Value b = s.At(0);
    if (a.kind != b.kind || a.kind == Kind::kReal) {
        return false;
    }
    s.Drop(1);
    s.At(0).integer = operation(a.integer, b.integer);
    return true;
}

template <class Order>
bool Comparison(Operands& s, Order order) {
    if (!s.At(0).IsNumber() || !s.At(1).IsNumber()) {
        return false;
    }
    const bool result = order(s.At(1).Number(), s.At(0).Number());
    s.Drop(1);
    s.At(0) = Value::Truth(result);
    return true;
}

bool Equality(Operands& s, bool wanted) {
    const Value& a = s.At(1);
    const Value& b = s.At(0);
    const bool equal = a.IsNumber() && b.IsNumber() ? a.Number() == b.Number()
                                                    : a.kind == b.kind && a.integer == b.integer;
    s.Drop(1);
    s.At(0) = Value::Truth(equal == wanted);
    return true;
}

double Degrees(double radians) {
    return radians * 180.0 / std::numbers::pi;
}

double Radians(double degrees) {
    return std::remainder(degrees, 360.0) * std::numbers::pi / 180.0;
}

double ArcTangent(double numerator, double denominator) {
    if (numerator == 0.0 && denominator == 0.0) {
        return kNoNumber;
    }
    const double angle = Degrees(std::atan2(numerator, denominator));
    return angle < 0.0 ? angle + 360.0 : angle;
}

bool Abs(Operands& s) {
    Value& v = s.At(0);
    if (v.IsInteger()) {
        v = Whole(std::abs(std::int64_t{v.integer}));
        return true;
    }
    return RealUnary(s, [](double x) { return std::abs(x); });
}

bool Neg(Operands& s) {
    Value& v = s.At(0);
    if (v.IsInteger()) {
        v = Whole(-std::int64_t{v.integer});
        return true;
    }
    return RealUnary(s, [](double x) { return -x; });
}

bool Not(Operands& s) {
    Value& v = s.At(0);
    if (v.kind == Kind::kReal) {
        return false;
    }
    v.integer = v.IsInteger() ? ~v.integer : 1 - v.integer;
    return true;
}

bool Cvi(Operands& s) {
    Value& v = s.At(0);
    if (v.kind != Kind::kReal) {
        return v.IsInteger();
    }
    const double whole = std::trunc(v.real);
    if (!(whole >= std::numeric_limits<std::int32_t>::min() &&
          whole <= std::numeric_limits<std::int32_t>::max())) {
        return false;
    }
    v = Value::Integer(static_cast<std::int32_t>(whole));
    return true;
}

bool BitShift(Operands& s) {
    const Value shift = s.At(0);
    const Value value = s.At(1);
    if (!shift.IsInteger() || !value.IsInteger()) {
        return false;
    }
    auto bits = static_cast<std::uint32_t>(value.integer);
    if (shift.integer >= 32 || shift.integer <= -32) {
        bits = 0;
    } else if (shift.integer >= 0) {
        bits <<= static_cast<std::uint32_t>(shift.integer);
    } else {
        bits >>= static_cast<std::uint32_t>(-shift.integer);
    }
    s.Drop(1);
    s.At(0) = Value::Integer(static_cast<std::int32_t>(bits));
    return true;
}

bool Dup(Operands& s) {
    return s.Push(s.At(0));
}

bool Pop(Operands& s) {
    s.Drop(1);
    return true;
}

bool Exch(Operands& s) {
    std::swap(s.At(0), s.At(1));
    return true;
}

/// Takes a count off the stack that must not exceed what lies below it.
bool TakeCount(Operands& s, std::size_t& count) {
    const Value top = s.At(0);
    if (!top.IsInteger() || top.integer < 0 ||
        static_cast<std::size_t>(top.integer) > s.Size() - 1) {
        return false;
    }
    count = static_cast<std::size_t>(top.integer);
    s.Drop(1);
    return true;
}

bool Copy(Operands& s) {
    std::size_t count = 0;
    if (!TakeCount(s, count)) {
        return false;
    }
    for (std::size_t i = 0; i < count; ++i) {
        if (!s.Push(s.At(count - 1))) {
            return false;
        }
    }
    return true;
}

bool Index(Operands& s) {
    std::size_t depth = 0;
    return TakeCount(s, depth) && depth < s.Size() && s.Push(s.At(depth));
}

bool Roll(Operands& s) {
    const Value times = s.At(0);
    if (!times.IsInteger()) {
        return false;
    }
    s.Drop(1);
    std::size_t count = 0;
    if (!TakeCount(s, count)) {
        return false;
    }
    if (count > 1) {
        const auto n = static_cast<std::int64_t>(count);
        const std::int64_t left = ((-std::int64_t{times.integer}) % n + n) % n;
        Value* first = s.Top(count);
        std::rotate(first, first + left, first + n);
    }
    return true;
}

bool Sqrt(Operands& s) {
    return RealUnary(s, [](double x) { return std::sqrt(x); });
}

struct Operator {
    std::string_view name;
    std::size_t operands;
    bool (*run)(Operands&);
};

// In the order of the names, which the parser searches.
constexpr std::array kOperators{
    Operator{"abs", 1, Abs},
    Operator{"add", 2, [](Operands& s) { return Arithmetic(s, std::plus<>(), std::plus<>()); }},
    Operator{"and", 2, [](Operands& s) { return Logical(s, std::bit_and<>()); }},
    Operator{"atan", 2, [](Operands& s) { return RealBinary(s, ArcTangent); }},
    Operator{"bitshift", 2, BitShift},
    Operator{"ceiling", 1,
             [](Operands& s) { return Rounding(s, [](double x) { return std::ceil(x); }); }},
    Operator{"copy", 1, Copy},
    Operator{
        "cos", 1,
        [](Operands& s) { return RealUnary(s, [](double x) { return std::cos(Radians(x)); }); }},
    Operator{"cvi", 1, Cvi},
    Operator{"cvr", 1, [](Operands& s) { return RealUnary(s, [](double x) { return x; }); }},
    Operator{"div", 2, [](Operands& s) { return RealBinary(s, std::divides<>()); }},
    Operator{"dup", 1, Dup},
    Operator{"eq", 2, [](Operands& s) { return Equality(s, true); }},
    Operator{"exch", 2, Exch},
    Operator{"exp", 2,
             [](Operands& s) {
                 return RealBinary(s, [](double base, double e) { return std::pow(base, e); });
             }},
    Operator{"floor", 1,
             [](Operands& s) { return Rounding(s, [](double x) { return std::floor(x); }); }},
    Operator{"ge", 2, [](Operands& s) { return Comparison(s, std::greater_equal<>()); }},
    Operator{"gt", 2, [](Operands& s) { return Comparison(s, std::greater<>()); }},
    Operator{"idiv", 2, [](Operands& s) { return IntegerBinary(s, std::divides<>()); }},
    Operator{"index", 1, Index},
    Operator{"le", 2, [](Operands& s) { return Comparison(s, std::less_equal<>()); }},
    Operator{"ln", 1,
             [](Operands& s) { return RealUnary(s, [](double x) { return std::log(x); }); }},
    Operator{"log", 1,
             [](Operands& s) { return RealUnary(s, [](double x) { return std::log10(x); }); }},
    Operator{"lt", 2, [](Operands& s) { return Comparison(s, std::less<>()); }},
    Operator{"mod", 2, [](Operands& s) { return IntegerBinary(s, std::modulus<>()); }},
    Operator{"mul", 2,
             [](Operands& s) { return Arithmetic(s, std::multiplies<>(), std::multiplies<>()); }},
    Operator{"ne", 2, [](Operands& s) { return Equality(s, false); }},
    Operator{"neg", 1, Neg},
    Operator{"not", 1, Not},
    Operator{"or", 2, [](Operands& s) { return Logical(s, std::bit_or<>()); }},
    Operator{"pop", 1, Pop},
    Operator{"roll", 2, Roll},
    Operator{"round", 1,
             [](Operands& s) { return Rounding(s, [](double x) { return std::floor(x + 0.5); }); }},
    Operator{
        "sin", 1,
        [](Operands& s) { return RealUnary(s, [](double x) { return std::sin(Radians(x)); }); }},
    Operator{"sqrt", 1, Sqrt},
    Operator{"sub", 2, [](Operands& s) { return Arithmetic(s, std::minus<>(), std::minus<>()); }},
    Operator{"truncate", 1,
             [](Operands& s) { return Rounding(s, [](double x) { return std::trunc(x); }); }},
    Operator{"xor", 2, [](Operands& s) { return Logical(s, std::bit_xor<>()); }},
};

const Operator* FindOperator(std::string_view name) {
    const auto* found = std::lower_bound(
        kOperators.begin(), kOperators.end(), name,
        [](const Operator& candidate, std::string_view wanted) { return candidate.name < wanted; });
    return found != kOperators.end() && found->name == name ? found : nullptr;
}

bool IsSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\0';
}

}  // namespace

/// Splits the text into tokens and compiles procedures by recursive descent.
class CalculatorParser {
public:
    CalculatorParser(std::string_view text, CalculatorProgram& program, std::string& error)
        : mText(text), mProgram(program), mError(error) {}

    bool Parse() {
        if (mText.size() > kMaxProgramBytes) {
            return Fail("a calculator program that is too long");
        }
        Advance();
        const bool braced = mToken == "{";
        if (braced) {
            Advance();
        }
        if (!ParseBlock(0)) {
            return false;
        }
        if (braced != (mToken == "}")) {
            return Fail("a calculator program whose braces do not match");
        }
        Advance();
        return mToken.empty() || Fail("a calculator program with something behind its end");
    }

private:
    using Instruction = CalculatorProgram::Instruction;

    bool Fail(const char* reason) {
        mError = reason;
        return false;
    }

    void SkipSpace() {
        while (mAt < mText.size() && (IsSpace(mText[mAt]) || mText[mAt] == '%')) {
            if (mText[mAt] == '%') {
                mAt = std::min(mText.find_first_of("\r\n", mAt), mText.size());
            } else {
                ++mAt;
            }
        }
    }

    void Advance() {
        SkipSpace();
        ++mTokens;
        std::size_t end = mAt;
        if (end < mText.size() && (mText[end] == '{' || mText[end] == '}')) {
            ++end;
        } else {
            while (end < mText.size() && !IsSpace(mText[end]) && mText[end] != '{' &&
                   mText[end] != '}' && mText[end] != '%') {
                ++end;
            }
        }
        mToken = mText.substr(mAt, end - mAt);
        mAt = end;
    }

    void AppendText(std::string_view token) {
        std::string& out = mProgram.mText;
        const bool isBrace = token == "{" || token == "}";
        if (!out.empty() && !isBrace && out.back() != '{' && out.back() != '}') {
            out.push_back(' ');
        }
        out.append(token);
    }

    void Emit(std::uint8_t code, std::int32_t integer = 0, double real = 0.0) {
        mProgram.mCode.push_back({code, integer, real});
    }

    /// Parses up to the closing brace or the end, which stays the current token.
    bool ParseBlock(std::int32_t depth) {
        while (!mToken.empty() && mToken != "}") {
            if (mTokens > kMaxTokens) {
                return Fail("a calculator program of too many tokens");
            }
            const bool parsed = mToken == "{" ? ParseConditional(depth) : ParseSimple();
            if (!parsed) {
                return false;
            }
        }
        return true;
    }

    bool ParseSimple() {
        if (mToken == "true" || mToken == "false") {
            Emit(kPushTruth, mToken == "true" ? 1 : 0);
        } else if (const Operator* found = FindOperator(mToken)) {
            Emit(static_cast<std::uint8_t>(kFirstOperator + (found - kOperators.data())));
        } else if (!ParseNumber()) {
            return Fail("a calculator program with an unknown operator");
        }
        AppendText(mToken);
        Advance();
        return true;
    }

    bool ParseNumber() {
        std::string_view digits = mToken;
        if (digits.size() > 1 && digits.front() == '+' && digits[1] != '-') {
            digits.remove_prefix(1);
        }
        const char* end = digits.data() + digits.size();
        std::int32_t integer = 0;
        const auto whole = std::from_chars(digits.data(), end, integer);
        if (whole.ec == std::errc() && whole.ptr == end) {
            Emit(kPushInteger, integer);
            return true;
        }
        double real = 0.0;
        const auto parsed = std::from_chars(digits.data(), end, real);
        const bool isNumber = parsed.ec == std::errc() && parsed.ptr == end && std::isfinite(real);
        if (isNumber) {
            Emit(kPushReal, 0, real);
        }
        return isNumber;
    }

    bool ParseProcedure(std::int32_t depth) {
        if (depth >= kMaxBraces) {
            return Fail("a calculator program nested too deep");
        }
        AppendText("{");
        Advance();
        if (!ParseBlock(depth + 1)) {
            return false;
        }
        if (mToken != "}") {
            return Fail("a calculator program whose braces do not match");
        }
        AppendText("}");
        Advance();
        return true;
    }

    /// `{…} if` or `{…} {…} ifelse`.
    bool ParseConditional(std::int32_t depth) {
        const std::size_t test = mProgram.mCode.size();
        Emit(kJumpIfFalse);
        if (!ParseProcedure(depth)) {
            return false;
        }
        const bool hasElse = mToken == "{";
        std::size_t jump = 0;
        if (hasElse) {
            jump = mProgram.mCode.size();
            Emit(kJump);
        }
        Patch(test);
        if (hasElse) {
            if (!ParseProcedure(depth)) {
                return false;
            }
            Patch(jump);
        }
        if (mToken != (hasElse ? "ifelse" : "if")) {
            return Fail("a calculator program with a procedure that no operator uses");
        }
        AppendText(mToken);
        Advance();
        return true;
    }

    void Patch(std::size_t jump) {
        mProgram.mCode[jump].integer = static_cast<std::int32_t>(mProgram.mCode.size());
    }

    std::string_view mText;
    CalculatorProgram& mProgram;
    std::string& mError;
    std::string_view mToken;
    std::size_t mAt = 0;
    std::size_t mTokens = 0;
};

std::optional<CalculatorProgram> CalculatorProgram::Parse(std::string_view text,
                                                          std::string& error) {
    CalculatorProgram program;
    if (!CalculatorParser(text, program, error).Parse()) {
        return std::nullopt;
    }
    return program;
}

CalculatorProgram::Outcome CalculatorProgram::Run(const float* in, std::int32_t inputs, float* out,
                                                  std::int32_t outputs) const {
    Operands stack;
    for (std::int32_t i = 0; i < inputs; ++i) {
        stack.Push(Value::Real(in[i]));
    }
    for (std::size_t at = 0; at < mCode.size(); ++at) {
        const Instruction& instruction = mCode[at];
        bool done = true;
        if (instruction.code >= kFirstOperator) {
            const Operator& known = kOperators[instruction.code - kFirstOperator];
            done = stack.Size() >= known.operands && known.run(stack);
        } else if (instruction.code <= kPushTruth) {
            const auto kind = instruction.code == kPushInteger ? Kind::kInteger
                              : instruction.code == kPushReal  ? Kind::kReal
                                                               : Kind::kTruth;
            done = stack.Push({kind, instruction.integer, instruction.real});
        } else {
            const bool tests = instruction.code == kJumpIfFalse;
            done = !tests || (stack.Size() > 0 && stack.At(0).kind == Kind::kTruth);
            const bool jumps = !tests || (done && stack.At(0).integer == 0);
            if (tests && done) {
                stack.Drop(1);
            }
            at = jumps ? static_cast<std::size_t>(instruction.integer) - 1 : at;
        }
        if (!done) {
            return Outcome::kFailed;
        }
    }
    const auto count = static_cast<std::size_t>(outputs);
    if (stack.Size() < count) {
        return Outcome::kFailed;
    }
    const Value* results = stack.Top(count);
    if (!std::all_of(results, results + count, [](const Value& v) { return v.IsNumber(); })) {
        return Outcome::kFailed;
    }
    std::transform(results, results + count, out,
                   [](const Value& v) { return static_cast<float>(v.Number()); });
    return stack.Size() == count ? Outcome::kDone : Outcome::kLeftovers;
}

}  // namespace VANTIX::HOST
