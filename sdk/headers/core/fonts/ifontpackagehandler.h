// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "core/object/iobject.h"

namespace VANTIX::GRAPHICS {

/// Asked of a font object.
inline constexpr GUID IID_IFONTPACKAGEHANDLER = "5E22873B-19F8-4F14-8243-948DAF6A768F"_guid;

/// Kinds of font programs as a host has them. 3 and 7 are not in use.
enum class TFontType : std::int32_t {
    kType1 = 1,
    kCFF = 2,    ///< bare CFF, not CID-keyed
    kType3 = 4,  ///< glyphs that the host draws
    kCIDKeyedCFF = 5,
    kCIDKeyedTrueType = 6,
    kTrueType = 8
};

/// Encodings of fonts: those of simple fonts that have names, and from 18 to 78 the predefined
/// CMaps of composite ones in the order of `GetPostScriptCMapName`.
enum class TEncoding : std::int32_t {
    kCustom = 0,
    kStandard = 8,
    kISOLatin1 = 13,
    kFirstCMap = 18,
    kIdentityH = 77,
    kIdentityV = 78
};

/// Bounding box of all glyphs. In units of the font program: thousandths of an em for Type 1 and
/// CFF as a rule, units per em for TrueType.
struct FontBox {
    float x = 0;
    float y = 0;
    float width = 0;
    float height = 0;
};

/// The glyph `name` (zero-terminated, never null) stands at `code`, 0 to 255.
struct EncodingDifference {
    std::int32_t code = 0;
    const char* name = nullptr;
};

/// One font of a document: a font program with an encoding and metrics. Strings and arrays belong
/// to the handler and live as long as it does. What a font program has (data, glyphs) is asked of
/// the interfaces that are aggregated into the handler (ifontancillaries.h).
class IFontPackageHandler : public IObject {
public:
    virtual TFontType GetFontType() const = 0;
    /// The CMap of a composite font that is not embedded.
    virtual TEncoding GetCIDEncoding() const = 0;
    /// Whether the program is there to be downloaded; else the interpreter is to have it.
    virtual bool IsEmbedded() const = 0;
    /// Codes of the font as written for `length` bytes of host text. `codes` has room for
    /// 2 * `length` + 16 bytes; `*codeLength` becomes the number written. Codes of composite fonts
    /// have two bytes.
    virtual bool ReEncodeText(const void* text, std::int32_t length, std::uint8_t* codes,
                              std::int32_t* codeLength) const = 0;
    /// Advances of the characters of a text in ems, `w0` horizontal and `w1` vertical; a negative
    /// `w0` marks one that receives word spacing. `*count` is the room of both arrays, then the
    /// number of characters. False, with nothing stored, where the font's own widths serve or there
    /// is not room enough.
    virtual bool GetAdvances(const void* text, std::int32_t length, float* w0, float* w1,
                             std::int32_t* count) const = 0;
    /// The code that receives word spacing.
    virtual std::int32_t GetSpaceCharCode() const = 0;
    /// A strict order of all fonts of a document.
    virtual bool Less(const IFontPackageHandler& other) const = 0;
    /// The name under which the font program defines itself, zero-terminated.
    virtual const char* GetName() const = 0;
    /// What the encoding changes of that of the program; null and 0 for nothing.
    virtual const EncodingDifference* GetEncodingDifferences(std::int32_t& count) const = 0;
    /// Encoding of a simple font.
    virtual TEncoding GetEncoding() const = 0;
    /// From glyph space to text space, six floats in the order a c b d e f; null for the identity.
    virtual const float* GetFontMatrix() const = 0;
    /// Never null; empty where unknown. The same holds for notice and version.
    virtual const char* GetFamilyName() const = 0;
    virtual const char* GetNoticeString() const = 0;
    virtual const char* GetVersionString() const = 0;
    /// Degrees, counter-clockwise from the vertical.
    virtual float GetItalicAngle() const = 0;
    virtual bool IsFixedPitch() const = 0;
    virtual float GetUnderlinePosition() const = 0;
    virtual float GetUnderlineThickness() const = 0;
    virtual FontBox GetFontBBox() const = 0;
    virtual std::int32_t GetGlyphCount() const = 0;
    virtual bool IsBold() const = 0;
    /// Widths of the dominant stems in thousandths of an em, 0 where unknown.
    virtual float GetHorizontalStemWidth() const = 0;
    virtual float GetVerticalStemWidth() const = 0;
};

}  // namespace VANTIX::GRAPHICS
