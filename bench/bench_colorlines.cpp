// SPDX-License-Identifier: MIT
#include <lcms2.h>

#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "host/color/colorspacefactory.h"
#include "support.h"

namespace VANTIX::BENCH {
namespace {

using COLOR::TRenderingIntent;

constexpr std::size_t kWidth = 2048;

/// A profile of four inks with a table from Lab, as those of presses are.
std::vector<std::uint8_t> MakePress() {
    const auto toInks = [](const cmsUInt16Number in[], cmsUInt16Number out[],
                           void*) -> cmsInt32Number {
        const double dark = 1 - in[0] / 65535.0;
        const double a = in[1] / 65535.0 - 0.5;
        const double b = in[2] / 65535.0 - 0.5;
        const std::array inks{dark * 0.6 - 0.9 * a - 0.6 * b, dark * 0.5 + 1.2 * a,
                              dark * 0.5 + 1.2 * b, dark * dark * 0.7};
        for (std::size_t i = 0; i < inks.size(); ++i) {
            out[i] = static_cast<cmsUInt16Number>(
                std::lround(65535 * std::fmin(std::fmax(inks[i], 0.0), 1.0)));
        }
        return 1;
    };
    const auto toLab = [](const cmsUInt16Number in[], cmsUInt16Number out[],
                          void*) -> cmsInt32Number {
        const std::array ink{in[0] / 65535.0, in[1] / 65535.0, in[2] / 65535.0, in[3] / 65535.0};
        const double light = (1 - 0.95 * ink[3]) * (1 - 0.3 * ink[0] - 0.4 * ink[1]);
        out[0] = static_cast<cmsUInt16Number>(std::lround(65535 * light));
        out[1] = static_cast<cmsUInt16Number>(std::lround(32896 + 12000 * (ink[1] - ink[0])));
        out[2] = static_cast<cmsUInt16Number>(std::lround(32896 + 12000 * (ink[2] - ink[0])));
        return 1;
    };
    cmsHPROFILE profile = cmsCreateProfilePlaceholder(nullptr);
    cmsSetProfileVersion(profile, 4.3);
    cmsSetDeviceClass(profile, cmsSigOutputClass);
    cmsSetColorSpace(profile, cmsSigCmykData);
    cmsSetPCS(profile, cmsSigLabData);
    cmsWriteTag(profile, cmsSigMediaWhitePointTag, cmsD50_XYZ());
    const auto write = [profile](cmsTagSignature tag, cmsUInt32Number grid, cmsUInt32Number inputs,
                                 cmsUInt32Number outputs, cmsSAMPLER16 sampler) {
        cmsPipeline* table = cmsPipelineAlloc(nullptr, inputs, outputs);
        cmsStage* stage = cmsStageAllocCLut16bit(nullptr, grid, inputs, outputs, nullptr);
        cmsStageSampleCLut16bit(stage, sampler, nullptr, 0);
        cmsPipelineInsertStage(table, cmsAT_BEGIN,
                               cmsStageAllocToneCurves(nullptr, inputs, nullptr));
        cmsPipelineInsertStage(table, cmsAT_END, stage);
        cmsPipelineInsertStage(table, cmsAT_END,
                               cmsStageAllocToneCurves(nullptr, outputs, nullptr));
        cmsWriteTag(profile, tag, table);
        cmsPipelineFree(table);
    };
    write(cmsSigBToA0Tag, 33, 3, 4, toInks);
    write(cmsSigAToB0Tag, 17, 4, 3, toLab);
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile, nullptr, &size);
    std::vector<std::uint8_t> bytes(size);
    cmsSaveProfileToMem(profile, bytes.data(), &size);
    cmsCloseProfile(profile);
    return bytes;
}

std::vector<std::uint8_t> Noise(std::size_t bytes) {
    std::vector<std::uint8_t> noise(bytes);
    std::uint32_t state = 1;
    for (std::uint8_t& byte : noise) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<std::uint8_t>(state >> 24U);
    }
    return noise;
}

/// RGB into the inks of a press; the argument is the depth.
void ConvertLine(benchmark::State& state) {
    const auto bits = static_cast<std::int32_t>(state.range(0));
    const auto lineBytes = kWidth * static_cast<std::size_t>(bits / 8);
    std::string error;
    const auto factory = MakeObject<HOST::ColorSpaceFactory>();
    const auto rgb = factory->DeviceSpace("rgb "_cc);
    const auto press = factory->ProfileSpace(MakePress(), 4, error);
    const auto in = Noise(3 * lineBytes);
    std::vector<std::uint8_t> out(4 * lineBytes);
    const std::array source{in.data(), in.data() + lineBytes, in.data() + 2 * lineBytes};
    const std::array target{out.data(), out.data() + lineBytes, out.data() + 2 * lineBytes,
                            out.data() + 3 * lineBytes};
    std::vector<float> room(3 * kWidth);
    COLOR::LineConversion line;
    line.source = source.data();
    line.sourceBits = bits;
    line.width = kWidth;
    line.target = target.data();
    line.targetBits = bits;
    line.pcs = room.data();
    line.sourceIntent = TRenderingIntent::kRelativeColorimetric;
    line.targetIntent = TRenderingIntent::kRelativeColorimetric;
    if (!press || rgb->ConvertLine(*press, line) != STATUS::kOk) {
        state.SkipWithError("the line could not be converted");
        return;
    }
    const AllocationMeter meter(state);
    for ([[maybe_unused]] auto _ : state) {
        rgb->ConvertLine(*press, line);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kWidth));
}

BENCHMARK(ConvertLine)->Arg(8)->Arg(16);

/// The same pixels, interleaved, by the library alone.
void ConvertLineByLibrary(benchmark::State& state) {
    const bool isWide = state.range(0) == 16;
    const auto press = MakePress();
    cmsHPROFILE from = cmsCreate_sRGBProfile();
    cmsHPROFILE to =
        cmsOpenProfileFromMem(press.data(), static_cast<cmsUInt32Number>(press.size()));
    cmsHTRANSFORM transform = cmsCreateTransform(from, isWide ? TYPE_RGB_16 : TYPE_RGB_8, to,
                                                 isWide ? TYPE_CMYK_16_REV : TYPE_CMYK_8_REV,
                                                 INTENT_RELATIVE_COLORIMETRIC, 0);
    const auto in = Noise(kWidth * (isWide ? 6 : 3));
    std::vector<std::uint8_t> out(kWidth * (isWide ? 8 : 4));
    for ([[maybe_unused]] auto _ : state) {
        cmsDoTransform(transform, in.data(), out.data(), kWidth);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kWidth));
    cmsDeleteTransform(transform);
    cmsCloseProfile(from);
    cmsCloseProfile(to);
}

BENCHMARK(ConvertLineByLibrary)->Arg(8)->Arg(16);

}  // namespace
}  // namespace VANTIX::BENCH
