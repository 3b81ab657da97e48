// SPDX-License-Identifier: MIT
#include "pdf/fonts/textscanner.h"

#include <gtest/gtest.h>

#include <ostream>

#include "pdf/pdfdocument.h"
#include "support/pdftext.h"

namespace VANTIX::TESTS {
namespace {

/// The codes that a page shows in fonts 20 and 21, as in "AB|C".
std::string Shown(const std::string& content) {
    PdfText pdf = PdfText::OnePage(
        content,
        "/Font << /F 20 0 R /G 21 0 R >> /XObject << /Plain 5 0 R /Own 6 0 R /Loop 7 0 R >> "
        "/Pattern << /P 8 0 R >> /ExtGState << /S << /Font [21 0 R 9] /SMask << /G 9 0 R >> >> >>");
    pdf.Stream(5, "(p) Tj", "/Subtype /Form")
        .Stream(6, "/X 1 Tf (o) Tj", "/Subtype /Form /Resources << /Font << /X 21 0 R >> >>")
        .Stream(7, "/F 1 Tf (l) Tj /Loop Do", "/Subtype /Form")
        .Stream(8, "/X 1 Tf (c) Tj", "/PatternType 1 /Resources << /Font << /X 20 0 R >> >>")
        .Stream(9, "/G 1 Tf (m) Tj", "/Subtype /Form")
        .Object(20, "<< /Type /Font /Subtype /Type1 >>")
        .Object(21, "<< /Type /Font /Subtype /Type1 >>");
    const TemporaryFile file(pdf.Bytes());
    PDF::Diagnostics diagnostics;
    PDF::OpenResult result = PDF::OpenResult::kOk;
    std::string error;
    const auto document = PDF::PdfDocument::Open(file.Path(), "", diagnostics, result, error);
    PDF::TextScanner scanner;
    scanner.ScanPage(document->Attribute(0, "/Contents"), document->Attribute(0, "/Resources"));
    EXPECT_TRUE(scanner.IsComplete());
    std::string text;
    for (const char* key : {"20 0", "21 0"}) {
        text += text.empty() && key[1] == '0' ? "" : "|";
        const auto found = scanner.Shown().find(key);
        for (std::size_t code = 0; found != scanner.Shown().end() && code < 256; ++code) {
            text += found->second.Simple()[code] ? std::string(1, static_cast<char>(code)) : "";
        }
    }
    return text;
}

struct ScanCase {
    const char* content;
    const char* shown;
};

void PrintTo(const ScanCase& value, std::ostream* out) {
    *out << value.content;
}

class TextScan : public testing::TestWithParam<ScanCase> {};

TEST_P(TextScan, FindsTheCodesOfEachFont) {
    EXPECT_EQ(Shown(GetParam().content), GetParam().shown);
}

INSTANTIATE_TEST_SUITE_P(
    Content, TextScan,
    testing::Values(ScanCase{"/F 1 Tf (A\\102) Tj <43> ' 0 0 (D) \" [(E) 5 <4647>] TJ", "ABCDEFG|"},
                    ScanCase{"(A) Tj /F 1 Tf q /G 1 Tf (B) Tj Q (C) Tj Q (D) Tj", "CD|B"},
                    ScanCase{"/F 1 Tf (A) Tj /None 1 Tf (B) Tj", "A|"},
                    ScanCase{"/S gs (A) Tj", "|Am"},
                    ScanCase{"/F 1 Tf /Plain Do /G 1 Tf /Plain Do /Plain Do", "p|p"},
                    ScanCase{"/F 1 Tf /Own Do (A) Tj", "A|o"}, ScanCase{"/Loop Do", "l|"},
                    ScanCase{"/Pattern cs /P scn", "c|"},
                    ScanCase{"BI /W 1 /H 1 ID ((( EI /G 1 Tf (A) Tj", "|A"}));

TEST(TextScan, OperatorsGoOnAcrossWindows) {
    EXPECT_EQ(Shown("/F 1 Tf " + std::string(700000, ' ') + "(A" + std::string(600000, 'B') +
                    "C) Tj /G 1 Tf (D) Tj"),
              "ABC|D");
}

}  // namespace
}  // namespace VANTIX::TESTS
