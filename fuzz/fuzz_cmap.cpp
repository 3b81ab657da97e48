// SPDX-License-Identifier: MIT
#include <cstdint>
#include <exception>
#include <string_view>

#include "pdf/fonts/cidmetrics.h"
#include "pdf/fonts/cmap.h"

/// Reads any bytes as a CMap, which then parts them into codes, and as a font with metrics.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace VANTIX;
    using namespace VANTIX::PDF;
    const std::string text(data, data + size);
    volatile std::size_t sum = 0;
    CMap map;
    const auto identity = [](std::string_view name) {
        return std::make_shared<const CMap>(CMap::Identity(name == "V"));
    };
    ReadCMap(text, nullptr, identity, map);
    for (std::string_view rest = text; !rest.empty();) {
        const CharCode code = map.FirstOf(rest);
        sum = sum + map.CIDOf(code);
        rest.remove_prefix(code.bytes);
    }
    try {
        HOST::CIDCharacter character;
        CIDMetrics(QPDFObjectHandle::parse(text)).Apply(7, character);
    } catch (const std::exception&) {
        return 0;  // no object at all
    }
    return 0;
}
