// SPDX-License-Identifier: MIT
#include "support.h"

namespace VANTIX::BENCH {
namespace {

/// Runs `draw` on the space of a job whose output goes nowhere.
template <class Draw>
void Measure(benchmark::State& state, const Draw& draw) {
    NullJob job;
    if (job.Space() == nullptr) {
        state.SkipWithError("the plug-in could not begin a job");
        return;
    }
    float step = 0;
    draw(job, step);  // what is made once is made now
    const AllocationMeter meter(state);
    for ([[maybe_unused]] auto _ : state) {
        draw(job, step);
        step = step < 500 ? step + 0.37F : 0;
    }
}

void PathLines(benchmark::State& state) {
    Measure(state, [](NullJob& job, float step) {
        const float point[] = {step, 700 - step};
        job.Space()->LineTo(point, 1);
    });
}

BENCHMARK(PathLines);

void PathCurves(benchmark::State& state) {
    Measure(state, [](NullJob& job, float step) {
        const float points[] = {step, 1.5F, 20.25F, step, 300, 400};
        job.Space()->CurveTo(points, 1);
    });
}

BENCHMARK(PathCurves);

void PathRectangleFilled(benchmark::State& state) {
    Measure(state, [](NullJob& job, float step) {
        const float points[] = {step + 10, 20, step + 10, 30, step, 30};
        HOST::BaseConnectionSpace& space = *job.Space();
        space.MoveTo(step, 20);
        space.LineTo(points, 3);
        space.ClosePath();
        space.Fill();
        space.NewPath();
    });
}

BENCHMARK(PathRectangleFilled);

void StateSaveConcatRestore(benchmark::State& state) {
    Measure(state, [](NullJob& job, float step) {
        HOST::BaseConnectionSpace& space = *job.Space();
        space.SaveGraphicsState();
        space.Concat(1, 0, 0, 1, step, 2);
        space.SetLineWidth(step);
        space.RestoreGraphicsState();
    });
}

BENCHMARK(StateSaveConcatRestore);

/// A new colour of a device space for each rectangle.
void ColorChange(benchmark::State& state, FourCC family, std::int32_t components) {
    Measure(state, [=](NullJob& job, float step) {
        HOST::BaseConnectionSpace& space = *job.Space();
        HOST::CurrentColor& fill = space.State().Current().fill;
        fill.space = job.Host().ColorSpaces().DeviceSpace(family);
        fill.id = family;
        fill.count = components;
        for (std::int32_t i = 0; i < components; ++i) {
            fill.values[static_cast<std::size_t>(i)] = step / 500;
        }
        space.MoveTo(step, 20);
        space.Fill();
        space.NewPath();
    });
}

BENCHMARK_CAPTURE(ColorChange, Gray, "gray"_cc, 1);
BENCHMARK_CAPTURE(ColorChange, Rgb, "rgb "_cc, 3);
BENCHMARK_CAPTURE(ColorChange, Cmyk, "cmyk"_cc, 4);

}  // namespace
}  // namespace VANTIX::BENCH
