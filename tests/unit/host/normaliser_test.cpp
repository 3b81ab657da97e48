// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>

#include "host/color/functions.h"
#include "support/evaluate.h"

namespace VANTIX::TEST {
namespace {

constexpr double kTolerance = 1.0 / 512 + 1e-4;

HOST::FunctionPtr Table(const std::function<float(float)>& curve, std::int32_t size,
                        std::vector<float> range = {0, 1}) {
    HOST::SampledTable table{.sizes = {size}, .bitsPerSample = 16, .encode = {}, .decode = {}};
    for (std::int32_t i = 0; i < size; ++i) {
        const float y = curve(static_cast<float>(i) / static_cast<float>(size - 1));
        const auto sample = static_cast<std::uint32_t>(std::lround(y * 65535.0F));
        table.samples.push_back(static_cast<std::uint8_t>(sample >> 8U));
        table.samples.push_back(static_cast<std::uint8_t>(sample));
    }
    std::string error;
    return HOST::MakeSampledFunction({{0, 1}, std::move(range)}, std::move(table), error);
}

HOST::FunctionPtr Calculator(const std::string& text, std::vector<float> domain,
                             std::vector<float> range) {
    std::string error;
    auto made = HOST::MakeCalculatorFunction({std::move(domain), std::move(range)}, text, error);
    EXPECT_TRUE(made) << error;
    return made;
}

HOST::FunctionPtr Stitching(std::vector<HOST::FunctionPtr> pieces, std::vector<float> bounds,
                            std::vector<float> encode, std::vector<float> range = {}) {
    std::string error;
    auto made = HOST::MakeStitchingFunction({{0, 1}, std::move(range)}, std::move(pieces),
                                            std::move(bounds), std::move(encode), error);
    EXPECT_TRUE(made) << error;
    return made;
}

bool Is(const HOST::FunctionPtr& function, const GUID& kind) {
    return FindInterface<IObject>(function.Get(), kind) != nullptr;
}

std::int32_t Pieces(const HOST::FunctionPtr& function) {
    const auto* stitching =
        FindInterface<COLOR::IStitchingFunction>(function.Get(), COLOR::IID_ISTITCHINGFUNCTION);
    return stitching == nullptr ? 1 : stitching->GetFunctionCount();
}

double WorstError(const COLOR::IColorFunction& one, const COLOR::IColorFunction& other) {
    double worst = 0;
    for (int i = 0; i <= 2000; ++i) {
        const std::vector<float> in{static_cast<float>(i) / 2000.0F};
        const auto a = Evaluate(one, in);
        const auto b = Evaluate(other, in);
        for (std::size_t k = 0; k < a.size(); ++k) {
            worst = std::max(worst, std::abs(double{a[k]} - double{b[k]}));
        }
    }
    return worst;
}

struct CurveCase {
    const char* name;
    std::function<float(float)> curve;
    std::int32_t size;
    std::int32_t mostPieces;
};

class TableOfOneInput : public testing::TestWithParam<CurveCase> {};

TEST_P(TableOfOneInput, BecomesFewLinesWithinTheTolerance) {
    const auto table = Table(GetParam().curve, GetParam().size);
    const auto lines = HOST::NormaliseTintFunction(table, true);
    EXPECT_LE(Pieces(lines), GetParam().mostPieces);
    EXPECT_LT(WorstError(*table, *lines), kTolerance);
    EXPECT_FALSE(Is(lines, COLOR::IID_ISAMPLEDFUNCTION));
    for (const float end : {0.0F, 1.0F}) {
        EXPECT_NEAR(Evaluate(*table, {end})[0], Evaluate(*lines, {end})[0], 1e-6);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Curves, TableOfOneInput,
    testing::Values(CurveCase{"line", [](float x) { return x; }, 256, 1},
                    CurveCase{"square", [](float x) { return x * x; }, 256, 12},
                    CurveCase{"dot gain", [](float x) { return x + 0.8F * x * (1 - x); }, 1000, 12},
                    CurveCase{"steep", [](float x) { return std::pow(x, 0.25F); }, 4096, 20},
                    CurveCase{"wave", [](float x) { return 0.5F + 0.5F * std::sin(6 * x); }, 64,
                              24},
                    CurveCase{"off the grid", [](float x) { return std::abs(x - 0.4F); }, 7, 6}),
    [](const auto& one) {
        std::string name = one.param.name;
        std::erase(name, ' ');
        return name;
    });

TEST(Normaliser, NoiseGetsAsNearAsTwentyFourLinesCan) {
    const auto noise = Table([](float x) { return 0.5F + 0.4F * std::sin(x * 1e4F); }, 256);
    const auto lines = HOST::NormaliseTintFunction(noise, false);
    EXPECT_LE(Pieces(lines), 24);
    EXPECT_LT(WorstError(*noise, *lines), 0.9);
}

TEST(Normaliser, LabValuesAreMeasuredAgainstTheirWidth) {
    const auto table = Table([](float x) { return 1 - x * x; }, 256, {0, 100});
    const auto lines = HOST::NormaliseTintFunction(table, false);
    EXPECT_LE(Pieces(lines), 12);
    EXPECT_LT(WorstError(*table, *lines), 100 * kTolerance);
    EXPECT_EQ(lines->GetRange()[1], 100.0F);
}

TEST(Normaliser, WhatIsWrittenExactlyStaysTheSameObject) {
    const auto power = Exponential({0, 1}, {0, 0.1F}, {1, 0}, 1.7F);
    const auto stitched =
        Stitching({power, Exponential({0, 1}, {1, 0}, {0.5F, 1}, 1)}, {0.3F}, {0, 1, 1, 0});
    const auto program = Calculator("{dup 0.5 mul exch}", {0, 1}, {0, 1, 0, 1});
    const auto two = Calculator("{add 2 div}", {0, 1, 0, 1}, {0, 1});
    for (const auto& function : {power, stitched, program, two}) {
        EXPECT_EQ(HOST::NormaliseTintFunction(function, true).Get(), function.Get());
    }
    EXPECT_FALSE(HOST::NormaliseTintFunction(nullptr, true));
}

TEST(Normaliser, WhatTheTextWouldSpoilBecomesLines) {
    const auto line = Exponential({0, 1}, {0}, {1}, 1);
    const HOST::FunctionPtr spoilt[] = {
        Exponential({0, 0.5F}, {0}, {1}, 1),          // the text does not clip the input
        Exponential({0, 1}, {0}, {1.5F}, 1, {0, 1}),  // nor the output
        Exponential({0, 1}, {0.2F}, {0.7F}, 0),       // zero to the zero is an error
        Stitching({line, Exponential({0, 0.5F}, {0}, {1}, 2)}, {0.5F}, {0, 1, 0, 1}),
        Stitching({Exponential({-1, 1}, {0.5F}, {1}, 3), line}, {0.5F}, {-1, 1, 1, 0}),
        Stitching({line, line}, {0.5F}, {0, 1, 1, 0}, {0.25F, 0.5F}),
        Stitching({line, Table([](float x) { return 1 - x * x; }, 32)}, {0.5F}, {0, 1, 0, 1}),
        Calculator("dup 0.5 gt {0 div} if", {0, 1}, {0, 1}),
        Calculator("dup dup", {0, 1}, {0, 1}),
    };
    for (const auto& function : spoilt) {
        const auto lines = HOST::NormaliseTintFunction(function, false);
        EXPECT_NE(lines.Get(), function.Get());
        EXPECT_TRUE(Is(lines, COLOR::IID_IEXPONENTIALFUNCTION) ||
                    Is(lines, COLOR::IID_ISTITCHINGFUNCTION));
        const double jumps = Is(function, COLOR::IID_ICALCULATORFUNCTION) ? 1.0 : kTolerance;
        EXPECT_LT(WorstError(*function, *lines), jumps);
        EXPECT_EQ(HOST::NormaliseTintFunction(lines, false).Get(), lines.Get());
    }
}

TEST(Normaliser, JumpsStayWhereTheyAre) {
    const auto low = Exponential({0, 1}, {0}, {0.2F}, 1);
    const auto high = Table([](float x) { return 0.8F + 0.2F * x * x; }, 16);
    for (const float bound : {0.3F, 0.75F, 0.99999F, 1.0F}) {
        const auto function = Stitching({low, high}, {bound}, {0, 1, 0, 1});
        const auto lines = HOST::NormaliseTintFunction(function, true);
        EXPECT_TRUE(Is(lines, COLOR::IID_ISTITCHINGFUNCTION));
        for (const float x : {0.0F, bound - 1e-3F, bound, 1.0F}) {
            EXPECT_NEAR(Evaluate(*function, {x})[0], Evaluate(*lines, {x})[0], kTolerance)
                << bound << " at " << x;
        }
    }
}

TEST(Normaliser, LongProceduresAreShortened) {
    std::string padded = "{";
    padded.append(9000, ' ').append("dup mul}");
    const auto trimmed = HOST::NormaliseTintFunction(Calculator(padded, {0, 1}, {0, 1}), true);
    ASSERT_TRUE(Is(trimmed, COLOR::IID_ICALCULATORFUNCTION));
    EXPECT_NEAR(Evaluate(*trimmed, {0.5F})[0], 0.25, 1e-6);
    std::string endless = "dup mul ";
    for (int i = 0; i < 2000; ++i) {
        endless += "1 mul ";
    }
    const auto lines = HOST::NormaliseTintFunction(Calculator(endless, {0, 1}, {0, 1}), true);
    EXPECT_TRUE(Is(lines, COLOR::IID_ISTITCHINGFUNCTION));
    EXPECT_NEAR(Evaluate(*lines, {0.5F})[0], 0.25, kTolerance);

    std::vector<HOST::FunctionPtr> many(100, Exponential({0, 1}, {0}, {1}, 2));
    std::vector<float> bounds;
    std::vector<float> encode{0, 1};
    for (int i = 1; i < 100; ++i) {
        bounds.push_back(static_cast<float>(i) / 100);
        encode.insert(encode.end(), {0, 1});
    }
    EXPECT_LE(Pieces(HOST::NormaliseTintFunction(Stitching(many, bounds, encode), true)), 24);
}

TEST(Normaliser, ProgramsAreCleanedAndClipWhatTheirShapesClip) {
    const auto commented =
        HOST::NormaliseTintFunction(Calculator("{2 div} % half }", {0, 1}, {0, 1}), true);
    const auto* kind =
        FindInterface<COLOR::ICalculatorFunction>(commented.Get(), COLOR::IID_ICALCULATORFUNCTION);
    ASSERT_NE(kind, nullptr);
    EXPECT_STREQ(kind->GetProgram(), "2 div");

    const auto narrow = HOST::NormaliseTintFunction(
        Calculator("exch", {0.25F, 1, 0, 0.5F}, {0, 0.5F, 0.5F, 1}), true);
    const auto* clipping =
        FindInterface<COLOR::ICalculatorFunction>(narrow.Get(), COLOR::IID_ICALCULATORFUNCTION);
    ASSERT_NE(clipping, nullptr);
    // Without the shape's help the program must clip by itself.
    const auto bare = Calculator(clipping->GetProgram(), {0, 1, 0, 1}, {0, 1, 0, 1});
    EXPECT_THAT(Evaluate(*bare, {0, 1}), testing::ElementsAre(0.5F, 0.5F));
    EXPECT_THAT(Evaluate(*bare, {0.75F, 0.25F}), testing::ElementsAre(0.25F, 0.75F));

    const auto identity = HOST::NormaliseTintFunction(HOST::MakeIdentityFunction(4), true);
    const auto* words =
        FindInterface<COLOR::ICalculatorFunction>(identity.Get(), COLOR::IID_ICALCULATORFUNCTION);
    EXPECT_GT(std::strlen(words->GetProgram()), 2U);
}

/// A table with the corner values of `inks` inks and four outputs, by `rule`.
HOST::FunctionPtr InkTable(
    std::size_t inks, std::int32_t size, const std::vector<float>& range,
    const std::function<float(const std::vector<float>&, std::size_t)>& rule) {
    HOST::SampledTable table;
    HOST::FunctionShape shape{{}, range};
    std::size_t points = 1;
    for (std::size_t i = 0; i < inks; ++i) {
        table.sizes.push_back(size);
        shape.domain.insert(shape.domain.end(), {0, 1});
        points *= static_cast<std::size_t>(size);
    }
    for (std::size_t point = 0; point < points; ++point) {
        std::vector<float> tints;
        for (std::size_t i = 0, rest = point; i < inks; ++i) {
            tints.push_back(static_cast<float>(rest % static_cast<std::size_t>(size)) /
                            static_cast<float>(size - 1));
            rest /= static_cast<std::size_t>(size);
        }
        for (std::size_t k = 0; k < range.size() / 2; ++k) {
            table.samples.push_back(
                static_cast<std::uint8_t>(std::lround(rule(tints, k) * 255.0F)));
        }
    }
    std::string error;
    auto made = HOST::MakeSampledFunction(shape, std::move(table), error);
    EXPECT_TRUE(made) << error;
    return made;
}

const std::vector<float> kCMYKRange{0, 1, 0, 1, 0, 1, 0, 1};

float Product(const std::vector<float>& tints, std::size_t output) {
    float rest = 1;
    for (std::size_t i = 0; i < tints.size(); ++i) {
        rest *= 1 - tints[i] * (i % 4 == output ? 0.8F : 0.1F);
    }
    return 1 - rest;
}

TEST(Normaliser, InkTablesThatAreProductsStayForCMYKAlone) {
    const auto table = InkTable(3, 3, kCMYKRange, Product);
    EXPECT_EQ(HOST::NormaliseTintFunction(table, true).Get(), table.Get());
    EXPECT_TRUE(Is(HOST::NormaliseTintFunction(table, false), COLOR::IID_ICALCULATORFUNCTION));
}

class InkCount : public testing::TestWithParam<std::size_t> {};

TEST_P(InkCount, OtherInkTablesBecomeProgramsThroughTheirCorners) {
    const auto mean = [](const std::vector<float>& tints, std::size_t output) {
        float sum = 0;
        for (std::size_t i = 0; i < tints.size(); ++i) {
            sum += i % 4 == output ? tints[i] : 0.3F * tints[i];
        }
        return sum / static_cast<float>(tints.size());
    };
    const auto table = InkTable(GetParam(), 2, kCMYKRange, mean);
    const auto program = HOST::NormaliseTintFunction(table, true);
    const auto* kind =
        FindInterface<COLOR::ICalculatorFunction>(program.Get(), COLOR::IID_ICALCULATORFUNCTION);
    ASSERT_NE(kind, nullptr);
    EXPECT_LE(std::strlen(kind->GetProgram()), 8191U);
    for (std::size_t mask = 0; mask < (1U << GetParam()); ++mask) {
        std::vector<float> tints;
        for (std::size_t i = 0; i < GetParam(); ++i) {
            tints.push_back(static_cast<float>((mask >> i) & 1U));
        }
        EXPECT_THAT(Evaluate(*program, tints),
                    testing::Pointwise(testing::FloatNear(GetParam() > 6 ? 0.02F : 2e-3F),
                                       Evaluate(*table, tints)));
    }
}

INSTANTIATE_TEST_SUITE_P(Inks, InkCount, testing::Values(2, 4, 5, 6, 8));

TEST(Normaliser, TablesOfManyInksFallBackToOneFactorForEach) {
    const auto transmittance = [](const std::vector<float>& tints, std::size_t output) {
        return 0.9F * (1 - Product(tints, output));
    };
    const auto table = InkTable(10, 2, {0, 1, 0, 1, 0, 1}, transmittance);
    const auto program = HOST::NormaliseTintFunction(table, false);
    const auto* kind =
        FindInterface<COLOR::ICalculatorFunction>(program.Get(), COLOR::IID_ICALCULATORFUNCTION);
    ASSERT_NE(kind, nullptr);
    EXPECT_LE(std::strlen(kind->GetProgram()), 8191U);
    const std::vector<float> tints{0.1F, 0.9F, 0.5F, 1, 0, 0.3F, 0.7F, 0.2F, 0.6F, 0.4F};
    EXPECT_THAT(Evaluate(*program, tints),
                testing::Pointwise(testing::FloatNear(0.01F), Evaluate(*table, tints)));
}

}  // namespace
}  // namespace VANTIX::TEST
