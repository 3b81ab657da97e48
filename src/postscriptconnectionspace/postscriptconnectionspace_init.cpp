// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <utility>

#include "core/graphics/pluginhelper/blessdelegateconnectionspace.h"
#include "core/io/ioutputfilterstack.h"
#include "jawsworkaroundconnectionspacedelegate.h"
#include "postscriptconnectionspace/policykeys.h"
#include "postscriptconnectionspace/postscriptconnectionspace.h"
#include "postscriptconnectionspace/postscriptoutputcontext.h"
#include "postscriptconnectionspace/pstextobject.h"
#include "postscriptconnectionspace/softmaskgroup.h"

namespace VANTIX::PS {

namespace {

constexpr const char* kModule = "src/postscriptconnectionspace";

/// Pushes the output filters that the policy chooses; ASCII85 where it chooses none.
void PushFilters(IO::IOutputFilterStack& filters, const IO::IDictionary& policy) {
    bool onlyAscii85 = false;
    policy.GetBool(POLICY::kOnlyAscii85, onlyAscii85);
    bool pushed = false;
    for (const std::int32_t code :
         {IO::FILTER::kAscii85, IO::FILTER::kFlate, IO::FILTER::kRunLength}) {
        bool chosen = false;
        policy.GetFilter(code, chosen);
        if (chosen && !onlyAscii85) {
            filters.PushFilter(code);
            pushed = true;
        }
    }
    if (!pushed) {
        filters.PushFilter(IO::FILTER::kAscii85);
    }
}

/// True for the kinds of spaces that keep a resource name of the job.
bool KeepsResourceName(COLOR::IConnectionColorSpace* space) {
    constexpr std::array kKinds = {COLOR::IID_ITILEPATTERNCOLORSPACE,
                                   COLOR::IID_ISEPARATIONCOLORSPACE, COLOR::IID_IDEVICENCOLORSPACE};
    return std::any_of(kKinds.begin(), kKinds.end(), [space](const GUID& kind) {
        return FindInterface<IObject>(space, kind) != nullptr;
    });
}

}  // namespace

IObject* CreatePostScriptConnectionSpace() {
    return new PostScriptConnectionSpace;
}

PostScriptConnectionSpace::PostScriptConnectionSpace() = default;

PostScriptConnectionSpace::~PostScriptConnectionSpace() {
    for (const ResourceId id : mColorSpaceUses) {
        if (const auto space = FindColorSpace(id); KeepsResourceName(space.Get())) {
            space->Disaggregate(IO::IID_IDICTIONARY);
        }
    }
    mContext = nullptr;
}

Status PostScriptConnectionSpace::QueryInterface(const GUID& id, void** out) {
    if (id == GRAPHICS::CLSID_POSTSCRIPTCONNECTIONSPACE) {
        *out = static_cast<IObject*>(this);
        return STATUS::kOk;
    }
    const Status status = DelegateConnectionSpace::QueryInterface(id, out);
    if (status == STATUS::kOk || mBase == nullptr) {
        return status;
    }
    return mBase->QueryInterface(id, out);
}

void PostScriptConnectionSpace::PlayTo(IConnectionSpace& /*space*/) const {
    LogError(kModule) << "Unimplemented";
}

RENDERING::IConnectionSpaceDelegate* PostScriptConnectionSpace::Delegate() {
    return FindInterface<RENDERING::IConnectionSpaceDelegate>(
        this, RENDERING::IID_ICONNECTIONSPACEDELEGATE);
}

bool PostScriptConnectionSpace::Init(IO::IDataProvider* stream, IClassFactory* factory,
                                     const IO::IDictionary* policy) {
    if (stream == nullptr) {
        LogError(kModule) << "Cannot accept a NULL data provider.";
        return false;
    }
    if (factory == nullptr) {
        LogError(kModule) << "Cannot accept a NULL factory.";
        return false;
    }
    Aggregate(stream, IO::IID_IDATAPROVIDER);
    if (policy != nullptr) {
        TInterfacePtr<IO::IDictionary> copy;
        policy->CopyTo(copy);
        Aggregate(copy.Get(), IO::IID_IPOSTSCRIPTPOLICYDICT);
    }
    mFactory = factory;
    const auto base =
        TInterfacePtr<IPostScriptDataStream>::Adopt(CreatePostscriptDataStream(stream));
    if (base) {
        mStreams.Push(base.Get());
        base->SetSeparated();
    }
    ReadPolicy(policy);
    if (const auto delegate = CreateDelegate(mPolicy.delegateType, policy); delegate) {
        CreateOutputContext(stream, policy, *delegate);
        Aggregate(delegate.Get(), RENDERING::IID_ICONNECTIONSPACEDELEGATE);
        Aggregate(factory, IID_CLASSFACTORY);
        delegate->Init(mPolicy.setDefaultColour);
    }
    return Bless();
}

void PostScriptConnectionSpace::ReadPolicy(const IO::IDictionary* policy) {
    if (policy == nullptr) {
        return;
    }
    std::int32_t level = mPolicy.languageLevel;
    policy->GetInt(POLICY::kLanguageLevel, level);
    if (level == 2 || level == 3) {
        mPolicy.languageLevel = level;
    } else {
        LogNotice(kModule) << "I don't know level " << level << " PostScript.";
    }
    mPolicy.trueTypeDownload = mPolicy.languageLevel == 3;
    policy->GetBool(POLICY::kTrueTypeDownload, mPolicy.trueTypeDownload);
    policy->GetBool(POLICY::kPdfmarkTransparency, mPolicy.pdfmarkTransparency);
    auto type = static_cast<std::int32_t>(mPolicy.delegateType);
    policy->GetInt(POLICY::kDelegateType, type);
    mPolicy.delegateType = static_cast<RENDERING::TDelegateType>(type);
    policy->GetBool(POLICY::kSetDefaultColour, mPolicy.setDefaultColour);
    policy->GetByte(POLICY::kTilingFlag, mPolicy.tilingFlag);
    policy->GetBool(POLICY::kFlipImages, mPolicy.flipImages);
}

TInterfacePtr<RENDERING::IConnectionSpaceDelegate> PostScriptConnectionSpace::CreateDelegate(
    RENDERING::TDelegateType type, const IO::IDictionary* policy) {
    using DelegatePtr = TInterfacePtr<RENDERING::IConnectionSpaceDelegate>;
    const auto maker = CreateObject<RENDERING::IConnectionSpaceDelegateFactory>(
        mFactory, RENDERING::CLSID_CONNECTIONSPACEDELEGATEFACTORY);
    if (!maker) {
        LogError(kModule) << "Failed to create IConnectionSpaceDelegate";
        return nullptr;
    }
    auto delegate =
        DelegatePtr::Adopt(maker->CreateConnectionSpaceDelegate(*mFactory, type, policy));
    if (!delegate) {
        LogError(kModule) << "Failed to create default ConnectionSpace Delegate";
        return nullptr;
    }
    if (mPolicy.pdfmarkTransparency) {
        auto wrapper = DelegatePtr::Adopt(RENDERING::CreateJAWSWorkaroundConnectionSpaceDelegate(
            *mFactory, mStreams, delegate.Get(),
            FindInterface<IO::IDictionary>(this, IO::IID_IPOSTSCRIPTPOLICYDICT)));
        if (wrapper) {
            return wrapper;
        }
        LogError(kModule) << "Could not manufacture a jaws workaround delegate. Disabled.";
    }
    return delegate;
}

void PostScriptConnectionSpace::CreateOutputContext(IO::IDataProvider* stream,
                                                    const IO::IDictionary* policy,
                                                    RENDERING::IConnectionSpaceDelegate& delegate) {
    const auto filters = CreateObject<IO::IOutputFilterStack>(mFactory, IO::IID_IOUTPUTFILTERSTACK);
    if (!filters) {
        LogError(kModule) << "Failed to create IID_IOUTPUTFILTERSTACK";
        return;
    }
    filters->Attach(stream);
    if (policy != nullptr) {
        PushFilters(*filters, *policy);
    }
    if (IPostScriptDataStream* base = mStreams.Base(); base != nullptr) {
        base->Aggregate(filters.Get(), IO::IID_IOUTPUTFILTERSTACK);
    }
    auto context = MakeOutputContext();
    if (context && context->Init(mFactory)) {
        context->ShareNames(Names());
        delegate.Aggregate(context.Get(), IID_IPOSTSCRIPTOUTPUTCONTEXT);
        mContext = std::move(context);
    }
}

TInterfacePtr<PostScriptOutputContext> PostScriptConnectionSpace::MakeOutputContext() {
    return MakeObject<PostScriptOutputContext>(mStreams);
}

bool PostScriptConnectionSpace::Bless() {
    if (GRAPHICS::BlessDelegateConnectionSpace(mFactory, this) != STATUS::kOk) {
        LogError(kModule) << "Failed to bless the delegate connection space.";
        return false;
    }
    mBase = FindInterface<GRAPHICS::IBaseConnectionSpace>(this, GRAPHICS::IID_IBASECONNECTIONSPACE);
    if (mBase == nullptr) {
        LogError(kModule) << "Failed to get IID_IBASECONNECTIONSPACE.";
        return false;
    }
    return true;
}

void PostScriptConnectionSpace::SetGraphicsState(GRAPHICS::IGraphicsState* state) {
    mGraphicsState = state;
    if (RENDERING::IConnectionSpaceDelegate* delegate = Delegate(); delegate != nullptr) {
        delegate->SetGraphicsState(state);
    }
    if (mContext) {
        mContext->SetGraphicsState(state);
    }
}

IPostScriptDataStream* PostScriptConnectionSpace::GetBaseStream() {
    return mStreams.Base();
}

void PostScriptConnectionSpace::WriteRawData(const void* data, std::int32_t length) {
    IPostScriptDataStream* stream = mStreams.Top();
    if (stream != nullptr && data != nullptr && length > 0) {
        stream->WriteBytes(static_cast<const std::uint8_t*>(data), length);
    }
}

void PostScriptConnectionSpace::WriteContextStreamData(const void* data, std::int32_t length) {
    if (mContext) {
        mContext->WriteStreamData(data, length);
    }
}

void PostScriptConnectionSpace::FlushContextStreamData() {
    if (mContext) {
        mContext->FlushStreamData();
    }
}

}  // namespace VANTIX::PS
