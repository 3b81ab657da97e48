// SPDX-License-Identifier: MIT
#include "pdf/resources.h"

#include "pdf/contentparser.h"
#include "pdf/objects.h"

namespace VANTIX::PDF {

const QPDFObjectHandle& Resources::Find(const std::string& category, std::string_view name) {
    NameMap<QPDFObjectHandle>& known = mObjects[category];
    const auto found = known.find(name);
    if (found != known.end()) {
        return found->second;
    }
    const QPDFObjectHandle object = Get(Get(mDictionary, category), "/" + DecodeName(name));
    return known.emplace(name, object).first->second;
}

const Resources::Entries& Resources::FindGraphicsState(std::string_view name) {
    const auto known = mGraphicsStates.find(name);
    if (known != mGraphicsStates.end()) {
        return known->second;
    }
    Entries& entries = mGraphicsStates.emplace(name, Entries()).first->second;
    QPDFObjectHandle dictionary = Find("/ExtGState", name);
    if (dictionary.isDictionary()) {
        for (auto& entry : dictionary.getDictAsMap()) {
            entries.emplace_back(entry);
        }
    }
    return entries;
}

const ColorSpaceEntry* Resources::FindColorSpace(std::string_view name) {
    const auto known = mSpaces.find(name);
    if (known != mSpaces.end()) {
        return known->second;
    }
    const ColorSpaceEntry* space = mColorSpaces.Named(DecodeName(name), Defaults());
    QPDFObjectHandle object = Find("/ColorSpace", name);
    const bool isReserved = name.starts_with("Device") || name == "Pattern";
    if (!object.isNull() && (space == nullptr || !isReserved)) {
        space = &mColorSpaces.Resolve(object, Defaults());
    }
    mSpaces.emplace(name, space);
    return space;
}

const ColorSpaceEntry* Resources::FindColorSpace(const QPDFObjectHandle& object) {
    const std::string name = NameOf(object);
    return name.empty() ? &mColorSpaces.Resolve(object, Defaults()) : FindColorSpace(name);
}

const ColorSpaceEntry& Resources::DeviceSpace(std::size_t index) {
    static constexpr std::array<const char*, 3> kNames = {"DeviceGray", "DeviceRGB", "DeviceCMYK"};
    if (mDevices[index] == nullptr) {
        mDevices[index] = mColorSpaces.Named(kNames[index], Defaults());
    }
    return *mDevices[index];
}

const DefaultSpaces& Resources::Defaults() {
    if (!mDefaults) {
        mDefaults = mColorSpaces.DefaultsOf(Get(mDictionary, "/ColorSpace"));
    }
    return *mDefaults;
}

}  // namespace VANTIX::PDF
