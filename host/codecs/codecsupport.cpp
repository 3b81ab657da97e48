// SPDX-License-Identifier: MIT
#include "host/codecs/codecsupport.h"

namespace VANTIX::HOST {

namespace {

bool IsDepth(std::int32_t bits) {
    return bits == 1 || bits == 2 || bits == 4 || bits == 8 || bits == 16;
}

}  // namespace

bool IsServable(const ImageFormat& format, std::string& error) {
    if (format.width < 1 || format.height < 1) {
        error = "an image of " + std::to_string(format.width) + " by " +
                std::to_string(format.height) + " pixels";
        return false;
    }
    if (!IsDepth(format.bits)) {
        error = std::to_string(format.bits) + " bits per component";
        return false;
    }
    if (format.components < 1 || format.components > kMostComponents) {
        error = std::to_string(format.components) + " components";
        return false;
    }
    if (format.LineBytes() > kMostLineBytes) {
        error = "lines of " + std::to_string(format.width) + " pixels are too long";
        return false;
    }
    return true;
}

std::string DescribeShortData(const char* coding, std::int32_t lines, std::int32_t height,
                              const char* reason) {
    std::string text = std::string(coding) + " data end in line " + std::to_string(lines + 1) +
                       " of " + std::to_string(height);
    if (reason != nullptr && *reason != '\0') {
        text += std::string(": ") + reason;
    }
    return text;
}

}  // namespace VANTIX::HOST
