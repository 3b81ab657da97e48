// SPDX-License-Identifier: MIT
#pragma once

#include "baseconnectionspacedelegate/names.h"
#include "baseconnectionspacedelegate/processconnectionspacedelegate.h"
#include "grayscaleconnectionspacedelegate/graylines.h"

namespace VANTIX::RENDERING {

/// What the delegates share whose jobs are gray alone.
class BaseGreyConnectionSpaceDelegate : public ProcessConnectionSpaceDelegate {
public:
    /// `options` are `DELEGATEOPTION` bits.
    BaseGreyConnectionSpaceDelegate(IClassFactory& factory, IConnectionColorSpace* destination,
                                    std::uint32_t options);

    void Init(bool setDefaultColour) override;
    /// Converts palettes into DeviceGray; needs `Init`.
    void InjectIndexedImage(Raster& raster, float x, float y, float width, float height,
                            COLOR::IIndexedConnectionColorSpace* indexed) override;

protected:
    /// What is said when there is no memory for a gray line.
    struct GrayMessages {
        BufferMessage gray;
        BufferMessage packed;
    };

    /// The state's current space (borrowed), or null (logged).
    [[nodiscard]] IConnectionColorSpace* InputSpace(bool fill) const;
    /// False (logged) for a depth that has no gray samples of 8 or 16 bits.
    static bool IsGrayDepth(std::int32_t depth);
    /// Writes the gray of a raster of three lights or four complemented inks, by its samples alone.
    void WriteGrayOfPlanes(Raster& raster, std::int32_t channels, const GrayMessages& messages);

    TInterfacePtr<IConnectionColorSpace> mGrayColorSpace;  // DeviceGray

private:
    [[nodiscard]] std::optional<ColorValues> KeptColor(IConnectionColorSpace* source,
                                                       const float* values,
                                                       std::int32_t count) const override;
};

/// Writes everything in DeviceGray, converting only what is not gray already.
class DeviceGrayConnectionSpaceDelegate : public BaseGreyConnectionSpaceDelegate {
public:
    using BaseGreyConnectionSpaceDelegate::BaseGreyConnectionSpaceDelegate;

    bool SetColorSpace(IConnectionColorSpace* space, bool /*fill*/) override {
        return SetDeviceColorSpaceByKey(space, "gray"_cc);
    }

    void InjectRaster(Raster& raster, float x, float y, float width, float height) override;
    void InjectDeviceSpaceImage(Raster& raster, float x, float y, float width, float height,
                                FourCC deviceKey) override;
    /// Writes gray samples of 8 or 16 bits as they are.
    void WriteGreyscaleImage(Raster& raster, float x, float y, float width, float height) override;
    void InjectRGBImage(Raster& raster, float x, float y, float width, float height) override;
    void InjectCMYKImage(Raster& raster, float x, float y, float width, float height) override;

protected:
    /// Converts the raster into DeviceGray of 8 bits, or 12 of 16.
    void InjectRasterAsDeviceGrayImage(Raster& raster, float x, float y, float width, float height);
};

/// Converts every colour and raster into DeviceGray through profiles: only rasters tagged with the
/// output profile keep their values. The space is selected with each colour.
class ColorManagedDeviceGrayConnectionSpaceDelegate : public DeviceGrayConnectionSpaceDelegate {
public:
    /// `options` are `DELEGATEOPTION` bits.
    ColorManagedDeviceGrayConnectionSpaceDelegate(IClassFactory& factory,
                                                  IConnectionColorSpace* destination,
                                                  std::uint32_t options);

    /// Selects Registration; leaves every other space to `SetColor`.
    bool SetColorSpace(IConnectionColorSpace* space, bool fill) override;
    bool SetUncoloredPattern(const char* patternName, IConnectionColorSpace* underlying,
                             bool fill) override;
    void InjectRaster(Raster& raster, float x, float y, float width, float height) override;
    void InjectDeviceSpaceImage(Raster& raster, float x, float y, float width, float height,
                                FourCC deviceKey) override;
    bool SetColor(const float* values, std::int32_t count, bool fill) override;
};

/// The same without images.
class Grayscale100ConnectionSpaceDelegate : public ColorManagedDeviceGrayConnectionSpaceDelegate {
public:
    using ColorManagedDeviceGrayConnectionSpaceDelegate::
        ColorManagedDeviceGrayConnectionSpaceDelegate;

    /// Draws nothing (logged).
    void Image(Raster& raster, float x, float y, float width, float height) override;
};

/// Writes gray as luminance in CIE-based spaces with the white points of the colours. It selects no
/// space by itself, so that `SetColorSpaceAndValues` sets no colour. The destination is calibrated
/// gray.
class CalibratedGrayConnectionSpaceDelegate : public BaseGreyConnectionSpaceDelegate {
public:
    using BaseGreyConnectionSpaceDelegate::BaseGreyConnectionSpaceDelegate;

    /// Selects nothing; always false.
    bool SetColorSpace(IConnectionColorSpace* /*space*/, bool /*fill*/) override { return false; }

    /// Converts shadings into DeviceGray; needs `Init`.
    void FillWithColorSpace(IConnectionColorSpace* shading, ResourceId id, float x, float y,
                            float width, float height, bool paint) override;
    void InjectRaster(Raster& raster, float x, float y, float width, float height) override;
    /// Writes rasters of the device spaces: gray below 16 bits as it is.
    void InjectDeviceSpaceImage(Raster& raster, float x, float y, float width, float height,
                                FourCC deviceKey) override;
    /// Selects the calibrated gray of the state's current space and sets the luminance of the
    /// colour.
    bool SetColor(const float* values, std::int32_t count, bool fill) override;
    /// Writes gray samples of 16 bits as luminance.
    void WriteGreyscaleImage(Raster& raster, float x, float y, float width, float height) override;
    void InjectRGBImage(Raster& raster, float x, float y, float width, float height) override;
    /// Writes the gray of the RGB that the host makes of inks.
    void InjectCMYKImage(Raster& raster, float x, float y, float width, float height) override;

private:
    void WriteLuminance(Raster& raster, std::int32_t depth, const BufferMessage& message);
};

}  // namespace VANTIX::RENDERING
