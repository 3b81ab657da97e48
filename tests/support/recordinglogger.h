// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "core/libsupport/vlogger/vlogger.h"

namespace VANTIX::TEST {

/// The host's log as a list. One serves the whole test program (tests/unit/src/recordinglogger.cpp
/// makes it the instance of the logger library): clear it before what is to be watched. Messages
/// are expected to be of 7-bit characters.
class RecordingLogger : public VLoggerLibInterface {
public:
    struct Entry {
        LogType type = LogType::kNotice;
        LogLevel level = LogLevel::kNormal;
        std::string file;
        std::string function;
        std::string message;
    };

    static RecordingLogger& Get() {
        static RecordingLogger logger;
        return logger;
    }

    void QLogMessage(LogType type, const char* file, const char* function, std::int32_t /*line*/,
                     const std::wstring& message, LogLevel level) override {
        Entry entry{type, level, file, function, {}};
        for (const auto unit : message) {
            entry.message.push_back(static_cast<char>(unit));
        }
        mEntries.push_back(std::move(entry));
    }

    [[nodiscard]] const std::vector<Entry>& Entries() const { return mEntries; }

    void Clear() { mEntries.clear(); }

    /// How many entries hold `text` in their message.
    [[nodiscard]] int Count(std::string_view text) const {
        return static_cast<int>(std::count_if(
            mEntries.begin(), mEntries.end(),
            [text](const Entry& entry) { return entry.message.find(text) != std::string::npos; }));
    }

    [[nodiscard]] bool Has(std::string_view text) const { return Count(text) != 0; }

    /// All messages, one a line: what a test prints and compares.
    [[nodiscard]] std::string Messages() const {
        std::string all;
        for (const Entry& entry : mEntries) {
            all += entry.message + '\n';
        }
        return all;
    }

private:
    std::vector<Entry> mEntries;
};

}  // namespace VANTIX::TEST
