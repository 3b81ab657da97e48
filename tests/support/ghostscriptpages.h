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
    bool spots = true;     ///< spot colours have plates; else they are converted into process inks
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

/// What a PostScript program printed; `complaint` as above.
struct ProgramOutput {
    std::string text;
    std::string complaint;
};

/// Runs a PostScript program without drawing.
ProgramOutput RunPostScript(const std::string& program);

/// Executes a procedure body once for each list of operands and gives back what each left on the
/// operand stack. Nothing when the interpreter complained (`complaint` then holds its words).
std::vector<std::vector<double>> RunProcedure(const std::string& body,
                                              const std::vector<std::vector<float>>& operands,
                                              std::string* complaint);

}  // namespace VANTIX::TEST
