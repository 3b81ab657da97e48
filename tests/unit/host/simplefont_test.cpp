// SPDX-License-Identifier: MIT
#include "host/fonts/simplefont.h"

#include <gtest/gtest.h>

#include "core/fonts/ifontancillaries.h"
#include "host/fonts/fontbroker.h"
#include "host/fonts/glyphnames.h"
#include "host/fonts/truetypeprogram.h"
#include "madetruetype.h"

using namespace VANTIX;
using namespace VANTIX::HOST;
using namespace VANTIX::TEST;

namespace {

std::shared_ptr<TrueTypeProgram> MakeProgram() {
    const std::string font = MakeSfnt(MadeTables({"", TriangleGlyph(100), ""}));
    std::string problem;
    return TrueTypeProgram::Open({font.begin(), font.end()}, problem);
}

/// "A" at code 65 and "space" at 32, both half an em wide in the program.
SimpleFontDescription Description(TrueTypeProgram& program, float widthOfA) {
    SimpleFontDescription description;
    description.name = "Made";
    description.widths.fill(-1);
    description.widths[65] = widthOfA;
    description.encoding[65] = program.NameGlyph(1, "A");
    description.encoding[32] = program.NameGlyph(2, "space");
    return description;
}

}  // namespace

struct AdvanceCase {
    const char* name;
    float widthOfA;
    std::string text;
    std::int32_t capacity;
    std::vector<float> advances;  ///< none: the font's own serve
};

class Advances : public testing::TestWithParam<AdvanceCase> {};

TEST_P(Advances, AreAnsweredOnlyWhereTheyMatter) {
    const auto program = MakeProgram();
    const auto font = MakeTrueTypeFont(program, Description(*program, GetParam().widthOfA));
    const std::string& text = GetParam().text;
    std::vector<float> w0(16, 77);
    std::vector<float> w1(16, 77);
    std::int32_t count = GetParam().capacity;
    const bool answered = font->GetAdvances(text.data(), static_cast<std::int32_t>(text.size()),
                                            w0.data(), w1.data(), &count);
    EXPECT_EQ(answered, !GetParam().advances.empty());
    if (answered) {
        w0.resize(static_cast<std::size_t>(count));
        EXPECT_EQ(w0, GetParam().advances);
        EXPECT_EQ(w1[0], 0.0F);
    } else {
        EXPECT_EQ(w0[0], 77.0F);
        EXPECT_EQ(count, GetParam().capacity);
    }
}

INSTANTIATE_TEST_SUITE_P(
    SimpleFont, Advances,
    testing::Values(AdvanceCase{"Same", 0.5F, "AA", 16, {}},
                    AdvanceCase{"Near", 0.504F, "AA", 16, {}},
                    AdvanceCase{"AddedUp", 0.504F, "AAA", 16, {0.504F, 0.504F, 0.504F}},
                    AdvanceCase{"WordSpaceIsNegative", 0.75F, "A A", 16, {0.75F, -0.5F, 0.75F}},
                    AdvanceCase{"NoWidthInTheDocument", -1.0F, "A A", 16, {}},
                    AdvanceCase{"NoRoom", 0.75F, "AAA", 2, {}},
                    AdvanceCase{"NoText", 0.75F, "", 16, {}}),
    [](const auto& tested) { return tested.param.name; });

TEST(SimpleFont, TheEncodingIsStandardOnlyWhereAllOfItIs) {
    const auto program = MakeProgram();
    SimpleFontDescription description = Description(*program, 0.5F);
    const auto custom = MakeTrueTypeFont(program, description);
    EXPECT_EQ(custom->GetEncoding(), GRAPHICS::TEncoding::kCustom);
    std::int32_t count = 0;
    const GRAPHICS::EncodingDifference* names = custom->GetEncodingDifferences(count);
    ASSERT_EQ(count, 2);
    EXPECT_EQ(names[0].code, 32);
    EXPECT_STREQ(names[1].name, "A");

    const auto& standard = NamesOf(BaseEncoding::kStandard);
    std::copy(standard.begin(), standard.end(), description.encoding.begin());
    EXPECT_EQ(MakeTrueTypeFont(program, description)->GetEncoding(),
              GRAPHICS::TEncoding::kStandard);
}

TEST(SimpleFont, FontsOfOneProgramShareItsDataAndNames) {
    const auto program = MakeProgram();
    const auto first = MakeTrueTypeFont(program, Description(*program, 0.5F));
    const auto second = MakeTrueTypeFont(program, Description(*program, 0.7F));
    const auto data = [](SimpleFont& font) {
        return FindInterface<GRAPHICS::IFontData>(&font, GRAPHICS::IID_IFONTDATA);
    };
    EXPECT_EQ(data(*first)->GetData(), data(*second)->GetData());
    EXPECT_EQ(first->GetGlyphCount(), 3);
    EXPECT_EQ(first->GetFontMatrix(), nullptr);
    EXPECT_NE(first->Less(*second), second->Less(*first));

    class Lister : public GRAPHICS::ITableFunctor,
                   public GRAPHICS::IGlyphNameFunctor,
                   public GRAPHICS::IEncodingFunctor {
    public:
        std::string seen;

        bool operator()(FourCC tag, const std::uint8_t* /*data*/, std::uint32_t size) override {
            seen += tag == "head"_cc ? "head" + std::to_string(size) + ' ' : "";
            return true;
        }

        bool operator()(const char* name, std::uint16_t index) override {
            seen += name + std::to_string(index) + ' ';
            return true;
        }

        bool operator()(std::int32_t code, const char* name) override {
            seen += std::to_string(code) + name + ' ';
            return code != 65;
        }
    } lister;

    const auto* ancillary =
        FindInterface<GRAPHICS::IT42Ancillary>(second.Get(), GRAPHICS::IID_IT42ANCILLARY);
    ancillary->EnumerateTables(lister);
    ancillary->EnumerateGlyphNames(lister);
    ancillary->EnumerateEncoding(lister);
    EXPECT_EQ(lister.seen, "head56 A1 space2 32space 65A ");
    EXPECT_EQ(ancillary->GetGlyphCount(), 3U);
    EXPECT_EQ(ancillary->GetUnitsPerEm(), 1000);
}

TEST(FontBroker, FontsAreFamiliesOfTheirOwnUnderTheirSelectors) {
    const auto program = MakeProgram();
    const auto first = MakeTrueTypeFont(program, Description(*program, 0.5F));
    const auto second = MakeTrueTypeFont(program, Description(*program, 0.7F));
    FontBroker broker;
    broker.Add(first, 7);
    broker.Add(second, 3);
    broker.Add(second, 7);
    broker.Add(nullptr, 9);

    const auto handler = [](IObject* font) {
        return FindInterface<GRAPHICS::IFontPackageHandler>(font,
                                                            GRAPHICS::IID_IFONTPACKAGEHANDLER);
    };
    EXPECT_EQ(handler(broker.FindFont("any", 7, 0)), first.Get());
    EXPECT_EQ(broker.FindFont("any", 9, 0), nullptr);

    class Lister : public GRAPHICS::IFamilyFunctor {
    public:
        std::vector<IObject*> fonts;

        bool operator()(const GRAPHICS::IFontFamily* family) override {
            EXPECT_EQ(family->GetFontCount(), 1);
            EXPECT_EQ(family->GetFont(1), nullptr);
            fonts.push_back(family->GetFont(0));
            return false;
        }
    } lister;

    broker.EnumerateFontFamilies(lister);
    ASSERT_EQ(lister.fonts.size(), 2U);
    EXPECT_EQ(handler(lister.fonts[0]), first.Get());
    EXPECT_EQ(handler(lister.fonts[1]), second.Get());
}
