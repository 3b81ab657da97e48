// SPDX-License-Identifier: MIT
#include "host/color/lines.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "core/status.h"

namespace VANTIX::HOST {

namespace {

float SampleAt(const std::uint8_t* plane, std::size_t index, std::int32_t bits) {
    if (plane == nullptr) {
        return 0;
    }
    if (bits == 8) {
        return static_cast<float>(plane[index]) / 255.0F;
    }
    std::uint16_t word = 0;
    std::memcpy(&word, plane + 2 * index, sizeof word);
    return static_cast<float>(word) / 65535.0F;
}

void StoreSample(std::uint8_t* plane, std::size_t index, std::int32_t bits, float value) {
    const float unit = std::clamp(value, 0.0F, 1.0F);
    if (bits == 8) {
        plane[index] = static_cast<std::uint8_t>(std::lround(unit * 255.0F));
        return;
    }
    const auto word = static_cast<std::uint16_t>(std::lround(unit * 65535.0F));
    std::memcpy(plane + 2 * index, &word, sizeof word);
}

bool IsConvertible(const COLOR::IConnectionColorSpace& space, std::int32_t bits) {
    return (bits == 8 || bits == 16) && space.GetComponentCount() <= COLOR::kMaxComponents;
}

}  // namespace

Status PixelsToPCS(const COLOR::IConnectionColorSpace& space, const std::uint8_t* const* planes,
                   std::int32_t width, std::int32_t bits, float* pcs,
                   COLOR::TRenderingIntent intent) {
    if (!IsConvertible(space, bits)) {
        return STATUS::kNotSupported;
    }
    const auto components = static_cast<std::size_t>(space.GetComponentCount());
    std::array<float, COLOR::kMaxComponents> color{};
    for (std::size_t x = 0; x < static_cast<std::size_t>(std::max(width, 0)); ++x) {
        for (std::size_t i = 0; i < components; ++i) {
            color[i] = SampleAt(planes[i], x, bits);
        }
        if (!space.ToPCS(color.data(), pcs + 3 * x, intent)) {
            return STATUS::kNotSupported;
        }
    }
    return STATUS::kOk;
}

Status PixelsFromPCS(const COLOR::IConnectionColorSpace& space, const float* pcs,
                     const std::uint8_t* alpha, std::int32_t width, std::int32_t bits,
                     std::uint8_t* const* planes, COLOR::TRenderingIntent intent) {
    if (!IsConvertible(space, bits)) {
        return STATUS::kNotSupported;
    }
    const auto components = static_cast<std::size_t>(space.GetComponentCount());
    std::array<float, COLOR::kMaxComponents> color{};
    for (std::size_t x = 0; x < static_cast<std::size_t>(std::max(width, 0)); ++x) {
        if (!space.FromPCS(pcs + 3 * x, color.data(), intent)) {
            return STATUS::kNotSupported;
        }
        const float cover = alpha == nullptr ? 1.0F : SampleAt(alpha, x, bits);
        for (std::size_t i = 0; i < components; ++i) {
            // White is 1 in every component of every space that rasters are converted into.
            StoreSample(planes[i], x, bits, 1.0F - cover * (1.0F - color[i]));
        }
    }
    return STATUS::kOk;
}

}  // namespace VANTIX::HOST
