// SPDX-License-Identifier: MIT
// Outlines of fonts in CFF beside those in the job, both as the AFDKO's tx reads them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <map>
#include <ostream>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "e2e/pdftext.h"
#include "e2e/tool.h"
#include "support/ghostscriptpages.h"
#include "support/temporaryfolder.h"
#include "unit/host/madecff.h"

namespace VANTIX::TEST {
namespace {

constexpr const char* kTx = "/usr/libexec/afdko/tx";  // Debian keeps it out of the path

std::string Installed(const std::string& name) {
    return ReadFile("/usr/share/fonts/opentype/urw-base35/" + name + ".otf");
}

/// The bytes from the first `start` to behind the `end` that follows, or to the end.
std::string Between(const std::string& text, const std::string& start, const std::string& end) {
    const std::size_t first = text.find(start);
    if (first == std::string::npos) {
        return "";
    }
    const std::size_t last = text.find(end, first);
    return text.substr(first, last == std::string::npos ? last : last + end.size() - first);
}

std::string Type1In(const std::string& job) {
    const std::string type1 = Between(job, "%!FontType1", "cleartomark\n");
    return type1.empty() ? Between(job, "%!PS-AdobeFont", "cleartomark\n") : type1;
}

std::string FontSetIn(const std::string& job) {
    constexpr std::string_view kStart = " StartData\n";
    const std::size_t start = job.find(kStart);
    const std::size_t length = start == std::string::npos ? 0 : job.rfind(' ', start - 1);
    return length == 0 ? "" : job.substr(start + kStart.size(), std::stoul(job.substr(length)));
}

/// The number that an entry has, 0 without it.
std::size_t NumberOf(const std::string& font, const std::string& entry) {
    const std::size_t at = font.find(entry);
    return at == std::string::npos ? 0 : std::stoul(font.substr(at + entry.size()));
}

/// The strings of a GlyphDirectory (PostScript Language Reference, 5.11.1).
std::map<std::size_t, std::string> GlyphsIn(const std::string& directory) {
    std::map<std::size_t, std::string> glyphs;
    std::istringstream lines(directory);
    for (std::string line; std::getline(lines, line);) {
        std::size_t cid = 0;
        int digits = 0;
        if (std::sscanf(line.c_str(), "%zu <%n", &cid, &digits) == 1 && digits > 0) {
            for (auto at = static_cast<std::size_t>(digits); line[at] != '>'; at += 2) {
                glyphs[cid] += static_cast<char>(std::stoi(line.substr(at, 2), nullptr, 16));
            }
        }
    }
    return glyphs;
}

/// A CIDFont with its charstrings in binary data, which is all that tx reads. Two entries, which it
/// would take for those of a font DICT, are left out.
std::string CidFontIn(const std::string& job) {
    const std::string font = Between(job, "%!PS-Adobe-3.0 Resource-CIDFont", "%%EndResource");
    std::string head = font.substr(0, font.find("/GlyphDirectory"));
    std::map<std::size_t, std::string> glyphs = GlyphsIn(font.substr(head.size()));
    const std::size_t cids = NumberOf(font, "/CIDCount ");
    const std::size_t selectorBytes = NumberOf(font, "/FDBytes ");
    std::string map;
    std::string data;
    for (std::size_t cid = 0; cid <= cids; ++cid) {
        std::string& glyph = glyphs[cid];
        glyph.resize(std::max(glyph.size(), selectorBytes));
        map += glyph.substr(0, selectorBytes) +
               MadeCff::Long((selectorBytes + 4) * (cids + 1) + data.size()).substr(1);
        data += glyph.substr(selectorBytes);
    }
    for (const std::string entry : {"/FontType 9 def\n", "/PaintType 0 def\n"}) {
        const std::size_t at = head.find(entry);
        head.erase(std::min(at, head.size()), at < head.size() ? entry.size() : 0);
    }
    return head + "(Binary) " + std::to_string(map.size() + data.size()) + " StartData " + map +
           data + "\n%%EndData\n%%EndResource\n%%EOF\n";
}

/// What tx calls "width", "move", "line" or "curve", with its numbers.
struct Step {
    std::string kind;
    std::vector<double> numbers;
};

/// Steps of glyphs by name, CID or index.
using Outlines = std::map<std::string, std::vector<Step>>;

/// Lines that close a contour may be left out.
void DropClosingLine(std::vector<Step>& steps) {
    if (steps.empty() || steps.back().kind != "line") {
        return;
    }
    std::size_t start = steps.size();
    while (start > 0 && steps[start - 1].kind != "move") {
        --start;
    }
    if (start > 0 && steps[start - 1].numbers == steps.back().numbers) {
        steps.pop_back();
    }
}

Outlines OutlinesOf(const std::string& font, bool byIndex) {
    const TemporaryFolder folder;
    WriteFile(folder.File("font"), font);
    const ChildResult dump =
        RunChild({kTx, "-dump", "-6", "-n", "-d", folder.File("font")}, std::chrono::seconds(60));
    EXPECT_EQ(dump.exitStatus, 0) << dump.errors;
    Outlines outlines;
    std::vector<Step>* glyph = nullptr;
    std::istringstream lines(dump.output);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("glyph[")) {
            const std::string key = byIndex ? Between(line, "[", "]") : Between(line, "{", ",");
            glyph = &outlines[key.substr(1, key.size() - 2)];
            continue;
        }
        Step step;
        std::istringstream words(line);
        for (double number = 0; words >> number;) {
            step.numbers.push_back(number);
        }
        words.clear();
        words >> step.kind;
        if (glyph != nullptr && (step.kind == "move" || step.kind == "endchar}")) {
            DropClosingLine(*glyph);
        }
        if (glyph != nullptr && !step.numbers.empty()) {
            glyph->push_back(std::move(step));
        }
    }
    return outlines;
}

/// What is more than a thousandth of an em away.
std::string Difference(const std::vector<Step>& is, const std::vector<Step>& was) {
    if (is.size() != was.size()) {
        return std::to_string(is.size()) + " steps, once " + std::to_string(was.size());
    }
    for (std::size_t i = 0; i < is.size(); ++i) {
        bool isSame = is[i].kind == was[i].kind && is[i].numbers.size() == was[i].numbers.size();
        for (std::size_t k = 0; isSame && k < is[i].numbers.size(); ++k) {
            isSame = std::abs(is[i].numbers[k] - was[i].numbers[k]) <= 1.0;
        }
        if (!isSame) {
            return "step " + std::to_string(i) + ", a " + was[i].kind;
        }
    }
    return "";
}

/// A font of 1000 units to the em, and how it goes out.
struct OutlineCase {
    const char* name;
    std::string (*program)();
    bool isComposite;
    const char* level;
    const char* encode;
    std::string (*extract)(const std::string& job);
    std::size_t leastGlyphs;
};

void PrintTo(const OutlineCase& each, std::ostream* out) {
    *out << each.name;
}

std::string Roman() {
    return Installed("NimbusRoman-Regular");
}

std::string Dingbats() {
    return Installed("D050000L");
}

std::string Script() {
    return Installed("Z003-MediumItalic");
}

/// Halves and quarters of a unit in many steps, a curve, and a subroutine.
MadeCff Fractional() {
    MadeCff made;
    std::vector<double> steps{10.5, kT2HMove};
    for (int i = 0; i < 60; ++i) {
        steps.insert(steps.end(), {7.75, 9.75, kT2Line});
    }
    steps.insert(steps.end(), {100.25, -400.25, kT2Line, -107, kT2Call, 10.25, 0.5, 20.75, 30.5,
                               -40.25, 7.5, 2008, kT2End});
    made.glyphs[1].code = Type2(steps);
    return made;
}

std::string BytesOf(const MadeCff& made) {
    const std::vector<std::uint8_t> bytes = made.Bytes();
    return {bytes.begin(), bytes.end()};
}

std::string Made() {
    return BytesOf(Fractional());
}

/// CIDs 100 to 300 in two font DICTs.
std::string CidKeyed() {
    MadeCff made = Fractional();
    made.isCidKeyed = true;
    made.strings = {"Adobe"};
    made.glyphs.pop_back();  // its components have no names
    for (std::size_t i = 1; i < made.glyphs.size(); ++i) {
        made.glyphs[i].string = static_cast<int>(100 * i);
    }
    made.selection = std::string("\3\0\2\0\0\0\0\2\1\0\4", 11);
    made.fontDicts = {"", ""};
    return BytesOf(made);
}

/// All glyphs that codes of the font's own encoding reach, or the CIDs 0 to 999.
std::string DocumentOf(const OutlineCase& each) {
    std::string codes;
    for (int code = 0; code < (each.isComposite ? 1000 : 256); ++code) {
        char digits[8];
        std::snprintf(digits, sizeof digits, each.isComposite ? "%04X" : "%02X", code);
        codes += digits;
    }
    const std::string program = each.program();
    const bool isOpenType = program.starts_with("OTTO");
    const std::string descriptor =
        "<< /Type /FontDescriptor /FontName /Made /Flags 4 /FontBBox [0 0 1000 1000] /ItalicAngle "
        "0 /Ascent 800 /Descent -200 /CapHeight 700 /StemV 80 /FontFile3 7 0 R >>";
    const std::string composite =
        "<< /Type /Font /Subtype /Type0 /BaseFont /Made /Encoding /Identity-H /DescendantFonts [8 "
        "0 R] >>";
    const std::string simple =
        "<< /Type /Font /Subtype /Type1 /BaseFont /Made /FontDescriptor 6 0 R >>";
    return PageOf("BT /F 5 Tf 10 30 Td <" + codes + "> Tj ET", "/Font << /F 5 0 R >>",
                  {each.isComposite ? composite : simple, descriptor,
                   StreamOf(program, isOpenType         ? "/Subtype /OpenType"
                                     : each.isComposite ? "/Subtype /CIDFontType0C"
                                                        : "/Subtype /Type1C"),
                   "<< /Type /Font /Subtype /CIDFontType0 /BaseFont /Made /CIDSystemInfo << "
                   "/Registry (Adobe) /Ordering (Identity) /Supplement 0 >> /FontDescriptor 6 0 R "
                   "/DW 600 >>"});
}

class CffOutlines : public testing::TestWithParam<OutlineCase> {};

TEST_P(CffOutlines, StayWithinAThousandthOfAnEm) {
    if (!std::filesystem::exists(kTx)) {
        GTEST_SKIP() << "afdko-bin is not installed";
    }
    const OutlineCase& each = GetParam();
    const TemporaryFolder folder;
    const std::string pdf = folder.File("font.pdf");
    const std::string output = folder.File("font.ps");
    WriteFile(pdf, DocumentOf(each));
    const ChildResult run = RunTool({pdf, output, "--level", each.level, "--encode", each.encode});
    ASSERT_EQ(run.exitStatus, kDone) << run.errors;
    const std::string program = each.program();
    const bool byIndex = each.isComposite && program.starts_with("OTTO");
    const Outlines was = OutlinesOf(program, byIndex);
    const Outlines is = OutlinesOf(each.extract(ReadFile(output)), false);
    EXPECT_GE(is.size(), each.leastGlyphs);
    for (const auto& [glyph, steps] : is) {
        const auto found = was.find(glyph);
        ASSERT_NE(found, was.end()) << glyph;
        EXPECT_EQ(Difference(steps, found->second), "") << glyph;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Fonts, CffOutlines,
    testing::Values(OutlineCase{"RomanType1", Roman, false, "2", "ascii85", Type1In, 149},
                    OutlineCase{"RomanFontSet", Roman, false, "3", "runlength", FontSetIn, 149},
                    OutlineCase{"RomanSevenBits", Roman, false, "3", "ascii85", Type1In, 149},
                    OutlineCase{"RomanCidFont", Roman, true, "3", "ascii85", CidFontIn, 800},
                    OutlineCase{"DingbatsType1", Dingbats, false, "2", "ascii85", Type1In, 190},
                    OutlineCase{"ScriptCidFont", Script, true, "2", "ascii85", CidFontIn, 500},
                    OutlineCase{"FractionalType1", Made, false, "2", "ascii85", Type1In, 4},
                    OutlineCase{"CidKeyed", CidKeyed, true, "3", "ascii85", CidFontIn, 4}),
    [](const auto& one) { return std::string(one.param.name); });

}  // namespace
}  // namespace VANTIX::TEST
