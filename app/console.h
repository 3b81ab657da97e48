// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <iosfwd>
#include <string_view>

#include "pdf/diagnostics.h"

namespace VANTIX::APP {

/// What the tool says to a person: errors, warnings, notices, and a progress bar where the stream
/// is a terminal and the job takes its time. Texts of documents cannot control the terminal.
class Console {
public:
    enum class Voice {
        kQuiet,    ///< errors only
        kNormal,   ///< warnings and progress too
        kVerbose,  ///< notices too
    };

    Console(std::ostream& out, Voice voice, bool terminal);
    ~Console();
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;
    Console(Console&&) = delete;
    Console& operator=(Console&&) = delete;

    void Error(std::string_view text);
    void Warning(const PDF::Diagnostics::Warning& warning);
    void Notice(std::string_view text);

    /// Shows that `done` of `total` pages are written.
    void Progress(int done, int total);
    void ClearProgress();

private:
    void Print(std::string_view prefix, std::string_view text);

    std::ostream& mOut;
    Voice mVoice;
    bool mTerminal;
    bool mBarShown = false;
    std::chrono::steady_clock::time_point mStart;
    std::chrono::steady_clock::time_point mLastDrawn;
};

}  // namespace VANTIX::APP
