// SPDX-License-Identifier: MIT
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace VANTIX::TEST {

/// What a run of Ghostscript printed (standard output and errors), and its exit status.
struct GhostscriptRun {
    std::string output;
    int status = -1;
};

/// Runs a PostScript program without a page device.
inline GhostscriptRun RunGhostscript(const std::string& program) {
    std::string path = "/tmp/norvane-test-XXXXXX";
    const int handle = mkstemp(path.data());
    GhostscriptRun run;
    if (handle < 0) {
        return run;
    }
    const auto written = write(handle, program.data(), program.size());
    close(handle);
    const std::string command = "gs -q -dNODISPLAY -dBATCH -dNOPAUSE -dSAFER " + path + " 2>&1";
    FILE* pipe =
        written == static_cast<ssize_t>(program.size()) ? popen(command.c_str(), "r") : nullptr;
    if (pipe != nullptr) {
        char bytes[4096];
        for (std::size_t count = 0; (count = fread(bytes, 1, sizeof bytes, pipe)) > 0;) {
            run.output.append(bytes, count);
        }
        const int status = pclose(pipe);
        run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    unlink(path.c_str());
    return run;
}

/// Executes a procedure body once for each list of operands and gives back what each left on the
/// operand stack. Nothing when the interpreter reported an error or a stack was not empty after
/// that (`log` then holds its words).
inline std::vector<std::vector<double>> RunProcedure(
    const std::string& body, const std::vector<std::vector<float>>& operands, std::string* log) {
    std::ostringstream program;
    program << "%!PS\n/P {" << body << "} bind def\n";
    for (const auto& values : operands) {
        program << "[";
        for (const float value : values) {
            program << ' ' << value;
        }
        program << " P ] { =only ( ) print } forall (\\n) print\n";
    }
    program << "count = countdictstack =\n";
    const GhostscriptRun run = RunGhostscript(program.str());
    *log = run.output;
    std::istringstream lines(run.output);
    std::vector<std::vector<double>> results;
    std::string line;
    while (results.size() < operands.size() && std::getline(lines, line)) {
        std::istringstream numbers(line);
        results.emplace_back();
        for (double number = 0; numbers >> number;) {
            results.back().push_back(number);
        }
    }
    int count = -1;
    int dictionaries = -1;
    lines >> count >> dictionaries;
    const bool clean = run.status == 0 && count == 0 && dictionaries == 3;
    return clean ? results : std::vector<std::vector<double>>();
}

}  // namespace VANTIX::TEST
