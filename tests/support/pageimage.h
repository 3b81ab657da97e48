// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace VANTIX::TEST {

/// A page or a plate in memory: 8 bits for each channel, top row first, channels interleaved.
struct PageImage {
    std::size_t width = 0;
    std::size_t height = 0;
    std::size_t channels = 0;
    std::vector<std::uint8_t> samples;

    [[nodiscard]] std::uint8_t At(std::size_t x, std::size_t y, std::size_t channel) const {
        return samples[(y * width + x) * channels + channel];
    }

    /// True when every sample is 255: nothing was drawn.
    [[nodiscard]] bool IsBlank() const;
};

/// The plates of one page by colorant, 255 where there is no ink.
using Plates = std::map<std::string, PageImage>;

/// A binary portable pixmap or graymap (P5, P6) of 8 bits; width 0 when it is none.
PageImage ReadPortableMap(const std::string& path);

/// A plate as Ghostscript's separation device writes it: an uncompressed gray TIFF of 8 bits.
/// Width 0 when it is anything else.
PageImage ReadPlate(const std::string& path);

/// How far a page is from its reference.
struct PageDifference {
    bool sameSize = false;
    double mean = 255.0;      ///< mean of the absolute differences, of 255
    double wrongShare = 1.0;  ///< share of the pixels away from edges that differ by more than 16
    std::size_t firstX = 0;   ///< the first of them
    std::size_t firstY = 0;

    /// Mean difference of at most 2/255, and at most 1 % of pixels over 16/255 away from edges.
    [[nodiscard]] bool IsMatch() const { return sameSize && mean <= 2.0 && wrongShare <= 0.01; }

    [[nodiscard]] std::string Describe() const;
};

/// An edge is a pixel whose 3 x 3 neighbourhood in the reference varies by more than 16/255.
PageDifference Compare(const PageImage& page, const PageImage& reference);

}  // namespace VANTIX::TEST
