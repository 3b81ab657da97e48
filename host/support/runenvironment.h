// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "core/object/tobject.h"
#include "core/registry/irunenvironment.h"

namespace VANTIX::HOST {

/// A fixed seed and time, for runs that can be repeated.
class RunEnvironment : public TObject<COREREGISTRY::IRunEnvironment> {
public:
    RunEnvironment(std::uint64_t seed, std::int64_t time) : mSeed(seed), mTime(time) {}

    bool GetSeed(std::uint64_t& seed) const override {
        seed = mSeed;
        return true;
    }

    bool GetTime(std::int64_t& seconds) const override {
        seconds = mTime;
        return true;
    }

private:
    std::uint64_t mSeed;
    std::int64_t mTime;
};

}  // namespace VANTIX::HOST
