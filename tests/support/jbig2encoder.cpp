// SPDX-License-Identifier: MIT
#include "support/jbig2encoder.h"

#include <algorithm>
#include <cstdlib>

namespace VANTIX::TEST {

const std::array<ArithmeticEncoder::Estimate, 47> ArithmeticEncoder::kEstimates{
    {{0x5601, 1, 1, true},    {0x3401, 2, 6, false},   {0x1801, 3, 9, false},
     {0x0AC1, 4, 12, false},  {0x0521, 5, 29, false},  {0x0221, 38, 33, false},
     {0x5601, 7, 6, true},    {0x5401, 8, 14, false},  {0x4801, 9, 14, false},
     {0x3801, 10, 14, false}, {0x3001, 11, 17, false}, {0x2401, 12, 18, false},
     {0x1C01, 13, 20, false}, {0x1601, 29, 21, false}, {0x5601, 15, 14, true},
     {0x5401, 16, 14, false}, {0x5101, 17, 15, false}, {0x4801, 18, 16, false},
     {0x3801, 19, 17, false}, {0x3401, 20, 18, false}, {0x3001, 21, 19, false},
     {0x2801, 22, 19, false}, {0x2401, 23, 20, false}, {0x2201, 24, 21, false},
     {0x1C01, 25, 22, false}, {0x1801, 26, 23, false}, {0x1601, 27, 24, false},
     {0x1401, 28, 25, false}, {0x1201, 29, 26, false}, {0x1101, 30, 27, false},
     {0x0AC1, 31, 28, false}, {0x09C1, 32, 29, false}, {0x08A1, 33, 30, false},
     {0x0521, 34, 31, false}, {0x0441, 35, 32, false}, {0x02A1, 36, 33, false},
     {0x0221, 37, 34, false}, {0x0141, 38, 35, false}, {0x0111, 39, 36, false},
     {0x0085, 40, 37, false}, {0x0049, 41, 38, false}, {0x0025, 42, 39, false},
     {0x0015, 43, 40, false}, {0x0009, 44, 41, false}, {0x0005, 45, 42, false},
     {0x0001, 45, 43, false}, {0x5601, 46, 46, false}}};

void ArithmeticEncoder::Code(State& state, bool bit) {
    const Estimate& estimate = kEstimates[state.index];
    mInterval -= estimate.qe;
    const bool isLess = mInterval < estimate.qe;
    const bool isLikely = bit == state.likely;
    if (isLess == isLikely) {
        mInterval = estimate.qe;
    } else {
        mCode += estimate.qe;
    }
    if (isLikely && (mInterval & 0x8000U) != 0) {
        return;
    }
    if (!isLikely && estimate.switches) {
        state.likely = !state.likely;
    }
    state.index = isLikely ? estimate.afterLikely : estimate.afterUnlikely;
    Renormalise();
}

std::string ArithmeticEncoder::Finish() {
    const unsigned top = mCode + mInterval;
    mCode |= 0xFFFFU;
    mCode -= mCode >= top ? 0x8000U : 0;
    for (int i = 0; i < 2; ++i) {
        mCode <<= mFree;
        PutByte();
    }
    mBytes.erase(0, 1);
    return mBytes + (mBytes.back() == '\xFF' ? "\xAC" : "\xFF\xAC");
}

void ArithmeticEncoder::Renormalise() {
    do {
        mInterval <<= 1U;
        mCode <<= 1U;
        if (--mFree == 0) {
            PutByte();
        }
    } while ((mInterval & 0x8000U) == 0);
}

/// The first byte stands before the data and takes no carry.
void ArithmeticEncoder::PutByte() {
    const bool carries = mBytes.back() != '\xFF' && mCode >= 0x8000000U;
    if (carries) {
        ++mBytes.back();
        mCode &= 0x7FFFFFFU;
    }
    const bool isStuffed = mBytes.back() == '\xFF';
    const unsigned shift = isStuffed ? 20 : 19;
    mBytes += static_cast<char>(mCode >> shift);
    mCode &= (1U << shift) - 1;
    mFree = isStuffed ? 7 : 8;
}

void ArithmeticEncoder::CodeInteger(States& states, std::optional<int> value) {
    static constexpr std::array<std::pair<unsigned, int>, 6> kRanges{
        {{2, 0}, {4, 4}, {6, 20}, {8, 84}, {12, 340}, {32, 4436}}};
    const int size = std::abs(value.value_or(0));
    std::size_t range = 0;
    while (range < 5 && size >= kRanges[range + 1].second) {
        ++range;
    }
    std::string bits = !value || *value < 0 ? "1" : "0";
    bits += std::string(range, '1') + (range < 5 ? "0" : "");
    for (unsigned i = kRanges[range].first; i-- > 0;) {
        bits += ((size - kRanges[range].second) >> i & 1) != 0 ? '1' : '0';
    }
    std::size_t previous = 1;
    for (const char bit : bits) {
        Code(states[previous], bit == '1');
        const std::size_t next = 2 * previous + (bit == '1' ? 1 : 0);
        previous = previous < 256 ? next : next % 512 | 256;
    }
}

void ArithmeticEncoder::CodeNumber(States& states, unsigned value, unsigned bits) {
    std::size_t previous = 1;
    for (unsigned i = bits; i-- > 0;) {
        const bool bit = (value >> i & 1U) != 0;
        Code(states[previous], bit);
        previous = 2 * previous + (bit ? 1 : 0);
    }
}

namespace {

/// A template: its pixels in the order of the context, which of them are adaptive, and the context
/// that tells whether a row is like the one above (figures 3 to 6 and 8 to 11).
struct GenericTemplate {
    std::vector<Pixel> pixels;
    std::vector<std::size_t> adaptive;
    std::size_t typical;
};

const std::array<GenericTemplate, 4>& Templates() {
    static const std::array<GenericTemplate, 4> kTemplates{{{{{-2, -2},
                                                              {-1, -2},
                                                              {0, -2},
                                                              {1, -2},
                                                              {2, -2},
                                                              {-3, -1},
                                                              {-2, -1},
                                                              {-1, -1},
                                                              {0, -1},
                                                              {1, -1},
                                                              {2, -1},
                                                              {3, -1},
                                                              {-4, 0},
                                                              {-3, 0},
                                                              {-2, 0},
                                                              {-1, 0}},
                                                             {11, 5, 4, 0},
                                                             0x9B25},
                                                            {{{-1, -2},
                                                              {0, -2},
                                                              {1, -2},
                                                              {2, -2},
                                                              {-2, -1},
                                                              {-1, -1},
                                                              {0, -1},
                                                              {1, -1},
                                                              {2, -1},
                                                              {3, -1},
                                                              {-3, 0},
                                                              {-2, 0},
                                                              {-1, 0}},
                                                             {9},
                                                             0x0795},
                                                            {{{-1, -2},
                                                              {0, -2},
                                                              {1, -2},
                                                              {-2, -1},
                                                              {-1, -1},
                                                              {0, -1},
                                                              {1, -1},
                                                              {2, -1},
                                                              {-2, 0},
                                                              {-1, 0}},
                                                             {7},
                                                             0x00E5},
                                                            {{{-3, -1},
                                                              {-2, -1},
                                                              {-1, -1},
                                                              {0, -1},
                                                              {1, -1},
                                                              {2, -1},
                                                              {-4, 0},
                                                              {-3, 0},
                                                              {-2, 0},
                                                              {-1, 0}},
                                                             {5},
                                                             0x0195}}};
    return kTemplates;
}

std::vector<Pixel> PixelsOf(const GenericOptions& options) {
    const GenericTemplate& shape = Templates()[options.templateNumber];
    std::vector<Pixel> pixels = shape.pixels;
    for (std::size_t i = 0; i < options.moved.size(); ++i) {
        pixels[shape.adaptive[i]] = options.moved[i];
    }
    return pixels;
}

std::size_t ContextOf(const Art& art, const std::vector<Pixel>& pixels, int x, int y) {
    std::size_t context = 0;
    for (const auto& [dx, dy] : pixels) {
        context = 2 * context + (IsBlack(art, x + dx, y + dy) ? 1 : 0);
    }
    return context;
}

}  // namespace

void CodeGeneric(ArithmeticEncoder& encoder, ArithmeticEncoder::States& states, const Art& art,
                 const GenericOptions& options) {
    const std::vector<Pixel> pixels = PixelsOf(options);
    bool wasSame = false;
    for (std::size_t y = 0; y < art.size(); ++y) {
        const std::string above = y == 0 ? std::string(art[0].size(), '.') : art[y - 1];
        const bool isSame = options.isTypical && art[y] == above;
        if (options.isTypical) {
            encoder.Code(states[Templates()[options.templateNumber].typical], isSame != wasSame);
            wasSame = isSame;
        }
        for (std::size_t x = 0; x < art[y].size() && !isSame; ++x) {
            const std::size_t context =
                ContextOf(art, pixels, static_cast<int>(x), static_cast<int>(y));
            encoder.Code(states[context], art[y][x] == '#');
        }
    }
}

void CodeRefinement(ArithmeticEncoder& encoder, ArithmeticEncoder::States& states, const Art& art,
                    const Art& reference, Pixel offset, unsigned templateNumber, bool isTypical) {
    const bool isFirst = templateNumber == 0;
    // The pixels of the reference, then those that are coded, highest first (figures 12 and 13).
    const std::vector<Pixel> other =
        isFirst ? std::vector<Pixel>{{-1, -1}, {0, -1}, {1, -1}, {-1, 0}, {0, 0},
                                     {1, 0},   {-1, 1}, {0, 1},  {1, 1}}
                : std::vector<Pixel>{{0, -1}, {-1, 0}, {0, 0}, {1, 0}, {0, 1}, {1, 1}};
    const std::vector<Pixel> own{{-1, -1}, {0, -1}, {1, -1}, {-1, 0}};
    bool wasTypical = false;
    for (int y = 0; y < static_cast<int>(art.size()); ++y) {
        const auto sumAround = [&](int x) {
            int sum = 0;
            for (int i = 0; i < 9; ++i) {
                sum +=
                    IsBlack(reference, x - offset.first + i % 3 - 1, y - offset.second + i / 3 - 1)
                        ? 1
                        : 0;
            }
            return sum;
        };
        const int width = static_cast<int>(art[0].size());
        bool canSkip = isTypical;
        for (int x = 0; x < width && canSkip; ++x) {
            const int sum = sumAround(x);
            canSkip = sum % 9 != 0 || (sum == 9) == IsBlack(art, x, y);
        }
        if (isTypical) {
            encoder.Code(states[isFirst ? 0x100 : 0x080], canSkip != wasTypical);
            wasTypical = canSkip;
        }
        for (int x = 0; x < width; ++x) {
            if (canSkip && sumAround(x) % 9 == 0) {
                continue;
            }
            const std::size_t context =
                ContextOf(reference, other, x - offset.first, y - offset.second) << own.size() |
                ContextOf(art, own, x, y);
            encoder.Code(states[context], IsBlack(art, x, y));
        }
    }
}

std::string AdaptiveBytes(const GenericOptions& options) {
    const std::vector<Pixel> pixels = PixelsOf(options);
    std::string bytes;
    for (const std::size_t index : Templates()[options.templateNumber].adaptive) {
        bytes += {static_cast<char>(pixels[index].first), static_cast<char>(pixels[index].second)};
    }
    return bytes;
}

void AppendWord(std::string& bytes, std::size_t value, unsigned count) {
    for (unsigned i = count; i-- > 0;) {
        bytes += static_cast<char>(value >> (8 * i));
    }
}

std::string Jbig2Segment(std::size_t number, char type, const std::string& data,
                         const std::string& references) {
    std::string bytes;
    AppendWord(bytes, number);
    bytes += {type, static_cast<char>(references.size() << 5U)};
    bytes += references + '\1';
    AppendWord(bytes, data.size());
    return bytes + data;
}

std::string RegionOf(const Art& art, Pixel place, char how) {
    std::string bytes;
    AppendWord(bytes, art[0].size());
    AppendWord(bytes, art.size());
    AppendWord(bytes, static_cast<std::size_t>(place.first));
    AppendWord(bytes, static_cast<std::size_t>(place.second));
    return bytes + how;
}

std::string PageSegment(const Art& art) {
    // Resolutions, flags and striping follow the size.
    return Jbig2Segment(0, kPageSegment, RegionOf(art, {}).substr(0, 8) + std::string(11, '\0'));
}

std::string GenericRegion(const Art& art, const GenericOptions& options) {
    ArithmeticEncoder encoder;
    ArithmeticEncoder::States states;
    CodeGeneric(encoder, states, art, options);
    const auto flags =
        static_cast<char>(options.templateNumber << 1U | (options.isTypical ? 8U : 0U));
    return RegionOf(art, {}, options.how) + flags + AdaptiveBytes(options) + encoder.Finish();
}

}  // namespace VANTIX::TEST
