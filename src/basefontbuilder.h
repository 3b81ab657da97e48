// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "core/fonts/ifontancillaries.h"
#include "core/object/tinterfaceptr.h"
#include "core/object/tobject.h"
#include "ifontbuilder.h"

namespace VANTIX::PS {

/// A font name as it may stand in a resource comment and in parentheses: control characters,
/// delete and delimiters as "#" and two hexadecimal digits, at most 255 characters in all.
std::string EscapeFontName(std::string_view name);

/// Whether `name` can stand behind a "/": regular characters alone, no more of them than a name
/// holds (PostScript Language Reference, 3.3 and appendix B).
bool IsPlainName(std::string_view name);

/// Text for a comment: what would end its line becomes a blank.
std::string OneLine(std::string_view text);

/// The time of the job in UTC as 24 characters and a newline, "Wed Nov 18 02:55:03 2026".
std::string CreationTime();

/// The bytes of two tables of a TrueType font: empty, or enough for what a builder reads of them.
struct HeaderTables {
    std::span<const std::uint8_t> head;
    std::span<const std::uint8_t> post;
};

HeaderTables FindHeaderTables(const GRAPHICS::IT42Ancillary& font);

/// Writes one entry of an encoding array for each call. Names that would break it are left out.
class BaseFontEncodingFunctor final : public GRAPHICS::IEncodingFunctor {
public:
    explicit BaseFontEncodingFunctor(IPostScriptDataStream& stream) : mStream(stream) {}

    bool operator()(std::int32_t code, const char* name) override;

private:
    IPostScriptDataStream& mStream;
};

/// What all builders share: the font, the stream on its packet, the name, and pieces of resources.
class FontResourceBuilder : public TObject<GRAPHICS::IFontBuilder> {
public:
    const char* GetFontName() const override;
    IPostScriptDataStream* GetStream() override;

protected:
    /// Who complains of what when there is no font or no stream.
    struct Complaints {
        const char* module;
        const char* noFont;
        const char* noStream;
    };

    /// `Init` of the builders. The stream is separated.
    bool Begin(GRAPHICS::IFontPackageHandler* handler, const char* name,
               IO::IPacketDataProvider& packet, const Complaints& complaints);
    /// /Encoding of `handler`, up to "readonly": by name, or an array of ".notdef" that is to be
    /// filled, for which the answer is true.
    bool BeginEncoding(const GRAPHICS::IFontPackageHandler& handler);
    /// /FontInfo, which stays open.
    void BeginFontInfo();
    /// Copies the font `source` (as it was defined) into a new dictionary, which stays open, with
    /// /FontName.
    void BeginRedefinition(const char* source, const char* name);
    void EndRedefinition(const char* name);
    /// A font name as a string, whatever is in it.
    void WriteNameString(std::string_view name);
    /// Writes one piece of text, formatted as `FormatText` does, of at most `kMostText` characters.
    [[gnu::format(printf, 2, 3)]] void Print(const char* format, ...);

    static constexpr std::size_t kMostText = 1024;

    [[nodiscard]] GRAPHICS::IFontPackageHandler* Handler() const { return mHandler.Get(); }

    /// Only after a successful `Init`.
    [[nodiscard]] IPostScriptDataStream& Stream() const { return *mStream; }

private:
    TInterfacePtr<GRAPHICS::IFontPackageHandler> mHandler;
    TInterfacePtr<IPostScriptDataStream> mStream;
    std::string mName;
};

/// The number that `WriteFontDictionary` turns into /FontType.
enum class FontDictionaryType : std::int32_t { kType1 = 1, kType42 = 2, kType3 = 3 };

/// What the builders of Type 1, Type 42 and Type 3 fonts share: the font dictionary (PostScript
/// Language Reference, 5.2).
class BaseFontBuilder : public FontResourceBuilder {
public:
    bool Init(GRAPHICS::IFontPackageHandler* handler, const char* name,
              IO::IPacketDataProvider& packet) override;

protected:
    explicit BaseFontBuilder(FontDictionaryType type) : mType(type) {}

    /// Writes "/FontBBox [0 0 0 0] readonly def".
    virtual bool WriteFontBBox();
    virtual bool WriteTypeSpecificEntries();
    /// Writes the entries of the encoding array that are not ".notdef".
    virtual bool SetEncodingDifferences(GRAPHICS::IFontPackageHandler* handler) = 0;
    virtual bool WriteFontMatrix();
    virtual bool WriteFontDictionary();

    // Pieces that several builders write.
    void WriteBeginResource();
    /// /Encoding of `handler`: by name, or an array with its differences.
    void WriteEncoding(GRAPHICS::IFontPackageHandler& handler);
    /// "%%VMusage" from a 'post' table; nothing for an empty one.
    void WriteMemoryUse(std::span<const std::uint8_t> post);
    /// /FontMatrix from the handler, or the identity.
    void WriteHandlerMatrix();

private:
    FontDictionaryType mType;
};

}  // namespace VANTIX::PS
