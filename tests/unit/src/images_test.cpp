// SPDX-License-Identifier: MIT
#include "baseconnectionspacedelegate/samples.h"
#include "support/imagefixture.h"

namespace VANTIX::TEST {
namespace {

namespace OPTION = RENDERING::DELEGATEOPTION;

using Images = ImageFixture;

TEST_F(Images, DeviceSpacesKeepTheirSamples) {
    Draw(0, *Raster(gray, 11, 1, {{0xA5, 0xE0}}));
    EXPECT_EQ(ColourText(), "/DeviceGray setcolorspace\n");
    EXPECT_EQ(Entry("BitsPerComponent") + Entry("Decode"), "1[0 1]");
    EXPECT_EQ(Entry("ImageMatrix"), "[11 0 0 1 0 0]");
    EXPECT_EQ(samples, (Line{0xA5, 0xE0}));

    Draw(0, *Raster(rgb, 2, 8, {{1, 2}, {3, 4}, {5, 6}}));
    EXPECT_EQ(ColourText(), "/DeviceRGB setcolorspace\n");
    EXPECT_EQ(Entry("Decode"), "[0 1 0 1 0 1]");
    EXPECT_EQ(samples, (Line{1, 3, 5, 2, 4, 6}));

    Draw(0, *Raster(cmyk, 1, 8, {{1}, {2}, {3}, {4}}));
    EXPECT_EQ(ColourText(), "/DeviceCMYK setcolorspace\n");
    EXPECT_EQ(Entry("Decode"), "[1 0 1 0 1 0 1 0]");
    EXPECT_EQ(samples, (Line{1, 2, 3, 4}));
    EXPECT_EQ(log.Messages(), "");
}

TEST_F(Images, SixteenBitsBecomeTwelve) {
    Draw(0, *Raster(gray, 3, 16, {Words({0xABCD, 0x1234, 0xFFFF})}));
    EXPECT_EQ(Entry("BitsPerComponent"), "12");
    ASSERT_EQ(samples.size(), 5U);
    samples[4] &= 0xF0;
    EXPECT_EQ(samples, (Line{0xAB, 0xC1, 0x23, 0xFF, 0xF0}));

    Draw(0, *Raster(rgb, 1, 16, {Words({0x1110}), Words({0x2220}), Words({0x3330})}));
    EXPECT_EQ(samples.size(), 5U);
    EXPECT_EQ(Line(samples.begin(), samples.begin() + 4), (Line{0x11, 0x12, 0x22, 0x33}));

    Draw(0, *Raster(cmyk, 1, 16,
                    {Words({0x1110}), Words({0x2220}), Words({0x3330}), Words({0x4440})}));
    EXPECT_EQ(samples, (Line{0x11, 0x12, 0x22, 0x33, 0x34, 0x44}));
}

TEST(Samples, PackingKeepsTheTopBitsOfAnyCount) {
    for (std::size_t count = 0; count < 20; ++count) {
        std::vector<std::uint16_t> words;
        std::string digits;
        for (std::size_t i = 0; i < count; ++i) {
            words.push_back(static_cast<std::uint16_t>(i * 0x1357 + 0x2468));
            char hex[5];
            std::snprintf(hex, sizeof hex, "%04X", words.back());
            digits.append(hex, 3);
        }
        digits += digits.size() % 2 == 0 ? "" : "0";
        Line packed(RENDERING::Packed12Bytes(count));
        RENDERING::PackTo12Bits(Words(words).data(), count, packed.data());
        std::string written;
        for (const std::uint8_t byte : packed) {
            char hex[3];
            std::snprintf(hex, sizeof hex, "%02X", byte);
            written += hex;
        }
        EXPECT_EQ(written, digits);
    }
}

TEST_F(Images, PrimariesThatAreAbsentLeaveNoInkAndNoLight) {
    const auto inks = Raster(cmyk, 2, 8, {{1, 2}, {3, 4}, {5, 6}, {7, 8}});
    inks->mask = 0b1011;
    Draw(0, *inks);
    EXPECT_EQ(samples, (Line{1, 3, 0xFF, 7, 2, 4, 0xFF, 8}));
    const auto light = Raster(rgb, 1, 8, {{1}, {2}, {3}});
    light->mask = 0b101;
    Draw(0, *light);
    EXPECT_EQ(samples, (Line{1, 0, 3}));
}

TEST_F(Images, MissingLinesEndTheDataWithAMessage) {
    const auto one = Raster(gray, 1, 8, {{7}});
    one->height = 2;
    one->primaries[0]->data->lines.emplace_back();
    Draw(0, *one);
    EXPECT_EQ(samples, (Line{7}));
    EXPECT_EQ(log.Count("No data for line 1"), 1);

    const auto four = Raster(cmyk, 1, 8, {{1}, {2}, {}, {4}});
    Draw(0, *four);
    EXPECT_EQ(samples, Line());
    EXPECT_EQ(log.Count("Line 0 channel 2 is missing."), 1);

    const auto none = Raster(gray, 1, 8, {{7}});
    none->primaries[0]->data = nullptr;
    Draw(0, *none);
    EXPECT_EQ(log.Count("No Primary channel data."), 1);

    const auto small = Raster(rgb, 8, 1, {{1}, {2}, {3}});
    Draw(0, *small);
    EXPECT_EQ(log.Count("Don't support a bit depth of 1"), 1);
    EXPECT_EQ(samples, Line());
}

TEST_F(Images, ProfilesAreTheirFamilyOrAResource) {
    const auto profile = MakeObject<FakeProfileSpace>("cmyk"_cc, 9U);
    profile->array = "/DeviceCMYK ";
    const auto raster = Raster(profile, 1, 8, {{0x01}, {0x02}, {0x03}, {0x04}});
    Draw(0, *raster);
    EXPECT_EQ(ColourText(), "/DeviceCMYK setcolorspace\n");
    EXPECT_EQ(Entry("Decode"), "[1 0 1 0 1 0 1 0]");
    Draw(OPTION::kEmbedProfiles, *raster);
    EXPECT_EQ(ColourText(), " /GCSA9 /DeviceCMYK def\nGCSA9  setcolorspace\n");
    EXPECT_EQ(Entry("Decode"), "[0 1 0 1 0 1 0 1]");
    EXPECT_EQ(samples, (Line{0xFE, 0xFD, 0xFC, 0xFB}));

    Draw(OPTION::kEmbedProfiles, *Raster(cmyk, 1, 8, {{1}, {2}, {3}, {4}}));
    EXPECT_EQ(text, "");
    EXPECT_EQ(log.Count("Invalid Profile space which don't have color profile."), 1);
    Draw(0, *Raster(MakeObject<FakeProfileSpace>("clab"_cc), 1, 8, {{1}, {2}, {3}}));
    EXPECT_EQ(log.Count("unsupported printing profile colour space in ASIS."), 1);
}

TEST_F(Images, GraySamplesOfAnRgbProfileGetAPalette) {
    const auto profile = MakeObject<FakeProfileSpace>("rgb "_cc);
    Draw(0, *Raster(profile, 2, 8, {{0, 255}}));
    EXPECT_EQ(Entry("Decode"), "[0 255]");
    EXPECT_EQ(Run("0 setcolor currentrgbcolor = = =\n128 setcolor currentrgbcolor pop pop ="),
              "0.0\n0.0\n0.0\n0.501961\n");
    Draw(0, *Raster(profile, 1, 16, {Words({1})}));
    EXPECT_EQ(log.Count("When outputting an indexed image with an ICCProfile, do not yet support "
                        "images with a raster depth of 16"),
              1);
}

TEST_F(Images, CalibratedSpacesAreCieBased) {
    const auto grayscale = MakeObject<FakeCalibratedSpace>("cgry"_cc);
    grayscale->white = {0.95F, 1, 1.09F};
    const auto lab = MakeObject<FakeCalibratedSpace>("clab"_cc);
    lab->white = {0.9642F, 1, 0.8249F};
    const auto light = MakeObject<FakeCalibratedSpace>("crgb"_cc);
    light->white = {0.95F, 1, 1.09F};
    for (const std::uint32_t options : {0U, OPTION::kEmbedProfiles}) {
        Draw(options, *Raster(grayscale, 1, 8, {{9}}));
        EXPECT_EQ(Run("currentcolorspace 0 get =="), "/CIEBasedA\n");
        EXPECT_EQ(Entry("Decode"), "[0 1]");
        EXPECT_EQ(samples, (Line{9}));
        Draw(options, *Raster(lab, 1, 8, {{1}, {2}, {3}}));
        EXPECT_EQ(Run("currentcolorspace dup 0 get == 1 get /RangeABC get =="),
                  "/CIEBasedABC\n[0 100 -128 127 -128 127]\n");
        EXPECT_EQ(samples, (Line{1, 2, 3}));
        EXPECT_TRUE(filters->filters.empty());
        Draw(options, *Raster(light, 1, 8, {{1}, {2}, {3}}));
        EXPECT_EQ(Run("currentcolorspace 1 get /MatrixLMN get 0 get ="), "0.412457\n");
    }
}

TEST_F(Images, TintsKeepTheirInk) {
    const auto spot = MakeObject<FakeSeparationSpace>(
        "Orange", cmyk,
        MakeObject<FakeExponential>(4, std::vector<float>(4), std::vector<float>{0, 0.5F, 1, 0},
                                    1.0F));
    Draw(0, *Raster(spot, 2, 8, {{0, 200}}));
    EXPECT_EQ(Run("currentcolorspace dup 0 get == 1 get =="), "/Separation\n(Orange)\n");
    EXPECT_EQ(Tints("1"), "0 100 50 0 ");
    EXPECT_EQ(Entry("Decode"), "[0 1]");
    EXPECT_EQ(samples, (Line{0, 200}));
    EXPECT_EQ(log.Messages(), "");
}

class IndexedImages : public ImageFixture {
protected:
    /// An image of two rows of indices in 8 bits over a palette.
    void DrawIndices(TInterfacePtr<COLOR::IConnectionColorSpace> base,
                     std::vector<std::uint8_t> table, std::int32_t bits, Line indices,
                     std::uint32_t options = 0) {
        const std::int32_t width = bits == 16
                                       ? static_cast<std::int32_t>(indices.size()) / 2
                                       : static_cast<std::int32_t>(indices.size()) * 8 / bits;
        Draw(options, *Raster(MakeObject<FakeIndexedSpace>(std::move(base), std::move(table)),
                              width, bits, {std::move(indices)}));
    }
};

TEST_F(IndexedImages, PalettesKeepTheirSpace) {
    DrawIndices(rgb, {1, 2, 3, 255, 128, 0, 0, 0, 0}, 8, {0, 1, 2});
    EXPECT_EQ(ColourText(), "[/Indexed /DeviceRGB 2 <\n010203 FF8000 000000 >]  setcolorspace\n");
    EXPECT_EQ(Entry("BitsPerComponent") + Entry("Decode"), "8[0 255]");
    EXPECT_EQ(samples, (Line{0, 1, 2}));
    DrawIndices(cmyk, {255, 254, 253, 0, 1, 2, 3, 4, 5, 6, 7, 8}, 4, {0x01});
    EXPECT_EQ(Run("0 setcolor currentcolorspace 3 get 0 4 getinterval {==} forall"),
              "0\n1\n2\n255\n");
    EXPECT_EQ(Entry("Decode"), "[0 15]");
    EXPECT_EQ(samples, (Line{0x01}));
}

TEST_F(IndexedImages, LinesOfPalettesHoldSixteenEntries) {
    DrawIndices(gray, std::vector<std::uint8_t>(18, 0xAB), 8, {0});
    const std::string line = "AB AB AB AB AB AB AB AB AB AB AB AB AB AB AB AB\n";
    EXPECT_EQ(ColourText(), "[/Indexed /DeviceGray 17 <\n" + line + "AB AB >]  setcolorspace\n");
}

TEST_F(IndexedImages, TwoEntriesNeedOneBit) {
    DrawIndices(gray, {0, 255}, 8, {0, 1, 1, 0, 1, 0, 0, 0, 1});
    EXPECT_EQ(Entry("BitsPerComponent") + Entry("Decode"), "1[0 1]");
    EXPECT_EQ(samples, (Line{0x68, 0x80}));
}

TEST_F(IndexedImages, IndicesAreClampedToThePalette) {
    DrawIndices(gray, {9, 8, 7}, 8, {0, 2, 3, 255});
    EXPECT_EQ(samples, (Line{0, 2, 2, 2}));
    DrawIndices(gray, {9, 8, 7}, 2, {0b00011011});
    EXPECT_EQ(samples, (Line{0b00011010}));
    DrawIndices(gray, {9, 8, 7}, 16, Words({0x0100, 0x0900}));
    EXPECT_EQ(Entry("BitsPerComponent"), "8");
    EXPECT_EQ(samples, (Line{1, 2}));
}

TEST_F(IndexedImages, ShapesOfTwoColoursBecomeImageMasks) {
    const auto raster =
        Raster(MakeObject<FakeIndexedSpace>(rgb, std::vector<std::uint8_t>{255, 0, 0, 0, 0, 255}),
               8, 1, {{0xF0}});
    raster->Extra("LPHA"_cc, {0xF0}).bits = 1;
    Draw(0, *raster);
    EXPECT_NE(text.find("imagemask"), std::string::npos);
    EXPECT_EQ(ColourText(), "/DeviceRGB setcolorspace 1.000 0.000 0.000   setcolor\n");
    EXPECT_EQ(Entry("Decode"), "[1 0]");
    raster->extras[0]->data->isOpaque = true;
    Draw(0, *raster);
    EXPECT_EQ(text.find("imagemask"), std::string::npos);
}

TEST_F(IndexedImages, BasesOfAllKindsHaveATextThatIsASpace) {
    const auto spot = MakeObject<FakeSeparationSpace>(
        "Orange", cmyk,
        MakeObject<FakeExponential>(4, std::vector<float>{1, 1, 1, 1},
                                    std::vector<float>{1, 0.5F, 0, 1}, 1.0F));
    DrawIndices(spot, {0, 128, 255}, 8, {0});
    EXPECT_EQ(Run("currentcolorspace 1 get 0 get =="), "/Separation\n");
    for (const FourCC family : {"cgry"_cc, "clab"_cc, "crgb"_cc}) {
        const auto base = MakeObject<FakeCalibratedSpace>(family);
        base->white = {0.95F, 1, 1.09F};
        DrawIndices(base, std::vector<std::uint8_t>(9, 7), 8, {0});
        EXPECT_EQ(Run("currentcolorspace 0 get =="), "/Indexed\n") << family;
    }
    EXPECT_EQ(log.Messages(), "");
    const auto profile = MakeObject<FakeProfileSpace>("rgb "_cc, 5U);
    profile->array = "/DeviceRGB ";
    DrawIndices(profile, {1, 2, 3, 4, 5, 6, 7, 8, 9}, 8, {0}, OPTION::kEmbedProfiles);
    EXPECT_EQ(Run("currentcolorspace 1 get =="), "/DeviceRGB\n");
    EXPECT_NE(ColourText().find("[/Indexed GCSA5 "), std::string::npos);
}

TEST_F(IndexedImages, PalettesThatAreNotThereDrawNothing) {
    DrawIndices(rgb, {}, 8, {0});
    EXPECT_EQ(text, "");
    EXPECT_EQ(log.Count("indexedCSpace->GetLUT() returned NULL."), 1);
    const auto raster = Raster(MakeObject<FakeIndexedSpace>(nullptr, Line{1}), 1, 8, {{0}});
    Draw(0, *raster);
    EXPECT_EQ(log.Count("alternativeColorSpace cannot be NULL."), 1);
}

}  // namespace
}  // namespace VANTIX::TEST
