// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace VANTIX {

/// Kind of a log entry: notices and warnings, or errors.
enum class LogType : std::int32_t { kNotice = 1, kError = 2 };

/// Weight of a log entry: errors are 1, notices and warnings 2.
enum class LogLevel : std::int32_t { kHigh = 1, kNormal = 2 };

/// The host's log. The host library defines `GetInstance`: the one symbol that a plug-in leaves
/// open.
class VLoggerLibInterface {
public:
    [[gnu::visibility("default")]] static VLoggerLibInterface* GetInstance();

    /// `file` is the source module, `function` the full signature of the reporting function.
    virtual void QLogMessage(LogType type, const char* file, const char* function,
                             std::int32_t line, const std::wstring& message, LogLevel level) = 0;

    VLoggerLibInterface(const VLoggerLibInterface&) = delete;
    VLoggerLibInterface& operator=(const VLoggerLibInterface&) = delete;
    VLoggerLibInterface(VLoggerLibInterface&&) = delete;
    VLoggerLibInterface& operator=(VLoggerLibInterface&&) = delete;

protected:
    VLoggerLibInterface() = default;
    virtual ~VLoggerLibInterface() = default;
};

}  // namespace VANTIX
