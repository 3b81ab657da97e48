// SPDX-License-Identifier: MIT
#pragma once

#include "baseconnectionspacedelegate/processconnectionspacedelegate.h"
#include "grayscaleconnectionspacedelegate/graylines.h"

namespace VANTIX::RENDERING {

/// What the delegates share whose jobs are gray alone.
class BaseGreyConnectionSpaceDelegate : public ProcessConnectionSpaceDelegate {
public:
    void Init(bool setDefaultColour) override;
    /// Converts palettes into DeviceGray; needs `Init`.
    void InjectIndexedImage(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                            float height, COLOR::IIndexedConnectionColorSpace* indexed) override;

protected:
    BaseGreyConnectionSpaceDelegate(IClassFactory& factory,
                                    COLOR::IConnectionColorSpace* destination,
                                    std::uint32_t options);

    /// What is said when there is no memory for a gray line.
    struct GrayMessages {
        BufferMessage gray;
        BufferMessage packed;
    };

    /// False (logged) for a depth that has no gray samples of 8 or 16 bits.
    static bool IsGrayDepth(std::int32_t depth);
    /// Writes the gray of a raster of three lights or four complemented inks, by its samples alone.
    void WriteGrayOfPlanes(GRAPHICS::IRasterComponent& raster, std::int32_t channels,
                           const GrayMessages& messages);

    TInterfacePtr<COLOR::IConnectionColorSpace> mGrayColorSpace;  // DeviceGray
};

/// Writes everything in DeviceGray, converting only what is not gray already.
class DeviceGrayConnectionSpaceDelegate : public BaseGreyConnectionSpaceDelegate {
public:
    /// `options` are `DELEGATEOPTION` bits.
    DeviceGrayConnectionSpaceDelegate(IClassFactory& factory,
                                      COLOR::IConnectionColorSpace* destination,
                                      std::uint32_t options)
        : BaseGreyConnectionSpaceDelegate(factory, destination, options) {}

    bool SetColorSpace(COLOR::IConnectionColorSpace* space, bool /*fill*/) override {
        return SetDeviceColorSpaceByKey(space, "gray"_cc);
    }

    void InjectRaster(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                      float height) override;
    void InjectDeviceSpaceImage(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                                float height, FourCC deviceKey) override;
    bool SetColor(const float* values, std::int32_t count, bool fill) override;
    /// Writes gray samples of 8 or 16 bits as they are.
    void WriteGreyscaleImage(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                             float height) override;
    void InjectRGBImage(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                        float height) override;
    void InjectCMYKImage(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                         float height) override;

protected:
    /// Converts the raster into DeviceGray of 8 bits, or 12 of 16.
    void InjectRasterAsDeviceGrayImage(GRAPHICS::IRasterComponent& raster, float x, float y,
                                       float width, float height);
};

/// Converts every colour and raster into DeviceGray through profiles: only rasters tagged with the
/// output profile keep their values. The space is selected with each colour.
class ColorManagedDeviceGrayConnectionSpaceDelegate : public DeviceGrayConnectionSpaceDelegate {
public:
    /// `options` are `DELEGATEOPTION` bits.
    ColorManagedDeviceGrayConnectionSpaceDelegate(IClassFactory& factory,
                                                  COLOR::IConnectionColorSpace* destination,
                                                  std::uint32_t options);

    /// Selects Registration; leaves every other space to `SetColor`.
    bool SetColorSpace(COLOR::IConnectionColorSpace* space, bool fill) override;
    bool SetUncoloredPattern(const char* patternName, COLOR::IConnectionColorSpace* underlying,
                             bool fill) override;
    void InjectRaster(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                      float height) override;
    void InjectDeviceSpaceImage(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                                float height, FourCC deviceKey) override;
    bool SetColor(const float* values, std::int32_t count, bool fill) override;
};

/// The same without images.
class Grayscale100ConnectionSpaceDelegate : public ColorManagedDeviceGrayConnectionSpaceDelegate {
public:
    /// `options` are `DELEGATEOPTION` bits.
    Grayscale100ConnectionSpaceDelegate(IClassFactory& factory,
                                        COLOR::IConnectionColorSpace* destination,
                                        std::uint32_t options)
        : ColorManagedDeviceGrayConnectionSpaceDelegate(factory, destination, options) {}

    /// Draws nothing (logged).
    void Image(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
               float height) override;
};

/// Writes gray as luminance in CIE-based spaces with the white points of the colours. It selects no
/// space by itself, so that `SetColorSpaceAndValues` sets no colour.
class CalibratedGrayConnectionSpaceDelegate : public BaseGreyConnectionSpaceDelegate {
public:
    /// `destination` is calibrated gray; `options` are `DELEGATEOPTION` bits.
    CalibratedGrayConnectionSpaceDelegate(IClassFactory& factory,
                                          COLOR::IConnectionColorSpace* destination,
                                          std::uint32_t options)
        : BaseGreyConnectionSpaceDelegate(factory, destination, options) {}

    /// Selects nothing; always false.
    bool SetColorSpace(COLOR::IConnectionColorSpace* /*space*/, bool /*fill*/) override {
        return false;
    }

    /// Converts shadings into DeviceGray; needs `Init`.
    void FillWithColorSpace(COLOR::IConnectionColorSpace* shading, ResourceId id, float x, float y,
                            float width, float height, bool paint) override;
    void InjectRaster(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                      float height) override;
    /// Writes rasters of the device spaces: gray below 16 bits as it is.
    void InjectDeviceSpaceImage(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                                float height, FourCC deviceKey) override;
    /// Selects the calibrated gray of the state's current space and sets the luminance of the
    /// colour.
    bool SetColor(const float* values, std::int32_t count, bool fill) override;
    /// Writes gray samples of 16 bits as luminance.
    void WriteGreyscaleImage(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                             float height) override;
    void InjectRGBImage(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                        float height) override;
    /// Writes the gray of the RGB that the host makes of inks.
    void InjectCMYKImage(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                         float height) override;

private:
    void WriteLuminance(GRAPHICS::IRasterComponent& raster, std::int32_t depth,
                        const BufferMessage& message);
};

}  // namespace VANTIX::RENDERING
