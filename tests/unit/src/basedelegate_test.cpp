// SPDX-License-Identifier: MIT
#include <regex>

#include "baseconnectionspacedelegate/baseconnectionspacedelegate.h"
#include "support/delegatefixture.h"

namespace VANTIX::TEST {
namespace {

/// A delegate that converts everything into one space: as little as makes the base concrete.
class PlainDelegate : public RENDERING::BaseConnectionSpaceDelegate {
public:
    PlainDelegate(IClassFactory& factory, COLOR::IConnectionColorSpace* destination,
                  std::uint32_t options = 0)
        : BaseConnectionSpaceDelegate(factory, destination, options) {}

    using BaseConnectionSpaceDelegate::mLanguageLevel;
    using BaseConnectionSpaceDelegate::SetCalibratedColorSpace;
    using BaseConnectionSpaceDelegate::SetColorWithConversion;
    using BaseConnectionSpaceDelegate::SetDeviceColorSpaceByKey;
    using BaseConnectionSpaceDelegate::SetDeviceNColorSpace;
    using BaseConnectionSpaceDelegate::SetSeparationColorSpace;

    bool accepts = true;

    bool SetColorSpace(COLOR::IConnectionColorSpace* /*space*/, bool /*fill*/) override {
        return accepts;
    }

    bool SetColor(const float* values, std::int32_t count, bool fill) override {
        return SetColorWithConversion(CurrentColorSpace(fill), mDestination.Get(), values, count);
    }

    void Image(GRAPHICS::IRasterComponent& /*raster*/, float /*x*/, float /*y*/, float /*width*/,
               float /*height*/) override {}

    void InjectIndexedImage(GRAPHICS::IRasterComponent& /*raster*/, float /*x*/, float /*y*/,
                            float /*width*/, float /*height*/,
                            COLOR::IIndexedConnectionColorSpace* /*indexed*/) override {}

    void WriteGreyscaleImage(GRAPHICS::IRasterComponent& /*raster*/, float /*x*/, float /*y*/,
                             float /*width*/, float /*height*/) override {}
};

class BaseDelegate : public DelegateFixture {
protected:
    TInterfacePtr<PlainDelegate> Make(COLOR::IConnectionColorSpace* destination,
                                      std::uint32_t options = 0) {
        return Connect(MakeObject<PlainDelegate>(*factory, destination, options));
    }

    TInterfacePtr<FakeSeparationSpace> Spot(const char* name) {
        return MakeObject<FakeSeparationSpace>(name, rgb, nullptr);
    }

    static TInterfacePtr<FakeSeparationSpace> Registration() {
        return MakeObject<FakeSeparationSpace>("All", MakeObject<FakeRegistrationSpace>(), nullptr);
    }
};

TEST_F(BaseDelegate, SpotSpaceIsDefinedOnceAndThenNamed) {
    const auto delegate = Make(nullptr);
    const auto spot = Spot("Orange");
    EXPECT_TRUE(delegate->SetSeparationColorSpace(spot.Get(), false));
    EXPECT_TRUE(delegate->SetSeparationColorSpace(spot.Get(), false));
    EXPECT_EQ(out->Take(), "SetSeparationColorSpace Orange\nSetNamedColorSpace last\n");
    EXPECT_TRUE(std::regex_match(out->lastName, std::regex("SEPCS-[0-9A-F]{32}"))) << out->lastName;

    const auto inks = MakeObject<FakeDeviceNSpace>();
    inks->names = {CoreString("Orange"), CoreString("Green")};
    EXPECT_TRUE(delegate->SetDeviceNColorSpace(inks.Get(), true));
    EXPECT_TRUE(delegate->SetDeviceNColorSpace(inks.Get(), true));
    EXPECT_EQ(out->Take(), "SetDeviceNColorSpace managed\nSetNamedColorSpace last\n");
    EXPECT_TRUE(std::regex_match(out->lastName, std::regex("DevNCS-[0-9A-F]{32}")))
        << out->lastName;
}

TEST_F(BaseDelegate, NamesLongerThanTheStackBufferAreUsedWhole) {
    const auto delegate = Make(nullptr);
    const auto spot = Spot("Orange");
    const auto properties = MakeObject<FakeKeyedProperties>();
    const std::string name(5000, 'n');
    properties->Set("PSNM"_cc, name.data(), 5000);
    spot->Aggregate(properties.Get(), IO::IID_IDICTIONARY);
    EXPECT_TRUE(delegate->SetSeparationColorSpace(spot.Get(), false));
    EXPECT_EQ(out->Take(), "SetNamedColorSpace " + name + "\n");
}

TEST_F(BaseDelegate, NamesOfTheJobLeaveTheSpacesWithTheDelegateButNotThoseOfAnotherJob) {
    const auto mine = Spot("Orange");
    const auto taken = Spot("Green");
    const auto other = MakeObject<FakeKeyedProperties>();
    {
        const auto delegate = Make(nullptr);
        delegate->SetSeparationColorSpace(mine.Get(), false);
        delegate->SetSeparationColorSpace(taken.Get(), false);
        EXPECT_NE(FindInterface<IObject>(mine.Get(), IO::IID_IDICTIONARY), nullptr);
        taken->Aggregate(other.Get(), IO::IID_IDICTIONARY);
    }
    EXPECT_EQ(FindInterface<IObject>(mine.Get(), IO::IID_IDICTIONARY), nullptr);
    EXPECT_EQ(FindInterface<IObject>(taken.Get(), IO::IID_IDICTIONARY), other.Get());
}

TEST_F(BaseDelegate, SpotSpaceWithoutNameIsRefusedAndAnEmptyNameMeansAllPlates) {
    const auto delegate = Make(nullptr);
    EXPECT_TRUE(delegate->SetSeparationColorSpace(Spot("").Get(), true));
    EXPECT_EQ(out->Take(), "SetSeparationColorSpace All managed\n");

    const auto broken = Spot("");
    broken->name = CoreString(u"\xD800");
    EXPECT_FALSE(delegate->SetSeparationColorSpace(broken.Get(), false));
    EXPECT_FALSE(delegate->SetDeviceNColorSpace(MakeObject<FakeDeviceNSpace>().Get(), false));
    EXPECT_FALSE(delegate->SetSeparationColorSpace(nullptr, false));
    EXPECT_FALSE(delegate->SetDeviceNColorSpace(nullptr, false));
    EXPECT_FALSE(delegate->SetCalibratedColorSpace(nullptr));
    EXPECT_EQ(out->Take(), "");
    EXPECT_EQ(log.Messages(),
              "The separation colour space is missing the special color name (SPOT COLOR NAME).\n"
              "The DeviceN colour space is missing the special color name (SPOT COLOR NAME).\n");
}

TEST_F(BaseDelegate, WithoutPropertyObjectsASpotSpaceIsWrittenButCountsAsFailed) {
    factory->creators.erase(IO::CLSID_KEYEDPROPERTIES);
    const auto delegate = Make(nullptr);
    EXPECT_FALSE(delegate->SetSeparationColorSpace(Spot("Orange").Get(), false));
    EXPECT_EQ(out->Take(), "SetSeparationColorSpace Orange\n");
}

TEST_F(BaseDelegate, RegistrationAndNoneComeBeforeDeviceAndNamedSpaces) {
    const auto delegate = Make(nullptr);
    const auto all = Registration();
    const auto none = MakeObject<FakeSeparationSpace>("None", MakeObject<FakeNoneSpace>(), nullptr);
    EXPECT_TRUE(delegate->SetSeparationColorSpace(all.Get(), false));
    EXPECT_TRUE(delegate->SetDeviceColorSpaceByKey(none.Get(), "cmyk"_cc));
    EXPECT_TRUE(delegate->SetDeviceColorSpaceByKey(Spot("Orange").Get(), "cmyk"_cc));
    EXPECT_EQ(out->Take(),
              "SetRegistrationColorSpace\nSetNoneColorSpace\nSetDeviceColorSpace "
              "cmyk\n");
}

TEST_F(BaseDelegate, ConversionRefusesWhatItCannotWrite) {
    const auto delegate = Make(nullptr);
    const float values[] = {0.5F, 0.5F, 0.5F};
    EXPECT_FALSE(delegate->SetColorWithConversion(nullptr, rgb.Get(), values, 3));
    EXPECT_FALSE(delegate->SetColorWithConversion(rgb.Get(), nullptr, values, 3));
    const auto lab = MakeObject<FakeCalibratedSpace>("clab"_cc);
    EXPECT_FALSE(delegate->SetColorWithConversion(rgb.Get(), lab.Get(), values, 3));
    const auto wide = MakeObject<FakeDeviceNSpace>();
    wide->components = 1000;
    EXPECT_FALSE(delegate->SetColorWithConversion(wide.Get(), rgb.Get(), values, 3));
    EXPECT_EQ(log.Messages(),
              "srcColorSpace cannot be NULL.\nDo not handle this device color type.\n");
    EXPECT_EQ(out->Take(), "");
    // A colour shorter than its space is filled up with zeros.
    EXPECT_TRUE(delegate->SetColorWithConversion(rgb.Get(), rgb.Get(), values, 2));
    EXPECT_EQ(out->Take(), "SetColor 0.5 0.5 0\n");
}

TEST_F(BaseDelegate, WithoutOutputContextEveryOperationIsReportedAndFails) {
    const auto delegate = MakeObject<PlainDelegate>(*factory, rgb.Get());
    delegate->SetGraphicsState(state.Get());
    EXPECT_FALSE(delegate->SetDeviceColorSpaceByKey(rgb.Get(), "rgb "_cc));
    EXPECT_FALSE(delegate->SetSeparationColorSpace(Spot("Orange").Get(), false));
    EXPECT_FALSE(delegate->SetPatternColorSpace("P1.1"));
    EXPECT_FALSE(delegate->SetUncoloredPattern("P1.1", rgb.Get(), true));
    delegate->FillWithColorSpace(MakeObject<FakeAxialShading>().Get(), 1, 0, 0, 1, 1, true);
    EXPECT_EQ(log.Count("Expected to find an IPostScriptOutputContext."), 5);
    EXPECT_EQ(log.Entries().front().file, "src/baseconnectionspacedelegate");
}

TEST_F(BaseDelegate, SpaceThatCannotBeSetIsReportedAndItsColourNotWritten) {
    const auto delegate = Make(rgb.Get());
    delegate->accepts = false;
    Paint(*delegate, rgb, {0, 0, 0});
    EXPECT_EQ(out->Take(), "");
    EXPECT_EQ(log.Messages(), "Failed to set color space.\n");
}

TEST_F(BaseDelegate, UncolouredPatternIsConvertedIntoTheSpaceThatWasSelected) {
    state->color = {0.2F, 0.4F, 0.6F, 0.8F};
    EXPECT_TRUE(Make(rgb.Get())->SetPatternColorSpace("P2.2"));
    EXPECT_EQ(out->Take(), "SetPatternColor P2.2\n");
    const auto toCMYK = Make(cmyk.Get(), RENDERING::DELEGATEOPTION::kPromoteGray);
    EXPECT_TRUE(toCMYK->SetUncoloredPattern("P1.1", cmyk.Get(), true));
    EXPECT_TRUE(toCMYK->SetUncoloredPattern("P1.1", gray.Get(), true));
    EXPECT_EQ(out->Take(),
              "SetPatternColor P1.1 0.8 0.6 0.4 0.2\nSetPatternColor P1.1 0.8 1 1 1\n");

    toCMYK->accepts = false;
    EXPECT_FALSE(toCMYK->SetUncoloredPattern("P1.1", gray.Get(), true));
}

TEST_F(BaseDelegate, EveryTypeOfShadingReachesItsWriter) {
    const auto delegate = Make(cmyk.Get(), RENDERING::DELEGATEOPTION::kLevel2);
    const auto coons = MakeObject<FakeTensorShading>();
    coons->coons = true;
    const TInterfacePtr<COLOR::IConnectionColorSpace> shadings[] = {
        MakeObject<FakeFunctionShading>(), MakeObject<FakeAxialShading>(),
        MakeObject<FakeRadialShading>(),   MakeObject<FakeFreeFormShading>(),
        MakeObject<FakeLatticeShading>(),  coons,
        MakeObject<FakeTensorShading>()};
    for (std::size_t i = 0; i < std::size(shadings); ++i) {
        delegate->FillWithColorSpace(shadings[i].Get(), 1, 0, 0, 1, 1, true);
        EXPECT_EQ(out->Take(), "Shading " + std::to_string(i + 1) + " into 4 level 2 paint\n");
    }
}

}  // namespace
}  // namespace VANTIX::TEST
