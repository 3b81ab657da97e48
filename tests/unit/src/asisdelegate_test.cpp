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

TEST_F(AsIsDelegate, LabProfileTakesTheWhitePointOfItsSpaceOrD50) {
    const auto delegate = Make(0);
    const auto lab = MakeObject<FakeProfileSpace>("clab"_cc);
    Paint(*delegate, lab, {50, 10, -10});
    EXPECT_EQ(out->Take(), "SetLabColorSpace 0.9642 1 0.8249\nSetColor 50 10 -10\n");
    lab->white = {0.95F, 1, 1.09F};
    Paint(*delegate, lab, {50, 10, -10});
    EXPECT_EQ(out->Take(), "SetLabColorSpace 0.95 1 1.09\nSetColor 50 10 -10\n");
}

TEST_F(AsIsDelegate, UnknownSpacesAndTooManyValuesWriteNothing) {
    const auto delegate = Make(0);
    EXPECT_FALSE(delegate->SetColorSpace(MakeObject<FakeTilePattern>().Get(), true));
    EXPECT_FALSE(delegate->SetColorSpace(nullptr, true));
    EXPECT_EQ(log.Count("This type of Input ConnectionColorSpace has not been handled yet."), 2);
    EXPECT_EQ(log.Entries().front().file, "src/asiscompositeconnectionspacedelegate");
    const std::vector<float> many(100, 0.5F);
    state->space = rgb;
    EXPECT_FALSE(delegate->SetColor(many.data(), 100, true));
    EXPECT_EQ(out->Take(), "");
}

TEST_F(AsIsDelegate, DefaultColourHasItsProfile) {
    Make(OPTION::kEmbedProfiles)->Init(true);
    EXPECT_EQ(out->Take(), "SetDefaultColour rgb  managed\n");
}

TEST_F(AsIsDelegate, TintFunctionLeadsIntoAnAlternateInLab) {
    const auto delegate = Make(OPTION::kConvertSpotsToProcess);
    Paint(*delegate, Spot(MakeObject<FakeCalibratedSpace>("clab"_cc)), {0.5F});
    EXPECT_EQ(out->Take(), "SetCalibratedColorSpace clab\nSetColor 80 20 35\n");
    EXPECT_EQ(log.Messages(), "");
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

TEST_F(AsIsDelegate, PatternThatCannotBeSetIsTold) {
    state->color = {0.1F, 0.2F, 0.3F};
    out->succeeds = false;
    EXPECT_FALSE(Make(0)->SetUncoloredPattern("P1.1", rgb.Get(), true));
}

TEST_F(AsIsDelegate, ShadingsOfConvertedSpotsHaveTheProfileOfTheirAlternate) {
    const auto shading = MakeObject<FakeAxialShading>();
    rgb->profile = MakeObject<FakeProfileSpace>("rgb "_cc, 33U);
    shading->colours = Spot(rgb);
    Make(OPTION::kConvertSpotsToProcess | OPTION::kEmbedProfiles)
        ->FillWithColorSpace(shading.Get(), 1, 0, 0, 1, 1, true);
    EXPECT_EQ(out->Take(),
              "GetColorSpaceResourceName 33 intent 1\nShading 2 into 3 level 3 paint managed\n");
}

}  // namespace
}  // namespace VANTIX::TEST
