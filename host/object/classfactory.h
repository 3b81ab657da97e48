// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <map>

#include "core/object/iclassfactory.h"
#include "core/object/tobject.h"
#include "host/export.h"
#include "host/object/registrar.h"

namespace VANTIX::HOST {

/// Makes the host's own objects, then what plug-ins registered. The host's classes are entered
/// before the first job; from then on any thread may create.
class NORVANE_HOST_API ClassFactory : public TObject<IClassFactory> {
public:
    /// Makes a new object with one reference, or null.
    using Maker = std::function<IObject*()>;

    /// Knows its registrar (`CLSID_REGISTRAR`), of which there is one.
    ClassFactory();

    /// Enters a class of the host; a later maker replaces an earlier one.
    void Enter(const GUID& classId, Maker maker);

    /// Enters a class whose only instance is `object`.
    void EnterShared(const GUID& classId, TInterfacePtr<IObject> object);

    /// `kNoInterface` for an unknown class, `kOutOfMemory` when the object could not be made.
    Status CreateInstance(const GUID& classId, IObject** out) override;

private:
    std::map<GUID, Maker> mMakers;
    TInterfacePtr<Registrar> mRegistrar;
};

}  // namespace VANTIX::HOST
