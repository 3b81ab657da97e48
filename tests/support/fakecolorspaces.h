// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/color/iconnectioncolorspacefactory.h"
#include "core/color/iink.h"
#include "core/color/ispotcolorspaces.h"
#include "core/io/idataprovider.h"
#include "core/object/tobject.h"

namespace VANTIX::TEST {

/// What all fake colour spaces share; `I` is the kind and `kId` the identifier it answers. The
/// connection colour is the first three components.
template <class I, const GUID& kId>
class FakeColorSpace : public TObject<I> {
public:
    std::int32_t components = 1;
    std::uint32_t number = 0;
    std::optional<std::array<float, 3>> white;
    /// What the space writes as its array; empty: it cannot.
    std::string array;
    /// Times that the array was asked for.
    mutable int arrayRequests = 0;
    TInterfacePtr<COLOR::IConnectionColorSpace> profile;

    Status QueryInterface(const GUID& id, void** out) override {
        if (id == kId) {
            *out = static_cast<IObject*>(this);
            return STATUS::kOk;
        }
        return TObject<I>::QueryInterface(id, out);
    }

    std::int32_t GetComponentCount() const override { return components; }

    GUID GetIdentifier() const override { return {number, 0, 0, {}}; }

    bool ToPCS(const float* values, float pcs[3], COLOR::TRenderingIntent) const override {
        std::fill_n(pcs, 3, 0.0F);
        std::copy_n(values, std::min(components, 3), pcs);
        return true;
    }

    bool FromPCS(const float pcs[3], float* values, COLOR::TRenderingIntent) const override {
        std::fill_n(values, components, 0.0F);
        std::copy_n(pcs, std::min(components, 3), values);
        return true;
    }

    bool GetDefaultValues(float* values, std::int32_t count) const override {
        std::fill_n(values, count, 0.0F);
        return count == components;
    }

    bool GetWhitePoint(float xyz[3]) const override {
        if (white) {
            std::copy_n(white->begin(), 3, xyz);
        }
        return white.has_value();
    }

    bool StoresComponentsInverted() const override { return components == 4; }

    Status WritePostScriptArray(COLOR::TRenderingIntent, IO::IDataProvider& out) const override {
        ++arrayRequests;
        return array.empty() ? STATUS::kNotSupported : out.Write(array.data(), array.size());
    }

    COLOR::IConnectionColorSpace* GetProfileForm() override { return profile.Get(); }

    /// Lines pass through: the first three planes are the connection colour.
    Status LineToPCS(const std::uint8_t* const* planes, std::int32_t width, std::int32_t bits,
                     float* pcs, COLOR::TRenderingIntent) const override {
        for (std::int32_t i = 0; i < width * 3; ++i) {
            const std::int32_t plane = i % 3;
            pcs[i] = plane < components && planes[plane] != nullptr
                         ? static_cast<float>(Word(planes[plane], i / 3, bits)) / 65535.0F
                         : 0.0F;
        }
        return bits >= 8 ? STATUS::kOk : STATUS::kNotSupported;
    }

    /// Lines that came with an opacity.
    mutable int alphaLines = 0;
    /// Lines that are converted; further ones fail.
    int lineLimit = 1000;
    mutable int convertedLines = 0;

    /// Samples pass through the first three planes, in the target's depth; a fourth one is what the
    /// target makes of black.
    Status ConvertLine(const COLOR::IConnectionColorSpace& target,
                       const COLOR::LineConversion& line) const override {
        alphaLines += line.alpha == nullptr ? 0 : 1;
        if (++convertedLines > lineLimit) {
            return STATUS::kNotSupported;
        }
        constexpr float kBlack[3] = {};
        float black[COLOR::kMaxComponents] = {};
        target.FromPCS(kBlack, black, line.targetIntent);
        for (std::int32_t i = 0; i < target.GetComponentCount(); ++i) {
            const bool isThere = i < std::min(components, 3) && line.source[i] != nullptr;
            const auto rest = static_cast<std::uint16_t>(i == 3 ? black[3] * 65535.0F : 0.0F);
            for (std::int32_t x = 0; x < line.width; ++x) {
                const std::uint16_t word =
                    isThere ? Word(line.source[i], x, line.sourceBits) : rest;
                if (line.targetBits == 16) {
                    std::memcpy(line.target[i] + std::ptrdiff_t{2} * x, &word, 2);
                } else {
                    line.target[i][x] = static_cast<std::uint8_t>(word >> 8U);
                }
            }
        }
        return STATUS::kOk;
    }

private:
    /// A sample of 1, 2, 4, 8 or 16 bits in sixteen bits.
    static std::uint16_t Word(const std::uint8_t* plane, std::int32_t x, std::int32_t bits) {
        std::uint16_t word = 0;
        if (bits == 16) {
            std::memcpy(&word, plane + std::ptrdiff_t{2} * x, 2);
            return word;
        }
        const std::int32_t most = (1 << bits) - 1;
        const std::int32_t sample = plane[x * bits / 8] >> (8 - bits - x * bits % 8) & most;
        return static_cast<std::uint16_t>(sample * (0xFFFF / most));
    }
};

/// A space of a family: `FakeDeviceSpace("cmyk"_cc)`.
template <class I, const GUID& kId>
class FakeFamilySpace : public FakeColorSpace<I, kId> {
public:
    explicit FakeFamilySpace(FourCC code, std::uint32_t id = 0) : family(code) {
        const bool gray = code == "gray"_cc || code == "cgry"_cc;
        this->components = gray ? 1 : (code == "cmyk"_cc ? 4 : 3);
        this->number = id == 0 ? code : id;
    }

    FourCC family;

    FourCC GetFamily() const override { return family; }
};

using FakeDeviceSpace =
    FakeFamilySpace<COLOR::IDeviceConnectionColorSpace, COLOR::IID_IDEVICECOLORSPACE>;

class FakeProfileSpace : public FakeFamilySpace<COLOR::IProfileBasedConnectionColorSpace,
                                                COLOR::IID_IPROFILEBASEDCOLORSPACE> {
public:
    using FakeFamilySpace::FakeFamilySpace;

    const char* profileName = "fake";

    const char* GetProfileName() const override { return profileName; }

    FourCC GetPCSKind() const override { return "XYZ "_cc; }

    COLOR::IConnectionColorSpace* GetProfileForm() override { return this; }
};

class FakeCalibratedSpace : public FakeFamilySpace<COLOR::ICalibratedConnectionColorSpace,
                                                   COLOR::IID_ICALIBRATEDCOLORSPACE> {
public:
    using FakeFamilySpace::FakeFamilySpace;

    std::vector<float> gammas;
    std::optional<std::array<float, 9>> matrix;

    std::int32_t GetGammas(float out[3]) const override {
        std::copy(gammas.begin(), gammas.end(), out);
        return static_cast<std::int32_t>(gammas.size());
    }

    bool GetMatrix(float out[9]) const override {
        if (matrix) {
            std::copy_n(matrix->begin(), 9, out);
        }
        return matrix.has_value();
    }

    bool GetLabRange(float out[4]) const override {
        constexpr float kRange[] = {-128, 127, -128, 127};
        std::copy_n(kRange, 4, out);
        return family == "clab"_cc;
    }
};

using FakeRegistrationSpace =
    FakeColorSpace<COLOR::IRegistrationConnectionColorSpace, COLOR::IID_IREGISTRATIONCOLORSPACE>;
using FakeNoneSpace = FakeColorSpace<COLOR::INoneConnectionColorSpace, COLOR::IID_INONECOLORSPACE>;

class FakeSeparationSpace : public FakeColorSpace<COLOR::ISeparationConnectionColorSpace,
                                                  COLOR::IID_ISEPARATIONCOLORSPACE> {
public:
    FakeSeparationSpace(std::string_view colorant,
                        TInterfacePtr<COLOR::IConnectionColorSpace> alternateSpace,
                        TInterfacePtr<COLOR::IColorFunction> tintFunction)
        : name(colorant), alternate(std::move(alternateSpace)), tint(std::move(tintFunction)) {}

    CoreString name;
    TInterfacePtr<COLOR::IConnectionColorSpace> alternate;
    TInterfacePtr<COLOR::IColorFunction> tint;

    const CoreString* GetColorantName() const override { return &name; }

    COLOR::IConnectionColorSpace* GetAlternateSpace() const override { return alternate.Get(); }

    COLOR::IColorFunction* GetTintFunction() const override { return tint.Get(); }

    /// The ink's full colour in every component.
    float fullTint = 0.0F;

    Status FillSpotTables(const COLOR::IConnectionColorSpace& target, float* colours,
                          float* coverage, std::int32_t size, COLOR::TRenderingIntent,
                          COLOR::TRenderingIntent, float opacity) const override {
        for (std::int32_t i = 0; i < size; ++i) {
            coverage[i] = opacity * static_cast<float>(i) / static_cast<float>(size - 1);
            std::fill_n(colours, target.GetComponentCount(), fullTint);
            colours += target.GetComponentCount();
        }
        return STATUS::kOk;
    }
};

class FakeInk : public TObject<COLOR::IInk> {
public:
    /// `color` in host form (complements for CMYK).
    FakeInk(std::optional<CoreString> inkName, COLOR::InkColorKind inkKind,
            std::array<float, 4> inkColor)
        : name(std::move(inkName)), kind(inkKind), color(inkColor) {}

    std::optional<CoreString> name;
    COLOR::InkColorKind kind;
    std::array<float, 4> color;

    const CoreString* GetName() const override { return name ? &*name : nullptr; }

    COLOR::InkColorKind GetColorKind() const override { return kind; }

    /// Another signature than that of the kind.
    std::optional<FourCC> signature;
    std::int32_t signatureValues = 4;

    FourCC GetColorSignature() const override {
        return signature.value_or(kind == COLOR::InkColorKind::kCMYK ? "CMYK"_cc : "RGB "_cc);
    }

    float GetColorComponent(std::int32_t index) const override {
        return color.at(static_cast<std::size_t>(index));
    }

    std::int32_t GetSignatureValues(float values[4]) const override {
        std::transform(color.begin(), color.end(), values, [](float v) { return 1 - v; });
        return signatureValues;
    }
};

class FakeInkInstance : public TObject<COLOR::IInkInstance> {
public:
    explicit FakeInkInstance(TInterfacePtr<COLOR::IInk> held) : ink(std::move(held)) {}

    TInterfacePtr<COLOR::IInk> ink;

    COLOR::IInk* GetInk() const override { return ink.Get(); }
};

/// Null instances are allowed.
class FakeInkCollection : public TObject<COLOR::IInkCollection> {
public:
    std::vector<TInterfacePtr<COLOR::IInkInstance>> instances;

    void Add(const char* name, COLOR::InkColorKind kind, std::array<float, 4> color) {
        const auto ink = MakeObject<FakeInk>(CoreString(name), kind, color);
        instances.emplace_back(MakeObject<FakeInkInstance>(ink));
    }

    std::int32_t GetInkCount() const override {
        return static_cast<std::int32_t>(instances.size());
    }

    COLOR::IInkInstance* GetInkInstance(std::int32_t index) const override {
        return instances.at(static_cast<std::size_t>(index)).Get();
    }
};

class FakeDeviceNSpace
    : public FakeColorSpace<COLOR::IDeviceNConnectionColorSpace, COLOR::IID_IDEVICENCOLORSPACE> {
public:
    /// Missing names are allowed.
    std::vector<std::optional<CoreString>> names;
    TInterfacePtr<COLOR::IConnectionColorSpace> alternate;
    TInterfacePtr<COLOR::IColorFunction> tint;
    TInterfacePtr<COLOR::IInkCollection> inks;

    std::int32_t GetColorantCount() const override {
        return static_cast<std::int32_t>(names.size());
    }

    const CoreString* GetColorantName(std::int32_t index) const override {
        const auto& name = names.at(static_cast<std::size_t>(index));
        return name ? &*name : nullptr;
    }

    COLOR::IConnectionColorSpace* GetAlternateSpace() const override { return alternate.Get(); }

    COLOR::IColorFunction* GetTintFunction() const override { return tint.Get(); }

    COLOR::IInkCollection* GetInkCollection() const override { return inks.Get(); }
};

/// Profiles of the device families have the numbers 1 (gray), 3 (RGB) and 4 (CMYK).
class FakeColorSpaceFactory : public TObject<COLOR::IConnectionColorSpaceFactory> {
public:
    COLOR::IConnectionColorSpace* CreateDeviceGrayColorSpace() override {
        return new FakeDeviceSpace("gray"_cc);
    }

    COLOR::IConnectionColorSpace* CreateDeviceRGBColorSpace() override {
        return new FakeDeviceSpace("rgb "_cc);
    }

    COLOR::IConnectionColorSpace* CreateDeviceCMYKColorSpace() override {
        return new FakeDeviceSpace("cmyk"_cc);
    }

    COLOR::IConnectionColorSpace* CreateCalibratedGrayColorSpace(const float white[3],
                                                                 const float black[3],
                                                                 float gamma) override {
        static_cast<void>(black);
        auto* space = new FakeCalibratedSpace("cgry"_cc);
        space->white = {white[0], white[1], white[2]};
        space->gammas = {gamma};
        return space;
    }

    COLOR::IConnectionColorSpace* CreateDefaultProfileColorSpace(FourCC family) override {
        auto* space = new FakeProfileSpace(family);
        space->number = static_cast<std::uint32_t>(space->components);
        space->array = "[/Profile" + std::to_string(space->components) + "]";
        return space;
    }

    COLOR::IConnectionColorSpace* CreateLabColorSpace(const float white[3]) override {
        auto* space = new FakeCalibratedSpace("clab"_cc);
        space->white = {white[0], white[1], white[2]};
        return space;
    }

    COLOR::IConnectionColorSpace* CreateSeparationColorSpace(
        const CoreString& name, COLOR::IConnectionColorSpace* alternate,
        COLOR::IColorFunction* tint) override {
        auto* space =
            new FakeSeparationSpace("", TInterfacePtr<COLOR::IConnectionColorSpace>(alternate),
                                    TInterfacePtr<COLOR::IColorFunction>(tint));
        space->name = name;
        return space;
    }
};

}  // namespace VANTIX::TEST
