// SPDX-License-Identifier: MIT
#include "host/fonts/cfftotype1.h"

#include <algorithm>
#include <charconv>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <tuple>
#include <utility>

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

/// The glyphs that codes reach, each under a name of its own.
CffTables Named(const CffTables& font) {
    CffTables named = font;
    named.names.resize(std::min<std::size_t>(font.glyphs.Count(), kSimpleCodes));
    for (std::size_t glyph = 0; glyph < named.names.size(); ++glyph) {
        named.names[glyph] = glyph == 0 ? ".notdef" : "g" + std::to_string(glyph);
        named.encoding.at(glyph) = glyph == 0 ? std::string() : named.names[glyph];
    }
    return named;
}

/// Brings a glyph from the units of one font DICT into those of another one. Its hints are lost.
void Convert(Type2Glyph& glyph, const CffMatrix& from, const CffMatrix& to) {
    const double area = double{to[0]} * double{to[3]} - double{to[1]} * double{to[2]};
    glyph.accent.reset();  // its parts have no names
    if (from == to || area == 0.0) {
        return;
    }
    const auto convert = [&](double x, double y) {
        const double u =
            double{from[0]} * x + double{from[2]} * y + double{from[4]} - double{to[4]};
        const double v =
            double{from[1]} * x + double{from[3]} * y + double{from[5]} - double{to[5]};
        return std::pair((double{to[3]} * u - double{to[2]} * v) / area,
                         (double{to[0]} * v - double{to[1]} * u) / area);
    };
    glyph.stems.clear();
    glyph.width = convert(glyph.width, 0).first - convert(0, 0).first;
    for (Type2Segment& segment : glyph.segments) {
        for (std::size_t i = 0; i < 2 * segment.pointCount; i += 2) {
            std::tie(segment.points.at(i), segment.points.at(i + 1)) =
                convert(segment.points.at(i), segment.points.at(i + 1));
        }
    }
}

std::string CharString(const CffTables& font, std::size_t index, Type2Reader& reader) {
    if (!font.isCidKeyed) {
        return Type1CharString(reader.Read(index));
    }
    Type2Glyph glyph = reader.Read(index);
    Convert(glyph, font.fontDicts[font.fontDictOf[index]].matrix, font.fontDicts[0].matrix);
    return Type1CharString(glyph);
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
        const std::string code =
            EncryptType1(std::string(4, '\0') + CharString(font, glyph, reader), kCharStringKey);
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

std::vector<std::uint8_t> Type1OfCff(const CffTables& cff, const GRAPHICS::PrivateValues& hints) {
    const CffTables font = cff.isCidKeyed ? Named(cff) : cff;
    const std::string text =
        ClearText(font) + EncryptType1(std::string(4, '\0') + PrivateText(font, hints), kEexecKey);
    return {text.begin(), text.end()};
}

}  // namespace VANTIX::HOST
