// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <mutex>

#include "core/object/tobject.h"
#include "core/registry/iregistrar.h"
#include "host/export.h"

namespace VANTIX::HOST {

/// The creators that plug-ins bring. Safe to use from several threads.
class NORVANE_HOST_API Registrar : public TObject<COREREGISTRY::IRegistrar> {
public:
    /// The first creator of a class stays: another one, or none, is refused with
    /// `kInvalidArgument`.
    Status RegisterClass(const GUID& classId, Creator creator) override;

    /// The creator of `classId`, or null.
    [[nodiscard]] Creator Find(const GUID& classId) const;

private:
    mutable std::mutex mMutex;
    std::map<GUID, Creator> mCreators;
};

}  // namespace VANTIX::HOST
