// SPDX-License-Identifier: MIT
#pragma once

#include "core/object/iclassfactory.h"
#include "ifontbuilder.h"

namespace VANTIX::PS {

/// Class of the plug-in's font builder factory.
inline constexpr GUID CLSID_PSFONTBUILDERFACTORY = "3FC7ED79-09FE-4A6C-A590-045E91403119"_guid;

/// Makes the builder that turns a kind of font program into a kind of PostScript font. The class
/// factory (`IID_CLASSFACTORY`) and the job's policy (`IID_IPOSTSCRIPTPOLICYDICT`), which are
/// aggregated into it, go on to the builders that need them.
class IPSFontBuilderFactory : public IObject {
public:
    /// An initialised builder with one reference for the caller; null (logged) where the pair of
    /// kinds is refused or the builder is of no use.
    virtual GRAPHICS::IFontBuilder* CreatePSFontBuilder(IClassFactory& factory,
                                                        GRAPHICS::IFontPackageHandler* handler,
                                                        IO::IPacketDataProvider& packet,
                                                        const char* name, TPSFontType type) = 0;
};

/// Creator of the factory for the host's registrar: one new reference.
IObject* CreatePSFontBuilderFactory();

}  // namespace VANTIX::PS
