// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/object/tobject.h"
#include "host/color/colorspacefactory.h"
#include "host/color/conversion.h"
#include "host/color/identifiers.h"
#include "host/color/lines.h"

namespace VANTIX::HOST {

/// Implementation base of a colour-space interface: answers one kind, and for the rest what most
/// spaces answer (no inverse conversion, an initial colour of zeros, no white point, no PostScript
/// array).
template <class I>
class SpaceBase : public TObject<I> {
public:
    Status QueryInterface(const GUID& id, void** out) override {
        if (id == mKind) {
            *out = static_cast<IObject*>(this);
            return STATUS::kOk;
        }
        if (id == IID_SPACEBASIS && mBasis) {
            *out = static_cast<IObject*>(mBasis.Get());
            return STATUS::kOk;
        }
        return TObject<I>::QueryInterface(id, out);
    }

    std::int32_t GetComponentCount() const override { return mComponents; }

    GUID GetIdentifier() const override { return mIdentifier; }

    bool FromPCS(const float[3], float*, COLOR::TRenderingIntent) const override { return false; }

    bool GetDefaultValues(float* values, std::int32_t count) const override {
        if (values == nullptr || count != mComponents) {
            return false;
        }
        std::fill(values, values + count, 0.0F);
        return true;
    }

    bool GetWhitePoint(float[3]) const override { return false; }

    bool StoresComponentsInverted() const override { return false; }

    Status WritePostScriptArray(COLOR::TRenderingIntent, IO::IDataProvider&) const override {
        return STATUS::kNotSupported;
    }

    COLOR::IConnectionColorSpace* GetProfileForm() override { return nullptr; }

    Status LineToPCS(const std::uint8_t* const* planes, std::int32_t width, std::int32_t bits,
                     float* pcs, COLOR::TRenderingIntent intent) const override {
        return PixelsToPCS(*this, planes, width, bits, pcs, intent);
    }

    Status ConvertLine(const COLOR::IConnectionColorSpace& target,
                       const COLOR::LineConversion& line) const override {
        try {
            COLOR::LineConversion prepared = line;
            const Status status = mLines.Prepare(*this, target, prepared);
            if (status != STATUS::kOk) {
                return status;
            }
            if (IsSameSpace(*this, target)) {
                CopyLine(prepared, mComponents);
                return STATUS::kOk;
            }
            return ConvertSamples(target, prepared);
        } catch (const std::bad_alloc&) {
            return STATUS::kOutOfMemory;
        }
    }

protected:
    SpaceBase(const GUID& kind, std::int32_t components, const GUID& identifier)
        : mKind(kind), mIdentifier(identifier), mComponents(components) {}

    void SetBasis(TInterfacePtr<SpaceBasis> basis) { mBasis = std::move(basis); }

    /// Converts a line of 8 or 16 bits into a space that is another one.
    virtual Status ConvertSamples(const COLOR::IConnectionColorSpace& target,
                                  const COLOR::LineConversion& line) const {
        return mLines.Convert(*this, mBasis.Get(), target, line);
    }

    [[nodiscard]] LineConverter& Lines() const { return mLines; }

private:
    GUID mKind;
    GUID mIdentifier;
    std::int32_t mComponents;
    TInterfacePtr<SpaceBasis> mBasis;
    mutable LineConverter mLines;
};

/// The colour that a space converted last. It is given back as it was when its place in the
/// connection space returns: many mixtures of inks share a place, and the way from a spot colour to
/// its own alternate must end at the mixture that the tint function gives.
class LastColor {
public:
    void Keep(const float* values, std::int32_t count, const float pcs[3]) {
        mCount = count;
        std::copy_n(values, count, mValues.begin());
        std::copy_n(pcs, 3, mPlace.begin());
    }

    /// False, with nothing written, for any other place.
    bool Recall(const float pcs[3], float* values) const {
        if (mCount == 0 || !std::equal(mPlace.begin(), mPlace.end(), pcs)) {
            return false;
        }
        std::copy_n(mValues.begin(), mCount, values);
        return true;
    }

private:
    std::int32_t mCount = 0;
    std::array<float, 4> mValues{};
    std::array<float, 3> mPlace{};
};

using ProfilePtr = std::shared_ptr<const IccProfile>;

/// A device space that converts by `profileForm`, or, for CMYK without one, by the rules of the
/// PostScript Language Reference, 7.2, to and from `rgb`.
ColorSpacePtr MakeDeviceSpace(FourCC family, ColorSpacePtr profileForm, ColorSpacePtr rgb);

ColorSpacePtr MakeProfileSpace(ProfilePtr profile, const GUID& identifier);

/// Null, with the reason, for parameters that are no colour space (PDF Reference, 4.5.4).
ColorSpacePtr MakeGammaGraySpace(const CalibratedParameters& parameters, std::string& error);
ColorSpacePtr MakeCalibratedSpace(FourCC family, const CalibratedParameters& parameters,
                                  std::string& error);

ColorSpacePtr MakeIndexedSpace(const ColorSpacePtr& base, std::int32_t entries,
                               std::vector<std::uint8_t> table, std::string& error);

ColorSpacePtr MakeSeparationSpace(CoreString name, const ColorSpacePtr& alternate,
                                  const FunctionPtr& tint, std::string& error);
ColorSpacePtr MakeDeviceNSpace(const std::vector<std::string>& names,
                               const ColorSpacePtr& alternate, const FunctionPtr& tint,
                               TInterfacePtr<COLOR::IInkCollection> inks, std::string& error);
/// `device` has the components that the space reports.
ColorSpacePtr MakeRegistrationSpace(const ColorSpacePtr& device);
ColorSpacePtr MakeNoneSpace();

/// Writes `profile` as a CIE-based colour-space array (PostScript Language Reference, 4.8.3).
Status WriteProfileArray(const IccProfile& profile, COLOR::TRenderingIntent intent,
                         IO::IDataProvider& out);

}  // namespace VANTIX::HOST
