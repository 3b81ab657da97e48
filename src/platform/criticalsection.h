// SPDX-License-Identifier: MIT
#pragma once

#include <mutex>

namespace VANTIX::PLATFORM {

/// A lock that a thread waits for one second at most. The thread that holds it may take it again.
class CriticalSection {
public:
    using Lock = std::unique_lock<std::recursive_timed_mutex>;

    /// A lock that tells by `owns_lock` whether it was obtained, and gives it back at its end.
    [[nodiscard]] Lock Enter();

private:
    std::recursive_timed_mutex mMutex;
};

}  // namespace VANTIX::PLATFORM
