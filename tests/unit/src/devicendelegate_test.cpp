// SPDX-License-Identifier: MIT

#include "core/graphics/pluginhelper/colorhelpers.h"
#include "devicenconnectionspacedelegate/devicenconnectionspacedelegate.h"
#include "devicenconnectionspacedelegate/spotchannels.h"
#include "support/delegatefixture.h"
#include "support/fakeraster.h"

namespace VANTIX::TEST {
namespace {

namespace OPTION = RENDERING::DELEGATEOPTION;

using DelegatePtr = TInterfacePtr<RENDERING::DeviceNConnectionSpaceDelegate>;
using SpacePtr = TInterfacePtr<COLOR::IConnectionColorSpace>;

/// The destination, with the intent that it was last asked under.
class Inks : public FakeDeviceSpace {
public:
    Inks() : FakeDeviceSpace("cmyk"_cc, 4) {}

    mutable COLOR::TRenderingIntent intent{};

    bool FromPCS(const float pcs[3], float* values, COLOR::TRenderingIntent asked) const override {
        intent = asked;
        return FakeDeviceSpace::FromPCS(pcs, values, asked);
    }
};

SpacePtr Spot(const char* name, const SpacePtr& alternate) {
    auto spot = MakeObject<FakeSeparationSpace>(name, alternate, nullptr);
    spot->number = 77;
    return spot;
}

std::vector<float> Evaluate(const COLOR::IColorFunction& function, float tint) {
    std::vector<float> outputs(static_cast<std::size_t>(function.GetOutputCount()));
    function.Evaluate(&tint, outputs.data());
    return outputs;
}

SpacePtr TwoInks() {
    auto space = MakeObject<FakeDeviceNSpace>();
    space->names.resize(2, CoreString("Ink"));
    space->components = 2;
    return space;
}

class DeviceNDelegate : public DelegateFixture {
protected:
    DeviceNDelegate() { factory->Offer<FakeFunctionFactory>(COLOR::CLSID_COLORFUNCTIONFACTORY); }

    DelegatePtr Plain(std::uint32_t options = 0) {
        return Take(
            RENDERING::CreateDeviceNConnectionSpaceDelegate(*factory, destination.Get(), options));
    }

    DelegatePtr Managed(std::uint32_t options = 0) {
        return Take(RENDERING::CreateColorManagedDeviceNConnectionSpaceDelegate(
            *factory, destination.Get(), options));
    }

    TInterfacePtr<Inks> destination = MakeObject<Inks>();

private:
    DelegatePtr Take(RENDERING::IConnectionSpaceDelegate* made) {
        return Connect(
            DelegatePtr::Adopt(static_cast<RENDERING::DeviceNConnectionSpaceDelegate*>(made)));
    }
};

class DeviceNColours : public DeviceNDelegate, public testing::WithParamInterface<ColourCase> {};

TEST_P(DeviceNColours, KeepTheirInksOrBecomeProcessInks) {
    const ColourCase& tested = GetParam();
    ExpectColours(tested, *Plain(tested.options), *Managed(tested.options));
}

template <class T, FourCC Family>
SpacePtr Of() {
    return MakeObject<T>(Family);
}

template <class T>
SpacePtr Of() {
    return MakeObject<T>();
}

template <SpacePtr (*Alternate)()>
SpacePtr SpotOver() {
    return Spot("Orange", Alternate());
}

constexpr const char* kOneTwoThree = "SetDeviceColorSpace cmyk\nSetColor 0.9 0.8 0.7 1\n";
constexpr const char* kKept = "SetDeviceColorSpace cmyk\nSetColor 0.9 0.8 0.7 0.6\n";
constexpr const char* kBlack = "SetDeviceColorSpace cmyk\nSetColor 0 0 0 0.75\n";
constexpr const char* kGray = "SetDeviceColorSpace gray\nSetColor 0.25\n";
constexpr const char* kTint = "SetSeparationColorSpace Orange\nSetColor 0.5\n";
constexpr const char* kTints = "SetDeviceNColorSpace\nSetColor 0.25 0.5\n";

INSTANTIATE_TEST_SUITE_P(
    Spaces, DeviceNColours,
    testing::Values(
        ColourCase{"SpotOverCmyk", SpotOver<Of<FakeDeviceSpace, "cmyk"_cc>>, {0.5F}, kTint, kTint},
        ColourCase{"SpotOverRgb", SpotOver<Of<FakeDeviceSpace, "rgb "_cc>>, {0.5F}, kTint, kTint},
        ColourCase{
            "SpotOverLab", SpotOver<Of<FakeCalibratedSpace, "clab"_cc>>, {0.5F}, kTint, kTint},
        ColourCase{"DeviceN", TwoInks, {0.25F, 0.5F}, kTints, kTints},
        ColourCase{"Registration",
                   SpotOver<Of<FakeRegistrationSpace>>,
                   {1},
                   "SetRegistrationColorSpace\nSetColor 1\n",
                   "SetRegistrationColorSpace\nSetColor 1\n"},
        ColourCase{
            "Cmyk", Of<FakeDeviceSpace, "cmyk"_cc>, {0.1F, 0.2F, 0.3F, 0.4F}, kKept, kOneTwoThree},
        ColourCase{"CmykProfile",
                   Of<FakeProfileSpace, "cmyk"_cc>,
                   {0.1F, 0.2F, 0.3F, 0.4F},
                   kKept,
                   kOneTwoThree},
        ColourCase{
            "Rgb", Of<FakeDeviceSpace, "rgb "_cc>, {0.1F, 0.2F, 0.3F}, kOneTwoThree, kOneTwoThree},
        ColourCase{"Gray", Of<FakeDeviceSpace, "gray"_cc>, {0.25F}, kBlack, kGray},
        ColourCase{"GrayProfile", Of<FakeProfileSpace, "gray"_cc>, {0.25F}, kBlack, kGray},
        ColourCase{"PromotedGray",
                   Of<FakeDeviceSpace, "gray"_cc>,
                   {0.25F},
                   kBlack,
                   "SetDeviceColorSpace cmyk\nSetColor 0.75 1 1 1\n",
                   OPTION::kPromoteGray}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(DeviceNDelegate, ManagedColoursTakeTheFirstIntentOnBothSides) {
    const auto plain = Plain();
    Paint(*plain, rgb, {0, 0, 0});
    EXPECT_EQ(destination->intent, state->intent2);
    const auto managed = Managed();
    Paint(*managed, rgb, {0, 0, 0});
    EXPECT_EQ(destination->intent, state->intent);
}

TEST_F(DeviceNDelegate, InkOverAnotherAlternateIsMadeOnceAndThenNamed) {
    const auto delegate = Plain();
    const SpacePtr orange = Spot("Orange", rgb);
    Paint(*delegate, orange, {0.5F});
    Paint(*delegate, orange, {0.25F});
    EXPECT_EQ(out->Take(),
              "SetSeparationColorSpace Orange\nSetColor 0.5\nSetNamedColorSpace last\n"
              "SetColor 0.25\n");
    // The host's space is left as it was.
    EXPECT_EQ(FindInterface<IObject>(orange.Get(), IO::IID_IDICTIONARY), nullptr);
}

TEST_F(DeviceNDelegate, InkThatCannotBeMadeOverCmykIsNotSet) {
    constexpr const char* kFailed = "Failed to create seperation colorspace with CMYK alternate\n";
    const auto delegate = Plain();
    EXPECT_FALSE(delegate->SetColorSpace(Spot("", rgb).Get(), true));
    EXPECT_EQ(log.Messages(),
              std::string("Separation ColorSpace name should not be empty\n") + kFailed);
    log.Clear();
    factory->creators.erase(COLOR::IID_ICONNECTIONCOLORSPACEFACTORY);
    EXPECT_FALSE(delegate->SetColorSpace(Spot("Orange", gray).Get(), true));
    EXPECT_EQ(log.Messages(), std::string("Could not create colour space factory.\n") + kFailed);
    log.Clear();
    factory->creators.erase(COLOR::CLSID_COLORFUNCTIONFACTORY);
    EXPECT_FALSE(delegate->SetColorSpace(Spot("Orange", gray).Get(), true));
    EXPECT_EQ(log.Messages(), std::string("Could not create ColorFunctionFactory.\n") + kFailed);
    EXPECT_EQ(log.Entries().front().file, "src/devicenconnectionspacedelegate");
    EXPECT_EQ(out->Take(), "");
}

TEST_F(DeviceNDelegate, MissingStatesAndDestinationsWriteNoColour) {
    const float values[] = {0, 0, 0};
    for (const auto& delegate : {Plain(), Managed()}) {
        EXPECT_FALSE(delegate->SetColor(values, 3, true));  // no current space
        state->space = rgb;
        EXPECT_FALSE(delegate->SetColor(nullptr, 3, true));
        delegate->SetGraphicsState(nullptr);
        EXPECT_FALSE(delegate->SetColor(values, 3, true));
        state->space = nullptr;
    }
    EXPECT_EQ(log.Messages(), "");
    destination = nullptr;
    state->space = rgb;
    EXPECT_FALSE(Plain()->SetColor(values, 3, true));
    EXPECT_FALSE(Managed()->SetColor(values, 3, true));
    EXPECT_EQ(log.Count("Output ColorSpace can't be NULL here!!!"), 2);
    EXPECT_EQ(out->Take(), "");
}

struct PatternCase {
    const char* name;
    SpacePtr (*underlying)();
    const char* plain;
    const char* managed;
};

class DeviceNPatterns : public DeviceNDelegate, public testing::WithParamInterface<PatternCase> {};

// The pattern space is laid over whatever space was selected, which takes its own components.
TEST_P(DeviceNPatterns, TakeTheComponentsOfTheSpaceThatWasSelected) {
    state->color = {0.25F, 0.5F, 0.75F, 1};
    EXPECT_TRUE(Plain()->SetUncoloredPattern("P1.1", GetParam().underlying().Get(), true));
    EXPECT_EQ(out->Take(), GetParam().plain);
    EXPECT_TRUE(Managed()->SetUncoloredPattern("P1.1", GetParam().underlying().Get(), true));
    EXPECT_EQ(out->Take(), GetParam().managed);
}

constexpr const char* kSpotPattern = "SetSeparationColorSpace Orange\nSetPatternColor P1.1 0.25\n";
constexpr const char* kInkPattern = "SetDeviceNColorSpace\nSetPatternColor P1.1 0.25 0.5\n";
constexpr const char* kRgbPattern =
    "SetDeviceColorSpace cmyk\nSetPatternColor P1.1 0.75 0.5 0.25 1\n";
constexpr const char* kCmykPattern =
    "SetDeviceColorSpace cmyk\nSetPatternColor P1.1 0.75 0.5 0.25 0\n";
constexpr const char* kPlatePattern = "SetRegistrationColorSpace\nSetPatternColor P1.1 0.25\n";

INSTANTIATE_TEST_SUITE_P(
    Underlying, DeviceNPatterns,
    testing::Values(
        PatternCase{"Spot", SpotOver<Of<FakeDeviceSpace, "rgb "_cc>>, kSpotPattern, kSpotPattern},
        PatternCase{"DeviceN", TwoInks, kInkPattern, kInkPattern},
        PatternCase{"Registration", SpotOver<Of<FakeRegistrationSpace>>, kPlatePattern,
                    kPlatePattern},
        PatternCase{"Gray", Of<FakeDeviceSpace, "gray"_cc>,
                    "SetDeviceColorSpace cmyk\nSetPatternColor P1.1 0 0 0 0.75\n",
                    "SetDeviceColorSpace gray\nSetPatternColor P1.1 0.25\n"},
        PatternCase{"Rgb", Of<FakeDeviceSpace, "rgb "_cc>, kRgbPattern, kRgbPattern},
        PatternCase{"Cmyk", Of<FakeDeviceSpace, "cmyk"_cc>, kCmykPattern, kCmykPattern}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(DeviceNDelegate, PatternsWithoutUnderlyingSpaceAreRefused) {
    EXPECT_FALSE(Plain()->SetUncoloredPattern("P1.1", nullptr, true));
    EXPECT_TRUE(log.Has("Underlying colorspace of pattern color space can't be NULL!!!"));
    EXPECT_FALSE(Plain()->SetUncoloredPattern("P1.1", Spot("", rgb).Get(), true));
    EXPECT_EQ(out->Take(), "");
}

TEST_F(DeviceNDelegate, ShadingsInInksKeepTheirColours) {
    const auto axial = MakeObject<FakeAxialShading>();
    const auto coons = MakeObject<FakeTensorShading>();
    const auto lattice = MakeObject<FakeLatticeShading>();
    coons->coons = true;
    const auto delegate = Plain(OPTION::kLevel2);
    const std::pair<SpacePtr, const char*> kSpaces[] = {
        {cmyk, "none"},      {Spot("Orange", rgb), "none"},
        {TwoInks(), "none"}, {rgb, "4"},
        {gray, "4"},         {MakeObject<FakeProfileSpace>("cmyk"_cc), "4"}};
    for (const auto& [space, into] : kSpaces) {
        axial->colours = coons->colours = lattice->colours = space;
        delegate->FillWithColorSpace(axial.Get(), 1, 0, 0, 1, 1, true);
        delegate->FillWithColorSpace(lattice.Get(), 1, 0, 0, 1, 1, false);
        delegate->FillWithColorSpace(coons.Get(), 1, 0, 0, 1, 1, true);
        EXPECT_EQ(out->Take(), std::string("Shading 2 into ") + into +
                                   " level 2 paint\nShading 5 into " + into +
                                   " level 2\nShading 6 into " + into + " level 2 paint\n");
    }
    delegate->FillWithColorSpace(nullptr, 1, 0, 0, 1, 1, true);
    EXPECT_EQ(log.Messages(), "");
    delegate->FillWithColorSpace(rgb.Get(), 1, 0, 0, 1, 1, true);
    EXPECT_TRUE(log.Has("there are only 7 shading types."));
}

TEST_F(DeviceNDelegate, GrayRastersOfOtherKindsAreOnlyReported) {
    Plain()->WriteGreyscaleImage(*MakeObject<FakeRaster>(), 0, 0, 1, 1);
    EXPECT_EQ(log.Messages(), "Unimplemented.\n");
}

struct InkCase {
    const char* name;
    FourCC signature;
    FourCC alternate;  ///< 0: refused
    std::vector<float> full;
};

class InkSignatures : public DeviceNDelegate, public testing::WithParamInterface<InkCase> {};

TEST_P(InkSignatures, GiveTheChannelItsSeparation) {
    const InkCase& tested = GetParam();
    FakeInk ink(CoreString("Orange"), COLOR::InkColorKind::kCMYK, {0.9F, 0.7F, 0.5F, 0.3F});
    ink.signature = tested.signature;
    FakeChannel channel;
    const Status status = RENDERING::AddColorSpaceToSpotChannel(*factory, &channel, ink);
    if (tested.alternate == 0) {
        EXPECT_NE(status, STATUS::kOk);
        EXPECT_EQ(channel.GetSeparationSpace(), nullptr);
        EXPECT_EQ(log.Messages(), "Color signature " + std::to_string(tested.signature) +
                                      " not handled.\nFailed to create alternate ColorSpace\n");
        return;
    }
    ASSERT_EQ(status, STATUS::kOk);
    const auto* space = channel.GetSeparationSpace();
    EXPECT_TRUE(*space->GetColorantName() == CoreString("Orange"));
    EXPECT_EQ(GRAPHICS::HELPER::GetDeviceKey(space->GetAlternateSpace()), tested.alternate);
    const auto full = Evaluate(*space->GetTintFunction(), 1);
    ASSERT_EQ(full.size(), tested.full.size());
    for (std::size_t i = 0; i < full.size(); ++i) {
        EXPECT_FLOAT_EQ(full[i], tested.full[i]) << i;
    }
    EXPECT_EQ(Evaluate(*space->GetTintFunction(), 0), std::vector<float>(full.size(), 0));
    EXPECT_EQ(log.Messages(), "");
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, InkSignatures,
    testing::Values(InkCase{"Cmyk", "CMYK"_cc, "cmyk"_cc, {0.1F, 0.3F, 0.5F, 0.7F}},
                    InkCase{"Gray", "GRAY"_cc, "gray"_cc, {0.1F}},
                    InkCase{"Rgb", "RGB "_cc, "rgb "_cc, {0.1F, 0.3F, 0.5F}},
                    InkCase{"Hsb", "HSB "_cc, "rgb "_cc, {0.1F, 0.3F, 0.5F}},
                    InkCase{"Lab", "Lab "_cc, "clab"_cc, {0.1F, 0.3F, 0.5F}},
                    InkCase{"Unknown", "XYZ "_cc, 0, {}}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(DeviceNDelegate, InksWithoutValuesNameOrFactoriesGiveNoSeparation) {
    FakeChannel channel;
    FakeInk ink(CoreString("Orange"), COLOR::InkColorKind::kCMYK, {});
    ink.signatureValues = 3;
    EXPECT_NE(RENDERING::AddColorSpaceToSpotChannel(*factory, &channel, ink), STATUS::kOk);
    ink.signatureValues = 4;
    ink.name.reset();
    EXPECT_NE(RENDERING::AddColorSpaceToSpotChannel(*factory, &channel, ink), STATUS::kOk);
    EXPECT_TRUE(log.Has("Failed to create Separation ColorSpace"));
    factory->creators.erase(COLOR::CLSID_COLORFUNCTIONFACTORY);
    EXPECT_NE(RENDERING::AddColorSpaceToSpotChannel(*factory, &channel, ink), STATUS::kOk);
    EXPECT_TRUE(log.Has("Failed to create IColorFunctionFactory."));
    factory->creators.clear();
    EXPECT_NE(RENDERING::AddColorSpaceToSpotChannel(*factory, &channel, ink), STATUS::kOk);
    EXPECT_TRUE(log.Has("Could not create colour space factory."));
    EXPECT_EQ(channel.GetSeparationSpace(), nullptr);
}

TEST_F(DeviceNDelegate, TablesThatDoNotFitTheirInksAddNoChannels) {
    factory->Offer<FakeChannel>(GRAPHICS::CLSID_CHANNELDESC);
    const auto inks = MakeObject<FakeInkCollection>();
    inks->Add("Orange", COLOR::InkColorKind::kCMYK, {1, 1, 1, 1});
    const auto empty = MakeObject<FakeInkCollection>();
    const auto indices = MakeObject<FakeChannelData>(std::vector<Line>{{0}});
    TInterfacePtr<GRAPHICS::IRasterComponent> raster = MakeObject<FakeRaster>();
    TInterfacePtr<GRAPHICS::IRasterComponent> none;
    const std::uint8_t table[] = {1, 2};

    struct Refusal {
        GRAPHICS::IChannelData* indices;
        std::int32_t depth;
        const std::uint8_t* table;
        std::int32_t entries;
        std::int32_t components;
        const FakeInkCollection* inks;
        TInterfacePtr<GRAPHICS::IRasterComponent>* raster;
        const char* message;
    };

    const Refusal kRefusals[] = {
        {nullptr, 8, table, 2, 1, inks.Get(), &raster, "Source index channel data is invalid."},
        {indices.Get(), 16, table, 2, 1, inks.Get(), &raster,
         "Source index channel data is invalid."},
        {indices.Get(), 8, nullptr, 2, 1, inks.Get(), &raster, "LUT is invalid."},
        {indices.Get(), 8, table, 0, 1, inks.Get(), &raster, "LUT is invalid."},
        {indices.Get(), 8, table, 2, 1, inks.Get(), &none, "Destination channel desc is not NULL."},
        {indices.Get(), 8, table, 2, 1, empty.Get(), &raster, "Ink collection is empty."},
        {indices.Get(), 8, table, 2, 1, nullptr, &raster, "Ink collection is empty."},
        {indices.Get(), 8, table, 1, 2, inks.Get(), &raster,
         "Ink collection count and number of component in LUT are not matching. That should be "
         "same."},
    };
    for (const Refusal& each : kRefusals) {
        log.Clear();
        EXPECT_NE(RENDERING::AddSpotChannelDescFromLUT(*factory, each.indices, each.depth,
                                                       each.table, each.entries, each.components,
                                                       each.inks, *each.raster),
                  STATUS::kOk);
        EXPECT_EQ(log.Messages(), std::string(each.message) + "\n");
        EXPECT_EQ(raster->GetExtraCount(), 0);
    }
}

}  // namespace
}  // namespace VANTIX::TEST
