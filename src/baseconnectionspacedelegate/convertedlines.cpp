// SPDX-License-Identifier: MIT
#include "baseconnectionspacedelegate/convertedlines.h"

#include <algorithm>

#include "baseconnectionspacedelegate/channels.h"
#include "core/libsupport/vlogger/logmessage.h"

namespace VANTIX::RENDERING {

namespace {

constexpr std::size_t kSlack = 16;

std::size_t LineBytes(std::int32_t width, std::int32_t bits) {
    return (static_cast<std::size_t>(width) * static_cast<std::size_t>(bits) + 7) / 8;
}

}  // namespace

void BufferMessage::Log(const char* module, std::size_t bytes) const {
    LogMessage message = LogError(module);
    message << before;
    if (after != nullptr) {
        message << bytes << after;
    }
}

ConvertedLines::ConvertedLines(const Raster& raster, const IConnectionColorSpace& target,
                               std::int32_t bits, const IntentPair& intents, bool withAlpha)
    : mSource(raster.GetColorSpace()),
      mTarget(&target),
      mSourceCount(static_cast<std::size_t>(raster.GetPrimaryCount())),
      mPlaneCount(static_cast<std::size_t>(target.GetComponentCount())),
      mPlaneBytes(LineBytes(raster.GetWidth(), bits)),
      mPlanes(mPlaneBytes * mPlaneCount + kSlack),
      mBlank(LineBytes(raster.GetWidth(), raster.GetBitsPerSample())),
      mPcs(3 * static_cast<std::size_t>(raster.GetWidth())) {
    mLine.sourceBits = raster.GetBitsPerSample();
    mLine.width = raster.GetWidth();
    mLine.targetBits = bits;
    mLine.sourceIntent = intents.first;
    mLine.targetIntent = intents.second;
    Gather(raster);
    const IChannelDesc* alpha = withAlpha ? AlphaChannel(raster) : nullptr;
    if (alpha != nullptr && alpha->GetData() != nullptr && !alpha->GetData()->IsFullyOpaque()) {
        mAlpha = alpha->GetData();
        mLine.alphaBits = alpha->GetBits();
    }
}

void ConvertedLines::Gather(const Raster& raster) {
    for (std::size_t i = 0; i < std::min(mSourceCount, kMostSources); ++i) {
        const auto index = static_cast<std::int32_t>(i);
        mChannels[i] = ProcessData(raster, index);
        mIsComplete = mIsComplete && (mChannels[i] != nullptr || IsMaskedOut(raster, index));
    }
    // Absent inks leave the paper white, absent light is dark.
    if (mBlank.Data() != nullptr) {
        std::fill_n(mBlank.Data(), mBlank.Size(),
                    static_cast<std::uint8_t>(mSourceCount == 4 ? 0xFF : 0));
    }
}

bool ConvertedLines::IsReady(const char* module, const BufferMessage& planes,
                             const BufferMessage& pcs) {
    if (mPlanes.Data() == nullptr || mBlank.Data() == nullptr) {
        planes.Log(module, mPlanes.Size());
        return false;
    }
    if (mPcs.Data() == nullptr) {
        pcs.Log(module, mPcs.Size() * sizeof(float));
        return false;
    }
    if (mSourceCount > 1 && mLine.sourceBits < 8) {
        LogError(module) << "Don't support a bit depth of " << mLine.sourceBits;
        return false;
    }
    const bool fits = mSource != nullptr && mIsComplete && mPlaneCount <= kMostPlanes &&
                      mSourceCount <= kMostSources &&
                      mSource->GetComponentCount() == static_cast<std::int32_t>(mSourceCount);
    if (!fits) {
        LogError(module) << "No Primary channel data.";
    }
    return fits;
}

Status ConvertedLines::Convert(std::int32_t y, Planes& planes) {
    std::array<const std::uint8_t*, kMostSources> sources{};
    std::array<std::uint8_t*, kMostPlanes> targets{};
    for (std::size_t i = 0; i < mSourceCount; ++i) {
        sources[i] = mChannels[i] == nullptr ? mBlank.Data() : mChannels[i]->GetLine(y);
        if (sources[i] == nullptr) {
            return STATUS::kInvalidArgument;
        }
    }
    for (std::size_t i = 0; i < mPlaneCount; ++i) {
        targets[i] = mPlanes.Data() + i * mPlaneBytes;
        planes[i] = targets[i];
    }
    mLine.source = sources.data();
    mLine.target = targets.data();
    mLine.pcs = mPcs.Data();
    mLine.alpha = mAlpha == nullptr ? nullptr : mAlpha->GetLine(y);
    return mSource->ConvertLine(*mTarget, mLine);
}

}  // namespace VANTIX::RENDERING
