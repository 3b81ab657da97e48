// SPDX-License-Identifier: MIT
// Patterns as resources (PostScript Language Reference, 4.9).
#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <limits>

#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptconnectionspace/postscriptconnectionspace.h"
#include "postscriptconnectionspace/postscriptoutputcontext.h"
#include "postscriptconnectionspace/textbuffer.h"
#include "postscriptconnectionspace/tilingpatterpsconnectionspace.h"
#include "wpacketdataprovider.h"

namespace VANTIX::PS {

namespace {

constexpr const char* kModule = "src/postscriptconnectionspace";

/// Cells within cells. Each is a procedure within a procedure, which an interpreter reads by means
/// of stacks of some hundred entries.
constexpr std::int32_t kMostNestedCells = 28;

// What an interpreter can be asked for without an error or a standstill, in default user space.
constexpr double kLeastCellArea = 1e-10;
constexpr double kMostCellSide = 1e5;
/// Copies of the cell that lie on one another.
constexpr double kMostOverlaps = 1e4;

// Names are unique in the process, so that documents can be put together.
std::atomic<std::uint64_t> gPatterns{0};
std::atomic<std::uint64_t> gShadings{0};

/// "P1.5": a number of the process and the number of the space.
std::string ResourceName(const char* kind, std::atomic<std::uint64_t>& counter, ResourceId id) {
    return kind + std::to_string(++counter) + '.' + std::to_string(id);
}

/// Whether an interpreter makes a pattern of `matrix` that is not infinitely small in a cell of
/// `width` by `height`.
bool IsMakeable(const float matrix[6], float width, float height) {
    const double area = (double{matrix[0]} * matrix[3] - double{matrix[1]} * matrix[2]) *
                        static_cast<double>(width) * height;
    return std::all_of(matrix, matrix + 6, [](float value) { return std::isfinite(value); }) &&
           std::isfinite(area) && std::abs(area) >= kLeastCellArea;
}

/// The same of all numbers of a tiling pattern.
bool IsMakeable(const COLOR::IPatternConnectionColorSpace& pattern) {
    float matrix[6] = {1, 0, 0, 1, 0, 0};
    float x = 0;
    float y = 0;
    float width = 0;
    float height = 0;
    pattern.GetMatrix(matrix);
    pattern.GetBounds(x, y, width, height);
    const float xStep = pattern.GetXStep();
    const float yStep = pattern.GetYStep();
    // A side may vanish beside its coordinate.
    if (!(x + width > x) || !(y + height > y) || !IsMakeable(matrix, width, height) ||
        !IsMakeable(matrix, xStep, yStep)) {
        return false;
    }
    const double scale = std::abs(*std::max_element(
        matrix, matrix + 4, [](float a, float b) { return std::abs(a) < std::abs(b); }));
    return scale * std::max(width, height) <= kMostCellSide &&
           std::abs(double{width} / xStep * height / yStep) <= kMostOverlaps;
}

}  // namespace

std::int32_t PostScriptConnectionSpace::PositionOf(IPostScriptDataStream& stream) {
    TInterfacePtr<IO::IDataProvider> provider;
    stream.GetDataProvider(provider);
    return provider ? provider->GetPosition() : 0;
}

void PostScriptConnectionSpace::RegisterColorSpaceUse(ResourceId id, bool /*fill*/) {
    RegisterColorSpaceUse(id);
}

void PostScriptConnectionSpace::RegisterColorSpaceUse(ResourceId id) {
    mColorSpaceUses.insert(id);
}

void PostScriptConnectionSpace::AddPostScriptColorSpaceResource(ResourceId id, const char* name) {
    if (name == nullptr) {
        return;
    }
    std::string& known = mResources[id];
    if (!known.empty() && Names().Find(known) != nullptr) {
        LogNotice(kModule) << "PostScript resource already exist, May you are building the same "
                              "resource multiple times.!!!";
        return;
    }
    known = name;
    Names().Define(known);
}

bool PostScriptConnectionSpace::WasDefined(ResourceId id) const {
    return mResources.contains(id);
}

const char* PostScriptConnectionSpace::GetPostScriptResourceName(ResourceId id) {
    const auto found = mResources.find(id);
    const bool isKnown = found != mResources.end() && Names().Find(found->second) != nullptr;
    return isKnown ? found->second.c_str() : nullptr;
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
        if (CreateTilePatternDictionary(tile, id) != STATUS::kOk) {
            LogError(kModule) << "Unable to craete the Tile Pattern Dictionary.";
        }
    } else if (auto* shading = FindInterface<COLOR::IShadingPatternConnectionColorSpace>(
                   space, COLOR::IID_ISHADINGPATTERNCOLORSPACE)) {
        if (CreateShadingPatternDictionary(shading, id) != STATUS::kOk) {
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
        if (CreateTilePatternDictionary(pattern, id) != STATUS::kOk) {
            LogError(kModule) << "Unable to create the Tile Pattern Dictionary.";
        }
        name = GetPostScriptResourceName(id);
    }
    if (name == nullptr) {
        LogError(kModule) << "Either No Pattern Resource or failed to craete the pattern resource.";
        return;
    }
    if (pattern == nullptr || pattern->GetPaintType() != kUncolouredPaintType) {
        delegate->SetPatternColorSpace(name);
    } else if (COLOR::IConnectionColorSpace* underlying = pattern->GetUnderlyingSpace()) {
        delegate->SetUncoloredPattern(name, underlying, fill);
    }
}

Status PostScriptConnectionSpace::CreateTilePatternDictionary(
    COLOR::IPatternConnectionColorSpace* pattern, ResourceId id) {
    const GRAPHICS::IGraphic* cell = pattern == nullptr ? nullptr : pattern->GetPaintProc();
    if (cell == nullptr) {
        LogError(kModule) << "Do not find any PaintProc for the Pattern.";
        return STATUS::kInvalidArgument;
    }
    if (IsRecordingCell(*cell) || CellDepth() >= kMostNestedCells) {
        LogError(kModule) << "The cell of a pattern paints with its own pattern, or patterns are "
                             "nested too deeply.";
        return STATUS::kInvalidArgument;
    }
    if (!IsMakeable(*pattern)) {
        LogError(kModule) << "The cell of a pattern is too small or too large.";
        return STATUS::kInvalidArgument;
    }
    const auto provider =
        TInterfacePtr<IO::IPacketDataProvider>::Adopt(IO::CreateWPacketDataProvider());
    if (!provider) {
        LogError(kModule) << "Unable to create the DataProvider.";
        return STATUS::kNoProvider;
    }
    const auto recorder = MakeObject<TilingPatterPSConnectionSpace>(*this, *pattern);
    if (!recorder->Init(provider.Get(), mFactory,
                        FindInterface<IO::IDictionary>(this, IO::IID_IPOSTSCRIPTPOLICYDICT))) {
        LogError(kModule) << "Unable to create PostScriptConnectionSpace.";
        return STATUS::kInvalidArgument;
    }
    if (FindInterface<IObject>(mBase, GRAPHICS::IID_IFONTBROKER) != nullptr) {
        DownloadFonts(mBase);
    }
    if (const Status status = recorder->Record(*cell); status != STATUS::kOk) {
        LogError(kModule) << "The cell of a pattern could not be recorded.";
        return status;
    }
    const std::string name = ResourceName("P", gPatterns, id);
    WriteTilePattern(name.c_str(), *pattern, *recorder);
    AddPostScriptColorSpaceResource(id, name.c_str());
    return STATUS::kOk;
}

void PostScriptConnectionSpace::WriteTilePattern(const char* name,
                                                 const COLOR::IPatternConnectionColorSpace& pattern,
                                                 TilingPatterPSConnectionSpace& recorder) {
    constexpr std::int32_t kLastTilingType = 3;
    const auto& [x, y, width, height] = recorder.GetBounds();
    const bool isUncoloured = pattern.GetPaintType() == kUncolouredPaintType;
    TextBuffer text(0);
    text.Format(
        "/%s<<\n/PatternType 1\n/PaintType %d\n/TilingType %d\n/BBox[%.8g %.8g %.8g %.8g]\n"
        "/XStep %.8g\n/YStep %.8g\n/PaintProc\n{\npop\n",
        name, isUncoloured ? kUncolouredPaintType : 1,
        std::clamp(pattern.GetTilingType(), 1, kLastTilingType), x, y, x + width, y + height,
        pattern.GetXStep(), pattern.GetYStep());
    WriteRawData(text.View().data(), static_cast<std::int32_t>(text.Size()));
    recorder.WriteProcedure(*mStreams.Top());
    WriteText("} bind\n>>");
    float matrix[6] = {1, 0, 0, 1, 0, 0};
    pattern.GetMatrix(matrix);
    WriteMakePattern(matrix, mGroupDepth > 0);
}

void PostScriptConnectionSpace::WriteMakePattern(const float matrix[6], bool inGroup) {
    WriteText(inGroup ? "gsave initmatrix "
                      : "gsave /initialPageMatrix where { /initialPageMatrix get setmatrix} "
                        "{ initmatrix } ifelse ");
    WriteOperator("[%.8g %.8g %.8g %.8g %.8g %.8g] makepattern store grestore\n", matrix[0],
                  matrix[1], matrix[2], matrix[3], matrix[4], matrix[5]);
}

Status PostScriptConnectionSpace::CreateShadingPatternDictionary(
    COLOR::IShadingPatternConnectionColorSpace* pattern, ResourceId id) {
    if (pattern == nullptr) {
        LogError(kModule) << "Shading Pattern Color Space can't be NULL!!!";
        return STATUS::kInvalidArgument;
    }
    RENDERING::IConnectionSpaceDelegate* delegate = Delegate();
    if (delegate == nullptr) {
        LogError(kModule) << "No Connection Space Delegate installed!!!";
        return STATUS::kInvalidArgument;
    }
    float matrix[6] = {1, 0, 0, 1, 0, 0};
    pattern->GetMatrix(matrix);
    IPostScriptDataStream* stream = mStreams.Top();
    if (stream == nullptr || !mContext || !IsMakeable(matrix, 1, 1)) {
        return STATUS::kInvalidArgument;
    }
    ApplyOverprint(true);
    const std::int32_t before = PositionOf(*stream);
    mContext->BeginImageData();
    delegate->FillWithColorSpace(pattern->GetShading(), id, 0, 0, 0, 0, false);
    mContext->EndImageData();
    // Without a dictionary on the operand stack there is nothing to define.
    if (before != std::numeric_limits<std::int32_t>::max() && PositionOf(*stream) == before) {
        return STATUS::kInvalidArgument;
    }
    const std::string shading = ResourceName("Sh", gShadings, id);
    const std::string name = ResourceName("P", gPatterns, id);
    WriteOperator("/%s exch def\n", shading.c_str());
    WriteOperator("/%s<<\n\t/PatternType 2\n\t/Shading %s\n>>", name.c_str(), shading.c_str());
    WriteMakePattern(matrix, false);
    AddPostScriptColorSpaceResource(id, name.c_str());
    return STATUS::kOk;
}

}  // namespace VANTIX::PS
