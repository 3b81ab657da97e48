// SPDX-License-Identifier: MIT
#pragma once

#include "core/io/idataprovider.h"
#include "core/object/tobject.h"
#include "host/export.h"

namespace VANTIX::HOST {

/// Makes memory providers.
class NORVANE_HOST_API PacketProviderFactory : public TObject<IO::IPacketDataProviderFactory> {
public:
    IO::IPacketDataProvider* CreatePacketDataProvider(IClassFactory* factory) override;
};

}  // namespace VANTIX::HOST
