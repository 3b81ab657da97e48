// SPDX-License-Identifier: MIT
#include "devicenconnectionspacedelegate/devicenconnectionspacedelegate.h"
#include "devicenconnectionspacedelegate/devicenworker.h"
#include "devicenconnectionspacedelegate/mergedchannels.h"
#include "hexlines.h"

namespace VANTIX::TEST {
namespace {

namespace OPTION = RENDERING::DELEGATEOPTION;

/// An ink whose full tint the fake host takes for the first component of light.
TInterfacePtr<FakeSeparationSpace> Ink(const char* name) {
    return MakeObject<FakeSeparationSpace>(name, MakeObject<FakeDeviceSpace>("cmyk"_cc), nullptr);
}

class DeviceNImages : public ImageFixture {
protected:
    DeviceNImages() { factory->Offer<FakeFunctionFactory>(COLOR::CLSID_COLORFUNCTIONFACTORY); }

    void DrawPlain(GRAPHICS::IRasterComponent& raster, std::uint32_t options = 0) {
        DrawWith(RENDERING::CreateDeviceNConnectionSpaceDelegate, raster, options);
    }

    void DrawManaged(GRAPHICS::IRasterComponent& raster, std::uint32_t options = 0) {
        DrawWith(RENDERING::CreateColorManagedDeviceNConnectionSpaceDelegate, raster, options);
    }

    static FakeChannel& AddSpot(FakeRaster& raster, TInterfacePtr<FakeSeparationSpace> space,
                                Line line) {
        FakeChannel& channel = raster.Extra("SPOT"_cc, std::move(line));
        channel.space = std::move(space);
        return channel;
    }

    /// The colorants of the image's space: "(Cyan)(Orange)".
    [[nodiscard]] std::string Names() const {
        return Run("currentcolorspace 1 get {128 string cvs (\\() print print (\\)) print} forall");
    }

    /// Nothing was begun, and `message` tells why.
    void ExpectNothing(std::string_view message) {
        EXPECT_EQ(text, "") << message;
        EXPECT_TRUE(samples.empty()) << message;
        EXPECT_GE(log.Count(message), 1) << log.Messages();
        log.Clear();
    }

    TInterfacePtr<FakeDeviceSpace> destination = MakeObject<FakeDeviceSpace>("cmyk"_cc);

private:
    using Maker = RENDERING::IConnectionSpaceDelegate* (*)(IClassFactory&,
                                                           COLOR::IConnectionColorSpace*,
                                                           std::uint32_t);

    void DrawWith(Maker make, GRAPHICS::IRasterComponent& raster, std::uint32_t options) {
        const auto delegate = Connect(TInterfacePtr<RENDERING::IConnectionSpaceDelegate>::Adopt(
            make(*factory, destination.Get(), options)));
        Draw(*delegate, raster);
    }
};

TEST_F(DeviceNImages, ProcessInksAloneGoToTheInnerDelegate) {
    const auto inks = Raster(MakeObject<FakeProfileSpace>("cmyk"_cc), 1, 8, {{1}, {2}, {3}, {4}});
    DrawPlain(*inks);
    EXPECT_EQ(ColourText(), "/DeviceCMYK setcolorspace\n");
    EXPECT_EQ(samples, (Line{1, 2, 3, 4}));
    DrawManaged(*inks);
    EXPECT_EQ(samples, (Line{1, 2, 3, 0}));
    DrawPlain(*Raster(cmyk, 1, 8, {{1}, {2}, {3}, {4}}));
    EXPECT_EQ(samples, (Line{1, 2, 3, 4}));
    DrawManaged(*Raster(cmyk, 1, 8, {{1}, {2}, {3}, {4}}));
    EXPECT_EQ(samples, (Line{1, 2, 3, 0}));
    // An inner delegate knows the state: its lines are converted under that.
    DrawPlain(*Raster(MakeObject<FakeCalibratedSpace>("crgb"_cc), 1, 8, {{1}, {2}, {3}}));
    EXPECT_EQ(samples, (Line{1, 2, 3, 0}));
    EXPECT_EQ(log.Messages(), "");
}

TEST_F(DeviceNImages, SeparationsKeepTheirInkOverCmyk) {
    const auto orange = MakeObject<FakeSeparationSpace>("Orange", rgb, nullptr);
    DrawPlain(*Raster(orange, 2, 8, {{0, 200}}));
    EXPECT_EQ(Run("currentcolorspace dup 0 get == dup 1 get == 2 get =="),
              "/Separation\n(Orange)\n/DeviceCMYK\n");
    // Full tint is (1, 0, 0) of light and no light in black, as the fake host has it.
    EXPECT_EQ(Tints("1"), "100 100 100 0 ");
    EXPECT_EQ(Tints("0.5"), "50 50 50 0 ");
    EXPECT_EQ(Entry("BitsPerComponent") + Entry("Decode"), "8[0 1]");
    EXPECT_EQ(samples, (Line{0, 200}));
    DrawManaged(*Raster(orange, 3, 16, {Words({0xABCD, 0x1234, 0xFFFF})}));
    EXPECT_EQ(Entry("BitsPerComponent"), "12");
    ASSERT_EQ(samples.size(), 5U);
    EXPECT_EQ(Line(samples.begin(), samples.begin() + 4), (Line{0xAB, 0xC1, 0x23, 0xFF}));
    DrawPlain(*Raster(orange, 11, 1, {{0xA5, 0xE0}}));
    EXPECT_EQ(Entry("BitsPerComponent"), "1");
    EXPECT_EQ(samples, (Line{0xA5, 0xE0}));
    EXPECT_EQ(log.Messages(), "");

    const auto cut = Raster(orange, 1, 8, {{7}});
    cut->height = 2;
    cut->primaries[0]->data->lines.emplace_back();
    DrawPlain(*cut);
    EXPECT_EQ(samples, (Line{7}));
    EXPECT_EQ(log.Messages(), "Line 1 is missing.\n");
    cut->primaries[0]->data = nullptr;
    DrawPlain(*cut);
    ExpectNothing("No Primary channel data.");
}

struct SpotCase {
    const char* name;
    FourCC family;
    bool isManaged;
    int mask;  ///< -1: none
    const char* colorants;
    const char* decode;
    const char* written;
};

class RastersWithSpots : public DeviceNImages, public testing::WithParamInterface<SpotCase> {};

TEST_P(RastersWithSpots, ListTheChannelsThatThereAre) {
    const SpotCase& tested = GetParam();
    const auto raster = MakeObject<FakeRaster>();
    raster->space = MakeObject<FakeDeviceSpace>(tested.family);
    raster->width = 2;
    const std::vector<Line> planes = Planes("0111 0212 0313 0414", 8);
    for (std::int32_t i = 0; i < raster->space->GetComponentCount(); ++i) {
        raster->Plane(planes[static_cast<std::size_t>(i)]);
    }
    if (tested.mask >= 0) {
        raster->mask = static_cast<std::uint64_t>(tested.mask);
    }
    raster->Extra("LPHA"_cc, {9, 9});
    AddSpot(*raster, Ink("Orange"), {0x05, 0x15});
    AddSpot(*raster, Ink("Green"), {0x06, 0x16});
    tested.isManaged ? DrawManaged(*raster) : DrawPlain(*raster);
    EXPECT_EQ(Names(), tested.colorants);
    EXPECT_EQ(Entry("Decode"), tested.decode);
    EXPECT_EQ(Entry("BitsPerComponent"), "8");
    EXPECT_EQ(samples, Bytes(tested.written));
    EXPECT_EQ(log.Messages(), "");
}

constexpr const char* kAll = "(Cyan)(Magenta)(Yellow)(Black)(Orange)(Green)";
constexpr const char* kSix = "[ 1 0 1 0 1 0 1 0 1 0 1 0] ";

const SpotCase kSpotCases[] = {
    {"Cmyk", "cmyk"_cc, false, -1, kAll, kSix, "010203040506111213141516"},
    {"ManagedCmyk", "cmyk"_cc, true, -1, kAll, kSix, "010203000506111213001516"},
    {"Rgb", "rgb "_cc, false, -1, kAll, kSix, "010203000506111213001516"},
    {"Gray", "gray"_cc, true, -1, kAll, kSix, "010000000506110000001516"},
    {"SomeInks", "cmyk"_cc, false, 0b1001, "(Cyan)(Black)(Orange)(Green)", "[ 1 0 1 0 1 0 1 0] ",
     "0104050611141516"},
    {"SomeInksConverted", "cmyk"_cc, true, 0b1001, kAll, kSix, "01FFFF00050611FFFF001516"},
    {"NoInks", "cmyk"_cc, false, 0, "(Orange)(Green)", "[ 0 1 0 1] ", "05061516"},
};

INSTANTIATE_TEST_SUITE_P(Spaces, RastersWithSpots, testing::ValuesIn(kSpotCases),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(DeviceNImages, TintsPrintOverOneAnother) {
    const auto raster = Raster(cmyk, 1, 8, {{1}, {2}, {3}, {4}});
    AddSpot(*raster, Ink("Orange"), {5});
    DrawPlain(*raster);
    EXPECT_EQ(Tints("0.2 0.4 0 0.1 0"), "10 0 40 20 ");
    // The ink leaves cyan alone: (1, 0, 0, 0) in complements.
    EXPECT_EQ(Tints("0 0 0 0 1"), "100 100 100 0 ");
    EXPECT_EQ(Tints("0 0.5 0 0 0.5"), "50 50 75 0 ");
}

TEST_F(DeviceNImages, SixteenBitsBecomeTwelve) {
    const auto raster =
        Raster(cmyk, 1, 16, {Words({0x1110}), Words({0x2220}), Words({0x3330}), Words({0x4440})});
    AddSpot(*raster, Ink("Orange"), Words({0x5550}));
    DrawPlain(*raster);
    EXPECT_EQ(Entry("BitsPerComponent"), "12");
    ASSERT_EQ(samples.size(), 8U);
    EXPECT_EQ(Line(samples.begin(), samples.begin() + 7),
              (Line{0x11, 0x12, 0x22, 0x33, 0x34, 0x44, 0x55}));
    DrawManaged(*raster);
    EXPECT_EQ(Line(samples.begin(), samples.begin() + 7),
              (Line{0x11, 0x12, 0x22, 0x33, 0x30, 0x00, 0x55}));
}

TEST_F(DeviceNImages, InksAloneHaveNoProcessColorants) {
    const auto raster = Raster(MakeObject<FakeDeviceNSpace>(), 8, 1, {});
    AddSpot(*raster, Ink("Orange"), {0xA5});
    DrawPlain(*raster);
    EXPECT_EQ(Names(), "(Orange)");
    EXPECT_EQ(Entry("BitsPerComponent") + Entry("Decode"), "1[ 0 1] ");
    EXPECT_EQ(samples, (Line{0xA5}));
    EXPECT_EQ(log.Messages(), "");
}

struct MergeCase {
    const char* name;
    const char* planes;
    const char* spots;  ///< names, each with its line
    int mask;           ///< -1: none
    const char* colorants;
    const char* written;
};

class MergedInks : public DeviceNImages, public testing::WithParamInterface<MergeCase> {};

TEST_P(MergedInks, AreOneChannelWithTheirUnion) {
    const MergeCase& tested = GetParam();
    TInterfacePtr<COLOR::IConnectionColorSpace> space = cmyk;
    if (*tested.planes == 0) {
        space = MakeObject<FakeDeviceNSpace>();
    }
    const auto raster = Raster(space, 2, 8, Planes(tested.planes, 8));
    if (tested.mask >= 0) {
        raster->mask = static_cast<std::uint64_t>(tested.mask);
    }
    raster->Extra("LPHA"_cc, {255, 255}).data->isOpaque = true;
    std::istringstream spots(tested.spots);
    for (std::string name, line; spots >> name >> line;) {
        AddSpot(*raster, Ink(name.c_str()), Bytes(line));
    }
    DrawPlain(*raster);
    EXPECT_EQ(Names(), tested.colorants);
    EXPECT_EQ(samples, Bytes(tested.written));
    EXPECT_EQ(log.Messages(), "");
}

// Beside process inks samples are complements: 0x80 and 0xC0 stand for coverages of 127 and 63, of
// which 63 + 127 x 192 / 255 remains.
const MergeCase kMerged[] = {
    {"SpotAndProcess", "FF80 0202 0303 0404", "Orange 0505 Cyan 00C0", -1,
     "(Magenta)(Yellow)(Black)(Orange)(Cyan)", "02030405000203040560"},
    {"Spots", "0101 0202 0303 0404", "Orange FF80 Green 0606 Orange FFC0", -1,
     "(Cyan)(Magenta)(Yellow)(Black)(Orange)(Green)", "01020304FF06010203046006"},
    {"AmountsWithoutProcess", "", "Orange 007F Orange 003F", -1, "(Orange)", "009F"},
    {"AmountsWithAllProcessInksAbsent", "0101 0202 0303 0404", "Orange 007F Orange 003F", 0,
     "(Orange)", "009F"},
    {"AbsentProcessInkHasNoPart", "0000 0202 0303 0404", "Cyan 0A14", 0b1000, "(Black)(Cyan)",
     "040A0414"},
    {"OneNameIsNotTheBeginOfAnother", "0101 0202 0303 0404", "Cyan2 0506", 0b0001, "(Cyan)(Cyan2)",
     "01050106"},
};

INSTANTIATE_TEST_SUITE_P(Names, MergedInks, testing::ValuesIn(kMerged),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(DeviceNImages, MergedInksOfSixteenBitsAreMergedInWords) {
    const auto raster =
        Raster(cmyk, 1, 16, {Words({0x7FFF}), Words({0xFFFF}), Words({0xFFFF}), Words({0xFFFF})});
    raster->mask = 0b0001;
    raster->Extra("LPHA"_cc, Words({0xFFFF}));
    AddSpot(*raster, Ink("Cyan"), Words({0x3FFF}));
    DrawPlain(*raster);
    EXPECT_EQ(Names(), "(Cyan)");
    // 0x3FFF x 0x7FFF / 0xFFFF of the paper remains.
    ASSERT_EQ(samples.size(), 2U);
    EXPECT_EQ(samples[0], 0x1F);
    EXPECT_EQ(samples[1] & 0xF0, 0xF0);
    // In all depths full coverage stays full, and none stays none.
    raster->primaries[0]->data->lines = {Words({0})};
    DrawPlain(*raster);
    EXPECT_EQ(samples[0], 0);
    raster->primaries[0]->data->lines = {Words({0xFFFF})};
    DrawPlain(*raster);
    EXPECT_EQ(samples[0], 0x3F);
    EXPECT_EQ(log.Messages(), "");
}

TEST_F(DeviceNImages, NothingToMergeGivesTheSameRaster) {
    const auto raster = Raster(cmyk, 1, 8, {{1}, {2}, {3}, {4}});
    AddSpot(*raster, Ink("Orange"), {5});
    TInterfacePtr<GRAPHICS::IRasterComponent> merged;
    EXPECT_TRUE(RENDERING::MergeSameNameChannels(*factory, *raster, merged));
    EXPECT_EQ(merged.Get(), raster.Get());
    // What hangs on the raster and its opacity stay with the merged one.
    raster->extras.insert(raster->extras.begin(), MakeObject<FakeChannel>());
    raster->extras[0]->type = "LPHA"_cc;
    raster->extras[0]->data = MakeObject<FakeChannelData>(std::vector<Line>{{7}});
    raster->Aggregate(state.Get(), IO::IID_IDICTIONARY);
    AddSpot(*raster, Ink("Orange"), {6});
    EXPECT_TRUE(RENDERING::MergeSameNameChannels(*factory, *raster, merged));
    EXPECT_NE(merged.Get(), raster.Get());
    EXPECT_EQ(FindInterface<IObject>(merged.Get(), IO::IID_IDICTIONARY), state.Get());
    ASSERT_EQ(merged->GetExtraCount(), 2);
    EXPECT_EQ(merged->GetExtra(0), raster->extras[0].Get());
    raster->extras[0]->data = nullptr;
    EXPECT_TRUE(RENDERING::MergeSameNameChannels(*factory, *raster, merged));
    EXPECT_TRUE(log.Has(" Alpha Channel data not there in raster component"));
    raster->extras.erase(raster->extras.begin());
    EXPECT_TRUE(RENDERING::MergeSameNameChannels(*factory, *raster, merged));
    EXPECT_TRUE(log.Has(" Alpha Channel not there in the raster component"));
    raster->bits = 4;
    for (const auto& spot : raster->extras) {
        spot->bits = 4;
    }
    EXPECT_FALSE(RENDERING::MergeSameNameChannels(*factory, *raster, merged));
    EXPECT_EQ(merged, nullptr);
}

TEST_F(DeviceNImages, ChannelsThatDoNotFitTogetherBeginNoImage) {
    const auto make = [this](std::int32_t bits) {
        auto raster =
            Raster(cmyk, 2, bits, {{1, 1, 1, 1}, {2, 2, 2, 2}, {3, 3, 3, 3}, {4, 4, 4, 4}});
        raster->Extra("LPHA"_cc, {9, 9, 9, 9});
        return raster;
    };
    const auto mixed = make(16);
    AddSpot(*mixed, Ink("Orange"), {5, 5}).bits = 8;
    DrawPlain(*mixed);
    ExpectNothing("Don't support a bit depth of 16");
    // Two of one name are not merged either: their lines are too short.
    AddSpot(*mixed, Ink("Orange"), {5, 5}).bits = 8;
    DrawPlain(*mixed);
    ExpectNothing("Don't support a bit depth of 16");
    AddSpot(*mixed, Ink("Cyan"), {5, 5}).bits = 8;
    DrawManaged(*mixed);
    ExpectNothing("Don't support a bit depth of 16");
    const auto small = make(4);
    AddSpot(*small, Ink("Orange"), {5});
    DrawPlain(*small);
    ExpectNothing("Don't support a bit depth of 4");

    const auto empty = make(8);
    AddSpot(*empty, Ink("Orange"), {}).data = nullptr;
    DrawPlain(*empty);
    ExpectNothing("Missing channel data for extra channel");
    const auto unnamed = make(8);
    const auto broken = Ink("");
    broken->name = CoreString(u"\xD800");
    AddSpot(*unnamed, broken, {5, 5});
    DrawPlain(*unnamed);
    ExpectNothing("Could not get a UTF8 representation of the ink colour name.");
    const auto bare = make(8);
    bare->mask = 0;
    bare->Extra("SPOT"_cc, {5, 5});
    DrawPlain(*bare);
    ExpectNothing("No channel data for the raster.");
    const auto fine = make(8);
    AddSpot(*fine, Ink("Orange"), {5, 5});
    fine->primaries[1]->data = nullptr;
    DrawManaged(*fine);
    ExpectNothing("No Primary channel data.");
    factory->creators.erase(COLOR::CLSID_COLORFUNCTIONFACTORY);
    DrawPlain(*fine);
    ExpectNothing("Could not create colour function factory.");
    destination = nullptr;
    DrawPlain(*fine);
    EXPECT_EQ(text, "");
}

TEST_F(DeviceNImages, MissingLinesEndTheData) {
    const auto raster = Raster(cmyk, 1, 8, {{1}, {2}, {3}, {4}});
    AddSpot(*raster, Ink("Orange"), {5}).data->lines.emplace_back();
    raster->height = 2;
    for (const auto& plane : raster->primaries) {
        plane->data->lines.push_back({9});
    }
    DrawPlain(*raster);
    EXPECT_EQ(samples, (Line{1, 2, 3, 4, 5}));
    EXPECT_EQ(log.Messages(), "No data for line 1 of channel 4.\n");
    log.Clear();
    raster->extras[0]->data->lines[1] = {6};
    raster->primaries[2]->data->lines[1].clear();
    DrawManaged(*raster);
    EXPECT_EQ(samples, (Line{1, 2, 3, 0, 5}));
    EXPECT_EQ(log.Messages(), "No data for line 1 of channel 0.\n");
    EXPECT_EQ(filters->ends, 2);
}

TEST_F(DeviceNImages, ChannelsBeyondTheSelectionAreLeftOut) {
    const auto raster = Raster(cmyk, 1, 8, {{1}, {2}, {3}, {4}});
    for (std::uint8_t i = 0; i < 62; ++i) {
        AddSpot(*raster, Ink(("S" + std::to_string(i)).c_str()),
                {static_cast<std::uint8_t>(10 + i)});
    }
    DrawPlain(*raster);
    EXPECT_EQ(log.Count("idx (64) rangecheck error."), 1);
    EXPECT_EQ(log.Count("idx (65) rangecheck error."), 1);
    EXPECT_EQ(samples.size(), 64U);
    EXPECT_EQ(samples.back(), 10 + 59);
    EXPECT_NE(text.find("(S59)]"), std::string::npos);
    EXPECT_EQ(text.find("(S60)"), std::string::npos);
    RENDERING::DEVICENWORKER::DeviceNPB block;
    EXPECT_EQ(block.GetNthChannelData(0), nullptr);
    EXPECT_EQ(log.Count("idx (0) rangecheck error."), 1);
    block.count = RENDERING::DEVICENWORKER::kMostChannels;
    EXPECT_EQ(block.GetNthChannelData(256), nullptr);
    EXPECT_EQ(log.Count("idx (256) rangecheck error."), 1);
}

TEST_F(DeviceNImages, TooManyColorantsForAFunctionAreReported) {
    /// A factory that makes no function.
    class NoFunctions : public FakeFunctionFactory {
        COLOR::IColorFunction* CreateCalculatorFunction(const char* /*program*/,
                                                        const float* /*domain*/,
                                                        std::int32_t /*inputs*/,
                                                        const float* /*range*/,
                                                        std::int32_t /*outputs*/) override {
            return nullptr;
        }
    };

    factory->Offer<NoFunctions>(COLOR::CLSID_COLORFUNCTIONFACTORY);
    const auto raster = Raster(cmyk, 1, 8, {{1}, {2}, {3}, {4}});
    AddSpot(*raster, Ink("Orange"), {5});
    DrawPlain(*raster);
    ExpectNothing("Could not create postscript tint function.");
}

/// Rasters in the inks of a collection.
class InkCollections : public DeviceNImages {
protected:
    InkCollections() {
        inks->Add("Cyan", COLOR::InkColorKind::kCMYK, {0, 1, 1, 1});
        inks->Add("Orange", COLOR::InkColorKind::kCMYK, {1, 0.5F, 0, 1});
        space->inks = inks;
        space->components = 2;
        space->names.resize(2, CoreString("Ink"));
    }

    TInterfacePtr<FakeRaster> TwoPlates(std::int32_t bits, const Line& first, const Line& second) {
        auto raster = Raster(space, 2, bits, {});
        raster->Extra("LPHA"_cc, {255, 255}).data->isOpaque = true;
        raster->Extra("SPOT"_cc, first);
        raster->Extra("SPOT"_cc, second);
        return raster;
    }

    TInterfacePtr<FakeDeviceNSpace> space = MakeObject<FakeDeviceNSpace>();
    TInterfacePtr<FakeInkCollection> inks = MakeObject<FakeInkCollection>();
};

TEST_F(InkCollections, NameTheChannelsWithoutAColour) {
    const auto raster = TwoPlates(8, {1, 2}, {3, 4});
    DrawPlain(*raster);
    EXPECT_EQ(Names(), "(Cyan)(Orange)");
    EXPECT_EQ(Entry("Decode"), "[0 1 0 1 ]");
    EXPECT_EQ(samples, (Line{1, 3, 2, 4}));
    // Process names stand for their inks; the others for what the host makes of their full tint.
    EXPECT_EQ(Tints("1 0"), "0 0 0 100 ");
    EXPECT_EQ(Tints("0 1"), "100 100 0 100 ");
    EXPECT_EQ(Tints("0 0"), "0 0 0 0 ");
    raster->mask = 0b10;
    DrawManaged(*raster);
    EXPECT_EQ(Names(), "(Orange)");
    EXPECT_EQ(Entry("Decode"), "[0 1 ]");
    EXPECT_EQ(samples, (Line{3, 4}));
    DrawPlain(*TwoPlates(16, Words({0x1110, 0x2220}), Words({0x3330, 0x4440})));
    EXPECT_EQ(Entry("BitsPerComponent"), "12");
    EXPECT_EQ(samples, (Line{0x11, 0x13, 0x33, 0x22, 0x24, 0x44}));
    EXPECT_EQ(log.Messages(), "");
}

TEST_F(InkCollections, NamesThatPostScriptReadsOtherwiseAndLongOnesStayWhole) {
    inks->instances.clear();
    inks->Add("O(r)a\\nge", COLOR::InkColorKind::kCMYK, {});
    inks->Add(std::string(300, 'n').c_str(), COLOR::InkColorKind::kCMYK, {});
    DrawPlain(*TwoPlates(8, {1, 2}, {3, 4}));
    EXPECT_EQ(
        Run("currentcolorspace 1 get dup 0 get =string cvs print 1 get 300 string cvs length ="),
        "O(r)a\\nge255\n");
}

TEST_F(InkCollections, InksThatAreNotThereBeginNoImage) {
    const auto raster = TwoPlates(8, {1, 2}, {3, 4});
    raster->extras.pop_back();
    DrawPlain(*raster);
    ExpectNothing("Missing channel data for extra channel at 1");
    raster->Extra("SPOT"_cc, {}).data = nullptr;
    DrawPlain(*raster);
    ExpectNothing("Missing channel data for extra channel");
    const auto fine = TwoPlates(8, {1, 2}, {3, 4});
    fine->extras[2]->bits = 16;
    DrawPlain(*fine);
    ExpectNothing("Don't support a bit depth of 8");
    fine->extras[2]->bits = 8;
    fine->mask = 0;
    DrawPlain(*fine);
    ExpectNothing("No channel data for the raster.");
    fine->mask.reset();
    inks->instances[1] = MakeObject<FakeInkInstance>(
        MakeObject<FakeInk>(std::nullopt, COLOR::InkColorKind::kCMYK, std::array<float, 4>{}));
    DrawPlain(*fine);
    ExpectNothing("The ink has to have a name.");
    inks->instances[1] = MakeObject<FakeInkInstance>(nullptr);
    DrawPlain(*fine);
    ExpectNothing("Could not get ink instance [1].");
    inks->instances[1] = nullptr;
    DrawPlain(*fine);
    ExpectNothing("Could not get ink instance [1].");
    inks->instances.clear();
    DrawPlain(*fine);
    ExpectNothing("The deviceN space has an empty ink collection.");
}

TEST_F(InkCollections, PalettesBesideSpotsAreExpandedIntoPlates) {
    const auto palette = MakeObject<FakeIndexedSpace>(space, Line{0, 10, 255, 20});
    const auto raster = Raster(palette, 3, 8, {{0, 1, 9}});
    raster->Extra("LPHA"_cc, {255, 255, 255}).data->isOpaque = true;
    AddSpot(*raster, Ink("Green"), {255, 0, 100});
    DrawPlain(*raster);
    EXPECT_EQ(Names(), "(Green)(Cyan)(Orange)");
    EXPECT_EQ(Entry("Decode"), "[ 0 1 0 1 0 1] ");
    // Beside indices a spot is a complement; indices beyond the palette are its last entry.
    EXPECT_EQ(samples, (Line{0, 0, 10, 255, 255, 20, 155, 255, 20}));
    const auto small = Raster(palette, 3, 2, {{0b00011100}});
    AddSpot(*small, Ink("Green"), {255, 0, 100}).bits = 8;
    DrawManaged(*small);
    EXPECT_EQ(samples, (Line{0, 0, 10, 255, 255, 20, 155, 255, 20}));
    EXPECT_EQ(log.Messages(), "");
}

TEST_F(InkCollections, PalettesThatCannotBeExpandedAreConverted) {
    const auto palette = MakeObject<FakeIndexedSpace>(space, Line{0, 10, 255, 20});
    const auto raster = Raster(palette, 2, 8, {{7, 8}});
    AddSpot(*raster, Ink("Green"), {5, 6});
    inks->Add("Blue", COLOR::InkColorKind::kCMYK, {});
    DrawPlain(*raster);
    EXPECT_EQ(log.Messages(),
              "Ink collection count and number of component in LUT are not matching. That should "
              "be same.\n");
    EXPECT_EQ(Names(), "(Cyan)(Magenta)(Yellow)(Black)(Green)");
    EXPECT_EQ(samples, (Line{7, 0, 0, 0, 5, 8, 0, 0, 0, 6}));
    log.Clear();
    palette->table.assign(2050, 0);
    DrawPlain(*raster);
    EXPECT_TRUE(log.Has("LUT is invalid."));
}

TEST_F(InkCollections, PalettesAloneKeepTheirSpaceOrBecomeCmyk) {
    const auto orange = MakeObject<FakeSeparationSpace>(
        "Orange", cmyk,
        MakeObject<FakeExponential>(4, std::vector<float>(4), std::vector<float>{0, 0.5F, 1, 0},
                                    1.0F));
    DrawPlain(*Raster(MakeObject<FakeIndexedSpace>(orange, Line{0, 128, 255}), 2, 8, {{0, 2}}));
    EXPECT_EQ(Run("currentcolorspace dup 1 get 0 get == 3 get 1 get ="), "/Separation\n128\n");
    EXPECT_EQ(samples, (Line{0, 2}));
    DrawPlain(*Raster(MakeObject<FakeIndexedSpace>(rgb, Line{255, 0, 0, 0, 0, 255, 1, 1, 1}), 2, 8,
                      {{0, 2}}));
    EXPECT_EQ(ColourText(),
              "[/Indexed /DeviceCMYK 2 <\n00FFFFFF FFFF00FF FEFEFEFF >]  setcolorspace\n");
    const auto shape = Raster(MakeObject<FakeIndexedSpace>(orange, Line{128, 0}), 8, 1, {{0xF0}});
    shape->Extra("LPHA"_cc, {0xF0}).bits = 1;
    DrawPlain(*shape);
    EXPECT_NE(text.find("imagemask"), std::string::npos);
    EXPECT_EQ(Run("currentcolor 100 mul round ="), "50.0\n");
    DrawPlain(*shape, OPTION::kJawsWorkaround);
    EXPECT_EQ(text.find("imagemask"), std::string::npos);
    EXPECT_EQ(log.Messages(), "");
    factory->creators.erase(COLOR::IID_ICONNECTIONCOLORSPACEFACTORY);
    DrawPlain(*Raster(MakeObject<FakeIndexedSpace>(rgb, Line{1, 2, 3}), 1, 8, {{0}}));
    ExpectNothing("Could not create colour factory.");
}

}  // namespace
}  // namespace VANTIX::TEST
