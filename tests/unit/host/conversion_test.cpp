// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "host/color/colorspacefactory.h"
#include "support/iccprofiles.h"

namespace VANTIX::TEST {
namespace {

using COLOR::IConnectionColorSpace;
using COLOR::TRenderingIntent;
using testing::FloatNear;
using testing::Pointwise;

constexpr auto kRelative = TRenderingIntent::kRelativeColorimetric;

std::vector<float> ToPCS(const IConnectionColorSpace& space, const std::vector<float>& values,
                         TRenderingIntent intent = kRelative) {
    std::vector<float> pcs(3, -1);
    EXPECT_TRUE(space.ToPCS(values.data(), pcs.data(), intent));
    return pcs;
}

std::vector<float> FromPCS(const IConnectionColorSpace& space, const std::vector<float>& pcs,
                           TRenderingIntent intent = kRelative) {
    std::vector<float> values(static_cast<std::size_t>(space.GetComponentCount()), -1);
    EXPECT_TRUE(space.FromPCS(pcs.data(), values.data(), intent));
    return values;
}

class Conversion : public testing::Test {
protected:
    HOST::ColorSpacePtr Profile(const std::vector<std::uint8_t>& bytes, std::int32_t components) {
        std::string error;
        auto space = mFactory->ProfileSpace(bytes, components, error);
        EXPECT_TRUE(space) << error;
        return space;
    }

    TInterfacePtr<HOST::ColorSpaceFactory> mFactory = MakeObject<HOST::ColorSpaceFactory>();
};

TEST_F(Conversion, WhiteIsD50ForEverySpace) {
    const std::vector<float> white{0.9642F, 1, 0.8249F};
    for (const FourCC family : {"gray"_cc, "rgb "_cc, "cmyk"_cc}) {
        const auto space = mFactory->DeviceSpace(family);
        const std::vector<float> full(4, 1.0F);  // CMYK in complements: no ink
        EXPECT_THAT(ToPCS(*space, full), Pointwise(FloatNear(1e-3F), white));
    }
    const auto lab = HOST::ColorSpacePtr::Adopt(mFactory->CreateLabColorSpace(nullptr));
    EXPECT_THAT(ToPCS(*lab, {100, 0, 0}), Pointwise(FloatNear(1e-3F), white));
    HOST::CalibratedParameters daylight{.white = {0.9505F, 1, 1.089F}};
    std::string error;
    const auto warm = mFactory->CalibratedSpace("clab"_cc, daylight, error);
    EXPECT_THAT(ToPCS(*warm, {100, 0, 0}), Pointwise(FloatNear(1e-3F), white));
}

TEST_F(Conversion, StandardRedHasItsColorantUnderD50) {
    EXPECT_THAT(ToPCS(*mFactory->DeviceSpace("rgb "_cc), {1, 0, 0}),
                Pointwise(FloatNear(2e-3F), std::vector<float>{0.436F, 0.2225F, 0.0139F}));
    const auto middle = ToPCS(*mFactory->DeviceSpace("gray"_cc), {0.5F});
    EXPECT_NEAR(middle[1], std::pow((0.5 + 0.055) / 1.055, 2.4), 1e-4);
}

TEST_F(Conversion, InksWithoutAProfileFollowTheLanguagesRules) {
    const auto cmyk = mFactory->DeviceSpace("cmyk"_cc);
    const auto rgb = mFactory->DeviceSpace("rgb "_cc);
    const auto light = [&](const std::vector<float>& inks) {
        std::vector<float> host = inks;
        for (float& value : host) {
            value = 1 - value;
        }
        return FromPCS(*rgb, ToPCS(*cmyk, host));
    };
    EXPECT_THAT(light({0.2F, 0.4F, 0, 0.3F}),
                Pointwise(FloatNear(1e-3F), std::vector<float>{0.5F, 0.3F, 0.7F}));
    EXPECT_THAT(light({0.8F, 0, 0.1F, 0.5F}),
                Pointwise(FloatNear(1e-3F), std::vector<float>{0, 0.5F, 0.4F}));
    // Black takes the place of what the three inks share.
    EXPECT_THAT(FromPCS(*cmyk, ToPCS(*rgb, {0.5F, 0.3F, 0.7F})),
                Pointwise(FloatNear(1e-3F), std::vector<float>{0.8F, 0.6F, 1, 0.7F}));
}

TEST_F(Conversion, ProfilesOfEveryKindComeBackToTheirValues) {
    const auto roundTrip = [](const IConnectionColorSpace& space, const std::vector<float>& values,
                              float tolerance) {
        EXPECT_THAT(FromPCS(space, ToPCS(space, values)), Pointwise(FloatNear(tolerance), values));
    };
    roundTrip(*Profile(GammaGrayProfile(1.8), 1), {0.3F}, 1e-3F);
    roundTrip(*Profile(GammaRGBProfile(2.2), 3), {0.1F, 0.6F, 0.9F}, 1e-3F);
    roundTrip(*Profile(LabProfile(), 3), {60, -40, 30}, 0.1F);
    std::string error;
    HOST::CalibratedParameters parameters{.gammas = {2.2F, 2.2F, 2.2F},
                                          .matrix = {0.4124F, 0.2126F, 0.0193F, 0.3576F, 0.7152F,
                                                     0.1192F, 0.1805F, 0.0722F, 0.9505F}};
    parameters.white = {0.9505F, 1, 1.089F};
    const auto calibrated = mFactory->CalibratedSpace("crgb"_cc, parameters, error);
    roundTrip(*calibrated, {0.2F, 0.8F, 0.5F}, 2e-3F);
    EXPECT_THAT(ToPCS(*calibrated, {1, 0, 0}),
                Pointwise(FloatNear(2e-3F), std::vector<float>{0.436F, 0.2225F, 0.0139F}));
    const auto lab = mFactory->CalibratedSpace("clab"_cc, parameters, error);
    roundTrip(*lab, {5, -20, 40}, 0.01F);
}

TEST_F(Conversion, ProfilesOfInksTakeComplements) {
    const auto inks = Profile(InkProfile(), 4);
    EXPECT_TRUE(inks->StoresComponentsInverted());
    EXPECT_NEAR(ToPCS(*inks, {1, 1, 1, 1})[1], 1, 0.01);
    EXPECT_NEAR(ToPCS(*inks, {1, 1, 1, 0})[1], 0, 0.01);
    // The profile has no table for the other direction.
    const float pcs[3] = {0.5F, 0.5F, 0.4F};
    float values[4];
    EXPECT_FALSE(inks->FromPCS(pcs, values, kRelative));
    EXPECT_FALSE(inks->FromPCS(pcs, values, kRelative));
}

TEST_F(Conversion, ValuesBeyondTheirBoundsAndNoNumbersAreClipped) {
    const float kNaN = std::numeric_limits<float>::quiet_NaN();
    const auto rgb = mFactory->DeviceSpace("rgb "_cc);
    EXPECT_EQ(ToPCS(*rgb, {kNaN, 7, -3}), ToPCS(*rgb, {0, 1, 0}));
    for (const float v : FromPCS(*rgb, {kNaN, 1e30F, -1e30F})) {
        EXPECT_TRUE(v >= 0 && v <= 1);
    }
    const auto lab = HOST::ColorSpacePtr::Adopt(mFactory->CreateLabColorSpace(nullptr));
    EXPECT_EQ(ToPCS(*lab, {300, kNaN, 0}), ToPCS(*lab, {100, -128, 0}));
}

TEST_F(Conversion, DefaultProfilesStandBehindTheDeviceSpaces) {
    std::string error;
    EXPECT_FALSE(mFactory->SetDefaultProfiles({.gray = GammaRGBProfile(2.2)}, error));
    EXPECT_NE(error, "");
    EXPECT_EQ(mFactory->CreateDefaultProfileColorSpace("cmyk"_cc), nullptr);
    ASSERT_TRUE(
        mFactory->SetDefaultProfiles({.gray = GammaGrayProfile(1.0), .cmyk = InkProfile()}, error));
    EXPECT_NEAR(ToPCS(*mFactory->DeviceSpace("gray"_cc), {0.5F})[1], 0.5, 1e-3);
    const auto cmyk = mFactory->DeviceSpace("cmyk"_cc);
    ASSERT_NE(cmyk->GetProfileForm(), nullptr);
    EXPECT_THAT(ToPCS(*cmyk, {1, 0, 0, 1}), ToPCS(*cmyk->GetProfileForm(), {1, 0, 0, 1}));
}

TEST_F(Conversion, WhatIsNoProfileOfADeviceIsRefused) {
    const auto refuses = [this](std::vector<std::uint8_t> bytes, std::int32_t components) {
        std::string error;
        return !mFactory->ProfileSpace(bytes, components, error) && !error.empty();
    };
    EXPECT_TRUE(refuses({}, 3));
    EXPECT_TRUE(refuses(std::vector<std::uint8_t>(200, 0x41), 3));
    EXPECT_TRUE(refuses(GammaRGBProfile(2.2), 4));
    EXPECT_TRUE(refuses(LinkProfile(), 4));
    std::vector<std::uint8_t> damaged = InkProfile();
    damaged.resize(damaged.size() / 3);
    EXPECT_TRUE(refuses(damaged, 4));
    // A profile spoilt anywhere is refused or used, but harms nobody.
    const std::vector<std::uint8_t> whole = TableRGBProfile();
    for (std::size_t at = 0; at < 400; at += 3) {
        std::vector<std::uint8_t> spoilt = whole;
        spoilt[at] ^= 0x5BU;
        std::string error;
        mFactory->ProfileSpace(spoilt, 3, error);
    }
}

}  // namespace
}  // namespace VANTIX::TEST
