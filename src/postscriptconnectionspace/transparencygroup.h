// SPDX-License-Identifier: MIT
#pragma once

#include "core/object/tinterfaceptr.h"
#include "postscriptconnectionspace/formobject.h"

namespace VANTIX::PS {

/// A form that is composited as one object (PDF Reference, 7.5.5). A soft mask that applies to it
/// is aggregated under `IID_ISOFTMASKGROUP`.
class TransparencyGroup : public FormObject {
public:
    /// `space` (referenced) may be null: then the group has the space of what is around it.
    TransparencyGroup(const char* prefix, const GRAPHICS::IGraphicsState* state,
                      const Matrix& matrix, const Box& box, bool isolated, bool knockout,
                      COLOR::IConnectionColorSpace* space);

    void WriteBeginPicture(IPostScriptDataStream& out) const override;
    void WriteEndPicture(IPostScriptDataStream& out) const override;
    /// Sets the compositing that the group began with around its use.
    void WriteDrawPicture(IPostScriptDataStream& out) const override;

    COLOR::IConnectionColorSpace* GetGroupColorSpace() const override { return mSpace.Get(); }

private:
    bool mIsolated;
    bool mKnockout;
    TInterfacePtr<COLOR::IConnectionColorSpace> mSpace;
};

}  // namespace VANTIX::PS
