// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "host/fonts/sfnt.h"

namespace VANTIX::HOST {

/// The entries of an INDEX (Technical Note 5176, 5) over bytes of the caller.
class CffIndex {
public:
    /// Takes the INDEX at `offset`, and moves that behind it. False where its offsets do not lie in
    /// the file; entries that leave the file are cut.
    bool Read(ByteView file, std::size_t& offset);

    [[nodiscard]] std::uint32_t Count() const { return mCount; }

    /// What is added to the numbers of subroutines (Technical Note 5177, 4.7).
    [[nodiscard]] std::int32_t Bias() const {
        constexpr std::uint32_t kFew = 1240;
        constexpr std::uint32_t kMany = 33900;
        return mCount < kFew ? 107 : (mCount < kMany ? 1131 : 32768);
    }

    /// Empty for one that is not there, or whose offsets make no sense.
    [[nodiscard]] ByteView operator[](std::size_t entry) const;

private:
    [[nodiscard]] std::size_t OffsetAt(std::size_t entry) const;

    std::uint32_t mCount = 0;
    std::size_t mOffsetSize = 1;
    ByteView mOffsets;
    ByteView mData;
};

/// Operators of DICTs; those behind an escape have 12 in their upper byte.
enum class CffOperator : std::uint16_t {
    kVersion = 0,
    kNotice = 1,
    kFamilyName = 3,
    kFontBBox = 5,
    kBlueValues = 6,
    kOtherBlues = 7,
    kStdHW = 10,
    kStdVW = 11,
    kCharset = 15,
    kEncoding = 16,
    kCharStrings = 17,
    kPrivate = 18,
    kSubrs = 19,
    kDefaultWidth = 20,
    kNominalWidth = 21,
    kFontMatrix = 0x0C07,
    kCharstringType = 0x0C06,
    kBlueScale = 0x0C09,
    kBlueShift = 0x0C0A,
    kBlueFuzz = 0x0C0B,
    kStemSnapH = 0x0C0C,
    kStemSnapV = 0x0C0D,
    kForceBold = 0x0C0E,
    kLanguageGroup = 0x0C11,
    kExpansionFactor = 0x0C12,
    kRegistryOrdering = 0x0C1E,
    kCIDFontVersion = 0x0C1F,
    kCIDCount = 0x0C22,
    kFDArray = 0x0C24,
    kFDSelect = 0x0C25,
    kFontName = 0x0C26
};

/// The entries of a DICT (Technical Note 5176, 4) over bytes of the caller. What is damaged ends
/// it.
class CffDict {
public:
    struct Entry {
        CffOperator key{};
        std::vector<double> values;
        ByteView operands;  ///< as they are coded
    };

    CffDict() = default;
    explicit CffDict(ByteView bytes);

    /// In their order.
    [[nodiscard]] const std::vector<Entry>& Entries() const { return mEntries; }

    /// Null where there is none; of several the last.
    [[nodiscard]] const std::vector<double>* Find(CffOperator key) const;

    /// The last operand.
    [[nodiscard]] double Number(CffOperator key, double otherwise) const;

    /// The last operand as an offset or an index: nothing below 0 or above what a file can have.
    [[nodiscard]] std::size_t Offset(CffOperator key) const;

    /// Each operand plus those before it, at most `most` of them.
    [[nodiscard]] std::vector<float> Sums(CffOperator key, std::size_t most) const;

private:
    std::vector<Entry> mEntries;
};

}  // namespace VANTIX::HOST
