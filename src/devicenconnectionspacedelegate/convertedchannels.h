// SPDX-License-Identifier: MIT
#pragma once

#include "baseconnectionspacedelegate/names.h"
#include "baseconnectionspacedelegate/palettes.h"
#include "core/graphics/irastercomponent.h"
#include "core/object/iclassfactory.h"

namespace VANTIX::RENDERING {

/// `out` becomes the raster with its primaries converted into `target`, as lines are asked for, and
/// its extra channels as they are. The raster and the space have to outlive it. False (logged) when
/// it cannot be made.
bool ConvertProcessChannels(IClassFactory& factory, const Raster& raster,
                            IConnectionColorSpace& target, const IntentPair& intents,
                            TInterfacePtr<Raster>& out);

}  // namespace VANTIX::RENDERING
