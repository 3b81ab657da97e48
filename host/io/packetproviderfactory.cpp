// SPDX-License-Identifier: MIT
#include "host/io/packetproviderfactory.h"

#include "host/io/memoryprovider.h"

namespace VANTIX::HOST {

namespace {

/// Recordings within recordings are all open at a time: few of them are so large that they need a
/// file, and none keeps much memory.
constexpr std::size_t kMostMemory = std::size_t{1} << 20U;

}  // namespace

IO::IPacketDataProvider* PacketProviderFactory::CreatePacketDataProvider(
    IClassFactory* /*factory*/) {
    return new MemoryProvider(kMostMemory);
}

}  // namespace VANTIX::HOST
