// SPDX-License-Identifier: MIT
#include "platform/criticalsection.h"

#include <chrono>

namespace VANTIX::PLATFORM {

CriticalSection::Lock CriticalSection::Enter() {
    return {mMutex, std::chrono::seconds(1)};
}

}  // namespace VANTIX::PLATFORM
