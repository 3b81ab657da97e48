// SPDX-License-Identifier: MIT
#pragma once

#include "core/registry/basetileadaptor.h"

namespace VANTIX::COREREGISTRY {

/// Class of the composite graphic as the plug-in offers it.
inline constexpr GUID CLSID_POSTSCRIPTCOMPOSITEGRAPHIC =
    "09A9776E-0E62-4904-B00D-64914A0C74FF"_guid;
/// Class that the composite graphic reports as its own.
inline constexpr GUID CLSID_COMPOSITEGRAPHICCLASS = "25A96186-154A-443F-BDDD-D576632E1F31"_guid;

/// Stands in the host's list of importers and declines: PostScript is only written.
class PostscriptCompositeGraphic : public BaseTileAdaptor<ICompositeGraphic> {
public:
    /// `kNoTile` (logged) when both are null.
    Status AdaptTile(ITile* inputTile, ITile* outputTile) override;
    /// Always `kNotSupported` (logged).
    Status Init(IClassFactory& factory, IO::IDataProvider& stream,
                const IO::IDictionary* options) override;
    const GUID* GetClassID() const override;
};

/// A new composite graphic with its filter information aggregated under `IID_IDICTIONARY`; null
/// (logged) without a factory or when it gives no dictionary.
IObject* CreateICompositeGraphic(IClassFactory* factory);

}  // namespace VANTIX::COREREGISTRY
