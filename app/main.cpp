// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <exception>
#include <iostream>

#include "app/console.h"
#include "app/job.h"
#include "app/options.h"

namespace {

using VANTIX::APP::Console;
using VANTIX::APP::ExitCode;
using VANTIX::APP::Options;

/// Without the three standard streams, a file that is opened would take the place of one of them.
void HoldStandardStreams() {
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) < 0) {
            // Opened against its direction, so that using it still fails.
            open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
}

Console::Voice VoiceOf(const Options& options) {
    if (options.quiet) {
        return Console::Voice::kQuiet;
    }
    return options.verbose ? Console::Voice::kVerbose : Console::Voice::kNormal;
}

ExitCode RunTool(int argc, char** argv) {
    const auto command = VANTIX::APP::ParseCommandLine(argc, argv, std::cout, std::cerr);
    if (!command.options) {
        return command.status;
    }
    Console console(std::cerr, VoiceOf(*command.options), isatty(STDERR_FILENO) == 1);
    try {
        return VANTIX::APP::Job(*command.options, console).Run();
    } catch (const std::exception& failure) {
        console.Error(failure.what());
        return ExitCode::kOutput;
    }
}

}  // namespace

int main(int argc, char** argv) {
    HoldStandardStreams();
    // A closed pipe and a file that may not grow are write errors like others.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    return static_cast<int>(RunTool(argc, argv));
}
