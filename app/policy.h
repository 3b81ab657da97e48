// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <variant>

#include "core/io/idictionary.h"

namespace VANTIX::APP {

/// Keys of the plug-in's options that the tool sets itself; docs/options.md lists all of them.
namespace KEY {
inline constexpr std::int32_t kColorModel = 100;
inline constexpr std::int32_t kPdfmarkTransparency = 101;
inline constexpr std::int32_t kLanguageLevel = 103;
inline constexpr std::int32_t kTrueType = 105;
inline constexpr std::int32_t kEmbedProfiles = 107;
inline constexpr std::int32_t kPromoteGray = 108;
inline constexpr std::int32_t kAscii85Only = 109;
inline constexpr std::int32_t kTransparencyWritten = 110;
inline constexpr std::int32_t kSoftMasks = 111;
inline constexpr std::int32_t kOpaquePatterns = 112;
inline constexpr std::int32_t kFlipImages = 113;
inline constexpr std::int32_t kNoInnerEnd = 114;
}  // namespace KEY

/// The plug-in's options for one job, before they become a dictionary of the host.
class Policy {
public:
    using Value = std::variant<bool, std::int32_t, std::uint8_t>;

    void Set(std::int32_t key, Value value) { mEntries[key] = value; }

    /// Sets an option from "KEY=VALUE". False, with the reason in `error`, for an unknown key or a
    /// value of another kind or range.
    bool Assign(std::string_view assignment, std::string& error);

    /// The value under `key`, or `fallback`.
    [[nodiscard]] bool Bool(std::int32_t key, bool fallback = false) const;
    [[nodiscard]] std::int32_t Int(std::int32_t key, std::int32_t fallback) const;

    /// Why these options cannot be served together or at all; empty when they can.
    [[nodiscard]] std::string Refusal() const;

    /// What the colour model leaves out by its nature; empty for nothing.
    [[nodiscard]] std::string Shortcoming() const;

    /// Whether images in gray of less than 8 bits need a palette to come through whole.
    [[nodiscard]] bool TakesNoGrayBits() const;

    void CopyTo(IO::IDictionary& dictionary) const;

    [[nodiscard]] const std::map<std::int32_t, Value>& Entries() const { return mEntries; }

private:
    std::map<std::int32_t, Value> mEntries;
};

/// The number of a colour model under key 100 by its name ("as-is", "cmyk", …), or 0.
std::int32_t ColorModelNumber(std::string_view name);

}  // namespace VANTIX::APP
