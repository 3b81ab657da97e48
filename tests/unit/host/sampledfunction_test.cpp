// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "host/color/colorspacefactory.h"
#include "host/color/functions.h"
#include "support/evaluate.h"

namespace VANTIX::TEST {
namespace {

using COLOR::TRenderingIntent;
using testing::ElementsAre;

HOST::FunctionPtr Sampled(const HOST::FunctionShape& shape, HOST::SampledTable table) {
    std::string error;
    auto made = HOST::MakeSampledFunction(shape, std::move(table), error);
    EXPECT_EQ(made == nullptr, !error.empty());
    return made;
}

/// Values 0, 1/2 and 1 of each depth, as far as it has a half.
class SampledDepth : public testing::TestWithParam<std::int32_t> {};

TEST_P(SampledDepth, ReadsSamplesMostSignificantBitFirst) {
    const std::int32_t bits = GetParam();
    const std::uint64_t most = (std::uint64_t{1} << static_cast<unsigned>(bits)) - 1;
    const std::uint64_t samples[] = {0, most / 2, most, 1};
    std::vector<std::uint8_t> bytes(16);
    std::size_t at = 0;
    for (const std::uint64_t sample : samples) {
        for (std::int32_t bit = bits - 1; bit >= 0; --bit, ++at) {
            if (((sample >> static_cast<unsigned>(bit)) & 1U) != 0) {
                bytes[at / 8] |= static_cast<std::uint8_t>(0x80U >> (at % 8));
            }
        }
    }
    const auto function = Sampled(
        {{0, 3}, {0, 1}},
        {.sizes = {4}, .bitsPerSample = bits, .encode = {}, .decode = {}, .samples = bytes});
    ASSERT_TRUE(function);
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_NEAR(Evaluate(*function, {static_cast<float>(i)})[0],
                    static_cast<double>(samples[i]) / static_cast<double>(most), 1e-6);
    }
}

INSTANTIATE_TEST_SUITE_P(AllDepths, SampledDepth, testing::Values(1, 2, 4, 8, 12, 16, 24, 32));

TEST(SampledFunction, InterpolatesBetweenSamplesOfTwoInputs) {
    // The first input is the fastest.
    const auto function = Sampled(
        {{0, 1, 0, 1}, {0, 1, 0, 1}},
        {.sizes = {2, 2}, .encode = {}, .decode = {}, .samples = {0, 0, 255, 0, 0, 255, 255, 255}});
    EXPECT_THAT(Evaluate(*function, {0.25F, 0.75F}),
                ElementsAre(testing::FloatNear(0.25F, 1e-6F), testing::FloatNear(0.75F, 1e-6F)));
}

TEST(SampledFunction, EncodeDecodeDomainAndRangeAreKept) {
    const auto function =
        Sampled({{-1, 1}, {0, 50}},
                {.sizes = {3}, .encode = {2, 0}, .decode = {0, 100}, .samples = {0, 51, 255}});
    EXPECT_THAT(Evaluate(*function, {-1}), ElementsAre(50));  // 100, clipped
    EXPECT_THAT(Evaluate(*function, {0}), ElementsAre(testing::FloatNear(20, 1e-4F)));
    EXPECT_THAT(Evaluate(*function, {9}), ElementsAre(0));
    EXPECT_THAT(Evaluate(*function, {std::numeric_limits<float>::quiet_NaN()}), ElementsAre(50));
}

TEST(SampledFunction, HostileTablesAreRefused) {
    const auto refuses = [](const HOST::FunctionShape& shape, HOST::SampledTable table) {
        return Sampled(shape, std::move(table)) == nullptr;
    };
    const std::vector<std::uint8_t> few(8);
    const std::int32_t huge = std::numeric_limits<std::int32_t>::max();
    EXPECT_TRUE(refuses({{0, 1}, {0, 1}}, {.sizes = {9}, .samples = few}));
    EXPECT_TRUE(refuses({{0, 1}, {0, 1}}, {.sizes = {0}, .samples = few}));
    EXPECT_TRUE(refuses({{0, 1}, {0, 1}}, {.sizes = {-4}, .samples = few}));
    EXPECT_TRUE(refuses({{0, 1}, {0, 1}}, {.sizes = {2}, .bitsPerSample = 7, .samples = few}));
    EXPECT_TRUE(refuses({{0, 1}, {}}, {.sizes = {2}, .samples = few}));
    EXPECT_TRUE(refuses({{0, 1, 0, 1}, {0, 1}}, {.sizes = {2}, .samples = few}));
    EXPECT_TRUE(refuses({{0, 1, 0, 1, 0, 1}, {0, 1}},
                        {.sizes = {huge, huge, huge}, .bitsPerSample = 32, .samples = few}));
    EXPECT_TRUE(refuses({{0, 1}, {0, 1}}, {.sizes = {2}, .encode = {0}, .samples = few}));
    HOST::FunctionShape wide{{}, {0, 1}};
    for (int i = 0; i < 17; ++i) {
        wide.domain.insert(wide.domain.end(), {0, 1});
    }
    EXPECT_TRUE(refuses(wide, {.sizes = std::vector<std::int32_t>(17, 1), .samples = few}));
}

TEST(SampledFunction, ConvertsItsSamplesIntoAnotherSpace) {
    auto factory = MakeObject<HOST::ColorSpaceFactory>();
    const auto rgb = factory->DeviceSpace("rgb "_cc);
    const auto cmyk = factory->DeviceSpace("cmyk"_cc);
    const auto function =
        Sampled({{0, 1}, {0, 1, 0, 1, 0, 1, 0, 1}},
                {.sizes = {2}, .samples = {0, 255, 255, 0, 0, 0, 0, 255}});  // red, black ink
    const auto* sampled =
        FindInterface<COLOR::ISampledFunction>(function.Get(), COLOR::IID_ISAMPLEDFUNCTION);
    const auto intent = TRenderingIntent::kRelativeColorimetric;
    std::int32_t size = 0;
    ASSERT_TRUE(sampled->ConvertSamples(*cmyk, *rgb, intent, intent, nullptr, &size));
    ASSERT_EQ(size, 6);
    std::vector<std::uint8_t> bytes(6, 7);
    ASSERT_TRUE(sampled->ConvertSamples(*cmyk, *rgb, intent, intent, bytes.data(), &size));
    EXPECT_THAT(bytes, ElementsAre(255, 0, 0, 0, 0, 0));
    size = 2;
    std::vector<std::uint8_t> cut(6, 7);
    ASSERT_TRUE(sampled->ConvertSamples(*cmyk, *rgb, intent, intent, cut.data(), &size));
    EXPECT_THAT(cut, ElementsAre(255, 0, 7, 7, 7, 7));
    // PDF form: ink amounts.
    size = 8;
    bytes.assign(8, 7);
    ASSERT_TRUE(sampled->ConvertSamples(*cmyk, *cmyk, intent, intent, bytes.data(), &size));
    EXPECT_THAT(bytes, ElementsAre(0, 255, 255, 0, 0, 0, 0, 255));
}

}  // namespace
}  // namespace VANTIX::TEST
