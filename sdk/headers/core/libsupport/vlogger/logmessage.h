// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <locale>
#include <sstream>

#include "core/libsupport/vlogger/vlogger.h"
#if !defined(__clang__)
#include <source_location>
#endif

namespace VANTIX {

/// Where a log entry was written: the full signature of the function, and the line.
struct LogPlace {
    const char* function;
    std::int32_t line;

    // The analyser's front end lacks the builtin behind source_location.
#if defined(__clang__)
    static LogPlace Here(const char* function = __builtin_FUNCTION(), int line = __builtin_LINE()) {
        return {function, line};
    }
#else
    static LogPlace Here(std::source_location place = std::source_location::current()) {
        return {place.function_name(), static_cast<std::int32_t>(place.line())};
    }
#endif
};

/// One log entry, built in a wide stream and sent when the expression ends. Narrow text is widened,
/// numbers take the stream's own form in the classic locale.
class LogMessage {
public:
    LogMessage(LogType type, LogLevel level, const char* file, LogPlace place)
        : mType(type), mLevel(level), mFile(file), mPlace(place) {
        mText.imbue(std::locale::classic());
    }

    LogMessage(const LogMessage&) = delete;
    LogMessage& operator=(const LogMessage&) = delete;
    LogMessage(LogMessage&&) = delete;
    LogMessage& operator=(LogMessage&&) = delete;

    ~LogMessage() {
        VLoggerLibInterface* logger = VLoggerLibInterface::GetInstance();
        if (logger != nullptr) {
            logger->QLogMessage(mType, mFile, mPlace.function, mPlace.line, mText.str(), mLevel);
        }
    }

    template <class T>
    LogMessage& operator<<(const T& value) {
        mText << value;
        return *this;
    }

private:
    LogType mType;
    LogLevel mLevel;
    const char* mFile;
    LogPlace mPlace;
    std::wostringstream mText;
};

#if defined(__clang__)
#define NORVANE_LOG_PLACE LogPlace place = LogPlace::Here(__builtin_FUNCTION(), __builtin_LINE())
#else
#define NORVANE_LOG_PLACE LogPlace place = LogPlace::Here(std::source_location::current())
#endif

/// An error entry: `LogError("src/module") << "text" << number;`
inline LogMessage LogError(const char* file, NORVANE_LOG_PLACE) {
    return {LogType::kError, LogLevel::kHigh, file, place};
}

/// A notice or warning.
inline LogMessage LogNotice(const char* file, NORVANE_LOG_PLACE) {
    return {LogType::kNotice, LogLevel::kNormal, file, place};
}

#undef NORVANE_LOG_PLACE

}  // namespace VANTIX
