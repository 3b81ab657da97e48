// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/color/colorconversion.h"
#include "host/graphics/baseconnectionspace.h"
#include "pdf/colorspaces.h"
#include "pdf/contentparser.h"
#include "pdf/forms.h"
#include "pdf/images.h"
#include "pdf/objects.h"
#include "pdf/optionalcontent.h"
#include "pdf/path.h"
#include "pdf/patterns.h"
#include "pdf/qpdfheaders.h"
#include "pdf/reporter.h"
#include "pdf/resources.h"
#include "pdf/shadings.h"
#include "pdf/textstate.h"
#include "pdf/transparency.h"

namespace VANTIX::PDF {

class Fonts;
struct GlyphDescription;
struct Type3Font;

/// What all content of a document is played with.
struct PlayContext {
    HOST::BaseConnectionSpace& space;
    ColorSpaces& colorSpaces;
    OptionalContent& optionalContent;
    FormCache& forms;
    ImageDataReader& imageData;
    Shadings& shadings;
    Patterns& patterns;
    Fonts& fonts;
    TransparencySurvey& transparency;
    LostTransparency& lostTransparency;
    OpenStreams& openStreams;
    Reporter& reporter;
    /// Overrides the intents of the content.
    std::optional<COLOR::TRenderingIntent> intent;
    /// Transparency goes on with what is drawn; else that is painted opaque, and the opacity of
    /// images is mixed with white paper.
    bool keepsAlpha = false;
    std::int32_t languageLevel = 3;
    /// Images in gray of less than 8 bits come with a palette.
    bool graysAsPalettes = false;
    /// Invisible text goes out where nothing of it is seen; else it is dropped.
    bool keepsHiddenText = false;
    /// The space has been told to load the fonts; a recording finds those of its owner.
    bool fontsAreLoaded = false;
    /// From the space in which forms that are recorded within a cell are executed to default user
    /// space.
    std::array<double, 6> bodyMatrix{1, 0, 0, 1, 0, 0};

    /// The same for content that goes into `recording`.
    [[nodiscard]] PlayContext For(HOST::BaseConnectionSpace& recording, OpenStreams& open) const {
        return {recording,
                colorSpaces,
                optionalContent,
                forms,
                imageData,
                shadings,
                patterns,
                fonts,
                transparency,
                lostTransparency,
                open,
                reporter,
                intent,
                keepsAlpha,
                languageLevel,
                graysAsPalettes,
                keepsHiddenText,
                true,
                bodyMatrix};
    }
};

/// Plays the content of one page, of its forms and of its annotations into the connection space
/// (PDF Reference, appendix A). Handlers of operators are spread over files by topic; the table in
/// operators.h leads to them. Keeps its own levels of the graphics state in step with the host's.
class ContentInterpreter {
    /// What belongs to one stream of content.
    struct Frame {
        ContentParser* parser = nullptr;
        Resources* resources = nullptr;
        std::size_t floor = 1;                           // levels that Q may not close
        std::size_t ignoredSaves = 0;                    // q beyond the limit
        std::size_t markDepth = 0;                       // open marked-content sequences
        std::size_t hiddenDepth = 0;                     // the one that hides content, or 0
        std::size_t compatibility = 0;                   // open BX
        std::array<double, 6> matrix{1, 0, 0, 1, 0, 0};  // of its own space
        TextObject text;
    };

public:
    /// Saves a level of the graphics state and goes back to it at its end, whatever has happened.
    class ScopedLevel {
    public:
        explicit ScopedLevel(ContentInterpreter& interpreter);
        ~ScopedLevel();
        ScopedLevel(const ScopedLevel&) = delete;
        ScopedLevel& operator=(const ScopedLevel&) = delete;
        ScopedLevel(ScopedLevel&&) = delete;
        ScopedLevel& operator=(ScopedLevel&&) = delete;

        /// False when the levels are exhausted: nothing may be drawn in this one.
        [[nodiscard]] bool IsSaved() const { return mSaved; }

    private:
        ContentInterpreter& mInterpreter;
        std::size_t mDepth;
        bool mSaved;
    };

    /// Plays one content that comes in pieces; levels that it leaves open are closed at the end.
    class Player {
    public:
        Player(ContentInterpreter& interpreter, Resources& resources);
        ~Player();
        Player(const Player&) = delete;
        Player& operator=(const Player&) = delete;
        Player(Player&&) = delete;
        Player& operator=(Player&&) = delete;

        /// Plays what is complete with this piece of decoded content, and keeps the rest.
        void Add(std::string_view piece);
        /// Plays `content` behind what is kept; nothing follows it.
        void Finish(std::string_view content = {});

    private:
        static constexpr std::size_t kWindow = std::size_t{64} << 10U;

        void Run(std::string_view content, bool isComplete);

        ContentInterpreter& mInterpreter;
        Frame mOuter;
        std::string mPending;
        std::size_t mNextRun = kWindow;  // doubled while one operator does not end
    };

    explicit ContentInterpreter(PlayContext& context);

    /// Plays decoded content; levels that it leaves open are closed.
    void Play(std::string_view content, Resources& resources) {
        Player(*this, resources).Finish(content);
    }

    /// Draws a form XObject under the current matrix in a level of its own. `resources` serve a
    /// form that has none.
    void DrawForm(const QPDFObjectHandle& stream, Resources& resources);

    /// Concatenates; false for a matrix that is of no use, under which nothing is painted until the
    /// level ends.
    bool Concat(const std::array<double, 6>& matrix);

    /// Takes the current matrix for that of the page, from which patterns start, and brings the
    /// rendering intent that overrides all others into force.
    void BeginPage();

    /// Plays what `play` draws as the group of a page (PDF Reference, 7.5.5), where blending in it
    /// cannot do without. `resources` are those of the page.
    void DrawPage(const QPDFObjectHandle& group, const QPDFObjectHandle& resources,
                  const std::function<void()>& play);

    /// Plays the cell of a tiling pattern into the space of `context`. `cell` outlives the call.
    static void PlayCell(PlayContext& context, const PatternCell& cell);

    /// Plays a glyph of a Type 3 font into the space of `context`, in which nothing sets a colour.
    static void PlayGlyph(PlayContext& context, const Type3Font& font,
                          const GlyphDescription& glyph);

    /// Clips to a rectangle of user space.
    void ClipToBox(const std::array<double, 4>& box);

private:
    friend struct Operators;
    using Numbers = const float*;

    enum PaintFlags : unsigned { kFill = 1, kEvenOdd = 2, kStroke = 4, kClose = 8 };
    enum class PendingClip : std::uint8_t { kNone, kNonZero, kEvenOdd };

    /// Line parameters as written last, so that repetition is not.
    struct LineState {
        static constexpr std::size_t kMaxDash = 8;
        float width = 1.0F;
        std::int32_t cap = 0;
        std::int32_t join = 0;
        float miterLimit = 10.0F;
        float flatness = -1.0F;  // a device's own until it is set
        std::array<float, kMaxDash> dash{};
        std::size_t dashCount = 0;
        std::shared_ptr<const std::vector<float>> longDash;  // of more lengths
        float dashPhase = 0.0F;

        bool operator==(const LineState&) const = default;
    };

    /// Where patterns start from, and what is being recorded around what is drawn.
    struct Origin {
        std::array<double, 6> page{1, 0, 0, 1, 0, 0};  // to default user space, as the next
        std::array<double, 6> body{1, 0, 0, 1, 0, 0};  // in which all recordings are executed
        int recordings = 0;
        int groups = 0;  // of these, what is no form that a soft mask applies to
        /// The innermost is a group that is drawn through a soft mask, which groups in it would
        /// take over.
        bool carriesMask = false;
    };

    struct SoftMask;
    using SoftMaskPtr = std::shared_ptr<SoftMask>;

    /// What is written where it changes, as it stands in the connection space.
    struct Written {
        std::array<double, 6> matrix;
        std::size_t clips;  // of those that are kept
        LineState line;
        COLOR::TRenderingIntent intent;
    };

    /// The soft mask through which everything is recorded now.
    struct BegunMask {
        SoftMaskPtr mask;
        std::size_t depth;  // of levels, the last of which holds it
        Origin outer;
        Written before;
        // As they go with the mask to what is drawn.
        float fillAlpha;
        float strokeAlpha;
        GRAPHICS::TBlendMode blendMode;
    };

    enum class Start : std::uint8_t { kOpaque, kAfresh };

    /// Everything drawn while it lives goes into the group or the mask that has just begun: in a
    /// level of its own, opaque and without a mask, or even as on a new page.
    class ScopedRecording {
    public:
        explicit ScopedRecording(ContentInterpreter& interpreter, Start start = Start::kOpaque);
        ~ScopedRecording();
        ScopedRecording(const ScopedRecording&) = delete;
        ScopedRecording& operator=(const ScopedRecording&) = delete;
        ScopedRecording(ScopedRecording&&) = delete;
        ScopedRecording& operator=(ScopedRecording&&) = delete;

        [[nodiscard]] bool IsSaved() const { return mLevel->IsSaved(); }

    private:
        ContentInterpreter& mInterpreter;
        std::optional<ScopedLevel> mLevel;
        Origin mOuter;
        std::optional<BegunMask> mOuterMask;
    };

    /// One level of the graphics state, as far as the host does not keep it.
    struct Level {
        std::array<double, 6> matrix{1, 0, 0, 1, 0, 0};
        bool isCollapsed = false;  // a matrix of no use is in force
        /// Where the boxes that clip leave something, before all matrices.
        std::array<double, 4> clipBox{-kLargestNumber, -kLargestNumber, kLargestNumber,
                                      kLargestNumber};
        const ColorSpaceEntry* fillSpace = nullptr;
        const ColorSpaceEntry* strokeSpace = nullptr;
        std::shared_ptr<Pattern> fillPattern;  // where the space is that of patterns
        std::shared_ptr<Pattern> strokePattern;
        LineState line;
        TextState text;
        SelectedFont selectedFont;  // as the connection space has it
        SoftMaskPtr mask;           // null: none
        std::size_t clips = 0;      // of those that are kept
    };

    /// A clip of a level over which a soft mask may end: it is then made once more.
    struct KeptClip {
        std::array<double, 6> matrix;
        Path path;
        bool isEvenOdd = false;
        std::vector<ClippingText> text;  // without a path
        std::size_t size = 0;            // of this and all before: points and codes
    };

    struct ClosedLevel {
        Level level;
        HOST::GraphicsParameters state;
        std::vector<KeptClip> clips;  // made in this level
    };

    void Execute(ContentParser& parser);
    bool TakeNumbers(std::size_t count);

    [[nodiscard]] const std::vector<Operand>& Operands() const { return mFrame.parser->Operands(); }

    /// The name that is the last operand, raw; nothing with a warning when there is none.
    std::optional<std::string_view> LastName();
    void BadOperands();

    [[nodiscard]] bool IsHidden() const { return mFrame.hiddenDepth != 0; }

    HOST::GraphicsParameters& State() { return mContext.space.State().Current(); }

    Level& Top() { return mLevels.back(); }

    bool Save();
    void RestoreTo(std::size_t depth);

    void Ignore(Numbers) {}

    // contentinterpreter_graphics.cpp
    void SaveLevel(Numbers);
    void RestoreLevel(Numbers);
    void ConcatMatrix(Numbers v);
    void LineWidth(Numbers v);
    void LineCap(Numbers v);
    void LineJoin(Numbers v);
    void MiterLimit(Numbers v);
    void Flatness(Numbers v);
    void Dash(Numbers);
    void RenderingIntent(Numbers);
    void GraphicsStateDictionary(Numbers);
    void SetDash(std::vector<float> lengths, float phase);
    void SetIntent(const std::string& name);
    /// Bounds, in user space, of what the boxes of page and forms leave.
    std::array<double, 4> ClipBounds();
    struct Settings;

    // contentinterpreter_path.cpp
    void MoveTo(Numbers v);
    void LineTo(Numbers v);
    void CurveTo(Numbers v);
    void CurveFromCurrent(Numbers v);
    void CurveToEnd(Numbers v);
    void ClosePath(Numbers);
    void Rectangle(Numbers v);
    void ClipNonZero(Numbers);
    void ClipEvenOdd(Numbers);

    template <unsigned Flags>
    void PaintPath(Numbers) {
        Paint(Flags);
    }

    void Paint(unsigned flags);
    /// Fills and strokes the path of the connection space, which stays.
    void Mark(unsigned marks);
    /// Fills or strokes the path of the connection space, which stays.
    void FillPath(bool evenOdd);
    void StrokePath();
    bool MayPaint(bool fill);

    // contentinterpreter_color.cpp
    template <bool Fill>
    void ColorSpace(Numbers) {
        SelectSpace(Fill);
    }

    template <bool Fill>
    void Color(Numbers) {
        SetColor(Fill);
    }

    template <bool Fill, std::size_t Device>
    void DeviceColor(Numbers v) {
        SetDeviceColor(Fill, Device, v);
    }

    void SelectSpace(bool fill);
    void SetColor(bool fill);
    void SetColorValues(bool fill, const ColorSpaceEntry& space);
    void SetDeviceColor(bool fill, std::size_t device, Numbers v);
    void Select(bool fill, const ColorSpaceEntry& space);

    /// False in the cell of an uncoloured pattern and in an uncoloured glyph, which have the colour
    /// that they are used with.
    [[nodiscard]] bool MayColor() const { return !mIsUncolored; }

    HOST::CurrentColor& ColorOf(bool fill) { return fill ? State().fill : State().stroke; }

    // contentinterpreter_shading.cpp
    void FillShading(Numbers);
    void DrawShadingRaster(const Shading& shading);
    /// Makes `values`, in host form, the current colour in a shading's space.
    void SelectColorOf(const Shading& shading, std::span<const float> values, bool fill);
    /// Makes one colour of a shading the current one, for what cannot be painted with it; false
    /// when it has none.
    bool SelectMiddleColor(const Shading& shading, bool fill);
    /// Draws the background and the shading of a pattern within the path.
    void FillPathWithShading(const Pattern& pattern, bool evenOdd);
    /// Strokes the path in the middle colour of a pattern.
    void StrokePathWithShading(const Pattern& pattern);

    // contentinterpreter_pattern.cpp
    void SelectPattern(bool fill);
    std::shared_ptr<Pattern> FindPattern(const ColorSpaceEntry* underlying);
    std::shared_ptr<Pattern> FindPattern(const QPDFObjectHandle& object, Resources& resources,
                                         const std::array<double, 6>& parentToUser,
                                         const ColorSpaceEntry* underlying);
    /// Makes the pattern of the level the space of the current colour.
    bool UsePattern(bool fill);
    bool DefinePattern(Pattern& pattern);

    // contentinterpreter_xobject.cpp
    void XObject(Numbers);
    void BeginMark(Numbers);
    void BeginMarkWithProperties(Numbers);
    void EndMark(Numbers);
    void BeginCompatibility(Numbers);
    void EndCompatibility(Numbers);
    void CloseTextAround(const Form& form);
    void DrawContent(const Form& form, Resources& resources);

    // contentinterpreter_groups.cpp
    /// A group, and what is to stand for its attributes.
    struct Group {
        std::array<double, 4> box;  // in user space
        bool isIsolated = false;
        bool isKnockout = false;
        HOST::ColorSpacePtr space;  // null: that around it
    };
    enum class PaintGroup : std::uint8_t { kNone, kOpaque, kKnockout };

    /// Notes that transparency of a kind was asked for, where it is painted opaque.
    void Lose(unsigned kinds) {
        if (!mContext.keepsAlpha) {
            mContext.lostTransparency.Add(kinds);
        }
    }

    /// The kinds of transparency that what is painted now has, without its content.
    unsigned OwnTransparency();
    bool NeedsGroup(const Form& form);
    void DrawGroup(const Form& form, Resources& resources);
    /// Records what `play` draws as a group, in the state of a group's content (opaque).
    void Record(const Group& group, const std::function<void()>& play);
    Group DescribeGroup(const QPDFObjectHandle& attributes, const std::array<double, 4>& box,
                        Resources& resources);
    /// How a path that is both filled and stroked is to be painted.
    PaintGroup PaintGroupOf(unsigned marks);
    /// Paints the path where this takes a group; false, with nothing done, where it does not.
    bool PaintInGroup(unsigned marks);
    /// From now on what is drawn is executed elsewhere, in a state that nobody knows. Answers the
    /// origin, to be given to `LeaveRecording`.
    Origin EnterRecording(bool isGroup);
    /// Goes back to the origin before; the interpreter's state is again what it was then.
    void LeaveRecording(const Origin& outer);
    /// Writes all of the state that is written where it changes.
    void WriteState();
    void RebasePatterns();
    void RebasePattern(bool fill);

    // contentinterpreter_softmask.cpp
    void SetSoftMask(const QPDFObjectHandle& parameters);
    bool ReadMask(SoftMask& mask);
    bool ReadMaskParameters(SoftMask& mask);
    HOST::FunctionPtr ReadTransfer(const QPDFObjectHandle& object);
    const ColorSpaceEntry& SpaceOfMask(const SoftMask& mask, std::size_t backdropCount);
    void ReadBackdrop(SoftMask& mask);

    /// To be called before anything is painted: begins or ends a soft mask where it has to be.
    void PreparePaint() {
        if (mBegunMask || Top().mask) {
            SynchroniseMask();
        }
    }

    /// To be called before a group is begun that is not to take over the mask of the group around
    /// it.
    void ShieldGroup();

    [[nodiscard]] bool HasMask() { return Top().mask && ReadMask(*Top().mask); }

    void SynchroniseMask();
    /// The level, counted from 1, up from which a mask and what goes with it are the same.
    std::size_t LowestDepthOf(const SoftMask& mask);
    void BeginMask(const SoftMaskPtr& mask);
    bool RecordMask(const SoftMask& mask);
    /// Ends the mask over levels that may stay open.
    void EndMask();
    void ResetState();
    Written CurrentlyWritten();
    /// Writes again what the top level has beyond what is written.
    void WriteBeyond(const Written& written);
    void ConcatOnly(const std::array<double, 6>& from, const std::array<double, 6>& to);
    /// Closes levels of the connection space, until `depth` are left.
    std::vector<ClosedLevel> CloseLevels(std::size_t depth);
    void OpenLevels(std::vector<ClosedLevel> levels);

    [[nodiscard]] bool KeepsClips() const { return mBegunMask || mLevels.back().mask; }

    void KeepClip(KeptClip clip);

    // contentinterpreter_text.cpp
    void BeginText(Numbers);
    void EndText(Numbers);

    template <float TextState::*Member>
    void TextNumber(Numbers v) {
        Top().text.*Member = v[0];
    }

    void HorizontalScaling(Numbers v);
    void RenderingMode(Numbers v);
    void SelectFont(Numbers);
    void MoveLine(Numbers v);
    void MoveLineWithLeading(Numbers v);
    void NextLine(Numbers);
    void TextMatrix(Numbers v);
    void ShowString(Numbers);
    void ShowStringOnNextLine(Numbers);
    void ShowStringWithSpacing(Numbers);
    void ShowStrings(Numbers);
    void SetFont(const QPDFObjectHandle& dictionary, float size);
    void MoveLineBy(double x, double y);
    void CloseTextObject();
    void ClipToText();
    void ClipToStrings(const std::vector<ClippingText>& strings);
    /// Before a string is taken from its operands.
    void PrepareText();
    std::optional<TextRendering> VisibleRendering();
    bool MayPaintText(bool fill);
    /// Shows a string in the modes of the state and goes on behind it.
    void Show(std::string_view codes);
    void ShowHostText(std::string_view codes);
    void MoveAlong(double distance);
    void ShowInvisible(std::string_view codes);
    void ShowPieces(std::string_view codes, std::optional<TextRendering> rendering);
    bool IsNear(double along);
    void KeepForClip(const TextPlace& place, std::string_view codes);
    void DrawText(const TextPlace& place, std::string_view codes, TextRendering rendering);

    // contentinterpreter_type3.cpp
    /// The glyph at a code whose content is to be played, or null.
    const GlyphDescription* PlayedGlyph(char code);
    void ShowType3(std::string_view codes);
    void ShowPlayedGlyph(const GlyphDescription& glyph);
    void SetInitialLines();
    void DrawGlyph(const Type3Font& font, const GlyphDescription& glyph);

    // contentinterpreter_image.cpp
    /// An image that is drawn in bands, clipped by boxes in a grid of its own.
    struct Banded {
        HOST::RasterFormat format;
        bool isDeviceN;
        std::shared_ptr<SharedPlanes> shared;
        std::int32_t columns;
        std::int32_t rows;
        const std::string& label;
    };

    void InlineImage(Numbers);
    ImageContext ContextOfImages();
    void PaintImage(const ImageObject& object);
    void PaintStencil(Image& image);
    /// Paints the pattern of fills through a stencil.
    void PaintPatternThrough(Image& image);
    void PaintColors(Image& image);
    void PaintPixel(PlanarImage image, ImageMask mask, const std::string& label);
    void PaintSoft(Image& source, ImageMask mask, bool isOpaque);
    void PaintClipped(PlanarImage image, const ImageMask& mask, const std::string& label);
    /// Calls `paint` with the opaque boxes of a mask, band by band, so that no path of boxes grows
    /// too large. The space is then that of the mask's pixels, from the upper left corner.
    using PaintBand = std::function<void(std::span<const PixelBox>)>;
    void ForBands(const ImageMask& mask, const PaintBand& paint);
    void PaintBoxes(const Banded& banded, std::span<const PixelBox> boxes);
    void PaintRaster(PlanarImage image, const std::string& label);
    void DrawStencil(const HOST::ColorSpacePtr& space, std::vector<std::uint8_t> palette,
                     PlaneSourcePtr bits, std::int32_t width, std::int32_t height,
                     const std::string& label);
    void DrawRaster(const HOST::RasterPtr& raster, const std::string& label);

    PlayContext& mContext;
    std::vector<Level> mLevels;
    Frame mFrame;
    Origin mOrigin;
    std::optional<BegunMask> mBegunMask;  // of what is being recorded
    std::vector<KeptClip> mClips;
    bool mSetsIntent = false;  // other than that of a new page
    Path mPath;
    PendingClip mPendingClip = PendingClip::kNone;
    std::array<float, 6> mNumbers{};
    std::vector<float> mValues;
    std::string mCodes;
    std::string mHostText;
    const PatternCell* mCell = nullptr;  // that this plays
    const Type3Font* mFont = nullptr;    // the one of whose glyphs this makes a recording
    bool mIsUncolored = false;
    int mGlyphDepth = 0;  // glyphs being played within one another
};

}  // namespace VANTIX::PDF
