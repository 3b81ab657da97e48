// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <set>

#include "host/color/colorspacefactory.h"
#include "host/color/inks.h"
#include "support/iccprofiles.h"

namespace VANTIX::TEST {
namespace {

using COLOR::TRenderingIntent;
using HOST::ColorSpacePtr;
using testing::ElementsAre;
using testing::FloatNear;
using testing::Pointwise;

constexpr auto kRelative = TRenderingIntent::kRelativeColorimetric;

class ColorSpaces : public testing::Test {
protected:
    HOST::FunctionPtr Tint(std::vector<float> c0, std::vector<float> c1,
                           std::vector<float> range = {}) {
        return HOST::MakeExponentialFunction({{0, 1}, std::move(range)}, std::move(c0),
                                             std::move(c1), 1, mError);
    }

    ColorSpacePtr Spot(const char* name = "Spot") {
        return mFactory->SeparationSpace(name, mCMYK, Tint({0, 0, 0, 0}, {0, 1, 0.5F, 0}), mError);
    }

    static std::vector<float> ToPCS(const ColorSpacePtr& space, const std::vector<float>& values) {
        std::vector<float> pcs(3);
        EXPECT_TRUE(space->ToPCS(values.data(), pcs.data(), kRelative));
        return pcs;
    }

    std::string mError;
    TInterfacePtr<HOST::ColorSpaceFactory> mFactory = MakeObject<HOST::ColorSpaceFactory>();
    ColorSpacePtr mCMYK = mFactory->DeviceSpace("cmyk"_cc);
    ColorSpacePtr mRGB = mFactory->DeviceSpace("rgb "_cc);
};

TEST_F(ColorSpaces, EachAnswersExactlyOneKind) {
    const GUID kinds[] = {COLOR::IID_IDEVICECOLORSPACE,       COLOR::IID_IPROFILEBASEDCOLORSPACE,
                          COLOR::IID_ICALIBRATEDCOLORSPACE,   COLOR::IID_IINDEXEDCOLORSPACE,
                          COLOR::IID_IREGISTRATIONCOLORSPACE, COLOR::IID_INONECOLORSPACE,
                          COLOR::IID_ISEPARATIONCOLORSPACE,   COLOR::IID_IDEVICENCOLORSPACE};
    const ColorSpacePtr spaces[] = {
        mCMYK,
        mFactory->ProfileSpace(GammaRGBProfile(2.2), 3, mError),
        mFactory->CalibratedSpace("clab"_cc, {}, mError),
        mFactory->IndexedSpace(mRGB, 2, {}, mError),
        mFactory->RegistrationSpace(4),
        mFactory->NoneSpace(),
        Spot(),
        mFactory->DeviceNSpace({"A"}, mCMYK, Tint({0, 0, 0, 0}, {1, 1, 1, 1}), nullptr, mError)};
    for (std::size_t i = 0; i < std::size(spaces); ++i) {
        ASSERT_TRUE(spaces[i]) << i << mError;
        for (std::size_t k = 0; k < std::size(kinds); ++k) {
            EXPECT_EQ(FindInterface<IObject>(spaces[i].Get(), kinds[k]) != nullptr, i == k)
                << i << " " << k;
        }
    }
}

TEST_F(ColorSpaces, PropertiesHangOnASpotSpace) {
    const auto spot = Spot();
    const GUID key = "73E90CD5-BBC6-4326-8241-9BB4250B1B05"_guid;
    const auto property = mFactory->NoneSpace();
    EXPECT_EQ(spot->Aggregate(property.Get(), key), STATUS::kOk);
    EXPECT_EQ(FindInterface<IObject>(spot.Get(), key), property.Get());
    EXPECT_EQ(spot->Disaggregate(key), STATUS::kOk);
}

TEST_F(ColorSpaces, IdentifiersTellSpacesApartByTheirFirstWord) {
    HOST::CalibratedParameters warm;
    warm.white = {1.1F, 1, 0.35F};
    const auto profile = GammaRGBProfile(2.2);
    const ColorSpacePtr spaces[] = {
        mCMYK,
        mRGB,
        mFactory->DeviceSpace("gray"_cc),
        mFactory->ProfileSpace(profile, 3, mError),
        mFactory->ProfileSpace(InkProfile(), 4, mError),
        mFactory->CalibratedSpace("clab"_cc, {}, mError),
        mFactory->CalibratedSpace("clab"_cc, warm, mError),
        Spot("A"),
        Spot("B"),
        mFactory->SeparationSpace("A", mCMYK, Tint({0, 0, 0, 0}, {0, 1, 0.6F, 0}), mError),
        mFactory->IndexedSpace(mRGB, 2, {1}, mError),
        mFactory->IndexedSpace(mRGB, 2, {2}, mError),
        mFactory->RegistrationSpace(4),
        mFactory->RegistrationSpace(3),
        mFactory->NoneSpace(),
        ColorSpacePtr(mRGB->GetProfileForm())};
    std::set<std::int32_t> words;
    for (const ColorSpacePtr& space : spaces) {
        const auto word = static_cast<std::int32_t>(space->GetIdentifier().Data1);
        EXPECT_GT(word, 0);
        words.insert(word);
    }
    EXPECT_EQ(words.size(), std::size(spaces));
    const auto other = MakeObject<HOST::ColorSpaceFactory>();
    EXPECT_EQ(other->DeviceSpace("rgb "_cc)->GetIdentifier(), mRGB->GetIdentifier());
    EXPECT_EQ(other->ProfileSpace(profile, 3, mError)->GetIdentifier(), spaces[3]->GetIdentifier());
    EXPECT_EQ(Spot("A")->GetIdentifier(), spaces[7]->GetIdentifier());
}

TEST_F(ColorSpaces, InitialColoursAreThoseOfTheirKinds) {
    const auto initial = [](const ColorSpacePtr& space) {
        std::vector<float> values(static_cast<std::size_t>(space->GetComponentCount()), 7);
        EXPECT_TRUE(space->GetDefaultValues(values.data(), space->GetComponentCount()));
        return values;
    };
    EXPECT_THAT(initial(mCMYK), ElementsAre(1, 1, 1, 0));
    EXPECT_THAT(initial(mRGB), ElementsAre(0, 0, 0));
    EXPECT_THAT(initial(mFactory->ProfileSpace(InkProfile(), 4, mError)), ElementsAre(1, 1, 1, 1));
    EXPECT_THAT(initial(Spot()), ElementsAre(1));
    HOST::CalibratedParameters lab;
    lab.labRange = {5, 90, -90, -5};
    EXPECT_THAT(initial(mFactory->CalibratedSpace("clab"_cc, lab, mError)), ElementsAre(0, 5, -5));
    float value = 7;
    EXPECT_FALSE(mRGB->GetDefaultValues(&value, 1));
    EXPECT_FALSE(mFactory->NoneSpace()->GetDefaultValues(&value, 1));
    EXPECT_EQ(value, 7);
}

TEST_F(ColorSpaces, TintsGoThroughTheirFunctionInPDFForm) {
    EXPECT_EQ(ToPCS(Spot(), {0.5F}), ToPCS(mCMYK, {1, 0.5F, 0.75F, 1}));
    const auto lab = mFactory->CalibratedSpace("clab"_cc, {}, mError);
    const auto labSpot =
        mFactory->SeparationSpace("Lab", lab, Tint({100, 0, 0}, {50, 60, -20}), mError);
    ASSERT_TRUE(labSpot) << mError;
    EXPECT_EQ(ToPCS(labSpot, {1}), ToPCS(lab, {50, 60, -20}));
    const auto wide = mFactory->SeparationSpace(
        "Wide", mRGB, Tint({0, 0, 0}, {255, 51, 1}, {0, 255, 0, 255, 0, 1}), mError);
    EXPECT_THAT(ToPCS(wide, {1}), Pointwise(FloatNear(1e-6F), ToPCS(mRGB, {1, 0.2F, 1})));
}

TEST_F(ColorSpaces, RegistrationMarksEveryPlateAndNoneMarksNothing) {
    for (const std::int32_t components : {1, 3, 4}) {
        const auto all = mFactory->SeparationSpace("All", mFactory->RegistrationSpace(components),
                                                   nullptr, mError);
        ASSERT_TRUE(all) << mError;
        EXPECT_NEAR(ToPCS(all, {1})[1], 0, 1e-3);
        EXPECT_NEAR(ToPCS(all, {0})[1], 1, 1e-3);
    }
    EXPECT_FALSE(mFactory->RegistrationSpace(2));
    const auto none = mFactory->SeparationSpace("None", mFactory->NoneSpace(), nullptr, mError);
    EXPECT_NEAR(ToPCS(none, {1})[1], 1, 1e-3);
}

TEST_F(ColorSpaces, SpotSpacesOfWrongShapeAreRefused) {
    const auto refuses = [this](const ColorSpacePtr& alternate, const HOST::FunctionPtr& tint) {
        std::string error;
        return !mFactory->SeparationSpace("S", alternate, tint, error) && !error.empty();
    };
    EXPECT_TRUE(refuses(nullptr, Tint({0}, {1})));
    EXPECT_TRUE(refuses(mCMYK, nullptr));
    EXPECT_TRUE(refuses(mCMYK, Tint({0, 0, 0}, {1, 1, 1})));
    EXPECT_TRUE(refuses(mCMYK, HOST::MakeIdentityFunction(4)));
    EXPECT_TRUE(refuses(Spot(), Tint({0}, {1})));
    EXPECT_FALSE(
        mFactory->DeviceNSpace({}, mCMYK, Tint({0, 0, 0, 0}, {1, 1, 1, 1}), nullptr, mError));
    EXPECT_FALSE(mFactory->DeviceNSpace(std::vector<std::string>(33, "X"), mCMYK,
                                        HOST::MakeIdentityFunction(32), nullptr, mError));
    EXPECT_FALSE(mFactory->DeviceNSpace({"A", "B"}, mCMYK, Tint({0, 0, 0, 0}, {1, 1, 1, 1}),
                                        nullptr, mError));
}

TEST_F(ColorSpaces, InksAloneMakeADeviceN) {
    const auto inks = HOST::MakeInkCollection({{.name = "Silber",
                                                .color = {0.5F, 1, 1, 0.75F},
                                                .signature = "CMYK"_cc,
                                                .signatureValues = {0.5F, 0, 0, 0.25F},
                                                .signatureCount = 9},
                                               {.name = "", .kind = COLOR::InkColorKind::kRGB}});
    const auto space = mFactory->DeviceNSpace(
        {}, mFactory->DeviceSpace("gray"_cc),
        HOST::MakeCalculatorFunction({{0, 1, 0, 1}, {0, 1}}, "add 1 exch sub", mError), inks,
        mError);
    ASSERT_TRUE(space) << mError;
    EXPECT_EQ(space->GetComponentCount(), 2);
    const auto* deviceN = FindInterface<COLOR::IDeviceNConnectionColorSpace>(
        space.Get(), COLOR::IID_IDEVICENCOLORSPACE);
    EXPECT_EQ(deviceN->GetColorantCount(), 0);
    EXPECT_EQ(deviceN->GetColorantName(0), nullptr);
    COLOR::IInk* ink = deviceN->GetInkCollection()->GetInkInstance(0)->GetInk();
    EXPECT_EQ(*ink->GetName(), CoreString("Silber"));
    float values[4] = {};
    EXPECT_EQ(ink->GetSignatureValues(values), 4);
    EXPECT_EQ(ink->GetColorComponent(3), 0.75F);
    EXPECT_EQ(inks->GetInkInstance(1)->GetInk()->GetName(), nullptr);
    EXPECT_EQ(inks->GetInkInstance(2), nullptr);
}

TEST_F(ColorSpaces, PalettesArePaddedAndReadInTheirBasesForm) {
    const auto rgb = mFactory->IndexedSpace(mRGB, 3, {255, 0, 0, 0, 255}, mError);
    EXPECT_EQ(ToPCS(rgb, {0}), ToPCS(mRGB, {1, 0, 0}));
    EXPECT_EQ(ToPCS(rgb, {1}), ToPCS(mRGB, {0, 1, 0}));
    EXPECT_EQ(ToPCS(rgb, {99}), ToPCS(mRGB, {0, 0, 0}));
    const auto* indexed = FindInterface<COLOR::IIndexedConnectionColorSpace>(
        rgb.Get(), COLOR::IID_IINDEXEDCOLORSPACE);
    EXPECT_EQ(indexed->GetEntryCount(), 3);
    EXPECT_EQ(indexed->GetLUT()[8], 0);
    const auto lab = mFactory->CalibratedSpace("clab"_cc, {}, mError);
    EXPECT_EQ(ToPCS(mFactory->IndexedSpace(lab, 1, {255, 0, 255}, mError), {0}),
              ToPCS(lab, {100, -100, 100}));
    EXPECT_FALSE(mFactory->IndexedSpace(rgb, 2, {}, mError));
    EXPECT_FALSE(mFactory->IndexedSpace(nullptr, 2, {}, mError));
    EXPECT_FALSE(mFactory->IndexedSpace(mRGB, 257, {}, mError));
    EXPECT_FALSE(mFactory->IndexedSpace(mRGB, 0, {}, mError));
}

TEST_F(ColorSpaces, CalibratedRGBIsWrittenOnlyWhereItsCurveCanBe) {
    const auto make = [this](float gamma) {
        return mFactory->CalibratedSpace("crgb"_cc, {.gammas = {gamma, gamma, gamma}}, mError);
    };
    for (const float gamma : {2.1F, 2.2F, 2.3F}) {
        const auto space = make(gamma);
        const auto* calibrated = FindInterface<COLOR::ICalibratedConnectionColorSpace>(
            space.Get(), COLOR::IID_ICALIBRATEDCOLORSPACE);
        ASSERT_NE(calibrated, nullptr);
        float gammas[3] = {};
        EXPECT_EQ(calibrated->GetGammas(gammas), 3);
        EXPECT_THAT(gammas, ElementsAre(2.4F, 2.4F, 2.4F));
        float matrix[9] = {};
        EXPECT_TRUE(calibrated->GetMatrix(matrix));
        EXPECT_THAT(matrix, ElementsAre(1, 0, 0, 0, 1, 0, 0, 0, 1));
    }
    for (const float gamma : {1.0F, 1.8F, 2.4F}) {
        EXPECT_NE(FindInterface<IObject>(make(gamma).Get(), COLOR::IID_IPROFILEBASEDCOLORSPACE),
                  nullptr);
    }
    const auto gray = mFactory->GammaGraySpace({.gammas = {2.0F}}, mError);
    EXPECT_NEAR(ToPCS(gray, {0.5F})[1], 0.25, 1e-3);
}

TEST_F(ColorSpaces, CalibratedSpacesOfWrongParametersAreRefused) {
    HOST::CalibratedParameters parameters;
    parameters.white = {0, 1, 0};
    EXPECT_FALSE(mFactory->CalibratedSpace("clab"_cc, parameters, mError));
    EXPECT_FALSE(mFactory->CalibratedSpace("crgb"_cc, {.gammas = {1, 1}}, mError));
    EXPECT_FALSE(mFactory->CalibratedSpace("crgb"_cc, {.matrix = {1}}, mError));
    EXPECT_FALSE(mFactory->GammaGraySpace({.gammas = {-1}}, mError));
    EXPECT_FALSE(mFactory->CalibratedSpace("xxxx"_cc, {}, mError));
    parameters = {};
    parameters.labRange = {10, -10, 0, 1};
    EXPECT_FALSE(mFactory->CalibratedSpace("clab"_cc, parameters, mError));
}

TEST_F(ColorSpaces, FactoryGivesThePluginNewReferences) {
    const float zero[3] = {};
    const auto lab = ColorSpacePtr::Adopt(mFactory->CreateLabColorSpace(zero));
    float white[3] = {};
    ASSERT_TRUE(lab->GetWhitePoint(white));
    EXPECT_THAT(white, ElementsAre(0.9642F, 1, 0.8249F));
    const auto gray = ColorSpacePtr::Adopt(mFactory->CreateDeviceGrayColorSpace());
    EXPECT_EQ(gray->AddRef(), 3U);
    gray->Release();
    EXPECT_EQ(mFactory->CreateCalibratedGrayColorSpace(zero, nullptr, 1), nullptr);
    EXPECT_EQ(mFactory->CreateSeparationColorSpace(CoreString(), nullptr, nullptr), nullptr);
    EXPECT_EQ(mFactory->CreateDefaultProfileColorSpace("clab"_cc), nullptr);
    const auto rgb = ColorSpacePtr::Adopt(mFactory->CreateDefaultProfileColorSpace("rgb "_cc));
    EXPECT_EQ(rgb->GetProfileForm(), rgb.Get());
}

}  // namespace
}  // namespace VANTIX::TEST
