// SPDX-License-Identifier: MIT
#include "pdf/shadings.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "unit/pdf/pdfplay.h"

namespace VANTIX::TESTS {
namespace {

struct Case {
    const char* name;
    const char* entries;  ///< of object 10, the shading
    const char* data;     ///< of the mesh, in hexadecimal; null: object 10 is a dictionary
    const char* calls;
    const char* warnings = "";
};

// Functions 20 to 27 serve the shadings of all cases.
PdfText Document(const char* entries, const char* data, const char* content = "/S sh") {
    PdfText pdf = PdfText::OnePage(content, "/Shading << /S 10 0 R >>");
    pdf.Object(20, "<< /FunctionType 2 /Domain [0 1] /N 1 /C0 [0] /C1 [1] >>")
        .Object(21, "<< /FunctionType 2 /Domain [0 1] /N 1 /C0 [1 0 0] /C1 [0 0 1] >>")
        .Object(22, "<< /FunctionType 2 /Domain [0 1] /N 1 /C0 [0 0 0 0] /C1 [0 1 1 0] >>")
        .Stream(23, "{ mul dup dup }", "/FunctionType 4 /Domain [0 1 0 1] /Range [0 1 0 1 0 1]")
        .Stream(24, "{ 1 exch sub }", "/FunctionType 4 /Domain [0 1] /Range [0 1]")
        .Object(25,
                "<< /FunctionType 3 /Domain [0 1] /Functions [20 0 R 24 0 R] "
                "/Bounds [0.5] /Encode [0 1 0 1] >>")
        .Object(26, "<< /FunctionType 2 /Domain [0 1] /N 1 /C0 [0 0] /C1 [1 0.5] >>")
        .Stream(27, "{ dup 0 exch }", "/FunctionType 4 /Domain [0 1 0 1] /Range [0 1 0 1 0 1 0 1]");
    if (data == nullptr) {
        pdf.Object(10, "<< " + std::string(entries) + " >>");
    } else {
        pdf.Stream(10, std::string(data) + '>', "/Filter /ASCIIHexDecode " + std::string(entries));
    }
    return pdf;
}

class ShadingsOfTypes : public testing::TestWithParam<Case> {};

TEST_P(ShadingsOfTypes, ReachTheConnectionSpace) {
    PdfPlay play(Document(GetParam().entries, GetParam().data));
    EXPECT_EQ(play.Content(), GetParam().calls);
    EXPECT_EQ(play.Warnings(), GetParam().warnings);
}

#define AXIS "/ShadingType 2 /Coords [10 0 90 0] "
#define RECT " rect 0 0 100 100\n"

INSTANTIATE_TEST_SUITE_P(
    Gradients, ShadingsOfTypes,
    testing::Values(
        Case{"Axial", AXIS "/ColorSpace /DeviceRGB /Function 21 0 R", nullptr,
             "shading axial rgb power coords 10 0 90 0 domain 0 1 extend 0 0" RECT},
        Case{"Radial",
             "/ShadingType 3 /ColorSpace /DeviceGray /Function 20 0 R /Coords [5 5 0 5 5 40] "
             "/Domain [0 0.5] /Extend [true false]",
             nullptr, "shading radial gray power coords 5 5 0 5 5 40 domain 0 0.5 extend 1 0" RECT},
        Case{"FunctionOfTwoInputs",
             "/ShadingType 1 /ColorSpace /DeviceRGB /Function 23 0 R /Matrix [90 0 0 90 5 5]",
             nullptr, "shading function rgb table64 domain 0 1 0 1 matrix 90 0 0 90 5 5" RECT},
        Case{"BoxIsTheRectangle",
             AXIS "/ColorSpace /DeviceGray /Function 20 0 R /BBox [50 60 20 10]", nullptr,
             "shading axial gray power box 20 10 50 60 coords 10 0 90 0 domain 0 1 extend 0 0 "
             "rect 20 10 30 50\n"},
        Case{"BackgroundOfInksIsComplemented",
             AXIS "/ColorSpace /DeviceCMYK /Function 22 0 R /Background [0 0.25 1 0]", nullptr,
             "shading axial cmyk power background 1 0.75 0 1 coords 10 0 90 0 domain 0 1 extend 0 "
             "0" RECT},
        Case{"ArraysAndPiecesAreMadeReady",
             AXIS "/ColorSpace /DeviceRGB /Function [20 0 R 24 0 R 25 0 R]", nullptr,
             "shading axial rgb [power,table256,(power,table256)] coords 10 0 90 0 domain 0 1 "
             "extend 0 0" RECT},
        Case{"ArrayOfOneIsTheFunction", AXIS "/ColorSpace /DeviceRGB /Function [21 0 R]", nullptr,
             "shading axial rgb power coords 10 0 90 0 domain 0 1 extend 0 0" RECT},
        Case{"SpotsAreUsed",
             AXIS "/ColorSpace [/Separation /Ink /DeviceCMYK 22 0 R] /Function 20 0 R", nullptr,
             "use 1\nshading axial #1 power coords 10 0 90 0 domain 0 1 extend 0 0" RECT}),
    [](const auto& param) { return std::string(param.param.name); });

#define BITS "/BitsPerFlag 8 /BitsPerCoordinate 8 /BitsPerComponent 8 "
#define GRAY "/ColorSpace /DeviceGray /Decode [0 100 0 100 0 1] "

INSTANTIATE_TEST_SUITE_P(
    Meshes, ShadingsOfTypes,
    testing::Values(
        Case{"Triangles", "/ShadingType 4 " BITS GRAY, "000000FF00FF00800000FF00",
             "shading triangles gray - mesh 8/8/8 decode 0 100 0 100 0 1 "
             "000000ff00ff00800000ff00" RECT},
        Case{
            "Lattice", "/ShadingType 5 /VerticesPerRow 2 " BITS GRAY, "000000FF008000FF80FFFFFF",
            "shading rows2 gray - mesh 8/8/8 decode 0 100 0 100 0 1 000000ff008000ff80ffffff" RECT},
        Case{"ParametersForAFunction",
             "/ShadingType 5 /VerticesPerRow 2 " BITS
             "/ColorSpace /DeviceRGB /Decode [0 9 0 9 0 1 7 7] /Function 21 0 R",
             "000000FF008000FF80FFFFFF",
             "shading rows2 rgb power mesh 8/8/8 decode 0 9 0 9 0 1 000000ff008000ff80ffffff" RECT},
        Case{"CutVertexIsDropped", "/ShadingType 4 " BITS GRAY, "000000FF00FF00800000FF0001FF",
             "shading triangles gray - mesh 8/8/8 decode 0 100 0 100 0 1 "
             "000000ff00ff00800000ff00" RECT,
             "shading "},
        Case{"Coons",
             "/ShadingType 6 /BitsPerFlag 2 /BitsPerCoordinate 1 /BitsPerComponent 1 " GRAY,
             "155AA5A5", "shading coons gray - mesh 2/1/1 decode 0 100 0 100 0 1 155aa5a5" RECT},
        Case{"Tensor",
             "/ShadingType 7 /BitsPerFlag 2 /BitsPerCoordinate 1 /BitsPerComponent 1 " GRAY,
             "155AA5A5C0",
             "shading tensor gray - mesh 2/1/1 decode 0 100 0 100 0 1 155aa5a5c0" RECT},
        Case{"PaletteEntriesBecomeColours",
             "/ShadingType 5 /VerticesPerRow 2 /BitsPerCoordinate 8 /BitsPerComponent 4 "
             "/ColorSpace [/Indexed /DeviceCMYK 1 <0000000001FF02FE>] /Decode [0 9 0 9 0 15]",
             "000000FF001000FF10FFFF00",
             "shading rows2 cmyk - mesh 0/8/8 decode 0 9 0 9 0 1 0 1 0 1 0 1 "
             "000000000000ff0001ff02fe00ff01ff02feffff00000000" RECT}),
    [](const auto& param) { return std::string(param.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Damage, ShadingsOfTypes,
    testing::Values(
        Case{"NoType", "/ColorSpace /DeviceGray /Function 20 0 R", nullptr, "", "shading "},
        Case{"NoFunction", AXIS "/ColorSpace /DeviceGray", nullptr, "", "shading "},
        Case{"TooFewOutputs", AXIS "/ColorSpace /DeviceRGB /Function 20 0 R", nullptr, "",
             "shading "},
        Case{"TooManyInputs", AXIS "/ColorSpace /DeviceRGB /Function 23 0 R", nullptr, "",
             "shading "},
        Case{"NoWidth", AXIS "/ColorSpace /DeviceGray /Function 20 0 R /Domain [1 1]", nullptr, "",
             "shading "},
        Case{"NoCoordinates", "/ShadingType 2 /ColorSpace /DeviceGray /Function 20 0 R", nullptr,
             "", "shading "},
        Case{"FlatMatrix",
             "/ShadingType 1 /ColorSpace /DeviceRGB /Function 23 0 R /Matrix [1 1 1 1 0 0]",
             nullptr, "", "shading "},
        Case{"PatternSpace", AXIS "/ColorSpace /Pattern /Function 20 0 R", nullptr, "", "shading "},
        Case{"PaletteUnderAFunction",
             AXIS "/ColorSpace [/Indexed /DeviceRGB 1 <000000FFFFFF>] /Function 20 0 R", nullptr,
             "", "shading "},
        Case{"ShortDecode",
             "/ShadingType 4 " BITS "/ColorSpace /DeviceRGB /Decode [0 1 0 1 0 1 0 1]",
             "000000000000", "", "shading "},
        Case{"OddBits",
             "/ShadingType 4 /BitsPerFlag 8 /BitsPerCoordinate 7 /BitsPerComponent 8 " GRAY,
             "000000000000", "", "shading "},
        Case{"NoTriangle", "/ShadingType 4 " BITS GRAY, "0000000000000000", "", "shading "},
        Case{"MeshInADictionary", "/ShadingType 4 " BITS GRAY, nullptr, "", "shading "}),
    [](const auto& param) { return std::string(param.param.name); });

TEST(Shadings, RestOfThePageStaysAndOneWarningNamesTheShading) {
    PdfPlay play(Document("/ShadingType 9", nullptr, "/S sh 2 w /S sh"));
    EXPECT_EQ(play.Content(), "width 2\n");
    ASSERT_EQ(play.diagnostics.Warnings().size(), 1U);
    EXPECT_NE(play.diagnostics.Warnings()[0].message.find("Shading 10 0"), std::string::npos);
}

TEST(Shadings, EachObjectHasOneNumber) {
    PdfText pdf = Document(AXIS "/ColorSpace /DeviceGray /Function 20 0 R", nullptr,
                           "/S sh /S sh /T sh /S sh");
    pdf.Object(3,
               "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 9 9] /Contents 4 0 R /Resources << "
               "/Shading << /S 10 0 R /T << /ShadingType 2 /Coords [0 0 9 9] /ColorSpace "
               "/DeviceRGB /Function 21 0 R >> >> >> >>");
    std::string starts;
    const std::string calls = PdfPlay(pdf).Content();
    for (std::size_t at = 0; at < calls.size(); at = calls.find('\n', at) + 1) {
        starts += calls.substr(at, calls.find(' ', at) - at) + ' ';
    }
    EXPECT_EQ(starts, "shading shading shading2 shading ");
}

TEST(Shadings, RectangleIsThePageInUserSpace) {
    PdfPlay play(Document(AXIS "/ColorSpace /DeviceGray /Function 20 0 R", nullptr,
                          "0.5 0 0 -0.5 10 20 cm /S sh"));
    const std::string calls = play.Content();
    EXPECT_NE(calls.find(" rect -20 -160 200 200\n"), std::string::npos) << calls;
}

TEST(Shadings, NothingIsFilledWhereNothingShows) {
    PdfText pdf = Document(AXIS "/ColorSpace /DeviceGray /Function 20 0 R", nullptr,
                           "/G gs /S sh q 0 0 0 0 0 0 cm /S sh Q");
    pdf.Object(3,
               "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 9 9] /Contents 4 0 R /Resources << "
               "/ExtGState << /G << /ca 0 >> >> /Shading << /S 10 0 R >> >> >>");
    EXPECT_EQ(PdfPlay(pdf).Content(), "save\nrestore\n");
}

TEST(Shadings, DefaultSpacesStandForDeviceSpaces) {
    PdfText pdf = Document(AXIS "/ColorSpace /DeviceGray /Function 20 0 R", nullptr);
    pdf.Object(3,
               "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 100 100] /Contents 4 0 R /Resources << "
               "/ColorSpace << /DefaultGray [/CalGray << /WhitePoint [0.9642 1 0.8249] >>] >> "
               "/Shading << /S 10 0 R >> >> >>");
    EXPECT_EQ(PdfPlay(pdf).Content(),
              "use 1\nshading axial #1 power coords 10 0 90 0 domain 0 1 extend 0 0" RECT);
}

// What becomes of a space that language level 2 does not have, for whoever rasterises it.
TEST(Shadings, ReplacedSpacesGiveWayToTheirAlternates) {
    HOST::Host host;
    const auto base =
        MakeObject<HOST::BaseConnectionSpace>(host.ColorSpaces().DeviceSpace("gray"_cc));
    PDF::Diagnostics diagnostics;
    PDF::Reporter reporter(diagnostics);
    PDF::ColorSpaces spaces(host.ColorSpaces(), *base, {2, false}, reporter);
    PDF::Shadings shadings(spaces, reporter);
    PDF::Resources resources(QPDFObjectHandle::newDictionary(), spaces);
    const auto object = QPDFObjectHandle::parse(
        "<< " AXIS
        "/ColorSpace [/DeviceN [/A] /DeviceCMYK << /FunctionType 2 /Domain [0 1] /N 1 "
        "/C0 [0 0 0 0] /C1 [0 1 1 0] >>] /Background [1] "
        "/Function << /FunctionType 2 /Domain [0 1] /N 1 >> >>");
    const auto shading = shadings.Find(object, resources);
    ASSERT_TRUE(shading);
    const auto* axial = FindInterface<COLOR::IAxialShadingPatternColorSpace>(
        shading->shading.Get(), COLOR::IID_IAXIALSHADING);
    std::array<float, 4> inks{};
    const float end = 1.0F;
    axial->GetFunction()->Evaluate(&end, inks.data());
    EXPECT_EQ(inks, (std::array<float, 4>{0, 1, 1, 0}));
    std::int32_t count = 0;
    const float* background = axial->GetBackground(count);
    ASSERT_EQ(count, 4);
    EXPECT_EQ(background[0], 1.0F);
    EXPECT_EQ(background[1], 0.0F);
}

TEST(Shadings, AreDrawnAsPicturesAtLevel2) {
    PDF::ReaderOptions options;
    options.languageLevel = 2;
    PdfPlay axis(
        Document(AXIS "/Extend [true false] /ColorSpace /DeviceGray /Function 20 0 R", nullptr),
        options);
    const std::string calls = axis.Content();
    EXPECT_NE(calls.find("image gray 1x1x8 00\n"), std::string::npos) << calls;
    EXPECT_NE(calls.find("image gray 256x1x8 000102"), std::string::npos) << calls;
    EXPECT_EQ(axis.Warnings(), "");
    PdfPlay mesh(Document("/ShadingType 4 " BITS GRAY, "000000FF00FF00800000FF00"), options);
    const std::string painted = mesh.Content();
    EXPECT_EQ(painted.rfind("save\nsave\nconcat 100 0 0 100 0 0\nsave\n", 0), 0U) << painted;
    EXPECT_EQ(mesh.Warnings(), "");
}

}  // namespace
}  // namespace VANTIX::TESTS
