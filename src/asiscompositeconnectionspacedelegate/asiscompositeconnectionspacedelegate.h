// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "baseconnectionspacedelegate/baseconnectionspacedelegate.h"

namespace VANTIX::RENDERING {

/// Writes colours in the spaces they arrive in: profile-based spaces as the device space of their
/// family, or as ICC-based spaces where profiles are embedded; Separation and DeviceN as such, or
/// as their alternates where spots are converted to process colours. It has no destination space.
class AsIsCompositeConnectionSpaceDelegate : public BaseConnectionSpaceDelegate {
public:
    /// `options` are `DELEGATEOPTION` bits.
    AsIsCompositeConnectionSpaceDelegate(IClassFactory& factory, std::uint32_t options);

    void Init(bool setDefaultColour) override;
    bool SetColorSpace(COLOR::IConnectionColorSpace* space, bool fill) override;
    bool SetUncoloredPattern(const char* patternName, COLOR::IConnectionColorSpace* underlying,
                             bool fill) override;
    void Image(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
               float height) override;
    void FillWithColorSpace(COLOR::IConnectionColorSpace* shading, ResourceId id, float x, float y,
                            float width, float height, bool paint) override;
    bool SetColor(const float* values, std::int32_t count, bool fill) override;
    void InjectIndexedImage(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                            float height, COLOR::IIndexedConnectionColorSpace* indexed) override;
    void WriteGreyscaleImage(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                             float height) override;

private:
    /// The space that `space` is written as: the alternate of a spot colour that is converted,
    /// else itself.
    [[nodiscard]] COLOR::IConnectionColorSpace* WrittenSpace(
        COLOR::IConnectionColorSpace* space) const;

    /// A colour of `space` as one of its written space, ink amounts for CMYK; nothing (logged) when
    /// it cannot be converted.
    [[nodiscard]] std::optional<ColorValues> WrittenColor(COLOR::IConnectionColorSpace* space,
                                                          const float* values,
                                                          std::int32_t count) const;

    bool SetPlainColorSpace(COLOR::IConnectionColorSpace* space);
    bool SetEmbedProfileColorSpace(COLOR::IConnectionColorSpace* space);

    /// Defines the ICC profile behind `space` (or behind its alternate) in the output; its name is
    /// then in `mResourceName`, which is empty when there is none.
    void AddProfileColorSpace(COLOR::IConnectionColorSpace* space);

    [[nodiscard]] COLOR::TRenderingIntent FirstIntent() const;

    const bool mEmbedProfiles;
    std::string mResourceName;  // kept, so that naming a resource again allocates nothing
};

}  // namespace VANTIX::RENDERING
