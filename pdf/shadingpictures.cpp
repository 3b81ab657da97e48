// SPDX-License-Identifier: MIT
#include "pdf/shadingpictures.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <span>
#include <utility>

#include "pdf/meshes.h"
#include "pdf/meshpictures.h"
#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace {

using Samples = ShadingColors::Samples;
using Point = ShadingPoint;

Point Apply(const std::array<double, 6>& m, const Point& p) {
    return {m[0] * p.x + m[2] * p.y + m[4], m[1] * p.x + m[3] * p.y + m[5]};
}

/// A picture of one line.
class RampPlanes : public HOST::PlaneSource {
public:
    RampPlanes(ColorRamp ramp, std::size_t planes) : mRamp(std::move(ramp)), mPlanes(planes) {}

    void ReadLine(std::int32_t /*y*/, std::uint8_t* const* planes) override {
        for (std::size_t x = 0; x < mRamp.All().size(); ++x) {
            for (std::size_t i = 0; i < mPlanes; ++i) {
                planes[i][x] = mRamp.All()[x][i];
            }
        }
    }

private:
    ColorRamp mRamp;
    std::size_t mPlanes;
};

/// The samples of a canvas, or its opacity.
class CanvasPlanes : public HOST::PlaneSource {
public:
    CanvasPlanes(std::shared_ptr<const ShadingCanvas> canvas, bool isOpacity)
        : mCanvas(std::move(canvas)), mIsOpacity(isOpacity) {}

    void ReadLine(std::int32_t y, std::uint8_t* const* planes) override {
        mIsOpacity ? mCanvas->ReadOpacity(y, planes[0]) : mCanvas->ReadSamples(y, planes);
    }

private:
    std::shared_ptr<const ShadingCanvas> mCanvas;
    bool mIsOpacity;
};

/// What a shading paints at a point; nothing for nothing.
using Shader = std::function<std::optional<Samples>(const Point& point)>;

std::vector<ShadingPicture> ShadedPicture(const ShadingColors& colors, const ShadingArea& area,
                                          double resolution, const Shader& shader) {
    std::vector<ShadingPicture> pictures;
    if (!IsArea(area)) {
        return pictures;
    }
    const PixelGrid grid(area, resolution);
    const auto canvas = std::make_shared<ShadingCanvas>(colors.Space(), grid);
    for (std::int32_t y = 0; y < grid.height; ++y) {
        for (std::size_t x = 0; x < static_cast<std::size_t>(grid.width); ++x) {
            if (const auto samples = shader(grid.Middle(x, y))) {
                canvas->Paint(x, y, *samples);
            }
        }
    }
    canvas->Spread();
    pictures.push_back(PictureOf(canvas));
    return pictures;
}

std::vector<ShadingPicture> FunctionPicture(const COLOR::IFunctionShadingColorSpace& shading,
                                            const ShadingColors& colors, const ShadingArea& area,
                                            double resolution) {
    std::array<float, 4> domain{};
    std::array<float, 6> matrix{};
    shading.GetDomain(domain.data());
    shading.GetMatrix(matrix.data());
    const auto inverse =
        Inverse({matrix[0], matrix[1], matrix[2], matrix[3], matrix[4], matrix[5]});
    if (!inverse || !colors.IsUsable(2)) {
        return {};
    }
    const Shader shader = [&](const Point& point) -> std::optional<Samples> {
        const Point p = Apply(*inverse, point);
        const float inputs[2] = {static_cast<float>(p.x), static_cast<float>(p.y)};
        const bool isInside = inputs[0] >= domain[0] && inputs[0] <= domain[1] &&
                              inputs[1] >= domain[2] && inputs[1] <= domain[3];
        return isInside ? std::optional(colors.At(inputs)) : std::nullopt;
    };
    return ShadedPicture(colors, area, resolution, shader);
}

/// From the first to the last part of the axis, in which 0 and 1 are its ends, across the area.
ShadingPicture Strip(const ShadingColors& colors, ColorRamp ramp, const Point& start,
                     const Point& axis, const std::pair<double, double>& along,
                     const std::pair<double, double>& across) {
    ShadingPicture picture;
    const auto width = static_cast<std::int32_t>(ramp.All().size());
    const auto planes = static_cast<std::size_t>(colors.Space()->GetComponentCount());
    picture.image =
        ImageOf(colors.Space(), width, 1, std::make_unique<RampPlanes>(std::move(ramp), planes));
    const Point side{-axis.y, axis.x};
    const double length = along.second - along.first;
    const double breadth = across.second - across.first;
    picture.place = {axis.x * length,
                     axis.y * length,
                     side.x * breadth,
                     side.y * breadth,
                     start.x + axis.x * along.first + side.x * across.first,
                     start.y + axis.y * along.first + side.y * across.first};
    return picture;
}

std::vector<ShadingPicture> AxialPictures(const COLOR::IAxialShadingPatternColorSpace& shading,
                                          const ShadingColors& colors, const ShadingArea& area) {
    float domain[2] = {0, 1};
    float c[4] = {};
    bool extendsStart = false;
    bool extendsEnd = false;
    shading.GetDomain(domain);
    shading.GetCoordinates(c);
    shading.GetExtend(extendsStart, extendsEnd);
    const Point start{c[0], c[1]};
    const Point axis = Point{c[2], c[3]} - start;
    const double square = Dot(axis, axis);
    if (!colors.IsUsable(1) || !IsArea(area) || square <= 0.0 || !std::isfinite(1.0 / square)) {
        return {};
    }
    std::pair<double, double> along{0.0, 1.0};
    std::pair<double, double> across{0.0, 0.0};
    for (const Point corner : {Point{area[0], area[1]}, Point{area[2], area[1]},
                               Point{area[0], area[3]}, Point{area[2], area[3]}}) {
        const Point offset = corner - start;
        const double down = Dot(offset, axis) / square;
        const double side = Dot(offset, {-axis.y, axis.x}) / square;
        along = {std::min(along.first, down), std::max(along.second, down)};
        across = {std::min(across.first, side), std::max(across.second, side)};
    }
    std::vector<ShadingPicture> pictures;
    const auto add = [&](ColorRamp ramp, double from, double to) {
        if (to > from) {
            pictures.push_back(Strip(colors, std::move(ramp), start, axis, {from, to}, across));
        }
    };
    if (extendsStart) {
        add(ColorRamp(colors.At(&domain[0])), along.first, 0.0);
    }
    add(ColorRamp(colors, domain), 0.0, 1.0);
    if (extendsEnd) {
        add(ColorRamp(colors.At(&domain[1])), 1.0, along.second);
    }
    return pictures;
}

/// Circles from one to another (PDF Reference, 4.6.3).
struct Circles {
    Point center;
    Point motion;
    double radius = 0.0;
    double growth = 0.0;
    bool extendsStart = false;
    bool extendsEnd = false;

    /// The part of the way, 0 to 1 or beyond, at which the topmost circle meets the point; nothing
    /// where none does.
    [[nodiscard]] std::optional<double> At(const Point& point) const {
        const Point offset = point - center;
        const double a = Dot(motion, motion) - growth * growth;
        const double b = Dot(offset, motion) + radius * growth;
        const double c = Dot(offset, offset) - radius * radius;
        if (std::abs(a) < 1e-9) {
            return b == 0.0 ? std::nullopt : Usable(c / (2 * b));
        }
        const double root = b * b - a * c;
        if (root < 0.0) {
            return std::nullopt;
        }
        const double first = (b + std::sqrt(root)) / a;
        const double second = (b - std::sqrt(root)) / a;
        const auto upper = Usable(std::max(first, second));
        return upper ? upper : Usable(std::min(first, second));
    }

private:
    [[nodiscard]] std::optional<double> Usable(double part) const {
        const bool isUsed = radius + part * growth >= 0.0 && (part >= 0.0 || extendsStart) &&
                            (part <= 1.0 || extendsEnd);
        return isUsed ? std::optional(part) : std::nullopt;
    }
};

std::vector<ShadingPicture> RadialPicture(const COLOR::IRadialShadingPatternColorSpace& shading,
                                          const ShadingColors& colors, const ShadingArea& area,
                                          double resolution) {
    float domain[2] = {0, 1};
    float c[6] = {};
    Circles circles;
    shading.GetDomain(domain);
    shading.GetCoordinates(c);
    shading.GetExtend(circles.extendsStart, circles.extendsEnd);
    if (!colors.IsUsable(1) || !IsArea(area)) {
        return {};
    }
    circles.center = {c[0], c[1]};
    circles.motion = Point{c[3], c[4]} - circles.center;
    circles.radius = c[2];
    circles.growth = static_cast<double>(c[5]) - c[2];
    std::array<double, 4> painted = area;
    if (!circles.extendsStart && !circles.extendsEnd) {
        painted = Intersection(
            area, {std::min(c[0] - c[2], c[3] - c[5]), std::min(c[1] - c[2], c[4] - c[5]),
                   std::max(c[0] + c[2], c[3] + c[5]), std::max(c[1] + c[2], c[4] + c[5])});
    }
    const ColorRamp ramp(colors, domain);
    const Shader shader = [&](const Point& point) -> std::optional<Samples> {
        const auto part = circles.At(point);
        return part ? std::optional(ramp.At(*part)) : std::nullopt;
    };
    return ShadedPicture(colors, painted, resolution, shader);
}

}  // namespace

ShadingPicture PictureOf(const std::shared_ptr<const ShadingCanvas>& canvas) {
    const PixelGrid& grid = canvas->Grid();
    ShadingPicture picture;
    picture.place = grid.Place();
    picture.mask =
        ImageMask{std::make_unique<CanvasPlanes>(canvas, true), grid.width, grid.height, {}};
    picture.image = ImageOf(canvas->Space(), grid.width, grid.height,
                            std::make_unique<CanvasPlanes>(canvas, false));
    return picture;
}

std::vector<ShadingPicture> PicturesOf(COLOR::IConnectionColorSpace& shading,
                                       const ShadingArea& area, double resolution,
                                       const HOST::ColorSpacePtr& rgb) {
    if (const auto* function = FindInterface<COLOR::IFunctionShadingColorSpace>(
            &shading, COLOR::IID_IFUNCTIONSHADING)) {
        return FunctionPicture(*function, ShadingColors(*function, rgb), area, resolution);
    }
    if (const auto* axial = FindInterface<COLOR::IAxialShadingPatternColorSpace>(
            &shading, COLOR::IID_IAXIALSHADING)) {
        return AxialPictures(*axial, ShadingColors(*axial, rgb), area);
    }
    if (const auto* radial = FindInterface<COLOR::IRadialShadingPatternColorSpace>(
            &shading, COLOR::IID_IRADIALSHADING)) {
        return RadialPicture(*radial, ShadingColors(*radial, rgb), area, resolution);
    }
    if (const auto mesh = Mesh::Of(shading)) {
        return MeshPictures(*mesh, ShadingColors(mesh->Shading(), rgb), area, resolution);
    }
    return {};
}

namespace {

std::optional<ShadingColors::Values> MiddleOfFunction(const COLOR::IShadingColorSpace& shading,
                                                      std::span<const float> middle) {
    const ShadingColors colors(shading, HOST::ColorSpacePtr(shading.GetShadingSpace()));
    if (!colors.IsUsable(static_cast<std::int32_t>(middle.size()))) {
        return std::nullopt;
    }
    return colors.Evaluate(middle.data());
}

template <class Gradient>
std::optional<ShadingColors::Values> MiddleOfGradient(const Gradient& shading) {
    float domain[2] = {0, 1};
    shading.GetDomain(domain);
    const float middle[1] = {(domain[0] + domain[1]) / 2};
    return MiddleOfFunction(shading, middle);
}

}  // namespace

std::optional<ShadingColors::Values> MiddleColor(COLOR::IConnectionColorSpace& shading) {
    if (const auto* function = FindInterface<COLOR::IFunctionShadingColorSpace>(
            &shading, COLOR::IID_IFUNCTIONSHADING)) {
        float domain[4] = {0, 1, 0, 1};
        function->GetDomain(domain);
        const float middle[2] = {(domain[0] + domain[1]) / 2, (domain[2] + domain[3]) / 2};
        return MiddleOfFunction(*function, middle);
    }
    if (const auto* axial = FindInterface<COLOR::IAxialShadingPatternColorSpace>(
            &shading, COLOR::IID_IAXIALSHADING)) {
        return MiddleOfGradient(*axial);
    }
    if (const auto* radial = FindInterface<COLOR::IRadialShadingPatternColorSpace>(
            &shading, COLOR::IID_IRADIALSHADING)) {
        return MiddleOfGradient(*radial);
    }
    const auto mesh = Mesh::Of(shading);
    return mesh ? MiddleColor(*mesh) : std::nullopt;
}

}  // namespace VANTIX::PDF
