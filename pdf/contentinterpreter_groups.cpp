// SPDX-License-Identifier: MIT
// Transparency groups (PDF Reference, 7.3 and 7.5.5).
#include <algorithm>
#include <utility>

#include "pdf/contentinterpreter.h"
#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace {

bool IsCMYK(const HOST::ColorSpacePtr& space) {
    constexpr std::int32_t kChannels = 4;
    return space && space->GetComponentCount() == kChannels;
}

/// A group begins opaque (PDF Reference, 7.5.5).
void MakeOpaque(HOST::GraphicsParameters& state) {
    state.fillAlpha = state.strokeAlpha = 1.0F;
    state.blendMode = GRAPHICS::TBlendMode::kNormal;
    state.alphaIsShape = false;
    state.textKnockout = true;
    state.softMaskHolder = nullptr;
}

}  // namespace

ContentInterpreter::ScopedRecording::ScopedRecording(ContentInterpreter& interpreter, Start start)
    : mInterpreter(interpreter),
      mLevel(std::in_place, interpreter),
      mOuter(interpreter.mOrigin),
      mOuterMask(std::exchange(interpreter.mBegunMask, std::nullopt)) {
    if (!mLevel->IsSaved()) {
        return;
    }
    interpreter.Top().mask = nullptr;
    MakeOpaque(interpreter.State());
    if (start == Start::kAfresh) {
        interpreter.ResetState();
    }
    mOuter = interpreter.EnterRecording(true);
    interpreter.mOrigin.carriesMask = mOuterMask.has_value();
}

ContentInterpreter::ScopedRecording::~ScopedRecording() {
    mLevel.reset();
    mInterpreter.mOrigin = mOuter;
    mInterpreter.mBegunMask = std::move(mOuterMask);
}

ContentInterpreter::Origin ContentInterpreter::EnterRecording(bool isGroup) {
    const Origin outer = mOrigin;
    if (mOrigin.recordings++ == 0) {
        mOrigin.body = mCell == nullptr ? Top().matrix : mContext.bodyMatrix;
        mContext.bodyMatrix = mOrigin.body;
    }
    mOrigin.groups += isGroup ? 1 : 0;
    mOrigin.page = Top().matrix;
    WriteState();
    RebasePatterns();
    return outer;
}

void ContentInterpreter::LeaveRecording(const Origin& outer) {
    mOrigin = outer;
    RebasePatterns();
}

void ContentInterpreter::WriteState() {
    HOST::BaseConnectionSpace& space = mContext.space;
    const LineState& line = Top().line;
    const float* dash =
        line.dashCount > LineState::kMaxDash ? line.longDash->data() : line.dash.data();
    space.SetLineWidth(line.width);
    space.SetLineCap(line.cap);
    space.SetLineJoin(line.join);
    space.SetMiterLimit(line.miterLimit);
    space.SetDash(line.dashPhase, dash, static_cast<std::int32_t>(line.dashCount));
    if (line.flatness >= 0.0F) {
        space.SetFlatness(line.flatness);
    }
    if (mSetsIntent) {
        space.SelectRenderingIntent(State().intent);
        space.SelectRenderingIntent2(State().intent2);
    }
    Top().selectedFont = {};
}

void ContentInterpreter::RebasePatterns() {
    RebasePattern(true);
    RebasePattern(false);
}

// A pattern that was selected before starts from where it did then.
void ContentInterpreter::RebasePattern(bool fill) {
    auto& selected = fill ? Top().fillPattern : Top().strokePattern;
    if (!selected) {
        return;
    }
    const std::shared_ptr<Pattern> before = selected;
    selected =
        FindPattern(before->object, *before->resources, before->parentToUser, before->selectedWith);
    if (selected) {
        UsePattern(fill);
    }
}

unsigned ContentInterpreter::OwnTransparency() {
    const HOST::GraphicsParameters& state = State();
    unsigned kinds = TRANSPARENCY::kNone;
    kinds |= state.fillAlpha < 1.0F || state.strokeAlpha < 1.0F ? TRANSPARENCY::kAlpha : 0U;
    kinds |= state.blendMode != GRAPHICS::TBlendMode::kNormal ? TRANSPARENCY::kBlending : 0U;
    kinds |= HasMask() ? TRANSPARENCY::kMask : 0U;
    return kinds;
}

// The group as a whole takes the alpha of the moment. Opaque paint looks the same in a group and
// without one.
bool ContentInterpreter::NeedsGroup(const Form& form) {
    if (IsNull(form.group)) {
        return false;
    }
    const unsigned own = OwnTransparency();
    const bool isKnockout = BoolOf(Get(form.group, "/K"), false);
    const bool isIsolated = BoolOf(Get(form.group, "/I"), false);
    const unsigned content =
        isKnockout || isIsolated ? mContext.transparency.FindOf(form.stream) : TRANSPARENCY::kNone;
    Lose(own | (isKnockout && content != 0 ? TRANSPARENCY::kKnockout : 0U));
    return own != TRANSPARENCY::kNone || content != TRANSPARENCY::kNone;
}

void ContentInterpreter::DrawGroup(const Form& form, Resources& resources) {
    if (State().fillAlpha <= 0.0F) {
        return;
    }
    if (!mContext.keepsAlpha) {
        MakeOpaque(State());
        DrawContent(form, resources);
        return;
    }
    Resources& own = form.resources ? *form.resources : resources;
    ShieldGroup();
    Record(DescribeGroup(form.group, form.box.value_or(ClipBounds()), own),
           [&] { Play(form.content, own); });
}

ContentInterpreter::Group ContentInterpreter::DescribeGroup(const QPDFObjectHandle& attributes,
                                                            const std::array<double, 4>& box,
                                                            Resources& resources) {
    Group group{box, BoolOf(Get(attributes, "/I"), false), BoolOf(Get(attributes, "/K"), false),
                nullptr};
    const QPDFObjectHandle space = Get(attributes, "/CS");
    if (!IsNull(space)) {
        const ColorSpaceEntry& entry = mContext.colorSpaces.Resolve(space, resources.Defaults());
        group.space = entry.special ? nullptr : entry.space;
    }
    return group;
}

void ContentInterpreter::Record(const Group& group, const std::function<void()>& play) {
    std::array<float, 4> box{};
    std::transform(group.box.begin(), group.box.end(), box.begin(), ToFloat);
    mContext.space.BeginTransparencyGroup(box.data(), nullptr, group.isIsolated, group.isKnockout,
                                          group.space.Get());
    {
        const ScopedRecording recording(*this);
        if (recording.IsSaved()) {
            play();
        }
    }
    mContext.space.EndTransparencyGroup();
}

ContentInterpreter::PaintGroup ContentInterpreter::PaintGroupOf(unsigned marks) {
    const bool isBoth = (marks & kFill) != 0 && (marks & kStroke) != 0;
    if (!isBoth || !mContext.keepsAlpha || OwnTransparency() == TRANSPARENCY::kNone) {
        return PaintGroup::kNone;
    }
    const HOST::GraphicsParameters& state = State();
    if (state.fillAlpha == state.strokeAlpha) {
        return PaintGroup::kOpaque;
    }
    return HasMask() ? PaintGroup::kNone : PaintGroup::kKnockout;
}

// The stroke is to replace the fill under it, not to shine through to it (PDF Reference, 7.5.2).
bool ContentInterpreter::PaintInGroup(unsigned marks) {
    const PaintGroup kind = PaintGroupOf(marks);
    if (kind == PaintGroup::kNone) {
        return false;
    }
    const bool isKnockout = kind == PaintGroup::kKnockout;
    const HOST::GraphicsParameters before = State();
    if (isKnockout) {
        MakeOpaque(State());
    }
    ShieldGroup();
    Record({ClipBounds(), false, isKnockout, nullptr}, [&] {
        if (isKnockout) {
            State().fillAlpha = before.fillAlpha;
            State().strokeAlpha = before.strokeAlpha;
            State().blendMode = before.blendMode;
        }
        mPath.PlayTo(mContext.space);
        Mark(marks);
        mContext.space.NewPath();
    });
    const auto holder = State().softMaskHolder;
    State() = before;
    State().softMaskHolder = holder;
    return true;
}

void ContentInterpreter::DrawPage(const QPDFObjectHandle& group, const QPDFObjectHandle& resources,
                                  const std::function<void()>& play) {
    const bool isGroup = NameOf(Get(group, "/S")) == "Transparency";
    if (mContext.keepsAlpha && isGroup &&
        (mContext.transparency.Find(resources) & TRANSPARENCY::kBlending) != 0) {
        Resources none(resources, mContext.colorSpaces);
        Group page = DescribeGroup(group, ClipBounds(), none);
        page.isIsolated = true;  // as every group of a page
        if (IsCMYK(page.space)) {
            Record(page, play);
            return;
        }
    }
    play();
}

}  // namespace VANTIX::PDF
