// SPDX-License-Identifier: MIT
#include <cmath>
#include <vector>

#include "support.h"
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

}  // namespace
}  // namespace VANTIX::BENCH
