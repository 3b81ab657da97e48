// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "core/color/ispotcolorspaces.h"
#include "core/object/iobject.h"
#include "core/types.h"

namespace VANTIX::GRAPHICS {

inline constexpr GUID CLSID_RASTERCOMPONENT = "68631203-F4AC-4C99-9FAD-F04EDE71F974"_guid;
inline constexpr GUID CLSID_CHANNELDATA = "C9E209F6-738A-4E9E-A87D-1C6D06B51FCC"_guid;
inline constexpr GUID CLSID_CHANNELDESC = "DF3792F2-A1C4-4827-A0A8-EE9B0075924E"_guid;
inline constexpr GUID CLSID_SWIZZLESERVICES = "C5647E32-9E6F-483C-B2CC-61ED1356B1BC"_guid;

/// The samples of one channel: one plane, most significant bit first within a byte, 16-bit samples
/// as native words. CMYK and, beside primaries, spot samples are complements of ink amounts.
class IChannelData : public IObject {
public:
    /// All zero on success. `lineBytes` is at least (width x bits + 7) / 8.
    virtual Status Init(std::int32_t width, std::int32_t height, std::int32_t bits,
                        std::int32_t lineBytes) = 0;
    /// Line `y`, top first (borrowed until the next call), or null when it is missing.
    virtual const std::uint8_t* GetLine(std::int32_t y) = 0;
    virtual std::int32_t GetLineBytes() const = 0;
    virtual Status SetLine(std::int32_t y, const std::uint8_t* line) = 0;
    /// True when an alpha channel needs no mask.
    virtual bool IsFullyOpaque() const = 0;
};

/// What a channel is: a primary of the raster's space, a spot plate ("SPOT") or alpha ("LPHA").
class IChannelDesc : public IObject {
public:
    virtual Status Init(FourCC type, std::int32_t index, std::int8_t bits, std::int32_t width,
                        std::int32_t height, float opacity) = 0;
    virtual FourCC GetType() const = 0;
    virtual std::int32_t GetBits() const = 0;
    virtual float GetOpacity() const = 0;
    /// Borrowed, or null.
    virtual COLOR::ISeparationConnectionColorSpace* GetSeparationSpace() const = 0;
    virtual void SetSeparationSpace(COLOR::ISeparationConnectionColorSpace* space) = 0;
    /// Borrowed, or null.
    virtual IChannelData* GetData() const = 0;
    virtual void SetData(IChannelData* data) = 0;
};

/// A picture: planes of samples in a colour space, with extra channels for spot plates and alpha.
class IRasterComponent : public IObject {
public:
    /// Makes primaries for the components of `space`, with memory of their own, all samples zero.
    /// Resolutions are in pixels per inch (0: unknown). `channelSettings` 1 leaves the primaries
    /// out; `flags` must be 0.
    virtual Status Init(COLOR::IConnectionColorSpace* space, std::int32_t width,
                        std::int32_t height, std::int8_t bits, float xResolution, float yResolution,
                        std::uint8_t channelSettings, std::int32_t flags) = 0;
    virtual std::int32_t GetWidth() const = 0;
    virtual std::int32_t GetHeight() const = 0;
    /// 1, 2, 4, 8 or 16.
    virtual std::int32_t GetBitsPerSample() const = 0;
    virtual COLOR::IConnectionColorSpace* GetColorSpace() const = 0;
    virtual std::int32_t GetPrimaryCount() const = 0;
    virtual IChannelDesc* GetPrimary(std::int32_t index) const = 0;
    virtual std::int32_t GetExtraCount() const = 0;
    virtual IChannelDesc* GetExtra(std::int32_t index) const = 0;
    virtual Status AddExtra(IChannelDesc* channel) = 0;
    /// Bit i set: primary i is present. False: no mask, all are.
    virtual bool GetChannelMask(std::uint64_t& mask) const = 0;
};

/// Interleaving of planar 8-bit lines. Each plane and the output hold the stated number of bytes.
class ISwizzleServices : public IObject {
public:
    virtual void Interleave3(std::int32_t width, std::int32_t step, const std::uint8_t* plane0,
                             const std::uint8_t* plane1, const std::uint8_t* plane2,
                             std::int32_t planeBytes, std::uint8_t* out, std::int32_t outBytes) = 0;
    virtual void Interleave4(std::int32_t width, std::int32_t step, const std::uint8_t* plane0,
                             const std::uint8_t* plane1, const std::uint8_t* plane2,
                             const std::uint8_t* plane3, std::int32_t planeBytes, std::uint8_t* out,
                             std::int32_t outBytes) = 0;
};

}  // namespace VANTIX::GRAPHICS
