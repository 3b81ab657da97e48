// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "pdf/imageplanes.h"

namespace VANTIX::PDF {

/// A mask as one plane of 8-bit opacity, of a size of its own.
struct ImageMask {
    PlaneSourcePtr opacity;
    std::int32_t width = 0;
    std::int32_t height = 0;
    /// The colour with which the image's was mixed by its opacity, in host form as parts of 255;
    /// empty for none.
    std::vector<float> matte;
};

/// Whole pixels in a mask, from the left and from the top.
struct PixelBox {
    std::int32_t left = 0;
    std::int32_t right = 0;
    std::int32_t top = 0;
    std::int32_t bottom = 0;
};

/// Gathers the opaque pixels of lines into rectangles: runs, joined where they are equal from line
/// to line.
class OpaqueBoxes {
public:
    explicit OpaqueBoxes(std::int32_t width) : mLast(static_cast<std::size_t>(width)) {}

    /// Takes the next line, in which every byte but 0xFF counts as transparent.
    void AddLine(const std::uint8_t* opacity);

    /// How many boxes there are by now.
    [[nodiscard]] std::size_t Count() const { return mClosed.size() + mOpen.size(); }

    /// All boxes up to the last line; begins anew after it.
    std::vector<PixelBox> Take();

    /// Forgets boxes that are closed, so that only their number is left.
    std::size_t DropClosed();

private:
    void FindRuns(const std::uint8_t* opacity);
    void Join();

    std::vector<std::uint8_t> mLast;
    std::vector<PixelBox> mRuns;    // of the line, ascending
    std::vector<PixelBox> mOpen;    // reach down to the last line, ascending
    std::vector<PixelBox> mNext;    // storage of what becomes mOpen
    std::vector<PixelBox> mClosed;  // end above it
    std::int32_t mLines = 0;
};

/// What a mask comes to.
enum class MaskKind : std::uint8_t {
    kOpaque,
    kClear,
    kBoxes,  ///< opaque or clear in every pixel, and simple enough for boxes
    kSoft    ///< anything else
};

/// Reads a mask from its first line until it is known what it is.
MaskKind Survey(const ImageMask& mask);

/// The opacity of a colour-key mask (PDF Reference, 4.8.5): clear where all codes of a pixel lie
/// within their ranges.
class ColorKeyPlanes : public HOST::PlaneSource {
public:
    /// `ranges` holds a lowest and a highest code for each component.
    ColorKeyPlanes(HOST::LineSourcePtr lines, std::int32_t width, std::vector<std::uint32_t> ranges,
                   FaultHandler onFault);

    void ReadLine(std::int32_t y, std::uint8_t* const* planes) override;

private:
    OrderedLines mLines;
    std::int32_t mWidth;
    std::vector<std::uint32_t> mRanges;
};

/// One plane of bits: set where a plane of opacity is at least half.
class BitPlanes : public HOST::PlaneSource {
public:
    BitPlanes(PlaneSourcePtr opacity, std::int32_t width);

    void ReadLine(std::int32_t y, std::uint8_t* const* planes) override;

private:
    PlaneSourcePtr mOpacity;
    std::vector<std::uint8_t> mLine;
};

/// Planes of 8 or 16 bits freed of their matte, and composited over paper where asked.
class MaskedPlanes : public HOST::PlaneSource {
public:
    struct Layout {
        std::int32_t width = 0;
        std::int32_t bits = 8;
        std::size_t planes = 1;
        std::uint8_t paper = 0xFF;  ///< byte of the samples of white paper
        bool composites = true;
    };

    /// Both sources have the width of the layout, the opacity 8 bits. `matte` as in ImageMask.
    MaskedPlanes(PlaneSourcePtr image, PlaneSourcePtr opacity, const Layout& layout,
                 std::vector<float> matte);

    void ReadLine(std::int32_t y, std::uint8_t* const* planes) override;

private:
    template <class Sample>
    void RemoveMatte(std::uint8_t* plane, float matte) const;
    template <class Sample>
    void Composite(std::uint8_t* plane) const;

    PlaneSourcePtr mImage;
    PlaneSourcePtr mOpacity;
    Layout mLayout;
    std::vector<float> mMatte;
    std::vector<std::uint8_t> mLine;
};

}  // namespace VANTIX::PDF
