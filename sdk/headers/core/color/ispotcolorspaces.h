// SPDX-License-Identifier: MIT
#pragma once

#include "core/color/icolorfunction.h"
#include "core/color/iconnectioncolorspace.h"
#include "core/color/iink.h"
#include "core/libsupport/corestring/corestring.h"

namespace VANTIX::COLOR {

inline constexpr GUID IID_ISEPARATIONCOLORSPACE = "84F6000A-116B-4FB5-B17A-3766D0F7DA75"_guid;
inline constexpr GUID IID_IDEVICENCOLORSPACE = "8CDF6FAC-E620-49A6-8A01-FC690E2237B8"_guid;

/// One colorant with an alternate space; values are tints (1 is full ink). Registration and None
/// are kinds of its alternate.
class ISeparationConnectionColorSpace : public IConnectionColorSpace {
public:
    /// Borrowed; null when the space has no name object.
    virtual const CoreString* GetColorantName() const = 0;
    /// Borrowed, or null.
    virtual IConnectionColorSpace* GetAlternateSpace() const = 0;
    /// From the tint to the alternate's components in PDF form (borrowed), or null.
    virtual IColorFunction* GetTintFunction() const = 0;
    /// Tables of `size` tints from none to full for painting this ink over colours of `target`:
    /// `colours` takes the ink's colours (size x the target's components, host form, 0 to 1),
    /// `coverage` how far each tint covers what is under it (size floats: tint x `opacity`).
    /// 0, or the failing status.
    virtual Status FillSpotTables(const IConnectionColorSpace& target, float* colours,
                                  float* coverage, std::int32_t size, TRenderingIntent sourceIntent,
                                  TRenderingIntent destinationIntent, float opacity) const = 0;
};

/// Several colorants with an alternate space. Colorants may be given by an ink collection alone.
class IDeviceNConnectionColorSpace : public IConnectionColorSpace {
public:
    virtual std::int32_t GetColorantCount() const = 0;
    /// Borrowed; null when the name is missing.
    virtual const CoreString* GetColorantName(std::int32_t index) const = 0;
    virtual IConnectionColorSpace* GetAlternateSpace() const = 0;
    virtual IColorFunction* GetTintFunction() const = 0;
    /// Borrowed, or null.
    virtual IInkCollection* GetInkCollection() const = 0;
};

}  // namespace VANTIX::COLOR
