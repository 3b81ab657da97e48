// SPDX-License-Identifier: MIT
#include "postscriptconnectionspace/softmaskmessenger.h"

#include "postscriptconnectionspace/postscriptconnectionspace.h"

namespace VANTIX::PS {

SoftMaskMessenger::~SoftMaskMessenger() {
    if (mLink->space != nullptr) {
        mLink->space->RestoreGraphicsState();
        mLink->space->EndMaskedGroup();
    }
}

}  // namespace VANTIX::PS
