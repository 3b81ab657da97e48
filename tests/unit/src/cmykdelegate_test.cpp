// SPDX-License-Identifier: MIT

#include "cmykcompositeconnectionspacedelegate/cmykcompositeconnectionspacedelegate.h"
#include "support/delegatefixture.h"
#include "support/fakeraster.h"

namespace VANTIX::TEST {
namespace {

namespace OPTION = RENDERING::DELEGATEOPTION;

using Plain = RENDERING::CMYKCompositeConnectionSpaceDelegate;
using Managed = RENDERING::ColorManagedCMYKCompositeConnectionSpaceDelegate;
using SpacePtr = TInterfacePtr<COLOR::IConnectionColorSpace>;

/// The destination, with the intents that it was last asked under.
class Inks : public FakeDeviceSpace {
public:
    Inks() : FakeDeviceSpace("cmyk"_cc, 4) {}

    mutable COLOR::TRenderingIntent intent{};

    bool FromPCS(const float pcs[3], float* values, COLOR::TRenderingIntent asked) const override {
        intent = asked;
        return FakeDeviceSpace::FromPCS(pcs, values, asked);
    }
};

class CmykDelegate : public DelegateFixture {
protected:
    template <class T>
    TInterfacePtr<T> Make(std::uint32_t options = 0) {
        return Connect(MakeObject<T>(*factory, destination.Get(), options));
    }

    TInterfacePtr<Inks> destination = MakeObject<Inks>();
};

SpacePtr Spot(const char* name, const SpacePtr& alternate) {
    return MakeObject<FakeSeparationSpace>(name, alternate, nullptr);
}

SpacePtr TwoInks() {
    auto space = MakeObject<FakeDeviceNSpace>();
    space->names.resize(2, CoreString("Ink"));
    space->components = 2;
    return space;
}

class CmykColours : public CmykDelegate, public testing::WithParamInterface<ColourCase> {};

TEST_P(CmykColours, BecomeInkAmountsOrStayGray) {
    const ColourCase& tested = GetParam();
    ExpectColours(tested, *Make<Plain>(tested.options), *Make<Managed>(tested.options));
}

template <class T, FourCC Family>
SpacePtr Of() {
    return MakeObject<T>(Family);
}

template <class T>
SpacePtr SpotOver() {
    return Spot("", MakeObject<T>());
}

SpacePtr Orange() {
    return Spot("Orange", MakeObject<FakeDeviceSpace>("rgb "_cc));
}

SpacePtr Black() {
    return Spot("Black", MakeObject<FakeDeviceSpace>("rgb "_cc));
}

// The fake host passes three components on and leaves the fourth at full ink.
constexpr const char* kOneTwoThree = "SetDeviceColorSpace cmyk\nSetColor 0.9 0.8 0.7 1\n";
constexpr const char* kKept = "SetDeviceColorSpace cmyk\nSetColor 0.9 0.8 0.7 0.6\n";
constexpr const char* kGray = "SetDeviceColorSpace gray\nSetColor 0.25\n";
constexpr const char* kHalf = "SetDeviceColorSpace cmyk\nSetColor 0.5 1 1 1\n";
constexpr const char* kBlack = "SetDeviceColorSpace cmyk\nSetColor 0 0 0 0.3\n";
constexpr const char* kPaper = "SetDeviceColorSpace cmyk\nSetColor 0 0 0 0\n";
constexpr const char* kDuotone = "SetDeviceColorSpace cmyk\nSetColor 0.75 0.5 1 1\n";
constexpr const char* kPlates =
    "SetRegistrationColorSpace\nSetRegistrationColorSpace\nSetColor 1\n";
constexpr const char* kNone = "SetNoneColorSpace\nSetNoneColorSpace\nSetColor 1\n";

INSTANTIATE_TEST_SUITE_P(
    Spaces, CmykColours,
    testing::Values(
        ColourCase{
            "Cmyk", Of<FakeDeviceSpace, "cmyk"_cc>, {0.1F, 0.2F, 0.3F, 0.4F}, kKept, kOneTwoThree},
        ColourCase{"CmykProfile",
                   Of<FakeProfileSpace, "cmyk"_cc>,
                   {0.1F, 0.2F, 0.3F, 0.4F},
                   kKept,
                   kOneTwoThree},
        ColourCase{
            "Rgb", Of<FakeDeviceSpace, "rgb "_cc>, {0.1F, 0.2F, 0.3F}, kOneTwoThree, kOneTwoThree},
        ColourCase{"Calibrated",
                   Of<FakeCalibratedSpace, "crgb"_cc>,
                   {0.1F, 0.2F, 0.3F},
                   kOneTwoThree,
                   kOneTwoThree},
        ColourCase{"Gray", Of<FakeDeviceSpace, "gray"_cc>, {0.25F}, kGray, kGray},
        ColourCase{"GrayProfile", Of<FakeProfileSpace, "gray"_cc>, {0.25F}, kGray, kGray},
        ColourCase{"PromotedGray",
                   Of<FakeDeviceSpace, "gray"_cc>,
                   {0.25F},
                   "SetDeviceColorSpace cmyk\nSetColor 0 0 0 1\n",
                   "SetDeviceColorSpace cmyk\nSetColor 0.75 1 1 1\n",
                   OPTION::kPromoteGray},
        ColourCase{"Spot", Orange, {0.5F}, kHalf, kHalf},
        ColourCase{"BlackSpot", Black, {0.3F}, kBlack, kBlack},
        ColourCase{"PaperOfASpot", Orange, {0}, kPaper, kPaper},
        ColourCase{"DeviceN", TwoInks, {0.25F, 0.5F}, kDuotone, kDuotone},
        ColourCase{"Registration", SpotOver<FakeRegistrationSpace>, {1}, kPlates, kPlates},
        ColourCase{"None", SpotOver<FakeNoneSpace>, {1}, kNone, kNone}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(CmykDelegate, PromotedGrayHasTheLuminanceOfTheConvertedColourInBlackAlone) {
    /// Gray in uneven inks.
    class UnevenInks : public Inks {
        bool FromPCS(const float pcs[3], float* values, COLOR::TRenderingIntent) const override {
            const float inks[] = {pcs[0], pcs[0] / 2, pcs[0] / 4, 0.8F};
            std::copy_n(inks, 4, values);
            return true;
        }
    };

    destination = MakeObject<UnevenInks>();
    const auto delegate = Make<Plain>(OPTION::kPromoteGray);
    Paint(*delegate, gray, {0.5F});
    // 1 - (0.3 x 0.5 + 0.59 x 0.25 + 0.11 x 0.125) x 0.8
    EXPECT_EQ(out->Take(), "SetDeviceColorSpace cmyk\nSetColor 0 0 0 0.751\n");
}

TEST_F(CmykDelegate, WithoutASpaceOneValueIsGrayAndSeveralAreRefused) {
    const float values[] = {0.25F, 0, 0, 0};
    const auto plain = Make<Plain>();
    EXPECT_TRUE(plain->SetColor(values, 1, true));
    EXPECT_EQ(out->Take(), "SetColor 0 0 0 0.75\n");
    EXPECT_FALSE(plain->SetColor(values, 4, true));
    EXPECT_EQ(log.Messages(),
              "There is no current fill colorspace and the valueCount received is > 1 (expecting "
              "a default fill colorspace of /DeviceGray.\n");
    EXPECT_EQ(log.Entries().front().file, "src/privatecmykcompositeconnectionspacedelegate");
    const auto managed = Make<Managed>();
    EXPECT_FALSE(managed->SetColor(values, 1, true));
    managed->SetGraphicsState(nullptr);
    EXPECT_FALSE(managed->SetColor(values, 1, true));
    EXPECT_EQ(log.Count("There is No Source Connection Color Space."), 2);
    EXPECT_EQ(log.Entries().back().file, "src/cmykcompositeconnectionspacedelegate");
    state->space = gray;
    EXPECT_FALSE(plain->SetColor(nullptr, 1, true));
    EXPECT_FALSE(plain->SetColor(values, 0, true));
    EXPECT_EQ(out->Take(), "");
}

TEST_F(CmykDelegate, WithoutAnOutputContextNothingIsSet) {
    const auto delegate = MakeObject<Plain>(*factory, destination.Get(), 0U);
    delegate->SetGraphicsState(state.Get());
    const float value = 0;
    delegate->Init(true);
    EXPECT_FALSE(delegate->SetColorSpace(gray.Get(), true));
    EXPECT_FALSE(delegate->SetColor(&value, 1, true));
    EXPECT_FALSE(delegate->SetUncoloredPattern("P1.1", gray.Get(), true));
    EXPECT_EQ(log.Count("Expected to find an IPostScriptOutputContext."), 4);
}

TEST_F(CmykDelegate, ConversionsTakeTheStatesIntents) {
    for (const auto& delegate :
         {TInterfacePtr<RENDERING::IConnectionSpaceDelegate>(Make<Plain>()),
          TInterfacePtr<RENDERING::IConnectionSpaceDelegate>(Make<Managed>())}) {
        destination->intent = {};
        Paint(*delegate, rgb, {0, 0, 0});
        EXPECT_EQ(destination->intent, state->intent2);
    }
}

struct PatternCase {
    const char* name;
    SpacePtr (*underlying)();
    const char* written;
};

class CmykPatterns : public CmykDelegate, public testing::WithParamInterface<PatternCase> {};

TEST_P(CmykPatterns, TakeTheComponentsOfTheSpaceThatWasSelected) {
    state->color = {0.1F, 0.2F, 0.3F, 0.4F};
    EXPECT_TRUE(Make<Plain>()->SetUncoloredPattern("P1.1", GetParam().underlying().Get(), true));
    EXPECT_EQ(out->Take(), GetParam().written);
}

INSTANTIATE_TEST_SUITE_P(
    Underlying, CmykPatterns,
    testing::Values(PatternCase{"Cmyk", Of<FakeDeviceSpace, "cmyk"_cc>,
                                "SetDeviceColorSpace cmyk\nSetPatternColor P1.1 0.9 0.8 0.7 0.6\n"},
                    PatternCase{"Rgb", Of<FakeDeviceSpace, "rgb "_cc>,
                                "SetDeviceColorSpace cmyk\nSetPatternColor P1.1 0.9 0.8 0.7 1\n"},
                    PatternCase{"Gray", Of<FakeDeviceSpace, "gray"_cc>,
                                "SetDeviceColorSpace gray\nSetPatternColor P1.1 0.1\n"},
                    PatternCase{"Spot", Orange,
                                "SetDeviceColorSpace cmyk\nSetPatternColor P1.1 0.9 1 1 1\n"},
                    PatternCase{"None", SpotOver<FakeNoneSpace>,
                                "SetNoneColorSpace\nSetPatternColor P1.1 0.1\n"}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(CmykDelegate, PatternsNeedAnUnderlyingSpaceAndADestination) {
    EXPECT_FALSE(Make<Plain>()->SetUncoloredPattern("P1.1", nullptr, true));
    EXPECT_EQ(log.Messages(), "Underlying colorspace of pattern color space can't be NULL!!!\n");
    destination = nullptr;
    EXPECT_FALSE(Make<Plain>()->SetUncoloredPattern("P1.1", rgb.Get(), true));
    EXPECT_EQ(out->Take(), "");
}

TEST_F(CmykDelegate, OnlyThePlainModelKeepsShadingsInItsSpace) {
    const auto function = MakeObject<FakeFunctionShading>();
    const auto coons = MakeObject<FakeTensorShading>();
    const auto tensor = MakeObject<FakeTensorShading>();
    const auto free = MakeObject<FakeFreeFormShading>();
    const auto axial = MakeObject<FakeAxialShading>();
    coons->coons = true;
    const std::pair<COLOR::IConnectionColorSpace*, SpacePtr*> shadings[] = {
        {function.Get(), &function->colours},
        {axial.Get(), &axial->colours},
        {free.Get(), &free->colours},
        {coons.Get(), &coons->colours},
        {tensor.Get(), &tensor->colours}};
    const char* kTypes[] = {"1", "2", "4", "6", "7"};
    const auto plain = Make<Plain>(OPTION::kLevel2);
    const auto managed = Make<Managed>();
    for (std::size_t i = 0; i < std::size(shadings); ++i) {
        const auto& [shading, colours] = shadings[i];
        const std::string type = std::string("Shading ") + kTypes[i];
        *colours = cmyk;
        plain->FillWithColorSpace(shading, 1, 0, 0, 1, 1, true);
        EXPECT_EQ(out->Take(), type + " into none level 2 paint\n");
        managed->FillWithColorSpace(shading, 1, 0, 0, 1, 1, false);
        EXPECT_EQ(out->Take(), type + " into 4 level 3\n");
        for (const SpacePtr& other : {SpacePtr(rgb), Spot("Orange", cmyk), SpacePtr()}) {
            *colours = other;
            plain->FillWithColorSpace(shading, 1, 0, 0, 1, 1, false);
            EXPECT_EQ(out->Take(), type + " into 4 level 2\n");
        }
    }
    plain->FillWithColorSpace(nullptr, 1, 0, 0, 1, 1, true);
    EXPECT_EQ(log.Messages(), "");
    plain->FillWithColorSpace(rgb.Get(), 1, 0, 0, 1, 1, true);
    managed->FillWithColorSpace(rgb.Get(), 1, 0, 0, 1, 1, true);
    EXPECT_EQ(log.Count("There is something wrong somewhere, there are only 7 shading types."), 2);
    EXPECT_EQ(out->Take(), "");
}

TEST_F(CmykDelegate, DefaultColourIsWrittenOnlyWhenAskedFor) {
    const auto delegate = Make<Managed>();
    delegate->Init(false);
    EXPECT_FALSE(delegate->WasDefaultColourSet());
    EXPECT_EQ(out->Take(), "");
    delegate->Init(true);
    EXPECT_TRUE(delegate->WasDefaultColourSet());
    EXPECT_TRUE(delegate->CanMarkTheCanvas());
    EXPECT_EQ(out->Take(), "SetDefaultColour cmyk\n");
}

TEST_F(CmykDelegate, GrayRastersOfOtherKindsAreOnlyReported) {
    constexpr GUID kSecondRasterList = "CF5F605E-0E34-4CED-961B-F2CA7F42A186"_guid;
    const auto delegate = Make<Plain>();
    const auto raster = MakeObject<FakeRaster>();
    const std::pair<std::int32_t, const char*> kDepths[] = {
        {8, "Unimplemented\n"},
        {16, "This is where we would do something with the color transformer.\n"},
        {32, "Some thing un-implemented.\n"}};
    for (const auto& [depth, message] : kDepths) {
        raster->bits = depth;
        delegate->WriteGreyscaleImage(*raster, 0, 0, 1, 1);
        EXPECT_EQ(log.Messages(), message);
        EXPECT_EQ(log.Entries().back().type == LogType::kNotice, depth == 16);
        log.Clear();
    }
    raster->bits = 16;
    raster->Aggregate(state.Get(), kSecondRasterList);
    delegate->WriteGreyscaleImage(*raster, 0, 0, 1, 1);
    delegate->InjectRGBImage(*raster, 0, 0, 1, 1);
    EXPECT_EQ(log.Messages(), "Unimplemented\nUnimplemented.\n");
}

}  // namespace
}  // namespace VANTIX::TEST
