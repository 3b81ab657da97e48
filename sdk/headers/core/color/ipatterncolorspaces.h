// SPDX-License-Identifier: MIT
#pragma once

#include "core/color/icolorfunction.h"
#include "core/color/iconnectioncolorspace.h"

namespace VANTIX::GRAPHICS {
class IGraphic;
}  // namespace VANTIX::GRAPHICS

namespace VANTIX::COLOR {

inline constexpr GUID IID_ISHADINGPATTERNCOLORSPACE = "1D786DF4-A0A3-458B-A0CD-C673B93D104A"_guid;
inline constexpr GUID IID_ITILEPATTERNCOLORSPACE = "0F70DD3E-11A0-47D1-87DA-1AC7B8A7EBED"_guid;
inline constexpr GUID IID_IFUNCTIONSHADING = "9160490D-63D2-4DEC-9C0D-4433FE10C71D"_guid;
inline constexpr GUID IID_IAXIALSHADING = "E56ACF9E-3981-409D-BE31-E20BCCD78BCC"_guid;
inline constexpr GUID IID_IRADIALSHADING = "1A7DBB67-EAF7-4601-AD38-C3DC368F0E86"_guid;
inline constexpr GUID IID_IFREEFORMMESHSHADING = "5CA5D3BB-878B-4BCD-90EB-52FCDB003214"_guid;
inline constexpr GUID IID_ILATTICEMESHSHADING = "233FE24D-CECD-48D8-8DB6-E9EFF9CE6DC5"_guid;
inline constexpr GUID IID_ITENSORSHADING = "F500B5FD-3D43-43E5-91F0-0DF241BFEB07"_guid;
/// Answered by a tensor shading whose data are Coons patches.
inline constexpr GUID IID_ICOONSPATCHMARKER = "D86DB5A7-169D-4632-9CB4-78E934B5B617"_guid;

/// A tiling pattern (PatternType 1).
class IPatternConnectionColorSpace : public IConnectionColorSpace {
public:
    /// What one cell paints (borrowed), or null.
    virtual const GRAPHICS::IGraphic* GetPaintProc() const = 0;
    /// 1 coloured, 2 uncoloured.
    virtual std::int32_t GetPaintType() const = 0;
    virtual std::int32_t GetTilingType() const = 0;
    virtual void GetBounds(float& x, float& y, float& width, float& height) const = 0;
    virtual float GetXStep() const = 0;
    virtual float GetYStep() const = 0;
    virtual void GetMatrix(float matrix[6]) const = 0;
    /// Space of an uncoloured pattern's colour (borrowed), or null.
    virtual IConnectionColorSpace* GetUnderlyingSpace() const = 0;
};

/// A shading with a matrix (PatternType 2).
class IShadingPatternConnectionColorSpace : public IConnectionColorSpace {
public:
    virtual IConnectionColorSpace* GetShading() const = 0;
    virtual void GetMatrix(float matrix[6]) const = 0;
};

/// What all seven shading types have (PDF Reference, 4.6.3).
class IShadingColorSpace : public IConnectionColorSpace {
public:
    /// Borrowed, or null.
    virtual IConnectionColorSpace* GetShadingSpace() const = 0;
    /// Borrowed, or null.
    virtual const IColorFunction* GetFunction() const = 0;
    /// Values in host form and their count in `count`; null without a background.
    virtual const float* GetBackground(std::int32_t& count) const = 0;
    /// x0 y0 x1 y1; false without one.
    virtual bool GetBoundingBox(float box[4]) const = 0;
};

/// ShadingType 1.
class IFunctionShadingColorSpace : public IShadingColorSpace {
public:
    virtual void GetDomain(float domain[4]) const = 0;
    virtual void GetMatrix(float matrix[6]) const = 0;
};

/// ShadingType 2: coordinates x0 y0 x1 y1.
class IAxialShadingPatternColorSpace : public IShadingColorSpace {
public:
    virtual void GetDomain(float domain[2]) const = 0;
    virtual void GetExtend(bool& start, bool& end) const = 0;
    virtual void GetCoordinates(float coordinates[4]) const = 0;
};

/// ShadingType 3: coordinates x0 y0 r0 x1 y1 r1.
class IRadialShadingPatternColorSpace : public IShadingColorSpace {
public:
    virtual void GetDomain(float domain[2]) const = 0;
    virtual void GetExtend(bool& start, bool& end) const = 0;
    virtual void GetCoordinates(float coordinates[6]) const = 0;
};

/// What the mesh shadings (types 4 to 7) have besides.
class IMeshShadingColorSpace : public IShadingColorSpace {
public:
    /// The mesh as in a PDF stream (colours in PDF form); its size in `size`.
    virtual const std::uint8_t* GetMeshData(std::int32_t& size) const = 0;
    /// The mesh with its colours converted. With a null `out` gives the size in `*size`.
    virtual bool ConvertMeshData(const IConnectionColorSpace& destination, TRenderingIntent first,
                                 TRenderingIntent second, std::uint8_t* out,
                                 std::int32_t* size) const = 0;
    virtual std::int32_t GetBitsPerFlag() const = 0;
    virtual std::int32_t GetBitsPerCoordinate() const = 0;
    virtual std::int32_t GetBitsPerComponent() const = 0;
    virtual const float* GetDecode(std::int32_t& count) const = 0;
};

/// ShadingType 4.
class IFreeFormTriangleMeshesShadingColorSpace : public IMeshShadingColorSpace {};

/// ShadingType 5.
class ILatticeFormTriangleMeshesShadingColorSpace : public IMeshShadingColorSpace {
public:
    virtual std::int32_t GetVerticesPerRow() const = 0;
};

/// ShadingType 7, or 6 where it also answers `IID_ICOONSPATCHMARKER`.
class ITensorShadingPatternColorSpace : public IMeshShadingColorSpace {};

}  // namespace VANTIX::COLOR
