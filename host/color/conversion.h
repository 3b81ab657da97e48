// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "core/color/colorconversion.h"
#include "core/color/iconnectioncolorspace.h"
#include "core/types.h"

namespace VANTIX::HOST {

/// The white point of the connection space: D50 (ICC.1, 7.2.16).
inline constexpr std::array<float, 3> kD50{0.9642F, 1.0F, 0.8249F};

/// Three columns of XYZ under the white point, one for each primary.
using Primaries = std::array<std::array<float, 3>, 3>;

/// Adapts `xyz` from one white point to another (Bradford).
std::array<float, 3> AdaptWhite(const std::array<float, 3>& xyz, const std::array<float, 3>& from,
                                const std::array<float, 3>& to);

/// The number of an intent (ICC.1, 7.2.15).
std::uint32_t IntentNumber(COLOR::TRenderingIntent intent);

class ProfileLinks;

/// An ICC profile with its conversions to and from XYZ relative to D50, kept for each intent once
/// they have been used. Values are in PDF form: 0 to 1, ink amounts for CMYK, L a b for Lab. Used
/// by one thread at a time.
class IccProfile {
public:
    /// Opens a copy of `bytes`. Null, with the reason, for what is no profile of a device space or
    /// Lab with `components` components, or converts nothing.
    static std::shared_ptr<IccProfile> Open(std::span<const std::uint8_t> bytes,
                                            std::int32_t components, std::string& error);
    /// sRGB (IEC 61966-2-1).
    static std::shared_ptr<IccProfile> StandardRGB();
    /// Gray with the curve of sRGB.
    static std::shared_ptr<IccProfile> StandardGray();
    /// Gray with Y = v^gamma; null when it cannot be made.
    static std::shared_ptr<IccProfile> GammaGray(float gamma);
    /// RGB with primaries relative to D50; null when it cannot be made.
    static std::shared_ptr<IccProfile> GammaRGB(const std::array<float, 3>& gammas,
                                                const Primaries& primaries);

    ~IccProfile();
    IccProfile(const IccProfile&) = delete;
    IccProfile& operator=(const IccProfile&) = delete;
    IccProfile(IccProfile&&) = delete;
    IccProfile& operator=(IccProfile&&) = delete;

    /// "gray", "rgb ", "cmyk" or "clab".
    [[nodiscard]] FourCC Family() const { return mFamily; }

    [[nodiscard]] std::int32_t Components() const;

    [[nodiscard]] const std::string& Name() const { return mName; }

    /// "XYZ " or "Lab ".
    [[nodiscard]] FourCC PCSKind() const;
    /// The primaries of an RGB profile made of three curves and a matrix alone; false for others.
    [[nodiscard]] bool GetPrimaries(Primaries& primaries) const;
    /// Curve `index` of such a profile at `x`.
    [[nodiscard]] float EvaluateCurve(std::size_t index, float x) const;

    bool ToPCS(const float* values, float pcs[3], COLOR::TRenderingIntent intent) const;
    bool FromPCS(const float pcs[3], float* values, COLOR::TRenderingIntent intent) const;

    /// Converts the samples of a line of 8 or 16 bits into `target`, in host form, without its
    /// alpha. The result is that of `ToPCS` and `FromPCS` but for the rounding of a table. False,
    /// with nothing written, for Lab and for profiles that cannot be linked.
    bool ConvertLine(const std::shared_ptr<const IccProfile>& target,
                     const COLOR::LineConversion& line) const;

private:
    struct Transforms;

    /// Takes over the profile handle.
    explicit IccProfile(void* handle);
    static std::shared_ptr<IccProfile> Wrap(void* handle);

    void* mHandle;
    FourCC mFamily;
    std::string mName;
    std::unique_ptr<Transforms> mTransforms;
    std::unique_ptr<ProfileLinks> mLinks;
};

}  // namespace VANTIX::HOST
