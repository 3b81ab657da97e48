// SPDX-License-Identifier: MIT
#include "host/color/functions.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "host/color/calculator.h"
#include "host/color/functionbase.h"

namespace VANTIX::HOST {

namespace {

using COLOR::IColorFunction;

// Counted with repetition: a function that is used twice on every level would otherwise double the
// work of whoever walks the tree.
constexpr std::int32_t kMaxFunctionNodes = 4096;

bool IsWithinLimits(const IColorFunction* function, std::int32_t depth, std::int32_t& nodes) {
    if (depth > kMaxFunctionNesting || ++nodes > kMaxFunctionNodes) {
        return false;
    }
    const auto areMembersWithin = [depth, &nodes](const auto* owner) {
        for (std::int32_t i = 0; owner != nullptr && i < owner->GetFunctionCount(); ++i) {
            if (!IsWithinLimits(owner->GetFunction(i), depth + 1, nodes)) {
                return false;
            }
        }
        return true;
    };
    return areMembersWithin(
               FindInterface<COLOR::IStitchingFunction>(function, COLOR::IID_ISTITCHINGFUNCTION)) &&
           areMembersWithin(
               FindInterface<COLOR::IFunctionArray>(function, COLOR::IID_IFUNCTIONARRAY));
}

bool AreWithinLimits(const std::vector<FunctionPtr>& functions) {
    std::int32_t nodes = 1;
    return std::all_of(functions.begin(), functions.end(), [&nodes](const FunctionPtr& function) {
        return IsWithinLimits(function.Get(), 1, nodes);
    });
}

class ExponentialFunction : public FunctionBase<COLOR::IExponentialFunction> {
public:
    ExponentialFunction(FunctionShape shape, std::vector<float> c0, std::vector<float> c1,
                        float exponent)
        : FunctionBase(COLOR::IID_IEXPONENTIALFUNCTION, std::move(shape),
                       static_cast<std::int32_t>(c0.size())),
          mC0(std::move(c0)),
          mC1(std::move(c1)),
          mExponent(exponent) {}

    const float* GetC0() const override { return mC0.data(); }

    const float* GetC1() const override { return mC1.data(); }

    float GetExponent() const override { return mExponent; }

protected:
    void Compute(const float* in, float* out) const override {
        const float power = mExponent == 1.0F ? in[0] : std::pow(in[0], mExponent);
        for (std::size_t i = 0; i < mC0.size(); ++i) {
            out[i] = mC0[i] + power * (mC1[i] - mC0[i]);
        }
    }

private:
    std::vector<float> mC0;
    std::vector<float> mC1;
    float mExponent;
};

class StitchingFunction : public FunctionBase<COLOR::IStitchingFunction> {
public:
    StitchingFunction(FunctionShape shape, std::vector<FunctionPtr> functions,
                      std::vector<float> bounds, std::vector<float> encode)
        : FunctionBase(COLOR::IID_ISTITCHINGFUNCTION, std::move(shape),
                       functions.front()->GetOutputCount()),
          mFunctions(std::move(functions)),
          mBounds(std::move(bounds)),
          mEncode(std::move(encode)) {}

    std::int32_t GetFunctionCount() const override {
        return static_cast<std::int32_t>(mFunctions.size());
    }

    const IColorFunction* GetFunction(std::int32_t index) const override {
        return index >= 0 && index < GetFunctionCount()
                   ? mFunctions[static_cast<std::size_t>(index)].Get()
                   : nullptr;
    }

    const float* GetBounds() const override { return mBounds.data(); }

    void GetEncode(std::int32_t index, float& low, float& high) const override {
        if (index >= 0 && index < GetFunctionCount()) {
            low = mEncode[2 * static_cast<std::size_t>(index)];
            high = mEncode[2 * static_cast<std::size_t>(index) + 1];
        }
    }

protected:
    void Compute(const float* in, float* out) const override {
        const float x = in[0];
        const auto piece = static_cast<std::size_t>(
            std::upper_bound(mBounds.begin(), mBounds.end(), x) - mBounds.begin());
        const float low = piece == 0 ? Shape().domain[0] : mBounds[piece - 1];
        const float high = piece == mBounds.size() ? Shape().domain[1] : mBounds[piece];
        const float e0 = mEncode[2 * piece];
        const float e1 = mEncode[2 * piece + 1];
        const float encoded = high > low ? e0 + (x - low) * (e1 - e0) / (high - low) : e0;
        mFunctions[piece]->Evaluate(&encoded, out);
    }

private:
    std::vector<FunctionPtr> mFunctions;
    std::vector<float> mBounds;
    std::vector<float> mEncode;
};

class FunctionArray : public FunctionBase<COLOR::IFunctionArray> {
public:
    FunctionArray(FunctionShape shape, std::vector<FunctionPtr> functions)
        : FunctionBase(COLOR::IID_IFUNCTIONARRAY, std::move(shape),
                       static_cast<std::int32_t>(functions.size())),
          mFunctions(std::move(functions)) {}

    std::int32_t GetFunctionCount() const override { return GetOutputCount(); }

    const IColorFunction* GetFunction(std::int32_t index) const override {
        return index >= 0 && index < GetOutputCount()
                   ? mFunctions[static_cast<std::size_t>(index)].Get()
                   : nullptr;
    }

protected:
    void Compute(const float* in, float* out) const override {
        for (std::size_t i = 0; i < mFunctions.size(); ++i) {
            mFunctions[i]->Evaluate(in, out + i);
        }
    }

private:
    std::vector<FunctionPtr> mFunctions;
};

class CalculatorFunction : public FunctionBase<COLOR::ICalculatorFunction> {
public:
    CalculatorFunction(FunctionShape shape, std::int32_t outputs, std::string_view text,
                       CalculatorProgram program)
        : FunctionBase(COLOR::IID_ICALCULATORFUNCTION, std::move(shape), outputs),
          mText(text),
          mProgram(std::move(program)) {}

    const char* GetProgram() const override { return mText.c_str(); }

protected:
    void Compute(const float* in, float* out) const override {
        const auto outcome = mProgram.Run(in, GetInputCount(), out, GetOutputCount());
        if (outcome == CalculatorProgram::Outcome::kFailed) {
            std::fill(out, out + GetOutputCount(), kNoNumber);
        }
    }

private:
    std::string mText;
    CalculatorProgram mProgram;
};

bool CheckStitching(const FunctionShape& shape, const std::vector<FunctionPtr>& functions,
                    const std::vector<float>& bounds, const std::vector<float>& encode,
                    std::string& error) {
    if (!CheckShape(shape, false, error)) {
        return false;
    }
    const std::size_t count = functions.size();
    if (shape.domain.size() != 2 || count == 0 || bounds.size() != count - 1 ||
        encode.size() != 2 * count) {
        error = "a stitching function with wrong counts of functions, bounds or encodings";
        return false;
    }
    float earlier = shape.domain[0];
    for (const float bound : bounds) {
        if (!(bound >= earlier && bound <= shape.domain[1])) {
            error = "a stitching function whose bounds are not in order";
            return false;
        }
        earlier = bound;
    }
    for (const FunctionPtr& function : functions) {
        if (!function || function->GetInputCount() != 1 || !functions.front() ||
            function->GetOutputCount() != functions.front()->GetOutputCount()) {
            error = "a stitching function of unlike functions";
            return false;
        }
    }
    const auto outputs = static_cast<std::size_t>(functions.front()->GetOutputCount());
    if (!AreFinite(encode) || (!shape.range.empty() && shape.range.size() != 2 * outputs) ||
        !AreWithinLimits(functions)) {
        error = "a stitching function with a bad encoding or range, or nested too deep";
        return false;
    }
    return true;
}

}  // namespace

bool AreFinite(const std::vector<float>& values) {
    return std::all_of(values.begin(), values.end(), [](float v) { return std::isfinite(v); });
}

bool CheckShape(const FunctionShape& shape, bool needsRange, std::string& error) {
    const auto arePairs = [](const std::vector<float>& values, std::int32_t limit) {
        if (values.size() % 2 != 0 || values.size() > 2 * static_cast<std::size_t>(limit) ||
            !AreFinite(values)) {
            return false;
        }
        for (std::size_t i = 0; i < values.size(); i += 2) {
            if (values[i] > values[i + 1]) {
                return false;
            }
        }
        return true;
    };
    if (shape.domain.empty() || !arePairs(shape.domain, kMaxFunctionInputs)) {
        error = "a function without a proper domain";
        return false;
    }
    if ((needsRange && shape.range.empty()) || !arePairs(shape.range, kMaxFunctionOutputs)) {
        error = "a function without a proper range";
        return false;
    }
    return true;
}

FunctionPtr MakeExponentialFunction(FunctionShape shape, std::vector<float> c0,
                                    std::vector<float> c1, float exponent, std::string& error) {
    if (!CheckShape(shape, false, error)) {
        return nullptr;
    }
    const std::size_t outputs =
        std::max({c0.size(), c1.size(), shape.range.size() / 2, std::size_t{1}});
    const auto fits = [outputs](std::size_t size, std::size_t full) {
        return size == 0 || size == full * outputs;
    };
    if (shape.domain.size() != 2 || outputs > kMaxFunctionOutputs || !fits(c0.size(), 1) ||
        !fits(c1.size(), 1) || !fits(shape.range.size(), 2)) {
        error = "an exponential function with wrong counts";
        return nullptr;
    }
    if (!AreFinite(c0) || !AreFinite(c1) || !std::isfinite(exponent)) {
        error = "an exponential function with a number that is not finite";
        return nullptr;
    }
    c0.resize(outputs, 0.0F);
    c1.resize(outputs, 1.0F);
    return MakeObject<ExponentialFunction>(std::move(shape), std::move(c0), std::move(c1),
                                           exponent);
}

FunctionPtr MakeStitchingFunction(FunctionShape shape, std::vector<FunctionPtr> functions,
                                  std::vector<float> bounds, std::vector<float> encode,
                                  std::string& error) {
    if (!CheckStitching(shape, functions, bounds, encode, error)) {
        return nullptr;
    }
    return MakeObject<StitchingFunction>(std::move(shape), std::move(functions), std::move(bounds),
                                         std::move(encode));
}

FunctionPtr MakeCalculatorFunction(FunctionShape shape, std::string_view program,
                                   std::string& error) {
    if (!CheckShape(shape, true, error)) {
        return nullptr;
    }
    std::optional<CalculatorProgram> parsed = CalculatorProgram::Parse(program, error);
    if (!parsed) {
        return nullptr;
    }
    const auto outputs = static_cast<std::int32_t>(shape.range.size() / 2);
    return MakeObject<CalculatorFunction>(std::move(shape), outputs, program, std::move(*parsed));
}

FunctionPtr MakeIdentityFunction(std::int32_t count) {
    FunctionShape shape;
    for (std::int32_t i = 0; i < std::clamp(count, 1, kMaxFunctionInputs); ++i) {
        shape.domain.insert(shape.domain.end(), {0.0F, 1.0F});
    }
    shape.range = shape.domain;
    std::string error;
    return MakeCalculatorFunction(std::move(shape), "{}", error);
}

FunctionPtr MakeFunctionArray(std::vector<FunctionPtr> functions, std::string& error) {
    if (functions.empty() || functions.size() > kMaxFunctionOutputs) {
        error = "an array of too few or too many functions";
        return nullptr;
    }
    FunctionShape shape;
    for (const FunctionPtr& function : functions) {
        if (!function || !functions.front() || function->GetOutputCount() != 1 ||
            function->GetInputCount() != functions.front()->GetInputCount()) {
            error = "an array of functions that do not have the same inputs and one output each";
            return nullptr;
        }
        // The widest domain serves every member: each clips to its own besides.
        const auto inputs = static_cast<std::size_t>(function->GetInputCount());
        const float* domain = function->GetDomain();
        if (shape.domain.empty()) {
            shape.domain.assign(domain, domain + 2 * inputs);
        }
        for (std::size_t i = 0; i < inputs; ++i) {
            shape.domain[2 * i] = std::min(shape.domain[2 * i], domain[2 * i]);
            shape.domain[2 * i + 1] = std::max(shape.domain[2 * i + 1], domain[2 * i + 1]);
        }
        if (const float* range = function->GetRange()) {
            shape.range.insert(shape.range.end(), range, range + 2);
        }
    }
    if (shape.range.size() != 2 * functions.size()) {
        shape.range.clear();
    }
    if (!AreWithinLimits(functions)) {
        error = "an array of functions that are nested too deep";
        return nullptr;
    }
    return MakeObject<FunctionArray>(std::move(shape), std::move(functions));
}

}  // namespace VANTIX::HOST
