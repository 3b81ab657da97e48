// SPDX-License-Identifier: MIT
#pragma once

#include <cstring>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/imagefixture.h"

namespace VANTIX::TEST {

/// A line of samples from hexadecimal digits, two for each byte.
inline Line Bytes(std::string_view hex) {
    Line line;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        line.push_back(
            static_cast<std::uint8_t>(std::stoi(std::string(hex.substr(i, 2)), nullptr, 16)));
    }
    return line;
}

/// Planes of samples, which spaces keep apart; of 16 bits four digits are a sample.
inline std::vector<Line> Planes(const std::string& hex, std::int32_t bits) {
    std::vector<Line> planes;
    std::istringstream words(hex);
    for (std::string word; words >> word;) {
        Line line = Bytes(word);
        for (std::size_t i = 0; bits == 16 && i + 1 < line.size(); i += 2) {
            const auto sample = static_cast<std::uint16_t>(line[i] << 8U | line[i + 1]);
            std::memcpy(&line[i], &sample, sizeof sample);
        }
        planes.push_back(std::move(line));
    }
    return planes;
}

}  // namespace VANTIX::TEST
