// SPDX-License-Identifier: MIT
#include "pdf/fonts/encoding.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace {

std::optional<HOST::BaseEncoding> EncodingNamed(const std::string& name) {
    constexpr std::pair<std::string_view, HOST::BaseEncoding> kEncodings[] = {
        {"WinAnsiEncoding", HOST::BaseEncoding::kWinAnsi},
        {"MacRomanEncoding", HOST::BaseEncoding::kMacRoman},
        {"MacExpertEncoding", HOST::BaseEncoding::kMacExpert},
        {"StandardEncoding", HOST::BaseEncoding::kStandard}};
    for (const auto& [known, encoding] : kEncodings) {
        if (known == name) {
            return encoding;
        }
    }
    return std::nullopt;
}

void ReadDifferences(QPDFObjectHandle array, FontEncoding& encoding) {
    std::int64_t code = 0;
    const int count = array.isArray() ? array.getArrayNItems() : 0;
    for (int i = 0; i < count; ++i) {
        const QPDFObjectHandle item = array.getArrayItem(i);
        if (const std::optional<std::int32_t> start = IntegerOf(item)) {
            code = *start;
            continue;
        }
        std::string name = NameOf(item);
        if (!name.empty() && code >= 0 && code < std::int64_t{HOST::kSimpleCodes}) {
            encoding.differences[static_cast<std::size_t>(code)] = std::move(name);
            encoding.hasDifferences = true;
        }
        ++code;
    }
}

}  // namespace

GlyphNames FontEncoding::Names(const GlyphNames& own) const {
    GlyphNames names = base ? GlyphNamesOf(*base) : own;
    for (std::size_t code = 0; code < names.size(); ++code) {
        if (!differences[code].empty()) {
            names[code] = HOST::SanitiseGlyphName(differences[code]);
        }
        if (names[code] == ".notdef") {
            names[code].clear();
        }
    }
    return names;
}

FontEncoding ReadEncoding(const QPDFObjectHandle& object) {
    FontEncoding encoding;
    const std::string name = NameOf(object);
    if (!name.empty()) {
        encoding.base = EncodingNamed(name);
        return encoding;
    }
    encoding.base = EncodingNamed(NameOf(Get(object, "/BaseEncoding")));
    ReadDifferences(Get(object, "/Differences"), encoding);
    return encoding;
}

GlyphNames GlyphNamesOf(HOST::BaseEncoding encoding) {
    GlyphNames names;
    const auto& table = HOST::NamesOf(encoding);
    std::copy(table.begin(), table.end(), names.begin());
    return names;
}

}  // namespace VANTIX::PDF
