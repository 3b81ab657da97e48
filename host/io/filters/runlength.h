// SPDX-License-Identifier: MIT
#pragma once

#include "host/io/filters/outputfilter.h"

namespace VANTIX::HOST {

/// Run-length encoding (PostScript Language Reference, 3.13.3), ended by the byte 128. Runs of
/// three bytes and more are written as runs.
class RunLengthFilter : public OutputFilter {
public:
    using OutputFilter::OutputFilter;

    Status Put(std::span<const std::uint8_t> bytes) override;
    Status End() override;

private:
    static constexpr std::size_t kMaxRecord = 128;

    void FinishRun();
    void FlushLiterals();

    std::array<std::uint8_t, kMaxRecord> mLiterals{};
    std::size_t mLiteralCount = 0;
    std::uint8_t mRunByte = 0;
    std::size_t mRunLength = 0;
};

}  // namespace VANTIX::HOST
