// SPDX-License-Identifier: MIT
#pragma once

#include <cstdio>
#include <memory>
#include <string>

#include "core/status.h"

namespace VANTIX::PLATFORM {

struct FileCloser {
    void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};

/// An open buffered file, closed at the end of its owner.
using FilePtr = std::unique_ptr<std::FILE, FileCloser>;

/// The folder for temporary files with a slash at its end: that of the environment variable TMPDIR,
/// or /tmp. Empty when nobody could create a file there.
std::string TemporaryFolder();

/// A name for a file in `folder` (which ends with a slash) that no file has at the moment: "PD-"
/// and six random characters or, where that one is taken, a GUID.
std::string UniqueTemporaryPath(const std::string& folder);

/// Creates the file, readable and writable for its owner alone, and removes its name at once: the
/// system frees it when it is closed, even by the end of a killed process. `kFileExists` when the
/// name is taken, whose file is left alone, or `kOpenFailed`.
Status OpenTemporaryFile(const std::string& path, FilePtr& file);

}  // namespace VANTIX::PLATFORM
