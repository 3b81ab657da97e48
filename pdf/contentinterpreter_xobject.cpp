// SPDX-License-Identifier: MIT
#include <cmath>
#include <exception>
#include <limits>
#include <memory>
#include <string>
#include <utility>

#include "pdf/contentinterpreter.h"
#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace {

/// What an inline image says about the size of its data.
struct InlineImage {
    double width = 0;
    double height = 0;
    double bits = 8;
    double components = 0;
    double length = 0;
    bool isEncoded = false;

    void Read(std::string_view key, const Operand& value) {
        if (key == "W" || key == "Width") {
            width = value.number;
        } else if (key == "H" || key == "Height") {
            height = value.number;
        } else if (key == "BPC" || key == "BitsPerComponent") {
            bits = value.number;
        } else if (key == "L" || key == "Length") {
            length = value.number;
        } else if (key == "F" || key == "Filter") {
            isEncoded = value.kind == OperandKind::kName || value.extent > 0;
        } else if ((key == "IM" || key == "ImageMask") && value.text == "true") {
            bits = components = 1;
        } else if (key == "CS" || key == "ColorSpace") {
            components = ComponentsOf(value);
        }
    }

    /// 0 when only the data themselves can tell.
    [[nodiscard]] std::size_t Size() const {
        const double row = std::ceil(width * bits * components / 8.0);
        const double size = length > 0 ? length : (isEncoded ? 0.0 : row * height);
        const bool isSane = size >= 0 && size <= std::numeric_limits<std::int32_t>::max();
        return isSane ? static_cast<std::size_t>(size) : 0;
    }

private:
    static double ComponentsOf(const Operand& space) {
        if (space.kind == OperandKind::kArray || space.text == "G" || space.text == "DeviceGray") {
            return 1;  // an array can only be Indexed
        }
        if (space.text == "RGB" || space.text == "DeviceRGB") {
            return 3;
        }
        return space.text == "CMYK" || space.text == "DeviceCMYK" ? 4 : 0;
    }
};

}  // namespace

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
    } else if (subtype == "Image") {
        mContext.reporter.Warn("image", "An image is left out");
    }
}

void ContentInterpreter::DrawForm(const QPDFObjectHandle& stream, Resources& resources) {
    if (mOpenForms.size() >= kMaxFormDepth || !mOpenForms.insert(stream.getObjGen()).second) {
        mContext.reporter.Warn("recursion", "A form that holds itself or is nested too deep");
        return;
    }
    try {
        const std::shared_ptr<Form> form = mContext.forms.Find(stream);
        const Path outerPath = std::exchange(mPath, Path());
        const ScopedLevel level(*this);
        if (level.IsSaved() && EnterGroup(*form) && Concat(form->matrix)) {
            if (form->box) {
                ClipToBox(*form->box);
            }
            Play(form->content, form->resources ? *form->resources : resources);
        }
        mPath = outerPath;
    } catch (const std::exception& failure) {
        mContext.reporter.Warn("damaged", failure.what());
    }
    mOpenForms.erase(stream.getObjGen());
}

// The group as a whole takes the alpha of the moment, its content starts afresh. False when nothing
// of it would be seen.
bool ContentInterpreter::EnterGroup(const Form& form) {
    HOST::GraphicsParameters& state = State();
    if (!form.isGroup) {
        return true;
    }
    if (state.fillAlpha <= 0.0F) {
        return false;
    }
    if (form.isKnockout || state.fillAlpha < 1.0F ||
        state.blendMode != GRAPHICS::TBlendMode::kNormal) {
        mContext.reporter.Warn("transparency", "A transparency group is painted opaque");
    }
    state.fillAlpha = state.strokeAlpha = 1.0F;
    state.blendMode = GRAPHICS::TBlendMode::kNormal;
    return true;
}

void ContentInterpreter::ImageData(Numbers) {
    InlineImage image;
    const std::vector<Operand>& operands = Operands();
    for (std::size_t i = 0; i + 1 < operands.size(); i += 2 + operands[i + 1].extent) {
        if (operands[i].kind == OperandKind::kName) {
            image.Read(operands[i].text, operands[i + 1]);
        }
    }
    mFrame.parser->SkipInlineImage(image.Size());
    if (!IsHidden()) {
        mContext.reporter.Warn("image", "An image is left out");
    }
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
