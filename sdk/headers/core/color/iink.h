// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "core/libsupport/corestring/corestring.h"
#include "core/object/iobject.h"
#include "core/types.h"

namespace VANTIX::COLOR {

inline constexpr GUID IID_IINK = "BD8C11A8-3FDB-4FF3-BB9D-C8E8C88F21AE"_guid;

/// Colour kinds of an ink.
enum class InkColorKind : std::int32_t { kOther = 3, kRGB = 4, kCMYK = 5 };

/// A printing ink: its name and the colour of its full tint.
class IInk : public IObject {
public:
    /// Borrowed; null when the ink has no name.
    virtual const CoreString* GetName() const = 0;
    virtual InkColorKind GetColorKind() const = 0;
    /// "CMYK", "GRAY", "RGB ", "HSB " or "Lab ".
    virtual FourCC GetColorSignature() const = 0;
    /// Component `index` of the kind's colour in host form (CMYK complements).
    virtual float GetColorComponent(std::int32_t index) const = 0;
    /// The colour by its signature, as ink amounts; answers how many values were copied (at most
    /// 4).
    virtual std::int32_t GetSignatureValues(float values[4]) const = 0;
};

/// One use of an ink in a collection.
class IInkInstance : public IObject {
public:
    /// Borrowed, or null.
    virtual IInk* GetInk() const = 0;
};

/// The inks of an N-channel space, in channel order.
class IInkCollection : public IObject {
public:
    virtual std::int32_t GetInkCount() const = 0;
    /// Borrowed, or null.
    virtual IInkInstance* GetInkInstance(std::int32_t index) const = 0;
};

}  // namespace VANTIX::COLOR
