// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/object/tinterfaceptr.h"
#include "core/object/tobject.h"
#include "ifontbuilder.h"

namespace VANTIX::PS {

/// A font name as it may stand in a resource comment and in parentheses: control characters,
/// delete and delimiters as "#" and two hexadecimal digits, at most 255 characters in all.
std::string EscapeFontName(std::string_view name);

/// The number that `WriteFontDictionary` turns into /FontType.
enum class FontDictionaryType : std::int32_t { kType1 = 1, kType42 = 2, kType3 = 3 };

/// What the builders of Type 1, Type 42 and Type 3 fonts share: the stream on the packet, the name,
/// and the font dictionary (PostScript Language Reference, 5.2).
class BaseFontBuilder : public TObject<GRAPHICS::IFontBuilder> {
public:
    bool Init(GRAPHICS::IFontPackageHandler* handler, const char* name,
              IO::IPacketDataProvider& packet) override;
    const char* GetFontName() const override;
    IPostScriptDataStream* GetStream() override;

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

    [[nodiscard]] GRAPHICS::IFontPackageHandler* Handler() const { return mHandler.Get(); }

    /// Only after a successful `Init`.
    [[nodiscard]] IPostScriptDataStream& Stream() const { return *mStream; }

private:
    TInterfacePtr<GRAPHICS::IFontPackageHandler> mHandler;
    TInterfacePtr<IPostScriptDataStream> mStream;
    FontDictionaryType mType;
    std::string mName;
};

}  // namespace VANTIX::PS
