// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstring>
#include <string_view>

#include "baseconnectionspacedelegate/baseconnectionspacedelegate.h"
#include "baseconnectionspacedelegate/spacekinds.h"
#include "core/graphics/pluginhelper/colorhelpers.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "platform/uniqueid.h"
#include "postscriptdatastream/workbuffer.h"

namespace VANTIX::RENDERING {

namespace {

using PS::IPostScriptOutputContext;

constexpr const char* kModule = "src/baseconnectionspacedelegate";
constexpr const char* kMissingColorantMessage =
    " colour space is missing the special color name (SPOT COLOR NAME).";

/// The only colorant of a Separation, or of a DeviceN with one; null for every other space.
const CoreString* SingleColorant(IConnectionColorSpace* space) {
    if (const auto* separation = AsSeparation(space)) {
        return separation->GetColorantName();
    }
    const auto* deviceN = AsDeviceN(space);
    return deviceN != nullptr && deviceN->GetColorantCount() == 1 ? deviceN->GetColorantName(0)
                                                                  : nullptr;
}

bool IsBlack(const CoreString* colorant) {
    return colorant != nullptr &&
           std::u16string_view(colorant->c_str(), colorant->size()) == u"Black";
}

/// Black ink at `tint` as ink amounts or light of the family.
ColorValues BlackInk(FourCC family, float tint) {
    if (family == "cmyk"_cc) {
        return {{0, 0, 0, tint}, 4};
    }
    return family == "gray"_cc ? ColorValues{{1 - tint}, 1}
                               : ColorValues{{1 - tint, 1 - tint, 1 - tint}, 3};
}

/// True where the space that a delegate selects for `separation` takes the one tint itself.
bool HasSpecialAlternate(COLOR::ISeparationConnectionColorSpace* separation, const GUID& kind) {
    return separation != nullptr &&
           FindInterface<IObject>(separation->GetAlternateSpace(), kind) != nullptr;
}

bool IsRegistrationOrNone(IConnectionColorSpace* space) {
    auto* separation = AsSeparation(space);
    return HasSpecialAlternate(separation, COLOR::IID_IREGISTRATIONCOLORSPACE) ||
           HasSpecialAlternate(separation, COLOR::IID_INONECOLORSPACE);
}

/// Selects `space` by the name that it got before; false when the current text knows none.
bool SelectByKeptName(IConnectionColorSpace& space, IPostScriptOutputContext& out) {
    const auto* properties = FindInterface<IO::IKeyedProperties>(&space, IO::IID_IDICTIONARY);
    const char* value = nullptr;
    std::size_t length = 0;
    if (properties == nullptr || !properties->Get("PSNM"_cc, value, length) || value == nullptr ||
        length == 0) {
        return false;
    }
    PS::WorkBuffer<char> name(length + 1);
    if (name.Data() == nullptr) {
        LogError(kModule) << "Unable to allocate memory for bytes = " << length + 1
                          << " for NamedColorSpace's name";
        return false;
    }
    std::memcpy(name.Data(), value, length);
    name.Data()[length] = 0;
    return out.SetNamedColorSpace(name.Data());
}

template <class Shading, bool (IPostScriptOutputContext::*Write)(Shading*, IConnectionColorSpace*,
                                                                 std::int32_t, bool, bool)>
bool WriteAs(IPostScriptOutputContext& out, COLOR::IShadingColorSpace* shading,
             IConnectionColorSpace* destination, std::int32_t languageLevel, bool paint,
             bool colourManaged) {
    return (out.*Write)(static_cast<Shading*>(shading), destination, languageLevel, paint,
                        colourManaged);
}

bool WritePatches(IPostScriptOutputContext& out, COLOR::IShadingColorSpace* shading,
                  IConnectionColorSpace* destination, std::int32_t languageLevel, bool paint,
                  bool colourManaged) {
    const bool coons = FindInterface<IObject>(shading, COLOR::IID_ICOONSPATCHMARKER) != nullptr;
    return out.WritePatchMeshesBasedShadingDictionary(
        static_cast<COLOR::ITensorShadingPatternColorSpace*>(shading), destination, languageLevel,
        coons ? 6 : 7, paint, colourManaged);
}

}  // namespace

void ColorValues::Complement() {
    std::transform(values, values + count, values, [](float value) { return 1 - value; });
}

BaseConnectionSpaceDelegate::BaseConnectionSpaceDelegate(IClassFactory& factory,
                                                         IConnectionColorSpace* destination,
                                                         std::uint32_t options)
    : mDestination(destination),
      mSwizzle(CreateObject<GRAPHICS::ISwizzleServices>(&factory, GRAPHICS::CLSID_SWIZZLESERVICES)),
      mFactory(&factory),
      mLanguageLevel((options & DELEGATEOPTION::kLevel2) != 0 ? 2 : 3),
      mConvertSpotsToProcess((options & DELEGATEOPTION::kConvertSpotsToProcess) != 0),
      mJawsWorkaround((options & DELEGATEOPTION::kJawsWorkaround) != 0),
      mPromoteGray((options & DELEGATEOPTION::kPromoteGray) != 0),
      mSoftMasks((options & DELEGATEOPTION::kSoftMasks) != 0) {}

BaseConnectionSpaceDelegate::~BaseConnectionSpaceDelegate() {
    for (const NamedSpace& named : mNamedSpaces) {
        // Another job may have put its own name there in the meantime.
        if (FindInterface<IO::IKeyedProperties>(named.space.Get(), IO::IID_IDICTIONARY) ==
            named.properties.Get()) {
            named.space->Disaggregate(IO::IID_IDICTIONARY);
        }
    }
}

IPostScriptOutputContext* BaseConnectionSpaceDelegate::OutputContext() {
    auto* context = FindInterface<IPostScriptOutputContext>(this, PS::IID_IPOSTSCRIPTOUTPUTCONTEXT);
    if (context == nullptr) {
        LogError(kModule) << "Expected to find an IPostScriptOutputContext.";
    }
    return context;
}

std::pair<TRenderingIntent, TRenderingIntent> BaseConnectionSpaceDelegate::RenderingIntents(
    TRenderingIntent absent) const {
    if (mGraphicsState == nullptr) {
        return {absent, absent};
    }
    return {mGraphicsState->GetRenderingIntent(), mGraphicsState->GetRenderingIntent2()};
}

IConnectionColorSpace* BaseConnectionSpaceDelegate::CurrentColorSpace(bool fill) const {
    return mGraphicsState == nullptr ? nullptr : mGraphicsState->GetColorSpace(fill);
}

std::optional<ColorValues> BaseConnectionSpaceDelegate::CurrentColor(
    bool fill, const IConnectionColorSpace& space) const {
    ColorValues color;
    color.count = space.GetComponentCount();
    if (color.count < 0 || color.count > COLOR::kMaxComponents) {
        return std::nullopt;
    }
    if (mGraphicsState != nullptr) {
        mGraphicsState->GetColor(fill, color.values, color.count);
    }
    return color;
}

std::optional<std::array<float, 3>> BaseConnectionSpaceDelegate::ToConnectionColor(
    const IConnectionColorSpace& source, const float* values, std::int32_t count,
    TRenderingIntent intent) {
    const std::int32_t from = source.GetComponentCount();
    if (from > COLOR::kMaxComponents || values == nullptr) {
        return std::nullopt;
    }
    // A caller's colour may be shorter than the space wants.
    ColorValues whole;
    std::copy_n(values, std::clamp(count, 0, from), whole.values);
    std::array<float, 3> pcs{};
    return source.ToPCS(whole.values, pcs.data(), intent) ? std::optional(pcs) : std::nullopt;
}

std::optional<ColorValues> BaseConnectionSpaceDelegate::ConvertByHost(
    const IConnectionColorSpace& source, const IConnectionColorSpace& destination,
    const float* values, std::int32_t count,
    const std::pair<TRenderingIntent, TRenderingIntent>& intents) {
    ColorValues result;
    result.count = destination.GetComponentCount();
    const auto pcs = ToConnectionColor(source, values, count, intents.first);
    if (result.count > COLOR::kMaxComponents || !pcs ||
        !destination.FromPCS(pcs->data(), result.values, intents.second)) {
        return std::nullopt;
    }
    return result;
}

void BaseConnectionSpaceDelegate::SetColorSpaceAndValues(IConnectionColorSpace* space,
                                                         const float* values, std::int32_t count,
                                                         bool fill) {
    if (SetColorSpace(space, fill)) {
        SetColor(values, count, fill);
    } else {
        LogError(kModule) << "Failed to set color space.";
    }
}

bool BaseConnectionSpaceDelegate::SetDeviceColorSpaceByKey(IConnectionColorSpace* space,
                                                           FourCC key) {
    if (auto* separation = AsSeparation(space)) {
        if (SetRegistrationSpace(separation) || SetNoneColorSpace(separation)) {
            return true;
        }
    }
    IPostScriptOutputContext* out = OutputContext();
    if (out == nullptr) {
        return false;
    }
    out->SetDeviceColorSpace(key);
    return true;
}

bool BaseConnectionSpaceDelegate::SetRegistrationSpace(
    COLOR::ISeparationConnectionColorSpace* space) {
    if (!HasSpecialAlternate(space, COLOR::IID_IREGISTRATIONCOLORSPACE)) {
        return false;
    }
    IPostScriptOutputContext* out = OutputContext();
    if (out != nullptr) {
        out->SetRegistrationColorSpace();
    }
    return out != nullptr;
}

bool BaseConnectionSpaceDelegate::SetNoneColorSpace(COLOR::ISeparationConnectionColorSpace* space) {
    if (!HasSpecialAlternate(space, COLOR::IID_INONECOLORSPACE)) {
        return false;
    }
    IPostScriptOutputContext* out = OutputContext();
    if (out != nullptr) {
        out->SetNoneColorSpace();
    }
    return out != nullptr;
}

bool BaseConnectionSpaceDelegate::KeepName(IConnectionColorSpace& space, const std::string& name) {
    auto properties = CreateObject<IO::IKeyedProperties>(mFactory, IO::CLSID_KEYEDPROPERTIES);
    if (!properties) {
        return false;
    }
    properties->Set("PSNM"_cc, name.data(), static_cast<std::int32_t>(name.size()));
    space.Aggregate(properties.Get(), IO::IID_IDICTIONARY);
    mNamedSpaces.push_back({TInterfacePtr<IConnectionColorSpace>(&space), std::move(properties)});
    return true;
}

bool BaseConnectionSpaceDelegate::SetSeparationColorSpace(
    COLOR::ISeparationConnectionColorSpace* space, bool colourManaged) {
    IPostScriptOutputContext* out = space == nullptr ? nullptr : OutputContext();
    if (out == nullptr) {
        return false;
    }
    if (SetRegistrationSpace(space) || SetNoneColorSpace(space) || SelectByKeptName(*space, *out)) {
        return true;
    }
    const CoreString* colorant = space->GetColorantName();
    auto text = colorant == nullptr ? std::nullopt : colorant->GetUTF8String();
    if (!text) {
        LogError(kModule) << "The separation" << kMissingColorantMessage;
        return false;
    }
    if (text->empty()) {
        *text = "All";
    }
    const std::string name = "SEPCS-" + PLATFORM::UniqueIdDigits(PLATFORM::CreateUniqueId());
    out->SetSeparationColorSpace(name.c_str(), text->c_str(), space, colourManaged);
    return KeepName(*space, name);
}

bool BaseConnectionSpaceDelegate::SetDeviceNColorSpace(COLOR::IDeviceNConnectionColorSpace* space,
                                                       bool colourManaged) {
    IPostScriptOutputContext* out = space == nullptr ? nullptr : OutputContext();
    if (out == nullptr) {
        return false;
    }
    if (SelectByKeptName(*space, *out)) {
        return true;
    }
    if (space->GetColorantCount() <= 0) {
        LogError(kModule) << "The DeviceN" << kMissingColorantMessage;
        return false;
    }
    const std::string name = "DevNCS-" + PLATFORM::UniqueIdDigits(PLATFORM::CreateUniqueId());
    out->SetDeviceNColorSpace(name.c_str(), space, colourManaged);
    return KeepName(*space, name);
}

bool BaseConnectionSpaceDelegate::SetCalibratedColorSpace(
    COLOR::ICalibratedConnectionColorSpace* space) {
    if (space == nullptr) {
        return false;
    }
    IPostScriptOutputContext* out = OutputContext();
    return out != nullptr && out->SetCalibratedColorSpace(space);
}

bool BaseConnectionSpaceDelegate::SetPatternColorSpace(const char* patternName) {
    IPostScriptOutputContext* out = OutputContext();
    return out != nullptr && out->SetPatternColor(patternName, nullptr, nullptr);
}

IPostScriptOutputContext* BaseConnectionSpaceDelegate::SelectUnderlying(
    IConnectionColorSpace* underlying, bool fill, const char* module) {
    if (underlying == nullptr) {
        LogError(module) << "Underlying colorspace of pattern color space can't be NULL!!!";
        return nullptr;
    }
    IPostScriptOutputContext* out = OutputContext();
    return out != nullptr && SetColorSpace(underlying, fill) ? out : nullptr;
}

bool BaseConnectionSpaceDelegate::SetUncoloredPattern(const char* patternName,
                                                      IConnectionColorSpace* underlying,
                                                      bool fill) {
    IPostScriptOutputContext* out = SelectUnderlying(underlying, fill, kModule);
    if (out == nullptr) {
        return false;
    }
    auto color = CurrentColor(fill, *underlying);
    // The space selected is gray, or takes a tint: the destination's components would not fit it.
    const bool selectedTakesOne = (GetOwnFamily(underlying) == "gray"_cc && !mPromoteGray) ||
                                  IsRegistrationOrNone(underlying);
    if (!mDestination || selectedTakesOne) {
        return color && out->SetPatternColor(patternName, underlying, color->values);
    }
    const bool fits = color && color->count == mDestination->GetComponentCount() &&
                      GetOwnFamily(underlying) == GetOwnFamily(mDestination.Get());
    if (color && !fits) {
        color = ConvertByHost(*underlying, *mDestination, color->values, color->count,
                              RenderingIntents(TRenderingIntent::kPerceptual));
    }
    if (!color) {
        return false;
    }
    if (GRAPHICS::HELPER::IsCMYKColorSpace(mDestination.Get())) {
        color->Complement();
    }
    return out->SetPatternColor(patternName, mDestination.Get(), color->values);
}

std::optional<ColorValues> BaseConnectionSpaceDelegate::ConvertColor(
    IConnectionColorSpace* source, IConnectionColorSpace* destination, const float* values,
    std::int32_t count) const {
    if (source == nullptr) {
        LogError(kModule) << "srcColorSpace cannot be NULL.";
        return std::nullopt;
    }
    if (destination == nullptr || values == nullptr || count <= 0) {
        return std::nullopt;
    }
    const FourCC family = GetOwnFamily(destination);
    if (family != "cmyk"_cc && family != "gray"_cc && family != "rgb "_cc) {
        LogError(kModule) << "Do not handle this device color type.";
        return std::nullopt;
    }
    if (IsBlack(SingleColorant(source))) {
        return BlackInk(family, values[0]);
    }
    const bool isSeparation =
        FindInterface<IObject>(source, COLOR::IID_ISEPARATIONCOLORSPACE) != nullptr;
    if (isSeparation && values[0] == 0) {
        return BlackInk(family, 0);
    }
    auto color = ConvertByHost(*source, *destination, values, count,
                               RenderingIntents(TRenderingIntent::kAbsoluteColorimetric));
    if (color && family == "cmyk"_cc) {
        color->Complement();
    }
    return color;
}

bool BaseConnectionSpaceDelegate::SetColorWithConversion(IConnectionColorSpace* source,
                                                         IConnectionColorSpace* destination,
                                                         const float* values, std::int32_t count) {
    return WriteColor(ConvertColor(source, destination, values, count));
}

bool BaseConnectionSpaceDelegate::WriteColor(const std::optional<ColorValues>& color) {
    IPostScriptOutputContext* out = OutputContext();
    if (out == nullptr || !color) {
        return false;
    }
    out->SetColor(color->values, color->count);
    return true;
}

BaseConnectionSpaceDelegate::TypedShading BaseConnectionSpaceDelegate::FindShading(
    IConnectionColorSpace* shading) {
    using Out = IPostScriptOutputContext;

    struct Kind {
        GUID id;
        ShadingWriter write;
    };

    static constexpr Kind kKinds[] = {
        {COLOR::IID_IFUNCTIONSHADING,
         WriteAs<COLOR::IFunctionShadingColorSpace, &Out::WriteFunctionBasedShadingDictionary>},
        {COLOR::IID_IAXIALSHADING,
         WriteAs<COLOR::IAxialShadingPatternColorSpace, &Out::WriteAxialShadingDictionary>},
        {COLOR::IID_IRADIALSHADING,
         WriteAs<COLOR::IRadialShadingPatternColorSpace, &Out::WriteRadialShadingDictionary>},
        {COLOR::IID_IFREEFORMMESHSHADING, WriteAs<COLOR::IFreeFormTriangleMeshesShadingColorSpace,
                                                  &Out::WriteType4BasedShadingDictionary>},
        {COLOR::IID_ILATTICEMESHSHADING, WriteAs<COLOR::ILatticeFormTriangleMeshesShadingColorSpace,
                                                 &Out::WriteType5BasedShadingDictionary>},
        {COLOR::IID_ITENSORSHADING, WritePatches},
    };
    for (const Kind& kind : kKinds) {
        if (auto* found = FindInterface<COLOR::IShadingColorSpace>(shading, kind.id)) {
            return {found, kind.write};
        }
    }
    LogError(kModule) << "There is something wrong somewhere, there are only 7 shading types.";
    return {};
}

bool BaseConnectionSpaceDelegate::WriteShadingDictionary(const TypedShading& shading,
                                                         IConnectionColorSpace* destination,
                                                         bool paint, bool colourManaged) {
    IPostScriptOutputContext* out = OutputContext();
    return out != nullptr &&
           shading.write(*out, shading.shading, destination, mLanguageLevel, paint, colourManaged);
}

void BaseConnectionSpaceDelegate::FillConverted(IConnectionColorSpace* shading,
                                                IConnectionColorSpace* destination, bool paint,
                                                const SpacePredicate& keeps) {
    if (shading == nullptr) {
        return;
    }
    if (const TypedShading typed = FindShading(shading); typed.shading != nullptr) {
        const bool isKept = keeps && keeps(typed.shading->GetShadingSpace());
        WriteShadingDictionary(typed, isKept ? nullptr : destination, paint, false);
    }
}

void BaseConnectionSpaceDelegate::FillWithColorSpace(IConnectionColorSpace* shading,
                                                     ResourceId /*id*/, float /*x*/, float /*y*/,
                                                     float /*width*/, float /*height*/,
                                                     bool paint) {
    FillConverted(shading, mDestination.Get(), paint);
}

}  // namespace VANTIX::RENDERING
