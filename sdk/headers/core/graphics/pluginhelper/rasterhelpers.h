// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "core/graphics/irastercomponent.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "core/object/iclassfactory.h"

namespace VANTIX::GRAPHICS::HELPER {

/// Makes an object of `classId` in `out` (releasing what it held) and initialises it with
/// `arguments`. On failure (logged under `what`) `out` is null and the result false.
template <class T, class... Arguments>
bool CreateInitialised(IClassFactory* factory, const GUID& classId, const char* what,
                       TInterfacePtr<T>& out, Arguments... arguments) {
    out = CreateObject<T>(factory, classId);
    if (!out) {
        return false;
    }
    const Status status = out->Init(arguments...);
    if (status != STATUS::kOk) {
        LogError("sdk/headers/core/graphics/pluginhelper")
            << what << "->Init failed. Error = " << status;
        out = nullptr;
    }
    return status == STATUS::kOk;
}

/// A raster, initialised with the arguments in their order.
inline bool CreateRasterComponent(IClassFactory* factory, COLOR::IConnectionColorSpace* space,
                                  std::int32_t width, std::int32_t height, std::int8_t bits,
                                  float xResolution, float yResolution,
                                  std::uint8_t channelSettings, std::int32_t flags,
                                  TInterfacePtr<IRasterComponent>& out) {
    return CreateInitialised(factory, CLSID_RASTERCOMPONENT, "rasterComponent", out, space, width,
                             height, bits, xResolution, yResolution, channelSettings, flags);
}

/// The samples of one channel, all zero.
inline bool CreateChannelData(IClassFactory* factory, std::int32_t width, std::int32_t height,
                              std::int32_t bits, std::int32_t lineBytes,
                              TInterfacePtr<IChannelData>& out) {
    return CreateInitialised(factory, CLSID_CHANNELDATA, "channelData", out, width, height, bits,
                             lineBytes);
}

/// A channel descriptor of `type` ("SPOT", …) without data.
inline bool CreateChannelDesc(IClassFactory* factory, FourCC type, std::int32_t index,
                              std::int8_t bits, std::int32_t width, std::int32_t height,
                              float opacity, TInterfacePtr<IChannelDesc>& out) {
    return CreateInitialised(factory, CLSID_CHANNELDESC, "channelDesc", out, type, index, bits,
                             width, height, opacity);
}

}  // namespace VANTIX::GRAPHICS::HELPER
