// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <map>
#include <numeric>

#include "host/color/colorspacefactory.h"
#include "support/evaluate.h"
#include "support/fakecolorspaces.h"
#include "support/iccprofiles.h"

namespace VANTIX::TEST {
namespace {

using COLOR::IConnectionColorSpace;
using COLOR::LineConversion;
using COLOR::TRenderingIntent;
using HOST::ColorSpacePtr;
using testing::Each;
using testing::ElementsAre;

constexpr auto kRelative = TRenderingIntent::kRelativeColorimetric;

/// Samples as numbers, whatever their depth.
using Samples = std::vector<std::uint32_t>;

std::uint32_t MostOf(std::int32_t bits) {
    return (1U << static_cast<unsigned>(bits)) - 1U;
}

/// Most significant bit first; words of 16 bits are native.
std::vector<std::uint8_t> Pack(const Samples& samples, std::int32_t bits) {
    const auto depth = static_cast<std::size_t>(bits);
    std::vector<std::uint8_t> bytes((samples.size() * depth + 7) / 8);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        if (bits == 16) {
            const auto word = static_cast<std::uint16_t>(samples[i]);
            std::memcpy(bytes.data() + 2 * i, &word, sizeof word);
        } else {
            const std::size_t bit = i * depth;
            bytes[bit / 8] =
                static_cast<std::uint8_t>(bytes[bit / 8] | samples[i] << (8 - depth - bit % 8));
        }
    }
    return bytes;
}

Samples Unpack(const std::vector<std::uint8_t>& bytes, std::int32_t bits) {
    Samples samples(bytes.size() * 8 / static_cast<std::size_t>(bits));
    for (std::size_t i = 0; i < samples.size(); ++i) {
        std::uint16_t word = bytes[i];
        if (bits == 16) {
            std::memcpy(&word, bytes.data() + 2 * i, sizeof word);
        }
        samples[i] = word;
    }
    return samples;
}

struct Depths {
    std::int32_t source = 8;
    std::int32_t target = 8;
};

/// Converts planes, of which an empty one is handed over as null.
class Converter {
public:
    explicit Converter(Depths depths = {}, TRenderingIntent intent = kRelative) {
        mLine.sourceBits = depths.source;
        mLine.targetBits = depths.target;
        mLine.sourceIntent = intent;
        mLine.targetIntent = intent;
    }

    Converter& Under(TRenderingIntent source, TRenderingIntent target) {
        mLine.sourceIntent = source;
        mLine.targetIntent = target;
        return *this;
    }

    Converter& Alpha(const Samples& alpha, std::int32_t bits) {
        mAlpha = Pack(alpha, bits);
        mLine.alpha = mAlpha.data();
        mLine.alphaBits = bits;
        return *this;
    }

    std::vector<Samples> operator()(const IConnectionColorSpace& from,
                                    const IConnectionColorSpace& to,
                                    const std::vector<Samples>& planes) {
        std::vector<std::vector<std::uint8_t>> in;
        std::vector<const std::uint8_t*> source;
        in.reserve(planes.size());
        source.reserve(planes.size());
        for (const Samples& plane : planes) {
            mLine.width = std::max(mLine.width, static_cast<std::int32_t>(plane.size()));
            in.push_back(Pack(plane, mLine.sourceBits));
        }
        for (const auto& plane : in) {
            source.push_back(plane.empty() ? nullptr : plane.data());
        }
        const auto bytes =
            static_cast<std::size_t>(mLine.width) * static_cast<std::size_t>(mLine.targetBits / 8);
        std::vector<std::vector<std::uint8_t>> out(static_cast<std::size_t>(to.GetComponentCount()),
                                                   std::vector<std::uint8_t>(bytes));
        std::vector<std::uint8_t*> target;
        target.reserve(out.size());
        for (auto& plane : out) {
            target.push_back(plane.data());
        }
        std::vector<float> room(3 * static_cast<std::size_t>(mLine.width));
        mLine.source = source.data();
        mLine.target = target.data();
        mLine.pcs = room.data();
        status = from.ConvertLine(to, mLine);
        std::vector<Samples> result;
        result.reserve(out.size());
        for (const auto& plane : out) {
            result.push_back(Unpack(plane, mLine.targetBits));
        }
        return result;
    }

    Status status = -1;

private:
    LineConversion mLine;
    std::vector<std::uint8_t> mAlpha;
};

/// Planes that hold the ends of the scale, dark tones, repeated pixels and noise.
std::vector<Samples> SomePlanes(std::int32_t components, std::int32_t bits, std::size_t width) {
    std::vector<Samples> planes(static_cast<std::size_t>(components), Samples(width));
    std::uint32_t state = 7;
    for (std::size_t x = 0; x < width; ++x) {
        for (std::size_t i = 0; i < planes.size(); ++i) {
            state = state * 1664525U + 1013904223U;
            const std::uint32_t random = (state >> 12U) & MostOf(bits);
            const std::uint32_t corner = (x >> i & 1U) * MostOf(bits);
            planes[i][x] = x < 16 ? corner : (x % 4 == 0 ? random / 16 : random);
            planes[i][x] = x % 8 == 7 ? planes[i][x - 1] : planes[i][x];
        }
    }
    return planes;
}

/// The largest difference, in parts of 255, between lines and the conversions of their colours.
double FarthestFromColors(const IConnectionColorSpace& from, const IConnectionColorSpace& to,
                          const std::vector<Samples>& in, const std::vector<Samples>& out,
                          Depths depths, TRenderingIntent first, TRenderingIntent second) {
    double farthest = 0;
    for (std::size_t x = 0; x < out[0].size(); ++x) {
        std::vector<float> color;
        color.reserve(in.size());
        for (const Samples& plane : in) {
            color.push_back(static_cast<float>(plane[x]) /
                            static_cast<float>(MostOf(depths.source)));
        }
        std::vector<float> pcs(3);
        std::vector<float> expected(out.size());
        EXPECT_TRUE(from.ToPCS(color.data(), pcs.data(), first));
        EXPECT_TRUE(to.FromPCS(pcs.data(), expected.data(), second));
        for (std::size_t i = 0; i < out.size(); ++i) {
            const double got = out[i][x] * 255.0 / MostOf(depths.target);
            farthest = std::max(farthest, std::abs(got - 255.0 * expected[i]));
        }
    }
    return farthest;
}

/// The spaces that lines are tried with, by name.
class ColorLines : public testing::Test {
protected:
    /// The same object each time: it knows the colour that it converted last.
    ColorSpacePtr Space(const std::string& name) {
        ColorSpacePtr& space = mSpaces[name];
        space = space ? space : Make(name);
        return space;
    }

    ColorSpacePtr Make(std::string_view name) {
        const std::array<float, 9> matrix{0.4124F, 0.2126F, 0.0193F, 0.3576F, 0.7152F,
                                          0.1192F, 0.1805F, 0.0722F, 0.9505F};
        HOST::CalibratedParameters calibrated{.gammas = {2.2F, 2.2F, 2.2F},
                                              .matrix = {matrix.begin(), matrix.end()}};
        calibrated.white = {0.9505F, 1, 1.089F};
        if (name == "inks") {
            return mFactory->DeviceSpace("cmyk"_cc);
        }
        if (name == "rgb") {
            return mFactory->DeviceSpace("rgb "_cc);
        }
        if (name == "gray") {
            return mFactory->DeviceSpace("gray"_cc);
        }
        if (name == "press") {
            return mFactory->ProfileSpace(PressProfile(), 4, mError);
        }
        if (name == "scanner") {
            return mFactory->ProfileSpace(TableRGBProfile(), 3, mError);
        }
        if (name == "linear") {
            return mFactory->ProfileSpace(GammaRGBProfile(1.0), 3, mError);
        }
        if (name == "gamma") {
            return mFactory->ProfileSpace(GammaRGBProfile(1.8), 3, mError);
        }
        if (name == "lineargray") {
            return mFactory->ProfileSpace(GammaGrayProfile(1.0), 1, mError);
        }
        if (name == "calrgb") {
            return mFactory->CalibratedSpace("crgb"_cc, calibrated, mError);
        }
        if (name == "calgray") {
            return mFactory->CalibratedSpace("cgry"_cc, {.gammas = {1.8F}}, mError);
        }
        if (name == "lab") {
            return mFactory->CalibratedSpace("clab"_cc, calibrated, mError);
        }
        if (name == "spot") {
            return Spot(Space("inks"), {0, 0, 0, 0}, {0.1F, 0.8F, 0.4F, 0.2F});
        }
        if (name == "labspot") {
            return Spot(Space("lab"), {100, 0, 0}, {50, 60, -20});
        }
        if (name == "linearspot") {
            return Spot(Space("linear"), {1, 1, 1}, {0, 0.01F, 0.3F});
        }
        if (name == "none") {
            return mFactory->SeparationSpace("None", mFactory->NoneSpace(), nullptr, mError);
        }
        if (name == "all") {
            return mFactory->SeparationSpace("All", mFactory->RegistrationSpace(4), nullptr,
                                             mError);
        }
        return mFactory->DeviceNSpace(
            {"A", "B"}, Space("press"),
            HOST::MakeCalculatorFunction({{0, 1, 0, 1}, {0, 1, 0, 1, 0, 1, 0, 1}},
                                         "2 copy mul 3 1 roll 2 copy add 2 div", mError),
            nullptr, mError);
    }

    ColorSpacePtr Spot(const ColorSpacePtr& alternate, std::vector<float> none,
                       std::vector<float> full) {
        return mFactory->SeparationSpace(
            "Spot", alternate, Exponential({0, 1}, std::move(none), std::move(full), 1), mError);
    }

    std::string mError;
    std::map<std::string, ColorSpacePtr> mSpaces;
    TInterfacePtr<HOST::ColorSpaceFactory> mFactory = MakeObject<HOST::ColorSpaceFactory>();
};

class ColorLinesOf : public ColorLines,
                     public testing::WithParamInterface<std::tuple<const char*, const char*>> {};

TEST_P(ColorLinesOf, AgreeWithTheConversionsOfTheirColours) {
    const ColorSpacePtr from = Space(std::get<0>(GetParam()));
    const ColorSpacePtr to = Space(std::get<1>(GetParam()));
    ASSERT_TRUE(from && to) << mError;
    for (const Depths depths : {Depths{8, 8}, Depths{8, 16}, Depths{16, 8}, Depths{16, 16}}) {
        const auto in = SomePlanes(from->GetComponentCount(), depths.source, 1500);
        Converter convert(depths);
        const auto out = convert(*from, *to, in);
        ASSERT_EQ(convert.status, STATUS::kOk);
        EXPECT_LE(FarthestFromColors(*from, *to, in, out, depths, kRelative, kRelative), 3.0)
            << depths.source << " to " << depths.target;
    }
}

INSTANTIATE_TEST_SUITE_P(
    All, ColorLinesOf,
    testing::Combine(testing::Values("inks", "rgb", "gray", "press", "scanner", "linear", "gamma",
                                     "lineargray", "calrgb", "calgray", "lab", "spot", "labspot",
                                     "linearspot", "none", "all", "deviceN"),
                     testing::Values("inks", "rgb", "gray", "press", "linear")),
    [](const auto& tested) {
        return std::string(std::get<0>(tested.param)) + "To" + std::get<1>(tested.param);
    });

TEST_F(ColorLines, IntentsOfBothSidesCount) {
    const std::array kIntents{TRenderingIntent::kAbsoluteColorimetric,
                              TRenderingIntent::kSaturation, TRenderingIntent::kPerceptual};
    const std::vector<std::pair<ColorSpacePtr, ColorSpacePtr>> pairs{
        {Space("calrgb"), Space("press")}, {Space("press"), Space("rgb")}};
    for (const auto& [from, to] : pairs) {
        const auto in = SomePlanes(from->GetComponentCount(), 8, 200);
        for (const TRenderingIntent first : kIntents) {
            for (const TRenderingIntent second : kIntents) {
                Converter convert;
                const auto out = convert.Under(first, second)(*from, *to, in);
                EXPECT_LE(FarthestFromColors(*from, *to, in, out, {}, first, second), 3.0)
                    << int(first) << " " << int(second);
            }
        }
    }
}

TEST_F(ColorLines, SamplesOfTheSameSpaceAreCopied) {
    for (const char* name : {"inks", "rgb", "press", "lab", "spot", "deviceN"}) {
        const ColorSpacePtr space = Space(name);
        const auto bytes = SomePlanes(space->GetComponentCount(), 8, 300);
        const auto words = Converter({8, 16})(*space, *space, bytes);
        EXPECT_EQ(words[0][2], bytes[0][2] * 257) << name;
        EXPECT_EQ(Converter()(*space, *Make(name), bytes), bytes) << name;
        EXPECT_EQ(Converter({16, 16})(*space, *space, words), words) << name;
        EXPECT_EQ(Converter({16, 8})(*space, *space, words), bytes) << name;
    }
    const ColorSpacePtr rgb = Space("rgb");
    const Samples edges{0, 128, 129, 65406, 65407, 65535};
    EXPECT_THAT(Converter({16, 8})(*rgb, *rgb, {edges, edges, edges}),
                Each(ElementsAre(0, 0, 1, 254, 255, 255)));
    // A device space and its profile form are one.
    const auto colors = SomePlanes(3, 8, 300);
    EXPECT_EQ(Converter()(*rgb, *rgb->GetProfileForm(), colors), colors);
    EXPECT_EQ(Converter()(*rgb->GetProfileForm(), *rgb, colors), colors);
}

TEST_F(ColorLines, InksWithoutAProfileGoToLightAndBackExactly) {
    const ColorSpacePtr rgb = Space("rgb");
    const ColorSpacePtr inks = Space("inks");
    for (const std::int32_t bits : {8, 16}) {
        const std::uint32_t most = MostOf(bits);
        const auto light = SomePlanes(3, bits, 1500);
        const auto separated = Converter({bits, bits})(*rgb, *inks, light);
        for (std::size_t x = 0; x < 1500; ++x) {
            const std::uint32_t lightest = std::max({light[0][x], light[1][x], light[2][x]});
            ASSERT_EQ(separated[3][x], lightest);
            ASSERT_EQ(separated[1][x], most - (lightest - light[1][x]));
        }
        EXPECT_EQ(Converter({bits, bits})(*inks, *rgb, separated), light);
    }
}

TEST_F(ColorLines, TintsBecomeTheInksOfTheirFunction) {
    const ColorSpacePtr inks = Space("inks");
    const ColorSpacePtr spot = Space("spot");
    Samples ramp(256);
    std::iota(ramp.begin(), ramp.end(), 0);
    const auto out = Converter()(*spot, *inks, {ramp});
    for (std::size_t i = 0; i < ramp.size(); ++i) {
        const double tint = static_cast<double>(i) / 255;
        ASSERT_NEAR(out[0][i], 255 * (1 - 0.1 * tint), 0.51);
        ASSERT_NEAR(out[1][i], 255 * (1 - 0.8 * tint), 0.51);
        ASSERT_NEAR(out[3][i], 255 * (1 - 0.2 * tint), 0.51);
    }
    // The depth of the target counts for what is remembered of the tints.
    EXPECT_EQ(Converter({8, 16})(*spot, *inks, {{255}})[1][0], 13107U);
    EXPECT_EQ(Converter()(*spot, *inks, {{255}})[1][0], 51U);
    EXPECT_EQ(Converter()(*spot, *Space("rgb"), {{255, 0}}),
              Converter()(*inks, *Space("rgb"), {{230, 255}, {51, 255}, {153, 255}, {204, 255}}));
    // A mark on every plate stays one.
    EXPECT_THAT(Converter()(*Space("all"), *inks, {{255, 55}}), Each(ElementsAre(0, 200)));
}

TEST_F(ColorLines, AlphaLetsWhiteThrough) {
    const ColorSpacePtr rgb = Space("rgb");
    const auto in = SomePlanes(3, 8, 40);
    for (const char* name : {"rgb", "inks", "press", "gray"}) {
        const ColorSpacePtr to = Space(name);
        const auto opaque = Converter()(*rgb, *to, in);
        for (const std::int32_t bits : {1, 2, 4, 8, 16}) {
            const Samples alpha = SomePlanes(1, bits, 40)[0];
            const auto out = Converter().Alpha(alpha, bits)(*rgb, *to, in);
            for (std::size_t x = 0; x < alpha.size(); ++x) {
                const double cover = double(alpha[x]) / MostOf(bits);
                for (std::size_t i = 0; i < out.size(); ++i) {
                    ASSERT_NEAR(out[i][x], 255 - cover * (255 - opaque[i][x]), 0.51)
                        << name << " " << bits << " " << x;
                }
            }
        }
    }
    EXPECT_THAT(Converter({8, 16}).Alpha({0, 3}, 2)(*Space("spot"), *Space("inks"), {{255, 255}}),
                ElementsAre(ElementsAre(65535, 58982), ElementsAre(65535, 13107),
                            ElementsAre(65535, 39321), ElementsAre(65535, 52428)));
}

TEST_F(ColorLines, SamplesOfFewBitsAreParts) {
    const ColorSpacePtr gray = Space("gray");
    for (const std::int32_t bits : {1, 2, 4}) {
        const Samples codes = SomePlanes(1, bits, 21)[0];
        Samples bytes = codes;
        for (std::uint32_t& code : bytes) {
            code = code * 255 / MostOf(bits);
        }
        for (const char* name : {"gray", "rgb", "inks"}) {
            EXPECT_EQ(Converter({bits, 8})(*gray, *Space(name), {codes}),
                      Converter()(*gray, *Space(name), {bytes}));
        }
        EXPECT_EQ(Converter({bits, 16})(*Space("spot"), *Space("inks"), {codes}),
                  Converter({8, 16})(*Space("spot"), *Space("inks"), {bytes}));
    }
}

TEST_F(ColorLines, PlanesThatAreNotThereAreZeros) {
    const Samples zeros(30, 0);
    for (const std::int32_t bits : {8, 16}) {
        for (const char* source : {"rgb", "press", "inks", "deviceN", "lab"}) {
            for (const char* target : {"rgb", "inks", "press"}) {
                const ColorSpacePtr from = Space(source);
                const ColorSpacePtr to = Space(target);
                auto planes = SomePlanes(from->GetComponentCount(), bits, 30);
                planes[1] = {};
                const auto out = Converter({bits, 8})(*from, *to, planes);
                planes[1] = zeros;
                EXPECT_EQ(out, Converter({bits, 8})(*from, *to, planes)) << source << target;
            }
        }
    }
}

TEST_F(ColorLines, DepthsThatNobodyKnowsAreRefused) {
    const auto status = [this](const char* source, Depths depths, std::int32_t alphaBits) {
        const ColorSpacePtr from = Space(source);
        std::vector<std::uint8_t> bytes(64);
        const std::vector<const std::uint8_t*> in(4, bytes.data());
        std::vector<std::uint8_t> room(64);
        const std::vector<std::uint8_t*> out(4, room.data());
        LineConversion line;
        line.source = in.data();
        line.sourceBits = depths.source;
        line.width = 4;
        line.alpha = alphaBits == 0 ? nullptr : bytes.data();
        line.alphaBits = alphaBits;
        line.target = out.data();
        line.targetBits = depths.target;
        return from->ConvertLine(*Space("inks"), line);
    };
    EXPECT_EQ(status("rgb", {8, 8}, 0), STATUS::kOk);
    EXPECT_EQ(status("rgb", {4, 8}, 0), STATUS::kNotSupported);
    EXPECT_EQ(status("gray", {12, 8}, 0), STATUS::kNotSupported);
    EXPECT_EQ(status("gray", {8, 4}, 0), STATUS::kNotSupported);
    EXPECT_EQ(status("gray", {8, 8}, 3), STATUS::kNotSupported);
    EXPECT_EQ(status("inks", {8, 12}, 0), STATUS::kNotSupported);
}

TEST_F(ColorLines, SpacesThatCannotBeConvertedIntoAreRefused) {
    Converter convert;
    convert(*Space("rgb"), *mFactory->ProfileSpace(InkProfile(), 4, mError), {{1}, {2}, {3}});
    EXPECT_EQ(convert.status, STATUS::kNotSupported);
    convert(*mFactory->NoneSpace(), *Space("rgb"), {{1}});
    EXPECT_EQ(convert.status, STATUS::kNotSupported);
    convert(*Space("rgb"), *Space("spot"), {{1}, {2}, {3}});
    EXPECT_EQ(convert.status, STATUS::kNotSupported);
}

TEST_F(ColorLines, SpacesOfOtherHostsAreConvertedIntoByTheirColours) {
    const FakeDeviceSpace foreign("rgb "_cc, 77);
    const ColorSpacePtr rgb = Space("rgb");
    const auto in = SomePlanes(3, 8, 100);
    Converter convert;
    const auto out = convert(*rgb, foreign, in);
    EXPECT_EQ(convert.status, STATUS::kOk);
    EXPECT_LE(FarthestFromColors(*rgb, foreign, in, out, {}, kRelative, kRelative), 0.51);
}

TEST_F(ColorLines, MoreTargetsThanAreKeptStayApart) {
    const auto in = SomePlanes(3, 8, 20);
    const ColorSpacePtr rgb = Space("rgb");
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 12; ++i) {
            const auto to = mFactory->ProfileSpace(GammaRGBProfile(1.0 + 0.1 * i), 3, mError);
            const auto out = Converter()(*rgb, *to, in);
            ASSERT_LE(FarthestFromColors(*rgb, *to, in, out, {}, kRelative, kRelative), 3.0);
        }
    }
}

}  // namespace
}  // namespace VANTIX::TEST
