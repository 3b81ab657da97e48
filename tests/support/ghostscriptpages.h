// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "support/pageimage.h"

namespace VANTIX::TEST {

/// What is asked of Ghostscript.
struct GhostscriptOptions {
    int resolution = 72;   ///< dots per inch
    std::string password;  ///< of an encrypted PDF
    bool cropBox = true;   ///< a PDF page is its crop box, not its media box
};

/// What Ghostscript made of a document. `complaint` is empty when it ran without any error or
/// message and, for PostScript, left the operand, dictionary and graphics-state stacks as they
/// were before.
template <class Page>
struct Interpretation {
    std::vector<Page> pages;
    std::string complaint;
};

/// Draws every page of a PostScript or PDF file in RGB, without antialiasing.
Interpretation<PageImage> DrawPages(const std::string& path, const GhostscriptOptions& options);

/// Separates every page of a PostScript or PDF file into its plates: the four process colours and
/// every spot colour met.
Interpretation<Plates> DrawPlates(const std::string& path, const GhostscriptOptions& options);

/// Runs a PostScript program without drawing and answers what it prints; `complaint` as above.
struct ProgramOutput {
    std::string text;
    std::string complaint;
};

ProgramOutput RunPostScript(const std::string& path);

}  // namespace VANTIX::TEST
