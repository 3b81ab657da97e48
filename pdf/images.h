// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/color/colorconversion.h"
#include "pdf/colorspaces.h"
#include "pdf/imagedata.h"
#include "pdf/imagemasks.h"
#include "pdf/imageplanes.h"
#include "pdf/reporter.h"
#include "pdf/resources.h"

namespace VANTIX::PDF {

/// The planes of an image in host form, with all that a raster is made of.
struct PlanarImage {
    PlaneSourcePtr source;
    HOST::RasterFormat format;
    std::uint8_t paper = 0xFF;  ///< byte of the samples of white; nothing for Indexed
    bool isDeviceN = false;

    [[nodiscard]] std::size_t PlaneCount() const {
        return static_cast<std::size_t>(format.space->GetComponentCount());
    }

    /// The raster of all lines; null when it would be too large.
    HOST::RasterPtr ToRaster() &&;

    /// Brings planes of 8 or 16 bits to another size.
    void Enlarge(std::int32_t width, std::int32_t height);
};

/// What reading an image needs.
struct ImageContext {
    ColorSpaces& colorSpaces;
    ImageDataReader& data;
    Reporter& reporter;
    COLOR::TRenderingIntent intent = COLOR::TRenderingIntent::kRelativeColorimetric;
    bool graysAsPalettes = false;  ///< gray of less than 8 bits comes as Indexed
};

/// One image of the document (PDF Reference, 4.8): its dictionary, checked, and its coded data. The
/// lines are decoded anew for each of the views below.
class Image {
public:
    /// Null, after a warning, for what cannot be drawn at all. `resources` lead to colour spaces;
    /// they and the object are borrowed.
    static std::unique_ptr<Image> Open(const ImageObject& object, Resources& resources,
                                       const ImageContext& context);

    [[nodiscard]] bool IsStencil() const { return mIsStencil; }

    [[nodiscard]] const std::string& Label() const { return mObject.label; }

    [[nodiscard]] std::int32_t Width() const { return mFormat.width; }

    [[nodiscard]] std::int32_t Height() const { return mFormat.height; }

    /// The samples in the image's own space, or where that is Lab in RGB. `expand` wants samples of
    /// 8 or 16 bits that can be mixed with white: palettes are resolved. Without planes after a
    /// warning.
    PlanarImage Planes(bool expand);

    /// The space of the samples.
    [[nodiscard]] const ColorSpaceEntry& Space() const { return *mSpace; }

    /// One plane of bits of a stencil mask: set where it paints.
    PlaneSourcePtr StencilBits();

    /// One plane of 8 bits, of a stencil, of an explicit or of a soft mask: 0xFF where it paints
    /// whole.
    PlaneSourcePtr Opacity();

    /// The mask of a coloured image, or nothing.
    std::optional<ImageMask> Mask();

private:
    Image(ImageObject object, const ImageContext& context)
        : mObject(std::move(object)), mContext(context) {}

    void ReadFormat();
    void ReadSpace(Resources& resources);
    bool ReadData(std::string& error);
    bool SettleSpace(Resources& resources, std::string& error);
    const ColorSpaceEntry* SpaceOfData(Resources& resources);
    bool OpenSingle(std::string& error);
    void ReadDecode();
    HOST::LineSourcePtr TakeLines();
    [[nodiscard]] FaultHandler Faults() const;

    void Warn(const std::string& what) const { Faults()(what); }

    [[nodiscard]] std::vector<SampleMap> Maps(std::int32_t bits) const;
    [[nodiscard]] std::vector<SampleMap> PlainMaps(std::int32_t bits) const;
    /// The palette of all grays of `bits` over the image's own space.
    [[nodiscard]] HOST::ColorSpacePtr GrayPalette(std::int32_t bits) const;
    PlanarImage IndexedPlanes(bool expand);
    PlanarImage ResolvePalette(PlaneSourcePtr indices);
    PlanarImage Convert(PlanarImage image, const ColorSpaceEntry& entry,
                        const std::vector<float>& decode);

    // images_masks.cpp
    static std::unique_ptr<Image> OpenMask(const QPDFObjectHandle& stream, bool isSoft,
                                           const ImageContext& context);
    std::optional<ImageMask> StreamMask(const QPDFObjectHandle& stream, bool isSoft);
    std::optional<ImageMask> OwnAlpha(bool isPremultiplied);
    std::optional<ImageMask> ColorKeyMask(const QPDFObjectHandle& ranges);
    [[nodiscard]] std::vector<float> MatteOf(const std::vector<float>& values) const;

    ImageObject mObject;
    ImageContext mContext;
    CodedImage mCoded;
    HOST::ImageFormat mFormat;  // of the coded samples, but the size that the image has
    HOST::JpxInfo mJpx;
    HOST::LineSourcePtr mOpened;  // to be read from its first line on
    const ColorSpaceEntry* mSpace = nullptr;
    std::vector<float> mDecode;  // in parts of the range: 0 1 for each component; Indexed: indices
    bool mIsStencil = false;     // or an explicit mask
    bool mIsMask = false;        // a soft or an explicit one
};

}  // namespace VANTIX::PDF
