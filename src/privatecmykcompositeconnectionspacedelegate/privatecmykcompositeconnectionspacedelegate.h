// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "baseconnectionspacedelegate/baseconnectionspacedelegate.h"

namespace VANTIX::RENDERING {

/// What the delegates share whose jobs are in process inks: colours and rasters become DeviceCMYK,
/// gray stays DeviceGray unless it is to be promoted, Registration and None stay what they are. The
/// destination space is DeviceCMYK; host CMYK values are complements of ink amounts.
class PrivateCMYKCompositeConnectionSpaceDelegate : public BaseConnectionSpaceDelegate {
public:
    void Init(bool setDefaultColour) override;
    bool SetColorSpace(COLOR::IConnectionColorSpace* space, bool fill) override;
    bool SetUncoloredPattern(const char* patternName, COLOR::IConnectionColorSpace* underlying,
                             bool fill) override;
    /// Keeps shadings in DeviceCMYK as they are; converts the others.
    void FillWithColorSpace(COLOR::IConnectionColorSpace* shading, ResourceId id, float x, float y,
                            float width, float height, bool paint) override;
    bool SetColor(const float* values, std::int32_t count, bool fill) override;

    /// Writes a raster of a device or profile-based space by its family.
    void InjectDeviceSpaceImage(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                                float height, FourCC deviceKey) override;
    void InjectIndexedImage(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                            float height, COLOR::IIndexedConnectionColorSpace* indexed) override;
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
                                                std::uint32_t options)
        : BaseConnectionSpaceDelegate(factory, destination, options) {}

    /// Writes the tint of Registration or None, whose space stays selected; false for every other
    /// space.
    bool SetPlateSelection(COLOR::IConnectionColorSpace* space, const float* values);

    /// Gray as gray, rasters with a profile by its family, the others converted.
    void InjectByFamily(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                        float height);
    void InjectGreyRasterAsGray(GRAPHICS::IRasterComponent& raster);
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

    /// A new DeviceCMYK space, or null (logged).
    [[nodiscard]] TInterfacePtr<COLOR::IConnectionColorSpace> MakeDeviceCMYK() const;

    /// Whether the host mixes alpha with white: not where a mask is written for it.
    [[nodiscard]] bool CompositesAlpha() const { return !mJawsWorkaround; }

private:
    struct ConversionMessages;

    bool BeginImage(const GRAPHICS::IRasterComponent& raster, std::int32_t bits,
                    const std::string& colour, const char* decode);
    void WriteConvertedRaster(GRAPHICS::IRasterComponent& raster, std::int32_t bits,
                              const ConversionMessages& messages);
    void WriteGreyRaster(GRAPHICS::IRasterComponent& raster);
    static void WriteHighBytes(GRAPHICS::IRasterComponent& raster,
                               PS::IPostScriptOutputContext& out);
    /// "[/Indexed /DeviceCMYK n <…>] " of all grays of `depth` bits in black ink; empty (logged)
    /// when the host cannot convert them.
    std::string PromotedGrayPalette(std::int32_t depth);
};

}  // namespace VANTIX::RENDERING
