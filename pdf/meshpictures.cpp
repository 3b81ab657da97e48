// SPDX-License-Identifier: MIT
#include "pdf/meshpictures.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <utility>

namespace VANTIX::PDF {

namespace {

using Values = ShadingColors::Values;

// Pixels that may be painted one upon another: about a second's work.
constexpr double kMostPainted = 8 * PixelGrid::kMostPixels;
// Patches are painted as cells of about as many pixels in each direction.
constexpr double kCellPixels = 4.0;

double Distance(const ShadingPoint& a, const ShadingPoint& b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

/// The longest way along u and along v, from control point to control point.
struct PatchLengths {
    double u = 0.0;
    double v = 0.0;

    PatchLengths(const MeshPatch& patch, double most) {
        const auto& p = patch.points;
        for (std::size_t i = 0; i < 4; ++i) {
            double alongU = 0.0;
            double alongV = 0.0;
            for (std::size_t k = 1; k < 4; ++k) {
                alongU += Distance(p[k - 1][i], p[k][i]);
                alongV += Distance(p[i][k - 1], p[i][k]);
            }
            u = std::max(u, std::min(alongU, most));
            v = std::max(v, std::min(alongV, most));
        }
    }
};

/// No patch is followed farther than it takes to lead across the area and back.
double LongestWay(const ShadingArea& area) {
    return 2 * (area[2] - area[0] + area[3] - area[1]);
}

/// Finds out where a mesh lies, and how much there is to paint in an area.
class MeshExtent : public MeshSink {
public:
    explicit MeshExtent(const ShadingArea& area) : mArea(area), mLongest(LongestWay(area)) {}

    void Triangle(const MeshVertex& a, const MeshVertex& b, const MeshVertex& c) override {
        ShadingArea box = BoxOf(a.place);
        Grow(box, b.place);
        Grow(box, c.place);
        const ShadingArea part = Intersection(mArea, box);
        mPainted += std::max(part[2] - part[0], 0.0) * std::max(part[3] - part[1], 0.0);
        Grow(a.place);
        Grow(b.place);
        Grow(c.place);
    }

    void Patch(const MeshPatch& patch) override {
        for (const auto& column : patch.points) {
            for (const ShadingPoint& point : column) {
                Grow(point);
            }
        }
        const PatchLengths lengths(patch, mLongest);
        mPainted += lengths.u * lengths.v;
    }

    /// The bounds of the mesh in the area.
    [[nodiscard]] ShadingArea Bounds() const {
        return mBox ? Intersection(mArea, *mBox) : ShadingArea{};
    }

    /// An area, of which parts count as often as they are painted.
    [[nodiscard]] double Painted() const { return mPainted; }

private:
    static ShadingArea BoxOf(const ShadingPoint& point) {
        return {point.x, point.y, point.x, point.y};
    }

    static void Grow(ShadingArea& box, const ShadingPoint& point) {
        box = {std::min(box[0], point.x), std::min(box[1], point.y), std::max(box[2], point.x),
               std::max(box[3], point.y)};
    }

    void Grow(const ShadingPoint& point) {
        mBox = mBox.value_or(BoxOf(point));
        Grow(*mBox, point);
    }

    ShadingArea mArea;
    double mLongest;
    std::optional<ShadingArea> mBox;
    double mPainted = 0.0;
};

/// Values of an edge or of a line between two of its points.
void Mix(const Values& from, const Values& to, double part, std::size_t count, Values& out) {
    const auto share = static_cast<float>(part);
    for (std::size_t i = 0; i < count; ++i) {
        out[i] = from[i] + (to[i] - from[i]) * share;
    }
}

/// Paints triangles and patches upon one another. Places are those of the shading's space.
class MeshPainter : public MeshSink {
public:
    MeshPainter(const Mesh& mesh, const ShadingColors& colors, ShadingCanvas& canvas)
        : mColors(colors),
          mCanvas(canvas),
          mGrid(canvas.Grid()),
          mValues(mesh.ValueCount()),
          mLongest(LongestWay(mGrid.area)),
          mDomain{mesh.Domain()[0], mesh.Domain()[1]} {
        if (mesh.InputCount() > 0) {
            mRamp.emplace(colors, mDomain.data());
        }
    }

    void Triangle(const MeshVertex& a, const MeshVertex& b, const MeshVertex& c) override {
        PaintTriangle(ToPixels(a), ToPixels(b), ToPixels(c));
    }

    void Patch(const MeshPatch& patch) override;

private:
    [[nodiscard]] MeshVertex ToPixels(const MeshVertex& vertex) const {
        return {mGrid.ToPixels(vertex.place), vertex.values};
    }

    [[nodiscard]] MeshVertex Between(const MeshVertex& a, const MeshVertex& b, double part) const {
        MeshVertex vertex{a.place + (b.place - a.place) * part};
        Mix(a.values, b.values, part, mValues, vertex.values);
        return vertex;
    }

    void PaintTriangle(const MeshVertex& a, const MeshVertex& b, const MeshVertex& c);
    void PaintSpan(std::int32_t y, const MeshVertex& left, const MeshVertex& right);
    [[nodiscard]] ShadingColors::Samples SamplesOf(Values& values) const;
    void FindStrip(const MeshPatch& patch, double v, std::vector<MeshVertex>& strip) const;

    const ShadingColors& mColors;
    ShadingCanvas& mCanvas;
    const PixelGrid& mGrid;
    std::size_t mValues;
    double mLongest;
    std::array<float, 2> mDomain;
    std::optional<ColorRamp> mRamp;
};

/// The first pixel whose middle does not lie before a place, within 0 and `end`.
std::int32_t FirstPixel(double place, std::int32_t end) {
    return static_cast<std::int32_t>(
        std::clamp(std::ceil(place - 0.5), 0.0, static_cast<double>(end)));
}

// Pixels whose middles lie inside; those on an edge belong to one of the triangles at it.
void MeshPainter::PaintTriangle(const MeshVertex& a, const MeshVertex& b, const MeshVertex& c) {
    const MeshVertex* top = &a;
    const MeshVertex* middle = &b;
    const MeshVertex* bottom = &c;
    const auto order = [](const MeshVertex*& first, const MeshVertex*& second) {
        if (second->place.y < first->place.y) {
            std::swap(first, second);
        }
    };
    order(top, middle);
    order(middle, bottom);
    order(top, middle);
    const auto at = [this](const MeshVertex& from, const MeshVertex& to, double y) {
        return Between(from, to, (y - from.place.y) / (to.place.y - from.place.y));
    };
    const std::int32_t end = FirstPixel(bottom->place.y, mGrid.height);
    for (std::int32_t y = FirstPixel(top->place.y, mGrid.height); y < end; ++y) {
        const double line = y + 0.5;
        const MeshVertex across = at(*top, *bottom, line);
        const MeshVertex along =
            line < middle->place.y ? at(*top, *middle, line) : at(*middle, *bottom, line);
        across.place.x < along.place.x ? PaintSpan(y, across, along) : PaintSpan(y, along, across);
    }
}

void MeshPainter::PaintSpan(std::int32_t y, const MeshVertex& left, const MeshVertex& right) {
    const std::int32_t end = FirstPixel(right.place.x, mGrid.width);
    const double length = right.place.x - left.place.x;
    Values values{};
    for (std::int32_t x = FirstPixel(left.place.x, mGrid.width); x < end; ++x) {
        const double part = (x + 0.5 - left.place.x) / length;
        Mix(left.values, right.values, part, mValues, values);
        mCanvas.Paint(static_cast<std::size_t>(x), y, SamplesOf(values));
    }
}

// Takes the values for its own work.
ShadingColors::Samples MeshPainter::SamplesOf(Values& values) const {
    if (!mRamp) {
        mColors.ToHostForm(values);
        return mColors.ToSamples(values);
    }
    const double width = static_cast<double>(mDomain[1]) - mDomain[0];
    return mRamp->At(width == 0.0 ? 0.0 : (values[0] - mDomain[0]) / width);
}

/// The four cubic Bernstein polynomials.
std::array<double, 4> Bernstein(double t) {
    const double s = 1.0 - t;
    return {s * s * s, 3 * t * s * s, 3 * t * t * s, t * t * t};
}

/// Fills a row of vertices, at even steps of u.
void MeshPainter::FindStrip(const MeshPatch& patch, double v,
                            std::vector<MeshVertex>& strip) const {
    const std::array<double, 4> rows = Bernstein(v);
    std::array<ShadingPoint, 4> curve;
    for (std::size_t i = 0; i < 4; ++i) {
        for (std::size_t j = 0; j < 4; ++j) {
            curve[i] = curve[i] + patch.points[i][j] * rows[j];
        }
    }
    Values first{};
    Values last{};
    Mix(patch.colors[0], patch.colors[1], v, mValues, first);
    Mix(patch.colors[3], patch.colors[2], v, mValues, last);
    const auto steps = static_cast<double>(strip.size() - 1);
    for (std::size_t k = 0; k < strip.size(); ++k) {
        const double u = static_cast<double>(k) / steps;
        const std::array<double, 4> columns = Bernstein(u);
        ShadingPoint place;
        for (std::size_t i = 0; i < 4; ++i) {
            place = place + curve[i] * columns[i];
        }
        strip[k].place = mGrid.ToPixels(place);
        Mix(first, last, u, mValues, strip[k].values);
    }
}

// Where a patch folds over itself, the greatest v shows, and of equal ones the greatest u.
void MeshPainter::Patch(const MeshPatch& patch) {
    const PatchLengths lengths(patch, mLongest);
    const double pixels = mGrid.width / (mGrid.area[2] - mGrid.area[0]);
    const auto cells = [pixels](double length) {
        return static_cast<std::size_t>(std::ceil(length * pixels / kCellPixels)) + 1;
    };
    const std::size_t rows = cells(lengths.v);
    std::vector<MeshVertex> strip(cells(lengths.u) + 1);
    std::vector<MeshVertex> next(strip.size());
    FindStrip(patch, 0.0, strip);
    for (std::size_t row = 1; row <= rows; ++row) {
        FindStrip(patch, static_cast<double>(row) / static_cast<double>(rows), next);
        for (std::size_t k = 1; k < strip.size(); ++k) {
            PaintTriangle(strip[k - 1], strip[k], next[k - 1]);
            PaintTriangle(strip[k], next[k - 1], next[k]);
        }
        std::swap(strip, next);
    }
}

}  // namespace

std::vector<ShadingPicture> MeshPictures(const Mesh& mesh, const ShadingColors& colors,
                                         const ShadingArea& area, double resolution) {
    if (!IsArea(area) || !colors.IsUsable(mesh.InputCount())) {
        return {};
    }
    MeshExtent extent(area);
    mesh.Visit(extent);
    if (!IsArea(extent.Bounds())) {
        return {};
    }
    const PixelGrid grid(extent.Bounds(),
                         std::min(resolution, std::sqrt(kMostPainted / extent.Painted())));
    const auto canvas = std::make_shared<ShadingCanvas>(colors.Space(), grid);
    MeshPainter painter(mesh, colors, *canvas);
    mesh.Visit(painter);
    canvas->Spread();
    std::vector<ShadingPicture> pictures;
    pictures.push_back(PictureOf(canvas));
    return pictures;
}

}  // namespace VANTIX::PDF
