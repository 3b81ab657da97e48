// SPDX-License-Identifier: MIT
#include "connectionspacedelegatefactory.h"
#include "grayscaleconnectionspacedelegate/grayscaleconnectionspacedelegate.h"
#include "rgbcompositeconnectionspacedelegate/rgbcompositeconnectionspacedelegate.h"
#include "support/delegatefixture.h"
#include "support/fakedictionary.h"
#include "support/fakeraster.h"

namespace VANTIX::TEST {
namespace {

using RENDERING::BaseConnectionSpaceDelegate;
using RENDERING::TDelegateType;
using SpacePtr = TInterfacePtr<COLOR::IConnectionColorSpace>;

class RgbGrayDelegates : public DelegateFixture {
protected:
    /// The delegate of a model by its number, as the plug-in makes it.
    TInterfacePtr<BaseConnectionSpaceDelegate> Make(std::int32_t type) {
        const auto maker = MakeObject<RENDERING::ConnectionSpaceDelegateFactory>();
        return Connect(TInterfacePtr<BaseConnectionSpaceDelegate>::Adopt(
            static_cast<BaseConnectionSpaceDelegate*>(maker->CreateConnectionSpaceDelegate(
                *factory, static_cast<TDelegateType>(type), options.Get()))));
    }

    TInterfacePtr<FakeDictionary> options = MakeObject<FakeDictionary>();
};

template <class T, FourCC Family>
SpacePtr Of() {
    return MakeObject<T>(Family);
}

SpacePtr Spot(const char* name, const SpacePtr& alternate) {
    return MakeObject<FakeSeparationSpace>(name, alternate, nullptr);
}

template <class T>
SpacePtr SpotOver() {
    return Spot("", MakeObject<T>());
}

SpacePtr Orange() {
    return Spot("Orange", nullptr);
}

SpacePtr Black() {
    return Spot("Black", nullptr);
}

/// A colour and what models 5, 6, 1 and 2 write for it.
struct Colour {
    const char* name;
    SpacePtr (*space)();
    std::vector<float> color;
    const char* rgb;
    const char* managedRgb;
    const char* gray;
    const char* managedGray;
};

class RgbGrayColours : public RgbGrayDelegates, public testing::WithParamInterface<Colour> {};

TEST_P(RgbGrayColours, AreConvertedIntoTheModel) {
    const Colour& tested = GetParam();
    const std::pair<std::int32_t, const char*> kModels[] = {{5, tested.rgb},
                                                            {6, tested.managedRgb},
                                                            {1, tested.gray},
                                                            {2, tested.managedGray},
                                                            {3, tested.managedGray}};
    for (const auto& [model, written] : kModels) {
        Paint(*Make(model), tested.space(), tested.color);
        EXPECT_EQ(out->Take(), written) << model;
    }
    EXPECT_EQ(log.Messages(), "");
    Paint(*Make(4), tested.space(), tested.color);
    EXPECT_EQ(out->Take(), "");
    EXPECT_EQ(log.Messages(), "Failed to set color space.\n");
}

constexpr const char* kLight = "SetDeviceColorSpace rgb \nSetColor 0.1 0.2 0.3\n";
constexpr const char* kFirst = "SetDeviceColorSpace gray\nSetColor 0.1\n";
constexpr const char* kGray = "SetDeviceColorSpace gray\nSetColor 0.25\n";
constexpr const char* kPlates =
    "SetRegistrationColorSpace\nSetRegistrationColorSpace\nSetColor 1\n";
constexpr const char* kNone = "SetNoneColorSpace\nSetNoneColorSpace\nSetColor 1\n";

// The fake host passes three components on.
INSTANTIATE_TEST_SUITE_P(
    Spaces, RgbGrayColours,
    testing::Values(
        Colour{"Rgb",
               Of<FakeDeviceSpace, "rgb "_cc>,
               {0.1F, 0.2F, 0.3F},
               kLight,
               kLight,
               kFirst,
               kFirst},
        Colour{"RgbProfile",
               Of<FakeProfileSpace, "rgb "_cc>,
               {0.1F, 0.2F, 0.3F},
               kLight,
               kLight,
               kFirst,
               kFirst},
        Colour{"Cmyk",
               Of<FakeDeviceSpace, "cmyk"_cc>,
               {0.1F, 0.2F, 0.3F, 1},
               kLight,
               kLight,
               kFirst,
               kFirst},
        Colour{"Lab",
               Of<FakeCalibratedSpace, "clab"_cc>,
               {0.1F, 0.2F, 0.3F},
               kLight,
               kLight,
               kFirst,
               kFirst},
        Colour{"Gray", Of<FakeDeviceSpace, "gray"_cc>, {0.25F}, kGray, kGray, kGray, kGray},
        Colour{"GrayProfile", Of<FakeProfileSpace, "gray"_cc>, {0.25F}, kGray, kGray, kGray, kGray},
        Colour{"Spot",
               Orange,
               {0.25F},
               "SetDeviceColorSpace rgb \nSetColor 0.25 0 0\n",
               "SetDeviceColorSpace rgb \nSetColor 0.25 0 0\n",
               kGray,
               kGray},
        Colour{"PaperOfASpot",
               Orange,
               {0},
               "SetDeviceColorSpace rgb \nSetColor 1 1 1\n",
               "SetDeviceColorSpace rgb \nSetColor 1 1 1\n",
               "SetDeviceColorSpace gray\nSetColor 1\n",
               "SetDeviceColorSpace gray\nSetColor 0\n"},
        Colour{"BlackInk",
               Black,
               {0.75F},
               "SetDeviceColorSpace rgb \nSetColor 0.25 0.25 0.25\n",
               "SetDeviceColorSpace rgb \nSetColor 0.25 0.25 0.25\n",
               kGray,
               "SetDeviceColorSpace gray\nSetColor 0.75\n"},
        Colour{"Registration",
               SpotOver<FakeRegistrationSpace>,
               {1},
               kPlates,
               kPlates,
               kPlates,
               "SetRegistrationColorSpace\nSetDeviceColorSpace gray\nSetColor 1\n"},
        Colour{"None", SpotOver<FakeNoneSpace>, {1}, kNone, kNone, kNone, "SetNoneColorSpace\n"}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(RgbGrayDelegates, PromotedGrayIsLight) {
    options->SetBool(108, true);
    for (const std::int32_t model : {5, 6}) {
        Paint(*Make(model), gray, {0.25F});
        EXPECT_EQ(out->Take(), "SetDeviceColorSpace rgb \nSetColor 0.25 0 0\n");
    }
}

TEST_F(RgbGrayDelegates, WithoutASpaceOnlyPlainModelsTakeOneValue) {
    struct Spaceless {
        std::int32_t model;
        const char* written;  ///< for one value; null: nothing
        const char* message;  ///< for several
    };

    const Spaceless kCases[] = {
        {5, "SetColor 0.3 0.3 0.3\n", "There is colorspace currently set for non-stroking.\n"},
        {1, "SetColor 0.3\n", "There is fill ConnectionColorSpace currently set.\n"},
        {6, nullptr, "There is No Source Connection Color Space.\n"},
        {2, nullptr, "There is No Input ConnectionColorSace.\n"},
        {4, nullptr, "There is No Input ConnectionColorSace.\n"}};
    const float values[] = {0.3F, 0.3F};
    for (const Spaceless& tested : kCases) {
        const auto delegate = Make(tested.model);
        EXPECT_EQ(delegate->SetColor(values, 1, true), tested.written != nullptr);
        EXPECT_EQ(out->Take(), tested.written == nullptr ? "" : tested.written);
        log.Clear();
        EXPECT_FALSE(delegate->SetColor(values, 2, true));
        EXPECT_EQ(log.Messages(), tested.message);
    }
    log.Clear();
    EXPECT_FALSE(Make(5)->SetColor(values, 2, false));
    EXPECT_FALSE(Make(1)->SetColor(values, 2, false));
    EXPECT_EQ(log.Messages(),
              "There is colorspace currently set for stroking.\n"
              "There is stroke ConnectionColorSpace currently set.\n");
    EXPECT_EQ(log.Entries().front().file, "src/rgbcompositeconnectionspacedelegate");
    EXPECT_EQ(log.Entries().back().file, "src/grayscaleconnectionspacedelegate");
    EXPECT_EQ(out->Take(), "");
}

TEST_F(RgbGrayDelegates, CalibratedColoursAreLuminanceOfTheirWhite) {
    const auto light = MakeObject<FakeCalibratedSpace>("crgb"_cc);
    const float values[] = {0.9F, 0.25F, 0.1F};
    state->space = light;
    EXPECT_TRUE(Make(4)->SetColor(values, 3, true));
    EXPECT_EQ(out->Take(), "SetCalibratedGrayColorSpace 0.9642 1 0.8249\nSetColor 0.25\n");
    light->white = {0.9F, 0.5F, 0.8F};
    EXPECT_TRUE(Make(4)->SetColor(values, 3, true));
    EXPECT_EQ(out->Take(), "SetCalibratedGrayColorSpace 0.9 0.5 0.8\nSetColor 0.5\n");
    light->white = {0.9F, 0, 0.8F};
    EXPECT_TRUE(Make(4)->SetColor(values, 3, true));
    EXPECT_EQ(out->Take(), "SetCalibratedGrayColorSpace 0.9 0 0.8\nSetColor 0\n");
}

TEST_F(RgbGrayDelegates, PatternsLieOverTheModelsSpace) {
    struct Pattern {
        std::int32_t model;
        SpacePtr underlying;
        const char* written;
    };

    const Pattern kCases[] = {
        {5, cmyk, "SetDeviceColorSpace rgb \nSetPatternColor P1.1 0.1 0.2 0.3\n"},
        {5, gray, "SetDeviceColorSpace gray\nSetPatternColor P1.1 0.1\n"},
        {1, cmyk, "SetDeviceColorSpace gray\nSetPatternColor P1.1 0.1\n"},
        {2, cmyk, "SetDeviceColorSpace gray\nSetPatternColor P1.1 0.1\n"},
        {2, gray, "SetDeviceColorSpace gray\nSetPatternColor P1.1 0.1\n"},
        {4, gray, ""}};
    state->color = {0.1F, 0.2F, 0.3F, 0.4F};
    for (const Pattern& tested : kCases) {
        Make(tested.model)->SetUncoloredPattern("P1.1", tested.underlying.Get(), true);
        EXPECT_EQ(out->Take(), tested.written) << tested.model;
    }

    /// A spot whose full tint is dark.
    class Dark : public FakeSeparationSpace {
    public:
        Dark() : FakeSeparationSpace("Blue", nullptr, nullptr) {}

        bool ToPCS(const float* values, float pcs[3], COLOR::TRenderingIntent) const override {
            std::fill_n(pcs, 3, 1 - values[0]);
            return true;
        }
    };

    state->color = {1};
    Make(1)->SetUncoloredPattern("P1.1", MakeObject<Dark>().Get(), true);
    EXPECT_EQ(out->Take(), "SetDeviceColorSpace gray\nSetPatternColor P1.1 0\n");
}

TEST_F(RgbGrayDelegates, OnlyPlainModelsKeepShadingsInTheirSpace) {
    const auto shading = MakeObject<FakeAxialShading>();
    constexpr FourCC kKept = 0;
    const std::tuple<std::int32_t, SpacePtr, FourCC> kCases[] = {
        {5, rgb, kKept},      {1, gray, kKept},     {6, rgb, "rgb "_cc}, {5, cmyk, "rgb "_cc},
        {5, gray, "rgb "_cc}, {2, gray, "gray"_cc}, {1, rgb, "gray"_cc}, {4, gray, "gray"_cc}};
    for (const auto& [model, colours, destination] : kCases) {
        shading->colours = colours;
        const auto delegate = Make(model);
        delegate->Init(false);
        delegate->FillWithColorSpace(shading.Get(), 1, 0, 0, 1, 1, true);
        EXPECT_EQ(out->Take(), "Shading 2 into " +
                                   (destination == kKept ? "none" : std::to_string(destination)) +
                                   " level 3 paint\n");
    }
}

TEST_F(RgbGrayDelegates, DefaultColoursAreThoseOfTheModel) {
    for (std::int32_t model = 1; model <= 6; ++model) {
        const auto delegate = Make(model);
        delegate->Init(false);
        EXPECT_EQ(out->Take(), "");
        delegate->Init(true);
        EXPECT_EQ(out->Take(), model < 5 ? "SetDefaultColour gray\n" : "SetDefaultColour rgb \n");
    }
}

TEST_F(RgbGrayDelegates, WithoutADestinationNothingIsConverted) {
    state->space = cmyk;
    const float values[] = {0, 0, 0, 0};
    const auto bare = Connect(MakeObject<RENDERING::ColorManagedDeviceGrayConnectionSpaceDelegate>(
        *factory, nullptr, 0U));
    EXPECT_FALSE(bare->SetColor(values, 4, true));
    EXPECT_EQ(log.Messages(), "There is No Output ConnectionColorSace.\n");
    const auto light =
        Connect(MakeObject<RENDERING::RGBCompositeConnectionSpaceDelegate>(*factory, nullptr, 0U));
    EXPECT_FALSE(light->SetColor(values, 4, true));
    EXPECT_EQ(out->Take(), "");
}

TEST_F(RgbGrayDelegates, OnlyTheModelWithoutImagesDrawsNone) {
    Make(3)->Image(*MakeObject<FakeRaster>(), 0, 0, 1, 1);
    EXPECT_EQ(log.Messages(), "unimplemented\n");
    EXPECT_EQ(log.Entries().front().file, "src/grayscaleconnectionspacedelegate");
}

}  // namespace
}  // namespace VANTIX::TEST
