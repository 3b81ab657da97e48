// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string_view>
#include <vector>

#include "host/fonts/cffreader.h"

namespace VANTIX::HOST {

/// A font that is not CID-keyed cut to `glyphs`, glyph 0 and their components, which keep their
/// names. Nothing where it is too damaged to be cut.
std::optional<std::vector<std::uint8_t>> SubsetCff(const CffTables& font,
                                                   const std::set<std::uint16_t>& glyphs);

/// A font that is not CID-keyed with `name` in its Name INDEX, and without an encoding of its own.
std::vector<std::uint8_t> RenameCff(const CffTables& font, std::string_view name);

}  // namespace VANTIX::HOST
