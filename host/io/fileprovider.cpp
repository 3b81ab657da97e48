// SPDX-License-Identifier: MIT
#include "host/io/fileprovider.h"

#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace VANTIX::HOST {

namespace {

bool WaitUntilWritable(int descriptor) {
    pollfd request{descriptor, POLLOUT, 0};
    return poll(&request, 1, -1) > 0 || errno == EINTR;
}

}  // namespace

FileProvider::FileProvider(int descriptor)
    : mDescriptor(descriptor), mBuffer(std::make_unique<std::uint8_t[]>(kBufferBytes)) {
    struct stat status {};

    if (fstat(descriptor, &status) != 0) {
        Fail(errno);
    } else if (S_ISREG(status.st_mode)) {
        mStart = lseek(descriptor, 0, SEEK_CUR);
        mSize = std::max<std::int64_t>(0, status.st_size - mStart);
    }
}

FileProvider::~FileProvider() {
    if (GetFlushOnClose()) {
        Drain();
    }
    if (mDescriptor != STDOUT_FILENO && mDescriptor >= 0) {
        close(mDescriptor);
    }
}

void FileProvider::Fail(int error) {
    if (mFirstError == 0) {
        mFirstError = error;
    }
}

void FileProvider::WriteAll(const std::uint8_t* data, std::size_t length) {
    while (length > 0 && mFirstError == 0) {
        const ssize_t written = write(mDescriptor, data, length);
        if (written >= 0) {
            data += written;
            length -= static_cast<std::size_t>(written);
        } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
            if (!WaitUntilWritable(mDescriptor)) {
                Fail(errno);
            }
        } else if (errno != EINTR) {
            Fail(errno);
        }
    }
}

void FileProvider::Drain() {
    WriteAll(mBuffer.get(), mBuffered);
    mBuffered = 0;
}

Status FileProvider::Write(const void* buffer, std::size_t length) {
    if (length == 0) {
        return STATUS::kOk;
    }
    if (buffer == nullptr || mFirstError != 0) {
        return STATUS::kWriteFailed;
    }
    const auto* bytes = static_cast<const std::uint8_t*>(buffer);
    if (length > kBufferBytes - mBuffered) {
        Drain();
    }
    if (length >= kBufferBytes) {
        WriteAll(bytes, length);
    } else {
        std::memcpy(mBuffer.get() + mBuffered, bytes, length);
        mBuffered += length;
    }
    mBytesWritten += length;
    mPosition += static_cast<std::int64_t>(length);
    mSize = std::max(mSize, mPosition);
    return mFirstError == 0 ? STATUS::kOk : STATUS::kWriteFailed;
}

Status FileProvider::Read(void* buffer, std::int32_t* length) {
    const std::int32_t wanted = std::max(*length, 0);
    *length = 0;
    Drain();
    while (*length < wanted) {
        const ssize_t count = read(mDescriptor, static_cast<std::uint8_t*>(buffer) + *length,
                                   static_cast<std::size_t>(wanted - *length));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return STATUS::kNotSupported;
        }
        if (count == 0) {
            break;
        }
        *length += static_cast<std::int32_t>(count);
        mPosition += count;
    }
    return STATUS::kOk;
}

std::int32_t FileProvider::GetSize() {
    return ReportedOffset(mSize);
}

Status FileProvider::SetPosition(std::int64_t offset, IO::Offset origin) {
    const std::int64_t target = ResolveOffset(offset, origin, mPosition, mSize);
    if (target < 0) {
        return STATUS::kBadPosition;
    }
    if (target == mPosition) {
        return STATUS::kOk;
    }
    Drain();
    if (mStart < 0 || lseek(mDescriptor, mStart + target, SEEK_SET) < 0) {
        return STATUS::kBadPosition;
    }
    mPosition = target;
    return STATUS::kOk;
}

std::int32_t FileProvider::GetPosition() {
    return ReportedOffset(mPosition);
}

Status FileProvider::Flush() {
    Drain();
    return mFirstError == 0 ? STATUS::kOk : STATUS::kWriteFailed;
}

}  // namespace VANTIX::HOST
