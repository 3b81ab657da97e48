// SPDX-License-Identifier: MIT
#include "host/fonts/residentcidfont.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace VANTIX::HOST {

ResidentCIDFont::ResidentCIDFont(CIDFontDescription description, GRAPHICS::TEncoding encoding)
    : CIDFont(GRAPHICS::TFontType::kCIDKeyedCFF, std::move(description)), mEncoding(encoding) {}

std::uint16_t ResidentCIDFont::AddCode(std::string_view code, CIDCharacter character) {
    code = code.substr(0, kMostCodeBytes);
    auto known = mGlyphOfCode.find(code);
    if (known == mGlyphOfCode.end() && mCodes.size() <= std::numeric_limits<std::uint16_t>::max()) {
        known = mGlyphOfCode.emplace(code, static_cast<std::uint16_t>(mCodes.size())).first;
        mCodes.emplace_back(code);
    }
    character.glyph = known == mGlyphOfCode.end() ? std::uint16_t{0} : known->second;
    return Add(character);
}

bool ResidentCIDFont::ReEncodeText(const void* text, std::int32_t length, std::uint8_t* codes,
                                   std::int32_t* codeLength) const {
    if (text == nullptr || length < 0 || Characters().empty()) {
        return false;
    }
    const auto* numbers = static_cast<const std::uint8_t*>(text);
    std::uint8_t* end = codes;
    for (std::int32_t i = 0; i + 1 < length; i += 2) {
        const auto number = static_cast<std::uint16_t>(numbers[i] << 8U | numbers[i + 1]);
        const std::string& code = mCodes[Find(number)->glyph];
        end = std::copy(code.begin(), code.end(), end);
    }
    *codeLength = static_cast<std::int32_t>(end - codes);
    return true;
}

}  // namespace VANTIX::HOST
