// SPDX-License-Identifier: MIT
#include "truetypetot1conversionutils.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "charstringwords.h"
#include "support/recordinglogger.h"

namespace VANTIX::PS {
namespace {

std::string Read(const T1CharStringConnectionspace& space) {
    return TEST::ReadCharString(space.GetCharString());
}

TEST(T1CharStrings, OutlineIsWrittenInDifferences) {
    T1CharStringConnectionspace space(0.6F, 1000);
    space.NewPath();
    space.MoveTo(0.1F, 0.2F);
    const float line[] = {0.3F, 0.2F, 0.3F, 0.1F};
    space.LineTo(line, 2);
    const float cubic[] = {0.3F, 0.4F, 0.5F, 0.4F, 0.5F, 0.1F};
    space.CurveTo(cubic, 1);
    const float quadratic[] = {0.5F, 0.7F, 0.8F, 0.7F};
    space.QuadCurveTo(quadratic, 1);
    space.ClosePath();
    space.ResetPath();
    EXPECT_EQ(Read(space),
              "0 600 [13] 100 200 [21] 200 0 [5] 0 -100 [5] 0 300 200 0 0 -300 [8] "
              "0 400 100 200 200 0 [8] [9] [14] ");
}

struct NumberCase {
    float ems;
    float scale;
    const char* words;
};

class T1CharStringNumbers : public ::testing::TestWithParam<NumberCase> {};

TEST_P(T1CharStringNumbers, AreWrittenAs) {
    T1CharStringConnectionspace space(0, GetParam().scale);
    space.MoveTo(GetParam().ems, 0);
    EXPECT_EQ(Read(space), GetParam().words + std::string(" 0 [21] "));
}

// The em is cut or rounded, and every form of a number is met at both of its ends.
INSTANTIATE_TEST_SUITE_P(
    Forms, T1CharStringNumbers,
    ::testing::Values(NumberCase{0.01225F, 1000, "122 10 [1212]"},
                      NumberCase{-0.01225F, 1000, "-122 10 [1212]"},
                      NumberCase{0.01229F, 1000, "122 10 [1212]"},
                      NumberCase{0.0123F, 1000, "123 10 [1212]"},
                      NumberCase{0.0001F, 1000, "1 10 [1212]"}, NumberCase{0.01225F, 10000, "123"},
                      NumberCase{-0.01225F, 10000, "-123"}, NumberCase{0.107F, 1000, "107"},
                      NumberCase{-0.107F, 1000, "-107"}, NumberCase{0.108F, 1000, "108"},
                      NumberCase{-0.108F, 1000, "-108"}, NumberCase{1.131F, 1000, "1131"},
                      NumberCase{-1.131F, 1000, "-1131"}, NumberCase{1.132F, 1000, "1132"},
                      NumberCase{-1.132F, 1000, "-1132"}, NumberCase{1e30F, 1000, "2147483647"},
                      NumberCase{std::numeric_limits<float>::quiet_NaN(), 1000, "0"},
                      NumberCase{std::numeric_limits<float>::infinity(), 10000, "2147483647"}));

TEST(T1CharStrings, CoordinatesInThousandthsAreWholeWhereverTheyStand) {
    for (int start = -900; start < 900; start += 7) {
        T1CharStringConnectionspace space(0, 1000);
        space.MoveTo(static_cast<float>(start) / 1000, static_cast<float>(start + 61) / 1000);
        const float point[] = {static_cast<float>(start + 23) / 1000, 0};
        space.LineTo(point, 1);
        EXPECT_EQ(Read(space), std::to_string(start) + " " + std::to_string(start + 61) +
                                   " [21] 23 " + std::to_string(-start - 61) + " [5] ");
    }
}

TEST(T1CharStrings, OneWithoutEndIsGivenUp) {
    TEST::RecordingLogger::Get().Clear();
    T1CharStringConnectionspace space(1, 1000);
    const float point[] = {0.5F, 0.5F};
    for (std::size_t i = 0; i <= T1CharString::kMostBytes / 3; ++i) {
        space.LineTo(point, 1);
    }
    EXPECT_TRUE(space.GetCharString().empty());
    EXPECT_EQ(TEST::RecordingLogger::Get().Messages(),
              "Unable to get heap memory for 1048577bytes\n");
}

}  // namespace
}  // namespace VANTIX::PS
