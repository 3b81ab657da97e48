// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/color/icolorfunction.h"
#include "core/graphics/igraphicsstate.h"
#include "core/object/tinterfaceptr.h"
#include "core/object/tobject.h"
#include "postscriptconnectionspace/formobject.h"

namespace VANTIX::PS {

/// A soft mask made of a group.
class SoftMaskGroup : public TObject<ISoftMaskGroup> {
public:
    using Type = GRAPHICS::IGraphicsState::TSoftMaskType;

    /// `group` is referenced, and gives the compositing. `transfer` (from what the group gives to
    /// opacity) and `space` may be null. `backdrop` holds `count` values in host form of which 16
    /// are taken (logged); without it the initial colour of `space` is taken (logged when there is
    /// none).
    SoftMaskGroup(const FormObject& group, const COLOR::IColorFunction* transfer,
                  const COLOR::IConnectionColorSpace* space, const float* backdrop,
                  std::uint64_t count, Type type);

    void WriteExtGState(IPostScriptDataStream& out) const override;

private:
    void TakeBackdrop(const COLOR::IConnectionColorSpace* space, const float* backdrop,
                      std::uint64_t count);
    void AppendMask(TextBuffer& text) const;

    Compositing mCompositing;
    std::string mGroupName;
    Type mType;
    std::vector<float> mBackdrop;  // as PostScript has it
    std::string mTransfer;         // a procedure's body, empty for none
};

}  // namespace VANTIX::PS
