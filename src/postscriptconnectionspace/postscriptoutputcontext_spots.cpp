// SPDX-License-Identifier: MIT
#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptconnectionspace/colorspacetexts.h"
#include "postscriptconnectionspace/postscriptoutputcontext.h"
#include "postscriptconnectionspace/spotnames.h"

namespace VANTIX::PS {

namespace {

std::string_view OrAll(std::string_view colorant) {
    return colorant.empty() ? "All" : colorant;
}

void AppendHead(TextBuffer& text, const char* name) {
    text.Append("\n");
    if (name != nullptr) {
        text.Append("/");
        text.Append(name);
    }
}

void AppendTail(TextBuffer& text, const char* name, const char* setColorSpace) {
    text.Append(name == nullptr ? "]\n" : "] def\n");
    if (*setColorSpace != 0) {
        text.Append(name == nullptr ? "" : name);
        text.Append(setColorSpace);
    }
    text.Append("\n");
}

void LogMissingName(std::int32_t index) {
    LogError("src/postscriptconnectionspace")
        << "Could not prepare colour name " << index << " for DeviceN colorspace";
}

/// The alternate that takes the place of a DeviceN space.
void AppendSubstitute(TextBuffer& text, COLOR::IConnectionColorSpace* alternate) {
    if (alternate == nullptr) {
        LogError("src/postscriptconnectionspace")
            << "DeviceN color space is not well formed. Must have an alternate colour space to "
               "function correctly.";
        return;
    }
    const WhitePoint white = WhitePointOf(*alternate);
    const auto* device =
        FindInterface<COLOR::IDeviceConnectionColorSpace>(alternate, COLOR::IID_IDEVICECOLORSPACE);
    const auto* calibrated = FindInterface<COLOR::ICalibratedConnectionColorSpace>(
        alternate, COLOR::IID_ICALIBRATEDCOLORSPACE);
    const char* name = device == nullptr ? nullptr : DeviceSpaceName(device->GetFamily());
    const FourCC family = calibrated == nullptr ? FourCC{0} : calibrated->GetFamily();
    if (name != nullptr) {
        text.Append(name);
    } else if (family == "crgb"_cc) {
        AppendCalibratedRGB(text, *calibrated, white, "\n");
    } else if (family == "cgry"_cc) {
        AppendCalibratedGray(text, white);
    } else if (family == "clab"_cc) {
        AppendLab(text, white, "\n");
    } else {
        LogError("src/postscriptconnectionspace")
            << "Do not support this colorspace in DeviceN substitution.";
    }
}

}  // namespace

void PostScriptOutputContext::WriteSeparationColorSpace(
    const char* name, std::string_view colorant, COLOR::ISeparationConnectionColorSpace& space,
    bool setColorSpace, bool colourManaged) {
    mText.Clear();
    AppendHead(mText, name);
    mText.Append(" [/Separation ");
    mText.AppendString(OrAll(colorant));
    AppendAlternateAndTint(mText, space.GetAlternateSpace(), space.GetTintFunction(),
                           colourManaged);
    AppendTail(mText, name, setColorSpace ? " setcolorspace" : "");
    WriteText(mText.View());
}

void PostScriptOutputContext::WriteDeviceNColorSpace(const char* name,
                                                     COLOR::IDeviceNConnectionColorSpace& space,
                                                     bool setColorSpace, bool colourManaged) {
    mText.Clear();
    AppendHead(mText, name);
    mText.Append("[/DeviceN [");
    for (std::int32_t i = 0; i < space.GetColorantCount(); ++i) {
        const auto colorant = UTF8Of(space.GetColorantName(i));
        if (!colorant) {
            LogMissingName(i);
        }
        // A nameless colorant keeps its place, so that the tints still fit the procedure.
        mText.AppendString(colorant.value_or(""));
    }
    mText.Append("]");
    AppendAlternateAndTint(mText, space.GetAlternateSpace(), space.GetTintFunction(),
                           colourManaged);
    AppendTail(mText, name, setColorSpace ? " setcolorspace " : "");
    WriteText(mText.View());
}

std::int32_t PostScriptOutputContext::WriteSeparationSpaceToBuffer(
    COLOR::ISeparationConnectionColorSpace* space, char* buffer, std::int32_t size,
    bool colourManaged) {
    TextBuffer text;
    if (space != nullptr) {
        text.Append("[\n/Separation ");
        text.AppendString(OrAll(ColorantOf(*space)));
        text.Append(" \n");
        AppendAlternateAndTint(text, space->GetAlternateSpace(), space->GetTintFunction(),
                               colourManaged);
        text.Append("]");
    }
    return text.CopyTo(buffer, size);
}

std::int32_t PostScriptOutputContext::WriteDeviceNSpaceToBuffer(
    COLOR::IDeviceNConnectionColorSpace* space, char* buffer, std::int32_t size, bool substitute,
    std::int32_t& componentCount, bool colourManaged) {
    componentCount = -1;
    TextBuffer text;
    if (space == nullptr) {
        return text.CopyTo(buffer, size);
    }
    if (substitute) {
        AppendSubstitute(text, space->GetAlternateSpace());
    } else if (space->GetColorantCount() > 0) {
        AppendDeviceNWithNames(text, *space, colourManaged);
    } else {
        AppendDeviceNWithInks(text, *space, colourManaged);
    }
    return text.CopyTo(buffer, size);
}

void PostScriptOutputContext::AppendDeviceNWithNames(TextBuffer& text,
                                                     COLOR::IDeviceNConnectionColorSpace& space,
                                                     bool colourManaged) {
    text.Append("[\n/DeviceN [\n");
    for (std::int32_t i = 0; i < space.GetColorantCount(); ++i) {
        const auto colorant = UTF8Of(space.GetColorantName(i));
        if (!colorant) {
            LogMissingName(i);
            return;
        }
        text.AppendString(*colorant);
        text.Append("\n");
    }
    text.Append("]\n");
    AppendAlternateAndTint(text, space.GetAlternateSpace(), space.GetTintFunction(), colourManaged);
    text.Append("]");
}

}  // namespace VANTIX::PS
