// SPDX-License-Identifier: MIT
#pragma once

#include "baseconnectionspacedelegate/processconnectionspacedelegate.h"

namespace VANTIX::RENDERING {

/// What the delegates share whose jobs are in process inks: colours and rasters become DeviceCMYK,
/// promoted gray is black ink alone, Registration and None stay what they are. The destination
/// space is DeviceCMYK; host CMYK values are complements of ink amounts.
class PrivateCMYKCompositeConnectionSpaceDelegate : public ProcessConnectionSpaceDelegate {
public:
    bool SetColorSpace(COLOR::IConnectionColorSpace* space, bool /*fill*/) override {
        return SelectFamily(space);
    }

    bool SetUncoloredPattern(const char* patternName, COLOR::IConnectionColorSpace* underlying,
                             bool fill) override;
    bool SetColor(const float* values, std::int32_t count, bool fill) override;

    /// Writes a raster of a device or profile-based space by its family.
    void InjectDeviceSpaceImage(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                                float height, FourCC deviceKey) override;
    void WriteGreyscaleImage(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                             float height) override;
    void InjectRGBImage(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                        float height) override;
    void InjectCMYKImage(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                         float height) override;
    /// Writes samples that are ink amounts already.
    virtual void InjectCMYK(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                            float height);

protected:
    PrivateCMYKCompositeConnectionSpaceDelegate(IClassFactory& factory,
                                                COLOR::IConnectionColorSpace* destination,
                                                std::uint32_t options);

    /// Gray as gray, rasters with a profile by its family, the others converted.
    void InjectByFamily(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                        float height);
    /// Writes a gray raster with a profile in black ink alone, by the luminance of its colours.
    void InjectProfileBasedGreyRaster(GRAPHICS::IRasterComponent& raster,
                                      COLOR::IProfileBasedConnectionColorSpace* profile, float x,
                                      float y, float width, float height);
    /// Converts the raster into 8-bit, or 12-bit, DeviceCMYK.
    void InjectRasterAsDeviceCMYKImage(GRAPHICS::IRasterComponent& raster, float x, float y,
                                       float width, float height);
    void Inject16BitRasterAsDeviceCMYKImage(GRAPHICS::IRasterComponent& raster, float x, float y,
                                            float width, float height);
    /// Writes the samples of a CMYK raster as they are.
    void WriteCMYKRaster(GRAPHICS::IRasterComponent& raster);
    /// Converts into 8 or 12 bits, by the raster's depth.
    void InjectConvertedRaster(GRAPHICS::IRasterComponent& raster);
};

}  // namespace VANTIX::RENDERING
