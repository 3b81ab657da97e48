// SPDX-License-Identifier: MIT
#include "connectionspacedelegatefactory.h"
#include "support/delegatefixture.h"
#include "support/fakedictionary.h"

namespace VANTIX::TEST {
namespace {

using RENDERING::TDelegateType;

class DelegateFactory : public DelegateFixture {
protected:
    TInterfacePtr<RENDERING::IConnectionSpaceDelegate> Make(std::int32_t type) {
        const auto maker = MakeObject<RENDERING::ConnectionSpaceDelegateFactory>();
        return TInterfacePtr<RENDERING::IConnectionSpaceDelegate>::Adopt(
            maker->CreateConnectionSpaceDelegate(*factory, static_cast<TDelegateType>(type),
                                                 options.Get()));
    }

    /// How the model writes a spot colour.
    std::string Written(std::int32_t type) {
        const auto delegate = Connect(Make(type));
        Paint(*delegate, MakeObject<FakeSeparationSpace>("Orange", rgb, nullptr), {0.5F});
        return out->Take();
    }

    TInterfacePtr<FakeDictionary> options = MakeObject<FakeDictionary>();
};

TEST_F(DelegateFactory, EveryUnknownModelIsAsIsAndOnlyTwoConvertSpots) {
    for (const std::int32_t type : {-1, 0, 9, 10, 13, 14, 17}) {
        EXPECT_EQ(Written(type), "SetSeparationColorSpace Orange\nSetColor 0.5\n") << type;
    }
    for (const std::int32_t type : {11, 12}) {
        EXPECT_EQ(Written(type), "SetDeviceColorSpace rgb \nSetColor 0.5 0 0\n") << type;
    }
    options = nullptr;
    EXPECT_EQ(Written(10), "SetSeparationColorSpace Orange\nSetColor 0.5\n");
}

TEST_F(DelegateFactory, OptionsReachTheDelegate) {
    options->SetInt(103, 2);
    options->SetBool(107, true);
    const auto shading = MakeObject<FakeAxialShading>();
    shading->colours = rgb;
    Connect(Make(10))->FillWithColorSpace(shading.Get(), 1, 0, 0, 1, 1, true);
    EXPECT_EQ(out->Take(), "Shading 2 into none level 2 paint managed\n");
    options->SetInt(103, 4);
    options->SetInt(107, 1);  // of another kind than is read
    Connect(Make(10))->FillWithColorSpace(shading.Get(), 1, 0, 0, 1, 1, true);
    EXPECT_EQ(out->Take(), "Shading 2 into none level 3 paint\n");
}

constexpr const char* kConverted = "1668118891";  // the identifier of DeviceCMYK
constexpr const char* kTintOfSpot = "SetSeparationColorSpace Orange\nSetColor 0.5\n";
constexpr const char* kInksOfSpot = "SetDeviceColorSpace cmyk\nSetColor 0.5 1 1 1\n";
constexpr const char* kGray = "SetDeviceColorSpace gray\nSetColor 0.25\n";

struct InkModel {
    std::int32_t type;
    const char* spot;     ///< how it writes a spot over CMYK
    const char* gray;     ///< and gray
    const char* shading;  ///< where it brings a shading in CMYK
};

class InkModels : public DelegateFactory, public testing::WithParamInterface<InkModel> {};

TEST_P(InkModels, HaveTheirClassOnDeviceCmyk) {
    const InkModel& model = GetParam();
    const auto delegate = Connect(Make(model.type));
    delegate->Init(true);
    EXPECT_EQ(out->Take(), "SetDefaultColour cmyk\n");
    Paint(*delegate, MakeObject<FakeSeparationSpace>("Orange", cmyk, nullptr), {0.5F});
    EXPECT_EQ(out->Take(), model.spot);
    Paint(*delegate, gray, {0.25F});
    EXPECT_EQ(out->Take(), model.gray);
    const auto shading = MakeObject<FakeAxialShading>();
    shading->colours = cmyk;
    delegate->FillWithColorSpace(shading.Get(), 1, 0, 0, 1, 1, true);
    EXPECT_EQ(out->Take(), "Shading 2 into " + std::string(model.shading) + " level 3 paint\n");
    shading->colours = rgb;
    delegate->FillWithColorSpace(shading.Get(), 1, 0, 0, 1, 1, true);
    EXPECT_EQ(out->Take(), std::string("Shading 2 into ") + kConverted + " level 3 paint\n");
    EXPECT_EQ(log.Messages(), "");
}

INSTANTIATE_TEST_SUITE_P(
    Types, InkModels,
    testing::Values(InkModel{7, kInksOfSpot, kGray, "none"},
                    InkModel{8, kInksOfSpot, kGray, kConverted},
                    InkModel{15, kTintOfSpot, "SetDeviceColorSpace cmyk\nSetColor 0 0 0 0.75\n",
                             "none"},
                    InkModel{16, kTintOfSpot, kGray, "none"}),
    [](const auto& model) { return "Type" + std::to_string(model.param.type); });

TEST_F(DelegateFactory, NothingIsMadeWithoutColourSpaces) {
    factory->creators.clear();
    EXPECT_EQ(Make(10), nullptr);
    EXPECT_EQ(Make(15), nullptr);
    EXPECT_EQ(log.Messages(),
              "Could not create a color space factory.\nCould not create a color space "
              "factory.\n");
    EXPECT_EQ(log.Entries().back().file, "src/connectionspacedelegatefactory");
}

}  // namespace
}  // namespace VANTIX::TEST
