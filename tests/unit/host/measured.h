// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/ghostscriptpages.h"

namespace VANTIX::TEST {

/// Advance and box of each glyph as Ghostscript finds them in the font that `bytes` define.
inline std::string Measured(const std::string& bytes, const std::string& font,
                            const std::vector<std::string>& glyphs) {
    std::string program = "%!PS\n" + bytes + "\n";
    for (const std::string& glyph : glyphs) {
        program.append("/").append(font).append(
            " findfont dup length dict copy dup /FID undef dup /Encoding [65 {/.notdef} repeat /");
        program.append(glyph).append(
            " 190 {/.notdef} repeat] put /G exch definefont 1000 scalefont setfont newpath 0 0 "
            "moveto (A) stringwidth exch == == (A) true charpath flattenpath pathbbox "
            "4 {round cvi =} repeat newpath\n");
    }
    const ProgramOutput output = RunPostScript(program);
    EXPECT_EQ(output.complaint, "");
    return output.complaint.empty() ? output.text : "";
}

}  // namespace VANTIX::TEST
