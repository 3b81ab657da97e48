// SPDX-License-Identifier: MIT
#pragma once

#include "core/io/idictionary.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "core/object/iclassfactory.h"

namespace VANTIX {

/// Makes an empty persistent dictionary in `out` (releasing what it held). Without a factory, or
/// when the factory gives none, `kNoDictionary`.
inline Status CreatePersistentDictionary(IClassFactory* factory,
                                         TInterfacePtr<IO::IDictionary>& out) {
    if (factory == nullptr) {
        LogError("sdk/headers/core/libsupport/abstractio/libutils")
            << "Attempted to use a library util without a factory pointer";
        return STATUS::kNoDictionary;
    }
    TInterfacePtr<IO::IDictionary> made =
        CreateObject<IO::IDictionary>(factory, IO::IID_IDICTIONARY);
    if (!made) {
        return STATUS::kNoDictionary;
    }
    out = std::move(made);
    return STATUS::kOk;
}

}  // namespace VANTIX
