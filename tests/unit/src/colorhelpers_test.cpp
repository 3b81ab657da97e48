// SPDX-License-Identifier: MIT
#include "core/graphics/pluginhelper/colorhelpers.h"

#include <gtest/gtest.h>

#include "core/graphics/pluginhelper/rasterhelpers.h"
#include "support/fakecolorspaces.h"
#include "support/fakefactory.h"
#include "support/fakefunctions.h"
#include "support/recordinglogger.h"

namespace VANTIX::TEST {
namespace {

using GRAPHICS::HELPER::GetDeviceKey;
using GRAPHICS::HELPER::IsCMYKColorSpace;
using GRAPHICS::HELPER::NormalizeOutputValues;

class FakeIndexedSpace
    : public FakeColorSpace<COLOR::IIndexedConnectionColorSpace, COLOR::IID_IINDEXEDCOLORSPACE> {
public:
    explicit FakeIndexedSpace(TInterfacePtr<COLOR::IConnectionColorSpace> baseSpace)
        : base(std::move(baseSpace)) {}

    TInterfacePtr<COLOR::IConnectionColorSpace> base;

    COLOR::IConnectionColorSpace* GetBaseSpace() const override { return base.Get(); }

    std::int32_t GetEntryCount() const override { return 0; }

    const std::uint8_t* GetLUT() const override { return nullptr; }
};

class ColorHelpers : public ::testing::Test {
protected:
    ColorHelpers() { log.Clear(); }

    RecordingLogger& log = RecordingLogger::Get();
};

TEST_F(ColorHelpers, DeviceKeyLooksThroughPalettesAndSpotColours) {
    const auto lab = MakeObject<FakeCalibratedSpace>("clab"_cc);
    const auto spot = MakeObject<FakeSeparationSpace>("Orange", lab, nullptr);
    const auto inks = MakeObject<FakeDeviceNSpace>();
    inks->alternate = spot;
    const auto palette = MakeObject<FakeIndexedSpace>(inks);
    EXPECT_EQ(GetDeviceKey(palette.Get()), "clab"_cc);
    EXPECT_EQ(GetDeviceKey(MakeObject<FakeDeviceSpace>("cmyk"_cc).Get()), "cmyk"_cc);
    EXPECT_EQ(GetDeviceKey(MakeObject<FakeProfileSpace>("rgb "_cc).Get()), "rgb "_cc);
    EXPECT_EQ(log.Messages(), "");
}

TEST_F(ColorHelpers, DeviceKeyNamesTheMissingAlternate) {
    const auto palette = MakeObject<FakeIndexedSpace>(nullptr);
    EXPECT_EQ(GetDeviceKey(palette.Get()), 0U);
    const auto spot = MakeObject<FakeSeparationSpace>("Orange", nullptr, nullptr);
    EXPECT_EQ(GetDeviceKey(spot.Get()), 0U);
    EXPECT_EQ(GetDeviceKey(MakeObject<FakeDeviceNSpace>().Get()), 0U);
    EXPECT_EQ(GetDeviceKey(nullptr), 0U);
    EXPECT_EQ(log.Messages(),
              "No alternate colorsapce in an Indexed colorspace\n"
              "No alternate colorspace in a Separation colorspace\n"
              "No alternate colorspace in a DeviceN colorspace\n"
              "VANTIX::GRAPHICS::HELPER::GetDeviceKey: Failed to get device key from color "
              "space\n");
    EXPECT_EQ(log.Entries().front().file, "sdk/headers/core/graphics/pluginhelper");
}

TEST_F(ColorHelpers, DeviceKeyOfASpaceThatIsItsOwnAlternateComesToAnEnd) {
    const auto spot = MakeObject<FakeSeparationSpace>("Loop", nullptr, nullptr);
    spot->alternate = spot;
    EXPECT_EQ(GetDeviceKey(spot.Get()), 0U);
    EXPECT_EQ(log.Count("Failed to get device key"), 1);
    spot->alternate = nullptr;
}

TEST_F(ColorHelpers, OnlyCMYKAndRegistrationOfFourPlatesAreCMYK) {
    const auto registration = MakeObject<FakeRegistrationSpace>();
    EXPECT_FALSE(IsCMYKColorSpace(registration.Get()));
    registration->components = 4;
    EXPECT_TRUE(IsCMYKColorSpace(registration.Get()));
    EXPECT_TRUE(IsCMYKColorSpace(MakeObject<FakeProfileSpace>("cmyk"_cc).Get()));
    EXPECT_FALSE(IsCMYKColorSpace(MakeObject<FakeDeviceSpace>("rgb "_cc).Get()));
    EXPECT_FALSE(IsCMYKColorSpace(nullptr));
}

TEST_F(ColorHelpers, OutputsAreBroughtIntoTheirRangeThenIntoHostForm) {
    FakeExponential bytes(4, {}, {}, 1);
    bytes.range = {0, 255, 0, 1, 5, 5, 0.5F, 1};
    float cmyk[] = {127.5F, 0.25F, 7, 0.75F};
    const auto space = MakeObject<FakeDeviceSpace>("cmyk"_cc);
    NormalizeOutputValues(&bytes, space.Get(), cmyk, 4);
    EXPECT_EQ(std::vector<float>(cmyk, cmyk + 4), (std::vector<float>{0.5F, 0.75F, 1, 0.25F}));

    FakeExponential unit(3, {}, {}, 1);
    float lab[] = {0.5F, 0, 1};
    const auto labSpace = MakeObject<FakeCalibratedSpace>("clab"_cc);
    NormalizeOutputValues(&unit, labSpace.Get(), lab, 3);
    EXPECT_EQ(std::vector<float>(lab, lab + 3), (std::vector<float>{50, -128, 127}));
}

TEST_F(ColorHelpers, FewerValuesThanOutputsAreReportedAndNotOverrun) {
    FakeExponential bytes(3, {}, {}, 1);
    bytes.range = {0, 2, 0, 2, 0, 2};
    float values[] = {1, 1, 42};
    NormalizeOutputValues(&bytes, nullptr, values, 2);
    EXPECT_EQ(values[1], 0.5F);
    EXPECT_EQ(values[2], 42);
    EXPECT_EQ(log.Messages(),
              "VANTIX::GRAPHICS::HELPER::NormalizeOutputValues: outvalueCount 2 < rangeSize 3\n");
}

class FakeChannelData : public TObject<GRAPHICS::IChannelData> {
public:
    explicit FakeChannelData(Status answer) : mAnswer(answer) {}

    std::int32_t lineBytes = 0;

    Status Init(std::int32_t /*width*/, std::int32_t /*height*/, std::int32_t /*bits*/,
                std::int32_t bytes) override {
        lineBytes = bytes;
        return mAnswer;
    }

    const std::uint8_t* GetLine(std::int32_t /*y*/) override { return nullptr; }

    std::int32_t GetLineBytes() const override { return lineBytes; }

    Status SetLine(std::int32_t /*y*/, const std::uint8_t* /*line*/) override { return 0; }

    bool IsFullyOpaque() const override { return true; }

private:
    Status mAnswer;
};

TEST_F(ColorHelpers, ObjectsThatFailToInitialiseAreReportedAndDropped) {
    const auto factory = MakeObject<FakeFactory>();
    TInterfacePtr<GRAPHICS::IChannelData> data = MakeObject<FakeChannelData>(0);
    EXPECT_FALSE(GRAPHICS::HELPER::CreateChannelData(factory.Get(), 8, 1, 8, 8, data));
    EXPECT_EQ(data, nullptr);

    factory->creators[GRAPHICS::CLSID_CHANNELDATA] = [] { return new FakeChannelData(0); };
    EXPECT_TRUE(GRAPHICS::HELPER::CreateChannelData(factory.Get(), 8, 1, 8, 24, data));
    EXPECT_EQ(data->GetLineBytes(), 24);

    factory->creators[GRAPHICS::CLSID_CHANNELDATA] = [] { return new FakeChannelData(29); };
    EXPECT_FALSE(GRAPHICS::HELPER::CreateChannelData(factory.Get(), 8, 1, 8, 8, data));
    EXPECT_EQ(data, nullptr);
    EXPECT_EQ(log.Messages(), "channelData->Init failed. Error = 29\n");
}

}  // namespace
}  // namespace VANTIX::TEST
