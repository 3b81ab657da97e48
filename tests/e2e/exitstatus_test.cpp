// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <filesystem>

#include "support/temporaryfolder.h"
#include "tool.h"

namespace VANTIX::TEST {
namespace {

namespace fs = std::filesystem;

struct FailingRun {
    const char* name;
    std::vector<std::string> arguments;
    int status;
    const char* message;
};

/// "OUT" stands for an old file, "IN" for a good input.
class FailingRuns : public testing::TestWithParam<FailingRun> {};

TEST_P(FailingRuns, SayWhyAndLeaveTheOldFileAlone) {
    const TemporaryFolder folder;
    const std::string old = folder.File("old.ps");
    WriteFile(old, "old contents");
    std::vector<std::string> arguments = GetParam().arguments;
    std::replace(arguments.begin(), arguments.end(), std::string("OUT"), old);
    std::replace(arguments.begin(), arguments.end(), std::string("IN"), CasePath("forms"));
    const ChildResult run = RunTool(arguments);
    EXPECT_EQ(run.exitStatus, GetParam().status) << run.errors;
    EXPECT_THAT(run.errors, testing::StartsWith("norvane: error: "));
    EXPECT_THAT(run.errors, testing::HasSubstr(GetParam().message));
    EXPECT_EQ(ReadFile(old), "old contents");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator()), 1);
}

INSTANTIATE_TEST_SUITE_P(
    All, FailingRuns,
    testing::Values(
        FailingRun{"UnknownOption", {"--nonsense", "IN", "OUT"}, kWrongUsage, "--nonsense"},
        FailingRun{"PageNotThere", {"--pages", "999", "IN", "OUT"}, kWrongUsage, "page 999"},
        FailingRun{"SameFile", {"OUT", "OUT"}, kWrongUsage, "same file"},
        FailingRun{"NoProfile", {"--cmyk-profile", "IN", "IN", "OUT"}, kWrongUsage, "profile"},
        FailingRun{"NoInput", {"/nowhere/a.pdf", "OUT"}, kUnreadable, "/nowhere/a.pdf"},
        FailingRun{"NoFolder", {"IN", "/nowhere/out.ps"}, kNotWritten, "/nowhere/out.ps"},
        FailingRun{"FullDevice", {"IN", "/dev/full"}, kNotWritten, "/dev/full"},
        FailingRun{"NoReport", {"--report", "/nowhere/r", "IN", "OUT"}, kNotWritten, "/nowhere/r"}),
    [](const auto& one) { return one.param.name; });

TEST(ExitStatus, TellsAPluginThatCannotBeLoaded) {
    const TemporaryFolder folder;
    for (const char* plugin : {"/nowhere/Norvane.plugin", "/dev/null", "/bin/sh"}) {
        const ChildResult run =
            RunChild({NORVANE_TOOL, "--plugin", plugin, CasePath("forms"), folder.File("out.ps")},
                     std::chrono::seconds(60));
        EXPECT_EQ(run.exitStatus, kNoPlugin) << plugin << ": " << run.errors;
        EXPECT_TRUE(fs::is_empty(folder.Path()));
    }
}

TEST(Report, NamesPagesSpacesAndBytes) {
    const TemporaryFolder folder;
    const std::string out = folder.File("out.ps");
    const std::string report = folder.File("report.json");
    ASSERT_EQ(RunTool({"--report", report, CasePath("device-colors"), out}).exitStatus, kDone);
    const std::string text = ReadFile(report);
    EXPECT_THAT(text, testing::HasSubstr("\"bytes\": " + std::to_string(fs::file_size(out))));
    for (const char* part : {"\"DeviceCMYK\"", "\"pages\"", "\"warnings\"", "\"timings\""}) {
        EXPECT_THAT(text, testing::HasSubstr(part));
    }
}

}  // namespace
}  // namespace VANTIX::TEST
