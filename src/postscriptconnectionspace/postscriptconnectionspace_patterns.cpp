// SPDX-License-Identifier: MIT
#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptconnectionspace/postscriptconnectionspace.h"
#include "postscriptconnectionspace/postscriptoutputcontext.h"

namespace VANTIX::PS {

namespace {

constexpr const char* kModule = "src/postscriptconnectionspace";

// Neither kind of pattern is written yet: the resource stays missing, which every caller reports.
Status CreateTilePatternDictionary(COLOR::IPatternConnectionColorSpace* /*pattern*/) {
    return STATUS::kNotImplemented;
}

Status CreateShadingPatternDictionary(COLOR::IShadingPatternConnectionColorSpace* /*pattern*/) {
    return STATUS::kNotImplemented;
}

}  // namespace

void PostScriptConnectionSpace::RegisterColorSpaceUse(ResourceId id, bool /*fill*/) {
    RegisterColorSpaceUse(id);
}

void PostScriptConnectionSpace::RegisterColorSpaceUse(ResourceId id) {
    mColorSpaceUses.insert(id);
}

void PostScriptConnectionSpace::AddPostScriptColorSpaceResource(ResourceId id, const char* name) {
    if (name != nullptr && !mResources.emplace(id, name).second) {
        LogNotice(kModule) << "PostScript resource already exist, May you are building the same "
                              "resource multiple times.!!!";
    }
}

const char* PostScriptConnectionSpace::GetPostScriptResourceName(ResourceId id) {
    const auto found = mResources.find(id);
    return found == mResources.end() ? nullptr : found->second.c_str();
}

void PostScriptConnectionSpace::AddColorSpace(COLOR::IConnectionColorSpace* space, ResourceId id) {
    if (space == nullptr) {
        LogError(kModule) << "cannot add a NULL colorspace.";
        return;
    }
    if (GetPostScriptResourceName(id) != nullptr) {
        return;
    }
    if (auto* tile = FindInterface<COLOR::IPatternConnectionColorSpace>(
            space, COLOR::IID_ITILEPATTERNCOLORSPACE)) {
        if (CreateTilePatternDictionary(tile) != STATUS::kOk) {
            LogError(kModule) << "Unable to craete the Tile Pattern Dictionary.";
        }
    } else if (auto* shading = FindInterface<COLOR::IShadingPatternConnectionColorSpace>(
                   space, COLOR::IID_ISHADINGPATTERNCOLORSPACE)) {
        if (CreateShadingPatternDictionary(shading) != STATUS::kOk) {
            LogError(kModule) << "Unable to craete the Shading Pattern Dictionary (Type 2 Pattern "
                                 "Resource).!!!";
        }
    }
}

void PostScriptConnectionSpace::SetPatternColorSpaceAndColor(
    COLOR::IPatternConnectionColorSpace* pattern, ResourceId id, bool fill) {
    if (IsDrawingSuppressed()) {
        return;
    }
    RENDERING::IConnectionSpaceDelegate* delegate = Delegate();
    if (delegate == nullptr) {
        LogError(kModule) << "No Connection Space Delegate installed";
        return;
    }
    const char* name = GetPostScriptResourceName(id);
    if (name == nullptr) {
        if (CreateTilePatternDictionary(pattern) != STATUS::kOk) {
            LogError(kModule) << "Unable to create the Tile Pattern Dictionary.";
        }
        name = GetPostScriptResourceName(id);
    }
    if (name == nullptr) {
        LogError(kModule) << "Either No Pattern Resource or failed to craete the pattern resource.";
        return;
    }
    constexpr std::int32_t kUncoloured = 2;
    if (pattern == nullptr || pattern->GetPaintType() != kUncoloured) {
        delegate->SetPatternColorSpace(name);
    } else if (COLOR::IConnectionColorSpace* underlying = pattern->GetUnderlyingSpace()) {
        delegate->SetUncoloredPattern(name, underlying, fill);
    }
}

}  // namespace VANTIX::PS
