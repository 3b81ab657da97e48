// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "baseconnectionspacedelegate/iconnectionspacedelegate.h"
#include "baseconnectionspacedelegate/names.h"
#include "core/io/idictionary.h"
#include "core/object/tobject.h"
#include "postscriptconnectionspace/ipostscriptoutputcontext.h"

namespace VANTIX::RENDERING {

/// Bits of the word in which the factory hands options to a delegate.
namespace DELEGATEOPTION {
inline constexpr std::uint32_t kJawsWorkaround = 1;
inline constexpr std::uint32_t kLevel2 = 2;
inline constexpr std::uint32_t kConvertSpotsToProcess = 4;
inline constexpr std::uint32_t kEmbedProfiles = 8;
inline constexpr std::uint32_t kPromoteGray = 16;
inline constexpr std::uint32_t kSoftMasks = 32;
}  // namespace DELEGATEOPTION

/// A colour of at most 32 components.
struct ColorValues {
    float values[COLOR::kMaxComponents] = {};
    std::int32_t count = 0;

    /// From host form to ink amounts, or back.
    void Complement();
};

struct Colorants;

/// What all colour delegates share. It finds the output context by asking itself; without one an
/// operation is logged and fails. The class factory outlives it and is not referenced.
class BaseConnectionSpaceDelegate : public TObject<IConnectionSpaceDelegate> {
public:
    BaseConnectionSpaceDelegate(const BaseConnectionSpaceDelegate&) = delete;
    BaseConnectionSpaceDelegate& operator=(const BaseConnectionSpaceDelegate&) = delete;
    BaseConnectionSpaceDelegate(BaseConnectionSpaceDelegate&&) = delete;
    BaseConnectionSpaceDelegate& operator=(BaseConnectionSpaceDelegate&&) = delete;

    /// Takes the resource names that this delegate gave to spaces out of them.
    ~BaseConnectionSpaceDelegate() override;

    void Init(bool setDefaultColour) override { mDefaultColourSet = setDefaultColour; }

    void SetColorSpaceAndValues(IConnectionColorSpace* space, const float* values,
                                std::int32_t count, bool fill) override;
    bool SetUncoloredPattern(const char* patternName, IConnectionColorSpace* underlying,
                             bool fill) override;
    bool SetPatternColorSpace(const char* patternName) override;
    void FillWithColorSpace(IConnectionColorSpace* shading, ResourceId id, float x, float y,
                            float width, float height, bool paint) override;

    /// Flattens spot channels and writes the soft mask where the options ask for it, and hands the
    /// raster to the injection operation for its space.
    void Image(Raster& raster, float x, float y, float width, float height) override;

    void SetGraphicsState(GRAPHICS::IGraphicsState* state) override { mGraphicsState = state; }

    bool CanMarkTheCanvas() const override { return true; }

    bool WasDefaultColourSet() const override { return mDefaultColourSet; }

    virtual void InjectRaster(Raster& raster, float x, float y, float width, float height);
    virtual void InjectDeviceSpaceImage(Raster& raster, float x, float y, float width, float height,
                                        FourCC deviceKey);
    /// Writes a colour of the state's current space; `values` in host form.
    virtual bool SetColor(const float* values, std::int32_t count, bool fill) = 0;
    virtual void InjectIndexedImage(Raster& raster, float x, float y, float width, float height,
                                    COLOR::IIndexedConnectionColorSpace* indexed) = 0;
    virtual void WriteGreyscaleImage(Raster& raster, float x, float y, float width,
                                     float height) = 0;
    virtual void InjectRGBImage(Raster& raster, float x, float y, float width, float height);
    virtual void InjectCMYKImage(Raster& raster, float x, float y, float width, float height);
    virtual void InjectCalibratedGreyscaleImage(Raster& raster, float x, float y, float width,
                                                float height,
                                                COLOR::ICalibratedConnectionColorSpace* space);
    virtual void InjectCalibratedRGBImage(Raster& raster, float x, float y, float width,
                                          float height,
                                          COLOR::ICalibratedConnectionColorSpace* space);
    virtual void InjectLabImage(Raster& raster, float x, float y, float width, float height,
                                COLOR::ICalibratedConnectionColorSpace* space);

protected:
    /// `destination` (null for none) is the space of the output model; `options` are
    /// `DELEGATEOPTION` bits.
    BaseConnectionSpaceDelegate(IClassFactory& factory, IConnectionColorSpace* destination,
                                std::uint32_t options);

    /// The output context (borrowed), or null (logged).
    PS::IPostScriptOutputContext* OutputContext();

    /// The state's intents, source side and destination side; `absent` twice without a state.
    [[nodiscard]] std::pair<TRenderingIntent, TRenderingIntent> RenderingIntents(
        TRenderingIntent absent) const;

    /// The state's current colour space (borrowed), or null.
    [[nodiscard]] IConnectionColorSpace* CurrentColorSpace(bool fill) const;

    /// The state's current colour in host form, for `space`; zeros without a state, nothing when
    /// the space has too many components.
    [[nodiscard]] std::optional<ColorValues> CurrentColor(bool fill,
                                                          const IConnectionColorSpace& space) const;

    /// The host's connection colour (X Y Z) of a colour of `source` in host form. Nothing when the
    /// host cannot.
    static std::optional<std::array<float, 3>> ToConnectionColor(
        const IConnectionColorSpace& source, const float* values, std::int32_t count,
        TRenderingIntent intent);

    /// A colour of `source` converted by the host into one of `destination`, both in host form.
    /// Nothing when the host cannot.
    static std::optional<ColorValues> ConvertByHost(
        const IConnectionColorSpace& source, const IConnectionColorSpace& destination,
        const float* values, std::int32_t count,
        const std::pair<TRenderingIntent, TRenderingIntent>& intents);

    /// Selects the device space `key`, or Registration or None where `space` is one of them.
    bool SetDeviceColorSpaceByKey(IConnectionColorSpace* space, FourCC key);

    /// Selects the Separation, defined under a name of its own at its first use. True when it was
    /// written and the name kept.
    bool SetSeparationColorSpace(COLOR::ISeparationConnectionColorSpace* space, bool colourManaged);
    bool SetDeviceNColorSpace(COLOR::IDeviceNConnectionColorSpace* space, bool colourManaged);
    bool SetRegistrationSpace(COLOR::ISeparationConnectionColorSpace* space);
    bool SetNoneColorSpace(COLOR::ISeparationConnectionColorSpace* space);
    bool SetCalibratedColorSpace(COLOR::ICalibratedConnectionColorSpace* space);

    /// Writes a colour of `source` as one of `destination`, a device or profile-based space.
    bool SetColorWithConversion(IConnectionColorSpace* source, IConnectionColorSpace* destination,
                                const float* values, std::int32_t count);

    /// Writes a colour of the space that is selected; false for none, or without an output context.
    bool WriteColor(const std::optional<ColorValues>& color);

    /// Selects the space that an uncoloured pattern is painted in. The output context (borrowed),
    /// or null (logged in the name of `module`) when it cannot be.
    PS::IPostScriptOutputContext* SelectUnderlying(IConnectionColorSpace* underlying, bool fill,
                                                   const char* module);

    /// The conversion alone, to ink amounts for CMYK; nothing (logged) for a destination of another
    /// kind. Black and white tints are mapped without the host.
    std::optional<ColorValues> ConvertColor(IConnectionColorSpace* source,
                                            IConnectionColorSpace* destination, const float* values,
                                            std::int32_t count) const;

    using ShadingWriter = bool (*)(PS::IPostScriptOutputContext& out,
                                   COLOR::IShadingColorSpace* shading,
                                   IConnectionColorSpace* destination, std::int32_t languageLevel,
                                   bool paint, bool colourManaged);

    /// A shading (borrowed) and the output context's writer for its type.
    struct TypedShading {
        COLOR::IShadingColorSpace* shading = nullptr;
        ShadingWriter write = nullptr;
    };

    /// `shading` as one of the seven types; null (logged) when it is none of them.
    static TypedShading FindShading(IConnectionColorSpace* shading);

    using SpacePredicate = std::function<bool(IConnectionColorSpace* space)>;

    /// Writes a shading (null: nothing) with its colours converted into `destination`, unless it is
    /// in a space of which `keeps` is true.
    void FillConverted(IConnectionColorSpace* shading, IConnectionColorSpace* destination,
                       bool paint, const SpacePredicate& keeps = nullptr);

    /// Lets the output context write the shading's dictionary with its colours converted into
    /// `destination` (null: kept); false when it did not complete it.
    bool WriteShadingDictionary(const TypedShading& shading, IConnectionColorSpace* destination,
                                bool paint, bool colourManaged);

    using SpotChannels = std::vector<const IChannelDesc*>;

    /// A palette as it is written.
    struct Palette {
        const std::uint8_t* bytes = nullptr;  ///< entries x components, borrowed
        std::int32_t entries = 0;
        std::int32_t components = 0;
        bool complement = false;  ///< the bytes are complements of what is to be written
    };

    /// The extra channels of type "SPOT" (borrowed).
    static SpotChannels FindSpotChannels(const Raster& raster);

    using MissingPlaneLog = std::function<void(std::int32_t line, std::size_t channel)>;

    /// Whether `WriteImageData` has something to write: false (logged) for a raster without
    /// primaries, with one that is there but has no data, or of a depth that is not supported. No
    /// image may be begun then.
    [[nodiscard]] static bool HasImageData(const Raster& raster, std::int32_t channels,
                                           const MissingPlaneLog& logMissing = nullptr);
    /// The same of all primaries and all spot channels.
    [[nodiscard]] static bool HasImageData(const Raster& raster);
    /// Writes 1, 3 or 4 primaries, pixel-interleaved, as the data of the image just begun. Words
    /// of 16 bits are reduced to 12. A missing line ends the image; `logMissing` says so in other
    /// words than the usual ones.
    void WriteImageData(Raster& raster, std::int32_t channels, std::int32_t depth,
                        std::int32_t width, const MissingPlaneLog& logMissing = nullptr);
    /// Writes all primaries and all spot channels, pixel-interleaved; four primaries are
    /// complemented.
    void WriteImageData(Raster& raster);
    /// The same for pixels whose primaries are ink amounts of colorants: all primaries are
    /// complemented, and those that the raster's mask marks absent are left out.
    void WriteInkImageData(Raster& raster);

    /// Writes an image with a palette, or its shape as an image mask in a colour of the palette.
    /// `alternative` (null: none) is the space that the palette is converted into.
    void InjectIndexedRaster(Raster& raster, float x, float y, float width, float height,
                             COLOR::IIndexedConnectionColorSpace* indexed,
                             IConnectionColorSpace* alternative, bool imagemask);
    /// Appends the colour-space text of an indexed image up to its palette. False (logged) for a
    /// target that has none; `count` takes the components of a DeviceN target.
    bool BuildIndexedColourString(std::string& out, IConnectionColorSpace* base,
                                  IConnectionColorSpace* target, std::int32_t& count,
                                  bool withoutPrefix);
    /// Appends the palette to `colour`, which is the text of its space, and writes image and data.
    /// An image mask paints with `maskEntry`.
    void WriteIndexedImage(Raster& raster, std::string& colour, const Palette& palette,
                           bool imagemask, std::int32_t maskEntry);
    /// Appends "hh…" for each entry, in lines of 16, and the end of the palette.
    static void AppendPalette(std::string& out, const Palette& palette);
    /// Appends the array of a Separation or DeviceN space; false (logged) for any other.
    bool AppendSpotSpace(std::string& out, IConnectionColorSpace& space, std::int32_t& count,
                         bool colourManaged);
    /// Appends "[/DeviceN [[(Cyan)…] alternate {tint}] " for colorants that are printed over one
    /// another; false (logged) when it cannot.
    bool AppendColorantSpace(std::string& out, const Colorants& colorants,
                             IConnectionColorSpace& alternate, bool colourManaged);
    /// Whether `raster`'s extra channel 0 has data that is not fully opaque.
    static bool HasMaskChannel(const Raster& raster);

    /// Whether an Indexed raster is the shape of an image mask: of one bit, with a mask channel
    /// that is not written as an image of its own.
    [[nodiscard]] bool BecomesImageMask(const Raster& raster) const {
        return !mJawsWorkaround && raster.GetBitsPerSample() == 1 && HasMaskChannel(raster);
    }

    /// Writes a gray raster in an alternate space: not possible; always 72 (logged).
    static Status InjectGreyscaleImageInAlternateColorSpace(Raster& raster, float x, float y,
                                                            float width, float height,
                                                            std::int32_t depth);

    /// The raster with its spot channels flattened, and `spots` emptied; the raster itself where
    /// there are none, or they cannot be flattened (logged).
    TInterfacePtr<Raster> FlattenSpots(Raster& raster, SpotChannels& spots) const;
    /// Paints the spot channels over the process channels of a new raster. 0, or the failing status
    /// (logged), with `out` null.
    Status CompositeSpotsToNewRasterInDelegateColorSpace(const Raster& raster,
                                                         const SpotChannels& spots,
                                                         TInterfacePtr<Raster>& out) const;
    Status CreateRasterForSpotComposite(const Raster& raster, TInterfacePtr<Raster>& out,
                                        bool allSpotsHaveSpaces) const;
    Status CompositeDeviceNRasterToNewRasterInDelegateColorSpace(const Raster& raster,
                                                                 TInterfacePtr<Raster>& out) const;

    /// Writes the raster's alpha channel as a soft-mask image tied to the image that follows
    /// (pdfmark Reference).
    void WriteSoftMaskCompositeAlpha(const Raster& raster, float opacity);
    void Write1BitSoftMask(IChannelData* alpha, std::int32_t width, std::int32_t height,
                           float opacity, std::int32_t maskNumber);
    void Write2BitSoftMask(IChannelData* alpha, std::int32_t width, std::int32_t height,
                           float opacity, std::int32_t maskNumber);
    void Write4BitSoftMask(IChannelData* alpha, std::int32_t width, std::int32_t height,
                           float opacity, std::int32_t maskNumber);
    void Write8BitSoftMask(IChannelData* alpha, std::int32_t width, std::int32_t height,
                           float opacity, std::int32_t maskNumber);
    void Write16BitSoftMask(IChannelData* alpha, std::int32_t width, std::int32_t height,
                            float opacity, std::int32_t maskNumber);

    TInterfacePtr<IConnectionColorSpace> mDestination;
    TInterfacePtr<GRAPHICS::ISwizzleServices> mSwizzle;
    IClassFactory* mFactory;
    GRAPHICS::IGraphicsState* mGraphicsState = nullptr;
    std::int32_t mLanguageLevel;
    bool mConvertSpotsToProcess;
    bool mJawsWorkaround;
    bool mColorManaged = false;
    bool mPromoteGray;
    bool mSoftMasks;

private:
    struct NamedSpace {
        TInterfacePtr<IConnectionColorSpace> space;
        TInterfacePtr<IO::IKeyedProperties> properties;
    };

    /// Hangs `name` on the space for the next time and notes it for the clean-up.
    bool KeepName(IConnectionColorSpace& space, const std::string& name);

    /// Paints the spot channels over the primaries of `target`; false (logged) when one cannot be.
    bool PaintSpots(const Raster& raster, const SpotChannels& spots, Raster& target,
                    bool isAllSpots, bool haveSpaces) const;

    /// Brings a palette of `base`, whose entries and bytes are set, into `target`, or keeps it.
    /// `storage` holds what has to be converted.
    bool ConvertPaletteToTarget(const Raster& raster, IConnectionColorSpace& base,
                                IConnectionColorSpace& target, Palette& palette,
                                std::string& storage);
    bool KeepPalette(IConnectionColorSpace& base, Palette& palette, std::string& storage);

    std::vector<NamedSpace> mNamedSpaces;
    bool mDefaultColourSet = false;
};

}  // namespace VANTIX::RENDERING
