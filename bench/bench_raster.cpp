// SPDX-License-Identifier: MIT
#include <cstring>
#include <vector>

#include "baseconnectionspacedelegate/samples.h"
#include "core/graphics/irastercomponent.h"
#include "grayscaleconnectionspacedelegate/graylines.h"
#include "support.h"

namespace VANTIX::BENCH {
namespace {

constexpr std::int32_t kWidth = 4099;

/// Planes and an output line that stay in the cache, as those of one image line do.
struct Line {
    explicit Line(std::size_t channels)
        : planes(channels, std::vector<std::uint8_t>(kWidth, 0x5A)), out(channels * kWidth) {}

    std::vector<std::vector<std::uint8_t>> planes;
    std::vector<std::uint8_t> out;
};

void CopyLine(benchmark::State& state) {
    Line line(4);
    const std::vector<std::uint8_t> from(line.out.size(), 0x5A);
    for ([[maybe_unused]] auto _ : state) {
        std::memcpy(line.out.data(), from.data(), from.size());
        benchmark::DoNotOptimize(line.out.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(line.out.size()));
}

BENCHMARK(CopyLine);

void InterleaveLine(benchmark::State& state) {
    HOST::Host host;
    const auto swizzle =
        CreateObject<GRAPHICS::ISwizzleServices>(&host.Factory(), GRAPHICS::CLSID_SWIZZLESERVICES);
    Line line(static_cast<std::size_t>(state.range(0)));
    const auto& planes = line.planes;
    const auto outBytes = static_cast<std::int32_t>(line.out.size());
    for ([[maybe_unused]] auto _ : state) {
        if (planes.size() == 3) {
            swizzle->Interleave3(kWidth, 1, planes[0].data(), planes[1].data(), planes[2].data(),
                                 kWidth, line.out.data(), outBytes);
        } else {
            swizzle->Interleave4(kWidth, 1, planes[0].data(), planes[1].data(), planes[2].data(),
                                 planes[3].data(), kWidth, line.out.data(), outBytes);
        }
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(outBytes));
}

BENCHMARK(InterleaveLine)->Arg(3)->Arg(4);

/// Bytes are those of the 16-bit samples.
void PackLine(benchmark::State& state) {
    const std::vector<std::uint8_t> words(8 * kWidth, 0x5A);
    std::vector<std::uint8_t> out(RENDERING::Packed12Bytes(4 * kWidth));
    for ([[maybe_unused]] auto _ : state) {
        RENDERING::PackTo12Bits(words.data(), 4 * kWidth, out.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(words.size()));
}

BENCHMARK(PackLine);

/// Red, green and blue into gray image data; bytes are those of the samples, of as many bits as the
/// argument says.
void GrayOfRgbLine(benchmark::State& state) {
    const auto bits = static_cast<std::int32_t>(state.range(0));
    const std::vector<std::uint8_t> plane(2 * kWidth, 0x5A);
    RENDERING::InterleavedLine::Planes planes{plane.data(), plane.data(), plane.data()};
    RENDERING::GrayLine line(kWidth, bits);
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(line.OfRGB(planes));
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * std::int64_t{3} * kWidth * bits / 8);
}

BENCHMARK(GrayOfRgbLine)->Arg(8)->Arg(16);

}  // namespace
}  // namespace VANTIX::BENCH
