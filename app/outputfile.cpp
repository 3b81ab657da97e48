// SPDX-License-Identifier: MIT
#include "app/outputfile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <random>
#include <system_error>

#include "app/temporarynames.h"

namespace VANTIX::APP {
namespace {

constexpr int kNameAttempts = 100;
constexpr int kMostLinks = 40;
constexpr mode_t kNewFileMode = 0666;
constexpr mode_t kPermissions = 0777;

bool Stat(const std::string& path, struct stat& status) {
    return path == "-" ? fstat(STDOUT_FILENO, &status) == 0 : stat(path.c_str(), &status) == 0;
}

/// The end of a chain of symbolic links, whether something is there or not; empty for a loop.
std::filesystem::path FollowLinks(std::filesystem::path path) {
    std::error_code failure;
    for (int links = 0; links < kMostLinks; ++links) {
        const auto target = std::filesystem::read_symlink(path, failure);
        if (failure) {
            return path;
        }
        path = path.parent_path() / target;
    }
    errno = ELOOP;
    return {};
}

std::string FolderOf(const std::string& path) {
    const std::string folder = std::filesystem::path(path).parent_path().string();
    return folder.empty() ? "." : folder;
}

std::string RandomName(const std::string& folder) {
    constexpr const char* kLetters = "abcdefghijklmnopqrstuvwxyz234567";
    std::random_device chance;
    std::string name = folder + "/.norvane-";
    for (int i = 0; i < 12; ++i) {
        name += kLetters[chance() % 32];
    }
    return name + ".part";
}

std::string DescriptorPath(int descriptor) {
    return "/proc/self/fd/" + std::to_string(descriptor);
}

}  // namespace

std::unique_ptr<OutputFile> OutputFile::Create(const std::string& path, std::string& error,
                                               Staging staging) {
    std::unique_ptr<OutputFile> file(new OutputFile);

    struct stat status {};

    bool opened = false;
    if (path == "-") {
        file->mDescriptor = STDOUT_FILENO;
        file->mStraight = true;
        opened = true;
    } else if (Stat(path, status) && !S_ISREG(status.st_mode)) {
        opened = file->OpenStraight(path);
    } else {
        opened = file->OpenStaged(path, staging);
    }
    if (!opened) {
        error = std::generic_category().message(errno);
        return nullptr;
    }
    return file;
}

OutputFile::~OutputFile() {
    DropTemporary();
    CloseDescriptor();
}

bool OutputFile::OpenStraight(const std::string& path) {
    mStraight = true;
    mDescriptor = open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
    return mDescriptor >= 0;
}

bool OutputFile::OpenStaged(const std::string& path, Staging staging) {
    mFinal = FollowLinks(path).string();
    if (mFinal.empty()) {
        return false;
    }

    struct stat earlier {};

    const bool replaces = Stat(mFinal, earlier);
    // Replacing needs no right to write the old file, but nobody expects a protected one to go.
    if (replaces && access(mFinal.c_str(), W_OK) != 0) {
        return false;
    }
    const mode_t mode = replaces ? earlier.st_mode & kPermissions : kNewFileMode;
    const std::string folder = FolderOf(mFinal);
    if ((staging == Staging::kNamed || !OpenUnnamed(folder, mode)) && !OpenNamed(folder, mode)) {
        return false;
    }
    if (replaces) {
        // Only the superuser can give a file away; the permissions count.
        [[maybe_unused]] const int ignored = fchown(mDescriptor, earlier.st_uid, earlier.st_gid);
        fchmod(mDescriptor, mode);
    }
    return true;
}

bool OutputFile::OpenUnnamed(const std::string& folder, mode_t mode) {
    mDescriptor = open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, mode);
    if (mDescriptor < 0) {
        return false;
    }
    // The name is given through /proc: without it the file could never get one.
    if (access(DescriptorPath(mDescriptor).c_str(), F_OK) != 0) {
        close(mDescriptor);
        mDescriptor = -1;
        return false;
    }
    return true;
}

bool OutputFile::TakeName(const std::string& folder, const std::function<bool(const char*)>& take) {
    for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
        std::string name = RandomName(folder);
        if (take(name.c_str())) {
            mTemporary = std::move(name);
            RememberTemporaryName(mTemporary);
            return true;
        }
        if (errno != EEXIST) {
            return false;
        }
    }
    return false;
}

bool OutputFile::OpenNamed(const std::string& folder, mode_t mode) {
    const SignalPause pause;
    return TakeName(folder, [&](const char* name) {
        mDescriptor = open(name, O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, mode);
        return mDescriptor >= 0;
    });
}

int OutputFile::OpenWriter() const {
    return mDescriptor == STDOUT_FILENO ? STDOUT_FILENO : fcntl(mDescriptor, F_DUPFD_CLOEXEC, 3);
}

bool OutputFile::GiveName() {
    const std::string source = DescriptorPath(mDescriptor);
    return TakeName(FolderOf(mFinal), [&source](const char* name) {
        return linkat(AT_FDCWD, source.c_str(), AT_FDCWD, name, AT_SYMLINK_FOLLOW) == 0;
    });
}

bool OutputFile::CloseDescriptor() {
    const bool closed = mDescriptor <= STDOUT_FILENO || close(mDescriptor) == 0;
    mDescriptor = -1;
    return closed;
}

bool OutputFile::Commit(std::string& error) {
    const SignalPause pause;
    // Some file systems tell of a full disk only when the file is closed.
    const bool done = (mStraight || !mTemporary.empty() || GiveName()) && CloseDescriptor() &&
                      (mStraight || rename(mTemporary.c_str(), mFinal.c_str()) == 0);
    if (!done) {
        error = std::generic_category().message(errno);
        return false;
    }
    if (!mStraight) {
        ForgetTemporaryName(mTemporary);
        mTemporary.clear();
    }
    return true;
}

void OutputFile::DropTemporary() {
    if (!mTemporary.empty()) {
        const SignalPause pause;
        unlink(mTemporary.c_str());
        ForgetTemporaryName(mTemporary);
        mTemporary.clear();
    }
}

bool IsSameFile(const std::string& a, const std::string& b) {
    struct stat first {};

    struct stat second {};

    return Stat(a, first) && Stat(b, second) && S_ISREG(first.st_mode) &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

}  // namespace VANTIX::APP
