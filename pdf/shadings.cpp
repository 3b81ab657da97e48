// SPDX-License-Identifier: MIT
#include "pdf/shadings.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <span>
#include <utility>

#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace {

constexpr std::size_t kLargestMesh = std::size_t{64} << 20U;
// What more a Decode array holds than a mesh can need is passed over.
constexpr std::size_t kLongestDecode = 1024;

using Kind = ColorSpaceEntry::Kind;
using Values = std::array<float, COLOR::kMaxComponents>;

/// The space that takes the colours of `entry` in the end.
const ColorSpaceEntry& TargetOf(const ColorSpaceEntry& entry) {
    const ColorSpaceEntry* target = &entry;
    while (target->kind != Kind::kSpace) {
        target = target->alternate;
    }
    return *target;
}

HOST::FunctionBounds RangesOf(const ColorSpaceEntry& entry) {
    HOST::FunctionBounds ranges;
    for (std::size_t i = 0; i < static_cast<std::size_t>(entry.components); ++i) {
        ranges.insert(ranges.end(), {entry.ranges[i].low, entry.ranges[i].high});
    }
    return ranges;
}

/// The numbers of `key` when there are as many as `numbers` holds; else, for an entry that is
/// missing, true with `numbers` as they are.
template <std::size_t N>
bool ReadNumbers(const QPDFObjectHandle& dictionary, const char* key,
                 std::array<float, N>& numbers) {
    const QPDFObjectHandle array = Get(dictionary, key);
    const std::vector<float> values = NumbersOf(array, N);
    if (values.size() == N) {
        std::copy(values.begin(), values.end(), numbers.begin());
    }
    return values.size() == N || IsNull(array);
}

std::uint32_t MostOf(std::int32_t bits) {
    return (1U << static_cast<std::uint32_t>(bits)) - 1U;
}

std::span<const std::uint8_t> BytesOf(const std::string& data) {
    return {reinterpret_cast<const std::uint8_t*>(data.data()), data.size()};
}

}  // namespace

/// A shading on its way: what is read of it, and why it cannot be.
struct Shadings::Request {
    QPDFObjectHandle object;
    std::string label;
    std::int32_t type = 0;
    const ColorSpaceEntry* space = nullptr;
    const ColorSpaceEntry* target = nullptr;
    HOST::ShadingDescription shading;
    std::size_t bytes = 0;
    std::string error;

    [[nodiscard]] QPDFObjectHandle Entry(const char* key) const { return Get(object, key); }
};

Shadings::ShadingPtr Shadings::Find(const QPDFObjectHandle& object, Resources& resources) {
    QPDFObjectHandle definition = object;
    const bool isIndirect = definition.isIndirect();
    const std::string name =
        isIndirect ? definition.getObjGen().unparse(' ') : definition.unparseResolved();
    const std::string key = std::to_string(resources.DefaultsKey()) + ' ' + name;
    const auto known = mShadings.find(key);
    if (known != mShadings.end()) {
        return known->second;
    }
    if (mShadings.size() >= kMaxShadings || mBytes > kMaxBytes) {
        mShadings.clear();
        mBytes = 0;
    }
    ShadingPtr shading = Read(object, isIndirect ? "Shading " + name : "A shading", resources);
    mShadings.emplace(key, shading);
    return shading;
}

Shadings::ShadingPtr Shadings::Read(const QPDFObjectHandle& object, const std::string& label,
                                    Resources& resources) {
    Request request;
    request.object = object;
    request.label = label;
    HOST::ColorSpacePtr space;
    std::vector<float> background;
    if (ReadCommon(request, resources)) {
        background = request.shading.background;
        space = MakeSpace(request);
    }
    if (!space) {
        mReporter.Warn("shading", label + " is left out: " + request.error);
        return nullptr;
    }
    mBytes += request.bytes;
    auto shading = std::make_shared<Shading>();
    shading->shading = std::move(space);
    shading->id = mNextId++;
    shading->space = request.space;
    shading->box = RectangleOf(request.Entry("/BBox"));
    shading->background = std::move(background);
    return shading;
}

// Colours of a palette cannot be mixed by a function (PDF Reference, 4.6.3).
bool Shadings::ReadCommon(Request& request, Resources& resources) {
    request.type = IntegerOf(request.Entry("/ShadingType")).value_or(0);
    const QPDFObjectHandle space = request.Entry("/ColorSpace");
    request.space = IsNull(space) ? nullptr : resources.FindColorSpace(space);
    const bool isIndexed = request.space != nullptr && request.space->kind == Kind::kIndexed;
    if (request.space == nullptr || request.space->kind == Kind::kPattern ||
        request.space->kind == Kind::kBlack || (isIndexed && !IsNull(request.Entry("/Function")))) {
        request.error = "it has no colour space of use";
        return false;
    }
    request.target = &TargetOf(*request.space);
    request.shading.space = request.target->space;
    const std::vector<float> background =
        NumbersOf(request.Entry("/Background"), COLOR::kMaxComponents);
    if (background.size() == static_cast<std::size_t>(request.space->components)) {
        HOST::CurrentColor color;
        mColorSpaces.SetValues(*request.space, background, color);
        request.shading.background.assign(color.values.begin(),
                                          color.values.begin() + request.target->components);
    }
    if (const auto box = RectangleOf(request.Entry("/BBox"))) {
        request.shading.box.emplace();
        std::transform(box->begin(), box->end(), request.shading.box->begin(), ToFloat);
    }
    return true;
}

/// From values of `entry` to those of the space that takes them, both in PDF form.
void Shadings::ToTarget(const ColorSpaceEntry& entry, const float* values, float* out) {
    const ColorSpaceEntry& target = TargetOf(entry);
    HOST::CurrentColor color;
    mColorSpaces.SetValues(entry, {values, static_cast<std::size_t>(entry.components)}, color);
    std::transform(color.values.begin(), color.values.begin() + target.components, out,
                   [&target](float v) { return target.complemented ? 1.0F - v : v; });
}

// An array of a single function stands for the function.
bool Shadings::ReadFunction(Request& request, HOST::FunctionBounds domain) {
    QPDFObjectHandle object = request.Entry("/Function");
    if (object.isArray() && object.getArrayNItems() == 1) {
        object = object.getArrayItem(0);
    }
    request.error = "it has no function";
    const HOST::FunctionPtr function =
        IsNull(object) ? nullptr : mFunctions.Read(object, request.error);
    if (!function) {
        return false;
    }
    if (static_cast<std::size_t>(function->GetInputCount()) != domain.size() / 2 ||
        function->GetOutputCount() != request.space->components) {
        request.error = "its function has " + std::to_string(function->GetInputCount()) +
                        " inputs and " + std::to_string(function->GetOutputCount()) + " outputs";
        return false;
    }
    for (std::size_t i = 0; i < domain.size(); i += 2) {
        if (domain[i] > domain[i + 1]) {
            std::swap(domain[i], domain[i + 1]);
        }
    }
    if (request.space == request.target) {
        request.shading.function =
            HOST::MakeShadingFunction(function, domain, RangesOf(*request.target));
    } else {
        request.shading.function = HOST::SampleFunction(
            domain, RangesOf(*request.target), [&](const float* in, float* out) {
                Values values{};
                function->Evaluate(in, values.data());
                ToTarget(*request.space, values.data(), out);
            });
    }
    return static_cast<bool>(request.shading.function);
}

HOST::ColorSpacePtr Shadings::MakeSpace(Request& request) {
    switch (request.type) {
        case 1:
            return MakeFunctionBased(request);
        case 2:
            return MakeAxial(request);
        case 3:
            return MakeRadial(request);
        case 4:
        case 5:
        case 6:
        case 7:
            return MakeMesh(request);
        default:
            request.error = "it has no known type";
            return nullptr;
    }
}

HOST::ColorSpacePtr Shadings::MakeFunctionBased(Request& request) {
    HOST::FunctionGeometry geometry;
    if (!ReadNumbers(request.object, "/Domain", geometry.domain) ||
        !ReadNumbers(request.object, "/Matrix", geometry.matrix)) {
        request.error = "its domain or its matrix is damaged";
        return nullptr;
    }
    if (!ReadFunction(request, {geometry.domain.begin(), geometry.domain.end()})) {
        return nullptr;
    }
    return HOST::MakeFunctionShading(std::move(request.shading), geometry, request.error);
}

namespace {

/// The nearest number of six digits, as which a gradient's domain is written: its function is made
/// to take that.
float SixDigits(float value) {
    std::array<char, 32> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, 6);
    std::from_chars(text.data(), end.ptr, value);
    return value;
}

template <std::size_t N>
bool ReadGradient(const QPDFObjectHandle& object, HOST::GradientGeometry<N>& geometry,
                  std::string& error) {
    if (IsNull(Get(object, "/Coords")) || !ReadNumbers(object, "/Coords", geometry.coordinates) ||
        !ReadNumbers(object, "/Domain", geometry.domain)) {
        error = "its coordinates or its domain are damaged";
        return false;
    }
    std::transform(geometry.domain.begin(), geometry.domain.end(), geometry.domain.begin(),
                   SixDigits);
    QPDFObjectHandle extend = Get(object, "/Extend");
    if (extend.isArray() && extend.getArrayNItems() == 2) {
        geometry.extendsStart = BoolOf(extend.getArrayItem(0), false);
        geometry.extendsEnd = BoolOf(extend.getArrayItem(1), false);
    }
    return true;
}

}  // namespace

HOST::ColorSpacePtr Shadings::MakeAxial(Request& request) {
    HOST::AxialGeometry geometry;
    if (!ReadGradient(request.object, geometry, request.error) ||
        !ReadFunction(request, {geometry.domain.begin(), geometry.domain.end()})) {
        return nullptr;
    }
    return HOST::MakeAxialShading(std::move(request.shading), geometry, request.error);
}

HOST::ColorSpacePtr Shadings::MakeRadial(Request& request) {
    HOST::RadialGeometry geometry;
    if (!ReadGradient(request.object, geometry, request.error) ||
        !ReadFunction(request, {geometry.domain.begin(), geometry.domain.end()})) {
        return nullptr;
    }
    return HOST::MakeRadialShading(std::move(request.shading), geometry, request.error);
}

HOST::ColorSpacePtr Shadings::MakeMesh(Request& request) {
    HOST::MeshGeometry mesh;
    if (!ReadMesh(request, mesh)) {
        return nullptr;
    }
    if (!IsNull(request.Entry("/Function"))) {
        if (!ReadFunction(request, {mesh.decode[4], mesh.decode[5]})) {
            return nullptr;
        }
    } else if (!ResolveColors(request, mesh)) {
        return nullptr;
    }
    request.bytes = mesh.data.size();
    return HOST::MakeMeshShading(std::move(request.shading), std::move(mesh), request.error);
}

bool Shadings::ReadMesh(Request& request, HOST::MeshGeometry& mesh) {
    const bool isParametric = !IsNull(request.Entry("/Function"));
    const auto integer = [&request](const char* key) {
        return IntegerOf(request.Entry(key)).value_or(0);
    };
    HOST::MeshLayout& layout = mesh.layout;
    layout = {request.type,
              integer("/BitsPerFlag"),
              integer("/BitsPerCoordinate"),
              integer("/BitsPerComponent"),
              integer("/VerticesPerRow"),
              isParametric ? 1 : request.space->components};
    mesh.decode = NumbersOf(request.Entry("/Decode"), kLongestDecode);
    const std::size_t needed = 4 + 2 * static_cast<std::size_t>(layout.components);
    if (!HOST::IsMeshLayout(layout) || mesh.decode.size() < needed) {
        request.error = "the layout of its mesh is damaged";
        return false;
    }
    mesh.decode.resize(needed);
    std::string data;
    const StreamResult result = AppendStreamData(request.object, data, kLargestMesh);
    const std::size_t whole = HOST::WholeMeshBytes(layout, BytesOf(data));
    if (whole == 0) {
        request.error = "its mesh is empty or damaged";
        return false;
    }
    if (whole < data.size() || result != StreamResult::kOk) {
        mReporter.Warn("shading",
                       request.label + " is incomplete: its mesh is damaged or too long");
        data.resize(whole);
    }
    mesh.data.assign(data.begin(), data.end());
    return true;
}

// Entries of palettes and tints that are replaced become colours of the space behind them.
bool Shadings::ResolveColors(Request& request, HOST::MeshGeometry& mesh) {
    if (request.space == request.target) {
        return true;
    }
    const auto outputs = static_cast<std::size_t>(request.target->components);
    const HOST::FunctionBounds ranges = RangesOf(*request.target);
    const HOST::MeshColors colors{request.target->components,
                                  mesh.layout.bitsPerComponent > 8 ? 16 : 8};
    if (HOST::RecodedMeshBytes(mesh.layout, mesh.data, colors) > kLargestMesh) {
        request.error = "its mesh is too large";
        return false;
    }
    const auto mostIn = static_cast<float>(MostOf(mesh.layout.bitsPerComponent));
    const auto mostOut = static_cast<float>(MostOf(colors.bits));
    mesh.data = HOST::RecodeMesh(
        mesh.layout, mesh.data, colors, [&](const std::uint32_t* in, std::uint32_t* out) {
            Values values{};
            Values mapped{};
            for (std::size_t i = 0; i < static_cast<std::size_t>(request.space->components); ++i) {
                const float low = mesh.decode[4 + 2 * i];
                const float high = mesh.decode[5 + 2 * i];
                values[i] = low + (high - low) * static_cast<float>(in[i]) / mostIn;
            }
            ToTarget(*request.space, values.data(), mapped.data());
            for (std::size_t i = 0; i < outputs; ++i) {
                const float width = ranges[2 * i + 1] - ranges[2 * i];
                const float part = width > 0.0F ? (mapped[i] - ranges[2 * i]) / width : 0.0F;
                out[i] =
                    static_cast<std::uint32_t>(std::lround(std::clamp(part, 0.0F, 1.0F) * mostOut));
            }
            return true;
        });
    mesh.layout.components = colors.components;
    mesh.layout.bitsPerComponent = colors.bits;
    mesh.decode.resize(4);
    mesh.decode.insert(mesh.decode.end(), ranges.begin(), ranges.end());
    return true;
}

}  // namespace VANTIX::PDF
