// SPDX-License-Identifier: MIT
#include "host/codecs/codeddata.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

namespace VANTIX::HOST {

namespace {

/// Data up to this size stay in memory.
constexpr std::size_t kMostHeld = std::size_t{1} << 20U;

constexpr std::size_t kPieceBytes = std::size_t{1} << 18U;

}  // namespace

CodedBytes::CodedBytes(std::string bytes) : mHeld(std::move(bytes)), mBytes(mHeld) {}

CodedBytes::CodedBytes(std::FILE* file, std::size_t size) {
    void* mapped = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, ::fileno(file), 0);
    std::fclose(file);
    if (mapped != MAP_FAILED) {
        mMapped = mapped;
        mBytes = {static_cast<const char*>(mapped), size};
    }
}

CodedBytes::~CodedBytes() {
    if (mMapped != nullptr) {
        ::munmap(mMapped, mBytes.size());
    }
}

void CodedBytes::PassOver(std::size_t begin, std::size_t end) const {
    const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    const std::size_t first = begin / page * page;
    const std::size_t last = std::min(end, mBytes.size()) / page * page;
    if (mMapped != nullptr && first < last) {
        ::madvise(static_cast<char*>(mMapped) + first, last - first, MADV_DONTNEED);
    }
}

void CodedDataWriter::Append(std::string_view bytes) {
    mSize += bytes.size();
    if (!mFile && mHeld.size() + bytes.size() <= kMostHeld) {
        mHeld.append(bytes);
        return;
    }
    if (!mFile && !mHasFailed) {
        mFile.reset(std::tmpfile());
        mHasFailed =
            !mFile || std::fwrite(mHeld.data(), 1, mHeld.size(), mFile.get()) != mHeld.size();
        mHeld = std::string();
    }
    mHasFailed =
        mHasFailed || std::fwrite(bytes.data(), 1, bytes.size(), mFile.get()) != bytes.size();
}

CodedData CodedDataWriter::Finish() {
    if (!mFile && !mHasFailed) {
        return std::make_shared<const CodedBytes>(std::move(mHeld));
    }
    if (mHasFailed || std::fflush(mFile.get()) != 0) {
        return nullptr;
    }
    auto data = std::make_shared<const CodedBytes>(mFile.release(), mSize);
    return data->Bytes().empty() ? nullptr : data;
}

std::string_view CodedPieces::Next() {
    mData->PassOver(mBegin, mEnd);
    mBegin = mEnd;
    const std::string_view piece = mData->Bytes().substr(mBegin, kPieceBytes);
    mEnd += piece.size();
    return piece;
}

void CodedPieces::Rewind() {
    mBegin = 0;
    mEnd = 0;
}

}  // namespace VANTIX::HOST
