// SPDX-License-Identifier: MIT
#include "app/console.h"

#include <ostream>
#include <string>

namespace VANTIX::APP {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds kMoment{700};
constexpr milliseconds kBetweenDrawings{100};
constexpr int kBarCells = 40;

/// Control characters, those of Unicode's second block included, as question marks.
std::string Printable(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const bool second =
            byte == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xA0;
        if (byte < 0x20 || byte == 0x7F || second) {
            result += '?';
            i += second ? 1 : 0;
        } else {
            result += text[i];
        }
    }
    return result;
}

}  // namespace

Console::Console(std::ostream& out, Voice voice, bool terminal)
    : mOut(out),
      mVoice(voice),
      mTerminal(terminal),
      mStart(steady_clock::now()),
      mLastDrawn(mStart) {}

Console::~Console() {
    ClearProgress();
}

void Console::Print(std::string_view prefix, std::string_view text) {
    ClearProgress();
    mOut << "norvane: " << prefix << Printable(text) << std::endl;
}

void Console::Error(std::string_view text) {
    Print("error: ", text);
}

void Console::Warning(const PDF::Diagnostics::Warning& warning) {
    if (mVoice == Voice::kQuiet) {
        return;
    }
    const std::string place =
        warning.page > 0 ? "page " + std::to_string(warning.page) + ": " : std::string();
    Print("warning: ", place + warning.message);
}

void Console::Notice(std::string_view text) {
    if (mVoice == Voice::kVerbose) {
        Print("", text);
    }
}

void Console::Progress(int done, int total) {
    const auto now = steady_clock::now();
    if (!mTerminal || mVoice == Voice::kQuiet || total < 2 || now - mStart < kMoment ||
        now - mLastDrawn < kBetweenDrawings) {
        return;
    }
    mLastDrawn = now;
    mBarShown = true;
    const auto cells =
        static_cast<std::size_t>(static_cast<std::int64_t>(done) * kBarCells / total);
    mOut << "\r[" << std::string(cells, '=') << std::string(kBarCells - cells, ' ') << "] page "
         << done << " of " << total << std::flush;
}

void Console::ClearProgress() {
    if (mBarShown) {
        mOut << "\r\x1b[K" << std::flush;
        mBarShown = false;
    }
}

}  // namespace VANTIX::APP
