// SPDX-License-Identifier: MIT
// Forms, transparency groups and soft masks as pdfmarks (pdfmark Reference; PDF Reference, 7.5).
#include <algorithm>
#include <utility>

#include "core/io/ioutputfilterstack.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptconnectionspace/postscriptconnectionspace.h"
#include "postscriptconnectionspace/postscriptoutputcontext.h"
#include "postscriptconnectionspace/softmaskgroup.h"
#include "postscriptconnectionspace/softmaskmessenger.h"
#include "postscriptconnectionspace/transparencygroup.h"

namespace VANTIX::PS {

namespace {

constexpr const char* kModule = "src/postscriptconnectionspace";

/// Recordings that are open at a time: each holds a stream, its filters and what it has recorded.
constexpr std::int32_t kMostOpenForms = 1024;

/// What a recording could not be popped or copied for.
constexpr Status kPopFailed = STATUS::kNotSupported;

FormObject::Matrix MatrixOf(const float* values) {
    FormObject::Matrix matrix = FormObject::kIdentity;
    if (values != nullptr) {
        std::copy_n(values, matrix.size(), matrix.begin());
    }
    return matrix;
}

FormObject::Box BoxOf(const float* values) {
    FormObject::Box box{};
    if (values != nullptr) {
        std::copy_n(values, box.size(), box.begin());
    }
    return box;
}

/// The filters of `from`, but those that only count.
void CopyFilters(const IO::IOutputFilterStack* from, IO::IOutputFilterStack& to) {
    const std::int32_t count = from == nullptr ? 0 : from->GetFilterCount();
    for (std::int32_t i = 0; i < count; ++i) {
        if (const std::int32_t code = from->GetFilter(i); code != IO::FILTER::kCount) {
            to.PushFilter(code);
        }
    }
}

}  // namespace

IFormObject* PostScriptConnectionSpace::CurrentForm() const {
    return FindInterface<IFormObject>(mStreams.Top(), IID_IFORMOBJECT);
}

TInterfacePtr<IPostScriptDataStream> PostScriptConnectionSpace::CreateFormStream(Status& status) {
    status = STATUS::kNoProvider;
    const auto maker =
        CreateObject<IO::IPacketDataProviderFactory>(mFactory, IO::CLSID_PACKETDATAPROVIDERFACTORY);
    const auto provider = TInterfacePtr<IO::IPacketDataProvider>::Adopt(
        maker ? maker->CreatePacketDataProvider(mFactory) : nullptr);
    if (!provider) {
        LogError(kModule) << "Could not create a temp file based data provider.";
        return nullptr;
    }
    const auto filters = CreateObject<IO::IOutputFilterStack>(mFactory, IO::IID_IOUTPUTFILTERSTACK);
    if (!filters) {
        LogError(kModule) << "Could not manufacture an IOutputFilterStack. Transparency groups and "
                             "soft masks are disabled.";
        return nullptr;
    }
    filters->Attach(provider.Get());
    CopyFilters(FindInterface<IO::IOutputFilterStack>(mStreams.Top(), IO::IID_IOUTPUTFILTERSTACK),
                *filters);
    auto stream =
        TInterfacePtr<IPostScriptDataStream>::Adopt(CreatePostscriptDataStream(provider.Get()));
    if (!stream) {
        LogError(kModule) << "Problem initializing PostScriptDataStream.";
        status = STATUS::kStreamInitFailed;
        return nullptr;
    }
    stream->Aggregate(filters.Get(), IO::IID_IOUTPUTFILTERSTACK);
    status = STATUS::kOk;
    return stream;
}

Status PostScriptConnectionSpace::PushFormObject(IFormObject& form) {
    if (mOpenForms >= kMostOpenForms) {
        LogError(kModule) << "Transparency groups and soft masks are nested too deeply.";
        return STATUS::kInvalidArgument;
    }
    Status status = STATUS::kOk;
    const auto stream = CreateFormStream(status);
    if (!stream) {
        return status;
    }
    stream->Aggregate(&form, IID_IFORMOBJECT);
    mStreams.Push(stream.Get());
    ++mOpenForms;
    Names().Begin(DefinedNames::Text::kForm);
    if (mContext) {
        mContext->BeginRecording();
    }
    return STATUS::kOk;
}

bool PostScriptConnectionSpace::WriteDefinition(const IFormObject& form) {
    IPostScriptDataStream* document = GetBaseStream();
    if (document == nullptr) {
        LogError(kModule) << "Really bad problem with transparency groups.";
        return false;
    }
    if (mContext) {
        mContext->CloseSaves();
    }
    form.WriteBeginPicture(*document);
    document->WriteDataStream(*mStreams.Top());
    form.WriteEndPicture(*document);
    return true;
}

bool PostScriptConnectionSpace::LeaveForm(bool kept) {
    if (mOpenForms == 0 || mStreams.Pop() != STATUS::kOk) {
        return false;
    }
    --mOpenForms;
    Names().End(kept);
    if (mContext) {
        mContext->EndRecording();
    }
    auto* filters =
        FindInterface<IO::IOutputFilterStack>(mStreams.Top(), IO::IID_IOUTPUTFILTERSTACK);
    if (RENDERING::IConnectionSpaceDelegate* delegate = Delegate();
        delegate != nullptr && filters != nullptr) {
        delegate->Aggregate(filters, IO::IID_IOUTPUTFILTERSTACK);
    }
    return true;
}

bool PostScriptConnectionSpace::DropForm() {
    const bool left = LeaveForm(false);
    if (!left) {
        LogError(kModule) << "Problem popping the PS content stream stack.";
    }
    return left;
}

Status PostScriptConnectionSpace::PopFormObject() {
    if (!mPolicy.pdfmarkTransparency) {
        LogError(kModule) << "Ideally we should not here when pdfmarks turned off";
    }
    if (mStreams.Top() == nullptr) {
        LogError(kModule) << "PostScriptDataStream underflow.";
        return STATUS::kStackUnderflow;
    }
    const IFormObject* form = CurrentForm();
    if (form == nullptr) {
        LogError(kModule) << "Expected a transparency group here.";
        return STATUS::kNoForm;
    }
    if (!WriteDefinition(*form) || !LeaveForm(true)) {
        LogError(kModule) << "Problem popping the PS content stream stack.";
        return kPopFailed;
    }
    return STATUS::kOk;
}

void PostScriptConnectionSpace::DrawForm(IFormObject& form) {
    const TInterfacePtr<IFormObject> held(&form);
    if (PopFormObject() == STATUS::kOk) {
        held->WriteDrawPicture(*mStreams.Top());
    } else {
        LogError(kModule)
            << "Problem popping a PostScriptDataStream on the transparency group stack.";
    }
}

void PostScriptConnectionSpace::WriteDefaultColour(COLOR::IConnectionColorSpace* space) {
    if (!mContext || !MaySetColours()) {
        return;
    }
    const auto* device =
        FindInterface<COLOR::IDeviceConnectionColorSpace>(space, COLOR::IID_IDEVICECOLORSPACE);
    const FourCC family = device == nullptr ? FourCC{0} : device->GetFamily();
    const bool isOther = family != "gray"_cc && family != "rgb "_cc;
    mContext->SetDefaultColour(isOther ? "cmyk"_cc : family, false);
}

void PostScriptConnectionSpace::EnterGroup(bool recorded) {
    if (!recorded) {
        mVainGroups.push_back(mGroupDepth);
    }
    ++mGroupDepth;
}

bool PostScriptConnectionSpace::LeaveGroup() {
    mGroupDepth = std::max(mGroupDepth - 1, 0);
    if (mVainGroups.empty() || mVainGroups.back() != mGroupDepth) {
        return true;
    }
    mVainGroups.pop_back();
    return false;
}

bool PostScriptConnectionSpace::BeginTransparencyGroup(const float* bbox, const float* matrix,
                                                       bool isolated, bool knockout,
                                                       COLOR::IConnectionColorSpace* space) {
    if (IsDrawingSuppressed() || !mPolicy.pdfmarkTransparency) {
        return true;
    }
    const auto group = MakeObject<TransparencyGroup>(
        "TRGForm", mGraphicsState, MatrixOf(matrix), BoxOf(bbox), isolated, knockout,
        mGroupDepth > 0 && !isolated ? nullptr : space);
    if (auto* mask = FindInterface<ISoftMaskGroup>(CurrentForm(), IID_ISOFTMASKGROUP)) {
        group->Aggregate(mask, IID_ISOFTMASKGROUP);
    }
    const bool recorded = PushFormObject(*group) == STATUS::kOk;
    EnterGroup(recorded);
    if (recorded) {
        WriteDefaultColour(group->GetGroupColorSpace());
    } else {
        LogError(kModule)
            << "Problem pushing a new PostScriptDataStream on the transparency group stack.";
    }
    return true;
}

bool PostScriptConnectionSpace::IsMaskContent(const IFormObject* form) const {
    return !mSoftMasks.empty() && mSoftMasks.back().group.Get() == form;
}

void PostScriptConnectionSpace::EndTransparencyGroup() {
    if (IsDrawingSuppressed() || !mPolicy.pdfmarkTransparency) {
        return;
    }
    IFormObject* form = CurrentForm();
    if (mGroupDepth > 0 && !IsMaskContent(form) && LeaveGroup() && form != nullptr) {
        DrawForm(*form);
    } else {
        LogError(kModule) << "Transparency Group stack is empty";
    }
}

bool PostScriptConnectionSpace::BeginSoftMask(COLOR::IColorFunction* transfer, const float* matrix,
                                              float x0, float y0, float x1, float y1,
                                              COLOR::IConnectionColorSpace* space,
                                              const float* backdrop, std::uint64_t backdropCount,
                                              bool isolated, bool knockout,
                                              GRAPHICS::IGraphicsState::TSoftMaskType type) {
    if (IsDrawingSuppressed()) {
        return true;
    }
    const FormObject::Box box{x0, y0, x1, y1};
    const bool isLuminosity = type == GRAPHICS::IGraphicsState::TSoftMaskType::kLuminosity;
    const auto group = MakeObject<TransparencyGroup>(
        "SoftMask", mGraphicsState, MatrixOf(matrix), box, isolated, knockout,
        mGroupDepth > 0 && !isolated && !isLuminosity ? nullptr : space);
    const auto softMask =
        MakeObject<SoftMaskGroup>(*group, transfer, space, backdrop, backdropCount, type);
    const auto masked = MakeObject<FormObject>("MaskedForm", mGraphicsState, MatrixOf(matrix), box);
    masked->Aggregate(softMask.Get(), IID_ISOFTMASKGROUP);
    const std::int32_t depth = mGroupDepth;
    const bool recorded = RecordSoftMask(*masked, *group);
    EnterGroup(recorded);
    if (recorded) {
        WriteDefaultColour(group->GetGroupColorSpace());
        UseMaskDelegate(*masked);
        mSoftMasks.push_back({masked, TInterfacePtr<FormObject>(group.Get()), depth});
    }
    return true;
}

bool PostScriptConnectionSpace::RecordSoftMask(IFormObject& masked, IFormObject& group) {
    if (mPolicy.pdfmarkTransparency && BeginMaskedGroup(masked) != STATUS::kOk) {
        LogError(kModule)
            << "Could not push the masked group onto the group stack. Soft mask failure.";
        return false;
    }
    if (PushFormObject(group) == STATUS::kOk) {
        return true;
    }
    LogError(kModule) << "Could not push the soft mask onto the group stack. Soft mask failure.";
    if (mPolicy.pdfmarkTransparency) {
        DropForm();
    }
    return false;
}

Status PostScriptConnectionSpace::BeginMaskedGroup(IFormObject& form) {
    const Status status = PushFormObject(form);
    if (status != STATUS::kOk) {
        LogError(kModule)
            << "Could not push the masked group onto the group stack. Soft mask failure.";
    }
    return status;
}

void PostScriptConnectionSpace::UseMaskDelegate(FormObject& keeper) {
    bool wasDefaultColourSet = true;
    if (RENDERING::IConnectionSpaceDelegate* current = Delegate(); current != nullptr) {
        keeper.Aggregate(current, RENDERING::IID_ICONNECTIONSPACEDELEGATE);
        wasDefaultColourSet = current->WasDefaultColourSet();
    }
    const auto delegate =
        CreateDelegate(RENDERING::TDelegateType::kSoftMask,
                       FindInterface<IO::IDictionary>(this, IO::IID_IPOSTSCRIPTPOLICYDICT));
    if (!delegate) {
        return;
    }
    if (mContext) {
        delegate->Aggregate(mContext.Get(), IID_IPOSTSCRIPTOUTPUTCONTEXT);
    }
    Aggregate(delegate.Get(), RENDERING::IID_ICONNECTIONSPACEDELEGATE);
    delegate->SetGraphicsState(mGraphicsState);
    delegate->Init(wasDefaultColourSet);
}

void PostScriptConnectionSpace::RestoreDelegate(FormObject& keeper) {
    if (auto* kept = FindInterface<RENDERING::IConnectionSpaceDelegate>(
            &keeper, RENDERING::IID_ICONNECTIONSPACEDELEGATE)) {
        Aggregate(kept, RENDERING::IID_ICONNECTIONSPACEDELEGATE);
        keeper.Disaggregate(RENDERING::IID_ICONNECTIONSPACEDELEGATE);
    }
}

void PostScriptConnectionSpace::EndSoftMask() {
    if (IsDrawingSuppressed()) {
        return;
    }
    const bool isVain = !mVainGroups.empty() && mVainGroups.back() == mGroupDepth - 1;
    if (!isVain && !mSoftMasks.empty()) {
        FinishSoftMask();
        return;
    }
    LogError(kModule) << "Expected a soft mask here.";
    if (isVain) {
        LeaveGroup();
    }
}

void PostScriptConnectionSpace::FinishSoftMask() {
    CloseFormsAbove(mSoftMasks.back().group.Get());
    const OpenSoftMask mask = std::move(mSoftMasks.back());
    mSoftMasks.pop_back();
    LeaveGroupsAbove(mask.depth);
    RestoreDelegate(*mask.masked);
    if (!mPolicy.pdfmarkTransparency) {
        DropForm();
        return;
    }
    if (PopFormObject() != STATUS::kOk) {
        LogError(kModule) << "Problem popping the PostScriptStream stack for groups.";
        return;
    }
    if (CurrentForm() != mask.masked.Get()) {
        LogError(kModule) << "Expected a soft mask here.";
        return;
    }
    const auto messenger = MakeObject<SoftMaskMessenger>(*this);
    SaveGraphicsState();
    WriteDefaultColour(nullptr);
    // Without a holder the messenger goes at once, and ends what the mask would apply to.
    if (IObject* holder = mGraphicsState == nullptr ? nullptr : mGraphicsState->GetSoftMaskHolder();
        holder != nullptr) {
        holder->Aggregate(messenger.Get(), IID_ISOFTMASKMESSENGER);
    }
}

void PostScriptConnectionSpace::CloseFormsAbove(const IFormObject* form) {
    for (IFormObject* current = CurrentForm(); current != nullptr && current != form;
         current = CurrentForm()) {
        LogError(kModule) << "A transparency group or a soft mask was left open.";
        const std::int32_t before = mOpenForms;
        DrawForm(*current);
        if (mOpenForms == before) {
            return;
        }
    }
}

void PostScriptConnectionSpace::LeaveGroupsAbove(std::int32_t depth) {
    mGroupDepth = depth;
    while (!mVainGroups.empty() && mVainGroups.back() >= depth) {
        mVainGroups.pop_back();
    }
}

void PostScriptConnectionSpace::CloseGroups() {
    while (!mSoftMasks.empty()) {
        LogError(kModule) << "The content of a soft mask was left open.";
        FinishSoftMask();
    }
    CloseFormsAbove(nullptr);
    LeaveGroupsAbove(0);
    ForgetSoftMasks();
}

void PostScriptConnectionSpace::ForgetSoftMasks() {
    for (SoftMaskMessenger* messenger : std::exchange(mMessengers, {})) {
        messenger->Forget();
    }
}

void PostScriptConnectionSpace::EndMaskedGroup() {
    if (!mPolicy.pdfmarkTransparency) {
        return;
    }
    IFormObject* form = CurrentForm();
    if (form == nullptr || IsMaskContent(form)) {
        LogError(kModule) << "Expected an IFormObject attached to current PostScriptContentStream.";
        return;
    }
    DrawForm(*form);
}

}  // namespace VANTIX::PS
