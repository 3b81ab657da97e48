// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "core/fonts/ifontpackagehandler.h"
#include "core/object/tinterfaceptr.h"
#include "core/object/tobject.h"
#include "host/export.h"

namespace VANTIX::HOST {

/// What a document says of any font.
struct FontDescription {
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
};

/// A font of a document. Its host text consists of codes of one or two bytes, high byte first.
class NORVANE_HOST_API DocumentFont : public TObject<GRAPHICS::IFontPackageHandler> {
public:
    explicit DocumentFont(GRAPHICS::TFontType type) : mType(type) {}

    /// Of each code of host text: 1 or 2.
    [[nodiscard]] virtual std::size_t CodeBytes() const = 0;
    [[nodiscard]] virtual bool IsVertical() const = 0;
    /// The advance at a code by the document, in ems along the writing direction: to the right, or
    /// upwards where that is vertical.
    [[nodiscard]] virtual float AdvanceAt(std::uint16_t code) const = 0;
    /// The same of the font as it is written; nothing where it is unknown.
    [[nodiscard]] virtual std::optional<float> WrittenAdvanceAt(std::uint16_t code) const = 0;

    GRAPHICS::TFontType GetFontType() const override;
    std::int32_t GetSpaceCharCode() const override;
    bool Less(const GRAPHICS::IFontPackageHandler& other) const override;
    const char* GetName() const override;
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
    /// Whether codes end so far by the font's own advances from where the document has them, that
    /// they have to be positioned.
    [[nodiscard]] bool Deviates(const std::uint8_t* text, std::int32_t length) const;

    /// Whether no code leads against its writing direction: an advance of that sign would be taken
    /// for the mark of a word space.
    [[nodiscard]] bool LeadsOn(const std::uint8_t* text, std::int32_t length) const;

    [[nodiscard]] virtual const FontDescription& Traits() const = 0;

private:
    GRAPHICS::TFontType mType;
};

}  // namespace VANTIX::HOST
