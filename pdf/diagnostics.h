// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace VANTIX::PDF {

/// What the reader has to say about a file. Each kind is reported once with its first message and
/// page, and counted.
class Diagnostics {
public:
    struct Warning {
        std::string kind;     ///< a stable short name: "image", "bad-operator", …
        std::string message;  ///< for a person, UTF-8, one line
        int page = 0;         ///< one-based page of the first, 0 for the file as a whole
        std::size_t count = 0;
    };

    /// `onFirst` is called when a kind appears for the first time; it may be empty.
    explicit Diagnostics(std::function<void(const Warning&)> onFirst = {});

    void Warn(std::string_view kind, std::string_view message, int page = 0);

    /// Reports a kind once for each page that has it.
    void WarnOfPage(std::string_view kind, std::string_view message, int page);

    /// In the order of first appearance.
    [[nodiscard]] const std::vector<Warning>& Warnings() const { return mWarnings; }

private:
    void Add(std::string key, std::string_view kind, std::string_view message, int page);

    std::function<void(const Warning&)> mOnFirst;
    std::vector<Warning> mWarnings;
    std::map<std::string, std::size_t, std::less<>> mIndex;
};

}  // namespace VANTIX::PDF
