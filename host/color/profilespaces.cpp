// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <utility>

#include "host/color/spaces.h"

namespace VANTIX::HOST {

namespace {

using COLOR::TRenderingIntent;

class ProfileSpace : public SpaceBase<COLOR::IProfileBasedConnectionColorSpace> {
public:
    ProfileSpace(ProfilePtr profile, const GUID& identifier)
        : SpaceBase(COLOR::IID_IPROFILEBASEDCOLORSPACE, profile->Components(), identifier),
          mProfile(std::move(profile)) {
        SetBasis(MakeObject<SpaceBasis>(mProfile, nullptr));
    }

    FourCC GetFamily() const override { return mProfile->Family(); }

    const char* GetProfileName() const override { return mProfile->Name().c_str(); }

    FourCC GetPCSKind() const override { return mProfile->PCSKind(); }

    bool ToPCS(const float* values, float pcs[3], TRenderingIntent intent) const override {
        std::array<float, 4> color{};
        std::copy_n(values, GetComponentCount(), color.begin());
        if (StoresComponentsInverted()) {
            Complement(color.data());
        }
        if (!mProfile->ToPCS(color.data(), pcs, intent)) {
            return false;
        }
        mLast.Keep(values, GetComponentCount(), pcs);
        return true;
    }

    bool FromPCS(const float pcs[3], float* values, TRenderingIntent intent) const override {
        if (mLast.Recall(pcs, values)) {
            return true;
        }
        if (!mProfile->FromPCS(pcs, values, intent)) {
            return false;
        }
        if (StoresComponentsInverted()) {
            Complement(values);
        }
        return true;
    }

    bool GetDefaultValues(float* values, std::int32_t count) const override {
        if (!SpaceBase::GetDefaultValues(values, count)) {
            return false;
        }
        std::fill(values, values + count, StoresComponentsInverted() ? 1.0F : 0.0F);
        return true;
    }

    /// That of sRGB for RGB: where the plug-in stands in for a profile, it does so with the
    /// primaries of sRGB, which are relative to this white. Other families keep D50.
    bool GetWhitePoint(float xyz[3]) const override {
        constexpr std::array kWhite{0.95047F, 1.0F, 1.088827F};
        if (GetFamily() != "rgb "_cc) {
            return false;
        }
        std::copy(kWhite.begin(), kWhite.end(), xyz);
        return true;
    }

    bool StoresComponentsInverted() const override { return GetFamily() == "cmyk"_cc; }

    Status WritePostScriptArray(TRenderingIntent intent, IO::IDataProvider& out) const override {
        return WriteProfileArray(*mProfile, intent, out);
    }

    COLOR::IConnectionColorSpace* GetProfileForm() override { return this; }

private:
    static void Complement(float* inks) {
        std::transform(inks, inks + 4, inks, [](float v) { return 1.0F - v; });
    }

    ProfilePtr mProfile;
    mutable LastColor mLast;
};

}  // namespace

ColorSpacePtr MakeProfileSpace(ProfilePtr profile, const GUID& identifier) {
    return MakeObject<ProfileSpace>(std::move(profile), identifier);
}

}  // namespace VANTIX::HOST
