// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/color/iconnectioncolorspacefactory.h"
#include "core/color/ispotcolorspaces.h"
#include "core/object/tobject.h"
#include "host/color/functions.h"
#include "host/export.h"

namespace VANTIX::HOST {

using ColorSpacePtr = TInterfacePtr<COLOR::IConnectionColorSpace>;

/// The parameters of CalGray, CalRGB and Lab (PDF Reference, 4.5.4).
struct CalibratedParameters {
    std::array<float, 3> white{0.9642F, 1.0F, 0.8249F};
    std::array<float, 3> black{};
    std::vector<float> gammas{};  ///< none, one (gray) or three
    std::vector<float> matrix{};  ///< none, or nine
    std::array<float, 4> labRange{-100, 100, -100, 100};
};

/// The ICC profiles that stand for the device spaces; an empty one means the built-in: sRGB for
/// RGB, gray with the sRGB curve, and for CMYK the conversion of the PostScript Language
/// Reference, 7.2.
struct DefaultProfiles {
    std::vector<std::uint8_t> gray{};
    std::vector<std::uint8_t> rgb{};
    std::vector<std::uint8_t> cmyk{};
};

/// Makes every colour space of the host, for the reader and for the plug-in. Spaces keep references
/// to what they are made of. Makers for the reader answer null, with the reason in `error`.
class NORVANE_HOST_API ColorSpaceFactory : public TObject<COLOR::IConnectionColorSpaceFactory> {
public:
    ColorSpaceFactory();
    ~ColorSpaceFactory() override;

    /// Sets the profiles behind the device spaces made from now on. False, with the reason, when a
    /// profile cannot be read or has the wrong number of components.
    bool SetDefaultProfiles(const DefaultProfiles& profiles, std::string& error);

    /// Device space of `family` ("gray", "rgb ", "cmyk"); the same object each time.
    ColorSpacePtr DeviceSpace(FourCC family);
    /// `components` 1, 3 or 4 must be that of the profile (Lab profiles have 3 and family "clab").
    /// Equal profile bytes give spaces with equal identifiers.
    ColorSpacePtr ProfileSpace(std::span<const std::uint8_t> profile, std::int32_t components,
                               std::string& error);
    /// A gray profile-based space with the given white point and gamma, for CalGray.
    ColorSpacePtr GammaGraySpace(const CalibratedParameters& parameters, std::string& error);
    /// "cgry", "crgb" or "clab". A CalRGB whose gamma the written sRGB curve cannot express is made
    /// a profile-based space; one of 2.1 to 2.3 reports 2.4.
    ColorSpacePtr CalibratedSpace(FourCC family, const CalibratedParameters& parameters,
                                  std::string& error);
    /// `table` holds entries x components bytes in host form; a short table is padded with zeros.
    ColorSpacePtr IndexedSpace(const ColorSpacePtr& base, std::int32_t entries,
                               std::vector<std::uint8_t> table, std::string& error);
    ColorSpacePtr SeparationSpace(std::string_view name, const ColorSpacePtr& alternate,
                                  const FunctionPtr& tint, std::string& error);
    /// `inks` may be null.
    ColorSpacePtr DeviceNSpace(const std::vector<std::string>& names,
                               const ColorSpacePtr& alternate, const FunctionPtr& tint,
                               TInterfacePtr<COLOR::IInkCollection> inks, std::string& error);
    /// The alternate of a Separation that marks every plate; `components` 1, 3 or 4.
    ColorSpacePtr RegistrationSpace(std::int32_t components);
    /// The alternate of a Separation that marks no plate.
    ColorSpacePtr NoneSpace();

    COLOR::IConnectionColorSpace* CreateDeviceGrayColorSpace() override;
    COLOR::IConnectionColorSpace* CreateDeviceRGBColorSpace() override;
    COLOR::IConnectionColorSpace* CreateDeviceCMYKColorSpace() override;
    COLOR::IConnectionColorSpace* CreateCalibratedGrayColorSpace(const float white[3],
                                                                 const float black[3],
                                                                 float gamma) override;
    COLOR::IConnectionColorSpace* CreateDefaultProfileColorSpace(FourCC family) override;
    COLOR::IConnectionColorSpace* CreateLabColorSpace(const float white[3]) override;
    COLOR::IConnectionColorSpace* CreateSeparationColorSpace(
        const CoreString& name, COLOR::IConnectionColorSpace* alternate,
        COLOR::IColorFunction* tint) override;

private:
    TInterfacePtr<COLOR::IConnectionColorSpace> mDevices[3];
    TInterfacePtr<COLOR::IConnectionColorSpace> mProfiles[3];
};

}  // namespace VANTIX::HOST
