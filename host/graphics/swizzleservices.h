// SPDX-License-Identifier: MIT
#pragma once

#include "core/graphics/irastercomponent.h"
#include "core/object/tobject.h"
#include "host/export.h"

namespace VANTIX::HOST {

/// Interleaves planes, sixteen pixels at a time. Every `step`-th sample of a plane is taken, and no
/// more pixels than the planes and the output hold.
class NORVANE_HOST_API SwizzleServices : public TObject<GRAPHICS::ISwizzleServices> {
public:
    void Interleave3(std::int32_t width, std::int32_t step, const std::uint8_t* plane0,
                     const std::uint8_t* plane1, const std::uint8_t* plane2,
                     std::int32_t planeBytes, std::uint8_t* out, std::int32_t outBytes) override;
    void Interleave4(std::int32_t width, std::int32_t step, const std::uint8_t* plane0,
                     const std::uint8_t* plane1, const std::uint8_t* plane2,
                     const std::uint8_t* plane3, std::int32_t planeBytes, std::uint8_t* out,
                     std::int32_t outBytes) override;
};

}  // namespace VANTIX::HOST
