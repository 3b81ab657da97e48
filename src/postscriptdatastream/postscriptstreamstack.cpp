// SPDX-License-Identifier: MIT
#include "postscriptdatastream/postscriptstreamstack.h"

#include "core/libsupport/vlogger/logmessage.h"

namespace VANTIX::PS {

void PostScriptStreamStack::Push(IPostScriptDataStream* stream) {
    mStreams.emplace_back(stream);
}

IPostScriptDataStream* PostScriptStreamStack::Top() const {
    return mStreams.empty() ? nullptr : mStreams.back().Get();
}

IPostScriptDataStream* PostScriptStreamStack::Base() const {
    return mStreams.empty() ? nullptr : mStreams.front().Get();
}

Status PostScriptStreamStack::Pop() {
    if (mStreams.empty()) {
        LogError("src/postscriptdatastream") << "PostScript Data stream stack underflow.";
        return STATUS::kStackUnderflow;
    }
    mStreams.pop_back();
    return STATUS::kOk;
}

}  // namespace VANTIX::PS
