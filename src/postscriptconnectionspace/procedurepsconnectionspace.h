// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "postscriptconnectionspace/postscriptconnectionspace.h"

namespace VANTIX::PS {

/// Records the body of a procedure. One that grows long is cut into parts "{…}exec", so that no
/// procedure outgrows an interpreter.
class ProcedurePSConnectionSpace : public PostScriptConnectionSpace {
protected:
    /// The current stream takes the body from now on.
    void BeginBody();
    /// Between operations: puts them into procedures of their own, from where the body outgrows
    /// one.
    void CutBody();
    void EndBody();

    /// Ends what is open within a part.
    virtual void CloseBlock() {}

    /// True for the shape of an image mask: one bit and a palette, with a mask that hides
    /// something.
    static bool IsImageMask(const GRAPHICS::IRasterComponent& raster);

private:
    IPostScriptDataStream* mBody = nullptr;  // of what is recorded, outside all forms
    std::int32_t mBodyStart = 0;             // of the part that is open
    bool mPartIsOpen = false;
};

}  // namespace VANTIX::PS
