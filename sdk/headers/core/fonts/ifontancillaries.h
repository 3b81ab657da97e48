// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "core/object/iobject.h"
#include "core/types.h"

namespace VANTIX::GRAPHICS {

class IConnectionSpace;

// Asked of a font package handler.
inline constexpr GUID IID_ICOMPOSITEFONTINFO = "370E1592-660F-4752-87FC-844D29940064"_guid;
inline constexpr GUID IID_IFONTDATA = "CBC74CDB-CE45-4AE5-A6B8-D5EEC88B27AC"_guid;
inline constexpr GUID IID_ITYPE1ANCILLARY = "DA6716FE-1CD9-4B70-8F46-F8B7FFCACA61"_guid;
inline constexpr GUID IID_ICFFANCILLARY = "3403B289-CA89-40CF-8915-7F9D8365AC60"_guid;
inline constexpr GUID IID_IT42ANCILLARY = "0879B1D7-E737-4508-B4CD-B355C5AA3206"_guid;
inline constexpr GUID IID_ICIDKEYEDCFFANCILLARY = "3B6A4DAF-50D1-45D1-A412-A2D4A61737A3"_guid;
inline constexpr GUID IID_ICIDKEYEDT42ANCILLARY = "BE77B328-FA46-4701-944B-B3114B616F83"_guid;
inline constexpr GUID IID_IT3ANCILLARY = "9F32BA41-F558-42DD-A5F7-4A3C933DB753"_guid;

/// Offered by fonts with codes of two bytes.
class ICompositeFontInfo : public IObject {
public:
    virtual bool IsVertical() const = 0;
};

/// A font program: for Type 1 the clear text and the encrypted part without headers of segments,
/// for TrueType an sfnt whose tables stand in the order of their offsets.
class IFontData : public IObject {
public:
    /// May be null.
    virtual const std::uint8_t* GetData() const = 0;
    virtual std::int32_t GetSize() const = 0;
};

/// The outline of one glyph.
class IGlyphRecording : public IObject {
public:
    /// Draws the outline: `NewPath`, contours of `MoveTo`, `LineTo`, `QuadCurveTo`, `CurveTo` and
    /// `ClosePath` in ems, `ResetPath`. False where it cannot be drawn whole.
    virtual bool Play(IConnectionSpace& space) const = 0;
    /// In ems.
    virtual float GetAdvanceWidth() const = 0;
    virtual std::int32_t GetPointCount() const = 0;
};

// Functors of the enumerations below. Each answers whether to go on. Names are zero-terminated.

class IEncodingFunctor {
public:
    /// `code` from 0 to 255.
    virtual bool operator()(std::int32_t code, const char* name) = 0;

protected:
    ~IEncodingFunctor() = default;
};

class ITableFunctor {
public:
    virtual bool operator()(FourCC tag, const std::uint8_t* data, std::uint32_t size) = 0;

protected:
    ~ITableFunctor() = default;
};

class IGlyphNameFunctor {
public:
    virtual bool operator()(const char* name, std::uint16_t index) = 0;

protected:
    ~IGlyphNameFunctor() = default;
};

class IGlyphFunctor {
public:
    /// `nameLength` in bytes; the recording is borrowed for the call and may be null.
    virtual bool operator()(const char* name, std::int32_t nameLength, std::uint16_t index,
                            const IGlyphRecording* recording) = 0;

protected:
    ~IGlyphFunctor() = default;
};

/// A Type 2 charstring (Technical Note 5177) and the widths of its Private DICT.
struct CharString {
    const std::uint8_t* data = nullptr;
    std::int32_t length = 0;
    float nominalWidth = 0;
    float defaultWidth = 0;
};

class ICharStringFunctor {
public:
    virtual bool operator()(const char* name, const CharString& charString) = 0;

protected:
    ~ICharStringFunctor() = default;
};

class ICIDCharStringFunctor {
public:
    /// `fontDict` is the index of the font DICT that the charstring belongs to.
    virtual bool operator()(std::uint16_t cid, std::uint16_t fontDict,
                            const CharString& charString) = 0;

protected:
    ~ICIDCharStringFunctor() = default;
};

class ICIDGlyphFunctor {
public:
    /// The recording is borrowed for the call and may be null.
    virtual bool operator()(const IGlyphRecording* recording, std::uint16_t cid) = 0;

protected:
    ~ICIDGlyphFunctor() = default;
};

class ICIDToUnicodeFunctor {
public:
    virtual bool operator()(std::uint16_t cid, std::uint16_t character) = 0;

protected:
    ~ICIDToUnicodeFunctor() = default;
};

class IVerticalMetricFunctor {
public:
    /// The values of /Metrics2: advance and origin, in the glyph space of the font as written.
    virtual bool operator()(std::uint16_t cid, const float values[4]) = 0;

protected:
    ~IVerticalMetricFunctor() = default;
};

class IT3GlyphProcFunctor {
public:
    /// `box` is llx lly urx ury in glyph space; a coloured glyph has none. `glyph` plays itself
    /// into the space that it is given, and may be null for one that is blank.
    virtual bool operator()(const char* name, std::int32_t nameLength,
                            const IConnectionSpace* glyph, const float box[4], float width,
                            bool isColoured) = 0;

protected:
    ~IT3GlyphProcFunctor() = default;
};

/// What a Type 1 font has beyond its program.
class IType1Ancillary : public IObject {
public:
    /// The codes at which the font's encoding has a glyph, ascending; for a font whose program has
    /// an encoding of its own those that differ from it.
    virtual void EnumerateEncoding(IEncodingFunctor& functor) const = 0;
};

/// Subroutines of Type 2 charstrings. Numbers are those of the program: the operand plus the bias.
class ICharStringSubroutines : public IObject {
public:
    static constexpr std::int32_t kRoom = 2048;

    /// Of the font DICT, 0 for a font that is not CID-keyed.
    virtual std::int32_t GetLocalBias(std::uint16_t fontDict) const = 0;
    virtual std::int32_t GetGlobalBias() const = 0;
    /// Copies a subroutine into `buffer` of `kRoom` bytes and answers its length; 0 for one that is
    /// not there or longer.
    virtual std::int32_t CopyLocalSubroutine(std::uint16_t fontDict, std::int32_t number,
                                             std::uint8_t* buffer) const = 0;
    virtual std::int32_t CopyGlobalSubroutine(std::int32_t number, std::uint8_t* buffer) const = 0;
};

/// A CFF program that is not CID-keyed.
class ICFFAncillary : public ICharStringSubroutines {
public:
    /// Every glyph with its name, ".notdef" among them.
    virtual void EnumerateCharStrings(ICharStringFunctor& functor) const = 0;
    /// The codes at which the font's encoding has a glyph, ascending.
    virtual void EnumerateEncoding(IEncodingFunctor& functor) const = 0;
};

/// Values of the Private DICT of a font DICT (Technical Note 5176, table 23).
struct PrivateValues {
    static constexpr std::int32_t kMostBlues = 14;
    static constexpr std::int32_t kMostOtherBlues = 10;
    static constexpr std::int32_t kMostSnaps = 12;

    std::int32_t languageGroup = 0;
    float blueValues[kMostBlues] = {};
    std::int32_t blueValueCount = 0;
    float otherBlues[kMostOtherBlues] = {};
    std::int32_t otherBlueCount = 0;
    float blueScale = 0.039625F;
    float blueShift = 7;
    float blueFuzz = 1;
    float stdHW = 0;
    float stdVW = 0;
    float stemSnapH[kMostSnaps] = {};
    std::int32_t stemSnapHCount = 0;
    float stemSnapV[kMostSnaps] = {};
    std::int32_t stemSnapVCount = 0;
    bool forceBold = false;
    float expansionFactor = 0.06F;
};

/// A CID-keyed CFF program.
class ICIDKeyedCFFAncillary : public ICharStringSubroutines {
public:
    virtual const char* GetRegistry() const = 0;
    virtual const char* GetOrdering() const = 0;
    virtual std::int32_t GetSupplement() const = 0;
    virtual float GetCIDFontVersion() const = 0;
    virtual std::int32_t GetCIDCount() const = 0;
    virtual std::int32_t GetFontDictCount() const = 0;
    /// The matrix of a font DICT, six floats in the order a c b d e f, or null for none.
    virtual const float* GetFontDictMatrix(std::int32_t index) const = 0;
    /// Its name, or null.
    virtual const char* GetFontDictName(std::int32_t index) const = 0;
    virtual PrivateValues GetFontDictPrivate(std::int32_t index) const = 0;
    virtual void EnumerateCharStrings(ICIDCharStringFunctor& functor) const = 0;
    virtual void EnumerateVerticalMetrics(IVerticalMetricFunctor& functor) const = 0;
};

/// A CID-keyed font of a TrueType program, in which a CID is the index of its glyph; a CID-keyed
/// CFF font offers this, too, for its Unicode values, vertical metrics and system information.
class ICIDKeyedT42Ancillary : public IObject {
public:
    virtual const char* GetRegistry() const = 0;
    virtual const char* GetOrdering() const = 0;
    virtual std::int32_t GetSupplement() const = 0;
    virtual float GetCIDFontVersion() const = 0;
    virtual std::int32_t GetCIDCount() const = 0;
    virtual std::int32_t GetUnitsPerEm() const = 0;
    virtual void EnumerateGlyphs(ICIDGlyphFunctor& functor) const = 0;
    virtual void EnumerateTables(ITableFunctor& functor) const = 0;
    virtual std::int32_t GetUnicodeCount() const = 0;
    virtual void EnumerateUnicode(ICIDToUnicodeFunctor& functor) const = 0;
    virtual void EnumerateVerticalMetrics(IVerticalMetricFunctor& functor) const = 0;
};

/// A font whose glyphs the host draws.
class IT3Ancillary : public IObject {
public:
    virtual std::int32_t GetGlyphCount() const = 0;
    virtual void EnumerateGlyphs(IT3GlyphProcFunctor& functor) const = 0;
    /// The codes at which the font's encoding has a glyph, ascending.
    virtual void EnumerateEncoding(IEncodingFunctor& functor) const = 0;
};

/// A TrueType program, with names that are the same for all fonts of one program. A glyph may have
/// several names; a name stands for one glyph.
class IT42Ancillary : public IObject {
public:
    virtual std::uint32_t GetGlyphCount() const = 0;
    /// Of 'loca': 0 short, 1 long.
    virtual std::int16_t GetLocaFormat() const = 0;
    virtual std::int32_t GetUnitsPerEm() const = 0;
    /// The tables in the order of their offsets, with their bytes.
    virtual void EnumerateTables(ITableFunctor& functor) const = 0;
    /// Every name with the outline of its glyph.
    virtual void EnumerateGlyphs(IGlyphFunctor& functor) const = 0;
    /// Every name but ".notdef", which is glyph 0.
    virtual void EnumerateGlyphNames(IGlyphNameFunctor& functor) const = 0;
    /// The codes at which the font's encoding has a glyph, ascending.
    virtual void EnumerateEncoding(IEncodingFunctor& functor) const = 0;
};

}  // namespace VANTIX::GRAPHICS
