// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "core/io/idataprovider.h"
#include "host/color/functionbase.h"
#include "host/color/spaces.h"

namespace VANTIX::HOST {

namespace {

using COLOR::TRenderingIntent;

class DeviceSpace : public SpaceBase<COLOR::IDeviceConnectionColorSpace> {
public:
    DeviceSpace(FourCC family, std::int32_t components, ColorSpacePtr profileForm,
                ColorSpacePtr rgb)
        : SpaceBase(COLOR::IID_IDEVICECOLORSPACE, components, GUID{family, 0, 0, {}}),
          mFamily(family),
          mProfileForm(std::move(profileForm)),
          mRGB(std::move(rgb)) {
        if (mProfileForm) {
            SetBasis(TInterfacePtr<SpaceBasis>(
                FindInterface<SpaceBasis>(mProfileForm.Get(), IID_SPACEBASIS)));
        } else if (family == "cmyk"_cc && mRGB) {
            SetBasis(MakeObject<SpaceBasis>(nullptr, mRGB));
        }
    }

    FourCC GetFamily() const override { return mFamily; }

    bool ToPCS(const float* values, float pcs[3], TRenderingIntent intent) const override {
        if (!Convert(values, pcs, intent)) {
            return false;
        }
        mLast.Keep(values, GetComponentCount(), pcs);
        return true;
    }

    /// Without a profile black is the least of the three inks and replaces it in all three, which
    /// the other direction takes back exactly.
    bool FromPCS(const float pcs[3], float* values, TRenderingIntent intent) const override {
        if (mLast.Recall(pcs, values)) {
            return true;
        }
        if (mProfileForm) {
            return mProfileForm->FromPCS(pcs, values, intent);
        }
        std::array<float, 3> rgb{};
        if (!mRGB || !mRGB->FromPCS(pcs, rgb.data(), intent)) {
            return false;
        }
        const float lightest = *std::max_element(rgb.begin(), rgb.end());
        for (std::size_t i = 0; i < 3; ++i) {
            values[i] = 1.0F - (lightest - rgb[i]);
        }
        values[3] = lightest;
        return true;
    }

    bool GetDefaultValues(float* values, std::int32_t count) const override {
        if (!SpaceBase::GetDefaultValues(values, count)) {
            return false;
        }
        // Black ink alone, as complements.
        std::fill(values, values + count - 1, mFamily == "cmyk"_cc ? 1.0F : 0.0F);
        return true;
    }

    bool StoresComponentsInverted() const override { return mFamily == "cmyk"_cc; }

    Status WritePostScriptArray(TRenderingIntent intent, IO::IDataProvider& out) const override {
        static constexpr std::string_view kName = "/DeviceCMYK ";
        return mProfileForm ? mProfileForm->WritePostScriptArray(intent, out)
                            : out.Write(kName.data(), kName.size());
    }

    /// Without a profile the space stands for itself, so that what has to be written with one is
    /// not lost.
    COLOR::IConnectionColorSpace* GetProfileForm() override {
        return mProfileForm ? mProfileForm.Get() : this;
    }

protected:
    Status ConvertSamples(const COLOR::IConnectionColorSpace& target,
                          const COLOR::LineConversion& line) const override {
        if (mProfileForm || mFamily != "cmyk"_cc || !mRGB) {
            return SpaceBase::ConvertSamples(target, line);
        }
        COLOR::LineConversion light = line;
        InksToLight(line.source, mLight.Planes(3, line.width, line.sourceBits), line.width,
                    line.sourceBits);
        light.source = mLight.Filled();
        return mRGB->ConvertLine(target, light);
    }

private:
    bool Convert(const float* values, float pcs[3], TRenderingIntent intent) const {
        if (mProfileForm) {
            return mProfileForm->ToPCS(values, pcs, intent);
        }
        // With a fourth, since GCC 12 takes the RGB space for another CMYK space and warns.
        std::array<float, 4> rgb{};
        for (std::size_t i = 0; i < 3; ++i) {
            // The complement of min(1, c + k).
            rgb[i] = ClipTo(values[i] + values[3] - 1.0F, 0.0F, 1.0F);
        }
        return mRGB && mRGB->ToPCS(rgb.data(), pcs, intent);
    }

    FourCC mFamily;
    ColorSpacePtr mProfileForm;
    ColorSpacePtr mRGB;
    mutable LastColor mLast;
    mutable LineRoom mLight;
};

}  // namespace

ColorSpacePtr MakeDeviceSpace(FourCC family, ColorSpacePtr profileForm, ColorSpacePtr rgb) {
    const std::int32_t components = family == "gray"_cc ? 1 : (family == "cmyk"_cc ? 4 : 3);
    return MakeObject<DeviceSpace>(family, components, std::move(profileForm), std::move(rgb));
}

}  // namespace VANTIX::HOST
