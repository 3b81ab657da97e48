// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "core/color/ipatterncolorspaces.h"
#include "host/color/colorspacefactory.h"
#include "pdf/images.h"

namespace VANTIX::PDF {

/// A place in the space of a shading, or among the pixels of its picture.
struct ShadingPoint {
    double x = 0.0;
    double y = 0.0;
};

inline ShadingPoint operator+(const ShadingPoint& a, const ShadingPoint& b) {
    return {a.x + b.x, a.y + b.y};
}

inline ShadingPoint operator-(const ShadingPoint& a, const ShadingPoint& b) {
    return {a.x - b.x, a.y - b.y};
}

inline ShadingPoint operator*(const ShadingPoint& a, double factor) {
    return {a.x * factor, a.y * factor};
}

inline double Dot(const ShadingPoint& a, const ShadingPoint& b) {
    return a.x * b.x + a.y * b.y;
}

/// x0 y0 x1 y1 of a shading's space.
using ShadingArea = std::array<double, 4>;

/// Whether it has one, of finite size.
bool IsArea(const ShadingArea& area);

/// What two areas share; no area where that is nothing.
ShadingArea Intersection(const ShadingArea& a, const ShadingArea& b);

/// The pixels of an area, the top row first.
struct PixelGrid {
    static constexpr double kMostPixels = 4e6;

    ShadingArea area;
    std::int32_t width;
    std::int32_t height;

    /// With `resolution` pixels a unit, or fewer where they would be more than the most. `area`
    /// is one.
    PixelGrid(const ShadingArea& area, double resolution);

    /// Where the middle of a pixel lies.
    [[nodiscard]] ShadingPoint Middle(std::size_t x, std::int32_t y) const;

    /// A place of the shading's space among the pixels.
    [[nodiscard]] ShadingPoint ToPixels(const ShadingPoint& point) const;

    /// From the unit square to the area.
    [[nodiscard]] std::array<double, 6> Place() const;
};

/// The colours of a shading. Borrows its function.
class ShadingColors {
public:
    using Values = std::array<float, COLOR::kMaxComponents>;
    /// Of 8 bits in host form.
    using Samples = std::array<std::uint8_t, COLOR::kMaxComponents>;

    /// Samples are of the shading's own space, or of `rgb` where that is Lab.
    ShadingColors(const COLOR::IShadingColorSpace& shading, const HOST::ColorSpacePtr& rgb);

    [[nodiscard]] bool HasFunction() const { return mFunction != nullptr; }

    /// False for a shading without a space, or without a function of `inputs` that fits it; 0 are
    /// those of a shading that needs no function.
    [[nodiscard]] bool IsUsable(std::int32_t inputs) const;

    /// That of the samples.
    [[nodiscard]] const HOST::ColorSpacePtr& Space() const { return mTarget; }

    /// Components of a colour of the shading's own space.
    [[nodiscard]] std::size_t ComponentCount() const;

    /// What the function gives, in host form of the shading's own space.
    [[nodiscard]] Values Evaluate(const float* inputs) const;

    /// Brings a colour that stands in a mesh, in PDF form, into host form.
    void ToHostForm(Values& values) const;

    /// From host form.
    [[nodiscard]] Samples ToSamples(const Values& values) const;

    [[nodiscard]] Samples At(const float* inputs) const { return ToSamples(Evaluate(inputs)); }

private:
    const COLOR::IColorFunction* mFunction;
    HOST::ColorSpacePtr mSpace;
    HOST::ColorSpacePtr mTarget;
    bool mIsLab;
    bool mIsInverted;
};

/// The colours along a domain.
class ColorRamp {
public:
    /// As many, at the middles of even steps.
    static constexpr std::int32_t kSteps = 256;

    ColorRamp(const ShadingColors& colors, const float domain[2]);

    /// A single colour.
    explicit ColorRamp(const ShadingColors::Samples& samples) : mSamples{samples} {}

    /// At a part of the domain, 0 to 1; beyond, the ends go on.
    [[nodiscard]] const ShadingColors::Samples& At(double part) const;

    [[nodiscard]] const std::vector<ShadingColors::Samples>& All() const { return mSamples; }

private:
    std::vector<ShadingColors::Samples> mSamples;
};

/// The picture of a shading that does not paint everywhere: samples, and where they are painted.
class ShadingCanvas {
public:
    ShadingCanvas(HOST::ColorSpacePtr space, const PixelGrid& grid);

    [[nodiscard]] const PixelGrid& Grid() const { return mGrid; }

    void Paint(std::size_t x, std::int32_t y, const ShadingColors::Samples& samples);

    /// Carries colours a little beyond what is painted: clips take in whole pixels of a device.
    void Spread();

    /// Takes planes of the samples, or the plane of opacity.
    void ReadSamples(std::int32_t y, std::uint8_t* const* planes) const;
    void ReadOpacity(std::int32_t y, std::uint8_t* plane) const;

    [[nodiscard]] const HOST::ColorSpacePtr& Space() const { return mSpace; }

private:
    [[nodiscard]] std::size_t At(std::size_t x, std::int32_t y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(mGrid.width) + x;
    }

    void SpreadTo(std::int32_t x, std::int32_t y, std::uint8_t round);

    HOST::ColorSpacePtr mSpace;
    PixelGrid mGrid;
    std::size_t mPlanes;
    std::vector<std::uint8_t> mSamples;
    std::vector<std::uint8_t> mRounds;  // in which a pixel got its colour: 0 where it is painted
};

/// An image of 8 bits in a space.
PlanarImage ImageOf(const HOST::ColorSpacePtr& space, std::int32_t width, std::int32_t height,
                    PlaneSourcePtr source);

}  // namespace VANTIX::PDF
