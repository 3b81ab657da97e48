// SPDX-License-Identifier: MIT
#include "host/codecs/faxdecoder.h"

#include <algorithm>

namespace VANTIX::HOST {

namespace {

/// Widths behind the last change: the search looks at two of them beyond the one that it is at.
constexpr std::size_t kEndMarks = 4;

void SetBits(std::uint8_t* line, std::int32_t from, std::int32_t to) {
    const auto first = static_cast<std::size_t>(from) / 8;
    const auto last = static_cast<std::size_t>(to) / 8;
    const auto head = static_cast<std::uint8_t>(0xFF >> from % 8);
    const auto tail = static_cast<std::uint8_t>(0xFF00 >> to % 8);
    if (first == last) {
        line[first] |= head & tail;
        return;
    }
    line[first] |= head;
    std::fill(line + first + 1, line + last, std::uint8_t{0xFF});
    if (tail != 0) {
        line[last] |= tail;
    }
}

}  // namespace

FaxDecoder::FaxDecoder(std::span<const std::uint8_t> data, std::int32_t width)
    : mBits(data),
      mWidth(width),
      mChanges(static_cast<std::size_t>(width) + 1 + kEndMarks, width),
      mReference(mChanges) {}

void FaxDecoder::StartLine() {
    mChanges.swap(mReference);
    mCount = 0;
    mNext = 0;
    mAt = -1;
    mIsBlack = false;
}

bool FaxDecoder::EndLine(bool isSound) {
    if (!isSound && mIsBlack) {
        AddChange(std::max(mAt, 0));
    }
    std::fill_n(mChanges.begin() + static_cast<std::ptrdiff_t>(mCount), kEndMarks, mWidth);
    return isSound;
}

/// Changes rise from one to the next: a run of no length takes the one before it back.
void FaxDecoder::AddChange(std::int32_t at) {
    if (mCount > 0 && mChanges[mCount - 1] == at) {
        --mCount;
    } else if (at < mWidth) {
        mChanges[mCount++] = at;
    }
    mIsBlack = !mIsBlack;
    mAt = at;
}

bool FaxDecoder::DecodeRun(std::int32_t& at) {
    const FAX::RunTable& runs = mIsBlack ? FAX::kBlackRuns : FAX::kWhiteRuns;
    FAX::Code code;
    do {
        code = runs[mBits.Peek(FAX::kRunBits)];
        if (code.bits == 0 || code.value > mWidth - at) {
            return false;
        }
        mBits.Skip(code.bits);
        at += code.value;
    } while (code.value >= 64);
    return true;
}

bool FaxDecoder::DecodeOneDimensional() {
    StartLine();
    mAt = 0;
    while (mAt < mWidth) {
        std::int32_t at = mAt;
        if (!DecodeRun(at)) {
            return EndLine(false);
        }
        AddChange(at);
    }
    return EndLine(true);
}

/// Puts `mNext` on b1 of the recommendation: the first change of the reference right of the place
/// that was reached, to the colour that is not the current one.
void FaxDecoder::FindReference() {
    if ((mNext % 2 != 0) != mIsBlack) {
        mNext = mNext > 0 ? mNext - 1 : 1;
    }
    while (mReference[mNext] <= mAt && mReference[mNext] < mWidth) {
        mNext += 2;
    }
}

bool FaxDecoder::DecodeMode() {
    const FAX::Code mode = FAX::kModes[mBits.Peek(FAX::kModeBits)];
    if (mode.bits == 0) {
        return false;
    }
    mBits.Skip(mode.bits);
    if (mode.value == FAX::kHorizontal) {
        std::int32_t at = std::max(mAt, 0);
        for (int run = 0; run < 2; ++run) {
            if (!DecodeRun(at)) {
                return false;
            }
            AddChange(at);
        }
        return true;
    }
    FindReference();
    if (mode.value == FAX::kPass) {
        mAt = mReference[mNext + 1];
        return true;
    }
    const std::int32_t at = mReference[mNext] + mode.value;
    if (at < std::max(mAt, 0) || at > mWidth) {
        return false;
    }
    AddChange(at);
    return true;
}

bool FaxDecoder::DecodeTwoDimensional() {
    StartLine();
    while (mAt < mWidth) {
        if (!DecodeMode()) {
            return EndLine(false);
        }
    }
    return EndLine(true);
}

void FaxDecoder::Paint(std::uint8_t* line) const {
    for (std::size_t i = 0; mChanges[i] < mWidth; i += 2) {
        SetBits(line, mChanges[i], mChanges[i + 1]);
    }
}

}  // namespace VANTIX::HOST
