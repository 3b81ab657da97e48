// SPDX-License-Identifier: MIT
#include "host/fonts/cfftotype1.h"

#include <charconv>
#include <span>
#include <string>
#include <string_view>
#include <system_error>

#include "host/fonts/charstringwriter.h"
#include "host/fonts/eexec.h"
#include "host/fonts/glyphnames.h"
#include "host/fonts/type2charstrings.h"

namespace VANTIX::HOST {
namespace {

std::string Number(float value) {
    std::array<char, 32> text{};
    const auto result = std::to_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() ? std::string(text.data(), result.ptr) : "0";
}

std::string Array(std::span<const float> values) {
    std::string text = "[";
    for (const float value : values) {
        text += (text.size() > 1 ? " " : "") + Number(value);
    }
    return text + "]";
}

/// An array under a key; nothing for an empty one.
std::string Entry(const char* key, const float* values, std::int32_t count) {
    return count == 0 ? std::string()
                      : std::string("/") + key + " " +
                            Array({values, static_cast<std::size_t>(count)}) + " def\n";
}

std::string FontName(const CffTables& font) {
    return font.name.empty() ? "Font" : SanitiseGlyphName(font.name);
}

std::string ClearText(const CffTables& font) {
    const GRAPHICS::FontBox box = font.Box();
    const std::string name = FontName(font);
    std::string text = "%!PS-AdobeFont-1.0: " + name + "\n9 dict begin\n/FontName /" + name +
                       " def\n/PaintType 0 def\n/FontType 1 def\n/FontMatrix " +
                       Array(font.fontDicts[0].matrix) + " readonly def\n/FontBBox {" +
                       Number(box.x) + " " + Number(box.y) + " " + Number(box.x + box.width) + " " +
                       Number(box.y + box.height) +
                       "} readonly def\n/Encoding 256 array\n0 1 255 {1 index exch /.notdef put} "
                       "for\n";
    for (std::size_t code = 0; code < kSimpleCodes; ++code) {
        const std::string& glyph = font.encoding.at(code);
        if (!glyph.empty()) {
            text += "dup " + std::to_string(code) + " /" + SanitiseGlyphName(glyph) + " put\n";
        }
    }
    return text + "readonly def\ncurrentdict end\ncurrentfile eexec\n";
}

std::string Hints(const GRAPHICS::PrivateValues& hints) {
    const bool hasH = hints.stdHW != 0;
    const bool hasV = hints.stdVW != 0;
    std::string text = "/BlueValues " +
                       Array({hints.blueValues, static_cast<std::size_t>(hints.blueValueCount)}) +
                       " def\n";
    text += Entry("OtherBlues", hints.otherBlues, hints.otherBlueCount);
    text += "/BlueScale " + Number(hints.blueScale) + " def\n/BlueShift " +
            Number(hints.blueShift) + " def\n/BlueFuzz " + Number(hints.blueFuzz) + " def\n";
    text += Entry("StdHW", &hints.stdHW, hasH ? 1 : 0) + Entry("StdVW", &hints.stdVW, hasV ? 1 : 0);
    text += Entry("StemSnapH", hints.stemSnapH, hints.stemSnapHCount);
    text += Entry("StemSnapV", hints.stemSnapV, hints.stemSnapVCount);
    text += hints.forceBold ? "/ForceBold true def\n" : "";
    return text + "/LanguageGroup " + std::to_string(hints.languageGroup) +
           " def\n/ExpansionFactor " + Number(hints.expansionFactor) + " def\n";
}

std::string PrivateText(const CffTables& font, const GRAPHICS::PrivateValues& hints) {
    Type2Reader reader(font);
    std::string glyphs;
    std::size_t count = 0;
    for (std::size_t glyph = 0; glyph < font.names.size(); ++glyph) {
        if (font.names[glyph].empty()) {
            continue;
        }
        const std::string code = EncryptType1(
            std::string(4, '\0') + Type1CharString(reader.Read(glyph)), kCharStringKey);
        glyphs += '/' + SanitiseGlyphName(font.names[glyph]) + ' ' + std::to_string(code.size()) +
                  " RD " + code + " ND\n";
        ++count;
    }
    return "dup /Private 18 dict dup begin\n"
           "/RD {string currentfile exch readstring pop} executeonly def\n"
           "/ND {noaccess def} executeonly def\n"
           "/NP {noaccess put} executeonly def\n" +
           Hints(hints) + "/MinFeature {16 16} def\n/password 5839 def\n2 index /CharStrings " +
           std::to_string(count) + " dict dup begin\n" + glyphs +
           "end\nend\nreadonly put\nnoaccess put\ndup /FontName get exch definefont pop\n"
           "mark currentfile closefile\n";
}

}  // namespace

std::vector<std::uint8_t> Type1OfCff(const CffTables& font, const GRAPHICS::PrivateValues& hints) {
    const std::string text =
        ClearText(font) + EncryptType1(std::string(4, '\0') + PrivateText(font, hints), kEexecKey);
    return {text.begin(), text.end()};
}

}  // namespace VANTIX::HOST
