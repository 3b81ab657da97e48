// SPDX-License-Identifier: MIT
#pragma once

#include "baseconnectionspacedelegate/colormanaged.h"

namespace VANTIX::RENDERING {

/// Writes everything in DeviceRGB, converting only what is not gray or RGB already; promoted gray
/// is neutral RGB. The destination space is DeviceRGB.
class RGBCompositeConnectionSpaceDelegate : public ProcessConnectionSpaceDelegate {
public:
    /// `options` are `DELEGATEOPTION` bits.
    RGBCompositeConnectionSpaceDelegate(IClassFactory& factory, IConnectionColorSpace* destination,
                                        std::uint32_t options);

    bool SetColorSpace(IConnectionColorSpace* space, bool /*fill*/) override {
        return SelectFamily(space);
    }

    void InjectRaster(Raster& raster, float x, float y, float width, float height) override;
    /// Writes a raster of a device or profile-based space by its family.
    void InjectDeviceSpaceImage(Raster& raster, float x, float y, float width, float height,
                                FourCC deviceKey) override;
    void WriteGreyscaleImage(Raster& raster, float x, float y, float width, float height) override;
    /// Converts a raster of four inks, which has a colour space.
    void InjectCMYKImage(Raster& raster, float x, float y, float width, float height) override;

protected:
    /// Writes the raster by the family of its profile.
    void InjectForeignProfile(Raster& raster, COLOR::IProfileBasedConnectionColorSpace& profile,
                              float x, float y, float width, float height);
    /// Converts the raster into 8-bit, or 12-bit, DeviceRGB.
    void InjectRasterAsDeviceRGBImage(Raster& raster, float x, float y, float width, float height);
    void Inject16BitRasterAsDeviceRGBImage(Raster& raster, float x, float y, float width,
                                           float height);
    /// Converts into 8 or 12 bits, by the raster's depth.
    void InjectConvertedRaster(Raster& raster);
    /// Writes the samples of an RGB raster as they are.
    void WriteModelRaster(Raster& raster);

private:
    [[nodiscard]] std::optional<ColorValues> KeptColor(IConnectionColorSpace* source,
                                                       const float* values,
                                                       std::int32_t count) const override;
    void WriteForeignRaster(Raster& raster, FourCC family);
};

inline constexpr char kRGBModule[] = "src/rgbcompositeconnectionspacedelegate";

/// Writes everything in the RGB of the output profile: only gray, and rasters tagged with that
/// profile, keep their values.
using ColorManagedRGBCompositeConnectionSpaceDelegate =
    ColorManaged<RGBCompositeConnectionSpaceDelegate, kRGBModule>;

}  // namespace VANTIX::RENDERING
