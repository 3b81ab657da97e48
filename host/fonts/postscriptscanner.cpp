// SPDX-License-Identifier: MIT
#include "host/fonts/postscriptscanner.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace VANTIX::HOST {
namespace {

constexpr std::string_view kSpace("\0\t\n\f\r ", 6);
constexpr std::string_view kSpaceOrDelimiter("\0\t\n\f\r ()<>[]{}/%", 16);

}  // namespace

bool PostScriptToken::IsInteger() const {
    constexpr double kMost = 2147483647.0;
    return kind == Kind::kNumber && std::abs(number) <= kMost && std::floor(number) == number;
}

std::optional<double> NumberOf(std::string_view word) {
    if (word.starts_with('+')) {
        word.remove_prefix(1);
    }
    const char* end = word.data() + word.size();
    const std::size_t sign = word.find('#');
    if (sign != std::string_view::npos) {
        int base = 0;
        std::uint32_t value = 0;
        const char* middle = word.data() + sign;
        const bool hasBase = std::from_chars(word.data(), middle, base).ptr == middle;
        if (!hasBase || base < 2 || base > 36 || middle + 1 == end ||
            std::from_chars(middle + 1, end, value, base).ptr != end) {
            return std::nullopt;
        }
        return value;
    }
    double value = 0;
    const auto result = std::from_chars(word.data(), end, value);
    if (word.empty() || result.ec != std::errc() || result.ptr != end || !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

void PostScriptScanner::MoveTo(std::size_t position) {
    mPosition = std::min(position, mText.size());
}

void PostScriptScanner::SkipSpace() {
    while (true) {
        MoveTo(mText.find_first_not_of(kSpace, mPosition));
        if (mPosition == mText.size() || mText[mPosition] != '%') {
            return;
        }
        MoveTo(mText.find_first_of("\r\n", mPosition));
    }
}

/// A string, or a bracket, brace or dictionary mark.
PostScriptToken PostScriptScanner::Delimited(std::size_t begin) {
    const std::string_view rest = mText.substr(begin);
    std::size_t length = rest.starts_with("<<") || rest.starts_with(">>") ? 2 : 1;
    auto kind = PostScriptToken::Kind::kName;
    std::string_view text = rest.substr(0, length);
    if (rest.front() == '(') {
        std::size_t depth = 1;
        for (; length < rest.size() && depth > 0; ++length) {
            if (rest[length] == '\\') {
                ++length;
            } else if (rest[length] == '(') {
                ++depth;
            } else if (rest[length] == ')') {
                --depth;
            }
        }
        length = std::min(length, rest.size());
        kind = PostScriptToken::Kind::kString;
        text = rest.substr(1, length - (depth == 0 ? 2 : 1));
    } else if (rest.front() == '<' && length == 1) {
        length = std::min(rest.find('>'), rest.size() - 1) + 1;
        kind = PostScriptToken::Kind::kString;
        text = rest.substr(1, length - std::min<std::size_t>(length, 2));
    }
    mPosition = begin + length;
    return {kind, text, begin, mPosition, 0};
}

PostScriptToken PostScriptScanner::Next() {
    SkipSpace();
    const std::size_t begin = mPosition;
    if (begin == mText.size()) {
        return {PostScriptToken::Kind::kEnd, {}, begin, begin, 0};
    }
    const bool isLiteral = mText[begin] == '/';
    if (!isLiteral && kSpaceOrDelimiter.find(mText[begin]) != std::string_view::npos) {
        return Delimited(begin);
    }
    const std::size_t first = begin + (isLiteral ? 1 : 0);
    MoveTo(mText.find_first_of(kSpaceOrDelimiter, first));
    const std::string_view word = mText.substr(first, mPosition - first);
    if (isLiteral) {
        return {PostScriptToken::Kind::kLiteral, word, begin, mPosition, 0};
    }
    const std::optional<double> number = NumberOf(word);
    const auto kind = number ? PostScriptToken::Kind::kNumber : PostScriptToken::Kind::kName;
    return {kind, word, begin, mPosition, number.value_or(0)};
}

void PostScriptScanner::SkipProcedure() {
    for (std::size_t depth = 1; depth > 0;) {
        const PostScriptToken token = Next();
        if (token.kind == PostScriptToken::Kind::kEnd) {
            return;
        }
        if (token.Is("{")) {
            ++depth;
        } else if (token.Is("}")) {
            --depth;
        }
    }
}

}  // namespace VANTIX::HOST
