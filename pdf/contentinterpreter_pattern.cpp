// SPDX-License-Identifier: MIT
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "pdf/contentinterpreter.h"
#include "pdf/objects.h"

namespace VANTIX::PDF {

void ContentInterpreter::BeginPage() {
    mOrigin.page = Top().matrix;
    if (mContext.intent) {
        State().intent = State().intent2 = *mContext.intent;
        mSetsIntent = true;
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
    if (selected && UsePattern(fill) && selected->underlying != nullptr) {
        ColorOf(fill).count = underlying->components;
        SetColorValues(fill, *space.alternate);
    }
}

// False where there is no such colour: the pattern is left out, or painted by other means.
bool ContentInterpreter::UsePattern(bool fill) {
    auto& selected = fill ? Top().fillPattern : Top().strokePattern;
    if (selected->shading && mContext.languageLevel < 3) {
        return false;
    }
    if (!DefinePattern(*selected)) {
        selected = nullptr;
        return false;
    }
    mContext.space.RegisterColorSpaceUse(selected->id, fill);
    HOST::CurrentColor& color = ColorOf(fill);
    color.space = selected->space;
    color.id = selected->id;
    return true;
}

// The pattern that the last operand names; null, with a warning, where there is none to paint with.
std::shared_ptr<Pattern> ContentInterpreter::FindPattern(const ColorSpaceEntry* underlying) {
    const std::optional<std::string_view> name = LastName();
    if (!name) {
        return nullptr;
    }
    const QPDFObjectHandle object = mFrame.resources->Find("/Pattern", *name);
    if (IsNull(object)) {
        mContext.reporter.Warn("missing-resource", "There is no pattern " + std::string(*name));
        return nullptr;
    }
    return FindPattern(object, *mFrame.resources, mFrame.matrix, underlying);
}

std::shared_ptr<Pattern> ContentInterpreter::FindPattern(const QPDFObjectHandle& object,
                                                         Resources& resources,
                                                         const std::array<double, 6>& parentToUser,
                                                         const ColorSpaceEntry* underlying) {
    const auto toPage = Inverse(mOrigin.page);
    if (!toPage || Top().isCollapsed) {
        return nullptr;
    }
    if (QPDFObjectHandle(object).isStream() &&
        !mContext.openStreams.MayOpen(QPDFObjectHandle(object).getObjGen())) {
        mContext.reporter.Warn("recursion", "A pattern that holds itself or is nested too deep");
        return nullptr;
    }
    auto pattern =
        mContext.patterns.Find({object, resources, Multiply(parentToUser, *toPage), mOrigin.page,
                                mOrigin.groups > 0 ? &mOrigin.body : nullptr, mCell, underlying});
    if (pattern) {
        pattern->object = object;
        pattern->resources = &resources;
        pattern->parentToUser = parentToUser;
        pattern->selectedWith = underlying;
    }
    return pattern;
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
    if (mOrigin.recordings == 0 && mCell == nullptr) {
        mContext.bodyMatrix = Top().matrix;
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
