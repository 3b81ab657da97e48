// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

/// Keys of the policy dictionary.
namespace VANTIX::PS::POLICY {

inline constexpr std::int32_t kDelegateType = 100;         ///< integer, `TDelegateType`
inline constexpr std::int32_t kPdfmarkTransparency = 101;  ///< bool
inline constexpr std::int32_t kLanguageLevel = 103;        ///< integer, 2 or 3
inline constexpr std::int32_t kTrueTypeDownload = 105;     ///< bool, by default: level 3
inline constexpr std::int32_t kSetDefaultColour = 106;     ///< bool, by default true
inline constexpr std::int32_t kEmbedProfiles = 107;        ///< bool
inline constexpr std::int32_t kPromoteGray = 108;          ///< bool
inline constexpr std::int32_t kOnlyAscii85 = 109;          ///< bool
inline constexpr std::int32_t kTransparencyWritten = 110;  ///< bool, set by the plug-in itself
inline constexpr std::int32_t kSoftMasks = 111;            ///< bool
inline constexpr std::int32_t kTilingFlag = 112;           ///< byte
inline constexpr std::int32_t kFlipImages = 113;           ///< bool
inline constexpr std::int32_t kNoEndOfFontSet = 114;       ///< bool

}  // namespace VANTIX::PS::POLICY
