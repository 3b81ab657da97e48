// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "core/libsupport/vlogger/vlogger.h"
#include "host/export.h"

namespace VANTIX::HOST {

/// One entry of the log, its text in UTF-8.
struct LogEntry {
    LogType type;
    LogLevel level;
    std::string file;
    std::string function;
    std::int32_t line;
    std::string text;
};

/// Receives every entry from now on, on the thread that logs; an empty function drops them.
/// Process-wide. Until a sink is set, entries go to standard error.
NORVANE_HOST_API void SetLogSink(std::function<void(const LogEntry&)> sink);

}  // namespace VANTIX::HOST
