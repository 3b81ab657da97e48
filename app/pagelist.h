// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace VANTIX::APP {

/// A selection of pages as a user writes it: "1-3,7,10-", one-based, in the order wanted. Without
/// ranges it means all pages.
class PageList {
public:
    /// False, with the reason in `error`, for a text that is no list.
    bool Parse(std::string_view text, std::string& error);

    /// Puts the zero-based indices of a document of `pageCount` pages in `pages`. False, with the
    /// reason in `error`, when one of them is not there.
    bool Resolve(int pageCount, std::vector<int>& pages, std::string& error) const;

    /// The list as it was written; empty for all pages.
    [[nodiscard]] const std::string& Text() const { return mText; }

private:
    struct Range {
        int first;
        int last;  ///< `kOpen` for the document's last page
    };

    static constexpr int kOpen = -1;

    static bool ParseRange(std::string_view text, Range& range);

    std::string mText;
    std::vector<Range> mRanges;
};

}  // namespace VANTIX::APP
