// SPDX-License-Identifier: MIT
#include "fuzz/lines.h"

/// Reads any bytes as facsimile data: K, flags and columns come first.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace VANTIX;
    std::string error;
    if (size < 3) {
        return 0;
    }
    HOST::FaxParameters fax;
    fax.k = data[0] < 128 ? data[0] : data[0] - 256;
    fax.endOfLine = (data[1] & 1U) != 0;
    fax.encodedByteAlign = (data[1] & 2U) != 0;
    fax.blackIs1 = (data[1] & 4U) != 0;
    fax.endOfBlock = (data[1] & 8U) == 0;
    fax.columns = data[2];
    return FUZZ::ReadLines(HOST::MakeFaxSource(FUZZ::Coded(data + 3, size - 3), fax, 100, error));
}
