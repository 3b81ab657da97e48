// SPDX-License-Identifier: MIT
#include "app/pagelist.h"

#include <algorithm>
#include <charconv>
#include <numeric>

namespace VANTIX::APP {
namespace {

bool ParseNumber(std::string_view text, int& number) {
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    return result.ec == std::errc{} && result.ptr == end && number > 0;
}

}  // namespace

bool PageList::ParseRange(std::string_view text, Range& range) {
    const std::size_t dash = text.find('-');
    if (!ParseNumber(text.substr(0, dash), range.first)) {
        return false;
    }
    if (dash == std::string_view::npos) {
        range.last = range.first;
        return true;
    }
    const std::string_view last = text.substr(dash + 1);
    if (last.empty()) {
        range.last = kOpen;
        return true;
    }
    return ParseNumber(last, range.last) && range.last >= range.first;
}

bool PageList::Parse(std::string_view text, std::string& error) {
    mText = text;
    mRanges.clear();
    std::size_t start = 0;
    while (start <= text.size()) {
        const std::size_t comma = std::min(text.find(',', start), text.size());
        const std::string_view part = text.substr(start, comma - start);
        Range range{};
        if (!ParseRange(part, range)) {
            error = "\"" + std::string(part) + "\" is no page or range of pages like 7, 1-3 or 10-";
            return false;
        }
        mRanges.push_back(range);
        start = comma + 1;
    }
    return true;
}

bool PageList::Resolve(int pageCount, std::vector<int>& pages, std::string& error) const {
    pages.clear();
    if (mRanges.empty()) {
        pages.resize(static_cast<std::size_t>(pageCount));
        std::iota(pages.begin(), pages.end(), 0);
        return true;
    }
    for (const Range& range : mRanges) {
        const int last = range.last == kOpen ? pageCount : range.last;
        if (range.first > pageCount || last > pageCount) {
            error = "page " + std::to_string(std::max(range.first, last)) +
                    " is not there: the document ends with page " + std::to_string(pageCount);
            return false;
        }
        for (int page = range.first; page <= last; ++page) {
            pages.push_back(page - 1);
        }
    }
    return true;
}

}  // namespace VANTIX::APP
