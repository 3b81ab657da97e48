// SPDX-License-Identifier: MIT
#include "app/console.h"

#include <gmock/gmock.h>

#include <sstream>

namespace VANTIX::APP {
namespace {

TEST(Console, WarningsNameTheirPageAndCannotDriveTheTerminal) {
    std::ostringstream out;
    Console console(out, Console::Voice::kNormal, false);
    console.Warning({"kind",
                     "a\x1b[2Jb\nc\xC2\x9B"
                     "d \xC3\xBC",
                     3, 1});
    EXPECT_EQ(out.str(), "norvane: warning: page 3: a?[2Jb?c?d \xC3\xBC\n");
}

TEST(Console, QuietLeavesErrors) {
    std::ostringstream out;
    Console console(out, Console::Voice::kQuiet, true);
    console.Warning({"kind", "text", 0, 1});
    console.Notice("text");
    console.Error("wrong");
    EXPECT_EQ(out.str(), "norvane: error: wrong\n");
}

TEST(Console, ShortJobsShowNoBar) {
    std::ostringstream out;
    Console console(out, Console::Voice::kNormal, true);
    console.Progress(1, 100);
    console.Progress(100, 100);
    EXPECT_EQ(out.str(), "");
}

}  // namespace
}  // namespace VANTIX::APP
