// SPDX-License-Identifier: MIT
#include "app/digest.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <system_error>

namespace VANTIX::APP {
namespace {

constexpr std::size_t kBlockBytes = std::size_t{64} << 10U;

/// Hands the file's blocks to `take` until it answers false. False, with `errno`, on a read error.
bool ForEachBlock(const std::string& path, const std::function<bool(std::string_view)>& take) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rbe"),
                                                               std::fclose);
    if (!file) {
        return false;
    }
    std::vector<char> block(kBlockBytes);
    while (const std::size_t count = std::fread(block.data(), 1, block.size(), file.get())) {
        if (!take({block.data(), count})) {
            return true;
        }
    }
    return std::ferror(file.get()) == 0;
}

}  // namespace

void Digest::Add(std::string_view bytes) {
    constexpr std::uint64_t kGolden = 0x9E3779B97F4A7C15U;
    mValue = (mValue ^ bytes.size()) * kGolden;
    for (std::size_t i = 0; i < bytes.size(); i += sizeof(std::uint64_t)) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes.data() + i, std::min(sizeof(word), bytes.size() - i));
        mValue = (mValue ^ word) * kGolden;
        mValue ^= mValue >> 32U;
    }
}

bool Digest::AddFile(const std::string& path) {
    return ForEachBlock(path, [this](std::string_view block) {
        Add(block);
        return true;
    });
}

bool ReadFile(const std::string& path, std::size_t limit, std::vector<std::uint8_t>& contents,
              std::string& error) {
    contents.clear();
    const bool read = ForEachBlock(path, [&](std::string_view block) {
        contents.insert(contents.end(), block.begin(), block.end());
        return contents.size() <= limit;
    });
    if (!read) {
        error = std::generic_category().message(errno);
        return false;
    }
    if (contents.size() > limit) {
        error = "is too large";
        return false;
    }
    return true;
}

}  // namespace VANTIX::APP
