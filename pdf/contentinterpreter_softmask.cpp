// SPDX-License-Identifier: MIT
// Soft masks of the graphics state (PDF Reference, 7.4.3 and 7.5.4). What is painted through a mask
// is recorded between its beginning and its end, so that a mask begins with the first thing that is
// painted through it, and ends over levels that stay open by closing and opening them again.
#include <algorithm>
#include <cstddef>
#include <exception>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "core/object/tobject.h"
#include "host/color/functions.h"
#include "pdf/contentinterpreter.h"
#include "pdf/functions.h"
#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace {

constexpr std::array<double, 6> kIdentity = {1, 0, 0, 1, 0, 0};

// Of clips that are made again where a mask ends: coordinates and codes.
constexpr std::size_t kMostKept = 65536;

using SoftMaskType = GRAPHICS::IGraphicsState::TSoftMaskType;

/// What the connection space hangs on it lives as long as the mask.
class MaskHolder : public TObject<IObject> {};

}  // namespace

/// A soft mask as a graphics state names it; `form` and what follows are read with the first thing
/// painted.
struct ContentInterpreter::SoftMask {
    QPDFObjectHandle parameters;
    std::array<double, 6> matrix{1, 0, 0, 1, 0, 0};  // in force when it was set
    Resources* resources = nullptr;                  // of the content that set it
    std::size_t clips = 0;                           // that were kept by then
    bool isBroken = false;
    QPDFObjectHandle stream = QPDFObjectHandle::newNull();
    std::shared_ptr<const Form> form;
    Group group{};
    SoftMaskType type = SoftMaskType::kLuminosity;
    HOST::FunctionPtr transfer;  // null: the identity
    HOST::CurrentColor backdrop;
};

void ContentInterpreter::SetSoftMask(const QPDFObjectHandle& parameters) {
    if (!QPDFObjectHandle(parameters).isDictionary()) {
        Top().mask = nullptr;
        return;
    }
    Lose(TRANSPARENCY::kMask);
    const SoftMaskPtr& set = Top().mask;
    const bool isSet =
        set && set->parameters.isSameObjectAs(parameters) && set->matrix == Top().matrix;
    if (mContext.keepsAlpha && !isSet) {
        auto mask = std::make_shared<SoftMask>();
        mask->parameters = parameters;
        mask->matrix = Top().matrix;
        mask->resources = mFrame.resources;
        mask->clips = mClips.size();
        Top().mask = std::move(mask);
    }
}

bool ContentInterpreter::ReadMask(SoftMask& mask) {
    if (mask.form || mask.isBroken) {
        return !mask.isBroken;
    }
    try {
        mask.isBroken = !ReadMaskParameters(mask);
    } catch (const std::exception& failure) {
        mContext.reporter.Warn("damaged", failure.what());
        mask.isBroken = true;
    }
    return !mask.isBroken;
}

bool ContentInterpreter::ReadMaskParameters(SoftMask& mask) {
    const std::string type = NameOf(Get(mask.parameters, "/S"));
    mask.stream = Get(mask.parameters, "/G");
    if (!mask.stream.isStream() || (type != "Luminosity" && type != "Alpha")) {
        mContext.reporter.Warn("soft-mask",
                               "A soft mask of no known kind or without a group is "
                               "left out");
        return false;
    }
    if (!mContext.openStreams.MayOpen(mask.stream.getObjGen())) {
        mContext.reporter.Warn("recursion", "A soft mask that holds itself or is nested too deep");
        return false;
    }
    const std::shared_ptr<const Form> form = mContext.forms.Find(mask.stream, "A soft mask");
    if (IsNull(form->group)) {
        mContext.reporter.Warn("soft-mask", "The form of a soft mask is no group");
    }
    mask.type = type == "Alpha" ? SoftMaskType::kAlpha : SoftMaskType::kLuminosity;
    mask.transfer = ReadTransfer(Get(mask.parameters, "/TR"));
    if (form->resources) {
        mask.resources = form->resources.get();
    }
    mask.group = DescribeGroup(form->group, {}, *mask.resources);
    mask.form = form;
    ReadBackdrop(mask);
    return true;
}

HOST::FunctionPtr ContentInterpreter::ReadTransfer(const QPDFObjectHandle& object) {
    if (IsNull(object) || NameOf(object) == "Identity") {
        return nullptr;
    }
    std::string error;
    FunctionReader reader;
    const HOST::FunctionPtr transfer = reader.Read(object, error);
    if (transfer && transfer->GetInputCount() == 1 && transfer->GetOutputCount() == 1) {
        return HOST::NormaliseTintFunction(transfer, false);
    }
    mContext.reporter.Warn("soft-mask", "The transfer function of a soft mask is left out: " +
                                            (error.empty() ? "it has not one value" : error));
    return nullptr;
}

// A luminosity mask needs a space to be seen in.
const ColorSpaceEntry& ContentInterpreter::SpaceOfMask(const SoftMask& mask,
                                                       std::size_t backdropCount) {
    const QPDFObjectHandle space = Get(mask.form->group, "/CS");
    if (!IsNull(space)) {
        const ColorSpaceEntry& entry =
            mContext.colorSpaces.Resolve(space, mask.resources->Defaults());
        if (entry.kind == ColorSpaceEntry::Kind::kSpace && !entry.special) {
            return entry;
        }
    }
    const char* name =
        backdropCount == 4 ? "DeviceCMYK" : (backdropCount == 3 ? "DeviceRGB" : "DeviceGray");
    return *mContext.colorSpaces.Named(name, {});
}

// Without a backdrop of its own the group lies on black.
void ContentInterpreter::ReadBackdrop(SoftMask& mask) {
    const std::vector<float> values =
        NumbersOf(Get(mask.parameters, "/BC"), static_cast<std::size_t>(COLOR::kMaxComponents));
    const ColorSpaceEntry& entry = SpaceOfMask(mask, values.size());
    HOST::CurrentColor& backdrop = mask.backdrop;
    mask.group.space = backdrop.space = entry.space;
    backdrop.count = entry.components;
    if (values.size() == static_cast<std::size_t>(entry.components)) {
        mContext.colorSpaces.SetValues(entry, values, backdrop);
        return;
    }
    if (!IsNull(Get(mask.parameters, "/BC"))) {
        mContext.reporter.Warn("soft-mask",
                               "The backdrop of a soft mask is no colour of its group");
    }
    if (!entry.space->GetDefaultValues(backdrop.values.data(), entry.components)) {
        mContext.colorSpaces.SetValues(entry, {}, backdrop);
    }
}

void ContentInterpreter::SynchroniseMask() {
    const HOST::GraphicsParameters& state = State();
    const bool isSeen =
        !IsHidden() && !Top().isCollapsed && (state.fillAlpha > 0.0F || state.strokeAlpha > 0.0F);
    if (!isSeen) {
        return;
    }
    const SoftMaskPtr wanted = HasMask() ? Top().mask : nullptr;
    const bool isInForce =
        mBegunMask && mBegunMask->mask == wanted && mBegunMask->fillAlpha == state.fillAlpha &&
        mBegunMask->strokeAlpha == state.strokeAlpha && mBegunMask->blendMode == state.blendMode;
    if (isInForce) {
        return;
    }
    CloseTextObject();
    if (mBegunMask) {
        EndMask();
    }
    if (wanted) {
        BeginMask(wanted);
    }
}

// A mask of nothing on white lets everything through.
void ContentInterpreter::ShieldGroup() {
    if (!mOrigin.carriesMask || mBegunMask) {
        return;
    }
    const auto mask = std::make_shared<SoftMask>();
    mask->form = std::make_shared<Form>();
    mask->resources = mFrame.resources;
    mask->matrix = Top().matrix;
    mask->group.space = mask->backdrop.space = mContext.colorSpaces.Named("DeviceGray", {})->space;
    mask->backdrop.values[0] = 1.0F;
    mask->backdrop.count = 1;
    CloseTextObject();
    BeginMask(mask);
}

std::size_t ContentInterpreter::LowestDepthOf(const SoftMask& mask) {
    const HOST::GraphicsParameters& state = State();
    std::size_t depth = mLevels.size();
    for (std::size_t below = 1; depth > 1 && mLevels[depth - 2].mask.get() == &mask; ++below) {
        const HOST::GraphicsParameters& outer = mContext.space.State().Below(below);
        if (outer.fillAlpha != state.fillAlpha || outer.strokeAlpha != state.strokeAlpha ||
            outer.blendMode != state.blendMode) {
            break;
        }
        --depth;
    }
    return depth;
}

// It begins in the lowest level that it may, so that all levels above that do not change it paint
// through one and the same.
void ContentInterpreter::BeginMask(const SoftMaskPtr& mask) {
    std::vector<ClosedLevel> closed = CloseLevels(LowestDepthOf(*mask));
    if (RecordMask(*mask)) {
        const HOST::GraphicsParameters& state = State();
        mBegunMask = BegunMask{mask,
                               mLevels.size(),
                               mOrigin,
                               CurrentlyWritten(),
                               state.fillAlpha,
                               state.strokeAlpha,
                               state.blendMode};
        EnterRecording(false);
    }
    OpenLevels(std::move(closed));
}

// Marks outside of the mask's own box are to show its backdrop, so the mask covers all that is
// seen.
bool ContentInterpreter::RecordMask(const SoftMask& mask) {
    const OpenStreams::Mark mark(mContext.openStreams, mask.stream);
    if (!mark.IsSet()) {
        mContext.reporter.Warn("recursion", "A soft mask that holds itself or is nested too deep");
        return false;
    }
    std::array<float, 4> box{};
    const std::array<double, 4> bounds = ClipBounds();
    std::transform(bounds.begin(), bounds.end(), box.begin(), ToFloat);
    mContext.space.BeginSoftMask(mask.transfer.Get(), nullptr, box[0], box[1], box[2], box[3],
                                 mask.group.space.Get(), mask.backdrop.values.data(),
                                 static_cast<std::uint64_t>(mask.backdrop.count),
                                 mask.group.isIsolated, mask.group.isKnockout, mask.type);
    Path outerPath = std::exchange(mPath, Path());
    const PendingClip outerClip = mPendingClip;
    const bool wasUncolored = std::exchange(mIsUncolored, false);
    {
        const std::array<double, 6> toMask =
            Multiply(mask.matrix, Inverse(Top().matrix).value_or(kIdentity));
        const ScopedRecording recording(*this, Start::kAfresh);
        if (recording.IsSaved() && (mask.matrix == Top().matrix || Concat(toMask)) &&
            Concat(mask.form->matrix)) {
            DrawContent(*mask.form, *mask.resources);
        }
    }
    mIsUncolored = wasUncolored;
    mPendingClip = outerClip;
    mPath = std::move(outerPath);
    State().softMaskHolder = MakeObject<MaskHolder>();
    mContext.space.EndSoftMask();
    return true;
}

void ContentInterpreter::EndMask() {
    std::vector<ClosedLevel> closed = CloseLevels(mBegunMask->depth);
    const BegunMask ended = std::move(*mBegunMask);
    mBegunMask.reset();
    { const TInterfacePtr<IObject> holder = std::move(State().softMaskHolder); }
    mOrigin = ended.outer;
    WriteBeyond(ended.before);
    OpenLevels(std::move(closed));
}

// The content of a mask starts as that of a page.
void ContentInterpreter::ResetState() {
    Level& level = Top();
    level.line = {};
    level.text = {};
    level.fillSpace = level.strokeSpace = mContext.colorSpaces.Named("DeviceGray", {});
    level.fillPattern = level.strokePattern = nullptr;
    HOST::GraphicsParameters state;
    mContext.colorSpaces.Select(*level.fillSpace, state.fill);
    state.stroke = state.fill;
    state.intent = state.intent2 = mContext.intent.value_or(state.intent);
    State() = state;
}

ContentInterpreter::Written ContentInterpreter::CurrentlyWritten() {
    return {Top().matrix, Top().clips, Top().line, State().intent};
}

void ContentInterpreter::WriteBeyond(const Written& written) {
    HOST::BaseConnectionSpace& space = mContext.space;
    std::array<double, 6> matrix = written.matrix;
    Top().selectedFont = {};
    for (std::size_t i = written.clips; i < Top().clips; ++i) {
        const KeptClip& clip = mClips[i];
        ConcatOnly(std::exchange(matrix, clip.matrix), clip.matrix);
        if (!clip.text.empty()) {
            ClipToStrings(clip.text);
            continue;
        }
        clip.path.PlayTo(space);
        clip.isEvenOdd ? space.EOClip() : space.Clip();
        space.NewPath();
    }
    ConcatOnly(matrix, Top().matrix);
    if (!(Top().line == written.line) || State().intent != written.intent) {
        WriteState();
    }
    RebasePatterns();
}

void ContentInterpreter::ConcatOnly(const std::array<double, 6>& from,
                                    const std::array<double, 6>& to) {
    if (from != to) {
        const std::array<double, 6> step = Multiply(to, Inverse(from).value_or(kIdentity));
        std::array<float, 6> m{};
        std::transform(step.begin(), step.end(), m.begin(), ToFloat);
        mContext.space.Concat(m[0], m[1], m[2], m[3], m[4], m[5]);
    }
}

std::vector<ContentInterpreter::ClosedLevel> ContentInterpreter::CloseLevels(std::size_t depth) {
    std::vector<ClosedLevel> closed;
    while (mLevels.size() > depth) {
        ClosedLevel& level = closed.emplace_back();
        level.level = std::move(mLevels.back());
        level.state = State();
        level.state.softMaskHolder = nullptr;
        mLevels.pop_back();
        const auto first = mClips.begin() + static_cast<std::ptrdiff_t>(Top().clips);
        level.clips.assign(std::move_iterator(first), std::move_iterator(mClips.end()));
        mClips.erase(first, mClips.end());
        mContext.space.RestoreGraphicsState();
    }
    return closed;
}

void ContentInterpreter::OpenLevels(std::vector<ClosedLevel> levels) {
    for (; !levels.empty(); levels.pop_back()) {
        const Written below = CurrentlyWritten();
        const TInterfacePtr<IObject> holder = State().softMaskHolder;
        mContext.space.SaveGraphicsState();
        mLevels.push_back(std::move(levels.back().level));
        std::move(levels.back().clips.begin(), levels.back().clips.end(),
                  std::back_inserter(mClips));
        State() = std::move(levels.back().state);
        State().softMaskHolder = holder;
        WriteBeyond(below);
    }
}

void ContentInterpreter::KeepClip(KeptClip clip) {
    const std::size_t start = mBegunMask ? mBegunMask->before.clips : Top().mask->clips;
    const auto sizeAt = [this](std::size_t count) {
        return count == 0 ? 0 : mClips[count - 1].size;
    };
    std::size_t own = 1 + clip.path.Size();
    for (const ClippingText& string : clip.text) {
        own += string.codes.size();
    }
    clip.size = sizeAt(mClips.size()) + own;
    if (clip.size - sizeAt(start) > kMostKept) {
        mContext.reporter.Warn("soft-mask", "Clips under a soft mask are too many to outlast it");
        return;
    }
    mClips.push_back(std::move(clip));
    Top().clips = mClips.size();
}

}  // namespace VANTIX::PDF
