// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "pdf/colorspaces.h"
#include "pdf/qpdfheaders.h"

namespace VANTIX::PDF {

/// A resource dictionary in force, with what content has asked of it already: operators ask by
/// name, and ask again and again.
class Resources {
public:
    Resources(const QPDFObjectHandle& dictionary, ColorSpaces& colorSpaces)
        : mDictionary(dictionary), mColorSpaces(colorSpaces) {}

    /// The object `name` of the category ("/XObject", …) or null. `name` is raw, as in content.
    const QPDFObjectHandle& Find(const std::string& category, std::string_view name);

    /// The entries of the graphics-state dictionary `name`, keys with slash in ascending order.
    using Entries = std::vector<std::pair<std::string, QPDFObjectHandle>>;
    const Entries& FindGraphicsState(std::string_view name);

    /// The space that operators cs and CS name, or null when there is none.
    const ColorSpaceEntry* FindColorSpace(std::string_view name);

    /// The space that the dictionary of an image or a shading names or describes, or null when
    /// there is none.
    const ColorSpaceEntry* FindColorSpace(const QPDFObjectHandle& object);

    /// Equal for resources that give the device spaces the same meaning.
    std::uint32_t DefaultsKey() { return Defaults().key; }

    /// The spaces that stand for the device spaces.
    const DefaultSpaces& Defaults();

    /// What g, rg and k select here.
    const ColorSpaceEntry& DeviceSpace(std::size_t index);

private:
    template <class T>
    using NameMap = std::map<std::string, T, std::less<>>;

    QPDFObjectHandle mDictionary;
    ColorSpaces& mColorSpaces;
    NameMap<NameMap<QPDFObjectHandle>> mObjects;
    NameMap<const ColorSpaceEntry*> mSpaces;
    NameMap<Entries> mGraphicsStates;
    std::optional<DefaultSpaces> mDefaults;
    std::array<const ColorSpaceEntry*, 3> mDevices{};
};

}  // namespace VANTIX::PDF
