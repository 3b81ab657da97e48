// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>
#include <iterator>
#include <vector>

#include "support.h"
#include "t2tot1charstringconverter.h"
#include "truetypetot1conversionutils.h"

namespace VANTIX::BENCH {
namespace {

constexpr int kGlyphs = 200;
constexpr int kUnits = 2048;

float Em(double units) {
    return static_cast<float>(std::round(units) / kUnits);
}

/// An outline like that of a letter: a contour of lines, and a ring of bends in it.
class Glyph {
public:
    explicit Glyph(int seed) {
        for (int i = 0; i < 8; ++i) {
            mLines.push_back(Em(300 + 37 * ((seed + 3 * i) % 29)));
            mLines.push_back(Em(100 + 53 * ((seed + 5 * i) % 23)));
        }
        for (int i = 1; i <= 24; ++i) {
            const double angle = (i + seed % 7) * 0.2617993877991494;
            mBends.push_back(Em(900 + 400 * std::cos(angle)));
            mBends.push_back(Em(700 + 500 * std::sin(angle)));
        }
    }

    void Play(GRAPHICS::IConnectionSpace& space) const {
        space.NewPath();
        space.MoveTo(mLines[0], mLines[1]);
        for (std::size_t i = 2; i < mLines.size(); i += 2) {
            space.LineTo(&mLines[i], 1);
        }
        space.ClosePath();
        space.MoveTo(mBends[44], mBends[45]);
        for (std::size_t i = 0; i < mBends.size(); i += 4) {
            space.QuadCurveTo(&mBends[i], 1);
        }
        space.ClosePath();
        space.ResetPath();
    }

private:
    std::vector<float> mLines;
    std::vector<float> mBends;
};

void GlyphsToType1(benchmark::State& state, float scale) {
    std::vector<Glyph> glyphs;
    for (int i = 0; i < kGlyphs; ++i) {
        glyphs.emplace_back(i);
    }
    std::size_t next = 0;
    std::size_t bytes = 0;
    const AllocationMeter meter(state);
    for ([[maybe_unused]] auto _ : state) {
        PS::T1CharStringConnectionspace space(0.5F, scale);
        glyphs[next].Play(space);
        bytes += space.GetCharString().size();
        next = (next + 1) % glyphs.size();
    }
    state.SetItemsProcessed(state.iterations());
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}

BENCHMARK_CAPTURE(GlyphsToType1, Tenths, 1000.0F);
BENCHMARK_CAPTURE(GlyphsToType1, Whole, 10000.0F);

/// One local subroutine.
class Subroutines : public TObject<GRAPHICS::ICharStringSubroutines> {
public:
    std::int32_t GetLocalBias(std::uint16_t /*fontDict*/) const override { return 107; }

    std::int32_t GetGlobalBias() const override { return 107; }

    std::int32_t CopyLocalSubroutine(std::uint16_t /*fontDict*/, std::int32_t number,
                                     std::uint8_t* buffer) const override {
        // 40 50 -60 vlineto, return
        constexpr std::uint8_t kLines[] = {179, 189, 79, 7, 11};
        std::copy(std::begin(kLines), std::end(kLines), buffer);
        return number == 0 ? static_cast<std::int32_t>(sizeof kLines) : 0;
    }

    std::int32_t CopyGlobalSubroutine(std::int32_t /*number*/,
                                      std::uint8_t* /*buffer*/) const override {
        return 0;
    }
};

/// A charstring like that of a letter with hints: two contours, one of them by a subroutine.
std::vector<std::uint8_t> MakeType2Glyph(int seed) {
    std::vector<std::uint8_t> bytes;
    const auto put = [&](int value) {
        if (value >= -107 && value <= 107) {
            bytes.push_back(static_cast<std::uint8_t>(value + 139));
        } else {
            const auto bits = static_cast<unsigned>(value);
            for (const unsigned byte : {28U, (bits >> 8U) & 0xFFU, bits & 0xFFU}) {
                bytes.push_back(static_cast<std::uint8_t>(byte));
            }
        }
    };
    const auto run = [&](std::uint8_t command, int count) {
        for (int i = 0; i < count; ++i) {
            put((seed * 31 + i * 67) % 401 - 200);
        }
        bytes.push_back(command);
    };
    for (const int value : {seed, 0, 20, 480, 20}) {
        put(value);
    }
    bytes.push_back(18);  // hstemhm
    for (const int value : {50, 80, 200, 80}) {
        put(value);
    }
    bytes.insert(bytes.end(), {19, 0xF0});  // hintmask
    run(21, 2);                             // rmoveto
    run(8, 24);                             // rrcurveto
    run(31, 16);                            // hvcurveto
    run(5, 8);                              // rlineto
    run(21, 2);
    put(-107);
    bytes.insert(bytes.end(), {10, 14});  // callsubr, endchar
    return bytes;
}

void Type2ToType1(benchmark::State& state) {
    std::vector<std::vector<std::uint8_t>> glyphs;
    glyphs.reserve(kGlyphs);
    for (int i = 0; i < kGlyphs; ++i) {
        glyphs.push_back(MakeType2Glyph(i));
    }
    const auto subroutines = MakeObject<Subroutines>();
    PS::T2ToT1CharStringConverter converter;
    std::size_t next = 0;
    std::size_t bytes = 0;
    const AllocationMeter meter(state);
    for ([[maybe_unused]] auto _ : state) {
        const auto& glyph = glyphs[next];
        bytes +=
            converter
                .ConvertGlyph({glyph.data(), static_cast<std::int32_t>(glyph.size()), 500, 600}, 0,
                              subroutines.Get())
                .size();
        next = (next + 1) % glyphs.size();
    }
    state.SetItemsProcessed(state.iterations());
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}

BENCHMARK(Type2ToType1);

}  // namespace
}  // namespace VANTIX::BENCH
