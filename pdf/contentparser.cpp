// SPDX-License-Identifier: MIT
#include "pdf/contentparser.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace VANTIX::PDF {

namespace {

enum class CharClass : std::uint8_t { kRegular, kSpace, kDelimiter, kNumber };

constexpr std::array<CharClass, 256> MakeClasses() {
    std::array<CharClass, 256> classes{};
    for (const char c : {'\0', '\t', '\n', '\f', '\r', ' '}) {
        classes[static_cast<unsigned char>(c)] = CharClass::kSpace;
    }
    for (const char c : {'(', ')', '<', '>', '[', ']', '{', '}', '/', '%'}) {
        classes[static_cast<unsigned char>(c)] = CharClass::kDelimiter;
    }
    for (const char c : {'0', '1', '2', '3', '4', '5', '6', '7', '8', '9', '+', '-', '.'}) {
        classes[static_cast<unsigned char>(c)] = CharClass::kNumber;
    }
    return classes;
}

constexpr std::array<CharClass, 256> kClasses = MakeClasses();

constexpr CharClass ClassOf(char c) {
    return kClasses[static_cast<unsigned char>(c)];
}

constexpr bool IsRegular(char c) {
    const CharClass kind = ClassOf(c);
    return kind == CharClass::kRegular || kind == CharClass::kNumber;
}

constexpr bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

constexpr int HexDigit(char c) {
    if (IsDigit(c)) {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

// Digits beyond this many no longer change a number of 64 bits.
constexpr int kMaxDigits = 18;

constexpr std::array<double, kMaxDigits + 1> kPowersOfTen = {
    1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8, 1e9,
    1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18};

}  // namespace

bool ParseNumber(std::string_view text, double& value) {
    const char* c = text.data();
    const char* const end = c + text.size();
    bool negative = false;
    for (; c != end && (*c == '-' || *c == '+'); ++c) {
        negative = negative || *c == '-';
    }
    std::uint64_t digits = 0;
    int count = 0;
    int decimals = 0;
    double scale = 1.0;
    const char* const start = c;
    for (; c != end && IsDigit(*c); ++c) {
        if (count < kMaxDigits) {
            digits = digits * 10 + static_cast<unsigned>(*c - '0');
            count += digits != 0 ? 1 : 0;
        } else {
            scale *= 10.0;
        }
    }
    bool any = c != start;
    if (c != end && *c == '.') {
        for (++c; c != end && IsDigit(*c); ++c) {
            any = true;
            if (count < kMaxDigits && decimals < kMaxDigits) {
                digits = digits * 10 + static_cast<unsigned>(*c - '0');
                count += digits != 0 ? 1 : 0;
                ++decimals;
            }
        }
    }
    value = static_cast<double>(digits) * scale / kPowersOfTen[static_cast<std::size_t>(decimals)];
    value = negative ? -value : value;
    if (c == end) {
        return true;  // a sign or a dot alone counts as 0
    }
    if (any && std::all_of(c, end, [](char k) { return ClassOf(k) == CharClass::kNumber; })) {
        return true;  // 1.2.3 and 5-3: what stands before counts
    }
    const auto parsed = std::from_chars(text.data(), end, value);
    return any && parsed.ec == std::errc() && parsed.ptr == end;
}

std::string DecodeName(std::string_view raw) {
    std::string name;
    name.reserve(raw.size());
    for (std::size_t i = 0; i < raw.size(); ++i) {
        if (raw[i] == '#' && i + 2 < raw.size() && HexDigit(raw[i + 1]) >= 0 &&
            HexDigit(raw[i + 2]) >= 0) {
            name.push_back(static_cast<char>(HexDigit(raw[i + 1]) * 16 + HexDigit(raw[i + 2])));
            i += 2;
        } else {
            name.push_back(raw[i]);
        }
    }
    return name;
}

bool ContentParser::Next() {
    mOperands.clear();
    mOpen.clear();
    mTooDeep = 0;
    mFlat = true;
    mOperator = {};
    mConsumed = mPosition;
    for (SkipSpace(); mPosition < mContent.size(); SkipSpace()) {
        const char first = mContent[mPosition];
        if (ClassOf(first) == CharClass::kDelimiter) {
            if (!ReadOperand(first)) {
                ++mPosition;
            }
            continue;
        }
        ReadNumberOrKeyword();
        if (!mOperator.empty()) {
            if (!mIsComplete && (mPosition == mContent.size() || mOperator == "ID")) {
                return false;
            }
            // An operator within an array ends it: the closing bracket was lost.
            while (!mOpen.empty()) {
                Close(mOperands[mOpen.back()].kind);
            }
            return true;
        }
    }
    return false;
}

void ContentParser::SkipSpace() {
    while (mPosition < mContent.size()) {
        const char c = mContent[mPosition];
        if (c == '%') {
            mPosition = std::min(mContent.find_first_of("\r\n", mPosition), mContent.size());
        } else if (ClassOf(c) != CharClass::kSpace) {
            return;
        } else {
            ++mPosition;
        }
    }
}

bool ContentParser::ReadOperand(char first) {
    const char second = mPosition + 1 < mContent.size() ? mContent[mPosition + 1] : '\0';
    switch (first) {
        case '/':
            ReadName();
            return true;
        case '(':
            ReadString();
            return true;
        case '[':
            Open(OperandKind::kArray);
            return false;
        case ']':
            Close(OperandKind::kArray);
            return false;
        case '<':
            if (second == '<') {
                Open(OperandKind::kDictionary);
                mPosition += 2;
            } else {
                ReadHexString();
            }
            return true;
        case '>':
            if (second == '>') {
                Close(OperandKind::kDictionary);
                ++mPosition;
            }
            return false;
        default:
            return false;
    }
}

void ContentParser::ReadNumberOrKeyword() {
    const bool maybeNumber = ClassOf(mContent[mPosition]) == CharClass::kNumber;
    const std::string_view text = TakeRegular();
    double value = 0.0;
    if (maybeNumber && ParseNumber(text, value)) {
        Add(OperandKind::kNumber, value, {});
    } else if (text == "true" || text == "false" || text == "null") {
        Add(OperandKind::kOther, 0.0, text);
    } else {
        mOperator = text;
    }
}

void ContentParser::ReadName() {
    ++mPosition;
    Add(OperandKind::kName, 0.0, TakeRegular());
}

void ContentParser::ReadString() {
    const std::size_t start = ++mPosition;
    std::size_t depth = 1;
    for (; mPosition < mContent.size(); ++mPosition) {
        const char c = mContent[mPosition];
        if (c == '\\') {
            ++mPosition;
        } else if (c == '(') {
            ++depth;
        } else if (c == ')' && --depth == 0) {
            break;
        }
    }
    mPosition = std::min(mPosition, mContent.size());
    Add(OperandKind::kString, 0.0, mContent.substr(start, mPosition - start));
    mPosition = std::min(mPosition + 1, mContent.size());
}

void ContentParser::ReadHexString() {
    const std::size_t start = ++mPosition;
    mPosition = std::min(mContent.find('>', start), mContent.size());
    Add(OperandKind::kHexString, 0.0, mContent.substr(start, mPosition - start));
    mPosition = std::min(mPosition + 1, mContent.size());
}

void ContentParser::Open(OperandKind kind) {
    mFlat = false;
    if (mOpen.size() >= kMaxNesting || mTooDeep > 0 || mOperands.size() >= kMaxOperands) {
        ++mTooDeep;
        return;
    }
    Add(kind, 0.0, {});
    mOpen.push_back(mOperands.size() - 1);
}

void ContentParser::Close(OperandKind kind) {
    if (mTooDeep > 0) {
        --mTooDeep;
        return;
    }
    if (mOpen.empty() || mOperands[mOpen.back()].kind != kind) {
        return;
    }
    const std::size_t index = mOpen.back();
    mOpen.pop_back();
    mOperands[index].extent = static_cast<std::uint32_t>(mOperands.size() - index - 1);
}

void ContentParser::Add(OperandKind kind, double number, std::string_view text) {
    if (mOperands.size() < kMaxOperands && mTooDeep == 0) {
        mOperands.push_back({kind, 0, number, text});
    }
}

std::string_view ContentParser::TakeRegular() {
    const std::size_t start = mPosition;
    while (mPosition < mContent.size() && IsRegular(mContent[mPosition])) {
        ++mPosition;
    }
    return mContent.substr(start, mPosition - start);
}

std::string_view ContentParser::TakeInlineImage(std::size_t length) {
    if (mPosition < mContent.size() && ClassOf(mContent[mPosition]) == CharClass::kSpace) {
        ++mPosition;
    }
    const std::size_t start = mPosition;
    if (length > 0 && length <= mContent.size() - start) {
        std::size_t end = start + length;
        while (end < mContent.size() && ClassOf(mContent[end]) == CharClass::kSpace) {
            ++end;
        }
        if (IsEndOfImage(end)) {
            mPosition = end + 2;
            return mContent.substr(start, length);
        }
    }
    for (std::size_t found = mContent.find("EI", start); found != std::string_view::npos;
         found = mContent.find("EI", found + 1)) {
        const bool apart = found == start || ClassOf(mContent[found - 1]) == CharClass::kSpace;
        if (apart && IsEndOfImage(found)) {
            mPosition = found + 2;
            return mContent.substr(start, found - start);
        }
    }
    mPosition = mContent.size();
    return mContent.substr(start);
}

std::string_view ContentParser::OperandText() const {
    if (mOperands.empty() || mOperands.front().kind != OperandKind::kName) {
        return {};
    }
    const char* first = mOperands.front().text.data() - 1;
    return {first, static_cast<std::size_t>(mOperator.data() - first)};
}

// Image data may hold EI by chance: what follows the true one is text.
bool ContentParser::IsEndOfImage(std::size_t position) const {
    constexpr std::size_t kProbe = 16;
    if (mContent.substr(std::min(position, mContent.size()), 2) != "EI") {
        return false;
    }
    const std::string_view rest = mContent.substr(position + 2, kProbe);
    if (!rest.empty() && IsRegular(rest.front())) {
        return false;
    }
    return std::all_of(rest.begin(), rest.end(), [](char c) {
        return (c >= ' ' && c <= '~') || (ClassOf(c) == CharClass::kSpace && c != '\0');
    });
}

}  // namespace VANTIX::PDF
