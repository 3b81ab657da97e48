// SPDX-License-Identifier: MIT
// Soft-mask dictionaries (PDF Reference, 7.5.4).
#include "postscriptconnectionspace/softmaskgroup.h"

#include <algorithm>

#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptconnectionspace/functions.h"

namespace VANTIX::PS {

namespace {

constexpr const char* kModule = "src/postscriptconnectionspace";

constexpr std::uint64_t kMostBackdropValues = 16;
/// Room for the procedure of a transfer function.
constexpr std::size_t kProcedureBytes = 8192;

/// The body of the procedure for `function`; empty where there is none.
std::string ProcedureOf(const COLOR::IColorFunction* function) {
    if (function == nullptr) {
        return {};
    }
    if (function->GetInputCount() != 1 || function->GetOutputCount() != 1) {
        LogError(kModule) << "The transfer function of a soft mask is not one of one value.";
        return {};
    }
    TextBuffer text(0);
    return AppendLevel2Procedure(*function, text, kProcedureBytes) ? std::string(text.View())
                                                                   : std::string();
}

}  // namespace

SoftMaskGroup::SoftMaskGroup(const FormObject& group, const COLOR::IColorFunction* transfer,
                             const COLOR::IConnectionColorSpace* space, const float* backdrop,
                             std::uint64_t count, Type type)
    : mCompositing(group.GetCompositing()),
      mGroupName(group.GetName()),
      mType(type),
      mTransfer(ProcedureOf(transfer)) {
    if (space == nullptr) {
        LogNotice(kModule) << "Failed to get default color space of SoftMask!";
    }
    TakeBackdrop(space, backdrop, count);
    if (space != nullptr && space->StoresComponentsInverted()) {
        for (float& value : mBackdrop) {
            value = 1 - value;
        }
    }
}

void SoftMaskGroup::TakeBackdrop(const COLOR::IConnectionColorSpace* space, const float* backdrop,
                                 std::uint64_t count) {
    if (backdrop != nullptr) {
        if (count > kMostBackdropValues) {
            LogNotice(kModule) << "VANTIX::PS::SoftMaskGroup::SoftMaskGroup Incoming background "
                                  "colourvalues have been truncated from "
                               << count << " to " << kMostBackdropValues;
        }
        mBackdrop.assign(backdrop, backdrop + std::min(count, kMostBackdropValues));
        return;
    }
    const std::int32_t components = space == nullptr ? 0 : space->GetComponentCount();
    if (components <= 0 || components > static_cast<std::int32_t>(kMostBackdropValues)) {
        return;
    }
    mBackdrop.resize(static_cast<std::size_t>(components));
    if (!space->GetDefaultValues(mBackdrop.data(), components)) {
        LogError(kModule) << "Failed to get default values of the color space";
        mBackdrop.clear();
    }
}

void SoftMaskGroup::AppendMask(TextBuffer& text) const {
    if (mType != Type::kLuminosity) {
        text.Format("/SMask <</S /Alpha /G {%s} ", mGroupName.c_str());
        return;
    }
    text.Format("/SMask <</S /Luminosity /G {%s} ", mGroupName.c_str());
    if (!mBackdrop.empty()) {
        text.Append("/BC [ ");
        for (const float value : mBackdrop) {
            text.Format("%.8g ", value);
        }
        text.Append("] ");
    }
}

void SoftMaskGroup::WriteExtGState(IPostScriptDataStream& out) const {
    TextBuffer text(0);
    text.Append(
        "%%SET THE EXT_GSTATE\n"
        "product (Jaws PDF Creator) eq\n{\n"
        " %%Till JAWS Fixes Support Call 6009\n"
        " ");
    mCompositing.AppendTo(text);
    AppendMask(text);
    text.Append(" >> /SetTransparency pdfmark\n");
    out << text.Text();

    text.Clear();
    text.Append("}\n{\n ");
    mCompositing.AppendTo(text);
    AppendMask(text);
    if (!mTransfer.empty()) {
        text.Append("/TR {");
        text.Append(mTransfer);
        text.Append("} ");
    }
    text.Append(" >> /SetTransparency pdfmark\n} ifelse\n");
    out << text.Text();
}

}  // namespace VANTIX::PS
