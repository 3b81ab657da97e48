// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "core/object/iobject.h"

namespace VANTIX::GRAPHICS {

/// Key under which the broker is aggregated into the base connection space.
inline constexpr GUID IID_IFONTBROKER = "DCDC0259-F235-438B-9344-CDBD66126465"_guid;

/// Fonts that belong together. A Type 3 font is the only one of its family.
class IFontFamily : public IObject {
public:
    virtual std::int32_t GetFontCount() const = 0;
    /// A font object, which offers its `IFontPackageHandler`. Borrowed; null out of range.
    virtual IObject* GetFont(std::int32_t index) const = 0;
};

/// Called once for each family. What it answers does not end an enumeration.
class IFamilyFunctor {
public:
    virtual bool operator()(const IFontFamily* family) = 0;

protected:
    ~IFamilyFunctor() = default;
};

/// The fonts of a document. All are listed before the first one is selected: a job downloads the
/// fonts of a broker once, and knows the broker by its address.
class IFontBroker : public IObject {
public:
    /// The font object (borrowed) that name and selector stand for, or null. `flags` is 0.
    virtual IObject* FindFont(const char* name, std::int32_t selector, std::int32_t flags) = 0;
    /// Calls the functor for every family, in the same order each time.
    virtual void EnumerateFontFamilies(IFamilyFunctor& functor) = 0;
};

}  // namespace VANTIX::GRAPHICS
