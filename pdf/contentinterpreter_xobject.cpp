// SPDX-License-Identifier: MIT
#include <exception>
#include <memory>
#include <string>
#include <utility>

#include "pdf/contentinterpreter.h"
#include "pdf/imagedata.h"
#include "pdf/objects.h"

namespace VANTIX::PDF {

void ContentInterpreter::XObject(Numbers) {
    const std::optional<std::string_view> name = LastName();
    if (!name || IsHidden() || Top().isCollapsed) {
        return;
    }
    const QPDFObjectHandle object = mFrame.resources->Find("/XObject", *name);
    const std::string subtype = NameOf(Get(object, "/Subtype"));
    if (subtype.empty()) {
        mContext.reporter.Warn("missing-resource", "There is no XObject " + std::string(*name));
    } else if (!mContext.optionalContent.IsVisible(Get(object, "/OC"))) {
        return;
    } else if (subtype == "Form") {
        DrawForm(object, *mFrame.resources);
    } else if (subtype == "Image" && QPDFObjectHandle(object).isStream()) {
        PaintImage(ImageObject::FromStream(object));
    }
}

void ContentInterpreter::DrawForm(const QPDFObjectHandle& stream, Resources& resources) {
    PreparePaint();
    const OpenStreams::Mark mark(mContext.openStreams, stream);
    if (!mark.IsSet()) {
        mContext.reporter.Warn("recursion", "A form that holds itself or is nested too deep");
        return;
    }
    try {
        const std::shared_ptr<Form> form = mContext.forms.Find(stream);
        CloseTextAround(*form);
        const Path outerPath = std::exchange(mPath, Path());
        const ScopedLevel level(*this);
        if (level.IsSaved() && Concat(form->matrix)) {
            NeedsGroup(*form) ? DrawGroup(*form, resources) : DrawContent(*form, resources);
        }
        mPath = outerPath;
    } catch (const std::exception& failure) {
        mContext.reporter.Warn("damaged", failure.what());
    }
}

// Only in bad content are forms drawn within a text object, which no recording may begin in.
void ContentInterpreter::CloseTextAround(const Form& form) {
    if (mFrame.text.isOpen && mContext.keepsAlpha &&
        (OwnTransparency() | mContext.transparency.FindOf(form.stream)) != 0) {
        CloseTextObject();
    }
}

void ContentInterpreter::DrawContent(const Form& form, Resources& resources) {
    if (form.box) {
        ClipToBox(*form.box);
    }
    Play(form.content, form.resources ? *form.resources : resources);
}

void ContentInterpreter::BeginMark(Numbers) {
    ++mFrame.markDepth;
}

void ContentInterpreter::BeginMarkWithProperties(Numbers) {
    ++mFrame.markDepth;
    const std::vector<Operand>& operands = Operands();
    if (IsHidden() || operands.size() < 2 || operands[0].text != "OC" ||
        operands[1].kind != OperandKind::kName) {
        return;
    }
    const QPDFObjectHandle& group = mFrame.resources->Find("/Properties", operands[1].text);
    if (!mContext.optionalContent.IsVisible(group)) {
        mFrame.hiddenDepth = mFrame.markDepth;
    }
}

void ContentInterpreter::EndMark(Numbers) {
    if (mFrame.markDepth == 0) {
        return;
    }
    if (mFrame.hiddenDepth == mFrame.markDepth) {
        mFrame.hiddenDepth = 0;
    }
    --mFrame.markDepth;
}

void ContentInterpreter::BeginCompatibility(Numbers) {
    ++mFrame.compatibility;
}

void ContentInterpreter::EndCompatibility(Numbers) {
    mFrame.compatibility -= mFrame.compatibility > 0 ? 1 : 0;
}

}  // namespace VANTIX::PDF
