// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <iterator>
#include <map>

namespace VANTIX::PDF {

/// Values of ranges of numbers, of which later ones replace what they cover.
template <class Value>
class RangeMap {
public:
    /// A range as it was assigned: parts of it that remain know where it began.
    struct Range {
        std::uint32_t last = 0;
        std::uint32_t origin = 0;
        Value value{};
    };

    void Assign(std::uint32_t first, std::uint32_t last, const Value& value) {
        if (last < first) {
            return;
        }
        CutAt(first);
        if (last != UINT32_MAX) {
            CutAt(last + 1);
        }
        mRanges.erase(mRanges.lower_bound(first), mRanges.upper_bound(last));
        mRanges.emplace(first, Range{last, first, value});
    }

    /// Null where nothing was assigned.
    [[nodiscard]] const Range* Find(std::uint32_t number) const {
        const auto behind = mRanges.upper_bound(number);
        if (behind == mRanges.begin()) {
            return nullptr;
        }
        const Range& range = std::prev(behind)->second;
        return number <= range.last ? &range : nullptr;
    }

private:
    /// Parts the range in which a number is, but does not begin.
    void CutAt(std::uint32_t number) {
        const auto behind = mRanges.lower_bound(number);
        if (behind == mRanges.begin()) {
            return;
        }
        Range& range = std::prev(behind)->second;
        if (range.last >= number) {
            Range rest = range;
            range.last = number - 1;
            mRanges.emplace_hint(behind, number, rest);
        }
    }

    std::map<std::uint32_t, Range> mRanges;  // by their first numbers
};

}  // namespace VANTIX::PDF
