// SPDX-License-Identifier: MIT
#include "postscriptconnectionspace/standardhashie.h"

#include <gtest/gtest.h>

#include <bit>

#include "support/recordinglogger.h"

namespace VANTIX {
namespace {

TEST(StandardHashie, FoldsSignedBytesIntoADouble) {
    EXPECT_EQ(StandardHashie(""), 0U);
    EXPECT_EQ(StandardHashie(" "), 0U);
    EXPECT_EQ(StandardHashie("A"), 0x4040800000000000U);
    EXPECT_EQ(StandardHashie("AB"),
              std::bit_cast<std::uint64_t>(33 * static_cast<double>(3.333333F) + 34));
    EXPECT_EQ(StandardHashie("\x80"), std::bit_cast<std::uint64_t>(96.0));
    EXPECT_EQ(StandardHashie("\xA0"), std::bit_cast<std::uint64_t>(-128.0));
    EXPECT_EQ(StandardHashie("\x1F"), std::bit_cast<std::uint64_t>(-1.0));
}

TEST(StandardHashie, RefusesANullText) {
    TEST::RecordingLogger::Get().Clear();
    EXPECT_EQ(StandardHashie(nullptr), 0U);
    EXPECT_TRUE(TEST::RecordingLogger::Get().Has("cannot pass in a NULL string."));
}

}  // namespace
}  // namespace VANTIX
