// SPDX-License-Identifier: MIT
#include "pdf/fonts/fonts.h"

#include <gmock/gmock.h>

#include <ostream>

#include "host/fonts/fontfinder.h"
#include "support/pdftext.h"
#include "unit/host/madecff.h"

namespace VANTIX::TESTS {
namespace {

using namespace PDF;

/// The fonts of a page that shows (AB) in each of its fonts: F, G and H are objects 20 to 22.
class PageFonts {
    TemporaryFile mFile;
    Diagnostics mDiagnostics;
    Reporter mReporter{mDiagnostics};
    std::unique_ptr<PdfDocument> mDocument;

public:
    explicit PageFonts(const PdfText& pdf, const FontOptions& options = {})
        : mFile(pdf.Bytes()), fonts(options, mReporter) {
        OpenResult result = OpenResult::kOk;
        mDocument = PdfDocument::Open(mFile.Path(), "", mDiagnostics, result, error);
        fonts.Collect(*mDocument, 0);
        finished = fonts.Finish(error);
    }

    const Font* Find(int number) { return fonts.Find(mDocument->Qpdf().getObjectByID(number, 0)); }

    [[nodiscard]] std::string Warnings() const {
        std::string kinds;
        for (const auto& warning : mDiagnostics.Warnings()) {
            kinds += warning.kind + ' ';
        }
        return kinds;
    }

    Fonts fonts;
    std::string error;
    bool finished = false;
};

PdfText Page(const std::string& fontF, const std::string& fontG = "null") {
    PdfText pdf =
        PdfText::OnePage("/F 9 Tf (AB) Tj /G 9 Tf (AB) Tj", "/Font << /F 20 0 R /G 21 0 R >>");
    pdf.Object(20, fontF).Object(21, fontG);
    return pdf;
}

struct ResidentCase {
    const char* font;
    const char* name;
    const char* glyph;  // at code 0xE4
    std::int32_t differences;
};

void PrintTo(const ResidentCase& value, std::ostream* out) {
    *out << value.font;
}

class ResidentFont : public testing::TestWithParam<ResidentCase> {};

TEST_P(ResidentFont, IsLeftToTheInterpreter) {
    PageFonts page(Page(GetParam().font));
    const Font* font = page.Find(20);
    ASSERT_NE(font, nullptr);
    EXPECT_TRUE(font->isResident);
    EXPECT_EQ(font->name, GetParam().name);
    EXPECT_EQ(font->simple->Description().encoding[0xE4], GetParam().glyph);
    std::int32_t count = 0;
    font->handler->GetEncodingDifferences(count);
    EXPECT_EQ(count > 0 ? 1 : 0, GetParam().differences);
    EXPECT_EQ(page.Warnings(), "");
    EXPECT_EQ(page.fonts.Records().at(0).source, "resident");
}

INSTANTIATE_TEST_SUITE_P(
    Standard, ResidentFont,
    testing::Values(
        ResidentCase{"<< /Subtype /Type1 /BaseFont /Helvetica >>", "Helvetica", "", 0},
        ResidentCase{"<< /Subtype /Type1 /BaseFont /Helvetica /Encoding /WinAnsiEncoding >>",
                     "Helvetica", "adieresis", 1},
        ResidentCase{"<< /Subtype /Type1 /BaseFont /Helvetica /Encoding /StandardEncoding >>",
                     "Helvetica", "", 0},
        ResidentCase{"<< /Subtype /TrueType /BaseFont /Arial,Bold /Encoding /MacRomanEncoding >>",
                     "Helvetica-Bold", "perthousand", 1},
        ResidentCase{"<< /Subtype /Type1 /BaseFont /Symbol >>", "Symbol", "trademarksans", 0}));

TEST(Fonts, EqualDictionariesShareAFont) {
    const std::string font = "<< /Subtype /Type1 /BaseFont /Courier /Widths [600] /FirstChar ";
    PageFonts same(Page(font + "65 >>", font + "65 /LastChar 65 >>"));
    EXPECT_EQ(same.Find(20)->handler.Get(), same.Find(21)->handler.Get());
    EXPECT_EQ(same.fonts.Records().size(), 1U);
    PageFonts other(Page(font + "65 >>", font + "66 >>"));
    EXPECT_NE(other.Find(20)->selector, other.Find(21)->selector);
    EXPECT_NE(other.fonts.Broker().FindFont("", other.Find(21)->selector, 0), nullptr);
}

TEST(Fonts, WidthsOfTheDocumentComeFirst) {
    PageFonts page(
        Page("<< /Subtype /Type1 /BaseFont /Helvetica /FirstChar 65 /LastChar 66 "
             "/Widths [500 null] /FontDescriptor << /MissingWidth 250 >> >>",
             "<< /Subtype /Type1 /BaseFont /Helvetica /FirstChar -3 /Widths [1 2 3 4] >>"));
    const Font* font = page.Find(20);
    EXPECT_FLOAT_EQ(font->simple->WidthAt(65), 0.5F);
    EXPECT_FLOAT_EQ(font->simple->WidthAt(66), 0.25F);
    EXPECT_FLOAT_EQ(font->simple->WrittenWidthAt(66), 0.667F);
    EXPECT_FLOAT_EQ(page.Find(21)->simple->WidthAt(65), 0.667F);
}

TEST(Fonts, KindsThatAreNotShownAreNamedOnce) {
    PageFonts page(Page("<< /Subtype /Type0 >>", "<< /Subtype /Type3 >>"));
    EXPECT_EQ(page.Find(20), nullptr);
    EXPECT_EQ(page.Find(21), nullptr);
    EXPECT_EQ(page.Find(20), nullptr);
    EXPECT_EQ(page.Warnings(), "font-type3 font-composite ");
}

TEST(Fonts, MissingOnesDoAsTheyAreTold) {
    const std::string font = "<< /Subtype /Type1 /BaseFont /ABCDEF+Nobodys >>";
    FontOptions options;
    options.missing = MissingFonts::kFail;
    PageFonts failed(Page(font), options);
    EXPECT_FALSE(failed.finished);
    EXPECT_THAT(failed.error, testing::HasSubstr("Nobodys"));

    options.missing = MissingFonts::kResident;
    PageFonts resident(Page(font), options);
    EXPECT_EQ(resident.Find(20)->name, "Nobodys");
    EXPECT_EQ(resident.Warnings(), "font-missing ");

    options.missing = MissingFonts::kSubstitute;
    PageFonts substituted(Page(font), options);
    EXPECT_NE(substituted.Find(20), nullptr);
    EXPECT_EQ(substituted.Warnings(), "font-missing ");

    options.files["Nobodys"] = "/nowhere/at.all";
    EXPECT_FALSE(PageFonts(Page(font), options).finished);
}

TEST(Fonts, StandardOnesKeepTheirEncodingWhenTheyAreEmbedded) {
    FontOptions options;
    options.embedStandardFonts = true;
    PageFonts page(Page("<< /Subtype /Type1 /BaseFont /Symbol >>",
                        "<< /Subtype /Type1 /BaseFont /ZapfDingbats >>"),
                   options);
    EXPECT_FALSE(page.Find(20)->isResident);
    EXPECT_EQ(page.Find(20)->simple->Description().encoding[66], "Beta");
    EXPECT_EQ(page.Find(21)->simple->Description().encoding[66], "a29");
    EXPECT_EQ(page.Warnings(), "");
}

/// A page whose fonts F and G have one program, that of an installed font.
PdfText EmbeddingPage(const std::string& name) {
    const auto found = HOST::FindInstalledFont({name, false, false, false, false, false});
    PdfText pdf = Page("<< /Subtype /Type1 /BaseFont /" + name + " /FontDescriptor 23 0 R >>",
                       "<< /Subtype /Type1 /BaseFont /" + name +
                           " /FontDescriptor 23 0 R "
                           "/Encoding << /Differences [65 /adieresis] >> >>");
    const std::string bytes = found ? std::string(found->bytes.begin(), found->bytes.end()) : "";
    pdf.Object(23, "<< /FontFile 24 0 R >>").Stream(24, bytes);
    return pdf;
}

TEST(Fonts, ProgramIsSharedRenamedAndCutToWhatIsShown) {
    PageFonts page(EmbeddingPage("Helvetica"));
    const Font* f = page.Find(20);
    const Font* g = page.Find(21);
    ASSERT_TRUE(f != nullptr && g != nullptr);
    EXPECT_EQ(f->program, g->program);
    EXPECT_EQ(f->name, g->name);
    EXPECT_THAT(f->name, testing::MatchesRegex("[A-Z]{6}\\+Helvetica"));
    EXPECT_EQ(f->simple->Description().encoding[65], "A");
    EXPECT_EQ(f->simple->Description().encoding[67], "");
    EXPECT_EQ(g->simple->Description().encoding[65], "adieresis");
    EXPECT_TRUE(f->HasOutline(65));
    const FontRecord& record = page.fonts.Records().at(0);
    EXPECT_EQ(record.source, "embedded");
    EXPECT_TRUE(record.isExtractable);
    EXPECT_GT(record.bytes, 0U);
    EXPECT_EQ(page.Warnings(), "");
}

struct CffCase {
    const char* name;
    std::int32_t level;
    bool textOnly;
    void (*change)(TEST::MadeCff&);
    const char* kindOut;
    const char* warnings = "";
    const char* glyph = "A";  ///< at code 65
};

void PrintTo(const CffCase& value, std::ostream* out) {
    *out << value.name;
}

class CffFonts : public testing::TestWithParam<CffCase> {};

TEST_P(CffFonts, GoOutAsTheOutputAllows) {
    const CffCase& each = GetParam();
    TEST::MadeCff made;
    each.change(made);
    const std::vector<std::uint8_t> bytes = made.Bytes();
    PdfText pdf = Page("<< /Subtype /Type1 /BaseFont /Made /FontDescriptor 23 0 R >>");
    pdf.Object(23, "<< /FontFile3 24 0 R >>").Stream(24, std::string(bytes.begin(), bytes.end()));
    FontOptions options;
    options.languageLevel = each.level;
    options.textOnly = each.textOnly;
    PageFonts page(pdf, options);
    const Font* font = page.Find(20);
    ASSERT_NE(font, nullptr);
    const FontRecord& record = page.fonts.Records().at(0);
    EXPECT_EQ(record.source + " " + record.kindOut, each.kindOut);
    EXPECT_EQ(page.Warnings(), each.warnings);
    if (record.source == "embedded") {
        EXPECT_THAT(font->name, testing::MatchesRegex("[A-Z]{6}\\+Made"));
        EXPECT_EQ(font->simple->Description().encoding[65], each.glyph);
        EXPECT_FLOAT_EQ(font->simple->WidthAt(66), 0.7F);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, CffFonts,
    testing::Values(CffCase{"Text", 3, true, [](TEST::MadeCff&) {}, "embedded Type1"},
                    CffCase{"Binary", 3, false, [](TEST::MadeCff&) {}, "embedded FontSet"},
                    CffCase{"Level2", 2, true, [](TEST::MadeCff&) {}, "embedded Type1"},
                    CffCase{"Damaged", 3, false,
                            [](TEST::MadeCff& made) { made.glyphs[3].code = "\x0A"; },
                            "embedded Type1"},
                    CffCase{"CidKeyed", 3, false,
                            [](TEST::MadeCff& made) {
                                made.isCidKeyed = true;
                                made.fontDicts = {""};
                                made.selection = std::string(100, '\0');
                                made.glyphs.resize(67, {7, TEST::Type2({200, TEST::kT2End})});
                            },
                            "embedded Type1", "", "g65"},
                    CffCase{"CutShort", 3, false, [](TEST::MadeCff& made) { made.cutAt = 100; },
                            "substituted Type1", "font-damaged font-missing "}),
    [](const auto& each) { return std::string(each.param.name); });

TEST(Fonts, InvisibleTextAloneBringsNoFont) {
    for (const bool keeps : {false, true}) {
        PdfText pdf = EmbeddingPage("Helvetica");
        pdf.Stream(4, "q 3 Tr /F 9 Tf (AB) Tj Q q 3.5 Tr /G 9 Tf (A) Tj 1 Tr (A) Tj Q");
        FontOptions options;
        options.keepsHiddenText = keeps;
        PageFonts page(pdf, options);
        const Font* f = page.Find(20);
        ASSERT_NE(f, nullptr);
        EXPECT_GT(f->handler->AdvanceAt(65), 0.5F);
        EXPECT_EQ(f->isInJob, keeps);
        EXPECT_EQ(page.fonts.Broker().FindFont("", f->selector, 0) != nullptr, keeps);
        EXPECT_TRUE(page.Find(21)->isInJob);
        EXPECT_EQ(page.fonts.Records().size(), keeps ? 2U : 1U);
    }
}

TEST(Fonts, BrokenProgramFallsBackWithAWarning) {
    for (const char* bytes : {"", "%!PS-AdobeFont-1.0: X", "\1", "true", "OTTO"}) {
        PdfText pdf = EmbeddingPage("Helvetica");
        pdf.Stream(24, bytes);
        PageFonts page(pdf);
        ASSERT_NE(page.Find(20), nullptr) << bytes;
        EXPECT_EQ(page.Find(20)->name, "Helvetica") << bytes;
        EXPECT_EQ(page.Warnings(), "font-damaged ") << bytes;
    }
}

}  // namespace
}  // namespace VANTIX::TESTS
