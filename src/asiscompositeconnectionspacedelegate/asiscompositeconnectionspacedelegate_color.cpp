// SPDX-License-Identifier: MIT
#include <algorithm>

#include "asiscompositeconnectionspacedelegate/asiscompositeconnectionspacedelegate.h"
#include "baseconnectionspacedelegate/spacekinds.h"
#include "core/graphics/pluginhelper/colorhelpers.h"
#include "core/libsupport/vlogger/logmessage.h"

namespace VANTIX::RENDERING {

namespace {

constexpr const char* kModule = "src/asiscompositeconnectionspacedelegate";

constexpr float kD50[3] = {0.9642F, 1.0F, 0.8249F};

void LogUnhandledSpace() {
    LogError(kModule) << "This type of Input ConnectionColorSpace has not been handled yet.";
}

/// True for the alternates that stand for plates instead of a colour.
bool IsPlateSelection(IConnectionColorSpace* space) {
    return FindInterface<IObject>(space, COLOR::IID_IREGISTRATIONCOLORSPACE) != nullptr ||
           FindInterface<IObject>(space, COLOR::IID_INONECOLORSPACE) != nullptr;
}

/// The tints of a spot colour as a colour of `alternate` by the space's own function: what an
/// interpreter would do.
std::optional<ColorValues> EvaluateTint(IConnectionColorSpace* spot,
                                        const IConnectionColorSpace& alternate, const float* values,
                                        std::int32_t count) {
    const COLOR::IColorFunction* tint = nullptr;
    if (const auto* deviceN = AsDeviceN(spot)) {
        tint = deviceN->GetTintFunction();
    } else if (const auto* separation = AsSeparation(spot)) {
        tint = separation->GetTintFunction();
    }
    ColorValues result;
    result.count = alternate.GetComponentCount();
    if (tint == nullptr || values == nullptr || tint->GetInputCount() > count ||
        tint->GetOutputCount() != result.count || result.count > COLOR::kMaxComponents) {
        return std::nullopt;
    }
    tint->Evaluate(values, result.values);
    return result;
}

}  // namespace

AsIsCompositeConnectionSpaceDelegate::AsIsCompositeConnectionSpaceDelegate(IClassFactory& factory,
                                                                           std::uint32_t options)
    : BaseConnectionSpaceDelegate(factory, nullptr, options),
      mEmbedProfiles((options & DELEGATEOPTION::kEmbedProfiles) != 0) {}

void AsIsCompositeConnectionSpaceDelegate::Init(bool setDefaultColour) {
    BaseConnectionSpaceDelegate::Init(setDefaultColour);
    if (!setDefaultColour) {
        return;
    }
    if (PS::IPostScriptOutputContext* out = OutputContext(); out != nullptr) {
        out->SetDefaultColour("rgb "_cc, mEmbedProfiles);
    }
}

TRenderingIntent AsIsCompositeConnectionSpaceDelegate::FirstIntent() const {
    return RenderingIntents(COLOR::TRenderingIntent::kPerceptual).first;
}

IConnectionColorSpace* AsIsCompositeConnectionSpaceDelegate::WrittenSpace(
    IConnectionColorSpace* space) const {
    if (!mConvertSpotsToProcess) {
        return space;
    }
    if (const auto* deviceN = AsDeviceN(space)) {
        return deviceN->GetAlternateSpace();
    }
    if (const auto* separation = AsSeparation(space)) {
        IConnectionColorSpace* alternate = separation->GetAlternateSpace();
        return IsPlateSelection(alternate) ? space : alternate;
    }
    return space;
}

bool AsIsCompositeConnectionSpaceDelegate::SetColorSpace(IConnectionColorSpace* space,
                                                         bool /*fill*/) {
    IConnectionColorSpace* written = WrittenSpace(space);
    return mEmbedProfiles ? SetEmbedProfileColorSpace(written) : SetPlainColorSpace(written);
}

bool AsIsCompositeConnectionSpaceDelegate::SetPlainColorSpace(IConnectionColorSpace* space) {
    const FourCC family = GetOwnFamily(space);
    if (family == "clab"_cc) {
        PS::IPostScriptOutputContext* out = OutputContext();
        float white[3] = {kD50[0], kD50[1], kD50[2]};
        space->GetWhitePoint(white);
        if (out != nullptr) {
            out->SetLabColorSpace(white);
        }
        return out != nullptr;
    }
    if (family != 0) {
        return SetDeviceColorSpaceByKey(space, family);
    }
    if (auto* separation = AsSeparation(space)) {
        return SetSeparationColorSpace(separation, mEmbedProfiles);
    }
    if (auto* deviceN = AsDeviceN(space)) {
        return SetDeviceNColorSpace(deviceN, mEmbedProfiles);
    }
    if (auto* calibrated = AsCalibrated(space)) {
        return SetCalibratedColorSpace(calibrated);
    }
    LogUnhandledSpace();
    return false;
}

void AsIsCompositeConnectionSpaceDelegate::AddProfileColorSpace(IConnectionColorSpace* space) {
    mResourceName.clear();
    for (int depth = 0; depth < GRAPHICS::HELPER::kMaxAlternateDepth; ++depth) {
        if (GetOwnFamily(space) != 0) {
            IConnectionColorSpace* profile = space->GetProfileForm();
            PS::IPostScriptOutputContext* out = profile == nullptr ? nullptr : OutputContext();
            if (out != nullptr) {
                out->GetColorSpaceResourceName(profile, FirstIntent(), mResourceName);
            }
            return;
        }
        if (AsCalibrated(space) != nullptr || IsPlateSelection(space)) {
            return;
        }
        if (const auto* separation = AsSeparation(space)) {
            space = separation->GetAlternateSpace();
        } else if (const auto* deviceN = AsDeviceN(space)) {
            space = deviceN->GetAlternateSpace();
        } else {
            break;
        }
    }
    LogUnhandledSpace();
}

bool AsIsCompositeConnectionSpaceDelegate::SetEmbedProfileColorSpace(IConnectionColorSpace* space) {
    AddProfileColorSpace(space);
    // A profile that the host cannot write as an array leaves its device space to stand for it.
    if (GetOwnFamily(space) == 0 || mResourceName.empty()) {
        return SetPlainColorSpace(space);
    }
    PS::IPostScriptOutputContext* out = OutputContext();
    if (out != nullptr) {
        out->SetColorSpace(space->GetProfileForm(), FirstIntent());
    }
    return out != nullptr;
}

std::optional<ColorValues> AsIsCompositeConnectionSpaceDelegate::WrittenColor(
    IConnectionColorSpace* space, const float* values, std::int32_t count) const {
    IConnectionColorSpace* written = WrittenSpace(space);
    const FourCC family = GetOwnFamily(written);
    // Into Lab and calibrated spaces there is no conversion but the space's own.
    const bool isCalibrated = family == "clab"_cc || AsCalibrated(written) != nullptr;
    if (written != space) {
        return written != nullptr && isCalibrated ? EvaluateTint(space, *written, values, count)
                                                  : ConvertColor(space, written, values, count);
    }
    if (values == nullptr || count < 0 || count > COLOR::kMaxComponents) {
        return std::nullopt;
    }
    ColorValues color;
    color.count = count;
    std::copy_n(values, count, color.values);
    if (count == 4 && family == "cmyk"_cc) {
        color.Complement();
    }
    return color;
}

bool AsIsCompositeConnectionSpaceDelegate::SetColor(const float* values, std::int32_t count,
                                                    bool fill) {
    IConnectionColorSpace* current = CurrentColorSpace(fill);
    return current != nullptr && WriteColor(WrittenColor(current, values, count));
}

bool AsIsCompositeConnectionSpaceDelegate::SetUncoloredPattern(const char* patternName,
                                                               IConnectionColorSpace* underlying,
                                                               bool fill) {
    PS::IPostScriptOutputContext* out = SelectUnderlying(underlying, fill, kModule);
    if (out == nullptr) {
        return false;
    }
    auto color = CurrentColor(fill, *underlying);
    if (color) {
        color = WrittenColor(underlying, color->values, color->count);
    }
    return color && out->SetPatternColor(patternName, WrittenSpace(underlying), color->values);
}

void AsIsCompositeConnectionSpaceDelegate::FillWithColorSpace(IConnectionColorSpace* shading,
                                                              ResourceId /*id*/, float /*x*/,
                                                              float /*y*/, float /*width*/,
                                                              float /*height*/, bool paint) {
    if (shading == nullptr) {
        return;
    }
    const TypedShading typed = FindShading(shading);
    if (typed.shading == nullptr) {
        return;
    }
    IConnectionColorSpace* colours = WrittenSpace(typed.shading->GetShadingSpace());
    if (mEmbedProfiles) {
        AddProfileColorSpace(colours);
    }
    WriteShadingDictionary(typed, mConvertSpotsToProcess ? colours : nullptr, paint,
                           mEmbedProfiles);
}

}  // namespace VANTIX::RENDERING
