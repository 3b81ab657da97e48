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
inline constexpr GUID IID_IT42ANCILLARY = "0879B1D7-E737-4508-B4CD-B355C5AA3206"_guid;

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

/// What a Type 1 font has beyond its program.
class IType1Ancillary : public IObject {
public:
    /// The codes at which the font's encoding has a glyph, ascending; for a font whose program has
    /// an encoding of its own those that differ from it.
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
