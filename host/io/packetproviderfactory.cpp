// SPDX-License-Identifier: MIT
#include "host/io/packetproviderfactory.h"

#include "host/io/memoryprovider.h"

namespace VANTIX::HOST {

IO::IPacketDataProvider* PacketProviderFactory::CreatePacketDataProvider(
    IClassFactory* /*factory*/) {
    return new MemoryProvider;
}

}  // namespace VANTIX::HOST
