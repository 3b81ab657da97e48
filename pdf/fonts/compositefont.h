// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/fonts/cidfont.h"
#include "host/fonts/residentcidfont.h"
#include "pdf/fonts/cidmetrics.h"
#include "pdf/fonts/cmap.h"
#include "pdf/fonts/cmaps.h"
#include "pdf/fonts/fontdictionary.h"
#include "pdf/fonts/fontsources.h"
#include "pdf/qpdfheaders.h"

namespace VANTIX::PDF {

/// What the dictionary of a composite font and its descendant say (PDF Reference, 5.6).
struct CompositeDictionary {
    CompositeDictionary(const QPDFObjectHandle& dictionary, CMaps& cmaps);

    /// Whether there is a descendant and a CMap.
    [[nodiscard]] bool IsUsable() const { return cmap != nullptr; }

    /// The glyph of a TrueType program of the document.
    [[nodiscard]] std::uint16_t GlyphOf(std::uint16_t cid) const;
    /// The character that a code with this CID stands for, or 0.
    [[nodiscard]] char32_t CharacterOf(CharCode code, std::uint16_t cid) const;
    /// The characters that are known of codes.
    [[nodiscard]] std::set<char32_t> CharactersOf(const std::set<CharCode>& codes) const;
    /// That of its character collection, such as "zh-tw"; empty for others.
    [[nodiscard]] std::string Language() const;
    /// The codes of one and two bytes that have a CID.
    [[nodiscard]] std::set<CharCode> AllCodes() const;

    FontDictionary descendant;
    std::string encoding;                   ///< name of the CMap, or empty
    std::shared_ptr<const CMap> cmap;       ///< null where there is none
    CodeTexts texts;                        ///< of the document
    std::string ordering;                   ///< of the character collection; may be empty
    const CodeTexts* collection = nullptr;  ///< by CID; belongs to the CMaps
    CIDMetrics metrics;
    std::vector<std::uint16_t> glyphs;  ///< /CIDToGIDMap; empty for the identity
};

/// The codes of a composite font, and the characters of its handler that they show.
class CompositeCodes {
public:
    explicit CompositeCodes(std::shared_ptr<const CMap> cmap) : mCMap(std::move(cmap)) {}

    void Enter(CharCode code, std::uint16_t character) { mCharacters[code] = character; }

    /// Turns the codes at the start of `codes` into host text, which is appended to `text`, and
    /// takes them off: all, or with `stopsAtSpace` up to behind a space of one byte, where it
    /// answers true.
    bool Take(std::string_view& codes, std::string& text, bool stopsAtSpace) const;

private:
    std::shared_ptr<const CMap> mCMap;
    std::unordered_map<CharCode, std::uint16_t, CharCodeHash> mCharacters;
};

/// The handler for composite fonts of a source. Null where there is nothing to show them with.
TInterfacePtr<HOST::CIDFont> MakeCompositeFont(const CompositeDictionary& font,
                                               const FontSource& source, std::int32_t selector);

/// Fonts of sources with the same key share a handler.
std::string HandlerKey(const CompositeDictionary& font, const FontSource& source);

/// Gives the handler the characters of the shown codes.
std::shared_ptr<const CompositeCodes> EnterCodes(const CompositeDictionary& font,
                                                 const FontSource& source,
                                                 const std::set<CharCode>& codes,
                                                 HOST::CIDFont& handler);

}  // namespace VANTIX::PDF
