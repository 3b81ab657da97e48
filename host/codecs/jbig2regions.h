// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "host/codecs/arithmeticdecoder.h"
#include "host/codecs/jbig2bitmap.h"

namespace VANTIX::HOST::JBIG2 {

/// Work that a file may cause, so that few data cannot keep the decoder busy for hours.
class Budget {
public:
    /// For an image of so many pixels, coded in so many bytes.
    Budget(std::uint64_t pixels, std::uint64_t bytes)
        : mLeft((std::uint64_t{1} << 20U) + 64 * pixels + 1024 * bytes) {}

    /// Throws `Error` when it is used up.
    void Spend(std::uint64_t pixels) {
        if (pixels > mLeft) {
            throw Error("decoding would take too much time");
        }
        mLeft -= pixels;
    }

private:
    std::uint64_t mLeft;
};

/// Place of an adaptive pixel of a template, from the pixel that is decoded.
struct Place {
    std::int8_t x = 0;
    std::int8_t y = 0;

    bool operator==(const Place& other) const { return x == other.x && y == other.y; }
};

/// How a generic region is coded (ITU-T T.88, 6.2.2).
struct GenericCoding {
    std::uint8_t templateNumber = 0;
    bool isTypical = false;  ///< rows may be those above
    std::array<Place, 4> places{};
    const Bitmap* skip = nullptr;  ///< pixels that are not coded; null for none

    /// Adaptive pixels of the template: 4 or 1.
    [[nodiscard]] std::size_t PlaceCount() const { return templateNumber == 0 ? 4 : 1; }
};

using Contexts = std::vector<Context>;

/// Contexts that a generic region of any template needs.
inline constexpr std::size_t kGenericContexts = std::size_t{1} << 16U;
inline constexpr std::size_t kRefinementContexts = std::size_t{1} << 13U;

/// Decodes a generic region (ITU-T T.88, 6.2.5). When the data end early, what there is.
Bitmap DecodeGeneric(ArithmeticDecoder& decoder, Contexts& contexts, const GenericCoding& coding,
                     std::uint32_t width, std::uint32_t height, Budget& budget);

/// Decodes a generic region of facsimile coding; `data` becomes what follows it.
Bitmap DecodeMmr(std::span<const std::uint8_t>& data, std::uint32_t width, std::uint32_t height,
                 Budget& budget);

/// How a bitmap is refined (ITU-T T.88, 6.3.2).
struct RefinementCoding {
    std::uint8_t templateNumber = 0;
    bool isTypical = false;
    std::array<Place, 2> places{};
    const Bitmap* reference = nullptr;
    std::int32_t dx = 0;
    std::int32_t dy = 0;
};

/// Decodes a bitmap that resembles another one (ITU-T T.88, 6.3.5).
Bitmap DecodeRefinement(ArithmeticDecoder& decoder, Contexts& contexts,
                        const RefinementCoding& coding, std::uint32_t width, std::uint32_t height,
                        Budget& budget);

}  // namespace VANTIX::HOST::JBIG2
