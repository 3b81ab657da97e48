// SPDX-License-Identifier: MIT
#pragma once

#include "baseconnectionspacedelegate/iconnectionspacedelegate.h"

namespace VANTIX::RENDERING {

/// The delegate that writes everything in DeviceN on `destination`; a new reference. `options` are
/// `DELEGATEOPTION` bits; `colourManaged` makes it convert through profiles. This build has no such
/// delegate: always null.
inline IConnectionSpaceDelegate* CreateDeviceNConnectionSpaceDelegate(
    IClassFactory& /*factory*/, COLOR::IConnectionColorSpace* /*destination*/,
    std::uint32_t /*options*/, bool /*colourManaged*/) {
    return nullptr;
}

}  // namespace VANTIX::RENDERING
