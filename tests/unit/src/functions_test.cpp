// SPDX-License-Identifier: MIT
#include "postscriptconnectionspace/functions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>

#include "support/fakefunctions.h"
#include "support/ghostscriptpages.h"
#include "support/recordinglogger.h"

namespace VANTIX {
namespace {

using TEST::FakeCalculator;
using TEST::FakeExponential;
using TEST::FakeFunctionArray;
using TEST::FakeSampled;
using TEST::FakeStitching;
using TEST::RecordingLogger;
using FunctionPtr = TInterfacePtr<COLOR::IColorFunction>;

std::string Convert(const COLOR::IColorFunction& function, std::size_t size = 8192) {
    std::string buffer(size, '#');
    const std::int32_t length = ConvertFunctionToLevel2PostScript(nullptr, function, buffer.data(),
                                                                  static_cast<std::int32_t>(size));
    EXPECT_EQ(buffer[static_cast<std::size_t>(length)], '\0');
    return buffer.substr(0, static_cast<std::size_t>(length));
}

/// `count` linear pieces between points of a curve in `outputs` components.
FunctionPtr Pieces(int count, std::int32_t outputs) {
    auto stitching = MakeObject<FakeStitching>();
    stitching->outputs = outputs;
    const auto point = [&](int index) {
        std::vector<float> values(static_cast<std::size_t>(outputs));
        const float t = static_cast<float>(index) / static_cast<float>(count);
        for (std::size_t i = 0; i < values.size(); ++i) {
            values[i] = 0.125F + 0.75F * std::pow(t, 1.0F + static_cast<float>(i));
        }
        return values;
    };
    for (int i = 0; i < count; ++i) {
        if (i > 0) {
            stitching->bounds.push_back(static_cast<float>(i) / static_cast<float>(count));
        }
        // Every other piece runs backwards.
        const bool backwards = i % 2 != 0;
        stitching->encode.emplace_back(backwards ? 1.0F : 0.0F, backwards ? 0.0F : 1.0F);
        stitching->members.emplace_back(MakeObject<FakeExponential>(
            outputs, point(backwards ? i + 1 : i), point(backwards ? i : i + 1), 1.0F));
    }
    return stitching;
}

/// Inks printed over one another: what the sampled form for several inputs stands for.
FunctionPtr Overprinted(std::int32_t inks, std::int32_t outputs) {
    const auto coverage = [](std::int32_t ink, std::int32_t output) {
        return static_cast<float>((ink * 3 + output * 5) % 7) / 7.0F;
    };
    return MakeObject<FakeSampled>(inks, outputs, [=](const float* in, float* out) {
        for (std::int32_t j = 0; j < outputs; ++j) {
            float paper = 1;
            for (std::int32_t i = 0; i < inks; ++i) {
                paper *= 1 - in[i] * coverage(i, j);
            }
            out[j] = 1 - paper;
        }
    });
}

FunctionPtr Nested() {
    auto outer = MakeObject<FakeStitching>();
    outer->outputs = 3;
    outer->members = {Pieces(3, 3), Pieces(2, 3)};
    outer->bounds = {0.25F};
    outer->encode = {{0.0F, 1.0F}, {0.2F, 0.9F}};
    return outer;
}

struct Case {
    const char* name;
    std::function<FunctionPtr()> make;
};

const Case kCases[] = {
    {"LinearOfOneOutput",
     [] { return MakeObject<FakeExponential>(1, std::vector{0.25F}, std::vector{0.75F}, 1.0F); }},
    {"LinearOfFourOutputs",
     [] {
         return MakeObject<FakeExponential>(4, std::vector{0.0F, 0.1F, 0.2F, 1.0F},
                                            std::vector{1.0F, 0.6F, 0.0F, 0.5F}, 1.0F);
     }},
    {"LinearOfLab",
     [] {
         return MakeObject<FakeExponential>(3, std::vector{100.0F, 0.0F, 0.0F},
                                            std::vector{45.0F, 72.5F, -30.25F}, 1.0F);
     }},
    {"LinearWithDefaults",
     [] {
         return MakeObject<FakeExponential>(1, std::vector<float>(), std::vector<float>(), 1.0F);
     }},
    {"PowerOfTwoOutputs",
     [] {
         return MakeObject<FakeExponential>(2, std::vector{0.1F, 0.9F}, std::vector{0.8F, 0.2F},
                                            2.2F);
     }},
    {"PowerWithoutC1FromZero",
     [] {
         return MakeObject<FakeExponential>(3, std::vector(3, 0.0F), std::vector<float>(), 0.5F);
     }},
    {"OnePiece", [] { return Pieces(1, 3); }},
    {"TwoPieces", [] { return Pieces(2, 1); }},
    {"TwentyFourPieces", [] { return Pieces(24, 4); }},
    {"StitchedStitching", Nested},
    {"Calculator",
     [] {
         return MakeObject<FakeCalculator>(" { dup 0.5 gt {1 exch sub} if dup 2 div }", 1, 2,
                                           [](const float* in, float* out) {
                                               out[0] = in[0] > 0.5F ? 1 - in[0] : in[0];
                                               out[1] = out[0] / 2;
                                           });
     }},
    {"CalculatorOfTwoInks",
     [] {
         return MakeObject<FakeCalculator>("exch 0.5 mul add dup 0.25 mul exch 0.75 mul 0", 2, 3,
                                           [](const float* in, float* out) {
                                               const float sum = in[0] / 2 + in[1];
                                               out[0] = sum / 4;
                                               out[1] = sum * 3 / 4;
                                               out[2] = 0;
                                           });
     }},
    {"SampledOfTwoInks", [] { return Overprinted(2, 4); }},
    {"SampledOfFiveInks", [] { return Overprinted(5, 4); }},
    {"SampledOfThreeInksInOneOutput", [] { return Overprinted(3, 1); }},
};

class Procedures : public ::testing::TestWithParam<Case> {};

TEST_P(Procedures, ComputeWhatTheFunctionComputes) {
    const auto function = GetParam().make();
    std::vector<std::vector<float>> operands;
    for (int i = 0; i <= 32; ++i) {
        std::vector<float> tints;
        tints.reserve(8);
        for (std::int32_t k = 0; k < function->GetInputCount(); ++k) {
            tints.push_back(static_cast<float>((i * (2 * k + 1)) % 33) / 32.0F);
        }
        operands.push_back(tints);
    }
    std::string log;
    const auto results = TEST::RunProcedure(Convert(*function), operands, &log);
    ASSERT_EQ(results.size(), operands.size()) << log;
    const auto outputs = static_cast<std::size_t>(function->GetOutputCount());
    for (std::size_t i = 0; i < operands.size(); ++i) {
        std::vector<float> expected(outputs);
        function->Evaluate(operands[i].data(), expected.data());
        ASSERT_EQ(results[i].size(), outputs) << log;
        for (std::size_t j = 0; j < outputs; ++j) {
            EXPECT_NEAR(results[i][j], expected[j], 2e-4) << "point " << i << " output " << j;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, Procedures, ::testing::ValuesIn(kCases),
                         [](const auto& parameter) { return parameter.param.name; });

TEST(Functions, SampledOfOneInputInterpolatesBetweenEightPoints) {
    // Straight between the eight points, so that interpolation is exact.
    const FakeSampled function(1, 3, [](const float* in, float* out) {
        out[0] = in[0];
        out[1] = 1 - 0.5F * in[0];
        out[2] = 0.25F;
    });
    // The form drops an operand below the tint for each output but the first.
    std::vector<std::vector<float>> operands;
    for (const float tint : {0.0F, 0.07F, 0.5F, 0.9F, 1.0F}) {
        operands.push_back({9, 9, tint});
    }
    std::string log;
    const auto results = TEST::RunProcedure(Convert(function), operands, &log);
    ASSERT_EQ(results.size(), operands.size()) << log;
    for (std::size_t i = 0; i < operands.size(); ++i) {
        ASSERT_EQ(results[i].size(), 3U);
        EXPECT_NEAR(results[i][0], operands[i][2], 1e-5);
        EXPECT_NEAR(results[i][1], 1 - 0.5 * operands[i][2], 1e-5);
        EXPECT_NEAR(results[i][2], 0.25, 1e-5);
    }
}

TEST(Functions, TextsOfTheForms) {
    EXPECT_EQ(Convert(FakeExponential(2, {0, 0.5F}, {1, 0.25F}, 1)),
              "dup 2 -1 roll 1 mul 0 add 2 -1 roll -0.25 mul 0.5 add ");
    EXPECT_EQ(Convert(FakeExponential(1, {0.5F}, {0.25F}, 2)),
              "1 -1 roll 2 exp 0.25 0.5 sub mul 0.5 add ");
    EXPECT_EQ(Convert(FakeExponential(1, {0.5F}, {}, 2)), "1 -1 roll 2 exp 0.5 add ");
    EXPECT_EQ(Convert(FakeExponential(2, {}, {1, 1}, 2)), "dup ");
    EXPECT_EQ(Convert(*Pieces(2, 1)),
              "dup 0.5 lt {0 sub 0.5 div 1 mul 0 add 1 -1 roll 0.375 mul 0.125 add } {"
              "0.5 sub 0.5 div -1 mul 1 add 1 -1 roll -0.375 mul 0.875 add \n} ifelse ");
    EXPECT_EQ(Convert(FakeCalculator("{1 {2} 3}} tail", 1, 1, nullptr)), "1 {2} 3}");
    EXPECT_EQ(
        Convert(FakeSampled(1, 1, [](const float* in, float* out) { out[0] = in[0] < 0.5F; })),
        "\n[ 1 1 1 1 0 0 0 0 ]\ndup 3 -1 roll 7 mul dup 3 1 roll\n"
        "floor cvi get 3 1 roll dup 3 1 roll ceiling cvi get\n"
        "3 1 roll dup floor sub dup 3 1 roll\n"
        "neg 1 add mul 3 1 roll mul add 1 1 roll\n");
    EXPECT_EQ(
        Convert(FakeSampled(
            2, 1, [](const float* in, float* out) { out[0] = in[0] * 0.5F + in[1] * 0.25F; })),
        "1 3 1 roll \n3 -1 roll 2 index 0.5 mul 1 cvr exch sub mul "
        "1 index 0.25 mul 1 cvr exch sub mul 1 cvr exch sub 3 1 roll pop pop ");
}

TEST(Functions, MissingPieceKeepsTheBracesPaired) {
    const auto function = Pieces(3, 1);
    auto& stitching = static_cast<FakeStitching&>(*function);
    stitching.members[0] = nullptr;
    std::string log;
    const auto results = TEST::RunProcedure(Convert(stitching), {{0.5F}, {0.9F}}, &log);
    ASSERT_EQ(results.size(), 2U) << log;
    EXPECT_NEAR(results[0][0], 0.5, 1e-3);
    stitching.members[2] = nullptr;
    EXPECT_EQ(Convert(stitching), "");
}

TEST(Functions, PieceWithoutWidthDoesNotDivideByZero) {
    const auto function = Pieces(2, 1);
    static_cast<FakeStitching&>(*function).bounds[0] = 1;
    std::string log;
    EXPECT_EQ(TEST::RunProcedure(Convert(*function), {{0.0F}, {1.0F}}, &log).size(), 2U) << log;
}

TEST(Functions, RefusesWhatHasNoProcedure) {
    RecordingLogger::Get().Clear();
    const auto unused = [](const float*, float*) {};
    auto deep = Pieces(2, 1);
    for (int i = 0; i < 33; ++i) {
        auto outer = MakeObject<FakeStitching>();
        outer->members = {deep};
        outer->encode = {{0.0F, 1.0F}};
        deep = outer;
    }
    EXPECT_EQ(Convert(*deep), "");
    EXPECT_EQ(Convert(FakeFunctionArray(1, 3, unused)), "");
    EXPECT_EQ(Convert(FakeSampled(33, 4, unused)), "");
    EXPECT_EQ(Convert(FakeSampled(1, 33, unused)), "");
    auto crossed = Pieces(2, 1);
    static_cast<FakeStitching&>(*crossed).members[1] = Pieces(1, 2);
    EXPECT_EQ(Convert(*crossed), "");
    EXPECT_EQ(RecordingLogger::Get().Count("I don't understand this type of color function yet."),
              5);
}

TEST(Functions, RefusesWhatDoesNotFit) {
    RecordingLogger::Get().Clear();
    const FakeCalculator calculator("{12345678}", 1, 1, nullptr);
    EXPECT_EQ(Convert(calculator, 9), "12345678");
    EXPECT_EQ(Convert(calculator, 8), "");
    EXPECT_TRUE(RecordingLogger::Get().Has(
        "Input buffer size 8 is smaller than the size (8) of the PostScript function."));
    // Shared members make a text of 2^31 pieces: it must be given up, not built.
    FunctionPtr shared = Pieces(2, 1);
    for (int i = 0; i < 30; ++i) {
        auto outer = MakeObject<FakeStitching>();
        outer->members = {shared, shared};
        outer->bounds = {0.5F};
        outer->encode = {{0.0F, 1.0F}, {0.0F, 1.0F}};
        shared = outer;
    }
    EXPECT_EQ(Convert(*shared), "");
    EXPECT_EQ(ConvertFunctionToLevel2PostScript(nullptr, calculator, nullptr, 0), 0);
}

}  // namespace
}  // namespace VANTIX
