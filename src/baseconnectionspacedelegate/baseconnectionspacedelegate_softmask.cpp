// SPDX-License-Identifier: MIT
// Soft-mask images for distillers (pdfmark Reference).
#include <array>
#include <atomic>

#include "baseconnectionspacedelegate/baseconnectionspacedelegate.h"
#include "baseconnectionspacedelegate/samples.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptdatastream/formattext.h"
#include "postscriptdatastream/workbuffer.h"

namespace VANTIX::RENDERING {

namespace {

constexpr const char* kModule = "src/baseconnectionspacedelegate";

constexpr const char* kOneBitSpace =
    "[/_objdef {SoftMaskImage%i} /IsSoftMask true /ColorSpace /DeviceGray /BitsPerComponent 1 "
    "/NI pdfmark\n /DeviceGray ";
constexpr const char* kExpandedSpace =
    "[/_objdef {SoftMaskImage%i} /IsSoftMask true /ColorSpace /DeviceGray /BitsPerComponent 8 "
    "/NI pdfmark\n /DeviceGray ";
constexpr const char* kEightBitSpace =
    "\n[/_objdef {SoftMaskImage%i} /IsSoftMask true /ColorSpace /DeviceGray /BitsPerComponent 8 "
    "/NI pdfmark\n /DeviceGray";
constexpr const char* kTwelveBitSpace =
    "\n[/_objdef {SoftMaskImage%i} /IsSoftMask true /ColorSpace /DeviceGray /BitsPerComponent 12 "
    "/NI pdfmark\n /DeviceGray\n";

/// Number of the soft mask written last by any job.
std::atomic<std::int32_t> gLastSoftMask{0};

unsigned OpacityByte(float opacity) {
    return static_cast<std::uint8_t>(opacity * 255.0F);
}

/// A soft mask as it is written: `convert` makes the `bytes` of a line, or lines are written as
/// they are stored.
struct SoftMask {
    const char* space;
    std::int32_t bits;
    std::size_t bytes;
};

template <class Convert>
void WriteSoftMask(PS::IPostScriptOutputContext& out, IChannelData& alpha, std::int32_t width,
                   std::int32_t height, std::int32_t number, const SoftMask& mask,
                   const Convert& convert) {
    char space[256];
    PS::FormatText(space, sizeof space, mask.space, number);
    out.WriteImageDictionary(width, height, mask.bits, space,
                             static_cast<std::int32_t>(std::char_traits<char>::length(space)),
                             "[0 1]", false);
    PS::WorkBuffer<std::uint8_t> buffer(mask.bytes + 16);
    for (std::int32_t y = 0; y < height && buffer.Data() != nullptr; ++y) {
        const std::uint8_t* line = alpha.GetLine(y);
        if (line == nullptr) {
            LogError(kModule) << "Could not get data for line " << y
                              << " this image is going to be broken.";
            break;
        }
        out.WriteStreamData(convert(line, buffer.Data()), static_cast<std::int32_t>(mask.bytes));
    }
    out.FlushStreamData();
}

const std::uint8_t* AsStored(const std::uint8_t* line, std::uint8_t* /*buffer*/) {
    return line;
}

/// Makes bytes of samples of `Bits` bits by a table.
template <unsigned Bits>
struct Expand {
    std::size_t width;
    std::array<std::uint8_t, 1U << Bits> bytes;

    const std::uint8_t* operator()(const std::uint8_t* line, std::uint8_t* out) const {
        constexpr std::size_t kPerByte = 8 / Bits;
        for (std::size_t x = 0; x < width; ++x) {
            const std::size_t shift = 8 - Bits * (x % kPerByte + 1);
            out[x] = bytes[line[x / kPerByte] >> shift & ((1U << Bits) - 1)];
        }
        return out;
    }
};

}  // namespace

void BaseConnectionSpaceDelegate::WriteSoftMaskCompositeAlpha(const Raster& raster, float opacity) {
    PS::IPostScriptOutputContext* out = OutputContext();
    IChannelData* alpha = nullptr;
    std::int32_t depth = 0;
    for (std::int32_t i = 0; i < raster.GetExtraCount() && alpha == nullptr; ++i) {
        const IChannelDesc* channel = raster.GetExtra(i);
        if (channel == nullptr) {
            LogError(kModule) << "Expected channel description for extra channel " << i;
            return;
        }
        if (channel->GetType() == "LPHA"_cc) {
            alpha = channel->GetData();
            depth = channel->GetBits();
        }
    }
    if (alpha == nullptr) {
        LogNotice(kModule) << "There is no composite alpha channel to be output.";
        return;
    }
    if (out == nullptr || (alpha->IsFullyOpaque() && !mSoftMasks)) {
        return;
    }
    using Writer = void (BaseConnectionSpaceDelegate::*)(IChannelData*, std::int32_t, std::int32_t,
                                                         float, std::int32_t);

    struct DepthWriter {
        std::int32_t depth;
        Writer write;
    };

    constexpr DepthWriter kWriters[] = {
        {1, &BaseConnectionSpaceDelegate::Write1BitSoftMask},
        {2, &BaseConnectionSpaceDelegate::Write2BitSoftMask},
        {4, &BaseConnectionSpaceDelegate::Write4BitSoftMask},
        {8, &BaseConnectionSpaceDelegate::Write8BitSoftMask},
        {16, &BaseConnectionSpaceDelegate::Write16BitSoftMask},
    };
    for (const DepthWriter& each : kWriters) {
        if (each.depth == depth) {
            const std::int32_t number = ++gLastSoftMask;
            (this->*each.write)(alpha, raster.GetWidth(), raster.GetHeight(), opacity, number);
            out->FlushStreamData();
            out->AssociateSoftMaskImage(number);
            return;
        }
    }
    LogError(kModule) << "Depth of " << depth << " not supported.";
}

void BaseConnectionSpaceDelegate::Write1BitSoftMask(IChannelData* alpha, std::int32_t width,
                                                    std::int32_t height, float /*opacity*/,
                                                    std::int32_t maskNumber) {
    const std::size_t bytes = (static_cast<std::size_t>(width) + 7) / 8;
    WriteSoftMask(*OutputContext(), *alpha, width, height, maskNumber, {kOneBitSpace, 1, bytes},
                  AsStored);
}

void BaseConnectionSpaceDelegate::Write2BitSoftMask(IChannelData* alpha, std::int32_t width,
                                                    std::int32_t height, float opacity,
                                                    std::int32_t maskNumber) {
    const unsigned full = OpacityByte(opacity);
    Expand<2> expand{static_cast<std::size_t>(width), {}};
    expand.bytes = {0, static_cast<std::uint8_t>(full / 3), static_cast<std::uint8_t>(full / 2),
                    static_cast<std::uint8_t>(full)};
    WriteSoftMask(*OutputContext(), *alpha, width, height, maskNumber,
                  {kExpandedSpace, 8, expand.width}, expand);
}

void BaseConnectionSpaceDelegate::Write4BitSoftMask(IChannelData* alpha, std::int32_t width,
                                                    std::int32_t height, float opacity,
                                                    std::int32_t maskNumber) {
    const unsigned full = OpacityByte(opacity);
    Expand<4> expand{static_cast<std::size_t>(width), {}};
    for (unsigned sample = 0; sample < expand.bytes.size(); ++sample) {
        expand.bytes[sample] = static_cast<std::uint8_t>((sample + 1) * full / 16);
    }
    WriteSoftMask(*OutputContext(), *alpha, width, height, maskNumber,
                  {kExpandedSpace, 8, expand.width}, expand);
}

void BaseConnectionSpaceDelegate::Write8BitSoftMask(IChannelData* alpha, std::int32_t width,
                                                    std::int32_t height, float /*opacity*/,
                                                    std::int32_t maskNumber) {
    WriteSoftMask(*OutputContext(), *alpha, width, height, maskNumber,
                  {kEightBitSpace, 8, static_cast<std::size_t>(width)}, AsStored);
}

void BaseConnectionSpaceDelegate::Write16BitSoftMask(IChannelData* alpha, std::int32_t width,
                                                     std::int32_t height, float /*opacity*/,
                                                     std::int32_t maskNumber) {
    const auto count = static_cast<std::size_t>(width);
    WriteSoftMask(*OutputContext(), *alpha, width, height, maskNumber,
                  {kTwelveBitSpace, 12, Packed12Bytes(count)},
                  [count](const std::uint8_t* line, std::uint8_t* buffer) {
                      PackTo12Bits(line, count, buffer);
                      return const_cast<const std::uint8_t*>(buffer);
                  });
}

}  // namespace VANTIX::RENDERING
