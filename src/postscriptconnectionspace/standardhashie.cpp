// SPDX-License-Identifier: MIT
#include "postscriptconnectionspace/standardhashie.h"

#include <bit>

#include "core/libsupport/vlogger/logmessage.h"

namespace VANTIX {

std::uint64_t StandardHashie(const char* text) {
    // 3.333333 in single precision.
    constexpr auto kFactor = std::bit_cast<double>(std::uint64_t{0x400AAAAA80000000});
    if (text == nullptr) {
        LogError("src/postscriptconnectionspace") << "cannot pass in a NULL string.";
        return 0;
    }
    double hash = 0;
    for (; *text != 0; ++text) {
        const auto byte = static_cast<std::uint8_t>(*text);
        hash = hash * kFactor + static_cast<std::int8_t>(static_cast<std::uint8_t>(byte - 32U));
    }
    return std::bit_cast<std::uint64_t>(hash);
}

}  // namespace VANTIX
