// SPDX-License-Identifier: MIT
#pragma once

#include "privatecmykcompositeconnectionspacedelegate/privatecmykcompositeconnectionspacedelegate.h"

namespace VANTIX::RENDERING {

/// Writes everything in DeviceCMYK, converting only what is not gray or CMYK already.
class CMYKCompositeConnectionSpaceDelegate : public PrivateCMYKCompositeConnectionSpaceDelegate {
public:
    /// `options` are `DELEGATEOPTION` bits.
    CMYKCompositeConnectionSpaceDelegate(IClassFactory& factory,
                                         COLOR::IConnectionColorSpace* destination,
                                         std::uint32_t options)
        : PrivateCMYKCompositeConnectionSpaceDelegate(factory, destination, options) {}

    void InjectRaster(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                      float height) override {
        InjectByFamily(raster, x, y, width, height);
    }
};

/// Writes everything in the CMYK of the output profile: only gray, and rasters tagged with that
/// profile, keep their values.
class ColorManagedCMYKCompositeConnectionSpaceDelegate
    : public PrivateCMYKCompositeConnectionSpaceDelegate {
public:
    /// `options` are `DELEGATEOPTION` bits.
    ColorManagedCMYKCompositeConnectionSpaceDelegate(IClassFactory& factory,
                                                     COLOR::IConnectionColorSpace* destination,
                                                     std::uint32_t options);

    bool SetColor(const float* values, std::int32_t count, bool fill) override;
    void InjectRaster(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                      float height) override;
    void InjectDeviceSpaceImage(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                                float height, FourCC deviceKey) override;
};

}  // namespace VANTIX::RENDERING
