// SPDX-License-Identifier: MIT
#include "host/color/functions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "host/color/functionfactory.h"
#include "support/evaluate.h"

namespace VANTIX::TEST {
namespace {

using testing::ElementsAre;

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

HOST::FunctionPtr Line(float from, float to) {
    return Exponential({0, 1}, {from}, {to}, 1);
}

TEST(Functions, ExponentialClipsInputsAndOutputs) {
    const auto square = Exponential({0, 0.5F}, {0, 1}, {1, 0}, 2, {0, 1, 0.9F, 1});
    EXPECT_THAT(Evaluate(*square, {0.5F}), ElementsAre(0.25F, 0.9F));
    EXPECT_THAT(Evaluate(*square, {7}), ElementsAre(0.25F, 0.9F));
    EXPECT_THAT(Evaluate(*square, {kNaN}), ElementsAre(0, 1));
}

TEST(Functions, ExponentialWithoutCoefficientsHasZerosAndOnes) {
    const auto identity = Exponential({0, 1}, {}, {}, 1);
    const auto* kind =
        FindInterface<COLOR::IExponentialFunction>(identity.Get(), COLOR::IID_IEXPONENTIALFUNCTION);
    ASSERT_NE(kind, nullptr);
    EXPECT_EQ(kind->GetC0()[0], 0.0F);
    EXPECT_EQ(kind->GetC1()[0], 1.0F);
    EXPECT_EQ(FindInterface<IObject>(identity.Get(), COLOR::IID_ISTITCHINGFUNCTION), nullptr);
}

TEST(Functions, ExponentialWithoutAValueGivesAFiniteNumber) {
    EXPECT_THAT(Evaluate(*Exponential({0, 1}, {0}, {1}, -1), {0}), ElementsAre(0));
    EXPECT_THAT(Evaluate(*Exponential({-1, 1}, {0}, {1}, 0.5F, {0.25F, 1}), {-1}),
                ElementsAre(0.25F));
}

TEST(Functions, StitchingPicksThePieceThatStartsAtTheBound) {
    std::string error;
    const auto stitched =
        HOST::MakeStitchingFunction({{0, 1}, {}}, {Line(0, 1), Line(5, 6), Line(9, 8)},
                                    {0.5F, 0.75F}, {0, 1, 1, 0, 0, 1}, error);
    ASSERT_TRUE(stitched) << error;
    EXPECT_THAT(Evaluate(*stitched, {0.25F}), ElementsAre(0.5F));
    EXPECT_THAT(Evaluate(*stitched, {0.5F}), ElementsAre(6));
    EXPECT_THAT(Evaluate(*stitched, {0.625F}), ElementsAre(5.5F));
    EXPECT_THAT(Evaluate(*stitched, {1}), ElementsAre(8));
}

TEST(Functions, StitchingWithAnEmptyLastPieceStillAnswersAtItsBound) {
    std::string error;
    const auto stitched = HOST::MakeStitchingFunction({{0, 1}, {}}, {Line(0, 1), Line(5, 6)}, {1},
                                                      {0, 1, 0, 1}, error);
    EXPECT_THAT(Evaluate(*stitched, {1}), ElementsAre(5));
}

TEST(Functions, NestingIsBoundedInDepthAndInSize) {
    std::string error;
    HOST::FunctionPtr deep = Line(0, 1);
    std::int32_t levels = 0;
    while (auto next = HOST::MakeStitchingFunction({{0, 1}, {}}, {deep}, {}, {0, 1}, error)) {
        deep = std::move(next);
        ASSERT_LE(++levels, HOST::kMaxFunctionNesting);
    }
    EXPECT_EQ(levels, HOST::kMaxFunctionNesting);

    HOST::FunctionPtr doubled = Line(0, 1);
    levels = 0;
    while (auto next = HOST::MakeStitchingFunction({{0, 1}, {}}, {doubled, doubled}, {0.5F},
                                                   {0, 1, 0, 1}, error)) {
        doubled = std::move(next);
        ++levels;
    }
    EXPECT_LT(levels, 16);
}

TEST(Functions, ArrayGathersMembersAndTheirRanges) {
    std::string error;
    const auto array = HOST::MakeFunctionArray(
        {Exponential({0, 1}, {0}, {1}, 1, {0, 1}), Exponential({0.5F, 2}, {0}, {1}, 1, {0, 3})},
        error);
    ASSERT_TRUE(array) << error;
    EXPECT_THAT(Evaluate(*array, {0.25F}), ElementsAre(0.25F, 0.5F));
    EXPECT_EQ(array->GetDomain()[1], 2.0F);
    EXPECT_EQ(array->GetRange()[3], 3.0F);
    EXPECT_FALSE(HOST::MakeFunctionArray({Line(0, 1), HOST::MakeIdentityFunction(2)}, error));
}

TEST(Functions, IdentityHandsOnEveryInput) {
    EXPECT_THAT(Evaluate(*HOST::MakeIdentityFunction(3), {0.1F, 0.2F, 2}),
                ElementsAre(0.1F, 0.2F, 1));
}

TEST(Functions, WhatIsNoFunctionIsRefusedWithAReason) {
    const auto stitching = [](std::vector<float> domain, std::vector<HOST::FunctionPtr> pieces,
                              std::vector<float> bounds, std::vector<float> encode) {
        std::string error;
        const auto made = HOST::MakeStitchingFunction({std::move(domain), {}}, std::move(pieces),
                                                      std::move(bounds), std::move(encode), error);
        return made ? std::string() : error;
    };
    EXPECT_FALSE(Exponential({}, {0}, {1}, 1));
    EXPECT_FALSE(Exponential({1, 0}, {0}, {1}, 1));
    EXPECT_FALSE(Exponential({0, 1, 0, 1}, {0}, {1}, 1));
    EXPECT_FALSE(Exponential({0, 1}, {0, 0}, {1}, 1));
    EXPECT_FALSE(Exponential({0, 1}, {0}, {kInfinity}, 1));
    EXPECT_FALSE(Exponential({0, 1}, {0}, {1}, kNaN));
    EXPECT_FALSE(Exponential({0, 1}, {0}, {1}, 1, {0, 1, 0}));
    EXPECT_FALSE(Exponential({0, 1}, std::vector<float>(33), {}, 1));
    EXPECT_NE(stitching({0, 1}, {}, {}, {}), "");
    EXPECT_NE(stitching({0, 1}, {nullptr}, {}, {0, 1}), "");
    EXPECT_NE(stitching({0, 1}, {Line(0, 1), nullptr}, {0.5F}, {0, 1, 0, 1}), "");
    EXPECT_NE(stitching({0, 1}, {Line(0, 1), Line(0, 1)}, {2}, {0, 1, 0, 1}), "");
    EXPECT_NE(stitching({0, 1}, {Line(0, 1), Line(0, 1)}, {kNaN}, {0, 1, 0, 1}), "");
    EXPECT_NE(stitching({0, 1}, {Line(0, 1)}, {}, {0}), "");
}

TEST(FunctionFactory, RefusesBadArgumentsAndKeepsTheOutputCount) {
    auto factory = MakeObject<HOST::FunctionFactory>();
    const float pairs[] = {0, 1, 0, 1, 0, 1};
    const auto made = HOST::FunctionPtr::Adopt(
        factory->CreateExponentialFunction(pairs, nullptr, nullptr, nullptr, 3, 1));
    ASSERT_TRUE(made);
    EXPECT_EQ(made->GetOutputCount(), 3);
    EXPECT_EQ(factory->CreateExponentialFunction(nullptr, nullptr, nullptr, nullptr, 1, 1),
              nullptr);
    EXPECT_EQ(factory->CreateExponentialFunction(pairs, nullptr, nullptr, nullptr, 99, 1), nullptr);
    EXPECT_EQ(factory->CreateCalculatorFunction("{ bad }", pairs, 1, pairs, 1), nullptr);
    EXPECT_EQ(factory->CreateCalculatorFunction(nullptr, pairs, 1, pairs, 1), nullptr);
    const auto twice =
        HOST::FunctionPtr::Adopt(factory->CreateCalculatorFunction("dup", pairs, 1, pairs, 2));
    ASSERT_TRUE(twice);
    EXPECT_THAT(Evaluate(*twice, {0.5F}), ElementsAre(0.5F, 0.5F));
}

}  // namespace
}  // namespace VANTIX::TEST
