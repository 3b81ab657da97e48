// SPDX-License-Identifier: MIT
#include "fuzz/lines.h"

/// Reads any bytes as JBIG2 data, with and without being their own global segments.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace VANTIX;
    std::string error;
    const HOST::CodedData coded = FUZZ::Coded(data, size);
    FUZZ::ReadLines(HOST::MakeJbig2Source(coded, coded, 64, 64, error));
    return FUZZ::ReadLines(HOST::MakeJbig2Source(coded, nullptr, 64, 64, error));
}
