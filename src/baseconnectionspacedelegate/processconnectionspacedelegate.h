// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "baseconnectionspacedelegate/baseconnectionspacedelegate.h"
#include "baseconnectionspacedelegate/convertedlines.h"
#include "baseconnectionspacedelegate/interleavedline.h"
#include "baseconnectionspacedelegate/names.h"
#include "core/color/iconnectioncolorspacefactory.h"

namespace VANTIX::RENDERING {

/// The device space that a job is written in.
struct ProcessModel {
    FourCC family;
    const char* module;  ///< in whose name faults are logged
    const char* space;   ///< its name in PostScript: "/DeviceRGB"
    const char* decode;  ///< Decode array of samples in host form
    IConnectionColorSpace* (COLOR::IConnectionColorSpaceFactory::*create)();
    const char* noStroke;  ///< what is said of components for a stroke without a space
    const char* noFill;    ///< the same for a fill
    /// The space of rasters of gray bits; null: that of the other depths.
    const char* bilevelSpace = nullptr;
    /// Writes the neutral colour as dark as a colour of the space, bytes in host form, as digits of
    /// a palette. Null for gray, which has nothing to promote.
    void (*writeNeutral)(const std::uint8_t* color, char* digits, std::size_t size) = nullptr;
};

/// What the delegates share whose jobs are in one device space: colours and rasters become that,
/// gray stays DeviceGray unless it is to be promoted. The destination is a space of the model.
class ProcessConnectionSpaceDelegate : public BaseConnectionSpaceDelegate {
public:
    void Init(bool setDefaultColour) override;
    /// Keeps shadings in the model's device space as they are, but where colours are managed;
    /// converts the others.
    void FillWithColorSpace(IConnectionColorSpace* shading, ResourceId id, float x, float y,
                            float width, float height, bool paint) override;
    /// Writes what `KeptColor` gives, and converts all others. Without a space a single value is
    /// gray.
    bool SetColor(const float* values, std::int32_t count, bool fill) override;
    /// Converts palettes into the destination, or a new device space where there is none.
    void InjectIndexedImage(Raster& raster, float x, float y, float width, float height,
                            COLOR::IIndexedConnectionColorSpace* indexed) override;

protected:
    /// `model` outlives the delegate.
    ProcessConnectionSpaceDelegate(IClassFactory& factory, IConnectionColorSpace* destination,
                                   std::uint32_t options, const ProcessModel& model)
        : BaseConnectionSpaceDelegate(factory, destination, options), mModel(model) {}

    /// What is said when an image cannot be converted for want of memory.
    struct ConversionMessages {
        BufferMessage planes;
        BufferMessage pcs;
        BufferMessage line;
        bool tellsStatus = false;  ///< a line that fails is reported with the host's status
    };

    /// The planes of line `y` of an image; false (logged) where it ends.
    using LineReader = std::function<bool(std::int32_t y, InterleavedLine::Planes& planes)>;
    /// Makes a line of image data (valid until the next call) of its planes.
    using LineBuilder = std::function<const std::uint8_t*(const InterleavedLine::Planes& planes)>;

    /// An image and where its data come from.
    struct LineImage {
        std::int32_t bits;          ///< as written
        const char* space;          ///< text of the colour space
        const char* decode;         ///< text of the Decode array
        std::size_t lineBytes = 0;  ///< of image data
        LineReader read;
        LineBuilder build;
    };

    /// Selects DeviceGray for gray that is not promoted, the model's space for all others but
    /// Registration and None.
    bool SelectFamily(IConnectionColorSpace* space);
    /// Writes the tint of Registration or None, whose space stays selected; false for every other
    /// space.
    bool SetPlateSelection(IConnectionColorSpace* space, const float* values);
    /// Converts every colour but gray that is not promoted; `module` is told of faults.
    bool SetManagedColor(const float* values, std::int32_t count, bool fill, const char* module);
    /// Whether samples under `profile` are those of the output; nothing (logged) without an output
    /// to compare with.
    std::optional<bool> IsOutputProfile(COLOR::IProfileBasedConnectionColorSpace& profile,
                                        const char* module) const;

    /// False (logged) without an output context.
    bool BeginImage(const Raster& raster, std::int32_t bits, const std::string& colour,
                    const char* decode);
    /// Writes an image unless its first line is missing.
    void WriteLines(const Raster& raster, const LineImage& image);
    /// Reads the lines of `lines`, which outlive the reader.
    [[nodiscard]] LineReader ReaderOf(ConvertedLines& lines, bool tellsStatus = false) const;
    /// Reads the first `count` primaries, which have data; `logMissing` tells of a missing line.
    [[nodiscard]] static LineReader ReaderOf(const Raster& raster, std::int32_t count,
                                             MissingPlaneLog logMissing);
    /// False (logged as `message`) when one of the first `count` primaries has no data.
    bool HasPrimaries(const Raster& raster, std::int32_t count, const char* message) const;
    /// Writes the samples of a gray raster as DeviceGray, in 12 of 16 bits.
    void InjectGreyRasterAsGray(Raster& raster);
    /// The same, or promoted, in 8 of 16 bits.
    void WriteGreyRaster(Raster& raster);
    /// Writes the raster converted into the destination, in 12 bits where `bits` is 16, else 8.
    void WriteConvertedRaster(Raster& raster, std::int32_t bits,
                              const ConversionMessages& messages);

    /// A new device space of the model, or null (logged).
    [[nodiscard]] TInterfacePtr<IConnectionColorSpace> MakeDeviceSpace() const;

    [[nodiscard]] FourCC ModelFamily() const { return mModel.family; }

    /// Whether the host mixes alpha with white: not where a mask is written for it.
    [[nodiscard]] bool CompositesAlpha() const { return !mJawsWorkaround; }

private:
    /// A colour of `source` (null: gray) in the model's space or DeviceGray where it is known
    /// without the destination; nothing where it is to be converted.
    [[nodiscard]] virtual std::optional<ColorValues> KeptColor(IConnectionColorSpace* source,
                                                               const float* values,
                                                               std::int32_t count) const = 0;

    void WriteHighBytes(const Raster& raster, const std::string& colour, const char* decode,
                        const MissingPlaneLog& logMissing);
    /// "[/Indexed /DeviceRGB n <…>] " of all grays of `depth` bits; empty (logged) when the host
    /// cannot convert them.
    std::string PromotedGrayPalette(std::int32_t depth);

    const ProcessModel& mModel;
};

}  // namespace VANTIX::RENDERING
