// SPDX-License-Identifier: MIT
#include "asiscompositeconnectionspacedelegate/asiscompositeconnectionspacedelegate.h"
#include "support/delegatefixture.h"

namespace VANTIX::TEST {
namespace {

namespace OPTION = RENDERING::DELEGATEOPTION;

class AsIsDelegate : public DelegateFixture {
protected:
    TInterfacePtr<RENDERING::AsIsCompositeConnectionSpaceDelegate> Make(std::uint32_t options) {
        return Connect(
            MakeObject<RENDERING::AsIsCompositeConnectionSpaceDelegate>(*factory, options));
    }

    /// An orange whose tint function runs between two Lab colours.
    static TInterfacePtr<FakeSeparationSpace> Spot(
        TInterfacePtr<COLOR::IConnectionColorSpace> alternate) {
        return MakeObject<FakeSeparationSpace>(
            "Orange", std::move(alternate),
            MakeObject<FakeExponential>(3, std::vector<float>{100, 0, 0},
                                        std::vector<float>{60, 40, 70}, 1.0F));
    }
};

TEST_F(AsIsDelegate, ColoursKeepTheirSpaces) {
    const auto delegate = Make(0);
    Paint(*delegate, cmyk, {0.1F, 0.2F, 0.3F, 0.4F});
    EXPECT_EQ(out->Take(), "SetDeviceColorSpace cmyk\nSetColor 0.9 0.8 0.7 0.6\n");
    Paint(*delegate, MakeObject<FakeProfileSpace>("cmyk"_cc), {0.1F, 0.2F, 0.3F, 0.4F});
    EXPECT_EQ(out->Take(), "SetDeviceColorSpace cmyk\nSetColor 0.9 0.8 0.7 0.6\n");
    Paint(*delegate, rgb, {0.1F, 0.2F, 0.3F});
    EXPECT_EQ(out->Take(), "SetDeviceColorSpace rgb \nSetColor 0.1 0.2 0.3\n");
    Paint(*delegate, MakeObject<FakeCalibratedSpace>("crgb"_cc), {0.1F, 0.2F, 0.3F});
    EXPECT_EQ(out->Take(), "SetCalibratedColorSpace crgb\nSetColor 0.1 0.2 0.3\n");
    Paint(*delegate, Spot(rgb), {0.5F});
    EXPECT_EQ(out->Take(), "SetSeparationColorSpace Orange\nSetColor 0.5\n");

    const auto inks = MakeObject<FakeDeviceNSpace>();
    inks->names.resize(4, CoreString("Ink"));
    Paint(*delegate, inks, {0.1F, 0.2F, 0.3F, 0.4F});
    EXPECT_EQ(out->Take(), "SetDeviceNColorSpace\nSetColor 0.1 0.2 0.3 0.4\n");
    EXPECT_EQ(log.Messages(), "");
}

TEST_F(AsIsDelegate, LabProfileTakesTheWhitePointOfItsSpaceOrD50) {
    const auto delegate = Make(0);
    const auto lab = MakeObject<FakeProfileSpace>("clab"_cc);
    Paint(*delegate, lab, {50, 10, -10});
    EXPECT_EQ(out->Take(), "SetLabColorSpace 0.9642 1 0.8249\nSetColor 50 10 -10\n");
    lab->white = {0.95F, 1, 1.09F};
    Paint(*delegate, lab, {50, 10, -10});
    EXPECT_EQ(out->Take(), "SetLabColorSpace 0.95 1 1.09\nSetColor 50 10 -10\n");
}

TEST_F(AsIsDelegate, UnknownSpacesAndMissingStatesWriteNothing) {
    const auto delegate = Make(0);
    EXPECT_FALSE(delegate->SetColorSpace(MakeObject<FakeTilePattern>().Get(), true));
    EXPECT_FALSE(delegate->SetColorSpace(nullptr, true));
    EXPECT_EQ(log.Count("This type of Input ConnectionColorSpace has not been handled yet."), 2);
    EXPECT_EQ(log.Entries().front().file, "src/asiscompositeconnectionspacedelegate");
    const std::vector<float> many(100, 0.5F);
    EXPECT_FALSE(delegate->SetColor(many.data(), 1, true));  // no current space
    state->space = rgb;
    EXPECT_FALSE(delegate->SetColor(many.data(), 100, true));
    EXPECT_FALSE(delegate->SetColor(nullptr, 3, true));
    delegate->SetGraphicsState(nullptr);
    EXPECT_FALSE(delegate->SetColor(many.data(), 3, true));
    EXPECT_EQ(out->Take(), "");
}

TEST_F(AsIsDelegate, DefaultColourIsWrittenOnlyWhenAskedFor) {
    const auto plain = Make(0);
    plain->Init(false);
    EXPECT_FALSE(plain->WasDefaultColourSet());
    EXPECT_EQ(out->Take(), "");
    plain->Init(true);
    EXPECT_TRUE(plain->WasDefaultColourSet());
    Make(OPTION::kEmbedProfiles)->Init(true);
    EXPECT_EQ(out->Take(), "SetDefaultColour rgb \nSetDefaultColour rgb  managed\n");
}

TEST_F(AsIsDelegate, ProcessModelWritesSpotsAsTheirAlternates) {
    const auto delegate = Make(OPTION::kConvertSpotsToProcess);
    Paint(*delegate, Spot(rgb), {0.5F});
    EXPECT_EQ(out->Take(), "SetDeviceColorSpace rgb \nSetColor 0.5 0 0\n");
    const auto inks = MakeObject<FakeDeviceNSpace>();
    inks->names.resize(2, CoreString("Ink"));
    inks->components = 2;
    inks->alternate = cmyk;
    Paint(*delegate, inks, {0.25F, 0.5F});
    EXPECT_EQ(out->Take(), "SetDeviceColorSpace cmyk\nSetColor 0.75 0.5 1 1\n");
    // Into Lab the tint function leads.
    Paint(*delegate, Spot(MakeObject<FakeCalibratedSpace>("clab"_cc)), {0.5F});
    EXPECT_EQ(out->Take(), "SetCalibratedColorSpace clab\nSetColor 80 20 35\n");
    EXPECT_EQ(log.Messages(), "");
}

TEST_F(AsIsDelegate, ProcessModelKeepsRegistrationOnEveryPlate) {
    const auto delegate = Make(OPTION::kConvertSpotsToProcess);
    Paint(*delegate, Spot(MakeObject<FakeRegistrationSpace>()), {1});
    Paint(*delegate, Spot(MakeObject<FakeNoneSpace>()), {1});
    EXPECT_EQ(out->Take(),
              "SetRegistrationColorSpace\nSetColor 1\nSetNoneColorSpace\nSetColor 1\n");
}

TEST_F(AsIsDelegate, EmbeddedProfilesAreSelectedByTheirResource) {
    const auto delegate = Make(OPTION::kEmbedProfiles);
    cmyk->profile = MakeObject<FakeProfileSpace>("cmyk"_cc, 44U);
    Paint(*delegate, cmyk, {0.1F, 0.2F, 0.3F, 0.4F});
    EXPECT_EQ(out->Take(),
              "GetColorSpaceResourceName 44 intent 1\nSetColorSpace 44 intent 1\n"
              "SetColor 0.9 0.8 0.7 0.6\n");
    Paint(*delegate, Spot(cmyk), {0.5F});
    EXPECT_EQ(out->Take(),
              "GetColorSpaceResourceName 44 intent 1\nSetSeparationColorSpace Orange managed\n"
              "SetColor 0.5\n");
    delegate->SetGraphicsState(nullptr);
    EXPECT_TRUE(delegate->SetColorSpace(cmyk.Get(), true));
    EXPECT_EQ(out->Take(), "GetColorSpaceResourceName 44 intent 3\nSetColorSpace 44 intent 3\n");
}

TEST_F(AsIsDelegate, ProfilesThatCannotBeEmbeddedFallBackToTheirDeviceSpace) {
    const auto delegate = Make(OPTION::kEmbedProfiles);
    Paint(*delegate, rgb, {1, 0, 0});  // without a profile
    EXPECT_EQ(out->Take(), "SetDeviceColorSpace rgb \nSetColor 1 0 0\n");
    out->resourceName.clear();
    Paint(*delegate, MakeObject<FakeProfileSpace>("cmyk"_cc, 44U), {1, 1, 1, 0});
    EXPECT_EQ(out->Take(),
              "GetColorSpaceResourceName 44 intent 1\nSetDeviceColorSpace cmyk\n"
              "SetColor 0 0 0 1\n");
}

TEST_F(AsIsDelegate, SpaceThatIsItsOwnAlternateComesToAnEnd) {
    const auto delegate = Make(OPTION::kEmbedProfiles);
    const auto loop = Spot(nullptr);
    loop->alternate = loop;
    delegate->SetColorSpace(loop.Get(), true);
    EXPECT_EQ(log.Count("has not been handled yet"), 1);
    loop->alternate = nullptr;
}

TEST_F(AsIsDelegate, UncolouredPatternTakesTheColourOfItsUnderlyingSpace) {
    state->color = {0.1F, 0.2F, 0.3F, 0.4F};
    state->space = MakeObject<FakeTilePattern>();
    const auto delegate = Make(0);
    EXPECT_TRUE(delegate->SetUncoloredPattern("P1.1", cmyk.Get(), true));
    EXPECT_EQ(out->Take(), "SetDeviceColorSpace cmyk\nSetPatternColor P1.1 0.9 0.8 0.7 0.6\n");
    EXPECT_TRUE(
        Make(OPTION::kConvertSpotsToProcess)->SetUncoloredPattern("P1.1", Spot(rgb).Get(), true));
    EXPECT_EQ(out->Take(), "SetDeviceColorSpace rgb \nSetPatternColor P1.1 0.1 0 0\n");
    out->succeeds = false;
    EXPECT_FALSE(delegate->SetUncoloredPattern("P1.1", rgb.Get(), true));
    EXPECT_FALSE(delegate->SetUncoloredPattern("P1.1", nullptr, true));
    EXPECT_TRUE(log.Has("Underlying colorspace of pattern color space can't be NULL!!!"));
}

TEST_F(AsIsDelegate, ShadingsKeepTheirColoursUnlessSpotsAreConverted) {
    const auto shading = MakeObject<FakeAxialShading>();
    rgb->profile = MakeObject<FakeProfileSpace>("rgb "_cc, 33U);
    shading->colours = Spot(rgb);
    Make(0)->FillWithColorSpace(shading.Get(), 1, 0, 0, 1, 1, true);
    EXPECT_EQ(out->Take(), "Shading 2 into none level 3 paint\n");
    Make(OPTION::kConvertSpotsToProcess)->FillWithColorSpace(shading.Get(), 1, 0, 0, 1, 1, false);
    EXPECT_EQ(out->Take(), "Shading 2 into 3 level 3\n");
    Make(OPTION::kConvertSpotsToProcess | OPTION::kEmbedProfiles)
        ->FillWithColorSpace(shading.Get(), 1, 0, 0, 1, 1, true);
    EXPECT_EQ(out->Take(),
              "GetColorSpaceResourceName 33 intent 1\nShading 2 into 3 level 3 paint managed\n");
    Make(0)->FillWithColorSpace(nullptr, 1, 0, 0, 1, 1, true);
    EXPECT_EQ(log.Messages(), "");
    Make(0)->FillWithColorSpace(rgb.Get(), 1, 0, 0, 1, 1, true);
    EXPECT_TRUE(log.Has("there are only 7 shading types."));
}

}  // namespace
}  // namespace VANTIX::TEST
