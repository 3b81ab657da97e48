// SPDX-License-Identifier: MIT
#include "app/temporarynames.h"

#include <unistd.h>

#include <array>
#include <atomic>

namespace VANTIX::APP {
namespace {

constexpr std::array<int, 3> kEndingSignals{SIGINT, SIGTERM, SIGHUP};

// Read by the signal handler. A run writes two files at most, one after the other.
std::array<std::atomic<const char*>, 4> gNames;
static_assert(std::atomic<const char*>::is_always_lock_free);

void RemoveAndEnd(int signal) {
    for (const auto& name : gNames) {
        const char* path = name.load();
        if (path != nullptr) {
            unlink(path);
        }
    }
    // The handler was installed for one delivery: this one ends the program.
    raise(signal);
}

void InstallHandlers() {
    for (const int signal : kEndingSignals) {
        struct sigaction current {};

        sigaction(signal, nullptr, &current);
        if (current.sa_handler == SIG_IGN) {
            continue;
        }

        struct sigaction action {};

        action.sa_handler = RemoveAndEnd;
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        sigaction(signal, &action, nullptr);
    }
}

void Exchange(const char* from, const char* to) {
    for (auto& name : gNames) {
        const char* expected = from;
        if (name.compare_exchange_strong(expected, to)) {
            return;
        }
    }
}

}  // namespace

SignalPause::SignalPause() {
    sigset_t ending;
    sigemptyset(&ending);
    for (const int signal : kEndingSignals) {
        sigaddset(&ending, signal);
    }
    sigprocmask(SIG_BLOCK, &ending, &mEarlier);
}

SignalPause::~SignalPause() {
    sigprocmask(SIG_SETMASK, &mEarlier, nullptr);
}

void RememberTemporaryName(const std::string& path) {
    InstallHandlers();
    Exchange(nullptr, path.c_str());
}

void ForgetTemporaryName(const std::string& path) {
    Exchange(path.c_str(), nullptr);
}

}  // namespace VANTIX::APP
