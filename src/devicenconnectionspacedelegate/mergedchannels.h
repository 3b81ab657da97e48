// SPDX-License-Identifier: MIT
#pragma once

#include "baseconnectionspacedelegate/names.h"
#include "core/graphics/irastercomponent.h"
#include "core/object/iclassfactory.h"

namespace VANTIX::RENDERING {

/// `out` becomes a raster in which spot channels of one name are one channel, and in a raster of
/// four process inks also those named as a process ink and that ink: the coverage of one over that
/// of the other. Lines are merged as they are asked for. Without channels to merge it is the same
/// raster. False (logged) with `out` null when there is no memory.
bool MergeSameNameChannels(IClassFactory& factory, Raster& raster, TInterfacePtr<Raster>& out);

}  // namespace VANTIX::RENDERING
