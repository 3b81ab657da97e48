// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

#include "packetdataprovider.h"

namespace VANTIX::IO {

/// A packet data provider whose temporary file has a name of its own in the system's temporary
/// folder. The file is made when the bytes outgrow the memory, without a name from then on: nothing
/// is left of it when the provider, or the process, ends.
class WPacketDataProvider : public BasePacketDataProvider {
public:
    bool HasStateCodeOne() override;
    /// Stores 2 as 1; answers what was stored.
    std::uint32_t SetStateCode(std::uint32_t code) override;
    /// `kFileExists` when the provider is open already, `kOpenFailed` (logged) when there is no
    /// folder for the file.
    Status Init() override;

    /// A name that is free at the moment; `kNoTempFolder` (logged) without a folder.
    static Status GetUniqueTempFilePath(std::string& path);
    /// Creates the file, which must not exist; logs `kFileExists` and `kOpenFailed`.
    static Status InitFileObj(const std::string& path, PLATFORM::FilePtr& file);

protected:
    PLATFORM::FilePtr OpenStore() override;

private:
    std::string mPath;
};

/// A provider ready for use; a new reference, or null when it could not be opened (logged).
IPacketDataProvider* CreateWPacketDataProvider();

}  // namespace VANTIX::IO
