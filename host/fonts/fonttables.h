// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

/// Tables as text, words apart by white space: written by scripts/make-font-tables.py, read once by
/// glyphnames.cpp and standardfonts.cpp.
namespace VANTIX::HOST::FONTTABLES {

/// The Adobe Glyph List, sorted: "name=41" with the first character in hexadecimal; "name:41" for
/// names that the list for new fonts does not have.
extern const std::string_view kGlyphList;

// Encodings: names for a run of codes, each run behind its first code.
extern const std::string_view kStandardEncoding;
extern const std::string_view kWinAnsiEncoding;
extern const std::string_view kMacRomanEncoding;
extern const std::string_view kMacExpertEncoding;
extern const std::string_view kSymbolEncoding;
extern const std::string_view kDingbatsEncoding;

/// A name, then its advances in Helvetica, Helvetica-Bold, Times-Roman, Times-Bold, Times-Italic
/// and Times-BoldItalic, in thousandths of an em.
extern const std::string_view kTextWidths;
// A name, then its advance.
extern const std::string_view kSymbolWidths;
extern const std::string_view kDingbatsWidths;

}  // namespace VANTIX::HOST::FONTTABLES
