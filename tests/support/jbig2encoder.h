// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace VANTIX::TEST {

/// Rows of pixels, '#' for black.
using Art = std::vector<std::string>;

inline bool IsBlack(const Art& art, int x, int y) {
    return y >= 0 && y < static_cast<int>(art.size()) && x >= 0 &&
           x < static_cast<int>(art[0].size()) &&
           art[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] == '#';
}

/// The arithmetic encoder of ITU-T T.88, annex E. Decisions of the same context share what has been
/// learnt of them.
class ArithmeticEncoder {
public:
    struct State {
        std::uint8_t index = 0;
        bool likely = false;
    };

    using States = std::map<std::size_t, State>;

    void Code(State& state, bool bit);

    /// An integer, or nothing, by annex A.
    void CodeInteger(States& states, std::optional<int> value);

    void CodeNumber(States& states, unsigned value, unsigned bits);

    [[nodiscard]] std::string Finish();

private:
    struct Estimate {
        unsigned qe;
        std::uint8_t afterLikely, afterUnlikely;
        bool switches;
    };

    static const std::array<Estimate, 47> kEstimates;

    void Renormalise();
    void PutByte();

    std::string mBytes{'\0'};
    unsigned mInterval = 0x8000;
    unsigned mCode = 0;
    unsigned mFree = 12;
};

using Pixel = std::pair<int, int>;

struct GenericOptions {
    unsigned templateNumber = 0;
    bool isTypical = false;
    std::vector<Pixel> moved =
        {};        ///< places of the adaptive pixels, where they are not the usual ones
    char how = 0;  ///< operator on the page
};

/// Codes pixels by a template (6.2.5).
void CodeGeneric(ArithmeticEncoder& encoder, ArithmeticEncoder::States& states, const Art& art,
                 const GenericOptions& options);

/// Codes pixels by those of another bitmap, which lies `dx`, `dy` from it (6.3.5).
void CodeRefinement(ArithmeticEncoder& encoder, ArithmeticEncoder::States& states, const Art& art,
                    const Art& reference, Pixel offset, unsigned templateNumber, bool isTypical);

/// The usual places of the adaptive pixels of a template, as bytes.
std::string AdaptiveBytes(const GenericOptions& options);

inline constexpr char kPageSegment = 48;
inline constexpr char kGenericSegment = 38;

void AppendWord(std::string& bytes, std::size_t value, unsigned count = 4);

/// `references` are the numbers of other segments.
std::string Jbig2Segment(std::size_t number, char type, const std::string& data,
                         const std::string& references = {});

/// A page of the size of the art, as segment 0.
std::string PageSegment(const Art& art);

/// Size, place and operator of a region.
std::string RegionOf(const Art& art, Pixel place, char how = 0);

/// What a segment of a generic region of that size holds.
std::string GenericRegion(const Art& art, const GenericOptions& options);

}  // namespace VANTIX::TEST
