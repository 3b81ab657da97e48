// SPDX-License-Identifier: MIT
#include "postscriptconnectionspace/cmapnames.h"

#include <array>
#include <cstddef>
#include <cstdint>

#include "core/fonts/predefinedcmaps.h"

namespace VANTIX::PS {

namespace {

/// What names of composite fonts end with, in the order in which it is looked for.
constexpr auto kSuffixes = std::to_array<std::string_view>({"-83pv-RKSJ-H",
                                                            "-Identity-H",
                                                            "-90pv-RKSJ-H",
                                                            "-90ms-RKSJ-H",
                                                            "-KSCpc-EUC-H",
                                                            "-KSCms-UHC-H",
                                                            "-90msp-RKSJ-H",
                                                            "-GBK-EUC-H",
                                                            "-GBpc-EUC-H",
                                                            "-B5pc-H",
                                                            "-ETen-B5-H",
                                                            "-90pv-RKSJ-V",
                                                            "-90msp-RKSJ-V",
                                                            "-90ms-RKSJ-UCS2",
                                                            "-90ms-RKSJ-V",
                                                            "-90pv-RKSJ-UCS2",
                                                            "-90pv-RKSJ-UCS2C",
                                                            "-78-V",
                                                            "-78-RKSJ-V",
                                                            "-78-RKSJ-H",
                                                            "-78ms-RKSJ-H",
                                                            "-78ms-RKSJ-V",
                                                            "-78-H",
                                                            "-78-EUC-V",
                                                            "-78-EUC-H",
                                                            "-Adobe-CNS1-UCS2",
                                                            "-Adobe-GB1-UCS2",
                                                            "-Adobe-Korea1-UCS2",
                                                            "-Add-V",
                                                            "-Add-H",
                                                            "-Add-RKSJ-H",
                                                            "-Add-RKSJ-V",
                                                            "-B5pc-V",
                                                            "-B5-V",
                                                            "-B5-H",
                                                            "-B5pc-UCS2C",
                                                            "-CNS-EUC-V",
                                                            "-CNS2-H",
                                                            "-CNS-EUC-H",
                                                            "-CNS1-H",
                                                            "-ETHK-B5-H",
                                                            "-ETenms-B5-H",
                                                            "-ETen-B5-UCS2",
                                                            "-Ext-RKSJ-H",
                                                            "-Ext-H",
                                                            "-EUC-H",
                                                            "-GBK2K-H",
                                                            "-GBK-EUC-UCS2",
                                                            "-GB-H",
                                                            "-GB-EUC-H",
                                                            "-GBpc-EUC-UCS2",
                                                            "-GBpc-EUC-UCS2C",
                                                            "-GBKp-EUC-H",
                                                            "-GBTpc-EUC-H",
                                                            "-GBT-H",
                                                            "-GBT-EUC-H",
                                                            "-Hankaku",
                                                            "-Hojo-EUC-H",
                                                            "-HKdla-B5-H",
                                                            "-HKm314-B5-H",
                                                            "-HKm471-B5-H",
                                                            "-Hiragana",
                                                            "-HKgccs-B5-H",
                                                            "-HKscs-B5-H",
                                                            "-HKdlb-B5-H",
                                                            "-Katakana",
                                                            "-Hojo-H",
                                                            "-KSCms-UHC-UCS2",
                                                            "-KSCms-UHC-HW-H",
                                                            "-KSC-Johab-H",
                                                            "-KSCpc-EUC-UCS2C",
                                                            "-KSC-EUC-H",
                                                            "-KSCpc-EUC-UCS2",
                                                            "-RKSJ-H",
                                                            "-NWP-H",
                                                            "-Roman",
                                                            "-KSC-H",
                                                            "-UniCNS-UTF32-H",
                                                            "-UniCNS-UTF8-H",
                                                            "-UniCNS-UTF16-H",
                                                            "-UniCNS-UCS2-H",
                                                            "-UniGB-UTF8-H",
                                                            "-UniGB-UTF16-H",
                                                            "-UniGB-UTF32-H",
                                                            "-UniGB-UCS2-H",
                                                            "-UniJIS-UCS2-H",
                                                            "-UniJIS-UCS2-HW-H",
                                                            "-UniKS-UTF16-H",
                                                            "-UniKS-UCS2-H",
                                                            "-UniJIS-UTF16-H",
                                                            "-WP-Symbol"});

}  // namespace

const char* NameOfCMap(GRAPHICS::TEncoding encoding) {
    const std::int64_t index = std::int64_t{static_cast<std::int32_t>(encoding)} -
                               static_cast<std::int32_t>(GRAPHICS::TEncoding::kFirstCMap);
    return index >= 0 && index < std::int64_t{GRAPHICS::kPredefinedCMaps.size()}
               ? GRAPHICS::kPredefinedCMaps[static_cast<std::size_t>(index)]
               : "";
}

std::string_view CutAtCMap(std::string_view name) {
    for (const std::string_view suffix : kSuffixes) {
        if (const std::size_t at = name.find(suffix); at != std::string_view::npos) {
            return name.substr(0, at);
        }
    }
    return name;
}

}  // namespace VANTIX::PS
