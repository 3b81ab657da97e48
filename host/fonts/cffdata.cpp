// SPDX-License-Identifier: MIT
#include "host/fonts/cffdata.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace VANTIX::HOST {
namespace {

/// Larger than any offset that is used, smaller than what a conversion could not hold.
constexpr double kLargestOffset = 1U << 31U;

constexpr std::size_t kMostOperands = 64;

/// Decimal digits in halves of bytes (Technical Note 5176, table 5).
double ReadReal(ByteView bytes, std::size_t& position) {
    constexpr std::array<std::string_view, 15> kNibbles = {"0", "1", "2", "3", "4",  "5", "6", "7",
                                                           "8", "9", ".", "e", "e-", "",  "-"};
    constexpr std::size_t kLongest = 64;
    constexpr unsigned kEnd = 15;
    std::string text;
    while (position < bytes.size()) {
        const unsigned byte = bytes[position++];
        for (const unsigned nibble : {byte >> 4U, byte & 15U}) {
            if (nibble == kEnd || text.size() > kLongest) {
                double value = 0;
                std::from_chars(text.data(), text.data() + text.size(), value);
                return std::isfinite(value) ? value : 0;
            }
            text += kNibbles.at(nibble);
        }
    }
    return 0;
}

/// The operand at `position`, which moves behind it; nothing for one that is cut or none.
std::optional<double> ReadOperand(ByteView bytes, std::size_t& position) {
    constexpr std::uint8_t kShort = 28;
    constexpr std::uint8_t kLong = 29;
    constexpr std::uint8_t kReal = 30;
    constexpr int kOneByte = 139;
    const std::uint8_t first = bytes[position];
    const std::size_t length = first == kShort ? 3 : (first == kLong ? 5 : (first >= 247 ? 2 : 1));
    if (bytes.size() - position < length || first == 31 || first == 255) {
        return std::nullopt;
    }
    const std::size_t at = position + 1;
    position += length;
    switch (first) {
        case kShort:
            return static_cast<std::int16_t>(ReadU16(bytes, at));
        case kLong:
            return static_cast<std::int32_t>(ReadU32(bytes, at));
        case kReal:
            return ReadReal(bytes, position);
        default:
            break;
    }
    if (first < 247) {
        return first - kOneByte;
    }
    return first < 251 ? (first - 247) * 256 + bytes[at] + 108
                       : -(first - 251) * 256 - bytes[at] - 108;
}

}  // namespace

bool CffIndex::Read(ByteView file, std::size_t& offset) {
    *this = {};
    if (offset > file.size() || file.size() - offset < 2) {
        return false;
    }
    const std::uint32_t count = ReadU16(file, offset);
    if (count == 0) {
        offset += 2;
        return true;
    }
    ByteView rest = file.subspan(offset + 2);
    const std::size_t size = rest.empty() ? 0 : rest[0];
    const std::size_t offsets = (std::size_t{count} + 1) * size;
    if (size < 1 || size > 4 || rest.size() - 1 < offsets) {
        return false;
    }
    mCount = count;
    mOffsetSize = size;
    mOffsets = rest.subspan(1, offsets);
    mData = rest.subspan(1 + offsets);
    const std::size_t end = OffsetAt(count);
    mData = mData.first(std::min(mData.size(), end == 0 ? 0 : end - 1));
    offset += 3 + offsets + mData.size();
    return true;
}

std::size_t CffIndex::OffsetAt(std::size_t entry) const {
    std::size_t value = 0;
    for (const std::uint8_t byte : mOffsets.subspan(entry * mOffsetSize, mOffsetSize)) {
        value = value << 8U | byte;
    }
    return value;
}

ByteView CffIndex::operator[](std::size_t entry) const {
    if (entry >= mCount) {
        return {};
    }
    // Offsets count from the byte before the data.
    const std::size_t begin = OffsetAt(entry);
    const std::size_t end = OffsetAt(entry + 1);
    if (begin < 1 || end < begin || begin - 1 > mData.size()) {
        return {};
    }
    return mData.subspan(begin - 1, std::min(end - begin, mData.size() - (begin - 1)));
}

CffDict::CffDict(ByteView bytes) {
    constexpr std::uint8_t kLastOperator = 21;
    constexpr std::uint8_t kEscape = 12;
    std::vector<double> values;
    std::size_t start = 0;
    for (std::size_t position = 0; position < bytes.size();) {
        const std::uint8_t first = bytes[position];
        if (first > kLastOperator) {
            const std::optional<double> value = ReadOperand(bytes, position);
            if (!value || values.size() == kMostOperands) {
                return;
            }
            values.push_back(*value);
            continue;
        }
        const ByteView operands = bytes.subspan(start, position - start);
        ++position;
        unsigned key = first;
        if (first == kEscape) {
            if (position == bytes.size()) {
                return;
            }
            key = unsigned{kEscape} << 8U | bytes[position++];
        }
        mEntries.push_back(
            {CffOperator{static_cast<std::uint16_t>(key)}, std::exchange(values, {}), operands});
        start = position;
    }
}

const std::vector<double>* CffDict::Find(CffOperator key) const {
    const auto found = std::find_if(mEntries.rbegin(), mEntries.rend(),
                                    [key](const Entry& entry) { return entry.key == key; });
    return found == mEntries.rend() ? nullptr : &found->values;
}

double CffDict::Number(CffOperator key, double otherwise) const {
    const std::vector<double>* values = Find(key);
    return values == nullptr || values->empty() ? otherwise : values->back();
}

std::size_t CffDict::Offset(CffOperator key) const {
    return static_cast<std::size_t>(std::clamp(Number(key, 0), 0.0, kLargestOffset));
}

std::vector<float> CffDict::Sums(CffOperator key, std::size_t most) const {
    std::vector<float> sums;
    const std::vector<double>* values = Find(key);
    double sum = 0;
    for (std::size_t i = 0; values != nullptr && i < std::min(values->size(), most); ++i) {
        sum += (*values)[i];
        sums.push_back(static_cast<float>(sum));
    }
    return sums;
}

}  // namespace VANTIX::HOST
