// SPDX-License-Identifier: MIT
#include "support/recordinglogger.h"

VANTIX::VLoggerLibInterface* VANTIX::VLoggerLibInterface::GetInstance() {
    return &TEST::RecordingLogger::Get();
}
