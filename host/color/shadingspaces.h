// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/color/colorspacefactory.h"
#include "host/color/meshdata.h"
#include "host/export.h"

namespace VANTIX::HOST {

/// What all shadings have (PDF Reference, 4.6.3). Shadings keep references to what they are made
/// of.
struct ShadingDescription {
    ColorSpacePtr space;
    FunctionPtr function;             ///< as `MakeShadingFunction` gives it; null: a mesh's colours
    std::vector<float> background{};  ///< in host form, one for each component, or empty
    std::optional<std::array<float, 4>> box{};  ///< x0 y0 x1 y1
};

/// Of ShadingType 1: x0 x1 y0 y1, and from there to the space that the shading stands in.
struct FunctionGeometry {
    std::array<float, 4> domain{0, 1, 0, 1};
    std::array<float, 6> matrix{1, 0, 0, 1, 0, 0};
};

/// Of ShadingType 2, x0 y0 x1 y1, or 3, x0 y0 r0 x1 y1 r1.
template <std::size_t N>
struct GradientGeometry {
    std::array<float, N> coordinates{};
    std::array<float, 2> domain{0, 1};
    bool extendsStart = false;
    bool extendsEnd = false;
};

using AxialGeometry = GradientGeometry<4>;
using RadialGeometry = GradientGeometry<6>;

/// Of ShadingTypes 4 to 7. `data` are whole, their colours in PDF form; `decode` has two floats for
/// x, for y and for each component.
struct MeshGeometry {
    MeshLayout layout;
    std::vector<float> decode;
    std::vector<std::uint8_t> data;
};

/// Makers of shadings as colour spaces, which have no components and convert nothing. Each answers
/// null, with the reason in `error`, when the parts do not fit each other or have no area.
NORVANE_HOST_API ColorSpacePtr MakeFunctionShading(ShadingDescription shading,
                                                   const FunctionGeometry& geometry,
                                                   std::string& error);
NORVANE_HOST_API ColorSpacePtr MakeAxialShading(ShadingDescription shading,
                                                const AxialGeometry& geometry, std::string& error);
NORVANE_HOST_API ColorSpacePtr MakeRadialShading(ShadingDescription shading,
                                                 const RadialGeometry& geometry,
                                                 std::string& error);
NORVANE_HOST_API ColorSpacePtr MakeMeshShading(ShadingDescription shading, MeshGeometry geometry,
                                               std::string& error);

}  // namespace VANTIX::HOST
