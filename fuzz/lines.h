// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "host/codecs/linesource.h"

namespace VANTIX::FUZZ {

inline HOST::CodedData Coded(const std::uint8_t* data, std::size_t size) {
    return std::make_shared<const HOST::CodedBytes>(std::string(data, data + size));
}

/// Reads an image twice, as far as a test has time, and looks at each byte.
inline int ReadLines(const HOST::LineSourcePtr& source) {
    constexpr int kMostLines = 300;
    volatile std::uint8_t seen = 0;
    for (int pass = 0; source && pass < 2; ++pass) {
        const std::size_t size = source->Format().LineBytes();
        for (int y = 0; y < kMostLines; ++y) {
            const std::uint8_t* line = source->NextLine();
            for (std::size_t i = 0; line != nullptr && i < size; ++i) {
                seen = static_cast<std::uint8_t>(seen ^ line[i]);
            }
        }
        source->Rewind();
    }
    return 0;
}

}  // namespace VANTIX::FUZZ
