// SPDX-License-Identifier: MIT
#pragma once

#include "baseconnectionspacedelegate/iconnectionspacedelegate.h"
#include "postscriptdatastream/postscriptstreamstack.h"

namespace VANTIX::RENDERING {

/// The delegate that writes the transparency state as pdfmarks in front of what `next` writes; a
/// new reference. This build has no such delegate: always null, and transparency is left out.
inline IConnectionSpaceDelegate* CreateJAWSWorkaroundConnectionSpaceDelegate(
    IClassFactory& /*factory*/, PS::PostScriptStreamStack& /*streams*/,
    IConnectionSpaceDelegate& /*next*/, IO::IDictionary* /*policy*/) {
    return nullptr;
}

}  // namespace VANTIX::RENDERING
