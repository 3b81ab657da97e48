// SPDX-License-Identifier: MIT
#include "host/support/logger.h"

#include <cstdio>
#include <memory>
#include <mutex>
#include <utility>

namespace VANTIX::HOST {

namespace {

using Sink = std::function<void(const LogEntry&)>;

constexpr char32_t kReplacement = 0xFFFD;

void AppendUTF8(std::string& out, char32_t code) {
    if (code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) {
        code = kReplacement;
    }
    if (code < 0x80) {
        out.push_back(static_cast<char>(code));
        return;
    }
    const unsigned extra = code < 0x800 ? 1 : (code < 0x10000 ? 2 : 3);
    // A lead byte has as many high bits set as the sequence has bytes.
    out.push_back(static_cast<char>((0xF0U << (3 - extra)) | (code >> (6 * extra))));
    for (unsigned k = extra; k-- > 0;) {
        out.push_back(static_cast<char>(0x80U | ((code >> (6 * k)) & 0x3FU)));
    }
}

std::string ToUTF8(const std::wstring& text) {
    std::string out;
    out.reserve(text.size());
    for (const auto unit : text) {
        AppendUTF8(out, static_cast<char32_t>(unit));
    }
    return out;
}

void WriteToStandardError(const LogEntry& entry) {
    const char* kind = entry.type == LogType::kError ? "error" : "notice";
    std::fprintf(stderr, "%s: %s: %s\n", entry.file.c_str(), kind, entry.text.c_str());
}

/// The one logger of the process.
class Logger : public VLoggerLibInterface {
public:
    /// Never destroyed: objects that end with the process may still report.
    static Logger& Get() {
        static Logger& logger = *new Logger;
        return logger;
    }

    void SetSink(Sink sink) {
        auto next = std::make_shared<const Sink>(std::move(sink));
        const std::lock_guard lock(mMutex);
        mSink.swap(next);
    }

    void QLogMessage(LogType type, const char* file, const char* function, std::int32_t line,
                     const std::wstring& message, LogLevel level) override {
        // Called without the lock, so that a sink may log, or replace itself.
        const std::shared_ptr<const Sink> sink = CurrentSink();
        if (!*sink) {
            return;
        }
        try {
            (*sink)({type, level, file == nullptr ? "" : file, function == nullptr ? "" : function,
                     line, ToUTF8(message)});
        } catch (...) {
            std::fputs("The log's receiver failed\n", stderr);
        }
    }

private:
    std::shared_ptr<const Sink> CurrentSink() {
        const std::lock_guard lock(mMutex);
        return mSink;
    }

    std::mutex mMutex;
    std::shared_ptr<const Sink> mSink = std::make_shared<const Sink>(WriteToStandardError);
};

}  // namespace

void SetLogSink(std::function<void(const LogEntry&)> sink) {
    Logger::Get().SetSink(std::move(sink));
}

}  // namespace VANTIX::HOST

namespace VANTIX {

VLoggerLibInterface* VLoggerLibInterface::GetInstance() {
    return &HOST::Logger::Get();
}

}  // namespace VANTIX
