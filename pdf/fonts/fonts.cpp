// SPDX-License-Identifier: MIT
#include "pdf/fonts/fonts.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <set>
#include <utility>

#include "core/fonts/ifontancillaries.h"
#include "pdf/annotations.h"
#include "pdf/fonts/compositefont.h"
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

bool IsComposite(const QPDFObjectHandle& dictionary) {
    return NameOf(Get(dictionary, "/Subtype")) == "Type0";
}

/// Whether every character that is shown tells what it means.
bool IsExtractable(const HOST::CIDFont& font) {
    const auto& characters = font.Characters();
    return std::all_of(characters.begin(), characters.end(),
                       [](const HOST::CIDCharacter& each) { return each.unicode != 0; });
}

/// Says why text in a font that was not taken in is left out.
void WarnOfKind(const QPDFObjectHandle& dictionary, Reporter& reporter) {
    if (IsComposite(dictionary)) {
        reporter.Warn("font-composite", "Text in a composite font without glyphs is left out");
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

/// Bytes of the program that a handler hands over as a whole: asked for last, since that finishes
/// it.
std::optional<std::uint64_t> ProgramSize(HOST::DocumentFont& handler) {
    const auto* data = FindInterface<GRAPHICS::IFontData>(&handler, GRAPHICS::IID_IFONTDATA);
    return data == nullptr
               ? std::nullopt
               : std::optional(static_cast<std::uint64_t>(std::max(data->GetSize(), 0)));
}

}  // namespace

bool Font::HasOutline(std::uint16_t code) const {
    if (composite != nullptr) {
        return composite->HasOutline(code);
    }
    if (!program || simple == nullptr) {
        return true;
    }
    const std::string& glyph = simple->Description().encoding.at(code);
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
        /// Of a simple font, or of a composite one.
        std::optional<FontDictionary> dictionary;
        std::optional<CompositeDictionary> composite;
        QPDFObjectHandle type3;      ///< the dictionary of a Type 3 font, else null
        QPDFObjectHandle resources;  ///< of that page
        FontSource source;
        std::optional<Font> font;
    };

    Parts(FontOptions theOptions, Reporter& theReporter)
        : options(std::move(theOptions)),
          reporter(theReporter),
          sources(options, reporter),
          type3(reporter) {}

    void Take(const QPDFObjectHandle& dictionary, const QPDFObjectHandle& resources, int page);
    std::vector<Appearance> AppearancesOf(const Page& page);
    [[nodiscard]] static bool NeedsScan(const Entry& entry);
    /// By font, where it is known.
    using Shown = std::optional<std::map<std::string, ShownCodes>>;
    /// Reads the pages for what they show, where a font asks for it.
    Shown Scan();
    /// The codes that become glyphs; none for a font that shows nothing.
    static CodeSet CodesOf(const Entry& entry, const Shown& shown);
    static std::set<CharCode> CompositeCodesOf(const Entry& entry, const Shown& shown);
    void ChooseSources(const Shown* shown);
    /// The font of an entry, new or one that was made for an equal dictionary.
    const Font& Make(const Entry& entry, const CodeSet& codes);
    /// The font of an entry that shows these codes; without a handler where nothing has glyphs.
    Font MakeComposite(const Entry& entry, const std::set<CharCode>& codes);
    std::optional<Font> FontOf(const Entry& entry, const Shown& shown);
    void MakeType3(const Entry& entry, Font& font);
    /// Whether a glyph of the font, which has a handler, is shown by its code.
    [[nodiscard]] bool IsInJob(const Entry& entry, const Shown& shown) const;
    [[nodiscard]] FontRecord RecordOf(const Entry& entry) const;
    /// What is known of a font once its program is finished.
    static void CompleteRecord(const Font& font, FontRecord& record);

    FontOptions options;
    Reporter& reporter;
    FontSources sources;
    Type3Fonts type3;
    GlyphPlayer player;
    FontWalker walker;
    std::map<PdfDocument*, OptionalContent> optionalContent;
    std::vector<Page> pages;
    std::vector<Entry> entries;
    std::map<std::string, std::size_t> index;  ///< of the entries by their keys
    std::map<std::string, Font> made;          ///< by what makes fonts equal
    std::map<std::string, TInterfacePtr<HOST::CIDFont>> composites;  ///< by what they share
    CMaps cmaps;
    std::int32_t lastSelector = 0;
};

Fonts::Fonts(FontOptions options, Reporter& reporter)
    : mParts(std::make_unique<Parts>(std::move(options), reporter)),
      mBroker(MakeObject<HOST::FontBroker>()) {}

Fonts::~Fonts() = default;

void Fonts::SetGlyphPlayer(GlyphPlayer player) {
    mParts->player = std::move(player);
}

void Fonts::Collect(PdfDocument& document, int page) {
    Parts& parts = *mParts;
    const Parts::Page where{&document, page};
    parts.pages.push_back(where);
    const QPDFObjectHandle resources = document.Attribute(page, "/Resources");
    const auto take = [&](const QPDFObjectHandle& font) { parts.Take(font, resources, page + 1); };
    try {
        parts.walker.Walk(resources, take);
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
    parts.ChooseSources(nullptr);
    error = parts.sources.Failure();
    if (!error.empty()) {
        return false;
    }
    const Parts::Shown shown = parts.Scan();
    parts.ChooseSources(&shown);
    error = parts.sources.Failure();
    if (!error.empty()) {
        return false;
    }
    std::vector<const Font*> fonts;
    std::set<std::int32_t> added;
    for (Parts::Entry& entry : parts.entries) {
        entry.font = parts.FontOf(entry, shown);
        if (!entry.font || !entry.font->handler) {
            continue;
        }
        entry.font->isInJob = parts.IsInJob(entry, shown);
        if (entry.font->isInJob && added.insert(entry.font->selector).second) {
            mBroker->Add(entry.font->handler, entry.font->selector);
            mRecords.push_back(parts.RecordOf(entry));
            fonts.push_back(&*entry.font);
        }
    }
    for (std::size_t i = 0; i < fonts.size(); ++i) {
        Parts::CompleteRecord(*fonts[i], mRecords[i]);
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

// Those of composite fonts, which stand in for some characters, once these are known.
void Fonts::Parts::ChooseSources(const Shown* shown) {
    for (Entry& entry : entries) {
        reporter.SetPage(entry.page);
        if (shown == nullptr && entry.dictionary && IsNull(entry.type3)) {
            entry.source = sources.Choose(*entry.dictionary);
        } else if (shown != nullptr && entry.composite) {
            const auto codes = CompositeCodesOf(entry, *shown);
            if (!codes.empty()) {
                entry.source = sources.ChooseForCIDs(entry.composite->descendant,
                                                     entry.composite->CharactersOf(codes),
                                                     entry.composite->Language());
            }
        }
    }
    reporter.SetPage(0);
}

void Fonts::Parts::Take(const QPDFObjectHandle& dictionary, const QPDFObjectHandle& resources,
                        int page) {
    std::string key = FontKey(dictionary);
    const bool isComposite = IsComposite(dictionary);
    if (entries.size() >= kMostFonts || index.contains(key)) {
        return;
    }
    Entry entry;
    entry.key = key;
    entry.page = page;
    if (isComposite) {
        entry.composite.emplace(dictionary, cmaps);
        if (!entry.composite->IsUsable()) {
            return;
        }
    } else {
        entry.dictionary.emplace(dictionary);
        const bool isType3 = entry.dictionary->subtype == "Type3";
        entry.type3 = isType3 ? dictionary : QPDFObjectHandle::newNull();
        entry.resources = resources;
    }
    index.emplace(std::move(key), entries.size());
    entries.push_back(std::move(entry));
}

std::vector<Appearance> Fonts::Parts::AppearancesOf(const Page& page) {
    auto& content = optionalContent.try_emplace(page.document, page.document->Qpdf()).first->second;
    return PrintedAppearances(page.document->Attribute(page.index, "/Annots"), content);
}

bool Fonts::Parts::NeedsScan(const Entry& entry) {
    if (entry.composite) {
        return true;
    }
    const FontProgram* program = entry.source.program;
    return program != nullptr && (!entry.dictionary->isSubset || !entry.source.isEmbedded ||
                                  program->FileSize() >= kLargeProgram);
}

Fonts::Parts::Shown Fonts::Parts::Scan() {
    if (std::none_of(entries.begin(), entries.end(), NeedsScan)) {
        return std::nullopt;
    }
    TextScanner scanner([this](const std::string& key) -> const CMap* {
        const auto found = index.find(key);
        const bool isComposite = found != index.end() && entries[found->second].composite;
        return isComposite ? entries[found->second].composite->cmap.get() : nullptr;
    });
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
    return found == shown->end() ? CodeSet() : found->second.Simple();
}

std::set<CharCode> Fonts::Parts::CompositeCodesOf(const Entry& entry, const Shown& shown) {
    if (!shown) {
        return entry.composite->AllCodes();
    }
    const auto found = shown->find(entry.key);
    return found == shown->end() ? std::set<CharCode>() : found->second.Composite();
}

std::optional<Font> Fonts::Parts::FontOf(const Entry& entry, const Shown& shown) {
    if (entry.composite) {
        const std::set<CharCode> codes = CompositeCodesOf(entry, shown);
        return codes.empty() ? std::nullopt : std::optional(MakeComposite(entry, codes));
    }
    const CodeSet codes = CodesOf(entry, shown);
    return codes.none() ? std::nullopt : std::optional(Make(entry, codes));
}

const Font& Fonts::Parts::Make(const Entry& entry, const CodeSet& codes) {
    const FontDictionary& dictionary = *entry.dictionary;
    if (!IsNull(entry.type3)) {
        Font& font = made[entry.key];
        MakeType3(entry, font);
        return font;
    }
    HOST::SimpleFontDescription description = DescribeSimpleFont(dictionary, entry.source, codes);
    Font& font = made[Identity(description)];
    if (!font.handler) {
        font.selector = description.selector = ++lastSelector;
        const auto handler = MakeSimpleFont(dictionary, entry.source, std::move(description));
        font.simple = handler.Get();
        font.handler = handler;
        font.name = font.handler->GetName();
        font.isResident = entry.source.program == nullptr;
        font.program = font.isResident ? nullptr : entry.source.program->Simple();
    }
    return font;
}

Font Fonts::Parts::MakeComposite(const Entry& entry, const std::set<CharCode>& codes) {
    const CompositeDictionary& dictionary = *entry.composite;
    auto& handler = composites[HandlerKey(dictionary, entry.source)];
    if (!handler) {
        handler = MakeCompositeFont(dictionary, entry.source, lastSelector + 1);
        lastSelector += handler ? 1 : 0;
    }
    Font font;
    if (handler) {
        font.codes = EnterCodes(dictionary, entry.source, codes, *handler);
        font.selector = handler->Description().selector;
        font.composite = handler.Get();
        font.handler = handler;
        font.name = handler->GetName();
        font.isResident = entry.source.program == nullptr;
    }
    return font;
}

void Fonts::Parts::MakeType3(const Entry& entry, Font& font) {
    font.type3 = type3.Read(entry.type3, entry.resources);
    if (font.type3) {
        font.selector = ++lastSelector;
        const auto handler =
            PDF::MakeType3Font(font.type3, *entry.dictionary, font.selector, player);
        font.simple = handler.Get();
        font.handler = handler;
        font.name = font.handler->GetName();
    }
}

bool Fonts::Parts::IsInJob(const Entry& entry, const Shown& shown) const {
    if (entry.font->type3) {
        return entry.font->handler->GetGlyphCount() > 0;
    }
    if (!shown || options.keepsHiddenText) {
        return true;
    }
    const auto found = shown->find(entry.key);
    return found == shown->end() || found->second.AreSeen();
}

FontRecord Fonts::Parts::RecordOf(const Entry& entry) const {
    if (entry.font->type3) {
        return {entry.dictionary->baseFont, "Type3", "Type3", "embedded", {}, 0};
    }
    const FontDictionary& dictionary =
        entry.composite ? entry.composite->descendant : *entry.dictionary;
    const FontProgram* program = entry.source.program;
    const bool isTrueType = program != nullptr && program->trueType && options.trueType;
    const bool isFontSet = program != nullptr && program->cff && options.languageLevel == 3;
    FontRecord record;
    record.name = dictionary.baseFont;
    record.kind = dictionary.subtype;
    record.kindOut = isTrueType ? "Type42" : (isFontSet ? "FontSet" : "Type1");
    record.source =
        program == nullptr ? "resident" : (entry.source.isEmbedded ? "embedded" : "substituted");
    record.substitute = entry.source.name;
    record.bytes = program == nullptr ? 0 : program->FileSize();
    return record;
}

void Fonts::Parts::CompleteRecord(const Font& font, FontRecord& record) {
    record.bytes = ProgramSize(*font.handler).value_or(record.bytes);
    if (font.composite != nullptr) {
        record.kindOut = "CIDFontType" + std::to_string(font.composite->WrittenCIDFontType());
        record.isExtractable = IsExtractable(*font.composite);
    } else {
        record.isExtractable = IsExtractable(font.simple->Description());
    }
}

}  // namespace VANTIX::PDF
