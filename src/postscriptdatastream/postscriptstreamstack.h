// SPDX-License-Identifier: MIT
#pragma once

#include <deque>

#include "postscriptdatastream/ipostscriptdatastream.h"

namespace VANTIX::PS {

/// The writers of one job: the top is the current destination, the first one pushed is the
/// document.
class PostScriptStreamStack {
public:
    /// Keeps a reference to the stream.
    void Push(IPostScriptDataStream* stream);

    /// The current stream (borrowed), or null on an empty stack.
    [[nodiscard]] IPostScriptDataStream* Top() const;

    /// The stream pushed first (borrowed), or null on an empty stack.
    [[nodiscard]] IPostScriptDataStream* Base() const;

    /// 0, or `kStackUnderflow` (logged) on an empty stack.
    Status Pop();

private:
    std::deque<TInterfacePtr<IPostScriptDataStream>> mStreams;
};

}  // namespace VANTIX::PS
