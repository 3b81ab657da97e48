// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>

#include "core/status.h"

namespace VANTIX::HOST {

/// Takes bytes: an older filter, or the provider at the end.
class ByteSink {
public:
    virtual Status Put(std::span<const std::uint8_t> bytes) = 0;

    ByteSink() = default;
    virtual ~ByteSink() = default;
    ByteSink(const ByteSink&) = delete;
    ByteSink& operator=(const ByteSink&) = delete;
    ByteSink(ByteSink&&) = delete;
    ByteSink& operator=(ByteSink&&) = delete;
};

/// Encodes what is put into it and hands the result to the next sink, which outlives it.
class OutputFilter : public ByteSink {
public:
    explicit OutputFilter(ByteSink& next) : mNext(next) {}

    /// Writes what is held back, and the end mark; afterwards the next block of data may begin.
    virtual Status End() = 0;

protected:
    /// Appends at most `kOutBytes` bytes to what goes to the next sink.
    void Emit(const void* bytes, std::size_t count) {
        if (count > kOutBytes - mOutSize) {
            FlushOut();
        }
        std::memcpy(mOut.data() + mOutSize, bytes, count);
        mOutSize += count;
    }

    void Emit(std::uint8_t byte) { Emit(&byte, 1); }

    /// Hands everything on. After a failure everything is dropped, and the failure answered.
    Status FlushOut() {
        if (mOutSize > 0 && mStatus == STATUS::kOk) {
            mStatus = mNext.Put({mOut.data(), mOutSize});
        }
        mOutSize = 0;
        return mStatus;
    }

    [[nodiscard]] Status CurrentStatus() const { return mStatus; }

    void Fail(Status status) { mStatus = status; }

    static constexpr std::size_t kOutBytes = 8192;

private:
    ByteSink& mNext;
    Status mStatus = STATUS::kOk;
    std::size_t mOutSize = 0;
    std::array<std::uint8_t, kOutBytes> mOut;
};

}  // namespace VANTIX::HOST
