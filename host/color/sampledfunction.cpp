// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "host/color/functionbase.h"
#include "host/color/outputvalues.h"

namespace VANTIX::HOST {

namespace {

// Interpolation visits two samples for each input: beyond this it costs too much.
constexpr std::size_t kMaxSampledInputs = 16;

using Coordinates = std::array<std::int32_t, kMaxSampledInputs>;

class SampledFunction : public FunctionBase<COLOR::ISampledFunction> {
public:
    SampledFunction(const FunctionShape& shape, SampledTable table)
        : FunctionBase(COLOR::IID_ISAMPLEDFUNCTION, shape,
                       static_cast<std::int32_t>(shape.range.size() / 2)),
          mTable(std::move(table)),
          mDecode(mTable.decode.empty() ? shape.range : mTable.decode),
          mEncode(mTable.encode),
          mStep(1.0F / static_cast<float>((std::uint64_t{1} << Bits()) - 1)) {
        for (std::size_t i = 0; mTable.encode.empty() && i < mTable.sizes.size(); ++i) {
            mEncode.insert(mEncode.end(), {0.0F, static_cast<float>(mTable.sizes[i] - 1)});
        }
    }

    std::int32_t GetBitsPerSample() const override { return mTable.bitsPerSample; }

    const std::int32_t* GetSizes() const override { return mTable.sizes.data(); }

    // A cubic table is read as a linear one, so this is what a reader has to know.
    std::int32_t GetOrder() const override { return 1; }

    const float* GetEncode() const override { return DataOrNull(mTable.encode); }

    const float* GetDecode() const override { return DataOrNull(mTable.decode); }

    const std::vector<std::uint8_t>& GetSamples() const override { return mTable.samples; }

    bool ConvertSamples(const COLOR::IConnectionColorSpace& source,
                        const COLOR::IConnectionColorSpace& destination,
                        COLOR::TRenderingIntent first, COLOR::TRenderingIntent second,
                        std::uint8_t* out, std::int32_t* size) const override;

protected:
    void Compute(const float* in, float* out) const override;

private:
    static const float* DataOrNull(const std::vector<float>& values) {
        return values.empty() ? nullptr : values.data();
    }

    std::uint32_t Bits() const { return static_cast<std::uint32_t>(mTable.bitsPerSample); }

    /// Sample `index`, decoded to the output that it belongs to.
    float Sample(std::uint64_t index, std::size_t output) const {
        std::uint64_t bit = index * Bits();
        std::uint64_t value = 0;
        if (Bits() % 8 == 0) {
            for (std::uint32_t k = 0; k < Bits(); k += 8) {
                value = (value << 8U) | mTable.samples[bit / 8 + k / 8];
            }
        } else {
            for (std::uint32_t k = 0; k < Bits(); ++k, ++bit) {
                value = (value << 1U) | ((mTable.samples[bit / 8] >> (7 - bit % 8)) & 1U);
            }
        }
        const float low = mDecode[2 * output];
        return low + static_cast<float>(value) * mStep * (mDecode[2 * output + 1] - low);
    }

    std::int64_t PointCount() const {
        std::int64_t points = 1;
        for (const std::int32_t size : mTable.sizes) {
            points *= size;
        }
        return points;
    }

    SampledTable mTable;
    std::vector<float> mDecode;
    std::vector<float> mEncode;
    float mStep;
};

void SampledFunction::Compute(const float* in, float* out) const {
    const auto outputs = static_cast<std::size_t>(GetOutputCount());
    // Only inputs between two samples double the work.
    std::array<std::uint64_t, kMaxSampledInputs> steps{};
    std::array<float, kMaxSampledInputs> fractions{};
    std::size_t between = 0;
    std::uint64_t stride = outputs;
    std::uint64_t origin = 0;
    for (std::size_t i = 0; i < mTable.sizes.size(); ++i) {
        const float x0 = Shape().domain[2 * i];
        const float x1 = Shape().domain[2 * i + 1];
        const float e0 = mEncode[2 * i];
        const auto last = static_cast<float>(mTable.sizes[i] - 1);
        const float scale = x1 > x0 ? (mEncode[2 * i + 1] - e0) / (x1 - x0) : 0.0F;
        const float e = ClipTo(e0 + (in[i] - x0) * scale, 0.0F, last);
        const auto low = std::min(static_cast<std::uint64_t>(e),
                                  static_cast<std::uint64_t>(mTable.sizes[i] - 1));
        const float fraction = e - static_cast<float>(low);
        if (fraction > 0.0F) {
            steps[between] = stride;
            fractions[between++] = fraction;
        }
        origin += low * stride;
        stride *= static_cast<std::uint64_t>(mTable.sizes[i]);
    }
    std::fill(out, out + outputs, 0.0F);
    for (std::uint32_t corner = 0; corner < (1U << between); ++corner) {
        float weight = 1.0F;
        std::uint64_t at = origin;
        for (std::size_t i = 0; i < between; ++i) {
            const bool upper = ((corner >> i) & 1U) != 0;
            weight *= upper ? fractions[i] : 1.0F - fractions[i];
            at += upper ? steps[i] : 0;
        }
        for (std::size_t k = 0; k < outputs; ++k) {
            out[k] += weight * Sample(at + k, k);
        }
    }
}

bool SampledFunction::ConvertSamples(const COLOR::IConnectionColorSpace& source,
                                     const COLOR::IConnectionColorSpace& destination,
                                     COLOR::TRenderingIntent first, COLOR::TRenderingIntent second,
                                     std::uint8_t* out, std::int32_t* size) const {
    const std::int32_t components = destination.GetComponentCount();
    const std::int64_t total = PointCount() * components;
    if (size == nullptr || components < 1 || components > COLOR::kMaxComponents ||
        GetOutputCount() < source.GetComponentCount() ||
        total > std::numeric_limits<std::int32_t>::max()) {
        return false;
    }
    if (out == nullptr) {
        *size = static_cast<std::int32_t>(total);
        return true;
    }
    const auto outputs = static_cast<std::size_t>(GetOutputCount());
    const bool inverted = destination.StoresComponentsInverted();
    std::array<float, COLOR::kMaxComponents> values{};
    std::array<float, 3> pcs{};
    const std::int64_t room = std::min<std::int64_t>(*size, total);
    for (std::int64_t written = 0; written < room;) {
        const auto point = static_cast<std::uint64_t>(written / components);
        for (std::size_t k = 0; k < outputs; ++k) {
            values[k] = Sample(point * outputs + k, k);
        }
        ToHostForm(*this, source, values.data());
        if (!source.ToPCS(values.data(), pcs.data(), first) ||
            !destination.FromPCS(pcs.data(), values.data(), second)) {
            return false;
        }
        for (std::size_t k = 0; k < static_cast<std::size_t>(components) && written < room; ++k) {
            const float v = ClipTo(inverted ? 1.0F - values[k] : values[k], 0.0F, 1.0F);
            out[written++] = static_cast<std::uint8_t>(std::lround(v * 255.0F));
        }
    }
    *size = static_cast<std::int32_t>(room);
    return true;
}

bool HasEnoughSamples(const SampledTable& table, std::size_t outputs) {
    // Each factor is checked against the bits that are there, so the product cannot overflow.
    const std::uint64_t available = std::uint64_t{table.samples.size()} * 8;
    std::uint64_t needed = static_cast<std::uint64_t>(table.bitsPerSample) * outputs;
    for (const std::int32_t size : table.sizes) {
        if (size < 1 || needed > available / static_cast<std::uint64_t>(size)) {
            return false;
        }
        needed *= static_cast<std::uint64_t>(size);
    }
    return needed <= available;
}

}  // namespace

FunctionPtr MakeSampledFunction(const FunctionShape& shape, SampledTable table,
                                std::string& error) {
    if (!CheckShape(shape, true, error)) {
        return nullptr;
    }
    const std::size_t inputs = shape.domain.size() / 2;
    if (inputs > kMaxSampledInputs || table.sizes.size() != inputs) {
        error = "a sampled function of too many inputs, or with a wrong number of sizes";
        return nullptr;
    }
    constexpr std::array kDepths{1, 2, 4, 8, 12, 16, 24, 32};
    if (std::find(kDepths.begin(), kDepths.end(), table.bitsPerSample) == kDepths.end()) {
        error = "a sampled function with a wrong number of bits";
        return nullptr;
    }
    const auto fits = [](const std::vector<float>& values, std::size_t count) {
        return values.empty() || (values.size() == count && AreFinite(values));
    };
    if (!fits(table.encode, 2 * inputs) || !fits(table.decode, shape.range.size())) {
        error = "a sampled function with a bad encoding or decoding";
        return nullptr;
    }
    if (!HasEnoughSamples(table, shape.range.size() / 2)) {
        error = "a sampled function whose samples are too short";
        return nullptr;
    }
    return MakeObject<SampledFunction>(shape, std::move(table));
}

}  // namespace VANTIX::HOST
