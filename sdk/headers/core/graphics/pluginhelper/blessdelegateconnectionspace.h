// SPDX-License-Identifier: MIT
#pragma once

#include "core/graphics/iconnectionspace.h"
#include "core/libsupport/vlogger/logmessage.h"

namespace VANTIX::GRAPHICS {

/// Creates the host's base connection space and gives it `delegate`. The base space is afterwards
/// held by the delegate's aggregation alone. 0, or the failing status.
inline Status BlessDelegateConnectionSpace(IClassFactory* factory,
                                           IDelegateConnectionSpace* delegate) {
    const TInterfacePtr<IBaseConnectionSpace> base =
        CreateObject<IBaseConnectionSpace>(factory, IID_IBASECONNECTIONSPACE);
    if (!base) {
        LogError("sdk/headers/core/graphics/pluginhelper/blessdelegateconnectionspace")
            << "Could not create an instance of IID_IBASECONNECTIONSPACE";
        return STATUS::kInvalidArgument;
    }
    return base->Init(delegate);
}

}  // namespace VANTIX::GRAPHICS
