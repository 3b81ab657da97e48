// SPDX-License-Identifier: MIT
#include "host/color/profilelinks.h"

#include <lcms2.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

#include "host/color/conversion.h"

namespace VANTIX::HOST {

namespace {

using COLOR::LineConversion;

// A table for four inks takes a megabyte or two.
constexpr std::size_t kMostLinks = 8;

/// Layout of interleaved samples in host form: inks are complements.
struct Layout {
    FourCC family;
    std::size_t components;
    cmsUInt32Number format8;
    cmsUInt32Number format16;
};

const std::array kLayouts{
    Layout{"gray"_cc, 1, TYPE_GRAY_8, TYPE_GRAY_16},
    Layout{"rgb "_cc, 3, TYPE_RGB_8, TYPE_RGB_16},
    Layout{"cmyk"_cc, 4, TYPE_CMYK_8_REV, TYPE_CMYK_16_REV},
};

/// Null for Lab, whose samples are not a part of something.
const Layout* LayoutOf(FourCC family) {
    const auto* found =
        std::find_if(kLayouts.begin(), kLayouts.end(),
                     [family](const Layout& layout) { return layout.family == family; });
    return found == kLayouts.end() ? nullptr : found;
}

cmsUInt32Number FormatOf(const Layout& layout, std::int32_t bits) {
    return bits == 16 ? layout.format16 : layout.format8;
}

struct TransformDeleter {
    void operator()(void* transform) const { cmsDeleteTransform(transform); }
};

using Transform = std::unique_ptr<void, TransformDeleter>;

/// Points on an edge of the tables that a link is tried with, until one is fine enough; 0 ends.
std::array<cmsUInt32Number, 3> FinenessFor(std::size_t components) {
    switch (components) {
        case 1:
            return {255, 0, 0};
        case 3:
            return {49, 0, 0};
        default:
            return {23, 33, 0};
    }
}

/// The profiles of a link and what it is made for.
struct Ends {
    cmsHPROFILE source;
    const Layout& from;
    cmsHPROFILE target;
    const Layout& to;
    const LineConversion& line;
};

/// From source to target by way of XYZ, just as single colours go: the profile in the middle takes
/// part in how black points and white points are matched. A white that is none by the profiles
/// stays so, as it does there.
Transform MakeTransform(const Ends& ends, cmsHPROFILE xyz, cmsUInt32Number flags) {
    const cmsUInt32Number first = IntentNumber(ends.line.sourceIntent);
    const cmsUInt32Number second = IntentNumber(ends.line.targetIntent);
    std::array<cmsHPROFILE, 3> profiles{ends.source, xyz, ends.target};
    std::array<cmsUInt32Number, 3> intents{first, first, second};
    std::array<cmsBool, 3> blackPoint{};
    std::array<cmsFloat64Number, 3> adaptation{1, 1, 1};
    return Transform(cmsCreateExtendedTransform(
        nullptr, 3, profiles.data(), blackPoint.data(), intents.data(), adaptation.data(), nullptr,
        0, FormatOf(ends.from, ends.line.sourceBits), FormatOf(ends.to, ends.line.targetBits),
        flags | cmsFLAGS_NOWHITEONWHITEFIXUP));
}

std::uint32_t SampleAt(const std::uint16_t* samples, std::size_t index, std::int32_t bits) {
    if (bits == 16) {
        return samples[index];
    }
    std::uint8_t byte = 0;
    std::memcpy(&byte, reinterpret_cast<const char*>(samples) + index, 1);
    return byte;
}

/// Whether a table gives what the profiles give: on all dark neutral tones, where tables of linear
/// light are too coarse, and on all but a few of a thousand dark and as many other colours, since
/// every table cuts some corners at the edge of the gamut.
bool Agrees(const Transform& table, const Transform& exact, const Ends& ends) {
    constexpr std::size_t kPixels = 2048;
    constexpr std::size_t kRamp = 64;
    constexpr std::size_t kTolerated = 100;
    std::array<std::uint16_t, 4 * kPixels> in{};
    std::array<std::uint16_t, 4 * kPixels> fast{};
    std::array<std::uint16_t, 4 * kPixels> slow{};
    std::uint32_t state = 1;
    const std::size_t components = ends.from.components;
    for (std::size_t i = 0; i < kPixels * components; ++i) {
        const std::size_t pixel = i / components;
        state = state * 1664525U + 1013904223U;
        const std::uint32_t random = (state >> 8U) & 0xFFFFU;
        const auto word = static_cast<std::uint16_t>(
            pixel < kRamp ? pixel * 257U : random >> (pixel % 2 == 0 ? 4U : 0U));
        if (ends.line.sourceBits == 16) {
            in[i] = word;
        } else {
            const auto byte = static_cast<std::uint8_t>(pixel < kRamp ? pixel : word >> 8U);
            std::memcpy(reinterpret_cast<char*>(in.data()) + i, &byte, 1);
        }
    }
    cmsDoTransform(table.get(), in.data(), fast.data(), kPixels);
    cmsDoTransform(exact.get(), in.data(), slow.data(), kPixels);
    const std::int32_t bits = ends.line.targetBits;
    const std::uint32_t most = bits == 16 ? 640 : 2;
    std::size_t wrong = 0;
    for (std::size_t i = 0; i < kPixels * ends.to.components; ++i) {
        const std::uint32_t a = SampleAt(fast.data(), i, bits);
        const std::uint32_t b = SampleAt(slow.data(), i, bits);
        const std::uint32_t difference = std::max(a, b) - std::min(a, b);
        if (i < kRamp * ends.to.components && difference > 2 * most) {
            return false;
        }
        wrong += difference > most ? 1 : 0;
    }
    return wrong <= kPixels * ends.to.components / kTolerated;
}

/// The coarsest table that agrees with the profiles; what cannot be had as a table is computed
/// for each pixel. Null for profiles that cannot be linked.
Transform MakeLink(const Ends& ends) {
    cmsHPROFILE xyz = cmsCreateXYZProfile();
    if (xyz == nullptr) {
        return nullptr;
    }
    Transform link = MakeTransform(ends, xyz, cmsFLAGS_NOOPTIMIZE);
    for (const cmsUInt32Number points : FinenessFor(ends.from.components)) {
        if (link == nullptr || points == 0) {
            break;
        }
        Transform table = MakeTransform(ends, xyz, cmsFLAGS_GRIDPOINTS(points));
        if (table != nullptr && Agrees(table, link, ends)) {
            link = std::move(table);
            break;
        }
    }
    cmsCloseProfile(xyz);
    return link;
}

template <class Sample, std::size_t Count>
void Interleave(const std::uint8_t* const* planes, std::size_t first, std::size_t count,
                void* samples) {
    std::array<const std::uint8_t*, Count> in{};
    std::array<std::size_t, Count> step{};
    // A plane that is not there is one sample that is read again and again.
    static constexpr std::array<std::uint8_t, sizeof(Sample)> kZero{};
    for (std::size_t i = 0; i < Count; ++i) {
        in[i] = planes[i] == nullptr ? kZero.data() : planes[i] + first * sizeof(Sample);
        step[i] = planes[i] == nullptr ? 0 : sizeof(Sample);
    }
    auto* out = static_cast<std::uint8_t*>(samples);
    for (std::size_t x = 0; x < count; ++x) {
        for (std::size_t i = 0; i < Count; ++i) {
            std::memcpy(out, in[i] + x * step[i], sizeof(Sample));
            out += sizeof(Sample);
        }
    }
}

template <class Sample, std::size_t Count>
void Separate(const void* samples, std::size_t first, std::size_t count,
              std::uint8_t* const* planes) {
    std::array<std::uint8_t*, Count> out{};
    for (std::size_t i = 0; i < Count; ++i) {
        out[i] = planes[i] + first * sizeof(Sample);
    }
    const auto* in = static_cast<const std::uint8_t*>(samples);
    for (std::size_t x = 0; x < count; ++x) {
        for (std::size_t i = 0; i < Count; ++i) {
            std::memcpy(out[i] + x * sizeof(Sample), in, sizeof(Sample));
            in += sizeof(Sample);
        }
    }
}

template <class Sample>
void Interleave(std::size_t components, const std::uint8_t* const* planes, std::size_t first,
                std::size_t count, void* samples) {
    switch (components) {
        case 3:
            return Interleave<Sample, 3>(planes, first, count, samples);
        case 4:
            return Interleave<Sample, 4>(planes, first, count, samples);
        default:
            return Interleave<Sample, 1>(planes, first, count, samples);
    }
}

template <class Sample>
void Separate(std::size_t components, const void* samples, std::size_t first, std::size_t count,
              std::uint8_t* const* planes) {
    switch (components) {
        case 3:
            return Separate<Sample, 3>(samples, first, count, planes);
        case 4:
            return Separate<Sample, 4>(samples, first, count, planes);
        default:
            return Separate<Sample, 1>(samples, first, count, planes);
    }
}

}  // namespace

/// One link; its transform is null if the profiles cannot be linked, which is not tried again.
struct ProfileLinks::Link {
    [[nodiscard]] bool Serves(const std::shared_ptr<const IccProfile>& profile,
                              const LineConversion& line) const {
        return !target.owner_before(profile) && !profile.owner_before(target) &&
               sourceBits == line.sourceBits && targetBits == line.targetBits &&
               sourceIntent == line.sourceIntent && targetIntent == line.targetIntent;
    }

    // Not the address alone, which another profile may get after this one.
    std::weak_ptr<const IccProfile> target;
    std::int32_t sourceBits = 0;
    std::int32_t targetBits = 0;
    COLOR::TRenderingIntent sourceIntent{};
    COLOR::TRenderingIntent targetIntent{};
    Transform transform;
    bool isTried = false;
};

ProfileLinks::ProfileLinks() = default;

ProfileLinks::~ProfileLinks() = default;

ProfileLinks::Link& ProfileLinks::Find(const std::shared_ptr<const IccProfile>& owner,
                                       const LineConversion& line) {
    const auto found = std::find_if(mLinks.begin(), mLinks.end(),
                                    [&](const Link& link) { return link.Serves(owner, line); });
    if (found != mLinks.end()) {
        mLinks.splice(mLinks.begin(), mLinks, found);
        return mLinks.front();
    }
    if (mLinks.size() == kMostLinks) {
        mLinks.pop_back();
    }
    Link& link = mLinks.emplace_front();
    link.target = owner;
    link.sourceBits = line.sourceBits;
    link.targetBits = line.targetBits;
    link.sourceIntent = line.sourceIntent;
    link.targetIntent = line.targetIntent;
    return link;
}

bool ProfileLinks::Convert(const End& source, const End& target,
                           const std::shared_ptr<const IccProfile>& owner,
                           const LineConversion& line) {
    const Layout* from = LayoutOf(source.family);
    const Layout* to = LayoutOf(target.family);
    if (from == nullptr || to == nullptr) {
        return false;
    }
    Link& link = Find(owner, line);
    if (!link.isTried) {
        link.isTried = true;
        link.transform = MakeLink({source.handle, *from, target.handle, *to, line});
    }
    cmsHTRANSFORM transform = link.transform.get();
    if (transform == nullptr) {
        return false;
    }
    const auto width = static_cast<std::size_t>(std::max(line.width, 0));
    for (std::size_t first = 0; first < width; first += kBlock) {
        const std::size_t count = std::min(kBlock, width - first);
        line.sourceBits == 16
            ? Interleave<std::uint16_t>(from->components, line.source, first, count, mIn.data())
            : Interleave<std::uint8_t>(from->components, line.source, first, count, mIn.data());
        cmsDoTransform(transform, mIn.data(), mOut.data(), static_cast<cmsUInt32Number>(count));
        line.targetBits == 16
            ? Separate<std::uint16_t>(to->components, mOut.data(), first, count, line.target)
            : Separate<std::uint8_t>(to->components, mOut.data(), first, count, line.target);
    }
    return true;
}

}  // namespace VANTIX::HOST
