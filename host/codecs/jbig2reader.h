// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "host/codecs/jbig2regions.h"

namespace VANTIX::HOST::JBIG2 {

using Bytes = std::span<const std::uint8_t>;

/// Reads the fields of segments, the most significant byte first; throws `Error` at the end.
class Reader {
public:
    explicit Reader(Bytes bytes) : mBytes(bytes) {}

    std::uint32_t Take(std::size_t count) {
        std::uint32_t value = 0;
        for (const std::uint8_t byte : TakeBytes(count)) {
            value = value << 8U | byte;
        }
        return value;
    }

    std::uint8_t TakeByte() { return static_cast<std::uint8_t>(Take(1)); }

    Bytes TakeBytes(std::size_t count) {
        if (count > mBytes.size()) {
            throw Error("a segment ends early");
        }
        const Bytes taken = mBytes.first(count);
        mBytes = mBytes.subspan(count);
        return taken;
    }

    Place TakePlace() {
        const auto x = static_cast<std::int8_t>(Take(1));
        return {x, static_cast<std::int8_t>(Take(1))};
    }

    /// The places of the adaptive pixels of a template.
    void TakePlaces(GenericCoding& coding) {
        for (std::size_t i = 0; i < coding.PlaceCount(); ++i) {
            coding.places[i] = TakePlace();
        }
    }

    /// The same of a template for refinement, which has them only where its number is 0.
    void TakePlaces(RefinementCoding& coding) {
        for (Place& place : coding.places) {
            place = coding.templateNumber == 0 ? TakePlace() : Place{-1, -1};
        }
    }

    [[nodiscard]] Bytes Rest() const { return mBytes; }

private:
    Bytes mBytes;
};

/// Bits that tell `count` things apart.
inline unsigned BitsFor(std::uint64_t count) {
    unsigned bits = 0;
    while ((std::uint64_t{1} << bits) < count) {
        ++bits;
    }
    return bits;
}

}  // namespace VANTIX::HOST::JBIG2
