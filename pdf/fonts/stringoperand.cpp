// SPDX-License-Identifier: MIT
#include "pdf/fonts/stringoperand.h"

#include <optional>

namespace VANTIX::PDF {

namespace {

std::optional<unsigned> DigitOf(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? std::optional<unsigned>(lower - 'a' + 10) : std::nullopt;
}

// A digit that is missing at the end is 0.
void AppendHex(std::string_view text, std::string& bytes) {
    unsigned high = 0;
    bool hasHigh = false;
    for (const char c : text) {
        const std::optional<unsigned> digit = DigitOf(c);
        if (!digit) {
            continue;
        }
        if (hasHigh) {
            bytes += static_cast<char>(high << 4U | *digit);
        } else {
            high = *digit;
        }
        hasHigh = !hasHigh;
    }
    if (hasHigh) {
        bytes += static_cast<char>(high << 4U);
    }
}

bool IsOctal(char c) {
    return c >= '0' && c <= '7';
}

/// The byte of the escape that begins behind the backslash at `at`, which moves behind it; nothing
/// for a line that goes on.
std::optional<char> TakeEscape(std::string_view text, std::size_t& at) {
    constexpr std::string_view kLetters = "nrtbf";
    constexpr std::string_view kMeant = "\n\r\t\b\f";
    const char c = text[at++];
    if (const std::size_t letter = kLetters.find(c); letter != std::string_view::npos) {
        return kMeant[letter];
    }
    if (c == '\r' || c == '\n') {
        at += c == '\r' && at < text.size() && text[at] == '\n' ? 1 : 0;
        return std::nullopt;
    }
    if (!IsOctal(c)) {
        return c;
    }
    auto value = static_cast<unsigned>(c - '0');
    for (int digits = 1; digits < 3 && at < text.size() && IsOctal(text[at]); ++digits) {
        value = value << 3U | static_cast<unsigned>(text[at++] - '0');
    }
    return static_cast<char>(value);
}

void AppendLiteral(std::string_view text, std::string& bytes) {
    for (std::size_t at = 0; at < text.size();) {
        const char c = text[at++];
        if (c == '\\' && at < text.size()) {
            if (const std::optional<char> escaped = TakeEscape(text, at)) {
                bytes += *escaped;
            }
        } else if (c == '\r') {
            at += at < text.size() && text[at] == '\n' ? 1 : 0;
            bytes += '\n';
        } else if (c != '\\') {
            bytes += c;
        }
    }
}

}  // namespace

void AppendString(const Operand& operand, std::string& bytes) {
    if (operand.kind == OperandKind::kString) {
        AppendLiteral(operand.text, bytes);
    } else if (operand.kind == OperandKind::kHexString) {
        AppendHex(operand.text, bytes);
    }
}

std::string BytesOf(const Operand& operand) {
    std::string bytes;
    AppendString(operand, bytes);
    return bytes;
}

}  // namespace VANTIX::PDF
