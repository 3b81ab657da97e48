// SPDX-License-Identifier: MIT
#include "app/policy.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <utility>

#include "core/io/ioutputfilterstack.h"

namespace VANTIX::APP {
namespace {

enum class Kind { kBool, kInt, kByte };

struct KeyRule {
    std::int32_t key;
    Kind kind;
    std::int32_t least = 0;
    std::int32_t most = 1;
};

constexpr std::array<KeyRule, 16> kKeyRules{{
    {IO::FILTER::kRunLength, Kind::kBool},
    {IO::FILTER::kFlate, Kind::kBool},
    {IO::FILTER::kAscii85, Kind::kBool},
    {KEY::kColorModel, Kind::kInt, 1, 16},
    {KEY::kPdfmarkTransparency, Kind::kBool},
    {KEY::kLanguageLevel, Kind::kInt, 2, 3},
    {KEY::kTrueType, Kind::kBool},
    {106, Kind::kBool},
    {KEY::kEmbedProfiles, Kind::kBool},
    {KEY::kPromoteGray, Kind::kBool},
    {KEY::kAscii85Only, Kind::kBool},
    {KEY::kTransparencyWritten, Kind::kBool},
    {KEY::kSoftMasks, Kind::kBool},
    {KEY::kOpaquePatterns, Kind::kByte, 0, 255},
    {KEY::kFlipImages, Kind::kBool},
    {KEY::kNoInnerEnd, Kind::kBool},
}};

struct ColorModel {
    std::string_view name;
    std::int32_t number;
};

constexpr std::array<ColorModel, 12> kColorModels{{
    {"as-is", 10},
    {"as-is-process", 11},
    {"cmyk", 7},
    {"cmyk-managed", 8},
    {"rgb", 5},
    {"rgb-managed", 6},
    {"gray", 1},
    {"gray-managed", 2},
    {"gray-100", 3},
    {"gray-calibrated", 4},
    {"devicen", 15},
    {"devicen-managed", 16},
}};

struct Refused {
    std::int32_t key;
    std::int32_t value;
    std::string_view option;
};

/// What an interpreter of Language Level 2 does not know.
constexpr std::array<Refused, 3> kNotInLevel2{{
    {KEY::kColorModel, 15, "--color devicen"},
    {KEY::kColorModel, 16, "--color devicen-managed"},
    {IO::FILTER::kFlate, 1, "--encode flate"},
}};

std::optional<std::int32_t> ParseNumber(std::string_view text) {
    std::int32_t number = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc{} || result.ptr != end) {
        return std::nullopt;
    }
    return number;
}

std::optional<std::int32_t> ParseValue(std::string_view text, Kind kind) {
    constexpr std::array<std::pair<std::string_view, std::int32_t>, 6> kWords{
        {{"true", 1}, {"false", 0}, {"yes", 1}, {"no", 0}, {"on", 1}, {"off", 0}}};
    if (kind == Kind::kBool) {
        for (const auto& [word, value] : kWords) {
            if (word == text) {
                return value;
            }
        }
    }
    return ParseNumber(text);
}

Policy::Value MakeValue(Kind kind, std::int32_t number) {
    switch (kind) {
        case Kind::kBool:
            return number != 0;
        case Kind::kByte:
            return static_cast<std::uint8_t>(number);
        case Kind::kInt:
            break;
    }
    return number;
}

std::int32_t AsNumber(const Policy::Value& value) {
    return std::visit([](auto held) { return static_cast<std::int32_t>(held); }, value);
}

}  // namespace

bool Policy::Assign(std::string_view assignment, std::string& error) {
    const std::size_t equals = assignment.find('=');
    const auto key = ParseNumber(assignment.substr(0, equals));
    if (equals == std::string_view::npos || !key) {
        error = "\"" + std::string(assignment) + "\" is not of the form KEY=VALUE";
        return false;
    }
    const auto* rule = std::find_if(kKeyRules.begin(), kKeyRules.end(),
                                    [&](const KeyRule& each) { return each.key == *key; });
    if (rule == kKeyRules.end()) {
        error = "there is no policy key " + std::to_string(*key);
        return false;
    }
    const auto value = ParseValue(assignment.substr(equals + 1), rule->kind);
    if (!value || *value < rule->least || *value > rule->most) {
        error = "policy key " + std::to_string(*key) + " takes " +
                (rule->kind == Kind::kBool ? std::string("true or false")
                                           : "a number from " + std::to_string(rule->least) +
                                                 " to " + std::to_string(rule->most));
        return false;
    }
    Set(*key, MakeValue(rule->kind, *value));
    return true;
}

bool Policy::Bool(std::int32_t key, bool fallback) const {
    const auto found = mEntries.find(key);
    return found == mEntries.end() ? fallback : AsNumber(found->second) != 0;
}

std::int32_t Policy::Int(std::int32_t key, std::int32_t fallback) const {
    const auto found = mEntries.find(key);
    return found == mEntries.end() ? fallback : AsNumber(found->second);
}

std::string Policy::Refusal() const {
    if (Int(KEY::kLanguageLevel, 3) != 2) {
        return {};
    }
    const auto* found =
        std::find_if(kNotInLevel2.begin(), kNotInLevel2.end(),
                     [this](const Refused& each) { return Int(each.key, 0) == each.value; });
    return found == kNotInLevel2.end() ? std::string()
                                       : std::string(found->option) + " needs --level 3";
}

std::string Policy::Shortcoming() const {
    switch (Int(KEY::kColorModel, 0)) {
        case 3:
            return "--color gray-100 draws no images";
        case 4:
            return "--color gray-calibrated sets no colours: areas, lines and text come out black";
        default:
            return {};
    }
}

bool Policy::TakesNoGrayBits() const {
    const std::int32_t model = Int(KEY::kColorModel, 0);
    return model >= 1 && model <= 6;
}

void Policy::CopyTo(IO::IDictionary& dictionary) const {
    struct Setter {
        IO::IDictionary& dictionary;
        std::int32_t key;

        void operator()(bool value) const { dictionary.SetBool(key, value); }

        void operator()(std::int32_t value) const { dictionary.SetInt(key, value); }

        void operator()(std::uint8_t value) const { dictionary.SetByte(key, value); }
    };

    for (const auto& [key, value] : mEntries) {
        std::visit(Setter{dictionary, key}, value);
    }
}

std::int32_t ColorModelNumber(std::string_view name) {
    const auto* found = std::find_if(kColorModels.begin(), kColorModels.end(),
                                     [&](const ColorModel& each) { return each.name == name; });
    return found == kColorModels.end() ? 0 : found->number;
}

}  // namespace VANTIX::APP
