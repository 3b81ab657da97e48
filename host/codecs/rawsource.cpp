// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

#include "host/codecs/codecsupport.h"
#include "host/codecs/linesource.h"

namespace VANTIX::HOST {

namespace {

/// Memory of lines that were handed out is given up in portions.
constexpr std::size_t kMostKept = std::size_t{1} << 18U;

/// Hands out the lines where they lie. A line that is cut short keeps the end of the one above.
class RawSource final : public LineSource {
public:
    RawSource(CodedData data, const ImageFormat& format)
        : LineSource(format), mData(std::move(data)), mBytes(mData->Bytes()) {}

    const std::uint8_t* NextLine() override {
        const std::size_t size = mFormat.LineBytes();
        const std::size_t start = static_cast<std::size_t>(mLine) * size;
        if (mLine >= mFormat.height || start >= mBytes.size()) {
            EndEarly();
            return nullptr;
        }
        ++mLine;
        if (start - mPassed > kMostKept) {
            mData->PassOver(mPassed, start);
            mPassed = start;
        }
        if (mBytes.size() - start >= size) {
            // Bytes of a string are read as what they are.
            return reinterpret_cast<const std::uint8_t*>(mBytes.data()) + start;
        }
        return CutLine(start, size);
    }

    void Rewind() override {
        mLine = 0;
        mPassed = 0;
    }

private:
    void EndEarly() {
        if (mLine < mFormat.height && mError.empty()) {
            mError = DescribeShortData("image", mLine, mFormat.height, "");
        }
    }

    const std::uint8_t* CutLine(std::size_t start, std::size_t size) {
        --mLine;
        EndEarly();
        ++mLine;
        mCut.assign(size, 0);
        if (start >= size) {
            std::memcpy(mCut.data(), mBytes.data() + start - size, size);
        }
        std::memcpy(mCut.data(), mBytes.data() + start, mBytes.size() - start);
        return mCut.data();
    }

    CodedData mData;
    std::string_view mBytes;
    std::size_t mPassed = 0;
    std::vector<std::uint8_t> mCut;
    std::int32_t mLine = 0;
};

}  // namespace

LineSourcePtr MakeRawSource(CodedData data, const ImageFormat& format) {
    std::string error;
    if (!data || !IsServable(format, error)) {
        return nullptr;
    }
    return std::make_unique<RawSource>(std::move(data), format);
}

}  // namespace VANTIX::HOST
