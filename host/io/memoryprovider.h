// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/export.h"
#include "host/io/dataproviderbase.h"
#include "host/io/fileprovider.h"

namespace VANTIX::HOST {

/// A temporary byte stream, ready for use as created: in memory while it is small, then in a file
/// that has no name and goes with the provider. `Init` reports `kFileExists`, as the store is there
/// already.
class NORVANE_HOST_API MemoryProvider : public BasicDataProvider<IO::IPacketDataProvider> {
public:
    static constexpr std::size_t kSpillBytes = std::size_t{16} << 20U;

    /// Moves to a file when it would hold more than `spillBytes`; stays in memory when there is
    /// none to be had.
    explicit MemoryProvider(std::size_t spillBytes = kSpillBytes) : mSpillBytes(spillBytes) {}

    /// Answers itself for `IID_IPACKETDATAPROVIDER`.
    Status QueryInterface(const GUID& id, void** out) override;

    Status Write(const void* buffer, std::size_t length) override;
    Status Read(void* buffer, std::int32_t* length) override;
    std::int32_t GetSize() override;
    Status SetPosition(std::int64_t offset, IO::Offset origin) override;
    std::int32_t GetPosition() override;
    Status Flush() override;
    Status Init() override;
    Status Open(const char* mode) override;
    Status Close() override;

private:
    bool Spill();

    std::size_t mSpillBytes;
    std::vector<std::uint8_t> mBytes;
    std::int64_t mPosition = 0;
    TInterfacePtr<FileProvider> mFile;  // takes over everything once it is there
};

}  // namespace VANTIX::HOST
