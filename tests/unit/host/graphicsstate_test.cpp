// SPDX-License-Identifier: MIT
#include "host/graphics/graphicsstate.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>

#include "host/graphics/graphicsstatestack.h"

namespace VANTIX::HOST {
namespace {

TEST(GraphicsState, GettersReadTheTopOfTheStack) {
    const auto state = MakeObject<GraphicsState>(nullptr);
    state->Current().fillAlpha = 0.5F;
    ASSERT_TRUE(state->Push());
    state->Current().fillAlpha = 0.25F;
    state->Current().fontName = "A font";
    EXPECT_EQ(state->GetAlpha(true), 0.25F);
    EXPECT_EQ(state->GetAlpha(false), 1.0F);
    ASSERT_TRUE(state->Pop());
    EXPECT_EQ(state->GetAlpha(true), 0.5F);
    EXPECT_STREQ(state->GetFontName(), "");
}

TEST(GraphicsState, StackIsBoundedAtBothEnds) {
    const auto state = MakeObject<GraphicsState>(nullptr);
    EXPECT_FALSE(state->Pop());
    for (std::size_t i = 0; i < GraphicsState::kMaxLevels; ++i) {
        ASSERT_TRUE(state->Push());
    }
    EXPECT_FALSE(state->Push());
    EXPECT_EQ(state->Depth(), GraphicsState::kMaxLevels);
}

TEST(GraphicsState, MissingColourComponentsAreZero) {
    const auto state = MakeObject<GraphicsState>(nullptr);
    CurrentColor& stroke = state->Current().stroke;
    stroke.values = {0.1F, 0.2F, 0.3F};
    stroke.count = 2;
    std::array<float, 4> values{9, 9, 9, 9};
    state->GetColor(false, values.data(), 3);
    EXPECT_EQ(values, (std::array<float, 4>{0.1F, 0.2F, 0, 9}));
    state->GetColor(false, values.data(), 1);
    EXPECT_EQ(values, (std::array<float, 4>{0.1F, 0.2F, 0, 9}));
}

class StateStack : public testing::Test {
protected:
    [[nodiscard]] std::int32_t KnownColor() const {
        std::array<float, 16> values{};
        std::int32_t count = -1;
        stack->GetColor(values.data(), count);
        return count;
    }

    TInterfacePtr<GraphicsStateStack> stack = MakeObject<GraphicsStateStack>();
};

TEST_F(StateStack, TheSameColourIsRefusedUntilTheSpaceIsSetAgain) {
    const std::array<float, 1> half{0.5F};
    stack->SetColorSpaceKey("gray"_cc);
    EXPECT_EQ(KnownColor(), 0);
    EXPECT_TRUE(stack->SetColor(half.data(), 1));
    EXPECT_FALSE(stack->SetColor(half.data(), 1));
    stack->SetColorSpaceKey("gray"_cc);
    EXPECT_EQ(KnownColor(), 0);
    EXPECT_TRUE(stack->SetColor(half.data(), 1));
}

TEST_F(StateStack, ColoursThatCannotBeComparedAreAlwaysWritten) {
    const std::array<float, 17> many{};
    EXPECT_TRUE(stack->SetColor(many.data(), 17));
    EXPECT_TRUE(stack->SetColor(many.data(), 17));
    EXPECT_EQ(KnownColor(), 0);
    const std::array<float, 1> none{std::numeric_limits<float>::quiet_NaN()};
    EXPECT_TRUE(stack->SetColor(none.data(), 1));
    EXPECT_TRUE(stack->SetColor(none.data(), 1));
    EXPECT_FALSE(stack->SetColor(nullptr, 1));
    EXPECT_FALSE(stack->SetColor(none.data(), 0));
}

TEST_F(StateStack, OverprintRemembersWhichKindWasSetLast) {
    stack->SetOverprint(0, 1);
    EXPECT_EQ(stack->GetOverprint(3), 1);
    stack->SetOverprint(1, 0);
    EXPECT_EQ(stack->GetOverprint(3), 0);
    stack->SetOverprint(2, 1);
    EXPECT_EQ(stack->GetOverprint(3), 0);
    stack->SetOverprint(3, 7);
    stack->SetOverprint(-1, 7);
    EXPECT_EQ(stack->GetOverprint(3), 0);
    EXPECT_EQ(stack->GetOverprint(0), 1);
    EXPECT_EQ(stack->GetOverprint(4), 0);
}

TEST_F(StateStack, EverythingComesBackWithThePopAndAnExtraPopIsIgnored) {
    const std::array<float, 3> red{1, 0, 0};
    stack->SetColorSpaceKey("rgb "_cc);
    stack->SetColor(red.data(), 3);
    stack->SetRenderingIntent(0, 1);
    stack->SetFont("Helvetica", 12);
    stack->Push();
    stack->SetColorSpaceKey("gray"_cc);
    stack->SetRenderingIntent(0, 3);
    stack->SetRenderingIntent(1, 2);
    stack->SetFont("A font name too long for a short string", 6);
    stack->Pop();
    stack->Pop();
    EXPECT_EQ(stack->GetColorSpaceKey(), "rgb "_cc);
    EXPECT_FALSE(stack->SetColor(red.data(), 3));
    EXPECT_EQ(stack->GetRenderingIntent(0), 1);
    EXPECT_EQ(stack->GetRenderingIntent(1), -1);
    EXPECT_EQ(stack->GetRenderingIntent(2), -1);
    EXPECT_STREQ(stack->GetFontName(), "Helvetica");
    EXPECT_EQ(stack->GetFontSize(), 12.0F);
}

}  // namespace
}  // namespace VANTIX::HOST
