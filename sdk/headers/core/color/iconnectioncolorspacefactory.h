// SPDX-License-Identifier: MIT
#pragma once

#include "core/color/icolorfunction.h"
#include "core/color/iconnectioncolorspace.h"
#include "core/libsupport/corestring/corestring.h"

namespace VANTIX::COLOR {

/// Class of the host's colour-space factory.
inline constexpr GUID IID_ICONNECTIONCOLORSPACEFACTORY =
    "A30C6DE1-B9C1-4BDB-A744-EBADBB3D10F3"_guid;

/// Makes colour spaces for the plug-in. Every operation gives a new reference, or null.
class IConnectionColorSpaceFactory : public IObject {
public:
    virtual IConnectionColorSpace* CreateDeviceGrayColorSpace() = 0;
    virtual IConnectionColorSpace* CreateDeviceRGBColorSpace() = 0;
    virtual IConnectionColorSpace* CreateDeviceCMYKColorSpace() = 0;
    /// White and black point are X Y Z.
    virtual IConnectionColorSpace* CreateCalibratedGrayColorSpace(const float white[3],
                                                                  const float black[3],
                                                                  float gamma) = 0;
    /// The profile-based space that stands for the device space of `family` ("gray", "rgb ",
    /// "cmyk").
    virtual IConnectionColorSpace* CreateDefaultProfileColorSpace(FourCC family) = 0;
    /// A Lab space; a zero white point means D50.
    virtual IConnectionColorSpace* CreateLabColorSpace(const float white[3]) = 0;
    /// A Separation; keeps references to the alternate and the function.
    virtual IConnectionColorSpace* CreateSeparationColorSpace(const CoreString& name,
                                                              IConnectionColorSpace* alternate,
                                                              IColorFunction* tint) = 0;
};

}  // namespace VANTIX::COLOR
