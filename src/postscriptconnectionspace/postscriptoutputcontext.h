// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/color/iconnectioncolorspacefactory.h"
#include "core/color/iink.h"
#include "core/graphics/igraphicsstate.h"
#include "core/io/ioutputfilterstack.h"
#include "core/object/iclassfactory.h"
#include "core/object/tobject.h"
#include "postscriptconnectionspace/definednames.h"
#include "postscriptconnectionspace/ipostscriptoutputcontext.h"
#include "postscriptconnectionspace/textbuffer.h"
#include "postscriptdatastream/postscriptstreamstack.h"

namespace VANTIX::PS {

struct TintTransform;

/// Writes what has to do with colour through the filter stack that hangs on the current stream
/// (without one nothing is written), and leaves out what would not change the interpreter's state,
/// of which the host's mutable graphics-state stack is the mirror.
class PostScriptOutputContext : public TObject<IPostScriptOutputContext> {
public:
    /// `streams` must outlive the context.
    explicit PostScriptOutputContext(PostScriptStreamStack& streams);

    /// Keeps the factory (not referenced) and makes the mirror; false (logged) without one.
    bool Init(IClassFactory* factory);

    /// The state that the rendering intents are read from; not referenced, null for none.
    void SetGraphicsState(GRAPHICS::IGraphicsState* state) { mGraphicsState = state; }

    /// The stream of the document, whatever is being recorded (borrowed), or null.
    virtual IPostScriptDataStream* GetBaseDataStream();

    /// The names that exist in the job (borrowed; they must outlive the context). A context begins
    /// with names of its own.
    void ShareNames(DefinedNames& names) { mNames = &names; }

    /// A recording begins on the current stream: nothing is known of the state in which it will be
    /// executed.
    void BeginRecording();
    /// Restores what the recording saved and left.
    void CloseSaves();
    /// Everything is as it was before the recording.
    void EndRecording();

    void PushOutputFilter(std::int32_t selector) override;
    void PopOutputFilter() override;
    void WriteStreamData(const void* data, std::int32_t length) override;
    void FlushStreamData() override;
    void SetDefaultColour(FourCC family, bool colourManaged) override;
    void SetDeviceColorSpace(FourCC family) override;
    void SetLabColorSpace(const float white[3]) override;
    void SetColor(const float* components, std::int32_t count) override;
    void SetRegistrationColorSpace() override;
    void SetNoneColorSpace() override;
    void SetDeviceNColorSpace(const char* name, COLOR::IDeviceNConnectionColorSpace* space,
                              bool colourManaged) override;
    void SetSeparationColorSpace(const char* name, const char* colorant,
                                 COLOR::ISeparationConnectionColorSpace* space,
                                 bool colourManaged) override;
    bool SetNamedColorSpace(const char* name) override;
    void SetCalibratedGrayColorSpace(float x, float y, float z) override;
    void SetColorSpace(COLOR::IConnectionColorSpace* space,
                       COLOR::TRenderingIntent intent) override;
    void GSave() override;
    void GRestore() override;
    void SetRenderingIntent(COLOR::TRenderingIntent intent) override;
    void SetRenderingIntent2(COLOR::TRenderingIntent intent) override;
    void TranslateAndScale(float tx, float ty, float sx, float sy) override;
    void WriteImageDictionary(std::int32_t width, std::int32_t height,
                              std::int32_t bitsPerComponent, const char* colour,
                              std::int32_t colourLength, const char* decode,
                              bool imageMask) override;
    std::int32_t WriteSeparationSpaceToBuffer(COLOR::ISeparationConnectionColorSpace* space,
                                              char* buffer, std::int32_t size,
                                              bool colourManaged) override;
    std::int32_t WriteDeviceNSpaceToBuffer(COLOR::IDeviceNConnectionColorSpace* space, char* buffer,
                                           std::int32_t size, bool substitute,
                                           std::int32_t& componentCount,
                                           bool colourManaged) override;
    void AssociateSoftMaskImage(std::int32_t image) override;
    std::int32_t WriteAlternativeColorSpaceAndTintTransformProcToBuffer(
        COLOR::IConnectionColorSpace* alternate, COLOR::IColorFunction* tint, char* buffer,
        std::int32_t size, bool colourManaged) override;
    bool SetPatternColor(const char* name, COLOR::IConnectionColorSpace* underlying,
                         const float* components) override;
    bool SetCalibratedColorSpace(COLOR::ICalibratedConnectionColorSpace* space) override;
    void SetOverprint(std::int32_t overprint, bool mode, bool fill) override;
    void SetCurrentTextMatrix(const float matrix[6]) override;
    void GraphicsStateStackPassThrough(const void* arguments) override;
    void BeginImageData() override;
    void EndImageData() override;
    bool WriteFunctionBasedShadingDictionary(COLOR::IFunctionShadingColorSpace* shading,
                                             COLOR::IConnectionColorSpace* destination,
                                             std::int32_t languageLevel, bool paint,
                                             bool colourManaged) override;
    bool WriteAxialShadingDictionary(COLOR::IAxialShadingPatternColorSpace* shading,
                                     COLOR::IConnectionColorSpace* destination,
                                     std::int32_t languageLevel, bool paint,
                                     bool colourManaged) override;
    bool WriteRadialShadingDictionary(COLOR::IRadialShadingPatternColorSpace* shading,
                                      COLOR::IConnectionColorSpace* destination,
                                      std::int32_t languageLevel, bool paint,
                                      bool colourManaged) override;
    bool WritePatchMeshesBasedShadingDictionary(COLOR::ITensorShadingPatternColorSpace* shading,
                                                COLOR::IConnectionColorSpace* destination,
                                                std::int32_t languageLevel, std::int32_t type,
                                                bool paint, bool colourManaged) override;
    bool WriteType5BasedShadingDictionary(
        COLOR::ILatticeFormTriangleMeshesShadingColorSpace* shading,
        COLOR::IConnectionColorSpace* destination, std::int32_t languageLevel, bool paint,
        bool colourManaged) override;
    bool WriteType4BasedShadingDictionary(COLOR::IFreeFormTriangleMeshesShadingColorSpace* shading,
                                          COLOR::IConnectionColorSpace* destination,
                                          std::int32_t languageLevel, bool paint,
                                          bool colourManaged) override;
    void GetColorSpaceResourceName(COLOR::IConnectionColorSpace* space,
                                   COLOR::TRenderingIntent intent, std::string& name) override;
    void WriteColorSpaceResourceName(const std::string& name, bool setColorSpace) override;

    /// Writes `space` as a colour-space operand.
    void WriteColorSpaceToPostScript(COLOR::IConnectionColorSpace& space, bool colourManaged);
    /// Writes the device space `family`, or the resource of its default profile; false when nothing
    /// was written.
    bool WriteDeviceColorSpace(FourCC family, bool setColorSpace, bool colourManaged);
    void WriteCalibratedColorSpace(COLOR::ICalibratedConnectionColorSpace* space,
                                   bool setColorSpace);
    /// Calculator functions from the tints of the space's inks to CMYK or RGB: how inks printed
    /// over one another look. A new reference, or null (logged).
    COLOR::IColorFunction* CreateTintfunctionForCMYKColorspace(
        COLOR::IDeviceNConnectionColorSpace* space);
    COLOR::IColorFunction* CreateTintfunctionForRGBColorspace(
        COLOR::IDeviceNConnectionColorSpace* space);

protected:
    /// The filter stack of the current stream (borrowed), or null.
    [[nodiscard]] IO::IOutputFilterStack* CurrentFilters() const;

    /// Whether the current stream is the first one, outside of all forms.
    [[nodiscard]] bool IsOnBase() const { return mStreams.Top() == mStreams.Base(); }

    /// The filters that image data pass (borrowed), or null.
    [[nodiscard]] virtual IO::IOutputFilterStack* DataFilters() const { return CurrentFilters(); }

    /// The expression that reads image data back: "currentfile" and the decode filters of the
    /// data.
    [[nodiscard]] std::string ReadingExpression() const;
    /// The names of the decode filters of image data, each followed by `separator`.
    [[nodiscard]] std::string DecodeFilterNames(std::string_view separator) const;
    /// The colour text of an image, empty for none.
    static std::string_view ColourText(const char* colour, std::int32_t length);
    /// Appends an image's dictionary and operator. `source` is the whole entry for its data.
    static void AppendImageDictionary(TextBuffer& text, std::int32_t width, std::int32_t height,
                                      std::int32_t bitsPerComponent, std::string_view colour,
                                      const char* decode, bool imageMask, std::string_view source);

    /// Writes operator text to the current stream, past the filters.
    void WriteText(std::string_view text) const;

    /// Defines `name` as a reusable stream (PostScript Language Reference, 3.13.2) over the `size`
    /// bytes of `data`, where image data go.
    virtual void WriteReusableStream(const std::string& name, const std::uint8_t* data,
                                     std::int32_t size);

private:
    void PushState();
    void PopState();
    [[nodiscard]] COLOR::TRenderingIntent FirstIntent() const;
    [[nodiscard]] COLOR::TRenderingIntent SecondIntent() const;
    [[nodiscard]] TInterfacePtr<COLOR::IConnectionColorSpaceFactory> CreateColorFactory() const;

    /// Key of a resource in the mirror: its number, and the intent that it was made for.
    static std::uint64_t KeyOfResource(const COLOR::IConnectionColorSpace& space,
                                       COLOR::TRenderingIntent intent);

    /// Makes `key` the current space of the mirror; false when it is already.
    bool SelectSpace(std::uint64_t key);
    bool StoreIntent(std::int32_t index, COLOR::TRenderingIntent intent);
    void StoreColor(const float* components, std::int32_t count);

    TInterfacePtr<COLOR::IConnectionColorSpace> DefaultProfileSpace(FourCC family) const;
    /// Name of the resource for the profile-based form of `space`; empty when there is none.
    std::string ProfileResourceName(COLOR::IConnectionColorSpace& space);

    /// `name` is null for a space that is not defined under a name.
    void WriteSeparationColorSpace(const char* name, std::string_view colorant,
                                   COLOR::ISeparationConnectionColorSpace& space,
                                   bool setColorSpace, bool colourManaged);
    void WriteDeviceNColorSpace(const char* name, COLOR::IDeviceNConnectionColorSpace& space,
                                bool setColorSpace, bool colourManaged);

    // Pieces of spaces that are put together in a text.
    void AppendDeviceNWithNames(TextBuffer& text, COLOR::IDeviceNConnectionColorSpace& space,
                                bool colourManaged);
    void AppendDeviceNWithInks(TextBuffer& text, COLOR::IDeviceNConnectionColorSpace& space,
                               bool colourManaged);
    void AppendInkAlternate(TextBuffer& text, COLOR::IDeviceNConnectionColorSpace& space,
                            COLOR::InkColorKind kind, bool colourManaged);
    void AppendAlternateAndTint(TextBuffer& text, COLOR::IConnectionColorSpace* alternate,
                                COLOR::IColorFunction* function, bool colourManaged);
    void AppendProfileAlternate(TextBuffer& text,
                                COLOR::IProfileBasedConnectionColorSpace& alternate,
                                const TintTransform& tint, const std::string& resource);
    [[nodiscard]] TintTransform ToRGB(const COLOR::IConnectionColorSpace& cmyk,
                                      const TintTransform& tint) const;
    /// A calculator from `inks` tints to `outputs` components; a new reference, or null.
    COLOR::IColorFunction* CreateInkFunction(const TextBuffer& program, std::int32_t inks,
                                             std::int32_t outputs) const;

    // Shading dictionaries.
    struct ShadingOptions;
    struct ShadingJob;
    struct Gradient;
    struct MeshKind;
    /// Looks at everything that could fail, before anything is written. A shading needs a function
    /// that takes all of `domain`, two floats an input; an empty one leaves it to the shading.
    std::optional<ShadingJob> PrepareShading(const COLOR::IShadingColorSpace* shading,
                                             COLOR::IConnectionColorSpace* destination,
                                             const ShadingOptions& options,
                                             std::span<const float> domain) const;
    /// Begins a dictionary with what all types share. The entries behind the colour space stay in
    /// the text, which the caller continues.
    void WriteShadingDictionaryCommon(const ShadingJob& job);
    /// Writes the text and the function, if there is one.
    void WriteShadingFunction(const ShadingJob& job);
    /// Closes the dictionary with the text, and paints if that was asked.
    void FinishShading(const ShadingJob& job);
    bool WriteGradientDictionary(const COLOR::IShadingColorSpace& shading,
                                 COLOR::IConnectionColorSpace* destination,
                                 const ShadingOptions& options, const Gradient& gradient);
    bool WriteMeshDictionary(const COLOR::IMeshShadingColorSpace* mesh,
                             COLOR::IConnectionColorSpace* destination,
                             const ShadingOptions& options, const MeshKind& kind);
    /// `converted` is the number of components that colours were converted into, 0 for none.
    void AppendMeshEntries(const COLOR::IMeshShadingColorSpace& mesh, const MeshKind& kind,
                           std::int32_t converted);

    PostScriptStreamStack& mStreams;
    IClassFactory* mFactory = nullptr;                   // outlives every job
    GRAPHICS::IGraphicsState* mGraphicsState = nullptr;  // the host's, outlives the job
    TInterfacePtr<GRAPHICS::IMutableGraphicsStateStack> mState;
    TextBuffer mText;
    DefinedNames mOwnNames;
    DefinedNames* mNames = &mOwnNames;
    /// Saves that are open in each recording.
    std::vector<std::int32_t> mSaves;
};

}  // namespace VANTIX::PS
