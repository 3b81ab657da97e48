// SPDX-License-Identifier: MIT
#include "pdf/pdfdocument.h"

#include <gtest/gtest.h>

#include <qpdf/QPDFWriter.hh>
#include <string>

#include "support/pdftext.h"

namespace VANTIX::TESTS {
namespace {

using PDF::OpenResult;
using PDF::PageBox;
using PDF::PdfDocument;

class Opened {
    TemporaryFile mFile;

public:
    PDF::Diagnostics diagnostics;
    OpenResult result = OpenResult::kOk;
    std::string error;
    std::unique_ptr<PdfDocument> document;

    explicit Opened(const std::string& bytes, const std::string& password = "")
        : mFile(bytes),
          document(PdfDocument::Open(mFile.Path(), password, diagnostics, result, error)) {}
};

TEST(PdfDocument, WhatIsNoPdfIsToldApart) {
    EXPECT_EQ(Opened("").result, OpenResult::kNotPdf);
    EXPECT_EQ(Opened("Dear reader, this is a letter.").result, OpenResult::kNotPdf);
    EXPECT_EQ(Opened("%PDF-1.4\n1 0 obj\n<< /Type /Catalog >>\nendobj\ntrailer\n<< /Root 1 0 R >>")
                  .result,
              OpenResult::kNotPdf);
    PDF::Diagnostics diagnostics;
    OpenResult result = OpenResult::kOk;
    std::string error;
    EXPECT_EQ(PdfDocument::Open("/nowhere/at all.pdf", "", diagnostics, result, error), nullptr);
    EXPECT_EQ(result, OpenResult::kUnreadable);
    EXPECT_FALSE(error.empty());
    EXPECT_EQ(PdfDocument::Open("/", "", diagnostics, result, error), nullptr);
    EXPECT_EQ(result, OpenResult::kUnreadable);
}

TEST(PdfDocument, EncryptedFilesOpenWithTheirPasswordAlone) {
    QPDF source;
    const std::string plain = PdfText::OnePage("0 g").Bytes();
    source.processMemoryFile("plain", plain.data(), plain.size());
    QPDFWriter writer(source);
    writer.setOutputMemory();
    writer.setR6EncryptionParameters("secret", "owner", true, true, true, true, true, true,
                                     qpdf_r3p_full, true);
    writer.write();
    const std::shared_ptr<Buffer> buffer = writer.getBufferSharedPointer();
    const std::string bytes(reinterpret_cast<const char*>(buffer->getBuffer()), buffer->getSize());
    EXPECT_EQ(Opened(bytes).result, OpenResult::kWrongPassword);
    EXPECT_EQ(Opened(bytes, "guess").result, OpenResult::kWrongPassword);
    EXPECT_EQ(Opened(bytes, "secret").result, OpenResult::kOk);
    EXPECT_EQ(Opened(bytes, "owner").result, OpenResult::kOk);
}

TEST(PdfDocument, FileWithoutCrossReferencesIsRecovered) {
    std::string bytes = PdfText::OnePage("0 g").Bytes();
    bytes.resize(bytes.find("xref"));
    bytes += "trailer\n<< /Root 1 0 R >>\n";
    const Opened opened(bytes);
    ASSERT_EQ(opened.result, OpenResult::kOk);
    EXPECT_EQ(opened.document->PageCount(), 1);
    ASSERT_EQ(opened.diagnostics.Warnings().size(), 1U);
    EXPECT_EQ(opened.diagnostics.Warnings().front().kind, "damaged");
}

TEST(PdfDocument, PageTreesOfAnyShapeEnd) {
    PdfText loop = PdfText::OnePage("");
    loop.Object(2, "<< /Kids [2 0 R 5 0 R 3 0 R null 99 0 R (x)] >>")
        .Object(5, "<< /Type /Pages /Kids [2 0 R 3 0 R] >>");
    EXPECT_EQ(Opened(loop.Bytes()).document->PageCount(), 2);
    PdfText lost = PdfText::OnePage("");
    lost.Object(1, "<< /Type /Catalog >>");
    EXPECT_EQ(Opened(lost.Bytes()).document->PageCount(), 1);
    PdfText deep = PdfText::OnePage("");
    constexpr int kDepth = 5000;
    for (int i = 0; i < kDepth; ++i) {
        deep.Object(10 + i, "<< /Type /Pages /Kids [" + std::to_string(11 + i) + " 0 R] >>");
    }
    deep.Object(2, "<< /Kids [10 0 R] /Rotate 90 >>")
        .Object(10 + kDepth, "<< /Type /Page /MediaBox [0 0 10 20] >>");
    const Opened opened(deep.Bytes());
    EXPECT_EQ(opened.document->Geometry(0, PageBox::kMedia).width, 20);
}

struct GeometryCase {
    const char* name;
    const char* page;
    PageBox box;
    std::array<float, 2> size;
    std::array<float, 6> matrix;
};

class PageGeometry : public testing::TestWithParam<GeometryCase> {};

TEST_P(PageGeometry, FollowsBoxRotationAndUnit) {
    const GeometryCase& c = GetParam();
    PdfText pdf = PdfText::OnePage("");
    pdf.Object(2, "<< /Type /Pages /Kids [3 0 R] /Count 1 /MediaBox [110 220 10 20] >>")
        .Object(3, "<< /Type /Page /Parent 2 0 R " + std::string(c.page) + " >>");
    const PDF::PageGeometry geometry = Opened(pdf.Bytes()).document->Geometry(0, c.box);
    EXPECT_EQ(geometry.width, c.size[0]);
    EXPECT_EQ(geometry.height, c.size[1]);
    EXPECT_EQ(geometry.matrix, c.matrix);
    EXPECT_EQ(geometry.label, "1");
}

INSTANTIATE_TEST_SUITE_P(
    All, PageGeometry,
    testing::Values(
        GeometryCase{"InheritedBox", "", PageBox::kCrop, {100, 200}, {1, 0, 0, 1, -10, -20}},
        GeometryCase{"CropWithinMedia",
                     "/CropBox [60 0 999 120]",
                     PageBox::kCrop,
                     {50, 100},
                     {1, 0, 0, 1, -60, -20}},
        GeometryCase{"MediaIgnoresCrop",
                     "/CropBox [60 0 999 120]",
                     PageBox::kMedia,
                     {100, 200},
                     {1, 0, 0, 1, -10, -20}},
        GeometryCase{"TrimFallsBackToCrop",
                     "/CropBox [60 0 999 120] /TrimBox [5 5 5 5]",
                     PageBox::kTrim,
                     {50, 100},
                     {1, 0, 0, 1, -60, -20}},
        GeometryCase{"BleedBox",
                     "/BleedBox [20 20 30 60] /TrimBox [0 0 1 1]",
                     PageBox::kBleed,
                     {10, 40},
                     {1, 0, 0, 1, -20, -20}},
        GeometryCase{"Rotate90", "/Rotate 90", PageBox::kCrop, {200, 100}, {0, -1, 1, 0, -20, 110}},
        GeometryCase{
            "Rotate180", "/Rotate -180", PageBox::kCrop, {100, 200}, {-1, 0, 0, -1, 110, 220}},
        GeometryCase{
            "Rotate270", "/Rotate -90", PageBox::kCrop, {200, 100}, {0, 1, -1, 0, 220, -10}},
        GeometryCase{"UserUnit", "/UserUnit 2", PageBox::kCrop, {200, 400}, {2, 0, 0, 2, -20, -40}},
        GeometryCase{
            "BadUnit", "/UserUnit 1e12", PageBox::kCrop, {100, 200}, {1, 0, 0, 1, -10, -20}},
        GeometryCase{"UselessBoxIsLetter",
                     "/MediaBox [0 0 0 5]",
                     PageBox::kCrop,
                     {612, 792},
                     {1, 0, 0, 1, 0, 0}}),
    [](const auto& param) { return std::string(param.param.name); });

TEST(PdfDocument, PageLabelsAreSpelt) {
    PdfText pdf = PdfText::OnePage("");
    pdf.Object(1,
               "<< /Type /Catalog /Pages 2 0 R /PageLabels << /Nums [0 << /S /r /St 4 >> "
               "1 << /S /A /St 28 /P (App-) >> 2 << /P (Cover) >> 3 << /S /D /St 7 >> ] >> >>")
        .Object(2, "<< /Type /Pages /Count 5 /Kids [3 0 R 3 0 R 3 0 R 3 0 R 3 0 R] >>");
    const Opened opened(pdf.Bytes());
    std::string labels;
    for (int i = 0; i < opened.document->PageCount(); ++i) {
        labels += opened.document->Geometry(i, PageBox::kCrop).label + " ";
    }
    EXPECT_EQ(labels, "iv App-BB Cover 7 8 ");
}

TEST(PdfDocument, InformationAndOutputIntent) {
    PdfText pdf = PdfText::OnePage("");
    pdf.Object(1,
               "<< /Type /Catalog /Pages 2 0 R /OutputIntents [ << >> << /DestOutputProfile 6 0 R "
               ">> ] >>")
        .Object(5, R"(<< /Title (\376\377\000T\040\254) /Creator 7 >>)")
        .Stream(6, "profile", "/N 4")
        .Trailer("/Info 5 0 R");
    const Opened opened(pdf.Bytes());
    EXPECT_EQ(opened.document->Title(), "T\xE2\x82\xAC");
    EXPECT_EQ(opened.document->Creator(), "");
    EXPECT_EQ(opened.document->OutputIntentProfile(4).size(), 7U);
    EXPECT_TRUE(opened.document->OutputIntentProfile(3).empty());
}

}  // namespace
}  // namespace VANTIX::TESTS
