// SPDX-License-Identifier: MIT
#include "connectionspacedelegatefactory.h"

#include "asiscompositeconnectionspacedelegate/asiscompositeconnectionspacedelegate.h"
#include "cmykcompositeconnectionspacedelegate/cmykcompositeconnectionspacedelegate.h"
#include "core/color/iconnectioncolorspacefactory.h"
#include "core/io/idictionary.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "devicenconnectionspacedelegate/devicenconnectionspacedelegate.h"
#include "postscriptconnectionspace/policykeys.h"

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

/// Whether the model is one that this build has no delegate for.
bool IsMissing(TDelegateType type) {
    return type >= TDelegateType::kDeviceGray && type <= TDelegateType::kManagedRGB;
}

/// A delegate on DeviceCMYK.
IConnectionSpaceDelegate* CreateInkDelegate(IClassFactory& factory, TDelegateType type,
                                            COLOR::IConnectionColorSpace* cmyk,
                                            std::uint32_t options) {
    switch (type) {
        case TDelegateType::kCMYK:
            return new CMYKCompositeConnectionSpaceDelegate(
                factory, cmyk, options | DELEGATEOPTION::kConvertSpotsToProcess);
        case TDelegateType::kManagedCMYK:
            return new ColorManagedCMYKCompositeConnectionSpaceDelegate(
                factory, cmyk, options | DELEGATEOPTION::kConvertSpotsToProcess);
        case TDelegateType::kDeviceN:
            return CreateDeviceNConnectionSpaceDelegate(factory, cmyk, options);
        case TDelegateType::kManagedDeviceN:
            return CreateColorManagedDeviceNConnectionSpaceDelegate(factory, cmyk, options);
        default:
            return nullptr;
    }
}

bool IsInkModel(TDelegateType type) {
    return type == TDelegateType::kCMYK || type == TDelegateType::kManagedCMYK ||
           type == TDelegateType::kDeviceN || type == TDelegateType::kManagedDeviceN;
}

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
    if (IsMissing(type)) {
        LogError(kModule) << "There is no delegate of type " << static_cast<std::int32_t>(type)
                          << ".";
        return nullptr;
    }
    if (IsInkModel(type)) {
        const auto cmyk = TInterfacePtr<COLOR::IConnectionColorSpace>::Adopt(
            spaces->CreateDeviceCMYKColorSpace());
        return CreateInkDelegate(factory, type, cmyk.Get(), word);
    }
    if (type == TDelegateType::kAsIsProcess || type == TDelegateType::kAsIsProcess2) {
        word |= DELEGATEOPTION::kConvertSpotsToProcess;
    }
    return new AsIsCompositeConnectionSpaceDelegate(factory, word);
}

}  // namespace VANTIX::RENDERING
