// SPDX-License-Identifier: MIT
#include "host/fonts/type1program.h"

#include <freetype/freetype.h>
#include <freetype/ftfntfmt.h>
#include <ft2build.h>

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "host/fonts/eexec.h"
#include "host/fonts/glyphnames.h"
#include "host/fonts/type1charstrings.h"
#include "host/fonts/type1reader.h"

namespace VANTIX::HOST {
namespace {

constexpr std::string_view kNotdef = ".notdef";
/// Subroutines of flex and hint replacement, which procedures of /OtherSubrs may name themselves.
constexpr std::size_t kStandardSubroutines = 5;

/// What is known of a glyph.
struct Glyph {
    double width = -1;  ///< in charstring units, negative where unknown
    bool marks = true;
    bool isUsed = false;
    std::array<int, 2> components{-1, -1};
    std::size_t entry = 0;  ///< of the encrypted part
};

using Glyphs = std::unordered_map<std::string, Glyph>;

/// The glyphs as FreeType finds them, for a program that is not taken apart.
Glyphs ReadGlyphsWithFreeType(const std::vector<std::uint8_t>& bytes) {
    constexpr FT_Int32 kInUnits = FT_LOAD_NO_SCALE | FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP;
    Glyphs glyphs;
    FT_Library library = nullptr;
    if (FT_Init_FreeType(&library) != 0) {
        return glyphs;
    }
    FT_Face face = nullptr;
    if (FT_New_Memory_Face(library, bytes.data(), static_cast<FT_Long>(bytes.size()), 0, &face) ==
        0) {
        const bool isType1 = FT_Get_Font_Format(face) == std::string_view("Type 1");
        for (FT_UInt index = 0; isType1 && index < static_cast<FT_UInt>(face->num_glyphs);
             ++index) {
            std::array<char, 256> name{};
            if (FT_Get_Glyph_Name(face, index, name.data(), name.size()) != 0) {
                continue;
            }
            Glyph& glyph = glyphs[SanitiseGlyphName(name.data())];
            if (FT_Load_Glyph(face, index, kInUnits) == 0) {
                glyph.width = static_cast<double>(face->glyph->metrics.horiAdvance);
                glyph.marks = face->glyph->outline.n_points > 0;
            }
        }
        FT_Done_Face(face);
    }
    FT_Done_FreeType(library);
    return glyphs;
}

/// A stretch of a text that gives way to another.
struct Edit {
    TextRange range;
    std::string text;
};

/// The text up to `end` with the edits, which must not overlap, made.
std::string Edited(std::string_view text, std::vector<Edit> edits, std::size_t end) {
    std::sort(edits.begin(), edits.end(),
              [](const Edit& a, const Edit& b) { return a.range.begin < b.range.begin; });
    std::string result;
    std::size_t position = 0;
    for (const Edit& edit : edits) {
        result += text.substr(position, edit.range.begin - position);
        result += edit.text;
        position = edit.range.end;
    }
    return result.append(text.substr(position, end - position));
}

class Type1ProgramImpl final : public Type1Program {
public:
    explicit Type1ProgramImpl(std::size_t fileSize) : mFileSize(fileSize) {}

    bool Read(const std::vector<std::uint8_t>& bytes, std::string& problem);

    [[nodiscard]] float WidthOf(std::string_view glyph) const override;
    [[nodiscard]] bool HasOutline(std::string_view glyph) const override;

    [[nodiscard]] const std::string& Name() const override { return mHeader.name; }

    [[nodiscard]] const std::array<std::string, kSimpleCodes>& Encoding() const override {
        return mHeader.encoding;
    }

    [[nodiscard]] const std::array<float, 6>& Matrix() const override { return mHeader.matrix; }

    [[nodiscard]] GRAPHICS::FontBox Box() const override { return mHeader.box; }

    [[nodiscard]] std::int32_t GlyphCount() const override {
        return static_cast<std::int32_t>(mGlyphs.size());
    }

    [[nodiscard]] std::size_t FileSize() const override { return mFileSize; }

    void UseGlyph(std::string_view glyph) override;

    void Rename(std::string_view name) override { mNewName = SanitiseGlyphName(name); }

    void UseText(bool text) override { mIsText = text; }

    const std::vector<std::uint8_t>& Data() override;

private:
    using NamedGlyph = Glyphs::value_type;

    void ReadGlyphs();
    [[nodiscard]] const Glyph* Find(std::string_view name) const;
    void Use(NamedGlyph& glyph);
    [[nodiscard]] std::string NewClearText() const;
    [[nodiscard]] std::string NewPrivateText();
    void CutGlyphs(std::vector<Edit>& edits) const;
    void CutSubroutines(std::vector<Edit>& edits) const;
    void RenameIn(std::string_view text, std::size_t offset, std::vector<Edit>& edits) const;

    std::size_t mFileSize;
    Type1Text mText;
    Type1Header mHeader;
    Type1Private mPrivate;
    bool mIsTakenApart = false;
    Glyphs mGlyphs;
    bool mUsesSome = false;
    std::string mNewName;
    bool mIsText = false;
    std::vector<std::uint8_t> mData;
};

bool Type1ProgramImpl::Read(const std::vector<std::uint8_t>& bytes, std::string& problem) {
    if (!SplitType1(bytes, mText, problem)) {
        return false;
    }
    mHeader = ReadType1Header(mText.clear);
    if (mHeader.name.empty()) {
        problem = "it has no name";
        return false;
    }
    mIsTakenApart = ReadType1Private(mText.plain, mPrivate);
    if (mIsTakenApart) {
        ReadGlyphs();
    } else {
        mGlyphs = ReadGlyphsWithFreeType(bytes);
    }
    if (mGlyphs.empty()) {
        problem = "its glyphs cannot be read";
        return false;
    }
    return true;
}

/// Decrypted subroutines by number; those that are not there are empty.
std::vector<std::string> SubroutinesOf(const Type1Private& parts, std::string_view plain) {
    std::vector<std::string> subroutines;
    for (const Type1Entry& entry : parts.subroutines) {
        if (entry.number >= subroutines.size()) {
            subroutines.resize(entry.number + 1);
        }
        subroutines[entry.number] = parts.Decrypted(plain, entry.data);
    }
    return subroutines;
}

void Type1ProgramImpl::ReadGlyphs() {
    const std::vector<std::string> subroutines = SubroutinesOf(mPrivate, mText.plain);
    CharStringWalker walker(subroutines, mText.plain.size());
    for (std::size_t index = 0; index < mPrivate.glyphs.size(); ++index) {
        const Type1Entry& entry = mPrivate.glyphs[index];
        const CharStringFacts facts = walker.Walk(mPrivate.Decrypted(mText.plain, entry.data));
        // The last one of a name is the one that an interpreter keeps.
        Glyph& glyph = mGlyphs[entry.name];
        glyph = {.width = facts.hasWidth ? facts.width : -1,
                 .marks = facts.marks || !facts.isWhole || facts.components[0] >= 0,
                 .components = facts.components,
                 .entry = index};
    }
}

const Glyph* Type1ProgramImpl::Find(std::string_view name) const {
    const auto found = mGlyphs.find(SanitiseGlyphName(name));
    return found == mGlyphs.end() ? nullptr : &found->second;
}

float Type1ProgramImpl::WidthOf(std::string_view glyph) const {
    const Glyph* found = Find(glyph);
    if (found == nullptr || found->width < 0) {
        return -1.0F;
    }
    return static_cast<float>(found->width * mHeader.matrix[0]);
}

bool Type1ProgramImpl::HasOutline(std::string_view glyph) const {
    const Glyph* found = Find(glyph);
    return found != nullptr && found->marks;
}

void Type1ProgramImpl::UseGlyph(std::string_view glyph) {
    mUsesSome = true;
    const auto found = mGlyphs.find(SanitiseGlyphName(glyph));
    if (found != mGlyphs.end()) {
        Use(*found);
    }
}

void Type1ProgramImpl::Use(NamedGlyph& glyph) {
    if (glyph.second.isUsed) {
        return;
    }
    glyph.second.isUsed = true;
    for (const int code : glyph.second.components) {
        if (code < 0) {
            continue;
        }
        const auto& names = NamesOf(BaseEncoding::kStandard);
        const auto found = mGlyphs.find(std::string(names.at(static_cast<std::size_t>(code))));
        if (found != mGlyphs.end()) {
            Use(*found);
        }
    }
}

/// Replaces the program's name where the program names itself in a stretch of its text.
void Type1ProgramImpl::RenameIn(std::string_view text, std::size_t offset,
                                std::vector<Edit>& edits) const {
    if (mNewName.empty()) {
        return;
    }
    for (const TextRange& place : FindOwnName(text, mHeader.name)) {
        edits.push_back({{place.begin + offset, place.end + offset}, mNewName});
    }
}

std::string Type1ProgramImpl::NewClearText() const {
    const std::string_view clear = mText.clear;
    const TextRange guard = FindDefinitionGuard(clear);
    std::vector<Edit> edits{{guard, ""}};
    RenameIn(clear.substr(guard.end), guard.end, edits);
    const std::string_view firstLine = clear.substr(0, clear.find_first_of("\r\n"));
    const std::size_t place = firstLine.find(": " + mHeader.name);
    if (!mNewName.empty() && place != std::string_view::npos) {
        edits.push_back({{place + 2, place + 2 + mHeader.name.size()}, mNewName});
    }
    return Edited(clear, std::move(edits), clear.size());
}

void Type1ProgramImpl::CutGlyphs(std::vector<Edit>& edits) const {
    std::size_t kept = 0;
    for (std::size_t index = 0; index < mPrivate.glyphs.size(); ++index) {
        const Type1Entry& entry = mPrivate.glyphs[index];
        const Glyph& glyph = mGlyphs.at(entry.name);
        if (glyph.entry != index || (mUsesSome && !glyph.isUsed && entry.name != kNotdef)) {
            edits.push_back({entry.whole, ""});
            continue;
        }
        ++kept;
        if (entry.named.Of(mText.plain) != entry.name) {
            edits.push_back({entry.named, entry.name});
        }
    }
    if (mGlyphs.find(std::string(kNotdef)) == mGlyphs.end()) {
        // 0 250 hsbw endchar, in the words of another glyph
        const Type1Entry& other = mPrivate.glyphs.front();
        const std::string notdef = mPrivate.Encrypted("\x8B\xF7\x8E\x0D\x0E");
        const std::string_view plain = mText.plain;
        std::string entry = "/.notdef " + std::to_string(notdef.size());
        entry += plain.substr(other.length.end, other.data.begin - other.length.end);
        entry += notdef;
        entry += plain.substr(other.data.end, other.whole.end - other.data.end);
        const std::size_t end = mPrivate.glyphSection.end;
        edits.push_back({{end, end}, std::move(entry)});
        ++kept;
    }
    edits.push_back({mPrivate.glyphCount, std::to_string(kept)});
}

/// Empties the subroutines that no glyph left calls.
void Type1ProgramImpl::CutSubroutines(std::vector<Edit>& edits) const {
    const std::vector<std::string> subroutines = SubroutinesOf(mPrivate, mText.plain);
    CharStringWalker walker(subroutines, mText.plain.size());
    for (const auto& [name, glyph] : mGlyphs) {
        if (glyph.isUsed || name == kNotdef || !mUsesSome) {
            walker.Walk(mPrivate.Decrypted(mText.plain, mPrivate.glyphs[glyph.entry].data));
        }
    }
    const std::string empty = mPrivate.Encrypted("\x0B");  // return
    for (const Type1Entry& entry : mPrivate.subroutines) {
        const std::size_t size = entry.data.end - entry.data.begin;
        if (entry.number >= kStandardSubroutines && size > empty.size() &&
            !walker.IsReached(entry.number)) {
            edits.push_back({entry.length, std::to_string(empty.size())});
            edits.push_back({entry.data, empty});
        }
    }
}

std::string Type1ProgramImpl::NewPrivateText() {
    const std::string_view plain = mText.plain;
    std::vector<Edit> edits;
    CutGlyphs(edits);
    CutSubroutines(edits);
    std::size_t charStrings = mPrivate.glyphSection.begin;
    if (!mPrivate.subroutines.empty()) {
        charStrings = std::min(charStrings, mPrivate.subroutines.front().whole.begin);
    }
    RenameIn(plain.substr(0, std::min(charStrings, mPrivate.glyphCount.begin)), 0, edits);
    std::string text = Edited(plain, std::move(edits), mPrivate.end);
    if (!mPrivate.isDefined) {
        text += "\nend\nend\nreadonly put\nnoaccess put\ndup /FontName get exch definefont";
    }
    if (!mPrivate.isClosed) {
        text += " pop\nmark currentfile closefile";
    }
    return text + '\n';
}

const std::vector<std::uint8_t>& Type1ProgramImpl::Data() {
    if (!mData.empty()) {
        return mData;
    }
    // Four leading bytes of 0 become bytes that cannot be taken for hexadecimal digits.
    const std::string encrypted =
        mIsTakenApart ? EncryptType1(std::string(4, '\0') + NewPrivateText(), kEexecKey)
                      : mText.encrypted;
    std::string data = NewClearText();
    data += '\n';
    data += mIsText ? DigitsOfBytes(encrypted) : encrypted + '\n';
    for (int line = 0; line < 8; ++line) {
        data.append(64, '0').append("\n");
    }
    data += "cleartomark\n";
    mData.assign(data.begin(), data.end());
    mText = {};
    return mData;
}

}  // namespace

std::shared_ptr<Type1Program> Type1Program::Open(const std::vector<std::uint8_t>& bytes,
                                                 std::string& problem) {
    auto program = std::make_shared<Type1ProgramImpl>(bytes.size());
    if (!program->Read(bytes, problem)) {
        return nullptr;
    }
    return program;
}

}  // namespace VANTIX::HOST
