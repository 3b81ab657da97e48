// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <functional>
#include <memory>
#include <string>

namespace VANTIX::APP {

/// A file that appears whole or not at all: written without a name, or beside its final name, and
/// put in its place by `Commit`. Without a commit, a file that was there stays as it was. A
/// symbolic link's target is replaced, not the link, and keeps its permissions. What is no regular
/// file (a pipe, a device, standard output) is written straight.
class OutputFile {
public:
    enum class Staging {
        kUnnamed,  ///< without a name where the file system can do that
        kNamed,
    };

    /// `path` may be "-" for standard output. Null, with the reason in `error`, when it cannot be
    /// written.
    static std::unique_ptr<OutputFile> Create(const std::string& path, std::string& error,
                                              Staging staging = Staging::kUnnamed);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    OutputFile(OutputFile&&) = delete;
    OutputFile& operator=(OutputFile&&) = delete;

    /// A descriptor to write to, the caller's to close; 1 for standard output; -1 on failure.
    [[nodiscard]] int OpenWriter() const;

    /// Puts the file in its place once its writers are closed. False, with the reason in `error`.
    bool Commit(std::string& error);

private:
    OutputFile() = default;
    bool OpenStraight(const std::string& path);
    bool OpenStaged(const std::string& path, Staging staging);
    bool OpenUnnamed(const std::string& folder, mode_t mode);
    /// Tries free names in `folder` until `take` has one; it says by errno why not.
    bool TakeName(const std::string& folder, const std::function<bool(const char*)>& take);
    bool OpenNamed(const std::string& folder, mode_t mode);
    bool GiveName();
    bool CloseDescriptor();
    void DropTemporary();

    int mDescriptor = -1;
    bool mStraight = false;
    std::string mFinal;
    std::string mTemporary;  ///< empty while the file has no name
};

/// Whether both paths lead to one existing regular file; "-" stands for standard output.
bool IsSameFile(const std::string& a, const std::string& b);

}  // namespace VANTIX::APP
