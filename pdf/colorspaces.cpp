// SPDX-License-Identifier: MIT
#include "pdf/colorspaces.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace {

constexpr int kMaxDepth = 8;
constexpr std::array<FourCC, 3> kFamilies = {"gray"_cc, "rgb "_cc, "cmyk"_cc};
constexpr std::array<std::string_view, 3> kDeviceNames = {"DeviceGray", "DeviceRGB", "DeviceCMYK"};
constexpr std::array<std::int32_t, 3> kDeviceComponents = {1, 3, 4};

struct Alias {
    std::string_view name;
    std::size_t device;
};

// Abbreviations belong to inline images, and the calibrated names need parameters that a bare name
// lacks; both are met where a device space is meant.
constexpr std::array<Alias, 9> kAliases = {{
    {"DeviceGray", 0},
    {"G", 0},
    {"CalGray", 0},
    {"DeviceRGB", 1},
    {"RGB", 1},
    {"CalRGB", 1},
    {"DeviceCMYK", 2},
    {"CMYK", 2},
    {"CalCMYK", 2},
}};

std::optional<std::size_t> DeviceIndex(std::string_view name) {
    const auto* const found = std::find_if(kAliases.begin(), kAliases.end(),
                                           [&](const Alias& alias) { return alias.name == name; });
    return found == kAliases.end() ? std::nullopt : std::optional(found->device);
}

/// Marks an object as being read while it lives.
class ScopedMark {
public:
    ScopedMark(std::set<QPDFObjGen>& marks, const QPDFObjectHandle& object) : mMarks(marks) {
        if (object.isIndirect()) {
            mMark = object.getObjGen();
            mIsFirst = mMarks.insert(*mMark).second;
        }
    }

    ~ScopedMark() {
        if (mMark && mIsFirst) {
            mMarks.erase(*mMark);
        }
    }

    ScopedMark(const ScopedMark&) = delete;
    ScopedMark& operator=(const ScopedMark&) = delete;
    ScopedMark(ScopedMark&&) = delete;
    ScopedMark& operator=(ScopedMark&&) = delete;

    [[nodiscard]] bool IsFirst() const { return mIsFirst; }

private:
    std::set<QPDFObjGen>& mMarks;
    std::optional<QPDFObjGen> mMark;
    bool mIsFirst = true;
};

// The base's values of palette entry `index`: its bytes spread over their ranges.
void LookUp(const ColorSpaceEntry& indexed, float index,
            std::array<float, COLOR::kMaxComponents>& values) {
    const ColorSpaceEntry& base = *indexed.alternate;
    const auto width = static_cast<std::size_t>(base.components);
    const std::size_t start = static_cast<std::size_t>(std::lround(index)) * width;
    for (std::size_t i = 0; i < width && start + i < indexed.palette.size(); ++i) {
        const auto [low, high] = base.ranges[i];
        const auto byte = static_cast<std::uint8_t>(indexed.palette[start + i]);
        values[i] = low + (high - low) * static_cast<float>(byte) / 255.0F;
    }
}

}  // namespace

const ColorSpaceEntry& SpaceBehind(const ColorSpaceEntry& entry) {
    const ColorSpaceEntry* space = &entry;
    while (space->kind != ColorSpaceEntry::Kind::kSpace && space->alternate != nullptr) {
        space = space->alternate;
    }
    return *space;
}

ColorSpaces::ColorSpaces(HOST::ColorSpaceFactory& factory, HOST::BaseConnectionSpace& space,
                         const ColorSpaceOptions& options, Reporter& reporter)
    : mFactory(factory), mSpace(space), mOptions(options), mReporter(reporter) {}

const ColorSpaceEntry& ColorSpaces::Add(Entry entry) {
    mEntries.push_back(std::make_unique<Entry>(std::move(entry)));
    return *mEntries.back();
}

const ColorSpaceEntry& ColorSpaces::Device(FourCC family) {
    const auto index = static_cast<std::size_t>(
        std::find(kFamilies.begin(), kFamilies.end(), family) - kFamilies.begin());
    if (mDevices[index] == nullptr) {
        Entry entry;
        entry.name = kDeviceNames[index];
        entry.components = kDeviceComponents[index];
        entry.complemented = family == "cmyk"_cc;
        entry.space = mFactory.DeviceSpace(family);
        entry.id = family;
        mDevices[index] = &Add(std::move(entry));
    }
    return *mDevices[index];
}

const ColorSpaceEntry& ColorSpaces::DeviceOf(std::int32_t components) {
    const auto* const found =
        std::find(kDeviceComponents.begin(), kDeviceComponents.end(), components);
    return found == kDeviceComponents.end()
               ? Black()
               : Device(kFamilies[static_cast<std::size_t>(found - kDeviceComponents.begin())]);
}

const ColorSpaceEntry& ColorSpaces::Black() {
    Entry entry;
    entry.kind = Entry::Kind::kBlack;
    entry.name = "broken";
    entry.components = 1;
    entry.alternate = &Device("gray"_cc);
    return Add(std::move(entry));
}

const ColorSpaceEntry& ColorSpaces::Broken(const std::string& reason, std::int32_t components) {
    mReporter.Warn("color-space", "A broken colour space is replaced: " + reason);
    return DeviceOf(components);
}

const ColorSpaceEntry* ColorSpaces::Named(const std::string& name, const DefaultSpaces& defaults) {
    if (name == "Pattern") {
        if (mPattern == nullptr) {
            Entry entry;
            entry.kind = Entry::Kind::kPattern;
            entry.name = "Pattern";
            entry.special = true;
            mPattern = &Add(std::move(entry));
        }
        return mPattern;
    }
    const std::optional<std::size_t> device = DeviceIndex(name);
    if (!device) {
        return nullptr;
    }
    const Entry* substitute = defaults.spaces[*device];
    return substitute != nullptr ? substitute : &Device(kFamilies[*device]);
}

DefaultSpaces ColorSpaces::DefaultsOf(const QPDFObjectHandle& colorSpaces) {
    constexpr std::array<std::string_view, 3> kKeys = {"/DefaultGray", "/DefaultRGB",
                                                       "/DefaultCMYK"};
    DefaultSpaces defaults;
    for (std::size_t i = 0; i < kKeys.size(); ++i) {
        QPDFObjectHandle object = Get(colorSpaces, std::string(kKeys[i]));
        if (object.isNull()) {
            continue;
        }
        const Entry& entry = Resolve(object, {});
        const bool fits = entry.kind == Entry::Kind::kSpace && entry.name != "Indexed" &&
                          entry.name != "Lab" && entry.components == kDeviceComponents[i];
        if (fits && entry.id != kFamilies[i]) {
            defaults.spaces[i] = &entry;
        }
    }
    if (defaults.spaces != decltype(defaults.spaces){}) {
        const auto next = static_cast<std::uint32_t>(mDefaultKeys.size() + 1);
        defaults.key = mDefaultKeys.try_emplace(defaults.spaces, next).first->second;
    }
    return defaults;
}

const ColorSpaceEntry& ColorSpaces::Resolve(const QPDFObjectHandle& object,
                                            const DefaultSpaces& defaults) {
    return ResolveNested(object, defaults, 0);
}

const ColorSpaceEntry& ColorSpaces::ResolveNested(const QPDFObjectHandle& object,
                                                  const DefaultSpaces& defaults, int depth) {
    QPDFObjectHandle definition = object;
    if (definition.isName()) {
        const Entry* named = Named(NameOf(definition), defaults);
        return named != nullptr ? *named : Broken("unknown name " + NameOf(definition), 0);
    }
    const bool indirect = definition.isIndirect();
    const std::pair<QPDFObjGen, std::uint32_t> key(definition.getObjGen(), defaults.key);
    const auto known = indirect ? mByObject.find(key) : mByObject.end();
    if (known != mByObject.end()) {
        return *known->second;
    }
    const ScopedMark mark(mInProgress, definition);
    if (!mark.IsFirst() || depth > kMaxDepth) {
        return Broken("it holds itself or is nested too deep", 0);
    }
    if (!definition.isArray() || definition.getArrayNItems() == 0) {
        return Broken("it is neither a name nor an array", 0);
    }
    // Equal definitions share one space, wherever they stand.
    const std::string text = std::to_string(defaults.key) + definition.unparseResolved();
    const auto same = mByText.find(text);
    const Entry& entry =
        same != mByText.end() ? *same->second : MakeArraySpace(definition, defaults, depth);
    mByText.try_emplace(text, &entry);
    if (indirect) {
        mByObject.try_emplace(key, &entry);
    }
    return entry;
}

const ColorSpaceEntry& ColorSpaces::MakeArraySpace(QPDFObjectHandle array,
                                                   const DefaultSpaces& defaults, int depth) {
    struct Family {
        std::string_view name;
        const Entry& (ColorSpaces::*make)(const Request&);
    };

    static constexpr std::array<Family, 9> kMakers = {{
        {"CalGray", &ColorSpaces::MakeCalGray},
        {"CalRGB", &ColorSpaces::MakeCalRGB},
        {"Lab", &ColorSpaces::MakeLab},
        {"ICCBased", &ColorSpaces::MakeICCBased},
        {"Indexed", &ColorSpaces::MakeIndexed},
        {"I", &ColorSpaces::MakeIndexed},
        {"Separation", &ColorSpaces::MakeSeparation},
        {"DeviceN", &ColorSpaces::MakeDeviceN},
        {"Pattern", &ColorSpaces::MakePattern},
    }};
    const Request request{array, defaults, depth};
    const std::string family = NameOf(request.Item(0));
    if (family == "Pattern" && array.getArrayNItems() == 1) {
        return *Named(family, defaults);
    }
    const auto* const maker = std::find_if(kMakers.begin(), kMakers.end(),
                                           [&](const Family& f) { return f.name == family; });
    if (maker != kMakers.end()) {
        return (this->*maker->make)(request);
    }
    const Entry* named = Named(family, defaults);
    return named != nullptr ? *named : Broken("unknown family " + family, 0);
}

const ColorSpaceEntry& ColorSpaces::MakePattern(const Request& request) {
    Entry entry;
    entry.kind = Entry::Kind::kPattern;
    entry.name = "Pattern";
    entry.special = true;
    entry.alternate = &ResolveNested(request.Item(1), request.defaults, request.depth + 1);
    return Add(std::move(entry));
}

void ColorSpaces::Use(const Entry& entry) {
    if (entry.used) {
        return;
    }
    entry.used = true;
    mUsedNames.insert(entry.name);
    const bool isDevice =
        std::find(kFamilies.begin(), kFamilies.end(), entry.id) != kFamilies.end();
    if (entry.kind == Entry::Kind::kSpace && !isDevice) {
        mSpace.EnterColorSpace(entry.space.Get(), entry.id);
        mSpace.RegisterColorSpaceUse(entry.id);
    }
}

void ColorSpaces::UseWithAlternates(const Entry& entry) {
    Use(entry);
    if (entry.alternate != nullptr && !(entry.kind == Entry::Kind::kSpace)) {
        UseWithAlternates(*entry.alternate);
    }
}

void ColorSpaces::Select(const Entry& entry, HOST::CurrentColor& color) {
    Use(entry);
    switch (entry.kind) {
        case Entry::Kind::kPattern:
            return;
        case Entry::Kind::kBlack:
            Select(*entry.alternate, color);
            return;
        case Entry::Kind::kReplaced: {
            Select(*entry.alternate, color);
            std::array<float, COLOR::kMaxComponents> full{};
            full.fill(1.0F);
            SetValues(entry, std::span(full).first(static_cast<std::size_t>(entry.components)),
                      color);
            return;
        }
        case Entry::Kind::kIndexed:
            Select(*entry.alternate, color);
            SetValues(entry, {}, color);
            return;
        case Entry::Kind::kSpace:
            break;
    }
    if (color.id != entry.id || !color.space) {
        color.space = entry.space;
        color.id = entry.id;
    }
    color.count = entry.components;
    if (!entry.space->GetDefaultValues(color.values.data(), entry.components)) {
        SetValues(entry, {}, color);
    }
}

void ColorSpaces::SetValues(const Entry& entry, std::span<const float> values,
                            HOST::CurrentColor& color) {
    if (entry.kind == Entry::Kind::kBlack || entry.kind == Entry::Kind::kPattern) {
        return;
    }
    const auto count = static_cast<std::size_t>(entry.components);
    std::array<float, COLOR::kMaxComponents> clipped{};
    for (std::size_t i = 0; i < count; ++i) {
        const Entry::Range range = entry.ranges[i];
        const float value = std::clamp(i < values.size() ? values[i] : 0.0F, range.low, range.high);
        clipped[i] = entry.complemented ? 1.0F - value : value;
    }
    if (entry.kind == Entry::Kind::kSpace) {
        std::copy_n(clipped.begin(), count, color.values.begin());
        return;
    }
    std::array<float, COLOR::kMaxComponents> out{};
    if (entry.kind == Entry::Kind::kReplaced) {
        entry.tint->Evaluate(clipped.data(), out.data());
    } else {
        LookUp(entry, clipped[0], out);
    }
    SetValues(*entry.alternate,
              std::span(out).first(static_cast<std::size_t>(entry.alternate->components)), color);
}

}  // namespace VANTIX::PDF
