// SPDX-License-Identifier: MIT
#include <algorithm>

#include "baseconnectionspacedelegate/palettes.h"
#include "core/graphics/pluginhelper/colorhelpers.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptdatastream/formattext.h"
#include "privatecmykcompositeconnectionspacedelegate/privatecmykcompositeconnectionspacedelegate.h"

namespace VANTIX::RENDERING {

namespace {

using COLOR::IConnectionColorSpace;
using GRAPHICS::HELPER::GetOwnFamily;

constexpr const char* kModule = "src/privatecmykcompositeconnectionspacedelegate";

/// Black ink that has the luminance of a colour.
void WriteBlack(const std::uint8_t* color, char* digits, std::size_t size) {
    PS::FormatText(digits, size, "000000%02X",
                   255 - BlackOf(color[0], color[1], color[2], color[3]));
}

constexpr ProcessModel kModel{"cmyk"_cc,
                              kModule,
                              "/DeviceCMYK",
                              "[1 0 1 0 1 0 1 0]",
                              &COLOR::IConnectionColorSpaceFactory::CreateDeviceCMYKColorSpace,
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

bool PrivateCMYKCompositeConnectionSpaceDelegate::SetColor(const float* values, std::int32_t count,
                                                           bool fill) {
    PS::IPostScriptOutputContext* out = OutputContext();
    if (out == nullptr || values == nullptr || count <= 0) {
        return false;
    }
    IConnectionColorSpace* source = CurrentColorSpace(fill);
    ColorValues color;
    color.count = 4;
    if (source == nullptr) {
        if (count > 1) {
            LogError(kModule) << "There is no current fill colorspace and the valueCount received "
                                 "is > 1 (expecting a default fill colorspace of /DeviceGray.";
            return false;
        }
        color.values[3] = 1 - values[0];
        out->SetColor(color.values, color.count);
        return true;
    }
    if (SetPlateSelection(source, values)) {
        return true;
    }
    const FourCC family = GetOwnFamily(source);
    if (family == "cmyk"_cc && count == 4) {
        std::copy_n(values, 4, color.values);
        color.Complement();
    } else if (family == "gray"_cc && count == 1 && !mPromoteGray) {
        color = {{values[0]}, 1};
    } else if (family == "gray"_cc && count == 1 && mDestination) {
        const auto inks = ConvertByHost(*source, *mDestination, values, count,
                                        RenderingIntents(COLOR::TRenderingIntent::kPerceptual));
        if (!inks || inks->count != 4) {
            return false;
        }
        const auto& v = inks->values;
        color.values[3] = 1 - (0.3F * v[0] + 0.59F * v[1] + 0.11F * v[2]) * v[3];
    } else {
        return SetColorWithConversion(source, mDestination.Get(), values, count);
    }
    out->SetColor(color.values, color.count);
    return true;
}

}  // namespace VANTIX::RENDERING
