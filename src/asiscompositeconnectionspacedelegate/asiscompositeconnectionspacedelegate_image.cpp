// SPDX-License-Identifier: MIT
#include "asiscompositeconnectionspacedelegate/asiscompositeconnectionspacedelegate.h"
#include "core/libsupport/vlogger/logmessage.h"

namespace VANTIX::RENDERING {

namespace {

constexpr const char* kModule = "src/asiscompositeconnectionspacedelegate";

}  // namespace

void AsIsCompositeConnectionSpaceDelegate::Image(GRAPHICS::IRasterComponent& /*raster*/,
                                                 float /*x*/, float /*y*/, float /*width*/,
                                                 float /*height*/) {
    LogError(kModule) << "Unimplemented.";
}

void AsIsCompositeConnectionSpaceDelegate::InjectIndexedImage(
    GRAPHICS::IRasterComponent& /*raster*/, float /*x*/, float /*y*/, float /*width*/,
    float /*height*/, COLOR::IIndexedConnectionColorSpace* /*indexed*/) {
    LogError(kModule) << "Unimplemented.";
}

void AsIsCompositeConnectionSpaceDelegate::WriteGreyscaleImage(GRAPHICS::IRasterComponent& raster,
                                                               float x, float y, float width,
                                                               float height) {
    BaseConnectionSpaceDelegate::WriteGreyscaleImage(raster, x, y, width, height);
}

}  // namespace VANTIX::RENDERING
