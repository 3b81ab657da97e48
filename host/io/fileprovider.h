// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/export.h"
#include "host/io/dataproviderbase.h"

namespace VANTIX::HOST {

/// A buffered output file. Remembers the first failure, since the plug-in asks no results.
class NORVANE_HOST_API FileProvider : public DataProviderBase {
public:
    /// Takes over the open descriptor and closes it at its end, unless `descriptor` is 1 (standard
    /// output), which it leaves open.
    explicit FileProvider(int descriptor);
    ~FileProvider() override;

    Status Write(const void* buffer, std::size_t length) override;
    Status Read(void* buffer, std::int32_t* length) override;
    std::int32_t GetSize() override;
    Status SetPosition(std::int64_t offset, IO::Offset origin) override;
    std::int32_t GetPosition() override;
    Status Flush() override;

    /// `errno` of the first write that failed, or 0. Flush before asking.
    [[nodiscard]] int FirstError() const { return mFirstError; }

    /// Bytes written so far, the buffered ones included.
    [[nodiscard]] std::uint64_t BytesWritten() const { return mBytesWritten; }

private:
    void Drain();

    int mDescriptor;
    int mFirstError = 0;
    std::uint64_t mBytesWritten = 0;
    std::vector<std::uint8_t> mBuffer;
};

}  // namespace VANTIX::HOST
