// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "baseconnectionspacedelegate/iconnectionspacedelegate.h"
#include "core/color/ipatterncolorspaces.h"
#include "core/graphics/itextobject.h"
#include "core/graphics/pluginhelper/delegateconnectionspace.h"
#include "core/io/idictionary.h"
#include "ifontbuilder.h"
#include "postscriptconnectionspace/definednames.h"
#include "postscriptconnectionspace/iformobject.h"
#include "postscriptconnectionspace/jobfonts.h"
#include "postscriptconnectionspace/textbuffer.h"
#include "postscriptdatastream/postscriptstreamstack.h"

namespace VANTIX::PS {

class FormObject;
class PSTextObject;
class PostScriptOutputContext;
class SoftMaskMessenger;
class TilingPatterPSConnectionSpace;

/// What the policy dictionary asks of a job, with the values that hold for absent keys.
struct JobPolicy {
    std::int32_t languageLevel = 3;
    RENDERING::TDelegateType delegateType = RENDERING::TDelegateType::kAsIs;
    /// Groups, soft masks and forms are written as pdfmarks.
    bool pdfmarkTransparency = false;
    bool trueTypeDownload = true;
    /// The delegate sets its default colour, and painting applies the colour of the state.
    bool setDefaultColour = true;
    std::uint8_t tilingFlag = 0;
    bool flipImages = false;
};

/// The text parameters of a graphics state, in unscaled text space.
struct TextState {
    float charSpacing = 0;
    float wordSpacing = 0;
    float horizontalScaling = 1;
    float leading = 0;
    float fontSize = 0;
    GRAPHICS::IGraphicsState::TTextRendering rendering =
        GRAPHICS::IGraphicsState::TTextRendering::kFill;
};

/// Room for the expression that names a font, with its zero.
inline constexpr std::size_t kFontNameBytes = 256;

/// Turns the host's drawing calls into PostScript operators on the current stream of a job: the top
/// of its stream stack. Stands behind the host's base connection space, which it owns; colours,
/// shadings and rasters go through the colour delegate to the output context.
class PostScriptConnectionSpace : public GRAPHICS::DelegateConnectionSpace {
public:
    PostScriptConnectionSpace();
    PostScriptConnectionSpace(const PostScriptConnectionSpace&) = delete;
    PostScriptConnectionSpace& operator=(const PostScriptConnectionSpace&) = delete;
    PostScriptConnectionSpace(PostScriptConnectionSpace&&) = delete;
    PostScriptConnectionSpace& operator=(PostScriptConnectionSpace&&) = delete;

    /// Takes the resource names that the job left in the colour spaces it used out of them.
    ~PostScriptConnectionSpace() override;

    /// Finds this space itself, what is aggregated here, and what the base connection space offers.
    Status QueryInterface(const GUID& id, void** out) override;

    void PlayTo(IConnectionSpace& space) const override;
    void SaveGraphicsState() override;
    void RestoreGraphicsState() override;
    void Scale(float sx, float sy) override;
    void Translate(float tx, float ty) override;
    void Rotate(float angle) override;
    void Concat(float a, float b, float c, float d, float e, float f) override;
    void NewPath() override;
    void AddColorSpace(COLOR::IConnectionColorSpace* space, ResourceId id) override;
    void RegisterColorSpaceUse(ResourceId id, bool fill) override;
    void RegisterColorSpaceUse(ResourceId id) override;
    void MoveTo(float x, float y) override;
    void LineTo(const float* points, std::int32_t count) override;
    void Arc(float x, float y, float radius, float angle1, float angle2) override;
    void ArcTo(float x1, float y1, float x2, float y2, float radius) override;
    void QuadCurveTo(const float* points, std::int32_t count) override;
    void CurveTo(const float* points, std::int32_t count) override;
    void ClosePath() override;
    void ResetPath() override;
    void Clip() override;
    void EOClip() override;
    void Fill() override;
    void EOFill() override;
    void FillWithColorSpace(COLOR::IConnectionColorSpace* space, ResourceId id, float x, float y,
                            float width, float height) override;
    void Stroke() override;
    void SetLineWidth(float width) override;
    void SetLineCap(std::int32_t cap) override;
    void SetLineJoin(std::int32_t join) override;
    void SetDash(float phase, const float* lengths, std::int32_t count) override;
    void SetMiterLimit(float limit) override;
    void SetFlatness(float flatness) override;
    void SelectRenderingIntent(COLOR::TRenderingIntent intent) override;
    void SelectRenderingIntent2(COLOR::TRenderingIntent intent) override;
    // Groups and soft masks are written where pdfmarks are asked for; else a group is drawn as if
    // it were none, and the content of a soft mask is left out. Their results are always true.
    bool BeginTransparencyGroup(const float* bbox, const float* matrix, bool isolated,
                                bool knockout, COLOR::IConnectionColorSpace* space) override;
    void EndTransparencyGroup() override;
    /// What follows is the content of the mask, in colours as they are.
    bool BeginSoftMask(COLOR::IColorFunction* transfer, const float* matrix, float x0, float y0,
                       float x1, float y1, COLOR::IConnectionColorSpace* space,
                       const float* backdrop, std::uint64_t backdropCount, bool isolated,
                       bool knockout, GRAPHICS::IGraphicsState::TSoftMaskType type) override;
    /// The mask holds for what follows, until the state's soft-mask holder lets go what it is given
    /// here.
    void EndSoftMask() override;
    void DrawImage(GRAPHICS::IRasterComponent* raster, float x, float y, float width,
                   float height) override;
    /// Selects the state's font in the matrix of the text object that is open; before that puts
    /// the fonts of the broker into the document.
    void SelectCurrentFont() override;
    void SetOverprintState(bool overprint) override;
    /// False (logged) when too many are open.
    bool BeginTextObject() override;
    /// False (logged) when none is open.
    bool EndTextObject() override;
    GRAPHICS::ITextObject* GetCurrentTextObject() const override;
    void DrawTextW(const void* text, std::int32_t length) override;
    /// Not implemented (logged): text is shown by its codes.
    void DrawGlyphs(const std::uint16_t* glyphs, std::int32_t count, const std::uint16_t* text,
                    std::int32_t textLength) override;
    void SaveInitialPageMatrix() override;

    /// Sets the space up for one job on `stream`: policy, streams, colour delegate, filters, output
    /// context, base connection space. False (logged) without stream or factory, or when the base
    /// space is not to be had; everything else that is missing is logged and done without.
    bool Init(IO::IDataProvider* stream, IClassFactory* factory,
              const IO::IDictionary* policy) override;
    void SetGraphicsState(GRAPHICS::IGraphicsState* state) override;

    /// Records what follows as the content of `form`, which its stream holds. 0, `kNoProvider` or
    /// `kStreamInitFailed` (logged): then nothing has changed.
    virtual Status PushFormObject(IFormObject& form);
    /// Ends the newest recording and puts the form's definition into the document body. 0, or the
    /// status of what is missing (logged): then the recording stays.
    virtual Status PopFormObject();
    /// Records what a soft mask applies to.
    Status BeginMaskedGroup(IFormObject& form);
    /// Ends that and draws it.
    void EndMaskedGroup();
    /// Ends all groups that are open (logged). Soft masks that the host still holds do nothing when
    /// it lets them go.
    void CloseGroups();

    // Those that hold this space.
    void AddMessenger(SoftMaskMessenger& messenger) { mMessengers.insert(&messenger); }

    void RemoveMessenger(SoftMaskMessenger& messenger) { mMessengers.erase(&messenger); }

    /// Soft masks that the host still holds no longer keep this space alive, and do nothing when it
    /// lets them go. The caller holds the space.
    void ForgetSoftMasks();

    /// The names that exist in the document.
    virtual DefinedNames& Names() { return mNames; }

    /// The stream of the document body (borrowed), or null before `Init`.
    virtual IPostScriptDataStream* GetBaseStream();
    virtual void WriteRawData(const void* data, std::int32_t length);
    /// Image data through the output context's filters.
    virtual void WriteContextStreamData(const void* data, std::int32_t length);
    virtual void FlushContextStreamData();
    /// Writes the expression for a font's name into `name`; an empty one without a name. A name
    /// that is too long is cut.
    virtual void GetPSFontName(GRAPHICS::IFontPackageHandler* handler, char name[kFontNameBytes]);
    /// Makes the colours of a text rendering mode current.
    virtual void SetTextRenderingColor(GRAPHICS::IGraphicsState::TTextRendering mode);
    /// Notes the name under which the pattern `id` was defined; the first name stays (logged).
    virtual void AddPostScriptColorSpaceResource(ResourceId id, const char* name);
    /// Borrowed, or null where the current text knows none.
    virtual const char* GetPostScriptResourceName(ResourceId id);
    /// Whether the pattern `id` was defined in some text.
    [[nodiscard]] virtual bool WasDefined(ResourceId id) const;
    /// Paints the current path in the colour of the graphics state and keeps it.
    virtual void PaintPath(bool fill, bool evenOdd);

    void RelativeMoveTo(float dx, float dy);

    // What text objects are made of.
    /// Those of a new state before there is one.
    [[nodiscard]] TextState GetTextState() const;
    /// Hands the matrix to the mirror of the state and selects the state's font in it.
    void SetTextMatrix(const float matrix[6]);
    /// Selects the state's font; its matrix is the linear part of `matrix`, times size and scaling.
    void SetTextFontAndSize(const float* matrix);
    /// Writes one string with one operator, in the colour that is current.
    void Show(std::span<const std::uint8_t> codes, GRAPHICS::IGraphicsState::TTextRendering mode);
    /// An empty buffer for a line of text, the same each time.
    TextBuffer& StartLine();

    /// Name of the predefined CMap for an encoding; empty (logged) for others.
    static const char* GetPostScriptCMapName(GRAPHICS::TEncoding encoding);
    /// The kind of font that a font is downloaded as at a language level: `kNone` (logged) where
    /// there is none. TrueType data go out as they are when `trueTypeDownload` allows it and they
    /// are fit for it (else logged).
    static TPSFontType GetPSFontType(GRAPHICS::IFontPackageHandler& handler, std::int32_t level,
                                     bool trueTypeDownload);
    /// Puts the fonts of the broker that `host` offers into the document, once for each broker.
    /// False (logged) without a broker, or a factory for builders.
    virtual bool DownloadFonts(const GRAPHICS::IConnectionSpace* host);

    /// The names of the fonts that are in the document.
    [[nodiscard]] virtual const JobFonts::NameMap& FontNames() const { return mFonts.names; }

    [[nodiscard]] const JobPolicy& GetPolicy() const { return mPolicy; }

    /// Defines the pattern as a resource on the current stream: once recorded, its cell is a
    /// procedure. `kOk`, or why there is no resource (logged).
    Status CreateTilePatternDictionary(COLOR::IPatternConnectionColorSpace* pattern, ResourceId id);
    /// The same for a shading. Nothing but Language Level 3 has them.
    Status CreateShadingPatternDictionary(COLOR::IShadingPatternConnectionColorSpace* pattern,
                                          ResourceId id);

    /// Number of pattern cells being recorded around what is drawn here.
    [[nodiscard]] virtual std::int32_t CellDepth() const { return 0; }

    /// Whether `cell` is one of them.
    [[nodiscard]] virtual bool IsRecordingCell(const GRAPHICS::IGraphic& /*cell*/) const {
        return false;
    }

    /// Number of the last resource with the data of an image in a pattern, for the whole job.
    virtual std::uint32_t& PatternImageCounter() { return mPatternImages; }

protected:
    /// How much has been written on `stream`; the largest number also stands for more.
    static std::int32_t PositionOf(IPostScriptDataStream& stream);
    /// A new output context on the streams of this space, or null.
    virtual TInterfacePtr<PostScriptOutputContext> MakeOutputContext();

    /// Makes the state's overprint for filling or stroking current.
    virtual void ApplyOverprint(bool fill);

    /// Whether what is drawn may have a colour of its own.
    [[nodiscard]] virtual bool MaySetColours() const { return true; }

    /// Whether the current stream records a form.
    [[nodiscard]] bool IsInForm() const { return CurrentForm() != nullptr; }

    /// Ends the newest recording and leaves it out. False when there is none.
    bool DropForm();

    /// The host's front object (borrowed), or null before `Init`.
    [[nodiscard]] GRAPHICS::IBaseConnectionSpace* Base() const { return mBase; }

    // Pieces of painting and of images.
    /// False when nothing may be painted.
    [[nodiscard]] bool MayPaint();
    /// The state's colour, unless the job's colours are not set by this space.
    void ApplyPaintColor(bool fill);
    void WritePaintOperator(bool fill, bool evenOdd);
    /// False (logged) when there is no delegate, or nothing to draw.
    [[nodiscard]] bool MayDrawImage(const GRAPHICS::IRasterComponent* raster);
    /// Overprint, the place of the image, and the image, between a save and its restore.
    void PlaceImage(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
                    float height);

    /// The colour delegate (borrowed), or null.
    [[nodiscard]] RENDERING::IConnectionSpaceDelegate* Delegate();

    /// Makes the state's colour for filling or stroking current, its overprint first.
    void ApplyCurrentColor(bool fill);

    /// Formats one operator and writes it on the current stream in one call.
    [[gnu::format(printf, 2, 3)]] void WriteOperator(const char* format, ...);
    /// Writes text as it stands on the current stream.
    void WriteText(const char* text);

    PostScriptStreamStack mStreams;
    JobPolicy mPolicy;
    TInterfacePtr<PostScriptOutputContext> mContext;
    /// Whether selecting a font puts those of the broker into the document first.
    bool mFontsPending = true;
    /// Transparency groups and soft masks that are open.
    std::int32_t mGroupDepth = 0;

private:
    struct Point {
        float x = 0;
        float y = 0;
    };

    void ReadPolicy(const IO::IDictionary* policy);

    /// A soft mask whose content is being recorded.
    struct OpenSoftMask {
        TInterfacePtr<FormObject> masked;  // keeps the colour delegate of what is around the mask
        TInterfacePtr<FormObject> group;
        std::int32_t depth = 0;  // of the groups around it
    };

    TInterfacePtr<RENDERING::IConnectionSpaceDelegate> CreateDelegate(
        RENDERING::TDelegateType type, const IO::IDictionary* policy);
    /// The form that the current stream records (borrowed), or null.
    [[nodiscard]] IFormObject* CurrentForm() const;
    /// A stream for a recording with the filters of the current one, or null and why (logged).
    TInterfacePtr<IPostScriptDataStream> CreateFormStream(Status& status);
    /// Copies the current recording into the document body as the definition of `form`; false
    /// (logged) when there is no body.
    bool WriteDefinition(const IFormObject& form);
    /// Goes back to the stream below; false (logged) when there is none.
    bool LeaveForm(bool kept);
    /// Pops the current form and draws it where that leads.
    void DrawForm(IFormObject& form);
    /// The black that the content of a form starts with.
    void WriteDefaultColour(COLOR::IConnectionColorSpace* space);
    /// A group or a soft mask has begun, in vain if not `recorded`.
    void EnterGroup(bool recorded);
    /// A group or a soft mask has ended; false when it had begun in vain.
    bool LeaveGroup();
    /// Forgets groups that are open deeper than `depth`.
    void LeaveGroupsAbove(std::int32_t depth);
    /// Draws the forms that are open within `form`; all forms for null.
    void CloseFormsAbove(const IFormObject* form);
    /// False (logged) when there are no streams for it.
    bool RecordSoftMask(IFormObject& masked, IFormObject& group);
    void FinishSoftMask();
    /// Puts the delegate of a mask's content in the place of the current one.
    void UseMaskDelegate(FormObject& keeper);
    void RestoreDelegate(FormObject& keeper);
    [[nodiscard]] bool IsMaskContent(const IFormObject* form) const;

    void CreateOutputContext(IO::IDataProvider* stream, const IO::IDictionary* policy,
                             RENDERING::IConnectionSpaceDelegate& delegate);
    bool Bless();
    /// Writes one operator for each `Floats` floats by `format` (text, size, floats), which answers
    /// the length; at least one. The current point moves to the last pair.
    template <std::size_t Floats, class Format>
    void WritePoints(const float* points, std::int32_t count, Format format);
    /// The state's font (borrowed), or null.
    IObject* FindFont(GRAPHICS::IFontBroker* broker) const;
    /// Its handler (borrowed), or null (logged but for a font that is unknown).
    GRAPHICS::IFontPackageHandler* FindHandlerToShow();
    TInterfacePtr<COLOR::IConnectionColorSpace> FindColorSpace(ResourceId id);
    void SetPatternColorSpaceAndColor(COLOR::IPatternConnectionColorSpace* pattern, ResourceId id,
                                      bool fill);
    /// Writes "/name<<…" of a tiling pattern.
    void WriteTilePattern(const char* name, const COLOR::IPatternConnectionColorSpace& pattern,
                          TilingPatterPSConnectionSpace& recorder);
    /// Makes the dictionary on the operand stack the pattern that it stands for. `matrix` starts
    /// from the page, or from the group that is open.
    void WriteMakePattern(const float matrix[6], bool inGroup);

    IClassFactory* mFactory = nullptr;
    GRAPHICS::IBaseConnectionSpace* mBase = nullptr;  // uncounted: the aggregation holds it
    std::set<ResourceId> mColorSpaceUses;
    std::map<ResourceId, std::string> mResources;
    DefinedNames mNames;
    std::set<SoftMaskMessenger*> mMessengers;
    std::vector<OpenSoftMask> mSoftMasks;
    std::vector<std::int32_t> mVainGroups;  // depths of groups without a recording
    std::int32_t mOpenForms = 0;
    std::uint32_t mPatternImages = 0;
    Point mCurrent;
    std::vector<TInterfacePtr<PSTextObject>> mTextObjects;
    JobFonts mFonts;
    TextBuffer mLine{0};
};

/// Creator of the space for the host's registrar: one new reference.
IObject* CreatePostScriptConnectionSpace();

}  // namespace VANTIX::PS
