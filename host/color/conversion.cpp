// SPDX-License-Identifier: MIT
#include "host/color/conversion.h"

#include <lcms2.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/color/functionbase.h"
#include "host/color/profilelinks.h"

namespace VANTIX::HOST {

namespace {

using COLOR::TRenderingIntent;

constexpr std::size_t kMaxProfileBytes = 64U << 20U;
constexpr std::size_t kIntents = 4;
// Float transforms: the library's shortcuts are for integers, its cache is not for threads.
constexpr cmsUInt32Number kFlags = cmsFLAGS_NOCACHE | cmsFLAGS_NOOPTIMIZE;

struct ProfileKind {
    cmsColorSpaceSignature signature;
    FourCC family;
    std::int32_t components;
    cmsUInt32Number format;
};

const std::array kKinds{
    ProfileKind{cmsSigGrayData, "gray"_cc, 1, TYPE_GRAY_FLT},
    ProfileKind{cmsSigRgbData, "rgb "_cc, 3, TYPE_RGB_FLT},
    ProfileKind{cmsSigCmykData, "cmyk"_cc, 4, TYPE_CMYK_FLT},
    ProfileKind{cmsSigLabData, "clab"_cc, 3, TYPE_Lab_FLT},
};

const ProfileKind* FindKind(cmsHPROFILE profile) {
    const auto signature = cmsGetColorSpace(profile);
    const auto* found =
        std::find_if(kKinds.begin(), kKinds.end(),
                     [signature](const ProfileKind& kind) { return kind.signature == signature; });
    return found == kKinds.end() ? nullptr : found;
}

const ProfileKind& KindOf(FourCC family) {
    return *std::find_if(kKinds.begin(), kKinds.end(),
                         [family](const ProfileKind& kind) { return kind.family == family; });
}

/// What describes colours of a device, not a link between devices or a list of names.
bool IsDeviceClass(cmsHPROFILE profile) {
    const auto kind = cmsGetDeviceClass(profile);
    return kind == cmsSigInputClass || kind == cmsSigDisplayClass || kind == cmsSigOutputClass ||
           kind == cmsSigColorSpaceClass;
}

std::string ReadName(cmsHPROFILE profile) {
    std::array<char, 256> text{};
    cmsGetProfileInfoASCII(profile, cmsInfoDescription, "en", "US", text.data(),
                           static_cast<cmsUInt32Number>(text.size()));
    text.back() = '\0';
    std::string name = text.data();
    std::replace_if(
        name.begin(), name.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x80; },
        '?');
    return name;
}

cmsHPROFILE MakeGray(cmsToneCurve* curve) {
    cmsHPROFILE profile = curve == nullptr ? nullptr : cmsCreateGrayProfile(cmsD50_xyY(), curve);
    cmsFreeToneCurve(curve);
    return profile;
}

void SetName(cmsHPROFILE profile, const char* name) {
    cmsMLU* text = cmsMLUalloc(nullptr, 1);
    if (text != nullptr) {
        cmsMLUsetASCII(text, "en", "US", name);
        cmsWriteTag(profile, cmsSigProfileDescriptionTag, text);
        cmsMLUfree(text);
    }
}

}  // namespace

std::uint32_t IntentNumber(TRenderingIntent intent) {
    switch (intent) {
        case TRenderingIntent::kAbsoluteColorimetric:
            return INTENT_ABSOLUTE_COLORIMETRIC;
        case TRenderingIntent::kRelativeColorimetric:
            return INTENT_RELATIVE_COLORIMETRIC;
        case TRenderingIntent::kSaturation:
            return INTENT_SATURATION;
        case TRenderingIntent::kPerceptual:
            break;
    }
    return INTENT_PERCEPTUAL;
}

std::array<float, 3> AdaptWhite(const std::array<float, 3>& xyz, const std::array<float, 3>& from,
                                const std::array<float, 3>& to) {
    const auto widen = [](const std::array<float, 3>& v) { return cmsCIEXYZ{v[0], v[1], v[2]}; };
    const cmsCIEXYZ source = widen(from);
    const cmsCIEXYZ target = widen(to);
    const cmsCIEXYZ value = widen(xyz);
    cmsCIEXYZ result{};
    if (cmsAdaptToIlluminant(&result, &source, &target, &value) == 0) {
        return xyz;
    }
    return {static_cast<float>(result.X), static_cast<float>(result.Y),
            static_cast<float>(result.Z)};
}

/// Transforms of one profile, made when first used; one that cannot be made is not tried again.
struct IccProfile::Transforms {
    struct Slot {
        cmsHTRANSFORM transform = nullptr;
        bool tried = false;
    };

    Transforms() = default;
    Transforms(const Transforms&) = delete;
    Transforms& operator=(const Transforms&) = delete;
    Transforms(Transforms&&) = delete;
    Transforms& operator=(Transforms&&) = delete;

    ~Transforms() {
        for (auto* side : {&toPCS, &fromPCS}) {
            for (const Slot& slot : *side) {
                if (slot.transform != nullptr) {
                    cmsDeleteTransform(slot.transform);
                }
            }
        }
    }

    cmsHTRANSFORM Find(cmsHPROFILE profile, FourCC family, TRenderingIntent intent, bool to) {
        const cmsUInt32Number number = IntentNumber(intent);
        Slot& slot = (to ? toPCS : fromPCS)[number];
        if (!slot.tried) {
            slot.tried = true;
            cmsHPROFILE xyz = cmsCreateXYZProfile();
            const cmsUInt32Number format = KindOf(family).format;
            slot.transform =
                to ? cmsCreateTransform(profile, format, xyz, TYPE_XYZ_FLT, number, kFlags)
                   : cmsCreateTransform(xyz, TYPE_XYZ_FLT, profile, format, number, kFlags);
            cmsCloseProfile(xyz);
        }
        return slot.transform;
    }

    std::array<Slot, kIntents> toPCS;
    std::array<Slot, kIntents> fromPCS;
};

IccProfile::IccProfile(void* handle)
    : mHandle(handle),
      mFamily(FindKind(handle)->family),
      mName(ReadName(handle)),
      mTransforms(std::make_unique<Transforms>()),
      mLinks(std::make_unique<ProfileLinks>()) {}

IccProfile::~IccProfile() {
    cmsCloseProfile(mHandle);
}

std::shared_ptr<IccProfile> IccProfile::Wrap(void* handle) {
    if (handle == nullptr) {
        return nullptr;
    }
    return std::shared_ptr<IccProfile>(new IccProfile(handle));
}

std::shared_ptr<IccProfile> IccProfile::Open(std::span<const std::uint8_t> bytes,
                                             std::int32_t components, std::string& error) {
    if (bytes.empty() || bytes.size() > kMaxProfileBytes) {
        error = "an ICC profile that is empty or too large";
        return nullptr;
    }
    cmsHPROFILE handle =
        cmsOpenProfileFromMem(bytes.data(), static_cast<cmsUInt32Number>(bytes.size()));
    if (handle == nullptr) {
        error = "not an ICC profile";
        return nullptr;
    }
    const ProfileKind* kind = FindKind(handle);
    if (kind == nullptr || kind->components != components || !IsDeviceClass(handle)) {
        cmsCloseProfile(handle);
        error = "an ICC profile of another kind or number of components";
        return nullptr;
    }
    std::shared_ptr<IccProfile> profile = Wrap(handle);
    const std::array<float, 4> zeros{};
    std::array<float, 3> pcs{};
    if (!profile->ToPCS(zeros.data(), pcs.data(), TRenderingIntent::kRelativeColorimetric)) {
        error = "an ICC profile that lacks what a conversion needs";
        return nullptr;
    }
    return profile;
}

std::shared_ptr<IccProfile> IccProfile::StandardRGB() {
    return Wrap(cmsCreate_sRGBProfile());
}

std::shared_ptr<IccProfile> IccProfile::StandardGray() {
    const std::array<cmsFloat64Number, 5> curve{2.4, 1.0 / 1.055, 0.055 / 1.055, 1.0 / 12.92,
                                                0.04045};
    cmsHPROFILE profile = MakeGray(cmsBuildParametricToneCurve(nullptr, 4, curve.data()));
    if (profile != nullptr) {
        SetName(profile, "Gray with the curve of sRGB");
    }
    return Wrap(profile);
}

std::shared_ptr<IccProfile> IccProfile::GammaGray(float gamma) {
    cmsHPROFILE profile = MakeGray(cmsBuildGamma(nullptr, gamma));
    if (profile != nullptr) {
        SetName(profile, "Calibrated gray");
    }
    return Wrap(profile);
}

std::shared_ptr<IccProfile> IccProfile::GammaRGB(const std::array<float, 3>& gammas,
                                                 const Primaries& primaries) {
    constexpr std::array kColorants{cmsSigRedColorantTag, cmsSigGreenColorantTag,
                                    cmsSigBlueColorantTag};
    constexpr std::array kCurves{cmsSigRedTRCTag, cmsSigGreenTRCTag, cmsSigBlueTRCTag};
    cmsHPROFILE profile = cmsCreateProfilePlaceholder(nullptr);
    if (profile == nullptr) {
        return nullptr;
    }
    cmsSetProfileVersion(profile, 4.3);
    cmsSetDeviceClass(profile, cmsSigDisplayClass);
    cmsSetColorSpace(profile, cmsSigRgbData);
    cmsSetPCS(profile, cmsSigXYZData);
    bool made = cmsWriteTag(profile, cmsSigMediaWhitePointTag, cmsD50_XYZ()) != 0;
    for (std::size_t i = 0; i < 3; ++i) {
        const cmsCIEXYZ colorant{primaries[i][0], primaries[i][1], primaries[i][2]};
        cmsToneCurve* curve = cmsBuildGamma(nullptr, gammas[i]);
        made = made && curve != nullptr && cmsWriteTag(profile, kColorants[i], &colorant) != 0 &&
               cmsWriteTag(profile, kCurves[i], curve) != 0;
        cmsFreeToneCurve(curve);
    }
    SetName(profile, "Calibrated RGB");
    if (!made) {
        cmsCloseProfile(profile);
        return nullptr;
    }
    return Wrap(profile);
}

std::int32_t IccProfile::Components() const {
    return KindOf(mFamily).components;
}

FourCC IccProfile::PCSKind() const {
    return static_cast<FourCC>(cmsGetPCS(mHandle));
}

bool IccProfile::GetPrimaries(Primaries& primaries) const {
    if (mFamily != "rgb "_cc || cmsIsMatrixShaper(mHandle) == 0 ||
        cmsIsTag(mHandle, cmsSigAToB0Tag) != 0 || cmsIsTag(mHandle, cmsSigAToB1Tag) != 0) {
        return false;
    }
    constexpr std::array kColorants{cmsSigRedColorantTag, cmsSigGreenColorantTag,
                                    cmsSigBlueColorantTag};
    for (std::size_t i = 0; i < 3; ++i) {
        const auto* xyz = static_cast<const cmsCIEXYZ*>(cmsReadTag(mHandle, kColorants[i]));
        if (xyz == nullptr) {
            return false;
        }
        primaries[i] = {static_cast<float>(xyz->X), static_cast<float>(xyz->Y),
                        static_cast<float>(xyz->Z)};
    }
    return true;
}

float IccProfile::EvaluateCurve(std::size_t index, float x) const {
    constexpr std::array kCurves{cmsSigRedTRCTag, cmsSigGreenTRCTag, cmsSigBlueTRCTag};
    const auto* curve = static_cast<const cmsToneCurve*>(cmsReadTag(mHandle, kCurves[index]));
    return curve == nullptr ? x : ClipTo(cmsEvalToneCurveFloat(curve, x), 0.0F, 1.0F);
}

bool IccProfile::ToPCS(const float* values, float pcs[3], TRenderingIntent intent) const {
    cmsHTRANSFORM transform = mTransforms->Find(mHandle, mFamily, intent, true);
    if (transform == nullptr) {
        return false;
    }
    std::array<float, 4> in{};
    for (std::size_t i = 0; i < static_cast<std::size_t>(Components()); ++i) {
        if (mFamily == "clab"_cc) {
            in[i] = i == 0 ? ClipTo(values[i], 0.0F, 100.0F) : ClipTo(values[i], -128.0F, 127.0F);
        } else {
            const float scale = mFamily == "cmyk"_cc ? 100.0F : 1.0F;
            in[i] = ClipTo(values[i], 0.0F, 1.0F) * scale;
        }
    }
    cmsDoTransform(transform, in.data(), pcs, 1);
    return true;
}

bool IccProfile::FromPCS(const float pcs[3], float* values, TRenderingIntent intent) const {
    cmsHTRANSFORM transform = mTransforms->Find(mHandle, mFamily, intent, false);
    if (transform == nullptr) {
        return false;
    }
    std::array<float, 3> in{};
    std::transform(pcs, pcs + 3, in.begin(), [](float v) { return ClipTo(v, -2.0F, 2.0F); });
    std::array<float, 4> out{};
    cmsDoTransform(transform, in.data(), out.data(), 1);
    for (std::size_t i = 0; i < static_cast<std::size_t>(Components()); ++i) {
        if (mFamily == "clab"_cc) {
            values[i] = i == 0 ? ClipTo(out[i], 0.0F, 100.0F) : ClipTo(out[i], -128.0F, 127.0F);
        } else {
            const float scale = mFamily == "cmyk"_cc ? 0.01F : 1.0F;
            values[i] = ClipTo(out[i] * scale, 0.0F, 1.0F);
        }
    }
    return true;
}

bool IccProfile::ConvertLine(const std::shared_ptr<const IccProfile>& target,
                             const COLOR::LineConversion& line) const {
    return mLinks->Convert({mHandle, mFamily}, {target->mHandle, target->mFamily}, target, line);
}

}  // namespace VANTIX::HOST
