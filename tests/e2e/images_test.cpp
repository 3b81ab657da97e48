// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "e2e/imagesheets.h"
#include "e2e/tool.h"
#include "support/ghostscriptpages.h"
#include "support/temporaryfolder.h"

namespace VANTIX::TEST {
namespace {

class Images : public testing::TestWithParam<SheetCase> {
protected:
    void SetUp() override {
        GetParam().draw(mSheet);
        mInput = mFolder.File("sheet.pdf");
        mOutput = mFolder.File("sheet.ps");
        WriteFile(mInput, mSheet.Pdf());
    }

    void Convert(std::vector<std::string> options) {
        options.insert(options.end(), {mInput, mOutput});
        const ChildResult run = RunTool(options);
        ASSERT_EQ(run.exitStatus, kDone) << run.errors;
    }

    /// Converts the sheet with the options and draws the result; a run that is not judged must
    /// only be free of errors.
    void Check(const std::vector<std::string>& options, const PageImage& reference, bool judged) {
        SCOPED_TRACE(testing::PrintToString(options));
        ASSERT_NO_FATAL_FAILURE(Convert(options));
        const std::string text = ReadFile(mOutput);
        EXPECT_EQ(text.find("/BitsPerComponent 16"), std::string::npos);
        EXPECT_TRUE(!GetParam().hasDepth16 ||
                    text.find("/BitsPerComponent 12") != std::string::npos);
        const auto drawn = DrawPages(mOutput, {});
        EXPECT_EQ(drawn.complaint, "");
        ASSERT_EQ(drawn.pages.size(), 1U);
        if (judged) {
            CompareCells(mSheet, drawn.pages.front(), reference);
        }
    }

    TemporaryFolder mFolder;
    Sheet mSheet;
    std::string mInput;
    std::string mOutput;
};

TEST_P(Images, LookAsInThePdf) {
    const Judged judged = GetParam().judged;
    if (judged == Judged::kPlates) {
        Check({"--level", "2"}, {}, false);
        Check({"--level", "3", "--embed-profiles"}, {}, false);
        return;
    }
    const auto reference = DrawPages(mInput, {});
    ASSERT_EQ(reference.pages.size(), 1U);
    const PageImage& page = reference.pages.front();
    for (std::size_t i = 0; i < mSheet.Cells().size(); ++i) {
        const Sheet::Cell& cell = mSheet.Cells()[i];
        const PageImage own = Sheet::CellOf(page, i);
        EXPECT_TRUE(!cell.isJudged || !cell.isDrawnRight || !own.IsBlank()) << cell.name;
        if (cell.like && cell.isDrawnRight) {
            const PageDifference difference = Compare(own, Sheet::CellOf(page, *cell.like));
            EXPECT_TRUE(difference.IsMatch())
                << "the PDF's " << cell.name << ": " << difference.Describe();
        }
    }
    for (const char* level : {"2", "3"}) {
        Check({"--level", level}, page, judged != Judged::kEmbedded);
    }
    Check({"--level", "3", "--embed-profiles"}, page, true);
}

INSTANTIATE_TEST_SUITE_P(Sheets, Images,
                         testing::ValuesIn(ImageSheets().begin(), ImageSheets().end()),
                         [](const auto& one) { return std::string(one.param.name); });

/// Times that `piece` stands in a text.
std::size_t CountOf(const std::string& text, const std::string& piece) {
    std::size_t count = 0;
    for (std::size_t at = text.find(piece); at != std::string::npos;
         at = text.find(piece, at + 1)) {
        ++count;
    }
    return count;
}

TEST(ImagesForDistillers, KeepTheirSoftMasks) {
    Sheet sheet;
    ImageSheet("Masks").draw(sheet);
    const TemporaryFolder folder;
    const std::string input = folder.File("masks.pdf");
    const std::string output = folder.File("masks.ps");
    WriteFile(input, sheet.Pdf());
    // All masks but those of nothing at all; of these, one is opaque.
    for (const auto& [option, masks] : {std::pair{"--quiet", 18U}, {"--soft-masks", 20U}}) {
        const ChildResult run = RunTool({"--transparency", "pdfmark", option, input, output});
        ASSERT_EQ(run.exitStatus, kDone) << run.errors;
        const std::string text = ReadFile(output);
        EXPECT_EQ(CountOf(text, "/IsSoftMask true"), masks);
        EXPECT_EQ(CountOf(text, "/SMask {SoftMaskImage"), masks);
        EXPECT_EQ(DrawPages(output, {}).complaint, "");
    }
}

}  // namespace
}  // namespace VANTIX::TEST
