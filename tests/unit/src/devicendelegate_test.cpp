// SPDX-License-Identifier: MIT

#include "core/graphics/pluginhelper/colorhelpers.h"
#include "devicenconnectionspacedelegate/devicenconnectionspacedelegate.h"
#include "devicenconnectionspacedelegate/spotchannels.h"
#include "support/delegatefixture.h"
#include "support/fakeraster.h"

namespace VANTIX::TEST {
namespace {

using DelegatePtr = TInterfacePtr<RENDERING::DeviceNConnectionSpaceDelegate>;
using SpacePtr = TInterfacePtr<COLOR::IConnectionColorSpace>;

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

class DeviceNDelegate : public DelegateFixture {
protected:
    DeviceNDelegate() { factory->Offer<FakeFunctionFactory>(COLOR::CLSID_COLORFUNCTIONFACTORY); }

    DelegatePtr Make() {
        return Connect(DelegatePtr::Adopt(static_cast<RENDERING::DeviceNConnectionSpaceDelegate*>(
            RENDERING::CreateDeviceNConnectionSpaceDelegate(
                *factory, MakeObject<FakeDeviceSpace>("cmyk"_cc).Get(), 0))));
    }
};

TEST_F(DeviceNDelegate, InkOverAnotherAlternateIsMadeOnceAndThenNamed) {
    const auto delegate = Make();
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
    const auto delegate = Make();
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
