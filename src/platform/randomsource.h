// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace VANTIX {
class IClassFactory;
}  // namespace VANTIX

namespace VANTIX::PLATFORM {

/// Takes seed and time from the host's run environment, when it has one; called when a job begins.
void AdoptRunEnvironment(IClassFactory* factory);

/// The next 64 random bits of what reaches the output: from the seed, or from the system.
std::uint64_t NextRandom();

/// 64 bits of the system's own randomness, never seeded.
std::uint64_t SystemRandom();

/// Seconds since 1970-01-01 00:00 UTC: the host's, or those of the clock.
std::int64_t Now();

}  // namespace VANTIX::PLATFORM
