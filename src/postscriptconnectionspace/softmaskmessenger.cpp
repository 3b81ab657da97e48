// SPDX-License-Identifier: MIT
#include "postscriptconnectionspace/softmaskmessenger.h"

#include "postscriptconnectionspace/postscriptconnectionspace.h"

namespace VANTIX::PS {

SoftMaskMessenger::SoftMaskMessenger(PostScriptConnectionSpace& space) : mSpace(&space) {
    space.AddMessenger(*this);
}

SoftMaskMessenger::~SoftMaskMessenger() {
    if (mSpace) {
        mSpace->RemoveMessenger(*this);
        mSpace->RestoreGraphicsState();
        mSpace->EndMaskedGroup();
    }
}

}  // namespace VANTIX::PS
