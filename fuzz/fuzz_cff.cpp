// SPDX-License-Identifier: MIT
#include <cstddef>
#include <cstdint>
#include <string>

#include "host/fonts/cffprogram.h"

namespace {

using VANTIX::HOST::CffGlyph;
using VANTIX::HOST::CffProgram;

/// Reads every byte of what is handed over.
class Reader final : public VANTIX::HOST::CffGlyphFunctor {
public:
    bool operator()(const CffGlyph& glyph) override {
        const auto& code = glyph.charString;
        for (std::int32_t i = 0; i < code.length; ++i) {
            mSum += code.data[i];
        }
        return mSum != 1;
    }

private:
    unsigned mSum = 0;
};

}  // namespace

/// Reads any bytes as a CFF font, and writes it in every way.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string problem;
    const auto program = CffProgram::Open({data, data + size}, problem);
    if (program == nullptr) {
        return 0;
    }
    program->Rename("Other");
    program->ExpectConversion((size & 1U) != 0);
    program->IsSound();
    program->UseGlyph("Aacute");
    program->UseGlyph(program->Encoding()[65]);
    Reader reader;
    program->EnumerateGlyphs((size & 2U) != 0, reader);
    for (std::int32_t i = 0; i < program->FontDictCount(); ++i) {
        program->FontDictPrivate(static_cast<std::size_t>(i));
    }
    program->GlyphOfCid(1);
    program->Data();
    program->AsType1();
    return 0;
}
