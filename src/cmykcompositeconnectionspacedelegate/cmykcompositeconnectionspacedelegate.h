// SPDX-License-Identifier: MIT
#pragma once

#include "baseconnectionspacedelegate/colormanaged.h"
#include "privatecmykcompositeconnectionspacedelegate/privatecmykcompositeconnectionspacedelegate.h"

namespace VANTIX::RENDERING {

/// Writes everything in DeviceCMYK, converting only what is not gray or CMYK already.
class CMYKCompositeConnectionSpaceDelegate : public PrivateCMYKCompositeConnectionSpaceDelegate {
public:
    using PrivateCMYKCompositeConnectionSpaceDelegate::PrivateCMYKCompositeConnectionSpaceDelegate;

    void InjectRaster(Raster& raster, float x, float y, float width, float height) override {
        InjectByFamily(raster, x, y, width, height);
    }
};

inline constexpr char kCMYKModule[] = "src/cmykcompositeconnectionspacedelegate";

/// Writes everything in the CMYK of the output profile: only gray, and rasters tagged with that
/// profile, keep their values.
using ColorManagedCMYKCompositeConnectionSpaceDelegate =
    ColorManaged<CMYKCompositeConnectionSpaceDelegate, kCMYKModule>;

}  // namespace VANTIX::RENDERING
