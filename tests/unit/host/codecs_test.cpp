// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <vector>

#include "host/codecs/linesource.h"
#include "support/codedimages.h"

namespace VANTIX::HOST {
namespace {

using TEST::AllLines;
using TEST::Coded;
using TEST::Noise;

/// Neighbours of a sample, by their distance in bytes or samples.
int NearestOf(int left, int above, int corner) {
    const int guess = left + above - corner;
    const auto off = [guess](int value) { return std::abs(guess - value); };
    if (off(left) <= off(above) && off(left) <= off(corner)) {
        return left;
    }
    return off(above) <= off(corner) ? above : corner;
}

/// Rows with PNG's filters, one after the other, written from the formulas of RFC 2083.
std::string FilterAsPng(const std::string& samples, std::size_t rowBytes, std::size_t pixelBytes) {
    std::string coded;
    const auto at = [&](std::size_t row, std::size_t x, std::size_t up, std::size_t left) {
        return row < up || x < left
                   ? 0
                   : static_cast<std::uint8_t>(samples[(row - up) * rowBytes + x - left]);
    };
    for (std::size_t row = 0; row * rowBytes < samples.size(); ++row) {
        const std::size_t filter = row % 5;
        coded += static_cast<char>(filter);
        for (std::size_t x = 0; x < rowBytes; ++x) {
            const int left = at(row, x, 0, pixelBytes);
            const int above = at(row, x, 1, 0);
            const int corner = x < pixelBytes ? 0 : at(row, x, 1, pixelBytes);
            const int guesses[] = {0, left, above, (left + above) / 2,
                                   NearestOf(left, above, corner)};
            coded += static_cast<char>(at(row, x, 0, 0) - guesses[filter]);
        }
    }
    return coded;
}

/// Differences of samples as TIFF's predictor 2 takes them, through a string of bits.
std::string DifferAsTiff(const std::string& samples, const ImageFormat& format) {
    std::string coded;
    const auto bits = static_cast<std::size_t>(format.bits);
    const auto colors = static_cast<std::size_t>(format.components);
    const std::size_t count = static_cast<std::size_t>(format.width) * colors;
    for (std::size_t start = 0; start < samples.size(); start += format.LineBytes()) {
        const auto sample = [&](std::size_t index) {
            std::uint32_t value = 0;
            for (std::size_t bit = index * bits; bit < (index + 1) * bits; ++bit) {
                const auto byte = static_cast<std::uint8_t>(samples[start + bit / 8]);
                value = value * 2 + (byte >> (7 - bit % 8) & 1U);
            }
            return value;
        };
        std::string row(format.LineBytes(), '\0');
        for (std::size_t i = 0; i < count; ++i) {
            const std::uint32_t difference = sample(i) - (i < colors ? 0 : sample(i - colors));
            for (std::size_t bit = 0; bit < bits; ++bit) {
                const std::size_t to = (i + 1) * bits - 1 - bit;
                row[to / 8] = static_cast<char>(static_cast<unsigned char>(row[to / 8]) |
                                                ((difference >> bit & 1U) << (7 - to % 8)));
            }
        }
        coded += row;
    }
    return coded;
}

TEST(RawSource, LastLineKeepsItsBytesWhenDataEndInIt) {
    const LineSourcePtr source = MakeRawSource(Coded("abcdefgh"), {3, 4, 1, 8});
    ASSERT_NE(source, nullptr);
    EXPECT_EQ(AllLines(*source), "abcdefghf");
    EXPECT_EQ(source->Error(), "image data end in line 3 of 4");
    source->Rewind();
    EXPECT_EQ(AllLines(*source), "abcdefghf");
}

TEST(RawSource, RefusesFormatsThatNoLineCanHave) {
    for (const ImageFormat& format :
         {ImageFormat{0, 1, 1, 8}, ImageFormat{1, -1, 1, 8}, ImageFormat{1, 1, 0, 8},
          ImageFormat{1, 1, 99, 8}, ImageFormat{1, 1, 1, 7}, ImageFormat{2000000000, 1, 4, 16}}) {
        EXPECT_EQ(MakeRawSource(Coded("data"), format), nullptr);
    }
    EXPECT_EQ(MakeRawSource(nullptr, {1, 1, 1, 8}), nullptr);
}

using Shape = std::tuple<std::int32_t, std::int32_t, std::int32_t>;  // predictor, colours, bits

class FlatePredictor : public testing::TestWithParam<Shape> {};

TEST_P(FlatePredictor, IsUndoneOverManyBlocksAndAgainAfterRewinding) {
    const auto [predictor, colors, bits] = GetParam();
    const ImageFormat format{701, 150, colors, bits};
    const std::string samples = TEST::ClearPadding(Noise(format.LineBytes() * 150, 5), format);
    std::string coded = samples;
    if (predictor == 2) {
        coded = DifferAsTiff(samples, format);
    } else if (predictor >= 10) {
        const auto pixelBytes = static_cast<std::size_t>((colors * bits + 7) / 8);
        coded = FilterAsPng(samples, format.LineBytes(), pixelBytes);
    }
    std::string error;
    const LineSourcePtr source =
        MakeFlateSource(Coded(TEST::Deflate(coded)), format, {predictor, colors, bits, 701}, error);
    ASSERT_NE(source, nullptr) << error;
    source->NextLine();
    source->Rewind();
    EXPECT_TRUE(AllLines(*source) == samples);
    EXPECT_EQ(source->NextLine(), nullptr);
    EXPECT_EQ(source->Error(), "");
}

INSTANTIATE_TEST_SUITE_P(FlateSource, FlatePredictor,
                         testing::Combine(testing::Values(1, 2, 10, 15), testing::Values(1, 3, 4),
                                          testing::Values(1, 2, 4, 8, 16)));

TEST(FlateSource, LinesRunThroughPredictorRowsOfAnotherLength) {
    const std::string samples = Noise(std::size_t{7} * 60, 3);
    for (const std::int32_t columns : {1, 5, 12, 420}) {
        const auto row = static_cast<std::size_t>(columns);
        std::string error;
        const LineSourcePtr source =
            MakeFlateSource(Coded(TEST::Deflate(FilterAsPng(samples, row, 1))), {7, 60, 1, 8},
                            {12, 1, 8, columns}, error);
        ASSERT_NE(source, nullptr) << error;
        EXPECT_TRUE(AllLines(*source) == samples) << columns;
        EXPECT_EQ(source->Error(), "");
    }
}

TEST(FlateSource, DamagedDataGiveTheLinesBeforeTheDamage) {
    const std::string samples = Noise(std::size_t{100} * 1000, 9);
    std::string coded = TEST::Deflate(samples);
    std::string error;
    const auto linesOf = [&](const std::string& data) {
        const LineSourcePtr source =
            MakeFlateSource(Coded(data), {100, 1000, 1, 8}, PredictorParameters{}, error);
        const std::string lines = AllLines(*source);
        EXPECT_NE(source->Error(), "");
        EXPECT_TRUE(samples.starts_with(lines.substr(0, lines.size() - lines.size() % 100 - 100)));
        return lines.size() / 100;
    };
    const std::size_t cut = linesOf(coded.substr(0, coded.size() / 2));
    EXPECT_NEAR(static_cast<double>(cut), 500, 25);
    // A second header in the midst of noise is no block of this stream.
    const LineSourcePtr other = MakeFlateSource(Coded("not zlib"), {1, 1, 1, 8}, {}, error);
    EXPECT_EQ(other->NextLine(), nullptr);
    EXPECT_EQ(other->Error(), "Flate data end in line 1 of 1: incorrect header check");
}

TEST(FlateSource, RefusesPredictorsOutOfRange) {
    for (const PredictorParameters& parameters :
         {PredictorParameters{7, 1, 8, 1}, PredictorParameters{16, 1, 8, 1},
          PredictorParameters{12, 0, 8, 1}, PredictorParameters{12, 1, 3, 1},
          PredictorParameters{2, 1, 8, -5}, PredictorParameters{12, 33, 16, 2147483647}}) {
        std::string error;
        EXPECT_EQ(MakeFlateSource(Coded(""), {1, 1, 1, 8}, parameters, error), nullptr);
        EXPECT_NE(error, "");
    }
}

}  // namespace
}  // namespace VANTIX::HOST
