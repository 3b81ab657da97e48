// SPDX-License-Identifier: MIT
#include "pdf/fonts/compositefont.h"

#include <utility>

#include "host/fonts/cidcfffont.h"
#include "host/fonts/cidtruetypefont.h"
#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace {

QPDFObjectHandle DescendantOf(const QPDFObjectHandle& dictionary) {
    QPDFObjectHandle descendants = Get(dictionary, "/DescendantFonts");
    if (descendants.isArray()) {
        descendants = descendants.getArrayNItems() > 0 ? descendants.getArrayItem(0)
                                                       : QPDFObjectHandle::newNull();
    }
    return descendants;
}

std::vector<std::uint16_t> ReadGlyphs(QPDFObjectHandle stream) {
    constexpr std::size_t kMostBytes = std::size_t{2} * 65536;
    std::string bytes;
    if (stream.isStream()) {
        AppendStreamData(stream, bytes, kMostBytes);
    }
    std::vector<std::uint16_t> glyphs;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        glyphs.push_back(static_cast<std::uint16_t>(static_cast<unsigned char>(bytes[i]) << 8U |
                                                    static_cast<unsigned char>(bytes[i + 1])));
    }
    return glyphs;
}

/// The collection whose numbers CIDs are, where it is one of Adobe's.
std::string OrderingOf(const QPDFObjectHandle& descendant, const CMap* cmap) {
    const QPDFObjectHandle info = Get(descendant, "/CIDSystemInfo");
    QPDFObjectHandle ordering = Get(info, "/Ordering");
    const std::string name = ordering.isString() ? ordering.getUTF8Value() : std::string();
    const bool isKnown = !name.empty() && name != "Identity";
    return isKnown || cmap == nullptr ? name : cmap->Ordering();
}

std::string BytesOf(CharCode code) {
    std::string bytes;
    for (std::uint32_t i = code.bytes; i > 0; --i) {
        bytes += static_cast<char>(code.value >> (8U * (i - 1)));
    }
    return bytes;
}

/// The CMap that is asked of an interpreter; that of CIDs where it does not have the document's.
GRAPHICS::TEncoding ResidentEncoding(const CompositeDictionary& font) {
    if (const auto encoding = EncodingOfCMap(font.encoding)) {
        return *encoding;
    }
    return font.cmap->IsVertical() ? GRAPHICS::TEncoding::kIdentityV
                                   : GRAPHICS::TEncoding::kIdentityH;
}

std::uint16_t GlyphOf(const CompositeDictionary& font, const FontSource& source, std::uint16_t cid,
                      char32_t character) {
    const FontProgram& program = *source.program;
    if (!source.isEmbedded) {
        const std::uint16_t glyph = program.characters->GlyphOf(character, font.cmap->IsVertical());
        return program.cff ? program.cff->CidOf(glyph) : glyph;
    }
    return program.trueType ? font.GlyphOf(cid) : cid;
}

}  // namespace

CompositeDictionary::CompositeDictionary(const QPDFObjectHandle& dictionary, CMaps& cmaps)
    : descendant(DescendantOf(dictionary)),
      encoding(NameOf(Get(dictionary, "/Encoding"))),
      texts(ReadTexts(dictionary)),
      metrics(DescendantOf(dictionary)),
      glyphs(ReadGlyphs(Get(DescendantOf(dictionary), "/CIDToGIDMap"))) {
    QPDFObjectHandle object = DescendantOf(dictionary);
    if (object.isDictionary()) {
        cmap = cmaps.Find(Get(dictionary, "/Encoding"));
    }
    ordering = OrderingOf(object, cmap.get());
    collection = &cmaps.TextsOf(ordering);
}

std::uint16_t CompositeDictionary::GlyphOf(std::uint16_t cid) const {
    if (glyphs.empty()) {
        return cid;
    }
    return cid < glyphs.size() ? glyphs[cid] : std::uint16_t{0};
}

char32_t CompositeDictionary::CharacterOf(CharCode code, std::uint16_t cid) const {
    if (const auto text = texts.find(code.value); text != texts.end()) {
        return text->second.front();
    }
    const auto text = collection->find(cid);
    return text == collection->end() ? char32_t{0} : text->second.front();
}

std::set<char32_t> CompositeDictionary::CharactersOf(const std::set<CharCode>& codes) const {
    std::set<char32_t> characters;
    for (const CharCode code : codes) {
        if (const char32_t character = CharacterOf(code, cmap->CIDOf(code)); character != 0) {
            characters.insert(character);
        }
    }
    return characters;
}

std::string CompositeDictionary::Language() const {
    constexpr std::pair<std::string_view, const char*> kLanguages[] = {
        {"Japan1", "ja"}, {"GB1", "zh-cn"}, {"CNS1", "zh-tw"}, {"Korea1", "ko"}, {"KR", "ko"}};
    for (const auto& [collectionOf, language] : kLanguages) {
        if (ordering == collectionOf) {
            return language;
        }
    }
    return {};
}

std::set<CharCode> CompositeDictionary::AllCodes() const {
    std::set<CharCode> codes;
    for (const std::uint32_t bytes : {1U, 2U}) {
        for (std::uint32_t value = 0; value < 1U << (8U * bytes); ++value) {
            if (cmap->CIDOf({value, bytes}) != 0) {
                codes.insert({value, bytes});
            }
        }
    }
    return codes;
}

bool CompositeCodes::Take(std::string_view& codes, std::string& text, bool stopsAtSpace) const {
    constexpr CharCode kSpace{' ', 1};
    while (!codes.empty()) {
        const CharCode code = mCMap->FirstOf(codes);
        codes.remove_prefix(code.bytes);
        const auto found = mCharacters.find(code);
        const unsigned character = found == mCharacters.end() ? 0 : found->second;
        text += static_cast<char>(character >> 8U);
        text += static_cast<char>(character);
        if (stopsAtSpace && code == kSpace) {
            return true;
        }
    }
    return false;
}

TInterfacePtr<HOST::CIDFont> MakeCompositeFont(const CompositeDictionary& font,
                                               const FontSource& source, std::int32_t selector) {
    HOST::CIDFontDescription description;
    static_cast<HOST::FontDescription&>(description) = DescribeFont(font.descendant);
    description.selector = selector;
    description.isVertical = font.cmap->IsVertical();
    if (source.program != nullptr && source.program->trueType) {
        description.name = source.program->name;
        description.box = source.program->trueType->Box();
        return HOST::MakeCIDTrueTypeFont(source.program->trueType, std::move(description));
    }
    if (source.program != nullptr && source.program->cff) {
        description.name = source.program->name;
        description.box = source.program->cff->Box();
        return HOST::MakeCIDCFFFont(source.program->cff, std::move(description));
    }
    if (source.name.empty()) {
        return {};
    }
    description.name = source.name;
    return MakeObject<HOST::ResidentCIDFont>(std::move(description), ResidentEncoding(font));
}

std::string HandlerKey(const CompositeDictionary& font, const FontSource& source) {
    const std::string mode = font.cmap->IsVertical() ? "V " : "H ";
    if (source.program != nullptr) {
        return mode + source.program->name;
    }
    return std::to_string(static_cast<std::int32_t>(ResidentEncoding(font))) + ' ' + source.name;
}

std::shared_ptr<const CompositeCodes> EnterCodes(const CompositeDictionary& font,
                                                 const FontSource& source,
                                                 const std::set<CharCode>& codes,
                                                 HOST::CIDFont& handler) {
    auto entered = std::make_shared<CompositeCodes>(font.cmap);
    const bool hasCMap = EncodingOfCMap(font.encoding).has_value();
    for (const CharCode code : codes) {
        const std::uint16_t cid = font.cmap->CIDOf(code);
        HOST::CIDCharacter character;
        font.metrics.Apply(cid, character);
        character.unicode = font.CharacterOf(code, cid);
        if (source.program == nullptr) {
            auto& resident = static_cast<HOST::ResidentCIDFont&>(handler);
            entered->Enter(code,
                           resident.AddCode(BytesOf(hasCMap ? code : CharCode{cid, 2}), character));
            continue;
        }
        character.glyph = GlyphOf(font, source, cid, character.unicode);
        entered->Enter(code, handler.Add(character));
    }
    return entered;
}

}  // namespace VANTIX::PDF
