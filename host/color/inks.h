// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <string>
#include <vector>

#include "core/color/iink.h"
#include "core/object/tinterfaceptr.h"
#include "host/export.h"

namespace VANTIX::HOST {

/// One ink of a collection. `kind` colour components are in host form, `signatureValues` are ink
/// amounts (or components of the signature's own model).
struct InkDescription {
    std::string name{};  ///< UTF-8
    COLOR::InkColorKind kind = COLOR::InkColorKind::kCMYK;
    std::array<float, 4> color{};
    FourCC signature = 0;
    std::array<float, 4> signatureValues{};
    std::int32_t signatureCount = 0;
};

NORVANE_HOST_API TInterfacePtr<COLOR::IInkCollection> MakeInkCollection(
    std::vector<InkDescription> inks);

}  // namespace VANTIX::HOST
