// SPDX-License-Identifier: MIT
#include "cmykcompositeconnectionspacedelegate/cmykcompositeconnectionspacedelegate.h"
#include "hexlines.h"

namespace VANTIX::TEST {
namespace {

namespace OPTION = RENDERING::DELEGATEOPTION;

using Plain = RENDERING::CMYKCompositeConnectionSpaceDelegate;
using Managed = RENDERING::ColorManagedCMYKCompositeConnectionSpaceDelegate;

/// DeviceCMYK into which every colour goes as its first component in all but black, and a given
/// complement of black ink.
class Inks : public FakeDeviceSpace {
public:
    explicit Inks(float complement) : FakeDeviceSpace("cmyk"_cc), black(complement) {}

    float black;

    bool FromPCS(const float pcs[3], float* values, COLOR::TRenderingIntent) const override {
        std::fill_n(values, 3, pcs[0]);
        values[3] = black;
        return true;
    }
};

class CmykImages : public ImageFixture {
protected:
    template <class T>
    TInterfacePtr<T> Make(std::uint32_t options = 0) {
        return Connect(MakeObject<T>(*factory, destination.Get(), options));
    }

    template <class T = Plain>
    void DrawAs(FakeRaster& raster, std::uint32_t options = 0) {
        Draw(*Make<T>(options), raster);
    }

    /// Nothing was begun, and `message` tells why.
    void ExpectNothing(std::string_view message) {
        EXPECT_EQ(text, "") << message;
        EXPECT_TRUE(samples.empty()) << message;
        EXPECT_EQ(log.Count(message), 1) << log.Messages();
        log.Clear();
    }

    TInterfacePtr<COLOR::IConnectionColorSpace> destination =
        MakeObject<FakeDeviceSpace>("cmyk"_cc);
};

struct RasterCase {
    const char* name;
    FourCC family;
    bool hasProfile;
    std::int32_t bits;
    std::int32_t width;
    const char* planes;
    const char* space;  ///< text of the space
    const char* bitsAndDecode;
    const char* written;
    const char* managed = "";  ///< where it differs
};

constexpr const char* kCmyk = "/DeviceCMYK setcolorspace\n";
constexpr const char* kGray = "/DeviceGray setcolorspace\n";
constexpr const char* kBits8 = "8[1 0 1 0 1 0 1 0]";
constexpr const char* kBits12 = "12[1 0 1 0 1 0 1 0]";

class RastersInInks : public CmykImages, public testing::WithParamInterface<RasterCase> {};

TEST_P(RastersInInks, HaveSpaceDepthAndSamples) {
    const RasterCase& tested = GetParam();
    TInterfacePtr<COLOR::IConnectionColorSpace> space;
    if (tested.hasProfile) {
        space = MakeObject<FakeProfileSpace>(tested.family);
    } else {
        space = MakeObject<FakeDeviceSpace>(tested.family);
    }
    const auto raster =
        Raster(space, tested.width, tested.bits, Planes(tested.planes, tested.bits));
    const auto expect = [&](const char* written) {
        EXPECT_EQ(ColourText(), tested.space);
        EXPECT_EQ(Run("currentcolorspace length ="), ColourText()[0] == '[' ? "4\n" : "1\n");
        EXPECT_EQ(Entry("BitsPerComponent") + Entry("Decode"), tested.bitsAndDecode);
        EXPECT_EQ(samples, Bytes(written));
        EXPECT_EQ(log.Messages(), "");
    };
    DrawAs<Plain>(*raster);
    expect(tested.written);
    if (!tested.hasProfile) {
        DrawAs<Managed>(*raster);
        expect(*tested.managed == 0 ? tested.written : tested.managed);
    }
}

const RasterCase kRasters[] = {
    {"Cmyk8", "cmyk"_cc, false, 8, 1, "01 02 03 04", kCmyk, kBits8, "01020304", "01020300"},
    {"CmykProfile8", "cmyk"_cc, true, 8, 1, "01 02 03 04", kCmyk, kBits8, "01020304"},
    {"Cmyk16", "cmyk"_cc, false, 16, 1, "1110 2220 3330 4440", kCmyk, kBits12, "111222333444",
     "111222333000"},
    {"Rgb8", "rgb "_cc, false, 8, 2, "0104 0205 0306", kCmyk, kBits8, "0102030004050600"},
    {"RgbProfile8", "rgb "_cc, true, 8, 2, "0104 0205 0306", kCmyk, kBits8, "0102030004050600"},
    {"Rgb16", "rgb "_cc, false, 16, 1, "1110 2220 3330", kCmyk, kBits12, "111222333000"},
    {"Lab8", "clab"_cc, true, 8, 1, "01 02 03", kCmyk, kBits8, "01020300"},
    {"Gray1", "gray"_cc, false, 1, 11, "A5E0",
     "[/Indexed /DeviceCMYK 1 <000000FF 00000000>]\n setcolorspace\n", "1[0 1]", "A5E0"},
    {"Gray4", "gray"_cc, false, 4, 2, "1B", kGray, "4[0 1]", "1B"},
    {"Gray8", "gray"_cc, false, 8, 2, "0009", kGray, "8[0 1]", "0009"},
    {"Gray16HasItsHighBytes", "gray"_cc, false, 16, 2, "1234FFEE", kGray, "8[0 1]", "12FF"},
    {"GrayProfile1", "gray"_cc, true, 1, 8, "A5", kGray, "1[0 1]", "A5"},
    {"GrayProfile16", "gray"_cc, true, 16, 2, "ABCD1234", kGray, "12[0 1]", "ABC123"},
};

INSTANTIATE_TEST_SUITE_P(Kinds, RastersInInks, testing::ValuesIn(kRasters),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(CmykImages, OtherSpacesAreConverted) {
    const auto spot = MakeObject<FakeSeparationSpace>("Orange", cmyk, nullptr);
    DrawAs(*Raster(spot, 2, 8, {{7, 8}}));
    EXPECT_EQ(ColourText(), kCmyk);
    EXPECT_EQ(samples, (Line{7, 0, 0, 0, 8, 0, 0, 0}));
    const auto lights = MakeObject<FakeCalibratedSpace>("crgb"_cc);
    DrawAs<Managed>(*Raster(lights, 1, 16, {Words({0x1110}), Words({0x2220}), Words({0x3330})}));
    EXPECT_EQ(Entry("BitsPerComponent"), "12");
    EXPECT_EQ(samples, (Line{0x11, 0x12, 0x22, 0x33, 0x30, 0x00}));
}

TEST_F(CmykImages, PromotedGrayIsAPaletteInBlackInk) {
    struct Promoted {
        std::int32_t bits;
        float black;
        const char* line;
        const char* palette;  ///< its begin
        const char* bitsAndDecode;
        const char* written;
    };

    const Promoted kCases[] = {
        {2, 1, "1B", "[/Indexed /DeviceCMYK 3 <\n000000FF\n000000AA 00000056 00000001 >] ",
         "2[0 3]", "1B"},
        {2, 0, "1B", "[/Indexed /DeviceCMYK 3 <\n000000FF\n000000FF 000000FF 000000FF >] ",
         "2[0 3]", "1B"},
        {4, 1, "1B", "[/Indexed /DeviceCMYK 15 <\n000000FF\n000000EE ", "4[0 15]", "1B"},
        {8, 1, "0506", "[/Indexed /DeviceCMYK 255 <\n000000FF\n000000", "8[0 255]", "0506"},
        {16, 1, "1234FFEE", "[/Indexed /DeviceCMYK 255 <\n000000FF\n", "8[0 255]", "12FF"},
    };
    for (const Promoted& tested : kCases) {
        destination = MakeObject<Inks>(tested.black);
        DrawAs(*Raster(gray, 2, tested.bits, Planes(tested.line, tested.bits)),
               OPTION::kPromoteGray);
        EXPECT_EQ(ColourText().substr(0, std::string(tested.palette).size()), tested.palette);
        EXPECT_EQ(Entry("BitsPerComponent") + Entry("Decode"), tested.bitsAndDecode);
        EXPECT_EQ(samples, Bytes(tested.written));
        // One entry of four inks for each gray.
        EXPECT_EQ(Run("currentcolorspace dup 2 get 1 add 4 mul exch 3 get length eq ="), "true\n");
    }
    // The 1st, 17th, 33rd … entry ends its line.
    DrawAs(*Raster(gray, 2, 8, {{0, 0}}), OPTION::kPromoteGray);
    const std::string palette = ColourText();
    EXPECT_EQ(std::count(palette.begin(), palette.end(), '\n'), 1 + 16 + 1);
    DrawAs(*Raster(gray, 8, 1, {{0xA5}}), OPTION::kPromoteGray);
    EXPECT_EQ(ColourText(), "[/Indexed /DeviceCMYK 1 <000000FF 00000000>]\n setcolorspace\n");
    EXPECT_EQ(log.Messages(), "");
}

TEST_F(CmykImages, PromotedGrayProfilesBecomeBlackInk) {
    destination = MakeObject<Inks>(1.0F);
    const auto profile = MakeObject<FakeProfileSpace>("gray"_cc);
    const auto raster = Raster(profile, 3, 8, {{255, 128, 0}});
    for (const bool isManaged : {false, true}) {
        isManaged ? DrawAs<Managed>(*raster) : DrawAs<Plain>(*raster, OPTION::kPromoteGray);
        EXPECT_EQ(ColourText(), kCmyk);
        EXPECT_EQ(Entry("BitsPerComponent") + Entry("Decode"), "8[0 1 0 1 0 1 1 0]");
        // The fake host puts gray into cyan alone: 4915 x cyan x 255, in units of 2^22.
        EXPECT_EQ(samples, (Line{0, 0, 0, 76, 0, 0, 0, 38, 0, 0, 0, 0}));
    }
    DrawAs<Managed>(*Raster(profile, 2, 1, {{0x40}}));
    EXPECT_EQ(samples, (Line{0, 0, 0, 0, 0, 0, 0, 76}));
}

TEST_F(CmykImages, RastersOfTheOutputProfileAreNotConverted) {
    const auto output = MakeObject<FakeProfileSpace>("cmyk"_cc);
    static_cast<FakeDeviceSpace*>(destination.Get())->profile = output;
    const auto other = MakeObject<FakeProfileSpace>("cmyk"_cc, 9U);
    const auto raster = Raster(other, 1, 8, {{1}, {2}, {3}, {4}});
    DrawAs<Managed>(*raster);
    EXPECT_EQ(samples, (Line{1, 2, 3, 4}));
    EXPECT_EQ(Entry("Decode"), "[1 0 1 0 1 0 1 0]");
    other->profileName = "another";
    DrawAs<Managed>(*raster);
    EXPECT_EQ(samples, (Line{1, 2, 3, 0}));
    destination = output;
    DrawAs<Managed>(*raster);
    ExpectNothing("Output connection colorspace is not DeviceXXX color space.");
    destination = nullptr;
    DrawAs<Managed>(*raster);
    ExpectNothing("Output connection colorspace is not valid.");
}

TEST_F(CmykImages, InkAmountsAreWrittenAsTheyAre) {
    const auto raster = Raster(cmyk, 1, 8, {{1}, {2}, {3}, {4}});
    raster->mask = 0b1011;
    Make<Plain>()->InjectCMYKImage(*raster, 0, 0, 1, 1);
    TakeWritten();
    EXPECT_EQ(ColourText(), kCmyk);
    EXPECT_EQ(Entry("BitsPerComponent") + Entry("Decode"), "8[0 1 0 1 0 1 0 1]");
    EXPECT_EQ(samples, (Line{1, 2, 0xFF, 4}));
}

TEST_F(CmykImages, AbsentPlanesLeaveNoInk) {
    const auto inks = Raster(cmyk, 2, 8, {{1, 2}, {3, 4}, {5, 6}, {7, 8}});
    inks->mask = 0b1011;
    inks->primaries[2]->data = nullptr;
    DrawAs(*inks);
    EXPECT_EQ(samples, (Line{1, 3, 0xFF, 7, 2, 4, 0xFF, 8}));
    DrawAs<Managed>(*inks);
    EXPECT_EQ(samples, (Line{1, 3, 0xFF, 0, 2, 4, 0xFF, 0}));
    const auto light = Raster(rgb, 1, 8, {{1}, {2}, {3}});
    light->mask = 0b101;
    DrawAs(*light);
    EXPECT_EQ(samples, (Line{1, 0, 3, 0}));
    EXPECT_EQ(log.Messages(), "");
}

TEST_F(CmykImages, PlanesWithoutDataBeginNoImage) {
    constexpr const char* kInks[] = {"cyan", "magenta", "yellow", "black"};
    for (std::size_t i = 0; i < 4; ++i) {
        const auto inks = Raster(cmyk, 1, 8, {{1}, {2}, {3}, {4}});
        inks->primaries[i]->data = nullptr;
        DrawAs(*inks);
        ExpectNothing(std::string("Line 0 ") + kInks[i] + " is missing.");
        DrawAs<Managed>(*inks);
        ExpectNothing("No Primary channel data.");
    }
    const auto light = Raster(rgb, 1, 8, {{1}, {2}, {3}});
    light->primaries[1]->data = nullptr;
    DrawAs(*light);
    ExpectNothing("No Primary channel data.");
    for (const auto& space :
         {TInterfacePtr<COLOR::IConnectionColorSpace>(gray),
          TInterfacePtr<COLOR::IConnectionColorSpace>(MakeObject<FakeProfileSpace>("gray"_cc))}) {
        for (const std::int32_t bits : {8, 16}) {
            const auto one = Raster(space, 1, bits, {{1, 2}});
            one->primaries[0]->data = nullptr;
            DrawAs(*one);
            ExpectNothing("No Primary channel data.");
        }
    }
    // Palettes of planes, and planes of half a byte, do not interleave.
    DrawAs(*Raster(cmyk, 2, 4, {{1}, {2}, {3}, {4}}));
    ExpectNothing("Don't support a bit depth of 4");
    DrawAs(*Raster(rgb, 2, 4, {{1}, {2}, {3}}));
    ExpectNothing("Don't support a bit depth of 4");
    DrawAs(*Raster(MakeObject<FakeSeparationSpace>("Orange", cmyk, nullptr), 1, 8, {}));
    ExpectNothing("No Primary channel data.");
}

TEST_F(CmykImages, MissingLinesEndTheDataWithAMessage) {
    const auto inks = Raster(cmyk, 1, 8, {{1}, {2}, {3}, {4}});
    inks->height = 2;
    for (const auto& plane : inks->primaries) {
        plane->data->lines.push_back({9});
    }
    inks->primaries[1]->data->lines[1].clear();
    DrawAs(*inks);
    EXPECT_EQ(samples, (Line{1, 2, 3, 4}));
    EXPECT_EQ(log.Messages(), "Line 1 magenta is missing.\n");
    log.Clear();
    DrawAs<Managed>(*inks);
    EXPECT_EQ(samples, (Line{1, 2, 3, 0}));
    EXPECT_EQ(log.Messages(), "Failed to encode the image at line 1\n");
    EXPECT_EQ(filters->ends, 2);
    log.Clear();
    for (const std::int32_t bits : {8, 16}) {
        const auto one = Raster(gray, 1, bits, {{1, 7}});
        one->height = 2;
        one->primaries[0]->data->lines.emplace_back();
        DrawAs(*one);
        EXPECT_EQ(samples, bits == 8 ? Line{1} : Line{7});
        EXPECT_EQ(log.Messages(), "Line 1 is missing.\n");
        log.Clear();
    }
    EXPECT_EQ(filters->ends, 4);
    const auto profile = MakeObject<FakeProfileSpace>("gray"_cc);
    profile->lineLimit = 0;
    DrawAs<Managed>(*Raster(profile, 1, 8, {{1}}));
    ExpectNothing("Failed to encode the image at line 0");
}

TEST_F(CmykImages, HostCompositesAlphaOnlyWhereNoMaskIsWritten) {
    const auto light = MakeObject<FakeDeviceSpace>("rgb "_cc);
    const auto raster = Raster(light, 1, 8, {{1}, {2}, {3}});
    FakeChannel& alpha = raster->Extra("LPHA"_cc, {128});
    DrawAs(*raster);
    EXPECT_EQ(light->alphaLines, 1);
    DrawAs(*raster, OPTION::kJawsWorkaround);
    EXPECT_EQ(light->alphaLines, 1);
    EXPECT_NE(text.find("SoftMask"), std::string::npos);
    alpha.data->isOpaque = true;
    DrawAs(*raster);
    alpha.data = nullptr;
    DrawAs(*raster);
    EXPECT_EQ(light->alphaLines, 1);
    EXPECT_EQ(samples, (Line{1, 2, 3, 0}));
    // Further channels of the kind are not the raster's opacity.
    raster->extras.clear();
    raster->Extra("SPOT"_cc, {0});
    raster->Extra("LPHA"_cc, {128});
    DrawAs(*raster);
    EXPECT_EQ(light->alphaLines, 1);
}

TEST_F(CmykImages, SpotsAreFlattenedIntoProcessInks) {
    const auto spot = MakeObject<FakeSeparationSpace>("Orange", nullptr, nullptr);
    spot->fullTint = 0;
    const auto raster = Raster(cmyk, 2, 8, {{200, 200}, {100, 100}, {50, 50}, {255, 255}});
    raster->Extra("LPHA"_cc, {255, 255}).data->isOpaque = true;
    raster->Extra("SPOT"_cc, {0, 255}).space = spot;
    DrawAs(*raster, OPTION::kConvertSpotsToProcess);
    EXPECT_EQ(ColourText(), kCmyk);
    EXPECT_EQ(samples, (Line{0, 0, 0, 0, 200, 100, 50, 255}));
    EXPECT_EQ(log.Messages(), "");
}

struct PaletteCase {
    const char* name;
    TInterfacePtr<COLOR::IConnectionColorSpace> (*base)();
    const char* table;
    const char* plain;
    const char* managed;
    std::int32_t bits;
    std::uint32_t options = 0;
};

class CmykPalettes : public CmykImages, public testing::WithParamInterface<PaletteCase> {};

TEST_P(CmykPalettes, AreBroughtIntoInksOrStayGray) {
    const PaletteCase& tested = GetParam();
    destination = MakeObject<Inks>(1.0F);
    const auto raster = Raster(MakeObject<FakeIndexedSpace>(tested.base(), Bytes(tested.table)), 1,
                               tested.bits, {{0}});
    DrawAs<Plain>(*raster, tested.options);
    EXPECT_EQ(ColourText(), std::string(tested.plain) + " setcolorspace\n");
    EXPECT_EQ(Run("currentcolorspace 0 get =="), "/Indexed\n");
    DrawAs<Managed>(*raster, tested.options);
    EXPECT_EQ(ColourText(), std::string(tested.managed) + " setcolorspace\n");
    EXPECT_EQ(Run("currentcolorspace 0 get =="), "/Indexed\n");
    EXPECT_EQ(log.Messages(), "");
}

template <class T, FourCC Family>
TInterfacePtr<COLOR::IConnectionColorSpace> Of() {
    return MakeObject<T>(Family);
}

TInterfacePtr<COLOR::IConnectionColorSpace> Spot() {
    return MakeObject<FakeSeparationSpace>("Orange", nullptr, nullptr);
}

constexpr const char* kTwoGrays = "[/Indexed /DeviceGray 1 <\nFF 00 >] ";

constexpr const char* kThreeInks = "[/Indexed /DeviceCMYK 2 <\n00000000 FFFFFF00 CCCCCC00 >] ";
constexpr const char* kTwoTints = "[/Indexed /DeviceCMYK 1 <\n00000000 FFFFFF00 >] ";
constexpr const char* kThreeGrays = "[/Indexed /DeviceGray 2 <\n01 02 03 >] ";
constexpr const char* kBlacks = "[/Indexed /DeviceCMYK 2 <\n00000001 000000FF 000000CC >] ";

// The destination takes the first component in all inks but black.
const PaletteCase kPalettes[] = {
    {"Cmyk", Of<FakeDeviceSpace, "cmyk"_cc>, "01020304FFFEFD0000000000",
     "[/Indexed /DeviceCMYK 2 <\nFEFDFCFB 000102FF FFFFFFFF >] ",
     "[/Indexed /DeviceCMYK 2 <\nFEFEFE00 00000000 FFFFFF00 >] ", 8},
    {"Rgb", Of<FakeDeviceSpace, "rgb "_cc>, "FF0909000909330909", kThreeInks, kThreeInks, 8},
    {"Spot", Spot, "FF00", kTwoTints, kTwoTints, 1},
    {"Gray", Of<FakeDeviceSpace, "gray"_cc>, "010203", kThreeGrays, kThreeGrays, 8},
    {"BlackAndWhite", Of<FakeDeviceSpace, "gray"_cc>, "FF00", kTwoGrays, kTwoGrays, 1},
    {"BlackAndWhiteProfile", Of<FakeProfileSpace, "gray"_cc>, "FF00", kTwoGrays, kTwoGrays, 1},
    {"CalibratedBlackAndWhite", Of<FakeCalibratedSpace, "cgry"_cc>, "FF00", kTwoTints, kTwoTints,
     1},
    {"PromotedGray", Of<FakeDeviceSpace, "gray"_cc>, "FF0033", kBlacks, kBlacks, 8,
     OPTION::kPromoteGray},
};

INSTANTIATE_TEST_SUITE_P(Bases, CmykPalettes, testing::ValuesIn(kPalettes),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(CmykImages, ShapesOfTwoColoursBecomeImageMasks) {
    const auto raster = Raster(
        MakeObject<FakeIndexedSpace>(cmyk, Line{255, 0, 255, 255, 0, 0, 0, 0}), 8, 1, {{0xF0}});
    raster->Extra("LPHA"_cc, {0xF0}).bits = 1;
    DrawAs(*raster);
    EXPECT_NE(text.find("imagemask"), std::string::npos);
    EXPECT_EQ(ColourText(), "/DeviceCMYK setcolorspace 0.000 1.000 0.000 0.000   setcolor\n");
    EXPECT_EQ(Run("currentcolor = = = ="), "0.0\n0.0\n1.0\n0.0\n");
    EXPECT_EQ(Entry("Decode"), "[1 0]");
    EXPECT_EQ(samples, (Line{0xF0}));
    DrawAs(*raster, OPTION::kJawsWorkaround);
    EXPECT_EQ(text.find("imagemask"), std::string::npos);
    raster->extras[0]->data->isOpaque = true;
    DrawAs(*raster);
    EXPECT_EQ(text.find("imagemask"), std::string::npos);
}

TEST_F(CmykImages, PalettesThatAreNotThereDrawNothing) {
    const auto raster = Raster(MakeObject<FakeIndexedSpace>(rgb, Line()), 1, 8, {{0}});
    DrawAs(*raster);
    ExpectNothing("indexedCSpace->GetLUT() returned NULL.");
    raster->space = MakeObject<FakeIndexedSpace>(rgb, Line{1, 2, 3, 4, 5, 6, 7, 8, 9});
    raster->primaries[0]->data = nullptr;
    DrawAs(*raster);
    ExpectNothing("No index channel data.");
    Make<Plain>()->InjectIndexedImage(*raster, 0, 0, 1, 1, nullptr);
    TakeWritten();
    ExpectNothing("Indexed Raster didn't have indexed colorspace..");
    // Without a destination DeviceCMYK is made.
    raster->primaries[0]->data = MakeObject<FakeChannelData>(std::vector<Line>{{0}});
    destination = nullptr;
    DrawAs(*raster);
    EXPECT_EQ(ColourText().substr(0, 22), "[/Indexed /DeviceCMYK ");
    factory->creators.erase(COLOR::IID_ICONNECTIONCOLORSPACEFACTORY);
    DrawAs(*raster);
    ExpectNothing("Could not create colour factory.");
}

}  // namespace
}  // namespace VANTIX::TEST
