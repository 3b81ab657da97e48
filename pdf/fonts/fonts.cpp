// SPDX-License-Identifier: MIT
#include "pdf/fonts/fonts.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <set>
#include <utility>

#include "core/fonts/ifontancillaries.h"
#include "pdf/annotations.h"
#include "pdf/fonts/fontdictionary.h"
#include "pdf/fonts/fontsources.h"
#include "pdf/fonts/fontwalker.h"
#include "pdf/fonts/simplefont.h"
#include "pdf/fonts/textscanner.h"
#include "pdf/objects.h"
#include "pdf/optionalcontent.h"

namespace VANTIX::PDF {

namespace {

/// Programs at least as large are cut to what is shown, subset or not.
constexpr std::size_t kLargeProgram = std::size_t{64} << 10U;

constexpr std::size_t kMostFonts = 65535;

bool IsSimple(const QPDFObjectHandle& dictionary) {
    const std::string subtype = NameOf(Get(dictionary, "/Subtype"));
    return subtype != "Type0" && subtype != "Type3";
}

/// Says why text in a font that was not taken in is left out.
void WarnOfKind(const QPDFObjectHandle& dictionary, Reporter& reporter) {
    const std::string subtype = NameOf(Get(dictionary, "/Subtype"));
    if (subtype == "Type0") {
        reporter.Warn("font-composite", "Text in composite fonts is left out");
    } else if (subtype == "Type3") {
        reporter.Warn("font-type3", "Text in Type 3 fonts is left out");
    } else {
        reporter.Warn("font", "Text in a font that is none is left out");
    }
}

/// Equal for fonts that show the same.
std::string Identity(const HOST::SimpleFontDescription& description) {
    std::string identity = description.name;
    for (std::size_t code = 0; code < HOST::kSimpleCodes; ++code) {
        identity +=
            '/' + description.encoding[code] + ' ' + std::to_string(description.widths[code]);
    }
    return identity;
}

/// Bytes of the program that a handler hands over: asked for last, since that finishes it.
std::uint64_t ProgramSize(HOST::SimpleFont& handler) {
    const auto* data = FindInterface<GRAPHICS::IFontData>(&handler, GRAPHICS::IID_IFONTDATA);
    return data == nullptr ? 0 : static_cast<std::uint64_t>(std::max(data->GetSize(), 0));
}

}  // namespace

bool Font::HasOutline(std::uint8_t code) const {
    if (!program || !handler) {
        return true;
    }
    const std::string& glyph = handler->Description().encoding[code];
    return program->HasOutline(glyph.empty() ? ".notdef" : glyph);
}

/// What is known of the fonts until they are made, and by what they are found.
struct Fonts::Parts {
    struct Page {
        PdfDocument* document;
        int index;
    };

    struct Entry {
        std::string key;
        int page = 0;  ///< the first that has it, from 1
        std::optional<FontDictionary> dictionary;
        FontSource source;
        std::optional<Font> font;
    };

    Parts(FontOptions theOptions, Reporter& theReporter)
        : options(std::move(theOptions)), reporter(theReporter), sources(options, reporter) {}

    void Take(const QPDFObjectHandle& dictionary, int page);
    std::vector<Appearance> AppearancesOf(const Page& page);
    [[nodiscard]] static bool NeedsScan(const Entry& entry);
    /// By font, where it is known.
    using Shown = std::optional<std::map<std::string, CodeSet>>;
    /// Reads the pages for what they show, where a font asks for it.
    Shown Scan();
    /// The codes that become glyphs; none for a font that shows nothing.
    static CodeSet CodesOf(const Entry& entry, const Shown& shown);
    /// The font of an entry, new or one that was made for an equal dictionary.
    const Font& Make(const Entry& entry, const CodeSet& codes);
    [[nodiscard]] FontRecord RecordOf(const Entry& entry) const;

    FontOptions options;
    Reporter& reporter;
    FontSources sources;
    FontWalker walker;
    std::map<PdfDocument*, OptionalContent> optionalContent;
    std::vector<Page> pages;
    std::vector<Entry> entries;
    std::map<std::string, std::size_t> index;  ///< of the entries by their keys
    std::map<std::string, Font> made;          ///< by what makes fonts equal
};

Fonts::Fonts(FontOptions options, Reporter& reporter)
    : mParts(std::make_unique<Parts>(std::move(options), reporter)),
      mBroker(MakeObject<HOST::FontBroker>()) {}

Fonts::~Fonts() = default;

void Fonts::Collect(PdfDocument& document, int page) {
    Parts& parts = *mParts;
    const Parts::Page where{&document, page};
    parts.pages.push_back(where);
    const auto take = [&](const QPDFObjectHandle& font) { parts.Take(font, page + 1); };
    try {
        parts.walker.Walk(document.Attribute(page, "/Resources"), take);
        for (const Appearance& appearance : parts.AppearancesOf(where)) {
            parts.walker.Walk(Get(appearance.form, "/Resources"), take);
        }
    } catch (const std::exception& failure) {
        parts.reporter.Warn("damaged", failure.what());
    }
}

// Names are given to glyphs by all fonts of a program before any of its data is asked for.
bool Fonts::Finish(std::string& error) {
    Parts& parts = *mParts;
    for (Parts::Entry& entry : parts.entries) {
        parts.reporter.SetPage(entry.page);
        entry.source = parts.sources.Choose(*entry.dictionary);
    }
    parts.reporter.SetPage(0);
    error = parts.sources.Failure();
    if (!error.empty()) {
        return false;
    }
    const auto shown = parts.Scan();
    std::vector<HOST::SimpleFont*> handlers;
    for (Parts::Entry& entry : parts.entries) {
        const CodeSet codes = Parts::CodesOf(entry, shown);
        const std::size_t before = parts.made.size();
        if (codes.none()) {
            continue;
        }
        entry.font = parts.Make(entry, codes);
        if (parts.made.size() > before) {
            mBroker->Add(entry.font->handler, entry.font->selector);
            mRecords.push_back(parts.RecordOf(entry));
            handlers.push_back(entry.font->handler.Get());
        }
    }
    for (std::size_t i = 0; i < handlers.size(); ++i) {
        mRecords[i].bytes = ProgramSize(*handlers[i]);
    }
    return true;
}

const Font* Fonts::Find(const QPDFObjectHandle& dictionary) {
    Parts& parts = *mParts;
    const auto found = parts.index.find(FontKey(dictionary));
    if (found == parts.index.end()) {
        WarnOfKind(dictionary, parts.reporter);
        return nullptr;
    }
    const std::optional<Font>& font = parts.entries[found->second].font;
    return font && font->handler ? &*font : nullptr;
}

void Fonts::Parts::Take(const QPDFObjectHandle& dictionary, int page) {
    std::string key = FontKey(dictionary);
    if (!IsSimple(dictionary) || entries.size() >= kMostFonts || index.contains(key)) {
        return;
    }
    index.emplace(key, entries.size());
    Entry& entry = entries.emplace_back();
    entry.key = std::move(key);
    entry.page = page;
    entry.dictionary.emplace(dictionary);
}

std::vector<Appearance> Fonts::Parts::AppearancesOf(const Page& page) {
    auto& content = optionalContent.try_emplace(page.document, page.document->Qpdf()).first->second;
    return PrintedAppearances(page.document->Attribute(page.index, "/Annots"), content);
}

bool Fonts::Parts::NeedsScan(const Entry& entry) {
    const FontProgram* program = entry.source.program;
    return program != nullptr && (!entry.dictionary->isSubset || !entry.source.isEmbedded ||
                                  program->FileSize() >= kLargeProgram);
}

Fonts::Parts::Shown Fonts::Parts::Scan() {
    if (std::none_of(entries.begin(), entries.end(), NeedsScan)) {
        return std::nullopt;
    }
    TextScanner scanner;
    for (const Page& page : pages) {
        const QPDFObjectHandle resources = page.document->Attribute(page.index, "/Resources");
        scanner.ScanPage(page.document->Attribute(page.index, "/Contents"), resources);
        for (const Appearance& appearance : AppearancesOf(page)) {
            scanner.ScanForm(appearance.form, resources);
        }
    }
    return scanner.IsComplete() ? Shown(scanner.Shown()) : std::nullopt;
}

CodeSet Fonts::Parts::CodesOf(const Entry& entry, const Shown& shown) {
    if (!shown || !NeedsScan(entry)) {
        return DescribedCodes(*entry.dictionary);
    }
    const auto found = shown->find(entry.key);
    return found == shown->end() ? CodeSet() : found->second;
}

const Font& Fonts::Parts::Make(const Entry& entry, const CodeSet& codes) {
    const FontDictionary& dictionary = *entry.dictionary;
    HOST::SimpleFontDescription description = DescribeSimpleFont(dictionary, entry.source, codes);
    Font& font = made[Identity(description)];
    if (!font.handler) {
        description.selector = static_cast<std::int32_t>(made.size());
        font.selector = description.selector;
        font.handler = MakeSimpleFont(dictionary, entry.source, std::move(description));
        font.name = font.handler->GetName();
        font.isResident = entry.source.program == nullptr;
        font.program = font.isResident ? nullptr : entry.source.program->Simple();
    }
    return font;
}

FontRecord Fonts::Parts::RecordOf(const Entry& entry) const {
    const bool isTrueType = entry.source.program != nullptr && entry.source.program->trueType;
    FontRecord record;
    record.name = entry.dictionary->baseFont;
    record.kind = entry.dictionary->subtype;
    record.kindOut = isTrueType && options.trueType ? "Type42" : "Type1";
    record.source = entry.source.program == nullptr
                        ? "resident"
                        : (entry.source.isEmbedded ? "embedded" : "substituted");
    record.substitute = entry.source.name;
    record.isExtractable = IsExtractable(entry.font->handler->Description());
    return record;
}

}  // namespace VANTIX::PDF
