// SPDX-License-Identifier: MIT
#include "app/options.h"

#include <gmock/gmock.h>

#include <sstream>

#include "core/io/ioutputfilterstack.h"

namespace VANTIX::APP {
namespace {

struct Outcome {
    CommandLine command;
    std::string out;
    std::string error;
};

Outcome Parse(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "norvane");
    std::ostringstream out;
    std::ostringstream error;
    auto command =
        ParseCommandLine(static_cast<int>(arguments.size()), arguments.data(), out, error);
    return {std::move(command), out.str(), error.str()};
}

Options Accepted(std::vector<const char*> arguments) {
    Outcome outcome = Parse(std::move(arguments));
    EXPECT_TRUE(outcome.command.options.has_value()) << outcome.error;
    return outcome.command.options.value_or(Options{});
}

TEST(CommandLine, DefaultsSuitModernInterpreters) {
    const Options options = Accepted({"folder.d/in.pdf"});
    EXPECT_EQ(options.output, "folder.d/in.ps");
    EXPECT_EQ(options.policy.Int(KEY::kColorModel, 0), 10);
    EXPECT_EQ(options.policy.Int(KEY::kLanguageLevel, 0), 3);
    EXPECT_TRUE(options.policy.Bool(IO::FILTER::kFlate));
    EXPECT_TRUE(options.policy.Bool(IO::FILTER::kAscii85));
    EXPECT_FALSE(options.policy.Bool(IO::FILTER::kRunLength));
    EXPECT_TRUE(options.policy.Bool(KEY::kFlipImages));
    EXPECT_TRUE(options.policy.Bool(KEY::kNoInnerEnd));
    EXPECT_EQ(options.policy.Entries().count(106), 0U);
}

TEST(CommandLine, ModelsInInksHaveTheirNumbers) {
    const std::pair<const char*, std::int32_t> kModels[] = {
        {"cmyk", 7}, {"cmyk-managed", 8}, {"devicen", 15}, {"devicen-managed", 16}};
    for (const auto& [name, number] : kModels) {
        const Options options = Accepted({"--color", name, "in.pdf"});
        EXPECT_EQ(options.policy.Int(KEY::kColorModel, 0), number) << name;
    }
    EXPECT_TRUE(Parse({"--level", "2", "--color", "cmyk", "a"}).command.options.has_value());
    EXPECT_FALSE(Parse({"--level", "2", "--color", "devicen", "a"}).command.options.has_value());
}

TEST(CommandLine, LevelBringsItsDefaultsHoweverItIsGiven) {
    for (const auto& arguments :
         {std::vector<const char*>{"--level", "2", "in.pdf"}, {"--policy", "103=2", "in.pdf"}}) {
        const Options options = Accepted(arguments);
        EXPECT_EQ(options.policy.Int(KEY::kLanguageLevel, 0), 2);
        EXPECT_FALSE(options.policy.Bool(IO::FILTER::kFlate));
        EXPECT_TRUE(options.policy.Bool(IO::FILTER::kRunLength));
        EXPECT_FALSE(options.policy.Bool(KEY::kTrueType, true));
    }
}

TEST(CommandLine, PolicyKeysGoLastAndLeaveTheFilesAlone) {
    const Options options =
        Accepted({"--policy", "106=false", "--policy", "112=7", "in.pdf", "out.ps"});
    EXPECT_EQ(options.output, "out.ps");
    EXPECT_FALSE(options.policy.Bool(106, true));
    EXPECT_EQ(options.policy.Entries().at(112), Policy::Value(std::uint8_t{7}));
}

TEST(CommandLine, FontsAreTheInterpretersWhereNothingIsSaid) {
    const Options options = Accepted({"in.pdf"});
    EXPECT_FALSE(options.fonts.embedStandardFonts);
    EXPECT_EQ(options.fonts.missing, PDF::MissingFonts::kSubstitute);
    EXPECT_FALSE(options.keepsHiddenText);
    EXPECT_TRUE(options.policy.Bool(KEY::kTrueType));
}

TEST(CommandLine, FontsDoAsTheyAreTold) {
    const Options options =
        Accepted({"--embed-standard-fonts", "--no-truetype", "--hidden-text", "keep", "--font",
                  "A,Bold=x=y.pfb", "--font", "B=z.ttf", "--missing-fonts", "fail", "in.pdf"});
    EXPECT_TRUE(options.fonts.embedStandardFonts);
    EXPECT_EQ(options.fonts.missing, PDF::MissingFonts::kFail);
    EXPECT_THAT(options.fonts.files, testing::ElementsAre(testing::Pair("A,Bold", "x=y.pfb"),
                                                          testing::Pair("B", "z.ttf")));
    EXPECT_TRUE(options.keepsHiddenText);
    EXPECT_FALSE(options.policy.Bool(KEY::kTrueType, true));
}

TEST(CommandLine, StandardOutputHasTwoNames) {
    EXPECT_EQ(Accepted({"in.pdf", "-"}).output, "-");
    EXPECT_EQ(Accepted({"in.pdf", "/dev/stdout"}).output, "-");
}

struct Refusal {
    std::vector<const char*> arguments;
    const char* named;
};

class CommandLineRefusal : public testing::TestWithParam<Refusal> {};

TEST_P(CommandLineRefusal, NamesWhatIsWrong) {
    const Outcome outcome = Parse(GetParam().arguments);
    EXPECT_FALSE(outcome.command.options.has_value());
    EXPECT_EQ(outcome.command.status, ExitCode::kUsage);
    EXPECT_THAT(outcome.error, testing::HasSubstr(GetParam().named));
}

INSTANTIATE_TEST_SUITE_P(
    All, CommandLineRefusal,
    testing::Values(
        Refusal{{}, "INPUT"}, Refusal{{""}, "INPUT"}, Refusal{{"a", "b", "c"}, "c"},
        Refusal{{"--nonsense", "a"}, "--nonsense"}, Refusal{{"--level", "1", "a"}, "--level"},
        Refusal{{"--color", "mauve", "a"}, "mauve"}, Refusal{{"--box", "art", "a"}, "--box"},
        Refusal{{"--intent", "best", "a"}, "--intent"}, Refusal{{"--pages", "0", "a"}, "--pages"},
        Refusal{{"--encode", "flate,lzw", "a"}, "lzw"},
        Refusal{{"--level", "2", "--encode", "flate", "a"}, "--encode flate"},
        Refusal{{"--level", "2", "--policy", "4=true", "a"}, "--encode flate"},
        Refusal{{"--policy", "100", "a"}, "KEY=VALUE"}, Refusal{{"--policy", "102=1", "a"}, "102"},
        Refusal{{"--policy", "106=2", "a"}, "106"}, Refusal{{"--policy", "112=256", "a"}, "112"},
        Refusal{{"--policy", "103=4", "a"}, "103"}, Refusal{{"--report", "-", "a"}, "--report"},
        Refusal{{"--report", "b.ps", "a", "b.ps"}, "--report"},
        Refusal{{"--font", "x.ttf", "a"}, "NAME=FILE"}, Refusal{{"--font", "=x", "a"}, "--font"},
        Refusal{{"--hidden-text", "show", "a"}, "--hidden-text"},
        Refusal{{"--missing-fonts", "guess", "a"}, "--missing-fonts"}));

TEST(CommandLine, HelpAndVersionAreNoErrors) {
    EXPECT_THAT(Parse({"--help"}).out, testing::HasSubstr("--color"));
    const Outcome version = Parse({"--version"});
    EXPECT_EQ(version.command.status, ExitCode::kDone);
    EXPECT_THAT(version.out, testing::StartsWith("norvane "));
}

}  // namespace
}  // namespace VANTIX::APP
