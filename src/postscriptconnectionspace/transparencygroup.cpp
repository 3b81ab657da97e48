// SPDX-License-Identifier: MIT
#include "postscriptconnectionspace/transparencygroup.h"

#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptconnectionspace/colorspacetexts.h"

namespace VANTIX::PS {

namespace {

constexpr const char* kModule = "src/postscriptconnectionspace";

/// The device space that the group's colours are blended in, or null (logged).
const char* BlendingSpaceName(COLOR::IConnectionColorSpace& space) {
    if (const auto* device = FindInterface<COLOR::IDeviceConnectionColorSpace>(
            &space, COLOR::IID_IDEVICECOLORSPACE)) {
        const char* name = DeviceSpaceName(device->GetFamily());
        if (name == nullptr) {
            LogError(kModule) << "Don't know the color key " << device->GetFamily();
        }
        return name;
    }
    const std::int32_t channels = space.GetComponentCount();
    switch (channels) {
        case 1:
            return "/DeviceGray";
        case 3:
            return "/DeviceRGB";
        case 4:
            return "/DeviceCMYK";
        default:
            LogError(kModule) << "Don't know the color space with channel count = " << channels;
            return nullptr;
    }
}

const char* BoolText(bool value) {
    return value ? "true" : "false";
}

}  // namespace

TransparencyGroup::TransparencyGroup(const char* prefix, const GRAPHICS::IGraphicsState* state,
                                     const Matrix& matrix, const Box& box, bool isolated,
                                     bool knockout, COLOR::IConnectionColorSpace* space)
    : FormObject(prefix, state, matrix, box),
      mIsolated(isolated),
      mKnockout(knockout),
      mSpace(space) {}

void TransparencyGroup::WriteBeginPicture(IPostScriptDataStream& out) const {
    TextBuffer text(0);
    AppendPageMatrix(text);
    text.Append("\n%Define the transparency group\n");
    AppendHead(text);
    text.Append("\n/Group <<");
    if (const char* space = mSpace ? BlendingSpaceName(*mSpace) : nullptr; space != nullptr) {
        text.Format("/CS %s ", space);
    }
    text.Format("/S /Transparency /K %s /I %s>> /BP pdfmark\ngsave\ninitclip\n",
                BoolText(mKnockout), BoolText(mIsolated));
    out << text.Text();
}

void TransparencyGroup::WriteEndPicture(IPostScriptDataStream& out) const {
    TextBuffer text(0);
    text.Append("\ngrestore\n[/EP pdfmark\n%%Close the transparency group\n");
    AppendPageMatrixAgain(text);
    out << text.Text();
}

void TransparencyGroup::WriteDrawPicture(IPostScriptDataStream& out) const {
    TextBuffer text(0);
    text.Append("%%Draw the transparency group\n");
    AppendPlace(text);
    if (const auto* mask = FindInterface<ISoftMaskGroup>(this, IID_ISOFTMASKGROUP)) {
        out << text.Text();
        text.Clear();
        mask->WriteExtGState(out);
    } else {
        GetCompositing().AppendTo(text);
        text.Append("/SetTransparency pdfmark\n");
    }
    AppendUse(text);
    out << text.Text();
}

}  // namespace VANTIX::PS
