// SPDX-License-Identifier: MIT
#include "pdf/shadingpictures.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

#include "host/color/outputvalues.h"
#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace {

constexpr double kMostPixels = 4e6;
constexpr std::int32_t kRampSteps = 256;

struct Point {
    double x = 0.0;
    double y = 0.0;
};

Point operator-(const Point& a, const Point& b) {
    return {a.x - b.x, a.y - b.y};
}

double Dot(const Point& a, const Point& b) {
    return a.x * b.x + a.y * b.y;
}

Point Apply(const std::array<double, 6>& m, const Point& p) {
    return {m[0] * p.x + m[2] * p.y + m[4], m[1] * p.x + m[3] * p.y + m[5]};
}

/// The colours of a shading as samples of 8 bits in host form.
class Colors {
public:
    using Samples = std::array<std::uint8_t, COLOR::kMaxComponents>;

    Colors(const COLOR::IShadingColorSpace& shading, const HOST::ColorSpacePtr& rgb)
        : mFunction(shading.GetFunction()), mSpace(shading.GetShadingSpace()), mTarget(mSpace) {
        if (mSpace && HOST::FamilyOf(*mSpace) == "clab"_cc) {
            mTarget = rgb;
        }
    }

    /// False for a shading without a space, or without a function that fits it.
    [[nodiscard]] bool IsUsable(std::int32_t inputs) const {
        return mTarget && mFunction != nullptr && mFunction->GetInputCount() == inputs &&
               mFunction->GetOutputCount() == mSpace->GetComponentCount() &&
               mFunction->GetOutputCount() <= COLOR::kMaxComponents;
    }

    [[nodiscard]] const HOST::ColorSpacePtr& Space() const { return mTarget; }

    [[nodiscard]] Samples At(const float* inputs) const {
        std::array<float, COLOR::kMaxComponents> values{};
        mFunction->Evaluate(inputs, values.data());
        HOST::ToHostForm(*mFunction, *mSpace, values.data());
        float pcs[3] = {};
        constexpr auto kIntent = COLOR::TRenderingIntent::kRelativeColorimetric;
        if (mTarget.Get() != mSpace.Get() && mSpace->ToPCS(values.data(), pcs, kIntent)) {
            mTarget->FromPCS(pcs, values.data(), kIntent);
        }
        Samples samples{};
        std::transform(values.begin(), values.begin() + mTarget->GetComponentCount(),
                       samples.begin(), [](float value) {
                           const float part = value >= 0.0F ? std::min(value, 1.0F) : 0.0F;
                           return static_cast<std::uint8_t>(std::lround(part * 255.0F));
                       });
        return samples;
    }

private:
    const COLOR::IColorFunction* mFunction;
    HOST::ColorSpacePtr mSpace;
    HOST::ColorSpacePtr mTarget;
};

/// The colours along a domain, at the middles of even steps.
using Ramp = std::vector<Colors::Samples>;

Ramp MakeRamp(const Colors& colors, const float domain[2]) {
    Ramp ramp;
    for (std::int32_t i = 0; i < kRampSteps; ++i) {
        const float part = (static_cast<float>(i) + 0.5F) / kRampSteps;
        const float t = domain[0] + (domain[1] - domain[0]) * part;
        ramp.push_back(colors.At(&t));
    }
    return ramp;
}

void StorePixel(const Colors::Samples& samples, std::size_t planeCount, std::size_t x,
                std::uint8_t* const* planes) {
    for (std::size_t i = 0; i < planeCount; ++i) {
        planes[i][x] = samples[i];
    }
}

/// A picture of one line.
class RampPlanes : public HOST::PlaneSource {
public:
    RampPlanes(Ramp ramp, std::size_t planes) : mRamp(std::move(ramp)), mPlanes(planes) {}

    void ReadLine(std::int32_t /*y*/, std::uint8_t* const* planes) override {
        for (std::size_t x = 0; x < mRamp.size(); ++x) {
            StorePixel(mRamp[x], mPlanes, x, planes);
        }
    }

private:
    Ramp mRamp;
    std::size_t mPlanes;
};

/// What a shading paints at a point: false for nothing. Samples may be left out (null).
using Shader = std::function<bool(const Point& point, Colors::Samples* samples)>;

/// Pixels of an area.
struct Grid {
    std::array<double, 4> area;
    std::int32_t width;
    std::int32_t height;

    [[nodiscard]] Point Middle(std::size_t x, std::int32_t y) const {
        return {area[0] + (area[2] - area[0]) * (static_cast<double>(x) + 0.5) / width,
                area[3] - (area[3] - area[1]) * (y + 0.5) / height};
    }
};

/// The colours of a shading, or with no planes of colours its opacity.
class ShadedPlanes : public HOST::PlaneSource {
public:
    ShadedPlanes(Shader shader, const Grid& grid, std::size_t planes)
        : mShader(std::move(shader)), mGrid(grid), mPlanes(planes) {}

    void ReadLine(std::int32_t y, std::uint8_t* const* planes) override {
        for (std::size_t x = 0; x < static_cast<std::size_t>(mGrid.width); ++x) {
            Colors::Samples samples{};
            const bool isPainted = mShader(mGrid.Middle(x, y), mPlanes == 0 ? nullptr : &samples);
            if (mPlanes == 0) {
                planes[0][x] = isPainted ? 0xFF : 0;
            } else {
                StorePixel(samples, mPlanes, x, planes);
            }
        }
    }

private:
    Shader mShader;
    Grid mGrid;
    std::size_t mPlanes;
};

PlanarImage ImageOf(const HOST::ColorSpacePtr& space, std::int32_t width, std::int32_t height,
                    PlaneSourcePtr source) {
    PlanarImage image;
    image.format = {space, width, height, 8};
    image.isDeviceN = FindInterface<IObject>(space.Get(), COLOR::IID_IDEVICENCOLORSPACE) != nullptr;
    image.source = std::move(source);
    return image;
}

bool IsArea(const std::array<double, 4>& area) {
    return area[2] > area[0] && area[3] > area[1] && std::isfinite(area[2] - area[0]) &&
           std::isfinite(area[3] - area[1]);
}

std::vector<ShadingPicture> ShadedPicture(const Colors& colors, const std::array<double, 4>& area,
                                          double resolution, const Shader& shader) {
    std::vector<ShadingPicture> pictures;
    if (!IsArea(area)) {
        return pictures;
    }
    const double width = area[2] - area[0];
    const double height = area[3] - area[1];
    const double fitting = std::min(resolution, std::sqrt(kMostPixels / (width * height)));
    const auto pixels = [fitting](double length) {
        return static_cast<std::int32_t>(std::clamp(std::ceil(length * fitting), 1.0, 8192.0));
    };
    const Grid grid{area, pixels(width), pixels(height)};
    const auto planes = static_cast<std::size_t>(colors.Space()->GetComponentCount());
    ShadingPicture& picture = pictures.emplace_back();
    picture.image = ImageOf(colors.Space(), grid.width, grid.height,
                            std::make_unique<ShadedPlanes>(shader, grid, planes));
    picture.mask =
        ImageMask{std::make_unique<ShadedPlanes>(shader, grid, 0), grid.width, grid.height, {}};
    picture.place = {width, 0.0, 0.0, height, area[0], area[1]};
    return pictures;
}

std::vector<ShadingPicture> FunctionPicture(const COLOR::IFunctionShadingColorSpace& shading,
                                            const Colors& colors, const std::array<double, 4>& area,
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
    const Shader shader = [colors, domain, inverse](const Point& point, Colors::Samples* samples) {
        const Point p = Apply(*inverse, point);
        const float inputs[2] = {static_cast<float>(p.x), static_cast<float>(p.y)};
        const bool isInside = inputs[0] >= domain[0] && inputs[0] <= domain[1] &&
                              inputs[1] >= domain[2] && inputs[1] <= domain[3];
        if (isInside && samples != nullptr) {
            *samples = colors.At(inputs);
        }
        return isInside;
    };
    return ShadedPicture(colors, area, resolution, shader);
}

/// From the first to the last part of the axis, in which 0 and 1 are its ends, across the area.
ShadingPicture Strip(const Colors& colors, Ramp ramp, const Point& start, const Point& axis,
                     const std::pair<double, double>& along,
                     const std::pair<double, double>& across) {
    ShadingPicture picture;
    const auto width = static_cast<std::int32_t>(ramp.size());
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
                                          const Colors& colors, const std::array<double, 4>& area) {
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
    const auto add = [&](Ramp ramp, double from, double to) {
        if (to > from) {
            pictures.push_back(Strip(colors, std::move(ramp), start, axis, {from, to}, across));
        }
    };
    if (extendsStart) {
        add({colors.At(&domain[0])}, along.first, 0.0);
    }
    add(MakeRamp(colors, domain), 0.0, 1.0);
    if (extendsEnd) {
        add({colors.At(&domain[1])}, 1.0, along.second);
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
                                          const Colors& colors, const std::array<double, 4>& area,
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
        painted = {std::max<double>(area[0], std::min(c[0] - c[2], c[3] - c[5])),
                   std::max<double>(area[1], std::min(c[1] - c[2], c[4] - c[5])),
                   std::min<double>(area[2], std::max(c[0] + c[2], c[3] + c[5])),
                   std::min<double>(area[3], std::max(c[1] + c[2], c[4] + c[5]))};
    }
    const Shader shader = [circles, ramp = MakeRamp(colors, domain)](const Point& point,
                                                                     Colors::Samples* samples) {
        const auto part = circles.At(point);
        if (part && samples != nullptr) {
            const double step = std::clamp(*part * kRampSteps, 0.0, kRampSteps - 1.0);
            *samples = ramp[static_cast<std::size_t>(step)];
        }
        return part.has_value();
    };
    return ShadedPicture(colors, painted, resolution, shader);
}

}  // namespace

std::vector<ShadingPicture> PicturesOf(COLOR::IConnectionColorSpace& shading,
                                       const std::array<double, 4>& area, double resolution,
                                       const HOST::ColorSpacePtr& rgb) {
    if (const auto* function = FindInterface<COLOR::IFunctionShadingColorSpace>(
            &shading, COLOR::IID_IFUNCTIONSHADING)) {
        return FunctionPicture(*function, Colors(*function, rgb), area, resolution);
    }
    if (const auto* axial = FindInterface<COLOR::IAxialShadingPatternColorSpace>(
            &shading, COLOR::IID_IAXIALSHADING)) {
        return AxialPictures(*axial, Colors(*axial, rgb), area);
    }
    if (const auto* radial = FindInterface<COLOR::IRadialShadingPatternColorSpace>(
            &shading, COLOR::IID_IRADIALSHADING)) {
        return RadialPicture(*radial, Colors(*radial, rgb), area, resolution);
    }
    return {};
}

}  // namespace VANTIX::PDF
