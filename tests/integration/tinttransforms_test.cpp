// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "host/color/functions.h"
#include "host/graphics/baseconnectionspace.h"
#include "host/host.h"
#include "host/io/fileprovider.h"
#include "host/support/logger.h"
#include "support/ghostscriptpages.h"
#include "support/temporaryfolder.h"

namespace VANTIX::HOST {
namespace {

using FunctionMaker = FunctionPtr (*)(std::string& error);

/// A tint function, and the family of the alternate space that it leads to.
struct Tint {
    const char* name;
    FunctionMaker make;
    FourCC alternate;
};

constexpr double kPi = 3.14159265358979323846;

FunctionShape Shape(std::size_t inputs, std::size_t outputs) {
    FunctionShape shape;
    for (std::size_t i = 0; i < inputs; ++i) {
        shape.domain.insert(shape.domain.end(), {0, 1});
    }
    for (std::size_t i = 0; i < outputs; ++i) {
        shape.range.insert(shape.range.end(), {0, 1});
    }
    return shape;
}

FunctionPtr Exponential(std::string& error, std::vector<float> c0, std::vector<float> c1,
                        float exponent) {
    const FunctionShape shape{{0, 1}, {}};
    return MakeExponentialFunction(shape, std::move(c0), std::move(c1), exponent, error);
}

FunctionPtr Linear(std::string& error) {
    return Exponential(error, {0, 0, 0, 0}, {0.1F, 0.6F, 0.9F, 0.2F}, 1);
}

FunctionPtr Curved(std::string& error) {
    return Exponential(error, {0, 0.1F, 0, 0.05F}, {0.9F, 0.3F, 0.2F, 0.4F}, 1.8F);
}

FunctionPtr LinearRGB(std::string& error) {
    return Exponential(error, {1, 1, 1}, {0.2F, 0.5F, 0.9F}, 1);
}

FunctionPtr CurvedGray(std::string& error) {
    return Exponential(error, {1}, {0.2F}, 0.45F);
}

FunctionPtr Stitched(std::string& error) {
    return MakeStitchingFunction(Shape(1, 4), {Linear(error), Curved(error), Linear(error)},
                                 {0.25F, 0.7F}, {0, 1, 1, 0, 0.2F, 0.8F}, error);
}

FunctionPtr StitchedTwice(std::string& error) {
    return MakeStitchingFunction(Shape(1, 4), {Stitched(error), Curved(error)}, {0.5F},
                                 {0, 1, 1, 0.5F}, error);
}

/// A table of one input: a smooth curve for each output.
FunctionPtr SampledCurve(std::string& error) {
    SampledTable table;
    table.sizes = {64};
    for (int i = 0; i < 64; ++i) {
        for (int output = 0; output < 4; ++output) {
            const double value = 0.5 - 0.5 * std::cos(kPi * i / 63.0 * (output + 1) / 2);
            table.samples.push_back(static_cast<std::uint8_t>(std::lround(value * 255)));
        }
    }
    return MakeSampledFunction(Shape(1, 4), table, error);
}

FunctionPtr SampledSteps(std::string& error) {
    SampledTable table;
    table.sizes = {3};
    table.bitsPerSample = 16;
    table.decode = {1, 0, 0, 1, 0, 0.5F};
    table.samples = {0, 0, 0, 0, 0, 0, 0x40, 0, 0x90, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0};
    return MakeSampledFunction(Shape(1, 3), table, error);
}

FunctionPtr Program(std::string& error) {
    return MakeCalculatorFunction(
        Shape(1, 4), "{ dup 0.5 gt { dup 0.9 mul exch 0.3 } { dup sqrt exch dup } ifelse 0.1 }",
        error);
}

FunctionPtr TwoInkProgram(std::string& error) {
    return MakeCalculatorFunction(
        Shape(2, 4), "{ 2 copy mul 3 1 roll dup 0.8 mul exch 0.2 mul 3 2 roll 0.7 mul }", error);
}

FunctionPtr FiveInkProgram(std::string& error) {
    return MakeCalculatorFunction(Shape(5, 3),
                                  "{ add 2 div 1 exch sub 4 1 roll add 2 div 1 exch sub 3 1 roll "
                                  "1 exch sub }",
                                  error);
}

/// Each ink over the others: 1 - the product of (1 - tint x full tint).
FunctionPtr OverprintTable(std::string& error) {
    constexpr float kInks[3][4] = {
        {0.9F, 0.1F, 0, 0}, {0, 0.8F, 0.2F, 0.1F}, {0.1F, 0, 0.9F, 0.05F}};
    SampledTable table;
    table.sizes = {2, 2, 2};
    for (unsigned corner = 0; corner < 8; ++corner) {
        for (int output = 0; output < 4; ++output) {
            float paper = 1;
            for (unsigned ink = 0; ink < 3; ++ink) {
                paper *= (corner >> ink & 1U) != 0 ? 1 - kInks[ink][output] : 1;
            }
            table.samples.push_back(static_cast<std::uint8_t>(std::lround((1 - paper) * 255)));
        }
    }
    return MakeSampledFunction(Shape(3, 4), table, error);
}

/// Any corners at all: over RGB nothing is assumed about the inks.
FunctionPtr RGBTable(std::string& error) {
    SampledTable table;
    table.sizes = {2, 2};
    table.samples = {255, 255, 255, 200, 30, 90, 10, 220, 130, 40, 0, 255};
    return MakeSampledFunction(Shape(2, 3), table, error);
}

std::vector<Tint> Tints() {
    return {{"Linear", Linear, "cmyk"_cc},
            {"Curved", Curved, "cmyk"_cc},
            {"LinearRGB", LinearRGB, "rgb "_cc},
            {"CurvedGray", CurvedGray, "gray"_cc},
            {"Stitched", Stitched, "cmyk"_cc},
            {"StitchedTwice", StitchedTwice, "cmyk"_cc},
            {"SampledCurve", SampledCurve, "cmyk"_cc},
            {"SampledSteps", SampledSteps, "rgb "_cc},
            {"Program", Program, "cmyk"_cc},
            {"TwoInkProgram", TwoInkProgram, "cmyk"_cc},
            {"FiveInkProgram", FiveInkProgram, "rgb "_cc},
            {"OverprintTable", OverprintTable, "cmyk"_cc},
            {"RGBTable", RGBTable, "rgb "_cc}};
}

/// Tints to be tried: a fine ramp of one ink, all combinations of a coarse one of several.
std::vector<std::vector<float>> Probes(std::size_t inputs) {
    const int steps = inputs == 1 ? 41 : inputs == 2 ? 6 : 3;
    std::vector<std::vector<float>> probes{{}};
    for (std::size_t i = 0; i < inputs; ++i) {
        std::vector<std::vector<float>> longer;
        for (const std::vector<float>& probe : probes) {
            for (int step = 0; step < steps; ++step) {
                longer.push_back(probe);
                longer.back().push_back(static_cast<float>(step) / static_cast<float>(steps - 1));
            }
        }
        probes = std::move(longer);
    }
    return probes;
}

/// Written before the job: stands in for a distiller's operator, and remembers every colour space
/// array that is selected.
constexpr const char* kCapture =
    "%!PS\n/setdistillerparams {pop} def\n"
    "/setcolorspace {dup type /arraytype eq {userdict /Space 2 index put} if\n"
    "  systemdict /setcolorspace get exec} def\n";

class TintTransform : public testing::TestWithParam<Tint> {
protected:
    TintTransform() {
        SetLogSink(
            [](const LogEntry& entry) { ADD_FAILURE() << entry.file << ": " << entry.text; });
        std::string error;
        EXPECT_TRUE(mHost.LoadPlugin(NORVANE_PLUGIN, error)) << error;
    }

    ~TintTransform() override { SetLogSink({}); }

    ColorSpacePtr MakeSpace(const FunctionPtr& function, std::string& error) {
        ColorSpaceFactory& factory = mHost.ColorSpaces();
        const ColorSpacePtr alternate = factory.DeviceSpace(GetParam().alternate);
        const FunctionPtr tint = NormaliseTintFunction(function, GetParam().alternate == "cmyk"_cc);
        const std::int32_t inputs = tint->GetInputCount();
        if (inputs == 1) {
            return factory.SeparationSpace("Ink", alternate, tint, error);
        }
        const std::vector<std::string> all{"Orange", "Blue", "Green", "Plum", "Gold"};
        const std::vector<std::string> names(all.begin(), all.begin() + inputs);
        return factory.DeviceNSpace(names, alternate, tint, {}, error);
    }

    /// Runs a job that paints with `space`, after `kCapture`, into the file.
    void WriteJob(const ColorSpacePtr& space, const std::string& path) {
        const auto output =
            MakeObject<FileProvider>(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600));
        output->Write(kCapture, std::char_traits<char>::length(kCapture));
        const auto exporter = mHost.CreateExporter();
        const auto policy = mHost.CreatePolicy();
        auto* base = BaseConnectionSpace::From(exporter->Begin(*output, policy.Get()));
        ASSERT_NE(base, nullptr);
        constexpr ResourceId kNumber = 1000;
        base->EnterColorSpace(space.Get(), kNumber);
        base->State().Current().fill = {space, kNumber, {}, space->GetComponentCount()};
        base->MoveTo(0, 0);
        base->Fill();
        base->NewPath();
        EXPECT_EQ(exporter->End(), 0);
        EXPECT_EQ(output->Flush(), 0);
    }

    Host mHost;
    TEST::TemporaryFolder mFolder;
};

TEST_P(TintTransform, GivesTheFunctionsValuesInAnInterpreter) {
    std::string error;
    const FunctionPtr tint = GetParam().make(error);
    ASSERT_TRUE(tint) << error;
    const ColorSpacePtr space = MakeSpace(tint, error);
    ASSERT_TRUE(space) << error;
    const std::string path = mFolder.File("job.ps");
    WriteJob(space, path);

    const auto probes = Probes(static_cast<std::size_t>(tint->GetInputCount()));
    std::ostringstream program;
    program << TEST::ReadFile(path);
    for (const std::vector<float>& probe : probes) {
        program << "[";
        for (const float value : probe) {
            program << ' ' << value;
        }
        program << " Space 3 get exec] {=only ( ) print} forall\n";
    }
    const TEST::ProgramOutput run = TEST::RunPostScript(program.str());
    ASSERT_EQ(run.complaint, "");

    std::istringstream printed(run.text);
    for (const std::vector<float>& probe : probes) {
        std::vector<float> expected(static_cast<std::size_t>(tint->GetOutputCount()));
        tint->Evaluate(probe.data(), expected.data());
        for (const float value : expected) {
            float got = -1;
            ASSERT_TRUE(printed >> got) << run.text;
            EXPECT_NEAR(got, value, 1.0 / 255) << testing::PrintToString(probe);
        }
    }
    std::string more;
    EXPECT_FALSE(printed >> more) << "left over: " << more;
}

struct NameOfTint {
    std::string operator()(const testing::TestParamInfo<Tint>& tint) const {
        return tint.param.name;
    }
};

INSTANTIATE_TEST_SUITE_P(Functions, TintTransform, testing::ValuesIn(Tints()), NameOfTint());

}  // namespace
}  // namespace VANTIX::HOST
