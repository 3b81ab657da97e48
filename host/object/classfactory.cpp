// SPDX-License-Identifier: MIT
#include "host/object/classfactory.h"

#include <exception>
#include <utility>

#include "core/libsupport/vlogger/logmessage.h"

namespace VANTIX::HOST {

ClassFactory::ClassFactory() : mRegistrar(MakeObject<Registrar>()) {
    EnterShared(COREREGISTRY::CLSID_REGISTRAR, mRegistrar);
}

void ClassFactory::Enter(const GUID& classId, Maker maker) {
    mMakers[classId] = std::move(maker);
}

void ClassFactory::EnterShared(const GUID& classId, TInterfacePtr<IObject> object) {
    Enter(classId, [held = std::move(object)] { return TInterfacePtr<IObject>(held).Detach(); });
}

Status ClassFactory::CreateInstance(const GUID& classId, IObject** out) {
    if (out == nullptr) {
        return STATUS::kInvalidArgument;
    }
    *out = nullptr;
    try {
        if (const auto own = mMakers.find(classId); own != mMakers.end()) {
            *out = own->second();
        } else if (const Registrar::Creator creator = mRegistrar->Find(classId)) {
            *out = creator();
        } else {
            return STATUS::kNoInterface;
        }
    } catch (const std::exception& problem) {
        LogError("host/object") << "Could not make an object: " << problem.what();
    }
    return *out == nullptr ? STATUS::kOutOfMemory : STATUS::kOk;
}

}  // namespace VANTIX::HOST
