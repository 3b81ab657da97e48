// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <string_view>

namespace VANTIX::HOST {

/// The words of a table of fonttables.h, one after another.
class TableWords {
public:
    explicit TableWords(std::string_view table) : mLeft(table) {}

    /// Empty behind the last one.
    std::string_view Next() {
        constexpr std::string_view kSpace = " \n";
        mLeft.remove_prefix(std::min(mLeft.find_first_not_of(kSpace), mLeft.size()));
        const std::string_view word = mLeft.substr(0, mLeft.find_first_of(kSpace));
        mLeft.remove_prefix(word.size());
        return word;
    }

private:
    std::string_view mLeft;
};

}  // namespace VANTIX::HOST
