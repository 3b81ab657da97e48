// SPDX-License-Identifier: MIT
#include "core/color/iconnectioncolorspacefactory.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptconnectionspace/postscriptconnectionspace.h"
#include "postscriptconnectionspace/postscriptoutputcontext.h"
#include "postscriptdatastream/workbuffer.h"

namespace VANTIX::PS {

namespace {

constexpr const char* kModule = "src/postscriptconnectionspace";

/// A device space that the host's table does not keep, by the number of its family.
TInterfacePtr<COLOR::IConnectionColorSpace> CreateDeviceColorSpace(IClassFactory* factory,
                                                                   ResourceId id) {
    const auto maker = CreateObject<COLOR::IConnectionColorSpaceFactory>(
        factory, COLOR::IID_ICONNECTIONCOLORSPACEFACTORY);
    if (!maker) {
        return nullptr;
    }
    COLOR::IConnectionColorSpace* made = nullptr;
    if (id == "cmyk"_cc) {
        made = maker->CreateDeviceCMYKColorSpace();
    } else if (id == "gray"_cc) {
        made = maker->CreateDeviceGrayColorSpace();
    } else if (id == "rgb "_cc) {
        made = maker->CreateDeviceRGBColorSpace();
    }
    return TInterfacePtr<COLOR::IConnectionColorSpace>::Adopt(made);
}

}  // namespace

void PostScriptConnectionSpace::Fill() {
    PaintPath(true, false);
}

void PostScriptConnectionSpace::EOFill() {
    PaintPath(true, true);
}

void PostScriptConnectionSpace::Stroke() {
    PaintPath(false, true);
}

void PostScriptConnectionSpace::PaintPath(bool fill, bool evenOdd) {
    if (MayPaint()) {
        ApplyPaintColor(fill);
        WritePaintOperator(fill, evenOdd);
    }
}

bool PostScriptConnectionSpace::MayPaint() {
    const RENDERING::IConnectionSpaceDelegate* delegate = Delegate();
    return !IsDrawingSuppressed() && (delegate == nullptr || delegate->CanMarkTheCanvas());
}

void PostScriptConnectionSpace::ApplyPaintColor(bool fill) {
    const RENDERING::IConnectionSpaceDelegate* delegate = Delegate();
    if (delegate == nullptr || delegate->WasDefaultColourSet()) {
        ApplyCurrentColor(fill);
    }
}

void PostScriptConnectionSpace::WritePaintOperator(bool fill, bool evenOdd) {
    if (!fill) {
        WriteText("gsave stroke grestore\n");
    } else {
        WriteText(evenOdd ? "gsave eofill grestore\n" : "gsave fill grestore\n");
    }
}

void PostScriptConnectionSpace::ApplyOverprint(bool fill) {
    if (mContext && mGraphicsState != nullptr) {
        mContext->SetOverprint(mGraphicsState->GetOverprint(fill) ? 1 : 0,
                               mGraphicsState->GetOverprintMode() != 0, fill);
    }
}

TInterfacePtr<COLOR::IConnectionColorSpace> PostScriptConnectionSpace::FindColorSpace(
    ResourceId id) {
    TInterfacePtr<COLOR::IConnectionColorSpace> space;
    if (mBase == nullptr || !mBase->GetColorSpace(id, space.Receive())) {
        return nullptr;
    }
    return space;
}

void PostScriptConnectionSpace::ApplyCurrentColor(bool fill) {
    if (mGraphicsState == nullptr) {
        return;
    }
    ApplyOverprint(fill);
    const ResourceId id = mGraphicsState->GetColorSpaceID(fill);
    TInterfacePtr<COLOR::IConnectionColorSpace> space = FindColorSpace(id);
    if (FindInterface<IObject>(space.Get(), COLOR::IID_ISHADINGPATTERNCOLORSPACE) != nullptr) {
        // In a text that does not know it, it is made once more.
        if (GetPostScriptResourceName(id) == nullptr && WasDefined(id)) {
            AddColorSpace(space.Get(), id);
        }
        SetPatternColorSpaceAndColor(nullptr, id, fill);
        return;
    }
    if (auto* tile = FindInterface<COLOR::IPatternConnectionColorSpace>(
            space.Get(), COLOR::IID_ITILEPATTERNCOLORSPACE)) {
        SetPatternColorSpaceAndColor(tile, id, fill);
        return;
    }
    if (!space) {
        space = CreateDeviceColorSpace(mFactory, id);
    }
    RENDERING::IConnectionSpaceDelegate* delegate = Delegate();
    const std::int32_t components = space ? space->GetComponentCount() : 0;
    if (delegate == nullptr || components <= 0) {
        return;
    }
    WorkBuffer<float> values(static_cast<std::size_t>(components));
    if (values.Data() == nullptr) {
        return;
    }
    mGraphicsState->GetColor(fill, values.Data(), components);
    delegate->SetColorSpaceAndValues(space.Get(), values.Data(), components, fill);
}

void PostScriptConnectionSpace::SetTextRenderingColor(
    GRAPHICS::IGraphicsState::TTextRendering mode) {
    using Mode = GRAPHICS::IGraphicsState::TTextRendering;
    if (mode == Mode::kFill || mode == Mode::kFillStroke) {
        ApplyCurrentColor(true);
    } else if (mode == Mode::kStroke) {
        ApplyCurrentColor(false);
    }
}

void PostScriptConnectionSpace::FillWithColorSpace(COLOR::IConnectionColorSpace* space,
                                                   ResourceId id, float x, float y, float width,
                                                   float height) {
    ApplyOverprint(true);
    RENDERING::IConnectionSpaceDelegate* delegate = Delegate();
    if (delegate == nullptr) {
        LogError(kModule) << "No delegate.";
        return;
    }
    delegate->FillWithColorSpace(space, id, x, y, width, height, true);
}

bool PostScriptConnectionSpace::MayDrawImage(const GRAPHICS::IRasterComponent* raster) {
    if (IsDrawingSuppressed()) {
        return false;
    }
    if (Delegate() == nullptr) {
        LogError(kModule) << "No delegate around to handle image";
        return false;
    }
    return mContext && raster != nullptr;
}

void PostScriptConnectionSpace::PlaceImage(GRAPHICS::IRasterComponent& raster, float x, float y,
                                           float width, float height) {
    if (height < 0) {
        y += height;
        height = -height;
    }
    ApplyOverprint(true);
    if (mPolicy.flipImages) {
        Scale(1, -1);
        Translate(0, -height);
    }
    mContext->TranslateAndScale(x, y, width, height);
    Delegate()->Image(raster, x, y, width, height);
}

void PostScriptConnectionSpace::DrawImage(GRAPHICS::IRasterComponent* raster, float x, float y,
                                          float width, float height) {
    if (!MayDrawImage(raster)) {
        return;
    }
    WriteText("%%START OF THE IMAGE DRAW FUNCTION\n");
    mContext->GSave();
    PlaceImage(*raster, x, y, width, height);
    WriteText("\n");
    mContext->GRestore();
    WriteText("\n%%END OF THE IMAGE DRAW FUNCTION\n");
}

}  // namespace VANTIX::PS
