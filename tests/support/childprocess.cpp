// SPDX-License-Identifier: MIT
#include "support/childprocess.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <string_view>

extern char** environ;  // NOLINT(readability-redundant-declaration): POSIX leaves it undeclared

namespace VANTIX::TEST {
namespace {

using Clock = std::chrono::steady_clock;

/// A pipe whose both ends are closed at the latest when it goes.
class Pipe {
public:
    Pipe() {
        if (pipe2(mEnds.data(), O_CLOEXEC) != 0) {
            mEnds = {-1, -1};
        }
    }

    ~Pipe() {
        Close(0);
        Close(1);
    }

    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    Pipe(Pipe&&) = delete;
    Pipe& operator=(Pipe&&) = delete;

    [[nodiscard]] int End(std::size_t index) const { return mEnds.at(index); }

    void Close(std::size_t index) {
        if (mEnds.at(index) >= 0) {
            close(mEnds.at(index));
            mEnds.at(index) = -1;
        }
    }

private:
    std::array<int, 2> mEnds{-1, -1};
};

std::vector<std::string> MergedEnvironment(const std::vector<std::string>& additions) {
    std::vector<std::string> merged = additions;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string_view own = *entry;
        const std::string_view name = own.substr(0, own.find('=') + 1);
        const bool replaced = std::any_of(additions.begin(), additions.end(), [&](const auto& one) {
            return one.compare(0, name.size(), name) == 0;
        });
        if (!replaced) {
            merged.emplace_back(own);
        }
    }
    return merged;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

pid_t Start(std::vector<std::string> arguments, std::vector<std::string> environment,
            const Pipe& output, const Pipe& errors) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, output.End(1), 1);
    posix_spawn_file_actions_adddup2(&actions, errors.End(1), 2);
    const std::vector<char*> argv = Pointers(arguments);
    const std::vector<char*> envp = Pointers(environment);
    pid_t child = -1;
    const int failure = posix_spawnp(&child, argv[0], &actions, nullptr, argv.data(), envp.data());
    posix_spawn_file_actions_destroy(&actions);
    return failure == 0 ? child : -1;
}

/// Reads both pipes until the child has closed them; false when the deadline comes first.
bool Collect(Pipe& output, Pipe& errors, Clock::time_point deadline, ChildResult& result) {
    std::array<pollfd, 2> ends{{{output.End(0), POLLIN, 0}, {errors.End(0), POLLIN, 0}}};
    const std::array<std::string*, 2> texts{&result.output, &result.errors};
    while (ends[0].fd >= 0 || ends[1].fd >= 0) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        if (left.count() <= 0 ||
            poll(ends.data(), ends.size(), static_cast<int>(left.count())) < 0) {
            return false;
        }
        for (std::size_t i = 0; i < ends.size(); ++i) {
            if (ends.at(i).revents == 0) {
                continue;
            }
            std::array<char, 65536> bytes{};
            const ssize_t count = read(ends.at(i).fd, bytes.data(), bytes.size());
            if (count > 0) {
                texts.at(i)->append(bytes.data(), static_cast<std::size_t>(count));
            } else {
                ends.at(i).fd = -1;
            }
        }
    }
    return true;
}

}  // namespace

ChildResult RunChild(const std::vector<std::string>& arguments, std::chrono::seconds limit,
                     const std::vector<std::string>& environment) {
    ChildResult result;
    Pipe output;
    Pipe errors;
    const pid_t child = Start(arguments, MergedEnvironment(environment), output, errors);
    if (child < 0) {
        result.errors = "cannot start " + arguments.front();
        return result;
    }
    output.Close(1);
    errors.Close(1);
    if (!Collect(output, errors, Clock::now() + limit, result)) {
        result.timedOut = true;
        kill(child, SIGKILL);
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFEXITED(status)) {
        result.exitStatus = WEXITSTATUS(status);
    } else if (WIFSIGNALED(status)) {
        result.signal = WTERMSIG(status);
    }
    return result;
}

}  // namespace VANTIX::TEST
