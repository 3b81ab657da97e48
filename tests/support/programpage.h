// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "support/ghostscriptpages.h"
#include "support/temporaryfolder.h"

namespace VANTIX::TEST {

/// What Ghostscript draws for a program on a page of 64 points a side. Complaints fail the test.
inline PageImage DrawProgram(const std::string& program) {
    const TemporaryFolder folder;
    const std::string path = folder.File("page.ps");
    std::ofstream(path, std::ios::binary)
        << "%!PS\n<< /PageSize [64 64] >> setpagedevice 0 setsmoothness\n"
        << program << "\nshowpage\n";
    const auto drawn = DrawPages(path, {});
    EXPECT_EQ(drawn.complaint, "") << program.substr(0, 2000);
    EXPECT_EQ(drawn.pages.size(), 1U);
    return drawn.pages.size() == 1 ? drawn.pages.front() : PageImage();
}

}  // namespace VANTIX::TEST
