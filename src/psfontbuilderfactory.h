// SPDX-License-Identifier: MIT
#pragma once

#include "core/object/iobject.h"

namespace VANTIX::PS {

/// Class of the plug-in's font builder factory.
inline constexpr GUID CLSID_PSFONTBUILDERFACTORY = "3FC7ED79-09FE-4A6C-A590-045E91403119"_guid;

/// Creator of the factory for the host's registrar: one new reference.
IObject* CreatePSFontBuilderFactory();

}  // namespace VANTIX::PS
