// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <optional>
#include <string>

#include "host/fonts/glyphnames.h"
#include "host/fonts/simplefont.h"
#include "pdf/qpdfheaders.h"

namespace VANTIX::PDF {

/// Glyph names by code, empty where there is none.
using GlyphNames = std::array<std::string, HOST::kSimpleCodes>;

/// The /Encoding of a simple font (PDF Reference, 5.5.5).
struct FontEncoding {
    /// The encoding that it names.
    std::optional<HOST::BaseEncoding> base;
    /// Where /Differences says something; empty elsewhere.
    GlyphNames differences;
    bool hasDifferences = false;

    /// The names in force: the differences over the base, or over `own` where there is no base.
    [[nodiscard]] GlyphNames Names(const GlyphNames& own) const;
};

/// Reads a name or an encoding dictionary. Anything else says nothing, as do unknown names, codes
/// beyond 255 and items of other kinds.
FontEncoding ReadEncoding(const QPDFObjectHandle& object);

/// A table of the host as names of a font.
GlyphNames GlyphNamesOf(HOST::BaseEncoding encoding);

}  // namespace VANTIX::PDF
