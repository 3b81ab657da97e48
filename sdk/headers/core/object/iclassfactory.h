// SPDX-License-Identifier: MIT
#pragma once

#include "core/object/iobject.h"
#include "core/object/tinterfaceptr.h"

namespace VANTIX {

/// Key of the host's class factory where it is aggregated.
inline constexpr GUID IID_CLASSFACTORY = "534B4557-AE10-47BB-96D8-AFDD97A84660"_guid;

/// The host's maker of objects by class identifier. It outlives every job, so that the plug-in may
/// keep it without a reference.
class IClassFactory : public IObject {
public:
    /// Gives one new reference in `*out`; an unknown class gives null and a failure status.
    virtual Status CreateInstance(const GUID& classId, IObject** out) = 0;
};

/// A new object of class `classId` as interface `T`, or null. `classId` must make a `T`.
template <class T>
TInterfacePtr<T> CreateObject(IClassFactory* factory, const GUID& classId) {
    IObject* object = nullptr;
    if (factory == nullptr || factory->CreateInstance(classId, &object) != STATUS::kOk) {
        return nullptr;
    }
    return TInterfacePtr<T>::Adopt(static_cast<T*>(object));
}

}  // namespace VANTIX
