// SPDX-License-Identifier: MIT
#include "postscriptconnectionspace/procedurepsconnectionspace.h"

#include "core/graphics/irastercomponent.h"

namespace VANTIX::PS {

namespace {

/// Bytes of operators in one part of a body: not as many as objects fit into an array, since those
/// that take least ("1 0 0 1 5 5") are among longer ones.
constexpr std::int32_t kMostPartBytes = 128 << 10;

}  // namespace

void ProcedurePSConnectionSpace::BeginBody() {
    mBody = mStreams.Top();
}

void ProcedurePSConnectionSpace::CutBody() {
    const std::int32_t position =
        mBody != nullptr && mStreams.Top() == mBody ? PositionOf(*mBody) : 0;
    if (position - mBodyStart < kMostPartBytes || IsDrawingSuppressed()) {
        return;
    }
    CloseBlock();
    WriteText(mPartIsOpen ? "}exec\n{" : "{");
    mPartIsOpen = true;
    mBodyStart = position;
}

void ProcedurePSConnectionSpace::EndBody() {
    CloseBlock();
    if (mPartIsOpen) {
        WriteText("}exec\n");
        mPartIsOpen = false;
    }
}

bool ProcedurePSConnectionSpace::IsImageMask(const GRAPHICS::IRasterComponent& raster) {
    if (raster.GetBitsPerSample() != 1 || raster.GetExtraCount() == 0 ||
        FindInterface<IObject>(raster.GetColorSpace(), COLOR::IID_IINDEXEDCOLORSPACE) == nullptr) {
        return false;
    }
    const GRAPHICS::IChannelDesc* mask = raster.GetExtra(0);
    return mask != nullptr && mask->GetData() != nullptr && !mask->GetData()->IsFullyOpaque();
}

}  // namespace VANTIX::PS
