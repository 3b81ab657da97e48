// SPDX-License-Identifier: MIT
#include "pdf/imageplanes.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace VANTIX::PDF {

namespace {

std::size_t BytesOf(std::int32_t width, std::int32_t bits) {
    return (static_cast<std::size_t>(width) * static_cast<std::size_t>(bits) + 7) / 8;
}

template <std::size_t Count>
void SeparateBytes(const std::uint8_t* line, std::size_t width, const std::uint8_t* masks,
                   std::uint8_t* const* planes) {
    std::array<std::uint8_t*, Count> out{};
    std::array<std::uint8_t, Count> mask{};
    std::copy_n(planes, Count, out.begin());
    std::copy_n(masks, Count, mask.begin());
    for (std::size_t x = 0; x < width; ++x, line += Count) {
        for (std::size_t i = 0; i < Count; ++i) {
            out[i][x] = line[i] ^ mask[i];
        }
    }
}

}  // namespace

PlaneLines::PlaneLines(std::size_t planes, std::size_t lineBytes) : mBytes(planes * lineBytes) {
    for (std::size_t i = 0; i < planes; ++i) {
        mPointers.push_back(mBytes.data() + i * lineBytes);
    }
}

OrderedLines::OrderedLines(HOST::LineSourcePtr lines, FaultHandler onFault)
    : mLines(std::move(lines)), mOnFault(std::move(onFault)) {}

const std::uint8_t* OrderedLines::Line(std::int32_t y) {
    if (y < mNext) {
        mLines->Rewind();
        mNext = 0;
        mHasEnded = false;
    }
    const std::uint8_t* line = nullptr;
    while (!mHasEnded && mNext <= y) {
        line = mLines->NextLine();
        mHasEnded = line == nullptr;
        ++mNext;
    }
    if (mHasEnded && mOnFault) {
        mOnFault(mLines->Error().empty() ? "its data end early" : mLines->Error());
        mOnFault = nullptr;
    }
    return line;
}

double SampleMap::At(double code, double most) const {
    return std::clamp(std::round(low + (high - low) * code / most), 0.0, top);
}

void UnpackCodes(const std::uint8_t* line, std::int32_t bits, std::size_t count,
                 std::uint8_t* codes) {
    if (bits >= 8) {
        const std::size_t step = bits == 16 ? 2 : 1;
        for (std::size_t i = 0; i < count; ++i) {
            codes[i] = line[i * step];
        }
        return;
    }
    const auto depth = static_cast<unsigned>(bits);
    const unsigned most = (1U << depth) - 1U;
    for (std::size_t i = 0; i < count; ++line) {
        for (unsigned shift = 8; shift > 0 && i < count; ++i) {
            shift -= depth;
            codes[i] = static_cast<std::uint8_t>((*line >> shift) & most);
        }
    }
}

SamplePlanes::SamplePlanes(HOST::LineSourcePtr lines, SampleLayout layout, FaultHandler onFault)
    : mLines(std::move(lines), std::move(onFault)),
      mLayout(std::move(layout)),
      mWidth(std::min(mLayout.width, mLines.Format().width)),
      mComponents(mLines.Format().components),
      mBits(mLines.Format().bits) {
    const double most = (1U << static_cast<unsigned>(mBits)) - 1U;
    for (const SampleMap& map : mLayout.maps) {
        const bool isStraight = map.low == 0.0 && map.high == most;
        const bool isInverted = map.low == most && map.high == 0.0;
        mIsPlain = mIsPlain && (isStraight || isInverted) && map.top >= most;
        mMasks.push_back(isInverted ? 0xFF : 0);
    }
    mIsPlain = mIsPlain && mBits == mLayout.bits &&
               (mBits >= 8 || (mComponents == 1 && mLayout.maps.size() == 1));
    if (!mIsPlain && mLayout.bits == 8) {
        MakeTables();
    }
}

void SamplePlanes::MakeTables() {
    const unsigned most = (1U << static_cast<unsigned>(std::min(mBits, 8))) - 1U;
    for (const SampleMap& map : mLayout.maps) {
        Table& table = mTables.emplace_back();
        for (unsigned code = 0; code <= most; ++code) {
            table[code] = static_cast<std::uint8_t>(map.At(code, most));
        }
    }
    mCodes.resize(static_cast<std::size_t>(mWidth) * static_cast<std::size_t>(mComponents));
}

void SamplePlanes::ReadLine(std::int32_t y, std::uint8_t* const* planes) {
    const std::uint8_t* line = mLines.Line(y);
    if (line == nullptr || mWidth < mLayout.width) {
        for (std::size_t i = 0; i < mLayout.maps.size(); ++i) {
            std::memset(planes[i], mLayout.maps[i].white, BytesOf(mLayout.width, mLayout.bits));
        }
    }
    if (line == nullptr) {
        return;
    }
    if (mLayout.bits == 16) {
        Convert16(line, planes);
    } else if (!mIsPlain) {
        LookUp(line, planes);
    } else if (mComponents == 1) {
        Copy(line, planes[0]);
    } else {
        Separate(line, planes);
    }
}

void SamplePlanes::Copy(const std::uint8_t* line, std::uint8_t* plane) const {
    const std::size_t bits = static_cast<std::size_t>(mWidth) * static_cast<std::size_t>(mBits);
    const std::uint8_t mask = mMasks[0];
    std::transform(line, line + bits / 8, plane,
                   [mask](std::uint8_t byte) { return static_cast<std::uint8_t>(byte ^ mask); });
    if (bits % 8 != 0) {
        const auto valid = static_cast<std::uint8_t>(0xFF00U >> (bits % 8));
        const unsigned last = (line[bits / 8] ^ mask) & valid;
        plane[bits / 8] =
            static_cast<std::uint8_t>(last | (mLayout.maps[0].white & ~valid & 0xFFU));
    }
}

void SamplePlanes::Separate(const std::uint8_t* line, std::uint8_t* const* planes) const {
    const auto width = static_cast<std::size_t>(mWidth);
    const auto step = static_cast<std::size_t>(mComponents);
    if (step == 3 && mMasks.size() == 3) {
        SeparateBytes<3>(line, width, mMasks.data(), planes);
        return;
    }
    if (step == 4 && mMasks.size() == 4) {
        SeparateBytes<4>(line, width, mMasks.data(), planes);
        return;
    }
    for (std::size_t i = 0; i < mMasks.size(); ++i) {
        const std::uint8_t* code = line + static_cast<std::size_t>(mLayout.first) + i;
        for (std::size_t x = 0; x < width; ++x, code += step) {
            planes[i][x] = *code ^ mMasks[i];
        }
    }
}

void SamplePlanes::LookUp(const std::uint8_t* line, std::uint8_t* const* planes) {
    UnpackCodes(line, mBits, mCodes.size(), mCodes.data());
    const auto step = static_cast<std::size_t>(mComponents);
    for (std::size_t i = 0; i < mTables.size(); ++i) {
        const Table& table = mTables[i];
        const std::uint8_t* code = mCodes.data() + static_cast<std::size_t>(mLayout.first) + i;
        for (std::size_t x = 0; x < static_cast<std::size_t>(mWidth); ++x, code += step) {
            planes[i][x] = table[*code];
        }
    }
}

void SamplePlanes::Convert16(const std::uint8_t* line, std::uint8_t* const* planes) const {
    const std::size_t step = 2 * static_cast<std::size_t>(mComponents);
    for (std::size_t i = 0; i < mLayout.maps.size(); ++i) {
        const std::uint8_t* code = line + 2 * (static_cast<std::size_t>(mLayout.first) + i);
        const SampleMap& map = mLayout.maps[i];
        const unsigned mask = mMasks[i] * 0x101U;
        for (std::size_t x = 0; x < static_cast<std::size_t>(mWidth); ++x, code += step) {
            const unsigned value = (static_cast<unsigned>(code[0]) << 8U) | code[1];
            const auto word =
                static_cast<std::uint16_t>(mIsPlain ? value ^ mask : map.At(value, 65535.0));
            std::memcpy(planes[i] + 2 * x, &word, sizeof word);
        }
    }
}

PalettePlanes::PalettePlanes(PlaneSourcePtr indices, std::int32_t width,
                             std::vector<std::uint8_t> table, std::int32_t components)
    : mIndices(std::move(indices)),
      mTable(std::move(table)),
      mComponents(static_cast<std::size_t>(components)),
      mLine(static_cast<std::size_t>(width)) {
    mTable.resize(256 * mComponents);
}

void PalettePlanes::ReadLine(std::int32_t y, std::uint8_t* const* planes) {
    std::uint8_t* const line = mLine.data();
    mIndices->ReadLine(y, &line);
    for (std::size_t i = 0; i < mComponents; ++i) {
        for (std::size_t x = 0; x < mLine.size(); ++x) {
            planes[i][x] = mTable[mLine[x] * mComponents + i];
        }
    }
}

ConvertedPlanes::ConvertedPlanes(PlaneSourcePtr source, std::int32_t width, std::int32_t bits,
                                 std::size_t from, std::size_t to, Converter convert)
    : mSource(std::move(source)),
      mWidth(static_cast<std::size_t>(width)),
      mBits(bits),
      mFrom(from),
      mTo(to),
      mConvert(std::move(convert)),
      mLines(from, BytesOf(width, bits)),
      mKnown(4096) {}

// Pictures repeat their colours: a table of the last conversions spares most of them.
const ConvertedPlanes::Pixel& ConvertedPlanes::Convert(const Pixel& in) {
    std::uint32_t hash = 2166136261U;
    for (std::size_t i = 0; i < mFrom; ++i) {
        hash = (hash ^ in[i]) * 16777619U;
    }
    Known& known = mKnown[(hash ^ (hash >> 12U)) % mKnown.size()];
    if (!known.isSet || known.in != in) {
        known.in = in;
        known.isSet = true;
        mConvert(in, known.out);
    }
    return known.out;
}

void ConvertedPlanes::ReadLine(std::int32_t y, std::uint8_t* const* planes) {
    mSource->ReadLine(y, mLines.Pointers());
    mBits == 16 ? ConvertLine<std::uint16_t>(planes) : ConvertLine<std::uint8_t>(planes);
}

template <class Sample>
void ConvertedPlanes::ConvertLine(std::uint8_t* const* planes) {
    Pixel in{};
    for (std::size_t x = 0; x < mWidth; ++x) {
        for (std::size_t i = 0; i < mFrom; ++i) {
            Sample sample = 0;
            std::memcpy(&sample, mLines.Pointers()[i] + x * sizeof sample, sizeof sample);
            in[i] = sample;
        }
        const Pixel& out = Convert(in);
        for (std::size_t i = 0; i < mTo; ++i) {
            const auto sample = static_cast<Sample>(out[i]);
            std::memcpy(planes[i] + x * sizeof sample, &sample, sizeof sample);
        }
    }
}

EnlargedPlanes::EnlargedPlanes(PlaneSourcePtr source, const HOST::RasterFormat& from,
                               std::size_t planes, std::int32_t width, std::int32_t height)
    : mSource(std::move(source)),
      mFrom(from),
      mHeight(height),
      mPlanes(planes),
      mLines(planes, BytesOf(from.width, from.bits)) {
    for (std::int32_t x = 0; x < width; ++x) {
        mColumns.push_back(static_cast<std::size_t>(std::int64_t{x} * from.width / width));
    }
}

void EnlargedPlanes::ReadLine(std::int32_t y, std::uint8_t* const* planes) {
    const auto line = static_cast<std::int32_t>(std::int64_t{y} * mFrom.height / mHeight);
    if (line != mHeld) {
        mSource->ReadLine(line, mLines.Pointers());
        mHeld = line;
    }
    const std::size_t bytes = mFrom.bits == 16 ? 2 : 1;
    for (std::size_t i = 0; i < mPlanes; ++i) {
        const std::uint8_t* in = mLines.Pointers()[i];
        std::uint8_t* out = planes[i];
        for (const std::size_t column : mColumns) {
            std::memcpy(out, in + column * bytes, bytes);
            out += bytes;
        }
    }
}

void SharedPlanes::ReadLine(std::int32_t y, std::uint8_t* const* planes) {
    if (y != mHeld) {
        mSource->ReadLine(y, mLast.Pointers());
        mHeld = y;
    }
    for (std::size_t i = 0; i < mPlanes; ++i) {
        std::memcpy(planes[i], mLast.Pointers()[i], mLineBytes);
    }
}

}  // namespace VANTIX::PDF
