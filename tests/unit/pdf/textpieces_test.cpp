// SPDX-License-Identifier: MIT
#include "pdf/textpieces.h"

#include <gtest/gtest.h>

#include <string>

#include "pdf/fonts/fonts.h"

namespace VANTIX::TESTS {
namespace {

using PDF::TextPlace;
using PDF::TextState;

/// Glyphs are named by their characters; each is half an em wide, but "z", which has no advance.
class FakeProgram : public HOST::SimpleProgram {
public:
    [[nodiscard]] float WidthOf(std::string_view glyph) const override {
        return glyph == "z" ? 0.0F : 0.5F;
    }

    [[nodiscard]] bool HasOutline(std::string_view glyph) const override { return glyph != " "; }
};

class FakeFont : public HOST::SimpleFont {
public:
    explicit FakeFont(HOST::SimpleFontDescription description)
        : SimpleFont(GRAPHICS::TFontType::kType1, std::move(description)) {
        TakeWidths(FakeProgram());
    }

    bool IsEmbedded() const override { return true; }

    const float* GetFontMatrix() const override { return nullptr; }

    std::int32_t GetGlyphCount() const override { return 0; }
};

/// A font whose document gives "n" the width 0.503, "d" 0.52, "e" 0.48, and others their own.
PDF::Font MakeFont(bool isResident = false) {
    HOST::SimpleFontDescription description;
    description.widths.fill(-1.0F);
    for (std::size_t code = ' '; code <= 'z'; ++code) {
        description.encoding[code] = std::string(1, static_cast<char>(code));
    }
    description.widths['n'] = 0.503F;
    description.widths['d'] = 0.52F;
    description.widths['e'] = 0.48F;
    PDF::Font font;
    font.isResident = isResident;
    const auto handler = MakeObject<FakeFont>(std::move(description));
    font.simple = handler.Get();
    font.handler = handler;
    return font;
}

struct PlaceCase {
    const char* name;
    float size;
    float scaling;
    std::array<double, 6> matrix;
    float placedSize;  ///< 0: not shown
    std::array<float, 4> linear;
    float charSpacing;  ///< of 3 in text space
};

class Places : public testing::TestWithParam<PlaceCase> {};

TEST_P(Places, KeepGlyphsAndSpacingInPlace) {
    const PlaceCase& c = GetParam();
    TextState text;
    text.size = c.size;
    text.scaling = c.scaling;
    text.charSpacing = 3.0F;
    text.rise = 2.0F;
    const auto place = PDF::Place(text, c.matrix);
    ASSERT_EQ(place.has_value(), c.placedSize > 0.0F);
    if (!place) {
        return;
    }
    EXPECT_FLOAT_EQ(place->selection.size, c.placedSize);
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_FLOAT_EQ(place->selection.linear[i], c.linear[i]) << i;
    }
    EXPECT_FLOAT_EQ(place->charSpacing, c.charSpacing);
    EXPECT_FLOAT_EQ(place->origin[0], static_cast<float>(c.matrix[4] + 2.0 * c.matrix[2]));
    EXPECT_FLOAT_EQ(place->origin[1], static_cast<float>(c.matrix[5] + 2.0 * c.matrix[3]));
}

INSTANTIATE_TEST_SUITE_P(
    Text, Places,
    testing::Values(PlaceCase{"Plain", 12, 1, {1, 0, 0, 1, 5, 6}, 12, {1, 0, 0, 1}, 3},
                    PlaceCase{"SizeInTheMatrix", 1, 1, {12, 0, 0, 12, 5, 6}, 12, {1, 0, 0, 1}, 36},
                    PlaceCase{"TurnedTwice", -6, 1, {-2, 0, 0, -2, 0, 0}, 12, {1, 0, 0, 1}, -6},
                    PlaceCase{"Scaled", 10, 0.5, {1, 0, 0, 1, 5, 6}, 10, {0.5, 0, 0, 1}, 3},
                    PlaceCase{"Rotated", 10, 1, {0, 1, -1, 0, 5, 6}, 10, {0, 1, -1, 0}, 3},
                    PlaceCase{"Mirrored", -10, 1, {1, 0, 0, 1, 5, 6}, 1, {-10, 0, 0, -10}, -0.3F},
                    PlaceCase{"Tiny", 0.25, 1, {1, 0, 0, 1, 5, 6}, 1, {0.25, 0, 0, 0.25}, 12},
                    PlaceCase{"Sizeless", 0, 1, {1, 0, 0, 1, 5, 6}, 0, {}, 0},
                    PlaceCase{"Flat", 10, 1, {1, 1, 2, 2, 5, 6}, 0, {}, 0},
                    PlaceCase{"Endless", 1e9F, 1, {1, 0, 0, 1, 5, 6}, 0, {}, 0}),
    [](const auto& param) { return std::string(param.param.name); });

struct PieceCase {
    const char* name;
    std::string codes;
    std::size_t length;
    bool isResident = false;
    std::array<float, 4> linear{1, 0, 0, 1};
};

class Pieces : public testing::TestWithParam<PieceCase> {};

TEST_P(Pieces, EndBeforeGlyphsStandElsewhere) {
    const PDF::Font font = MakeFont(GetParam().isResident);
    TextPlace place;
    place.selection = {&font, 10.0F, GetParam().linear};
    EXPECT_EQ(PDF::PieceLength(place, GetParam().codes), GetParam().length);
}

INSTANTIATE_TEST_SUITE_P(
    Text, Pieces,
    testing::Values(PieceCase{"OwnWidthsServe", "aaaa", 4},
                    PieceCase{"LongStringsAreSplit", std::string(300, 'a'), 255},
                    PieceCase{"AdvancesAreGiven", "dddd", 4},
                    PieceCase{"WidthsThatMakeUpForEachOther", "adeaa", 2},
                    // 5.03 goes out whole; 0.503 x 37 = 18.611 as 18.6.
                    PieceCase{"RoundingAddsUp", std::string(100, 'n'), 34, false, {3.7F, 0, 0, 1}},
                    PieceCase{
                        "LeadingGlyphWithoutAdvance", "zddd", 1, false, {0.6F, 0.8F, -0.8F, 0.6F}},
                    PieceCase{"NoAdvanceUpright", "zddd", 4},
                    PieceCase{"ResidentWidthsServe", "aaaa", 4, true},
                    PieceCase{"ResidentWidthsDiffer", "aadaa", 3, true},
                    PieceCase{"ResidentWidthsDifferALittle", "nnnnnnnn", 4, true}),
    [](const auto& param) { return std::string(param.param.name); });

TEST(TextPieces, AdvanceIsTheDocuments) {
    const PDF::Font font = MakeFont();
    TextState text;
    text.font = &font;
    text.size = 10.0F;
    text.scaling = 2.0F;
    text.charSpacing = 1.0F;
    text.wordSpacing = 0.5F;
    EXPECT_NEAR(PDF::AdvanceOf(text, "d z"), 2.0 * (5.2 + 5.0 + 0.0 + 3.0 + 0.5), 1e-5);
    text.size = 0.0F;
    EXPECT_NEAR(PDF::AdvanceOf(text, "d z"), 2.0 * (3.0 + 0.5), 1e-5);
}

}  // namespace
}  // namespace VANTIX::TESTS
