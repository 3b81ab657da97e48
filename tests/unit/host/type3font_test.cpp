// SPDX-License-Identifier: MIT
#include "host/fonts/type3font.h"

#include <gtest/gtest.h>

#include <limits>

#include "core/fonts/ifontancillaries.h"
#include "core/graphics/pluginhelper/delegateconnectionspace.h"
#include "host/graphics/baseconnectionspace.h"
#include "host/host.h"

using namespace VANTIX;
using namespace VANTIX::HOST;

namespace {

constexpr float kNone = std::numeric_limits<float>::quiet_NaN();

/// A font whose glyph "a" is 600 units wide; codes 1 and 2 show it, and 3 a glyph that is not
/// there. The document gives widths to 2 and 3.
TInterfacePtr<SimpleFont> MakeFont(const std::array<float, 6>& matrix, float given = kNone,
                                   std::function<void(BaseConnectionSpace&)> play = {}) {
    SimpleFontDescription description;
    description.name = "Type3-01-00001";
    description.widths.fill(kNone);
    description.widths[2] = description.widths[3] = given;
    description.encoding[1] = description.encoding[2] = "a";
    description.encoding[3] = "b";
    return MakeType3Font({{"a", 600.0F, {0, 0, 600, 700}, false, std::move(play)}},
                         std::move(description), matrix);
}

/// Plays glyphs into a space, and takes "a" alone.
class Glyphs final : public GRAPHICS::IT3GlyphProcFunctor {
public:
    explicit Glyphs(GRAPHICS::IConnectionSpace& theSpace) : space(theSpace) {}

    bool operator()(const char* name, std::int32_t length,
                    const GRAPHICS::IConnectionSpace* recording, const float* box, float width,
                    bool isColoured) override {
        text += std::string(name, static_cast<std::size_t>(length)) + ' ' +
                std::to_string(static_cast<int>(width)) + ' ' +
                std::to_string(static_cast<int>(box[3])) + (isColoured ? " coloured" : "");
        if (recording != nullptr) {
            recording->PlayTo(space);
        }
        return false;
    }

    GRAPHICS::IConnectionSpace& space;
    std::string text;
};

struct AdvanceCase {
    const char* name;
    std::array<float, 6> matrix;
    float given;  ///< by the document, in text space
    float advance;
    bool isPositioned;  ///< glyphs are shown with advances
};

class Type3Advances : public testing::TestWithParam<AdvanceCase> {};

}  // namespace

TEST_P(Type3Advances, AreTheDocumentsInTextSpace) {
    const AdvanceCase& each = GetParam();
    const auto font = MakeFont(each.matrix, each.given);
    EXPECT_FLOAT_EQ(font->AdvanceAt(2), each.advance);
    EXPECT_FLOAT_EQ(font->AdvanceAt(1), font->WrittenAdvanceAt(1).value_or(0.0F));
    EXPECT_FALSE(font->WrittenAdvanceAt(3));
    float w0[2] = {};
    float w1[2] = {};
    std::int32_t count = 2;
    EXPECT_EQ(font->GetAdvances("\2\2", 2, w0, w1, &count), each.isPositioned);
}

INSTANTIATE_TEST_SUITE_P(
    Font, Type3Advances,
    testing::Values(AdvanceCase{"Own", {.001F, 0, 0, .001F, 0, 0}, kNone, 0.6F, false},
                    AdvanceCase{"Same", {.001F, 0, 0, .001F, 0, 0}, 0.6F, 0.6F, false},
                    AdvanceCase{"Other", {.001F, 0, 0, .001F, 0, 0}, 0.9F, 0.9F, true},
                    AdvanceCase{"Leftwards", {.001F, 0, 0, .001F, 0, 0}, -0.5F, -0.5F, false},
                    AdvanceCase{"Mirrored", {-.001F, 0, 0, .001F, 0, 0}, kNone, -0.6F, false},
                    AdvanceCase{"OffTheLine", {.001F, .001F, 0, .001F, 0, 0}, 0.6F, 0.6F, true},
                    AdvanceCase{"NoNumber",
                                {.001F, 0, 0, .001F, 0, 0},
                                std::numeric_limits<float>::infinity(),
                                0.6F,
                                false}),
    [](const auto& each) { return std::string(each.param.name); });

TEST(Type3Font, GlyphsDrawThemselvesIntoTheBaseSpaceOfARecording) {
    int played = 0;
    const auto font = MakeFont({.001F, 0, 0, .001F, 0, 0}, kNone, [&](BaseConnectionSpace&) {
        if (++played > 1) {
            throw std::runtime_error("damaged");
        }
    });
    const auto* ancillary =
        FindInterface<GRAPHICS::IT3Ancillary>(font.Get(), GRAPHICS::IID_IT3ANCILLARY);
    ASSERT_NE(ancillary, nullptr);
    Host host;
    const auto base = MakeObject<BaseConnectionSpace>(host.ColorSpaces().DeviceSpace("gray"_cc));
    for (int i = 1; i < 3; ++i) {
        Glyphs glyphs(*base);
        ancillary->EnumerateGlyphs(glyphs);
        EXPECT_EQ(glyphs.text, "a 600 700");
        EXPECT_EQ(played, i);
    }
    EXPECT_EQ(font->GetGlyphCount(), 1);
    EXPECT_EQ(MakeFont({1, 2, 3, 4, 5, 6})->GetFontMatrix()[1], 3.0F);
}
