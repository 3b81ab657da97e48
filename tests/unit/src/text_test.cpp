// SPDX-License-Identifier: MIT
#include <functional>

#include "gmock/gmock.h"
#include "postscriptconnectionspace/postscriptconnectionspace.h"
#include "support/fakebaseconnectionspace.h"
#include "support/fakefactory.h"
#include "support/fakefonts.h"
#include "support/ghostscriptpages.h"
#include "support/memoryprovider.h"
#include "support/recordinglogger.h"

namespace VANTIX::TEST {
namespace {

using GRAPHICS::TEncoding;
using GRAPHICS::TFontType;
using ::testing::HasSubstr;
using Mode = GRAPHICS::IGraphicsState::TTextRendering;

constexpr float kNear[] = {1, 0, 0, 1, 20, 30};
constexpr float kTurned[] = {0, 2, -2, 0, 20, 30};

/// A space without a delegate, which notes the colours of text that are asked for.
class NotingSpace : public PS::PostScriptConnectionSpace {
public:
    std::string colors;

    void SetTextRenderingColor(Mode mode) override {
        colors += std::to_string(static_cast<int>(mode));
    }
};

class Text : public ::testing::Test {
protected:
    Text() {
        log.Clear();
        factory->OfferObject(GRAPHICS::IID_IBASECONNECTIONSPACE, base.Get());
        base->state = state.Get();
        base->Aggregate(broker.Get(), GRAPHICS::IID_IFONTBROKER);
        broker->fonts = {font};
    }

    void SetUp() override {
        ASSERT_TRUE(space->Init(page.Get(), factory.Get(), nullptr));
        log.Clear();
    }

    /// Shows `text` from a matrix; what is written behind the position.
    std::string Shown(const std::string& text, const float (&matrix)[6] = kNear) {
        EXPECT_TRUE(space->BeginTextObject());
        space->GetCurrentTextObject()->SetTextMatrix(matrix);
        page->Take();
        Draw(text);
        writes = page->writes;
        std::string written = page->Take();
        space->EndTextObject();
        return written;
    }

    void Draw(const std::string& text) {
        space->DrawTextW(text.data(), static_cast<std::int32_t>(text.size()));
    }

    RecordingLogger& log = RecordingLogger::Get();
    TInterfacePtr<FakeFactory> factory = MakeObject<FakeFactory>();
    TInterfacePtr<MemoryProvider> page = MakeObject<MemoryProvider>();
    TInterfacePtr<FakeTextState> state = MakeObject<FakeTextState>();
    TInterfacePtr<FakeFontBroker> broker = MakeObject<FakeFontBroker>();
    TInterfacePtr<ListedFont> font = MakeObject<ListedFont>("Helvetica", TFontType::kType1, false);
    TInterfacePtr<FakeBaseConnectionSpace> base = MakeObject<FakeBaseConnectionSpace>();
    TInterfacePtr<NotingSpace> space = MakeObject<NotingSpace>();
    /// Writes of what was shown last.
    int writes = 0;
};

struct ShowCase {
    const char* name;
    const char* text;
    std::function<void(FakeTextState&, ListedFont&)> prepare;
    const char* written;
    bool isTurned = false;
};

std::ostream& operator<<(std::ostream& out, const ShowCase& tested) {
    return out << tested.name;
}

void Embed(ListedFont& font, std::vector<std::pair<float, float>> advances) {
    font.embedded = true;
    font.advances = std::move(advances);
}

class ShownText : public Text, public ::testing::WithParamInterface<ShowCase> {};

TEST_P(ShownText, IsWrittenInOneForm) {
    const ShowCase& tested = GetParam();
    tested.prepare(*state, *font);
    EXPECT_EQ(Shown(tested.text, tested.isTurned ? kTurned : kNear), tested.written);
    EXPECT_EQ(log.Messages(), "");
    // An interpreter takes it, and has as many operands as before.
    const auto run = RunPostScript("%!PS\n/Helvetica findfont 10 scalefont setfont 20 30 moveto\n" +
                                   std::string(tested.written) + "newpath\n");
    EXPECT_EQ(run.complaint, "");
}

INSTANTIATE_TEST_SUITE_P(
    Forms, ShownText,
    ::testing::Values(
        ShowCase{"Plain", "AB\xFF", [](auto&, auto&) {}, "<4142FF>show\n"},
        ShowCase{"CharacterSpacing", "ABC", [](auto& state, auto&) { state.charSpacing = 0.5; },
                 "0.5 0 <414243>ashow\n"},
        ShowCase{"OneCharacter", "A", [](auto& state, auto&) { state.charSpacing = 0.5; },
                 "<41>show\n0.5 0 rmoveto\n"},
        ShowCase{"WordSpacing", "A B", [](auto& state, auto&) { state.wordSpacing = 3; },
                 "3 0 32 0 0 <412042>awidthshow\n"},
        ShowCase{"BothTurned", "A B",
                 [](auto& state, auto&) {
                     state.wordSpacing = 3;
                     state.charSpacing = 1;
                     state.horizontalScaling = 0.5;
                 },
                 "0 3 32 0 1 <412042>awidthshow\n", true},
        ShowCase{"OneWordSpace", " ", [](auto& state, auto&) { state.wordSpacing = 3; },
                 "<20>show\n3 0 rmoveto\n"},
        ShowCase{"AdvancesAlongX", "A B",
                 [](auto& state, auto& font) {
                     state.wordSpacing = 3;
                     state.horizontalScaling = 0.5;
                     Embed(font, {{0.5, 0}, {-0.25, 0}, {0.123456, 0}});
                 },
                 "<412042>[2.5 2.75 0.617]xshow\n"},
        ShowCase{"AdvancesAlongY", "A B",
                 [](auto& state, auto& font) {
                     state.charSpacing = 1;
                     Embed(font, {{0.5, 0}, {-0.25, 0}, {1, 0}});
                 },
                 "<412042>[12 7 22]yshow\n", true},
        ShowCase{"AdvancesAcross", "AB",
                 [](auto&, auto& font) {
                     Embed(font, {{0.5, 0.25}, {0.5, 0}});
                 },
                 "<4142>[5 2.5 5 0]xyshow\n"},
        ShowCase{"AdvancesOfAResidentFontAreItsOwn", "A",
                 [](auto&, auto& font) {
                     font.advances = {{0.5, 0}};
                 },
                 "<41>show\n"},
        ShowCase{"TooFewAdvancesAreNone", "AB",
                 [](auto&, auto& font) {
                     Embed(font, {{0.5, 0}});
                 },
                 "<4142>show\n"},
        ShowCase{"Outlines", "AB", [](auto& state, auto&) { state.rendering = Mode::kInvisible; },
                 "<4142>false charpath\n"},
        ShowCase{"OutlinesInWords", "A B",
                 [](auto& state, auto&) {
                     state.rendering = Mode::kClip;
                     state.wordSpacing = 3;
                 },
                 "<41>true charpath\n0 0 rmoveto\n<20>true charpath\n3 0 rmoveto\n"
                 "<42>true charpath\n0 0 rmoveto\n"},
        ShowCase{"OutlinesByAdvances", "A ",
                 [](auto& state, auto& font) {
                     state.rendering = Mode::kStroke;
                     state.wordSpacing = 3;
                     Embed(font, {{0.5, 0}, {-0.25, 0}});
                 },
                 "currentpoint\n<41>false charpath\nmoveto\n5 0 rmoveto\n"
                 "currentpoint\n<20>false charpath\nmoveto\n5.5 0 rmoveto\nstroke\n"},
        ShowCase{"FillAndStroke", "A",
                 [](auto& state, auto&) { state.rendering = Mode::kFillStroke; },
                 "currentpoint\n<41>show\ncurrentpoint\n4 -2 roll moveto\n"
                 "<41>false charpath\nstroke\nmoveto\n"},
        ShowCase{"FillAndClip", "A", [](auto& state, auto&) { state.rendering = Mode::kFillClip; },
                 "currentpoint\n<41>show\ncurrentpoint\n4 -2 roll moveto\n"
                 "<41>true charpath\nmoveto\n"},
        ShowCase{"FillStrokeAndClip", "A",
                 [](auto& state, auto&) { state.rendering = Mode::kFillStrokeClip; },
                 "currentpoint\n<41>show\ncurrentpoint\n4 -2 roll 2 copy moveto\n"
                 "<41>false charpath\nstroke\nmoveto\n<41>true charpath\nmoveto\n"}),
    [](const auto& tested) { return tested.param.name; });

TEST_F(Text, CompositeFontsAreShownByPairsAndDownwards) {
    font->AsComposite(true);
    state->charSpacing = 2;
    EXPECT_EQ(Shown("ABCD"), "0 2 <41424344>ashow\n");
    EXPECT_EQ(Shown("AB"), "<4142>show\n0 2 rmoveto\n");
    state->wordSpacing = 1;  // no code of two bytes is the word space
    state->rendering = Mode::kInvisible;
    EXPECT_EQ(Shown("AB"), "<4142>false charpath\n0 2 rmoveto\n");
    ASSERT_TRUE(space->BeginTextObject());
    Draw("AB");
    page->Take();
    space->GetCurrentTextObject()->AdvanceText(0.5);
    EXPECT_EQ(page->Take(), "0 5 rmoveto\n");
}

TEST_F(Text, EachPassHasItsColor) {
    struct Case {
        Mode mode;
        const char* colors;
    };

    for (const Case& tested : {Case{Mode::kFill, "0"}, Case{Mode::kStroke, "1"},
                               Case{Mode::kFillStroke, "21"}, Case{Mode::kFillClip, "407"}}) {
        space->colors.clear();
        state->rendering = tested.mode;
        state->charSpacing = 1;
        Shown("ABC");
        EXPECT_EQ(space->colors, tested.colors);
    }
}

TEST_F(Text, MatricesMoveTheLineAndSelectTheFontWhereItChanges) {
    ASSERT_TRUE(space->BeginTextObject());
    GRAPHICS::ITextObject& text = *space->GetCurrentTextObject();
    EXPECT_EQ(text.GetConnectionSpace(), space.Get());
    state->leading = 12;
    state->charSpacing = 1;
    state->horizontalScaling = 0.5;
    page->Take();
    text.SetTextMatrix(kTurned);
    EXPECT_EQ(page->Take(),
              "(Helvetica) cvn findfont [0 20 -20 0 0 0] makefont setfont\n20 30 moveto\n");
    text.MoveText(3, 4);
    text.NextLine();
    EXPECT_EQ(page->Take(), "12 36 moveto\n36 36 moveto\n");
    text.AdvanceGlyph(0.5, 0.25);
    text.AdvanceText(1);
    text.AdvanceText(0);
    EXPECT_EQ(page->Take(), "-5 6 rmoveto\n0 10 rmoveto\n");
    constexpr float kScale[] = {2, 0, 0, 3, 1, 1};
    text.ConcatTextMatrix(kScale);
    EXPECT_EQ(page->Take(),
              "(Helvetica) cvn findfont [0 40 -60 0 0 0] makefont setfont\n34 38 moveto\n");
    text.MoveText(0, 0);  // the line has not been concatenated
    EXPECT_EQ(page->Take(), "36 36 moveto\n");
}

TEST_F(Text, SmallFontsKeepTheMatrix) {
    state->fontSize = 0.5;
    space->SelectCurrentFont();
    EXPECT_THAT(page->Take(), HasSubstr("(Helvetica) cvn findfont [1 0 0 1 0 0] makefont"));
    EXPECT_TRUE(log.Has("Text Size should not be less than 1"));
}

TEST_F(Text, ObjectsNestUpToTheirBoundAndEndWithTheirClip) {
    for (int i = 0; i < 255; ++i) {
        ASSERT_TRUE(space->BeginTextObject());
    }
    page->Take();
    EXPECT_FALSE(space->BeginTextObject());
    EXPECT_EQ(log.Messages(), "PSTextObject Stack Overflow....\n");
    EXPECT_EQ(page->Take(), "");
    for (int mode = 0; mode < 8; ++mode) {
        state->rendering = static_cast<Mode>(mode);
        EXPECT_TRUE(space->EndTextObject());
        const bool clips = mode == 4 || mode > 5;
        EXPECT_EQ(page->Take(), clips ? "%%EndTextObject\nclip\n" : "%%EndTextObject\n") << mode;
    }
    for (int i = 8; i < 255; ++i) {
        ASSERT_TRUE(space->EndTextObject());
    }
    page->Take();
    EXPECT_FALSE(space->EndTextObject());
    EXPECT_EQ(space->GetCurrentTextObject(), nullptr);
    Draw("A");
    EXPECT_EQ(page->Take(), "");
    EXPECT_TRUE(log.Has("NO PSTextObject, Call To BeginTextObject is missing some where???"));
}

TEST_F(Text, WhatCannotBeShownIsLoggedAndLeftOut) {
    font->reEncodes = false;
    EXPECT_EQ(Shown("A"), "<41>show\n");
    EXPECT_TRUE(log.Has("ReEncoding of the input text string failed"));
    state->rendering = static_cast<Mode>(9);
    EXPECT_EQ(Shown("A"), "");
    EXPECT_TRUE(log.Has("Invalid TextRendering Mode."));
    log.Clear();
    state->fontName = "Unknown";
    EXPECT_EQ(Shown("A"), "");
    EXPECT_EQ(log.Messages(), "");
    space->SelectCurrentFont();
    EXPECT_EQ(log.Count("Failed to get font name for findfont"), 1);
    broker->fonts = {nullptr};
    EXPECT_EQ(Shown("A"), "");
    EXPECT_TRUE(log.Has("Font does not have a package handler."));
    base->Disaggregate(GRAPHICS::IID_IFONTBROKER);
    EXPECT_EQ(Shown("A"), "");
    EXPECT_TRUE(log.Has("There ought to be a font broker attached to this connection space."));
}

TEST_F(Text, StringsOfAnyLengthComeOutWhole) {
    const std::string longText(5000, 'A');
    font->embedded = true;
    font->advances.assign(longText.size(), {0.5F, 0.0F});
    const std::string shown = Shown(longText);
    EXPECT_EQ(shown.size(),
              2 + 2 * longText.size() + 2 * longText.size() + std::string("]xshow\n").size());
    EXPECT_EQ(writes, 1);
}

struct NameCase {
    const char* stored;
    TFontType type;
    bool embedded;
    int encoding;
    const char* name;
};

class FontNames : public Text, public ::testing::WithParamInterface<NameCase> {};

TEST_P(FontNames, FollowTheKindOfFont) {
    const NameCase& tested = GetParam();
    font->name = tested.stored;
    font->type = tested.type;
    font->embedded = tested.embedded;
    font->cidEncoding = static_cast<TEncoding>(tested.encoding);
    state->fontName = tested.stored;
    char name[256];
    space->GetPSFontName(font.Get(), name);
    EXPECT_STREQ(name, tested.name);
    const bool isKnown = tested.embedded || tested.type == TFontType::kType1 ||
                         (tested.encoding >= 18 && tested.encoding <= 78);
    EXPECT_EQ(log.Messages(), isKnown ? "" : "Unhandled CMap encoding?\n");
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, FontNames,
    ::testing::Values(NameCase{"A(b)", TFontType::kType1, false, 0, "(A#28b#29) cvn"},
                      NameCase{"F", TFontType::kTrueType, true, 77, "(F) cvn"},
                      NameCase{"F", TFontType::kCIDKeyedCFF, true, 0, "(F-Identity-H) cvn"},
                      NameCase{"MyFont-90ms-RKSJ-H", TFontType::kCIDKeyedCFF, false, 77,
                               "(MyFont-Identity-H) cvn"},
                      NameCase{"MyFont-90ms-RKSJ-H", TFontType::kCIDKeyedTrueType, false, 58,
                               "(MyFont) cvn (H) AddCMap"},
                      NameCase{"F-KSCms-UHC-HW-H", TFontType::kCIDKeyedCFF, false, 18,
                               "(F-GB-EUC-H) cvn"},
                      NameCase{"F", TFontType::kCIDKeyedCFF, false, 46, "(F-83pv-RKSJ-H) cvn"},
                      NameCase{"F-H", TFontType::kCIDKeyedCFF, false, 17, "(F-H) cvn"},
                      NameCase{"F-H", TFontType::kCIDKeyedTrueType, false, 79, "(F-H) cvn"}));

TEST_F(Text, LongNamesAreCutWithinTheirParentheses) {
    state->fontName.assign(300, 'n');
    font->AsComposite(true);
    font->type = TFontType::kCIDKeyedTrueType;
    font->embedded = true;
    char name[256];
    space->GetPSFontName(font.Get(), name);
    EXPECT_EQ(name, "(" + std::string(238, 'n') + "-Identity-V) cvn");
}

}  // namespace
}  // namespace VANTIX::TEST
