// SPDX-License-Identifier: MIT
#include "pdf/imagemasks.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

namespace VANTIX::PDF {

namespace {

// A mask of more boxes than these would take longer to print than anybody waits.
constexpr std::size_t kMostBoxes = std::size_t{1} << 22U;

std::uint32_t CodeAt(const std::uint8_t* line, std::int32_t bits, std::size_t index) {
    if (bits == 16) {
        return (std::uint32_t{line[2 * index]} << 8U) | line[2 * index + 1];
    }
    const auto depth = static_cast<std::size_t>(bits);
    const std::size_t bit = index * depth;
    return (static_cast<std::uint32_t>(line[bit / 8]) >> (8 - depth - bit % 8)) &
           ((1U << depth) - 1U);
}

// Rounded division by 255 of a product of two bytes or of a byte and a word.
constexpr unsigned DivideBy255(unsigned product) {
    return (product + 127U) / 255U;
}

}  // namespace

void OpaqueBoxes::AddLine(const std::uint8_t* opacity) {
    if (mLines > 0 && std::memcmp(opacity, mLast.data(), mLast.size()) == 0) {
        ++mLines;
        return;
    }
    FindRuns(opacity);
    Join();
    std::memcpy(mLast.data(), opacity, mLast.size());
    ++mLines;
}

void OpaqueBoxes::FindRuns(const std::uint8_t* opacity) {
    mRuns.clear();
    const std::uint8_t* const end = opacity + mLast.size();
    const std::uint8_t* at = opacity;
    while (at != end) {
        const auto* start = static_cast<const std::uint8_t*>(
            std::memchr(at, 0xFF, static_cast<std::size_t>(end - at)));
        if (start == nullptr) {
            return;
        }
        at = std::find_if(start, end, [](std::uint8_t byte) { return byte != 0xFF; });
        mRuns.push_back({static_cast<std::int32_t>(start - opacity),
                         static_cast<std::int32_t>(at - opacity), mLines, 0});
    }
}

// Both lists ascend: an open box goes on when the line has just its run.
void OpaqueBoxes::Join() {
    mNext.clear();
    auto run = mRuns.begin();
    for (PixelBox& box : mOpen) {
        while (run != mRuns.end() && run->left < box.left) {
            mNext.push_back(*run++);
        }
        if (run != mRuns.end() && run->left == box.left && run->right == box.right) {
            mNext.push_back(box);
            ++run;
        } else {
            box.bottom = mLines;
            mClosed.push_back(box);
        }
    }
    mNext.insert(mNext.end(), run, mRuns.end());
    mOpen.swap(mNext);
}

std::vector<PixelBox> OpaqueBoxes::Take() {
    for (PixelBox& box : mOpen) {
        box.bottom = mLines;
        mClosed.push_back(box);
    }
    mOpen.clear();
    std::fill(mLast.begin(), mLast.end(), std::uint8_t{0});
    return std::exchange(mClosed, {});
}

std::size_t OpaqueBoxes::DropClosed() {
    const std::size_t count = mClosed.size();
    mClosed.clear();
    return count;
}

MaskKind Survey(const ImageMask& mask) {
    const auto width = static_cast<std::size_t>(mask.width);
    std::vector<std::uint8_t> line(width);
    std::uint8_t* const plane = line.data();
    OpaqueBoxes boxes(mask.width);
    std::size_t count = 0;
    bool hasClear = false;
    bool hasOpaque = false;
    for (std::int32_t y = 0; y < mask.height; ++y) {
        mask.opacity->ReadLine(y, &plane);
        for (const std::uint8_t byte : line) {
            hasClear = hasClear || byte == 0;
            hasOpaque = hasOpaque || byte == 0xFF;
        }
        const bool isHard = std::all_of(
            line.begin(), line.end(), [](std::uint8_t byte) { return byte == 0 || byte == 0xFF; });
        boxes.AddLine(plane);
        count += boxes.DropClosed();
        if (!isHard || count + boxes.Count() > kMostBoxes) {
            return MaskKind::kSoft;
        }
    }
    if (!hasClear) {
        return MaskKind::kOpaque;
    }
    return hasOpaque ? MaskKind::kBoxes : MaskKind::kClear;
}

ColorKeyPlanes::ColorKeyPlanes(HOST::LineSourcePtr lines, std::int32_t width,
                               std::vector<std::uint32_t> ranges, FaultHandler onFault)
    : mLines(std::move(lines), std::move(onFault)), mWidth(width), mRanges(std::move(ranges)) {}

void ColorKeyPlanes::ReadLine(std::int32_t y, std::uint8_t* const* planes) {
    const HOST::ImageFormat& format = mLines.Format();
    const auto components = static_cast<std::size_t>(format.components);
    const std::size_t keyed = std::min(components, mRanges.size() / 2);
    const std::uint8_t* line = mLines.Line(y);
    std::memset(planes[0], 0xFF, static_cast<std::size_t>(mWidth));
    const std::int32_t width = line == nullptr ? 0 : std::min(mWidth, format.width);
    for (std::size_t x = 0; x < static_cast<std::size_t>(width); ++x) {
        bool isMasked = true;
        for (std::size_t i = 0; i < keyed && isMasked; ++i) {
            const std::uint32_t code = CodeAt(line, format.bits, x * components + i);
            isMasked = code >= mRanges[2 * i] && code <= mRanges[2 * i + 1];
        }
        planes[0][x] = isMasked ? 0 : 0xFF;
    }
}

BitPlanes::BitPlanes(PlaneSourcePtr opacity, std::int32_t width)
    : mOpacity(std::move(opacity)), mLine(static_cast<std::size_t>(width)) {}

void BitPlanes::ReadLine(std::int32_t y, std::uint8_t* const* planes) {
    std::uint8_t* const line = mLine.data();
    mOpacity->ReadLine(y, &line);
    std::memset(planes[0], 0, (mLine.size() + 7) / 8);
    for (std::size_t x = 0; x < mLine.size(); ++x) {
        planes[0][x / 8] |= static_cast<std::uint8_t>((mLine[x] >> 7U) << (7 - x % 8));
    }
}

MaskedPlanes::MaskedPlanes(PlaneSourcePtr image, PlaneSourcePtr opacity, const Layout& layout,
                           std::vector<float> matte)
    : mImage(std::move(image)),
      mOpacity(std::move(opacity)),
      mLayout(layout),
      mMatte(std::move(matte)),
      mLine(static_cast<std::size_t>(layout.width)) {}

void MaskedPlanes::ReadLine(std::int32_t y, std::uint8_t* const* planes) {
    std::uint8_t* const line = mLine.data();
    mImage->ReadLine(y, planes);
    mOpacity->ReadLine(y, &line);
    const bool isWide = mLayout.bits == 16;
    for (std::size_t i = 0; i < mLayout.planes; ++i) {
        if (i < mMatte.size()) {
            isWide ? RemoveMatte<std::uint16_t>(planes[i], mMatte[i])
                   : RemoveMatte<std::uint8_t>(planes[i], mMatte[i]);
        }
        if (mLayout.composites) {
            isWide ? Composite<std::uint16_t>(planes[i]) : Composite<std::uint8_t>(planes[i]);
        }
    }
}

// c = m + (c' - m) / alpha (PDF Reference, 7.5.4).
template <class Sample>
void MaskedPlanes::RemoveMatte(std::uint8_t* plane, float matte) const {
    constexpr auto kTop = static_cast<float>(std::numeric_limits<Sample>::max());
    const float base = matte * kTop / 255.0F;
    for (std::size_t x = 0; x < mLine.size(); ++x, plane += sizeof(Sample)) {
        if (mLine[x] == 0 || mLine[x] == 0xFF) {
            continue;
        }
        Sample sample = 0;
        std::memcpy(&sample, plane, sizeof sample);
        const float part = 255.0F / static_cast<float>(mLine[x]);
        const float value = base + (static_cast<float>(sample) - base) * part;
        sample = static_cast<Sample>(std::lround(std::clamp(value, 0.0F, kTop)));
        std::memcpy(plane, &sample, sizeof sample);
    }
}

template <class Sample>
void MaskedPlanes::Composite(std::uint8_t* plane) const {
    constexpr unsigned kTop = std::numeric_limits<Sample>::max();
    const unsigned paper = mLayout.paper == 0 ? 0 : kTop;
    for (std::size_t x = 0; x < mLine.size(); ++x, plane += sizeof(Sample)) {
        Sample sample = 0;
        std::memcpy(&sample, plane, sizeof sample);
        // Opacity shrinks the distance from the paper, which is the sample or its complement.
        const unsigned distance = DivideBy255((sample ^ paper) * mLine[x]);
        sample = static_cast<Sample>(distance ^ paper);
        std::memcpy(plane, &sample, sizeof sample);
    }
}

}  // namespace VANTIX::PDF
