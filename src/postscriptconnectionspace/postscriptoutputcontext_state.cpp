// SPDX-License-Identifier: MIT
#include <array>

#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptconnectionspace/postscriptoutputcontext.h"

namespace VANTIX::PS {

namespace {

constexpr std::array kIntentNames{"AbsoluteColorimetric", "RelativeColorimetric", "Saturation",
                                  "Perceptual"};

constexpr const char* kIntentText =
    "languagelevel 3 ge { /%s findcolorrendering {/ColorRendering findresource setcolorrendering} "
    "{ dup /DefaultColorRendering eq {pop} {/ColorRendering findresource setcolorrendering} ifelse "
    "} ifelse } if%s\n";

const char* IntentName(COLOR::TRenderingIntent intent) {
    return kIntentNames[static_cast<std::size_t>(intent)];
}

}  // namespace

PostScriptOutputContext::PostScriptOutputContext(PostScriptStreamStack& streams)
    : mStreams(streams) {}

bool PostScriptOutputContext::Init(IClassFactory* factory) {
    mFactory = factory;
    mState = CreateObject<GRAPHICS::IMutableGraphicsStateStack>(
        factory, GRAPHICS::CLSID_MUTABLEGRAPHICSSTATESTACK);
    if (mState == nullptr) {
        LogError("src/postscriptconnectionspace")
            << "Could not create a mutable graphics state stack from the registry.";
        return false;
    }
    return true;
}

IPostScriptDataStream* PostScriptOutputContext::GetBaseDataStream() {
    return mStreams.Base();
}

IO::IOutputFilterStack* PostScriptOutputContext::CurrentFilters() const {
    return FindInterface<IO::IOutputFilterStack>(mStreams.Top(), IO::IID_IOUTPUTFILTERSTACK);
}

void PostScriptOutputContext::WriteText(std::string_view text) const {
    IO::IOutputFilterStack* filters = CurrentFilters();
    if (filters != nullptr && !text.empty()) {
        filters->Write(text.data(), static_cast<std::int32_t>(text.size()));
    }
}

void PostScriptOutputContext::PushOutputFilter(std::int32_t selector) {
    if (IO::IOutputFilterStack* filters = DataFilters(); filters != nullptr) {
        filters->PushFilter(selector);
    }
}

void PostScriptOutputContext::PopOutputFilter() {
    if (IO::IOutputFilterStack* filters = DataFilters(); filters != nullptr) {
        filters->PopFilter();
    }
}

void PostScriptOutputContext::WriteStreamData(const void* data, std::int32_t length) {
    IO::IOutputFilterStack* filters = DataFilters();
    if (filters != nullptr && data != nullptr && length > 0) {
        filters->WriteFilteredData(data, length);
    }
}

void PostScriptOutputContext::FlushStreamData() {
    if (IO::IOutputFilterStack* filters = DataFilters(); filters != nullptr) {
        filters->EndFilteredData();
    }
}

void PostScriptOutputContext::PushState() {
    if (mState != nullptr) {
        mState->Push();
    }
}

void PostScriptOutputContext::PopState() {
    if (mState != nullptr) {
        mState->Pop();
    }
}

void PostScriptOutputContext::BeginRecording() {
    PushState();
    if (mState != nullptr) {
        mState->Forget();
    }
    mSaves.push_back(0);
}

void PostScriptOutputContext::CloseSaves() {
    while (!mSaves.empty() && mSaves.back() > 0) {
        GRestore();
    }
}

void PostScriptOutputContext::EndRecording() {
    if (!mSaves.empty()) {
        for (; mSaves.back() > 0; --mSaves.back()) {
            PopState();
        }
        mSaves.pop_back();
        PopState();
    }
}

void PostScriptOutputContext::GSave() {
    if (!mSaves.empty()) {
        ++mSaves.back();
    }
    PushState();
    WriteText("gsave\n");
}

void PostScriptOutputContext::GRestore() {
    // What a form did not save is not its own to restore.
    if (!mSaves.empty() && --mSaves.back() < 0) {
        mSaves.back() = 0;
        return;
    }
    PopState();
    WriteText("grestore\n");
}

bool PostScriptOutputContext::StoreIntent(std::int32_t index, COLOR::TRenderingIntent intent) {
    const auto wanted = static_cast<std::int32_t>(intent);
    const auto last = static_cast<std::int32_t>(kIntentNames.size()) - 1;
    if (mState == nullptr || wanted < 0 || wanted > last) {
        return false;
    }
    const std::int32_t stored = mState->GetRenderingIntent(index);
    if (wanted == (stored == -1 ? last : stored)) {
        return false;
    }
    mState->SetRenderingIntent(index, wanted);
    return true;
}

void PostScriptOutputContext::SetRenderingIntent(COLOR::TRenderingIntent intent) {
    if (StoreIntent(0, intent)) {
        mText.Clear();
        mText.Format(kIntentText, IntentName(intent), " ");
        WriteText(mText.View());
    }
}

void PostScriptOutputContext::SetRenderingIntent2(COLOR::TRenderingIntent intent) {
    if (StoreIntent(1, intent)) {
        mText.Clear();
        mText.Format(kIntentText, IntentName(intent), "");
        WriteText(mText.View());
    }
}

COLOR::TRenderingIntent PostScriptOutputContext::FirstIntent() const {
    return mGraphicsState == nullptr ? COLOR::TRenderingIntent::kPerceptual
                                     : mGraphicsState->GetRenderingIntent();
}

COLOR::TRenderingIntent PostScriptOutputContext::SecondIntent() const {
    return mGraphicsState == nullptr ? COLOR::TRenderingIntent::kPerceptual
                                     : mGraphicsState->GetRenderingIntent2();
}

void PostScriptOutputContext::SetOverprint(std::int32_t overprint, bool mode, bool fill) {
    const std::int32_t on = overprint == 1 ? 1 : 0;
    const std::int32_t modeValue = mode ? 1 : 0;
    // The interpreter has one parameter for both kinds: index 3 is what was written last.
    if (mState == nullptr ||
        (mState->GetOverprint(3) == on && mState->GetOverprint(2) == modeValue)) {
        return;
    }
    mState->SetOverprint(fill ? 0 : 1, on);
    mState->SetOverprint(2, modeValue);
    if (on == 0) {
        WriteText("false setoverprint\n");
        return;
    }
    mText.Clear();
    mText.Format("true setoverprint systemdict /setoverprintmode known {%s setoverprintmode} if \n",
                 mode ? "true" : "false");
    WriteText(mText.View());
}

void PostScriptOutputContext::TranslateAndScale(float tx, float ty, float sx, float sy) {
    mText.Clear();
    if (tx != 0 || ty != 0) {
        mText.Format("\n%.8g %.8g translate\n", tx, ty);
    }
    if (sx != 1 || sy != 1) {
        mText.Format("\n%.8g %.8g scale\n", sx, sy);
    }
    WriteText(mText.View());
}

void PostScriptOutputContext::SetCurrentTextMatrix(const float matrix[6]) {
    if (mState != nullptr && matrix != nullptr) {
        mState->SetTextMatrix(matrix);
    }
}

void PostScriptOutputContext::GraphicsStateStackPassThrough(const void* arguments) {
    if (mState != nullptr) {
        mState->PassThrough(arguments);
    }
}

// Image data go straight to the stream: only a recorded pattern cell keeps them apart.
void PostScriptOutputContext::BeginImageData() {}

void PostScriptOutputContext::EndImageData() {}

}  // namespace VANTIX::PS
