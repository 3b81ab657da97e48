// SPDX-License-Identifier: MIT
#pragma once

#include "baseconnectionspacedelegate/names.h"
#include "baseconnectionspacedelegate/processconnectionspacedelegate.h"

namespace VANTIX::RENDERING {

/// What the delegates share whose jobs are in process inks: colours and rasters become DeviceCMYK,
/// promoted gray is black ink alone, Registration and None stay what they are. The destination
/// space is DeviceCMYK; host CMYK values are complements of ink amounts.
class PrivateCMYKCompositeConnectionSpaceDelegate : public ProcessConnectionSpaceDelegate {
public:
    /// `options` are `DELEGATEOPTION` bits.
    PrivateCMYKCompositeConnectionSpaceDelegate(IClassFactory& factory,
                                                IConnectionColorSpace* destination,
                                                std::uint32_t options);

    bool SetColorSpace(IConnectionColorSpace* space, bool /*fill*/) override {
        return SelectFamily(space);
    }

    bool SetUncoloredPattern(const char* patternName, IConnectionColorSpace* underlying,
                             bool fill) override;

    /// Writes a raster of a device or profile-based space by its family.
    void InjectDeviceSpaceImage(Raster& raster, float x, float y, float width, float height,
                                FourCC deviceKey) override;
    void WriteGreyscaleImage(Raster& raster, float x, float y, float width, float height) override;
    void InjectRGBImage(Raster& raster, float x, float y, float width, float height) override;
    void InjectCMYKImage(Raster& raster, float x, float y, float width, float height) override;
    /// Writes samples that are ink amounts already.
    virtual void InjectCMYK(Raster& raster, float x, float y, float width, float height);

protected:
    /// Gray as gray, rasters with a profile by its family, the others converted.
    void InjectByFamily(Raster& raster, float x, float y, float width, float height);
    /// Gray in black ink alone, the others by their family.
    void InjectForeignProfile(Raster& raster, COLOR::IProfileBasedConnectionColorSpace& profile,
                              float x, float y, float width, float height);
    /// Writes a gray raster with a profile in black ink alone, by the luminance of its colours.
    void InjectProfileBasedGreyRaster(Raster& raster,
                                      COLOR::IProfileBasedConnectionColorSpace* profile, float x,
                                      float y, float width, float height);
    /// Converts the raster into 8-bit, or 12-bit, DeviceCMYK.
    void InjectRasterAsDeviceCMYKImage(Raster& raster, float x, float y, float width, float height);
    void Inject16BitRasterAsDeviceCMYKImage(Raster& raster, float x, float y, float width,
                                            float height);
    /// Writes the samples of a CMYK raster as they are.
    void WriteModelRaster(Raster& raster);
    /// Converts into 8 or 12 bits, by the raster's depth.
    void InjectConvertedRaster(Raster& raster);

private:
    [[nodiscard]] std::optional<ColorValues> KeptColor(IConnectionColorSpace* source,
                                                       const float* values,
                                                       std::int32_t count) const override;
};

}  // namespace VANTIX::RENDERING
