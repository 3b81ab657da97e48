// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>

#include "baseconnectionspacedelegate/colorants.h"
#include "baseconnectionspacedelegate/spacekinds.h"
#include "cmykcompositeconnectionspacedelegate/cmykcompositeconnectionspacedelegate.h"
#include "core/color/iconnectioncolorspacefactory.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "devicenconnectionspacedelegate/devicenconnectionspacedelegate.h"

namespace VANTIX::RENDERING {

namespace {

constexpr const char* kModule = "src/devicenconnectionspacedelegate";

/// The device family of `space`; 0 for every other kind.
FourCC DeviceFamily(IConnectionColorSpace* space) {
    const auto* device = AsDevice(space);
    return device == nullptr ? 0 : device->GetFamily();
}

}  // namespace

Status DeviceNConnectionSpaceDelegate::Aggregate(IObject* object, GUID id) {
    mInner->Aggregate(object, id);
    return PrivateCMYKCompositeConnectionSpaceDelegate::Aggregate(object, id);
}

void DeviceNConnectionSpaceDelegate::SetGraphicsState(GRAPHICS::IGraphicsState* state) {
    PrivateCMYKCompositeConnectionSpaceDelegate::SetGraphicsState(state);
    mInner->SetGraphicsState(state);
}

bool DeviceNConnectionSpaceDelegate::SetColorSpace(IConnectionColorSpace* space, bool /*fill*/) {
    if (auto* deviceN = AsDeviceN(space)) {
        return SetDeviceNColorSpace(deviceN, false);
    }
    if (auto* separation = AsSeparation(space)) {
        const FourCC family = DeviceFamily(separation->GetAlternateSpace());
        if (family != 0 && family != "cmyk"_cc) {
            separation = CreateSeparationCSWithCMYKAlternate(space);
            if (separation == nullptr) {
                LogError(kModule) << "Failed to create seperation colorspace with CMYK alternate";
                return false;
            }
        }
        return SetSeparationColorSpace(separation, false);
    }
    PS::IPostScriptOutputContext* out = OutputContext();
    if (out != nullptr) {
        out->SetDeviceColorSpace("cmyk"_cc);
    }
    return out != nullptr;
}

bool DeviceNConnectionSpaceDelegate::SetUncoloredPattern(const char* patternName,
                                                         IConnectionColorSpace* underlying,
                                                         bool fill) {
    const bool isSpot = IsSpotSpace(underlying);
    const bool isBlackInk = !mColorManaged && GetOwnFamily(underlying) == "gray"_cc;
    if (!isSpot && !isBlackInk) {
        return PrivateCMYKCompositeConnectionSpaceDelegate::SetUncoloredPattern(patternName,
                                                                                underlying, fill);
    }
    PS::IPostScriptOutputContext* out = OutputContext();
    if (out == nullptr || !mDestination || !SetColorSpace(underlying, fill)) {
        return false;
    }
    const auto color = CurrentColor(fill, *underlying);
    if (!color || isSpot) {
        return color && out->SetPatternColor(patternName, underlying, color->values);
    }
    const float black[4] = {0, 0, 0, 1 - color->values[0]};
    return out->SetPatternColor(patternName, mDestination.Get(), black);
}

std::optional<std::array<float, 4>> DeviceNConnectionSpaceDelegate::InkAmounts(
    const IConnectionColorSpace& space, const float* tints, std::int32_t count) const {
    const auto color = mDestination ? ConvertByHost(space, *mDestination, tints, count,
                                                    RenderingIntents(TRenderingIntent::kPerceptual))
                                    : std::nullopt;
    if (!color || color->count != 4) {
        return std::nullopt;
    }
    std::array<float, 4> amounts{};
    std::transform(color->values, color->values + 4, amounts.begin(),
                   [](float value) { return 1 - value; });
    return amounts;
}

COLOR::ISeparationConnectionColorSpace*
DeviceNConnectionSpaceDelegate::CreateSeparationCSWithCMYKAlternate(IConnectionColorSpace* space) {
    const auto* separation = AsSeparation(space);
    if (separation == nullptr) {
        LogError(kModule) << "source colorspace must be separation color space.";
        return nullptr;
    }
    const GUID source = space->GetIdentifier();
    const auto known =
        std::find_if(mSeparations.begin(), mSeparations.end(),
                     [&](const KnownSeparation& each) { return each.source == source; });
    if (known != mSeparations.end()) {
        return AsSeparation(known->made.Get());
    }
    auto made = MakeSeparation(*separation);
    if (!made) {
        return nullptr;
    }
    mSeparations.push_back({source, std::move(made)});
    return AsSeparation(mSeparations.back().made.Get());
}

TInterfacePtr<IConnectionColorSpace> DeviceNConnectionSpaceDelegate::MakeSeparation(
    const COLOR::ISeparationConnectionColorSpace& separation) {
    const CoreString* name = separation.GetColorantName();
    if (name == nullptr || name->size() == 0) {
        LogError(kModule) << "Separation ColorSpace name should not be empty";
        return nullptr;
    }
    const float fullTint = 1;
    const auto amounts = InkAmounts(separation, &fullTint, 1);
    if (!amounts) {
        return nullptr;
    }
    const auto functions =
        CreateObject<COLOR::IColorFunctionFactory>(mFactory, COLOR::CLSID_COLORFUNCTIONFACTORY);
    if (!functions) {
        LogError(kModule) << "Could not create ColorFunctionFactory.";
        return nullptr;
    }
    Colorants ink;
    ink.Add({}, "", *amounts);
    const std::string program(ink.Program("0.0 0.0 0.0 0.0 ", 4).View());
    constexpr float kUnits[] = {0, 1, 0, 1, 0, 1, 0, 1};
    const auto tint = TInterfacePtr<COLOR::IColorFunction>::Adopt(
        functions->CreateCalculatorFunction(program.c_str(), kUnits, 1, kUnits, 4));
    if (!tint) {
        LogError(kModule) << "Could not create postscript tint function.";
        return nullptr;
    }
    const auto colors = CreateObject<COLOR::IConnectionColorSpaceFactory>(
        mFactory, COLOR::IID_ICONNECTIONCOLORSPACEFACTORY);
    if (!colors) {
        LogError(kModule) << "Could not create colour space factory.";
        return nullptr;
    }
    const auto cmyk =
        TInterfacePtr<IConnectionColorSpace>::Adopt(colors->CreateDeviceCMYKColorSpace());
    if (!cmyk) {
        LogError(kModule) << "Could not create DeviceCMYK colorspace.";
        return nullptr;
    }
    return TInterfacePtr<IConnectionColorSpace>::Adopt(
        colors->CreateSeparationColorSpace(*name, cmyk.Get(), tint.Get()));
}

bool DeviceNConnectionSpaceDelegate::SetColor(const float* values, std::int32_t count, bool fill) {
    PS::IPostScriptOutputContext* out = OutputContext();
    IConnectionColorSpace* source = CurrentColorSpace(fill);
    if (out == nullptr || source == nullptr || values == nullptr || count <= 0) {
        return false;
    }
    if (IsSpotSpace(source)) {
        out->SetColor(values, count);
        return true;
    }
    ColorValues color;
    color.count = 4;
    const FourCC family = GetOwnFamily(source);
    if (family == "cmyk"_cc && count == 4) {
        std::copy_n(values, 4, color.values);
        color.Complement();
    } else if (family == "gray"_cc) {
        color.values[3] = 1 - values[0];
    } else if (!mDestination) {
        LogError(kModule) << "Output ColorSpace can't be NULL here!!!";
        return false;
    } else if (const auto inks = InkAmounts(*source, values, count)) {
        std::copy(inks->begin(), inks->end(), color.values);
    } else {
        return false;
    }
    out->SetColor(color.values, color.count);
    return true;
}

void DeviceNConnectionSpaceDelegate::FillWithColorSpace(IConnectionColorSpace* shading,
                                                        ResourceId /*id*/, float /*x*/, float /*y*/,
                                                        float /*width*/, float /*height*/,
                                                        bool paint) {
    FillConverted(shading, mDestination.Get(), paint, [](IConnectionColorSpace* space) {
        return IsSpotSpace(space) || DeviceFamily(space) == "cmyk"_cc;
    });
}

ColorManagedDeviceNConnectionSpaceDelegate::ColorManagedDeviceNConnectionSpaceDelegate(
    IClassFactory& factory, IConnectionColorSpace* destination, std::uint32_t options, Inner inner)
    : DeviceNConnectionSpaceDelegate(factory, destination, options, std::move(inner)) {
    mColorManaged = true;
}

// The inner delegate knows no spots: a tint would meet the four components of DeviceCMYK.
bool ColorManagedDeviceNConnectionSpaceDelegate::SetColorSpace(IConnectionColorSpace* space,
                                                               bool fill) {
    return IsSpotSpace(space) ? DeviceNConnectionSpaceDelegate::SetColorSpace(space, fill)
                              : InnerDelegate().SetColorSpace(space, fill);
}

bool ColorManagedDeviceNConnectionSpaceDelegate::SetColor(const float* values, std::int32_t count,
                                                          bool fill) {
    PS::IPostScriptOutputContext* out = OutputContext();
    IConnectionColorSpace* source = CurrentColorSpace(fill);
    if (out == nullptr || source == nullptr || values == nullptr || count <= 0) {
        return false;
    }
    // Gray is what the inner delegate has selected for it.
    const bool isGray = GetOwnFamily(source) == "gray"_cc && !mPromoteGray;
    if (IsSpotSpace(source) || isGray) {
        out->SetColor(values, count);
        return true;
    }
    if (!mDestination) {
        LogError(kModule) << "Output ColorSpace can't be NULL here!!!";
        return false;
    }
    const TRenderingIntent intent = RenderingIntents(TRenderingIntent::kPerceptual).first;
    auto color = ConvertByHost(*source, *mDestination, values, count, {intent, intent});
    if (!color || color->count != 4) {
        return false;
    }
    color->Complement();
    out->SetColor(color->values, color->count);
    return true;
}

void ColorManagedDeviceNConnectionSpaceDelegate::InjectDeviceSpaceImage(Raster& raster, float x,
                                                                        float y, float width,
                                                                        float height,
                                                                        FourCC deviceKey) {
    InnerDelegate().InjectDeviceSpaceImage(raster, x, y, width, height, deviceKey);
}

namespace {

template <class Delegate, class InnerDelegate>
IConnectionSpaceDelegate* CreateDelegate(IClassFactory& factory, IConnectionColorSpace* destination,
                                         std::uint32_t options) {
    // Spot channels never reach the inner delegate but where they are to be flattened.
    auto inner = TInterfacePtr<PrivateCMYKCompositeConnectionSpaceDelegate>::Adopt(
        new (std::nothrow)
            InnerDelegate(factory, destination, options | DELEGATEOPTION::kConvertSpotsToProcess));
    if (!inner) {
        LogError(kModule)
            << "Could not create CMYKCompositeConnectionSpaceDelegate, memory error....";
        return nullptr;
    }
    return new Delegate(factory, destination, options, std::move(inner));
}

}  // namespace

IConnectionSpaceDelegate* CreateDeviceNConnectionSpaceDelegate(IClassFactory& factory,
                                                               IConnectionColorSpace* destination,
                                                               std::uint32_t options) {
    return CreateDelegate<DeviceNConnectionSpaceDelegate, CMYKCompositeConnectionSpaceDelegate>(
        factory, destination, options);
}

IConnectionSpaceDelegate* CreateColorManagedDeviceNConnectionSpaceDelegate(
    IClassFactory& factory, IConnectionColorSpace* destination, std::uint32_t options) {
    return CreateDelegate<ColorManagedDeviceNConnectionSpaceDelegate,
                          ColorManagedCMYKCompositeConnectionSpaceDelegate>(factory, destination,
                                                                            options);
}

}  // namespace VANTIX::RENDERING
