// SPDX-License-Identifier: MIT
#include "jawsworkaroundconnectionspacedelegate.h"

#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptconnectionspace/blendmodes.h"
#include "postscriptconnectionspace/iformobject.h"
#include "postscriptconnectionspace/policykeys.h"
#include "postscriptdatastream/formattext.h"

namespace VANTIX::RENDERING {

namespace {

constexpr const char* kModule = "src/jawsworkaroundconnectionspacedelegate";

const char* BoolText(bool value) {
    return value ? "true" : "false";
}

}  // namespace

JAWSWorkaroundConnectionSpaceDelegate::JAWSWorkaroundConnectionSpaceDelegate(
    PS::PostScriptStreamStack& streams, IConnectionSpaceDelegate* next, IO::IDictionary* policy)
    : mNext(next), mStreams(streams), mPolicy(policy) {
    if (mPolicy) {
        mPolicy->GetBool(PS::POLICY::kTransparencyWritten, mTransparencyWritten);
    }
}

Status JAWSWorkaroundConnectionSpaceDelegate::Aggregate(IObject* object, GUID id) {
    if (IConnectionSpaceDelegate* next = Next(); next != nullptr) {
        next->Aggregate(object, id);
    }
    return TObject::Aggregate(object, id);
}

void JAWSWorkaroundConnectionSpaceDelegate::Init(bool setDefaultColour) {
    if (IConnectionSpaceDelegate* next = Next(); next != nullptr) {
        next->Init(setDefaultColour);
    }
}

bool JAWSWorkaroundConnectionSpaceDelegate::SetColorSpace(COLOR::IConnectionColorSpace* space,
                                                          bool fill) {
    IConnectionSpaceDelegate* next = NextAfterExtGState();
    return next != nullptr && next->SetColorSpace(space, fill);
}

void JAWSWorkaroundConnectionSpaceDelegate::SetColorSpaceAndValues(
    COLOR::IConnectionColorSpace* space, const float* values, std::int32_t count, bool fill) {
    if (IConnectionSpaceDelegate* next = NextAfterExtGState(); next != nullptr) {
        next->SetColorSpaceAndValues(space, values, count, fill);
    }
}

bool JAWSWorkaroundConnectionSpaceDelegate::SetUncoloredPattern(
    const char* patternName, COLOR::IConnectionColorSpace* underlying, bool fill) {
    IConnectionSpaceDelegate* next = NextAfterExtGState();
    return next != nullptr && next->SetUncoloredPattern(patternName, underlying, fill);
}

bool JAWSWorkaroundConnectionSpaceDelegate::SetPatternColorSpace(const char* patternName) {
    IConnectionSpaceDelegate* next = NextAfterExtGState();
    return next != nullptr && next->SetPatternColorSpace(patternName);
}

void JAWSWorkaroundConnectionSpaceDelegate::Image(GRAPHICS::IRasterComponent& raster, float x,
                                                  float y, float width, float height) {
    if (IConnectionSpaceDelegate* next = NextAfterExtGState(); next != nullptr) {
        next->Image(raster, x, y, width, height);
    }
}

void JAWSWorkaroundConnectionSpaceDelegate::FillWithColorSpace(
    COLOR::IConnectionColorSpace* shading, ResourceId id, float x, float y, float width,
    float height, bool paint) {
    if (IConnectionSpaceDelegate* next = NextAfterExtGState(); next != nullptr) {
        next->FillWithColorSpace(shading, id, x, y, width, height, paint);
    }
}

void JAWSWorkaroundConnectionSpaceDelegate::SetGraphicsState(GRAPHICS::IGraphicsState* state) {
    mGraphicsState = state;
    if (IConnectionSpaceDelegate* next = Next(); next != nullptr) {
        next->SetGraphicsState(state);
    }
}

bool JAWSWorkaroundConnectionSpaceDelegate::CanMarkTheCanvas() const {
    const IConnectionSpaceDelegate* next = Next();
    return next == nullptr || next->CanMarkTheCanvas();
}

bool JAWSWorkaroundConnectionSpaceDelegate::WasDefaultColourSet() const {
    return !mNext || mNext->WasDefaultColourSet();
}

IConnectionSpaceDelegate* JAWSWorkaroundConnectionSpaceDelegate::Next() const {
    if (!mNext) {
        LogError(kModule) << "Missing next delegate.";
    }
    return mNext.Get();
}

IConnectionSpaceDelegate* JAWSWorkaroundConnectionSpaceDelegate::NextAfterExtGState() {
    BlastExtGState();
    return Next();
}

void JAWSWorkaroundConnectionSpaceDelegate::BlastExtGState() {
    if (mGraphicsState == nullptr) {
        LogError(kModule) << "GState Manager is nil.";
        return;
    }
    PS::IPostScriptDataStream* out = mStreams.Top();
    if (out == nullptr) {
        LogError(kModule) << "There is no current stream.";
        return;
    }
    const Transparency current = CurrentTransparency();
    auto* form = FindInterface<PS::IFormObject>(out, PS::IID_IFORMOBJECT);
    if (form != nullptr && mGraphicsState->GetSoftMaskHolder() != nullptr) {
        const auto* mask = FindInterface<PS::ISoftMaskGroup>(form, PS::IID_ISOFTMASKGROUP);
        if (mask == nullptr) {
            return;
        }
        Write(*out, current);
        mask->WriteExtGState(*out);
    } else {
        if (!mTransparencyWritten && current == mLast) {
            return;
        }
        mLast = current;
        Write(*out, current);
    }
    if (!mTransparencyWritten) {
        mTransparencyWritten = true;
        if (mPolicy) {
            mPolicy->SetBool(PS::POLICY::kTransparencyWritten, true);
        }
    }
}

JAWSWorkaroundConnectionSpaceDelegate::Transparency
JAWSWorkaroundConnectionSpaceDelegate::CurrentTransparency() const {
    return {mGraphicsState->GetAlpha(false), mGraphicsState->GetAlpha(true),
            mGraphicsState->GetBlendMode(), mGraphicsState->GetTextKnockout(),
            mGraphicsState->GetAlphaIsShape()};
}

void JAWSWorkaroundConnectionSpaceDelegate::Write(PS::IPostScriptDataStream& out,
                                                  const Transparency& transparency) {
    // Two reals of at most 13 characters, and names of at most 10.
    char line[160];
    PS::FormatText(
        line, sizeof line, "[/ca %g /CA %g /BM /%s /AIS %s /TK %s /SetTransparency pdfmark\n",
        static_cast<double>(transparency.fillAlpha), static_cast<double>(transparency.strokeAlpha),
        PS::GetPSBlendModeFromTBlenMode(transparency.blendMode),
        BoolText(transparency.alphaIsShape), BoolText(transparency.textKnockout));
    out << static_cast<const char*>(line);
}

IConnectionSpaceDelegate* CreateJAWSWorkaroundConnectionSpaceDelegate(
    IClassFactory& /*factory*/, PS::PostScriptStreamStack& streams, IConnectionSpaceDelegate* next,
    IO::IDictionary* policy) {
    if (next == nullptr) {
        LogError(kModule) << "Next delegate nil.";
        LogError(kModule) << "Initialization of JAWS workaround delgate failed.";
        return nullptr;
    }
    return MakeObject<JAWSWorkaroundConnectionSpaceDelegate>(streams, next, policy).Detach();
}

}  // namespace VANTIX::RENDERING
