// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "baseconnectionspacedelegate/names.h"
#include "baseconnectionspacedelegate/palettes.h"
#include "core/color/iconnectioncolorspace.h"
#include "core/graphics/irastercomponent.h"
#include "postscriptdatastream/workbuffer.h"

namespace VANTIX::RENDERING {

/// What is logged when memory cannot be had: `before`, the number of bytes, `after`; or `before`
/// alone.
struct BufferMessage {
    const char* before;
    const char* after = " bytes required.";

    void Log(const char* module, std::size_t bytes) const;
};

/// The lines of a raster as planes of another space: each line of a channel is fetched once and
/// converted by the host. Its memory serves all lines of an image.
class ConvertedLines {
public:
    /// Planes of gray, RGB or CMYK.
    static constexpr std::size_t kMostPlanes = 4;

    using Planes = std::array<const std::uint8_t*, kMostPlanes>;

    /// Into planes of `bits` 8 or 16 of `target`. `withAlpha` composites the raster's alpha channel
    /// over white. Raster and space are borrowed.
    ConvertedLines(const Raster& raster, const IConnectionColorSpace& target, std::int32_t bits,
                   const IntentPair& intents, bool withAlpha);

    /// False (logged in the name of `module`) when there is too little memory, a space has too many
    /// components, or a primary that is there has no data: nothing may be converted.
    [[nodiscard]] bool IsReady(const char* module, const BufferMessage& planes,
                               const BufferMessage& pcs);

    /// The planes of line `y`, valid until the next call. 0, or the failing status of the host; 1
    /// when a channel has no such line.
    Status Convert(std::int32_t y, Planes& planes);

private:
    static constexpr std::size_t kMostSources = COLOR::kMaxComponents;

    void Gather(const Raster& raster);

    const IConnectionColorSpace* mSource;
    const IConnectionColorSpace* mTarget;
    COLOR::LineConversion mLine;
    std::size_t mSourceCount;
    std::size_t mPlaneCount;
    std::size_t mPlaneBytes;
    std::array<IChannelData*, kMostSources> mChannels{};  // null: absent
    bool mIsComplete = true;
    IChannelData* mAlpha = nullptr;
    PS::WorkBuffer<std::uint8_t> mPlanes;
    PS::WorkBuffer<std::uint8_t> mBlank;  // a line of an absent channel
    PS::WorkBuffer<float> mPcs;
};

}  // namespace VANTIX::RENDERING
