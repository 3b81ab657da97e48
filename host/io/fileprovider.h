// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "host/export.h"
#include "host/io/dataproviderbase.h"

namespace VANTIX::HOST {

/// A buffered output file. Remembers the first failure, since the plug-in asks no results; what
/// comes after it is dropped. Offsets count from where the file stood when it was handed over. A
/// regular file can be read and positioned as far as its descriptor allows; in anything else
/// (pipes, terminals) the position only moves by writing.
class NORVANE_HOST_API FileProvider : public DataProviderBase {
public:
    /// Takes over the open descriptor and closes it at its end, unless `descriptor` is 1 (standard
    /// output), which it leaves open.
    explicit FileProvider(int descriptor);
    ~FileProvider() override;

    Status Write(const void* buffer, std::size_t length) override;
    /// `kNotSupported` when the file cannot be read.
    Status Read(void* buffer, std::int32_t* length) override;
    /// At most 2^31 - 1, as the interface has no more; the file may be larger.
    std::int32_t GetSize() override;
    Status SetPosition(std::int64_t offset, IO::Offset origin) override;
    /// At most 2^31 - 1; the true position may be greater.
    std::int32_t GetPosition() override;
    Status Flush() override;

    /// `errno` of the first write that failed, or 0. Flush before asking.
    [[nodiscard]] int FirstError() const { return mFirstError; }

    /// Bytes written so far, the buffered ones included.
    [[nodiscard]] std::uint64_t BytesWritten() const { return mBytesWritten; }

private:
    static constexpr std::size_t kBufferBytes = std::size_t{64} << 10U;

    void Drain();
    void WriteAll(const std::uint8_t* data, std::size_t length);
    void Fail(int error);

    int mDescriptor;
    int mFirstError = 0;
    std::uint64_t mBytesWritten = 0;
    std::int64_t mStart = -1;  // offset in the file where this output begins; -1: not seekable
    std::int64_t mPosition = 0;
    std::int64_t mSize = 0;
    std::unique_ptr<std::uint8_t[]> mBuffer;
    std::size_t mBuffered = 0;
};

}  // namespace VANTIX::HOST
