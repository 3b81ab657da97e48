// SPDX-License-Identifier: MIT
#include "host/color/meshdata.h"

#include <algorithm>
#include <array>

#include "core/color/colorconversion.h"

namespace VANTIX::HOST {

namespace {

constexpr std::int32_t kLatticeType = 5;
constexpr std::int32_t kCoonsType = 6;
// Of a patch.
constexpr std::size_t kMostPoints = 16;
constexpr std::size_t kMostColors = 4;

template <std::size_t N>
bool IsOneOf(std::int32_t value, const std::array<std::int32_t, N>& allowed) {
    return std::find(allowed.begin(), allowed.end(), value) != allowed.end();
}

/// Reads fields of at most 32 bits, the most significant bit first. Beyond the end are zeros.
class BitReader {
public:
    explicit BitReader(std::span<const std::uint8_t> data) : mData(data) {}

    std::uint32_t Take(std::int32_t bits) {
        const auto wanted = static_cast<std::uint32_t>(bits);
        for (; mCount < wanted; mCount += 8) {
            mBits = (mBits << 8U) | (mNext < mData.size() ? mData[mNext] : 0U);
            ++mNext;
        }
        mCount -= wanted;
        return static_cast<std::uint32_t>((mBits >> mCount) & ((std::uint64_t{1} << wanted) - 1));
    }

private:
    std::span<const std::uint8_t> mData;
    std::size_t mNext = 0;
    std::uint64_t mBits = 0;
    std::uint32_t mCount = 0;  // always less than 8 between fields
};

class BitWriter {
public:
    explicit BitWriter(std::vector<std::uint8_t>& out) : mOut(out) {}

    void Put(std::uint32_t value, std::int32_t bits) {
        const auto count = static_cast<std::uint32_t>(bits);
        mBits = (mBits << count) | value;
        for (mCount += count; mCount >= 8; mCount -= 8) {
            mOut.push_back(static_cast<std::uint8_t>(mBits >> (mCount - 8)));
        }
    }

    void Align() {
        if (mCount > 0) {
            Put(0, static_cast<std::int32_t>(8 - mCount));
        }
    }

private:
    std::vector<std::uint8_t>& mOut;
    std::uint64_t mBits = 0;
    std::uint32_t mCount = 0;
};

/// One vertex or patch.
struct Record {
    std::int32_t points = 1;
    std::int32_t colors = 1;
};

bool HasFlags(const MeshLayout& layout) {
    return layout.type != kLatticeType;
}

// A patch that goes on from another shares four of its points and two of its colours.
Record RecordOf(const MeshLayout& layout, std::uint32_t flag) {
    if (layout.type < kCoonsType) {
        return {};
    }
    const std::int32_t whole = layout.type == kCoonsType ? 12 : 16;
    return flag == 0 ? Record{whole, 4} : Record{whole - 4, 2};
}

std::size_t BytesOf(const MeshLayout& layout, const Record& record, const MeshColors& colors) {
    const std::int32_t bits = (HasFlags(layout) ? layout.bitsPerFlag : 0) +
                              2 * record.points * layout.bitsPerCoordinate +
                              record.colors * colors.components * colors.bits;
    return static_cast<std::size_t>(bits + 7) / 8;
}

MeshColors ColorsOf(const MeshLayout& layout) {
    return {layout.components, layout.bitsPerComponent};
}

/// Goes from record to record; only the lower two bits of a flag count.
class MeshWalk {
public:
    MeshWalk(const MeshLayout& layout, std::span<const std::uint8_t> data)
        : mLayout(layout), mData(data) {}

    /// False when no whole record follows.
    bool Next() {
        mAt += mBytes;
        mBytes = 0;
        if (mAt >= mData.size()) {
            return false;
        }
        mFlag =
            HasFlags(mLayout) ? BitReader(mData.subspan(mAt)).Take(mLayout.bitsPerFlag) & 3U : 0;
        mRecord = RecordOf(mLayout, mFlag);
        const std::size_t bytes = BytesOf(mLayout, mRecord, ColorsOf(mLayout));
        if (bytes > mData.size() - mAt) {
            return false;
        }
        mBytes = bytes;
        return true;
    }

    [[nodiscard]] std::uint32_t Flag() const { return mFlag; }

    [[nodiscard]] const Record& Current() const { return mRecord; }

    [[nodiscard]] std::span<const std::uint8_t> Bytes() const { return mData.subspan(mAt, mBytes); }

    /// Where the current record ends.
    [[nodiscard]] std::size_t End() const { return mAt + mBytes; }

private:
    const MeshLayout& mLayout;
    std::span<const std::uint8_t> mData;
    std::size_t mAt = 0;
    std::size_t mBytes = 0;
    std::uint32_t mFlag = 0;
    Record mRecord;
};

std::size_t WholeRows(const MeshLayout& layout, std::size_t size) {
    const std::size_t row =
        BytesOf(layout, {}, ColorsOf(layout)) * static_cast<std::size_t>(layout.verticesPerRow);
    const std::size_t rows = size / row;
    return rows < 2 ? 0 : rows * row;
}

// A triangle of its own has three vertices, of which the first alone has a flag that counts.
std::size_t WholeTriangles(const MeshLayout& layout, std::span<const std::uint8_t> data) {
    std::size_t whole = 0;
    int missing = 0;
    for (MeshWalk walk(layout, data); walk.Next();) {
        if (missing == 0) {
            if (walk.Flag() > 2 || (whole == 0 && walk.Flag() != 0)) {
                break;
            }
            missing = walk.Flag() == 0 ? 3 : 1;
        }
        if (--missing == 0) {
            whole = walk.End();
        }
    }
    return whole;
}

std::size_t WholePatches(const MeshLayout& layout, std::span<const std::uint8_t> data) {
    std::size_t whole = 0;
    for (MeshWalk walk(layout, data); walk.Next(); whole = walk.End()) {
        if (whole == 0 && walk.Flag() != 0) {
            break;
        }
    }
    return whole;
}

}  // namespace

bool IsMeshLayout(const MeshLayout& layout) {
    constexpr std::array kFlagBits{2, 4, 8};
    constexpr std::array kCoordinateBits{1, 2, 4, 8, 12, 16, 24, 32};
    constexpr std::array kComponentBits{1, 2, 4, 8, 12, 16};
    constexpr std::int32_t kMostVertices = 1 << 20;
    return layout.type >= 4 && layout.type <= 7 &&
           (!HasFlags(layout) || IsOneOf(layout.bitsPerFlag, kFlagBits)) &&
           IsOneOf(layout.bitsPerCoordinate, kCoordinateBits) &&
           IsOneOf(layout.bitsPerComponent, kComponentBits) && layout.components >= 1 &&
           layout.components <= COLOR::kMaxComponents &&
           (HasFlags(layout) ||
            (layout.verticesPerRow >= 2 && layout.verticesPerRow <= kMostVertices));
}

std::size_t WholeMeshBytes(const MeshLayout& layout, std::span<const std::uint8_t> data) {
    if (!HasFlags(layout)) {
        return WholeRows(layout, data.size());
    }
    return layout.type < kCoonsType ? WholeTriangles(layout, data) : WholePatches(layout, data);
}

std::size_t RecodedMeshBytes(const MeshLayout& layout, std::span<const std::uint8_t> data,
                             const MeshColors& colors) {
    std::size_t bytes = 0;
    for (MeshWalk walk(layout, data); walk.Next();) {
        bytes += BytesOf(layout, walk.Current(), colors);
    }
    return bytes;
}

void VisitMesh(const MeshLayout& layout, std::span<const std::uint8_t> data,
               const MeshVisitor& visitor) {
    std::array<std::uint32_t, 2 * kMostPoints> coordinates{};
    std::array<std::uint32_t, kMostColors * COLOR::kMaxComponents> colors{};
    for (MeshWalk walk(layout, data); walk.Next();) {
        BitReader reader(walk.Bytes());
        const std::uint32_t flag = HasFlags(layout) ? reader.Take(layout.bitsPerFlag) : 0;
        const std::int32_t coordinateCount = 2 * walk.Current().points;
        const std::int32_t colorCount = walk.Current().colors * layout.components;
        std::generate_n(coordinates.begin(), coordinateCount,
                        [&] { return reader.Take(layout.bitsPerCoordinate); });
        std::generate_n(colors.begin(), colorCount,
                        [&] { return reader.Take(layout.bitsPerComponent); });
        visitor({flag, std::span(coordinates).first(static_cast<std::size_t>(coordinateCount)),
                 std::span(colors).first(static_cast<std::size_t>(colorCount))});
    }
}

std::vector<std::uint8_t> RecodeMesh(const MeshLayout& layout, std::span<const std::uint8_t> data,
                                     const MeshColors& colors, const MeshColorMap& map) {
    std::vector<std::uint8_t> out;
    out.reserve(RecodedMeshBytes(layout, data, colors));
    BitWriter writer(out);
    bool isMapped = true;
    std::array<std::uint32_t, COLOR::kMaxComponents> mapped{};
    VisitMesh(layout, data, [&](const MeshRecord& record) {
        if (HasFlags(layout)) {
            writer.Put(record.flag, layout.bitsPerFlag);
        }
        for (const std::uint32_t coordinate : record.coordinates) {
            writer.Put(coordinate, layout.bitsPerCoordinate);
        }
        const auto components = static_cast<std::size_t>(layout.components);
        for (std::size_t i = 0; isMapped && i < record.colors.size(); i += components) {
            isMapped = map(record.colors.data() + i, mapped.data());
            std::for_each_n(mapped.begin(), colors.components,
                            [&](std::uint32_t code) { writer.Put(code, colors.bits); });
        }
        writer.Align();
    });
    return isMapped ? out : std::vector<std::uint8_t>();
}

}  // namespace VANTIX::HOST
