// SPDX-License-Identifier: MIT
#include "pdf/fonts/fontdictionary.h"

#include <algorithm>
#include <initializer_list>
#include <limits>
#include <string_view>

#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace {

/// Of the flags of a font descriptor (PDF Reference, table 5.20).
enum Flags : std::uint32_t {
    kFixedPitch = 1U << 0U,
    kSerif = 1U << 1U,
    kSymbolic = 1U << 2U,
    kNonsymbolic = 1U << 5U,
    kItalic = 1U << 6U,
    kForceBold = 1U << 18U
};

constexpr std::size_t kLargestCMap = std::size_t{4} << 20U;

bool HasTag(std::string_view name) {
    constexpr std::size_t kTag = 6;
    return name.size() > kTag && name[kTag] == '+' &&
           std::all_of(name.begin(), name.begin() + kTag,
                       [](char c) { return c >= 'A' && c <= 'Z'; });
}

bool NameHolds(std::string_view name, std::initializer_list<std::string_view> words) {
    return std::any_of(words.begin(), words.end(), [name](std::string_view word) {
        return name.find(word) != std::string_view::npos;
    });
}

float FloatOf(const QPDFObjectHandle& object) {
    return ToFloat(NumberOf(object).value_or(0.0));
}

}  // namespace

std::string FontKey(const QPDFObjectHandle& dictionary) {
    QPDFObjectHandle object = dictionary;
    return object.isIndirect() ? object.getObjGen().unparse(' ') : object.unparseResolved();
}

CodeTexts ReadTexts(const QPDFObjectHandle& dictionary) {
    QPDFObjectHandle cmap = Get(dictionary, "/ToUnicode");
    std::string text;
    if (cmap.isStream()) {
        AppendStreamData(cmap, text, kLargestCMap);
    }
    return ReadToUnicode(text);
}

HOST::FontDescription DescribeFont(const FontDictionary& font) {
    HOST::FontDescription description;
    description.family = font.family.empty() ? font.name : font.family;
    description.italicAngle = font.italicAngle;
    description.isFixedPitch = font.isFixedPitch;
    description.isBold = font.isBold;
    description.horizontalStem = font.stemH;
    description.verticalStem = font.stemV;
    description.box = font.box;
    return description;
}

FontDictionary::FontDictionary(const QPDFObjectHandle& dictionary)
    : subtype(NameOf(Get(dictionary, "/Subtype"))),
      baseFont(NameOf(Get(dictionary, "/BaseFont"))),
      isSubset(HasTag(baseFont)),
      program(QPDFObjectHandle::newNull()),
      encoding(ReadEncoding(Get(dictionary, "/Encoding"))) {
    constexpr std::size_t kTagWithPlus = 7;
    const QPDFObjectHandle descriptor = Get(dictionary, "/FontDescriptor");
    if (baseFont.empty()) {
        baseFont = NameOf(Get(descriptor, "/FontName"));
        isSubset = HasTag(baseFont);
    }
    name = isSubset ? baseFont.substr(kTagWithPlus) : baseFont;
    ReadDescriptor(descriptor);
    ReadWidths(dictionary, descriptor);
    texts = ReadTexts(dictionary);
}

void FontDictionary::ReadDescriptor(const QPDFObjectHandle& descriptor) {
    for (const char* key : {"/FontFile", "/FontFile2", "/FontFile3"}) {
        QPDFObjectHandle file = Get(descriptor, key);
        if (file.isStream()) {
            program = file;
            break;
        }
    }
    const auto flags = static_cast<std::uint32_t>(IntegerOf(Get(descriptor, "/Flags")).value_or(0));
    symbols = {(flags & kSymbolic) != 0, (flags & kNonsymbolic) != 0};
    italicAngle = FloatOf(Get(descriptor, "/ItalicAngle"));
    stemH = FloatOf(Get(descriptor, "/StemH"));
    stemV = FloatOf(Get(descriptor, "/StemV"));
    isFixedPitch = (flags & kFixedPitch) != 0;
    isSerif = (flags & kSerif) != 0;
    isItalic = (flags & kItalic) != 0 || italicAngle != 0.0F ||
               NameHolds(name, {"Italic", "Oblique", "italic", "oblique"});
    constexpr float kSemiBold = 600.0F;
    isBold = (flags & kForceBold) != 0 || FloatOf(Get(descriptor, "/FontWeight")) >= kSemiBold ||
             NameHolds(name, {"Bold", "Black", "Heavy", "bold"});
    if (const auto rectangle = RectangleOf(Get(descriptor, "/FontBBox"))) {
        const auto& [x0, y0, x1, y1] = *rectangle;
        box = {ToFloat(x0), ToFloat(y0), ToFloat(x1 - x0), ToFloat(y1 - y0)};
    }
    QPDFObjectHandle familyName = Get(descriptor, "/FontFamily");
    family = familyName.isString() ? familyName.getUTF8Value() : std::string();
}

void FontDictionary::ReadWidths(const QPDFObjectHandle& dictionary,
                                const QPDFObjectHandle& descriptor) {
    constexpr float kThousandth = 0.001F;
    QPDFObjectHandle array = Get(dictionary, "/Widths");
    const bool hasWidths = array.isArray();
    const std::optional<double> missing = NumberOf(Get(descriptor, "/MissingWidth"));
    widths.fill(hasWidths && missing ? ToFloat(*missing) * kThousandth
                                     : std::numeric_limits<float>::quiet_NaN());
    if (!hasWidths) {
        return;
    }
    constexpr std::int32_t kLast = 255;
    const std::int32_t first = IntegerOf(Get(dictionary, "/FirstChar")).value_or(0);
    const std::int32_t count = std::min(array.getArrayNItems(), kLast + 1);
    firstCode = std::clamp(first, 0, kLast);
    lastCode =
        std::clamp(IntegerOf(Get(dictionary, "/LastChar")).value_or(kLast), firstCode, kLast);
    for (std::int32_t i = 0; first >= 0 && i < count && i <= kLast - first; ++i) {
        if (const std::optional<double> width = NumberOf(array.getArrayItem(i))) {
            const std::int32_t code = first + i;
            widths[static_cast<std::size_t>(code)] = ToFloat(*width) * kThousandth;
        }
    }
}

}  // namespace VANTIX::PDF
