// SPDX-License-Identifier: MIT
#pragma once

namespace VANTIX::APP {

/// The tool's exit statuses.
enum class ExitCode : int {
    kDone = 0,    ///< written; warnings are on standard error
    kUsage = 2,   ///< wrong usage
    kInput = 3,   ///< the input is unreadable, no PDF, or needs another password
    kOutput = 4,  ///< the output was not written
    kPlugin = 5,  ///< the plug-in is not there, or could not begin a job
};

}  // namespace VANTIX::APP
