// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/fonts/documentfont.h"

namespace VANTIX::HOST {

inline constexpr std::size_t kSimpleCodes = 256;

/// What a document says of a font with codes of one byte.
struct SimpleFontDescription : FontDescription {
    /// The name of the glyph at each code, empty where there is none.
    std::array<std::string, kSimpleCodes> encoding;
    /// Widths by the document, in ems; negative or NaN where it gives none.
    std::array<float, kSimpleCodes> widths{};
};

/// The description with all names as they may stand in PostScript.
SimpleFontDescription Sanitised(SimpleFontDescription description);

/// A font matrix in the order of the font package handlers: a c b d e f.
using HandlerMatrix = std::array<float, 6>;

/// Of a matrix in the order a b c d e f.
inline HandlerMatrix HandlerMatrixOf(const std::array<float, 6>& matrix) {
    return {matrix[0], matrix[2], matrix[1], matrix[3], matrix[4], matrix[5]};
}

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

/// A program that knows its glyphs by names and brings an encoding.
class NORVANE_HOST_API NamedProgram : public SimpleProgram {
public:
    /// The encoding of the program itself; empty names where there is no glyph.
    [[nodiscard]] virtual const std::array<std::string, kSimpleCodes>& Encoding() const = 0;
    /// In units of the program.
    [[nodiscard]] virtual GRAPHICS::FontBox Box() const = 0;
    /// The glyph is to be written, with what it is composed of. Where none is named, all are.
    virtual void UseGlyph(std::string_view glyph) = 0;
};

/// A font with codes of one byte: codes go out as they come in, and advances are answered where
/// those of the program would end more than a hundredth of an em beside the document's.
class NORVANE_HOST_API SimpleFont : public DocumentFont {
public:
    SimpleFont(GRAPHICS::TFontType type, SimpleFontDescription description);

    /// The advance at a code in ems: the document's, or that of the program, or 0.
    [[nodiscard]] float WidthAt(std::uint8_t code) const;

    /// The advance at a code of the font as it is written, in ems; negative where it is unknown.
    [[nodiscard]] float WrittenWidthAt(std::uint8_t code) const { return mWritten[code]; }

    [[nodiscard]] const SimpleFontDescription& Description() const { return mDescription; }

    std::size_t CodeBytes() const override { return 1; }

    bool IsVertical() const override { return false; }

    float AdvanceAt(std::uint16_t code) const override;
    std::optional<float> WrittenAdvanceAt(std::uint16_t code) const override;

    GRAPHICS::TEncoding GetCIDEncoding() const override;
    bool ReEncodeText(const void* text, std::int32_t length, std::uint8_t* codes,
                      std::int32_t* codeLength) const override;
    bool GetAdvances(const void* text, std::int32_t length, float* w0, float* w1,
                     std::int32_t* count) const override;
    /// The whole encoding.
    const GRAPHICS::EncodingDifference* GetEncodingDifferences(std::int32_t& count) const override;
    /// `kStandard` where the encoding is just that, else `kCustom`.
    GRAPHICS::TEncoding GetEncoding() const override;

protected:
    /// Once, by the constructors of the kinds: the widths as they are written.
    void TakeWidths(const SimpleProgram& program);

    const FontDescription& Traits() const override { return mDescription; }

private:
    SimpleFontDescription mDescription;
    GRAPHICS::TEncoding mEncoding = GRAPHICS::TEncoding::kCustom;
    std::vector<GRAPHICS::EncodingDifference> mDifferences;
    std::array<float, kSimpleCodes> mWritten{};
};

}  // namespace VANTIX::HOST
