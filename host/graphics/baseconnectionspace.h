// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <memory>

#include "core/graphics/iconnectionspace.h"
#include "core/object/tobject.h"
#include "host/export.h"
#include "host/graphics/graphicsstate.h"

namespace VANTIX::HOST {

/// Answered by the host's own base connection space with itself.
inline constexpr GUID IID_HOSTBASECONNECTIONSPACE = "6E9B1D20-3A57-4C8F-9B44-8C1F0E5D7A62"_guid;

/// The host's front object. Forwards every slot to its delegate space, which owns it, and keeps the
/// colour-space table and the graphics states. Its `QueryInterface` never asks the delegate, but
/// for `CLSID_POSTSCRIPTCONNECTIONSPACE`. From the delegate's destruction on nothing is forwarded
/// any more; who holds a soft mask in the state lets it go before.
class NORVANE_HOST_API BaseConnectionSpace : public TObject<GRAPHICS::IBaseConnectionSpace> {
public:
    /// `gray` is the space of the initial colours (null: none).
    explicit BaseConnectionSpace(TInterfacePtr<COLOR::IConnectionColorSpace> gray);
    ~BaseConnectionSpace() override;

    /// The host's base space behind `space` (borrowed), or null when it is another's.
    static BaseConnectionSpace* From(GRAPHICS::IConnectionSpace* space);

    /// The state in force; change it through `Current()` before drawing.
    GraphicsState& State() { return *mState; }

    /// Enters a space under its number, with a reference, without telling the delegate: for spaces
    /// that need no resource made beforehand. An entry that is there already stays.
    void EnterColorSpace(COLOR::IConnectionColorSpace* space, ResourceId id);

    /// Uses the table of `other` from now on, too, whose numbers so mean the same in both: for
    /// recordings, each of which comes with a base space of its own.
    void ShareColorSpaces(const BaseConnectionSpace& other) { mSpaces = other.mSpaces; }

    Status QueryInterface(const GUID& id, void** out) override;
    /// `kInvalidArgument` without a delegate, or for a second one.
    Status Init(GRAPHICS::IDelegateConnectionSpace* delegate) override;
    bool GetColorSpace(ResourceId id, COLOR::IConnectionColorSpace** out) override;

    void PlayTo(GRAPHICS::IConnectionSpace& space) const override;
    /// Does nothing when the state's stack is full, which `State().Depth()` shows.
    void SaveGraphicsState() override;
    /// Releases the soft mask of the level that ends, then restores. Does nothing on the first
    /// level.
    void RestoreGraphicsState() override;
    void Scale(float sx, float sy) override;
    void Translate(float tx, float ty) override;
    void Rotate(float angle) override;
    void Concat(float a, float b, float c, float d, float e, float f) override;
    void NewPath() override;
    bool Reserved1() override;
    bool Reserved2() override;
    void AddColorSpace(COLOR::IConnectionColorSpace* space, ResourceId id) override;
    void RegisterColorSpaceUse(ResourceId id, bool fill) override;
    void RegisterColorSpaceUse(ResourceId id) override;
    void Reserved3() override;
    void Reserved4() override;
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
    void Reserved5() override;
    void Reserved6() override;
    void Reserved7() override;
    void Reserved8() override;
    void Reserved9() override;
    void Reserved10() override;
    bool BeginTransparencyGroup(const float* bbox, const float* matrix, bool isolated,
                                bool knockout, COLOR::IConnectionColorSpace* space) override;
    void EndTransparencyGroup() override;
    bool BeginSoftMask(COLOR::IColorFunction* transfer, const float* matrix, float x0, float y0,
                       float x1, float y1, COLOR::IConnectionColorSpace* space,
                       const float* backdrop, std::uint64_t backdropCount, bool isolated,
                       bool knockout, GRAPHICS::IGraphicsState::TSoftMaskType type) override;
    void EndSoftMask() override;
    void Reserved11() override;
    void DrawImage(GRAPHICS::IRasterComponent* raster, float x, float y, float width,
                   float height) override;
    void SelectCurrentFont() override;
    void Reserved12() override;
    void Reserved13() override;
    void Reserved14() override;
    void Reserved15() override;
    void Reserved16() override;
    void Reserved17() override;
    void SetOverprintState(bool overprint) override;
    bool BeginTextObject() override;
    bool EndTextObject() override;
    GRAPHICS::ITextObject* GetCurrentTextObject() const override;
    void DrawTextW(const void* text, std::int32_t length) override;
    void DrawGlyphs(const std::uint16_t* glyphs, std::int32_t count, const std::uint16_t* text,
                    std::int32_t textLength) override;
    void SaveInitialPageMatrix() override;
    void Reserved18() override;

private:
    class Tie;
    using SpaceTable = std::map<ResourceId, TInterfacePtr<COLOR::IConnectionColorSpace>>;

    GRAPHICS::IDelegateConnectionSpace* mDelegate = nullptr;  // not counted: it owns this object
    Tie* mTie = nullptr;                                      // not counted: the delegate owns it
    bool mAskingDelegate = false;
    TInterfacePtr<GraphicsState> mState;
    std::shared_ptr<SpaceTable> mSpaces = std::make_shared<SpaceTable>();
};

}  // namespace VANTIX::HOST
