// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <string>
#include <vector>

#include "support/childprocess.h"

namespace VANTIX::TEST {

/// The tool's exit statuses.
enum ExitStatus { kDone = 0, kWrongUsage = 2, kUnreadable = 3, kNotWritten = 4, kNoPlugin = 5 };

/// Runs the tool that was built with these tests, with the plug-in that was built with it.
inline ChildResult RunTool(const std::vector<std::string>& arguments,
                           const std::vector<std::string>& environment = {}) {
    std::vector<std::string> command{NORVANE_TOOL, "--plugin", NORVANE_PLUGIN};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return RunChild(command, std::chrono::seconds(60), environment);
}

inline std::string CasePath(const std::string& name) {
    return (std::filesystem::path(NORVANE_CASES) / (name + ".pdf")).string();
}

/// Names a test after its case.
struct NameOfCase {
    template <class Name>
    std::string operator()(const testing::TestParamInfo<Name>& one) const {
        std::string name(one.param);
        std::replace_if(
            name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
        return name;
    }
};

}  // namespace VANTIX::TEST
