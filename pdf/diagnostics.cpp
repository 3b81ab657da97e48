// SPDX-License-Identifier: MIT
#include "pdf/diagnostics.h"

#include <algorithm>
#include <utility>

namespace VANTIX::PDF {

namespace {

// File content ends up in messages: keep them on one line and of a readable length.
std::string OneLine(std::string_view message) {
    constexpr std::size_t kMaxLength = 400;
    std::string line(message.substr(0, kMaxLength));
    std::replace_if(
        line.begin(), line.end(), [](unsigned char c) { return c < 0x20 || c == 0x7F; }, ' ');
    return line;
}

}  // namespace

Diagnostics::Diagnostics(std::function<void(const Warning&)> onFirst)
    : mOnFirst(std::move(onFirst)) {}

void Diagnostics::Warn(std::string_view kind, std::string_view message, int page) {
    const auto known = mIndex.find(kind);
    if (known != mIndex.end()) {
        ++mWarnings[known->second].count;
    } else {
        Add(std::string(kind), kind, message, page);
    }
}

void Diagnostics::WarnOfPage(std::string_view kind, std::string_view message, int page) {
    std::string key = std::string(kind) + ' ' + std::to_string(page);
    const auto known = mIndex.find(key);
    if (known != mIndex.end()) {
        ++mWarnings[known->second].count;
    } else {
        Add(std::move(key), kind, message, page);
    }
}

void Diagnostics::Add(std::string key, std::string_view kind, std::string_view message, int page) {
    mIndex.emplace(std::move(key), mWarnings.size());
    mWarnings.push_back({std::string(kind), OneLine(message), page, 1});
    if (mOnFirst) {
        mOnFirst(mWarnings.back());
    }
}

}  // namespace VANTIX::PDF
