// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>

#include "core/object/tobject.h"
#include "host/color/functions.h"

namespace VANTIX::HOST {

/// Whether domain and range are pairs of ordered finite numbers within the limits of counts. The
/// domain must not be empty; the range must not be where `needsRange`.
bool CheckShape(const FunctionShape& shape, bool needsRange, std::string& error);

/// Whether every value is finite.
bool AreFinite(const std::vector<float>& values);

/// `x` within [low, high]; a value that is no number becomes `low`.
inline float ClipTo(float x, float low, float high) {
    return x >= low ? std::min(x, high) : low;
}

/// Bounds `index` of a domain or range.
struct Bounds {
    Bounds(const float* pairs, std::size_t index)
        : low(pairs[2 * index]), high(pairs[2 * index + 1]) {}

    float low;
    float high;
};

/// Implementation base of a function interface: answers one kind, holds the shape, and clips inputs
/// to the domain and outputs to the range, so that `Compute` sees clean inputs only.
template <class I>
class FunctionBase : public TObject<I> {
public:
    Status QueryInterface(const GUID& id, void** out) override {
        if (id == mKind) {
            *out = static_cast<IObject*>(this);
            return STATUS::kOk;
        }
        return TObject<I>::QueryInterface(id, out);
    }

    std::int32_t GetInputCount() const override {
        return static_cast<std::int32_t>(mShape.domain.size() / 2);
    }

    std::int32_t GetOutputCount() const override { return mOutputs; }

    const float* GetDomain() const override { return mShape.domain.data(); }

    const float* GetRange() const override {
        return mShape.range.empty() ? nullptr : mShape.range.data();
    }

    void Evaluate(const float* in, float* out) const override {
        std::array<float, kMaxFunctionInputs> inputs{};
        for (std::size_t i = 0; i < mShape.domain.size() / 2; ++i) {
            inputs[i] = ClipTo(in[i], mShape.domain[2 * i], mShape.domain[2 * i + 1]);
        }
        Compute(inputs.data(), out);
        for (std::size_t k = 0; k < static_cast<std::size_t>(mOutputs); ++k) {
            if (!mShape.range.empty()) {
                out[k] = ClipTo(out[k], mShape.range[2 * k], mShape.range[2 * k + 1]);
            } else if (!std::isfinite(out[k])) {
                out[k] = 0.0F;
            }
        }
    }

protected:
    FunctionBase(const GUID& kind, FunctionShape shape, std::int32_t outputs)
        : mKind(kind), mShape(std::move(shape)), mOutputs(outputs) {}

    /// The mapping itself. An output that cannot be computed is no number.
    virtual void Compute(const float* in, float* out) const = 0;

    const FunctionShape& Shape() const { return mShape; }

private:
    GUID mKind;
    FunctionShape mShape;
    std::int32_t mOutputs;
};

inline constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();

}  // namespace VANTIX::HOST
