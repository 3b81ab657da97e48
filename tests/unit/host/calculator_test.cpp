// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/color/functions.h"
#include "support/evaluate.h"
#include "support/ghostscriptpages.h"

namespace VANTIX::TEST {
namespace {

using testing::ElementsAre;

constexpr float kMost = 1e9F;

HOST::FunctionPtr Calculator(const std::string& program, std::size_t inputs, std::size_t outputs,
                             float low = -kMost) {
    HOST::FunctionShape shape;
    for (std::size_t i = 0; i < inputs; ++i) {
        shape.domain.insert(shape.domain.end(), {-kMost, kMost});
    }
    for (std::size_t i = 0; i < outputs; ++i) {
        shape.range.insert(shape.range.end(), {low, kMost});
    }
    std::string error;
    return HOST::MakeCalculatorFunction(shape, program, error);
}

struct Program {
    const char* text;
    std::size_t outputs;
};

/// Programs of one input whose results a PostScript interpreter must give too.
class CalculatorAgainstInterpreter : public testing::TestWithParam<Program> {};

TEST_P(CalculatorAgainstInterpreter, GivesTheSameNumbers) {
    const std::vector<std::vector<float>> inputs{{0.0F}, {0.25F}, {0.5F}, {0.999F}, {1.0F}};
    std::string log;
    const auto expected = RunProcedure(std::string(GetParam().text), inputs, &log);
    ASSERT_EQ(expected.size(), inputs.size()) << log;
    const auto function = Calculator(GetParam().text, 1, GetParam().outputs);
    ASSERT_TRUE(function);
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        const auto outputs = Evaluate(*function, inputs[i]);
        ASSERT_EQ(expected[i].size(), outputs.size()) << log;
        for (std::size_t k = 0; k < outputs.size(); ++k) {
            EXPECT_NEAR(outputs[k], expected[i][k], 1e-4 * std::max(1.0, std::abs(expected[i][k])))
                << GetParam().text << " at " << inputs[i][0];
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Operators, CalculatorAgainstInterpreter,
    testing::Values(
        Program{"dup 3 mul 1 sub abs exch neg", 2}, Program{"pop 7 2 idiv -7 2 mod 7 -2 mod", 3},
        Program{"1 add ln 100 log 2 0.5 exp 4 sqrt", 0 + 4 + 0},
        Program{"360 mul dup sin exch cos 1 1 atan -1 0 atan", 4},
        Program{"5 mul dup floor exch dup ceiling exch dup round exch truncate", 4},
        Program{"pop -2.5 round 2.5 round -2.5 cvi 3 cvr", 4},
        Program{"0.5 gt {1 2} {3 4} ifelse add 1 true {pop 9} if", 2},
        Program{"1 2 3 4 5 2 roll 4 -1 roll", 5}, Program{"1 2 3 2 copy 4 index exch pop", 6},
        Program{"pop 12 10 and 12 10 or 12 10 xor 12 not 5 3 bitshift 80 -3 bitshift", 6},
        Program{"0.25 eq {1} {0} ifelse 1 1.0 ne {1} {0} ifelse true false or {1}{0} ifelse", 3},
        Program{"0.5 le true and not {1}{0}ifelse 2147483 1 add -2147483 neg", 3},
        Program{"dup 0.3 lt{dup 0.1 lt{pop 1}{pop 2}ifelse}{0.7 ge{3}{4}ifelse}ifelse", 1}));

TEST(Calculator, OuterBracesAndCommentsAreOptional) {
    for (const char* text : {"2 mul", "{2 mul}", " { 2 % twice }\n mul } % done }", "{2\rmul}"}) {
        const auto function = Calculator(text, 1, 1);
        ASSERT_TRUE(function) << text;
        EXPECT_THAT(Evaluate(*function, {4}), ElementsAre(8)) << text;
        const auto* kind = FindInterface<COLOR::ICalculatorFunction>(
            function.Get(), COLOR::IID_ICALCULATORFUNCTION);
        EXPECT_STREQ(kind->GetProgram(), text);
    }
}

TEST(Calculator, ErrorsAtRunTimeGiveTheLeastOfTheRange) {
    for (const char* text :
         {"0 div", "pop", "pop -1 sqrt", "pop 0 ln", "0.5 exp pop 0 0 atan", "1.5 idiv", "true and",
          "pop true", "1 index", "2 copy", "5 1 roll", "-1 copy", "1 0 mod", "pop 1e300 1e300 mul",
          "pop -8 0.5 exp", "pop 3e9 cvi", "1 {1} if", "not", "0 bitshift"}) {
        const auto function = Calculator(text, 1, 1, 0.125F);
        ASSERT_TRUE(function) << text;
        EXPECT_THAT(Evaluate(*function, {0.5F}), ElementsAre(0.125F)) << text;
    }
}

TEST(Calculator, StackHoldsOneHundredValues) {
    std::string dups;
    for (int i = 0; i < 99; ++i) {
        dups += "dup ";
    }
    EXPECT_THAT(Evaluate(*Calculator(dups, 1, 1), {3}), ElementsAre(3));
    EXPECT_THAT(Evaluate(*Calculator(dups + "dup", 1, 1, 0), {3}), ElementsAre(0));
}

TEST(Calculator, WhatIsNoProgramIsRefused) {
    std::string deep;
    std::string pops;
    for (int i = 0; i < 40; ++i) {
        deep += "true{";
    }
    for (int i = 0; i < 40; ++i) {
        deep += "}if ";
    }
    for (int i = 0; i < 70000; ++i) {
        pops += "1 pop ";
    }
    const std::string texts[] = {"{2 mul",     "2 mul}",
                                 "{2} mul",    "{1}{2}{3}ifelse",
                                 "{1} ifelse", "{1}{2} if",
                                 "foo",        "1 0x10 add",
                                 "nan",        "+-1",
                                 "16#FF",      "(text)",
                                 "1e999",      "{1} {2} ifelse}",
                                 deep,         pops};
    for (const std::string& text : texts) {
        EXPECT_FALSE(Calculator(text, 1, 1)) << text.substr(0, 40);
    }
    std::string error;
    EXPECT_FALSE(HOST::MakeCalculatorFunction({{0, 1}, {}}, "2 mul", error));
    EXPECT_NE(error, "");
}

}  // namespace
}  // namespace VANTIX::TEST
