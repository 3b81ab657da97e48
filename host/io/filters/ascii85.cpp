// SPDX-License-Identifier: MIT
#include "host/io/filters/ascii85.h"

#include <algorithm>

namespace VANTIX::HOST {

namespace {

// A line is closed by the first group that reaches this column, the end mark fits behind it.
constexpr std::size_t kFullColumn = 73;

}  // namespace

void Ascii85Filter::EmitText(const std::uint8_t* text, std::size_t count) {
    if (mColumn == 0 && text[0] == '%') {
        Emit(' ');
        ++mColumn;
    }
    Emit(text, count);
    mColumn += count;
    if (mColumn >= kFullColumn) {
        Emit('\n');
        mColumn = 0;
    }
}

void Ascii85Filter::EmitGroup(const std::uint8_t* group, std::size_t count) {
    std::uint32_t value = (std::uint32_t{group[0]} << 24U) | (std::uint32_t{group[1]} << 16U) |
                          (std::uint32_t{group[2]} << 8U) | group[3];
    if (value == 0 && count == 4) {
        const std::uint8_t zeros = 'z';
        EmitText(&zeros, 1);
        return;
    }
    std::array<std::uint8_t, 5> digits{};
    for (std::size_t i = digits.size(); i-- > 0;) {
        digits[i] = static_cast<std::uint8_t>('!' + value % 85);
        value /= 85;
    }
    EmitText(digits.data(), count + 1);
}

Status Ascii85Filter::Put(std::span<const std::uint8_t> bytes) {
    if (mHeld > 0) {
        const std::size_t taken = std::min(mGroup.size() - mHeld, bytes.size());
        std::copy_n(bytes.begin(), taken, mGroup.begin() + static_cast<std::ptrdiff_t>(mHeld));
        mHeld += taken;
        bytes = bytes.subspan(taken);
        if (mHeld < mGroup.size()) {
            return CurrentStatus();
        }
        EmitGroup(mGroup.data(), mGroup.size());
    }
    for (; bytes.size() >= mGroup.size(); bytes = bytes.subspan(mGroup.size())) {
        EmitGroup(bytes.data(), mGroup.size());
    }
    std::copy(bytes.begin(), bytes.end(), mGroup.begin());
    mHeld = bytes.size();
    return CurrentStatus();
}

Status Ascii85Filter::End() {
    if (mHeld > 0) {
        std::fill(mGroup.begin() + static_cast<std::ptrdiff_t>(mHeld), mGroup.end(),
                  std::uint8_t{0});
        EmitGroup(mGroup.data(), mHeld);
        mHeld = 0;
    }
    Emit("~>\n", 3);
    mColumn = 0;
    return FlushOut();
}

}  // namespace VANTIX::HOST
