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

TEST_F(DelegateFactory, NothingIsMadeWithoutColourSpacesOrForModelsThatAreMissing) {
    EXPECT_EQ(Make(7), nullptr);
    EXPECT_EQ(Make(16), nullptr);
    factory->creators.clear();
    EXPECT_EQ(Make(10), nullptr);
    EXPECT_EQ(log.Messages(),
              "There is no delegate of type 7.\nThere is no delegate of type 16.\n"
              "Could not create a color space factory.\n");
    EXPECT_EQ(log.Entries().back().file, "src/connectionspacedelegatefactory");
}

}  // namespace
}  // namespace VANTIX::TEST
