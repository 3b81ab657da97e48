// SPDX-License-Identifier: MIT
#include "host/io/filters/flate.h"

namespace VANTIX::HOST {

namespace {

/// Measured on images: of photographs, the smallest of all levels at nearly the highest speed; of
/// ramps, three percent over level 6 at twice its speed.
constexpr int kLevel = 3;

}  // namespace

FlateFilter::~FlateFilter() {
    if (mStarted) {
        deflateEnd(&mStream);
    }
}

bool FlateFilter::Start() {
    if (!mStarted) {
        mStarted = deflateInit(&mStream, kLevel) == Z_OK;
        if (!mStarted) {
            Fail(STATUS::kOutOfMemory);
        }
    }
    return mStarted;
}

void FlateFilter::Deflate(int flush) {
    std::array<std::uint8_t, kOutBytes> out;
    do {
        mStream.next_out = out.data();
        mStream.avail_out = static_cast<uInt>(out.size());
        deflate(&mStream, flush);
        Emit(out.data(), out.size() - mStream.avail_out);
        // A full buffer is the sign that zlib has more to give.
    } while (mStream.avail_out == 0);
}

Status FlateFilter::Put(std::span<const std::uint8_t> bytes) {
    if (!Start()) {
        return CurrentStatus();
    }
    // zlib takes the input through a pointer to non-const, and leaves it alone.
    mStream.next_in = const_cast<Bytef*>(bytes.data());
    mStream.avail_in = static_cast<uInt>(bytes.size());
    Deflate(Z_NO_FLUSH);
    return CurrentStatus();
}

Status FlateFilter::End() {
    if (!Start()) {
        return CurrentStatus();
    }
    mStream.next_in = nullptr;
    mStream.avail_in = 0;
    Deflate(Z_FINISH);
    deflateReset(&mStream);
    return FlushOut();
}

}  // namespace VANTIX::HOST
