// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <utility>

#include "host/color/functionbase.h"
#include "host/color/outputvalues.h"
#include "host/color/spaces.h"

namespace VANTIX::HOST {

namespace {

using COLOR::IConnectionColorSpace;
using COLOR::TRenderingIntent;

bool IsRegistration(const ColorSpacePtr& space) {
    return FindInterface<IConnectionColorSpace>(space.Get(), COLOR::IID_IREGISTRATIONCOLORSPACE) !=
           nullptr;
}

bool IsNone(const ColorSpacePtr& space) {
    return FindInterface<IConnectionColorSpace>(space.Get(), COLOR::IID_INONECOLORSPACE) != nullptr;
}

/// What Separation and DeviceN spaces share: tints, an alternate and a function between them.
template <class I>
class SpotSpace : public SpaceBase<I> {
public:
    IConnectionColorSpace* GetAlternateSpace() const override { return mAlternate.Get(); }

    COLOR::IColorFunction* GetTintFunction() const override { return mTint.Get(); }

    bool ToPCS(const float* values, float pcs[3], TRenderingIntent intent) const override {
        std::array<float, COLOR::kMaxComponents> color{};
        if (IsNone(mAlternate)) {
            std::copy(kD50.begin(), kD50.end(), pcs);
            return true;
        }
        if (mTint && mTint->GetOutputCount() == mAlternate->GetComponentCount()) {
            mTint->Evaluate(values, color.data());
            ToHostForm(*mTint, *mAlternate, color.data());
        } else {
            // A mark on every plate: light for additive spaces, complements of ink for CMYK.
            color.fill(1.0F - ClipTo(values[0], 0.0F, 1.0F));
        }
        return mAlternate->ToPCS(color.data(), pcs, intent);
    }

    bool GetDefaultValues(float* values, std::int32_t count) const override {
        if (!SpaceBase<I>::GetDefaultValues(values, count)) {
            return false;
        }
        std::fill(values, values + count, 1.0F);
        return true;
    }

protected:
    /// A line of tints becomes one of the alternate: with the samples of the target where the two
    /// are the same, else with enough bits for another conversion.
    Status ConvertSamples(const IConnectionColorSpace& target,
                          const COLOR::LineConversion& line) const override {
        if (!HasTints() || FamilyOf(*mAlternate) == "clab"_cc) {
            return this->Lines().ConvertPixels(*this, target, line);
        }
        const std::int32_t bits = IsSameSpace(*mAlternate, target) ? line.targetBits : 16;
        const PixelMemo::Key key{mAlternate->GetIdentifier(),
                                 this->GetComponentCount(),
                                 mAlternate->GetComponentCount(),
                                 line.sourceBits,
                                 bits,
                                 line.sourceIntent,
                                 line.sourceIntent};
        const auto most = static_cast<float>(MostOf(line.sourceBits));
        const auto convert = [&](const PixelMemo::Pixel& in, std::uint16_t* out) {
            std::array<float, COLOR::kMaxComponents> tints{};
            std::array<float, COLOR::kMaxComponents> color{};
            std::transform(in.begin(), in.begin() + key.from, tints.begin(),
                           [most](std::uint16_t code) { return static_cast<float>(code) / most; });
            mTint->Evaluate(tints.data(), color.data());
            ToHostForm(*mTint, *mAlternate, color.data());
            std::transform(color.begin(), color.begin() + key.to, out,
                           [bits](float value) { return CodeOf(value, bits); });
            return true;
        };
        ConvertByMemo(mTints, key, line.source, mRoom.Planes(key.to, line.width, bits), line.width,
                      convert);
        COLOR::LineConversion alternate = line;
        alternate.source = mRoom.Filled();
        alternate.sourceBits = bits;
        return mAlternate->ConvertLine(target, alternate);
    }

    SpotSpace(const GUID& kind, std::int32_t components, const GUID& identifier,
              ColorSpacePtr alternate, FunctionPtr tint)
        : SpaceBase<I>(kind, components, identifier),
          mAlternate(std::move(alternate)),
          mTint(std::move(tint)) {}

private:
    /// Whether tints become a colour of the alternate by the function.
    [[nodiscard]] bool HasTints() const {
        return mTint && !IsNone(mAlternate) && !IsRegistration(mAlternate) &&
               mTint->GetOutputCount() == mAlternate->GetComponentCount();
    }

    ColorSpacePtr mAlternate;
    FunctionPtr mTint;
    mutable PixelMemo mTints;
    mutable LineRoom mRoom;
};

class SeparationSpace : public SpotSpace<COLOR::ISeparationConnectionColorSpace> {
public:
    SeparationSpace(CoreString name, const ColorSpacePtr& alternate, const FunctionPtr& tint)
        : SpotSpace(COLOR::IID_ISEPARATIONCOLORSPACE, 1,
                    Digest("separation")
                        .Add(name.GetUTF8String().value_or(std::string()))
                        .Add(alternate->GetIdentifier())
                        .Add(tint.Get())
                        .Identifier(),
                    alternate, tint),
          mName(std::move(name)) {}

    const CoreString* GetColorantName() const override { return &mName; }

    Status FillSpotTables(const IConnectionColorSpace& target, float* colours, float* coverage,
                          std::int32_t size, TRenderingIntent sourceIntent,
                          TRenderingIntent destinationIntent, float opacity) const override {
        const float last = static_cast<float>(std::max(size - 1, 1));
        for (std::int32_t i = 0; i < size; ++i) {
            const float tint = static_cast<float>(i) / last;
            float pcs[3];
            if (!ToPCS(&tint, pcs, sourceIntent) ||
                !target.FromPCS(pcs, colours, destinationIntent)) {
                return STATUS::kNotSupported;
            }
            colours += target.GetComponentCount();
            coverage[i] = tint * opacity;
        }
        return STATUS::kOk;
    }

private:
    CoreString mName;
};

class DeviceNSpace : public SpotSpace<COLOR::IDeviceNConnectionColorSpace> {
public:
    DeviceNSpace(std::vector<CoreString> names, std::int32_t components, const GUID& identifier,
                 const ColorSpacePtr& alternate, const FunctionPtr& tint,
                 TInterfacePtr<COLOR::IInkCollection> inks)
        : SpotSpace(COLOR::IID_IDEVICENCOLORSPACE, components, identifier, alternate, tint),
          mNames(std::move(names)),
          mInks(std::move(inks)) {}

    std::int32_t GetColorantCount() const override {
        return static_cast<std::int32_t>(mNames.size());
    }

    const CoreString* GetColorantName(std::int32_t index) const override {
        return index >= 0 && index < GetColorantCount() ? &mNames[static_cast<std::size_t>(index)]
                                                        : nullptr;
    }

    COLOR::IInkCollection* GetInkCollection() const override { return mInks.Get(); }

private:
    std::vector<CoreString> mNames;
    TInterfacePtr<COLOR::IInkCollection> mInks;
};

class RegistrationSpace : public SpaceBase<COLOR::IRegistrationConnectionColorSpace> {
public:
    explicit RegistrationSpace(const ColorSpacePtr& device)
        : SpaceBase(COLOR::IID_IREGISTRATIONCOLORSPACE, device->GetComponentCount(),
                    Digest("registration").Add(device->GetIdentifier()).Identifier()),
          mDevice(device) {}

    bool ToPCS(const float* values, float pcs[3], TRenderingIntent intent) const override {
        return mDevice->ToPCS(values, pcs, intent);
    }

    bool FromPCS(const float pcs[3], float* values, TRenderingIntent intent) const override {
        return mDevice->FromPCS(pcs, values, intent);
    }

    bool StoresComponentsInverted() const override { return mDevice->StoresComponentsInverted(); }

protected:
    Status ConvertSamples(const IConnectionColorSpace& target,
                          const COLOR::LineConversion& line) const override {
        return mDevice->ConvertLine(target, line);
    }

private:
    ColorSpacePtr mDevice;
};

class NoneSpace : public SpaceBase<COLOR::INoneConnectionColorSpace> {
public:
    NoneSpace() : SpaceBase(COLOR::IID_INONECOLORSPACE, 1, Digest("none").Identifier()) {}

    bool ToPCS(const float*, float[3], TRenderingIntent) const override { return false; }

    bool GetDefaultValues(float*, std::int32_t) const override { return false; }
};

bool CheckTint(const ColorSpacePtr& alternate, const FunctionPtr& tint, std::size_t colorants,
               std::string& error) {
    if (!alternate || alternate->GetComponentCount() > COLOR::kMaxComponents) {
        error = "a spot colour without an alternate space";
        return false;
    }
    const bool marksByName = IsRegistration(alternate) || IsNone(alternate);
    if (!marksByName && FamilyOf(*alternate) == 0) {
        error = "a spot colour whose alternate space is a special one";
        return false;
    }
    if (marksByName) {
        if (tint && tint->GetInputCount() != static_cast<std::int32_t>(colorants)) {
            error = "a spot colour whose function has a wrong number of inputs";
            return false;
        }
        return true;
    }
    if (!tint || tint->GetInputCount() != static_cast<std::int32_t>(colorants) ||
        tint->GetOutputCount() != alternate->GetComponentCount()) {
        error = "a spot colour without a function from its tints to its alternate space";
        return false;
    }
    return true;
}

}  // namespace

ColorSpacePtr MakeSeparationSpace(CoreString name, const ColorSpacePtr& alternate,
                                  const FunctionPtr& tint, std::string& error) {
    if (!CheckTint(alternate, tint, 1, error)) {
        return nullptr;
    }
    return MakeObject<SeparationSpace>(std::move(name), alternate, tint);
}

ColorSpacePtr MakeDeviceNSpace(const std::vector<std::string>& names,
                               const ColorSpacePtr& alternate, const FunctionPtr& tint,
                               TInterfacePtr<COLOR::IInkCollection> inks, std::string& error) {
    const std::size_t colorants =
        !names.empty() || !inks ? names.size() : static_cast<std::size_t>(inks->GetInkCount());
    if (colorants == 0 || colorants > COLOR::kMaxComponents) {
        error = "a space of too few or too many colorants";
        return nullptr;
    }
    if (!CheckTint(alternate, tint, colorants, error)) {
        return nullptr;
    }
    Digest digest("deviceN");
    std::vector<CoreString> wide;
    for (const std::string& name : names) {
        digest.Add(name);
        wide.emplace_back(name);
    }
    digest.Add(alternate->GetIdentifier()).Add(tint.Get());
    digest.Add(static_cast<std::uint32_t>(inks ? inks->GetInkCount() : 0));
    return MakeObject<DeviceNSpace>(std::move(wide), static_cast<std::int32_t>(colorants),
                                    digest.Identifier(), alternate, tint, std::move(inks));
}

ColorSpacePtr MakeRegistrationSpace(const ColorSpacePtr& device) {
    return MakeObject<RegistrationSpace>(device);
}

ColorSpacePtr MakeNoneSpace() {
    return MakeObject<NoneSpace>();
}

}  // namespace VANTIX::HOST
