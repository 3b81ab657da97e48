// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "baseconnectionspacedelegate/names.h"
#include "core/color/iconnectioncolorspacefactory.h"

namespace VANTIX::RENDERING {

/// Converts `count` palette entries from `profile` into the device space of its family. Both tables
/// hold entries x components bytes in host form. Answers the number of components, or 0 (logged)
/// for a family without a device space. `target` is not used: the family alone decides.
std::int32_t WriteProfileColorSpaceLUT(COLOR::IConnectionColorSpaceFactory* factory,
                                       IConnectionColorSpace* target,
                                       COLOR::IProfileBasedConnectionColorSpace* profile,
                                       const unsigned char* lutIn, char* lutOut, std::int32_t count,
                                       TRenderingIntent sourceIntent,
                                       TRenderingIntent destinationIntent);

}  // namespace VANTIX::RENDERING
