// SPDX-License-Identifier: MIT
#pragma once

#include <csignal>
#include <string>

namespace VANTIX::APP {

/// Holds back the signals that end a program for as long as it lives.
class SignalPause {
public:
    SignalPause();
    ~SignalPause();
    SignalPause(const SignalPause&) = delete;
    SignalPause& operator=(const SignalPause&) = delete;
    SignalPause(SignalPause&&) = delete;
    SignalPause& operator=(SignalPause&&) = delete;

private:
    sigset_t mEarlier{};
};

/// Has the file `path` removed should SIGINT, SIGTERM or SIGHUP end the program. Keeps the address:
/// `path` must stay unchanged until `ForgetTemporaryName`.
void RememberTemporaryName(const std::string& path);
void ForgetTemporaryName(const std::string& path);

}  // namespace VANTIX::APP
