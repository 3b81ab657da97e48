// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace VANTIX::APP {

/// A 64-bit digest of files and texts, to tell runs apart. It protects nothing.
class Digest {
public:
    void Add(std::string_view bytes);

    /// Adds the contents of the file; false, with `errno`, when it cannot be read.
    bool AddFile(const std::string& path);

    [[nodiscard]] std::uint64_t Value() const { return mValue; }

private:
    std::uint64_t mValue = 0;
};

/// Reads a file of at most `limit` bytes. False, with the reason in `error`.
bool ReadFile(const std::string& path, std::size_t limit, std::vector<std::uint8_t>& contents,
              std::string& error);

}  // namespace VANTIX::APP
