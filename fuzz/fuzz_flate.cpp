// SPDX-License-Identifier: MIT
#include "fuzz/lines.h"

/// Reads any bytes as Flate data: predictor, colours, bits, columns, width and height come first.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace VANTIX;
    std::string error;
    constexpr std::size_t kHead = 6;
    if (size < kHead) {
        return 0;
    }
    const HOST::PredictorParameters predictor{data[0], data[1], data[2], data[3]};
    const HOST::ImageFormat format{data[4], data[5], data[1], data[2]};
    return FUZZ::ReadLines(
        HOST::MakeFlateSource(FUZZ::Coded(data + kHead, size - kHead), format, predictor, error));
}
