// SPDX-License-Identifier: MIT
#include "psfontbuilderfactory.h"

#include "core/object/tobject.h"

namespace VANTIX::PS {
namespace {

/// The object under which the host knows the plug-in's font builders.
class PSFontBuilderFactory : public TObject<IObject> {};

}  // namespace

IObject* CreatePSFontBuilderFactory() {
    return new PSFontBuilderFactory;
}

}  // namespace VANTIX::PS
