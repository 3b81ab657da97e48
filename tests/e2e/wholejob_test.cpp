// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <sstream>

#include "e2e/tool.h"
#include "support/temporaryfolder.h"

namespace VANTIX::TEST {
namespace {

/// The lines of a text, but for the one that names the version.
std::vector<std::string> Lines(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        if (line.compare(0, 10, "%%Creator:") != 0) {
            lines.push_back(line);
        }
    }
    return lines;
}

TEST(WholeJob, IsWrittenAsExpectedLineByLine) {
    const TemporaryFolder folder;
    const std::string output = folder.File("job.ps");
    const ChildResult run = RunTool({CasePath("whole-job"), output});
    ASSERT_EQ(run.exitStatus, kDone) << run.errors;
    EXPECT_EQ(run.errors, "");
    const auto expected = std::filesystem::path(NORVANE_CASES) / "whole-job.expected.ps";
    EXPECT_EQ(Lines(ReadFile(output)), Lines(ReadFile(expected.string())));
}

}  // namespace
}  // namespace VANTIX::TEST
