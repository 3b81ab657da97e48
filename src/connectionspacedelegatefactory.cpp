// SPDX-License-Identifier: MIT
#include "connectionspacedelegatefactory.h"

#include <algorithm>

#include "asiscompositeconnectionspacedelegate/asiscompositeconnectionspacedelegate.h"
#include "cmykcompositeconnectionspacedelegate/cmykcompositeconnectionspacedelegate.h"
#include "core/color/iconnectioncolorspacefactory.h"
#include "core/io/idictionary.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "devicenconnectionspacedelegate/devicenconnectionspacedelegate.h"
#include "grayscaleconnectionspacedelegate/grayscaleconnectionspacedelegate.h"
#include "postscriptconnectionspace/policykeys.h"
#include "rgbcompositeconnectionspacedelegate/rgbcompositeconnectionspacedelegate.h"

namespace VANTIX::RENDERING {

namespace {

constexpr const char* kModule = "src/connectionspacedelegatefactory";

std::uint32_t ReadOptions(const IO::IDictionary* options) {
    if (options == nullptr) {
        return 0;
    }

    struct Switch {
        std::int32_t key;
        std::uint32_t bit;
    };

    constexpr Switch kSwitches[] = {
        {PS::POLICY::kPdfmarkTransparency, DELEGATEOPTION::kJawsWorkaround},
        {PS::POLICY::kEmbedProfiles, DELEGATEOPTION::kEmbedProfiles},
        {PS::POLICY::kPromoteGray, DELEGATEOPTION::kPromoteGray},
        {PS::POLICY::kSoftMasks, DELEGATEOPTION::kSoftMasks},
    };
    std::uint32_t word = 0;
    for (const Switch& option : kSwitches) {
        bool on = false;
        options->GetBool(option.key, on);
        word |= on ? option.bit : 0;
    }
    std::int32_t level = 3;
    options->GetInt(PS::POLICY::kLanguageLevel, level);
    return level == 2 ? word | DELEGATEOPTION::kLevel2 : word;
}

using SpacePtr = TInterfacePtr<COLOR::IConnectionColorSpace>;

/// The space that the model's colours are converted into; null for the models that convert none.
SpacePtr MakeDestination(COLOR::IConnectionColorSpaceFactory& spaces, TDelegateType type) {
    constexpr float kWhite[] = {0.9642F, 1.0F, 0.8249F};
    constexpr float kBlack[] = {0, 0, 0};
    switch (type) {
        case TDelegateType::kDeviceGray:
        case TDelegateType::kManagedGray:
        case TDelegateType::kGray100:
            return SpacePtr::Adopt(spaces.CreateDeviceGrayColorSpace());
        case TDelegateType::kCalibratedGray:
            return SpacePtr::Adopt(spaces.CreateCalibratedGrayColorSpace(kWhite, kBlack, 1.0F));
        case TDelegateType::kRGB:
        case TDelegateType::kManagedRGB:
            return SpacePtr::Adopt(spaces.CreateDeviceRGBColorSpace());
        case TDelegateType::kCMYK:
        case TDelegateType::kManagedCMYK:
        case TDelegateType::kDeviceN:
        case TDelegateType::kManagedDeviceN:
            return SpacePtr::Adopt(spaces.CreateDeviceCMYKColorSpace());
        default:
            return nullptr;
    }
}

template <class Delegate>
IConnectionSpaceDelegate* MakeProcess(IClassFactory& factory,
                                      COLOR::IConnectionColorSpace* destination,
                                      std::uint32_t options) {
    return new Delegate(factory, destination, options | DELEGATEOPTION::kConvertSpotsToProcess);
}

/// How the models that convert colours are made.
struct Maker {
    TDelegateType type;
    IConnectionSpaceDelegate* (*make)(IClassFactory& factory,
                                      COLOR::IConnectionColorSpace* destination,
                                      std::uint32_t options);
};

constexpr Maker kMakers[] = {
    {TDelegateType::kDeviceGray, MakeProcess<DeviceGrayConnectionSpaceDelegate>},
    {TDelegateType::kManagedGray, MakeProcess<ColorManagedDeviceGrayConnectionSpaceDelegate>},
    {TDelegateType::kGray100, MakeProcess<Grayscale100ConnectionSpaceDelegate>},
    {TDelegateType::kCalibratedGray, MakeProcess<CalibratedGrayConnectionSpaceDelegate>},
    {TDelegateType::kRGB, MakeProcess<RGBCompositeConnectionSpaceDelegate>},
    {TDelegateType::kManagedRGB, MakeProcess<ColorManagedRGBCompositeConnectionSpaceDelegate>},
    {TDelegateType::kCMYK, MakeProcess<CMYKCompositeConnectionSpaceDelegate>},
    {TDelegateType::kManagedCMYK, MakeProcess<ColorManagedCMYKCompositeConnectionSpaceDelegate>},
    {TDelegateType::kDeviceN, CreateDeviceNConnectionSpaceDelegate},
    {TDelegateType::kManagedDeviceN, CreateColorManagedDeviceNConnectionSpaceDelegate},
};

}  // namespace

IObject* CreateConnectionSpaceDelegateFactory() {
    return new ConnectionSpaceDelegateFactory;
}

IConnectionSpaceDelegate* ConnectionSpaceDelegateFactory::CreateConnectionSpaceDelegate(
    IClassFactory& factory, TDelegateType type, const IO::IDictionary* options) const {
    std::uint32_t word = ReadOptions(options);
    const auto spaces = CreateObject<COLOR::IConnectionColorSpaceFactory>(
        &factory, COLOR::IID_ICONNECTIONCOLORSPACEFACTORY);
    if (!spaces) {
        LogError(kModule) << "Could not create a color space factory.";
        return nullptr;
    }
    const auto* const maker = std::find_if(std::begin(kMakers), std::end(kMakers),
                                           [type](const Maker& each) { return each.type == type; });
    if (maker != std::end(kMakers)) {
        return maker->make(factory, MakeDestination(*spaces, type).Get(), word);
    }
    if (type == TDelegateType::kAsIsProcess || type == TDelegateType::kAsIsProcess2) {
        word |= DELEGATEOPTION::kConvertSpotsToProcess;
    }
    return new AsIsCompositeConnectionSpaceDelegate(factory, word);
}

}  // namespace VANTIX::RENDERING
