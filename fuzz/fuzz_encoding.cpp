// SPDX-License-Identifier: MIT
#include <cstdint>
#include <exception>
#include <string>

#include "pdf/fonts/encoding.h"
#include "pdf/fonts/tounicode.h"

/// Reads any bytes as a ToUnicode CMap, and as the /Encoding of a font.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace VANTIX::PDF;
    const std::string text(data, data + size);
    volatile std::size_t sum = 0;
    for (const auto& [code, meaning] : ReadToUnicode(text)) {
        sum = sum + code + GlyphNameOfText(meaning).size();
    }
    try {
        const FontEncoding encoding = ReadEncoding(QPDFObjectHandle::parse(text));
        for (const std::string& name : encoding.Names(GlyphNames())) {
            sum = sum + name.size();
        }
    } catch (const std::exception&) {
        return 0;  // no object at all
    }
    return 0;
}
