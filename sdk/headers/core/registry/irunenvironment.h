// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "core/object/iobject.h"

namespace VANTIX::COREREGISTRY {

/// Class of the host's run environment; a host that does not have it leaves chance to the system.
inline constexpr GUID CLSID_RUNENVIRONMENT = "5B7C0B5E-6A0C-4C0B-9D2E-3B9D0B6C1A71"_guid;

/// What a job takes from the world besides its input: the source of chance and the time. A host
/// that wants the same bytes from the same job gives both.
class IRunEnvironment : public IObject {
public:
    /// Seed of all random letters and GUIDs that reach the output; false leaves them to the system.
    virtual bool GetSeed(std::uint64_t& seed) const = 0;

    /// Seconds since 1970-01-01 00:00 UTC to be taken for now; false means the real clock.
    virtual bool GetTime(std::int64_t& seconds) const = 0;
};

}  // namespace VANTIX::COREREGISTRY
