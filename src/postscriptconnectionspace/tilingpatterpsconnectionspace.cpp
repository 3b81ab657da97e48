// SPDX-License-Identifier: MIT
// Procedures of tiling patterns (PostScript Language Reference, 4.9.2).
#include "postscriptconnectionspace/tilingpatterpsconnectionspace.h"

#include <algorithm>

#include "core/graphics/irastercomponent.h"
#include "core/libsupport/abstractio/libutils.h"
#include "postscriptconnectionspace/policykeys.h"
#include "postscriptconnectionspace/tilepatternpsoutputcontext.h"

namespace VANTIX::PS {

namespace {

/// Path elements of one block: with seven objects each they stay below the 65535 of an array
/// (PostScript Language Reference, appendix B).
constexpr std::int32_t kMostBlockElements = 4096;

}  // namespace

TilingPatterPSConnectionSpace::TilingPatterPSConnectionSpace(
    PostScriptConnectionSpace& owner, COLOR::IPatternConnectionColorSpace& pattern)
    : mOwner(owner), mPattern(pattern) {
    pattern.GetBounds(mBounds[0], mBounds[1], mBounds[2], mBounds[3]);
    mFontsPending = false;
}

bool TilingPatterPSConnectionSpace::IsColoured() const {
    return mPattern.GetPaintType() != kUncolouredPaintType;
}

bool TilingPatterPSConnectionSpace::Init(IO::IDataProvider* stream, IClassFactory* factory,
                                         const IO::IDictionary* policy) {
    TInterfacePtr<IO::IDictionary> copy;
    if (policy != nullptr) {
        policy->CopyTo(copy);
    } else if (!IsColoured()) {
        CreatePersistentDictionary(factory, copy);
    }
    if (!IsColoured()) {
        if (!copy) {
            return false;
        }
        copy->SetBool(POLICY::kSetDefaultColour, false);
    }
    // The masks of an uncoloured cell stay masks: it may neither choose a colour space nor paint an
    // image, of which one that stands for a mask is made.
    const bool isPlain = mOwner.GetPolicy().tilingFlag != 0 || !IsColoured();
    if (isPlain && copy) {
        copy->SetBool(POLICY::kPdfmarkTransparency, false);
    }
    const bool isReady = PostScriptConnectionSpace::Init(stream, factory, copy.Get());
    if (isPlain) {
        mPolicy.pdfmarkTransparency = mOwner.GetPolicy().pdfmarkTransparency;
    }
    return isReady && mContext;
}

TInterfacePtr<PostScriptOutputContext> TilingPatterPSConnectionSpace::MakeOutputContext() {
    IPostScriptDataStream* outer = GetBaseStream();
    if (outer == nullptr) {
        return nullptr;
    }
    return MakeObject<TilePatternPSOutputContext>(mStreams, *outer, GetPolicy().languageLevel,
                                                  PatternImageCounter(), IsColoured());
}

Status TilingPatterPSConnectionSpace::Record(const GRAPHICS::IGraphic& cell) {
    Names().Begin(DefinedNames::Text::kProcedure);
    BeginBody();
    SetInitialState();
    const Status status = cell.PlayTo(*Base());
    CloseGroups();
    EndBody();
    Names().End(false);
    if (status != STATUS::kOk) {
        return status;
    }
    TInterfacePtr<IO::IDataProvider> provider;
    mStreams.Top()->GetDataProvider(provider);
    return provider->Flush();
}

void TilingPatterPSConnectionSpace::SetInitialState() {
    constexpr float kInitialMiterLimit = 10;
    SetLineWidth(1);
    SetLineCap(0);
    SetLineJoin(0);
    SetMiterLimit(kInitialMiterLimit);
    SetDash(0, nullptr, 0);
    SetOverprintState(false);
}

void TilingPatterPSConnectionSpace::WriteProcedure(IPostScriptDataStream& out) {
    // Patterns that are made in the cell start from its matrix, and are made anew each time.
    if (mDefinesPatterns) {
        out << "8 dict begin\n/initialPageMatrix matrix currentmatrix def\n";
    }
    out.WriteDataStream(*mStreams.Top());
    if (mDefinesPatterns) {
        out << "end\n";
    }
}

bool TilingPatterPSConnectionSpace::IsRecordingCell(const GRAPHICS::IGraphic& cell) const {
    return mPattern.GetPaintProc() == &cell || mOwner.IsRecordingCell(cell);
}

void TilingPatterPSConnectionSpace::RegisterColorSpaceUse(ResourceId id) {
    // The names in the spaces serve the whole job, so they go when it ends.
    mOwner.RegisterColorSpaceUse(id);
}

void TilingPatterPSConnectionSpace::CloseBlock() {
    if (mBlockIsOpen) {
        WriteText("}exec\n");
        mBlockIsOpen = false;
    }
}

void TilingPatterPSConnectionSpace::CutBlock(std::int32_t elements) {
    if (!mBlockIsOpen || IsDrawingSuppressed()) {
        return;
    }
    if (mBlockElements > kMostBlockElements - std::min(elements, kMostBlockElements)) {
        WriteText("}exec\n{");
        mBlockElements = 0;
    }
    mBlockElements += std::clamp(elements, 0, kMostBlockElements);
}

void TilingPatterPSConnectionSpace::RestoreGraphicsState() {
    PostScriptConnectionSpace::RestoreGraphicsState();
    CutBody();
}

Status TilingPatterPSConnectionSpace::PushFormObject(IFormObject& form) {
    CloseBlock();
    return PostScriptConnectionSpace::PushFormObject(form);
}

Status TilingPatterPSConnectionSpace::PopFormObject() {
    const Status status = PostScriptConnectionSpace::PopFormObject();
    CutBody();
    return status;
}

// A form in the cell is no part of its procedure: what is drawn there stands as on a page.

void TilingPatterPSConnectionSpace::MoveTo(float x, float y) {
    if (!mBlockIsOpen && !IsDrawingSuppressed() && !IsInForm()) {
        WriteText("{");
        mBlockIsOpen = true;
        mBlockElements = 0;
    }
    CutBlock(1);
    PostScriptConnectionSpace::MoveTo(x, y);
}

void TilingPatterPSConnectionSpace::LineTo(const float* points, std::int32_t count) {
    CutBlock(count);
    PostScriptConnectionSpace::LineTo(points, count);
}

void TilingPatterPSConnectionSpace::CurveTo(const float* points, std::int32_t count) {
    CutBlock(count);
    PostScriptConnectionSpace::CurveTo(points, count);
}

void TilingPatterPSConnectionSpace::PaintPath(bool fill, bool evenOdd) {
    if (!MayPaint()) {
        return;
    }
    if (IsInForm()) {
        if (IsColoured()) {
            ApplyPaintColor(fill);
        }
        WritePaintOperator(fill, evenOdd);
        return;
    }
    CloseBlock();
    SaveGraphicsState();
    WriteText("{\n");
    if (IsColoured()) {
        ApplyPaintColor(fill);
    }
    WriteText("}exec\n");
    WritePaintOperator(fill, evenOdd);
    RestoreGraphicsState();
}

void TilingPatterPSConnectionSpace::FillWithColorSpace(COLOR::IConnectionColorSpace* space,
                                                       ResourceId id, float x, float y, float width,
                                                       float height) {
    if (!IsColoured() || !mContext) {
        return;
    }
    if (IsInForm()) {
        PostScriptConnectionSpace::FillWithColorSpace(space, id, x, y, width, height);
        return;
    }
    CloseBlock();
    SaveGraphicsState();
    WriteText("{\n");
    mContext->BeginImageData();
    PostScriptConnectionSpace::FillWithColorSpace(space, id, x, y, width, height);
    mContext->EndImageData();
    WriteText("}exec\n");
    RestoreGraphicsState();
}

void TilingPatterPSConnectionSpace::DrawImage(GRAPHICS::IRasterComponent* raster, float x, float y,
                                              float width, float height) {
    if (IsDrawingSuppressed()) {
        return;
    }
    CloseBlock();
    if (!MayDrawImage(raster) || (!IsColoured() && !IsImageMask(*raster))) {
        return;
    }
    if (IsInForm()) {
        PostScriptConnectionSpace::DrawImage(raster, x, y, width, height);
        return;
    }
    WriteText("%START OF THE IMAGE DICTIONARY USING ReusableStreamDecode\n{");
    mContext->GSave();
    mContext->BeginImageData();
    PlaceImage(*raster, x, y, width, height);
    mContext->EndImageData();
    mContext->GRestore();
    WriteText("}exec\n\n%END OF THE IMAGE DICTIONARY USING ReusableStreamDecode\n");
}

bool TilingPatterPSConnectionSpace::BeginTextObject() {
    CloseBlock();
    return PostScriptConnectionSpace::BeginTextObject();
}

bool TilingPatterPSConnectionSpace::EndTextObject() {
    CloseBlock();
    return PostScriptConnectionSpace::EndTextObject();
}

void TilingPatterPSConnectionSpace::DrawTextW(const void* text, std::int32_t length) {
    // Two elements hold what shows a character in any mode, another two what begins a string.
    CutBlock(std::clamp(length, 0, kMostBlockElements) * 2 + 2);
    PostScriptConnectionSpace::DrawTextW(text, length);
}

void TilingPatterPSConnectionSpace::SaveInitialPageMatrix() {}

void TilingPatterPSConnectionSpace::WriteContextStreamData(const void* data, std::int32_t length) {
    mOwner.WriteContextStreamData(data, length);
}

void TilingPatterPSConnectionSpace::FlushContextStreamData() {
    mOwner.FlushContextStreamData();
}

// The procedure of an uncoloured pattern may not execute what sets a colour, nor what decides how
// colours are rendered.

void TilingPatterPSConnectionSpace::SelectRenderingIntent(COLOR::TRenderingIntent intent) {
    if (IsColoured()) {
        PostScriptConnectionSpace::SelectRenderingIntent(intent);
    }
}

void TilingPatterPSConnectionSpace::SelectRenderingIntent2(COLOR::TRenderingIntent intent) {
    if (IsColoured()) {
        PostScriptConnectionSpace::SelectRenderingIntent2(intent);
    }
}

void TilingPatterPSConnectionSpace::SetOverprintState(bool overprint) {
    if (IsColoured()) {
        PostScriptConnectionSpace::SetOverprintState(overprint);
    }
}

void TilingPatterPSConnectionSpace::ApplyOverprint(bool fill) {
    if (IsColoured()) {
        PostScriptConnectionSpace::ApplyOverprint(fill);
    }
}

void TilingPatterPSConnectionSpace::SetTextRenderingColor(
    GRAPHICS::IGraphicsState::TTextRendering mode) {
    if (IsColoured()) {
        PostScriptConnectionSpace::SetTextRenderingColor(mode);
    }
}

void TilingPatterPSConnectionSpace::AddPostScriptColorSpaceResource(ResourceId id,
                                                                    const char* name) {
    mDefinesPatterns = mDefinesPatterns || !IsInForm();
    PostScriptConnectionSpace::AddPostScriptColorSpaceResource(id, name);
}

const char* TilingPatterPSConnectionSpace::GetPostScriptResourceName(ResourceId id) {
    const char* name = PostScriptConnectionSpace::GetPostScriptResourceName(id);
    return name != nullptr ? name : mOwner.GetPostScriptResourceName(id);
}

bool TilingPatterPSConnectionSpace::WasDefined(ResourceId id) const {
    return PostScriptConnectionSpace::WasDefined(id) || mOwner.WasDefined(id);
}

}  // namespace VANTIX::PS
