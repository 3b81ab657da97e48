// SPDX-License-Identifier: MIT
#include "postscriptconnectionspace/functiongrid.h"

#include <algorithm>

namespace VANTIX {

namespace {

/// A value cut to 8 bits between its limits; what is no number becomes 0.
std::uint8_t Byte(float value, std::pair<float, float> limits) {
    const float part = (value - limits.first) / (limits.second - limits.first) * 255;
    return part > 0 ? static_cast<std::uint8_t>(std::min(part, 255.0F)) : std::uint8_t{0};
}

}  // namespace

FunctionGrid::FunctionGrid(const COLOR::IColorFunction& function, const ColorRoute& route)
    : mFunction(function), mRoute(route), mInputs(std::clamp(function.GetInputCount(), 0, 2)) {
    const float least = mInputs == 1 ? 32 : 16;
    const float most = mInputs == 1 ? 256 : 127;
    for (std::int32_t i = 0; i < mInputs; ++i) {
        const float width = Domain(i)[1] - Domain(i)[0];
        mSizes.at(static_cast<std::size_t>(i)) =
            static_cast<std::int32_t>(std::clamp(width, least, most));
    }
}

std::pair<float, float> FunctionGrid::Limits(std::size_t index) const {
    const float* range = mRoute.Converts() ? nullptr : mFunction.GetRange();
    if (range == nullptr || (range[2 * index] >= 0 && range[2 * index + 1] <= 1)) {
        return {0.0F, 1.0F};
    }
    return {range[2 * index], range[2 * index + 1]};
}

bool FunctionGrid::Sample(std::size_t outputs, std::vector<std::uint8_t>& samples) const {
    const auto [columns, rows] = mSizes;
    samples.reserve(samples.size() + static_cast<std::size_t>(columns * rows) * outputs);
    for (std::int32_t i = 0; i < columns * rows; ++i) {
        const float inputs[] = {At(0, i % columns), mInputs == 1 ? 0 : At(1, i / columns)};
        std::array<float, COLOR::kMaxComponents> values{};
        mFunction.Evaluate(inputs, values.data());
        if (mRoute.Converts() && !mRoute.Apply(values.data())) {
            return false;
        }
        for (std::size_t k = 0; k < outputs; ++k) {
            samples.push_back(Byte(values.at(k), Limits(k)));
        }
    }
    return true;
}

const float* FunctionGrid::Domain(std::int32_t input) const {
    return mFunction.GetDomain() + std::ptrdiff_t{2} * input;
}

float FunctionGrid::At(std::int32_t input, std::int32_t step) const {
    const std::int32_t steps = mSizes.at(static_cast<std::size_t>(input)) - 1;
    const float part = static_cast<float>(step) / static_cast<float>(steps);
    return Domain(input)[0] + (Domain(input)[1] - Domain(input)[0]) * part;
}

}  // namespace VANTIX
