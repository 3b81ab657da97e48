// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "pdf/fonts/rangemap.h"

namespace VANTIX::PDF {

/// A code of a text: its bytes as a number, and how many they are.
struct CharCode {
    std::uint32_t value = 0;
    std::uint32_t bytes = 0;  ///< 1 to 4

    // NOLINTNEXTLINE(modernize-use-nullptr): it sees what the operator expands to
    std::strong_ordering operator<=>(const CharCode&) const = default;
};

struct CharCodeHash {
    std::size_t operator()(CharCode code) const {
        return std::hash<std::uint64_t>{}(std::uint64_t{code.bytes} << 32U | code.value);
    }
};

/// Parts text into codes and tells their CIDs (PDF Reference, 5.6.4).
class CMap {
public:
    static constexpr std::size_t kMostCodeBytes = 4;

    /// Codes of two bytes that are CIDs.
    static CMap Identity(bool isVertical);

    /// The first code of `text`, which is not empty. What is no code takes as many bytes as those
    /// that begin like it.
    [[nodiscard]] CharCode FirstOf(std::string_view text) const;

    /// 0 for a code that has none.
    [[nodiscard]] std::uint16_t CIDOf(CharCode code) const;

    [[nodiscard]] bool IsVertical() const { return mIsVertical; }

    void SetVertical(bool isVertical) { mIsVertical = isVertical; }

    /// /Ordering of the character collection that its CIDs are of; may be empty.
    [[nodiscard]] const std::string& Ordering() const { return mOrdering; }

private:
    friend class CMapReader;

    struct CodeSpace {
        std::size_t bytes = 0;
        std::array<std::uint8_t, kMostCodeBytes> low{};
        std::array<std::uint8_t, kMostCodeBytes> high{};

        /// How many of the leading bytes of a text are those of a code of this space.
        [[nodiscard]] std::size_t Matches(std::string_view text) const;
    };

    std::vector<CodeSpace> mSpaces;
    std::array<RangeMap<std::uint32_t>, kMostCodeBytes> mCIDs;  // by the bytes of codes less one
    std::array<RangeMap<std::uint32_t>, kMostCodeBytes> mUndefined;
    std::string mOrdering;
    bool mIsVertical = false;
};

/// Finds the CMap that another one starts from; null for none.
using FindCMap = std::function<std::shared_ptr<const CMap>(std::string_view name)>;

/// Reads a CMap file (Technical Note 5014): code spaces, characters and ranges of CIDs, the writing
/// mode, and the one that it starts from: `base`, or null for that which it names itself. What
/// makes no sense is passed over; false where there is nothing that leads to a CID.
bool ReadCMap(std::string_view text, const std::shared_ptr<const CMap>& base, const FindCMap& find,
              CMap& result);

}  // namespace VANTIX::PDF
