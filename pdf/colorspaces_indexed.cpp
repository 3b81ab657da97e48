// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>
#include <cstddef>

#include "pdf/colorspaces.h"
#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace {

using Palette = std::vector<std::uint8_t>;

std::string LookupBytes(QPDFObjectHandle lookup, std::size_t size) {
    std::string data;
    if (lookup.isString()) {
        data = lookup.getStringValue();
    } else {
        AppendStreamData(lookup, data, size);
    }
    data.resize(size, '\0');
    return data;
}

// The palette of a base whose colours lead through a function to an alternate space.
Palette ReplacePalette(const ColorSpaceEntry& base, const Palette& table) {
    const ColorSpaceEntry& target = *base.alternate;
    const auto width = static_cast<std::size_t>(base.components);
    Palette replaced;
    for (std::size_t entry = 0; entry + width <= table.size(); entry += width) {
        std::array<float, COLOR::kMaxComponents> in{};
        std::array<float, COLOR::kMaxComponents> out{};
        for (std::size_t i = 0; i < width; ++i) {
            in[i] = static_cast<float>(table[entry + i]) / 255.0F;
        }
        base.tint->Evaluate(in.data(), out.data());
        for (std::size_t i = 0; i < static_cast<std::size_t>(target.components); ++i) {
            const auto [low, high] = target.ranges[i];
            const float part = high > low ? (out[i] - low) / (high - low) : 0.0F;
            replaced.push_back(
                static_cast<std::uint8_t>(std::lround(std::clamp(part, 0.0F, 1.0F) * 255.0F)));
        }
    }
    return replaced;
}

}  // namespace

HOST::ColorSpacePtr ColorSpaces::PaletteSpace(const HOST::ColorSpacePtr& base,
                                              std::vector<std::uint8_t> table) {
    std::string error;
    const auto entries = static_cast<std::int32_t>(table.size()) / base->GetComponentCount();
    return mFactory.IndexedSpace(base, entries, std::move(table), error);
}

const ColorSpaceEntry& ColorSpaces::MakeIndexed(const Request& request) {
    const Entry& base = ResolveNested(request.Item(1), request.defaults, request.depth + 1);
    const bool replaced = base.kind == Entry::Kind::kReplaced;
    if ((base.kind != Entry::Kind::kSpace && !replaced) || base.name == "Indexed") {
        return Broken("Indexed over an unfit base space", 0);
    }
    const std::int32_t highest = std::clamp(IntegerOf(request.Item(2)).value_or(255), 0, 255);
    const std::string data =
        LookupBytes(request.Item(3), static_cast<std::size_t>(highest + 1) *
                                         static_cast<std::size_t>(base.components));
    Palette table(data.begin(), data.end());
    const Entry& target = replaced ? *base.alternate : base;
    if (replaced) {
        table = ReplacePalette(base, table);
    }
    if (target.complemented) {
        std::transform(table.begin(), table.end(), table.begin(),
                       [](std::uint8_t b) { return static_cast<std::uint8_t>(255U - b); });
    }
    std::string error;
    Entry entry;
    entry.name = "Indexed";
    entry.components = 1;
    entry.kind = Entry::Kind::kIndexed;
    entry.special = true;
    entry.ranges[0] = {0.0F, static_cast<float>(highest)};
    entry.space = mFactory.IndexedSpace(target.space, highest + 1, std::move(table), error);
    if (!entry.space) {
        return Broken("Indexed: " + error, 0);
    }
    entry.alternate = &base;
    entry.palette = data;
    return Add(std::move(entry));
}

}  // namespace VANTIX::PDF
