// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstddef>

#include "pdf/colorspaces.h"
#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace {

constexpr std::size_t kLargestProfile = std::size_t{64} << 20U;

HOST::CalibratedParameters CalibrationOf(const QPDFObjectHandle& dictionary) {
    HOST::CalibratedParameters parameters;
    const auto copyPoint = [&](const char* key, std::array<float, 3>& point) {
        const std::vector<float> numbers = NumbersOf(Get(dictionary, key), point.size());
        if (numbers.size() == point.size()) {
            std::copy(numbers.begin(), numbers.end(), point.begin());
        }
    };
    copyPoint("/WhitePoint", parameters.white);
    copyPoint("/BlackPoint", parameters.black);
    return parameters;
}

// How many components the header of an ICC profile names (ICC.1, 7.2.6); 0 when it is none.
std::int32_t ComponentsOfProfile(const std::string& profile) {
    constexpr std::size_t kSpaceOffset = 16;
    const std::string space =
        profile.size() >= kSpaceOffset + 4 ? profile.substr(kSpaceOffset, 4) : std::string();
    if (space == "GRAY") {
        return 1;
    }
    if (space == "RGB " || space == "Lab ") {
        return 3;
    }
    return space == "CMYK" ? 4 : 0;
}

bool IsLabProfile(const HOST::ColorSpacePtr& space) {
    auto* profile = FindInterface<COLOR::IProfileBasedConnectionColorSpace>(
        space.Get(), COLOR::IID_IPROFILEBASEDCOLORSPACE);
    return profile != nullptr && profile->GetFamily() == "clab"_cc;
}

}  // namespace

const ColorSpaceEntry& ColorSpaces::MakeCalGray(const Request& request) {
    const QPDFObjectHandle dictionary = request.Item(1);
    HOST::CalibratedParameters parameters = CalibrationOf(dictionary);
    parameters.gammas = {ToFloat(NumberOf(Get(dictionary, "/Gamma")).value_or(1.0))};
    std::string error;
    Entry entry;
    entry.name = "CalGray";
    entry.components = 1;
    entry.space = mFactory.GammaGraySpace(parameters, error);
    if (!entry.space) {
        return Broken("CalGray: " + error, 1);
    }
    entry.id = mNextId++;
    return Add(std::move(entry));
}

const ColorSpaceEntry& ColorSpaces::MakeCalRGB(const Request& request) {
    const QPDFObjectHandle dictionary = request.Item(1);
    HOST::CalibratedParameters parameters = CalibrationOf(dictionary);
    parameters.gammas = NumbersOf(Get(dictionary, "/Gamma"), 3);
    parameters.matrix = NumbersOf(Get(dictionary, "/Matrix"), 9);
    std::string error;
    Entry entry;
    entry.name = "CalRGB";
    entry.components = 3;
    entry.space = mFactory.CalibratedSpace("crgb"_cc, parameters, error);
    if (!entry.space) {
        return Broken("CalRGB: " + error, 3);
    }
    entry.id = mNextId++;
    return Add(std::move(entry));
}

const ColorSpaceEntry& ColorSpaces::MakeLab(const Request& request) {
    const QPDFObjectHandle dictionary = request.Item(1);
    HOST::CalibratedParameters parameters = CalibrationOf(dictionary);
    const std::vector<float> range = NumbersOf(Get(dictionary, "/Range"), 4);
    if (range.size() == parameters.labRange.size() && range[0] <= range[1] &&
        range[2] <= range[3]) {
        std::copy(range.begin(), range.end(), parameters.labRange.begin());
    }
    std::string error;
    Entry entry;
    entry.name = "Lab";
    entry.components = 3;
    entry.ranges[0] = {0.0F, 100.0F};
    entry.ranges[1] = {parameters.labRange[0], parameters.labRange[1]};
    entry.ranges[2] = {parameters.labRange[2], parameters.labRange[3]};
    entry.space = mFactory.CalibratedSpace("clab"_cc, parameters, error);
    if (!entry.space) {
        return Broken("Lab: " + error, 0);
    }
    entry.id = mNextId++;
    return Add(std::move(entry));
}

const ColorSpaceEntry& ColorSpaces::MakeICCBased(const Request& request) {
    const QPDFObjectHandle stream = request.Item(1);
    std::string profile;
    const StreamResult read = AppendStreamData(stream, profile, kLargestProfile);
    std::int32_t components = IntegerOf(Get(stream, "/N")).value_or(0);
    if (components != 1 && components != 3 && components != 4) {
        components = ComponentsOfProfile(profile);
    }
    if (read == StreamResult::kUnknownFilter || profile.empty()) {
        return MakeProfileAlternate(request, components, "its data cannot be read");
    }
    std::string error = "the number of components is none of 1, 3 and 4";
    const Entry* entry = MakeProfileSpace(profile, components, error);
    return entry != nullptr ? *entry : MakeProfileAlternate(request, components, error);
}

const ColorSpaceEntry* ColorSpaces::MakeProfileSpace(const std::string& profile,
                                                     std::int32_t components, std::string& error) {
    const bool needsDevice =
        mOptions.languageLevel < 3 && mOptions.embedProfiles && components != 1;
    Entry entry;
    entry.name = "ICCBased";
    entry.components = components;
    entry.complemented = components == 4;
    if (components != 0) {
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(profile.data());
        entry.space = mFactory.ProfileSpace({bytes, profile.size()}, components, error);
    }
    if (!entry.space) {
        return nullptr;
    }
    const bool isLab = IsLabProfile(entry.space);
    if (needsDevice && !isLab) {
        return &DeviceOf(components);
    }
    if (isLab) {
        entry.ranges[0] = {0.0F, 100.0F};
        entry.ranges[1] = entry.ranges[2] = {-128.0F, 127.0F};
    }
    entry.id = mNextId++;
    return &Add(std::move(entry));
}

const ColorSpaceEntry* ColorSpaces::OfProfile(const std::string& profile, std::int32_t components) {
    const std::string key = "profile " + profile;
    const auto known = mByText.find(key);
    if (known != mByText.end()) {
        return known->second;
    }
    std::string error;
    const bool fits = ComponentsOfProfile(profile) == components;
    const Entry* entry = fits ? MakeProfileSpace(profile, components, error) : nullptr;
    mByText.emplace(key, entry);
    return entry;
}

const ColorSpaceEntry& ColorSpaces::MakeProfileAlternate(const Request& request,
                                                         std::int32_t components,
                                                         const std::string& reason) {
    mReporter.Warn("icc-profile", "An ICC profile is replaced by its alternate space: " + reason);
    QPDFObjectHandle alternate = Get(request.Item(1), "/Alternate");
    if (!alternate.isNull()) {
        const Entry& entry = ResolveNested(alternate, {}, request.depth + 1);
        const bool fits = components == 0 || entry.components == components;
        if (entry.kind == Entry::Kind::kSpace && !entry.special && fits) {
            return entry;
        }
    }
    return DeviceOf(components);
}

}  // namespace VANTIX::PDF
