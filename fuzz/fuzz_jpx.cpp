// SPDX-License-Identifier: MIT
#include "fuzz/lines.h"

/// Reads any bytes as JPEG 2000 data.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace VANTIX;
    std::string error;
    HOST::JpxInfo info;
    return FUZZ::ReadLines(HOST::MakeJpxSource(FUZZ::Coded(data, size), info, error));
}
