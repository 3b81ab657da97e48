// SPDX-License-Identifier: MIT
#include "postscriptconnectionspace/tinttransform.h"

#include <algorithm>
#include <limits>

#include "postscriptconnectionspace/functions.h"

namespace VANTIX::PS {

namespace {

constexpr std::size_t kProcedureBytes = 8192;

}  // namespace

TintTransform::TintTransform(const COLOR::IConnectionColorSpace& alternate,
                             const COLOR::IColorFunction* function) {
    if (function == nullptr) {
        full.fill(alternate.StoresComponentsInverted() ? 1.0F : 0.0F);
        return;
    }
    // Scaling replaces a procedure of one tint that is too large; of several it could not, so that
    // their procedure takes the room that it needs.
    const bool scalable = function->GetInputCount() == 1;
    const std::size_t bound = scalable ? kProcedureBytes : std::numeric_limits<std::int32_t>::max();
    converted = AppendLevel2Procedure(*function, procedure, bound) && procedure.Size() > 0;
    const std::int32_t outputs = function->GetOutputCount();
    if (converted || outputs < 1 || outputs > COLOR::kMaxComponents ||
        function->GetInputCount() > COLOR::kMaxComponents) {
        return;
    }
    float tints[COLOR::kMaxComponents];
    float values[COLOR::kMaxComponents] = {};
    std::fill(std::begin(tints), std::end(tints), 1.0F);
    function->Evaluate(tints, values);
    std::copy_n(values, full.size(), full.begin());
}

void TintTransform::AppendTo(TextBuffer& text, std::int32_t components) const {
    text.Append("{");
    if (converted) {
        text.Append(procedure.View());
    } else {
        for (std::int32_t i = 0; i < components; ++i) {
            const bool last = i == components - 1;
            text.Format(last ? "%.8g mul" : "dup %.8g mul exch ",
                        full[static_cast<std::size_t>(i)]);
        }
    }
    text.Append("}");
}

}  // namespace VANTIX::PS
