// SPDX-License-Identifier: MIT
#pragma once

#include <ostream>
#include <span>
#include <string_view>

#include "e2e/imagesheet.h"

namespace VANTIX::TEST {

/// Which runs of a sheet must look like the PDF. All runs must be free of errors.
enum class Judged {
    kPlain,     ///< there are no profiles
    kAll,       ///< profiles are written on request and show
    kEmbedded,  ///< without its profile, an image is the device space's
    kPlates,    ///< Ghostscript separates the PDF, but cannot draw it
};

struct SheetCase {
    const char* name;
    void (*draw)(Sheet&);
    Judged judged = Judged::kPlain;
    bool hasPlates = false;
    bool hasDepth16 = false;
};

inline void PrintTo(const SheetCase& sheet, std::ostream* out) {
    *out << sheet.name;
}

/// All sheets of images, in every space, depth and codec.
std::span<const SheetCase> ImageSheets();

/// The one of that name.
const SheetCase& ImageSheet(std::string_view name);

/// Expects the judged cells of a page, or plate, to look like those of the PDF's.
/// With `atEdges` false only away from edges.
void CompareCells(const Sheet& sheet, const PageImage& page, const PageImage& reference,
                  bool atEdges = true);

}  // namespace VANTIX::TEST
