// SPDX-License-Identifier: MIT
#include "pdf/meshes.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace VANTIX::PDF {

namespace {

double Decoded(std::uint32_t code, std::int32_t bits, const float* bounds) {
    const auto most = static_cast<double>((std::uint64_t{1} << static_cast<unsigned>(bits)) - 1);
    return bounds[0] + (static_cast<double>(bounds[1]) - bounds[0]) * (code / most);
}

/// The ShadingType and what it alone has; nothing for a shading that has no mesh.
const COLOR::IMeshShadingColorSpace* FindMesh(COLOR::IConnectionColorSpace& shading,
                                              HOST::MeshLayout& layout) {
    if (const auto* triangles = FindInterface<COLOR::IFreeFormTriangleMeshesShadingColorSpace>(
            &shading, COLOR::IID_IFREEFORMMESHSHADING)) {
        layout.type = 4;
        return triangles;
    }
    if (const auto* lattice = FindInterface<COLOR::ILatticeFormTriangleMeshesShadingColorSpace>(
            &shading, COLOR::IID_ILATTICEMESHSHADING)) {
        layout.type = 5;
        layout.verticesPerRow = lattice->GetVerticesPerRow();
        return lattice;
    }
    layout.type = FindInterface<IObject>(&shading, COLOR::IID_ICOONSPATCHMARKER) != nullptr ? 6 : 7;
    return FindInterface<COLOR::ITensorShadingPatternColorSpace>(&shading,
                                                                 COLOR::IID_ITENSORSHADING);
}

/// Columns and rows of the control points, in the order of the data.
constexpr std::array<std::array<std::size_t, 2>, 16> kPointOrder{{{0, 0},
                                                                  {0, 1},
                                                                  {0, 2},
                                                                  {0, 3},
                                                                  {1, 3},
                                                                  {2, 3},
                                                                  {3, 3},
                                                                  {3, 2},
                                                                  {3, 1},
                                                                  {3, 0},
                                                                  {2, 0},
                                                                  {1, 0},
                                                                  {1, 1},
                                                                  {1, 2},
                                                                  {2, 2},
                                                                  {2, 1}}};
constexpr std::size_t kEdgePoints = 12;

/// The inner control points that make a tensor-product patch of a Coons patch.
void AddInnerPoints(MeshPatch& patch) {
    for (const std::size_t i : {1U, 2U}) {
        for (const std::size_t j : {1U, 2U}) {
            // Near and far corner, seen from the point.
            const std::size_t ni = i == 1 ? 0 : 3;
            const std::size_t nj = j == 1 ? 0 : 3;
            const std::size_t fi = 3 - ni;
            const std::size_t fj = 3 - nj;
            const auto& p = patch.points;
            patch.points[i][j] =
                (p[ni][nj] * -4.0 + (p[ni][j] + p[i][nj]) * 6.0 + (p[ni][fj] + p[fi][nj]) * -2.0 +
                 (p[fi][j] + p[i][fj]) * 3.0 + p[fi][fj] * -1.0) *
                (1.0 / 9.0);
        }
    }
}

/// Brings the edge that a patch shares with the one before to where its own first edge is.
void TakeEdge(const MeshPatch& last, std::uint32_t flag, MeshPatch& patch) {
    for (std::size_t i = 0; i < 4; ++i) {
        const auto& [toColumn, toRow] = kPointOrder[i];
        const auto& [column, row] = kPointOrder[(std::size_t{3} * flag + i) % kEdgePoints];
        patch.points[toColumn][toRow] = last.points[column][row];
    }
    patch.colors[0] = last.colors[flag];
    patch.colors[1] = last.colors[(flag + 1) % 4];
}

}  // namespace

std::optional<Mesh> Mesh::Of(COLOR::IConnectionColorSpace& shading) {
    Mesh mesh;
    HOST::MeshLayout& layout = mesh.mLayout;
    mesh.mShading = FindMesh(shading, layout);
    if (mesh.mShading == nullptr || mesh.mShading->GetShadingSpace() == nullptr) {
        return std::nullopt;
    }
    layout.bitsPerFlag = mesh.mShading->GetBitsPerFlag();
    layout.bitsPerCoordinate = mesh.mShading->GetBitsPerCoordinate();
    layout.bitsPerComponent = mesh.mShading->GetBitsPerComponent();
    layout.components =
        mesh.InputCount() > 0 ? 1 : mesh.mShading->GetShadingSpace()->GetComponentCount();
    std::int32_t count = 0;
    const float* decode = mesh.mShading->GetDecode(count);
    std::int32_t size = 0;
    const std::uint8_t* data = mesh.mShading->GetMeshData(size);
    if (!HOST::IsMeshLayout(layout) || decode == nullptr || count < 4 + 2 * layout.components ||
        data == nullptr || size <= 0) {
        return std::nullopt;
    }
    mesh.mDecode = {decode, static_cast<std::size_t>(count)};
    mesh.mData = {data, static_cast<std::size_t>(size)};
    return mesh;
}

ShadingPoint Mesh::PointAt(std::span<const std::uint32_t> coordinates, std::size_t index) const {
    const std::int32_t bits = mLayout.bitsPerCoordinate;
    return {Decoded(coordinates[2 * index], bits, mDecode.data()),
            Decoded(coordinates[2 * index + 1], bits, mDecode.data() + 2)};
}

ShadingColors::Values Mesh::ColorAt(std::span<const std::uint32_t> colors,
                                    std::size_t index) const {
    ShadingColors::Values values{};
    for (std::size_t i = 0; i < ValueCount(); ++i) {
        values[i] =
            static_cast<float>(Decoded(colors[index * ValueCount() + i], mLayout.bitsPerComponent,
                                       mDecode.data() + 4 + 2 * i));
    }
    return values;
}

void Mesh::Visit(MeshSink& sink) const {
    switch (mLayout.type) {
        case 4:
            return VisitTriangles(sink);
        case 5:
            return VisitLattice(sink);
        default:
            return VisitPatches(sink);
    }
}

// A flag of 1 or 2 goes on from an edge of the last triangle, 0 begins one of three vertices.
void Mesh::VisitTriangles(MeshSink& sink) const {
    std::array<MeshVertex, 3> corners;
    std::size_t missing = 0;
    HOST::VisitMesh(mLayout, mData, [&](const HOST::MeshRecord& record) {
        const std::uint32_t flag = record.flag & 3U;
        if (missing > 0) {
            --missing;
        } else if (flag == 0) {
            missing = 2;
        } else if (flag == 1) {
            corners = {corners[1], corners[2], {}};
        } else {
            corners[1] = corners[2];
        }
        corners[2 - missing] = VertexOf(record);
        if (missing == 0) {
            sink.Triangle(corners[0], corners[1], corners[2]);
        }
    });
}

void Mesh::VisitLattice(MeshSink& sink) const {
    const auto columns = static_cast<std::size_t>(mLayout.verticesPerRow);
    std::vector<MeshVertex> last;
    std::vector<MeshVertex> row;
    HOST::VisitMesh(mLayout, mData, [&](const HOST::MeshRecord& record) {
        row.push_back(VertexOf(record));
        const std::size_t count = row.size();
        if (!last.empty() && count > 1) {
            sink.Triangle(last[count - 2], last[count - 1], row[count - 2]);
            sink.Triangle(last[count - 1], row[count - 2], row[count - 1]);
        }
        if (count == columns) {
            std::swap(last, row);
            row.clear();
        }
    });
}

void Mesh::VisitPatches(MeshSink& sink) const {
    MeshPatch last{};
    HOST::VisitMesh(mLayout, mData, [&](const HOST::MeshRecord& record) {
        MeshPatch patch{};
        const std::uint32_t flag = record.flag & 3U;
        const std::size_t shared = flag == 0 ? 0 : 4;
        if (shared > 0) {
            TakeEdge(last, flag, patch);
        }
        for (std::size_t i = 0; i < record.coordinates.size() / 2; ++i) {
            const auto& [column, line] = kPointOrder[shared + i];
            patch.points[column][line] = PointAt(record.coordinates, i);
        }
        for (std::size_t i = 0; i < record.colors.size() / ValueCount(); ++i) {
            patch.colors[shared / 2 + i] = ColorAt(record.colors, i);
        }
        if (mLayout.type == 6) {
            AddInnerPoints(patch);
        }
        sink.Patch(patch);
        last = patch;
    });
}

namespace {

/// The sum of all colours.
class ColorSum : public MeshSink {
public:
    explicit ColorSum(std::size_t count) : mCount(count) {}

    void Triangle(const MeshVertex& a, const MeshVertex& b, const MeshVertex& c) override {
        for (const MeshVertex* vertex : {&a, &b, &c}) {
            Add(vertex->values);
        }
    }

    void Patch(const MeshPatch& patch) override {
        for (const ShadingColors::Values& color : patch.colors) {
            Add(color);
        }
    }

    [[nodiscard]] ShadingColors::Values Mean() const {
        ShadingColors::Values mean{};
        std::transform(mSum.begin(), mSum.end(), mean.begin(), [this](double sum) {
            return static_cast<float>(sum / std::max(mColors, 1.0));
        });
        return mean;
    }

private:
    void Add(const ShadingColors::Values& color) {
        for (std::size_t i = 0; i < mCount; ++i) {
            mSum[i] += color[i];
        }
        mColors += 1.0;
    }

    std::size_t mCount;
    std::array<double, COLOR::kMaxComponents> mSum{};
    double mColors = 0.0;
};

}  // namespace

std::optional<ShadingColors::Values> MiddleColor(const Mesh& mesh) {
    const ShadingColors colors(mesh.Shading(),
                               HOST::ColorSpacePtr(mesh.Shading().GetShadingSpace()));
    if (!colors.IsUsable(mesh.InputCount())) {
        return std::nullopt;
    }
    ColorSum sum(mesh.ValueCount());
    mesh.Visit(sum);
    ShadingColors::Values mean = sum.Mean();
    if (mesh.InputCount() > 0) {
        return colors.Evaluate(mean.data());
    }
    colors.ToHostForm(mean);
    return mean;
}

}  // namespace VANTIX::PDF
