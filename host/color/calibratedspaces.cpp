// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "host/color/functionbase.h"
#include "host/color/spaces.h"

namespace VANTIX::HOST {

namespace {

using COLOR::TRenderingIntent;
using Triple = std::array<float, 3>;

Digest DigestOf(std::string_view kind, const CalibratedParameters& parameters) {
    Digest digest(kind);
    digest.Add(parameters.white).Add(parameters.black);
    digest.Add(std::span<const float>(parameters.gammas));
    digest.Add(std::span<const float>(parameters.matrix));
    digest.Add(parameters.labRange);
    return digest;
}

/// CalGray or CalRGB, converted by a profile made from its parameters.
class CalibratedSpace : public SpaceBase<COLOR::ICalibratedConnectionColorSpace> {
public:
    CalibratedSpace(FourCC family, CalibratedParameters parameters, ProfilePtr profile)
        : SpaceBase(COLOR::IID_ICALIBRATEDCOLORSPACE, profile->Components(),
                    DigestOf(family == "cgry"_cc ? "cgry" : "crgb", parameters).Identifier()),
          mFamily(family),
          mParameters(std::move(parameters)),
          mProfile(std::move(profile)) {
        SetBasis(MakeObject<SpaceBasis>(mProfile, nullptr));
    }

    FourCC GetFamily() const override { return mFamily; }

    /// A CalRGB reports the exponent of the curve that is written for it.
    std::int32_t GetGammas(float gammas[3]) const override {
        constexpr float kWrittenExponent = 2.4F;
        if (mFamily == "crgb"_cc) {
            std::fill(gammas, gammas + 3, kWrittenExponent);
            return 3;
        }
        gammas[0] = mParameters.gammas.front();
        return 1;
    }

    bool GetMatrix(float matrix[9]) const override {
        if (mFamily != "crgb"_cc) {
            return false;
        }
        std::copy(mParameters.matrix.begin(), mParameters.matrix.end(), matrix);
        return true;
    }

    bool GetLabRange(float[4]) const override { return false; }

    bool GetWhitePoint(float xyz[3]) const override {
        std::copy(mParameters.white.begin(), mParameters.white.end(), xyz);
        return true;
    }

    bool ToPCS(const float* values, float pcs[3], TRenderingIntent intent) const override {
        return mProfile->ToPCS(values, pcs, intent);
    }

    bool FromPCS(const float pcs[3], float* values, TRenderingIntent intent) const override {
        return mProfile->FromPCS(pcs, values, intent);
    }

private:
    FourCC mFamily;
    CalibratedParameters mParameters;
    ProfilePtr mProfile;
};

/// The decoding function of Lab (PDF Reference, 4.5.4) and its inverse.
float Decode(float x) {
    return x >= 6.0F / 29.0F ? x * x * x : 108.0F / 841.0F * (x - 4.0F / 29.0F);
}

float Encode(float y) {
    const float x = std::cbrt(y);
    return x >= 6.0F / 29.0F ? x : y * 841.0F / 108.0F + 4.0F / 29.0F;
}

class LabSpace : public SpaceBase<COLOR::ICalibratedConnectionColorSpace> {
public:
    explicit LabSpace(CalibratedParameters parameters)
        : SpaceBase(COLOR::IID_ICALIBRATEDCOLORSPACE, 3, DigestOf("clab", parameters).Identifier()),
          mParameters(std::move(parameters)) {}

    FourCC GetFamily() const override { return "clab"_cc; }

    std::int32_t GetGammas(float[3]) const override { return 0; }

    bool GetMatrix(float[9]) const override { return false; }

    bool GetLabRange(float range[4]) const override {
        std::copy(mParameters.labRange.begin(), mParameters.labRange.end(), range);
        return true;
    }

    bool GetWhitePoint(float xyz[3]) const override {
        std::copy(mParameters.white.begin(), mParameters.white.end(), xyz);
        return true;
    }

    bool GetDefaultValues(float* values, std::int32_t count) const override {
        if (!SpaceBase::GetDefaultValues(values, count)) {
            return false;
        }
        ClipToRange(values);
        return true;
    }

    bool ToPCS(const float* values, float pcs[3], TRenderingIntent) const override {
        Triple lab{values[0], values[1], values[2]};
        ClipToRange(lab.data());
        const float m = (lab[0] + 16.0F) / 116.0F;
        const Triple& white = mParameters.white;
        const Triple xyz = AdaptWhite({white[0] * Decode(m + lab[1] / 500.0F), white[1] * Decode(m),
                                       white[2] * Decode(m - lab[2] / 200.0F)},
                                      white, kD50);
        std::copy(xyz.begin(), xyz.end(), pcs);
        return true;
    }

    bool FromPCS(const float pcs[3], float* values, TRenderingIntent) const override {
        const Triple& white = mParameters.white;
        const Triple xyz = AdaptWhite({pcs[0], pcs[1], pcs[2]}, kD50, white);
        const float y = Encode(xyz[1] / white[1]);
        values[0] = 116.0F * y - 16.0F;
        values[1] = 500.0F * (Encode(xyz[0] / white[0]) - y);
        values[2] = 200.0F * (y - Encode(xyz[2] / white[2]));
        ClipToRange(values);
        return true;
    }

private:
    void ClipToRange(float* lab) const {
        const auto& range = mParameters.labRange;
        lab[0] = ClipTo(lab[0], 0.0F, 100.0F);
        lab[1] = ClipTo(lab[1], range[0], range[1]);
        lab[2] = ClipTo(lab[2], range[2], range[3]);
    }

    CalibratedParameters mParameters;
};

bool CheckParameters(const CalibratedParameters& parameters, std::size_t gammas,
                     std::string& error) {
    // Far beyond every light and every monitor; it keeps the arithmetic finite.
    constexpr float kMost = 100.0F;
    const auto isUsable = [](float v) { return v > 0.0F && v <= kMost; };
    const auto isModest = [](float v) { return std::abs(v) <= kMost; };
    if (!std::all_of(parameters.white.begin(), parameters.white.end(), isUsable)) {
        error = "a calibrated space without a proper white point";
        return false;
    }
    const std::vector<float>& given = parameters.gammas;
    if ((!given.empty() && given.size() != gammas) ||
        !std::all_of(given.begin(), given.end(), isUsable)) {
        error = "a calibrated space with wrong gammas";
        return false;
    }
    const std::vector<float>& matrix = parameters.matrix;
    if ((!matrix.empty() && matrix.size() != 9) ||
        !std::all_of(matrix.begin(), matrix.end(), isModest)) {
        error = "a calibrated space with a wrong matrix";
        return false;
    }
    return true;
}

bool CheckLabRange(const std::array<float, 4>& range, std::string& error) {
    const bool inOrder = range[0] <= range[1] && range[2] <= range[3];
    if (!inOrder ||
        !std::all_of(range.begin(), range.end(), [](float v) { return std::abs(v) <= 1000.0F; })) {
        error = "a Lab space with a wrong range";
        return false;
    }
    return true;
}

/// Whether the curve of sRGB, which is what gets written, is near this gamma.
bool IsNearWrittenCurve(float gamma) {
    return gamma >= 2.1F && gamma <= 2.3F;
}

ColorSpacePtr MakeCalibratedRGB(CalibratedParameters parameters, std::string& error) {
    if (parameters.gammas.empty()) {
        parameters.gammas.assign(3, 1.0F);
    }
    if (parameters.matrix.empty()) {
        parameters.matrix = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    }
    Primaries primaries{};
    for (std::size_t i = 0; i < 3; ++i) {
        const float* xyz = &parameters.matrix[3 * i];
        primaries[i] = AdaptWhite({xyz[0], xyz[1], xyz[2]}, parameters.white, kD50);
    }
    ProfilePtr profile = IccProfile::GammaRGB(
        {parameters.gammas[0], parameters.gammas[1], parameters.gammas[2]}, primaries);
    if (!profile) {
        error = "a calibrated RGB space that cannot be made a profile";
        return nullptr;
    }
    if (std::all_of(parameters.gammas.begin(), parameters.gammas.end(), IsNearWrittenCurve)) {
        return MakeObject<CalibratedSpace>("crgb"_cc, std::move(parameters), std::move(profile));
    }
    return MakeProfileSpace(std::move(profile),
                            DigestOf("calibrated RGB profile", parameters).Identifier());
}

}  // namespace

ColorSpacePtr MakeGammaGraySpace(const CalibratedParameters& parameters, std::string& error) {
    if (!CheckParameters(parameters, 1, error)) {
        return nullptr;
    }
    const float gamma = parameters.gammas.empty() ? 1.0F : parameters.gammas.front();
    ProfilePtr profile = IccProfile::GammaGray(gamma);
    if (!profile) {
        error = "a calibrated gray space that cannot be made a profile";
        return nullptr;
    }
    // Under any white the gray axis is that of the connection space.
    Digest digest("gamma gray");
    digest.Add(std::span<const float>(&gamma, 1));
    return MakeProfileSpace(std::move(profile), digest.Identifier());
}

ColorSpacePtr MakeCalibratedSpace(FourCC family, const CalibratedParameters& parameters,
                                  std::string& error) {
    if (!CheckParameters(parameters, family == "cgry"_cc ? 1 : 3, error)) {
        return nullptr;
    }
    if (family == "crgb"_cc) {
        return MakeCalibratedRGB(parameters, error);
    }
    CalibratedParameters known = parameters;
    if (family == "cgry"_cc) {
        known.gammas.resize(1, 1.0F);
        ProfilePtr profile = IccProfile::GammaGray(known.gammas.front());
        if (profile) {
            return MakeObject<CalibratedSpace>(family, std::move(known), std::move(profile));
        }
        error = "a calibrated gray space that cannot be made a profile";
        return nullptr;
    }
    if (family != "clab"_cc || !CheckLabRange(parameters.labRange, error)) {
        error = error.empty() ? "a calibrated space of an unknown family" : error;
        return nullptr;
    }
    return MakeObject<LabSpace>(std::move(known));
}

}  // namespace VANTIX::HOST
