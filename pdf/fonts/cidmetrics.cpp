// SPDX-License-Identifier: MIT
#include "pdf/fonts/cidmetrics.h"

#include <algorithm>
#include <array>
#include <optional>

#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace {

constexpr std::int32_t kLastCID = 0xFFFF;

std::optional<float> EmsOf(const QPDFObjectHandle& object) {
    constexpr double kThousandth = 0.001;
    const std::optional<double> number = NumberOf(object);
    return number ? std::optional(ToFloat(*number * kThousandth)) : std::nullopt;
}

/// `Count` numbers of an array from an index on, or nothing.
template <std::size_t Count>
std::optional<std::array<float, Count>> EmsAt(QPDFObjectHandle& array, int index) {
    std::array<float, Count> numbers{};
    for (std::size_t i = 0; i < Count; ++i) {
        const std::optional<float> number = EmsOf(array.getArrayItem(index + static_cast<int>(i)));
        if (!number) {
            return std::nullopt;
        }
        numbers.at(i) = *number;
    }
    return numbers;
}

/// Walks an array of "c [values …]" and "first last values", with `Count` numbers for each CID.
template <std::size_t Count, class Take>
void ReadRanges(QPDFObjectHandle array, const Take& take) {
    constexpr int kStep = static_cast<int>(Count);
    const int items = array.isArray() ? array.getArrayNItems() : 0;
    for (int i = 0; i + 1 < items;) {
        const std::int32_t first = IntegerOf(array.getArrayItem(i)).value_or(-1);
        QPDFObjectHandle next = array.getArrayItem(i + 1);
        const bool isValid = first >= 0 && first <= kLastCID;
        if (next.isArray()) {
            const int values = next.getArrayNItems();
            std::int32_t cid = first;
            for (int k = 0; isValid && k + kStep <= values && cid <= kLastCID; k += kStep, ++cid) {
                if (const auto numbers = EmsAt<Count>(next, k)) {
                    take(cid, cid, *numbers);
                }
            }
            i += 2;
            continue;
        }
        const std::int32_t last = std::min(IntegerOf(next).value_or(-1), kLastCID);
        const auto numbers = i + 2 + kStep <= items ? EmsAt<Count>(array, i + 2) : std::nullopt;
        if (isValid && last >= first && numbers) {
            take(first, last, *numbers);
        }
        i += 2 + kStep;
    }
}

}  // namespace

CIDMetrics::CIDMetrics(const QPDFObjectHandle& font)
    : mWidth(EmsOf(Get(font, "/DW")).value_or(1.0F)) {
    ReadRanges<1>(Get(font, "/W"), [this](std::int32_t first, std::int32_t last, const auto& v) {
        mWidths.Assign(static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(last), v[0]);
    });
    QPDFObjectHandle vertical = Get(font, "/DW2");
    if (vertical.isArray() && vertical.getArrayNItems() == 2) {
        if (const auto numbers = EmsAt<2>(vertical, 0)) {
            mOriginY = (*numbers)[0];
            mAdvance = (*numbers)[1];
        }
    }
    ReadRanges<3>(Get(font, "/W2"), [this](std::int32_t first, std::int32_t last, const auto& v) {
        mVertical.Assign(static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(last),
                         {v[0], v[1], v[2]});
    });
}

void CIDMetrics::Apply(std::uint16_t cid, HOST::CIDCharacter& character) const {
    const auto* width = mWidths.Find(cid);
    character.width = width == nullptr ? mWidth : width->value;
    const auto* vertical = mVertical.Find(cid);
    const Vertical metrics = vertical == nullptr
                                 ? Vertical{mAdvance, character.width / 2.0F, mOriginY}
                                 : vertical->value;
    character.verticalAdvance = metrics.advance;
    character.originX = metrics.x;
    character.originY = metrics.y;
}

}  // namespace VANTIX::PDF
