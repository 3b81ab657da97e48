// SPDX-License-Identifier: MIT
#include "host/color/lines.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "core/status.h"
#include "host/color/conversion.h"
#include "host/color/functionbase.h"

namespace VANTIX::HOST {

namespace {

using COLOR::IConnectionColorSpace;
using COLOR::LineConversion;

std::size_t WidthOf(std::int32_t width) {
    return static_cast<std::size_t>(std::max(width, 0));
}

bool IsWholeDepth(std::int32_t bits) {
    return bits == 8 || bits == 16;
}

bool IsPackedDepth(std::int32_t bits) {
    return bits == 1 || bits == 2 || bits == 4;
}

bool HasUsableCount(const IConnectionColorSpace& space) {
    const std::int32_t count = space.GetComponentCount();
    return count > 0 && count <= COLOR::kMaxComponents;
}

GUID IdentifierOf(const IConnectionColorSpace& space) {
    // Asking for the profile form changes nothing in a space.
    auto* form = const_cast<IConnectionColorSpace&>(space).GetProfileForm();
    return form == nullptr ? space.GetIdentifier() : form->GetIdentifier();
}

template <class Sample>
Sample LoadAs(const std::uint8_t* plane, std::size_t index) {
    Sample sample = 0;
    std::memcpy(&sample, plane + index * sizeof sample, sizeof sample);
    return sample;
}

template <class Sample>
void StoreAs(std::uint8_t* plane, std::size_t index, std::uint32_t value) {
    const auto sample = static_cast<Sample>(value);
    std::memcpy(plane + index * sizeof sample, &sample, sizeof sample);
}

/// Composites what a line was converted into over white, which is all ones in the host form of
/// every space that rasters are converted into.
void CoverWhite(const LineConversion& line, std::int32_t components) {
    if (line.alpha == nullptr) {
        return;
    }
    const std::uint32_t white = MostOf(line.targetBits);
    const std::uint32_t most = MostOf(line.alphaBits);
    for (std::size_t x = 0; x < WidthOf(line.width); ++x) {
        const std::uint32_t cover = CodeAt(line.alpha, x, line.alphaBits);
        if (cover == most) {
            continue;
        }
        for (std::size_t i = 0; i < static_cast<std::size_t>(components); ++i) {
            const std::uint32_t ink = white - CodeAt(line.target[i], x, line.targetBits);
            const std::uint32_t left = white - (ink * cover + most / 2) / most;
            StoreCode(line.target[i], x, line.targetBits, static_cast<std::uint16_t>(left));
        }
    }
}

void CopyPlane(const std::uint8_t* from, std::int32_t fromBits, std::uint8_t* to,
               std::int32_t toBits, std::size_t width) {
    const std::size_t toBytes = width * static_cast<std::size_t>(toBits / 8);
    if (from == nullptr) {
        std::fill_n(to, toBytes, std::uint8_t{0});
    } else if (fromBits == toBits) {
        std::copy_n(from, toBytes, to);
    } else if (toBits == 16) {
        for (std::size_t x = 0; x < width; ++x) {
            StoreAs<std::uint16_t>(to, x, from[x] * 257U);
        }
    } else {
        for (std::size_t x = 0; x < width; ++x) {
            to[x] = static_cast<std::uint8_t>((LoadAs<std::uint16_t>(from, x) + 128U) / 257U);
        }
    }
}

template <class Sample>
void ApplyInksToLight(const std::uint8_t* const* inks, std::uint8_t* const* light,
                      std::size_t width) {
    constexpr std::int32_t kMost = static_cast<Sample>(~0U);
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t x = 0; x < width; ++x) {
            const std::int32_t ink = inks[i] == nullptr ? 0 : LoadAs<Sample>(inks[i], x);
            const std::int32_t black = inks[3] == nullptr ? 0 : LoadAs<Sample>(inks[3], x);
            StoreAs<Sample>(light[i], x,
                            static_cast<std::uint32_t>(std::max(ink + black - kMost, 0)));
        }
    }
}

template <class Sample>
void ApplyLightToInks(const std::uint8_t* const* light, std::uint8_t* const* inks,
                      std::size_t width) {
    constexpr std::uint32_t kMost = static_cast<Sample>(~0U);
    for (std::size_t x = 0; x < width; ++x) {
        const std::uint32_t red = LoadAs<Sample>(light[0], x);
        const std::uint32_t green = LoadAs<Sample>(light[1], x);
        const std::uint32_t blue = LoadAs<Sample>(light[2], x);
        const std::uint32_t lightest = std::max({red, green, blue});
        StoreAs<Sample>(inks[0], x, kMost - lightest + red);
        StoreAs<Sample>(inks[1], x, kMost - lightest + green);
        StoreAs<Sample>(inks[2], x, kMost - lightest + blue);
        StoreAs<Sample>(inks[3], x, lightest);
    }
}

}  // namespace

std::uint16_t CodeAt(const std::uint8_t* plane, std::size_t index, std::int32_t bits) {
    if (plane == nullptr) {
        return 0;
    }
    if (bits == 8) {
        return plane[index];
    }
    if (bits == 16) {
        return LoadAs<std::uint16_t>(plane, index);
    }
    const std::size_t bit = index * static_cast<std::size_t>(bits);
    const std::size_t shift = 8 - bit % 8 - static_cast<std::size_t>(bits);
    return static_cast<std::uint16_t>((plane[bit / 8] >> shift) & MostOf(bits));
}

void StoreCode(std::uint8_t* plane, std::size_t index, std::int32_t bits, std::uint16_t code) {
    if (bits == 8) {
        plane[index] = static_cast<std::uint8_t>(code);
    } else {
        StoreAs<std::uint16_t>(plane, index, code);
    }
}

std::uint16_t CodeOf(float value, std::int32_t bits) {
    return static_cast<std::uint16_t>(
        std::lround(ClipTo(value, 0.0F, 1.0F) * static_cast<float>(MostOf(bits))));
}

std::uint8_t* const* LineRoom::Planes(std::int32_t count, std::int32_t width, std::int32_t bits) {
    const std::size_t lineBytes = WidthOf(width) * static_cast<std::size_t>(bits / 8);
    const auto planes = static_cast<std::size_t>(count);
    if (mBytes.size() < planes * lineBytes) {
        mBytes.resize(planes * lineBytes);
    }
    for (std::size_t i = 0; i < planes; ++i) {
        mPlanes[i] = mBytes.data() + i * lineBytes;
        mReadable[i] = mPlanes[i];
    }
    return mPlanes.data();
}

void PixelMemo::Begin(const Key& key) {
    if (!mIsSet.empty() && mKey == key) {
        return;
    }
    // A single component of 8 bits has a place for each of its values.
    constexpr std::size_t kPlaces = 4096;
    mPlaces = key.from == 1 && key.sourceBits == 8 ? 256 : kPlaces;
    mFrom = static_cast<std::size_t>(key.from);
    mTo = static_cast<std::size_t>(key.to);
    mIn.assign(mPlaces * mFrom, 0);
    mOut.assign(mPlaces * mTo, 0);
    mIsSet.assign(mPlaces, 0);
    mKey = key;
}

PixelMemo::Place PixelMemo::Find(const Pixel& in) {
    std::size_t index = in[0];
    if (mPlaces != 256) {
        std::uint32_t hash = 2166136261U;
        for (std::size_t i = 0; i < mFrom; ++i) {
            hash = (hash ^ in[i]) * 16777619U;
        }
        index = (hash ^ (hash >> 12U)) % mPlaces;
    }
    const bool isKnown =
        mIsSet[index] != 0 && std::equal(in.data(), in.data() + mFrom, mIn.data() + index * mFrom);
    // A conversion that fails half way must not leave an old pixel with a new colour.
    mIsSet[index] = isKnown ? 1 : 0;
    return {mOut.data() + index * mTo, isKnown, index};
}

void PixelMemo::Keep(const Place& place, const Pixel& in) {
    std::copy_n(in.data(), mFrom, mIn.data() + place.index * mFrom);
    mIsSet[place.index] = 1;
}

Status PixelsToPCS(const IConnectionColorSpace& space, const std::uint8_t* const* planes,
                   std::int32_t width, std::int32_t bits, float* pcs,
                   COLOR::TRenderingIntent intent) {
    if (!IsWholeDepth(bits) || !HasUsableCount(space)) {
        return STATUS::kNotSupported;
    }
    const auto components = static_cast<std::size_t>(space.GetComponentCount());
    const auto most = static_cast<float>(MostOf(bits));
    std::array<float, COLOR::kMaxComponents> color{};
    for (std::size_t x = 0; x < WidthOf(width); ++x) {
        for (std::size_t i = 0; i < components; ++i) {
            color[i] = static_cast<float>(CodeAt(planes[i], x, bits)) / most;
        }
        if (!space.ToPCS(color.data(), pcs + 3 * x, intent)) {
            return STATUS::kNotSupported;
        }
    }
    return STATUS::kOk;
}

bool IsSameSpace(const IConnectionColorSpace& a, const IConnectionColorSpace& b) {
    return a.GetComponentCount() == b.GetComponentCount() && IdentifierOf(a) == IdentifierOf(b);
}

void CopyLine(const LineConversion& line, std::int32_t components) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(components); ++i) {
        CopyPlane(line.source[i], line.sourceBits, line.target[i], line.targetBits,
                  WidthOf(line.width));
    }
    CoverWhite(line, components);
}

void InksToLight(const std::uint8_t* const* inks, std::uint8_t* const* light, std::int32_t width,
                 std::int32_t bits) {
    bits == 16 ? ApplyInksToLight<std::uint16_t>(inks, light, WidthOf(width))
               : ApplyInksToLight<std::uint8_t>(inks, light, WidthOf(width));
}

void LightToInks(const std::uint8_t* const* light, std::uint8_t* const* inks, std::int32_t width,
                 std::int32_t bits) {
    bits == 16 ? ApplyLightToInks<std::uint16_t>(light, inks, WidthOf(width))
               : ApplyLightToInks<std::uint8_t>(light, inks, WidthOf(width));
}

Status LineConverter::Prepare(const IConnectionColorSpace& source,
                              const IConnectionColorSpace& target, LineConversion& line) {
    const bool isPacked = IsPackedDepth(line.sourceBits) && source.GetComponentCount() == 1;
    if ((!isPacked && !IsWholeDepth(line.sourceBits)) || !IsWholeDepth(line.targetBits) ||
        !HasUsableCount(source) || !HasUsableCount(target)) {
        return STATUS::kNotSupported;
    }
    if (line.alpha != nullptr && !IsWholeDepth(line.alphaBits) && !IsPackedDepth(line.alphaBits)) {
        return STATUS::kNotSupported;
    }
    if (isPacked) {
        // Each of these depths goes into 255 without a rest.
        const std::uint32_t step = MostOf(8) / MostOf(line.sourceBits);
        const std::size_t width = WidthOf(line.width);
        mUnpacked.resize(std::max(mUnpacked.size(), width));
        for (std::size_t x = 0; x < width; ++x) {
            mUnpacked[x] =
                static_cast<std::uint8_t>(CodeAt(line.source[0], x, line.sourceBits) * step);
        }
        mUnpackedPlane = mUnpacked.data();
        line.source = &mUnpackedPlane;
        line.sourceBits = 8;
    }
    return STATUS::kOk;
}

Status LineConverter::Convert(const IConnectionColorSpace& source, const SpaceBasis* basis,
                              const IConnectionColorSpace& target, const LineConversion& line) {
    const auto* targetBasis = FindInterface<SpaceBasis>(&target, IID_SPACEBASIS);
    if (targetBasis != nullptr && targetBasis->Light() != nullptr) {
        return ConvertToInks(source, *targetBasis->Light(), line);
    }
    if (basis != nullptr && basis->Profile() && targetBasis != nullptr && targetBasis->Profile() &&
        basis->Profile()->ConvertLine(targetBasis->Profile(), line)) {
        CoverWhite(line, target.GetComponentCount());
        return STATUS::kOk;
    }
    return ConvertPixels(source, target, line);
}

Status LineConverter::ConvertToInks(const IConnectionColorSpace& source,
                                    const IConnectionColorSpace& light,
                                    const LineConversion& line) {
    LineConversion toLight = line;
    toLight.alpha = nullptr;
    toLight.target = mLight.Planes(light.GetComponentCount(), line.width, line.targetBits);
    const Status status = source.ConvertLine(light, toLight);
    if (status == STATUS::kOk) {
        LightToInks(mLight.Filled(), line.target, line.width, line.targetBits);
        CoverWhite(line, 4);
    }
    return status;
}

Status LineConverter::ConvertPixels(const IConnectionColorSpace& source,
                                    const IConnectionColorSpace& target,
                                    const LineConversion& line) {
    const PixelMemo::Key key{target.GetIdentifier(),
                             source.GetComponentCount(),
                             target.GetComponentCount(),
                             line.sourceBits,
                             line.targetBits,
                             line.sourceIntent,
                             line.targetIntent};
    const auto most = static_cast<float>(MostOf(line.sourceBits));
    const auto convert = [&](const PixelMemo::Pixel& in, std::uint16_t* out) {
        std::array<float, COLOR::kMaxComponents> color{};
        std::array<float, 3> pcs{};
        std::transform(in.begin(), in.begin() + key.from, color.begin(),
                       [most](std::uint16_t code) { return static_cast<float>(code) / most; });
        if (!source.ToPCS(color.data(), pcs.data(), line.sourceIntent) ||
            !target.FromPCS(pcs.data(), color.data(), line.targetIntent)) {
            return false;
        }
        std::transform(color.begin(), color.begin() + key.to, out,
                       [&line](float value) { return CodeOf(value, line.targetBits); });
        return true;
    };
    const Status status = ConvertByMemo(mMemo, key, line.source, line.target, line.width, convert);
    if (status == STATUS::kOk) {
        CoverWhite(line, key.to);
    }
    return status;
}

}  // namespace VANTIX::HOST
