// SPDX-License-Identifier: MIT
#include "postscriptconnectionspace/blendmodes.h"

#include <array>
#include <cstddef>

#include "core/libsupport/vlogger/logmessage.h"

namespace VANTIX::PS {

const char* GetPSBlendModeFromTBlenMode(GRAPHICS::TBlendMode mode) {
    static constexpr std::array kNames{"Normal",    "Multiply",   "Screen",     "Overlay",
                                       "Darken",    "Lighten",    "ColorDodge", "ColorBurn",
                                       "HardLight", "SoftLight",  "Difference", "Exclusion",
                                       "Hue",       "Saturation", "Color",      "Luminosity"};
    const auto index = static_cast<std::uint32_t>(mode);
    if (index >= kNames.size()) {
        LogError("src/postscriptconnectionspace") << "could not ressolve Blend mode " << index;
        return kNames[0];
    }
    return kNames[index];
}

}  // namespace VANTIX::PS
