// SPDX-License-Identifier: MIT
#pragma once

#include "baseconnectionspacedelegate/processconnectionspacedelegate.h"
#include "baseconnectionspacedelegate/spacekinds.h"

namespace VANTIX::RENDERING {

/// Writes everything in the space of the output profile, which is one of the model `Plain`: only
/// gray, and rasters tagged with that profile, keep their values. Faults are logged in the name of
/// `Module`.
template <class Plain, const auto& Module>
class ColorManaged : public Plain {
public:
    /// `options` are `DELEGATEOPTION` bits.
    ColorManaged(IClassFactory& factory, IConnectionColorSpace* destination, std::uint32_t options)
        : Plain(factory, destination, options) {
        this->mColorManaged = true;
    }

    bool SetColor(const float* values, std::int32_t count, bool fill) override {
        return this->SetManagedColor(values, count, fill, Module);
    }

    void InjectRaster(Raster& raster, float x, float y, float width, float height) override {
        auto* profile = AsProfileBased(raster.GetColorSpace());
        if (profile == nullptr) {
            Plain::InjectRaster(raster, x, y, width, height);
            return;
        }
        if (profile->GetFamily() != this->ModelFamily()) {
            Plain::InjectForeignProfile(raster, *profile, x, y, width, height);
            return;
        }
        const auto isOutput = this->IsOutputProfile(*profile, Module);
        if (isOutput && *isOutput) {
            this->WriteModelRaster(raster);
        } else if (isOutput) {
            this->InjectConvertedRaster(raster);
        }
    }

    /// Leaves the other families to the plain model.
    void InjectDeviceSpaceImage(Raster& raster, float x, float y, float width, float height,
                                FourCC deviceKey) override {
        const bool isKnown =
            deviceKey == "gray"_cc || deviceKey == "rgb "_cc || deviceKey == "cmyk"_cc;
        if (isKnown && deviceKey != this->ModelFamily()) {
            Plain::InjectDeviceSpaceImage(raster, x, y, width, height, deviceKey);
        } else {
            this->InjectConvertedRaster(raster);
        }
    }
};

}  // namespace VANTIX::RENDERING
