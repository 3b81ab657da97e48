// SPDX-License-Identifier: MIT
#pragma once

#include "core/graphics/iconnectionspace.h"
#include "core/object/tobject.h"

namespace VANTIX::GRAPHICS {

/// A connection space of the interface `I` in which every slot does nothing, answers false where a
/// query is reserved and true where a text object or a group begins.
template <class I>
class IdleConnectionSpace : public TObject<I> {
public:
    void PlayTo(IConnectionSpace& /*space*/) const override {}

    void SaveGraphicsState() override {}

    void RestoreGraphicsState() override {}

    void Scale(float /*sx*/, float /*sy*/) override {}

    void Translate(float /*tx*/, float /*ty*/) override {}

    void Rotate(float /*angle*/) override {}

    void Concat(float /*a*/, float /*b*/, float /*c*/, float /*d*/, float /*e*/,
                float /*f*/) override {}

    void NewPath() override {}

    bool Reserved1() override { return false; }

    bool Reserved2() override { return false; }

    void AddColorSpace(COLOR::IConnectionColorSpace* /*space*/, ResourceId /*id*/) override {}

    void RegisterColorSpaceUse(ResourceId /*id*/, bool /*fill*/) override {}

    void RegisterColorSpaceUse(ResourceId /*id*/) override {}

    void Reserved3() override {}

    void Reserved4() override {}

    void MoveTo(float /*x*/, float /*y*/) override {}

    void LineTo(const float* /*points*/, std::int32_t /*count*/) override {}

    void Arc(float /*x*/, float /*y*/, float /*radius*/, float /*angle1*/,
             float /*angle2*/) override {}

    void ArcTo(float /*x1*/, float /*y1*/, float /*x2*/, float /*y2*/, float /*radius*/) override {}

    void QuadCurveTo(const float* /*points*/, std::int32_t /*count*/) override {}

    void CurveTo(const float* /*points*/, std::int32_t /*count*/) override {}

    void ClosePath() override {}

    void ResetPath() override {}

    void Clip() override {}

    void EOClip() override {}

    void Fill() override {}

    void EOFill() override {}

    void FillWithColorSpace(COLOR::IConnectionColorSpace* /*space*/, ResourceId /*id*/, float /*x*/,
                            float /*y*/, float /*width*/, float /*height*/) override {}

    void Stroke() override {}

    void SetLineWidth(float /*width*/) override {}

    void SetLineCap(std::int32_t /*cap*/) override {}

    void SetLineJoin(std::int32_t /*join*/) override {}

    void SetDash(float /*phase*/, const float* /*lengths*/, std::int32_t /*count*/) override {}

    void SetMiterLimit(float /*limit*/) override {}

    void SetFlatness(float /*flatness*/) override {}

    void SelectRenderingIntent(COLOR::TRenderingIntent /*intent*/) override {}

    void SelectRenderingIntent2(COLOR::TRenderingIntent /*intent*/) override {}

    void Reserved5() override {}

    void Reserved6() override {}

    void Reserved7() override {}

    void Reserved8() override {}

    void Reserved9() override {}

    void Reserved10() override {}

    bool BeginTransparencyGroup(const float* /*bbox*/, const float* /*matrix*/, bool /*isolated*/,
                                bool /*knockout*/,
                                COLOR::IConnectionColorSpace* /*space*/) override {
        return true;
    }

    void EndTransparencyGroup() override {}

    bool BeginSoftMask(COLOR::IColorFunction* /*transfer*/, const float* /*matrix*/, float /*x0*/,
                       float /*y0*/, float /*x1*/, float /*y1*/,
                       COLOR::IConnectionColorSpace* /*space*/, const float* /*backdrop*/,
                       std::uint64_t /*backdropCount*/, bool /*isolated*/, bool /*knockout*/,
                       IGraphicsState::TSoftMaskType /*type*/) override {
        return true;
    }

    void EndSoftMask() override {}

    void Reserved11() override {}

    void DrawImage(IRasterComponent* /*raster*/, float /*x*/, float /*y*/, float /*width*/,
                   float /*height*/) override {}

    void SelectCurrentFont() override {}

    void Reserved12() override {}

    void Reserved13() override {}

    void Reserved14() override {}

    void Reserved15() override {}

    void Reserved16() override {}

    void Reserved17() override {}

    void SetOverprintState(bool /*overprint*/) override {}

    bool BeginTextObject() override { return true; }

    bool EndTextObject() override { return true; }

    ITextObject* GetCurrentTextObject() const override { return nullptr; }

    void DrawTextW(const void* /*text*/, std::int32_t /*length*/) override {}

    void DrawGlyphs(const std::uint16_t* /*glyphs*/, std::int32_t /*count*/,
                    const std::uint16_t* /*text*/, std::int32_t /*textLength*/) override {}

    void SaveInitialPageMatrix() override {}

    void Reserved18() override {}
};

/// A delegate connection space that does nothing. Writers override what they write.
class DelegateConnectionSpace : public IdleConnectionSpace<IDelegateConnectionSpace> {
public:
    bool Init(IO::IDataProvider* /*stream*/, IClassFactory* /*factory*/,
              const IO::IDictionary* /*policy*/) override {
        return true;
    }

    void SetGraphicsState(IGraphicsState* state) override { mGraphicsState = state; }

protected:
    /// True while drawing is suppressed.
    [[nodiscard]] bool IsDrawingSuppressed() const { return mDrawingSuppression != 0; }

    IGraphicsState* mGraphicsState = nullptr;
    std::int32_t mDrawingSuppression = 0;
};

}  // namespace VANTIX::GRAPHICS
