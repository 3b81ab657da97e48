// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "baseconnectionspacedelegate/baseconnectionspacedelegate.h"
#include "baseconnectionspacedelegate/names.h"
#include "core/color/iconnectioncolorspacefactory.h"

namespace VANTIX::RENDERING {

/// Writes colours in the spaces they arrive in: profile-based spaces as the device space of their
/// family, or as ICC-based spaces where profiles are embedded; Separation and DeviceN as such, or
/// as their alternates where spots are converted to process colours. It has no destination space.
class AsIsCompositeConnectionSpaceDelegate : public BaseConnectionSpaceDelegate {
public:
    /// `options` are `DELEGATEOPTION` bits.
    AsIsCompositeConnectionSpaceDelegate(IClassFactory& factory, std::uint32_t options);

    void Init(bool setDefaultColour) override;
    bool SetColorSpace(IConnectionColorSpace* space, bool fill) override;
    bool SetUncoloredPattern(const char* patternName, IConnectionColorSpace* underlying,
                             bool fill) override;
    void Image(Raster& raster, float x, float y, float width, float height) override;
    void FillWithColorSpace(IConnectionColorSpace* shading, ResourceId id, float x, float y,
                            float width, float height, bool paint) override;
    bool SetColor(const float* values, std::int32_t count, bool fill) override;
    void InjectIndexedImage(Raster& raster, float x, float y, float width, float height,
                            COLOR::IIndexedConnectionColorSpace* indexed) override;
    void WriteGreyscaleImage(Raster& raster, float x, float y, float width, float height) override;

private:
    using BaseConnectionSpaceDelegate::InjectRaster;
    void InjectRaster(Raster& raster, float x, float y, float width, float height,
                      const SpotChannels& spots);
    void InjectEmbeddedProfiledBasedRaster(Raster& raster, float x, float y, float width,
                                           float height, const SpotChannels& spots);
    /// Writes a raster of a Separation or DeviceN space.
    void InjectSpotSpaceRaster(Raster& raster);
    /// Writes a raster of a device or profile-based space as one of the device space `family`.
    void InjectFamilyRaster(Raster& raster, FourCC family);
    /// Writes a raster whose one channel runs through an RGB profile.
    void InjectSingleChannelRGB(Raster& raster, IConnectionColorSpace& profile);
    void WriteCalibratedColour(Raster& raster, IConnectionColorSpace* space, float x, float y,
                               float width, float height, const SpotChannels& spots);
    void InjectCMYKPlusSpotRaster(Raster& raster, float x, float y, float width, float height,
                                  const SpotChannels& spots, IConnectionColorSpace* space);
    void InjectRGBPlusSpotRaster(Raster& raster, float x, float y, float width, float height,
                                 const SpotChannels& spots, IConnectionColorSpace* space);
    void InjectIndexedPlusSpotRaster(Raster& raster, float x, float y, float width, float height,
                                     const SpotChannels& spots);
    void AddSpots(const SpotChannels& spots, IConnectionColorSpace& target,
                  Colorants& colorants) const;
    void WriteColorantImage(Raster& raster, const Colorants& colorants,
                            IConnectionColorSpace& alternate);
    void WriteExpandedIndexedImageData(Raster& raster);
    /// Hands the raster to a DeviceN delegate on the same output.
    void DrawInDeviceN(Raster& raster, float x, float y, float width, float height);
    /// Begins an image in the space that `colour` spells, 12 bits for samples of 16.
    bool BeginImage(const Raster& raster, std::string_view colour, const char* decode);
    void InjectEmbeddedIndexedImage(Raster& raster, COLOR::IIndexedConnectionColorSpace& indexed,
                                    bool imagemask);
    /// Appends the text of a palette's base space with its profile; 0 components (logged) for a
    /// space without one.
    void AppendEmbeddedBase(std::string& colour, IConnectionColorSpace& base, Palette& palette);

    /// The space that `space` is written as: the alternate of a spot colour that is converted,
    /// else itself.
    [[nodiscard]] IConnectionColorSpace* WrittenSpace(IConnectionColorSpace* space) const;

    /// A colour of `space` as one of its written space, ink amounts for CMYK; nothing (logged) when
    /// it cannot be converted.
    [[nodiscard]] std::optional<ColorValues> WrittenColor(IConnectionColorSpace* space,
                                                          const float* values,
                                                          std::int32_t count) const;

    bool SetPlainColorSpace(IConnectionColorSpace* space);
    bool SetEmbedProfileColorSpace(IConnectionColorSpace* space);

    /// Defines the ICC profile behind `space` (or behind its alternate) in the output; its name is
    /// then in `mResourceName`, which is empty when there is none.
    void AddProfileColorSpace(IConnectionColorSpace* space);

    /// Null (logged) when the host has none.
    [[nodiscard]] TInterfacePtr<COLOR::IConnectionColorSpaceFactory> MakeSpaceFactory() const;

    [[nodiscard]] TRenderingIntent FirstIntent() const;

    const bool mEmbedProfiles;
    std::string mResourceName;  // kept, so that naming a resource again allocates nothing
};

}  // namespace VANTIX::RENDERING
