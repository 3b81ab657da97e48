// SPDX-License-Identifier: MIT
#include "host/object/registrar.h"

namespace VANTIX::HOST {

Status Registrar::RegisterClass(const GUID& classId, Creator creator) {
    if (creator == nullptr) {
        return STATUS::kInvalidArgument;
    }
    const std::lock_guard lock(mMutex);
    const bool added = mCreators.emplace(classId, creator).second;
    return added ? STATUS::kOk : STATUS::kInvalidArgument;
}

Registrar::Creator Registrar::Find(const GUID& classId) const {
    const std::lock_guard lock(mMutex);
    const auto found = mCreators.find(classId);
    return found == mCreators.end() ? nullptr : found->second;
}

}  // namespace VANTIX::HOST
