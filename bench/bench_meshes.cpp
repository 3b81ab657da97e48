// SPDX-License-Identifier: MIT
#include <cmath>
#include <ctime>
#include <string>
#include <utility>
#include <vector>

#include "core/io/ioutputfilterstack.h"
#include "host/color/shadingspaces.h"
#include "host/io/outputfilterstack.h"
#include "support.h"

namespace VANTIX::BENCH {
namespace {

/// Strips of triangles, 100,352 of them: each vertex has a flag, two coordinates of 16 bits and
/// three components of 8.
std::vector<std::uint8_t> Triangles() {
    constexpr int kSide = 224;
    std::vector<std::uint8_t> data;
    const auto put = [&data](double part, double most, unsigned bytes) {
        const auto value = static_cast<std::uint32_t>(std::lround(part * most));
        for (unsigned i = bytes; i-- > 0;) {
            data.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
        }
    };
    for (int row = 0; row < kSide; ++row) {
        for (int i = 0; i < 2 * (kSide + 1); ++i) {
            const double x = static_cast<double>(i / 2) / kSide;
            const double y = static_cast<double>(row + i % 2) / kSide;
            data.push_back(i < 3 ? 0 : 1);
            put((x + 0.01 * std::sin(9 * y) + 0.01) / 1.02, 65535, 2);
            put((y + 0.01 * std::sin(7 * x) + 0.01) / 1.02, 65535, 2);
            put(0.5 + 0.5 * std::sin(8 * x), 255, 1);
            put(0.5 + 0.5 * std::cos(6 * y), 255, 1);
            put(x * y, 255, 1);
        }
    }
    return data;
}

HOST::ColorSpacePtr MeshOf(HOST::Host& host, std::vector<std::uint8_t> data) {
    HOST::ShadingDescription shading;
    shading.space = host.ColorSpaces().DeviceSpace("rgb "_cc);
    std::string error;
    return HOST::MakeMeshShading(
        std::move(shading), {{4, 8, 16, 8, 0, 3}, {0, 1, 0, 1, 0, 1, 0, 1, 0, 1}, std::move(data)},
        error);
}

/// Processor time of this process, in seconds.
template <class Work>
double TimeOf(const Work& work) {
    const std::clock_t before = std::clock();
    work();
    return static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC;
}

/// A mesh beside the filter through which its data go: "ratio" is what the whole takes of the
/// filter's time. ASCII85 alone is the cheapest filter, so that the rest weighs most.
void MeshBesideItsFilter(benchmark::State& state) {
    NullJob job;
    const std::vector<std::uint8_t> data = Triangles();
    const HOST::ColorSpacePtr mesh = MeshOf(job.Host(), data);
    if (job.Space() == nullptr || !mesh) {
        state.SkipWithError("the plug-in could not begin a job");
        return;
    }
    const auto provider = OpenNullProvider();
    HOST::OutputFilterStack filters;
    filters.Attach(provider.Get());
    filters.PushFilter(IO::FILTER::kAscii85);
    double alone = 0.0;
    double whole = 0.0;
    for ([[maybe_unused]] auto _ : state) {
        alone += TimeOf([&] {
            filters.WriteFilteredData(data.data(), static_cast<std::int32_t>(data.size()));
            filters.EndFilteredData();
        });
        whole += TimeOf([&] { job.Space()->FillWithColorSpace(mesh.Get(), 1, 0, 0, 1, 1); });
    }
    state.counters["ratio"] = whole / alone;
    state.SetBytesProcessed(2 * state.iterations() * static_cast<std::int64_t>(data.size()));
}

BENCHMARK(MeshBesideItsFilter);

}  // namespace
}  // namespace VANTIX::BENCH
