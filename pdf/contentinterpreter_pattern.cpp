// SPDX-License-Identifier: MIT
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "pdf/contentinterpreter.h"
#include "pdf/objects.h"

namespace VANTIX::PDF {

void ContentInterpreter::BeginPage() {
    mPageMatrix = Top().matrix;
    if (mContext.intent) {
        State().intent = State().intent2 = *mContext.intent;
        mContext.space.SelectRenderingIntent(*mContext.intent);
        mContext.space.SelectRenderingIntent2(*mContext.intent);
    }
}

void ContentInterpreter::PlayCell(PlayContext& context, const PatternCell& cell) {
    const OpenStreams::Mark mark(context.openStreams, cell.stream);
    if (!mark.IsSet()) {
        return;
    }
    ContentInterpreter interpreter(context);
    interpreter.mCell = &cell;
    interpreter.mIsUncolored = !cell.isColored;
    // The pattern itself clips to the box.
    interpreter.Top().matrix = cell.matrix;
    interpreter.Top().clipBox = TransformBox(cell.matrix, cell.box);
    interpreter.BeginPage();
    const ScopedLevel level(interpreter);
    interpreter.Play(cell.content->content, *cell.resources);
}

void ContentInterpreter::SelectPattern(bool fill) {
    const ColorSpaceEntry& space = fill ? *Top().fillSpace : *Top().strokeSpace;
    const ColorSpaceEntry* underlying =
        space.alternate == nullptr ? nullptr : &SpaceBehind(*space.alternate);
    if (underlying != nullptr && !underlying->space) {
        underlying = nullptr;
    }
    auto& selected = fill ? Top().fillPattern : Top().strokePattern;
    selected = FindPattern(underlying);
    if (!selected || (selected->shading && mContext.languageLevel < 3)) {
        return;
    }
    if (!DefinePattern(*selected)) {
        selected = nullptr;
        return;
    }
    mContext.space.RegisterColorSpaceUse(selected->id, fill);
    HOST::CurrentColor& color = ColorOf(fill);
    color.space = selected->space;
    color.id = selected->id;
    color.count = 0;
    if (selected->underlying != nullptr) {
        color.count = underlying->components;
        SetColorValues(fill, *space.alternate);
    }
}

// The pattern that the last operand names; null, with a warning, where there is none to paint with.
std::shared_ptr<Pattern> ContentInterpreter::FindPattern(const ColorSpaceEntry* underlying) {
    const std::optional<std::string_view> name = LastName();
    if (!name) {
        return nullptr;
    }
    const QPDFObjectHandle object = mFrame.resources->Find("/Pattern", *name);
    const auto toPage = Inverse(mPageMatrix);
    if (IsNull(object)) {
        mContext.reporter.Warn("missing-resource", "There is no pattern " + std::string(*name));
        return nullptr;
    }
    if (!toPage || Top().isCollapsed) {
        return nullptr;
    }
    if (QPDFObjectHandle(object).isStream() &&
        !mContext.openStreams.MayOpen(QPDFObjectHandle(object).getObjGen())) {
        mContext.reporter.Warn("recursion", "A pattern that holds itself or is nested too deep");
        return nullptr;
    }
    return mContext.patterns.Find({object, *mFrame.resources, Multiply(mFrame.matrix, *toPage),
                                   mPageMatrix, mCell, underlying});
}

// Makes the resource of the pattern in the connection space, unless it is there. False when it
// cannot be: a cell that is not recorded then has numbers that no interpreter takes.
bool ContentInterpreter::DefinePattern(Pattern& pattern) {
    if (pattern.isRefused) {
        return false;
    }
    if (pattern.shading) {
        mContext.colorSpaces.UseWithAlternates(*pattern.shading->space);
    }
    if (pattern.underlying != nullptr) {
        mContext.colorSpaces.UseWithAlternates(*pattern.underlying);
    }
    mContext.space.AddColorSpace(pattern.space.Get(), pattern.id);
    pattern.isRefused = pattern.cell && !pattern.cell->wasPlayed;
    if (pattern.isRefused) {
        mContext.reporter.Warn("pattern",
                               "What is painted with a tiling pattern is left out: its cell is too "
                               "small or too large");
    }
    return !pattern.isRefused;
}

}  // namespace VANTIX::PDF
