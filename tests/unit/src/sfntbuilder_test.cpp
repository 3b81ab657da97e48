// SPDX-License-Identifier: MIT
#include "sfntbuilder.h"

#include <gtest/gtest.h>

#include <functional>

#include "fontbuilderfixture.h"
#include "sfntbuilder_bytes.h"

namespace VANTIX::PS {
namespace {

using TEST::Big;
using TEST::MakeSfnt;
using TEST::TestTables;

/// The strings of an /sfnts array without their closing zeros, and the font that they make.
struct Strings {
    std::vector<std::string> all;
    std::string comments;
    std::string font;
};

Strings ReadStrings(const std::string& text) {
    Strings strings;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%') {
            const std::size_t end = text.find('\n', i);
            strings.comments += text.substr(i, end - i + 1);
            i = end - 1;
        } else if (text[i] == '<') {
            std::string bytes;
            for (++i; text[i] != '>'; i += 2) {
                bytes += static_cast<char>(std::stoi(text.substr(i, 2), nullptr, 16));
            }
            EXPECT_EQ(bytes.back(), '\0');
            EXPECT_TRUE(bytes.size() < 65535 || !strings.comments.empty());
            bytes.pop_back();
            strings.font += bytes;
            strings.all.push_back(std::move(bytes));
        }
    }
    return strings;
}

std::uint32_t U32(const std::string& bytes, std::size_t at) {
    return ReadU32(reinterpret_cast<const std::uint8_t*>(bytes.data()) + at);
}

struct Entry {
    std::uint32_t checksum = 0;
    std::uint32_t offset = 0;
    std::uint32_t length = 0;
};

Entry FindEntry(const std::string& font, const std::string& tag) {
    const std::size_t at = font.find(tag);
    return {U32(font, at + 4), U32(font, at + 8), U32(font, at + 12)};
}

std::uint32_t Sum(const std::string& words) {
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i < words.size(); i += 4) {
        sum += U32(words, i);
    }
    return sum;
}

class SFNTStrings : public TEST::FontBuilderFixture {
protected:
    bool Init(const std::string& font, std::uint32_t glyphs = 1, std::int16_t format = 0) {
        builder = MakeObject<SFNTStringsBuilder>();
        return builder->Init(MakeObject<TEST::FakeFontData>(font).Get(), glyphs, format);
    }

    Strings Build() {
        const auto stream =
            TInterfacePtr<IPostScriptDataStream>::Adopt(CreatePostscriptDataStream(&packet));
        builder->Buid(stream.Get());
        const std::string text = packet.Take();
        builder->Buid(stream.Get());
        EXPECT_EQ(packet.Take(), text);  // as often as it is asked
        *stream << std::uint32_t{10};
        EXPECT_EQ(packet.Take(), "10 ");  // decimal again, and separated
        return ReadStrings(text);
    }

    TInterfacePtr<SFNTStringsBuilder> builder;
};

TEST_F(SFNTStrings, SmallFontIsOneStringWithPaddedTables) {
    const std::string head = std::string(8, 'h') + std::string(46, 'i');
    ASSERT_TRUE(Init(MakeSfnt({{"head", head}, {"maxp", "123456"}, {"prep", "1234"}})));
    const Strings strings = Build();
    ASSERT_EQ(strings.all.size(), 1U);
    const Entry headEntry = FindEntry(strings.font, "head");
    EXPECT_EQ(headEntry.length, 56U);
    const Entry maxp = FindEntry(strings.font, "maxp");
    EXPECT_EQ(maxp.offset, headEntry.offset + 56);
    EXPECT_EQ(maxp.length, 8U);
    const Entry prep = FindEntry(strings.font, "prep");
    EXPECT_EQ(prep.offset, maxp.offset + 8);
    EXPECT_EQ(strings.font.substr(maxp.offset), std::string("123456\0\0"
                                                            "1234",
                                                            12));
    EXPECT_EQ(maxp.checksum, Sum(std::string("123456\0\0", 8)));
    EXPECT_EQ(Sum(strings.font), 0xB1B0AFBA);
    std::string cleared = strings.font;
    cleared.replace(headEntry.offset + 8, 4, 4, '\0');
    EXPECT_EQ(headEntry.checksum, Sum(cleared.substr(headEntry.offset, 56)));
    EXPECT_EQ(Messages(), "");
}

TEST_F(SFNTStrings, GapsBetweenTablesAreClosed) {
    std::string font = MakeSfnt({{"cvt ", "abcd"}, {"prep", "efgh"}});
    font.insert(font.size() - 4, "????");
    font.replace(12 + 16 + 8, 4, Big(12 + 32 + 8, 4));
    ASSERT_TRUE(Init(font));
    const Strings strings = Build();
    EXPECT_EQ(strings.font.substr(FindEntry(strings.font, "prep").offset), "efgh");
    EXPECT_EQ(Messages(), "Offset in table directory doesn't match the expected calced offset!\n");
}

TEST_F(SFNTStrings, GlyphLocationsFollowTheFormat) {
    const std::string glyf(40, 'g');
    ASSERT_TRUE(
        Init(MakeSfnt({{"glyf", glyf}, {"loca", Big(2, 2) + Big(8, 2) + Big(20, 2)}}), 2, 0));
    std::uint32_t length = 0;
    EXPECT_EQ(builder->GetGlyphLocation(1, length), 16U);
    EXPECT_EQ(length, 24U);
    builder->SetGlyphLocation(1, 18);
    EXPECT_EQ(builder->GetGlyphLocation(0, length), 4U);
    EXPECT_EQ(length, 14U);
    EXPECT_EQ(builder->GetLocaLength(), 6U);
    ASSERT_TRUE(
        Init(MakeSfnt({{"glyf", glyf}, {"loca", Big(2, 4) + Big(9, 4) + Big(40, 4)}}), 2, 1));
    builder->SetGlyphLocation(1, 11);
    EXPECT_EQ(builder->GetGlyphLocation(1, length), 11U);
    EXPECT_EQ(length, 29U);
    EXPECT_EQ(builder->GetGlyphLocation(2, length), 0U);
    EXPECT_EQ(length, 0U);
    ASSERT_TRUE(Init(MakeSfnt({{"glyf", glyf}})));
    builder->SetGlyphLocation(0, 0);
    EXPECT_EQ(Messages(),
              "Requested index 2 is > the number of glyphs (2) in this font.\n"
              "there are no glyphs in this TrueType font, probably because the original data is "
              "not available.\n");
}

TEST_F(SFNTStrings, LargeTablesGoAloneAndUnneededOnesAreDropped) {
    const std::string metrics(65532, 'm');
    ASSERT_TRUE(Init(MakeSfnt({{"cvt ", "abcd"},
                               {"hmtx", metrics},
                               {"name", std::string(65536, 'n')},
                               {"prep", "efgh"}})));
    const Strings strings = Build();
    ASSERT_EQ(strings.all.size(), 3U);
    EXPECT_EQ(strings.all[1], metrics);  // with its zero no more than a string may hold
    EXPECT_EQ(strings.comments, "");
    ASSERT_TRUE(Init(MakeSfnt({{"cvt ", "abcd"},
                               {"hmtx", metrics + "mm"},
                               {"name", std::string(65536, 'n')},
                               {"prep", "efgh"}})));
    const Strings split = Build();
    ASSERT_EQ(split.all.size(), 3U);
    EXPECT_EQ(split.all[1], metrics + std::string("mm\0\0", 4));
    EXPECT_EQ(split.all[2], "efgh");
    EXPECT_EQ(split.comments,
              "%%Warning : Table hmtx having size 65536 > 64K - Can't help! Please break the SFNTs "
              "as per postscript string requirements!\n");
    EXPECT_EQ(FindEntry(split.font, "name").length, 0U);
    EXPECT_EQ(FindEntry(split.font, "name").checksum, 0U);
    EXPECT_EQ(FindEntry(split.font, "prep").offset, split.font.size() - 4);
    EXPECT_TRUE(TEST::RecordingLogger::Get().Has("Type42 table hmtx having size 65534 > 64K"));
}

TEST_F(SFNTStrings, LargeOutlinesAreCutBetweenGlyphs) {
    // Odd glyphs, one of them too large for any string, and 'loca' in front of them.
    std::string glyf;
    std::string loca = Big(0, 4);
    std::vector<std::string> glyphs;
    for (std::uint32_t i = 0; i < 300; ++i) {
        const std::size_t length = i == 100 ? 70001 : i % 2 == 0 ? 0 : 501 + i;
        glyphs.emplace_back(length, static_cast<char>('0' + i % 64));
        glyf += glyphs.back();
        loca += Big(static_cast<std::uint32_t>(glyf.size()), 4);
    }
    ASSERT_TRUE(Init(MakeSfnt({{"loca", loca}, {"glyf", glyf}, {"prep", "efgh"}}), 300, 1));
    const Strings strings = Build();
    EXPECT_EQ(
        strings.comments,
        "%%Warning : SFNT string size 70002 > 64K - Seems an issue that needs to be fixed!\n");
    const Entry table = FindEntry(strings.font, "glyf");
    const Entry index = FindEntry(strings.font, "loca");
    std::size_t stringEnd = 0;
    std::size_t string = 0;
    for (std::uint32_t i = 0; i < 300; ++i) {
        const std::uint32_t begin = U32(strings.font, index.offset + 4 * i);
        EXPECT_EQ(begin % 2, 0U);
        const std::size_t start = table.offset + begin;
        EXPECT_EQ(strings.font.substr(start, glyphs[i].size()), glyphs[i]) << i;
        while (stringEnd <= start) {
            stringEnd += strings.all.at(string++).size();
        }
        EXPECT_LE(start + glyphs[i].size(), stringEnd) << i;
    }
    EXPECT_EQ(Sum(strings.font.substr(index.offset, index.length)), index.checksum);
    EXPECT_EQ(Sum(strings.font.substr(table.offset, table.length)), table.checksum);
    EXPECT_EQ(strings.font.substr(FindEntry(strings.font, "prep").offset), "efgh");
}

TEST_F(SFNTStrings, NoStringReachesTheLimitByItsClosingZero) {
    for (std::size_t size = 65470; size < 65490; ++size) {
        ASSERT_TRUE(Init(MakeSfnt({{"cvt ", "abcd"}, {"fpgm", std::string(size, 'f')}})));
        const Strings strings = Build();
        EXPECT_EQ(strings.all.size(), strings.font.size() + 1 < 65535 ? 1U : 2U) << size;
        EXPECT_EQ(strings.comments, "");
    }
}

struct BadFont {
    const char* name;
    std::string data;
    const char* message;
    std::uint32_t glyphs = 1;
    std::int16_t format = 0;
};

std::string Changed(std::string font, std::size_t at, std::uint32_t value, int bytes = 4) {
    return font.replace(at, static_cast<std::size_t>(bytes), Big(value, bytes));
}

class BadSfnt : public SFNTStrings, public ::testing::WithParamInterface<BadFont> {};

TEST_P(BadSfnt, IsRefused) {
    EXPECT_FALSE(Init(GetParam().data, GetParam().glyphs, GetParam().format));
    EXPECT_EQ(Messages(), GetParam().message + std::string("\n"));
}

std::vector<BadFont> BadFonts() {
    const std::string font = MakeSfnt({{"glyf", "12345678"}, {"loca", Big(0, 2) + Big(4, 2)}});
    const char* outside = "The tables or the glyphs of a font lie outside of its data.";
    constexpr std::size_t kGlyf = 12;
    constexpr std::size_t kLoca = 12 + 16;
    return {
        {"NoGlyphs", font, "No glyphs for sfnt creation?", 0},
        {"NewFormat", font, "New loca table format?", 1, 2},
        {"NoData", "", "Data is not avaliable in FontData."},
        {"OtherVersion", Changed(font, 0, 0x00020000),
         "font version is unhandled type [20000]. srcLength = 56"},
        {"VersionAlone", font.substr(0, 4), "A font of 4 bytes lacks its table directory."},
        {"CutDirectory", font.substr(0, 40), "A font of 40 bytes lacks its table directory."},
        {"ManyTables", Changed(font, 4, 0xFFFF, 2),
         "A font of 56 bytes lacks its table directory."},
        {"CutTable", font.substr(0, 55), outside},
        {"FarTable", Changed(font, kGlyf + 8, 0xFFFFFFF0), outside},
        {"LongTable", Changed(font, kLoca + 12, 0xFFFFFFFF), outside},
        {"TableInDirectory", Changed(font, kGlyf + 8, 8), outside},
        {"TablesInOnePlace", Changed(font, kLoca + 8, 44), outside},
        {"TagTwice", Changed(font, kLoca, 0x676C7966), outside},
        {"ShortLoca", font, outside, 2},
        {"GlyphBehindGlyf", Changed(font, 54, 5, 2), outside},
        {"GlyphsBackwards", Changed(font, 52, 5, 2), outside},
    };
}

INSTANTIATE_TEST_SUITE_P(Faults, BadSfnt, ::testing::ValuesIn(BadFonts()),
                         [](const auto& parameter) { return parameter.param.name; });

TEST_F(SFNTStrings, HandlerKeepsTheBuilderMadeForIt) {
    const auto font = TEST::TrueTypeFont({});
    SFNTStringsBuilder* made = GetSFNTStringsBuilder(*font);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(GetSFNTStringsBuilder(*font), made);
    EXPECT_EQ(made->GetLocaLength(), 20U);
    const auto bare = MakeObject<TEST::FakeFont>();
    EXPECT_EQ(GetSFNTStringsBuilder(*bare), nullptr);
    bare->Aggregate(MakeObject<TEST::FakeFontData>("true").Get(), GRAPHICS::IID_IFONTDATA);
    EXPECT_EQ(GetSFNTStringsBuilder(*bare), nullptr);
    EXPECT_EQ(Messages(),
              "IID_IFONTDATA not found for an embedded CFF Type 2 font Test\n"
              "IID_IT42ANCILLARY not found for Type 42 font Test\n");
}

}  // namespace
}  // namespace VANTIX::PS
