// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "core/color/icolorfunction.h"
#include "core/object/guid.h"

namespace VANTIX::HOST {

/// Gathers what a colour space is into sixteen bytes. Not proof against forgery: who makes two
/// profiles collide spoils his own page.
class Digest {
public:
    /// `kind` keeps spaces of different kinds apart.
    explicit Digest(std::string_view kind) { Add(kind); }

    Digest& Add(std::string_view text);
    Digest& Add(std::span<const std::uint8_t> bytes);
    Digest& Add(std::span<const float> values);
    Digest& Add(std::uint32_t value);
    Digest& Add(const GUID& identifier);
    /// Everything that the function computes with; null is allowed.
    Digest& Add(const COLOR::IColorFunction* function);

    /// The identifier of what was added: the same in every process and for equal contents, but that
    /// its first word, never zero or negative or a family's code, gives way to one that was there
    /// first.
    [[nodiscard]] GUID Identifier() const;

private:
    void AddByte(std::uint8_t byte);

    std::uint64_t mFirst = 0xCBF29CE484222325U;
    std::uint64_t mSecond = 0x84222325CBF29CE4U;
};

}  // namespace VANTIX::HOST
