// SPDX-License-Identifier: MIT
#include "baseconnectionspacedelegate/baseconnectionspacedelegate.h"
#include "core/libsupport/vlogger/logmessage.h"

namespace VANTIX::RENDERING {

namespace {

constexpr const char* kModule = "src/baseconnectionspacedelegate";

}  // namespace

void BaseConnectionSpaceDelegate::InjectRaster(GRAPHICS::IRasterComponent& /*raster*/, float /*x*/,
                                               float /*y*/, float /*width*/, float /*height*/) {
    LogError(kModule) << "Unimplemented.";
}

void BaseConnectionSpaceDelegate::InjectDeviceSpaceImage(GRAPHICS::IRasterComponent& /*raster*/,
                                                         float /*x*/, float /*y*/, float /*width*/,
                                                         float /*height*/, FourCC /*deviceKey*/) {
    LogError(kModule) << "Unimplemented.";
}

void BaseConnectionSpaceDelegate::WriteGreyscaleImage(GRAPHICS::IRasterComponent& /*raster*/,
                                                      float /*x*/, float /*y*/, float /*width*/,
                                                      float /*height*/) {
    LogError(kModule) << "Unimplemented.";
}

void BaseConnectionSpaceDelegate::InjectRGBImage(GRAPHICS::IRasterComponent& /*raster*/,
                                                 float /*x*/, float /*y*/, float /*width*/,
                                                 float /*height*/) {
    LogError(kModule) << "Unimplemented.";
}

void BaseConnectionSpaceDelegate::InjectCMYKImage(GRAPHICS::IRasterComponent& /*raster*/,
                                                  float /*x*/, float /*y*/, float /*width*/,
                                                  float /*height*/) {}

void BaseConnectionSpaceDelegate::InjectCalibratedGreyscaleImage(
    GRAPHICS::IRasterComponent& /*raster*/, float /*x*/, float /*y*/, float /*width*/,
    float /*height*/, COLOR::ICalibratedConnectionColorSpace* /*space*/) {
    LogError(kModule) << "Unimplemented.";
}

void BaseConnectionSpaceDelegate::InjectCalibratedRGBImage(
    GRAPHICS::IRasterComponent& /*raster*/, float /*x*/, float /*y*/, float /*width*/,
    float /*height*/, COLOR::ICalibratedConnectionColorSpace* /*space*/) {
    LogError(kModule) << "Unimplemented.";
}

void BaseConnectionSpaceDelegate::InjectLabImage(
    GRAPHICS::IRasterComponent& /*raster*/, float /*x*/, float /*y*/, float /*width*/,
    float /*height*/, COLOR::ICalibratedConnectionColorSpace* /*space*/) {
    LogError(kModule) << "Unimplemented.";
}

}  // namespace VANTIX::RENDERING
