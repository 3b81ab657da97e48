// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "host/export.h"

namespace VANTIX::HOST {

/// How the data of a mesh are laid out (PDF Reference, 4.6.3). Each vertex or patch starts at a
/// byte.
struct MeshLayout {
    std::int32_t type = 4;               ///< ShadingType, 4 to 7
    std::int32_t bitsPerFlag = 8;        ///< 2, 4 or 8; of no account for type 5
    std::int32_t bitsPerCoordinate = 8;  ///< 1, 2, 4, 8, 12, 16, 24 or 32
    std::int32_t bitsPerComponent = 8;   ///< 1, 2, 4, 8, 12 or 16
    std::int32_t verticesPerRow = 0;     ///< of type 5: at least 2
    std::int32_t components = 1;         ///< of each colour, 1 to 32; 1 where a function follows
};

/// Whether every number is one of those named above.
NORVANE_HOST_API bool IsMeshLayout(const MeshLayout& layout);

/// How many bytes from the start on make whole triangles, rows or patches: up to where the data end
/// within one, or a flag has no meaning. Interpreters refuse a mesh with a rest.
NORVANE_HOST_API std::size_t WholeMeshBytes(const MeshLayout& layout,
                                            std::span<const std::uint8_t> data);

/// One vertex or patch, its numbers as they stand in the data: x and y of each point, and the
/// components of each colour.
struct MeshRecord {
    std::uint32_t flag = 0;  ///< of which the lower two bits count; 0 for type 5
    std::span<const std::uint32_t> coordinates;
    std::span<const std::uint32_t> colors;
};

using MeshVisitor = std::function<void(const MeshRecord& record)>;

/// Hands on the records of whole mesh data in their order. What a record points to lasts as long as
/// the call.
NORVANE_HOST_API void VisitMesh(const MeshLayout& layout, std::span<const std::uint8_t> data,
                                const MeshVisitor& visitor);

/// Takes the components of a colour as they stand in the mesh and fills those of the new mesh.
/// False ends the work.
using MeshColorMap = std::function<bool(const std::uint32_t* in, std::uint32_t* out)>;

/// The new form of the colours.
struct MeshColors {
    std::int32_t components = 1;
    std::int32_t bits = 8;
};

/// The size of whole mesh data once their colours have another form.
NORVANE_HOST_API std::size_t RecodedMeshBytes(const MeshLayout& layout,
                                              std::span<const std::uint8_t> data,
                                              const MeshColors& colors);

/// The mesh with the same flags and coordinates, and colours that `map` gives. Empty when it fails.
NORVANE_HOST_API std::vector<std::uint8_t> RecodeMesh(const MeshLayout& layout,
                                                      std::span<const std::uint8_t> data,
                                                      const MeshColors& colors,
                                                      const MeshColorMap& map);

}  // namespace VANTIX::HOST
