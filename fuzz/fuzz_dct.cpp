// SPDX-License-Identifier: MIT
#include "fuzz/lines.h"

/// Reads any bytes as JPEG data.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace VANTIX;
    std::string error;
    return FUZZ::ReadLines(HOST::MakeDctSource(FUZZ::Coded(data, size), -1, error));
}
