// SPDX-License-Identifier: MIT
#include "support.h"

#include <fcntl.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::uint64_t> gAllocations{0};

}  // namespace

// Replaced for the whole process, the plug-in included.
void* operator new(std::size_t size) {
    gAllocations.fetch_add(1, std::memory_order_relaxed);
    if (void* memory = std::malloc(size == 0 ? 1 : size)) {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace VANTIX::BENCH {

std::uint64_t AllocationCount() {
    return gAllocations.load(std::memory_order_relaxed);
}

TInterfacePtr<HOST::FileProvider> OpenNullProvider() {
    return MakeObject<HOST::FileProvider>(open("/dev/null", O_WRONLY | O_CLOEXEC));
}

NullJob::NullJob() : mOut(OpenNullProvider()) {
    std::string error;
    if (!mHost.LoadPlugin(HOST::Host::FindPlugin(), error)) {
        return;
    }
    mExporter = mHost.CreateExporter();
    const auto policy = mHost.CreatePolicy();
    if (mExporter && policy) {
        mSpace = HOST::BaseConnectionSpace::From(mExporter->Begin(*mOut, policy.Get()));
    }
}

NullJob::~NullJob() {
    if (mSpace != nullptr) {
        mExporter->End();
    }
}

}  // namespace VANTIX::BENCH
