// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace VANTIX::PS {

/// Operator text that is put together from pieces and then written in one call. It starts with the
/// room that nearly every text needs and grows where cutting would break the text.
class TextBuffer {
public:
    explicit TextBuffer(std::size_t room = kRoom) { mText.reserve(room); }

    void Clear() { mText.clear(); }

    void Append(std::string_view text) { mText.append(text); }

    void Append(std::string_view text, std::size_t times) {
        for (std::size_t i = 0; i < times; ++i) {
            mText.append(text);
        }
    }

    /// Appends formatted text (the conversions of `FormatText`).
    [[gnu::format(printf, 2, 3)]] void Format(const char* format, ...);

    /// Appends a string literal: "(…)" with parentheses, backslashes and line ends escaped
    /// (PostScript Language Reference, 3.2.2).
    void AppendString(std::string_view bytes);

    [[nodiscard]] std::string_view View() const { return mText; }

    /// Zero-terminated.
    [[nodiscard]] const char* Text() const { return mText.c_str(); }

    [[nodiscard]] std::size_t Size() const { return mText.size(); }

    /// Copies the text and a zero into `buffer` of `size` bytes and answers its length. A text that
    /// does not fit is logged and leaves an empty buffer and 0, since half of it would not parse.
    std::int32_t CopyTo(char* buffer, std::int32_t size) const;

private:
    static constexpr std::size_t kRoom = 16384;

    std::string mText;
};

}  // namespace VANTIX::PS
