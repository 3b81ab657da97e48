// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <set>
#include <vector>

#include "pdf/qpdfheaders.h"

namespace VANTIX::PDF {

/// Finds the fonts that resources lead to: their own, and those of the forms, tiling patterns,
/// graphics states and Type 3 fonts among them. Looks at every object once.
class FontWalker {
public:
    using TakeFont = std::function<void(const QPDFObjectHandle&)>;

    /// Calls `take` for each font dictionary below `resources`, for some more than once.
    void Walk(const QPDFObjectHandle& resources, const TakeFont& take);

private:
    void WalkOne(const QPDFObjectHandle& resources, const TakeFont& take);
    void Enter(QPDFObjectHandle stream);

    std::set<QPDFObjGen> mSeen;
    std::vector<QPDFObjectHandle> mOpen;  // resources that wait
};

}  // namespace VANTIX::PDF
