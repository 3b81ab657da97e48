// SPDX-License-Identifier: MIT
#include "host/io/memoryprovider.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <limits>
#include <string>
#include <system_error>

#include "core/libsupport/vlogger/logmessage.h"

namespace VANTIX::HOST {

namespace {

/// An open file without a name in the system's temporary folder, or -1 with `errno` set.
int OpenUnnamedFile() {
    std::error_code problem;
    const std::filesystem::path folder = std::filesystem::temp_directory_path(problem);
    std::string path = (problem ? std::filesystem::path("/tmp") : folder) / "norvane-XXXXXX";
    const int descriptor = mkostemp(path.data(), 0);
    if (descriptor >= 0) {
        unlink(path.c_str());
    }
    return descriptor;
}

}  // namespace

Status MemoryProvider::QueryInterface(const GUID& id, void** out) {
    if (id == IO::IID_IPACKETDATAPROVIDER) {
        *out = static_cast<IObject*>(this);
        return STATUS::kOk;
    }
    return TObject::QueryInterface(id, out);
}

bool MemoryProvider::Spill() {
    const int descriptor = OpenUnnamedFile();
    if (descriptor < 0) {
        LogError("host/io") << "No temporary file for a large stream: " << std::strerror(errno);
        return false;
    }
    auto file = MakeObject<FileProvider>(descriptor);
    if (file->Write(mBytes.data(), mBytes.size()) != STATUS::kOk ||
        file->SetPosition(mPosition, IO::Offset::kBegin) != STATUS::kOk) {
        LogError("host/io") << "A temporary file failed: " << std::strerror(file->FirstError());
        return false;
    }
    mFile = std::move(file);
    mBytes = {};
    return true;
}

Status MemoryProvider::Write(const void* buffer, std::size_t length) {
    if (length == 0) {
        return STATUS::kOk;
    }
    if (buffer == nullptr) {
        return STATUS::kWriteFailed;
    }
    const auto position = static_cast<std::uint64_t>(mPosition);
    if (!mFile && (length > mSpillBytes || position > mSpillBytes - length) && !Spill()) {
        mSpillBytes = std::numeric_limits<std::size_t>::max();
    }
    if (mFile) {
        return mFile->Write(buffer, length);
    }
    const auto* bytes = static_cast<const std::uint8_t*>(buffer);
    if (position + length > mBytes.size()) {
        mBytes.resize(position);
        mBytes.insert(mBytes.end(), bytes, bytes + length);
    } else {
        std::copy_n(bytes, length, mBytes.begin() + mPosition);
    }
    mPosition += static_cast<std::int64_t>(length);
    return STATUS::kOk;
}

Status MemoryProvider::Read(void* buffer, std::int32_t* length) {
    if (mFile) {
        return mFile->Read(buffer, length);
    }
    const auto size = static_cast<std::int64_t>(mBytes.size());
    const std::int64_t left = std::max<std::int64_t>(0, size - mPosition);
    const std::int64_t count = std::clamp<std::int64_t>(*length, 0, left);
    std::copy_n(mBytes.data() + (size - left), count, static_cast<std::uint8_t*>(buffer));
    mPosition += count;
    *length = static_cast<std::int32_t>(count);
    return STATUS::kOk;
}

std::int32_t MemoryProvider::GetSize() {
    return mFile ? mFile->GetSize() : ReportedOffset(static_cast<std::int64_t>(mBytes.size()));
}

Status MemoryProvider::SetPosition(std::int64_t offset, IO::Offset origin) {
    if (mFile) {
        return mFile->SetPosition(offset, origin);
    }
    const auto size = static_cast<std::int64_t>(mBytes.size());
    const std::int64_t target = ResolveOffset(offset, origin, mPosition, size);
    if (target < 0) {
        return STATUS::kBadPosition;
    }
    mPosition = target;
    return STATUS::kOk;
}

std::int32_t MemoryProvider::GetPosition() {
    return mFile ? mFile->GetPosition() : ReportedOffset(mPosition);
}

Status MemoryProvider::Flush() {
    return mFile ? mFile->Flush() : STATUS::kOk;
}

Status MemoryProvider::Init() {
    return STATUS::kFileExists;
}

Status MemoryProvider::Open(const char* /*mode*/) {
    return STATUS::kOk;
}

Status MemoryProvider::Close() {
    return STATUS::kOk;
}

}  // namespace VANTIX::HOST
