// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "buildingfixture.h"
#include "cfffonts.h"
#include "core/io/idictionary.h"
#include "postscriptconnectionspace/policykeys.h"
#include "support/fakedictionary.h"

namespace VANTIX::PS {
namespace {

using GRAPHICS::TFontType;
using TEST::ExpectDrawn;
using TEST::Fill;
using TEST::kBox;
using TEST::kLeaf;
using TEST::Show;

class CFFBuilders : public TEST::FontBuilders {};

TEST_F(CFFBuilders, FontSetHoldsTheDataUnchanged) {
    const auto font = TEST::CFFFont("TAG(SET", {{1, "box"}});
    font->version = "Version\n2";
    const std::string data = TEST::MakeCFF("TAG(SET", TEST::CFFGlyphs());
    const std::string size = std::to_string(data.size());
    const std::string set =
        "%!PS-Adobe-3.0 Resource-FontSet\n%%DocumentNeedResources: ProcSet (FontSetInit)\n"
        "%%Title: (FontSet/TAG#28SET)\n%%Version: Version 2\n%%EndComments\n"
        "%%IncludeResource: ProcSet (FontSetInit)\n%%BeginResource: FontSet (TAG#28SET)\n"
        "/FontSetInit /ProcSet findresource begin\n%%BeginData: " +
        size + " Binary Bytes\n(TAG#28SET) cvn " + size + " StartData\n" + data +
        "\n%%EndData\n%%EndResource\n";
    const std::string definition =
        "%%Re-defining font (TAG#28SET) as (ABCDEF+Test)\n"
        "(TAG#28SET) cvn findfont dup length dict begin {1 index pop def} forall\n"
        "/FontName (ABCDEF+Test) cvn def\n"
        "/Encoding 256 array 0 1 255 {1 index exch /.notdef put} for\n"
        "dup 1 /box put\nreadonly def\ncurrentdict end\n(ABCDEF+Test) cvn exch definefont pop\n";
    EXPECT_EQ(Build(*font, TPSFontType::kFontSet), set + "%%EOF\n" + definition);
    EXPECT_EQ(Messages(), "");
    const auto policy = MakeObject<TEST::FakeDictionary>();
    policy->entries[POLICY::kNoEndOfFontSet] = true;
    maker->Aggregate(policy.Get(), IO::IID_IPOSTSCRIPTPOLICYDICT);
    EXPECT_EQ(Build(*font, TPSFontType::kCIDKeyedFontSet), set + definition);
    EXPECT_EQ(Messages(), "Downloading a CIDKeyedCFF...\n");
}

TEST_F(CFFBuilders, FontsOfNoUseAreRefused) {
    const auto font = TEST::CFFFont("Set", {});
    const auto builder = Create(*font, nullptr, TPSFontType::kNone);
    static_cast<TEST::FakeFontData*>(
        FindInterface<GRAPHICS::IFontData>(font.Get(), GRAPHICS::IID_IFONTDATA))
        ->bytes.clear();
    EXPECT_FALSE(builder->BuildFont());
    font->Disaggregate(GRAPHICS::IID_IFONTDATA);
    EXPECT_FALSE(builder->BuildFont());
    font->type = TFontType::kType1;
    EXPECT_FALSE(builder->BuildFont());
    EXPECT_FALSE(builder->DefineFont(font.Get(), "New"));
    EXPECT_EQ(packet.Take(), "");
    EXPECT_EQ(Messages(),
              "Data is not avaliable in FontData for an embedded font!\n"
              "IID_IFONTDATA not found for an embedded CFF Type 2 font Set\n"
              "Unimplemenetd, If really needed implement building the CFF Package from the source "
              "pacakgehandler.\nUn-handled font type 1 to redefine in CFFBuilder\n");
}

class ShownCFF : public CFFBuilders, public ::testing::WithParamInterface<TPSFontType> {};

TEST_P(ShownCFF, IsDrawnAndEncodedAnew) {
    const auto font = TEST::CFFFont("Program", {{1, "box"}, {2, "leaf"}});
    const auto other = TEST::CFFFont("Program", {{65, "leaf"}, {66, "box"}});
    const auto policy = MakeObject<TEST::FakeDictionary>();
    policy->entries[POLICY::kNoEndOfFontSet] = true;
    maker->Aggregate(policy.Get(), IO::IID_IPOSTSCRIPTPOLICYDICT);
    const auto builder = Create(*font, "Test", GetParam());
    ASSERT_TRUE(builder->BuildFont());
    ASSERT_TRUE(builder->DefineFont(other.Get(), "Other"));
    const std::string text = packet.Take();
    ExpectDrawn(text + Show("Test", "0102"), Fill(kBox, kLeaf));
    ExpectDrawn(text + Show("Other", "4142"), Fill(kLeaf, kBox));
    EXPECT_EQ(Messages(), "");
}

INSTANTIATE_TEST_SUITE_P(Kinds, ShownCFF,
                         ::testing::Values(TPSFontType::kFontSet, TPSFontType::kType1));

TEST_F(CFFBuilders, CIDFontOfCharStringsTellsItsFontDicts) {
    const auto ancillary = MakeObject<TEST::FakeCIDKeyedCFF>();
    ancillary->privateValues.blueValues[0] = -12;
    ancillary->privateValues.blueValueCount = 2;
    ancillary->privateValues.stdHW = 33.5F;
    const auto font = TEST::CIDKeyedCFFFont(*ancillary);
    const std::string text = Build(*font, TPSFontType::kCIDFontType0);
    EXPECT_TRUE(text.starts_with(
        "%%BeginResource: font ABCDEF+Test-Identity-H\n%!PS-Adobe-3.0 Resource-CIDFont\n"
        "%%DocumentNeededResources: ProcSet (CIDInit)\n%%IncludeResource: ProcSet (CIDInit)\n"
        "%%BeginResource: CIDFont (ABCDEF+Test)\n%%Title: (ABCDEF+Test Reg(istry Japan1 6)\n"
        "%%Version: 1.5\n/CIDInit /ProcSet findresource begin\n25 dict begin\n"
        "/CIDFontType 0 def\n/FontType 9 def\n/CIDFontName (ABCDEF+Test) cvn def\n"
        "/CIDSystemInfo 3 dict dup begin\n/Registry (Reg\\(istry) def\n/Ordering (Japan1) def\n"
        "/Supplement 6 def\nend def\n/FontBBox [0 0 1000 800] readonly def\n"
        "/FontInfo 9 dict dup begin\n"));
    EXPECT_HOLDS(text,
                 "/UnderlineThickness 50 def\n/FSType 8 def\nend readonly def\n/WMode 0 def\n"
                 "/PaintType 0 def\n/StrokeWidth 0 def\n/CIDCount 4 def\n/CIDFontVersion 1.5 def\n"
                 "/GDBytes 4 def\n/CIDMapOffset 0 def\n/FDBytes 0 def\n/FDArray 1 array\n"
                 "dup 0\n%ADOBeginFontDict\n 10 dict begin\n"
                 "/FontMatrix [0.001 0 0 0.001 0 0] def\n/FontName (First) def\n"
                 "/FontType 1 def\n/PaintType 0 def\n%ADOBeginPrivateDict\n"
                 "/Private 20 dict dup begin\n/lenIV 0 def\n/LanguageGroup 0 def\n"
                 "/BlueValues [ -12 0] def\n/BlueScale 0.039625 def\n/BlueShift 7 def\n"
                 "/BlueFuzz 1 def\n/StdHW [33] def\n/StdVW [0] def\n/ForcedBold false def\n"
                 "/ExpansionFactor 0.06 def\nend def\n%ADOEndPrivateDict\ncurrentdict end\n"
                 "%ADOEndFontDict\nput\n def\n/GlyphDirectory 4 dict dup begin\n0 <");
    EXPECT_TRUE(
        text.ends_with("> def\nend def\n%%BeginData: 0 Binary Bytes\n(Binary) 0 StartData\n"
                       "%%EndData\n%%EndResource\n(ABCDEF+Test-Identity-H) cvn /Identity-H "
                       "[(ABCDEF+Test) cvn] composefont pop\n%%EndResource\n"));
    // Each glyph tells its font DICT where there are several.
    const std::string glyph = text.substr(text.find("\n3 <") + 4, 12);
    ancillary->fontDicts = 2;
    ancillary->matrix = {0.001F, 0, 0.0002F, 0.001F, 0, 0};
    const std::string several = Build(*font, TPSFontType::kCIDFontType0);
    EXPECT_HOLDS(several, "/FDBytes 1 def\n/FDArray 2 array\n");
    EXPECT_HOLDS(several, "/FontMatrix [0.001 0.0002 0 0.001 0 0] def\n/FontType 1 def\n");
    EXPECT_HOLDS(several, "\n3 <01" + glyph);
    EXPECT_EQ(Messages(), "");
}

TEST_F(CFFBuilders, CIDFontShowsNothingForAGlyphThatIsNotThere) {
    const auto ancillary = MakeObject<TEST::FakeCIDKeyedCFF>();
    ancillary->glyphs[0].words = "";
    const auto font = TEST::CIDKeyedCFFFont(*ancillary);
    const std::string text = Build(*font, TPSFontType::kCIDFontType0);
    ExpectDrawn(text + Show("ABCDEF+Test-Identity-H", "000900010002"), Fill(kBox, kLeaf));
}

TEST_F(CFFBuilders, CIDFontWithoutGlyphsIsRefused) {
    const auto ancillary = MakeObject<TEST::FakeCIDKeyedCFF>();
    ancillary->fontDicts = 0;
    const auto font = TEST::CIDKeyedCFFFont(*ancillary);
    const auto builder = Create(*font, nullptr, TPSFontType::kCIDFontType0);
    EXPECT_FALSE(builder->BuildFont());
    font->type = TFontType::kCIDKeyedTrueType;
    EXPECT_FALSE(builder->BuildFont());
    font->type = TFontType::kTrueType;
    EXPECT_FALSE(builder->BuildFont());
    EXPECT_FALSE(builder->DefineFont(font.Get(), "New"));
    EXPECT_EQ(packet.Take(), "");
    EXPECT_EQ(Messages(),
              "New font type 8 to download  as CIDFontType0 in postscript?\n"
              "Re-defining CID fonts not implemented yet, are you encountered with desendent "
              "fonts?\n");
}

TEST_F(CFFBuilders, CIDFontOfTrueTypeDataTellsItsMetrics) {
    const auto font = TEST::CIDKeyedTrueTypeFont();
    TEST::MakeVertical(*font);
    const std::string text = Build(*font, TPSFontType::kCIDFontType2);
    EXPECT_TRUE(text.starts_with(
        "%%BeginResource: font ABCDEF+Test-Identity-V\n/CIDInit /ProcSet findresource begin\n"
        "25 dict begin\n/CIDFontType 2 def\n/FontType 42 def\n/FontMatrix [1 0 0 1 0 0] def\n"
        "/CIDFontName (ABCDEF+Test) cvn def\n/CIDSystemInfo 3 dict dup begin\n"
        "/Registry (Vantix) def\n/Ordering (Identity) def\n/Supplement 0 def\nend def\n"));
    EXPECT_HOLDS(text,
                 "/FSType 8 def\n/GlyphNames2Unicode 1 dict dup begin\n1 <5186> def\nend def\n"
                 "end readonly def\n/WMode 1 def\n/PaintType 0 def\n/StrokeWidth 0 def\n"
                 "/Encoding 256 array\n0 1 255 {1 index exch /.notdef put} for\nreadonly def\n"
                 "/CharStrings 1 dict dup begin\n/.notdef 0 def\nend readonly def\n"
                 "/CIDCount 4 def\n/GDBytes 2 def\n/CIDMap 0 def\n");
    EXPECT_TRUE(text.ends_with(
        "\n] def\n/MetricsCount 0 def\n/Metrics2 4 dict dup begin\n2 [0 -1 0.5 0.88] def\n"
        "end readonly def\nCIDFontName currentdict end definefont pop\nend\n"
        "(ABCDEF+Test-Identity-V) cvn /Identity-V [(ABCDEF+Test) cvn] composefont pop\n"
        "%%EndResource\n"));
    // As charstrings the same font has its metrics in the CIDFont.
    const std::string converted = Build(*font, TPSFontType::kCIDFontType0);
    EXPECT_HOLDS(converted,
                 "> def\nend def\n/Metrics2 4 dict dup begin\n2 [0 -1 0.5 0.88] def\n"
                 "end readonly def\n%%BeginData: 0 Binary Bytes\n");
    EXPECT_HOLDS(converted, "/FDArray 1 array\ndup 0 10 dict begin\n");
    EXPECT_EQ(Messages(), "");
}

enum class CIDSource { kCharStrings, kTrueTypeData, kOutlines };

class ShownCIDFont : public CFFBuilders, public ::testing::WithParamInterface<CIDSource> {
protected:
    TInterfacePtr<TEST::FakeFont> MakeFont() {
        ancillary->fontDicts = 2;
        return GetParam() == CIDSource::kCharStrings ? TEST::CIDKeyedCFFFont(*ancillary)
                                                     : TEST::CIDKeyedTrueTypeFont();
    }

    std::string BuildIt(TEST::FakeFont& font) {
        const bool isData = GetParam() == CIDSource::kTrueTypeData;
        return Build(font, isData ? TPSFontType::kCIDFontType2 : TPSFontType::kCIDFontType0,
                     "Te\\st");
    }

    TInterfacePtr<TEST::FakeCIDKeyedCFF> ancillary = MakeObject<TEST::FakeCIDKeyedCFF>();
};

TEST_P(ShownCIDFont, IsDrawnByItsCIDs) {
    const auto font = MakeFont();
    const std::string text = BuildIt(*font);
    ExpectDrawn(text + Show("Te\\st-Identity-H", "00010002"), Fill(kBox, kLeaf));
    ExpectDrawn(text + Show("Te\\st-Identity-H", "00020001"), Fill(kLeaf, kBox));
}

TEST_P(ShownCIDFont, IsAcceptedInVerticalWriting) {
    const auto font = MakeFont();
    TEST::MakeVertical(*font);
    TEST::DrawProgram(BuildIt(*font) +
                      "/Te\\st-Identity-V findfont 32 scalefont setfont 32 64 moveto <00010002> "
                      "show\n");
}

INSTANTIATE_TEST_SUITE_P(Kinds, ShownCIDFont,
                         ::testing::Values(CIDSource::kCharStrings, CIDSource::kTrueTypeData,
                                           CIDSource::kOutlines));

}  // namespace
}  // namespace VANTIX::PS
