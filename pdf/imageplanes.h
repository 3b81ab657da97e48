// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/codecs/linesource.h"
#include "host/graphics/rasters.h"

namespace VANTIX::PDF {

using PlaneSourcePtr = std::unique_ptr<HOST::PlaneSource>;
using PlanePointers = std::vector<std::uint8_t*>;

/// Memory for one line of planes, all of one length.
class PlaneLines {
public:
    PlaneLines(std::size_t planes, std::size_t lineBytes);

    [[nodiscard]] std::uint8_t* const* Pointers() const { return mPointers.data(); }

private:
    std::vector<std::uint8_t> mBytes;
    PlanePointers mPointers;
};

/// Told once what is wrong with the data of an image.
using FaultHandler = std::function<void(const std::string&)>;

/// The lines of a source by number, in ascending order; an earlier one than the last starts over.
class OrderedLines {
public:
    OrderedLines(HOST::LineSourcePtr lines, FaultHandler onFault);

    [[nodiscard]] const HOST::ImageFormat& Format() const { return mLines->Format(); }

    /// Null when the data have ended before line `y`.
    const std::uint8_t* Line(std::int32_t y);

private:
    HOST::LineSourcePtr mLines;
    FaultHandler mOnFault;
    std::int32_t mNext = 0;
    bool mHasEnded = false;
};

/// How the codes of one component (0 to `most` of their depth) become samples: evenly from `low` to
/// `high`, cut to 0 and `top`.
struct SampleMap {
    double low = 0.0;
    double high = 255.0;
    double top = 255.0;
    std::uint8_t white = 0xFF;  ///< byte that stands where data are missing

    [[nodiscard]] double At(double code, double most) const;
};

/// Which planes are made of an image, and how.
struct SampleLayout {
    std::int32_t width = 0;       ///< may differ from the codec's
    std::int32_t bits = 8;        ///< of the planes: those of the codes where one plane has less
                                  ///< than 8, 8, or 16 for codes of 16
    std::int32_t first = 0;       ///< component that becomes the first plane
    std::vector<SampleMap> maps;  ///< one for each plane
};

/// Planes of the interleaved samples of a codec.
class SamplePlanes : public HOST::PlaneSource {
public:
    SamplePlanes(HOST::LineSourcePtr lines, SampleLayout layout, FaultHandler onFault);

    void ReadLine(std::int32_t y, std::uint8_t* const* planes) override;

private:
    using Table = std::array<std::uint8_t, 256>;

    void MakeTables();
    void Copy(const std::uint8_t* line, std::uint8_t* plane) const;
    void Separate(const std::uint8_t* line, std::uint8_t* const* planes) const;
    void LookUp(const std::uint8_t* line, std::uint8_t* const* planes);
    void Convert16(const std::uint8_t* line, std::uint8_t* const* planes) const;

    OrderedLines mLines;
    SampleLayout mLayout;
    std::int32_t mWidth;  // of what the codec has of the planes' width
    std::int32_t mComponents;
    std::int32_t mBits;  // of the codes
    bool mIsPlain = true;
    std::vector<std::uint8_t> mMasks;  // of plain planes: 0 or 0xFF, which inverts
    std::vector<Table> mTables;        // of the others
    std::vector<std::uint8_t> mCodes;
};

/// Reads codes of 1 to 8 bits (of 16 bits the high bytes) into bytes.
void UnpackCodes(const std::uint8_t* line, std::int32_t bits, std::size_t count,
                 std::uint8_t* codes);

/// Colours of a palette in the place of one plane of 8-bit indices.
class PalettePlanes : public HOST::PlaneSource {
public:
    /// `table` holds `components` bytes an entry.
    PalettePlanes(PlaneSourcePtr indices, std::int32_t width, std::vector<std::uint8_t> table,
                  std::int32_t components);

    void ReadLine(std::int32_t y, std::uint8_t* const* planes) override;

private:
    PlaneSourcePtr mIndices;
    std::vector<std::uint8_t> mTable;
    std::size_t mComponents;
    std::vector<std::uint8_t> mLine;
};

/// Planes of 8 or 16 bits converted pixel by pixel into others of the same depth.
class ConvertedPlanes : public HOST::PlaneSource {
public:
    using Pixel = std::array<std::uint16_t, COLOR::kMaxComponents>;
    using Converter = std::function<void(const Pixel& in, Pixel& out)>;

    ConvertedPlanes(PlaneSourcePtr source, std::int32_t width, std::int32_t bits, std::size_t from,
                    std::size_t to, Converter convert);

    void ReadLine(std::int32_t y, std::uint8_t* const* planes) override;

private:
    struct Known {
        Pixel in{};
        Pixel out{};
        bool isSet = false;
    };

    const Pixel& Convert(const Pixel& in);
    template <class Sample>
    void ConvertLine(std::uint8_t* const* planes);

    PlaneSourcePtr mSource;
    std::size_t mWidth;
    std::int32_t mBits;
    std::size_t mFrom;
    std::size_t mTo;
    Converter mConvert;
    PlaneLines mLines;
    std::vector<Known> mKnown;
};

/// Planes of 8 or 16 bits enlarged by repetition.
class EnlargedPlanes : public HOST::PlaneSource {
public:
    /// From the size and depth of `from` to `width` x `height`.
    EnlargedPlanes(PlaneSourcePtr source, const HOST::RasterFormat& from, std::size_t planes,
                   std::int32_t width, std::int32_t height);

    void ReadLine(std::int32_t y, std::uint8_t* const* planes) override;

private:
    PlaneSourcePtr mSource;
    HOST::RasterFormat mFrom;
    std::int32_t mHeight;
    std::vector<std::size_t> mColumns;  // of the source, for each pixel
    std::size_t mPlanes;
    PlaneLines mLines;
    std::int32_t mHeld = -1;  // line of the source
};

/// One plane of 8 bits without any transparency.
class OpaquePlane : public HOST::PlaneSource {
public:
    explicit OpaquePlane(std::int32_t width) : mWidth(width) {}

    void ReadLine(std::int32_t /*y*/, std::uint8_t* const* planes) override {
        std::fill_n(planes[0], mWidth, std::uint8_t{0xFF});
    }

private:
    std::int32_t mWidth;
};

/// A source that several rasters read, each the same lines or later ones.
class SharedPlanes {
public:
    SharedPlanes(PlaneSourcePtr source, std::size_t planes, std::size_t lineBytes)
        : mSource(std::move(source)),
          mLast(planes, lineBytes),
          mPlanes(planes),
          mLineBytes(lineBytes) {}

    /// Reads line `y`; the last one again costs nothing.
    void ReadLine(std::int32_t y, std::uint8_t* const* planes);

private:
    PlaneSourcePtr mSource;
    PlaneLines mLast;
    std::size_t mPlanes;
    std::size_t mLineBytes;
    std::int32_t mHeld = -1;
};

/// The lines of a shared source from line `first` on.
class BandPlanes : public HOST::PlaneSource {
public:
    BandPlanes(std::shared_ptr<SharedPlanes> shared, std::int32_t first)
        : mShared(std::move(shared)), mFirst(first) {}

    void ReadLine(std::int32_t y, std::uint8_t* const* planes) override {
        mShared->ReadLine(mFirst + y, planes);
    }

private:
    std::shared_ptr<SharedPlanes> mShared;
    std::int32_t mFirst;
};

}  // namespace VANTIX::PDF
