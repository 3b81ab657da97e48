// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/fonts/cidfont.h"
#include "host/fonts/fontbroker.h"
#include "host/fonts/simplefont.h"
#include "pdf/fonts/type3font.h"
#include "pdf/pdfdocument.h"
#include "pdf/qpdfheaders.h"
#include "pdf/reporter.h"

namespace VANTIX::PDF {

/// What becomes of a font that the document names and does not hold.
enum class MissingFonts : std::uint8_t {
    kSubstitute,  ///< an installed font is embedded in its place
    kResident,    ///< the interpreter is trusted to have it
    kFail         ///< the run ends
};

/// What a run asks about fonts.
struct FontOptions {
    std::int32_t languageLevel = 3;
    bool embedStandardFonts = false;
    MissingFonts missing = MissingFonts::kSubstitute;
    /// Files for fonts that are not embedded, by name.
    std::map<std::string, std::string> files;
    /// Output must be text: binary parts of font programs go out as hexadecimal digits.
    bool textOnly = true;
    /// TrueType fonts may go out as Type 42.
    bool trueType = true;
    /// Invisible text goes out, too.
    bool keepsHiddenText = false;
};

/// One font of the report.
struct FontRecord {
    std::string name;        ///< as the document has it
    std::string kind;        ///< "Type1", "TrueType", …
    std::string kindOut;     ///< "Type1", "Type42", "FontSet", "Type3" or "CIDFontType0", "…2"
    std::string source;      ///< "embedded", "substituted" or "resident"
    std::string substitute;  ///< the font that stands in or is resident
    /// Of the program as it is handed over; as it came where that happens glyph by glyph.
    std::uint64_t bytes = 0;
    bool isExtractable = false;
};

class CompositeCodes;

/// A font of the document, ready to be shown.
struct Font {
    /// Null for one that cannot be shown: its text is left out.
    TInterfacePtr<HOST::DocumentFont> handler;
    /// The handler by its kind, of which there is one.
    const HOST::SimpleFont* simple = nullptr;
    const HOST::CIDFont* composite = nullptr;
    /// Of a composite font: they lead from its text to that of the handler.
    std::shared_ptr<const CompositeCodes> codes;
    /// For `SetFont` of the graphics state: `handler->GetName()`, and its number.
    std::string name;
    std::int32_t selector = 0;
    /// The interpreter is to have it: advances are the reader's business.
    bool isResident = false;
    /// False for one of which no glyph is shown by its code: it has advances alone.
    bool isInJob = true;
    std::shared_ptr<const HOST::SimpleProgram>
        program;                             ///< of a simple one; null for a resident or Type 3 one
    std::shared_ptr<const Type3Font> type3;  ///< null for one of another kind

    /// Whether the glyph at a code of host text marks anything; true where it is unknown.
    [[nodiscard]] bool HasOutline(std::uint16_t code) const;
};

/// The fonts of the printed pages: all are collected before the first page is played, since a job
/// downloads its fonts once.
class Fonts {
public:
    Fonts(FontOptions options, Reporter& reporter);
    ~Fonts();
    Fonts(const Fonts&) = delete;
    Fonts& operator=(const Fonts&) = delete;
    Fonts(Fonts&&) = delete;
    Fonts& operator=(Fonts&&) = delete;

    /// Must be set before the fonts are finished; handlers of Type 3 fonts call it for as long as
    /// they live.
    void SetGlyphPlayer(GlyphPlayer player);

    /// Takes in the fonts of a page (from 0): of its resources, and those of forms, patterns,
    /// graphics states and annotations' appearances below. The document must outlive this object.
    void Collect(PdfDocument& document, int page);
    /// Makes what was collected ready and fills the broker. False, with the reason in `error`, when
    /// a font is missing and that is to end the run.
    bool Finish(std::string& error);

    [[nodiscard]] HOST::FontBroker& Broker() const { return *mBroker; }

    /// The font that a dictionary describes; null (after one warning) for none that can be shown,
    /// and for one of which nothing is. Valid as the collection is, after `Finish`.
    const Font* Find(const QPDFObjectHandle& dictionary);

    /// Counts a glyph that is played within another; false when there have been so many of them
    /// that there is no end to expect.

    bool CountNestedGlyph() { return ++mNestedGlyphs <= kMostNestedGlyphs; }

    [[nodiscard]] const std::vector<FontRecord>& Records() const { return mRecords; }

private:
    static constexpr std::int64_t kMostNestedGlyphs = 200000;

    struct Parts;
    std::unique_ptr<Parts> mParts;
    TInterfacePtr<HOST::FontBroker> mBroker;
    std::vector<FontRecord> mRecords;
    std::int64_t mNestedGlyphs = 0;
};

}  // namespace VANTIX::PDF
