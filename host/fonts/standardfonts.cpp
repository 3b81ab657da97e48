// SPDX-License-Identifier: MIT
#include "host/fonts/standardfonts.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <unordered_map>

#include "host/fonts/fonttables.h"
#include "host/fonts/tablewords.h"

namespace VANTIX::HOST {
namespace {

constexpr std::size_t kTextColumns = 6;

/// A family, with its fonts regular, bold, italic and bold italic, and the columns of their widths.
struct Family {
    std::array<std::string_view, 4> fonts;
    std::array<std::size_t, 4> columns;
};

constexpr std::size_t kNoColumn = kTextColumns;
constexpr Family kHelvetica{
    {"Helvetica", "Helvetica-Bold", "Helvetica-Oblique", "Helvetica-BoldOblique"}, {0, 1, 0, 1}};
constexpr Family kTimes{{"Times-Roman", "Times-Bold", "Times-Italic", "Times-BoldItalic"},
                        {2, 3, 4, 5}};
constexpr Family kCourier{{"Courier", "Courier-Bold", "Courier-Oblique", "Courier-BoldOblique"},
                          {kNoColumn, kNoColumn, kNoColumn, kNoColumn}};
constexpr Family kSymbol{{"Symbol", "Symbol", "Symbol", "Symbol"}, {0, 0, 0, 0}};
constexpr Family kDingbats{{"ZapfDingbats", "ZapfDingbats", "ZapfDingbats", "ZapfDingbats"},
                           {0, 0, 0, 0}};

struct FamilyAlias {
    std::string_view name;
    const Family& family;
};

constexpr std::array kFamilies = {
    FamilyAlias{"Helvetica", kHelvetica},   FamilyAlias{"Arial", kHelvetica},
    FamilyAlias{"Times", kTimes},           FamilyAlias{"TimesNewRoman", kTimes},
    FamilyAlias{"TimesNewRomanPS", kTimes}, FamilyAlias{"Courier", kCourier},
    FamilyAlias{"CourierNew", kCourier},    FamilyAlias{"CourierNewPS", kCourier},
    FamilyAlias{"Symbol", kSymbol},         FamilyAlias{"ZapfDingbats", kDingbats},
};

struct Style {
    std::string_view name;
    std::size_t font;  ///< of a family
};

constexpr std::array kStyles = {
    Style{"", 0},
    Style{"Roman", 0},
    Style{"Regular", 0},
    Style{"Normal", 0},
    Style{"Bold", 1},
    Style{"Italic", 2},
    Style{"Oblique", 2},
    Style{"BoldItalic", 3},
    Style{"BoldOblique", 3},
    Style{"Bold,Italic", 3},
};

/// The family of a name and which of its fonts, or null.
const Family* FindFamily(std::string_view name, std::size_t& font) {
    for (const FamilyAlias& alias : kFamilies) {
        if (!name.starts_with(alias.name)) {
            continue;
        }
        std::string_view style = name.substr(alias.name.size());
        if (style.ends_with("MT")) {
            style.remove_suffix(2);
        }
        if (style.starts_with(',') || style.starts_with('-')) {
            style.remove_prefix(1);
        }
        for (const Style& each : kStyles) {
            if (each.name == style) {
                font = each.font;
                return &alias.family;
            }
        }
    }
    return nullptr;
}

using Advances = std::array<float, kTextColumns>;  // in ems
using WidthTable = std::unordered_map<std::string_view, Advances>;

WidthTable ReadWidths(std::string_view table, std::size_t columns) {
    WidthTable widths;
    TableWords words(table);
    for (std::string_view name = words.Next(); !name.empty(); name = words.Next()) {
        Advances& advances = widths[name];
        for (std::size_t column = 0; column < columns; ++column) {
            const std::string_view word = words.Next();
            std::int32_t thousandths = 0;
            std::from_chars(word.data(), word.data() + word.size(), thousandths);
            advances.at(column) = static_cast<float>(thousandths) / 1000.0F;
        }
    }
    return widths;
}

const WidthTable& WidthsOf(const Family& family) {
    static const WidthTable kText = ReadWidths(FONTTABLES::kTextWidths, kTextColumns);
    static const WidthTable kSymbols = ReadWidths(FONTTABLES::kSymbolWidths, 1);
    static const WidthTable kOrnaments = ReadWidths(FONTTABLES::kDingbatsWidths, 1);
    if (&family == &kSymbol) {
        return kSymbols;
    }
    return &family == &kDingbats ? kOrnaments : kText;
}

}  // namespace

std::optional<std::string_view> StandardFontOf(std::string_view name) {
    std::string packed;
    for (const char each : name) {
        if (each != ' ') {
            packed += each;
        }
    }
    std::size_t font = 0;
    const Family* family = FindFamily(packed, font);
    return family == nullptr ? std::nullopt : std::optional(family->fonts.at(font));
}

BaseEncoding EncodingOfStandardFont(std::string_view font) {
    if (font == kSymbol.fonts.front()) {
        return BaseEncoding::kSymbol;
    }
    return font == kDingbats.fonts.front() ? BaseEncoding::kZapfDingbats : BaseEncoding::kStandard;
}

float StandardWidth(std::string_view font, std::string_view glyph) {
    constexpr float kCourierAdvance = 0.6F;
    std::size_t index = 0;
    const Family* family = FindFamily(font, index);
    if (family == nullptr) {
        return -1.0F;
    }
    const WidthTable& widths = WidthsOf(*family);
    const auto found = widths.find(glyph);
    if (found == widths.end()) {
        return -1.0F;
    }
    const std::size_t column = family->columns.at(index);
    return column == kNoColumn ? kCourierAdvance : found->second.at(column);
}

}  // namespace VANTIX::HOST
