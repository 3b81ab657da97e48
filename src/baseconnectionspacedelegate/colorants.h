// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "postscriptconnectionspace/textbuffer.h"

namespace VANTIX::RENDERING {

/// What the colorants of a DeviceN image are put together of.
struct Colorants {
    static constexpr std::string_view kProcessInks[] = {"Cyan", "Magenta", "Yellow", "Black"};
    static constexpr std::string_view kProcessLights[] = {"Red", "Green", "Blue"};

    PS::TextBuffer names{1024};  ///< "(Cyan)(Magenta)…"
    std::string decode;          ///< " 0 1 1 0…"
    /// What full tint leaves on paper: ink amounts, or light absorbed.
    std::vector<std::array<float, 4>> amounts{};

    /// `range` is " 0 1" or " 1 0".
    void Add(std::string_view name, const char* range, const std::array<float, 4>& amount);

    /// Adds a process colorant, number `index` of its inks or lights.
    void AddUnit(std::string_view name, const char* range, std::size_t index);

    /// The procedure, without braces, that prints all tints over one another on `paper`, the
    /// components of an alternate space in inks (4) or lights (3).
    [[nodiscard]] PS::TextBuffer Program(std::string_view paper, std::size_t outputs) const;
};

}  // namespace VANTIX::RENDERING
