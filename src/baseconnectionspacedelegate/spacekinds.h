// SPDX-License-Identifier: MIT
#pragma once

#include "baseconnectionspacedelegate/names.h"
#include "core/color/iconnectioncolorspace.h"
#include "core/color/ispotcolorspaces.h"

namespace VANTIX::RENDERING {

// What kind a colour space (null: none) is of: borrowed, or null for every other kind.

inline COLOR::IDeviceConnectionColorSpace* AsDevice(IConnectionColorSpace* space) {
    return FindInterface<COLOR::IDeviceConnectionColorSpace>(space, COLOR::IID_IDEVICECOLORSPACE);
}

inline COLOR::IProfileBasedConnectionColorSpace* AsProfileBased(IConnectionColorSpace* space) {
    return FindInterface<COLOR::IProfileBasedConnectionColorSpace>(
        space, COLOR::IID_IPROFILEBASEDCOLORSPACE);
}

inline COLOR::ICalibratedConnectionColorSpace* AsCalibrated(IConnectionColorSpace* space) {
    return FindInterface<COLOR::ICalibratedConnectionColorSpace>(space,
                                                                 COLOR::IID_ICALIBRATEDCOLORSPACE);
}

inline COLOR::IIndexedConnectionColorSpace* AsIndexed(IConnectionColorSpace* space) {
    return FindInterface<COLOR::IIndexedConnectionColorSpace>(space, COLOR::IID_IINDEXEDCOLORSPACE);
}

inline COLOR::ISeparationConnectionColorSpace* AsSeparation(IConnectionColorSpace* space) {
    return FindInterface<COLOR::ISeparationConnectionColorSpace>(space,
                                                                 COLOR::IID_ISEPARATIONCOLORSPACE);
}

inline COLOR::IDeviceNConnectionColorSpace* AsDeviceN(IConnectionColorSpace* space) {
    return FindInterface<COLOR::IDeviceNConnectionColorSpace>(space, COLOR::IID_IDEVICENCOLORSPACE);
}

inline bool IsSpotSpace(IConnectionColorSpace* space) {
    return AsSeparation(space) != nullptr || AsDeviceN(space) != nullptr;
}

}  // namespace VANTIX::RENDERING
