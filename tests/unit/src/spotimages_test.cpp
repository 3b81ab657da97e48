// SPDX-License-Identifier: MIT
#include "support/imagefixture.h"

namespace VANTIX::TEST {
namespace {

namespace OPTION = RENDERING::DELEGATEOPTION;

/// Images with spot channels beside their primaries.
class SpotImages : public ImageFixture {
protected:
    SpotImages() { factory->Offer<FakeFunctionFactory>(COLOR::CLSID_COLORFUNCTIONFACTORY); }

    /// A spot that leaves only the first component of light, or of complements of ink.
    static TInterfacePtr<FakeSeparationSpace> Spot(const char* name, float fullTint = 0.0F) {
        auto spot = MakeObject<FakeSeparationSpace>(name, nullptr, nullptr);
        spot->fullTint = fullTint;
        return spot;
    }

    /// Draws a raster whose spots should be flattened, but cannot: its opacity has no data.
    void DrawWithSpots(FakeRaster& raster) {
        raster.Extra("LPHA"_cc, {}).data = nullptr;
        std::swap(raster.extras.front(), raster.extras.back());
        Draw(OPTION::kConvertSpotsToProcess, raster);
    }

    static FakeChannel& AddSpot(FakeRaster& raster, TInterfacePtr<FakeSeparationSpace> space,
                                Line line) {
        FakeChannel& channel = raster.Extra("SPOT"_cc, std::move(line));
        channel.space = std::move(space);
        return channel;
    }

    TInterfacePtr<FakeSeparationSpace> orange = Spot("Orange");
};

TEST_F(SpotImages, CmykTakesTheSpotAsAnotherColorant) {
    const auto raster = Raster(cmyk, 2, 8, {{255, 1}, {254, 2}, {253, 3}, {252, 4}});
    AddSpot(*raster, Spot("Orange"), {0, 200});
    DrawWithSpots(*raster);
    EXPECT_NE(text.find("[/DeviceN [(Cyan)(Magenta)(Yellow)(Black)(Orange)] "), std::string::npos);
    EXPECT_EQ(Entry("Decode"), "[ 0 1 0 1 0 1 0 1 1 0] ");
    EXPECT_EQ(samples, (Line{0, 1, 2, 3, 0, 254, 253, 252, 251, 200}));
    EXPECT_EQ(Tints("0.2 0.4 0 0.1 0"), "10 0 40 20 ");
    EXPECT_EQ(Tints("0 0 0 0 1"), "100 100 100 0 ");
}

TEST_F(SpotImages, RgbTakesTheSpotAsAnotherColorant) {
    const auto raster = Raster(rgb, 1, 8, {{255}, {128}, {0}});
    AddSpot(*raster, orange, {64});
    DrawWithSpots(*raster);
    EXPECT_NE(text.find("[/DeviceN [(Red)(Green)(Blue)(Orange)] "), std::string::npos);
    // The space takes what was absorbed, so that the colorants add up as inks.
    const std::string light = Tints("0 0 0 0");
    const std::string dark = Tints("1 1 1 0");
    EXPECT_EQ(light, "100 100 100 ");
    EXPECT_EQ(dark, "0 0 0 ");
    EXPECT_EQ(Tints("0 0 0 1"), "0 0 100 ");
    EXPECT_EQ(samples, (Line{0, 127, 255, 64}));
}

TEST_F(SpotImages, AbsentPrimariesAreNoColorants) {
    const auto raster = Raster(cmyk, 1, 8, {{1}, {2}, {3}, {4}});
    raster->mask = 0b1001;
    AddSpot(*raster, orange, {5});
    DrawWithSpots(*raster);
    EXPECT_NE(text.find("[/DeviceN [(Cyan)(Black)(Orange)] "), std::string::npos);
    EXPECT_EQ(Entry("Decode"), "[ 0 1 0 1 1 0] ");
    EXPECT_EQ(samples, (Line{254, 251, 5}));
}

TEST_F(SpotImages, PalettesAreExpandedBesideSpots) {
    const auto raster =
        Raster(MakeObject<FakeIndexedSpace>(cmyk, Line{255, 255, 255, 255, 0, 1, 2, 3}), 3, 8,
               {{0, 1, 9}});
    AddSpot(*raster, orange, {7, 8, 9});
    DrawWithSpots(*raster);
    EXPECT_EQ(log.Count("Incomplete handling."), 1);
    EXPECT_NE(text.find("[(Cyan)(Magenta)(Yellow)(Black)(Orange)]"), std::string::npos);
    EXPECT_EQ(samples, (Line{0, 0, 0, 0, 7, 255, 254, 253, 252, 8, 255, 254, 253, 252, 9}));
    EXPECT_EQ(Tints("0 0 0 0.5 0"), "50 0 0 0 ");

    const auto four = Raster(MakeObject<FakeIndexedSpace>(cmyk, Line{1, 2, 3, 4}), 2, 4, {{0}});
    AddSpot(*four, orange, {7, 8});
    DrawWithSpots(*four);
    EXPECT_EQ(log.Count("Indexed image with depth 4 not handled."), 1);
}

TEST_F(SpotImages, SixteenBitSpotsArePackedWithTheInks) {
    const auto raster =
        Raster(cmyk, 1, 16, {Words({0xFFFF}), Words({0xFFFF}), Words({0xFFFF}), Words({0})});
    AddSpot(*raster, orange, Words({0x1230}));
    DrawWithSpots(*raster);
    EXPECT_EQ(Entry("BitsPerComponent"), "12");
    ASSERT_EQ(samples.size(), 8U);
    EXPECT_EQ(Line(samples.begin() + 4, samples.begin() + 7), (Line{0x0F, 0xFF, 0x12}));
}

TEST_F(SpotImages, SpotsAreFlattenedOverOneAnother) {
    const auto raster = Raster(rgb, 3, 8, {{200, 200, 200}, {100, 100, 100}, {0, 0, 0}});
    raster->Extra("LPHA"_cc, {255, 255, 255}).data->isOpaque = true;
    // Samples of spots are complements: full tint, none, and none.
    AddSpot(*raster, Spot("Dark"), {0, 255, 255});
    AddSpot(*raster, Spot("Light", 1.0F), {127, 127, 255});
    Draw(OPTION::kConvertSpotsToProcess, *raster);
    EXPECT_EQ(ColourText(), "/DeviceRGB setcolorspace\n");
    // Coverage of 128 of 255 lightens what the dark spot left: 0, then 200 100 0.
    EXPECT_EQ(samples, (Line{128, 128, 128, 227, 177, 128, 200, 100, 0}));
    EXPECT_EQ(log.Messages(), "");
}

TEST_F(SpotImages, SpotsThatCannotBeFlattenedStay) {
    const auto raster = Raster(rgb, 1, 8, {{1}, {2}, {3}});
    AddSpot(*raster, orange, {4});
    DrawWithSpots(*raster);
    EXPECT_EQ(log.Count("Problem grabbing an alpha channel."), 1);
    EXPECT_EQ(log.Count("There was a problem flattening separation space(s) to the raster. "
                        "Continuing without separation channels."),
              1);
    EXPECT_NE(text.find("(Orange)"), std::string::npos);
}

struct MaskCase {
    std::int32_t bits;
    Line alpha;
    Line written;
    std::string writtenBits;
};

class SoftMasks : public SpotImages, public testing::WithParamInterface<MaskCase> {};

TEST_P(SoftMasks, StandBeforeTheirImages) {
    const MaskCase& mask = GetParam();
    const auto raster = Raster(gray, 2, 8, {{1, 2}});
    raster->Extra("LPHA"_cc, mask.alpha).bits = mask.bits;
    Draw(OPTION::kJawsWorkaround, *raster);
    // Both images' data follow each other in the same stream: the mask's come first.
    EXPECT_NE(text.find("/IsSoftMask true /ColorSpace /DeviceGray /BitsPerComponent " +
                        mask.writtenBits + " /NI pdfmark\n /DeviceGray"),
              std::string::npos);
    EXPECT_EQ(Entry("BitsPerComponent"), mask.writtenBits);
    ASSERT_GT(samples.size(), mask.written.size());
    EXPECT_EQ(
        Line(samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(mask.written.size())),
        mask.written);
    const std::string rest(samples.begin(), samples.end());
    const std::size_t number = text.find("SoftMaskImage") + 13;
    const std::string digits = text.substr(number, text.find('}') - number);
    EXPECT_NE(rest.find("\n[/_objdef {Image" + digits + "} /SMask {SoftMaskImage" + digits +
                        "} /NI pdfmark\n/DeviceGray setcolorspace"),
              std::string::npos)
        << rest;
    raster->extras[0]->data->isOpaque = true;
    Draw(OPTION::kJawsWorkaround, *raster);
    EXPECT_EQ(text.find("SoftMask"), std::string::npos);
    Draw(OPTION::kJawsWorkaround | OPTION::kSoftMasks, *raster);
    EXPECT_NE(text.find("SoftMask"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(
    Depths, SoftMasks,
    testing::Values(MaskCase{1, {0x40}, {0x40}, "1"}, MaskCase{2, {0x80}, {127, 0}, "8"},
                    MaskCase{4, {0x0F}, {15, 255}, "8"}, MaskCase{8, {3, 4}, {3, 4}, "8"},
                    MaskCase{16, Words({0x1230, 0x4560}), {0x12, 0x34, 0x56}, "12"}),
    [](const auto& mask) { return "Bits" + std::to_string(mask.param.bits); });

TEST_F(SpotImages, AlphaOfOtherDepthsIsNoMask) {
    const auto raster = Raster(gray, 1, 8, {{1}});
    raster->Extra("LPHA"_cc, {1}).bits = 32;
    Draw(OPTION::kJawsWorkaround, *raster);
    EXPECT_EQ(log.Count("Depth of 32 not supported."), 1);
    EXPECT_EQ(text.find("SoftMask"), std::string::npos);
    EXPECT_EQ(samples, (Line{1}));
}

}  // namespace
}  // namespace VANTIX::TEST
