// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <string>
#include <string_view>

#include "core/graphics/itextobject.h"
#include "integration/job.h"
#include "support/fakefonts.h"
#include "support/ghostscriptpages.h"

namespace VANTIX::HOST {
namespace {

constexpr std::int32_t kLevelKey = 103;
constexpr std::int32_t kDefaultColourKey = 106;
constexpr std::size_t kFrameBytes = 556;

/// Whether red, green and blue are light.
using Pixel = std::array<bool, 3>;

void DrawNothing(BaseConnectionSpace& /*base*/, IO::IDataProvider& /*output*/) {}

TEST_F(Job, AnEmptyJobIsItsFrameAlone) {
    policy->SetBool(kDefaultColourKey, false);
    const std::string text = Run(DrawNothing);
    EXPECT_EQ(text.size(), kFrameBytes);
    EXPECT_EQ(text.substr(text.size() - 17), "} bind def\n%%EOF\n");
}

TEST_F(Job, TheDefaultColourFollowsTheProlog) {
    const std::string text = Run(DrawNothing);
    EXPECT_EQ(text.substr(kFrameBytes - 6),
              "/DeviceRGB setcolorspace %set default colour to RGB black\n%%EOF\n");
}

TEST_F(Job, NestedJobsEndInnermostFirst) {
    const auto outer = Create(Path("outer.ps"));
    const auto inner = Create(Path("inner.ps"));
    ASSERT_NE(exporter->Begin(*outer, policy.Get()), nullptr);
    ASSERT_NE(exporter->Begin(*inner, policy.Get()), nullptr);
    EXPECT_EQ(exporter->End(), STATUS::kOk);
    EXPECT_EQ(inner->BytesWritten(), outer->BytesWritten() + 6);
    EXPECT_EQ(exporter->End(), STATUS::kOk);
    EXPECT_EQ(inner->BytesWritten(), outer->BytesWritten());
}

TEST_F(Job, AFullDiskIsKnownAfterTheJob) {
    const auto output = Create("/dev/full");
    ASSERT_NE(exporter->Begin(*output, policy.Get()), nullptr);
    exporter->End();
    EXPECT_EQ(output->FirstError(), ENOSPC);
}

TEST_F(Job, AnUnfinishedJobEndsWithItsExporter) {
    const auto output = Create(Path("unfinished.ps"));
    ASSERT_NE(exporter->Begin(*output, policy.Get()), nullptr);
    exporter = nullptr;
    EXPECT_EQ(output->Flush(), STATUS::kOk);
}

class JobAtLevel : public Job, public testing::WithParamInterface<std::int32_t> {};

TEST_P(JobAtLevel, PathsInTheDeviceSpacesComeOut) {
    policy->SetInt(kLevelKey, GetParam());
    Run(
        [this](BaseConnectionSpace& base, IO::IDataProvider& output) {
            base.SaveGraphicsState();
            SetColor(base, true, "rgb "_cc, {1, 0, 0});
            SetColor(base, false, "cmyk"_cc, {0, 1, 1, 1});
            base.SetLineWidth(20);
            Rectangle(base, 100, 100, 100);
            base.Fill();
            base.Stroke();
            base.NewPath();
            base.RestoreGraphicsState();
            Rectangle(base, 300, 100, 100);
            Rectangle(base, 325, 125, 50);
            base.EOFill();
            base.NewPath();
            const std::string_view end = "showpage\n";
            output.Write(end.data(), end.size());
        },
        kGuard);
    const auto drawn = TEST::DrawPages(Path("job.ps"), {});
    EXPECT_EQ(drawn.complaint, "");
    ASSERT_EQ(drawn.pages.size(), 1U);
    const auto isColor = [&page = drawn.pages[0]](std::size_t x, std::size_t y, Pixel expected) {
        const std::size_t row = page.height - 1 - y;
        for (std::size_t channel = 0; channel < 3; ++channel) {
            // Ghostscript's own cyan is not pure.
            if ((page.At(x, row, channel) > 127) != expected[channel]) {
                return false;
            }
        }
        return true;
    };
    EXPECT_TRUE(isColor(150, 150, {true, false, false})) << "the red fill";
    EXPECT_TRUE(isColor(100, 150, {false, true, true})) << "the cyan stroke";
    EXPECT_TRUE(isColor(310, 150, {false, false, false})) << "the black of the outer state";
    EXPECT_TRUE(isColor(350, 150, {true, true, true})) << "the hole";
}

/// Shows `text` at (x, y) in the state's font.
void Show(BaseConnectionSpace& base, float x, float y, std::string_view text) {
    const std::array<float, 6> matrix{1, 0, 0, 1, x, y};
    base.BeginTextObject();
    base.SelectCurrentFont();
    base.GetCurrentTextObject()->SetTextMatrix(matrix.data());
    base.DrawTextW(text.data(), static_cast<std::int32_t>(text.size()));
    base.EndTextObject();
    base.NewPath();
}

TEST_P(JobAtLevel, TextInResidentFontsComesOut) {
    using Mode = GRAPHICS::IGraphicsState::TTextRendering;
    policy->SetInt(kLevelKey, GetParam());
    const auto broker = MakeObject<TEST::FakeFontBroker>();
    for (const char* name : {"Helvetica", "Times-Roman"}) {
        broker->fonts.push_back(
            MakeObject<TEST::ListedFont>(name, GRAPHICS::TFontType::kType1, false));
    }
    broker->fonts[1]->differences = {{1, "Euro"}, {'A', "germandbls"}};
    Run(
        [&broker](BaseConnectionSpace& base, IO::IDataProvider& output) {
            base.Aggregate(broker.Get(), GRAPHICS::IID_IFONTBROKER);
            GraphicsParameters& state = base.State().Current();
            state.fontName = "Helvetica";
            state.fontSize = 40;
            Show(base, 100, 600, "A (B)");
            state.charSpacing = 3;
            state.wordSpacing = 8;
            Show(base, 100, 500, "A (B)");
            state.textRendering = Mode::kStroke;
            Show(base, 100, 400, "A (B)");
            state.charSpacing = 0;
            state.wordSpacing = 0;
            state.textRendering = Mode::kFillStroke;
            base.SetLineWidth(3);
            Show(base, 100, 300, "A (B)");
            state.textRendering = Mode::kFill;
            state.fontName = "Times-Roman";
            Show(base, 100, 200, "A \x01 B");
            state.textRendering = Mode::kClip;
            base.SaveGraphicsState();
            base.State().Current().fontSize = 200;
            Show(base, 100, 40, "OO");
            Rectangle(base, 0, 0, 100);
            Rectangle(base, 100, 0, 150);
            base.Fill();
            base.NewPath();
            base.RestoreGraphicsState();
            const std::string_view end = "showpage\n";
            output.Write(end.data(), end.size());
        },
        kGuard);
    const auto reference = Create(Path("reference.ps"));
    const std::string_view program =
        "%!PS\n/Helvetica 40 selectfont 100 600 moveto (A \\(B\\)) show\n"
        "100 500 moveto 8 0 32 3 0 (A \\(B\\)) awidthshow\n"
        "100 400 moveto (A \\(B\\)) {1 string dup 0 4 -1 roll put dup ( ) eq {8} {0} ifelse exch\n"
        "false charpath 3 add 0 rmoveto} forall stroke\n"
        "100 300 moveto (A \\(B\\)) show 3 setlinewidth\n"
        "100 300 moveto (A \\(B\\)) false charpath stroke\n"
        "/Times-Roman 40 selectfont 100 200 moveto /germandbls glyphshow ( ) show /Euro glyphshow\n"
        "( B) show /Times-Roman 200 selectfont 100 40 moveto (OO) true charpath clip newpath\n"
        "100 0 150 150 rectfill showpage\n";
    reference->Write(program.data(), program.size());
    ASSERT_EQ(reference->Flush(), STATUS::kOk);
    const auto drawn = TEST::DrawPages(Path("job.ps"), {});
    const auto expected = TEST::DrawPages(Path("reference.ps"), {});
    EXPECT_EQ(drawn.complaint, "");
    EXPECT_EQ(expected.complaint, "");
    ASSERT_EQ(drawn.pages.size(), 1U);
    ASSERT_EQ(expected.pages.size(), 1U);
    const TEST::PageDifference difference = TEST::Compare(drawn.pages[0], expected.pages[0]);
    EXPECT_TRUE(difference.IsMatch()) << difference.Describe();
    EXPECT_FALSE(expected.pages[0].IsBlank());
}

INSTANTIATE_TEST_SUITE_P(Levels, JobAtLevel, testing::Values(2, 3));

}  // namespace
}  // namespace VANTIX::HOST
