// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstdlib>

#include "core/graphics/pluginhelper/delegateconnectionspace.h"
#include "host/fonts/truetypeprogram.h"

namespace {

using namespace VANTIX;

constexpr std::uint32_t kMostGlyphs = 40;

class Player : public GRAPHICS::IGlyphFunctor {
public:
    bool operator()(const char* /*name*/, std::int32_t /*nameLength*/, std::uint16_t /*index*/,
                    const GRAPHICS::IGlyphRecording* recording) override {
        GRAPHICS::DelegateConnectionSpace space;
        recording->Play(space);
        return true;
    }
};

/// The last glyph that any code or name leads to.
std::uint32_t LookUp(const HOST::TrueTypeProgram& program) {
    std::uint32_t last = program.GlyphOfPostName("A");
    for (std::uint32_t code = 0; code < 256; ++code) {
        last = std::max<std::uint32_t>(last, program.GlyphOfMac(static_cast<std::uint8_t>(code)));
        last = std::max<std::uint32_t>(last, program.GlyphOfSymbol(0xF000 + code));
        last = std::max<std::uint32_t>(last, program.GlyphOfUnicode(code));
    }
    return last;
}

}  // namespace

/// Reads any bytes as a TrueType font, and what is written of it again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<std::uint8_t> bytes(data, data + size);
    for (int pass = 0; pass < 2; ++pass) {
        std::string problem;
        const auto program = HOST::TrueTypeProgram::Open(std::move(bytes), problem);
        if (program == nullptr) {
            return 0;
        }
        if (LookUp(*program) >= program->GlyphCount()) {
            std::abort();
        }
        const std::uint32_t count = std::min(program->GlyphCount(), kMostGlyphs);
        for (std::uint32_t i = 0; i < count; ++i) {
            const auto glyph = static_cast<std::uint16_t>(i);
            const std::string name = program->NameGlyph(glyph, program->PostNameOf(glyph));
            if (!program->HasOutline(name) && program->WidthOf(name) < 0) {
                std::abort();
            }
        }
        Player player;
        program->EnumerateGlyphs(player);
        bytes = program->Finish().bytes;
    }
    return 0;
}
