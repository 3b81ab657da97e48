// SPDX-License-Identifier: MIT
#include "platform/temporaryfile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platform/randomsource.h"
#include "platform/uniqueid.h"

namespace VANTIX::PLATFORM {

std::string TemporaryFolder() {
    const char* named = std::getenv("TMPDIR");
    std::string folder = named == nullptr || *named == '\0' ? "/tmp" : named;

    struct stat status {};

    if (stat(folder.c_str(), &status) != 0 || !S_ISDIR(status.st_mode) ||
        access(folder.c_str(), W_OK | X_OK) != 0) {
        return {};
    }
    if (folder.back() != '/') {
        folder.push_back('/');
    }
    return folder;
}

std::string UniqueTemporaryPath(const std::string& folder) {
    constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz0123456789";
    std::string path = folder + "PD-";
    std::uint64_t bits = SystemRandom();
    for (int i = 0; i < 6; ++i) {
        path.push_back(kLetters[bits % kLetters.size()]);
        bits /= kLetters.size();
    }

    struct stat status {};

    if (lstat(path.c_str(), &status) == 0) {
        return folder + UniqueIdHyphenText(CreateSystemUniqueId());
    }
    return path;
}

Status OpenTemporaryFile(const std::string& path, FilePtr& file) {
    constexpr mode_t kOwnerOnly = S_IRUSR | S_IWUSR;
    const int handle = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, kOwnerOnly);
    if (handle < 0) {
        return errno == EEXIST ? STATUS::kFileExists : STATUS::kOpenFailed;
    }
    unlink(path.c_str());
    file.reset(fdopen(handle, "w+b"));
    if (!file) {
        close(handle);
        return STATUS::kOpenFailed;
    }
    return STATUS::kOk;
}

}  // namespace VANTIX::PLATFORM
