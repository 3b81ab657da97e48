// SPDX-License-Identifier: MIT
#include <algorithm>

#include "baseconnectionspacedelegate/palettes.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptdatastream/formattext.h"
#include "privatecmykcompositeconnectionspacedelegate/privatecmykcompositeconnectionspacedelegate.h"

namespace VANTIX::RENDERING {

namespace {

constexpr const char* kModule = "src/privatecmykcompositeconnectionspacedelegate";

/// Black ink that has the luminance of a colour.
void WriteBlack(const std::uint8_t* color, char* digits, std::size_t size) {
    PS::FormatText(digits, size, "000000%02X",
                   255 - BlackOf(color[0], color[1], color[2], color[3]));
}

constexpr const char* kNoSpace =
    "There is no current fill colorspace and the valueCount received is > 1 (expecting a default "
    "fill colorspace of /DeviceGray.";

constexpr ProcessModel kModel{"cmyk"_cc,
                              kModule,
                              "/DeviceCMYK",
                              "[1 0 1 0 1 0 1 0]",
                              &COLOR::IConnectionColorSpaceFactory::CreateDeviceCMYKColorSpace,
                              kNoSpace,
                              kNoSpace,
                              "[/Indexed /DeviceCMYK 1 <000000FF 00000000>]\n",
                              WriteBlack};

}  // namespace

PrivateCMYKCompositeConnectionSpaceDelegate::PrivateCMYKCompositeConnectionSpaceDelegate(
    IClassFactory& factory, IConnectionColorSpace* destination, std::uint32_t options)
    : ProcessConnectionSpaceDelegate(factory, destination, options, kModel) {}

bool PrivateCMYKCompositeConnectionSpaceDelegate::SetUncoloredPattern(
    const char* patternName, IConnectionColorSpace* underlying, bool fill) {
    if (underlying == nullptr) {
        LogError(kModule) << "Underlying colorspace of pattern color space can't be NULL!!!";
        return false;
    }
    return mDestination &&
           BaseConnectionSpaceDelegate::SetUncoloredPattern(patternName, underlying, fill);
}

std::optional<ColorValues> PrivateCMYKCompositeConnectionSpaceDelegate::KeptColor(
    IConnectionColorSpace* source, const float* values, std::int32_t count) const {
    const FourCC family = source == nullptr ? 0 : GetOwnFamily(source);
    ColorValues color;
    color.count = 4;
    if (source == nullptr) {
        color.values[3] = 1 - values[0];
        return color;
    }
    if (family == "cmyk"_cc && count == 4) {
        std::copy_n(values, 4, color.values);
        color.Complement();
        return color;
    }
    if (family != "gray"_cc || count != 1) {
        return std::nullopt;
    }
    if (!mPromoteGray) {
        return ColorValues{{values[0]}, 1};
    }
    const auto inks = mDestination ? ConvertByHost(*source, *mDestination, values, count,
                                                   RenderingIntents(TRenderingIntent::kPerceptual))
                                   : std::nullopt;
    if (!inks || inks->count != 4) {
        return std::nullopt;
    }
    const auto& v = inks->values;
    color.values[3] = 1 - (0.3F * v[0] + 0.59F * v[1] + 0.11F * v[2]) * v[3];
    return color;
}

}  // namespace VANTIX::RENDERING
