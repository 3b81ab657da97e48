// SPDX-License-Identifier: MIT
#pragma once

#include "baseconnectionspacedelegate/processconnectionspacedelegate.h"

namespace VANTIX::RENDERING {

/// Writes everything in DeviceRGB, converting only what is not gray or RGB already; promoted gray
/// is neutral RGB. The destination space is DeviceRGB.
class RGBCompositeConnectionSpaceDelegate : public ProcessConnectionSpaceDelegate {
public:
    /// `options` are `DELEGATEOPTION` bits.
    RGBCompositeConnectionSpaceDelegate(IClassFactory& factory,
                                        COLOR::IConnectionColorSpace* destination,
                                        std::uint32_t options);

    bool SetColorSpace(COLOR::IConnectionColorSpace* space, bool /*fill*/) override {
        return SelectFamily(space);
    }

    void InjectRaster(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                      float height) override;
    /// Writes a raster of a device or profile-based space by its family.
    void InjectDeviceSpaceImage(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                                float height, FourCC deviceKey) override;
    bool SetColor(const float* values, std::int32_t count, bool fill) override;
    void WriteGreyscaleImage(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                             float height) override;
    /// Converts a raster of four inks, which has a colour space.
    void InjectCMYKImage(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                         float height) override;

protected:
    /// Converts the raster into 8-bit, or 12-bit, DeviceRGB.
    void InjectRasterAsDeviceRGBImage(GRAPHICS::IRasterComponent& raster, float x, float y,
                                      float width, float height);
    void Inject16BitRasterAsDeviceRGBImage(GRAPHICS::IRasterComponent& raster, float x, float y,
                                           float width, float height);
    /// Converts into 8 or 12 bits, by the raster's depth.
    void InjectConvertedRaster(GRAPHICS::IRasterComponent& raster);
    /// Writes the samples of an RGB raster as they are.
    void WriteRGBRaster(GRAPHICS::IRasterComponent& raster);

private:
    void WriteForeignRaster(GRAPHICS::IRasterComponent& raster, FourCC family);
};

/// Writes everything in the RGB of the output profile: only gray, and rasters tagged with that
/// profile, keep their values.
class ColorManagedRGBCompositeConnectionSpaceDelegate : public RGBCompositeConnectionSpaceDelegate {
public:
    /// `options` are `DELEGATEOPTION` bits.
    ColorManagedRGBCompositeConnectionSpaceDelegate(IClassFactory& factory,
                                                    COLOR::IConnectionColorSpace* destination,
                                                    std::uint32_t options);

    void InjectRaster(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                      float height) override;
    void InjectDeviceSpaceImage(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                                float height, FourCC deviceKey) override;
    bool SetColor(const float* values, std::int32_t count, bool fill) override;
};

}  // namespace VANTIX::RENDERING
