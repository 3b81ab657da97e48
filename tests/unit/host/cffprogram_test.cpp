// SPDX-License-Identifier: MIT
#include "host/fonts/cffprogram.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "core/fonts/ifontancillaries.h"
#include "host/fonts/type1program.h"
#include "support/temporaryfolder.h"
#include "unit/host/madecff.h"
#include "unit/host/measured.h"

namespace VANTIX::HOST {
namespace {

using namespace TEST;
using Bytes = std::vector<std::uint8_t>;

const std::string kInstalled = "/usr/share/fonts/opentype/urw-base35/";

std::string TextOf(const Bytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

std::shared_ptr<CffProgram> OpenBytes(const Bytes& bytes) {
    std::string problem;
    auto program = CffProgram::Open(bytes, problem);
    EXPECT_EQ(program == nullptr, !problem.empty()) << problem;
    return program;
}

/// Bare CFF as an interpreter takes it.
std::string FontSetOf(const std::string& name, const Bytes& cff) {
    return "/FontSetInit /ProcSet findresource begin (" + name + ") cvn " +
           std::to_string(cff.size()) + " StartData\n" + TextOf(cff) + "\n";
}

std::string Type1Of(const CffProgram& program, const std::string& name) {
    std::string problem;
    const auto type1 = Type1Program::Open(program.AsType1(), problem);
    EXPECT_NE(type1, nullptr) << problem;
    if (type1 == nullptr) {
        return "";
    }
    type1->Rename(name);
    return TextOf(type1->Data());
}

/// Charstrings by name, with their widths behind them.
class Collected final : public GRAPHICS::ICharStringFunctor {
public:
    bool operator()(const char* name, const GRAPHICS::CharString& code) override {
        codes[name] = {code.data, code.data + code.length};
        widths[name] = {code.nominalWidth, code.defaultWidth};
        return true;
    }

    std::map<std::string, std::string> codes;
    std::map<std::string, std::pair<float, float>> widths;
};

Collected CharStringsOf(std::shared_ptr<CffProgram> program) {
    Collected collected;
    const auto font = MakeCFFFont(std::move(program), {});
    FindInterface<GRAPHICS::ICFFAncillary>(font.Get(), GRAPHICS::IID_ICFFANCILLARY)
        ->EnumerateCharStrings(collected);
    return collected;
}

class InstalledCff : public testing::TestWithParam<std::string> {};

TEST_P(InstalledCff, KeepsTheGlyphsThatAreUsedAsTheyWere) {
    const std::string file = kInstalled + GetParam() + ".otf";
    if (!std::filesystem::exists(file)) {
        GTEST_SKIP() << "fonts-urw-base35 is not installed";
    }
    const std::string original = TEST::ReadFile(file);
    const auto program = OpenBytes({original.begin(), original.end()});
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(program->Name(), GetParam());
    EXPECT_TRUE(program->IsSound());
    std::vector<std::string> glyphs;
    for (std::uint32_t glyph = 2; glyph < program->GlyphCount(); glyph += 97) {
        glyphs.push_back(program->NameOf(static_cast<std::uint16_t>(glyph)));
        program->UseGlyph(glyphs.back());
    }
    const std::string known =
        Measured(TEST::ReadFile("/usr/share/fonts/type1/urw-base35/" + GetParam() + ".t1"),
                 GetParam(), glyphs);
    program->Rename("XYZUVW+Other");
    EXPECT_LT(program->Data().size(), original.size() / 4);
    EXPECT_EQ(Measured(FontSetOf("XYZUVW+Other", program->Data()), "XYZUVW+Other", glyphs), known);
    EXPECT_EQ(Measured(Type1Of(*program, "Other"), "Other", glyphs), known);
    const auto again = OpenBytes(program->Data());
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(again->Name(), "XYZUVW+Other");
    for (const std::string& glyph : glyphs) {
        EXPECT_FLOAT_EQ(again->WidthOf(glyph), program->WidthOf(glyph)) << glyph;
    }
}

INSTANTIATE_TEST_SUITE_P(Fonts, InstalledCff,
                         testing::Values("NimbusSans-Regular", "NimbusRoman-BoldItalic",
                                         "StandardSymbolsPS", "D050000L", "Z003-MediumItalic"));

struct MadeCase {
    const char* name;
    std::function<void(MadeCff&)> change;
};

class MadeCffs : public testing::TestWithParam<MadeCase> {};

TEST_P(MadeCffs, AreReadCutAndDefined) {
    MadeCff made;
    GetParam().change(made);
    const auto program = OpenBytes(made.Bytes());
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(program->Name(), "Made");
    EXPECT_EQ(program->Encoding()[65], "A");
    EXPECT_FLOAT_EQ(program->WidthOf("A"), 0.6F);
    EXPECT_FLOAT_EQ(program->WidthOf("B"), 0.7F);
    EXPECT_LT(program->WidthOf("C"), 0.0F);
    EXPECT_TRUE(program->HasOutline("Aacute"));
    EXPECT_FALSE(program->HasOutline(".notdef"));
    EXPECT_TRUE(program->IsSound());
    program->Rename("New");
    program->UseGlyph("Aacute");
    program->UseGlyph("C");
    EXPECT_EQ(program->WrittenCount(), 4);  // with .notdef, base and accent
    const std::string measured = "600.0\n0.0\n740\n510\n0\n10\n";
    EXPECT_EQ(Measured(FontSetOf("New", program->Data()), "New", {"Aacute"}), measured);
    EXPECT_EQ(Measured(Type1Of(*program, "New"), "New", {"Aacute"}), measured);
    const auto again = OpenBytes(program->Data());
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(again->Name(), "New");
    EXPECT_EQ(again->GlyphCount(), 4U);
    EXPECT_LT(again->WidthOf("B"), 0.0F);
}

INSTANTIATE_TEST_SUITE_P(
    Fonts, MadeCffs,
    testing::Values(
        MadeCase{"Plain", [](MadeCff&) {}},
        MadeCase{"OwnEncoding", [](MadeCff& made) { made.encoding = std::string("\0\4ABCD", 6); }},
        MadeCase{"EncodingInRanges",
                 [](MadeCff& made) { made.encoding = std::string("\1\1A\3", 4); }},
        MadeCase{"EncodingWithSupplement",
                 [](MadeCff& made) { made.encoding = std::string("\x80\0\1A\0\x22", 6); }},
        MadeCase{"WithMatrix",
                 [](MadeCff& made) {
                     made.topEntries = std::string(
                         "\x1E\xA0\x01\xFF\x8B\x8B\x1E\xA0\x01\xFF\x8B\x8B\x0C\x07", 14);
                 }}),
    [](const auto& each) { return std::string(each.param.name); });

TEST(CffProgram, HandsPlainCharStringsOverAsTheyAre) {
    MadeCff made;
    made.locals = {Type2({500, 0, kT2Line, 0, 500, kT2Line, -500, -500, kT2Line, kT2Back})};
    const auto program = OpenBytes(made.Bytes());
    ASSERT_NE(program, nullptr);
    const Collected collected = CharStringsOf(program);
    EXPECT_EQ(collected.codes.size(), made.glyphs.size());
    EXPECT_EQ(collected.codes.at("A"), made.glyphs[1].code);
    EXPECT_EQ(collected.codes.at("Aacute"), made.glyphs[4].code);
    EXPECT_EQ(collected.widths.at("A"), std::pair(500.0F, 600.0F));
    std::uint8_t buffer[GRAPHICS::ICharStringSubroutines::kRoom] = {};
    EXPECT_EQ(program->LocalBias(0), 107);
    EXPECT_EQ(program->CopyLocal(0, 0, buffer), static_cast<std::int32_t>(made.locals[0].size()));
    EXPECT_EQ(program->CopyLocal(0, 1, buffer), 0);
    EXPECT_EQ(program->CopyLocal(1, 0, buffer), 0);
    EXPECT_EQ(program->CopyGlobal(-1, buffer), 0);
}

struct SimplifiedCase {
    const char* name;
    std::vector<double> code;
    std::vector<double> simplified;
};

class Simplified : public testing::TestWithParam<SimplifiedCase> {};

// Cut off one by one, halves of a unit would add up.
TEST_P(Simplified, CharStringsHaveRoundedPositions) {
    MadeCff made;
    made.globals.push_back(std::string(2100, '\x8B') + Type2({kT2Back}));
    made.glyphs[1].code = Type2(GetParam().code);
    const auto program = OpenBytes(made.Bytes());
    ASSERT_NE(program, nullptr);
    const Collected collected = CharStringsOf(program);
    EXPECT_EQ(collected.widths.at("A"), std::pair(0.0F, 0.0F));
    MadeCff expected;
    expected.privateEntries = std::string("\x8B\x14\x8B\x15");
    expected.glyphs[1].code = Type2(GetParam().simplified);
    expected.glyphs[2].code = collected.codes.at("A");
    const auto other = OpenBytes(expected.Bytes());
    ASSERT_NE(other, nullptr);
    EXPECT_FLOAT_EQ(other->WidthOf("A"), other->WidthOf("B"));
    EXPECT_EQ(Measured(FontSetOf("Made", expected.Bytes()), "Made", {"A"}),
              Measured(FontSetOf("Made", expected.Bytes()), "Made", {"B"}));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, Simplified,
    testing::Values(
        SimplifiedCase{"Fractions",
                       {0.25, 0.4, 0.6, kT2Move, 100.4, 0.4, 0.4, 100.4, kT2Line, kT2End},
                       {500, 0, 1, kT2Move, 101, 0, 0, 100, kT2Line, kT2End}},
        SimplifiedCase{"Quotients",
                       {10, kT2HMove, 25, 2, kT2Div, 0, 25, 2, kT2Div, 100, kT2Line, kT2End},
                       {600, 10, 0, kT2Move, 13, 0, 12, 100, kT2Line, kT2End}},
        SimplifiedCase{"WithoutEnd",
                       {10, kT2HMove, 100, 0, 0, 100, kT2Line},
                       {600, 10, 0, kT2Move, 100, 0, 0, 100, kT2Line, kT2End}},
        SimplifiedCase{"EndlessCalls", {10, kT2HMove, -107, kT2Call, 5, kT2Call}, {600, kT2End}},
        SimplifiedCase{"FewOperands", {10, kT2Move, kT2End}, {600, kT2End}}),
    [](const auto& each) { return std::string(each.param.name); });

TEST(CffProgram, KeepsTheFirstMask) {
    MadeCff made;
    const std::string start = Type2({10.5, 20, 5, 30, kT2HStem, 7, 8, kT2Mask});
    made.glyphs[1].code =
        start + "\xA0" + Type2({10, 0, kT2Move, 90, 90, kT2Line, kT2Mask}) + "@" + Type2({kT2End});
    const auto program = OpenBytes(made.Bytes());
    ASSERT_NE(program, nullptr);
    const std::string code = CharStringsOf(program).codes.at("A");
    // 600 11 20 5 30 hstemhm 7 8 vstemhm hintmask 10 hmoveto 90 90 rlineto -90 -90 rlineto endchar
    EXPECT_EQ(code,
              "\xF8\xEC\x96\x9F\x90\xA9\x12\x92\x93\x17\x13\xA0\x95\x16\xE5\xE5\x05\x31\x31\x05"
              "\x0E");
}

// A converter that writes no "closepath" would have them stroked open.
TEST(CffProgram, ClosesContoursByLines) {
    MadeCff made;
    made.glyphs[1].code =
        Type2({5, 5, kT2Move, -107, kT2Call, 5, 5, kT2Move, 10, 0, 10, 10, 0, 10, 2008, kT2End});
    const auto program = OpenBytes(made.Bytes());
    ASSERT_NE(program, nullptr);
    // 600 5 5 rmoveto 500 hlineto 500 vlineto -500 -500 rlineto
    // 505 505 rmoveto 10 10 10 10 hvcurveto -20 -20 rlineto endchar
    EXPECT_EQ(CharStringsOf(program).codes.at("A"),
              "\xF8\xEC\x90\x90\x15\xF8\x88\x06\xF8\x88\x07\xFC\x88\xFC\x88\x05"
              "\xF8\x8D\xF8\x8D\x15\x95\x95\x95\x95\x1F\x77\x77\x05\x0E");
}

TEST(CffProgram, ExpandsAccents) {
    class Codes final : public CffGlyphFunctor {
    public:
        bool operator()(const CffGlyph& glyph) override {
            last.assign(glyph.charString.data, glyph.charString.data + glyph.charString.length);
            return true;
        }

        std::string last;
    };

    const auto program = OpenBytes(MadeCff().Bytes());
    ASSERT_NE(program, nullptr);
    Codes codes;
    program->EnumerateGlyphs(true, codes);
    MadeCff expanded;
    expanded.privateEntries = std::string("\x8B\x14\x8B\x15");
    expanded.glyphs[1].code = codes.last;
    EXPECT_EQ(Measured(FontSetOf("Made", expanded.Bytes()), "Made", {"A"}),
              "600.0\n0.0\n740\n510\n0\n10\n");
}

TEST(CffProgram, CidKeyedFontHasItsTables) {
    MadeCff made;
    made.isCidKeyed = true;
    made.strings = {"Adobe"};
    for (std::size_t i = 1; i < made.glyphs.size(); ++i) {
        made.glyphs[i].string = static_cast<int>(1000 * i);
    }
    made.selection = std::string("\3\0\2\0\0\0\0\2\1\0\5", 11);
    // a matrix of twice the size, and none
    made.fontDicts = {std::string("\x8D\x8B\x8B\x8D\x8B\x8B\x0C\x07"), ""};
    made.topEntries = std::string("\x1E\xA0\x01\xFF\x8B\x8B\x1E\xA0\x01\xFF\x8B\x8B\x0C\x07");
    const auto program = OpenBytes(made.Bytes());
    ASSERT_NE(program, nullptr);
    EXPECT_TRUE(program->IsCidKeyed());
    EXPECT_EQ(program->Registry() + program->Ordering(), "AdobeAdobe");
    EXPECT_EQ(program->CidCount(), 4001);
    EXPECT_EQ(program->FontDictCount(), 2);
    EXPECT_EQ(program->GlyphOfCid(2000), 2);
    EXPECT_EQ(program->GlyphOfCid(0), 0);
    EXPECT_EQ(program->GlyphOfCid(1), std::nullopt);
    EXPECT_EQ(program->CidOf(3), 3000);
    EXPECT_FLOAT_EQ(program->WidthOfGlyph(1), 1.2F);
    EXPECT_FLOAT_EQ(program->WidthOfGlyph(2), 0.7F);
    EXPECT_EQ(program->FontDictMatrix(0)[3], 0.002F);
    EXPECT_EQ(program->FontDictMatrix(1)[3], 0.001F);
}

// As a font of one byte a code it has names of its own making, and one matrix for all glyphs.
TEST(CffProgram, CidKeyedFontBecomesType1) {
    MadeCff made;
    made.isCidKeyed = true;
    made.selection = std::string("\3\0\2\0\0\0\0\2\1\0\5", 11);
    made.fontDicts = {"", std::string("\x8D\x8B\x8B\x8D\x8B\x8B\x0C\x07")};
    made.topEntries = std::string("\x1E\xA0\x01\xFF\x8B\x8B\x1E\xA0\x01\xFF\x8B\x8B\x0C\x07");
    const auto program = OpenBytes(made.Bytes());
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(Measured(Type1Of(*program, "Made"), "Made", {"g1", "g2"}),
              "600.0\n0.0\n500\n510\n0\n10\n1400.0\n0.0\n600\n640\n0\n40\n");
}

/// What a host and a plug-in do with a program, whatever it is.
void UseAll(const Bytes& bytes) {
    std::string problem;
    const auto program = CffProgram::Open(bytes, problem);
    if (program == nullptr) {
        EXPECT_FALSE(problem.empty());
        return;
    }
    std::ignore = program->IsSound();
    program->UseGlyph("Aacute");
    program->Rename("New");
    CharStringsOf(program);
    EXPECT_FALSE(program->Data().empty());
    EXPECT_FALSE(program->AsType1().empty());
}

TEST(CffProgram, BytesCutOrChangedAnywhereDoNoHarm) {
    const Bytes bytes = MadeCff().Bytes();
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        UseAll({bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(i)});
        for (const int value : {0x00, 0x7F, 0xFF}) {
            Bytes changed = bytes;
            changed[i] = static_cast<std::uint8_t>(value);
            UseAll(changed);
        }
    }
}

TEST(CffProgram, ManyGlyphsAndEndlessCallsTakeNoTime) {
    MadeCff made;
    std::string calls;
    for (int i = 0; i < 200; ++i) {
        calls += Type2({-107, kT2Call});
    }
    made.locals = {calls};
    made.glyphs.resize(65535, {34, Type2({-107, kT2Call})});
    const auto start = std::chrono::steady_clock::now();
    UseAll(made.Bytes());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

}  // namespace
}  // namespace VANTIX::HOST
