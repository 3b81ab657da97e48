// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "support/childprocess.h"

namespace VANTIX::TEST {

/// Makes a PDF of PostScript with Ghostscript.
inline void Distil(const std::string& postScript, const std::string& pdf) {
    const ChildResult run =
        RunChild({"gs", "-q", "-dBATCH", "-dNOPAUSE", "-sDEVICE=pdfwrite", "-o", pdf, postScript},
                 std::chrono::seconds(60));
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
}

/// The words that a program finds in a PDF, each followed by `gap`.
inline std::string WordsOf(const std::string& path, const char* gap = " ") {
    std::istringstream text(
        RunChild({"pdftotext", "-raw", path, "-"}, std::chrono::seconds(60)).output);
    std::string words;
    for (std::string word; text >> word;) {
        words += word + gap;
    }
    return words;
}

}  // namespace VANTIX::TEST
