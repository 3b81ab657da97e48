// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <optional>
#include <string_view>
#include <utility>

#include "host/color/calculator.h"
#include "host/color/calculatorfit.h"
#include "host/color/functionbase.h"
#include "host/color/linearfit.h"
#include "host/color/tintlimits.h"

namespace VANTIX::HOST {

namespace {

using COLOR::IColorFunction;

// Bounds of what the plug-in writes for one output and around one piece, numbers at their longest.
constexpr std::size_t kLinearText = 50;
constexpr std::size_t kPowerText = 92;
constexpr std::size_t kPieceText = 120;

constexpr std::size_t kMaxPieces = 24;
constexpr int kProbes = 64;

/// An input interval; the ends may come in any order.
struct Interval {
    float from;
    float to;

    float Low() const { return std::min(from, to); }

    float High() const { return std::max(from, to); }

    float At(int probe) const {
        return from + (to - from) * static_cast<float>(probe) / static_cast<float>(kProbes);
    }
};

bool Covers(const float* domain, const Interval& inputs) {
    return domain != nullptr && domain[0] <= inputs.Low() && domain[1] >= inputs.High();
}

/// Whether the range would clip one of the values: a procedure does not clip.
bool Clips(const float* range, const float* values, std::int32_t count) {
    constexpr float kSlack = 1e-6F;
    for (std::size_t k = 0; range != nullptr && k < static_cast<std::size_t>(count); ++k) {
        const auto [low, high] = Bounds(range, k);
        if (values[k] < low - kSlack || values[k] > high + kSlack) {
            return true;
        }
    }
    return false;
}

/// Whether a program can stand in the output as it is: the plug-in takes off braces that are the
/// first and the last characters, and a comment would hide what follows it on its line.
bool IsPlainProgram(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t\r\n\f");
    if (text.find('%') != std::string_view::npos || first == std::string_view::npos) {
        return false;
    }
    if (text[first] != '{') {
        return true;
    }
    const std::size_t last = text.find_last_of('}');
    return first == 0 && text.find_first_not_of("{} \t\r\n\f") != std::string_view::npos &&
           text.find_first_not_of(" \t\r\n\f", last + 1) == std::string_view::npos;
}

std::string_view ProgramOf(const IColorFunction& function) {
    const auto* calculator =
        FindInterface<COLOR::ICalculatorFunction>(&function, COLOR::IID_ICALCULATORFUNCTION);
    return calculator == nullptr ? std::string_view() : std::string_view(calculator->GetProgram());
}

/// An upper bound of the characters that the procedure takes.
std::size_t ProcedureText(const IColorFunction& function) {
    const auto outputs = static_cast<std::size_t>(function.GetOutputCount());
    if (const auto* exponential = FindInterface<COLOR::IExponentialFunction>(
            &function, COLOR::IID_IEXPONENTIALFUNCTION)) {
        const bool isLinear = exponential->GetExponent() == 1.0F;
        return outputs * (4 + (isLinear ? kLinearText : kPowerText));
    }
    std::size_t text = ProgramOf(function).size();
    const auto* stitching =
        FindInterface<COLOR::IStitchingFunction>(&function, COLOR::IID_ISTITCHINGFUNCTION);
    for (std::int32_t i = 0; stitching != nullptr && i < stitching->GetFunctionCount(); ++i) {
        text += kPieceText + ProcedureText(*stitching->GetFunction(i));
    }
    return text;
}

bool IsWrittenExactly(const IColorFunction& function, const Interval& inputs);

bool IsExact(const COLOR::IExponentialFunction& function, const Interval& inputs) {
    const float exponent = function.GetExponent();
    // Zero has no power of zero, and a negative number none of most.
    const bool hasPower = exponent == 1.0F || (exponent > 0.0F && inputs.Low() >= 0.0F);
    if (!hasPower || !Covers(function.GetDomain(), inputs)) {
        return false;
    }
    for (const float x : {inputs.from, inputs.to}) {
        const float power = exponent == 1.0F ? x : std::pow(x, exponent);
        std::array<float, kMaxFunctionOutputs> values{};
        const std::int32_t outputs = function.GetOutputCount();
        for (std::int32_t k = 0; k < outputs; ++k) {
            const float c0 = function.GetC0()[k];
            values[static_cast<std::size_t>(k)] = c0 + power * (function.GetC1()[k] - c0);
        }
        if (Clips(function.GetRange(), values.data(), outputs)) {
            return false;
        }
    }
    return true;
}

bool IsExact(const COLOR::IStitchingFunction& function, const Interval& inputs) {
    if (!Covers(function.GetDomain(), inputs)) {
        return false;
    }
    const std::int32_t count = function.GetFunctionCount();
    float low = function.GetDomain()[0];
    for (std::int32_t i = 0; i < count; ++i) {
        // The text divides by the width of the piece.
        const float high = i + 1 < count ? function.GetBounds()[i] : function.GetDomain()[1];
        Interval encode{0.0F, 1.0F};
        function.GetEncode(i, encode.from, encode.to);
        const IColorFunction& piece = *function.GetFunction(i);
        if (high - low < 1e-6F || !IsWrittenExactly(piece, encode)) {
            return false;
        }
        for (int probe = 0; probe <= kProbes && function.GetRange() != nullptr; ++probe) {
            const float x = encode.At(probe);
            std::array<float, kMaxFunctionOutputs> values{};
            piece.Evaluate(&x, values.data());
            if (Clips(function.GetRange(), values.data(), piece.GetOutputCount())) {
                return false;
            }
        }
        low = high;
    }
    return true;
}

/// Runs the program as an interpreter would, where its results may be spoilt: false after an error,
/// or when values are left over.
bool RunsCleanly(const CalculatorProgram& program, const IColorFunction& function,
                 const float* tints, float* out) {
    return program.Run(tints, function.GetInputCount(), out, function.GetOutputCount()) ==
           CalculatorProgram::Outcome::kDone;
}

bool IsExact(const COLOR::ICalculatorFunction& function, const Interval& inputs) {
    std::string error;
    const auto program = CalculatorProgram::Parse(function.GetProgram(), error);
    if (!program || !IsPlainProgram(function.GetProgram()) ||
        !Covers(function.GetDomain(), inputs)) {
        return false;
    }
    for (int probe = 0; probe <= kProbes; ++probe) {
        const float x = inputs.At(probe);
        std::array<float, kMaxFunctionOutputs> values{};
        if (!RunsCleanly(*program, function, &x, values.data()) ||
            Clips(function.GetRange(), values.data(), function.GetOutputCount())) {
            return false;
        }
    }
    return true;
}

/// Whether the procedure for a function of one input gives its values for these inputs.
bool IsWrittenExactly(const IColorFunction& function, const Interval& inputs) {
    if (const auto* exponential = FindInterface<COLOR::IExponentialFunction>(
            &function, COLOR::IID_IEXPONENTIALFUNCTION)) {
        return IsExact(*exponential, inputs);
    }
    if (const auto* stitching =
            FindInterface<COLOR::IStitchingFunction>(&function, COLOR::IID_ISTITCHINGFUNCTION)) {
        return IsExact(*stitching, inputs);
    }
    const auto* calculator =
        FindInterface<COLOR::ICalculatorFunction>(&function, COLOR::IID_ICALCULATORFUNCTION);
    return calculator != nullptr && IsExact(*calculator, inputs);
}

/// Appends words that clip `count` values on the stack to the bounds that are narrower than [0, 1]:
/// an interpreter itself keeps tints and components within that.
void AppendClips(std::string& out, const float* pairs, std::int32_t count) {
    const auto isNarrow = [](const Bounds& bounds) {
        return bounds.low > 0.0F || bounds.high < 1.0F;
    };
    const auto appendBound = [&out](float bound, const char* test) {
        std::array<char, 32> text{};
        const auto end = std::to_chars(text.data(), text.data() + text.size(), bound);
        const std::string number(text.data(), end.ptr);
        out.append(" dup ").append(number).append(test);
        out.append("{pop ").append(number).append("}if");
    };
    bool isNeeded = false;
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
        isNeeded = isNeeded || isNarrow(Bounds(pairs, i));
    }
    const std::string turn = count > 1 ? " " + std::to_string(count) + " 1 roll" : std::string();
    for (auto i = static_cast<std::size_t>(count); isNeeded && i-- > 0;) {
        const Bounds bounds(pairs, i);
        if (isNarrow(bounds)) {
            appendBound(bounds.low, " lt");
            appendBound(bounds.high, " gt");
        }
        out += turn;
    }
}

/// The program as a procedure that does all that the function does; nothing where an interpreter
/// might fail in it.
std::optional<std::string> ProcedureProgram(const IColorFunction& function) {
    std::string error;
    const auto program = CalculatorProgram::Parse(ProgramOf(function), error);
    if (!program) {
        return std::nullopt;
    }
    const auto inputs = static_cast<std::size_t>(function.GetInputCount());
    ScatteredTints scattered(inputs);
    for (std::size_t i = 0; i < scattered.Count(); ++i) {
        auto tints = scattered.Next();
        for (std::size_t k = 0; k < inputs; ++k) {
            const auto [low, high] = Bounds(function.GetDomain(), k);
            tints[k] = ClipTo(tints[k], low, high);
        }
        std::array<float, kMaxFunctionOutputs> values{};
        if (!RunsCleanly(*program, function, tints.data(), values.data())) {
            return std::nullopt;
        }
    }
    std::string text;
    AppendClips(text, function.GetDomain(), function.GetInputCount());
    text += ' ';
    // A procedure without a word would count as none.
    text += program->Text().empty() ? "cvr" : program->Text();
    AppendClips(text, function.GetRange(), function.GetOutputCount());
    text.erase(0, 1);
    return text;
}

FunctionPtr NormaliseCalculator(const FunctionPtr& tint) {
    const std::optional<std::string> text = ProcedureProgram(*tint);
    if (!text || text->size() > kMaxProcedureText) {
        return nullptr;
    }
    std::string error;
    const std::string_view given = ProgramOf(*tint);
    const auto program = CalculatorProgram::Parse(given, error);
    if (program && *text == program->Text() && IsPlainProgram(given) &&
        given.size() <= kMaxProcedureText) {
        return tint;
    }
    const auto pairs = [](const float* values, std::int32_t count) {
        return std::vector<float>(values, values + 2 * static_cast<std::ptrdiff_t>(count));
    };
    return MakeCalculatorFunction({pairs(tint->GetDomain(), tint->GetInputCount()),
                                   pairs(tint->GetRange(), tint->GetOutputCount())},
                                  *text, error);
}

/// Whether the plug-in's product of inks is right for this table, read over tints from 0 to 1.
bool IsInkTable(const IColorFunction& function) {
    const auto* table =
        FindInterface<COLOR::ISampledFunction>(&function, COLOR::IID_ISAMPLEDFUNCTION);
    return table != nullptr && IsProductOfInks(function, table->GetSizes());
}

}  // namespace

FunctionPtr NormaliseTintFunction(const FunctionPtr& tint, bool alternateIsCMYK) {
    if (!tint) {
        return tint;
    }
    if (!ProgramOf(*tint).empty()) {
        if (FunctionPtr same = NormaliseCalculator(tint)) {
            return same;
        }
    }
    if (tint->GetInputCount() > 1) {
        return alternateIsCMYK && IsInkTable(*tint) ? tint : FitCalculator(*tint);
    }
    if (IsWrittenExactly(*tint, {0.0F, 1.0F}) && ProcedureText(*tint) <= kMaxProcedureText) {
        return tint;
    }
    const auto outputs = static_cast<std::size_t>(tint->GetOutputCount());
    const std::size_t room = kMaxProcedureText / (kPieceText + outputs * (4 + kLinearText));
    return FitLinearPieces(*tint, std::min(room, kMaxPieces));
}

}  // namespace VANTIX::HOST
