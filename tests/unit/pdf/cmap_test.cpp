// SPDX-License-Identifier: MIT
#include "pdf/fonts/cmap.h"

#include <gtest/gtest.h>

#include <ostream>

#include "pdf/fonts/cidmetrics.h"
#include "pdf/fonts/cmaps.h"

namespace VANTIX::TESTS {
namespace {

using namespace PDF;

/// The codes of a text, as in "1:5 2:0": bytes and CID of each.
std::string CodesOf(const CMap& map, std::string_view text) {
    std::string codes;
    while (!text.empty()) {
        const CharCode code = map.FirstOf(text);
        codes += std::to_string(code.bytes) + ':' + std::to_string(map.CIDOf(code)) + ' ';
        text.remove_prefix(code.bytes);
    }
    return codes;
}

/// Knows "Base" alone, which has vertical codes of one byte.
std::shared_ptr<const CMap> FindBase(std::string_view name) {
    CMap map;
    const bool isRead = ReadCMap(
        "/WMode 1 def 1 begincodespacerange <00> <7F> endcodespacerange "
        "1 begincidrange <20> <7E> 1 endcidrange",
        nullptr, [](auto) { return nullptr; }, map);
    return isRead && name == "Base" ? std::make_shared<const CMap>(map) : nullptr;
}

struct CMapCase {
    const char* name;
    std::string map;
    std::string text;
    const char* codes;
    bool isVertical = false;
};

void PrintTo(const CMapCase& value, std::ostream* out) {
    *out << value.name;
}

class CMapText : public testing::TestWithParam<CMapCase> {};

const std::string kMixed =
    "2 begincodespacerange <00> <80> <8140> <9FFC> endcodespacerange "
    "2 begincidchar <41> 7 <8141> 9 endcidchar ";

TEST_P(CMapText, PartsTextIntoCodes) {
    const CMapCase& c = GetParam();
    CMap map;
    ReadCMap(c.map, nullptr, FindBase, map);
    EXPECT_EQ(CodesOf(map, c.text), c.codes);
    EXPECT_EQ(map.IsVertical(), c.isVertical);
}

INSTANTIATE_TEST_SUITE_P(
    Text, CMapText,
    testing::Values(CMapCase{"CodesOfSeveralLengths", kMixed,
                             "A\x81\x41"
                             "A",
                             "1:7 2:9 1:7 "},
                    CMapCase{"UnknownCodesHaveNone", kMixed, "B\x82\x50", "1:0 2:0 "},
                    CMapCase{"BrokenCodeIsAsLongAsItsLikes", kMixed,
                             "\x81\x01"
                             "A\xFF"
                             "A",
                             "2:0 1:7 1:0 1:7 "},
                    CMapCase{"TextEndsWithinACode", kMixed, "A\x81", "1:7 1:0 "},
                    CMapCase{"FourBytes",
                             "1 begincodespacerange <00000000> <0010FFFF> endcodespacerange "
                             "1 begincidrange <00010000> <0001FFFF> 300 endcidrange",
                             std::string("\0\1\0\2", 4), "4:302 "},
                    CMapCase{"LaterRangesReplaceParts",
                             "1 begincodespacerange <00> <FF> endcodespacerange 3 begincidrange "
                             "<41> <4A> 10 <43> <44> 50 <50> <60> 70 endcidrange",
                             "ABCDEJKP", "1:10 1:11 1:50 1:51 1:14 1:19 1:0 1:70 "},
                    CMapCase{"UndefinedCodesHaveTheirs",
                             kMixed + "1 beginnotdefrange <00> <1F> 3 endnotdefrange", "\x05\x06",
                             "1:3 1:3 "},
                    CMapCase{"StartsFromAnother",
                             "/Base usecmap /WMode 0 def 1 begincidchar <42> 99 endcidchar", "AB",
                             "1:34 1:99 "},
                    CMapCase{"KeepsTheModeOfAnother", "/Base usecmap", "A", "1:34 ", true}));

INSTANTIATE_TEST_SUITE_P(
    Nonsense, CMapText,
    testing::Values(
        CMapCase{"Nothing", "", "ABC", "2:0 1:0 "},
        CMapCase{"NoCodeSpaces", "1 begincidchar <4142> 5 endcidchar", "AB", "2:5 "},
        CMapCase{"LongCodes",
                 "1 begincodespacerange <0000000000> <FFFFFFFFFF> endcodespacerange "
                 "1 begincidrange <0000000000> <FFFFFFFFFF> 1 endcidrange",
                 "ABC", "2:0 1:0 "},
        CMapCase{"BackwardRange", kMixed + "1 begincidrange <44> <43> 5 endcidrange", "CD",
                 "1:0 1:0 "},
        CMapCase{"CIDsRunOut", kMixed + "1 begincidrange <43> <45> 65534 endcidrange", "CDE",
                 "1:65534 1:65535 1:0 "},
        CMapCase{"NumbersThatAreNoCIDs",
                 kMixed + "4 begincidchar <43> -1 <44> 70000 <45> /x <> 5 endcidchar", "CDE",
                 "1:0 1:0 1:0 "},
        CMapCase{"AllNumbers",
                 "1 begincodespacerange <00000000> <FFFFFFFF> endcodespacerange "
                 "2 begincidrange <00000000> <FFFFFFFF> 1 <FFFFFFFF> <FFFFFFFF> 2 endcidrange",
                 "\xFF\xFF\xFF\xFF", "4:2 "},
        CMapCase{"UnknownBase", "/Nobody usecmap " + kMixed, "A", "1:7 "},
        CMapCase{"CutShort",
                 "1 begincodespacerange <00> <7F> endcodespacerange 2 begincidrange "
                 "<41> <42> 5 <43",
                 "A", "1:0 "}));

TEST(CMaps, PredefinedOnesAreFoundWhereTheyAreInstalled) {
    CMaps maps;
    const auto identity = maps.Find(QPDFObjectHandle::newName("/Identity-V"));
    ASSERT_NE(identity, nullptr);
    EXPECT_TRUE(identity->IsVertical());
    EXPECT_EQ(CodesOf(*identity, "AB"), "2:16706 ");
    EXPECT_EQ(maps.Find(QPDFObjectHandle::newName("/../../etc/passwd")), nullptr);
    EXPECT_EQ(maps.Find(QPDFObjectHandle::newInteger(5)), nullptr);
    const auto japanese = maps.Find(QPDFObjectHandle::newName("/90ms-RKSJ-V"));
    if (japanese == nullptr) {
        GTEST_SKIP() << "no CMaps are installed";
    }
    // A, ideographic comma (a vertical form), hiragana A
    EXPECT_EQ(CodesOf(*japanese, "A\x81\x41\x82\xA0"), "1:264 2:7887 2:843 ");
    EXPECT_TRUE(japanese->IsVertical());
    EXPECT_EQ(japanese->Ordering(), "Japan1");
    EXPECT_EQ(maps.TextsOf("Japan1").at(843), U"\u3042");
    EXPECT_TRUE(maps.TextsOf("Nowhere").empty());
}

TEST(CMaps, EncodingsAreThoseOfInterpreters) {
    EXPECT_EQ(EncodingOfCMap("GB-EUC-H"), GRAPHICS::TEncoding::kFirstCMap);
    EXPECT_EQ(EncodingOfCMap("Identity-V"), GRAPHICS::TEncoding::kIdentityV);
    EXPECT_EQ(EncodingOfCMap("Adobe-Japan1-UCS2"), std::nullopt);
}

struct MetricsCase {
    const char* dictionary;
    std::uint16_t cid;
    std::array<float, 4> metrics;  ///< width, vertical advance, origin
};

void PrintTo(const MetricsCase& value, std::ostream* out) {
    *out << value.dictionary << ' ' << value.cid;
}

class Metrics : public testing::TestWithParam<MetricsCase> {};

TEST_P(Metrics, AreThoseOfTheDictionary) {
    HOST::CIDCharacter character;
    CIDMetrics(QPDFObjectHandle::parse(GetParam().dictionary)).Apply(GetParam().cid, character);
    const std::array<float, 4> found = {character.width, character.verticalAdvance,
                                        character.originX, character.originY};
    for (std::size_t i = 0; i < found.size(); ++i) {
        EXPECT_FLOAT_EQ(found.at(i), GetParam().metrics.at(i)) << i;
    }
}

constexpr const char* kWidths = "<< /DW 700 /W [3 [100 200] 5 9 300 7 [null 400] 8 2 5] >>";
constexpr const char* kVertical =
    "<< /DW2 [900 -800] /W [2 [600]] /W2 [4 [-500 250 880 -600 1 2] 7 8 -700 3 4 9 [1 2]] >>";

INSTANTIATE_TEST_SUITE_P(
    Dictionaries, Metrics,
    testing::Values(MetricsCase{"<< >>", 0, {1.0F, -1.0F, 0.5F, 0.88F}},
                    MetricsCase{kWidths, 2, {0.7F, -1.0F, 0.35F, 0.88F}},
                    MetricsCase{kWidths, 4, {0.2F, -1.0F, 0.1F, 0.88F}},
                    MetricsCase{kWidths, 7, {0.3F, -1.0F, 0.15F, 0.88F}},
                    MetricsCase{kWidths, 8, {0.4F, -1.0F, 0.2F, 0.88F}},
                    MetricsCase{kWidths, 9, {0.3F, -1.0F, 0.15F, 0.88F}},
                    MetricsCase{kVertical, 2, {0.6F, -0.8F, 0.3F, 0.9F}},
                    MetricsCase{kVertical, 5, {1.0F, -0.6F, 0.001F, 0.002F}},
                    MetricsCase{kVertical, 8, {1.0F, -0.7F, 0.003F, 0.004F}},
                    MetricsCase{kVertical, 9, {1.0F, -0.8F, 0.5F, 0.9F}},
                    MetricsCase{"<< /W [1] /W2 5 /DW2 [1] /DW /x >>", 1, {1, -1, 0.5F, 0.88F}},
                    MetricsCase{"<< /W [65530 99999999 250 -3 [9] 9 [] 9] >>",
                                65535,
                                {0.25F, -1.0F, 0.125F, 0.88F}}));

}  // namespace
}  // namespace VANTIX::TESTS
