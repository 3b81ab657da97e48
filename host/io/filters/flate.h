// SPDX-License-Identifier: MIT
#pragma once

#include <zlib.h>

#include "host/io/filters/outputfilter.h"

namespace VANTIX::HOST {

/// The zlib format (RFC 1950) that FlateDecode of Language Level 3 reads.
class FlateFilter : public OutputFilter {
public:
    using OutputFilter::OutputFilter;
    ~FlateFilter() override;
    FlateFilter(const FlateFilter&) = delete;
    FlateFilter& operator=(const FlateFilter&) = delete;
    FlateFilter(FlateFilter&&) = delete;
    FlateFilter& operator=(FlateFilter&&) = delete;

    Status Put(std::span<const std::uint8_t> bytes) override;
    Status End() override;

private:
    bool Start();
    void Deflate(int flush);

    z_stream mStream{};
    bool mStarted = false;
};

}  // namespace VANTIX::HOST
