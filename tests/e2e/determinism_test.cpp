// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <filesystem>

#include "e2e/tool.h"
#include "support/temporaryfolder.h"

namespace VANTIX::TEST {
namespace {

std::string Convert(const std::string& input, const std::vector<std::string>& environment) {
    const TemporaryFolder folder;
    const std::string output = folder.File("page.ps");
    const ChildResult run = RunTool({"--embed-profiles", input, output}, environment);
    EXPECT_EQ(run.exitStatus, kDone) << run.errors;
    return ReadFile(output);
}

class Determinism : public testing::TestWithParam<const char*> {};

TEST_P(Determinism, SameInputGivesTheSameBytesWhereverItRuns) {
    const std::string input = CasePath(GetParam());
    const std::string first = Convert(input, {"LC_ALL=C", "TZ=UTC"});
    EXPECT_FALSE(first.empty());
    EXPECT_EQ(Convert(input, {}), first);

    const TemporaryFolder other;
    EXPECT_EQ(Convert(input, {"LC_ALL=de_DE.UTF-8", "LC_NUMERIC=de_DE.UTF-8", "TZ=Asia/Tokyo",
                              "TMPDIR=" + other.Path().string()}),
              first);
    EXPECT_TRUE(std::filesystem::is_empty(other.Path()));
}

INSTANTIATE_TEST_SUITE_P(Cases, Determinism,
                         testing::Values("plates", "icc-cmyk", "separation-stitching", "forms"),
                         NameOfCase());

}  // namespace
}  // namespace VANTIX::TEST
