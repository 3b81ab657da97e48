// SPDX-License-Identifier: MIT
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace VANTIX {

/// Text as UTF-16 code units, as the host keeps it.
class CoreString {
public:
    CoreString() = default;

    /// From UTF-8; a byte that is no part of a valid sequence becomes U+FFFD.
    explicit CoreString(std::string_view utf8) {
        for (std::size_t i = 0; i < utf8.size();) {
            AppendCodePoint(NextCodePoint(utf8, i));
        }
    }

    explicit CoreString(std::u16string_view text) : mText(text) {}

    /// Number of UTF-16 code units.
    [[nodiscard]] std::size_t size() const { return mText.size(); }

    [[nodiscard]] const char16_t* c_str() const { return mText.c_str(); }

    [[nodiscard]] bool empty() const { return mText.empty(); }

    friend bool operator==(const CoreString&, const CoreString&) = default;
    friend auto operator<=>(const CoreString&, const CoreString&) = default;

    /// The text in UTF-8; nothing when a surrogate stands alone.
    [[nodiscard]] std::optional<std::string> GetUTF8String() const {
        std::string out;
        for (std::size_t i = 0; i < mText.size(); ++i) {
            char32_t code = mText[i];
            if (code >= 0xD800 && code <= 0xDFFF) {
                const bool paired = code <= 0xDBFF && i + 1 < mText.size() &&
                                    mText[i + 1] >= 0xDC00 && mText[i + 1] <= 0xDFFF;
                if (!paired) {
                    return std::nullopt;
                }
                code = 0x10000 + ((code - 0xD800) << 10U) + (mText[++i] - 0xDC00);
            }
            AppendUTF8(out, code);
        }
        return out;
    }

private:
    static constexpr char32_t kReplacement = 0xFFFD;

    static char32_t NextCodePoint(std::string_view utf8, std::size_t& i) {
        const auto lead = static_cast<unsigned char>(utf8[i++]);
        if (lead < 0x80) {
            return lead;
        }
        const std::size_t extra = lead >= 0xF0 ? 3 : (lead >= 0xE0 ? 2 : 1);
        if (lead < 0xC2 || lead > 0xF4 || i + extra > utf8.size()) {
            return kReplacement;
        }
        char32_t code = lead & (0x3FU >> extra);
        for (std::size_t k = 0; k < extra; ++k) {
            const auto next = static_cast<unsigned char>(utf8[i + k]);
            if ((next & 0xC0U) != 0x80U) {
                return kReplacement;
            }
            code = (code << 6U) | (next & 0x3FU);
        }
        const bool tooLong = (extra == 2 && code < 0x800) || (extra == 3 && code < 0x10000);
        if (tooLong || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) {
            return kReplacement;
        }
        i += extra;
        return code;
    }

    void AppendCodePoint(char32_t code) {
        if (code >= 0x10000) {
            code -= 0x10000;
            mText.push_back(static_cast<char16_t>(0xD800 + (code >> 10U)));
            code = 0xDC00 + (code & 0x3FFU);
        }
        mText.push_back(static_cast<char16_t>(code));
    }

    static void AppendUTF8(std::string& out, char32_t code) {
        if (code < 0x80) {
            out.push_back(static_cast<char>(code));
            return;
        }
        const int extra = code < 0x800 ? 1 : (code < 0x10000 ? 2 : 3);
        const char32_t mark = extra == 1 ? 0xC0 : (extra == 2 ? 0xE0 : 0xF0);
        out.push_back(static_cast<char>(mark | (code >> static_cast<unsigned>(6 * extra))));
        for (int k = extra - 1; k >= 0; --k) {
            out.push_back(
                static_cast<char>(0x80U | ((code >> static_cast<unsigned>(6 * k)) & 0x3FU)));
        }
    }

    std::u16string mText;
};

}  // namespace VANTIX
