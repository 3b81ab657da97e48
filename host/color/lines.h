// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "core/color/iconnectioncolorspace.h"
#include "core/object/tinterfaceptr.h"
#include "core/object/tobject.h"

namespace VANTIX::HOST {

class IccProfile;

/// What a space of this host lends under it: the basis of its conversions.
inline constexpr GUID IID_SPACEBASIS = "5C0B7E1D-4F43-4B0E-9C60-1D27A3B85F92"_guid;

/// What a space converts by: a profile whose samples are those of the space, or the additive space
/// that inks are turned into and back by rule. One of the two at most.
class SpaceBasis : public TObject<IObject> {
public:
    SpaceBasis(std::shared_ptr<const IccProfile> profile,
               TInterfacePtr<COLOR::IConnectionColorSpace> light)
        : mProfile(std::move(profile)), mLight(std::move(light)) {}

    [[nodiscard]] const std::shared_ptr<const IccProfile>& Profile() const { return mProfile; }

    /// Borrowed, or null.
    [[nodiscard]] const COLOR::IConnectionColorSpace* Light() const { return mLight.Get(); }

private:
    std::shared_ptr<const IccProfile> mProfile;
    TInterfacePtr<COLOR::IConnectionColorSpace> mLight;
};

/// Planes that are kept from line to line and grow with the longest.
class LineRoom {
public:
    /// `count` planes of `width` samples; what they hold is not defined.
    std::uint8_t* const* Planes(std::int32_t count, std::int32_t width, std::int32_t bits);

    /// The same planes, to be read.
    [[nodiscard]] const std::uint8_t* const* Filled() const { return mReadable.data(); }

private:
    std::vector<std::uint8_t> mBytes;
    std::array<std::uint8_t*, COLOR::kMaxComponents> mPlanes{};
    std::array<const std::uint8_t*, COLOR::kMaxComponents> mReadable{};
};

/// The last conversions of single pixels, one for each place of a table: pictures repeat their
/// colours. Samples are words.
class PixelMemo {
public:
    using Pixel = std::array<std::uint16_t, COLOR::kMaxComponents>;

    /// What known pixels depend on.
    struct Key {
        GUID target{};
        std::int32_t from = 0;
        std::int32_t to = 0;
        std::int32_t sourceBits = 0;
        std::int32_t targetBits = 0;
        COLOR::TRenderingIntent sourceIntent{};
        COLOR::TRenderingIntent targetIntent{};

        bool operator==(const Key& other) const = default;
    };

    /// Forgets everything if the key is another one.
    void Begin(const Key& key);

    /// The place of a pixel, and whether it holds the pixel already; else the caller must fill
    /// it, and then call `Keep`.
    struct Place {
        std::uint16_t* out;
        bool isKnown;
        std::size_t index;
    };

    Place Find(const Pixel& in);
    void Keep(const Place& place, const Pixel& in);

private:
    Key mKey;
    std::size_t mFrom = 0;
    std::size_t mTo = 0;
    std::size_t mPlaces = 0;
    std::vector<std::uint16_t> mIn;
    std::vector<std::uint16_t> mOut;
    std::vector<std::uint8_t> mIsSet;
};

/// IConnectionColorSpace::LineToPCS by the conversion of single colours.
Status PixelsToPCS(const COLOR::IConnectionColorSpace& space, const std::uint8_t* const* planes,
                   std::int32_t width, std::int32_t bits, float* pcs,
                   COLOR::TRenderingIntent intent);

/// Whether samples of one space mean the same in the other: both are equal, or stand for the same
/// profile.
bool IsSameSpace(const COLOR::IConnectionColorSpace& a, const COLOR::IConnectionColorSpace& b);

/// Copies the samples of a line whose two spaces are the same, from depth to depth.
void CopyLine(const COLOR::LineConversion& line, std::int32_t components);

/// Inks to light by the rule of the PostScript Language Reference, 7.2.4, in host form: the
/// complement of min(1, ink + black). Null source planes are zeros. Samples are of 8 or 16 bits.
void InksToLight(const std::uint8_t* const* inks, std::uint8_t* const* light, std::int32_t width,
                 std::int32_t bits);
/// The way back (7.2.3): black is the least of the three inks and replaces it in all three.
void LightToInks(const std::uint8_t* const* light, std::uint8_t* const* inks, std::int32_t width,
                 std::int32_t bits);

/// What a space keeps to convert lines. Used by one thread at a time.
class LineConverter {
public:
    /// Checks a line and unpacks its samples of less than 8 bits; `kNotSupported` for depths and
    /// numbers of components that are not allowed.
    Status Prepare(const COLOR::IConnectionColorSpace& source,
                   const COLOR::IConnectionColorSpace& target, COLOR::LineConversion& line);

    /// The ways that are open to every space, the fastest first. `basis` is that of the source,
    /// or null; the line is a prepared one.
    Status Convert(const COLOR::IConnectionColorSpace& source, const SpaceBasis* basis,
                   const COLOR::IConnectionColorSpace& target, const COLOR::LineConversion& line);

    /// Pixel by pixel, by the conversions of single colours.
    Status ConvertPixels(const COLOR::IConnectionColorSpace& source,
                         const COLOR::IConnectionColorSpace& target,
                         const COLOR::LineConversion& line);

private:
    Status ConvertToInks(const COLOR::IConnectionColorSpace& source,
                         const COLOR::IConnectionColorSpace& light,
                         const COLOR::LineConversion& line);

    std::vector<std::uint8_t> mUnpacked;
    const std::uint8_t* mUnpackedPlane = nullptr;
    LineRoom mLight;
    PixelMemo mMemo;
};

/// Sample `index` of a plane of 1 to 16 bits as a number of that depth; 0 for a null plane.
std::uint16_t CodeAt(const std::uint8_t* plane, std::size_t index, std::int32_t bits);
/// Writes a sample of 8 or 16 bits.
void StoreCode(std::uint8_t* plane, std::size_t index, std::int32_t bits, std::uint16_t code);

/// The largest sample of a depth.
constexpr std::uint32_t MostOf(std::int32_t bits) {
    return (1U << static_cast<unsigned>(bits)) - 1U;
}

/// The sample of a depth that is nearest to a value of 0 to 1; others are clipped.
std::uint16_t CodeOf(float value, std::int32_t bits);

/// Converts `count` pixels plane by plane through `memo`. `convert` takes a pixel of source
/// samples and fills one of target samples; false ends the line with `kNotSupported`.
template <class Convert>
Status ConvertByMemo(PixelMemo& memo, const PixelMemo::Key& key, const std::uint8_t* const* source,
                     std::uint8_t* const* target, std::int32_t count, const Convert& convert) {
    memo.Begin(key);
    const auto from = static_cast<std::size_t>(key.from);
    const auto to = static_cast<std::size_t>(key.to);
    PixelMemo::Pixel in{};
    for (std::size_t x = 0; x < static_cast<std::size_t>(count); ++x) {
        for (std::size_t i = 0; i < from; ++i) {
            in[i] = CodeAt(source[i], x, key.sourceBits);
        }
        const PixelMemo::Place place = memo.Find(in);
        if (!place.isKnown) {
            if (!convert(in, place.out)) {
                return STATUS::kNotSupported;
            }
            memo.Keep(place, in);
        }
        for (std::size_t i = 0; i < to; ++i) {
            StoreCode(target[i], x, key.targetBits, place.out[i]);
        }
    }
    return STATUS::kOk;
}

}  // namespace VANTIX::HOST
