// SPDX-License-Identifier: MIT
#include "host/fonts/cidfont.h"

#include <gtest/gtest.h>

#include <cmath>

#include "core/fonts/ifontancillaries.h"
#include "host/fonts/cidtruetypefont.h"
#include "host/fonts/residentcidfont.h"
#include "madetruetype.h"

using namespace VANTIX;
using namespace VANTIX::HOST;
using namespace VANTIX::TEST;

namespace {

/// Glyphs 1, 2 and 4 mark something; 4 is made of 1 and 2. All are half an em wide.
std::shared_ptr<TrueTypeProgram> MakeProgram() {
    const std::string font = MakeSfnt(
        MadeTables({"", TriangleGlyph(100), TriangleGlyph(200), "", CompositeGlyph({1, 2})}));
    std::string problem;
    return TrueTypeProgram::Open({font.begin(), font.end()}, problem);
}

TInterfacePtr<CIDFont> MakeFont(bool isVertical = false, bool isConverted = false) {
    auto program = MakeProgram();
    program->ExpectConversion(isConverted);
    CIDFontDescription description;
    description.name = "Made";
    description.isVertical = isVertical;
    return MakeCIDTrueTypeFont(std::move(program), description);
}

const GRAPHICS::ICIDKeyedT42Ancillary& AncillaryOf(CIDFont& font) {
    return *FindInterface<GRAPHICS::ICIDKeyedT42Ancillary>(&font,
                                                           GRAPHICS::IID_ICIDKEYEDT42ANCILLARY);
}

class Metrics final : public GRAPHICS::IVerticalMetricFunctor {
public:
    bool operator()(std::uint16_t cid, const float values[4]) override {
        text += std::to_string(cid);
        for (int i = 0; i < 4; ++i) {
            text += ' ' + std::to_string(std::lround(values[i] * 1000.0F));
        }
        text += '\n';
        return true;
    }

    std::string text;
};

class Glyphs final : public GRAPHICS::ICIDGlyphFunctor {
public:
    bool operator()(const GRAPHICS::IGlyphRecording* recording, std::uint16_t cid) override {
        text += std::to_string(cid) + ':' + std::to_string(recording->GetPointCount()) + ' ';
        return true;
    }

    std::string text;
};

class Unicode final : public GRAPHICS::ICIDToUnicodeFunctor {
public:
    bool operator()(std::uint16_t cid, std::uint16_t character) override {
        text += std::to_string(cid) + ':' + std::to_string(character) + ' ';
        return true;
    }

    std::string text;
};

}  // namespace

TEST(CIDFont, EqualCharactersHaveOneNumber) {
    const auto font = MakeFont();
    CIDCharacter character{.glyph = 1, .width = 0.5F};
    EXPECT_EQ(font->Add(character), 0);
    character.width = 0.75F;
    EXPECT_EQ(font->Add(character), 1);
    EXPECT_EQ(font->Add({.glyph = 1, .width = 0.5F}), 0);
    EXPECT_FLOAT_EQ(font->AdvanceAt(1), 0.75F);
    EXPECT_FLOAT_EQ(font->WrittenAdvanceAt(1).value_or(-1), 0.5F);
    EXPECT_FLOAT_EQ(font->AdvanceAt(77), 0.5F);  // no such character: the first one
}

TEST(CIDFont, CodesAreTheGlyphsOfTheProgramAsItIsWritten) {
    const auto font = MakeFont();
    font->Add({.glyph = 4, .unicode = U'D'});
    font->Add({.glyph = 0});
    font->Add({.glyph = 2, .unicode = U'B'});
    font->Add({.glyph = 4, .width = 2.0F, .unicode = U'E'});
    font->Add({.glyph = 999, .unicode = 0x1F600});
    const std::uint8_t text[] = {0, 0, 0, 1, 0, 2, 0, 3, 0, 4, 7};
    std::uint8_t codes[sizeof text * 2];
    std::int32_t count = 0;
    ASSERT_TRUE(font->ReEncodeText(text, sizeof text, codes, &count));
    // Glyph 3 is not shown, and no glyph 999 is there.
    EXPECT_EQ(std::vector<int>(codes, codes + count),
              (std::vector<int>{0, 3, 0, 0, 0, 2, 0, 3, 0, 0}));
    Glyphs glyphs;
    AncillaryOf(*font).EnumerateGlyphs(glyphs);
    EXPECT_EQ(glyphs.text, "0:0 2:5 3:10 ");
    Unicode unicode;
    AncillaryOf(*font).EnumerateUnicode(unicode);
    EXPECT_EQ(unicode.text, "2:66 3:68 ");
    EXPECT_EQ(AncillaryOf(*font).GetUnicodeCount(), 2);
    EXPECT_TRUE(font->HasOutline(0));
    EXPECT_FALSE(font->HasOutline(1));
    EXPECT_NE(FindInterface<GRAPHICS::IT42Ancillary>(font.Get(), GRAPHICS::IID_IT42ANCILLARY),
              nullptr);
}

TEST(CIDFont, AdvancesAreAnsweredWhereTheyMatter) {
    for (const bool isVertical : {false, true}) {
        const auto font = MakeFont(isVertical);
        font->Add({.glyph = 1, .width = 0.5F, .verticalAdvance = -0.5F});
        font->Add({.glyph = 1, .width = 0.75F, .verticalAdvance = -0.75F});
        const std::uint8_t text[] = {0, 0, 0, 1};
        float w0[2] = {};
        float w1[2] = {};
        std::int32_t count = 2;
        EXPECT_FALSE(font->GetAdvances(text, 2, w0, w1, &count));
        count = 1;
        EXPECT_FALSE(font->GetAdvances(text, 4, w0, w1, &count));
        count = 2;
        ASSERT_TRUE(font->GetAdvances(text, 4, w0, w1, &count));
        EXPECT_EQ(count, 2);
        EXPECT_FLOAT_EQ(w0[1], isVertical ? 0.0F : 0.75F);
        EXPECT_FLOAT_EQ(w1[1], isVertical ? -0.75F : 0.0F);
    }
}

// Those of the other sign would be taken for marks of word spaces.
TEST(CIDFont, AdvancesAgainstTheLineAreNotAnswered) {
    for (const bool isVertical : {false, true}) {
        const float on = isVertical ? -0.5F : 0.5F;
        const auto font = MakeFont(isVertical);
        for (const float advance : {on, 2 * on, -on}) {
            font->Add({.glyph = 1, .width = advance, .verticalAdvance = advance});
        }
        float w0[2] = {};
        float w1[2] = {};
        std::int32_t count = 2;
        EXPECT_TRUE(font->GetAdvances("\0\1\0\1", 4, w0, w1, &count));
        EXPECT_FALSE(font->GetAdvances("\0\1\0\2", 4, w0, w1, &count));
        EXPECT_EQ(font->AdvanceAt(2), -on);
    }
}

TEST(CIDFont, VerticalMetricsAreInUnitsOfTheWrittenFont) {
    for (const bool isConverted : {false, true}) {
        const auto font = MakeFont(true, isConverted);
        font->Add({.glyph = 2, .verticalAdvance = -0.5F, .originX = 0.25F, .originY = 0.75F});
        font->Add({.glyph = 2, .verticalAdvance = -9.0F});
        Metrics metrics;
        AncillaryOf(*font).EnumerateVerticalMetrics(metrics);
        EXPECT_EQ(metrics.text, isConverted ? "1 0 -500000 250000 750000\n" : "1 0 -500 250 750\n");
        EXPECT_EQ(font->WrittenCIDFontType(), isConverted ? 0 : 2);
    }
}

TEST(CIDFont, ThereIsABoundToCharacters) {
    const auto font = MakeFont();
    for (int i = 0; i < 65536; ++i) {
        font->Add({.glyph = 1, .width = static_cast<float>(i)});
    }
    EXPECT_EQ(font->Add({.glyph = 1, .width = -1.0F}), 0);
    EXPECT_EQ(font->Characters().size(), 65536U);
}

TEST(ResidentCIDFont, KeepsTheBytesOfCodes) {
    ResidentCIDFont font({}, GRAPHICS::TEncoding::kIdentityV);
    EXPECT_EQ(font.AddCode("A", {}), 0);
    EXPECT_EQ(font.AddCode("\x81\x41", {}), 1);
    EXPECT_EQ(font.AddCode("A", {}), 0);
    EXPECT_EQ(font.AddCode("12345", {.width = 0.5F}), 2);
    const std::uint8_t text[] = {0, 2, 0, 1, 0, 0};
    std::uint8_t codes[2 * sizeof text + 16];
    std::int32_t count = 0;
    ASSERT_TRUE(font.ReEncodeText(text, sizeof text, codes, &count));
    EXPECT_EQ(std::string(codes, codes + count),
              "1234\x81\x41"
              "A");
    EXPECT_FALSE(font.IsEmbedded());
    EXPECT_FALSE(font.WrittenAdvanceAt(0));
}
