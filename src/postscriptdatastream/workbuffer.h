// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <new>

namespace VANTIX::PS {

/// Working memory of `count` elements: on the stack up to `StackBytes`, on the heap beyond.
/// Contents start undefined. `Data` is null when the memory could not be had.
template <class T, std::size_t StackBytes = 1024>
class WorkBuffer {
public:
    explicit WorkBuffer(std::size_t count) : mCount(count) {
        if (count > mStack.size()) {
            mHeap.reset(new (std::nothrow) T[count]);
        }
    }

    WorkBuffer(const WorkBuffer&) = delete;
    WorkBuffer& operator=(const WorkBuffer&) = delete;
    WorkBuffer(WorkBuffer&&) = delete;
    WorkBuffer& operator=(WorkBuffer&&) = delete;
    ~WorkBuffer() = default;

    [[nodiscard]] T* Data() { return mCount > mStack.size() ? mHeap.get() : mStack.data(); }

    [[nodiscard]] std::size_t Size() const { return mCount; }

private:
    std::size_t mCount;
    std::array<T, StackBytes / sizeof(T)> mStack;
    std::unique_ptr<T[]> mHeap;
};

}  // namespace VANTIX::PS
