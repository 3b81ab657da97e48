// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "host/export.h"

namespace VANTIX::HOST {

/// Coded data, shared by the sources that read them again. Long ones lie in an unnamed file that is
/// mapped, so that what has been read need not stay in memory.
class NORVANE_HOST_API CodedBytes {
public:
    explicit CodedBytes(std::string bytes);
    /// Takes over a file of `size` bytes; without bytes when it cannot be mapped.
    CodedBytes(std::FILE* file, std::size_t size);
    ~CodedBytes();
    CodedBytes(const CodedBytes&) = delete;
    CodedBytes& operator=(const CodedBytes&) = delete;
    CodedBytes(CodedBytes&&) = delete;
    CodedBytes& operator=(CodedBytes&&) = delete;

    [[nodiscard]] std::string_view Bytes() const { return mBytes; }

    /// Gives up the memory of the bytes from `begin` to `end`; they can be read again.
    void PassOver(std::size_t begin, std::size_t end) const;

private:
    std::string mHeld;
    void* mMapped = nullptr;
    std::string_view mBytes;
};

using CodedData = std::shared_ptr<const CodedBytes>;

/// Collects coded data of unknown length.
class NORVANE_HOST_API CodedDataWriter {
public:
    void Append(std::string_view bytes);

    /// What was collected, or null when a file had to take it and could not.
    CodedData Finish();

private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    std::string mHeld;
    std::unique_ptr<std::FILE, Closer> mFile;
    std::size_t mSize = 0;
    bool mHasFailed = false;
};

/// Coded data in pieces, one after another; those before the last one occupy no memory.
class CodedPieces {
public:
    explicit CodedPieces(CodedData data) : mData(std::move(data)) {}

    /// The next bytes; none at the end.
    std::string_view Next();

    void Rewind();

private:
    CodedData mData;
    std::size_t mBegin = 0;
    std::size_t mEnd = 0;
};

}  // namespace VANTIX::HOST
