// SPDX-License-Identifier: MIT
#include "connectionspacedelegatefactory.h"
#include "support/fakedictionary.h"
#include "support/imagefixture.h"

namespace VANTIX::TEST {
namespace {

using RENDERING::BaseConnectionSpaceDelegate;
using RENDERING::TDelegateType;
using SpacePtr = TInterfacePtr<COLOR::IConnectionColorSpace>;

/// A gray of equal X, Y and Z.
template <class T>
class Neutral : public T {
public:
    Neutral() : T("gray"_cc) {}

    Status LineToPCS(const std::uint8_t* const* planes, std::int32_t width, std::int32_t bits,
                     float* pcs, COLOR::TRenderingIntent intent) const override {
        const std::uint8_t* const same[] = {planes[0], planes[0], planes[0]};
        return FakeDeviceSpace("rgb "_cc).LineToPCS(same, width, bits, pcs, intent);
    }
};

class RgbGrayImages : public ImageFixture {
protected:
    TInterfacePtr<BaseConnectionSpaceDelegate> Make(std::int32_t type) {
        const auto maker = MakeObject<RENDERING::ConnectionSpaceDelegateFactory>();
        auto delegate = Connect(TInterfacePtr<BaseConnectionSpaceDelegate>::Adopt(
            static_cast<BaseConnectionSpaceDelegate*>(maker->CreateConnectionSpaceDelegate(
                *factory, static_cast<TDelegateType>(type), options.Get()))));
        delegate->Init(false);
        return delegate;
    }

    /// What was written: space, bits, Decode array and samples; or the messages.
    std::string Drawn() {
        std::string what = log.Messages();
        log.Clear();
        if (!what.empty()) {
            EXPECT_EQ(text, "") << what;
            return what.substr(0, what.size() - 1);
        }
        what = ColourText();
        if (what.substr(0, 13) == "[ /CIEBasedA\n") {
            EXPECT_EQ(Run("currentcolorspace 0 get =="), "/CIEBasedA\n");
            what = "Y";
        }
        what = what.substr(0, what.find(" setcolorspace")) + " " + Entry("BitsPerComponent") +
               Entry("Decode") + " ";
        for (const std::uint8_t byte : samples) {
            constexpr const char* kDigits = "0123456789ABCDEF";
            what += {kDigits[byte >> 4U], kDigits[byte & 15U]};
        }
        return what;
    }

    std::string DrawAs(std::int32_t model, FakeRaster& raster) {
        Draw(*Make(model), raster);
        return Drawn();
    }

    TInterfacePtr<FakeDictionary> options = MakeObject<FakeDictionary>();
};

template <class T, FourCC Family>
SpacePtr Of() {
    return MakeObject<T>(Family);
}

template <class T>
SpacePtr Gray() {
    return MakeObject<Neutral<T>>();
}

SpacePtr Orange() {
    return MakeObject<FakeSeparationSpace>("Orange", nullptr, nullptr);
}

/// A raster and what models 5, 6, 1, 2 and 4 make of it.
struct RasterCase {
    const char* name;
    SpacePtr (*space)();
    std::int32_t bits;
    std::int32_t width;
    std::vector<Line> planes;
    const char* rgb;
    const char* managedRgb;
    const char* gray;
    const char* managedGray;
    const char* calibrated;
};

class RastersInLight : public RgbGrayImages, public testing::WithParamInterface<RasterCase> {};

TEST_P(RastersInLight, HaveSpaceDepthAndSamples) {
    const RasterCase& tested = GetParam();
    const auto raster = Raster(tested.space(), tested.width, tested.bits, tested.planes);
    EXPECT_EQ(DrawAs(5, *raster), tested.rgb);
    EXPECT_EQ(DrawAs(6, *raster), tested.managedRgb);
    EXPECT_EQ(DrawAs(1, *raster), tested.gray);
    EXPECT_EQ(DrawAs(2, *raster), tested.managedGray);
    EXPECT_EQ(DrawAs(4, *raster), tested.calibrated);
    EXPECT_EQ(DrawAs(3, *raster), "unimplemented");
}

constexpr const char* kLight8 = "/DeviceRGB 8[0 1 0 1 0 1] 333435";
constexpr const char* kLight12 = "/DeviceRGB 12[0 1 0 1 0 1] 1112223330";
constexpr const char* kGray8 = "/DeviceGray 8[0 1] 33";
constexpr const char* kGray12 = "/DeviceGray 12[0 1] 1110";
constexpr const char* kBits = "/DeviceGray 1[0 1] A5";
constexpr const char* kBytes = "/DeviceGray 8[0 1] FF00FF0000FF00FF";
constexpr const char* kNoNibbles = "Don't support a bit depth of 4";
const std::vector<Line> kBytesOfThree{{0x33}, {0x34}, {0x35}};
const std::vector<Line> kBytesOfFour{{0x33}, {0x34}, {0x35}, {0x36}};
const std::vector<Line> kWordsOfThree{Words({0x1110}), Words({0x2220}), Words({0x3330})};
const std::vector<Line> kWordsOfFour{Words({0x1110}), Words({0x2220}), Words({0x3330}),
                                     Words({0x4440})};

// The fake host passes planes on: red for gray. The gray of samples alone is (0.3 R + 0.59 G +
// 0.11 B), luminance the second plane.
INSTANTIATE_TEST_SUITE_P(
    Kinds, RastersInLight,
    testing::Values(
        RasterCase{"Rgb8", Of<FakeDeviceSpace, "rgb "_cc>, 8, 1, kBytesOfThree, kLight8, kLight8,
                   kGray8, kGray8, "/DeviceGray 8[0 1] 34"},
        RasterCase{"Rgb16", Of<FakeDeviceSpace, "rgb "_cc>, 16, 1, kWordsOfThree, kLight12,
                   kLight12, kGray12, kGray12, "/DeviceGray 12[0 1] 1EE0"},
        RasterCase{"Rgb4", Of<FakeDeviceSpace, "rgb "_cc>, 4, 1, kBytesOfThree, kNoNibbles,
                   kNoNibbles, kNoNibbles, kNoNibbles, "A depth of 4 must be written as a LUT."},
        RasterCase{"RgbProfile8", Of<FakeProfileSpace, "rgb "_cc>, 8, 1, kBytesOfThree, kLight8,
                   kLight8, kGray8, kGray8, "Y 8[0 1] 34"},
        RasterCase{"RgbProfile16", Of<FakeProfileSpace, "rgb "_cc>, 16, 1, kWordsOfThree, kLight12,
                   kLight12, kGray12, kGray12, "Y 8[0 1] 21"},
        RasterCase{"Cmyk8", Of<FakeDeviceSpace, "cmyk"_cc>, 8, 1, kBytesOfFour, kLight8, kLight8,
                   kGray8, kGray8, "/DeviceGray 8[0 1] 34"},
        RasterCase{"Cmyk16", Of<FakeDeviceSpace, "cmyk"_cc>, 16, 1, kWordsOfFour, kLight12,
                   kLight12, kGray12, kGray12, "/DeviceGray 12[0 1] 1EE0"},
        RasterCase{"CmykProfile8", Of<FakeProfileSpace, "cmyk"_cc>, 8, 1, kBytesOfFour, kLight8,
                   kLight8, kGray8, kGray8, "Y 8[0 1] 34"},
        RasterCase{"CalibratedRgb8", Of<FakeCalibratedSpace, "crgb"_cc>, 8, 1, kBytesOfThree,
                   kLight8, kLight8, kGray8, kGray8, "Y 8[0 1] 34"},
        RasterCase{"Gray1",
                   Gray<FakeDeviceSpace>,
                   1,
                   8,
                   {{0xA5}},
                   kBits,
                   kBits,
                   "A depth of 1 must be written as a LUT.",
                   kBytes,
                   kBits},
        RasterCase{"Gray4",
                   Gray<FakeDeviceSpace>,
                   4,
                   2,
                   {{0x1B}},
                   "/DeviceGray 4[0 1] 1B",
                   "/DeviceGray 4[0 1] 1B",
                   "A depth of 4 must be written as a LUT.",
                   "/DeviceGray 8[0 1] 11BB",
                   "/DeviceGray 4[0 1] 1B"},
        RasterCase{
            "Gray8", Gray<FakeDeviceSpace>, 8, 1, {{0x33}}, kGray8, kGray8, kGray8, kGray8, kGray8},
        RasterCase{"Gray16",
                   Gray<FakeDeviceSpace>,
                   16,
                   2,
                   {Words({0x1234, 0xFFEE})},
                   "/DeviceGray 8[0 1] 12FF",
                   "/DeviceGray 8[0 1] 12FF",
                   "/DeviceGray 12[0 1] 123FFE",
                   "/DeviceGray 12[0 1] 123FFE",
                   "Y 12[0 1] 123FFE"},
        RasterCase{"GrayProfile1",
                   Gray<FakeProfileSpace>,
                   1,
                   8,
                   {{0xA5}},
                   kBits,
                   "[/Indexed /DeviceRGB 1 <000000 FFFFFF>] 1[0 1] A5",
                   "A depth of 1 must be written as a LUT.",
                   kBytes,
                   "Y 8[0 1] FF00FF0000FF00FF"},
        RasterCase{"GrayProfile2",
                   Gray<FakeProfileSpace>,
                   2,
                   4,
                   {{0x1B}},
                   "/DeviceGray 2[0 1] 1B",
                   "Don't support a bit depth of 2",
                   "A depth of 2 must be written as a LUT.",
                   "/DeviceGray 8[0 1] 0055AAFF",
                   "Y 8[0 1] 0055AAFF"},
        RasterCase{"GrayProfile8",
                   Gray<FakeProfileSpace>,
                   8,
                   1,
                   {{0x33}},
                   kGray8,
                   "/DeviceRGB 8[0 1 0 1 0 1] 330000",
                   kGray8,
                   kGray8,
                   "Y 8[0 1] 33"},
        RasterCase{"Spot1",
                   Orange,
                   1,
                   2,
                   {{0x80}},
                   "/DeviceRGB 8[0 1 0 1 0 1] FF0000000000",
                   "/DeviceRGB 8[0 1 0 1 0 1] FF0000000000",
                   "/DeviceGray 8[0 1] FF00",
                   "/DeviceGray 8[0 1] FF00",
                   "Y 8[0 1] 0000"}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(RgbGrayImages, GrayOfSamplesHasTheWeightsOfLuminance) {
    const auto light = Raster(rgb, 4, 8, {{255, 0, 0, 255}, {0, 255, 0, 255}, {0, 0, 255, 255}});
    // No ink; half black; full cyan and half black.
    const auto inks =
        Raster(cmyk, 3, 8, {{255, 255, 0}, {255, 255, 255}, {255, 255, 255}, {255, 128, 128}});
    const auto words =
        Raster(cmyk, 1, 16, {Words({0xFFFF}), Words({0xFFFF}), Words({0xFFFF}), Words({0x8000})});
    for (const std::int32_t model : {1, 2, 3}) {
        const auto delegate = Make(model);
        delegate->InjectRGBImage(*light, 0, 0, 1, 1);
        TakeWritten();
        EXPECT_EQ(Drawn(), "/DeviceGray 8[0 1] 4C961CFF");
        delegate->InjectCMYKImage(*inks, 0, 0, 1, 1);
        TakeWritten();
        EXPECT_EQ(Drawn(), "/DeviceGray 8[0 1] FE7F59");
        delegate->InjectCMYKImage(*words, 0, 0, 1, 1);
        TakeWritten();
        EXPECT_EQ(Drawn(), "/DeviceGray 12[0 1] 7FF0");
    }
    // Lines longer than what is worked on at a time.
    const auto wide = Raster(rgb, 130, 8, {Line(130, 10), Line(130, 20), Line(130, 30)});
    Make(1)->InjectRGBImage(*wide, 0, 0, 1, 1);
    TakeWritten();
    EXPECT_EQ(samples, Line(130, 18));
}

TEST_F(RgbGrayImages, PromotedGrayIsAPaletteOfNeutrals) {
    /// DeviceRGB in which gray is a little blue.
    class Bluish : public FakeDeviceSpace {
    public:
        Bluish() : FakeDeviceSpace("rgb "_cc) {}

        bool FromPCS(const float pcs[3], float* values, COLOR::TRenderingIntent) const override {
            const float light[] = {pcs[0] / 2, pcs[0] / 2, pcs[0]};
            std::copy_n(light, 3, values);
            return true;
        }
    };

    class Factory : public FakeColorSpaceFactory {
    public:
        COLOR::IConnectionColorSpace* CreateDeviceRGBColorSpace() override { return new Bluish; }
    };

    factory->Offer<Factory>(COLOR::IID_ICONNECTIONCOLORSPACEFACTORY);
    options->SetBool(108, true);
    // 127 (0.3 + 0.59) + 255 x 0.11 is 141.
    EXPECT_EQ(DrawAs(5, *Raster(gray, 8, 1, {{0xA5}})),
              "[/Indexed /DeviceRGB 1 <\n000000\n8D8D8D >]  1[0 1] A5");
    EXPECT_EQ(DrawAs(6, *Raster(gray, 4, 2, {{0x1B}})),
              "[/Indexed /DeviceRGB 3 <\n000000\n2F2F2F 5E5E5E 8D8D8D >]  2[0 3] 1B");
    Draw(*Make(5), *Raster(gray, 2, 4, {{0x1B}}));
    EXPECT_EQ(Entry("Decode"), "[0 15]");
    EXPECT_EQ(Run("currentcolorspace dup 2 get = 3 get length ="), "15\n48\n");
    Draw(*Make(5), *Raster(gray, 2, 16, {Words({0x1234, 0xFFEE})}));
    EXPECT_EQ(Entry("Decode"), "[0 255]");
    EXPECT_EQ(samples, (Line{0x12, 0xFF}));
}

TEST_F(RgbGrayImages, RastersOfTheOutputProfileAreNotConverted) {
    /// Device spaces with a profile.
    class Factory : public FakeColorSpaceFactory {
    public:
        COLOR::IConnectionColorSpace* CreateDeviceRGBColorSpace() override {
            return WithProfile("rgb "_cc);
        }

        COLOR::IConnectionColorSpace* CreateDeviceGrayColorSpace() override {
            return WithProfile("gray"_cc);
        }

    private:
        static COLOR::IConnectionColorSpace* WithProfile(FourCC family) {
            auto* space = new FakeDeviceSpace(family);
            space->profile = MakeObject<FakeProfileSpace>(family);
            return space;
        }
    };

    factory->Offer<Factory>(COLOR::IID_ICONNECTIONCOLORSPACEFACTORY);
    for (const auto& [model, family] : {std::pair{6, FourCC{"rgb "_cc}}, {2, FourCC{"gray"_cc}}}) {
        const auto profile = MakeObject<FakeProfileSpace>(family);
        const auto raster = Raster(profile, 1, 8, {{0x33}});
        for (std::int32_t i = 1; i < profile->components; ++i) {
            raster->Plane({0x33});
        }
        EXPECT_EQ(DrawAs(model, *raster), model == 6 ? "/DeviceRGB 8[0 1 0 1 0 1] 333333" : kGray8);
        EXPECT_EQ(profile->convertedLines, 0);
        profile->profileName = "another";
        DrawAs(model, *raster);
        EXPECT_EQ(profile->convertedLines, 1);
    }
}

TEST_F(RgbGrayImages, PalettesAreBroughtIntoTheModelOrStayGray) {
    struct PaletteCase {
        SpacePtr base;
        Line table;
        const char* rgb;
        const char* gray;
    };

    const PaletteCase kCases[] = {{rgb,
                                   {255, 0, 51, 51, 0, 51},
                                   "[/Indexed /DeviceRGB 1 <\nFF0033 330033 >]  ",
                                   "[/Indexed /DeviceGray 1 <\nFF 33 >]  "},
                                  {cmyk,
                                   {255, 0, 51, 9, 51, 0, 51, 9},
                                   "[/Indexed /DeviceRGB 1 <\nFF0033 330033 >]  ",
                                   "[/Indexed /DeviceGray 1 <\nFF 33 >]  "},
                                  {gray,
                                   {255, 51},
                                   "[/Indexed /DeviceGray 1 <\nFF 33 >]  ",
                                   "[/Indexed /DeviceGray 1 <\nFF 33 >]  "},
                                  {MakeObject<FakeProfileSpace>("gray"_cc),
                                   {255, 0},
                                   "[/Indexed /DeviceGray 1 <\nFF 00 >]  ",
                                   "[/Indexed /DeviceGray 1 <\nFF 00 >]  "}};
    for (const PaletteCase& tested : kCases) {
        const auto raster =
            Raster(MakeObject<FakeIndexedSpace>(tested.base, tested.table), 8, 1, {{0xA5}});
        for (const std::int32_t model : {5, 6, 1, 2, 4}) {
            EXPECT_EQ(DrawAs(model, *raster),
                      std::string(model < 5 ? tested.gray : tested.rgb) + "1[0 1] A5");
        }
    }
}

TEST_F(RgbGrayImages, ShapesOfTwoColoursBecomeImageMasks) {
    const auto raster =
        Raster(MakeObject<FakeIndexedSpace>(rgb, Line{255, 0, 0, 0, 0, 255}), 8, 1, {{0xF0}});
    raster->Extra("LPHA"_cc, {0xF0}).bits = 1;
    for (const auto& [model, colour] :
         {std::pair{5, "/DeviceRGB setcolorspace 1.000 0.000 0.000   setcolor\n"},
          {1, "/DeviceGray setcolorspace 1.000   setcolor\n"}}) {
        Draw(*Make(model), *raster);
        EXPECT_EQ(ColourText(), colour);
        EXPECT_NE(text.find("imagemask"), std::string::npos);
        options->SetBool(101, true);
        Draw(*Make(model), *raster);
        EXPECT_EQ(text.find("imagemask"), std::string::npos);
        options->SetBool(101, false);
    }
}

TEST_F(RgbGrayImages, PlanesWithoutDataBeginNoImage) {
    struct Fault {
        std::int32_t model;
        std::int32_t bits;
        SpacePtr space;
        std::size_t planes;
        const char* message;
    };

    const SpacePtr profile = MakeObject<FakeProfileSpace>("rgb "_cc);
    const Fault kFaults[] = {{5, 8, rgb, 3, "Problem populating channel data."},
                             {5, 8, cmyk, 4, "No Primary channel data."},
                             {6, 8, rgb, 3, "No Primary channel data."},
                             {1, 8, gray, 1, "Could not find a necessary channel data."},
                             {1, 8, rgb, 3, "No Primary channel data."},
                             {1, 32, gray, 1, "Could not find a necessary channel data."},
                             {4, 8, rgb, 3, "Could not find a necessary channel data."},
                             {4, 8, cmyk, 4, "No Primary channel data."},
                             {4, 8, profile, 3, "No Primary channel data."},
                             {4, 16, gray, 1, "Raster has no channel data for channel 0."}};
    for (const Fault& fault : kFaults) {
        const auto raster =
            Raster(fault.space, 1, fault.bits, std::vector<Line>(fault.planes, Line{1, 2}));
        raster->primaries.back()->data = nullptr;
        EXPECT_EQ(DrawAs(fault.model, *raster), fault.message);
    }
    EXPECT_EQ(DrawAs(1, *Raster(gray, 1, 32, {{1, 2, 3, 4}})), "Do not support depths > 16");
    const auto bare = Raster(gray, 1, 8, {{1}});
    Make(4)->WriteGreyscaleImage(*bare, 0, 0, 1, 1);
    EXPECT_EQ(Drawn(), "The bit depth=8has not been handled.");
    bare->space = nullptr;
    Make(5)->InjectCMYKImage(*bare, 0, 0, 1, 1);
    EXPECT_EQ(Drawn(), "There is not IConnectionColorSpace attached to the raster component.");
}

TEST_F(RgbGrayImages, FailingLinesEndTheDataWithAMessage) {
    const auto light = MakeObject<FakeProfileSpace>("rgb "_cc);
    light->lineLimit = 1;
    const auto two = [&](const SpacePtr& space, std::size_t planes) {
        auto raster = Raster(space, 1, 8, std::vector<Line>(planes, Line{7}));
        raster->height = 2;
        for (const auto& plane : raster->primaries) {
            plane->data->lines.emplace_back();
        }
        return raster;
    };
    const auto expect = [&](const auto& draw, const char* message, const Line& written) {
        draw();
        TakeWritten();
        EXPECT_EQ(samples, written);
        EXPECT_EQ(log.Messages(), message);
        log.Clear();
    };
    const auto inks = two(cmyk, 4);
    const auto lights = two(rgb, 3);
    const auto grays = two(gray, 1);
    expect([&] { Make(5)->InjectCMYKImage(*inks, 0, 0, 1, 1); },
           "Connection Color Space Conversion Failed. Error = 1\n", {7, 7, 7});
    expect([&] { Make(4)->InjectCMYKImage(*inks, 0, 0, 1, 1); },
           "Connection Color Space Conversion Failed. Error = 1\n", {7});
    expect([&] { Make(1)->InjectRGBImage(*lights, 0, 0, 1, 1); },
           "Could not get line 1 when writing out the grayscale to PostScript. The image is going "
           "to be broken.\n",
           {7});
    expect([&] { Make(5)->Image(*grays, 0, 0, 1, 1); }, "Line 1 is missing.\n", {7});
    expect([&] { Make(4)->Image(*grays, 0, 0, 1, 1); }, "Line 1 is missing.\n", {7});
    EXPECT_EQ(filters->ends, 5);
}

TEST_F(RgbGrayImages, SpotsAreFlattenedIntoTheModel) {
    const auto spot = MakeObject<FakeSeparationSpace>("Orange", nullptr, nullptr);
    spot->fullTint = 0;
    const auto raster = Raster(rgb, 2, 8, {{200, 200}, {100, 100}, {50, 50}});
    raster->Extra("LPHA"_cc, {255, 255}).data->isOpaque = true;
    raster->Extra("SPOT"_cc, {0, 255}).space = spot;
    EXPECT_EQ(DrawAs(5, *raster), "/DeviceRGB 8[0 1 0 1 0 1] 000000C86432");
    EXPECT_EQ(DrawAs(1, *raster), "/DeviceGray 8[0 1] 00C8");
}

}  // namespace
}  // namespace VANTIX::TEST
