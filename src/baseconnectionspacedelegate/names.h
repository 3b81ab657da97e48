// SPDX-License-Identifier: MIT
#pragma once

#include "core/color/iconnectioncolorspace.h"
#include "core/graphics/irastercomponent.h"
#include "core/graphics/pluginhelper/colorhelpers.h"

namespace VANTIX::RENDERING {

// What every delegate speaks of, by short names.

using COLOR::IConnectionColorSpace;
using COLOR::TRenderingIntent;
using GRAPHICS::IChannelData;
using GRAPHICS::IChannelDesc;
using GRAPHICS::HELPER::GetOwnFamily;
using Raster = GRAPHICS::IRasterComponent;

}  // namespace VANTIX::RENDERING
