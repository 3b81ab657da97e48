// SPDX-License-Identifier: MIT
#include "host/graphics/baseconnectionspace.h"

#include <utility>

namespace VANTIX::HOST {

using GRAPHICS::IConnectionSpace;

namespace {

/// Sorts before every key of use, so that a delegate that ends releases it first.
constexpr GUID kTieKey = "00000000-2F4B-4E0A-9C31-5D7E1B8A6F02"_guid;

/// Calls a slot of the delegate; without one answers false or null.
template <class R, class... P, class... A>
R Forward(IConnectionSpace* delegate, R (IConnectionSpace::*slot)(P...), A&&... arguments) {
    return delegate == nullptr ? R() : (delegate->*slot)(std::forward<A>(arguments)...);
}

template <class R, class... P, class... A>
R Forward(const IConnectionSpace* delegate, R (IConnectionSpace::*slot)(P...) const,
          A&&... arguments) {
    return delegate == nullptr ? R() : (delegate->*slot)(std::forward<A>(arguments)...);
}

}  // namespace

/// Hangs on the delegate beside the base space. Its end tells the base space, which others may
/// still hold, that the delegate is no more.
class BaseConnectionSpace::Tie : public TObject<IObject> {
public:
    explicit Tie(BaseConnectionSpace* base) : mBase(base) { base->mTie = this; }

    ~Tie() override {
        if (mBase != nullptr) {
            mBase->mDelegate = nullptr;
            mBase->mTie = nullptr;
        }
    }

    Tie(const Tie&) = delete;
    Tie& operator=(const Tie&) = delete;
    Tie(Tie&&) = delete;
    Tie& operator=(Tie&&) = delete;

    void Forget() { mBase = nullptr; }

private:
    BaseConnectionSpace* mBase;
};

BaseConnectionSpace::BaseConnectionSpace(TInterfacePtr<COLOR::IConnectionColorSpace> gray)
    : mState(MakeObject<GraphicsState>(std::move(gray))) {}

BaseConnectionSpace::~BaseConnectionSpace() {
    if (mTie != nullptr) {
        mTie->Forget();
    }
}

BaseConnectionSpace* BaseConnectionSpace::From(IConnectionSpace* space) {
    return FindInterface<BaseConnectionSpace>(space, IID_HOSTBASECONNECTIONSPACE);
}

void BaseConnectionSpace::EnterColorSpace(COLOR::IConnectionColorSpace* space, ResourceId id) {
    if (space != nullptr) {
        mSpaces->try_emplace(id, TInterfacePtr<COLOR::IConnectionColorSpace>(space));
    }
}

Status BaseConnectionSpace::QueryInterface(const GUID& id, void** out) {
    if (id == IID_HOSTBASECONNECTIONSPACE) {
        *out = static_cast<IObject*>(this);
        return STATUS::kOk;
    }
    const bool forDelegate = id == GRAPHICS::CLSID_POSTSCRIPTCONNECTIONSPACE;
    if (forDelegate && mDelegate != nullptr && !mAskingDelegate) {
        // A delegate that is another kind of space passes the question back to this one.
        mAskingDelegate = true;
        const Status status = mDelegate->QueryInterface(id, out);
        mAskingDelegate = false;
        return status;
    }
    return TObject::QueryInterface(id, out);
}

Status BaseConnectionSpace::Init(GRAPHICS::IDelegateConnectionSpace* delegate) {
    if (delegate == nullptr || mDelegate != nullptr) {
        return STATUS::kInvalidArgument;
    }
    mDelegate = delegate;
    const auto tie = MakeObject<Tie>(this);
    Status status = delegate->Aggregate(tie.Get(), kTieKey);
    if (status == STATUS::kOk) {
        status = delegate->Aggregate(this, GRAPHICS::IID_IBASECONNECTIONSPACE);
    }
    if (status == STATUS::kOk) {
        delegate->SetGraphicsState(mState.Get());
    }
    return status;
}

bool BaseConnectionSpace::GetColorSpace(ResourceId id, COLOR::IConnectionColorSpace** out) {
    const auto found = mSpaces->find(id);
    *out = found == mSpaces->end() ? nullptr : TInterfacePtr(found->second).Detach();
    return *out != nullptr;
}

void BaseConnectionSpace::PlayTo(GRAPHICS::IConnectionSpace& space) const {
    Forward(mDelegate, &IConnectionSpace::PlayTo, space);
}

void BaseConnectionSpace::SaveGraphicsState() {
    if (mState->Push()) {
        Forward(mDelegate, &IConnectionSpace::SaveGraphicsState);
    }
}

void BaseConnectionSpace::RestoreGraphicsState() {
    if (mState->Depth() == 0) {
        return;
    }
    // The end of a soft mask draws, so it comes while both states still have this level; and what
    // is called by it finds no mask any more.
    { const TInterfacePtr<IObject> ended = std::move(State().Current().softMaskHolder); }
    mState->Pop();
    Forward(mDelegate, &IConnectionSpace::RestoreGraphicsState);
}

void BaseConnectionSpace::Scale(float sx, float sy) {
    Forward(mDelegate, &IConnectionSpace::Scale, sx, sy);
}

void BaseConnectionSpace::Translate(float tx, float ty) {
    Forward(mDelegate, &IConnectionSpace::Translate, tx, ty);
}

void BaseConnectionSpace::Rotate(float angle) {
    Forward(mDelegate, &IConnectionSpace::Rotate, angle);
}

void BaseConnectionSpace::Concat(float a, float b, float c, float d, float e, float f) {
    Forward(mDelegate, &IConnectionSpace::Concat, a, b, c, d, e, f);
}

void BaseConnectionSpace::NewPath() {
    Forward(mDelegate, &IConnectionSpace::NewPath);
}

bool BaseConnectionSpace::Reserved1() {
    return Forward(mDelegate, &IConnectionSpace::Reserved1);
}

bool BaseConnectionSpace::Reserved2() {
    return Forward(mDelegate, &IConnectionSpace::Reserved2);
}

void BaseConnectionSpace::AddColorSpace(COLOR::IConnectionColorSpace* space, ResourceId id) {
    EnterColorSpace(space, id);
    Forward(mDelegate, &IConnectionSpace::AddColorSpace, space, id);
}

void BaseConnectionSpace::RegisterColorSpaceUse(ResourceId id, bool fill) {
    if (mDelegate != nullptr) {
        mDelegate->RegisterColorSpaceUse(id, fill);
    }
}

void BaseConnectionSpace::RegisterColorSpaceUse(ResourceId id) {
    if (mDelegate != nullptr) {
        mDelegate->RegisterColorSpaceUse(id);
    }
}

void BaseConnectionSpace::Reserved3() {
    Forward(mDelegate, &IConnectionSpace::Reserved3);
}

void BaseConnectionSpace::Reserved4() {
    Forward(mDelegate, &IConnectionSpace::Reserved4);
}

void BaseConnectionSpace::MoveTo(float x, float y) {
    Forward(mDelegate, &IConnectionSpace::MoveTo, x, y);
}

void BaseConnectionSpace::LineTo(const float* points, std::int32_t count) {
    Forward(mDelegate, &IConnectionSpace::LineTo, points, count);
}

void BaseConnectionSpace::Arc(float x, float y, float radius, float angle1, float angle2) {
    Forward(mDelegate, &IConnectionSpace::Arc, x, y, radius, angle1, angle2);
}

void BaseConnectionSpace::ArcTo(float x1, float y1, float x2, float y2, float radius) {
    Forward(mDelegate, &IConnectionSpace::ArcTo, x1, y1, x2, y2, radius);
}

void BaseConnectionSpace::QuadCurveTo(const float* points, std::int32_t count) {
    Forward(mDelegate, &IConnectionSpace::QuadCurveTo, points, count);
}

void BaseConnectionSpace::CurveTo(const float* points, std::int32_t count) {
    Forward(mDelegate, &IConnectionSpace::CurveTo, points, count);
}

void BaseConnectionSpace::ClosePath() {
    Forward(mDelegate, &IConnectionSpace::ClosePath);
}

void BaseConnectionSpace::ResetPath() {
    Forward(mDelegate, &IConnectionSpace::ResetPath);
}

void BaseConnectionSpace::Clip() {
    Forward(mDelegate, &IConnectionSpace::Clip);
}

void BaseConnectionSpace::EOClip() {
    Forward(mDelegate, &IConnectionSpace::EOClip);
}

void BaseConnectionSpace::Fill() {
    Forward(mDelegate, &IConnectionSpace::Fill);
}

void BaseConnectionSpace::EOFill() {
    Forward(mDelegate, &IConnectionSpace::EOFill);
}

void BaseConnectionSpace::FillWithColorSpace(COLOR::IConnectionColorSpace* space, ResourceId id,
                                             float x, float y, float width, float height) {
    Forward(mDelegate, &IConnectionSpace::FillWithColorSpace, space, id, x, y, width, height);
}

void BaseConnectionSpace::Stroke() {
    Forward(mDelegate, &IConnectionSpace::Stroke);
}

void BaseConnectionSpace::SetLineWidth(float width) {
    Forward(mDelegate, &IConnectionSpace::SetLineWidth, width);
}

void BaseConnectionSpace::SetLineCap(std::int32_t cap) {
    Forward(mDelegate, &IConnectionSpace::SetLineCap, cap);
}

void BaseConnectionSpace::SetLineJoin(std::int32_t join) {
    Forward(mDelegate, &IConnectionSpace::SetLineJoin, join);
}

void BaseConnectionSpace::SetDash(float phase, const float* lengths, std::int32_t count) {
    Forward(mDelegate, &IConnectionSpace::SetDash, phase, lengths, count);
}

void BaseConnectionSpace::SetMiterLimit(float limit) {
    Forward(mDelegate, &IConnectionSpace::SetMiterLimit, limit);
}

void BaseConnectionSpace::SetFlatness(float flatness) {
    Forward(mDelegate, &IConnectionSpace::SetFlatness, flatness);
}

void BaseConnectionSpace::SelectRenderingIntent(COLOR::TRenderingIntent intent) {
    Forward(mDelegate, &IConnectionSpace::SelectRenderingIntent, intent);
}

void BaseConnectionSpace::SelectRenderingIntent2(COLOR::TRenderingIntent intent) {
    Forward(mDelegate, &IConnectionSpace::SelectRenderingIntent2, intent);
}

void BaseConnectionSpace::Reserved5() {
    Forward(mDelegate, &IConnectionSpace::Reserved5);
}

void BaseConnectionSpace::Reserved6() {
    Forward(mDelegate, &IConnectionSpace::Reserved6);
}

void BaseConnectionSpace::Reserved7() {
    Forward(mDelegate, &IConnectionSpace::Reserved7);
}

void BaseConnectionSpace::Reserved8() {
    Forward(mDelegate, &IConnectionSpace::Reserved8);
}

void BaseConnectionSpace::Reserved9() {
    Forward(mDelegate, &IConnectionSpace::Reserved9);
}

void BaseConnectionSpace::Reserved10() {
    Forward(mDelegate, &IConnectionSpace::Reserved10);
}

bool BaseConnectionSpace::BeginTransparencyGroup(const float* bbox, const float* matrix,
                                                 bool isolated, bool knockout,
                                                 COLOR::IConnectionColorSpace* space) {
    return Forward(mDelegate, &IConnectionSpace::BeginTransparencyGroup, bbox, matrix, isolated,
                   knockout, space);
}

void BaseConnectionSpace::EndTransparencyGroup() {
    Forward(mDelegate, &IConnectionSpace::EndTransparencyGroup);
}

bool BaseConnectionSpace::BeginSoftMask(COLOR::IColorFunction* transfer, const float* matrix,
                                        float x0, float y0, float x1, float y1,
                                        COLOR::IConnectionColorSpace* space, const float* backdrop,
                                        std::uint64_t backdropCount, bool isolated, bool knockout,
                                        GRAPHICS::IGraphicsState::TSoftMaskType type) {
    return Forward(mDelegate, &IConnectionSpace::BeginSoftMask, transfer, matrix, x0, y0, x1, y1,
                   space, backdrop, backdropCount, isolated, knockout, type);
}

void BaseConnectionSpace::EndSoftMask() {
    Forward(mDelegate, &IConnectionSpace::EndSoftMask);
}

void BaseConnectionSpace::Reserved11() {
    Forward(mDelegate, &IConnectionSpace::Reserved11);
}

void BaseConnectionSpace::DrawImage(GRAPHICS::IRasterComponent* raster, float x, float y,
                                    float width, float height) {
    Forward(mDelegate, &IConnectionSpace::DrawImage, raster, x, y, width, height);
}

void BaseConnectionSpace::SelectCurrentFont() {
    Forward(mDelegate, &IConnectionSpace::SelectCurrentFont);
}

void BaseConnectionSpace::Reserved12() {
    Forward(mDelegate, &IConnectionSpace::Reserved12);
}

void BaseConnectionSpace::Reserved13() {
    Forward(mDelegate, &IConnectionSpace::Reserved13);
}

void BaseConnectionSpace::Reserved14() {
    Forward(mDelegate, &IConnectionSpace::Reserved14);
}

void BaseConnectionSpace::Reserved15() {
    Forward(mDelegate, &IConnectionSpace::Reserved15);
}

void BaseConnectionSpace::Reserved16() {
    Forward(mDelegate, &IConnectionSpace::Reserved16);
}

void BaseConnectionSpace::Reserved17() {
    Forward(mDelegate, &IConnectionSpace::Reserved17);
}

void BaseConnectionSpace::SetOverprintState(bool overprint) {
    Forward(mDelegate, &IConnectionSpace::SetOverprintState, overprint);
}

bool BaseConnectionSpace::BeginTextObject() {
    return Forward(mDelegate, &IConnectionSpace::BeginTextObject);
}

bool BaseConnectionSpace::EndTextObject() {
    return Forward(mDelegate, &IConnectionSpace::EndTextObject);
}

GRAPHICS::ITextObject* BaseConnectionSpace::GetCurrentTextObject() const {
    return Forward(mDelegate, &IConnectionSpace::GetCurrentTextObject);
}

void BaseConnectionSpace::DrawTextW(const void* text, std::int32_t length) {
    Forward(mDelegate, &IConnectionSpace::DrawTextW, text, length);
}

void BaseConnectionSpace::DrawGlyphs(const std::uint16_t* glyphs, std::int32_t count,
                                     const std::uint16_t* text, std::int32_t textLength) {
    Forward(mDelegate, &IConnectionSpace::DrawGlyphs, glyphs, count, text, textLength);
}

void BaseConnectionSpace::SaveInitialPageMatrix() {
    Forward(mDelegate, &IConnectionSpace::SaveInitialPageMatrix);
}

void BaseConnectionSpace::Reserved18() {
    Forward(mDelegate, &IConnectionSpace::Reserved18);
}

}  // namespace VANTIX::HOST
