// SPDX-License-Identifier: MIT
#include "postscriptdatastream/formattext.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cinttypes>
#include <clocale>
#include <cstdio>
#include <limits>
#include <random>
#include <string>

#include "postscriptdatastream/realtext.h"
#include "support/recordinglogger.h"

namespace VANTIX::PS {
namespace {

using TEST::RecordingLogger;

template <class... Arguments>
std::string Formatted(const char* format, Arguments... arguments) {
    std::array<char, 600> buffer;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"
    const std::size_t length = FormatText(buffer.data(), buffer.size(), format, arguments...);
#pragma GCC diagnostic pop
    EXPECT_EQ(buffer[length], '\0');
    return {buffer.data(), length};
}

template <class... Arguments>
std::string Printed(const char* format, Arguments... arguments) {
    std::array<char, 600> buffer;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"
    const int length = std::snprintf(buffer.data(), buffer.size(), format, arguments...);
#pragma GCC diagnostic pop
    return {buffer.data(), static_cast<std::size_t>(length)};
}

void ExpectSameReal(double value) {
    for (const char* format : {"%g", "%.8g", "%0.3g", "%.3f", "%.1g", "%.0g", "%.17g", "%09.4g"}) {
        ASSERT_EQ(Formatted(format, value), Printed(format, value)) << format;
    }
}

TEST(FormatText, RealsOfEveryMagnitudeAreThoseOfPrintf) {
    std::mt19937_64 random(20240229);
    for (int i = 0; i < 20000; ++i) {
        const std::uint64_t bits = random();
        const auto anyDouble = std::bit_cast<double>(bits);
        const auto anyFloat = std::bit_cast<float>(static_cast<std::uint32_t>(bits));
        // Page coordinates and colours: what the writers really write.
        const auto coordinate = static_cast<float>(static_cast<std::int64_t>(bits) >> 40) / 1024.0F;
        const float colour = static_cast<float>(bits & 0xFFFFU) / 65535.0F;
        for (const double value :
             {anyDouble, double{anyFloat}, double{coordinate}, double{colour}}) {
            if (std::isfinite(value)) {
                ExpectSameReal(value);
            }
        }
    }
}

TEST(FormatText, RealsThatLieHalfwayOrAtAPowerOfTenAreThoseOfPrintf) {
    for (int exponent = -8; exponent <= 12; ++exponent) {
        const double power = std::pow(10.0, exponent);
        const auto single = static_cast<float>(power);
        for (const float value :
             {single, std::nextafterf(single, 0), std::nextafterf(single, 1e30F),
              single * 9.9999995F, single * 0.99999994F, single * 2.5F}) {
            ExpectSameReal(value);
            ExpectSameReal(-value);
        }
        ExpectSameReal(power);
        ExpectSameReal(std::nextafter(power, 0));
    }
    for (int i = 0; i < 4096; ++i) {
        ExpectSameReal(i / 8.0 + 1234567.0);
        ExpectSameReal(i / 64.0 + 0.0078125);
    }
    ExpectSameReal(0.0);
    ExpectSameReal(-0.0);
    ExpectSameReal(999999.96875);
    ExpectSameReal(std::numeric_limits<double>::max());
    ExpectSameReal(std::numeric_limits<double>::denorm_min());
}

TEST(FormatText, IntegersTakeTheirLengthAndWidth) {
    const auto same = [](const char* format, auto value) {
        EXPECT_EQ(Formatted(format, value), Printed(format, value)) << format;
    };
    for (const int value : {0, 1, -1, 200, -129, 40000, 2147483647, -2147483647 - 1}) {
        for (const char* format : {"%d", "%i", "%u", "%x", "%X", "%hd", "%hhd", "%hu", "%hhX",
                                   "%04x", "%02hhX", "%06d", "%6d", "%3d"}) {
            same(format, value);
        }
    }
    for (const std::int64_t value : {std::int64_t{0}, std::numeric_limits<std::int64_t>::min()}) {
        for (const char* format : {"%" PRId64, "%" PRIu64, "%" PRIx64, "%lld", "%020llu"}) {
            same(format, value);
        }
    }
}

TEST(FormatText, TextIsCopiedAndThePercentSignSurvives) {
    EXPECT_EQ(Formatted("/%s %c %%EOF 100%% %s.", "Name", 'H', ""), "/Name H %EOF 100% .");
    EXPECT_EQ(Formatted("[%8s|%.2s]", "abc", "abc"), "[     abc|ab]");
    EXPECT_EQ(Formatted(""), "");
}

TEST(FormatText, ACutTextIsTerminatedAndItsWholeLengthTold) {
    std::array<char, 9> buffer;
    buffer.fill('#');
    EXPECT_EQ(FormatText(buffer.data(), 5, "%s %d", "abc", 12), 6U);
    EXPECT_STREQ(buffer.data(), "abc ");
    EXPECT_EQ(buffer[5], '#');
    EXPECT_EQ(FormatText(buffer.data(), 0, "%d", 12345), 5U);
    EXPECT_EQ(buffer[0], 'a');
    EXPECT_EQ(FormatText(nullptr, 0, "%d", 12345), 5U);
}

TEST(FormatText, RealsThatAreNoNumbersAreZeroAndLogged) {
    RecordingLogger::Get().Clear();
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(Formatted("%g %.8g %.3f", kInfinity, -kInfinity, std::nan("")), "0 0 0.000");
    EXPECT_EQ(RecordingLogger::Get().Entries().size(), 3U);
}

TEST(FormatText, TheProcessesLocaleDoesNotReachTheOutput) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "de_DE", ""}) {
        std::setlocale(LC_ALL, name);
        EXPECT_EQ(Formatted("%.8g %.3f", 1234.5, 1234.5), "1234.5 1234.500");
    }
    std::setlocale(LC_ALL, before.c_str());
}

TEST(FormatText, AnUnknownConversionEndsTheTextAndIsLogged) {
    RecordingLogger::Get().Clear();
    EXPECT_EQ(Formatted("a %p b", nullptr), "a ");
    EXPECT_EQ(Formatted("a %"), "a ");
    EXPECT_EQ(RecordingLogger::Get().Count("Unknown conversion"), 2);
}

}  // namespace
}  // namespace VANTIX::PS
