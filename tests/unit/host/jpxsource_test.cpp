// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "host/codecs/linesource.h"
#include "support/codedimages.h"
#include "support/imageencoders.h"

namespace VANTIX::TEST {
namespace {

using HOST::JpxInfo;
using HOST::LineSourcePtr;
using HOST::MakeJpxSource;

constexpr std::size_t kWidth = 37;
constexpr std::size_t kHeight = 21;

struct Decoded {
    LineSourcePtr source;
    JpxInfo info;
    std::string error;
    std::string lines;
};

Decoded Decode(const std::string& bytes) {
    Decoded decoded;
    decoded.source = MakeJpxSource(Coded(bytes), decoded.info, decoded.error);
    if (decoded.source) {
        decoded.lines = AllLines(*decoded.source);
    }
    return decoded;
}

/// The samples in the depth in which the source serves them.
Samples Served(const Samples& samples, unsigned bits) {
    Samples served = samples;
    served.bits = bits;
    for (auto& value : served.values) {
        value = static_cast<std::uint16_t>(
            std::lround(1.0 * value * served.Greatest() / samples.Greatest()));
    }
    return served;
}

struct Shape {
    const char* name;
    std::size_t components;
    unsigned bits;
    unsigned servedBits;
    JpxOptions options;
};

class JpxShapes : public testing::TestWithParam<Shape> {};

TEST_P(JpxShapes, ServeTheSamplesThatWereCoded) {
    const Shape& shape = GetParam();
    const Samples ramps = Ramps(kWidth, kHeight, shape.components, shape.bits);
    const Decoded decoded = Decode(Jpx(ramps, shape.options));
    ASSERT_NE(decoded.source, nullptr) << decoded.error;
    EXPECT_EQ(decoded.source->Format().bits, static_cast<std::int32_t>(shape.servedBits));
    EXPECT_EQ(decoded.lines, Packed(Served(ramps, shape.servedBits)));
    EXPECT_EQ(decoded.source->Error(), "");
    decoded.source->Rewind();
    EXPECT_EQ(AllLines(*decoded.source), decoded.lines);
}

INSTANTIATE_TEST_SUITE_P(JpxSource, JpxShapes,
                         testing::Values(Shape{"Bits1", 1, 1, 1, {}}, Shape{"Bits2", 1, 2, 2, {}},
                                         Shape{"Bits3", 1, 3, 8, {}}, Shape{"Bits4", 1, 4, 4, {}},
                                         Shape{"Bits8", 1, 8, 8, {}},
                                         Shape{"Bits12", 1, 12, 16, {}},
                                         Shape{"Bits16", 1, 16, 16, {}}, Shape{"Rgb", 3, 8, 8, {}},
                                         Shape{"Rgb1", 3, 1, 8, {}}, Shape{"Rgb16", 3, 16, 16, {}},
                                         Shape{"Signed", 3, 8, 8, {JpxSpace::kUsual, false, true}},
                                         Shape{"Cmyk", 4, 8, 8, {JpxSpace::kCmyk}},
                                         Shape{"Opacity", 4, 8, 8, {}},
                                         Shape{"Codestream", 3, 8, 8, {JpxSpace::kUsual, true}}),
                         [](const auto& one) { return std::string(one.param.name); });

/// A file whose box of the given type has other bytes at an offset behind the type.
std::string Changed(std::string file, const char* box, std::size_t offset, std::string_view bytes) {
    const std::size_t at = file.find(box);
    EXPECT_NE(at, std::string::npos) << box;
    return file.replace(at + 4 + offset, bytes.size(), bytes);
}

TEST(JpxSource, TellsSpaceAndOpacity) {
    using namespace std::string_view_literals;
    const auto infoOf = [](std::size_t components, const JpxOptions& options) {
        return Decode(Jpx(Ramps(9, 9, components, 8), options)).info;
    };
    EXPECT_EQ(infoOf(1, {}).family, "gray"_cc);
    EXPECT_EQ(infoOf(3, {}).family, "rgb "_cc);
    const std::string four = Jpx(Ramps(9, 9, 4, 8), {JpxSpace::kCmyk});
    EXPECT_EQ(Decode(Changed(four, "colr", 3, "\0\0\0\x0C"sv)).info.family, "cmyk"_cc);
    EXPECT_EQ(infoOf(3, {JpxSpace::kUsual, true}).family, 0U);
    const JpxInfo plain = infoOf(4, {});
    EXPECT_TRUE(plain.hasAlpha);
    EXPECT_FALSE(plain.isPremultiplied);
    EXPECT_EQ(plain.colors, 3);
    const std::string mixed = Changed(Jpx(Ramps(9, 9, 2, 8)), "cdef", 10, "\0\2"sv);
    EXPECT_TRUE(Decode(mixed).info.isPremultiplied);
}

TEST(JpxSource, YccWithCoarseChrominanceComesAsRgb) {
    Samples ycc{16, 16, 3, 8, {}};
    for (std::size_t i = 0; i < 256; ++i) {
        ycc.values.insert(ycc.values.end(), {120, 90, 200});
    }
    const Decoded decoded = Decode(Jpx(ycc, {JpxSpace::kYcc, false, false, 2}));
    ASSERT_NE(decoded.source, nullptr) << decoded.error;
    EXPECT_EQ(decoded.info.family, "rgb "_cc);
    ASSERT_EQ(decoded.lines.size(), 16U * 16U * 3U);
    // R = 120 + 1.402 * 72, G = 120 + 0.344 * 38 - 0.714 * 72, B = 120 - 1.772 * 38
    EXPECT_EQ(decoded.lines.substr(0, 3), "\xDD\x52\x35");
    EXPECT_EQ(decoded.lines.substr(16 * 16 * 3 - 3), "\xDD\x52\x35");
}

TEST(JpxSource, DamagedDataGiveWhatThereIsOrAReason) {
    const std::string sound = Jpx(Ramps(200, 200, 3, 8));
    const Decoded cut = Decode(sound.substr(0, sound.size() / 2));
    ASSERT_NE(cut.source, nullptr) << cut.error;
    EXPECT_EQ(cut.lines.size(), 200U * 200U * 3U);
    for (const std::string& bytes :
         {std::string(), std::string("junk"), sound.substr(0, 60), std::string(5000, '\xFF')}) {
        const Decoded none = Decode(bytes);
        EXPECT_EQ(none.source, nullptr);
        EXPECT_NE(none.error, "");
    }
    for (std::size_t i = 0; i < 300; ++i) {
        std::string changed = sound;
        changed[i * 37 % sound.size()] = static_cast<char>(i * 151);
        Decode(changed);
    }
}

TEST(JpxSource, HugeSizesAreRefusedBeforeTheyAreDecoded) {
    std::string stream = Jpx(Ramps(8, 8, 1, 8), {JpxSpace::kUsual, true});
    // Width, height, and the same of a tile, follow the marker of the size, its length and a word.
    for (const std::size_t at :
         {std::size_t{8}, std::size_t{12}, std::size_t{24}, std::size_t{28}}) {
        stream.replace(at, 4, std::string("\x00\x01\x00\x00", 4));
    }
    const Decoded refused = Decode(stream);
    EXPECT_EQ(refused.source, nullptr);
    EXPECT_EQ(refused.error, "JPX data of 4294967296 samples are too large");
}

}  // namespace
}  // namespace VANTIX::TEST
