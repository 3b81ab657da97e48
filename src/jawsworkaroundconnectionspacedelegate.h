// SPDX-License-Identifier: MIT
#pragma once

#include "baseconnectionspacedelegate/iconnectionspacedelegate.h"
#include "core/io/idictionary.h"
#include "core/object/tobject.h"
#include "postscriptdatastream/postscriptstreamstack.h"

namespace VANTIX::RENDERING {

/// Writes the transparency state as a pdfmark (pdfmark Reference, /SetTransparency) on the current
/// stream in front of whatever the delegate that it wraps may write there. Nothing is written
/// before the state first differs from what a page begins with; from then on it stands in front of
/// every colour, image and fill, since distillers do not keep it with the graphics state. Where a
/// form is recorded that a soft mask applies to, the mask follows.
class JAWSWorkaroundConnectionSpaceDelegate : public TObject<IConnectionSpaceDelegate> {
public:
    /// Keeps references to `next` and `policy`, either of which may be null; `streams` belongs to
    /// the connection space.
    JAWSWorkaroundConnectionSpaceDelegate(PS::PostScriptStreamStack& streams,
                                          IConnectionSpaceDelegate* next, IO::IDictionary* policy);

    /// The wrapped delegate gets the object, too.
    Status Aggregate(IObject* object, GUID id) override;

    void Init(bool setDefaultColour) override;
    bool SetColorSpace(COLOR::IConnectionColorSpace* space, bool fill) override;
    void SetColorSpaceAndValues(COLOR::IConnectionColorSpace* space, const float* values,
                                std::int32_t count, bool fill) override;
    bool SetUncoloredPattern(const char* patternName, COLOR::IConnectionColorSpace* underlying,
                             bool fill) override;
    bool SetPatternColorSpace(const char* patternName) override;
    void Image(GRAPHICS::IRasterComponent& raster, float x, float y, float width,
               float height) override;
    void FillWithColorSpace(COLOR::IConnectionColorSpace* shading, ResourceId id, float x, float y,
                            float width, float height, bool paint) override;
    void SetGraphicsState(GRAPHICS::IGraphicsState* state) override;
    bool CanMarkTheCanvas() const override;
    bool WasDefaultColourSet() const override;

private:
    /// The values of a transparency state; at first those that a page of a PDF begins with.
    struct Transparency {
        float strokeAlpha = 1;
        float fillAlpha = 1;
        GRAPHICS::TBlendMode blendMode = GRAPHICS::TBlendMode::kNormal;
        bool textKnockout = true;
        bool alphaIsShape = false;

        bool operator==(const Transparency&) const = default;
    };

    /// The wrapped delegate (borrowed); its absence is logged.
    [[nodiscard]] IConnectionSpaceDelegate* Next() const;
    /// Writes the graphics state's transparency where it has to be.
    void BlastExtGState();
    /// The same, and then the wrapped delegate.
    IConnectionSpaceDelegate* NextAfterExtGState();
    [[nodiscard]] Transparency CurrentTransparency() const;
    static void Write(PS::IPostScriptDataStream& out, const Transparency& transparency);

    TInterfacePtr<IConnectionSpaceDelegate> mNext;
    GRAPHICS::IGraphicsState* mGraphicsState = nullptr;
    PS::PostScriptStreamStack& mStreams;
    Transparency mLast;
    TInterfacePtr<IO::IDictionary> mPolicy;
    bool mTransparencyWritten = false;
};

/// A delegate that writes transparency in front of what `next` writes; a new reference, or null
/// (logged) without a `next`. `policy`, which may be null, keeps for all delegates of the job
/// whether a state has been written.
IConnectionSpaceDelegate* CreateJAWSWorkaroundConnectionSpaceDelegate(
    IClassFactory& factory, PS::PostScriptStreamStack& streams, IConnectionSpaceDelegate* next,
    IO::IDictionary* policy);

}  // namespace VANTIX::RENDERING
