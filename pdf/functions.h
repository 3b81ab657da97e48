// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>

#include "host/color/functions.h"
#include "pdf/qpdfheaders.h"

namespace VANTIX::PDF {

/// Makes host functions of PDF functions (PDF Reference, 3.9); each object is read once.
class FunctionReader {
public:
    /// A function, an array of functions or /Identity (of `identityInputs` inputs). Null, with the
    /// reason in `error`, when it is none of them.
    HOST::FunctionPtr Read(QPDFObjectHandle object, std::string& error, int identityInputs = 1);

private:
    HOST::FunctionPtr ReadNested(const QPDFObjectHandle& object, std::string& error, int depth);
    HOST::FunctionPtr Make(const QPDFObjectHandle& object, std::string& error, int depth);
    HOST::FunctionPtr MakeStitching(const QPDFObjectHandle& object, HOST::FunctionShape shape,
                                    std::string& error, int depth);

    // Null while a function is being read, so that one which holds itself is refused.
    std::map<QPDFObjGen, HOST::FunctionPtr> mKnown;
};

}  // namespace VANTIX::PDF
