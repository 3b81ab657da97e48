// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <optional>
#include <utility>
#include <vector>

#include "baseconnectionspacedelegate/names.h"
#include "privatecmykcompositeconnectionspacedelegate/privatecmykcompositeconnectionspacedelegate.h"

namespace VANTIX::RENDERING {

struct Colorants;

/// Writes process CMYK and spot inks: Separation and DeviceN colours keep their colorants, every
/// other colour becomes DeviceCMYK. Rasters with spot channels become DeviceN images of the process
/// inks that they have and their spots; those without go to an inner CMYK delegate.
class DeviceNConnectionSpaceDelegate : public PrivateCMYKCompositeConnectionSpaceDelegate {
public:
    using Inner = TInterfacePtr<PrivateCMYKCompositeConnectionSpaceDelegate>;

    /// `options` are `DELEGATEOPTION` bits.
    DeviceNConnectionSpaceDelegate(IClassFactory& factory, IConnectionColorSpace* destination,
                                   std::uint32_t options, Inner inner)
        : PrivateCMYKCompositeConnectionSpaceDelegate(factory, destination, options),
          mInner(std::move(inner)) {}

    /// Aggregates into the inner delegate as well.
    Status Aggregate(IObject* object, GUID id) override;

    bool SetColorSpace(IConnectionColorSpace* space, bool fill) override;
    /// A pattern takes the components of the space that is selected for it.
    bool SetUncoloredPattern(const char* patternName, IConnectionColorSpace* underlying,
                             bool fill) override;
    /// Keeps shadings in spot spaces and DeviceCMYK as they are; converts the others.
    void FillWithColorSpace(IConnectionColorSpace* shading, ResourceId id, float x, float y,
                            float width, float height, bool paint) override;
    void SetGraphicsState(GRAPHICS::IGraphicsState* state) override;
    bool SetColor(const float* values, std::int32_t count, bool fill) override;
    void InjectRaster(Raster& raster, float x, float y, float width, float height) override;
    void InjectIndexedImage(Raster& raster, float x, float y, float width, float height,
                            COLOR::IIndexedConnectionColorSpace* indexed) override;
    void WriteGreyscaleImage(Raster& raster, float x, float y, float width, float height) override;

protected:
    /// A Separation of the same ink over DeviceCMYK: the same one for the same space. Null (logged)
    /// when it cannot be made.
    COLOR::ISeparationConnectionColorSpace* CreateSeparationCSWithCMYKAlternate(
        IConnectionColorSpace* space);

    void InjectCMYKPlusSpotRaster(Raster& given, float x, float y, float width, float height);
    /// Writes an image whose spot channels are the inks of `space`, in their order.
    void WriteRasterToDeviceNWithInks(Raster& raster, float x, float y, float width, float height,
                                      COLOR::IDeviceNConnectionColorSpace* space,
                                      const COLOR::IInkCollection* inks, TRenderingIntent intent);
    /// Writes the data of the image just begun: the channels that `selection` marks, process
    /// channels first. 0, 62 without an output context, 3 (logged) when a channel has no data.
    Status WriteCMYKPlusSpotChannelData(Raster& raster, const SpotChannels& spots,
                                        IConnectionColorSpace* space, std::uint64_t selection);
    /// The raster of an Indexed one over inks with a plate for each ink; `out` stays null when it
    /// cannot be made (logged).
    void InjectExpandedIndexedRasterWithSpot(Raster& raster,
                                             COLOR::IIndexedConnectionColorSpace* indexed,
                                             TInterfacePtr<Raster>& out);

    [[nodiscard]] PrivateCMYKCompositeConnectionSpaceDelegate& InnerDelegate() { return *mInner; }

private:
    struct KnownSeparation {
        GUID source;
        TInterfacePtr<IConnectionColorSpace> made;
    };

    TInterfacePtr<IConnectionColorSpace> MakeSeparation(
        const COLOR::ISeparationConnectionColorSpace& separation);
    void WriteSeparationRaster(Raster& raster);
    /// What full tint of an ink leaves on paper, as ink amounts; nothing when the host cannot
    /// convert it.
    [[nodiscard]] std::optional<std::array<float, 4>> InkAmounts(const IConnectionColorSpace& space,
                                                                 const float* tints,
                                                                 std::int32_t count) const;
    bool AddSpots(const SpotChannels& spots, const char* range, std::size_t firstBit,
                  Colorants& colorants, std::uint64_t& selection) const;
    bool AddInks(COLOR::IDeviceNConnectionColorSpace& space, const COLOR::IInkCollection& inks,
                 std::uint64_t mask, Colorants& colorants) const;

    Inner mInner;
    std::vector<KnownSeparation> mSeparations;
};

/// The same with all but the spots converted into the CMYK of the output profile.
class ColorManagedDeviceNConnectionSpaceDelegate : public DeviceNConnectionSpaceDelegate {
public:
    ColorManagedDeviceNConnectionSpaceDelegate(IClassFactory& factory,
                                               IConnectionColorSpace* destination,
                                               std::uint32_t options, Inner inner);

    bool SetColorSpace(IConnectionColorSpace* space, bool fill) override;
    bool SetColor(const float* values, std::int32_t count, bool fill) override;
    void InjectDeviceSpaceImage(Raster& raster, float x, float y, float width, float height,
                                FourCC deviceKey) override;
};

/// A new DeviceN delegate on `destination`, which is DeviceCMYK, or null (logged). `options` are
/// `DELEGATEOPTION` bits.
IConnectionSpaceDelegate* CreateDeviceNConnectionSpaceDelegate(IClassFactory& factory,
                                                               IConnectionColorSpace* destination,
                                                               std::uint32_t options);
/// The same that converts through profiles.
IConnectionSpaceDelegate* CreateColorManagedDeviceNConnectionSpaceDelegate(
    IClassFactory& factory, IConnectionColorSpace* destination, std::uint32_t options);

}  // namespace VANTIX::RENDERING
