// SPDX-License-Identifier: MIT
#include "pdf/imagecolors.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "core/color/ispotcolorspaces.h"
#include "core/graphics/pluginhelper/colorhelpers.h"

namespace VANTIX::PDF {

namespace {

const COLOR::IIndexedConnectionColorSpace* IndexedOf(const ColorSpaceEntry& entry) {
    return FindInterface<COLOR::IIndexedConnectionColorSpace>(entry.space.Get(),
                                                              COLOR::IID_IINDEXEDCOLORSPACE);
}

}  // namespace

bool IsLab(const ColorSpaceEntry& entry) {
    return entry.kind == ColorSpaceEntry::Kind::kSpace && entry.ranges[0].high > 1.0F;
}

bool IsGray(const ColorSpaceEntry& entry) {
    return GRAPHICS::HELPER::GetOwnFamily(entry.space.Get()) == "gray"_cc;
}

bool IsSeparation(const ColorSpaceEntry& entry) {
    return FindInterface<COLOR::ISeparationConnectionColorSpace>(
               entry.space.Get(), COLOR::IID_ISEPARATIONCOLORSPACE) != nullptr;
}

const ColorSpaceEntry& PaletteBase(const ColorSpaceEntry& indexed) {
    const ColorSpaceEntry& base = *indexed.alternate;
    return base.kind == ColorSpaceEntry::Kind::kReplaced ? *base.alternate : base;
}

std::vector<std::uint8_t> PaletteTable(const ColorSpaceEntry& indexed) {
    const auto* space = IndexedOf(indexed);
    const std::uint8_t* table = space == nullptr ? nullptr : space->GetLUT();
    if (table == nullptr) {
        return {};
    }
    return {table, table + static_cast<std::size_t>(space->GetEntryCount()) *
                               static_cast<std::size_t>(PaletteBase(indexed).components)};
}

std::uint8_t PaletteWhite(const ColorSpaceEntry& indexed, std::int32_t bits) {
    const ColorSpaceEntry& base = PaletteBase(indexed);
    const std::vector<std::uint8_t> table = PaletteTable(indexed);
    const auto width = static_cast<std::size_t>(base.components);
    // Of Lab the lightness counts; of tints the least is the lightest.
    const std::size_t counted = IsLab(base) ? 1 : width;
    unsigned best = 0;
    int lightest = -1;
    for (std::size_t i = 0; (i + 1) * width <= table.size(); ++i) {
        const auto* entry = table.data() + i * width;
        const int sum = std::accumulate(entry, entry + counted, 0);
        const int light = base.special ? static_cast<int>(255 * counted) - sum : sum;
        if (light > lightest) {
            lightest = light;
            best = static_cast<unsigned>(i);
        }
    }
    for (auto filled = static_cast<unsigned>(bits); filled < 8; filled *= 2) {
        best = (best & ((1U << filled) - 1U)) * ((1U << filled) + 1U);
    }
    return static_cast<std::uint8_t>(best);
}

PixelConversion ConversionOf(const ColorSpaceEntry& entry, const std::vector<float>& decode,
                             ColorSpaces& spaces, std::int32_t bits,
                             COLOR::TRenderingIntent intent) {
    const ColorSpaceEntry* last = &entry;
    while (last->kind != ColorSpaceEntry::Kind::kSpace && last->alternate != nullptr) {
        last = last->alternate;
    }
    const bool isLab = IsLab(*last);
    PixelConversion conversion;
    conversion.target = isLab ? spaces.Named("DeviceRGB", {}) : last;
    const auto top = static_cast<float>((1U << static_cast<unsigned>(bits)) - 1U);
    conversion.convert = [&entry, &spaces, decode, last, isLab, top, intent,
                          target = conversion.target](const ConvertedPlanes::Pixel& in,
                                                      ConvertedPlanes::Pixel& out) {
        HOST::CurrentColor color;
        std::array<float, COLOR::kMaxComponents> values{};
        const auto count = static_cast<std::size_t>(entry.components);
        for (std::size_t i = 0; i < count; ++i) {
            const auto [low, high] = entry.ranges[i];
            const float part = decode[2 * i] + (decode[2 * i + 1] - decode[2 * i]) *
                                                   static_cast<float>(in[i]) / top;
            values[i] = low + (high - low) * part;
        }
        spaces.SetValues(entry, std::span<const float>(values).first(count), color);
        float pcs[3] = {};
        if (isLab && last->space->ToPCS(color.values.data(), pcs, intent)) {
            target->space->FromPCS(pcs, color.values.data(), intent);
        }
        for (std::size_t i = 0; i < static_cast<std::size_t>(target->components); ++i) {
            const float part = std::clamp(color.values[i], 0.0F, 1.0F);
            out[i] = static_cast<std::uint16_t>(std::lround(part * top));
        }
    };
    return conversion;
}

HOST::ColorSpacePtr RgbPaletteSpace(const ColorSpaceEntry& indexed, ColorSpaces& spaces,
                                    COLOR::TRenderingIntent intent) {
    const PixelConversion conversion =
        ConversionOf(PaletteBase(indexed), {0, 1, 0, 1, 0, 1}, spaces, 8, intent);
    std::vector<std::uint8_t> table = PaletteTable(indexed);
    for (std::size_t entry = 0; entry + 3 <= table.size(); entry += 3) {
        ConvertedPlanes::Pixel in{};
        ConvertedPlanes::Pixel out{};
        std::copy_n(table.begin() + static_cast<std::ptrdiff_t>(entry), 3, in.begin());
        conversion.convert(in, out);
        std::transform(out.begin(), out.begin() + 3,
                       table.begin() + static_cast<std::ptrdiff_t>(entry),
                       [](std::uint16_t sample) { return static_cast<std::uint8_t>(sample); });
    }
    return spaces.PaletteSpace(conversion.target->space, std::move(table));
}

}  // namespace VANTIX::PDF
