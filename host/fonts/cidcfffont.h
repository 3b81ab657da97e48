// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "host/fonts/cffprogram.h"
#include "host/fonts/cidfont.h"

namespace VANTIX::HOST {

/// A font with codes of two bytes of a CFF program, CID-keyed or not: going out they are its CIDs.
/// The collection of a CID-keyed program goes before that of the description.
NORVANE_HOST_API TInterfacePtr<CIDFont> MakeCIDCFFFont(std::shared_ptr<CffProgram> program,
                                                       CIDFontDescription description);

}  // namespace VANTIX::HOST
