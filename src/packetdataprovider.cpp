// SPDX-License-Identifier: MIT
#include "packetdataprovider.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <limits>

#include "core/libsupport/vlogger/logmessage.h"

namespace VANTIX::IO {
namespace {

constexpr const char* kModule = "src/packetdataprovider";
constexpr std::int64_t kMostBytes = std::numeric_limits<std::int64_t>::max();

std::int32_t Clamp(std::int64_t value) {
    return static_cast<std::int32_t>(
        std::min<std::int64_t>(value, std::numeric_limits<std::int32_t>::max()));
}

}  // namespace

Status BasePacketDataProvider::QueryInterface(const GUID& id, void** out) {
    if (id == IID_IPACKETDATAPROVIDER) {
        *out = static_cast<IObject*>(this);
        return STATUS::kOk;
    }
    return TObject::QueryInterface(id, out);
}

void BasePacketDataProvider::InitHandleBased(std::int32_t /*handle*/) {
    LogError(kModule) << "Unimplemented.";
}

Status BasePacketDataProvider::InitReadOnlyMem(const void* /*data*/, std::int32_t /*size*/) {
    LogError(kModule) << "Unimplemented.";
    return STATUS::kNotImplemented;
}

Status BasePacketDataProvider::InitURIBased(IURI& /*uri*/, std::int32_t /*mode*/,
                                            IReporter* /*reporter*/) {
    LogError(kModule) << "Unimplemented.";
    return STATUS::kNotImplemented;
}

Status BasePacketDataProvider::SetSize(std::int64_t /*size*/) {
    LogError(kModule) << "Unimplemented.";
    return STATUS::kNotImplemented;
}

Status BasePacketDataProvider::Write(const void* buffer, std::size_t length) {
    if (length == 0 && mOpen) {
        return STATUS::kOk;
    }
    if (!mOpen || length > static_cast<std::uint64_t>(kMostBytes - mPosition)) {
        return ReportFailure();
    }
    const std::int64_t end = mPosition + static_cast<std::int64_t>(length);
    if (!mFile && end > kMemoryBytes) {
        MoveToFile();
    }
    if (!(mFile ? WriteToFile(buffer, length) : WriteToMemory(buffer, length))) {
        return ReportFailure();
    }
    mPosition = end;
    mSize = std::max(mSize, end);
    return STATUS::kOk;
}

bool BasePacketDataProvider::WriteToMemory(const void* bytes, std::size_t length) {
    const auto begin = static_cast<std::size_t>(mPosition);
    try {
        mMemory.resize(std::max(mMemory.size(), begin + length));
    } catch (const std::exception&) {
        return false;
    }
    std::memcpy(mMemory.data() + begin, bytes, length);
    return true;
}

bool BasePacketDataProvider::WriteToFile(const void* bytes, std::size_t length) {
    if (TurnTo(Access::kWrite) && std::fwrite(bytes, 1, length, mFile.get()) == length) {
        return true;
    }
    mLastAccess = Access::kNone;  // a part may have been written: the file stands elsewhere
    return false;
}

void BasePacketDataProvider::MoveToFile() {
    if (mStoreRefused) {
        return;
    }
    PLATFORM::FilePtr file = OpenStore();
    const std::size_t size = mMemory.size();
    // The bytes leave memory only when the file holds them all; without a file they stay.
    const bool moved =
        file && (size == 0 || (std::fwrite(mMemory.data(), 1, size, file.get()) == size &&
                               std::fflush(file.get()) == 0));
    mStoreRefused = !moved;
    if (moved) {
        mFile = std::move(file);
        std::vector<char>().swap(mMemory);
    }
}

bool BasePacketDataProvider::TurnTo(Access access) {
    if (mLastAccess != access) {
        if (std::fseek(mFile.get(), mPosition, SEEK_SET) != 0) {
            return false;
        }
        mLastAccess = access;
    }
    return true;
}

Status BasePacketDataProvider::ReportFailure() {
    // Streams do not look at the results of their writes: without this a loss would be silent.
    if (!mFailureReported) {
        LogError(kModule) << "A temporary stream could not be written.";
        mFailureReported = true;
    }
    return STATUS::kWriteFailed;
}

Status BasePacketDataProvider::Read(void* buffer, std::int32_t* length) {
    const std::int64_t left = std::max<std::int64_t>(mSize - mPosition, 0);
    const auto asked = static_cast<std::size_t>(std::max(*length, 0));
    std::size_t count = std::min(asked, static_cast<std::size_t>(left));
    if (mFile && count != 0) {
        count = TurnTo(Access::kRead) ? std::fread(buffer, 1, count, mFile.get()) : 0;
    } else if (count != 0) {
        std::memcpy(buffer, mMemory.data() + mPosition, count);
    }
    mPosition += static_cast<std::int64_t>(count);
    mEndMet = mEndMet || count < asked;
    *length = static_cast<std::int32_t>(count);
    return STATUS::kOk;
}

std::int32_t BasePacketDataProvider::GetSize() {
    return Clamp(mSize);
}

Status BasePacketDataProvider::SetPosition(std::int64_t offset, Offset origin) {
    std::int64_t base = 0;
    switch (origin) {
        case Offset::kBegin:
            break;
        case Offset::kEnd:
            base = mSize;
            break;
        case Offset::kCurrent:
            base = mPosition;
            break;
        default:
            LogError(kModule) << "New Offset type?";
            return STATUS::kBadPosition;
    }
    if (offset < -base || offset > kMostBytes - base) {
        return STATUS::kBadPosition;
    }
    mPosition = base + offset;
    mLastAccess = Access::kNone;
    mEndMet = false;
    return STATUS::kOk;
}

std::int32_t BasePacketDataProvider::GetPosition() {
    return Clamp(mPosition);
}

std::uint32_t BasePacketDataProvider::GetStateCode() {
    return mStateCode;
}

bool BasePacketDataProvider::HasMoreData() {
    return !mEndMet;
}

Status BasePacketDataProvider::Flush() {
    return !mFile || std::fflush(mFile.get()) == 0 ? STATUS::kOk : ReportFailure();
}

bool BasePacketDataProvider::GetFlushOnClose() {
    return mFlushOnClose;
}

void BasePacketDataProvider::SetFlushOnClose(bool flush) {
    mFlushOnClose = flush;
}

Status BasePacketDataProvider::Open(const char* /*mode*/) {
    return STATUS::kOk;
}

Status BasePacketDataProvider::Close() {
    return STATUS::kOk;
}

}  // namespace VANTIX::IO
