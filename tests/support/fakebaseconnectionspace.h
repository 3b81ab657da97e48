// SPDX-License-Identifier: MIT
#pragma once

#include <map>

#include "core/graphics/iconnectionspace.h"
#include "core/object/tobject.h"
#include "support/fakecolorspaces.h"

namespace VANTIX::TEST {

/// The host's front object: attaches itself to its delegate and keeps a table of colour spaces.
/// Tests draw through the delegate itself, so the drawing slots do nothing.
class FakeBaseConnectionSpace : public TObject<GRAPHICS::IBaseConnectionSpace> {
public:
    std::map<ResourceId, TInterfacePtr<COLOR::IConnectionColorSpace>> spaces;
    /// Handed to the delegate when it is attached (borrowed).
    GRAPHICS::IGraphicsState* state = nullptr;
    Status initStatus = STATUS::kOk;
    bool attaches = true;

    Status Init(GRAPHICS::IDelegateConnectionSpace* delegate) override {
        if (attaches && initStatus == STATUS::kOk) {
            delegate->Aggregate(this, GRAPHICS::IID_IBASECONNECTIONSPACE);
            delegate->SetGraphicsState(state);
        }
        return initStatus;
    }

    bool GetColorSpace(ResourceId id, COLOR::IConnectionColorSpace** out) override {
        const auto found = spaces.find(id);
        if (found == spaces.end()) {
            return false;
        }
        auto held = found->second;
        *out = held.Detach();
        return true;
    }

    void PlayTo(GRAPHICS::IConnectionSpace&) const override {}

    void SaveGraphicsState() override {}

    void RestoreGraphicsState() override {}

    void Scale(float, float) override {}

    void Translate(float, float) override {}

    void Rotate(float) override {}

    void Concat(float, float, float, float, float, float) override {}

    void NewPath() override {}

    bool Reserved1() override { return false; }

    bool Reserved2() override { return false; }

    void AddColorSpace(COLOR::IConnectionColorSpace*, ResourceId) override {}

    void RegisterColorSpaceUse(ResourceId, bool) override {}

    void RegisterColorSpaceUse(ResourceId) override {}

    void Reserved3() override {}

    void Reserved4() override {}

    void MoveTo(float, float) override {}

    void LineTo(const float*, std::int32_t) override {}

    void Arc(float, float, float, float, float) override {}

    void ArcTo(float, float, float, float, float) override {}

    void QuadCurveTo(const float*, std::int32_t) override {}

    void CurveTo(const float*, std::int32_t) override {}

    void ClosePath() override {}

    void ResetPath() override {}

    void Clip() override {}

    void EOClip() override {}

    void Fill() override {}

    void EOFill() override {}

    void FillWithColorSpace(COLOR::IConnectionColorSpace*, ResourceId, float, float, float,
                            float) override {}

    void Stroke() override {}

    void SetLineWidth(float) override {}

    void SetLineCap(std::int32_t) override {}

    void SetLineJoin(std::int32_t) override {}

    void SetDash(float, const float*, std::int32_t) override {}

    void SetMiterLimit(float) override {}

    void SetFlatness(float) override {}

    void SelectRenderingIntent(COLOR::TRenderingIntent) override {}

    void SelectRenderingIntent2(COLOR::TRenderingIntent) override {}

    void Reserved5() override {}

    void Reserved6() override {}

    void Reserved7() override {}

    void Reserved8() override {}

    void Reserved9() override {}

    void Reserved10() override {}

    bool BeginTransparencyGroup(const float*, const float*, bool, bool,
                                COLOR::IConnectionColorSpace*) override {
        return false;
    }

    void EndTransparencyGroup() override {}

    bool BeginSoftMask(COLOR::IColorFunction*, const float*, float, float, float, float,
                       COLOR::IConnectionColorSpace*, const float*, std::uint64_t, bool, bool,
                       GRAPHICS::IGraphicsState::TSoftMaskType) override {
        return false;
    }

    void EndSoftMask() override {}

    void Reserved11() override {}

    void DrawImage(GRAPHICS::IRasterComponent*, float, float, float, float) override {}

    void SelectCurrentFont() override {}

    void Reserved12() override {}

    void Reserved13() override {}

    void Reserved14() override {}

    void Reserved15() override {}

    void Reserved16() override {}

    void Reserved17() override {}

    void SetOverprintState(bool) override {}

    bool BeginTextObject() override { return false; }

    bool EndTextObject() override { return false; }

    GRAPHICS::ITextObject* GetCurrentTextObject() const override { return nullptr; }

    void DrawTextW(const void*, std::int32_t) override {}

    void DrawGlyphs(const std::uint16_t*, std::int32_t, const std::uint16_t*,
                    std::int32_t) override {}

    void SaveInitialPageMatrix() override {}

    void Reserved18() override {}
};

}  // namespace VANTIX::TEST
