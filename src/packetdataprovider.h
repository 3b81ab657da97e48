// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "core/io/idataprovider.h"
#include "core/object/tobject.h"
#include "platform/temporaryfile.h"

namespace VANTIX::IO {

/// A temporary byte stream that is written, rewound and read back. Its bytes stay in memory up to
/// `kMemoryBytes`, and move to a temporary file when they become more: most fonts and patterns stay
/// below, so that hundreds of them, all open until the end of a job, use up neither the process's
/// file descriptors nor its time. Nobody outside can tell the two apart, but by the file.
class BasePacketDataProvider : public TObject<IPacketDataProvider> {
public:
    static constexpr std::int64_t kMemoryBytes = std::int64_t{256} * 1024;

    /// Answers `IID_IPACKETDATAPROVIDER` with itself.
    Status QueryInterface(const GUID& id, void** out) override;

    void InitHandleBased(std::int32_t handle) override;
    Status InitReadOnlyMem(const void* data, std::int32_t size) override;
    Status InitURIBased(IURI& uri, std::int32_t mode, IReporter* reporter) override;
    /// `kWriteFailed` when not all could be written, or before `Init`.
    Status Write(const void* buffer, std::size_t length) override;
    Status Read(void* buffer, std::int32_t* length) override;
    /// Counts bytes not yet flushed; a size of more than 31 bits is given as the largest.
    std::int32_t GetSize() override;
    Status SetSize(std::int64_t size) override;
    /// `kBadPosition` for an unknown origin or a position before the beginning. A position behind
    /// the end is allowed: a write there fills the gap with zeros.
    Status SetPosition(std::int64_t offset, Offset origin) override;
    std::int32_t GetPosition() override;
    std::uint32_t GetStateCode() override;
    /// True until a read has met the end.
    bool HasMoreData() override;
    Status Flush() override;
    bool GetFlushOnClose() override;
    void SetFlushOnClose(bool flush) override;
    /// The stream stays open from `Init` to its destruction: both do nothing.
    Status Open(const char* mode) override;
    Status Close() override;

protected:
    /// Opens the file that the bytes move to; null (logged) when there is none to be had.
    virtual PLATFORM::FilePtr OpenStore() = 0;

    bool mOpen = false;
    std::uint32_t mStateCode = 2;

private:
    enum class Access : std::uint8_t { kNone, kRead, kWrite };

    void MoveToFile();
    bool WriteToMemory(const void* bytes, std::size_t length);
    bool WriteToFile(const void* bytes, std::size_t length);
    bool TurnTo(Access access);
    Status ReportFailure();

    /// Null while the bytes are in `mMemory`.
    PLATFORM::FilePtr mFile;
    std::vector<char> mMemory;
    std::int64_t mPosition = 0;
    std::int64_t mSize = 0;
    /// What was last done to the file: between a write and a read there has to be a seek.
    Access mLastAccess = Access::kNone;
    bool mStoreRefused = false;
    bool mFailureReported = false;
    bool mEndMet = false;
    bool mFlushOnClose = true;
};

}  // namespace VANTIX::IO
