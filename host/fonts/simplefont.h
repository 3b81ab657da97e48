// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/fonts/ifontpackagehandler.h"
#include "core/object/tinterfaceptr.h"
#include "core/object/tobject.h"
#include "host/export.h"

namespace VANTIX::HOST {

inline constexpr std::size_t kSimpleCodes = 256;

/// What a document says of a font with codes of one byte.
struct SimpleFontDescription {
    /// The name in PostScript: that of the program, or of the font that the interpreter is to have.
    std::string name;
    std::string family;
    std::string notice;
    std::string version;
    /// Its number among the fonts of the document.
    std::int32_t selector = 0;
    float italicAngle = 0.0F;
    bool isFixedPitch = false;
    bool isBold = false;
    float underlinePosition = 0.0F;
    float underlineThickness = 0.0F;
    float horizontalStem = 0.0F;
    float verticalStem = 0.0F;
    /// In the units of the program.
    GRAPHICS::FontBox box;
    /// The name of the glyph at each code, empty where there is none.
    std::array<std::string, kSimpleCodes> encoding;
    /// Widths by the document, in ems; negative where it gives none.
    std::array<float, kSimpleCodes> widths{};
};

/// A font program of the document as its fonts see it. Names are those of the PostScript font.
class NORVANE_HOST_API SimpleProgram {
public:
    SimpleProgram() = default;
    SimpleProgram(const SimpleProgram&) = delete;
    SimpleProgram& operator=(const SimpleProgram&) = delete;
    SimpleProgram(SimpleProgram&&) = delete;
    SimpleProgram& operator=(SimpleProgram&&) = delete;
    virtual ~SimpleProgram() = default;

    /// The advance of a glyph as it is written, in ems; negative without such a glyph.
    [[nodiscard]] virtual float WidthOf(std::string_view glyph) const = 0;
    /// Whether the glyph marks anything.
    [[nodiscard]] virtual bool HasOutline(std::string_view glyph) const = 0;
};

/// A font with codes of one byte: codes go out as they come in, and advances are answered where
/// those of the program would end more than a hundredth of an em beside the document's.
class NORVANE_HOST_API SimpleFont : public TObject<GRAPHICS::IFontPackageHandler> {
public:
    SimpleFont(GRAPHICS::TFontType type, SimpleFontDescription description);

    /// The advance at a code in ems: the document's, or that of the program, or 0.
    [[nodiscard]] float WidthAt(std::uint8_t code) const;

    /// The advance at a code of the font as it is written, in ems; negative where it is unknown.
    [[nodiscard]] float WrittenWidthAt(std::uint8_t code) const { return mWritten[code]; }

    [[nodiscard]] const SimpleFontDescription& Description() const { return mDescription; }

    GRAPHICS::TFontType GetFontType() const override;
    GRAPHICS::TEncoding GetCIDEncoding() const override;
    bool ReEncodeText(const void* text, std::int32_t length, std::uint8_t* codes,
                      std::int32_t* codeLength) const override;
    bool GetAdvances(const void* text, std::int32_t length, float* w0, float* w1,
                     std::int32_t* count) const override;
    std::int32_t GetSpaceCharCode() const override;
    bool Less(const GRAPHICS::IFontPackageHandler& other) const override;
    const char* GetName() const override;
    /// The whole encoding.
    const GRAPHICS::EncodingDifference* GetEncodingDifferences(std::int32_t& count) const override;
    /// `kStandard` where the encoding is just that, else `kCustom`.
    GRAPHICS::TEncoding GetEncoding() const override;
    const char* GetFamilyName() const override;
    const char* GetNoticeString() const override;
    const char* GetVersionString() const override;
    float GetItalicAngle() const override;
    bool IsFixedPitch() const override;
    float GetUnderlinePosition() const override;
    float GetUnderlineThickness() const override;
    GRAPHICS::FontBox GetFontBBox() const override;
    bool IsBold() const override;
    float GetHorizontalStemWidth() const override;
    float GetVerticalStemWidth() const override;

protected:
    /// Once, by the constructors of the kinds: the widths as they are written.
    void TakeWidths(const SimpleProgram& program);

private:
    GRAPHICS::TFontType mType;
    SimpleFontDescription mDescription;
    GRAPHICS::TEncoding mEncoding = GRAPHICS::TEncoding::kCustom;
    std::vector<GRAPHICS::EncodingDifference> mDifferences;
    std::array<float, kSimpleCodes> mWritten{};
};

}  // namespace VANTIX::HOST
