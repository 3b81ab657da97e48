// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "basefontbuilder.h"
#include "buildingfixture.h"
#include "support/childprocess.h"

namespace VANTIX::PS {
namespace {

using GRAPHICS::TFontType;
using TEST::ExpectDrawn;
using TEST::FakeFont;
using TEST::Fill;
using TEST::FontBuilders;
using TEST::kBox;
using TEST::kLeaf;
using TEST::Show;

TEST_F(FontBuilders, NamesAreEscapedAndCut) {
    EXPECT_EQ(EscapeFontName("A(b)/c #%\x7F\x81\n"), "A#28b#29#2Fc ##25#7F#81#0A");
    EXPECT_EQ(EscapeFontName(std::string(254, 'x') + "("), std::string(254, 'x') + "#");
    EXPECT_EQ(EscapeFontName(std::string(300, '(')).size(), 255U);
}

TEST_F(FontBuilders, EncryptedPartIsReadBack) {
    const auto font = TEST::TrueTypeFont({});
    font->stem = 83.5F;
    const TEST::TemporaryFolder folder;
    std::string program = Build(*font, TPSFontType::kType1);
    // The reader wants a font alone: no line before the program, and eexec on a line of its own.
    TEST::WriteFile(folder.File("font.pfa"), program.substr(program.find("%!FontType1")));
    const auto child =
        TEST::RunChild({"t1disasm", folder.File("font.pfa")}, std::chrono::seconds(20));
    EXPECT_EQ(child.errors, "");
    EXPECT_HOLDS(child.output,
                 "/ForceBold false def\n/BlueValues [ ] def\n/OtherBlues [ ] def\n"
                 "/StdHW [ 84 ] def\n/StemSnapH [ ] def\n");
    EXPECT_HOLDS(child.output, "dup /CharStrings\n4 dict dup begin\n");
    EXPECT_HOLDS(child.output, "/.notdef {\n\t0 500 hsbw\n\tendchar\n\t} ND\n");
    EXPECT_HOLDS(child.output,
                 "/box {\n\t0 1000 hsbw\n\t100 0 rmoveto\n\t0 800 rlineto\n\t800 0 rlineto\n\t"
                 "0 -800 rlineto\n\tclosepath\n\tendchar\n\t} ND\n");
    EXPECT_HOLDS(child.output,
                 "/space {\n\t0 250 hsbw\n\tendchar\n\t} ND\nend put\n"
                 "end\ndup /FontName get exch definefont pop\nend\n\n"
                 "mark currentfile closefile\n");
}

TEST_F(FontBuilders, ClearPartOfAConvertedFont) {
    const auto font = TEST::TrueTypeFont({{1, "box"}, {200, "leaf"}, {300, "far"}, {7, "a b"}});
    font->version = "Version 1";
    font->notice = "First\nsecond";
    const std::string text = Build(*font, TPSFontType::kType1);
    EXPECT_EQ(text.substr(0, text.find("eexec\n") + 6),
              "%%BeginResource: font ABCDEF+Test\n%!FontType1-1.1: ABCDEF+Test 0.32768\n"
              "%%CreationDate: Thu Feb  8 23:59:59 2024\n"
              "% First\n% second\n%%EndComments\n"
              "25 dict dup begin\n/FontType 1 def\n/FontName (ABCDEF+Test) def\n"
              "/FontInfo 9 dict dup begin\n/FamilyName (Test \\(Family\\)) readonly def\n"
              "/FullName (Test \\(Family\\)) readonly def\n/Notice (First\\\nsecond) readonly def\n"
              "/Weight (Regular) readonly def\n/version (Version 1) readonly def\n"
              "/ItalicAngle -12.5 def\n/isFixedPitch false def\n/UnderlinePosition -100 def\n"
              "/UnderlineThickness 50 def\nend readonly def\n"
              "/Encoding 256 array\n0 1 255 {1 index exch /.notdef put} for\n"
              "dup 1 /box put\ndup 200 /leaf put\nreadonly def\n"
              "/PaintType 0 def\n/StrokeWidth 0 def\n/FontMatrix [0.001 0 0 0.001 0 0] def\n"
              "/FontBBox [ 0 0 1000 800 ] readonly def\nend\nsystemdict begin\n"
              "currentfile eexec\n");
    EXPECT_TRUE(text.ends_with("0000\n\ncleartomark\n%%EndResource\n") ||
                text.ends_with("0000\ncleartomark\n%%EndResource\n"));
    EXPECT_EQ(Messages(), "");
}

TEST_F(FontBuilders, ClearPartOfAType42Font) {
    const auto font = TEST::TrueTypeFont({{1, "box"}});
    font->encoding = GRAPHICS::TEncoding::kStandard;
    const std::string text = Build(*font, TPSFontType::kType42);
    EXPECT_TRUE(
        text.starts_with("%%BeginResource: font ABCDEF+Test\n"
                         "%!PS-TrueTypeFont-65536-131200\n"
                         "25 dict dup begin\n/FontType 42 def\n"
                         "/FontMatrix [1 0 0 1 0 0] def\n/FontName (ABCDEF+Test) def\n"));
    EXPECT_HOLDS(text,
                 "end readonly def\n/Encoding StandardEncoding readonly def\n"
                 "/FontBBox [0 0 1000 800] readonly def\n"
                 "/PaintType 0 def\n/StrokeWidth 0 def\n"
                 "/CharStrings 4 dict dup begin\n/.notdef 0 def\n"
                 "/box 1 def\n/leaf 2 def\n/space 3 def\nend readonly def\n"
                 "/RD {string currentfile exch readstring pop} executeonly def\n"
                 "/sfnts [\n<00010000");
    EXPECT_TRUE(
        text.ends_with("00>\n] def\ndup /FontName get exch definefont pop\nend\n"
                       "%%EndResource\n"));
    auto& program = static_cast<TEST::FakeTrueType&>(
        *FindInterface<GRAPHICS::IT42Ancillary>(font.Get(), GRAPHICS::IID_IT42ANCILLARY));
    program.tables[0].first = "post";
    program.tables[0].second.replace(16, 8, TEST::Big(300, 4) + TEST::Big(70000, 4));
    EXPECT_HOLDS(Build(*font, TPSFontType::kType42),
                 "%!PS-TrueTypeFont-65536-65536-1\n%%VMusage: 300 70000 \n25 dict");
}

/// A program that defines the font, and shows it as it came and with another encoding.
class ShownFont : public FontBuilders, public ::testing::WithParamInterface<TPSFontType> {};

TEST_P(ShownFont, IsDrawnAndEncodedAnew) {
    const auto font = TEST::TrueTypeFont({{1, "box"}, {2, "leaf"}});
    const auto other = TEST::TrueTypeFont({{65, "leaf"}, {66, "box"}});
    const auto builder = Create(*font, "Te\\st(1)", GetParam());
    ASSERT_TRUE(builder->BuildFont());
    ASSERT_TRUE(builder->DefineFont(other.Get(), "Other"));
    const std::string text = packet.Take();
    EXPECT_TRUE(text.ends_with("currentdict end\n(Other) cvn exch definefont pop\n"));
    EXPECT_HOLDS(text,
                 "(Te\\\\st#281#29) cvn findfont dup length dict begin {1 index pop def} "
                 "forall\n/FontName (Other) cvn def\n/Encoding 256 array\n");
    ExpectDrawn(text + Show("Te\\st#281#29", "0102"), Fill(kBox, kLeaf));
    ExpectDrawn(text + Show("Other", "4142"), Fill(kLeaf, kBox));
    EXPECT_EQ(Messages(), "");
}

INSTANTIATE_TEST_SUITE_P(Kinds, ShownFont,
                         ::testing::Values(TPSFontType::kType1, TPSFontType::kType42));

/// Drawn up and down, 4 bytes for each line, but the first of 3 bytes or 4.
TEST::TestContour LongContour(int firstLine) {
    TEST::TestContour contour = {{0, 0}, {firstLine, 0}};
    for (int i = 0; i < 16637; ++i) {
        contour.push_back({firstLine, i % 2 == 0 ? 1000 : 0});
    }
    return contour;
}

TEST_F(FontBuilders, LargeCharStringsAreWrittenAgainWithWholeCoordinates) {
    const auto font = TEST::TrueTypeFont({{1, "box"}, {2, "leaf"}});
    auto& program = static_cast<TEST::FakeTrueType&>(
        *FindInterface<GRAPHICS::IT42Ancillary>(font.Get(), GRAPHICS::IID_IT42ANCILLARY));
    program.glyphs[3].contours = {LongContour(50)};
    EXPECT_HOLDS(Build(*font, TPSFontType::kType1), "/FontMatrix [0.001 0 0 0.001 0 0] def\n");
    program.glyphs[3].contours = {LongContour(500)};
    const std::string large = Build(*font, TPSFontType::kType1);
    EXPECT_HOLDS(large,
                 "/StrokeWidth 0 def\n/FontMatrix [0.0001 0 0 0.0001 0 0] def\n"
                 "/FontBBox [ 0 0 10000 8000 ] readonly def\nend\nsystemdict begin\n");
    EXPECT_TRUE(large.ends_with("cleartomark\n%%EndResource\n"));
    ExpectDrawn(large + Show("ABCDEF+Test", "0102"), Fill(kBox, kLeaf));
    // Without memory for the trial it is the same.
    factory.creators.clear();
    EXPECT_EQ(Build(*font, TPSFontType::kType1), large);
}

TEST_F(FontBuilders, GlyphsThatCannotBeConvertedAreLeftOut) {
    const auto font = TEST::TrueTypeFont({{1, "box"}, {2, "leaf"}});
    auto& program = static_cast<TEST::FakeTrueType&>(
        *FindInterface<GRAPHICS::IT42Ancillary>(font.Get(), GRAPHICS::IID_IT42ANCILLARY));
    program.glyphs[3].name = "a/b";
    program.glyphs.push_back({"", 100, {}});
    program.glyphs.push_back({"vast", 100, {TEST::TestContour(400000, {0, 0})}});
    const std::string text = Build(*font, TPSFontType::kType1);
    EXPECT_EQ(Messages(),
              "CharString entry not added for glyph a/b, seems to be a ZERO contour/points glyph?\n"
              "CharString entry not added for glyph , seems to be a ZERO contour/points glyph?\n"
              "Unable to get heap memory for 1048578bytes\n"
              "CharString entry not added for glyph vast, seems to be a ZERO contour/points "
              "glyph?\n");
    ExpectDrawn(text + Show("ABCDEF+Test", "0102"), Fill(kBox, kLeaf));
}

struct ProgramEnd {
    const char* name;
    std::string program;
    std::string added;
    const char* messages;
};

class Type1Programs : public FontBuilders, public ::testing::WithParamInterface<ProgramEnd> {};

TEST_P(Type1Programs, EndIsRepaired) {
    const auto font = TEST::Type1Font("Prog", GetParam().program, {{1, "one"}});
    const std::string text = Build(*font, TPSFontType::kType1);
    EXPECT_EQ(text, "%%BeginResource: font ABCDEF+Test\n" + GetParam().program + GetParam().added +
                        "%%EndResource\n%%Re-defining font (Prog) as (ABCDEF+Test)\n"
                        "(Prog) cvn findfont dup length dict begin {1 index pop def} forall\n"
                        "/FontName (ABCDEF+Test) cvn def\n"
                        "/Encoding (Prog) cvn findfont dup 2 index known {1 index get aload pop "
                        "256 array astore} {pop 256 array 0 1 255 {1 index exch /.notdef put} for} "
                        "ifelse\ndup 1 /one put\nreadonly def\n"
                        "currentdict end\n(ABCDEF+Test) cvn exch definefont pop\n");
    EXPECT_EQ(Messages(), GetParam().messages);
}

std::vector<ProgramEnd> ProgramEnds() {
    const std::string mark = "\ncleartomark\n";
    const char* both =
        "Bad type 1 font : trailing 512 zeroes were missing! Repairing it for output\n"
        "Bad type 1 font : trailing cleartomark is missing! Repairing it for output\n";
    return {
        {"Whole", "x cleartomark\n", "", ""},
        {"WholeWithBlanks", std::string("x cleartomark \r\n\t\0\0", 18), "", ""},
        {"EndOfEncrypted", "binary", std::string(512, '\0') + mark, both},
        {"SomeZeros", "binary" + std::string(100, '\0') + "\n", std::string(412, '\0') + mark,
         both},
        {"NoMark", "binary" + std::string(600, '\0'), mark,
         "Bad type 1 font : trailing cleartomark is missing! Repairing it for output\n"},
        {"ZerosAlone", std::string(3, '\0'), std::string(509, '\0') + mark, both},
    };
}

INSTANTIATE_TEST_SUITE_P(Ends, Type1Programs, ::testing::ValuesIn(ProgramEnds()),
                         [](const auto& parameter) { return parameter.param.name; });

TEST_F(FontBuilders, Type1ProgramGoesThroughAndKeepsItsEncoding) {
    const auto source = TEST::TrueTypeFont({{1, "box"}, {2, "leaf"}});
    const std::string resource = Build(*source, TPSFontType::kType1, "Prog");
    const std::size_t start = resource.find("%!FontType1");
    // What follows the encrypted part is gone.
    const std::string program = resource.substr(start, resource.rfind("\ncleartomark") - start);
    const auto font = TEST::Type1Font("Prog", program, {{66, "leaf"}});
    const std::string text = Build(*font, TPSFontType::kType1);
    ExpectDrawn(text + Show("ABCDEF+Test", "0142"), Fill(kBox, kLeaf));
}

TEST_F(FontBuilders, ResidentFontGetsAnotherEncoding) {
    const auto font = TEST::Type1Font("Helvetica", "", {{1, "A"}, {66, "germandbls"}});
    const auto builder = Create(*font, "Helvetica", TPSFontType::kType1);
    ASSERT_TRUE(builder && builder->DefineFont(font.Get(), "ABCDEF+Helvetica"));
    ExpectDrawn(packet.Take() + Show("ABCDEF+Helvetica", "014243"),
                "/Helvetica findfont 32 scalefont setfont 0 8 moveto "
                "/A glyphshow /germandbls glyphshow /C glyphshow\n");
    EXPECT_EQ(Messages(), "");
}

struct Pair {
    TFontType source;
    TPSFontType type;
    const char* message;
};

class RefusedPairs : public FontBuilders, public ::testing::WithParamInterface<Pair> {};

TEST_P(RefusedPairs, AreLogged) {
    const auto font = MakeObject<FakeFont>();
    font->type = GetParam().source;
    EXPECT_FALSE(Create(*font, nullptr, GetParam().type));
    EXPECT_EQ(Messages(), GetParam().message + std::string("\n"));
}

INSTANTIATE_TEST_SUITE_P(
    Table, RefusedPairs,
    ::testing::Values(
        Pair{TFontType::kType1, TPSFontType::kType42,
             "Who else in this world cares about converting Postcript Type 1 fonts to some other "
             "format?"},
        Pair{TFontType::kCFF, TPSFontType::kCIDFontType1,
             "Welcome! you are chosen to download CFF font as CIDFontType1 into PS"},
        Pair{TFontType::kCFF, TPSFontType::kType3,
             "New download type 3 to embedd CFF font into PS"},
        Pair{TFontType::kType3, TPSFontType::kType1,
             "New download type 1 to embed Type 3 font into PS"},
        Pair{TFontType::kCIDKeyedCFF, TPSFontType::kNone,
             "We only supprt CIDType0 for CIDKeyedCFF fonts."},
        Pair{TFontType::kCIDKeyedTrueType, TPSFontType::kType42,
             "New download type 2 to embedd True type font into PS"},
        Pair{TFontType::kTrueType, TPSFontType::kCIDFontType0,
             "Welcome! you are chosen to implement true type font as CIDFontType0 into PS"},
        Pair{TFontType::kTrueType, static_cast<TPSFontType>(99),
             "New download type 99 to embedd True type font into PS"},
        Pair{static_cast<TFontType>(7), TPSFontType::kNone,
             "Unknown font type 7 of source font Test"},
        Pair{TFontType::kTrueType, TPSFontType::kType42,
             "IID_IFONTDATA not found for true type font Test"}));

TEST_F(FontBuilders, FontsOfNoUseAreRefused) {
    const auto font = TEST::Type1Font("Prog", "x", {});
    const auto builder = Create(*font, nullptr, TPSFontType::kType1);
    EXPECT_STREQ(builder->GetFontName(), "Prog");
    static_cast<TEST::FakeFontData*>(
        FindInterface<GRAPHICS::IFontData>(font.Get(), GRAPHICS::IID_IFONTDATA))
        ->bytes.clear();
    EXPECT_FALSE(builder->BuildFont());
    font->Disaggregate(GRAPHICS::IID_IFONTDATA);
    EXPECT_FALSE(builder->BuildFont());
    const auto composite = MakeObject<FakeFont>();
    composite->type = TFontType::kCIDKeyedTrueType;
    EXPECT_FALSE(builder->DefineFont(composite.Get(), "New"));
    composite->type = TFontType::kType3;
    EXPECT_FALSE(builder->DefineFont(composite.Get(), "New"));
    EXPECT_EQ(packet.Take(), "");
    EXPECT_EQ(Messages(),
              "Data is not avaliable in FontData for an embedded font!\n"
              "IID_IFONTDATA not found for an embedded type 1 font Prog\n"
              "We don't support downloading CIDKeyed true type as PostScript Type 1\n"
              "Un-handled font type 4 to redefine in T1FontBuilder\n");
}

}  // namespace
}  // namespace VANTIX::PS
