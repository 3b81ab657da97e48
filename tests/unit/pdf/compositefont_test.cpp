// SPDX-License-Identifier: MIT
#include "pdf/fonts/compositefont.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "core/fonts/ifontancillaries.h"
#include "pdf/fonts/fonts.h"
#include "unit/host/madecff.h"
#include "unit/host/madetruetype.h"
#include "unit/pdf/pdfplay.h"

namespace VANTIX::TESTS {
namespace {

constexpr const char* kMixedCMap =
    "2 begincodespacerange <00> <80> <8100> <81FF> endcodespacerange "
    "2 begincidrange <20> <22> 0 <8100> <8102> 1 endcidrange";

/// What a composite font says beside what all tests have in common.
struct Entries {
    const char* encoding = "/Identity-H";
    const char* descendant = "";
    const char* descriptor = "/FontFile2 8 0 R";
};

/// A page that shows `content` in F: four glyphs, each half an em wide, of which 1 and 2 mark
/// something. The document gives CID 2 an em.
PdfText CompositePage(const std::string& content, const Entries& entries) {
    using TEST::TriangleGlyph;
    PdfText pdf = PdfText::OnePage(content, "/Font << /F 5 0 R /G 10 0 R >>");
    const std::string font = std::string("<< /Subtype /Type0 /BaseFont /Made /Encoding ") +
                             entries.encoding + " /ToUnicode 9 0 R /DescendantFonts [6 0 R] >>";
    pdf.Object(5, font)
        .Object(6, std::string("<< /Subtype /CIDFontType2 /BaseFont /Made /FontDescriptor 7 0 R "
                               "/CIDSystemInfo << /Registry (Adobe) /Ordering (Identity) "
                               "/Supplement 0 >> /DW 500 /W [2 [1000]] /DW2 [800 -500] ") +
                       entries.descendant + " >>")
        .Object(7, std::string("<< /FontName /Made ") + entries.descriptor + " >>")
        .Stream(8,
                TEST::MakeSfnt(TEST::MadeTables({"", TriangleGlyph(100), TriangleGlyph(200), ""})))
        .Stream(9, "2 beginbfchar <0001> <0041> <0002> <0042> endbfchar")
        .Object(10, font)
        .Stream(11, std::string("\0\0\0\2\0\1", 6))
        .Stream(12, kMixedCMap);
    return pdf;
}

/// Calls with small bytes as digits.
std::string Legible(std::string calls) {
    for (char& byte : calls) {
        byte = byte >= 0 && byte < '\n' ? static_cast<char>('0' + byte) : byte;
    }
    return calls;
}

struct ShowCase {
    const char* name;
    const char* content;
    const char* calls;
    Entries entries;
    const char* warnings = "";
};

class CompositeText : public testing::TestWithParam<ShowCase> {};

TEST_P(CompositeText, BecomesCalls) {
    PdfPlay play(CompositePage(GetParam().content, GetParam().entries));
    std::string calls = Legible(play.Content());
    for (std::size_t font = calls.find("font "); font != std::string::npos;
         font = calls.find("font ")) {
        calls.erase(font, calls.find('\n', font) + 1 - font);
    }
    EXPECT_EQ(calls, GetParam().calls);
    EXPECT_EQ(play.Warnings(), GetParam().warnings);
}

// Characters are numbered in the order of codes: here 0001 is 0, 0002 is 1.
INSTANTIATE_TEST_SUITE_P(
    Horizontal, CompositeText,
    testing::Values(
        ShowCase{"CodesOfTwoBytes",
                 "BT /F 10 Tf <0001> Tj 0 5 Td <0001> Tj ET",
                 "text\nat 0 0\nshow0 (00)\nat 0 5\nshow0 (00)\nendtext\n",
                 {}},
        ShowCase{"WidthsOfTheDocument",
                 "BT /F 10 Tf 1 Tc <00020002> Tj <0001> Tj ET",
                 "text\nat 0 0\nshow0 (0101) char 1\nat 22 0\nshow0 (00)\nendtext\n",
                 {}},
        ShowCase{"CodesOfTwoBytesHaveNoWordSpacing",
                 "BT /F 10 Tf 7 Tw <00200001> Tj <0001> Tj ET",
                 "text\nat 0 0\nshow0 (0100)\nat 10 0\nshow0 (00)\nendtext\n",
                 {}},
        ShowCase{
            "SpaceOfOneByteHas",
            "BT /F 10 Tf 50 Tz 4 Tw <20810021> Tj <22> Tj ET",
            "text\nat 0 0\nshow0 (00)\nat 4.5 0\nshow0 (0101)\nat 9.5 0\nshow0 (02)\nendtext\n",
            {.encoding = "12 0 R"}},
        ShowCase{"AdjustmentsPartStrings",
                 "BT /F 10 Tf [<0001> -1000 <00> <01>] TJ ET",
                 "text\nat 0 0\nshow0 (00)\nat 15 0\nshow0 (00)\nendtext\n",
                 {}}),
    [](const auto& param) { return std::string(param.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Vertical, CompositeText,
    testing::Values(ShowCase{"LinesRunDown",
                             "BT /F 10 Tf 50 Tz -1 Tc <00010002> Tj <0001> Tj ET",
                             "text\nat 0 0\nshow0 (0001) char -1\nat 0 -12\nshow0 (00)\nendtext\n",
                             {.encoding = "/Identity-V"}},
                    ShowCase{"AdjustmentsAreVertical",
                             "BT /F 10 Tf [<0001> 500 <0001>] TJ ET",
                             "text\nat 0 0\nshow0 (00)\nat 0 -10\nshow0 (00)\nendtext\n",
                             {.encoding = "/Identity-V"}}),
    [](const auto& param) { return std::string(param.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Damaged, CompositeText,
    testing::Values(
        ShowCase{
            "NoCMap", "BT /F 10 Tf <0001> Tj ET", "", {.encoding = "/Nobodys"}, "font-composite "},
        ShowCase{"ProgramThatIsNone",
                 "BT /F 10 Tf <0001> Tj ET",
                 "text\nat 0 0\nshow0 (00)\nendtext\n",
                 {.descriptor = "/FontFile2 9 0 R"},
                 "font-damaged "},
        ShowCase{"GlyphsThatAreNotThere",
                 "BT /F 10 Tf <FFFE> Tj <0001> Tj ET",
                 "text\nat 0 0\nshow0 (01)\nat 5 0\nshow0 (00)\nendtext\n",
                 {}}),
    [](const auto& param) { return std::string(param.param.name); });

/// The fonts of a page.
struct PageFonts {
    explicit PageFonts(const PdfText& pdf, PDF::FontOptions options = {})
        : file(pdf.Bytes()), fonts(std::move(options), reporter) {
        PDF::OpenResult result = PDF::OpenResult::kOk;
        document = PDF::PdfDocument::Open(file.Path(), "", diagnostics, result, error);
        fonts.Collect(*document, 0);
        isFinished = fonts.Finish(error);
    }

    const PDF::Font* Find(int number) {
        return fonts.Find(document->Qpdf().getObjectByID(number, 0));
    }

    TemporaryFile file;
    PDF::Diagnostics diagnostics;
    PDF::Reporter reporter{diagnostics};
    std::unique_ptr<PDF::PdfDocument> document;
    PDF::Fonts fonts;
    std::string error;
    bool isFinished = false;
};

/// What codes of a font become in PostScript, as numbers.
std::string Written(const PDF::Font& font, std::string_view codes) {
    std::string text;
    font.codes->Take(codes, text, false);
    std::vector<std::uint8_t> written(2 * text.size() + 16);
    std::int32_t count = 0;
    EXPECT_TRUE(font.handler->ReEncodeText(text.data(), static_cast<std::int32_t>(text.size()),
                                           written.data(), &count));
    std::string numbers;
    for (std::int32_t i = 0; i < count; ++i) {
        numbers += std::to_string(written[static_cast<std::size_t>(i)]) + ' ';
    }
    return numbers;
}

TEST(CompositeFonts, OnesOfAProgramAndModeShareAHandler) {
    const std::string content = "/F 9 Tf <0001> Tj /G 9 Tf <0002> Tj";
    PageFonts page(CompositePage(content, {.descendant = "/CIDToGIDMap 11 0 R"}));
    const PDF::Font* f = page.Find(5);
    const PDF::Font* g = page.Find(10);
    ASSERT_TRUE(f != nullptr && g != nullptr);
    EXPECT_EQ(f->handler.Get(), g->handler.Get());
    EXPECT_EQ(f->selector, g->selector);
    // CIDs 1 and 2 are glyphs 2 and 1 of the file, which keep their order.
    EXPECT_EQ(Written(*f, std::string_view("\0\1", 2)), "0 2 ");
    EXPECT_EQ(Written(*g, std::string_view("\0\2", 2)), "0 1 ");
    ASSERT_EQ(page.fonts.Records().size(), 1U);
    const PDF::FontRecord& record = page.fonts.Records()[0];
    EXPECT_EQ(record.kindOut, "CIDFontType2");
    EXPECT_EQ(record.source, "embedded");
    EXPECT_TRUE(record.isExtractable);
    EXPECT_GT(record.bytes, 0U);
}

TEST(CompositeFonts, CffProgramsAreReportedAsTheyCame) {
    const std::vector<std::uint8_t> bytes = TEST::MadeCff().Bytes();
    PdfText pdf = CompositePage("/F 9 Tf <0001> Tj", {.descriptor = "/FontFile3 13 0 R"});
    pdf.Stream(13, std::string(bytes.begin(), bytes.end()));
    PageFonts page(pdf);
    ASSERT_EQ(page.fonts.Records().size(), 1U);
    EXPECT_EQ(page.fonts.Records()[0].kindOut, "CIDFontType0");
    EXPECT_EQ(page.fonts.Records()[0].bytes, bytes.size());
}

TEST(CompositeFonts, ProgramsAreCutToWhatIsShown) {
    PageFonts page(CompositePage("/F 9 Tf <0002> Tj", {}));
    EXPECT_EQ(Written(*page.Find(5), std::string_view("\0\2", 2)), "0 1 ");
    EXPECT_EQ(page.Find(10), nullptr);
    // Glyphs 0 and 2 of the file, and a blank one that makes their number odd.
    EXPECT_EQ(page.Find(5)->handler->GetGlyphCount(), 3);
}

TEST(CompositeFonts, MissingOnesDoAsTheyAreTold) {
    const Entries entries{.descriptor = ""};
    const std::string content = "/F 9 Tf <00010002> Tj";
    PDF::FontOptions options;
    options.missing = PDF::MissingFonts::kResident;
    PageFonts resident(CompositePage(content, entries), options);
    const PDF::Font* font = resident.Find(5);
    ASSERT_NE(font, nullptr);
    EXPECT_TRUE(font->isResident);
    EXPECT_EQ(font->name, "Made");
    EXPECT_EQ(font->handler->GetCIDEncoding(), GRAPHICS::TEncoding::kIdentityH);
    EXPECT_EQ(Written(*font, std::string_view("\0\1\0\2", 4)), "0 1 0 2 ");

    options.missing = PDF::MissingFonts::kFail;
    PageFonts failed(CompositePage(content, entries), options);
    EXPECT_FALSE(failed.isFinished);

    PageFonts substituted(CompositePage(content, entries));
    ASSERT_NE(substituted.Find(5), nullptr);
    if (substituted.Find(5)->isResident) {
        GTEST_SKIP() << "no TrueType font is installed";
    }
    EXPECT_EQ(substituted.fonts.Records()[0].source, "substituted");
    EXPECT_TRUE(substituted.Find(5)->composite->HasOutline(0));
}

TEST(CompositeFonts, ResidentOnesKeepTheCodesOfTheirCMap) {
    PDF::FontOptions options;
    options.missing = PDF::MissingFonts::kResident;
    PageFonts page(
        CompositePage("/F 9 Tf <418141> Tj", {.encoding = "/90ms-RKSJ-H", .descriptor = ""}),
        options);
    const PDF::Font* font = page.Find(5);
    if (font == nullptr) {
        GTEST_SKIP() << "no CMaps are installed";
    }
    EXPECT_EQ(static_cast<int>(font->handler->GetCIDEncoding()), 47);
    EXPECT_EQ(Written(*font, "A\x81\x41"), "65 129 65 ");
}

}  // namespace
}  // namespace VANTIX::TESTS
