// SPDX-License-Identifier: MIT
#include "pdf/fonts/fonts.h"

#include <gmock/gmock.h>

#include <ostream>

#include "host/fonts/fontfinder.h"
#include "support/pdftext.h"

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
    explicit PageFonts(PdfText pdf, const FontOptions& options = {})
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
    EXPECT_EQ(font->handler->Description().encoding[0xE4], GetParam().glyph);
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
    EXPECT_FLOAT_EQ(font->handler->WidthAt(65), 0.5F);
    EXPECT_FLOAT_EQ(font->handler->WidthAt(66), 0.25F);
    EXPECT_FLOAT_EQ(font->handler->WrittenWidthAt(66), 0.667F);
    EXPECT_FLOAT_EQ(page.Find(21)->handler->WidthAt(65), 0.667F);
}

TEST(Fonts, KindsThatAreNotShownAreNamedOnce) {
    PageFonts page(Page("<< /Subtype /Type0 >>", "<< /Subtype /Type3 >>"));
    EXPECT_EQ(page.Find(20), nullptr);
    EXPECT_EQ(page.Find(21), nullptr);
    EXPECT_EQ(page.Find(20), nullptr);
    EXPECT_EQ(page.Warnings(), "font-composite font-type3 ");
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
    EXPECT_EQ(page.Find(20)->handler->Description().encoding[66], "Beta");
    EXPECT_EQ(page.Find(21)->handler->Description().encoding[66], "a29");
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
    EXPECT_EQ(f->handler->Description().encoding[65], "A");
    EXPECT_EQ(f->handler->Description().encoding[67], "");
    EXPECT_EQ(g->handler->Description().encoding[65], "adieresis");
    EXPECT_TRUE(f->HasOutline(65));
    const FontRecord& record = page.fonts.Records().at(0);
    EXPECT_EQ(record.source, "embedded");
    EXPECT_TRUE(record.isExtractable);
    EXPECT_GT(record.bytes, 0U);
    EXPECT_EQ(page.Warnings(), "");
}

TEST(Fonts, BrokenProgramFallsBackWithAWarning) {
    for (const char* bytes : {"", "%!PS-AdobeFont-1.0: X", "\1", "true", "OTTO"}) {
        PdfText pdf = EmbeddingPage("Helvetica");
        pdf.Stream(24, bytes);
        PageFonts page(pdf);
        ASSERT_NE(page.Find(20), nullptr) << bytes;
        EXPECT_EQ(page.Find(20)->name, "Helvetica") << bytes;
        EXPECT_EQ(page.Warnings(), bytes[0] == 'O' ? "font-cff " : "font-damaged ") << bytes;
    }
}

}  // namespace
}  // namespace VANTIX::TESTS
