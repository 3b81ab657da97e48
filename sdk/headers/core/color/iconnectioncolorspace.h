// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "core/color/colorconversion.h"
#include "core/object/iobject.h"
#include "core/types.h"

namespace VANTIX::IO {
class IDataProvider;
}  // namespace VANTIX::IO

namespace VANTIX::COLOR {

inline constexpr GUID IID_IDEVICECOLORSPACE = "A7068AC3-969D-4073-A880-6635B1BAA4AA"_guid;
inline constexpr GUID IID_IPROFILEBASEDCOLORSPACE = "5A8D73CB-0D93-4389-A231-3D6998E6F508"_guid;
inline constexpr GUID IID_ICALIBRATEDCOLORSPACE = "712AAEC2-B519-44A9-98CE-DF7F4BD1D3BC"_guid;
inline constexpr GUID IID_IINDEXEDCOLORSPACE = "BBAB42DE-761C-40FB-96F1-AF711DBF14C3"_guid;
inline constexpr GUID IID_IREGISTRATIONCOLORSPACE = "29924039-DBB9-4F3E-8C4E-C9733310923B"_guid;
inline constexpr GUID IID_INONECOLORSPACE = "C628DCAD-5D0F-456F-AC10-C6E14B15AE47"_guid;

class IConnectionColorSpace;

/// A line of pixels on its way from one space into another. All memory is borrowed.
struct LineConversion {
    /// One plane for each component, in host form; a null plane reads as zeros.
    const std::uint8_t* const* source = nullptr;
    /// 8, or 16 (native words); for a space of one component 1, 2 and 4 as well.
    std::int32_t sourceBits = 8;
    std::int32_t width = 0;
    /// Opacity that is composited over white, of `alphaBits` 1, 2, 4, 8 or 16; null: none.
    const std::uint8_t* alpha = nullptr;
    std::int32_t alphaBits = 8;
    /// One plane for each component of the space that is converted into.
    std::uint8_t* const* target = nullptr;
    /// 8 or 16.
    std::int32_t targetBits = 8;
    /// Room to work in: three floats a pixel.
    float* pcs = nullptr;
    TRenderingIntent sourceIntent{};
    TRenderingIntent targetIntent{};
};

/// A colour space of the host. It answers exactly one kind by `QueryInterface`. Values are in host
/// form: CMYK as complements of ink amounts (1 is no ink), tints as ink amounts, Lab as L a b,
/// everything else as in PDF.
class IConnectionColorSpace : public IObject {
public:
    virtual std::int32_t GetComponentCount() const = 0;

    /// Sixteen bytes that differ between different spaces; the first 32-bit word alone is unique in
    /// a process and not zero, since it becomes a resource name. Equal device spaces answer the
    /// same.
    virtual GUID GetIdentifier() const = 0;

    /// Converts one colour to the connection colour (CIE XYZ relative to D50); false when it
    /// cannot.
    virtual bool ToPCS(const float* values, float pcs[3], TRenderingIntent intent) const = 0;

    /// Converts from the connection colour into this space's components.
    virtual bool FromPCS(const float pcs[3], float* values, TRenderingIntent intent) const = 0;

    /// The initial colour: one float for each component. False when there is none or `count`
    /// differs.
    virtual bool GetDefaultValues(float* values, std::int32_t count) const = 0;

    /// X, Y, Z of the white point; false leaves the argument alone.
    virtual bool GetWhitePoint(float xyz[3]) const = 0;

    /// True for spaces that store complements of what a PostScript interpreter wants (CMYK).
    virtual bool StoresComponentsInverted() const = 0;

    /// Writes the space as a PostScript colour-space array (without a name) for `intent`.
    /// Any result but 0 means that nothing of use was written.
    virtual Status WritePostScriptArray(TRenderingIntent intent, IO::IDataProvider& out) const = 0;

    /// The profile-based form of a device or profile-based space (borrowed; a profile-based space
    /// answers itself), or null.
    virtual IConnectionColorSpace* GetProfileForm() = 0;

    /// Converts a line of `width` pixels to the connection colour: three floats a pixel. `planes`
    /// holds one line for each component, of 8-bit samples or 16-bit native words; a null plane
    /// reads as zeros. 0, or the failing status.
    virtual Status LineToPCS(const std::uint8_t* const* planes, std::int32_t width,
                             std::int32_t bits, float* pcs, TRenderingIntent intent) const = 0;

    /// Converts a line of this space into `target`, a space that colours can be converted into, by
    /// way of the connection colour. 0, or the failing status.
    virtual Status ConvertLine(const IConnectionColorSpace& target,
                               const LineConversion& line) const = 0;
};

/// DeviceGray, DeviceRGB or DeviceCMYK.
class IDeviceConnectionColorSpace : public IConnectionColorSpace {
public:
    /// "gray", "rgb " or "cmyk".
    virtual FourCC GetFamily() const = 0;
};

/// A space given by an ICC profile.
class IProfileBasedConnectionColorSpace : public IConnectionColorSpace {
public:
    /// "gray", "rgb ", "cmyk" or "clab".
    virtual FourCC GetFamily() const = 0;
    /// Description of the profile, zero-terminated UTF-8.
    virtual const char* GetProfileName() const = 0;
    /// "XYZ " or "Lab ".
    virtual FourCC GetPCSKind() const = 0;
};

/// CalGray, CalRGB or Lab.
class ICalibratedConnectionColorSpace : public IConnectionColorSpace {
public:
    /// "cgry", "crgb" or "clab".
    virtual FourCC GetFamily() const = 0;
    /// Copies at most three gammas and answers how many there are (0 when none is set).
    virtual std::int32_t GetGammas(float gammas[3]) const = 0;
    /// Nine floats in the order of a PDF /Matrix; false when there is none.
    virtual bool GetMatrix(float matrix[9]) const = 0;
    /// amin, amax, bmin, bmax of a Lab space; false for other families.
    virtual bool GetLabRange(float range[4]) const = 0;
};

/// A palette over a base space.
class IIndexedConnectionColorSpace : public IConnectionColorSpace {
public:
    /// Borrowed; null is possible in a damaged space.
    virtual IConnectionColorSpace* GetBaseSpace() const = 0;
    virtual std::int32_t GetEntryCount() const = 0;
    /// Entries x components bytes in host form (CMYK complemented), or null.
    virtual const std::uint8_t* GetLUT() const = 0;
};

/// Alternate space of a Separation that marks every plate.
class IRegistrationConnectionColorSpace : public IConnectionColorSpace {};

/// Alternate space of a Separation that marks no plate.
class INoneConnectionColorSpace : public IConnectionColorSpace {};

}  // namespace VANTIX::COLOR
