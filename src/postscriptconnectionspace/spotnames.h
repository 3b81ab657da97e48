// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "core/color/ispotcolorspaces.h"

namespace VANTIX::PS {

/// The name in UTF-8; nothing when there is no name or it has no such form.
inline std::optional<std::string> UTF8Of(const CoreString* name) {
    return name == nullptr ? std::nullopt : name->GetUTF8String();
}

/// Name of the colorant of a Separation, or an empty text.
inline std::string ColorantOf(const COLOR::ISeparationConnectionColorSpace& space) {
    return UTF8Of(space.GetColorantName()).value_or("");
}

}  // namespace VANTIX::PS
