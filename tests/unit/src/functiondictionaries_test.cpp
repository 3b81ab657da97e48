// SPDX-License-Identifier: MIT
#include "postscriptconnectionspace/functiondictionaries.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "support/outputcontextfixture.h"
#include "support/programpage.h"

namespace VANTIX {
namespace {

using COLOR::TRenderingIntent;
using TEST::FakeCalculator;
using TEST::FakeCalibratedSpace;
using TEST::FakeDeviceSpace;
using TEST::FakeExponential;
using TEST::FakeFunctionArray;
using TEST::FakeSampled;
using TEST::FakeSeparationSpace;
using TEST::FakeStitching;
using TEST::RecordingLogger;
using FunctionPtr = TInterfacePtr<COLOR::IColorFunction>;
using SpacePtr = TInterfacePtr<COLOR::IConnectionColorSpace>;

constexpr auto kFirst = TRenderingIntent::kPerceptual;
constexpr auto kSecond = TRenderingIntent::kRelativeColorimetric;

FunctionPtr Ramp(std::vector<float> from, std::vector<float> to, float exponent = 1) {
    const auto outputs = static_cast<std::int32_t>(from.size());
    return MakeObject<FakeExponential>(outputs, std::move(from), std::move(to), exponent);
}

/// Two pieces, the second one backwards.
TInterfacePtr<FakeStitching> Peak(const FunctionPtr& member) {
    auto peak = MakeObject<FakeStitching>();
    peak->outputs = member->GetOutputCount();
    peak->members = {member, member};
    peak->bounds = {0.25F};
    peak->encode = {{0.0F, 1.0F}, {1.0F, 0.0F}};
    return peak;
}

FunctionPtr Deep(int levels) {
    FunctionPtr function = Ramp({0, 0, 0}, {1, 0.5F, 0.25F});
    for (int i = 0; i < levels; ++i) {
        function = Peak(function);
    }
    return function;
}

/// A ramp in each output, as members and as a rule.
TInterfacePtr<FakeFunctionArray> Array(std::vector<float> from, std::vector<float> to) {
    const auto whole = Ramp(from, to);
    auto array = MakeObject<FakeFunctionArray>(
        1, whole->GetOutputCount(),
        [whole](const float* in, float* out) { whole->Evaluate(in, out); });
    for (std::size_t i = 0; i < from.size(); ++i) {
        array->members.push_back(Ramp({from[i]}, {to[i]}));
    }
    return array;
}

/// From blue at 0 to yellow at 1, and what that becomes when it is converted.
TInterfacePtr<FakeSampled> Table() {
    auto table = MakeObject<FakeSampled>(1, 3, [](const float* in, float* out) {
        out[0] = out[1] = in[0];
        out[2] = 1 - in[0];
    });
    table->sizes = {2};
    table->range = {0, 1, 0, 1, 0, 1};
    table->encode = {0, 1};
    table->decode = {0, 1, 0, 1, 0, 1};
    table->samples = {0, 0, 255, 255, 255, 0};
    return table;
}

FunctionPtr TableToConvert() {
    auto table = Table();
    table->converted.swap(table->samples);
    table->outputs = 4;
    return table;
}

FunctionPtr Program(std::int32_t inputs, float from, float to) {
    auto program = MakeObject<FakeCalculator>("{}", inputs, 3, [=](const float* in, float* out) {
        out[0] = (in[0] - from) / (to - from);
        out[1] = inputs == 1 ? 0.5F : (in[1] - from) / (to - from);
        out[2] = 1 - out[0] * out[1];
    });
    for (std::size_t i = 0; i < program->domain.size(); ++i) {
        program->domain[i] = i % 2 == 0 ? from : to;
    }
    return program;
}

FunctionPtr TableOfTwoInputs() {
    auto table = MakeObject<FakeSampled>(
        2, 1, [](const float* in, float* out) { out[0] = in[1] + in[0] * (0.5F - in[1]); });
    table->sizes = {2, 2};
    table->range = {0, 1};
    table->samples = {0, 127, 255, 127};
    return table;
}

SpacePtr Device(FourCC family) {
    return MakeObject<FakeDeviceSpace>(family);
}

SpacePtr Tint() {
    return MakeObject<FakeSeparationSpace>("Spot", Device("gray"_cc), nullptr);
}

class FunctionDictionaries : public TEST::OutputContextFixture {
protected:
    /// The dictionary, or "(status)" when nothing was written.
    std::string Write(const COLOR::IColorFunction& function, const SpacePtr& source,
                      const SpacePtr& destination = nullptr) {
        const Status status = WriteFunctionToPostScript(
            *factory, function, *source, destination.Get(), kFirst, kSecond, *filters);
        std::string written = Written();
        EXPECT_EQ(status == STATUS::kOk, !written.empty());
        return written.empty() ? "(" + std::to_string(status) + ")" : written;
    }

    RecordingLogger& log = RecordingLogger::Get();
    SpacePtr gray = Device("gray"_cc);
    SpacePtr rgb = Device("rgb "_cc);
    SpacePtr cmyk = Device("cmyk"_cc);
};

struct Case {
    const char* name;
    std::function<FunctionPtr()> make;
    FourCC source;       ///< 0 for a tint
    FourCC destination;  ///< 0 for none
};

const Case kCases[] = {
    {"Linear",
     [] {
         return Ramp({1, 0, 0.25F}, {0, 0.5F, 1});
     },
     "rgb "_cc, 0},
    {"Power",
     [] {
         return Ramp({1, 0, 0.25F}, {0, 0.5F, 1}, 2.5F);
     },
     "rgb "_cc, 0},
    {"Stitching",
     [] {
         return Peak(Ramp({1, 0, 0}, {0, 0, 1}));
     },
     "rgb "_cc, 0},
    {"Nested", [] { return Deep(3); }, "rgb "_cc, 0},
    {"Table", Table, "rgb "_cc, "rgb "_cc},
    {"TableOfTwoInputs", TableOfTwoInputs, "gray"_cc, 0},
    {"Calculator", [] { return Program(1, -1, 1); }, "rgb "_cc, 0},
    {"CalculatorOfTwoInputs", [] { return Program(2, 0, 20); }, "rgb "_cc, 0},
    {"CalculatorInAPiece", [] { return Peak(Program(1, 0, 1)); }, "rgb "_cc, 0},
    {"Array",
     [] {
         return Array({0, 1, 0.5F}, {1, 0, 0.5F});
     },
     "rgb "_cc, 0},
    {"LinearFromInks",
     [] {
         return Ramp({1, 0, 0, 0}, {0, 0, 0.5F, 0});
     },
     "cmyk"_cc, "rgb "_cc},
    {"LinearFromGray", [] { return Ramp({1}, {0}); }, "gray"_cc, "rgb "_cc},
    {"LinearFromATint", [] { return Ramp({1}, {0}); }, 0, "rgb "_cc},
    {"CalculatorToGray", [] { return Program(1, 0, 1); }, "rgb "_cc, "gray"_cc},
    {"ArrayFromInks",
     [] {
         return Array({1, 0, 0, 0}, {0, 0, 0.5F, 0});
     },
     "cmyk"_cc, "rgb "_cc},
};

class PaintedFunctions : public FunctionDictionaries, public ::testing::WithParamInterface<Case> {};

TEST_P(PaintedFunctions, ShowWhatTheFunctionComputes) {
    const Case& kind = GetParam();
    const FunctionPtr function = kind.make();
    const SpacePtr source = kind.source == 0 ? Tint() : Device(kind.source);
    const SpacePtr destination = kind.destination == 0 ? nullptr : Device(kind.destination);
    const SpacePtr target = destination ? destination : source;
    const float* domain = function->GetDomain();
    const bool isPlane = function->GetInputCount() == 2;
    std::ostringstream program;
    program << "<< /ColorSpace "
            << (target->GetComponentCount() == 1 ? "/DeviceGray" : "/DeviceRGB") << " /Domain ["
            << domain[0] << ' ' << domain[1];
    if (isPlane) {
        const float scale = 64 / (domain[1] - domain[0]);
        program << ' ' << domain[2] << ' ' << domain[3] << "] /ShadingType 1 /Matrix [" << scale
                << " 0 0 " << scale << " 0 0";
    } else {
        program << "] /ShadingType 2 /Coords [0 0 64 0";
    }
    program << "] /Function " << Write(*function, source, destination) << " >> shfill";
    const TEST::PageImage drawn = TEST::DrawProgram(program.str());
    ASSERT_EQ(drawn.width, 64U);
    const ColorRoute route{*source, destination.Get(), kFirst, kSecond};
    for (std::size_t x = 2; x < 64; x += 5) {
        const float across = (static_cast<float>(x) + 0.5F) / 64;
        const float up = 32.5F / 64;
        const float inputs[] = {domain[0] + across * (domain[1] - domain[0]),
                                isPlane ? domain[2] + up * (domain[3] - domain[2]) : 0};
        float values[COLOR::kMaxComponents] = {};
        function->Evaluate(inputs, values);
        ASSERT_TRUE(route.Apply(values));
        for (std::size_t i = 0; i < 3; ++i) {
            const float value = values[target->GetComponentCount() == 1 ? 0 : i];
            EXPECT_NEAR(drawn.At(x, 31, i), 255 * value, 6) << "column " << x << " channel " << i;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, PaintedFunctions, ::testing::ValuesIn(kCases),
                         [](const auto& parameter) { return parameter.param.name; });

TEST_F(FunctionDictionaries, TextsOfTheKinds) {
    const auto ramp = Ramp({0, 1, 0.5F}, {1, 0.25F, 0.5F}, 2);
    const std::string head = "\n\t<<\n\t\t/Domain [0 1]\n";
    const std::string piece =
        head + "\t\t/FunctionType 2\n/C0 [0 1 0.5 ]/C1 [1 0.25 0.5 ]/N 2\n\t>>\n";
    EXPECT_EQ(Write(*ramp, rgb), piece);
    EXPECT_EQ(Write(*Peak(ramp), rgb), head +
                                           "\t\t/FunctionType 3\n\t\t/Bounds [ 0.25 ]\n"
                                           "\t\t/Encode [0 1 1 0 ]\n\t\t/Functions [" +
                                           piece + piece + "]\n\t>>\n");
    const auto table = Table();
    EXPECT_EQ(Write(*table, rgb), head +
                                      "\t\t/FunctionType 0\n\t\t/BitsPerSample 8\n"
                                      "\t\t/Size [2 ]\n\t\t/Order 1\n\t\t/Encode [0 1 ]\n"
                                      "\t\t/Decode [0 1 0 1 0 1 ]\n\t\t/Range [0 1 0 1 0 1]\n"
                                      "\t\t/DataSource <0000FFFFFF00>\n\t>>\n");
    EXPECT_EQ(Write(*TableToConvert(), cmyk, rgb),
              head +
                  "\t\t/FunctionType 0\n\t\t/BitsPerSample 8\n\t\t/Size [2 ]\n\t\t/Order 1\n"
                  "\t\t/Encode [0 1 ]\n\t\t/Range [0 1 0 1 0 1]\n\t\t/Decode [0 1 0 1 0 1]\n"
                  "\t\t/DataSource <0000FFFFFF00>\n\t>>\n");
    const auto array = Array({0, 1, 0}, {1, 0, 0});
    const std::string members = Write(*array, rgb, rgb);
    EXPECT_EQ(members.substr(0, 4 + head.size()), "[\n" + head + "\t\t");
    EXPECT_EQ(members.substr(members.size() - 9), "\n\t>>\n\t\t]\n");
    table->encode = {0.9F, 1.9F};
    EXPECT_NE(Write(*table, rgb).find("/Encode [0 1 ]"), std::string::npos);
}

TEST_F(FunctionDictionaries, RangesStandWhereTheyClip) {
    auto ramp = MakeObject<FakeExponential>(1, std::vector<float>(), std::vector<float>(), 1.0F);
    ramp->range = {0, 1};
    const std::string text =
        "\n\t<<\n\t\t/Domain [0 1]\n\t\t/FunctionType 2\n/C0 [0 ]/C1 [1 ]/N 1\n\t>>\n";
    EXPECT_EQ(Write(*ramp, gray), text);
    ramp->range = {0, 0.5F};
    EXPECT_NE(Write(*ramp, gray).find("[0 1]\n\t\t/Range [0 0.5]\n"), std::string::npos);
    EXPECT_EQ(Write(*ramp, gray, gray), text);
}

TEST_F(FunctionDictionaries, ProgramsKeepARangeBeyondOne) {
    const auto lab = MakeObject<FakeCalibratedSpace>("clab"_cc);
    auto program = MakeObject<FakeCalculator>("", 1, 3, [](const float* in, float* out) {
        out[0] = 100 * in[0];
        out[1] = -64;
        out[2] = std::nanf("");
    });
    program->range = {0, 100, -128, 128, -128, 128};
    const std::string text = Write(*program, lab);
    EXPECT_NE(text.find("/Range [ 0 100  -128 128  -128 128 ]"), std::string::npos) << text;
    EXPECT_NE(text.find("<003F00"), std::string::npos) << text;
    EXPECT_NE(text.find("FF3F00>\n\n\t>>"), std::string::npos) << text;
}

TEST_F(FunctionDictionaries, ProgramsAreSampledByTheWidthOfTheirDomain) {
    const struct {
        std::vector<float> domain;
        const char* text;
    } kWidths[] = {
        {{0, 1}, "[0 31]\n\t\t/Size [32]\n"},
        {{0, 99.5F}, "[0 98]\n\t\t/Size [99]\n"},
        {{-1e9F, 1e9F}, "[0 255]\n\t\t/Size [256]\n"},
        {{0, 200, 1, 4}, "[0 126 0 15]\n\t\t/Size [127 16]\n"},
    };

    for (const auto& width : kWidths) {
        auto program =
            MakeObject<FakeCalculator>("", static_cast<std::int32_t>(width.domain.size() / 2), 1,
                                       [](const float*, float* out) { out[0] = 2; });
        program->domain = width.domain;
        WritePostScriptCalculatorFunctionToPostScript(*factory, program.Get(), *gray, nullptr,
                                                      kFirst, kSecond, *filters);
        EXPECT_NE(Written().find(std::string("\t\t/FunctionType 0\n\t\t/Range [ 0 1 ]\n"
                                             "\t\t/BitsPerSample 8\n\t\t/Encode ") +
                                 width.text),
                  std::string::npos)
            << width.text;
    }
}

TEST_F(FunctionDictionaries, WhatCannotBeWrittenLeavesNoOpenDictionary) {
    const auto ignored = [](const float*, float*) {};
    auto noDomain = MakeObject<FakeExponential>(1, std::vector{0.0F}, std::vector{1.0F}, 1.0F);
    noDomain->domain.clear();
    auto backwards = MakeObject<FakeExponential>(1, std::vector{0.0F}, std::vector{1.0F}, 1.0F);
    backwards->domain = {1, 0};
    auto program = MakeObject<FakeCalculator>("", 1, 1, ignored);
    program->domain.clear();
    auto gap = Peak(Ramp({0}, {1}));
    gap->members[1] = nullptr;
    auto unsorted = Peak(Ramp({0}, {1}));
    unsorted->bounds = {2};
    auto crossed = Peak(Ramp({0}, {1}));
    crossed->members[1] = Ramp({0, 0}, {1, 1});
    auto arrayInside = Peak(Ramp({0}, {1}));
    arrayInside->members[1] = Array({0}, {1});
    auto broken = Array({0}, {1});
    broken->members[0] = nullptr;
    auto noRange = TableOfTwoInputs();
    static_cast<FakeSampled&>(*noRange).range.clear();
    constexpr const char* kUnknown = "I don't know how to write this function to PostScript.";

    const struct {
        FunctionPtr function;
        SpacePtr source;
        SpacePtr destination;
        const char* message;
    } kRefused[] = {
        {noDomain, gray, nullptr, "There is no domain of the function.!!!"},
        {backwards, gray, nullptr, "There is no domain of the function.!!!"},
        {program, gray, nullptr, "Input function must does have domain entry which is must!!!"},
        {MakeObject<FakeCalculator>("", 3, 1, ignored), gray, nullptr,
         "Input PostScript Calculator function is a3-in-1-out function"},
        {gap, gray, nullptr, kUnknown},
        {unsorted, gray, nullptr, kUnknown},
        {crossed, gray, nullptr, kUnknown},
        {arrayInside, gray, nullptr, kUnknown},
        {broken, gray, nullptr, "Some problem in wrting array of function dictionary!"},
        {noRange, gray, nullptr, kUnknown},
        {Table(), rgb, cmyk, kUnknown},
        {Table(), rgb, MakeObject<TEST::FakeDeviceNSpace>(), kUnknown},
        {Ramp({0}, {1}, -1), gray, nullptr, kUnknown},
        {Ramp({0}, {1}), rgb, nullptr, kUnknown},
        {Deep(33), rgb, nullptr, kUnknown},
        // Shared members of 2^31 pieces are given up, not written.
        {Deep(31), rgb, nullptr, kUnknown},
    };

    int index = 0;
    for (const auto& refused : kRefused) {
        log.Clear();
        EXPECT_EQ(Write(*refused.function, refused.source, refused.destination).front(), '(')
            << index;
        EXPECT_TRUE(log.Has(refused.message)) << index << ' ' << log.Messages();
        ++index;
    }
    auto two = MakeObject<TEST::FakeDeviceNSpace>();
    two->components = 2;
    two->number = 9;
    EXPECT_EQ(Write(*Table(), rgb, two).front(), '(');
    EXPECT_TRUE(log.Has("Currently we do not support a channelcount of 2"));
}

TEST_F(FunctionDictionaries, WritersOfOneKindRefuseOthers) {
    const auto ramp = Ramp({0}, {1});
    EXPECT_NE(WriteCompositeFunctionToPostScript(*factory, *ramp, *gray, nullptr, kFirst, kSecond,
                                                 *filters),
              STATUS::kOk);
    WritePostScriptCalculatorFunctionToPostScript(*factory, ramp.Get(), *gray, nullptr, kFirst,
                                                  kSecond, *filters);
    EXPECT_NE(WriteSampledFunctionToLevel3PostScript(*factory, nullptr, *ramp, *gray, nullptr,
                                                     kFirst, kSecond, *filters),
              STATUS::kOk);
    EXPECT_EQ(Written(), "");
    EXPECT_EQ(log.Messages(),
              "Input function is not a composite function (an array of functions)!\n"
              "Input function must be PostScript Calculator function!!!\n");
    auto table = Table();
    WriteSampledFunctionToLevel3PostScript(*factory, table.Get(), *table, *rgb, nullptr, kFirst,
                                           kSecond, *filters);
    EXPECT_EQ(Written().rfind("\t\t/FunctionType 0\n", 0), 0U);
}

TEST_F(FunctionDictionaries, HexadecimalStringsBreakAfterFortyBytes) {
    const std::vector<std::uint8_t> bytes(81, 0xA5);
    std::string row;
    for (int i = 0; i < 40; ++i) {
        row += "A5";
    }
    const std::pair<std::int32_t, std::string> kTexts[] = {
        {0, "<>\n"}, {2, "<A5A5>\n"}, {40, "<" + row + "\n>\n"}, {41, "<" + row + "\nA5>\n"}};
    for (const auto& [length, text] : kTexts) {
        EXPECT_EQ(WriteHexStringDataSource(*filters, bytes.data(), length), STATUS::kOk);
        EXPECT_EQ(page->writes, 2);
        EXPECT_EQ(Written(), "\t\t/DataSource " + text);
    }
    EXPECT_NE(WriteHexStringDataSource(*filters, nullptr, 1), STATUS::kOk);
    EXPECT_NE(WriteHexStringDataSource(*filters, bytes.data(), -1), STATUS::kOk);
    EXPECT_EQ(Written(), "");
}

}  // namespace
}  // namespace VANTIX
