// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "core/color/icolorfunction.h"
#include "core/object/tobject.h"

namespace VANTIX::TEST {

/// What all fake functions share; `I` is the kind and `kId` the identifier it answers. Inputs and
/// outputs are not clipped.
template <class I, const GUID& kId>
class FakeFunction : public TObject<I> {
public:
    std::int32_t inputs = 1;
    std::int32_t outputs = 1;
    std::vector<float> domain{0, 1};
    std::vector<float> range;

    Status QueryInterface(const GUID& id, void** out) override {
        if (id == kId) {
            *out = static_cast<IObject*>(this);
            return STATUS::kOk;
        }
        return TObject<I>::QueryInterface(id, out);
    }

    std::int32_t GetInputCount() const override { return inputs; }

    std::int32_t GetOutputCount() const override { return outputs; }

    const float* GetDomain() const override { return OrNull(domain); }

    const float* GetRange() const override { return OrNull(range); }

protected:
    static const float* OrNull(const std::vector<float>& values) {
        return values.empty() ? nullptr : values.data();
    }
};

/// Empty vectors stand for absent entries.
class FakeExponential
    : public FakeFunction<COLOR::IExponentialFunction, COLOR::IID_IEXPONENTIALFUNCTION> {
public:
    FakeExponential(std::int32_t outputCount, std::vector<float> low, std::vector<float> high,
                    float power)
        : c0(std::move(low)), c1(std::move(high)), exponent(power) {
        outputs = outputCount;
    }

    std::vector<float> c0;
    std::vector<float> c1;
    float exponent;

    const float* GetC0() const override { return OrNull(c0); }

    const float* GetC1() const override { return OrNull(c1); }

    float GetExponent() const override { return exponent; }

    void Evaluate(const float* in, float* out) const override {
        const float power = std::pow(in[0], exponent);
        for (std::size_t i = 0; i < static_cast<std::size_t>(outputs); ++i) {
            const float low = c0.empty() ? 0 : c0[i];
            const float high = c1.empty() ? 1 : c1[i];
            out[i] = low + power * (high - low);
        }
    }
};

/// Members are kept with a reference; null members are allowed.
class FakeStitching
    : public FakeFunction<COLOR::IStitchingFunction, COLOR::IID_ISTITCHINGFUNCTION> {
public:
    std::vector<TInterfacePtr<COLOR::IColorFunction>> members;
    std::vector<float> bounds;
    std::vector<std::pair<float, float>> encode;

    std::int32_t GetFunctionCount() const override {
        return static_cast<std::int32_t>(members.size());
    }

    const COLOR::IColorFunction* GetFunction(std::int32_t index) const override {
        return members.at(static_cast<std::size_t>(index)).Get();
    }

    const float* GetBounds() const override { return OrNull(bounds); }

    void GetEncode(std::int32_t index, float& low, float& high) const override {
        std::tie(low, high) = encode.at(static_cast<std::size_t>(index));
    }

    void Evaluate(const float* in, float* out) const override {
        std::size_t i = 0;
        while (i < bounds.size() && in[0] >= bounds[i]) {
            ++i;
        }
        const float start = i == 0 ? domain[0] : bounds[i - 1];
        const float end = i == bounds.size() ? domain[1] : bounds[i];
        const auto [low, high] = encode[i];
        const float x = low + (in[0] - start) * (high - low) / (end - start);
        members[i]->Evaluate(&x, out);
    }
};

/// A function given by a lambda: its kind only decides how it is written.
template <class I, const GUID& kId>
class FakeLambdaFunction : public FakeFunction<I, kId> {
public:
    using Rule = std::function<void(const float*, float*)>;

    FakeLambdaFunction(std::int32_t inputCount, std::int32_t outputCount, Rule evaluate)
        : rule(std::move(evaluate)) {
        this->inputs = inputCount;
        this->outputs = outputCount;
        this->domain.assign(2 * static_cast<std::size_t>(inputCount), 0);
        for (std::size_t i = 1; i < this->domain.size(); i += 2) {
            this->domain[i] = 1;
        }
    }

    Rule rule;

    void Evaluate(const float* in, float* out) const override { rule(in, out); }
};

class FakeCalculator
    : public FakeLambdaFunction<COLOR::ICalculatorFunction, COLOR::IID_ICALCULATORFUNCTION> {
public:
    FakeCalculator(std::string text, std::int32_t inputCount, std::int32_t outputCount,
                   Rule evaluate)
        : FakeLambdaFunction(inputCount, outputCount, std::move(evaluate)),
          program(std::move(text)) {}

    std::string program;

    const char* GetProgram() const override { return program.c_str(); }
};

class FakeSampled
    : public FakeLambdaFunction<COLOR::ISampledFunction, COLOR::IID_ISAMPLEDFUNCTION> {
public:
    using FakeLambdaFunction::FakeLambdaFunction;

    /// The samples are not looked at when the function is evaluated. Empty vectors stand for absent
    /// entries.
    std::vector<std::int32_t> sizes;
    std::vector<float> encode;
    std::vector<float> decode;
    std::vector<std::uint8_t> samples;
    /// What they become in another space; empty: they cannot be converted.
    std::vector<std::uint8_t> converted;
    std::int32_t bits = 8;

    std::int32_t GetBitsPerSample() const override { return bits; }

    const std::int32_t* GetSizes() const override { return sizes.empty() ? nullptr : sizes.data(); }

    std::int32_t GetOrder() const override { return 1; }

    const float* GetEncode() const override { return OrNull(encode); }

    const float* GetDecode() const override { return OrNull(decode); }

    const std::vector<std::uint8_t>& GetSamples() const override { return samples; }

    bool ConvertSamples(const COLOR::IConnectionColorSpace& /*source*/,
                        const COLOR::IConnectionColorSpace& /*destination*/,
                        COLOR::TRenderingIntent /*first*/, COLOR::TRenderingIntent /*second*/,
                        std::uint8_t* out, std::int32_t* size) const override {
        *size = static_cast<std::int32_t>(converted.size());
        if (out != nullptr) {
            std::copy(converted.begin(), converted.end(), out);
        }
        return !converted.empty();
    }
};

/// An array of functions, which has no procedure form. It is evaluated by its rule; members are
/// only written, and null ones are allowed.
class FakeFunctionArray
    : public FakeLambdaFunction<COLOR::IFunctionArray, COLOR::IID_IFUNCTIONARRAY> {
public:
    using FakeLambdaFunction::FakeLambdaFunction;

    std::vector<TInterfacePtr<COLOR::IColorFunction>> members;

    std::int32_t GetFunctionCount() const override {
        return static_cast<std::int32_t>(members.size());
    }

    const COLOR::IColorFunction* GetFunction(std::int32_t index) const override {
        return members.at(static_cast<std::size_t>(index)).Get();
    }
};

/// Makes fake functions. Calculators evaluate to zeros: only their program counts.
class FakeFunctionFactory : public TObject<COLOR::IColorFunctionFactory> {
public:
    COLOR::IColorFunction* CreateExponentialFunction(const float* /*domain*/,
                                                     const float* /*range*/, const float* c0,
                                                     const float* c1, std::int32_t outputs,
                                                     float exponent) override {
        const auto copy = [outputs](const float* values) {
            return values == nullptr ? std::vector<float>()
                                     : std::vector<float>(values, values + outputs);
        };
        return new FakeExponential(outputs, copy(c0), copy(c1), exponent);
    }

    COLOR::IColorFunction* CreateCalculatorFunction(const char* program, const float* domain,
                                                    std::int32_t inputs, const float* range,
                                                    std::int32_t outputs) override {
        auto* function = new FakeCalculator(program, inputs, outputs, [outputs](auto*, float* out) {
            std::fill_n(out, outputs, 0.0F);
        });
        function->domain.assign(domain, domain + std::ptrdiff_t{2} * inputs);
        function->range.assign(range, range + std::ptrdiff_t{2} * outputs);
        return function;
    }
};

}  // namespace VANTIX::TEST
