// SPDX-License-Identifier: MIT
#include "host/io/filters/runlength.h"

#include <algorithm>

namespace VANTIX::HOST {

namespace {

constexpr std::uint8_t kEndOfData = 128;
constexpr std::size_t kShortestRun = 3;

}  // namespace

void RunLengthFilter::FlushLiterals() {
    if (mLiteralCount > 0) {
        Emit(static_cast<std::uint8_t>(mLiteralCount - 1));
        Emit(mLiterals.data(), mLiteralCount);
        mLiteralCount = 0;
    }
}

void RunLengthFilter::FinishRun() {
    if (mRunLength >= kShortestRun) {
        FlushLiterals();
        Emit(static_cast<std::uint8_t>(257 - mRunLength));
        Emit(mRunByte);
    } else {
        for (std::size_t i = 0; i < mRunLength; ++i) {
            mLiterals[mLiteralCount++] = mRunByte;
            if (mLiteralCount == kMaxRecord) {
                FlushLiterals();
            }
        }
    }
    mRunLength = 0;
}

Status RunLengthFilter::Put(std::span<const std::uint8_t> bytes) {
    auto at = bytes.begin();
    while (at != bytes.end()) {
        if (mRunLength == 0) {
            mRunByte = *at;
        }
        const auto limit =
            at + std::min(static_cast<std::ptrdiff_t>(kMaxRecord - mRunLength), bytes.end() - at);
        const auto other =
            std::find_if(at, limit, [this](std::uint8_t byte) { return byte != mRunByte; });
        mRunLength += static_cast<std::size_t>(other - at);
        at = other;
        if (at != bytes.end()) {
            FinishRun();
        }
    }
    return CurrentStatus();
}

Status RunLengthFilter::End() {
    FinishRun();
    FlushLiterals();
    Emit(kEndOfData);
    return FlushOut();
}

}  // namespace VANTIX::HOST
