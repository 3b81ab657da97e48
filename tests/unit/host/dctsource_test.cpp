// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

// libjpeg's header takes FILE and size_t for granted.
#include <jpeglib.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <tuple>
#include <vector>

#include "host/codecs/linesource.h"
#include "support/codedimages.h"

namespace VANTIX::HOST {
namespace {

using TEST::AllLines;
using TEST::Coded;

constexpr std::int32_t kWidth = 83;
constexpr std::int32_t kHeight = 61;

/// Smooth waves, another one for each component.
std::string Waves(std::int32_t components) {
    std::string samples;
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            for (int c = 0; c < components; ++c) {
                const double wave = std::sin(0.06 * (x + 1) * (c + 1)) * std::cos(0.05 * y + c);
                samples += static_cast<char>(std::lround(128 + 90 * wave));
            }
        }
    }
    return samples;
}

struct Jpeg {
    J_COLOR_SPACE samples = JCS_RGB;  ///< what is compressed
    J_COLOR_SPACE stored = JCS_YCbCr;
    bool isProgressive = false;
    bool isMarked = false;  ///< with Adobe's marker
    bool isNamed = false;   ///< the components are called R, G and B
    unsigned restartInterval = 0;
};

int ComponentsOf(J_COLOR_SPACE space) {
    return space == JCS_GRAYSCALE ? 1 : space == JCS_CMYK || space == JCS_YCCK ? 4 : 3;
}

std::string Compress(const std::string& samples, const Jpeg& jpeg) {
    jpeg_compress_struct encoder{};
    jpeg_error_mgr errors{};
    encoder.err = jpeg_std_error(&errors);
    jpeg_create_compress(&encoder);
    unsigned char* out = nullptr;
    std::size_t size = 0;
    jpeg_mem_dest(&encoder, &out, &size);
    encoder.image_width = kWidth;
    encoder.image_height = kHeight;
    encoder.input_components = ComponentsOf(jpeg.samples);
    encoder.in_color_space = jpeg.samples;
    jpeg_set_defaults(&encoder);
    jpeg_set_colorspace(&encoder, jpeg.stored);
    jpeg_set_quality(&encoder, 98, TRUE);
    encoder.write_Adobe_marker = jpeg.isMarked ? TRUE : FALSE;
    encoder.write_JFIF_header = FALSE;
    encoder.restart_interval = jpeg.restartInterval;
    for (int i = 0; i < encoder.num_components; ++i) {
        encoder.comp_info[i].component_id = jpeg.isNamed ? "RGB"[i] : i + 1;
    }
    if (jpeg.isProgressive) {
        jpeg_simple_progression(&encoder);
    }
    jpeg_start_compress(&encoder, TRUE);
    const std::size_t lineBytes = samples.size() / kHeight;
    for (std::size_t line = 0; line < kHeight; ++line) {
        std::vector<JSAMPLE> row(
            samples.begin() + static_cast<std::ptrdiff_t>(line * lineBytes),
            samples.begin() + static_cast<std::ptrdiff_t>((line + 1) * lineBytes));
        JSAMPROW rows = row.data();
        jpeg_write_scanlines(&encoder, &rows, 1);
    }
    jpeg_finish_compress(&encoder);
    jpeg_destroy_compress(&encoder);
    std::string coded(out, out + size);
    std::free(out);
    return coded;
}

/// Mean difference of samples; 255 when the counts differ.
double Distance(const std::string& a, const std::string& b) {
    if (a.size() != b.size() || a.empty()) {
        return 255;
    }
    double sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        sum += std::abs(static_cast<std::uint8_t>(a[i]) - static_cast<std::uint8_t>(b[i]));
    }
    return sum / static_cast<double>(a.size());
}

LineSourcePtr Open(const std::string& coded, std::int32_t colorTransform = -1) {
    std::string error;
    LineSourcePtr source = MakeDctSource(Coded(coded), colorTransform, error);
    EXPECT_EQ(source == nullptr, !error.empty()) << error;
    return source;
}

struct ColorCase {
    const char* name;
    Jpeg jpeg;
    std::int32_t parameter;
};

void PrintTo(const ColorCase& color, std::ostream* out) {
    *out << color.name;
}

class DctColors : public testing::TestWithParam<std::tuple<ColorCase, bool>> {};

TEST_P(DctColors, ComeBackAsTheyWereCompressed) {
    const auto& [color, isProgressive] = GetParam();
    Jpeg jpeg = color.jpeg;
    jpeg.isProgressive = isProgressive;
    const std::string samples = Waves(ComponentsOf(jpeg.samples));
    const LineSourcePtr source = Open(Compress(samples, jpeg), color.parameter);
    ASSERT_NE(source, nullptr);
    EXPECT_EQ(source->Format().width, kWidth);
    EXPECT_EQ(source->Format().height, kHeight);
    EXPECT_EQ(source->Format().components, ComponentsOf(jpeg.samples));
    source->NextLine();
    source->Rewind();
    EXPECT_LT(Distance(AllLines(*source), samples), 3.5);
    EXPECT_EQ(source->Error(), "");
}

INSTANTIATE_TEST_SUITE_P(
    DctSource, DctColors,
    testing::Combine(
        testing::Values(
            ColorCase{"Gray", {JCS_GRAYSCALE, JCS_GRAYSCALE}, -1},
            ColorCase{"YccByHabit", {JCS_RGB, JCS_YCbCr}, -1},
            ColorCase{"YccByParameter", {JCS_RGB, JCS_YCbCr}, 1},
            ColorCase{"YccByMarkerAgainstParameter", {JCS_RGB, JCS_YCbCr, false, true}, 0},
            ColorCase{"RgbByParameter", {JCS_RGB, JCS_RGB}, 0},
            ColorCase{"RgbByNames", {JCS_RGB, JCS_RGB, false, false, true}, -1},
            ColorCase{"RgbByMarkerAgainstParameter", {JCS_RGB, JCS_RGB, false, true}, 1},
            ColorCase{"CmykByHabit", {JCS_CMYK, JCS_CMYK}, -1},
            ColorCase{"CmykByMarkerAgainstParameter", {JCS_CMYK, JCS_CMYK, false, true}, 1},
            ColorCase{"YcckByParameter", {JCS_CMYK, JCS_YCCK}, 1},
            ColorCase{"YcckByMarker", {JCS_CMYK, JCS_YCCK, false, true}, -1}),
        testing::Bool()),
    [](const auto& param) {
        return std::string(std::get<0>(param.param).name) +
               (std::get<1>(param.param) ? "Progressive" : "Baseline");
    });

TEST(DctSource, TruncatedDataGiveTheLinesThatTheyReachTo) {
    const std::string samples = Waves(3);
    const std::string coded = Compress(samples, {});
    const LineSourcePtr source = Open(coded.substr(0, coded.size() * 6 / 10));
    ASSERT_NE(source, nullptr);
    const std::string lines = AllLines(*source);
    EXPECT_GE(lines.size() / (std::size_t{3} * kWidth), 16U);
    EXPECT_LT(lines.size() / (std::size_t{3} * kWidth), std::size_t{kHeight});
    // The last row of blocks is decoded in part.
    const std::size_t whole = lines.size() - std::size_t{3} * kWidth * 17;
    EXPECT_LT(Distance(lines.substr(0, whole), samples.substr(0, whole)), 3.5);
    EXPECT_NE(source->Error(), "");
}

TEST(DctSource, ProgressiveDataThatEndEarlyGiveAllLinesLessFinely) {
    const std::string samples = Waves(3);
    const std::string coded = Compress(samples, {JCS_RGB, JCS_YCbCr, true});
    const LineSourcePtr source = Open(coded.substr(0, coded.size() * 7 / 10));
    ASSERT_NE(source, nullptr);
    EXPECT_LT(Distance(AllLines(*source), samples), 8);
    EXPECT_NE(source->Error(), "");
}

/// A scan of a progressive image, whole, from its marker to the next one.
std::string LastScan(const std::string& coded) {
    const std::size_t start = coded.rfind("\xFF\xDA");
    return coded.substr(start, coded.size() - 2 - start);
}

TEST(DctSource, EndlessScansStopAndTheImageStays) {
    const std::string samples = Waves(1);
    std::string coded = Compress(samples, {JCS_GRAYSCALE, JCS_GRAYSCALE, true});
    const std::string scan = LastScan(coded);
    coded.resize(coded.size() - 2);
    for (int i = 0; i < 500; ++i) {
        coded += scan;
    }
    const LineSourcePtr source = Open(coded);
    ASSERT_NE(source, nullptr);
    EXPECT_EQ(AllLines(*source).size(), samples.size());
}

TEST(DctSource, DamageBetweenRestartsLeavesTheRestOfTheImage) {
    const std::string samples = Waves(1);
    std::string coded = Compress(samples, {JCS_GRAYSCALE, JCS_GRAYSCALE, false, false, false, 11});
    for (std::size_t i = 0; i < 20; ++i) {
        coded[coded.size() / 2 + i] = '\x11';
    }
    const LineSourcePtr source = Open(coded);
    ASSERT_NE(source, nullptr);
    const std::string lines = AllLines(*source);
    ASSERT_EQ(lines.size(), samples.size());
    const std::size_t end = lines.size() - std::size_t{8} * kWidth;
    EXPECT_LT(Distance(lines.substr(end), samples.substr(end)), 3);
    EXPECT_NE(source->Error(), "");
}

TEST(DctSource, BytesBeforeTheFirstMarkerAreSkipped) {
    const LineSourcePtr source = Open("\r\n" + Compress(Waves(3), {}));
    ASSERT_NE(source, nullptr);
    EXPECT_EQ(AllLines(*source).size(), std::size_t{3} * kWidth * kHeight);
}

TEST(DctSource, RefusesWhatIsNoImage) {
    std::string huge = Compress(Waves(3), {JCS_RGB, JCS_YCbCr, true});
    const std::size_t frame = huge.find("\xFF\xC2");
    ASSERT_NE(frame, std::string::npos);
    huge.replace(frame + 5, 4, "\xFF\xDC\xFF\xDC");
    for (const std::string& coded :
         {std::string(), std::string("no JPEG data"), std::string("\xFF\xD8\xFF\xD9"), huge}) {
        EXPECT_EQ(Open(coded), nullptr);
    }
}

}  // namespace
}  // namespace VANTIX::HOST
