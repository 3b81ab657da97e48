// SPDX-License-Identifier: MIT
// Text objects and fonts that are selected (PostScript Language Reference, 5.1 and 5.11).
#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "basefontbuilder.h"
#include "core/fonts/ifontancillaries.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptconnectionspace/cmapnames.h"
#include "postscriptconnectionspace/postscriptconnectionspace.h"
#include "postscriptconnectionspace/postscriptoutputcontext.h"
#include "postscriptconnectionspace/pstextobject.h"

namespace VANTIX::PS {

namespace {

using GRAPHICS::IFontPackageHandler;
using GRAPHICS::TFontType;
using Mode = GRAPHICS::IGraphicsState::TTextRendering;

constexpr const char* kModule = "src/postscriptconnectionspace";
constexpr std::size_t kMostTextObjects = 255;

/// Modes whose outlines become the clip at the end of a text object.
bool EndsWithClip(Mode mode) {
    return mode == Mode::kFillClip || mode == Mode::kFillStrokeClip || mode == Mode::kClip;
}

/// Operator for a string whose colour is current, or null.
const char* ShowOperator(Mode mode) {
    switch (mode) {
        case Mode::kFill:
            return "show\n";
        case Mode::kStroke:
            return "false charpath stroke\n";
        case Mode::kInvisible:
            return "false charpath\n";
        case Mode::kClip:
            return "true charpath\n";
        default:
            return nullptr;
    }
}

}  // namespace

const char* PostScriptConnectionSpace::GetPostScriptCMapName(GRAPHICS::TEncoding encoding) {
    const char* name = NameOfCMap(encoding);
    if (*name == '\0') {
        LogError(kModule) << "Unhandled CMap encoding?";
    }
    return name;
}

TextState PostScriptConnectionSpace::GetTextState() const {
    if (mGraphicsState == nullptr) {
        return {};
    }
    const GRAPHICS::IGraphicsState& state = *mGraphicsState;
    return {state.GetCharSpacing(), state.GetWordSpacing(), state.GetHorizontalScaling(),
            state.GetTextLeading(), state.GetFontSize(),    state.GetTextRendering()};
}

bool PostScriptConnectionSpace::BeginTextObject() {
    if (mTextObjects.size() >= kMostTextObjects) {
        LogError(kModule) << "PSTextObject Stack Overflow....";
        return false;
    }
    if (!IsDrawingSuppressed()) {
        WriteText("%%BeginTextObject\n");
    }
    mTextObjects.push_back(MakeObject<PSTextObject>(*this));
    return true;
}

bool PostScriptConnectionSpace::EndTextObject() {
    if (mTextObjects.empty()) {
        LogError(kModule) << "A text object ends that was not begun.";
        return false;
    }
    if (!IsDrawingSuppressed()) {
        WriteText("%%EndTextObject\n");
    }
    mTextObjects.pop_back();
    if (EndsWithClip(GetTextState().rendering)) {
        Clip();
    }
    return true;
}

GRAPHICS::ITextObject* PostScriptConnectionSpace::GetCurrentTextObject() const {
    if (mTextObjects.empty()) {
        LogError(kModule) << "NO PSTextObject, Call To BeginTextObject is missing some where???";
        return nullptr;
    }
    return mTextObjects.back().Get();
}

IFontPackageHandler* PostScriptConnectionSpace::FindHandlerToShow() {
    auto* broker = FindInterface<GRAPHICS::IFontBroker>(this, GRAPHICS::IID_IFONTBROKER);
    if (broker == nullptr) {
        LogError(kModule) << "There ought to be a font broker attached to this connection space.";
        return nullptr;
    }
    IObject* font = FindFont(broker);
    auto* handler = FindInterface<IFontPackageHandler>(font, GRAPHICS::IID_IFONTPACKAGEHANDLER);
    if (font != nullptr && handler == nullptr) {
        LogError(kModule) << "Font does not have a package handler.";
    }
    return handler;
}

IObject* PostScriptConnectionSpace::FindFont(GRAPHICS::IFontBroker* broker) const {
    return broker == nullptr || mGraphicsState == nullptr
               ? nullptr
               : broker->FindFont(mGraphicsState->GetFontName(), mGraphicsState->GetFontSelector(),
                                  0);
}

void PostScriptConnectionSpace::DrawTextW(const void* text, std::int32_t length) {
    if (IsDrawingSuppressed() || text == nullptr || length <= 0) {
        return;
    }
    IFontPackageHandler* handler = FindHandlerToShow();
    if (handler != nullptr && !mTextObjects.empty()) {
        mTextObjects.back()->Show(*handler, text, length);
    }
}

void PostScriptConnectionSpace::DrawGlyphs(const std::uint16_t* /*glyphs*/, std::int32_t /*count*/,
                                           const std::uint16_t* /*text*/,
                                           std::int32_t /*textLength*/) {
    if (!IsDrawingSuppressed() && FindHandlerToShow() != nullptr && !mTextObjects.empty()) {
        LogError(kModule) << "Umimplemented text ouput using glyph ids";
    }
}

void PostScriptConnectionSpace::Show(std::span<const std::uint8_t> codes, Mode mode) {
    const char* operation = ShowOperator(mode);
    if (operation == nullptr) {
        LogError(kModule) << "Consult your PSTextObject for proper handling of TextRendering Mode";
        operation = "";
    }
    TextBuffer& line = StartLine();
    AppendHexString(line, codes);
    line.Append(operation);
    WriteRawData(line.View().data(), static_cast<std::int32_t>(line.Size()));
}

TextBuffer& PostScriptConnectionSpace::StartLine() {
    mLine.Clear();
    return mLine;
}

void PostScriptConnectionSpace::SelectCurrentFont() {
    if (IsDrawingSuppressed()) {
        return;
    }
    if (mFontsPending) {
        DownloadFonts(mBase);
    }
    constexpr std::array<float, 6> kIdentity{1, 0, 0, 1, 0, 0};
    SetTextFontAndSize(mTextObjects.empty() ? kIdentity.data() : mTextObjects.back()->GetMatrix());
}

void PostScriptConnectionSpace::SetTextMatrix(const float matrix[6]) {
    if (mContext) {
        mContext->SetCurrentTextMatrix(matrix);
    }
    SetTextFontAndSize(matrix);
}

void PostScriptConnectionSpace::SetTextFontAndSize(const float* matrix) {
    const TextState state = GetTextState();
    if (state.fontSize < 1) {
        LogError(kModule) << "Text Size should not be less than 1";
    }
    if (matrix == nullptr || IsDrawingSuppressed()) {
        return;
    }
    IObject* font = FindFont(FindInterface<GRAPHICS::IFontBroker>(this, GRAPHICS::IID_IFONTBROKER));
    auto* handler = FindInterface<IFontPackageHandler>(font, GRAPHICS::IID_IFONTPACKAGEHANDLER);
    if (handler == nullptr) {
        LogError(kModule) << "Failed to get font name for findfont";
        return;
    }
    char name[kFontNameBytes];
    GetPSFontName(handler, name);
    if (*name == '\0') {
        return;
    }
    const float size = state.fontSize > 1 ? state.fontSize : 1;
    TextBuffer& line = StartLine();
    line.Format("%s findfont [%.8g %.8g %.8g %.8g 0 0] makefont setfont\n", name,
                size * state.horizontalScaling * matrix[0], size * matrix[1], size * matrix[2],
                size * matrix[3]);
    WriteRawData(line.View().data(), static_cast<std::int32_t>(line.Size()));
}

void PostScriptConnectionSpace::GetPSFontName(IFontPackageHandler* handler,
                                              char name[kFontNameBytes]) {
    *name = '\0';
    if (handler == nullptr || mGraphicsState == nullptr) {
        return;
    }
    const JobFonts::NameMap& names = FontNames();
    const auto known = names.find(*handler);
    const std::string unknown =
        known == names.end() ? EscapeFontName(mGraphicsState->GetFontName()) : std::string();
    std::string_view base = known == names.end() ? unknown : known->second;
    std::string suffix = ") cvn";
    const TFontType type = handler->GetFontType();
    const bool isCIDKeyed = type == TFontType::kCIDKeyedCFF || type == TFontType::kCIDKeyedTrueType;
    if (isCIDKeyed && handler->IsEmbedded()) {
        // Whatever their programs, such fonts are downloaded as CIDFonts.
        const auto* info =
            FindInterface<GRAPHICS::ICompositeFontInfo>(handler, GRAPHICS::IID_ICOMPOSITEFONTINFO);
        const bool isVertical = info != nullptr && info->IsVertical();
        suffix = isVertical ? "-Identity-V) cvn" : "-Identity-H) cvn";
    } else if (isCIDKeyed) {
        const std::string cmap = GetPostScriptCMapName(handler->GetCIDEncoding());
        if (!cmap.empty()) {
            base = CutAtCMap(base);
            suffix = type == TFontType::kCIDKeyedCFF ? "-" + cmap + ") cvn"
                                                     : ") cvn (" + cmap + ") AddCMap";
        }
    }
    // A name that is too long is cut, the expression never.
    base = base.substr(0, kFontNameBytes - 2 - suffix.size());
    char* end = name;
    *end++ = '(';
    end = std::copy(base.begin(), base.end(), end);
    end = std::copy(suffix.begin(), suffix.end(), end);
    *end = '\0';
}

}  // namespace VANTIX::PS
