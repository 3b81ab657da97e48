// SPDX-License-Identifier: MIT
#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

#include "host/codecs/codecsupport.h"
#include "host/codecs/linesource.h"
#include "host/codecs/predictor.h"

namespace VANTIX::HOST {

namespace {

/// Inflated at a time: zlib is slow where it is given little room.
constexpr std::size_t kBlockBytes = 65536;

/// Inflates whole rows of the predictor into a buffer, undoes them where they lie, and hands them
/// out there when a row is a line. The first place of the buffer keeps the row before the block.
class FlateSource final : public LineSource {
public:
    FlateSource(CodedData data, const ImageFormat& format, const PredictorParameters& parameters)
        : LineSource(format),
          mPieces(std::move(data)),
          mPredictor(parameters),
          mLineBytes(format.LineBytes()),
          mTagBytes(mPredictor.TagBytes()),
          mPlaceBytes(mTagBytes + (mPredictor.IsOn() ? mPredictor.RowBytes() : mLineBytes)),
          mPlaces(std::max<std::size_t>(kBlockBytes / mPlaceBytes, 1)),
          mBuffer((mPlaces + 1) * mPlaceBytes) {
        if (mPlaceBytes - mTagBytes != mLineBytes) {
            mGathered.resize(mLineBytes);
        }
        mStarted = inflateInit(&mStream) == Z_OK;
        Rewind();
    }

    ~FlateSource() override { inflateEnd(&mStream); }

    FlateSource(const FlateSource&) = delete;
    FlateSource& operator=(const FlateSource&) = delete;
    FlateSource(FlateSource&&) = delete;
    FlateSource& operator=(FlateSource&&) = delete;

    const std::uint8_t* NextLine() override {
        if (mLine >= mFormat.height) {
            return nullptr;
        }
        std::size_t missing = mLineBytes;
        const std::uint8_t* line = nullptr;
        if (mGathered.empty()) {
            line = NextRow();
            missing -= mRowBytes;
            mRowBytes = 0;
        } else {
            line = mGathered.data();
            missing -= Gather();
        }
        if (missing > 0 && mError.empty()) {
            mError = DescribeShortData("Flate", mLine, mFormat.height, mStream.msg);
        }
        if (missing == mLineBytes) {
            return nullptr;
        }
        ++mLine;
        return line;
    }

    void Rewind() override {
        inflateReset(&mStream);
        mStream.avail_in = 0;
        mPieces.Rewind();
        mLine = 0;
        mRowBytes = 0;
        mPlace = mPlaces;
        mFilled = 0;
        mEnded = !mStarted;
        std::fill(mBuffer.begin(), mBuffer.end(), std::uint8_t{0});
    }

private:
    /// Makes the next row the current one: `mRowBytes` of it came from the data, the others are
    /// those of the row above.
    const std::uint8_t* NextRow() {
        if (mPlace == mPlaces) {
            Fill();
        }
        const std::size_t left = mFilled - mPlace * mPlaceBytes;
        if (left <= mTagBytes || mFilled <= mPlace * mPlaceBytes) {
            mRowBytes = 0;
            return nullptr;
        }
        const std::uint8_t* prior = mBuffer.data() + mPlace * mPlaceBytes;
        std::uint8_t* place = mBuffer.data() + ++mPlace * mPlaceBytes;
        mPredictor.Undo(place, prior);
        const std::size_t got = std::min(left, mPlaceBytes);
        std::memcpy(place + got, prior + got, mPlaceBytes - got);
        mRow = place + mTagBytes;
        mRowBytes = got - mTagBytes;
        return mRow;
    }

    /// Collects a line from rows of another length; returns the bytes that there were.
    std::size_t Gather() {
        std::size_t got = 0;
        while (got < mLineBytes && (mRowBytes > 0 || NextRow() != nullptr)) {
            const std::size_t count = std::min(mRowBytes, mLineBytes - got);
            std::memcpy(mGathered.data() + got, mRow, count);
            got += count;
            mRow += count;
            mRowBytes -= count;
        }
        return got;
    }

    void Fill() {
        std::memcpy(mBuffer.data(), mBuffer.data() + mPlaces * mPlaceBytes, mPlaceBytes);
        mPlace = 0;
        mStream.next_out = mBuffer.data() + mPlaceBytes;
        mStream.avail_out = static_cast<uInt>(mPlaces * mPlaceBytes);
        while (!mEnded && mStream.avail_out > 0) {
            if (mStream.avail_in == 0) {
                Feed();
            }
            mEnded = inflate(&mStream, Z_NO_FLUSH) != Z_OK;
        }
        mFilled = mPlaces * mPlaceBytes - mStream.avail_out;
    }

    void Feed() {
        const std::string_view piece = mPieces.Next();
        // zlib takes the input through a pointer to non-const, and leaves it alone.
        mStream.next_in = const_cast<Bytef*>(reinterpret_cast<const Bytef*>(piece.data()));
        mStream.avail_in = static_cast<uInt>(piece.size());
    }

    CodedPieces mPieces;
    Predictor mPredictor;
    std::size_t mLineBytes;
    std::size_t mTagBytes;
    std::size_t mPlaceBytes;
    std::size_t mPlaces;
    std::vector<std::uint8_t> mBuffer;
    std::vector<std::uint8_t> mGathered;
    z_stream mStream{};
    std::size_t mPlace = 0;
    std::size_t mFilled = 0;
    const std::uint8_t* mRow = nullptr;
    std::size_t mRowBytes = 0;
    std::int32_t mLine = 0;
    bool mStarted = false;
    bool mEnded = false;
};

}  // namespace

LineSourcePtr MakeFlateSource(CodedData data, const ImageFormat& format,
                              const PredictorParameters& predictor, std::string& error) {
    if (!data) {
        error = "no data";
        return nullptr;
    }
    if (!IsServable(format, error) || !Predictor::Check(predictor, error)) {
        return nullptr;
    }
    return std::make_unique<FlateSource>(std::move(data), format, predictor);
}

}  // namespace VANTIX::HOST
