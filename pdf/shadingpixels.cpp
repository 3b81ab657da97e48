// SPDX-License-Identifier: MIT
#include "pdf/shadingpixels.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "host/color/outputvalues.h"

namespace VANTIX::PDF {

namespace {

/// Within 0 and 1; NaN is 0.
float PartOf(float value) {
    return value >= 0.0F ? std::min(value, 1.0F) : 0.0F;
}

}  // namespace

bool IsArea(const ShadingArea& area) {
    return area[2] > area[0] && area[3] > area[1] && std::isfinite(area[2] - area[0]) &&
           std::isfinite(area[3] - area[1]);
}

ShadingArea Intersection(const ShadingArea& a, const ShadingArea& b) {
    return {std::max(a[0], b[0]), std::max(a[1], b[1]), std::min(a[2], b[2]), std::min(a[3], b[3])};
}

PixelGrid::PixelGrid(const ShadingArea& pixelArea, double resolution) : area(pixelArea) {
    const double most = std::sqrt(kMostPixels / ((area[2] - area[0]) * (area[3] - area[1])));
    const auto pixels = [fitting = std::min(resolution, most)](double length) {
        return static_cast<std::int32_t>(std::clamp(std::ceil(length * fitting), 1.0, 8192.0));
    };
    width = pixels(area[2] - area[0]);
    height = pixels(area[3] - area[1]);
}

ShadingPoint PixelGrid::Middle(std::size_t x, std::int32_t y) const {
    return {area[0] + (area[2] - area[0]) * (static_cast<double>(x) + 0.5) / width,
            area[3] - (area[3] - area[1]) * (y + 0.5) / height};
}

ShadingPoint PixelGrid::ToPixels(const ShadingPoint& point) const {
    return {(point.x - area[0]) / (area[2] - area[0]) * width,
            (area[3] - point.y) / (area[3] - area[1]) * height};
}

std::array<double, 6> PixelGrid::Place() const {
    return {area[2] - area[0], 0.0, 0.0, area[3] - area[1], area[0], area[1]};
}

ShadingColors::ShadingColors(const COLOR::IShadingColorSpace& shading,
                             const HOST::ColorSpacePtr& rgb)
    : mFunction(shading.GetFunction()),
      mSpace(shading.GetShadingSpace()),
      mTarget(mSpace),
      mIsLab(mSpace && HOST::FamilyOf(*mSpace) == "clab"_cc),
      mIsInverted(mSpace && mSpace->StoresComponentsInverted()) {
    if (mIsLab) {
        mTarget = rgb;
    }
}

bool ShadingColors::IsUsable(std::int32_t inputs) const {
    if (!mTarget || mSpace->GetComponentCount() > COLOR::kMaxComponents) {
        return false;
    }
    return inputs == 0 || (mFunction != nullptr && mFunction->GetInputCount() == inputs &&
                           mFunction->GetOutputCount() == mSpace->GetComponentCount());
}

std::size_t ShadingColors::ComponentCount() const {
    return static_cast<std::size_t>(mSpace->GetComponentCount());
}

ShadingColors::Values ShadingColors::Evaluate(const float* inputs) const {
    Values values{};
    mFunction->Evaluate(inputs, values.data());
    HOST::ToHostForm(*mFunction, *mSpace, values.data());
    return values;
}

void ShadingColors::ToHostForm(Values& values) const {
    for (std::size_t i = 0; !mIsLab && i < ComponentCount(); ++i) {
        const float part = PartOf(values[i]);
        values[i] = mIsInverted ? 1.0F - part : part;
    }
}

ShadingColors::Samples ShadingColors::ToSamples(const Values& values) const {
    constexpr auto kIntent = COLOR::TRenderingIntent::kRelativeColorimetric;
    float pcs[3] = {};
    Values converted;
    const Values* shown = &values;
    if (mTarget.Get() != mSpace.Get() && mSpace->ToPCS(values.data(), pcs, kIntent) &&
        mTarget->FromPCS(pcs, converted.data(), kIntent)) {
        shown = &converted;
    }
    Samples samples{};
    std::transform(
        shown->begin(), shown->begin() + mTarget->GetComponentCount(), samples.begin(),
        [](float value) { return static_cast<std::uint8_t>(std::lround(PartOf(value) * 255.0F)); });
    return samples;
}

ColorRamp::ColorRamp(const ShadingColors& colors, const float domain[2]) {
    for (std::int32_t i = 0; i < kSteps; ++i) {
        const float part = (static_cast<float>(i) + 0.5F) / kSteps;
        const float t = domain[0] + (domain[1] - domain[0]) * part;
        mSamples.push_back(colors.At(&t));
    }
}

const ShadingColors::Samples& ColorRamp::At(double part) const {
    const auto steps = static_cast<double>(mSamples.size());
    return mSamples[static_cast<std::size_t>(std::clamp(part * steps, 0.0, steps - 1.0))];
}

namespace {

constexpr std::uint8_t kNoRound = 0xFF;

}  // namespace

ShadingCanvas::ShadingCanvas(HOST::ColorSpacePtr space, const PixelGrid& grid)
    : mSpace(std::move(space)),
      mGrid(grid),
      mPlanes(static_cast<std::size_t>(mSpace->GetComponentCount())),
      mSamples(At(0, grid.height) * mPlanes),
      mRounds(At(0, grid.height), kNoRound) {}

void ShadingCanvas::Paint(std::size_t x, std::int32_t y, const ShadingColors::Samples& samples) {
    std::copy_n(samples.begin(), mPlanes, mSamples.data() + At(x, y) * mPlanes);
    mRounds[At(x, y)] = 0;
}

void ShadingCanvas::Spread() {
    // As far as a pixel of a device of 36 dots an inch reaches at 150.
    constexpr std::uint8_t kSpread = 4;
    for (std::uint8_t round = 1; round <= kSpread; ++round) {
        for (std::int32_t y = 0; y < mGrid.height; ++y) {
            for (std::int32_t x = 0; x < mGrid.width; ++x) {
                if (mRounds[At(static_cast<std::size_t>(x), y)] == kNoRound) {
                    SpreadTo(x, y, round);
                }
            }
        }
    }
}

void ShadingCanvas::SpreadTo(std::int32_t x, std::int32_t y, std::uint8_t round) {
    constexpr std::array<std::array<std::int32_t, 2>, 4> kNeighbours{
        {{-1, 0}, {1, 0}, {0, -1}, {0, 1}}};
    for (const auto& [right, down] : kNeighbours) {
        const std::int32_t column = x + right;
        const std::int32_t row = y + down;
        if (column < 0 || row < 0 || column >= mGrid.width || row >= mGrid.height) {
            continue;
        }
        const std::size_t from = At(static_cast<std::size_t>(column), row);
        if (mRounds[from] < round) {
            const std::size_t to = At(static_cast<std::size_t>(x), y);
            std::copy_n(mSamples.data() + from * mPlanes, mPlanes, mSamples.data() + to * mPlanes);
            mRounds[to] = round;
            return;
        }
    }
}

void ShadingCanvas::ReadSamples(std::int32_t y, std::uint8_t* const* planes) const {
    const std::uint8_t* samples = mSamples.data() + At(0, y) * mPlanes;
    for (std::size_t x = 0; x < static_cast<std::size_t>(mGrid.width); ++x) {
        for (std::size_t i = 0; i < mPlanes; ++i) {
            planes[i][x] = *samples++;
        }
    }
}

void ShadingCanvas::ReadOpacity(std::int32_t y, std::uint8_t* plane) const {
    const std::uint8_t* rounds = mRounds.data() + At(0, y);
    std::transform(rounds, rounds + mGrid.width, plane,
                   [](std::uint8_t round) { return round == 0 ? std::uint8_t{0xFF} : 0; });
}

PlanarImage ImageOf(const HOST::ColorSpacePtr& space, std::int32_t width, std::int32_t height,
                    PlaneSourcePtr source) {
    PlanarImage image;
    image.format = {space, width, height, 8};
    image.isDeviceN = FindInterface<IObject>(space.Get(), COLOR::IID_IDEVICENCOLORSPACE) != nullptr;
    image.source = std::move(source);
    return image;
}

}  // namespace VANTIX::PDF
