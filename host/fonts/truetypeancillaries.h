// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "core/fonts/ifontpackagehandler.h"
#include "host/fonts/truetypeprogram.h"

namespace VANTIX::HOST {

/// Offers the data and the tables of a TrueType program as interfaces of a font of it, which tells
/// its encoding by `GetEncodingDifferences`.
void OfferTrueType(GRAPHICS::IFontPackageHandler& font,
                   const std::shared_ptr<TrueTypeProgram>& program);

/// Plays the tables of the program as it is written.
void EnumerateTrueTypeTables(TrueTypeProgram& program, GRAPHICS::ITableFunctor& functor);

}  // namespace VANTIX::HOST
