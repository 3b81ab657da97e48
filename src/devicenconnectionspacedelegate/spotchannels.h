// SPDX-License-Identifier: MIT
#pragma once

#include "baseconnectionspacedelegate/names.h"
#include "core/color/iink.h"
#include "core/color/ispotcolorspaces.h"
#include "core/graphics/irastercomponent.h"
#include "core/object/iclassfactory.h"

namespace VANTIX::RENDERING {

/// A new alternate space for inks whose colours have the signature "CMYK", "GRAY", "RGB ", "HSB "
/// or "Lab "; null (logged) for others.
IConnectionColorSpace* CreateAlternateColorSpaceForSpot(IClassFactory& factory, FourCC signature);

/// Attaches the Separation space of `ink` to a spot channel. 0, or the failing status (logged).
Status AddColorSpaceToSpotChannel(IClassFactory& factory, IChannelDesc* channel,
                                  const COLOR::IInk& ink);

/// Adds a spot channel of a raster with primaries to `destination`, a raster of inks alone: its
/// samples, of 8 bits, are complements in the one and ink amounts in the other. False (logged) when
/// it cannot.
bool AddSpotOfInks(IClassFactory& factory, const IChannelDesc& spot, Raster& destination);

/// Adds a spot channel for each of `inks` to `destination`: the index data looked up in a palette
/// of `components` bytes an entry (`entries` of them), as its lines are asked for. 0, or the
/// failing status (logged). The table is copied.
Status AddSpotChannelDescFromLUT(IClassFactory& factory, IChannelData* indices, std::int32_t depth,
                                 const std::uint8_t* table, std::int32_t entries,
                                 std::int32_t components, const COLOR::IInkCollection* inks,
                                 TInterfacePtr<Raster>& destination);

}  // namespace VANTIX::RENDERING
