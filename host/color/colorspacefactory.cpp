// SPDX-License-Identifier: MIT
#include "host/color/colorspacefactory.h"

#include <algorithm>
#include <array>
#include <utility>

#include "core/libsupport/vlogger/logmessage.h"
#include "host/color/spaces.h"

namespace VANTIX::HOST {

namespace {

constexpr std::array kFamilies{"gray"_cc, "rgb "_cc, "cmyk"_cc};

enum Slot : std::size_t { kGray, kRGB, kCMYK };

std::size_t SlotOf(FourCC family) {
    return static_cast<std::size_t>(std::find(kFamilies.begin(), kFamilies.end(), family) -
                                    kFamilies.begin());
}

ColorSpacePtr MakeFromBytes(std::span<const std::uint8_t> bytes, std::int32_t components,
                            std::string& error) {
    ProfilePtr profile = IccProfile::Open(bytes, components, error);
    if (!profile) {
        return nullptr;
    }
    const GUID identifier = Digest("profile").Add(bytes).Identifier();
    return MakeProfileSpace(std::move(profile), identifier);
}

ColorSpacePtr MakeBuiltIn(std::size_t slot) {
    ProfilePtr profile = slot == kGray ? IccProfile::StandardGray() : IccProfile::StandardRGB();
    const Digest name(slot == kGray ? "built-in gray" : "built-in RGB");
    return profile ? MakeProfileSpace(std::move(profile), name.Identifier()) : nullptr;
}

/// A new reference for the caller; what could not be made is logged.
COLOR::IConnectionColorSpace* Give(ColorSpacePtr space, const std::string& error = {}) {
    if (!space && !error.empty()) {
        LogError("host/color") << "A colour space was refused: " << error.c_str();
    }
    return space.Detach();
}

}  // namespace

ColorSpaceFactory::ColorSpaceFactory()
    : mProfiles{MakeBuiltIn(kGray), MakeBuiltIn(kRGB), nullptr} {}

ColorSpaceFactory::~ColorSpaceFactory() = default;

bool ColorSpaceFactory::SetDefaultProfiles(const DefaultProfiles& profiles, std::string& error) {
    const std::array<const std::vector<std::uint8_t>*, 3> given{&profiles.gray, &profiles.rgb,
                                                                &profiles.cmyk};
    constexpr std::array kComponents{1, 3, 4};
    std::array<ColorSpacePtr, 3> made;
    for (std::size_t i = 0; i < made.size(); ++i) {
        if (!given[i]->empty()) {
            made[i] = MakeFromBytes(*given[i], kComponents[i], error);
            if (!made[i]) {
                return false;
            }
        } else if (i != kCMYK) {
            made[i] = MakeBuiltIn(i);
        }
    }
    std::move(made.begin(), made.end(), mProfiles);
    std::fill(std::begin(mDevices), std::end(mDevices), nullptr);
    return true;
}

ColorSpacePtr ColorSpaceFactory::DeviceSpace(FourCC family) {
    const std::size_t slot = SlotOf(family);
    if (slot == kFamilies.size()) {
        return nullptr;
    }
    if (!mDevices[slot]) {
        mDevices[slot] = MakeDeviceSpace(family, mProfiles[slot], mProfiles[kRGB]);
    }
    return mDevices[slot];
}

// NOLINTBEGIN(readability-convert-member-functions-to-static): callers see one factory
ColorSpacePtr ColorSpaceFactory::ProfileSpace(std::span<const std::uint8_t> profile,
                                              std::int32_t components, std::string& error) {
    return MakeFromBytes(profile, components, error);
}

ColorSpacePtr ColorSpaceFactory::GammaGraySpace(const CalibratedParameters& parameters,
                                                std::string& error) {
    return MakeGammaGraySpace(parameters, error);
}

ColorSpacePtr ColorSpaceFactory::CalibratedSpace(FourCC family,
                                                 const CalibratedParameters& parameters,
                                                 std::string& error) {
    return MakeCalibratedSpace(family, parameters, error);
}

ColorSpacePtr ColorSpaceFactory::IndexedSpace(const ColorSpacePtr& base, std::int32_t entries,
                                              std::vector<std::uint8_t> table, std::string& error) {
    return MakeIndexedSpace(base, entries, std::move(table), error);
}

ColorSpacePtr ColorSpaceFactory::SeparationSpace(std::string_view name,
                                                 const ColorSpacePtr& alternate,
                                                 const FunctionPtr& tint, std::string& error) {
    return MakeSeparationSpace(CoreString(name), alternate, tint, error);
}

ColorSpacePtr ColorSpaceFactory::DeviceNSpace(const std::vector<std::string>& names,
                                              const ColorSpacePtr& alternate,
                                              const FunctionPtr& tint,
                                              TInterfacePtr<COLOR::IInkCollection> inks,
                                              std::string& error) {
    return MakeDeviceNSpace(names, alternate, tint, std::move(inks), error);
}

ColorSpacePtr ColorSpaceFactory::RegistrationSpace(std::int32_t components) {
    const std::size_t slot = components == 1 ? kGray : (components == 3 ? kRGB : kCMYK);
    const bool isKnown = components == 1 || components == 3 || components == 4;
    return isKnown ? MakeRegistrationSpace(DeviceSpace(kFamilies[slot])) : nullptr;
}

ColorSpacePtr ColorSpaceFactory::NoneSpace() {
    return MakeNoneSpace();
}

// NOLINTEND(readability-convert-member-functions-to-static)

COLOR::IConnectionColorSpace* ColorSpaceFactory::CreateDeviceGrayColorSpace() {
    return Give(DeviceSpace("gray"_cc));
}

COLOR::IConnectionColorSpace* ColorSpaceFactory::CreateDeviceRGBColorSpace() {
    return Give(DeviceSpace("rgb "_cc));
}

COLOR::IConnectionColorSpace* ColorSpaceFactory::CreateDeviceCMYKColorSpace() {
    return Give(DeviceSpace("cmyk"_cc));
}

COLOR::IConnectionColorSpace* ColorSpaceFactory::CreateCalibratedGrayColorSpace(
    const float white[3], const float black[3], float gamma) {
    CalibratedParameters parameters;
    if (white != nullptr) {
        std::copy_n(white, 3, parameters.white.begin());
    }
    if (black != nullptr) {
        std::copy_n(black, 3, parameters.black.begin());
    }
    parameters.gammas = {gamma};
    std::string error;
    ColorSpacePtr space = CalibratedSpace("cgry"_cc, parameters, error);
    return Give(std::move(space), error);
}

COLOR::IConnectionColorSpace* ColorSpaceFactory::CreateDefaultProfileColorSpace(FourCC family) {
    const std::size_t slot = SlotOf(family);
    return slot == kFamilies.size() ? nullptr : Give(mProfiles[slot]);
}

COLOR::IConnectionColorSpace* ColorSpaceFactory::CreateLabColorSpace(const float white[3]) {
    CalibratedParameters parameters;
    parameters.labRange = {-128, 127, -128, 127};
    if (white != nullptr && std::any_of(white, white + 3, [](float v) { return v != 0.0F; })) {
        std::copy_n(white, 3, parameters.white.begin());
    }
    std::string error;
    ColorSpacePtr space = CalibratedSpace("clab"_cc, parameters, error);
    return Give(std::move(space), error);
}

COLOR::IConnectionColorSpace* ColorSpaceFactory::CreateSeparationColorSpace(
    const CoreString& name, COLOR::IConnectionColorSpace* alternate, COLOR::IColorFunction* tint) {
    std::string error;
    ColorSpacePtr space =
        MakeSeparationSpace(name, ColorSpacePtr(alternate), FunctionPtr(tint), error);
    return Give(std::move(space), error);
}

}  // namespace VANTIX::HOST
