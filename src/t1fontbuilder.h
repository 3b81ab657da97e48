// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <span>

#include "basefontbuilder.h"
#include "core/object/iclassfactory.h"
#include "truetypetot1conversionutils.h"

namespace VANTIX::PS {

/// Writes a font as a Type 1 font (Adobe Type 1 Font Format): a Type 1 program as it is, with its
/// end repaired, or one made of the charstrings of a CFF font or the outlines of a TrueType font.
class T1FontBuilder : public BaseFontBuilder {
public:
    /// The factory makes the memory provider for charstrings on trial; it has to outlive the
    /// builder.
    explicit T1FontBuilder(IClassFactory& factory)
        : BaseFontBuilder(FontDictionaryType::kType1), mFactory(factory) {}

    bool BuildFont() override;
    bool DefineFont(GRAPHICS::IFontPackageHandler* handler, const char* name) override;

protected:
    /// Nothing: box and matrix are written with the scale, in the type-specific entries.
    bool WriteFontBBox() override;
    bool WriteFontMatrix() override;
    bool WriteTypeSpecificEntries() override;
    bool SetEncodingDifferences(GRAPHICS::IFontPackageHandler* handler) override;

private:
    class TrueTypeToT1CharStringFunctor;
    class T2ToT1CharStringFunctor;

    bool BuildFromProgram();
    void CopyProgram(std::span<const std::uint8_t> program);
    void WriteFontComments();
    /// The TrueType interface of the source, or null.
    [[nodiscard]] const GRAPHICS::IT42Ancillary* TrueTypeSource() const;
    /// The CFF interface of the source, or null.
    [[nodiscard]] const GRAPHICS::ICFFAncillary* CFFSource() const;

    /// From /FontMatrix to /OtherSubrs, the end of it encrypted.
    void WriteScaledEntries();
    void WriteScaledMatrix();
    void WriteScaledBBox();
    void WritePrivateDictionary();
    /// False, with nothing written to the font's stream, where a charstring becomes too large.
    bool WriteCharStringsOnTrial();
    /// Answers the length of the longest charstring in bytes.
    std::int32_t WriteCharStringDictionary(IPostScriptDataStream& out);
    /// One entry of it. Answers the length of the charstring in bytes.
    std::int32_t WriteCharString(IPostScriptDataStream& out, const char* name,
                                 std::span<const std::uint8_t> charString);
    void WriteEndOfProgram();

    /// Text, formatted, or bytes, encrypted with the running key.
    [[gnu::format(printf, 3, 4)]] void PrintEncrypted(IPostScriptDataStream& out,
                                                      const char* format, ...);
    void WriteEncrypted(IPostScriptDataStream& out, std::span<const std::uint8_t> bytes);

    static constexpr float kScale = 1000;
    static constexpr float kFallbackScale = 10000;

    IClassFactory& mFactory;
    Type1Cipher mEexec{Type1Cipher::kEexecKey};
    /// Units of converted charstrings for each em.
    float mScale = kScale;
};

}  // namespace VANTIX::PS
