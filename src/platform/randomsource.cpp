// SPDX-License-Identifier: MIT
#include "platform/randomsource.h"

#include <unistd.h>

#include <atomic>
#include <chrono>

#include "core/object/iclassfactory.h"
#include "core/registry/irunenvironment.h"

namespace VANTIX::PLATFORM {
namespace {

/// What the host's run environment gave last. Each part is atomic: jobs may begin on any thread.
struct RunState {
    std::atomic<bool> seeded{false};
    std::atomic<std::uint64_t> counter{0};
    std::atomic<bool> timed{false};
    std::atomic<std::int64_t> time{0};
};

RunState& State() {
    static RunState state;
    return state;
}

/// Spreads a counter over 64 bits, one to one (Steele, Lea and Flood, Fast Splittable Pseudorandom
/// Number Generators, 2014).
std::uint64_t Mix(std::uint64_t bits) {
    bits = (bits ^ (bits >> 30U)) * 0xBF58476D1CE4E5B9U;
    bits = (bits ^ (bits >> 27U)) * 0x94D049BB133111EBU;
    return bits ^ (bits >> 31U);
}

constexpr std::uint64_t kStep = 0x9E3779B97F4A7C15U;

}  // namespace

void AdoptRunEnvironment(IClassFactory* factory) {
    const auto environment =
        CreateObject<COREREGISTRY::IRunEnvironment>(factory, COREREGISTRY::CLSID_RUNENVIRONMENT);
    std::uint64_t seed = 0;
    std::int64_t time = 0;
    const bool seeded = environment && environment->GetSeed(seed);
    const bool timed = environment && environment->GetTime(time);
    RunState& state = State();
    state.counter = seed;
    state.seeded = seeded;
    state.time = time;
    state.timed = timed;
}

std::uint64_t NextRandom() {
    RunState& state = State();
    return state.seeded ? Mix(state.counter.fetch_add(kStep) + kStep) : SystemRandom();
}

std::uint64_t SystemRandom() {
    std::uint64_t bits = 0;
    if (getentropy(&bits, sizeof bits) == 0) {
        return bits;
    }
    // No source of randomness: names still have to differ within and between processes.
    static std::atomic<std::uint64_t> counter{0};
    const auto ticks = std::chrono::steady_clock::now().time_since_epoch().count();
    return Mix(static_cast<std::uint64_t>(ticks) ^ (static_cast<std::uint64_t>(getpid()) << 40U)) ^
           Mix(counter.fetch_add(kStep));
}

std::int64_t Now() {
    const RunState& state = State();
    if (state.timed) {
        return state.time;
    }
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::seconds>(now).count();
}

}  // namespace VANTIX::PLATFORM
