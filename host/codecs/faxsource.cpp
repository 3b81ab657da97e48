// SPDX-License-Identifier: MIT
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "host/codecs/codecsupport.h"
#include "host/codecs/faxdecoder.h"
#include "host/codecs/linesource.h"

namespace VANTIX::HOST {

namespace {

/// The longest line: eleven metres at 2400 dots per inch.
constexpr std::int32_t kMostColumns = 1 << 20;

constexpr std::uint32_t kEndOfLine = 1;
constexpr unsigned kEndOfLineBits = 12;
constexpr std::uint32_t kEndOfBlock = 0x001001;
constexpr unsigned kEndOfBlockBits = 24;

/// Lines of Group 3 and 4 facsimile data. Group 3 goes on at the next end of line after damage,
/// Group 4 has nothing that it could go on at.
class FaxSource final : public LineSource {
public:
    FaxSource(CodedData data, const FaxParameters& parameters, std::int32_t height)
        : LineSource({parameters.columns, height, 1, 1}),
          mData(std::move(data)),
          mParameters(parameters),
          mDecoder(Bytes(), parameters.columns),
          mLine(mFormat.LineBytes()) {}

    const std::uint8_t* NextLine() override {
        if (mEnded || mLines >= mFormat.height || !FindLine()) {
            EndEarly();
            return nullptr;
        }
        const bool isSound =
            mIsTwoDimensional ? mDecoder.DecodeTwoDimensional() : mDecoder.DecodeOneDimensional();
        ++mLines;
        if (!isSound) {
            Recover();
        }
        std::fill(mLine.begin(), mLine.end(), std::uint8_t{0});
        mDecoder.Paint(mLine.data());
        if (!mParameters.blackIs1) {
            std::transform(mLine.begin(), mLine.end(), mLine.begin(),
                           [](std::uint8_t byte) { return static_cast<std::uint8_t>(~byte); });
        }
        return mLine.data();
    }

    void Rewind() override {
        mDecoder = FaxDecoder(Bytes(), mFormat.width);
        mLines = 0;
        mEnded = false;
    }

private:
    [[nodiscard]] std::span<const std::uint8_t> Bytes() const {
        // Bytes of a string are read as what they are.
        const std::string_view bytes = mData->Bytes();
        return {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()};
    }

    /// Goes to the code of the next line; false when there is none.
    bool FindLine() {
        BitReader& bits = mDecoder.Bits();
        if (!mParameters.endOfBlock && mParameters.rows > 0 && mLines >= mParameters.rows) {
            return false;
        }
        if (mParameters.k < 0) {
            mIsTwoDimensional = true;
            return FindGroup4Line(bits);
        }
        // Data with ends of lines are aligned by what is filled in before them.
        if (mParameters.encodedByteAlign && !mParameters.endOfLine) {
            bits.Align();
        }
        int ends = 0;
        while (TakeEndOfLine(bits)) {
            if (++ends == 2) {
                return false;
            }
            TakeTag(bits);
        }
        if (ends == 0) {
            if (mParameters.encodedByteAlign) {
                bits.Align();
            }
            TakeTag(bits);
        }
        return !bits.IsAtEnd();
    }

    [[nodiscard]] bool FindGroup4Line(BitReader& bits) const {
        if (bits.Peek(kEndOfBlockBits) == kEndOfBlock) {
            return false;
        }
        if (mParameters.encodedByteAlign) {
            bits.Align();
        }
        return !bits.IsAtEnd() && bits.Peek(kEndOfLineBits) != kEndOfLine;
    }

    /// Takes an end of line with the zeros before it, if it comes next: no code begins with so
    /// many.
    static bool TakeEndOfLine(BitReader& bits) {
        if (bits.Peek(kEndOfLineBits - 1) != 0) {
            return false;
        }
        while (!bits.IsAtEnd() && bits.Peek(1) == 0) {
            bits.Skip(1);
        }
        const bool isThere = !bits.IsAtEnd();
        bits.Skip(1);
        return isThere;
    }

    /// Mixed coding tells before each line how the line is coded.
    void TakeTag(BitReader& bits) {
        if (mParameters.k > 0) {
            mIsTwoDimensional = bits.Peek(1) == 0;
            bits.Skip(1);
        }
    }

    void Recover() {
        if (mError.empty()) {
            mError = "CCITT data are damaged in line " + std::to_string(mLines) + " of " +
                     std::to_string(mFormat.height);
        }
        if (mParameters.k < 0) {
            mEnded = true;
            return;
        }
        BitReader& bits = mDecoder.Bits();
        while (!bits.IsAtEnd() && bits.Peek(kEndOfLineBits) != kEndOfLine) {
            bits.Skip(1);
        }
    }

    void EndEarly() {
        mEnded = true;
        if (mLines < mFormat.height && mError.empty()) {
            mError = DescribeShortData("CCITT", mLines, mFormat.height, "");
        }
    }

    CodedData mData;
    FaxParameters mParameters;
    FaxDecoder mDecoder;
    std::vector<std::uint8_t> mLine;
    std::int32_t mLines = 0;
    bool mIsTwoDimensional = false;
    bool mEnded = false;
};

}  // namespace

LineSourcePtr MakeFaxSource(CodedData data, const FaxParameters& parameters, std::int32_t height,
                            std::string& error) {
    if (!data) {
        error = "no data";
        return nullptr;
    }
    if (parameters.columns > kMostColumns) {
        error = "CCITT data with " + std::to_string(parameters.columns) + " columns";
        return nullptr;
    }
    if (!IsServable({parameters.columns, height, 1, 1}, error)) {
        return nullptr;
    }
    return std::make_unique<FaxSource>(std::move(data), parameters, height);
}

}  // namespace VANTIX::HOST
