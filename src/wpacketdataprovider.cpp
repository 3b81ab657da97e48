// SPDX-License-Identifier: MIT
#include "wpacketdataprovider.h"

#include "core/libsupport/vlogger/logmessage.h"

namespace VANTIX::IO {
namespace {

constexpr const char* kModule = "src/wpacketdataprovider";
constexpr const char* kNoFile =
    "Unable to get temporary file's path from lengthy way also, failing temporary file generation!";
/// How many names are tried before the folder is given up.
constexpr int kAttempts = 8;

}  // namespace

IPacketDataProvider* CreateWPacketDataProvider() {
    auto provider = MakeObject<WPacketDataProvider>();
    return provider->Init() == STATUS::kOk ? provider.Detach() : nullptr;
}

bool WPacketDataProvider::HasStateCodeOne() {
    return mStateCode == 1;
}

std::uint32_t WPacketDataProvider::SetStateCode(std::uint32_t code) {
    mStateCode = code == 2 ? 1 : code;
    return mStateCode;
}

Status WPacketDataProvider::Init() {
    if (mOpen) {
        return STATUS::kFileExists;
    }
    if (GetUniqueTempFilePath(mPath) != STATUS::kOk) {
        LogError(kModule) << kNoFile;
        return STATUS::kOpenFailed;
    }
    mOpen = true;
    return STATUS::kOk;
}

PLATFORM::FilePtr WPacketDataProvider::OpenStore() {
    PLATFORM::FilePtr file;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        if (InitFileObj(mPath, file) != STATUS::kFileExists ||
            GetUniqueTempFilePath(mPath) != STATUS::kOk) {
            break;
        }
    }
    if (!file) {
        LogError(kModule) << kNoFile;
    }
    return file;
}

Status WPacketDataProvider::GetUniqueTempFilePath(std::string& path) {
    const std::string folder = PLATFORM::TemporaryFolder();
    if (folder.empty()) {
        LogError(kModule)
            << "Unable to get temporary folder path, failing temporary file generation!";
        return STATUS::kNoTempFolder;
    }
    path = PLATFORM::UniqueTemporaryPath(folder);
    return STATUS::kOk;
}

Status WPacketDataProvider::InitFileObj(const std::string& path, PLATFORM::FilePtr& file) {
    const Status status = PLATFORM::OpenTemporaryFile(path, file);
    if (status == STATUS::kFileExists) {
        LogError(kModule) << "Probably temporary file name generated, already exists! "
                             "failing temporary file generation...";
    } else if (status != STATUS::kOk) {
        LogError(kModule) << "Probably temporary file already opened! "
                             "failing temporary file generation...";
    }
    return status;
}

}  // namespace VANTIX::IO
