// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace VANTIX::TEST {

/// How a child process ended.
struct ChildResult {
    int exitStatus = -1;  ///< -1 when it was killed by a signal or could not be started
    int signal = 0;
    bool timedOut = false;
    std::string output;
    std::string errors;
};

/// Runs a program (looked up in PATH) without a shell, its input empty, and captures what it
/// says. `environment` holds "NAME=value" entries that are added to this process's own. A child
/// that is not done after `limit` is killed.
ChildResult RunChild(const std::vector<std::string>& arguments, std::chrono::seconds limit,
                     const std::vector<std::string>& environment = {});

}  // namespace VANTIX::TEST
