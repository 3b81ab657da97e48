// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>

#include "core/color/icolorfunction.h"
#include "core/color/iconnectioncolorspace.h"
#include "postscriptconnectionspace/textbuffer.h"

namespace VANTIX::PS {

/// How tints become colours of an alternate space: a procedure, or else the colour of the full
/// tint, which is then scaled.
struct TintTransform {
    TextBuffer procedure;
    bool converted = false;
    /// Ink amounts for CMYK.
    std::array<float, 4> full{};

    /// From `function` (null for none, then full ink is the darkest colour) to `alternate`.
    TintTransform(const COLOR::IConnectionColorSpace& alternate,
                  const COLOR::IColorFunction* function);

    /// Appends "{…}"; `components` is 1, 3 or 4.
    void AppendTo(TextBuffer& text, std::int32_t components) const;
};

}  // namespace VANTIX::PS
