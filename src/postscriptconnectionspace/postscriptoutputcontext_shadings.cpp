// SPDX-License-Identifier: MIT
// Shading dictionaries of types 1 to 7 (PostScript Language Reference, 4.9.3).
#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>

#include "core/graphics/pluginhelper/colorhelpers.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptconnectionspace/colorspacetexts.h"
#include "postscriptconnectionspace/functiondictionaries.h"
#include "postscriptconnectionspace/postscriptoutputcontext.h"
#include "postscriptdatastream/workbuffer.h"

namespace VANTIX::PS {

namespace {

constexpr const char* kModule = "src/postscriptconnectionspace";
constexpr std::int32_t kShadingLevel = 3;
/// Longest string of an interpreter (PostScript Language Reference, appendix B).
constexpr std::int32_t kLongestString = 65535;

// Numbers of the meshes' data in a process.
std::atomic<std::int64_t> freeFormMeshes{0};
std::atomic<std::int64_t> latticeMeshes{0};
std::atomic<std::int64_t> patchMeshes{0};

/// Whether `space` has a text to be written.
bool IsWritable(COLOR::IConnectionColorSpace& space, bool colourManaged) {
    if (const FourCC family = GRAPHICS::HELPER::GetOwnFamily(&space); family != 0) {
        return colourManaged || DeviceSpaceName(family) != nullptr;
    }
    if (const auto* deviceN = FindInterface<COLOR::IDeviceNConnectionColorSpace>(
            &space, COLOR::IID_IDEVICENCOLORSPACE)) {
        return deviceN->GetAlternateSpace() != nullptr;
    }
    if (const auto* separation = FindInterface<COLOR::ISeparationConnectionColorSpace>(
            &space, COLOR::IID_ISEPARATIONCOLORSPACE)) {
        return separation->GetAlternateSpace() != nullptr;
    }
    return FindInterface<COLOR::ICalibratedConnectionColorSpace>(
               &space, COLOR::IID_ICALIBRATEDCOLORSPACE) != nullptr;
}

bool RefuseGeometry(std::int32_t type) {
    LogError(kModule) << "The geometry of a Type " << type
                      << " Shading Dictionary cannot be written.";
    return false;
}

/// Whether the function takes all inputs of a shading: an interpreter does not clip them.
bool Covers(const COLOR::IColorFunction& function, std::span<const float> domain) {
    if (const auto* array =
            FindInterface<COLOR::IFunctionArray>(&function, COLOR::IID_IFUNCTIONARRAY)) {
        for (std::int32_t i = 0; i < array->GetFunctionCount(); ++i) {
            const COLOR::IColorFunction* member = array->GetFunction(i);
            if (member == nullptr || member == &function || !Covers(*member, domain)) {
                return false;
            }
        }
    }
    const float* own = function.GetDomain();
    if (own == nullptr || static_cast<std::size_t>(function.GetInputCount()) != domain.size() / 2) {
        return false;
    }
    for (std::size_t i = 0; i < domain.size(); i += 2) {
        if (!(own[i] <= domain[i] && domain[i] <= domain[i + 1] && domain[i + 1] <= own[i + 1])) {
            return false;
        }
    }
    return true;
}

/// Whether an interpreter takes the sizes of the mesh's fields, and a Decode array for `components`
/// values a vertex.
bool IsWellFormed(const COLOR::IMeshShadingColorSpace& mesh, std::int32_t components,
                  bool hasFlags) {
    constexpr std::array kFlagBits{2, 4, 8};
    constexpr std::array kComponentBits{1, 2, 4, 8, 12, 16};
    constexpr std::array kCoordinateBits{1, 2, 4, 8, 12, 16, 24, 32};
    const auto has = [](const auto& bits, std::int32_t value) {
        return std::find(bits.begin(), bits.end(), value) != bits.end();
    };
    std::int32_t count = 0;
    const float* decode = mesh.GetDecode(count);
    return (!hasFlags || has(kFlagBits, mesh.GetBitsPerFlag())) &&
           has(kComponentBits, mesh.GetBitsPerComponent()) &&
           has(kCoordinateBits, mesh.GetBitsPerCoordinate()) &&
           (decode == nullptr || count == 0 || count == 4 + 2 * components);
}

/// The bytes of a mesh, its own or converted ones.
class MeshData {
public:
    /// Converts along `route` unless that is null.
    MeshData(const COLOR::IMeshShadingColorSpace& mesh, const ColorRoute* route) {
        if (route == nullptr) {
            mBytes = mesh.GetMeshData(mSize);
            return;
        }
        const auto convert = [&](std::uint8_t* out, std::int32_t size) {
            const bool done =
                mesh.ConvertMeshData(*route->destination, route->first, route->second, out, &size);
            return done ? size : -1;
        };
        mSize = std::max(convert(nullptr, 0), 0);
        mConverted.emplace(static_cast<std::size_t>(mSize));
        std::uint8_t* room = mConverted->Data();
        mBytes = mSize > 0 && room != nullptr && convert(room, mSize) >= 0 ? room : nullptr;
    }

    /// Null when there are none.
    [[nodiscard]] const std::uint8_t* Bytes() const { return mSize < 0 ? nullptr : mBytes; }

    [[nodiscard]] std::int32_t Size() const { return mSize; }

private:
    std::optional<WorkBuffer<std::uint8_t>> mConverted;
    const std::uint8_t* mBytes = nullptr;
    std::int32_t mSize = 0;
};

const char* BooleanText(bool value) {
    return value ? "true" : "false";
}

}  // namespace

struct PostScriptOutputContext::ShadingOptions {
    std::int32_t languageLevel;
    std::int32_t type;
    bool paint;
    bool colourManaged;
};

/// A dictionary that nothing hinders any more.
struct PostScriptOutputContext::ShadingJob {
    const COLOR::IShadingColorSpace& shading;
    ColorRoute route;
    ShadingOptions options;
    TextBuffer function{0};  ///< empty for none
};

/// What an axial or radial shading has of its own.
struct PostScriptOutputContext::Gradient {
    std::array<float, 2> domain{0, 1};
    bool start = false;
    bool end = false;
    std::span<const float> coordinates;

    template <class T>
    Gradient(const T& shading, std::span<float> room) : coordinates(room) {
        shading.GetDomain(domain.data());
        shading.GetExtend(start, end);
        shading.GetCoordinates(room.data());
    }
};

/// What the types of meshes do not share.
struct PostScriptOutputContext::MeshKind {
    const char* resource;  ///< first part of the name of its data
    std::atomic<std::int64_t>& counter;
    bool hasFlags;
    std::int32_t verticesPerRow;
};

std::optional<PostScriptOutputContext::ShadingJob> PostScriptOutputContext::PrepareShading(
    const COLOR::IShadingColorSpace* shading, COLOR::IConnectionColorSpace* destination,
    const ShadingOptions& options, std::span<const float> domain) const {
    if (shading == nullptr || options.languageLevel < kShadingLevel) {
        return std::nullopt;
    }
    const COLOR::IColorFunction* function = shading->GetFunction();
    COLOR::IConnectionColorSpace* space = shading->GetShadingSpace();
    const bool lacksFunction = function == nullptr && !domain.empty();
    if (lacksFunction || space == nullptr) {
        LogError(kModule) << "Required entry " << (lacksFunction ? "Function" : "ColorSpace")
                          << " for Type " << options.type << " Shading Dictionary is missing!";
        return std::nullopt;
    }
    ShadingJob job{*shading, {*space, destination, FirstIntent(), SecondIntent()}, options};
    if (!IsWritable(job.route.Target(), options.colourManaged)) {
        LogError(kModule) << "Unhandled colorspace.";
        return std::nullopt;
    }
    const bool fits = function == nullptr ||
                      (domain.empty() ? function->GetInputCount() == 1 : Covers(*function, domain));
    if (!fits) {
        LogError(kModule) << "The function of a Type " << options.type
                          << " Shading Dictionary does not take its inputs.";
    }
    if (!fits || (function != nullptr &&
                  AppendFunction(*function, job.route, job.function) != STATUS::kOk)) {
        return std::nullopt;
    }
    return job;
}

void PostScriptOutputContext::WriteShadingDictionaryCommon(const ShadingJob& job) {
    mText.Clear();
    mText.Format("<<\n\t/ShadingType %d\n\t/ColorSpace ", job.options.type);
    WriteText(mText.View());
    WriteColorSpaceToPostScript(job.route.Target(), job.options.colourManaged);
    mText.Clear();
    std::int32_t count = 0;
    const float* background = job.shading.GetBackground(count);
    if (background != nullptr && count > 0 && count <= COLOR::kMaxComponents &&
        count == job.route.source.GetComponentCount()) {
        std::array<float, COLOR::kMaxComponents> values{};
        std::copy_n(background, count, values.begin());
        if (job.route.ApplyToHostForm(values.data())) {
            mText.Append("\n\t/Background [");
            std::for_each_n(values.begin(), job.route.Target().GetComponentCount(),
                            [this](float value) { mText.Format("%.8g ", value); });
            mText.Append("]");
        }
    }
    float box[4] = {};
    if (job.shading.GetBoundingBox(box) && box[0] != box[2] && box[1] != box[3]) {
        mText.Format("\n\t/BBox [%.8g %.8g %.8g %.8g]", box[0], box[1], box[2], box[3]);
    }
}

void PostScriptOutputContext::WriteShadingFunction(const ShadingJob& job) {
    if (job.function.Size() > 0) {
        mText.Append("\n\t/Function ");
        WriteText(mText.View());
        WriteText(job.function.View());
        mText.Clear();
    }
}

void PostScriptOutputContext::FinishShading(const ShadingJob& job) {
    mText.Format("\n>> %s\n", job.options.paint ? "shfill" : "");
    WriteText(mText.View());
}

bool PostScriptOutputContext::WriteFunctionBasedShadingDictionary(
    COLOR::IFunctionShadingColorSpace* shading, COLOR::IConnectionColorSpace* destination,
    std::int32_t languageLevel, bool paint, bool colourManaged) {
    float domain[4] = {0, 1, 0, 1};
    float matrix[6] = {1, 0, 0, 1, 0, 0};
    if (shading != nullptr) {
        shading->GetDomain(domain);
        shading->GetMatrix(matrix);
    }
    const auto [a, b, c, d, e, f] = matrix;
    const auto job =
        PrepareShading(shading, destination, {languageLevel, 1, paint, colourManaged}, domain);
    if (!job) {
        return false;
    }
    // A matrix without an inverse paints nothing, and an interpreter stumbles over it.
    if (!std::isnormal(a * d - b * c)) {
        return RefuseGeometry(1);
    }
    WriteShadingDictionaryCommon(*job);
    mText.Format("\n\t/Domain [%.8g %.8g %.8g %.8g]", domain[0], domain[1], domain[2], domain[3]);
    mText.Format("\n\t/Matrix [%.8g %.8g %.8g %.8g %.8g %.8g]", a, b, c, d, e, f);
    WriteShadingFunction(*job);
    FinishShading(*job);
    return true;
}

bool PostScriptOutputContext::WriteGradientDictionary(const COLOR::IShadingColorSpace& shading,
                                                      COLOR::IConnectionColorSpace* destination,
                                                      const ShadingOptions& options,
                                                      const Gradient& gradient) {
    const auto job = PrepareShading(&shading, destination, options, gradient.domain);
    if (!job) {
        return false;
    }
    WriteShadingDictionaryCommon(*job);
    // Six digits: a host that has more of them keeps its functions' domains wider than that.
    mText.Format("\n\t/Domain [%g %g]", gradient.domain[0], gradient.domain[1]);
    mText.Format("\n\t/Extend [%s %s]", BooleanText(gradient.start), BooleanText(gradient.end));
    WriteShadingFunction(*job);
    mText.Append("\n\t/Coords [");
    for (std::size_t i = 0; i < gradient.coordinates.size(); ++i) {
        mText.Format(i == 0 ? "%g" : " %g", gradient.coordinates[i]);
    }
    mText.Append("]");
    FinishShading(*job);
    return true;
}

bool PostScriptOutputContext::WriteAxialShadingDictionary(
    COLOR::IAxialShadingPatternColorSpace* shading, COLOR::IConnectionColorSpace* destination,
    std::int32_t languageLevel, bool paint, bool colourManaged) {
    float line[4] = {};
    return shading != nullptr &&
           WriteGradientDictionary(*shading, destination, {languageLevel, 2, paint, colourManaged},
                                   Gradient(*shading, line));
}

bool PostScriptOutputContext::WriteRadialShadingDictionary(
    COLOR::IRadialShadingPatternColorSpace* shading, COLOR::IConnectionColorSpace* destination,
    std::int32_t languageLevel, bool paint, bool colourManaged) {
    if (shading == nullptr) {
        return false;
    }
    float circles[6] = {};
    const Gradient gradient(*shading, circles);
    // Negative radii are an error to an interpreter.
    if (!(circles[2] >= 0 && circles[5] >= 0)) {
        return RefuseGeometry(3);
    }
    return WriteGradientDictionary(*shading, destination, {languageLevel, 3, paint, colourManaged},
                                   gradient);
}

void PostScriptOutputContext::WriteReusableStream(const std::string& name, const std::uint8_t* data,
                                                  std::int32_t size) {
    IO::IOutputFilterStack* filters = DataFilters();
    if (filters == nullptr) {
        return;
    }
    const auto write = [filters](const std::string& text) {
        filters->Write(text.data(), static_cast<std::int32_t>(text.size()));
    };
    const std::string names = DecodeFilterNames("");
    // Where no filter marks the end of the data, a text does.
    const std::string dictionary =
        names.empty()
            ? "<< /Filter /SubFileDecode /DecodeParms << /EODCount 0 /EODString (%%EndBinary) >> >>"
            : "<< /Filter [" + names + "] >>";
    write("/" + name + " currentfile " + dictionary + " /ReusableStreamDecode filter\n");
    WriteStreamData(data, size);
    FlushStreamData();
    write((names.empty() ? "\n%%EndBinary" : "") + std::string("\ndef\t\t\t%Stack: /") + name +
          " fileobj => ---\n");
}

bool PostScriptOutputContext::WriteMeshDictionary(const COLOR::IMeshShadingColorSpace* mesh,
                                                  COLOR::IConnectionColorSpace* destination,
                                                  const ShadingOptions& options,
                                                  const MeshKind& kind) {
    const auto job = PrepareShading(mesh, destination, options, {});
    IO::IOutputFilterStack* filters = CurrentFilters();
    if (!job || filters == nullptr) {
        return false;
    }
    // With a function the vertices have no colours but its input.
    const bool hasColours = mesh->GetFunction() == nullptr;
    const bool converts = hasColours && job->route.Converts();
    const std::int32_t components = hasColours ? job->route.source.GetComponentCount() : 1;
    const MeshData data(*mesh, converts ? &job->route : nullptr);
    if (data.Bytes() == nullptr || !IsWellFormed(*mesh, components, kind.hasFlags) ||
        (!kind.hasFlags && kind.verticesPerRow < 2)) {
        LogError(kModule) << "The mesh of a Type " << options.type
                          << " Shading Dictionary cannot be written.";
        return false;
    }
    std::string name;
    if (data.Size() > kLongestString) {
        name = kind.resource + std::to_string(++kind.counter);
        WriteReusableStream(name, data.Bytes(), data.Size());
    }
    WriteShadingDictionaryCommon(*job);
    AppendMeshEntries(*mesh, kind, converts ? job->route.Target().GetComponentCount() : 0);
    if (!name.empty()) {
        mText.Format("\t/DataSource %s\n", name.c_str());
    } else {
        WriteText(mText.View());
        mText.Clear();
        WriteHexStringDataSource(*filters, data.Bytes(), data.Size());
    }
    WriteShadingFunction(*job);
    FinishShading(*job);
    return true;
}

void PostScriptOutputContext::AppendMeshEntries(const COLOR::IMeshShadingColorSpace& mesh,
                                                const MeshKind& kind, std::int32_t converted) {
    if (kind.hasFlags) {
        mText.Format("\n\t/BitsPerFlag %d", mesh.GetBitsPerFlag());
    } else {
        mText.Format("\n\t/VerticesPerRow %d", kind.verticesPerRow);
    }
    mText.Format("\n\t/BitsPerCoordinate %d\n\t/BitsPerComponent %d", mesh.GetBitsPerCoordinate(),
                 mesh.GetBitsPerComponent());
    std::int32_t count = 0;
    const float* decode = mesh.GetDecode(count);
    if (decode == nullptr || count <= 0) {
        return;
    }
    mText.Append("\n\t/Decode [");
    std::for_each(decode, decode + (converted > 0 ? std::min(count, 4) : count),
                  [this](float value) { mText.Format("%.8g ", value); });
    mText.Append("0 1 ", static_cast<std::size_t>(converted));
    mText.Append("]\n");
}

bool PostScriptOutputContext::WritePatchMeshesBasedShadingDictionary(
    COLOR::ITensorShadingPatternColorSpace* shading, COLOR::IConnectionColorSpace* destination,
    std::int32_t languageLevel, std::int32_t type, bool paint, bool colourManaged) {
    return WriteMeshDictionary(shading, destination, {languageLevel, type, paint, colourManaged},
                               {"T6T7DSArray", patchMeshes, true, 0});
}

bool PostScriptOutputContext::WriteType5BasedShadingDictionary(
    COLOR::ILatticeFormTriangleMeshesShadingColorSpace* shading,
    COLOR::IConnectionColorSpace* destination, std::int32_t languageLevel, bool paint,
    bool colourManaged) {
    return shading != nullptr &&
           WriteMeshDictionary(shading, destination, {languageLevel, 5, paint, colourManaged},
                               {"T5DSArray", latticeMeshes, false, shading->GetVerticesPerRow()});
}

bool PostScriptOutputContext::WriteType4BasedShadingDictionary(
    COLOR::IFreeFormTriangleMeshesShadingColorSpace* shading,
    COLOR::IConnectionColorSpace* destination, std::int32_t languageLevel, bool paint,
    bool colourManaged) {
    return WriteMeshDictionary(shading, destination, {languageLevel, 4, paint, colourManaged},
                               {"T4DSArray", freeFormMeshes, true, 0});
}

}  // namespace VANTIX::PS
