// SPDX-License-Identifier: MIT
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>

#include "core/object/tobject.h"
#include "host/graphics/baseconnectionspace.h"
#include "host/host.h"
#include "host/io/fileprovider.h"

namespace VANTIX::BENCH {

/// How often `operator new` was called in this process.
std::uint64_t AllocationCount();

/// Adds the figure "allocations" (for each iteration) to a benchmark when it ends.
class AllocationMeter {
public:
    explicit AllocationMeter(benchmark::State& state) : mState(state), mBefore(AllocationCount()) {}

    ~AllocationMeter() {
        mState.counters["allocations"] = benchmark::Counter(
            static_cast<double>(AllocationCount() - mBefore), benchmark::Counter::kAvgIterations);
    }

    AllocationMeter(const AllocationMeter&) = delete;
    AllocationMeter& operator=(const AllocationMeter&) = delete;
    AllocationMeter(AllocationMeter&&) = delete;
    AllocationMeter& operator=(AllocationMeter&&) = delete;

private:
    benchmark::State& mState;
    std::uint64_t mBefore;
};

/// A host with the plug-in loaded, and a provider that throws everything away.
class NullJob {
public:
    NullJob();
    ~NullJob();
    NullJob(const NullJob&) = delete;
    NullJob& operator=(const NullJob&) = delete;
    NullJob(NullJob&&) = delete;
    NullJob& operator=(NullJob&&) = delete;

    /// Null when the plug-in could not begin.
    HOST::BaseConnectionSpace* Space() { return mSpace; }

    HOST::Host& Host() { return mHost; }

private:
    HOST::Host mHost;
    TInterfacePtr<HOST::FileProvider> mOut;
    TInterfacePtr<GRAPHICS::IGraphicExporter> mExporter;
    HOST::BaseConnectionSpace* mSpace = nullptr;
};

/// A buffered file provider on the null device.
TInterfacePtr<HOST::FileProvider> OpenNullProvider();

}  // namespace VANTIX::BENCH
