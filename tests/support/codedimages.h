// SPDX-License-Identifier: MIT
#pragma once

#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <random>
#include <string>

#include "host/codecs/linesource.h"

namespace VANTIX::TEST {

/// Bytes as sources share them.
inline HOST::CodedData Coded(std::string bytes) {
    return std::make_shared<const HOST::CodedBytes>(std::move(bytes));
}

/// What a source gives until its end.
inline std::string AllLines(HOST::LineSource& source) {
    std::string all;
    const std::size_t size = source.Format().LineBytes();
    while (const std::uint8_t* line = source.NextLine()) {
        all.append(line, line + size);
    }
    return all;
}

/// Bytes with little order in them, the same for a seed.
inline std::string Noise(std::size_t count, unsigned seed) {
    std::mt19937 random(seed);
    std::string bytes(count, '\0');
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random()); });
    return bytes;
}

/// Samples with the unused bits at the ends of lines cleared.
inline std::string ClearPadding(std::string samples, const HOST::ImageFormat& format) {
    const auto used = static_cast<unsigned>(format.width * format.components * format.bits) % 8;
    const std::size_t size = format.LineBytes();
    for (std::size_t end = size; used != 0 && end <= samples.size(); end += size) {
        samples[end - 1] = static_cast<char>(samples[end - 1] & (0xFF00 >> used));
    }
    return samples;
}

/// The zlib format (RFC 1950).
inline std::string Deflate(const std::string& bytes) {
    uLongf size = compressBound(bytes.size());
    std::string coded(size, '\0');
    compress2(reinterpret_cast<Bytef*>(coded.data()), &size,
              reinterpret_cast<const Bytef*>(bytes.data()), bytes.size(), Z_BEST_SPEED);
    coded.resize(size);
    return coded;
}

}  // namespace VANTIX::TEST
