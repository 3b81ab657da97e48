// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "core/color/colorconversion.h"
#include "core/color/icolorfunction.h"
#include "core/color/iconnectioncolorspace.h"
#include "core/graphics/igraphicsstate.h"
#include "core/object/iclassfactory.h"

namespace VANTIX::IO {
class IDataProvider;
class IDictionary;
}  // namespace VANTIX::IO

namespace VANTIX::GRAPHICS {

class IRasterComponent;
class ITextObject;

/// Two roles: class of the host's base connection space, and its key in the delegate space.
inline constexpr GUID IID_IBASECONNECTIONSPACE = "7ADE92CB-F9FC-4840-89BC-4DFB8CC971A1"_guid;
/// Class of the PostScript connection space, and its key in itself.
inline constexpr GUID CLSID_POSTSCRIPTCONNECTIONSPACE = "6B2FC28E-B71F-4513-875B-9A2B118B5203"_guid;

/// The drawing interface: paths, painting, colour, images, text, groups. Coordinates are those of
/// PostScript (y up, matrices a b c d e f). Painting keeps the path; the caller ends it by
/// `NewPath`.
class IConnectionSpace : public IObject {
public:
    virtual void PlayTo(IConnectionSpace& space) const = 0;

    virtual void SaveGraphicsState() = 0;
    virtual void RestoreGraphicsState() = 0;
    virtual void Scale(float sx, float sy) = 0;
    virtual void Translate(float tx, float ty) = 0;
    /// `angle` in radians.
    virtual void Rotate(float angle) = 0;
    virtual void Concat(float a, float b, float c, float d, float e, float f) = 0;
    virtual void NewPath() = 0;
    virtual bool Reserved1() = 0;
    virtual bool Reserved2() = 0;

    /// Makes the space of a pattern known under `id` before it is selected.
    virtual void AddColorSpace(COLOR::IConnectionColorSpace* space, ResourceId id) = 0;
    /// Notes that the space `id` is used in the job, so that what the job left in it is removed.
    virtual void RegisterColorSpaceUse(ResourceId id, bool fill) = 0;
    virtual void RegisterColorSpaceUse(ResourceId id) = 0;
    virtual void Reserved3() = 0;
    virtual void Reserved4() = 0;

    virtual void MoveTo(float x, float y) = 0;
    /// `count` pairs.
    virtual void LineTo(const float* points, std::int32_t count) = 0;
    /// Angles in degrees, measured clockwise.
    virtual void Arc(float x, float y, float radius, float angle1, float angle2) = 0;
    virtual void ArcTo(float x1, float y1, float x2, float y2, float radius) = 0;
    /// `count` segments of four floats: control point, end point.
    virtual void QuadCurveTo(const float* points, std::int32_t count) = 0;
    /// `count` segments of six floats.
    virtual void CurveTo(const float* points, std::int32_t count) = 0;
    virtual void ClosePath() = 0;
    virtual void ResetPath() = 0;
    virtual void Clip() = 0;
    virtual void EOClip() = 0;
    virtual void Fill() = 0;
    virtual void EOFill() = 0;
    /// Paints the shading `space` over the current clip; the floats are x, y, width, height.
    virtual void FillWithColorSpace(COLOR::IConnectionColorSpace* space, ResourceId id, float x,
                                    float y, float width, float height) = 0;
    virtual void Stroke() = 0;

    virtual void SetLineWidth(float width) = 0;
    virtual void SetLineCap(std::int32_t cap) = 0;
    virtual void SetLineJoin(std::int32_t join) = 0;
    /// `count` lengths.
    virtual void SetDash(float phase, const float* lengths, std::int32_t count) = 0;
    virtual void SetMiterLimit(float limit) = 0;
    virtual void SetFlatness(float flatness) = 0;
    virtual void SelectRenderingIntent(COLOR::TRenderingIntent intent) = 0;
    virtual void SelectRenderingIntent2(COLOR::TRenderingIntent intent) = 0;
    virtual void Reserved5() = 0;
    virtual void Reserved6() = 0;
    virtual void Reserved7() = 0;
    virtual void Reserved8() = 0;
    virtual void Reserved9() = 0;
    virtual void Reserved10() = 0;

    /// `bbox` is x0 y0 x1 y1; `matrix` (six floats) and `space` may be null.
    virtual bool BeginTransparencyGroup(const float* bbox, const float* matrix, bool isolated,
                                        bool knockout, COLOR::IConnectionColorSpace* space) = 0;
    virtual void EndTransparencyGroup() = 0;
    virtual bool BeginSoftMask(COLOR::IColorFunction* transfer, const float* matrix, float x0,
                               float y0, float x1, float y1, COLOR::IConnectionColorSpace* space,
                               const float* backdrop, std::uint64_t backdropCount, bool isolated,
                               bool knockout, IGraphicsState::TSoftMaskType type) = 0;
    virtual void EndSoftMask() = 0;
    virtual void Reserved11() = 0;

    /// Draws the raster into the rectangle of user space; negative heights are turned over.
    virtual void DrawImage(IRasterComponent* raster, float x, float y, float width,
                           float height) = 0;
    virtual void SelectCurrentFont() = 0;
    virtual void Reserved12() = 0;
    virtual void Reserved13() = 0;
    virtual void Reserved14() = 0;
    virtual void Reserved15() = 0;
    virtual void Reserved16() = 0;
    virtual void Reserved17() = 0;
    virtual void SetOverprintState(bool overprint) = 0;

    virtual bool BeginTextObject() = 0;
    virtual bool EndTextObject() = 0;
    /// Borrowed, or null when no text object is open.
    virtual ITextObject* GetCurrentTextObject() const = 0;
    /// Shows `length` bytes of host text in the state's font.
    virtual void DrawTextW(const void* text, std::int32_t length) = 0;
    virtual void DrawGlyphs(const std::uint16_t* glyphs, std::int32_t count,
                            const std::uint16_t* text, std::int32_t textLength) = 0;
    /// Notes the current matrix as the one that patterns start from.
    virtual void SaveInitialPageMatrix() = 0;
    virtual void Reserved18() = 0;
};

/// What stands behind a base connection space and does the work.
class IDelegateConnectionSpace : public IConnectionSpace {
public:
    virtual bool Init(IO::IDataProvider* stream, IClassFactory* factory,
                      const IO::IDictionary* policy) = 0;
    /// The state is not referenced; it outlives the space.
    virtual void SetGraphicsState(IGraphicsState* state) = 0;
};

/// The host's front object: forwards every slot to its delegate, and keeps the colour-space table
/// and the graphics states.
class IBaseConnectionSpace : public IConnectionSpace {
public:
    /// Keeps `delegate` without a reference (the delegate owns this object through aggregation),
    /// aggregates itself into it under `IID_IBASECONNECTIONSPACE` and hands it the graphics state.
    virtual Status Init(IDelegateConnectionSpace* delegate) = 0;
    /// A counted reference to the space known under `id`; false when there is none. Device spaces
    /// may be absent.
    virtual bool GetColorSpace(ResourceId id, COLOR::IConnectionColorSpace** out) = 0;
};

}  // namespace VANTIX::GRAPHICS
