// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "core/fonts/ifontpackagehandler.h"
#include "pdf/fonts/encoding.h"
#include "pdf/fonts/tounicode.h"
#include "pdf/fonts/truetypeencoding.h"
#include "pdf/qpdfheaders.h"

namespace VANTIX::PDF {

/// Tells fonts apart: indirect ones by their number, direct ones by what they hold.
std::string FontKey(const QPDFObjectHandle& dictionary);

/// The texts by its /ToUnicode.
CodeTexts ReadTexts(const QPDFObjectHandle& dictionary);

/// What the dictionary of a simple font, or of a CIDFont, and its descriptor say (PDF
/// Reference, 5.5 and 5.7).
struct FontDictionary {
    explicit FontDictionary(const QPDFObjectHandle& dictionary);

    std::string subtype;   ///< "Type1", "TrueType", …
    std::string baseFont;  ///< as it stands there
    std::string name;      ///< without the tag of a subset; may be empty
    bool isSubset = false;
    QPDFObjectHandle program;  ///< the stream, or null for a font that is not embedded

    FontEncoding encoding;
    CodeTexts texts;
    /// In ems; NaN where nothing is said.
    std::array<float, HOST::kSimpleCodes> widths{};
    std::int32_t firstCode = 0;
    std::int32_t lastCode = 255;

    SymbolFlags symbols;
    bool isFixedPitch = false;
    bool isSerif = false;
    bool isItalic = false;
    bool isBold = false;
    float italicAngle = 0.0F;
    float stemH = 0.0F;
    float stemV = 0.0F;
    GRAPHICS::FontBox box;
    std::string family;

private:
    void ReadWidths(const QPDFObjectHandle& dictionary, const QPDFObjectHandle& descriptor);
    void ReadDescriptor(const QPDFObjectHandle& descriptor);
};

/// What any font is described by, but for its name.
HOST::FontDescription DescribeFont(const FontDictionary& font);

}  // namespace VANTIX::PDF
