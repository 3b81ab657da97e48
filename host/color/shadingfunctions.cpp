// SPDX-License-Identifier: MIT
#include "host/color/shadingfunctions.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string>
#include <utility>

#include "host/color/functionbase.h"

namespace VANTIX::HOST {

namespace {

using COLOR::IColorFunction;

// The longest string of an interpreter (PostScript Language Reference, appendix B).
constexpr std::size_t kLongestString = 65535;
// Components of the widest space that samples are converted into.
constexpr std::size_t kProcessComponents = 4;
constexpr std::size_t kLineSamples = 256;
constexpr std::size_t kGridSamples = 64;

std::size_t MostPoints(std::size_t outputs) {
    return kLongestString / std::max(outputs, kProcessComponents);
}

bool AreWhole(const float* values, std::size_t count) {
    return values == nullptr ||
           std::all_of(values, values + count, [](float v) { return v == std::floor(v); });
}

/// Whether each interval of `outer` holds that of `inner`.
bool Contains(const float* outer, const float* inner, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        if (outer[2 * i] > inner[2 * i] || outer[2 * i + 1] < inner[2 * i + 1]) {
            return false;
        }
    }
    return true;
}

/// Interpreters refuse a domain of no width, and one that does not hold what is asked for.
bool Serves(const IColorFunction& function, const FunctionBounds& domain) {
    const float* own = function.GetDomain();
    for (std::size_t i = 0; i < domain.size(); i += 2) {
        if (own[i] >= own[i + 1]) {
            return false;
        }
    }
    return Contains(own, domain.data(), domain.size() / 2);
}

bool HasPowers(const COLOR::IExponentialFunction& function) {
    const float exponent = function.GetExponent();
    const float low = function.GetDomain()[0];
    const bool isWhole = exponent == std::floor(exponent);
    return (isWhole || low >= 0.0F) &&
           (exponent >= 0.0F || low > 0.0F || function.GetDomain()[1] < 0.0F);
}

/// The text of a table has whole numbers for its encoding and decoding, and 8 bits for a sample.
bool IsPlainTable(const COLOR::ISampledFunction& table, const FunctionBounds& range) {
    const auto inputs = static_cast<std::size_t>(table.GetInputCount());
    const auto outputs = static_cast<std::size_t>(table.GetOutputCount());
    const bool isShort = table.GetSamples().size() <= kLongestString &&
                         table.GetSamples().size() / outputs <= MostPoints(outputs);
    return table.GetBitsPerSample() == 8 && isShort && AreWhole(table.GetEncode(), 2 * inputs) &&
           AreWhole(table.GetDecode(), 2 * outputs) &&
           Contains(range.data(), table.GetRange(), outputs);
}

/// A single input gets some width.
FunctionBounds WidenedDomain(FunctionBounds domain) {
    for (std::size_t i = 0; i < domain.size(); i += 2) {
        if (domain[i] >= domain[i + 1]) {
            domain[i + 1] = domain[i] + std::max(1.0F, std::abs(domain[i]));
        }
    }
    return domain;
}

FunctionPtr ReadyStitching(const FunctionPtr& given, const COLOR::IStitchingFunction& function,
                           const FunctionBounds& range) {
    bool isChanged = false;
    std::vector<FunctionPtr> pieces;
    std::vector<float> encode;
    for (std::int32_t i = 0; i < function.GetFunctionCount(); ++i) {
        float from = 0.0F;
        float to = 1.0F;
        function.GetEncode(i, from, to);
        encode.insert(encode.end(), {from, to});
        const FunctionPtr piece(const_cast<IColorFunction*>(function.GetFunction(i)));
        pieces.push_back(
            MakeShadingFunction(piece, {std::min(from, to), std::max(from, to)}, range));
        isChanged = isChanged || pieces.back().Get() != piece.Get();
    }
    if (!isChanged) {
        return given;
    }
    const float* bounds = function.GetBounds();
    const float* own = function.GetRange();
    std::string error;
    return MakeStitchingFunction(
        {{function.GetDomain(), function.GetDomain() + 2},
         own == nullptr ? std::vector<float>() : std::vector<float>(own, own + range.size())},
        std::move(pieces), std::vector<float>(bounds, bounds + function.GetFunctionCount() - 1),
        std::move(encode), error);
}

FunctionPtr ReadyArray(const FunctionPtr& given, const COLOR::IFunctionArray& array,
                       const FunctionBounds& domain, const FunctionBounds& range) {
    bool isChanged = false;
    std::vector<FunctionPtr> members;
    for (std::int32_t i = 0; i < array.GetFunctionCount(); ++i) {
        const FunctionPtr member(const_cast<IColorFunction*>(array.GetFunction(i)));
        const auto at = 2 * static_cast<std::size_t>(i);
        members.push_back(MakeShadingFunction(member, domain, {range[at], range[at + 1]}));
        isChanged = isChanged || members.back().Get() != member.Get();
    }
    std::string error;
    return isChanged ? MakeFunctionArray(std::move(members), error) : given;
}

}  // namespace

FunctionPtr MakeShadingFunction(const FunctionPtr& function, const FunctionBounds& domain,
                                const FunctionBounds& range) {
    if (!function || static_cast<std::size_t>(function->GetInputCount()) * 2 != domain.size() ||
        static_cast<std::size_t>(function->GetOutputCount()) * 2 != range.size() ||
        domain.size() > 4) {
        return nullptr;
    }
    const IColorFunction* given = function.Get();
    if (const auto* array =
            FindInterface<COLOR::IFunctionArray>(given, COLOR::IID_IFUNCTIONARRAY)) {
        return ReadyArray(function, *array, domain, range);
    }
    const bool serves = Serves(*given, domain);
    const auto* stitching =
        FindInterface<COLOR::IStitchingFunction>(given, COLOR::IID_ISTITCHINGFUNCTION);
    if (serves && stitching != nullptr) {
        return ReadyStitching(function, *stitching, range);
    }
    const auto* exponential =
        FindInterface<COLOR::IExponentialFunction>(given, COLOR::IID_IEXPONENTIALFUNCTION);
    const auto* table = FindInterface<COLOR::ISampledFunction>(given, COLOR::IID_ISAMPLEDFUNCTION);
    const bool isPlain = (exponential != nullptr && HasPowers(*exponential)) ||
                         (table != nullptr && IsPlainTable(*table, range));
    if (serves && isPlain) {
        return function;
    }
    return SampleFunction(domain, range,
                          [given](const float* in, float* out) { given->Evaluate(in, out); });
}

FunctionPtr SampleFunction(const FunctionBounds& inputsAsked, const FunctionBounds& range,
                           const Evaluation& evaluate) {
    const FunctionBounds domain = WidenedDomain(inputsAsked);
    const std::size_t inputs = domain.size() / 2;
    const std::size_t outputs = range.size() / 2;
    if (inputs < 1 || inputs > 2 || outputs < 1 || outputs > kMaxFunctionOutputs) {
        return nullptr;
    }
    const auto side = static_cast<std::size_t>(std::sqrt(MostPoints(outputs)));
    const std::size_t columns = inputs == 1 ? kLineSamples : std::min(side, kGridSamples);
    const std::size_t rows = inputs == 1 ? 1 : columns;
    SampledTable table;
    table.sizes.assign(inputs, static_cast<std::int32_t>(columns));
    for (std::size_t k = 0; k < range.size(); k += 2) {
        const float low = std::floor(range[k]);
        table.decode.insert(table.decode.end(), {low, std::max(std::ceil(range[k + 1]), low + 1)});
    }
    const auto at = [&](std::size_t input, std::size_t step) {
        const auto [low, high] = Bounds(domain.data(), input);
        return low + (high - low) * static_cast<float>(step) / static_cast<float>(columns - 1);
    };
    for (std::size_t point = 0; point < rows * columns; ++point) {
        const std::array<float, 2> in{at(0, point % columns),
                                      inputs == 1 ? 0.0F : at(1, point / columns)};
        std::array<float, kMaxFunctionOutputs> out{};
        evaluate(in.data(), out.data());
        for (std::size_t k = 0; k < outputs; ++k) {
            const auto [low, high] = Bounds(table.decode.data(), k);
            const float part =
                (ClipTo(out[k], range[2 * k], range[2 * k + 1]) - low) / (high - low);
            table.samples.push_back(static_cast<std::uint8_t>(std::lround(part * 255.0F)));
        }
    }
    std::string error;
    return MakeSampledFunction({domain, range}, std::move(table), error);
}

}  // namespace VANTIX::HOST
