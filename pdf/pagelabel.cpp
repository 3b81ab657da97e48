// SPDX-License-Identifier: MIT
#include "pdf/pagelabel.h"

#include <array>
#include <cctype>
#include <cstdint>
#include <qpdf/QPDFPageLabelDocumentHelper.hh>
#include <string_view>
#include <utility>

#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace {

std::string Roman(std::int32_t number) {
    constexpr std::array<std::pair<std::int32_t, std::string_view>, 13> kSteps = {{
        {1000, "m"},
        {900, "cm"},
        {500, "d"},
        {400, "cd"},
        {100, "c"},
        {90, "xc"},
        {50, "l"},
        {40, "xl"},
        {10, "x"},
        {9, "ix"},
        {5, "v"},
        {4, "iv"},
        {1, "i"},
    }};
    std::string text;
    for (const auto& [value, letters] : kSteps) {
        for (; number >= value; number -= value) {
            text += letters;
        }
    }
    return text;
}

std::string Letters(std::int32_t number) {
    const auto length = static_cast<std::size_t>(number - 1) / 26 + 1;
    std::string text;
    text.assign(length, static_cast<char>('a' + (number - 1) % 26));
    return text;
}

std::string Number(const std::string& style, std::int32_t number) {
    // Beyond this, letters and Roman numerals only grow long.
    constexpr std::int32_t kLargestSpelt = 4999;
    if (style.empty()) {
        return {};
    }
    if (style == "D" || number < 1 || number > kLargestSpelt) {
        return std::to_string(number);
    }
    const bool letters = style == "a" || style == "A";
    std::string text = letters ? Letters(number) : Roman(number);
    if (style == "A" || style == "R") {
        for (char& c : text) {
            c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        }
    }
    return text;
}

}  // namespace

std::string PageLabel(QPDF& qpdf, int index) {
    const QPDFObjectHandle label = QPDFPageLabelDocumentHelper(qpdf).getLabelForPage(index);
    QPDFObjectHandle prefix = Get(label, "/P");
    const std::string text =
        (prefix.isString() ? prefix.getUTF8Value() : std::string()) +
        Number(NameOf(Get(label, "/S")), IntegerOf(Get(label, "/St")).value_or(index + 1));
    return text.empty() ? std::to_string(index + 1) : text;
}

}  // namespace VANTIX::PDF
