// SPDX-License-Identifier: MIT
#include "host/color/calculatorfit.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <span>
#include <utility>

#include "host/color/functionbase.h"
#include "host/color/tintlimits.h"

namespace VANTIX::HOST {

namespace {

constexpr std::size_t kMaxMultilinearInputs = 8;
constexpr float kProductTolerance = 1.0F / 64.0F;

using Tints = std::array<float, kMaxFunctionInputs>;
using Outputs = std::array<float, kMaxFunctionOutputs>;

/// Writes a procedure that finds n tints on the stack and leaves the outputs in their place.
class ProgramWriter {
public:
    explicit ProgramWriter(std::size_t inputs) : mInputs(inputs) {}

    void Word(std::string_view word) {
        if (!mText.empty()) {
            mText += ' ';
        }
        mText += word;
    }

    void Push(float value) {
        std::array<char, 32> text{};
        const auto end = std::to_chars(text.data(), text.data() + text.size(), value,
                                       std::chars_format::general, 5);
        Word({text.data(), static_cast<std::size_t>(end.ptr - text.data())});
        ++mAbove;
    }

    void PushTint(std::size_t input) {
        Word(std::to_string(mAbove + mInputs - 1 - input));
        Word("index");
        ++mAbove;
    }

    /// An operator of two operands and one result.
    void Combine(std::string_view name) {
        Word(name);
        --mAbove;
    }

    std::string Finish(std::size_t outputs) {
        Word(std::to_string(mInputs + outputs));
        Word(std::to_string(outputs));
        Word("roll");
        for (std::size_t i = 0; i < mInputs; ++i) {
            Word("pop");
        }
        return std::move(mText);
    }

    std::size_t Length() const { return mText.size(); }

private:
    std::size_t mInputs;
    std::size_t mAbove = 0;  ///< values above the tints
    std::string mText;
};

/// Coefficients of the polynomial through the corner values: bit i of an index stands for tint i.
std::vector<float> MultilinearCoefficients(std::vector<float> corners, float scale) {
    for (std::size_t bit = 1; bit < corners.size(); bit *= 2) {
        for (std::size_t mask = 0; mask < corners.size(); ++mask) {
            if ((mask & bit) != 0) {
                corners[mask] -= corners[mask ^ bit];
            }
        }
    }
    const float least = scale * 2e-6F;
    std::replace_if(
        corners.begin(), corners.end(), [least](float c) { return std::abs(c) < least; }, 0.0F);
    return corners;
}

bool AreZero(std::span<const float> values) {
    return std::all_of(values.begin(), values.end(), [](float v) { return v == 0.0F; });
}

/// Leaves the polynomial's value on the stack, by Horner's rule in each tint in turn.
void WritePolynomial(ProgramWriter& out, std::span<const float> coefficients) {
    if (coefficients.size() == 1) {
        out.Push(coefficients.front());
        return;
    }
    const auto without = coefficients.first(coefficients.size() / 2);
    const auto with = coefficients.last(coefficients.size() / 2);
    if (AreZero(with)) {
        WritePolynomial(out, without);
        return;
    }
    const bool hasRest = !AreZero(without);
    if (hasRest) {
        WritePolynomial(out, without);
    }
    WritePolynomial(out, with);
    out.PushTint(static_cast<std::size_t>(std::countr_zero(with.size())));
    out.Combine("mul");
    if (hasRest) {
        out.Combine("add");
    }
}

std::string MultilinearProgram(const COLOR::IColorFunction& function) {
    const auto inputs = static_cast<std::size_t>(function.GetInputCount());
    const auto outputs = static_cast<std::size_t>(function.GetOutputCount());
    const std::size_t count = std::size_t{1} << inputs;
    std::vector<std::vector<float>> corners(outputs, std::vector<float>(count));
    for (std::size_t mask = 0; mask < count; ++mask) {
        Tints tints{};
        for (std::size_t i = 0; i < inputs; ++i) {
            tints[i] = ((mask >> i) & 1U) != 0 ? 1.0F : 0.0F;
        }
        Outputs values{};
        function.Evaluate(tints.data(), values.data());
        for (std::size_t k = 0; k < outputs; ++k) {
            corners[k][mask] = values[k];
        }
    }
    ProgramWriter out(inputs);
    for (std::size_t k = 0; k < outputs && out.Length() <= kMaxProcedureText; ++k) {
        const auto [low, high] = std::minmax_element(corners[k].begin(), corners[k].end());
        const float scale = std::max(1.0F, *high - *low);
        WritePolynomial(out, MultilinearCoefficients(corners[k], scale));
    }
    return out.Finish(outputs);
}

/// What each ink alone does, and how inks are taken together in each output.
class InkModel {
public:
    enum class Rule : std::uint8_t { kAdd, kMultiply, kMultiplyComplements };

    explicit InkModel(const COLOR::IColorFunction& function)
        : mInputs(static_cast<std::size_t>(function.GetInputCount())),
          mOutputs(static_cast<std::size_t>(function.GetOutputCount())),
          mSolids(mInputs) {
        Tints tints{};
        function.Evaluate(tints.data(), mPaper.data());
        for (std::size_t i = 0; i < mInputs; ++i) {
            tints[i] = 1.0F;
            function.Evaluate(tints.data(), mSolids[i].data());
            tints[i] = 0.0F;
        }
    }

    float Predict(Rule rule, const Tints& tints, std::size_t output) const {
        const float paper = mPaper[output];
        float sum = paper;
        float product = 1.0F;
        for (std::size_t i = 0; i < mInputs; ++i) {
            const float solid = mSolids[i][output];
            sum += tints[i] * (solid - paper);
            product *= 1.0F - tints[i] * Absorption(rule, solid, paper);
        }
        if (rule == Rule::kAdd) {
            return sum;
        }
        return rule == Rule::kMultiply ? paper * product : 1.0F - product;
    }

    void Write(ProgramWriter& out, Rule rule, std::size_t output) const {
        const float paper = mPaper[output];
        out.Push(rule == Rule::kMultiplyComplements ? 1.0F : paper);
        for (std::size_t i = 0; i < mInputs; ++i) {
            const float solid = mSolids[i][output];
            const float factor =
                rule == Rule::kAdd ? solid - paper : Absorption(rule, solid, paper);
            if (factor == 0.0F) {
                continue;
            }
            if (rule != Rule::kAdd) {
                out.Push(1.0F);
            }
            out.PushTint(i);
            out.Push(factor);
            out.Combine("mul");
            out.Combine(rule == Rule::kAdd ? "add" : "sub");
            if (rule != Rule::kAdd) {
                out.Combine("mul");
            }
        }
        if (rule == Rule::kMultiplyComplements) {
            out.Word("1 exch sub");
        }
    }

    /// For each output the rule that is nearest to the function at scattered points.
    std::array<Rule, kMaxFunctionOutputs> Choose(const COLOR::IColorFunction& function) const {
        std::array<Rule, kMaxFunctionOutputs> rules{};
        Outputs sumErrors{};
        Outputs productErrors{};
        ScatteredTints scattered(mInputs);
        for (std::size_t i = 0; i < scattered.Count(); ++i) {
            const Tints tints = scattered.Next();
            Outputs values{};
            function.Evaluate(tints.data(), values.data());
            for (std::size_t k = 0; k < mOutputs; ++k) {
                rules[k] = mPaper[k] == 0.0F ? Rule::kMultiplyComplements : Rule::kMultiply;
                sumErrors[k] += std::abs(Predict(Rule::kAdd, tints, k) - values[k]);
                productErrors[k] += std::abs(Predict(rules[k], tints, k) - values[k]);
            }
        }
        for (std::size_t k = 0; k < mOutputs; ++k) {
            rules[k] = sumErrors[k] < productErrors[k] ? Rule::kAdd : rules[k];
        }
        return rules;
    }

    bool HasPlainPaper() const {
        return std::all_of(mPaper.begin(), mPaper.begin() + static_cast<std::ptrdiff_t>(mOutputs),
                           [](float v) { return std::abs(v) <= kProductTolerance; });
    }

private:
    static float Absorption(Rule rule, float solid, float paper) {
        return rule == Rule::kMultiply ? 1.0F - solid / paper : solid;
    }

    std::size_t mInputs;
    std::size_t mOutputs;
    Outputs mPaper{};
    std::vector<Outputs> mSolids;
};

std::string InkModelProgram(const COLOR::IColorFunction& function) {
    const auto outputs = static_cast<std::size_t>(function.GetOutputCount());
    const InkModel model(function);
    const auto rules = model.Choose(function);
    ProgramWriter out(static_cast<std::size_t>(function.GetInputCount()));
    for (std::size_t k = 0; k < outputs; ++k) {
        model.Write(out, rules[k], k);
    }
    return out.Finish(outputs);
}

bool IsNearProduct(const InkModel& model, const COLOR::IColorFunction& function,
                   const Tints& tints) {
    Outputs values{};
    function.Evaluate(tints.data(), values.data());
    for (std::size_t k = 0; k < static_cast<std::size_t>(function.GetOutputCount()); ++k) {
        const float product = model.Predict(InkModel::Rule::kMultiplyComplements, tints, k);
        if (std::abs(product - values[k]) > kProductTolerance) {
            return false;
        }
    }
    return true;
}

}  // namespace

bool IsProductOfInks(const COLOR::IColorFunction& function, const std::int32_t* sizes) {
    constexpr std::size_t kMaxGridPoints = 65536;
    const auto inputs = static_cast<std::size_t>(function.GetInputCount());
    const InkModel model(function);
    std::size_t points = 1;
    for (std::size_t i = 0; i < inputs && points <= kMaxGridPoints; ++i) {
        points *= static_cast<std::size_t>(sizes[i]);
    }
    if (!model.HasPlainPaper()) {
        return false;
    }
    const bool visitsAll = points <= kMaxGridPoints;
    ScatteredTints scattered(inputs);
    for (std::size_t point = 0; point < (visitsAll ? points : scattered.Count()); ++point) {
        Tints tints{};
        std::size_t rest = point;
        for (std::size_t i = 0; i < inputs && visitsAll; ++i) {
            const auto size = static_cast<std::size_t>(sizes[i]);
            tints[i] =
                size < 2 ? 0.0F : static_cast<float>(rest % size) / static_cast<float>(size - 1);
            rest /= size;
        }
        if (!IsNearProduct(model, function, visitsAll ? tints : scattered.Next())) {
            return false;
        }
    }
    return true;
}

FunctionPtr FitCalculator(const COLOR::IColorFunction& function) {
    const auto inputs = static_cast<std::size_t>(function.GetInputCount());
    const auto outputs = static_cast<std::size_t>(function.GetOutputCount());
    std::string program =
        inputs <= kMaxMultilinearInputs ? MultilinearProgram(function) : std::string();
    if (program.empty() || program.size() > kMaxProcedureText) {
        program = InkModelProgram(function);
    }
    FunctionShape shape;
    for (std::size_t i = 0; i < inputs; ++i) {
        shape.domain.insert(shape.domain.end(), {0.0F, 1.0F});
    }
    if (const float* range = function.GetRange()) {
        shape.range.assign(range, range + 2 * outputs);
    } else {
        for (std::size_t k = 0; k < outputs; ++k) {
            shape.range.insert(shape.range.end(), {0.0F, 1.0F});
        }
    }
    std::string error;
    return MakeCalculatorFunction(std::move(shape), program, error);
}

}  // namespace VANTIX::HOST
