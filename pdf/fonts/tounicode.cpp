// SPDX-License-Identifier: MIT
#include "pdf/fonts/tounicode.h"

#include <algorithm>
#include <optional>
#include <span>
#include <utility>

#include "host/fonts/glyphnames.h"
#include "pdf/contentparser.h"
#include "pdf/fonts/stringoperand.h"

namespace VANTIX::PDF {

namespace {

constexpr std::uint32_t kLargestCode = 0xFFFF;
constexpr std::size_t kLongestText = 8;

using Operands = std::span<const Operand>;

bool IsString(const Operand& operand) {
    return operand.kind == OperandKind::kHexString || operand.kind == OperandKind::kString;
}

std::optional<std::uint32_t> CodeOf(const Operand& operand) {
    if (!IsString(operand)) {
        return std::nullopt;
    }
    const std::string bytes = BytesOf(operand);
    std::uint32_t code = 0;
    for (const char byte : bytes) {
        code = (code << 8U | static_cast<unsigned char>(byte)) & 0xFFFFFFU;
    }
    return bytes.empty() || code > kLargestCode ? std::nullopt : std::optional(code);
}

std::u32string FromUtf16(const std::string& bytes) {
    std::u32string text;
    for (std::size_t i = 0; i + 1 < bytes.size() && text.size() < kLongestText; i += 2) {
        const auto unit = static_cast<char32_t>(static_cast<unsigned char>(bytes[i]) << 8U |
                                                static_cast<unsigned char>(bytes[i + 1]));
        const bool isLow = unit >= 0xDC00 && unit < 0xE000;
        if (isLow && !text.empty() && text.back() >= 0xD800 && text.back() < 0xDC00) {
            text.back() = 0x10000 + ((text.back() - 0xD800) << 10U) + (unit - 0xDC00);
        } else {
            text += unit;
        }
    }
    const auto isNoCharacter = [](char32_t c) {
        return c == 0 || c == 0xFFFD || c == 0xFEFF || (c >= 0xD800 && c < 0xE000);
    };
    text.erase(std::remove_if(text.begin(), text.end(), isNoCharacter), text.end());
    return text;
}

std::u32string TextOf(const Operand& operand) {
    if (operand.kind == OperandKind::kName) {
        const auto character = HOST::UnicodeOfGlyphName(DecodeName(operand.text));
        return character ? std::u32string(1, *character) : std::u32string();
    }
    if (!IsString(operand)) {
        return {};
    }
    const std::string bytes = BytesOf(operand);
    return FromUtf16(bytes.size() == 1 ? '\0' + bytes : bytes);
}

/// What was read so far. Ranges may overlap: there is a bound to the work that they make.
class Texts {
public:
    [[nodiscard]] bool IsFull() const { return mRoom == 0; }

    void Enter(std::uint32_t code, const std::u32string& text) {
        if (!text.empty() && mRoom > 0) {
            --mRoom;
            mTexts.emplace(code, text);
        }
    }

    CodeTexts Take() { return std::move(mTexts); }

private:
    CodeTexts mTexts;
    std::size_t mRoom = std::size_t{2} * kLargestCode;
};

// <code> text …
void ReadCharacters(Operands operands, Texts& texts) {
    for (std::size_t i = 0; i + 1 < operands.size(); i += 2) {
        if (const auto code = CodeOf(operands[i])) {
            texts.Enter(*code, TextOf(operands[i + 1]));
        }
    }
}

// <first> <last> text, whose last character counts up, or <first> <last> [text …]
void ReadRanges(Operands operands, Texts& texts) {
    for (std::size_t i = 0; i + 2 < operands.size();) {
        const auto first = CodeOf(operands[i]);
        const auto last = CodeOf(operands[i + 1]);
        const Operand& target = operands[i + 2];
        const Operands items =
            operands.subspan(i + 3, std::min<std::size_t>(target.extent, operands.size() - i - 3));
        i += 3 + items.size();
        if (!first || !last || *last < *first) {
            continue;
        }
        if (target.kind == OperandKind::kArray) {
            const std::size_t count = std::min<std::size_t>(items.size(), *last - *first + 1);
            for (std::size_t k = 0; k < count; ++k) {
                texts.Enter(*first + static_cast<std::uint32_t>(k), TextOf(items[k]));
            }
            continue;
        }
        std::u32string text = TextOf(target);
        for (std::uint32_t code = *first; code <= *last && !text.empty() && !texts.IsFull();
             ++code) {
            texts.Enter(code, text);
            ++text.back();
        }
    }
}

}  // namespace

CodeTexts ReadToUnicode(std::string_view cmap) {
    Texts texts;
    ContentParser parser(cmap);
    while (!texts.IsFull() && parser.Next()) {
        if (parser.Operator() == "endbfchar") {
            ReadCharacters(parser.Operands(), texts);
        } else if (parser.Operator() == "endbfrange") {
            ReadRanges(parser.Operands(), texts);
        }
    }
    return texts.Take();
}

std::string GlyphNameOfText(std::u32string_view text) {
    if (text.size() >= kLongestText) {
        return {};
    }
    std::string name;
    for (const char32_t character : text) {
        name += (name.empty() ? "" : "_") + HOST::GlyphNameOfUnicode(character);
    }
    return name;
}

}  // namespace VANTIX::PDF
