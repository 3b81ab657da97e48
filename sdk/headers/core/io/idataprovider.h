// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

#include "core/object/iclassfactory.h"

namespace VANTIX::IO {

/// Two roles: key of the output stream in the connection space, and class of the host's memory
/// provider (ready for use as created).
inline constexpr GUID IID_IDATAPROVIDER = "2932BFBD-9AA3-454F-BEFF-EBC9BEEF0F0F"_guid;
/// Asked of a data provider that is also a packet data provider.
inline constexpr GUID IID_IPACKETDATAPROVIDER = "0E7D0C33-0F4D-4E7B-9D54-6C2E5E3C9A10"_guid;
/// Class of the host's factory of temporary providers.
inline constexpr GUID CLSID_PACKETDATAPROVIDERFACTORY = "BEC8EF3B-0443-492B-9FFD-7F70C6896A39"_guid;

class IURI;
class IReporter;

/// Where an offset is counted from. The order is not that of the C library.
enum class Offset : std::int32_t { kBegin = 0, kEnd = 1, kCurrent = 2 };

/// A byte stream. The plug-in ignores the results of `Write` and `Flush`, so a provider remembers
/// its first failure for the application to ask after the job. Writes are small: buffer here.
class IDataProvider : public IObject {
public:
    virtual void InitHandleBased(std::int32_t handle) = 0;
    virtual Status InitReadOnlyMem(const void* data, std::int32_t size) = 0;
    virtual Status InitURIBased(IURI& uri, std::int32_t mode, IReporter* reporter) = 0;
    /// Writes all `length` bytes at the current position; 0, or `kWriteFailed`.
    virtual Status Write(const void* buffer, std::size_t length) = 0;
    /// Reads up to `*length` bytes from the current position; `*length` becomes the count read.
    virtual Status Read(void* buffer, std::int32_t* length) = 0;
    /// Size in bytes, those not yet flushed included.
    virtual std::int32_t GetSize() = 0;
    virtual Status SetSize(std::int64_t size) = 0;
    virtual Status SetPosition(std::int64_t offset, Offset origin) = 0;
    virtual std::int32_t GetPosition() = 0;
    virtual std::uint32_t GetStateCode() = 0;
    virtual bool HasStateCodeOne() = 0;
    virtual std::uint32_t SetStateCode(std::uint32_t code) = 0;
    virtual bool HasMoreData() = 0;
    virtual Status Flush() = 0;
    virtual bool GetFlushOnClose() = 0;
    virtual void SetFlushOnClose(bool flush) = 0;
};

/// A temporary byte stream that is written, rewound and read back.
class IPacketDataProvider : public IDataProvider {
public:
    /// Creates the store; `kFileExists` when it is there already.
    virtual Status Init() = 0;
    virtual Status Open(const char* mode) = 0;
    virtual Status Close() = 0;
};

/// Makes temporary providers, ready for use, with one reference given to the caller.
class IPacketDataProviderFactory : public IObject {
public:
    virtual IPacketDataProvider* CreatePacketDataProvider(IClassFactory* factory) = 0;
};

}  // namespace VANTIX::IO
