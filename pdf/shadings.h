// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/color/shadingfunctions.h"
#include "host/color/shadingspaces.h"
#include "pdf/colorspaces.h"
#include "pdf/functions.h"
#include "pdf/qpdfheaders.h"
#include "pdf/reporter.h"
#include "pdf/resources.h"

namespace VANTIX::PDF {

/// A shading of the document as `sh` paints it.
struct Shading {
    HOST::ColorSpacePtr shading;
    ResourceId id = 0;
    const ColorSpaceEntry* space = nullptr;  ///< of its colours, as the document has it
    std::optional<std::array<double, 4>> box;
    std::vector<float> background;  ///< in host form, or empty; `sh` leaves it out
};

/// Makes the host's shadings of PDF shadings (PDF Reference, 4.6.3), numbers them, and keeps them
/// for the whole document within bounds. Colours of spaces that the host does not take (palettes,
/// replaced ones) are brought into the space behind them.
class Shadings {
public:
    Shadings(ColorSpaces& colorSpaces, Reporter& reporter)
        : mColorSpaces(colorSpaces), mReporter(reporter) {}

    /// The shading that `object`, a dictionary or a stream, describes. `resources` lead to its
    /// colour space. Null, after one warning that names it, for one that cannot be drawn.
    std::shared_ptr<const Shading> Find(const QPDFObjectHandle& object, Resources& resources);

private:
    struct Request;
    using ShadingPtr = std::shared_ptr<const Shading>;

    ShadingPtr Read(const QPDFObjectHandle& object, const std::string& label, Resources& resources);
    bool ReadCommon(Request& request, Resources& resources);
    bool ReadFunction(Request& request, HOST::FunctionBounds domain);
    HOST::ColorSpacePtr MakeSpace(Request& request);
    HOST::ColorSpacePtr MakeFunctionBased(Request& request);
    HOST::ColorSpacePtr MakeAxial(Request& request);
    HOST::ColorSpacePtr MakeRadial(Request& request);
    HOST::ColorSpacePtr MakeMesh(Request& request);
    bool ReadMesh(Request& request, HOST::MeshGeometry& mesh);
    bool ResolveColors(Request& request, HOST::MeshGeometry& mesh);
    void ToTarget(const ColorSpaceEntry& entry, const float* values, float* out);

    static constexpr std::size_t kMaxShadings = 1024;
    static constexpr std::size_t kMaxBytes = std::size_t{256} << 20U;

    ColorSpaces& mColorSpaces;
    Reporter& mReporter;
    FunctionReader mFunctions;
    std::map<std::string, ShadingPtr> mShadings;
    std::size_t mBytes = 0;
    // Between the numbers of colour spaces and those of device spaces.
    ResourceId mNextId = 0x10000000;
};

}  // namespace VANTIX::PDF
